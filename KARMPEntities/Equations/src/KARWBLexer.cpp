#include "KARWBLexer.h"

#include "KARWBGrammar.h"

#include <charconv>
#include <system_error>

namespace kar {
namespace {

constexpr std::string_view HexDigits = "0123456789abcdef";

int GetHexValue(char c)
{
    const char lower = c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c;
    const std::size_t value = HexDigits.find(lower);
    return value != std::string_view::npos ? static_cast<int>(value) : -1;
}

void SetInvalid(Token& token, std::string_view error)
{
    token.kind = TokenKind::Invalid;
    token.text = error;
}

} // namespace

std::string Quote(std::string_view bytes)
{
    constexpr std::size_t LongestShown = 40;
    std::string quoted = "\"";
    for (const char c : bytes.substr(0, LongestShown)) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte < 0x7F) {
            quoted += c;
        } else {
            quoted += "\\x";
            quoted += HexDigits[byte >> 4U];
            quoted += HexDigits[byte & 0xFU];
        }
    }
    return quoted + (bytes.size() > LongestShown ? "...\"" : "\"");
}

Token Lexer::Next()
{
    SkipBlanks();
    Token token;
    token.offset = m_position;
    if (m_position == m_text.size())
        return token;
    const char c = Peek();
    if (IsDigit(c) || (c == '.' && IsDigit(Peek(1)))) {
        ReadNumber(token);
    } else if (IsLetter(c)) {
        while (IsLetter(Peek()) || IsDigit(Peek()))
            ++m_position;
        token.kind = TokenKind::Name;
        token.text = m_text.substr(token.offset, m_position - token.offset);
    } else if (c == '\'') {
        ReadQuotedName(token);
    } else {
        ReadSymbol(token);
    }
    return token;
}

char Lexer::Peek(std::size_t ahead) const
{
    return ahead < m_text.size() - m_position ? m_text[m_position + ahead] : '\0';
}

void Lexer::SkipBlanks()
{
    constexpr std::string_view Blanks = " \t\r\n\f\v";
    const std::size_t next = m_text.find_first_not_of(Blanks, m_position);
    m_position = next != std::string_view::npos ? next : m_text.size();
}

void Lexer::SkipDigits()
{
    while (IsDigit(Peek()))
        ++m_position;
}

void Lexer::ReadNumber(Token& token)
{
    SkipDigits();
    if (Peek() == '.') {
        ++m_position;
        SkipDigits();
    }
    if (Peek() == 'e' || Peek() == 'E') {
        const std::size_t signs = Peek(1) == '+' || Peek(1) == '-' ? 1 : 0;
        if (IsDigit(Peek(1 + signs))) {
            m_position += 1 + signs;
            SkipDigits();
        }
    }
    const char* const first = m_text.data() + token.offset;
    const char* const last = m_text.data() + m_position;
    token.kind = TokenKind::Number;
    if (IsLetter(Peek()) || Peek() == '.') {
        while (IsLetter(Peek()) || IsDigit(Peek()) || Peek() == '.')
            ++m_position;
        const std::string_view word = m_text.substr(token.offset, m_position - token.offset);
        SetInvalid(token, "malformed number " + Quote(word));
    } else if (std::from_chars(first, last, token.number).ec != std::errc()) {
        const std::string_view word = m_text.substr(token.offset, m_position - token.offset);
        SetInvalid(token, "number out of range " + Quote(word));
    }
}

// After a wrong escape reading goes on, so that the rest of the name isn't taken for the next
// words.
void Lexer::ReadQuotedName(Token& token)
{
    token.kind = TokenKind::QuotedName;
    ++m_position;
    while (m_position < m_text.size() && m_text[m_position] != '\'')
        if (m_text[m_position] == '\\')
            ReadEscape(token);
        else if (token.kind != TokenKind::Invalid)
            token.text += m_text[m_position++];
        else
            ++m_position;
    if (m_position < m_text.size())
        ++m_position;
    else if (token.kind != TokenKind::Invalid)
        SetInvalid(token, "a quoted name without its closing quote");
}

void Lexer::ReadEscape(Token& token)
{
    std::size_t length = 2;
    char byte = Peek(1);
    const int high = GetHexValue(Peek(2));
    const int low = GetHexValue(Peek(3));
    const bool isPlain = byte == '\'' || byte == '\\';
    const bool isHex = byte == 'x' && high >= 0 && low >= 0;
    if (isHex) {
        length = 4;
        byte = static_cast<char>(high * 16 + low);
    }
    if (!isPlain && !isHex) {
        length = 1;
        if (token.kind != TokenKind::Invalid) {
            token.offset = m_position;
            SetInvalid(token, "unknown escape in a quoted name; "
                              "known are \\', \\\\ and \\x with two digits");
        }
    } else if (token.kind != TokenKind::Invalid) {
        token.text += byte;
    }
    m_position += length;
}

void Lexer::ReadSymbol(Token& token)
{
    constexpr std::string_view OfTwo[] = {"<=", ">=", "==", "!="};
    constexpr std::string_view OfOne = "+-*/^()<>=,;";
    token.kind = TokenKind::Symbol;
    const std::string_view two = m_text.substr(m_position, 2);
    for (const std::string_view symbol : OfTwo) {
        if (two == symbol) {
            token.text = symbol;
            m_position += 2;
            return;
        }
    }
    const std::string_view one = m_text.substr(m_position, 1);
    ++m_position;
    if (OfOne.find(one) != std::string_view::npos)
        token.text = one;
    else
        SetInvalid(token, "unexpected character " + Quote(one));
}

} // namespace kar

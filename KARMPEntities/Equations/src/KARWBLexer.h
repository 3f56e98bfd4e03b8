#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kar {

enum class TokenKind {
    End,
    Invalid, ///< `text` tells what is wrong
    Number,
    Name,       ///< a plain name: variable, function or constant
    QuotedName, ///< a name in quotes: always a variable
    Symbol,     ///< an operator or a mark
};

struct Token
{
    TokenKind kind = TokenKind::End;
    std::size_t offset = 0; ///< of its first byte in the text
    std::string text;       ///< the name without quotes and escapes, the symbol, the error
    double number = 0.0;

    bool IsSymbol(std::string_view symbol) const
    {
        return kind == TokenKind::Symbol && text == symbol;
    }
};

/// Cuts a text of the equation language into words.
class Lexer
{
public:
    explicit Lexer(std::string_view text) : m_text(text) {}

    /// The next word; `End` again and again behind the last.
    Token Next();

private:
    char Peek(std::size_t ahead = 0) const;
    void SkipBlanks();
    void SkipDigits();
    void ReadNumber(Token& token);
    void ReadQuotedName(Token& token);
    void ReadEscape(Token& token);
    void ReadSymbol(Token& token);

    std::string_view m_text;
    std::size_t m_position = 0;
};

/// Bytes as printable ASCII for a message, cut when long.
std::string Quote(std::string_view bytes);

} // namespace kar

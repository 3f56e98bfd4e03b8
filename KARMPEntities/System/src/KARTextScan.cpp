#include "KARTextConversion.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <system_error>

namespace kar {
namespace {

// The characters of one number as narrow text: on the stack for any usual number.
class NumberText
{
public:
    void Push(char character)
    {
        if (m_size < sizeof m_short) {
            m_short[m_size] = character;
        } else {
            if (m_long.empty())
                m_long.assign(m_short, m_size);
            m_long.push_back(character);
        }
        ++m_size;
    }
    std::string_view View() const
    {
        return m_long.empty() ? std::string_view(m_short, m_size) : std::string_view(m_long);
    }

private:
    char m_short[128];
    std::size_t m_size = 0;
    std::string m_long;
};

// Reads ASCII characters, letters as small ones, from text of either width; 0 at the end and for
// anything that can stand in no number.
template <typename Char>
class Reader
{
public:
    explicit Reader(std::basic_string_view<Char> text) : m_text(text) {}

    char Peek(std::size_t ahead = 0) const
    {
        if (m_position + ahead >= m_text.size())
            return 0;
        const Char character = m_text[m_position + ahead];
        if (character >= static_cast<Char>('A') && character <= static_cast<Char>('Z'))
            return static_cast<char>(character - static_cast<Char>('A') + static_cast<Char>('a'));
        const bool ascii = character > 0 && character < static_cast<Char>(0x7F);
        return ascii ? static_cast<char>(character) : '\0';
    }
    void Skip(std::size_t count = 1) { m_position += count; }
    bool IsAtEnd() const { return m_position >= m_text.size(); }

    void SkipBlanks()
    {
        while (Peek() == ' ' || (Peek() >= '\t' && Peek() <= '\r'))
            Skip();
    }
    bool TakeSign()
    {
        const char sign = Peek();
        if (sign == '+' || sign == '-')
            Skip();
        return sign == '-';
    }
    bool TakeWord(std::string_view word)
    {
        for (std::size_t i = 0; i < word.size(); ++i)
            if (Peek(i) != word[i])
                return false;
        Skip(word.size());
        return true;
    }

private:
    std::basic_string_view<Char> m_text;
    std::size_t m_position = 0;
};

bool IsDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool IsHexDigit(char character)
{
    return IsDigit(character) || (character >= 'a' && character <= 'f');
}

// What distinguishes a decimal number's notation from a hexadecimal one's.
struct Notation
{
    std::chars_format format;
    bool (*isDigit)(char);
    char exponentMark;
    std::int64_t exponentsPerDigit;
};

constexpr Notation Decimal = {std::chars_format::general, IsDigit, 'e', 1};
constexpr Notation Hexadecimal = {std::chars_format::hex, IsHexDigit, 'p', 4};

struct Mantissa
{
    bool hasDigit = false;
    bool hasPoint = false;
};

template <typename Char>
Mantissa TakeMantissa(Reader<Char>& reader, const Notation& notation, DecimalMark mark,
                      NumberText& number)
{
    Mantissa mantissa;
    for (;; reader.Skip()) {
        const char next = reader.Peek();
        if (notation.isDigit(next)) {
            mantissa.hasDigit = true;
            number.Push(next);
        } else if (!mantissa.hasPoint &&
                   (next == '.' || (next == ',' && mark == DecimalMark::PointOrComma))) {
            mantissa.hasPoint = true;
            number.Push('.');
        } else {
            return mantissa;
        }
    }
}

// Takes the exponent when it has a digit; a mark alone counts for nothing.
template <typename Char>
void TakeExponent(Reader<Char>& reader, char mark, NumberText& number)
{
    if (reader.Peek() != mark)
        return;
    const char sign = reader.Peek(1);
    const bool hasSign = sign == '+' || sign == '-';
    if (!IsDigit(reader.Peek(hasSign ? 2 : 1)))
        return;
    number.Push(mark);
    if (hasSign)
        number.Push(sign);
    reader.Skip(hasSign ? 2 : 1);
    for (; IsDigit(reader.Peek()); reader.Skip())
        number.Push(reader.Peek());
}

std::int64_t ExponentOf(std::string_view digits)
{
    const bool negative = !digits.empty() && digits.front() == '-';
    if (!digits.empty() && !IsDigit(digits.front()))
        digits.remove_prefix(1);
    // More than any text's length can make up for.
    constexpr std::int64_t Limit = std::numeric_limits<std::int64_t>::max() / 100;
    std::int64_t exponent = 0;
    for (const char digit : digits)
        exponent = exponent < Limit ? exponent * 10 + (digit - '0') : exponent;
    return negative ? -exponent : exponent;
}

// Tells whether a number that fits no double is too large rather than too small.
bool IsHuge(std::string_view number, const Notation& notation)
{
    const std::size_t markAt = number.find(notation.exponentMark);
    const std::string_view mantissa = number.substr(0, markAt);
    const std::size_t first = mantissa.find_first_not_of("0.");
    if (first == std::string_view::npos)
        return false;
    std::size_t point = mantissa.find('.');
    if (point == std::string_view::npos)
        point = mantissa.size();
    const auto digits = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first);
    const std::int64_t exponent =
        markAt == std::string_view::npos ? 0 : ExponentOf(number.substr(markAt + 1));
    return digits * notation.exponentsPerDigit + exponent > 0;
}

double ValueOf(std::string_view number, const Notation& notation)
{
    double value = 0.0;
    const auto result =
        std::from_chars(number.data(), number.data() + number.size(), value, notation.format);
    if (result.ec != std::errc::result_out_of_range)
        return value;
    return IsHuge(number, notation) ? std::numeric_limits<double>::infinity() : 0.0;
}

template <typename Char>
bool TakeNumber(Reader<Char>& reader, DecimalMark mark, double& value)
{
    const bool hex = reader.TakeWord("0x");
    const Notation& notation = hex ? Hexadecimal : Decimal;
    NumberText number;
    const Mantissa mantissa = TakeMantissa(reader, notation, mark, number);
    if (!mantissa.hasDigit) {
        // "0x." is the zero before the "x"; "0x" alone is a number cut short.
        value = 0.0;
        return hex && mantissa.hasPoint;
    }
    TakeExponent(reader, notation.exponentMark, number);
    value = ValueOf(number.View(), notation);
    return true;
}

// Takes "inf" or "nan"; false when there is neither, or a word that is begun and not complete.
template <typename Char>
bool TakeNamedNumber(Reader<Char>& reader, double& value)
{
    if (reader.TakeWord("inf")) {
        value = std::numeric_limits<double>::infinity();
        return reader.Peek() != 'i' || reader.TakeWord("inity");
    }
    value = std::numeric_limits<double>::quiet_NaN();
    return reader.TakeWord("nan");
}

template <typename Char>
int ScanAnyDouble(std::basic_string_view<Char> text, double& value, DecimalMark mark)
{
    Reader<Char> reader(text);
    reader.SkipBlanks();
    const bool negative = reader.TakeSign();
    double size = 0.0;
    const bool isNamed = reader.Peek() == 'i' || reader.Peek() == 'n';
    if (!(isNamed ? TakeNamedNumber(reader, size) : TakeNumber(reader, mark, size)))
        return 0;
    value = negative ? -size : size;
    return 1;
}

template <typename Char>
int ScanAnyInt(std::basic_string_view<Char> text, int& value)
{
    Reader<Char> reader(text);
    reader.SkipBlanks();
    const bool negative = reader.TakeSign();
    if (!IsDigit(reader.Peek()))
        return 0;
    constexpr std::int64_t Largest = std::numeric_limits<int>::max();
    std::int64_t size = 0;
    for (; IsDigit(reader.Peek()); reader.Skip()) {
        size = size * 10 + (reader.Peek() - '0');
        if (size > Largest + (negative ? 1 : 0))
            return 0;
    }
    value = static_cast<int>(negative ? -size : size);
    return 1;
}

// Takes a decimal number that a double can hold.
template <typename Char>
bool TakeDecimal(Reader<Char>& reader, DecimalMark mark)
{
    NumberText number;
    if (!TakeMantissa(reader, Decimal, mark, number).hasDigit)
        return false;
    const std::size_t mantissa = number.View().size();
    TakeExponent(reader, Decimal.exponentMark, number);
    // Fewer digits without an exponent fit for sure.
    const bool isSmall =
        number.View().size() == mantissa && mantissa <= std::numeric_limits<double>::max_exponent10;
    return isSmall || !std::isinf(ValueOf(number.View(), Decimal));
}

} // namespace

bool IsNumber(std::wstring_view text, DecimalMark mark)
{
    Reader<wchar_t> reader(text);
    reader.SkipBlanks();
    reader.TakeSign();
    double value = 0.0;
    const bool isNamed = reader.Peek() == 'i' || reader.Peek() == 'n';
    if (!(isNamed ? TakeNamedNumber(reader, value) : TakeDecimal(reader, mark)))
        return false;
    reader.SkipBlanks();
    return reader.IsAtEnd();
}

bool IsInteger(std::wstring_view text)
{
    int value = 0;
    if (ScanInt(text, value) != 1)
        return false;
    Reader<wchar_t> reader(text);
    reader.SkipBlanks();
    reader.TakeSign();
    while (IsDigit(reader.Peek()))
        reader.Skip();
    reader.SkipBlanks();
    return reader.IsAtEnd();
}

int ScanDouble(std::wstring_view text, double& value, DecimalMark mark)
{
    return ScanAnyDouble(text, value, mark);
}

int ScanDouble(std::string_view text, double& value, DecimalMark mark)
{
    return ScanAnyDouble(text, value, mark);
}

int ScanInt(std::wstring_view text, int& value)
{
    return ScanAnyInt(text, value);
}

int ScanInt(std::string_view text, int& value)
{
    return ScanAnyInt(text, value);
}

} // namespace kar

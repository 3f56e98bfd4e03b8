#include "KARNumberFormat.h"

#include <charconv>
#include <cmath>
#include <system_error>

namespace kar {
namespace {

// Appends text up to the next conversion, or to the end; a doubled percent sign is a single one.
void TakeText(const char*& format, std::string& text)
{
    for (; *format != '\0'; ++format) {
        if (*format == '%' && *++format != '%') {
            --format;
            return;
        }
        text.push_back(*format);
    }
}

bool TakeDigits(const char*& format, int& number)
{
    constexpr int MaxDigits = 3;
    number = 0;
    int digits = 0;
    for (; *format >= '0' && *format <= '9'; ++format, ++digits) {
        if (digits == MaxDigits)
            return false;
        number = number * 10 + (*format - '0');
    }
    return true;
}

bool TakeFlag(char character, NumberFormat& format)
{
    switch (character) {
    case '-':
        return format.left = true;
    case '+':
        return format.plus = true;
    case ' ':
        return format.blank = true;
    case '0':
        return format.zeros = true;
    case '#':
        return format.alternate = true;
    default:
        return false;
    }
}

std::string_view SignOf(const NumberFormat& format, bool negative)
{
    if (negative)
        return "-";
    if (format.plus)
        return "+";
    return format.blank ? " " : "";
}

void MakeUpperCase(std::string& text)
{
    for (char& character : text)
        if (character >= 'a' && character <= 'z')
            character = static_cast<char>(character - 'a' + 'A');
}

// Puts prefix and digits into the width and between the texts.
std::string Lay(const NumberFormat& format, std::string_view prefix, std::string_view digits,
                bool zeros)
{
    const std::size_t taken = prefix.size() + digits.size();
    const auto width = static_cast<std::size_t>(format.width);
    const std::size_t fill = width > taken ? width - taken : 0;
    std::string result = format.before;
    if (!format.left && !zeros)
        result.append(fill, ' ');
    result += prefix;
    if (!format.left && zeros)
        result.append(fill, '0');
    result += digits;
    if (format.left)
        result.append(fill, ' ');
    return result + format.after;
}

std::string DigitsOf(unsigned int number, int base)
{
    char digits[40];
    const auto result = std::to_chars(digits, digits + sizeof digits, number, base);
    return std::string(digits, result.ptr);
}

} // namespace

std::optional<NumberFormat> ParseNumberFormat(const char* format)
{
    NumberFormat parsed;
    if (format == nullptr)
        return std::nullopt;
    TakeText(format, parsed.before);
    if (*format != '%')
        return std::nullopt;
    ++format;
    while (TakeFlag(*format, parsed))
        ++format;
    if (!TakeDigits(format, parsed.width))
        return std::nullopt;
    if (*format == '.' && !TakeDigits(++format, parsed.precision))
        return std::nullopt;
    if (*format == 'l') {
        parsed.isLong = true;
        ++format;
    }
    if (*format == '\0')
        return std::nullopt;
    parsed.conversion = *format++;
    TakeText(format, parsed.after);
    if (*format != '\0')
        return std::nullopt;
    return parsed;
}

std::optional<std::string> PrintInteger(const NumberFormat& format, bool negative,
                                        unsigned int size)
{
    if (format.isLong)
        return std::nullopt;
    const bool isSigned = format.conversion == 'd' || format.conversion == 'i';
    const unsigned int number = negative && !isSigned ? 0U - size : size;
    int base = 10;
    switch (format.conversion) {
    case 'd':
    case 'i':
    case 'u':
        break;
    case 'x':
    case 'X':
        base = 16;
        break;
    case 'o':
        base = 8;
        break;
    default:
        return std::nullopt;
    }
    std::string digits = number == 0 && format.precision == 0 ? "" : DigitsOf(number, base);
    if (format.precision > static_cast<int>(digits.size()))
        digits.insert(0, static_cast<std::size_t>(format.precision) - digits.size(), '0');
    if (format.alternate && base == 8 && (digits.empty() || digits.front() != '0'))
        digits.insert(0, 1, '0');
    std::string prefix(isSigned ? SignOf(format, negative) : "");
    if (format.alternate && base == 16 && number != 0)
        prefix = "0x";
    if (format.conversion == 'X') {
        MakeUpperCase(digits);
        MakeUpperCase(prefix);
    }
    return Lay(format, prefix, digits, format.zeros && format.precision < 0);
}

std::optional<std::string> PrintDouble(const NumberFormat& format, double number)
{
    std::chars_format notation = std::chars_format::general;
    switch (format.conversion) {
    case 'e':
    case 'E':
        notation = std::chars_format::scientific;
        break;
    case 'f':
    case 'F':
        notation = std::chars_format::fixed;
        break;
    case 'g':
    case 'G':
        break;
    default:
        return std::nullopt;
    }
    if (format.alternate)
        return std::nullopt;
    // The largest double has 309 digits before the point, and the precision at most 999 after it.
    char buffer[1400];
    const int precision = format.precision < 0 ? 6 : format.precision;
    const auto result =
        std::to_chars(buffer, buffer + sizeof buffer, std::fabs(number), notation, precision);
    if (result.ec != std::errc())
        return std::nullopt;
    std::string digits(buffer, result.ptr);
    if (format.conversion < 'a')
        MakeUpperCase(digits);
    return Lay(format, SignOf(format, std::signbit(number)), digits,
               format.zeros && std::isfinite(number));
}

} // namespace kar

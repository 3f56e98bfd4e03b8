// Printing of one number by a printf format that is checked before it is used.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kar {

/// One conversion with the text around it.
struct NumberFormat
{
    std::string before;
    std::string after;
    bool left = false;      ///< "-"
    bool plus = false;      ///< "+"
    bool blank = false;     ///< " "
    bool zeros = false;     ///< "0"
    bool alternate = false; ///< "#"
    int width = 0;
    int precision = -1;  ///< -1: not given
    bool isLong = false; ///< "l"
    char conversion = 0;
};

/// Reads a format; none when it has not exactly one conversion made of the parts above, or a width
/// or precision of more than three digits.
std::optional<NumberFormat> ParseNumberFormat(const char* format);

/// Prints a whole number by its sign and size; none when the conversion is none of d, i, u, x, X, o
/// or is "l". Conversions other than d and i take the 32 bits of the number as unsigned.
std::optional<std::string> PrintInteger(const NumberFormat& format, bool negative,
                                        unsigned int size);

/// Prints a double; none when the conversion is none of e, E, f, F, g, G or has "#".
std::optional<std::string> PrintDouble(const NumberFormat& format, double number);

} // namespace kar

// What the items of a class's content are.
#pragma once

#include "KARPlatformExport.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace karmp {

/// What an item holds.
enum class ItemKind : std::uint8_t {
    Group,          ///< Further items.
    Number,         ///< A double.
    Integer,        ///< An int.
    Flag,           ///< A bool.
    Text,           ///< A text.
    Word,           ///< One of a table of words.
    Code,           ///< An enumeration as its number.
    Numbers,        ///< Several doubles, each in an element of its own name.
    Transformation, ///< A translation and a rotation matrix.
    OptionalNumber, ///< A flag and, when it is set, a double.
    Reference,      ///< An entity by its identifier.
    References,     ///< A list of entities.
    Records,        ///< A list of groups.
    Stream          ///< Bytes as base 64.
};

/// What the doubles of an item stand for.
enum class NumberShape : std::uint8_t {
    Vector,        ///< Numbers in a row: a point, a vector, a line's origin and direction.
    Matrix,        ///< A square matrix.
    Transformation ///< A translation and a rotation matrix.
};

/// What it means to a reader that an item is not there.
enum class ItemPresence : std::uint8_t {
    Reported, ///< A failed check; reading goes on.
    Required, ///< A failed check that counts in the status.
    Optional  ///< Nothing.
};

/// The texts of a Flag that is true, and of one that is false.
inline constexpr std::array<std::string_view, 5> TrueForms{"1", "true", "TRUE", "yes", "YES"};
inline constexpr std::array<std::string_view, 5> FalseForms{"0", "false", "FALSE", "no", "NO"};

} // namespace karmp

// The payload of a block of a scene graph: the writer's setting and the records of the nodes, bags
// before what they hold. A record is the node's kind, which of its parts follow, the
// transformation, the colour, and what the class adds: a bag's number of children, a mesh's
// vertices, normals and triangles, a polyline's points.
#pragma once

#include "KARStoredBlock.h"

#include <cstddef>
#include <cstdint>

namespace kar {

/// How counts and the indices of triangles are stored.
enum class RepForm : std::uint8_t {
    Compact, ///< In groups of 7 bits, indices as differences to the index before.
    Plain    ///< In 32 bits each.
};

constexpr BlockForm BlockFormOf(RepForm form)
{
    return form == RepForm::Compact ? BlockForm{0x4752434BU, 1} : BlockForm{0x4753434BU, 1};
}

/// The parts of a record that need not be there, as bits.
enum RepParts : std::uint8_t {
    TransformationPart = 1,
    ColourPart = 2,
    NormalsPart = 4,
};

/// The bytes of the smallest record: kind, parts and the count of an empty bag.
inline constexpr std::size_t SmallestRepRecord = 3;

} // namespace kar

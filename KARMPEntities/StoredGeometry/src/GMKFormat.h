// The payload of a block of stored objects: the number of objects and of listed ones, the objects'
// records, each of which refers to earlier ones only, and the indices of the listed objects.
#pragma once

#include "KARStoredBlock.h"

#include <cstddef>
#include <cstdint>

namespace kar {

inline constexpr BlockForm ObjectBlock{0x4B4D474BU, 1};

/// What a record begins with. The numbers are stored: they are never given to another class.
enum class StoredKind : std::uint8_t {
    LineCurve = 1,
    CircleArc = 2,
    EllipseArc = 3,
    PolylineCurve = 4,
    NurbsCurve = 5,
    PlaneSurface = 16,
    CylinderSurface = 17,
    NurbsSurface = 18,
    LinearTransfoSurface = 19,
    Body = 32,
};

/// The bytes of the smallest record: a kind and the counts of an empty body.
inline constexpr std::size_t SmallestRecord = 13;

} // namespace kar

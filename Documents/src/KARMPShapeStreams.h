// What the streams of shapes, curves and surfaces hold.
#pragma once

#include "KAR3DRep.h"
#include "KARGeometricFactory.h"
#include "KARListPtrKARIGMKObject.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace karmp::documents {

using StreamBytes = std::vector<unsigned char>;

/// The mode of the header before the streams of planar shapes.
inline constexpr int ShapeHeaderMode = 1;

struct ReleaseFactory
{
    void operator()(KARGeometricFactory* factory) const { factory->Release(); }
};

/// The objects of a stream of stored geometry and what keeps them alive.
struct StoredShapes
{
    std::unique_ptr<KARGeometricFactory, ReleaseFactory> factory;
    KARListPtrKARIGMKObject list;
};

/// Loads the objects of a stream, behind a header of a mode where one is told; none when they
/// cannot be loaded.
StoredShapes LoadShapes(const StreamBytes& bytes, std::optional<int> headerMode = std::nullopt);

/// What a stream of any kind holds.
struct ShapeStream
{
    KAR3DRepOwner<KAR3DRep> scene;
    StoredShapes stored;

    bool IsEmpty() const { return scene == nullptr && stored.list.Size() == 0; }
};

ShapeStream ReadShapeStream(const StreamBytes& bytes);

/// What two shapes are compared by: what must be the same, and numbers that may differ a little.
struct ShapeNumbers
{
    std::vector<std::uint64_t> structure;
    std::vector<double> numbers;
};

/// The numbers of all nodes, or of points along all curves and on all surfaces.
ShapeNumbers NumbersOf(const ShapeStream& stream);

/// True when two streams hold the same, written in whatever form.
bool HoldSame(const ShapeStream& before, const ShapeStream& after);

} // namespace karmp::documents

#pragma once

#include "GMKFormat.h"
#include "KARIGMKObject.h"
#include "KARStoredBlock.h"
#include "KARSurface.h"

#include <unordered_map>

namespace kar {

/// Writes the records of stored objects.
class GMKWriter : public BlockWriter
{
public:
    using Indices = std::unordered_map<const KARIGMKObject*, std::uint32_t>;

    GMKWriter(KARMathStream& stream, const Indices& indices)
        : BlockWriter(stream), m_indices(indices)
    {}

    void Kind(StoredKind kind) { Byte(static_cast<std::uint8_t>(kind)); }
    void Limits(const KARSurLimits& limits);
    /// The index of an object that was written before; any other makes the writing fail.
    void Reference(const KARIGMKObject* object);

private:
    const Indices& m_indices;
};

} // namespace kar

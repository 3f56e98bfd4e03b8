#pragma once

#include "GMKFormat.h"
#include "KARIGMKObject.h"
#include "KARMathPoint.h"
#include "KARMathStream.h"
#include "KARSurface.h"

#include <unordered_map>
#include <vector>

namespace kar {

/// Writes the records of stored objects.
class GMKWriter
{
public:
    using Indices = std::unordered_map<const KARIGMKObject*, std::uint32_t>;

    GMKWriter(KARMathStream& stream, const Indices& indices) : m_stream(stream), m_indices(indices)
    {}

    void Kind(StoredKind kind) { m_stream.WriteByte(static_cast<std::uint8_t>(kind)); }
    void Flag(bool value) { m_stream.WriteByte(value ? 1 : 0); }
    void Integer(int value) { m_stream.WriteInt32(value); }
    void Count(std::size_t count) { m_stream.WriteUInt32(static_cast<std::uint32_t>(count)); }
    void Real(double value) { m_stream.WriteDouble(value); }
    void Reals(const std::vector<double>& values);
    void Vector(const KARMathVector& v);
    void Point(const KARMathPoint& p) { Vector(p - KARMathPoint()); }
    void Points(const std::vector<KARMathPoint>& points);
    void Limits(const KARSurLimits& limits);
    /// The index of an object that was written before; any other makes the writing fail.
    void Reference(const KARIGMKObject* object);
    bool Failed() const { return m_failed; }

private:
    KARMathStream& m_stream;
    const Indices& m_indices;
    bool m_failed = false;
};

} // namespace kar

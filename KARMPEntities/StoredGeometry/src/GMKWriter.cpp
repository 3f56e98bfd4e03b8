#include "GMKWriter.h"

namespace kar {

void GMKWriter::Reference(const KARIGMKObject* object)
{
    const auto found = m_indices.find(object);
    if (found == m_indices.end()) {
        m_failed = true;
        return;
    }
    m_stream.WriteUInt32(found->second);
}

void GMKWriter::Reals(const std::vector<double>& values)
{
    Count(values.size());
    for (const double value : values)
        Real(value);
}

void GMKWriter::Vector(const KARMathVector& v)
{
    Real(v.GetX());
    Real(v.GetY());
    Real(v.GetZ());
}

void GMKWriter::Points(const std::vector<KARMathPoint>& points)
{
    Count(points.size());
    for (const KARMathPoint& point : points)
        Point(point);
}

void GMKWriter::Limits(const KARSurLimits& limits)
{
    Real(limits.uLow);
    Real(limits.uHigh);
    Real(limits.vLow);
    Real(limits.vHigh);
}

} // namespace kar

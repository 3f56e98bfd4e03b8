#include "GMKReader.h"

namespace kar {

namespace {

using RecordReader = KARIGMKObject* (*)(GMKReader&);

RecordReader ReaderOf(std::uint8_t kind)
{
    switch (static_cast<StoredKind>(kind)) {
    case StoredKind::LineCurve:
        return ReadLineCurve;
    case StoredKind::CircleArc:
        return ReadCircleArc;
    case StoredKind::EllipseArc:
        return ReadEllipseArc;
    case StoredKind::PolylineCurve:
        return ReadPolylineCurve;
    case StoredKind::NurbsCurve:
        return ReadNurbsCurve;
    case StoredKind::PlaneSurface:
        return ReadPlaneSurface;
    case StoredKind::CylinderSurface:
        return ReadCylinderSurface;
    case StoredKind::NurbsSurface:
        return ReadNurbsSurface;
    case StoredKind::LinearTransfoSurface:
        return ReadLinearTransfoSurface;
    case StoredKind::Body:
        return ReadBody;
    }
    return nullptr;
}

} // namespace

GMKReader::~GMKReader()
{
    for (KARIGMKObject* object : m_objects)
        object->Release();
}

void GMKReader::Object()
{
    std::uint8_t kind = 0;
    const RecordReader read = m_stream.ReadByte(kind) ? ReaderOf(kind) : nullptr;
    if (m_failed || read == nullptr) {
        Fail();
        return;
    }
    // The slot first: nothing may throw between the object's creation and its storing.
    m_objects.push_back(nullptr);
    KARIGMKObject* object = nullptr;
    try {
        object = read(*this);
    } catch (...) {
        m_objects.pop_back();
        throw;
    }
    if (object == nullptr) {
        m_objects.pop_back();
        Fail();
        return;
    }
    m_objects.back() = object;
}

bool GMKReader::Flag()
{
    std::uint8_t value = 0;
    if (!m_stream.ReadByte(value) || value > 1)
        Fail();
    return value == 1;
}

int GMKReader::Integer()
{
    std::int32_t value = 0;
    if (!m_stream.ReadInt32(value))
        Fail();
    return value;
}

std::size_t GMKReader::Count(std::size_t bytesPerItem)
{
    std::uint32_t count = 0;
    if (!m_stream.ReadUInt32(count) || count > m_stream.GetRemaining() / bytesPerItem) {
        Fail();
        return 0;
    }
    return count;
}

double GMKReader::Real()
{
    double value = 0.0;
    if (!m_stream.ReadDouble(value))
        Fail();
    return value;
}

std::vector<double> GMKReader::Reals()
{
    std::vector<double> values(Count(sizeof(double)));
    for (double& value : values)
        value = Real();
    return values;
}

KARMathVector GMKReader::Vector()
{
    const double x = Real();
    const double y = Real();
    const double z = Real();
    return {x, y, z};
}

std::vector<KARMathPoint> GMKReader::Points()
{
    std::vector<KARMathPoint> points(Count(3 * sizeof(double)));
    for (KARMathPoint& point : points)
        point = Point();
    return points;
}

KARSurLimits GMKReader::Limits()
{
    KARSurLimits limits;
    limits.uLow = Real();
    limits.uHigh = Real();
    limits.vLow = Real();
    limits.vHigh = Real();
    return limits;
}

KARIGMKObject* GMKReader::AnyReference()
{
    std::uint32_t index = 0;
    if (!m_stream.ReadUInt32(index) || index >= m_objects.size()) {
        Fail();
        return nullptr;
    }
    return m_objects[index];
}

} // namespace kar

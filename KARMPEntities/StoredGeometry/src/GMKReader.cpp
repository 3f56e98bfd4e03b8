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
    const RecordReader read = ReaderOf(Byte());
    if (Failed() || read == nullptr) {
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
    const std::uint32_t index = Index();
    if (Failed() || index >= m_objects.size()) {
        Fail();
        return nullptr;
    }
    return m_objects[index];
}

} // namespace kar

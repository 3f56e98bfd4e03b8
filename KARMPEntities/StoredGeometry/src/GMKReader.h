#pragma once

#include "GMKFormat.h"
#include "KARIGMKObject.h"
#include "KARStoredBlock.h"
#include "KARSurface.h"

#include <vector>

namespace kar {

/// Reads the records of stored objects.
class GMKReader : public BlockReader
{
public:
    using BlockReader::BlockReader;
    ~GMKReader();
    GMKReader(const GMKReader&) = delete;
    GMKReader& operator=(const GMKReader&) = delete;

    /// Reads an object's record and keeps the object for later references.
    void Object();
    /// The objects so far; the reader holds one reference on each until it goes.
    const std::vector<KARIGMKObject*>& Objects() const { return m_objects; }
    /// Gives up the references: they are the caller's now.
    void Detach() { m_objects.clear(); }
    /// Reserves capacity for a number of objects.
    void Reserve(std::size_t count) { m_objects.reserve(count); }

    KARSurLimits Limits();
    /// An earlier object; one of another class is a failure.
    template <typename T>
    T* Reference()
    {
        T* object = KARSysDynamicCast<T>(AnyReference());
        if (object == nullptr)
            Fail();
        return object;
    }

private:
    KARIGMKObject* AnyReference();

    std::vector<KARIGMKObject*> m_objects;
};

/// Readers of the records, each behind its kind; null when the values are refused.
KARIGMKObject* ReadLineCurve(GMKReader& reader);
KARIGMKObject* ReadCircleArc(GMKReader& reader);
KARIGMKObject* ReadEllipseArc(GMKReader& reader);
KARIGMKObject* ReadPolylineCurve(GMKReader& reader);
KARIGMKObject* ReadNurbsCurve(GMKReader& reader);
KARIGMKObject* ReadPlaneSurface(GMKReader& reader);
KARIGMKObject* ReadCylinderSurface(GMKReader& reader);
KARIGMKObject* ReadNurbsSurface(GMKReader& reader);
KARIGMKObject* ReadLinearTransfoSurface(GMKReader& reader);
KARIGMKObject* ReadBody(GMKReader& reader);

} // namespace kar

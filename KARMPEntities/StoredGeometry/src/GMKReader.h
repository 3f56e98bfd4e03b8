#pragma once

#include "GMKFormat.h"
#include "KARIGMKObject.h"
#include "KARMathPoint.h"
#include "KARMathStream.h"
#include "KARSurface.h"

#include <vector>

namespace kar {

/// Reads the records of stored objects. The first value that cannot be read makes the whole reading
/// fail; from then on everything reads as 0.
class GMKReader
{
public:
    explicit GMKReader(KARMathStream& stream) : m_stream(stream) {}
    ~GMKReader();
    GMKReader(const GMKReader&) = delete;
    GMKReader& operator=(const GMKReader&) = delete;

    bool Failed() const { return m_failed; }
    /// Reads an object's record and keeps the object for later references.
    void Object();
    /// The objects so far; the reader holds one reference on each until it goes.
    const std::vector<KARIGMKObject*>& Objects() const { return m_objects; }
    /// Gives up the references: they are the caller's now.
    void Detach() { m_objects.clear(); }
    /// Reserves capacity for a number of objects.
    void Reserve(std::size_t count) { m_objects.reserve(count); }

    bool Flag();
    int Integer();
    /// A number of items of at least that many bytes each; more than remain are a failure, so that
    /// a count never decides an allocation.
    std::size_t Count(std::size_t bytesPerItem);
    double Real();
    std::vector<double> Reals();
    KARMathVector Vector();
    KARMathPoint Point() { return KARMathPoint() + Vector(); }
    std::vector<KARMathPoint> Points();
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
    void Fail() { m_failed = true; }

private:
    KARIGMKObject* AnyReference();

    KARMathStream& m_stream;
    std::vector<KARIGMKObject*> m_objects;
    bool m_failed = false;
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

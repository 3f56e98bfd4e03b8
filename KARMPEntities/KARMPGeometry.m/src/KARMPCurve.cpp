#include "KARMPCurve.h"

#include "KARIMPGeometryLoaderServices.h"
#include "KARMPCurveSegmentElement.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ENTITY(KARMPCurve, "E9D814A4-0098-4f95-BDFF-08FB071103C6");

// Described only: the segments are objects of the stored geometry, which the reader makes, and a
// curve without any fails.
template <>
struct karmp::ContentOf<KARMPCurve>
{
    using C = KARMPCurve;
    static constexpr auto List =
        Element(L"Curve", "A free curve of one or more segments.", LenientFrame,
                DescribedCurveSegments<&C::GetCurveCount, &C::GetCurve>().Required());
};
KARMP_DESCRIBE_CONTENT(KARMPCurve);

KARMPCurve::KARMPCurve() = default;
KARMPCurve::KARMPCurve(const KARMPCurve& source, CopyMode mode)
    : Super(source, mode),
      m_segments(source.m_segments),
      m_hasCurveLimits(source.m_hasCurveLimits),
      m_curveLimitsFlag(source.m_curveLimitsFlag),
      m_lowLimit(source.m_lowLimit),
      m_highLimit(source.m_highLimit)
{}
KARMPCurve::~KARMPCurve() = default;

int KARMPCurve::IsThreadSafe() const
{
    return GetCurveCount() < 1 ? 1 : 0;
}

KARStatus KARMPCurve::DeleteCurveLimitsAtEnd(bool deletes)
{
    m_segments.FreeLimitsAtEnd(deletes);
    return KARSuccess;
}

KARStatus KARMPCurve::GetCurveTangent(double parameter, double* const tangent) const
{
    const QOBSharedHandle<KARMPCurve> self(const_cast<KARMPCurve*>(this));
    auto* const services = KARIMPGeometryLoaderServices::GetKARIMPGeometryLoaderServices();
    if (services == nullptr)
        return KARFailure;
    const KARStatus status = services->GetCurveTangent(self, parameter, tangent);
    services->Release();
    return status;
}

KARStatus KARMPCurve::GetCurveLimits(double& low, double& high, bool& flag) const
{
    if (!m_hasCurveLimits)
        return KARUnchanged;
    low = m_lowLimit;
    high = m_highLimit;
    flag = m_curveLimitsFlag;
    return KARSuccess;
}

KARStatus KARMPCurve::SetCurveLimits(double low, double high, bool flag)
{
    m_lowLimit = low;
    m_highLimit = high;
    m_curveLimitsFlag = flag;
    m_hasCurveLimits = true;
    return KARSuccess;
}

KARStatus KARMPCurve::Serialize(KARMPSerializer* serializer) const
{
    karmp::ElementWriter element(serializer, L"Curve");
    if (!element || !element.Base(Super::Serialize(element.Node())))
        return KARFailure;
    const int count = GetCurveCount();
    if (count < 1)
        return KARFailure;
    karmp::ElementWriter segments = element.Child(L"CurveSegments");
    karmp::WriteCurveSegments(segments, count, [this](int index, karmp::CurveSegment& segment) {
        return GetCurve(index, segment.curve, segment.orientation, segment.limits);
    });
    return KARSuccess;
}

KARStatus KARMPCurve::Deserialize(const KARMPDeserializer* deserializer,
                                  const KARMPEntityTable& entities)
{
    karmp::ElementReader element(deserializer, L"Curve");
    if (!element || !element.Base(Super::Deserialize(element.Node(), entities)))
        return KARFailure;
    const auto segments = element.Child(L"CurveSegments", karmp::Absent::ReportAndFail);
    if (!segments)
        return KARFailure;
    karmp::ReadCurveSegments(segments, [this](KARBaseUnknown* curve,
                                              KARMPCurveOrientation::Enum orientation,
                                              std::unique_ptr<KARCrvLimits> limits) {
        const KARStatus status = AddCurve(curve, orientation, limits.get());
        if (!KARFailed(status))
            static_cast<void>(limits.release()); // the curve keeps them
        return status;
    });
    return KARSuccess;
}

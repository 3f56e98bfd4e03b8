#include "KARMPSketchFunction.h"

#include "KARCrvLimits.h"
#include "KARIGMKObject.h"
#include "KARIMPSketchFunctionLoader.h"
#include "KARMPContentWalk.h"
#include "KARMPCurveSegmentElement.h"
#include "KARMPFrames.h"
#include "KARMPLoaderAccess.h"

KARMP_DEFINE_ENTITY(KARMPSketchFunction, "2B3A44A0-6084-4DC4-8D9F-4CA518183014");

namespace {

// The two elements "Direction" of the axis differ by these names alone: x, y, z for the direction
// in the first one, those of a normal in the second one.
constexpr std::wstring_view Direction = L"Direction";
constexpr karmp::Names<3> AxisDirectionNames{L"x", L"y", L"z"};

} // namespace

// Described only: the axis is set as a whole, and curves and their limits are objects that the
// reader makes.
template <>
struct karmp::ContentOf<KARMPSketchFunction>
{
    using C = KARMPSketchFunction;
    static constexpr auto List =
        Element(L"SketchFunction", "A value that a chain of planar curves gives.", LenientFrame,
                Group(L"ReferenceAxis", "The axis over which the curves are given.",
                      NumbersElement<&C::m_referenceOrigin>(L"Origin", OriginNames,
                                                            "The origin of the axis.",
                                                            KARMPPhysicalQuantity::Length),
                      NumbersElement<&C::m_referenceDirection>(Direction, AxisDirectionNames,
                                                               "The direction of the axis."),
                      NumbersElement<&C::m_referenceNormal>(Direction, NormalNames,
                                                            "The normal of the curves' plane.")),
                DescribedCurveSegments<&C::GetCurveCount, &C::GetCurve>().Optional())
            .LeftOutWhen<&KARMPValue::IsLeftOut>();
};
KARMP_DESCRIBE_CONTENT(KARMPSketchFunction);

KARMPSketchFunction::KARMPSketchFunction() = default;
KARMPSketchFunction::KARMPSketchFunction(const KARMPSketchFunction& source, CopyMode mode)
    : Super(source, mode),
      m_referenceOrigin(source.m_referenceOrigin),
      m_referenceDirection(source.m_referenceDirection),
      m_referenceNormal(source.m_referenceNormal)
{}
KARMPSketchFunction::~KARMPSketchFunction() = default;

KARStatus KARMPSketchFunction::GetLoader(KARIMPSketchFunctionLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPSketchFunction::SetReferenceAxis(const KARMathPoint& origin,
                                                const KARMathVector& direction,
                                                const KARMathVector& normal)
{
    m_referenceOrigin = origin;
    m_referenceDirection = direction;
    m_referenceNormal = normal;
    return KARSuccess;
}

KARStatus KARMPSketchFunction::GetReferenceAxis(KARMathPoint& origin, KARMathVector& direction,
                                                KARMathVector& normal) const
{
    origin = m_referenceOrigin;
    direction = m_referenceDirection;
    normal = m_referenceNormal;
    return KARSuccess;
}

KARStatus KARMPSketchFunction::Serialize(KARMPSerializer* serializer) const
{
    if (IsLeftOut())
        return KARSuccess;
    karmp::ElementWriter element(serializer, L"SketchFunction");
    if (!element || !element.Base(Super::Serialize(element.Node())))
        return KARFailure;
    WriteReferenceAxis(element.Node());
    WriteCurves(element.Node());
    return KARSuccess;
}

void KARMPSketchFunction::WriteReferenceAxis(KARMPSerializer* sketchFunction) const
{
    KARMathPoint origin;
    KARMathVector direction;
    KARMathVector normal;
    GetReferenceAxis(origin, direction, normal);
    karmp::ElementWriter axis = karmp::ElementWriter(sketchFunction).Child(L"ReferenceAxis");
    axis.Child(L"Origin").Values(karmp::OriginNames, origin);
    axis.Child(Direction).Values(AxisDirectionNames, direction);
    axis.Child(Direction).Values(karmp::NormalNames, normal);
}

void KARMPSketchFunction::WriteCurves(KARMPSerializer* sketchFunction) const
{
    const int count = GetCurveCount();
    if (count < 1)
        return;
    karmp::ElementWriter segments = karmp::ElementWriter(sketchFunction).Child(L"CurveSegments");
    karmp::WriteCurveSegments(segments, count, [this](int index, karmp::CurveSegment& segment) {
        const KARStatus status =
            GetCurve(index, segment.curve, segment.orientation, segment.limits);
        return KARSysDynamicCast<KARIGMKObject>(segment.curve) != nullptr ? status : KARFailure;
    });
}

KARStatus KARMPSketchFunction::Deserialize(const KARMPDeserializer* deserializer,
                                           const KARMPEntityTable& entities)
{
    using karmp::Absent;
    if (IsLeftOut())
        return KARSuccess;
    karmp::ElementReader element(deserializer, L"SketchFunction");
    if (!element || !element.Base(Super::Deserialize(element.Node(), entities)))
        return KARFailure;
    if (const auto axis = element.Child(L"ReferenceAxis", Absent::ReportAndKeep))
        ReadReferenceAxis(axis.Node());
    if (element.Has(L"CurveSegments"))
        ReadCurves(element.Child(L"CurveSegments", Absent::ReportAndKeep));
    return KARSuccess;
}

void KARMPSketchFunction::ReadReferenceAxis(const KARMPDeserializer* referenceAxis)
{
    using karmp::Absent;
    karmp::ElementReader axis(referenceAxis);
    KARMathPoint origin;
    KARMathVector direction;
    KARMathVector normal;
    GetReferenceAxis(origin, direction, normal);
    axis.Child(L"Origin", Absent::ReportAndKeep)
        .Values(karmp::OriginNames, origin, Absent::ReportAndKeep);
    axis.Child(Direction, Absent::ReportAndKeep)
        .Values(AxisDirectionNames, direction, Absent::ReportAndKeep);
    axis.Child(Direction, Absent::ReportAndKeep)
        .Values(karmp::NormalNames, normal, Absent::ReportAndKeep);
    KARMPVerify(!KARFailed(SetReferenceAxis(origin, direction, normal)));
}

void KARMPSketchFunction::ReadCurves(const karmp::ElementReader& segments)
{
    karmp::ReadCurveSegments(
        segments,
        [this](KARBaseUnknown* curve, KARMPCurveOrientation::Enum orientation,
               std::unique_ptr<KARCrvLimits> limits) {
            // An AddCurve that keeps its own record of the limits may still use them after a
            // failure.
            m_ownLimits.push_back(std::move(limits));
            return AddCurve(curve, orientation, m_ownLimits.back().get());
        });
}

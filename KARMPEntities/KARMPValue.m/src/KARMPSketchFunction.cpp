#include "KARMPSketchFunction.h"

#include "KARCrvLimits.h"
#include "KARCurve.h"
#include "KARIMPSketchFunctionLoader.h"
#include "KARMPContentWalk.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPFrames.h"
#include "KARMPLoaderAccess.h"
#include "KARMPStoredObject.h"
#include "KARProcessServices.h"

KARMP_DEFINE_ENTITY(KARMPSketchFunction, "2B3A44A0-6084-4DC4-8D9F-4CA518183014");

namespace {

// The two elements "Direction" of the axis differ by these names alone: x, y, z for the direction
// in the first one, those of a normal in the second one.
constexpr std::wstring_view Direction = L"Direction";
constexpr karmp::Names<3> AxisDirectionNames{L"x", L"y", L"z"};

constexpr std::wstring_view CurveSegment = L"CurveSegment";
constexpr std::wstring_view CurveStream = L"CurveStream";
// Attributes of a segment.
constexpr std::wstring_view Orientation = L"curveOrientation";
constexpr std::wstring_view LowLimit = L"curveLowLimit";
constexpr std::wstring_view HighLimit = L"curveHighLimit";

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
                DescribedRecords(L"CurveSegments", CurveSegment,
                                 "The curves of the chain, in order.",
                                 Attribute(DescribedWord<KARMPCurveOrientation::Enum>(
                                     Orientation, "The sense in which the curve is traversed.")),
                                 Attribute(Described(ItemKind::Number, LowLimit,
                                                     "The curve's parameter at which it begins.")),
                                 Attribute(Described(ItemKind::Number, HighLimit,
                                                     "The curve's parameter at which it ends.")),
                                 Described(ItemKind::Stream, CurveStream, "The curve."))
                    .Optional())
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
KARMPSketchFunction::~KARMPSketchFunction()
{
    for (KARBaseUnknown* curve : m_curves)
        curve->Release();
}

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

KARStatus KARMPSketchFunction::AddCurve(KARBaseUnknown* curve,
                                        KARMPCurveOrientation::Enum orientation, void* limits)
{
    if (!KARMPVerify(curve != nullptr && limits != nullptr))
        return KARFailure;
    // Capacity first, so that the three lists grow together or not at all.
    const std::size_t count = m_curves.size() + 1;
    if (count > m_curves.capacity()) {
        m_curves.reserve(2 * count);
        m_orientations.reserve(2 * count);
        m_curveLimits.reserve(2 * count);
    }
    curve->AddRef();
    m_curves.push_back(curve);
    m_orientations.push_back(orientation);
    m_curveLimits.push_back(limits);
    return KARSuccess;
}

KARStatus KARMPSketchFunction::GetCurve(int index, KARBaseUnknown*& curve,
                                        KARMPCurveOrientation::Enum& orientation,
                                        void*& limits) const
{
    if (index < 0 || index >= static_cast<int>(m_curves.size())) {
        curve = nullptr;
        limits = nullptr;
        return KARFailure;
    }
    const auto position = static_cast<std::size_t>(index);
    curve = m_curves[position];
    orientation = m_orientations[position];
    limits = m_curveLimits[position];
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
    for (int i = 0; segments && i < count; ++i) {
        KARBaseUnknown* curve = nullptr;
        KARMPCurveOrientation::Enum orientation = {};
        void* limits = nullptr;
        if (!KARMPVerify(!KARFailed(GetCurve(i, curve, orientation, limits))) ||
            !KARMPVerify(KARSysDynamicCast<KARIGMKObject>(curve) != nullptr))
            continue;
        karmp::ElementWriter segment = segments.Child(CurveSegment);
        if (!segment)
            continue;
        double low = 0.0;
        double high = 0.0;
        static_cast<const KARCrvLimits*>(limits)->GetExtremities(low, high);
        segment.Attribute(Orientation, KARMPEnumText(orientation));
        segment.Attribute(LowLimit, low);
        segment.Attribute(HighLimit, high);
        // The variable ends the writing of all curves, not only of this one's stream.
        if (KARGetEnv("DONT_SERIALIZE_CURVE") != nullptr)
            return;
        karmp::WriteStoredObject(segment, CurveStream, curve);
    }
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
    if (element.Has(L"CurveSegments")) {
        element.Child(L"CurveSegments", Absent::ReportAndKeep)
            .Each(
                CurveSegment,
                [this](const karmp::ElementReader& segment) { ReadCurve(segment.Node()); });
    }
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

void KARMPSketchFunction::ReadCurve(const KARMPDeserializer* segmentNode)
{
    using karmp::Absent;
    karmp::ElementReader segment(segmentNode);
    std::wstring_view word;
    segment.Attribute(Orientation, word, Absent::ReportAndKeep);
    karmp::StoredObjects stored;
    if (!karmp::ReadStoredObjects(segment, CurveStream, stored))
        return;
    auto* curve = KARSysDynamicCast<KARCurve>(stored.objects[1]);
    if (!KARMPVerify(curve != nullptr))
        return;
    double low = 0.0;
    double high = 0.0;
    segment.Attribute(LowLimit, low, Absent::ReportAndKeep);
    segment.Attribute(HighLimit, high, Absent::ReportAndKeep);
    auto limits =
        std::make_unique<KARCrvLimits>(curve->CreateParam(low), curve->CreateParam(high), 1);
    // An AddCurve that keeps its own record of the limits may still use them after a failure.
    m_ownLimits.push_back(std::move(limits));
    KARMPVerify(!KARFailed(AddCurve(curve, KARMPEnumValue<KARMPCurveOrientation::Enum>(word),
                                    m_ownLimits.back().get())));
}

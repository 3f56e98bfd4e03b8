#include "KARMPCurveSegmentElement.h"

#include "KARCurve.h"
#include "KARMPStoredObject.h"
#include "KARProcessServices.h"

namespace karmp {

namespace {

constexpr std::wstring_view Segment = L"CurveSegment";
constexpr std::wstring_view Orientation = L"curveOrientation";
constexpr std::wstring_view LowLimit = L"curveLowLimit";
constexpr std::wstring_view HighLimit = L"curveHighLimit";
constexpr std::wstring_view CurveStream = L"CurveStream";

void ReadCurveSegment(ElementReader segment, const AddSegment& add, KARMPSourceLocation where)
{
    std::wstring_view word;
    segment.Attribute(Orientation, word, Absent::ReportAndKeep, where);
    StoredObjects stored;
    if (!ReadStoredObjects(segment, CurveStream, stored, where))
        return;
    auto* curve = KARSysDynamicCast<KARCurve>(stored.objects[1]);
    if (!KARMPVerify(curve != nullptr, where))
        return;
    double low = 0.0;
    double high = 0.0;
    segment.Attribute(LowLimit, low, Absent::ReportAndKeep, where);
    segment.Attribute(HighLimit, high, Absent::ReportAndKeep, where);
    auto limits =
        std::make_unique<KARCrvLimits>(curve->CreateParam(low), curve->CreateParam(high), 1);
    ElementReader::Set(
        add(curve, KARMPEnumValue<KARMPCurveOrientation::Enum>(word), std::move(limits)), where);
}

} // namespace

KARStatus FillRecord(const CurveSegment& segment, CurveSegmentRecord& record)
{
    if (segment.curve == nullptr || segment.limits == nullptr)
        return KARFailure;
    record.orientation = segment.orientation;
    static_cast<const KARCrvLimits*>(segment.limits)->GetExtremities(record.low, record.high);
    return SaveStoredObject(segment.curve, record.stream) ? KARSuccess : KARFailure;
}

void WriteCurveSegments(ElementWriter& chain, int count, const FetchSegment& fetch,
                        KARMPSourceLocation where)
{
    for (int index = 0; chain && index < count; ++index) {
        CurveSegment curve;
        if (!KARMPVerify(!KARFailed(fetch(index, curve)) && curve.curve != nullptr &&
                             curve.limits != nullptr,
                         where))
            continue;
        ElementWriter segment = chain.Child(Segment, where);
        if (!segment)
            continue;
        double low = 0.0;
        double high = 0.0;
        static_cast<const KARCrvLimits*>(curve.limits)->GetExtremities(low, high);
        segment.Attribute(Orientation, KARMPEnumText(curve.orientation), where);
        segment.Attribute(LowLimit, low, where);
        segment.Attribute(HighLimit, high, where);
        // The variable ends the writing of all segments, not only of this one's stream.
        if (KARGetEnv("DONT_SERIALIZE_CURVE") != nullptr)
            return;
        WriteStoredObject(segment, CurveStream, curve.curve, where);
    }
}

void ReadCurveSegments(const ElementReader& chain, const AddSegment& add, KARMPSourceLocation where)
{
    chain.Each(
        Segment, [&](const ElementReader& segment) { ReadCurveSegment(segment, add, where); });
}

} // namespace karmp

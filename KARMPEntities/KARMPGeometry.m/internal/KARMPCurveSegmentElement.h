// The pieces of a chain of curves in the element tree: "CurveSegments" with an element for each,
// which holds orientation, limits and the stored curve.
#pragma once

#include "KARCrvLimits.h"
#include "KARMPContentWalk.h"
#include "KARMPCurveSegments.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPStreamElement.h"

#include <functional>
#include <memory>

namespace karmp {

/// A segment by its values.
struct CurveSegmentRecord
{
    KARMPCurveOrientation::Enum orientation = {};
    double low = 0.0;
    double high = 0.0;
    StreamBytes stream;
};
/// Gives the values of a segment; a failure without curve or limits, and for a curve that cannot be
/// saved.
KARStatus FillRecord(const CurveSegment& segment, CurveSegmentRecord& record);

/// Describes the element of a chain, which the class's code writes and reads by the functions
/// below. `CountOf` is the operation that counts the segments, `GetAt` the one that gives one.
template <auto CountOf, auto GetAt>
constexpr auto DescribedCurveSegments(Where where = Where::current())
{
    using C = typename TraitsOf<CountOf>::Class;
    using R = CurveSegmentRecord;
    auto list = DescribedRecords(
        L"CurveSegments", L"CurveSegment", "The curves of the chain, in order.",
        Attribute(Word<&R::orientation>(L"curveOrientation",
                                        "The sense in which the curve is traversed.", where))
            .Coded(),
        Attribute(Number<&R::low>(L"curveLowLimit", "The curve's parameter at which it begins.",
                                  KARMPPhysicalQuantity::NoPhysicalQuantity, where))
            .Coded(),
        Attribute(Number<&R::high>(L"curveHighLimit", "The curve's parameter at which it ends.",
                                   KARMPPhysicalQuantity::NoPhysicalQuantity, where))
            .Coded(),
        Stream<&R::stream>(L"CurveStream", "The curve.", where).Coded());
    Item& item = list.First();
    item.count = [](const void* owner) { return std::invoke(CountOf, OwnerAs<C>(owner)); };
    item.at = [](const void* owner, int index, ItemValue& value) {
        CurveSegment segment;
        const KARStatus status = std::invoke(GetAt, OwnerAs<C>(owner), index, segment.curve,
                                             segment.orientation, segment.limits);
        value.record = value.made;
        return KARFailed(status) ? status : FillRecord(segment, *static_cast<R*>(value.made));
    };
    item.makeRecord = &MakeRecord<R>;
    return list.FixedBecause(
        "Pieces are added by AddCurve, whose caller keeps the limits of the curve.");
}

/// Gives the segment at an index from 0; a failure is reported, and the segment left out.
using FetchSegment = std::function<KARStatus(int index, CurveSegment& segment)>;
/// Writes a number of segments into a chain's element. All failures are reported, a null curve and
/// null limits among them. With the environment variable "DONT_SERIALIZE_CURVE" set the writing
/// ends at the first segment, which has no stream.
void WriteCurveSegments(ElementWriter& chain, int count, const FetchSegment& fetch,
                        KARMPSourceLocation where = KARMPSourceLocation::current());

/// Takes a segment that was read. A failure is reported.
using AddSegment =
    std::function<KARStatus(KARBaseUnknown* curve, KARMPCurveOrientation::Enum orientation,
                            std::unique_ptr<KARCrvLimits> limits)>;
/// Reads the segments of a chain's element. A segment whose curve cannot be loaded is reported and
/// left out; a missing orientation reads as the positive one and missing limits as 0, with a
/// report. `add` takes a reference on a curve that is to stay.
void ReadCurveSegments(const ElementReader& chain, const AddSegment& add,
                       KARMPSourceLocation where = KARMPSourceLocation::current());

} // namespace karmp

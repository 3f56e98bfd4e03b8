// The pieces of a chain of curves in the element tree: "CurveSegments" with an element for each,
// which holds orientation, limits and the stored curve.
#pragma once

#include "KARCrvLimits.h"
#include "KARMPContentWalk.h"
#include "KARMPCurveSegments.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"

#include <functional>
#include <memory>

namespace karmp {

/// Describes the element of a chain, which the class's code writes and reads by the functions
/// below. `CountOf` is the operation that counts the segments.
template <auto CountOf>
constexpr auto DescribedCurveSegments(Where where = Where::current())
{
    auto list = DescribedRecords(
        L"CurveSegments", L"CurveSegment", "The curves of the chain, in order.",
        Attribute(DescribedWord<KARMPCurveOrientation::Enum>(
            L"curveOrientation", "The sense in which the curve is traversed.", where)),
        Attribute(Described(ItemKind::Number, L"curveLowLimit",
                            "The curve's parameter at which it begins.", where)),
        Attribute(Described(ItemKind::Number, L"curveHighLimit",
                            "The curve's parameter at which it ends.", where)),
        Described(ItemKind::Stream, L"CurveStream", "The curve.", where));
    list.First().count = [](const void* owner) {
        return std::invoke(CountOf, OwnerAs<typename TraitsOf<CountOf>::Class>(owner));
    };
    return list;
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

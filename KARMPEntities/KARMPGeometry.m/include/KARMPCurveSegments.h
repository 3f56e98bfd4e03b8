#pragma once

#include "KARMPEnumerations.h"
#include "KARMPExport.h"
#include "KARMPFailedCheck.h"
#include "KARStatus.h"

#include <vector>

class KARBaseUnknown;

namespace karmp {

/// A piece of a chain of curves.
struct CurveSegment
{
    KARBaseUnknown* curve = nullptr;
    KARMPCurveOrientation::Enum orientation = {};
    /// A KARCrvLimits: the part of the curve that is used.
    void* limits = nullptr;
};

/// The pieces of a chain of curves, in order. The list holds a reference on each curve; the limits
/// stay the caller's unless told otherwise.
class KARMP_API CurveSegments
{
public:
    CurveSegments() = default;
    /// Takes a further reference on each curve, and copies of the limits, which this list frees.
    CurveSegments(const CurveSegments& source);
    CurveSegments& operator=(const CurveSegments&) = delete;
    ~CurveSegments();

    /// Appends a piece. A null curve or null limits are a failed check and a failure.
    KARStatus Add(KARBaseUnknown* curve, KARMPCurveOrientation::Enum orientation, void* limits,
                  KARMPSourceLocation where = KARMPSourceLocation::current());
    /// Gives the piece at an index from 0, without a reference for the caller. Outside the list
    /// null curve and limits and a failure; the orientation stays.
    KARStatus Get(int index, KARBaseUnknown*& curve, KARMPCurveOrientation::Enum& orientation,
                  void*& limits) const;
    int Count() const { return static_cast<int>(m_segments.size()); }
    /// Whether the list frees the limits, whose memory must come from malloc, at its end.
    void FreeLimitsAtEnd(bool frees) { m_freesLimits = frees; }

private:
    std::vector<CurveSegment> m_segments;
    bool m_freesLimits = false;
};

} // namespace karmp

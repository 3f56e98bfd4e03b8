#include "KARMPCurveSegments.h"

#include "KARBaseUnknown.h"
#include "KARCrvLimits.h"

#include <cstdlib>

namespace karmp {

// The other constructor has ended by then, so the destructor frees what was copied before an
// allocation failed.
CurveSegments::CurveSegments(const CurveSegments& source) : CurveSegments()
{
    m_freesLimits = true;
    m_segments.reserve(source.m_segments.size());
    for (CurveSegment segment : source.m_segments) {
        segment.limits = new KARCrvLimits(*static_cast<const KARCrvLimits*>(segment.limits));
        segment.curve->AddRef();
        m_segments.push_back(segment);
    }
}

CurveSegments::~CurveSegments()
{
    for (const CurveSegment& segment : m_segments) {
        segment.curve->Release();
        if (m_freesLimits)
            std::free(segment.limits);
    }
}

KARStatus CurveSegments::Add(KARBaseUnknown* curve, KARMPCurveOrientation::Enum orientation,
                             void* limits, KARMPSourceLocation where)
{
    if (!KARMPVerify(curve != nullptr && limits != nullptr, where))
        return KARFailure;
    m_segments.push_back({curve, orientation, limits});
    curve->AddRef();
    return KARSuccess;
}

KARStatus CurveSegments::Get(int index, KARBaseUnknown*& curve,
                             KARMPCurveOrientation::Enum& orientation, void*& limits) const
{
    if (index < 0 || index >= Count()) {
        curve = nullptr;
        limits = nullptr;
        return KARFailure;
    }
    const CurveSegment& segment = m_segments[static_cast<std::size_t>(index)];
    curve = segment.curve;
    orientation = segment.orientation;
    limits = segment.limits;
    return KARSuccess;
}

} // namespace karmp

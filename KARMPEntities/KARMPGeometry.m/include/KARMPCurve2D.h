#pragma once

#include "KARMPCurveSegments.h"
#include "KARMPGeometry2D.h"

/// A free curve of a plane: a chain of curves of the stored geometry, which a solver evaluates. The
/// segments are not written to documents.
class KARMP_API KARMPCurve2D : public KARMPGeometry2D
{
    KARMP_ENTITY(KARMPCurve2D, KARMPGeometry2D)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// 1 while there are no segments, else 0.
    int IsThreadSafe() const override;

    /// Appends a segment: a stored curve, on which a reference is taken, and its limits, a
    /// KARCrvLimits. A null curve or null limits are a failed check and a failure.
    virtual KARStatus AddCurve(KARBaseUnknown* curve, KARMPCurveOrientation::Enum orientation,
                               void* limits)
    {
        return m_segments.Add(curve, orientation, limits);
    }
    /// Gives a segment at an index from 0, without a reference for the caller. Outside the list
    /// null curve and limits and a failure; the orientation stays.
    virtual KARStatus GetCurve(int index, KARBaseUnknown*& curve,
                               KARMPCurveOrientation::Enum& orientation, void*& limits) const
    {
        return m_segments.Get(index, curve, orientation, limits);
    }
    /// Number of segments.
    virtual int GetCurveCount() const { return m_segments.Count(); }

protected:
    KARMPCurve2D();
    /// A copy has the segments with copies of their limits, which it frees.
    KARMPCurve2D(const KARMPCurve2D& source, CopyMode mode);
    ~KARMPCurve2D() override;

private:
    karmp::CurveSegments m_segments;
};

#pragma once

#include "KARMPCurveSegments.h"
#include "KARMPGeometry.h"

/// A free curve: a chain of curves of the stored geometry, which a solver evaluates. It is written
/// with their streams.
class KARMP_API KARMPCurve : public KARMPGeometry
{
    KARMP_ENTITY(KARMPCurve, KARMPGeometry)

public:
    /// Writes the curve. One without segments writes its base alone and gives a failure without a
    /// report. With the environment variable "DONT_SERIALIZE_CURVE" set the writing ends at the
    /// first segment, which has no stream.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the curve and adds its segments. One that cannot be read is a failed check and left
    /// out. Limits that are made here are freed only by one who asks DeleteCurveLimitsAtEnd for it.
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
    /// Tells whether the curve frees the limits of its segments, whose memory comes from malloc, at
    /// its end; a new one does not. Always 0.
    virtual KARStatus DeleteCurveLimitsAtEnd(bool deletes);
    /// Gives the tangent at a parameter of the whole curve as three numbers, by the solver's
    /// KARIMPGeometryLoaderServices and with their status; a failure without any.
    virtual KARStatus GetCurveTangent(double parameter, double* const tangent) const;
    /// Gives the parameters at which the whole curve begins and ends and the flag that they were
    /// set with; 1, and nothing is given, when none were set.
    virtual KARStatus GetCurveLimits(double& low, double& high, bool& flag) const;

protected:
    /// Stores the parameters at which the whole curve begins and ends, and a flag that means
    /// something to those who set it; always 0. They are in no document.
    virtual KARStatus SetCurveLimits(double low, double high, bool flag);

    KARMPCurve();
    /// A copy has the segments with copies of their limits, which it frees, and the limits of the
    /// whole curve.
    KARMPCurve(const KARMPCurve& source, CopyMode mode);
    ~KARMPCurve() override;

private:
    karmp::CurveSegments m_segments;
    bool m_hasCurveLimits = false;
    bool m_curveLimitsFlag = false;
    double m_lowLimit = 0.0;
    double m_highLimit = 0.0;
};

#pragma once

#include "KARMPCurveSegments.h"
#include "KARMPValue.h"
#include "KARMathPoint.h"
#include "KARMathVector.h"

#include <memory>
#include <vector>

class KARCrvLimits;
class KARIMPSketchFunctionLoader;

namespace karmp {

class ElementReader;

} // namespace karmp

/// A value that a chain of planar curves gives over a reference axis; a solver computes it.
class KARMP_API KARMPSketchFunction : public KARMPValue
{
    KARMP_ENTITY(KARMPSketchFunction, KARMPValue)

public:
    using Super::GetLoader;

    /// Writes the function. With the environment variable "DONT_SERIALIZE_CURVE" set the writing
    /// ends at the first segment, which has no stream.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the function. A segment that cannot be read is a failed check and is left out; the
    /// limits of those that can are the function's.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Gives the loader as a sketch function's; 0 with null when there is none of that kind.
    virtual KARStatus GetLoader(KARIMPSketchFunctionLoader*& loader) const;
    /// Stores the origin, direction and normal of the reference axis, in the units of the model and
    /// as they are given; always 0.
    virtual KARStatus SetReferenceAxis(const KARMathPoint& origin, const KARMathVector& direction,
                                       const KARMathVector& normal);
    /// Gives the origin, direction and normal of the reference axis; always 0.
    virtual KARStatus GetReferenceAxis(KARMathPoint& origin, KARMathVector& direction,
                                       KARMathVector& normal) const;
    /// Appends a curve, on which a reference is taken, and its limits, a KARCrvLimits that stays
    /// the caller's. A null curve or null limits are a failed check and a failure.
    virtual KARStatus AddCurve(KARBaseUnknown* curve, KARMPCurveOrientation::Enum orientation,
                               void* limits)
    {
        return m_segments.Add(curve, orientation, limits);
    }
    /// Gives a curve at an index from 0, without a reference for the caller. Outside the list
    /// null curve and limits and a failure; the orientation stays.
    virtual KARStatus GetCurve(int index, KARBaseUnknown*& curve,
                               KARMPCurveOrientation::Enum& orientation, void*& limits) const
    {
        return m_segments.Get(index, curve, orientation, limits);
    }
    /// Number of curves.
    virtual int GetCurveCount() const { return m_segments.Count(); }

protected:
    KARMPSketchFunction();
    /// A copy takes the reference axis; it has no curves.
    KARMPSketchFunction(const KARMPSketchFunction& source, CopyMode mode);
    ~KARMPSketchFunction() override;

private:
    void WriteReferenceAxis(KARMPSerializer* sketchFunction) const;
    void WriteCurves(KARMPSerializer* sketchFunction) const;
    void ReadReferenceAxis(const KARMPDeserializer* referenceAxis);
    void ReadCurves(const karmp::ElementReader& segments);

    karmp::CurveSegments m_segments;
    KARMathPoint m_referenceOrigin;
    KARMathVector m_referenceDirection;
    KARMathVector m_referenceNormal;
    std::vector<std::unique_ptr<KARCrvLimits>> m_ownLimits; // those made in reading
};

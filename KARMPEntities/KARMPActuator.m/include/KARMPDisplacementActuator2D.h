#pragma once

#include "KARMPActuator.h"
#include "KARMathLine2D.h"
#include "KARMathTransformation2D.h"

class KARIMPDisplacementActuator2DLoader;

/// Moves a body in a plane by a transformation, or drags it along a line. Both are stored and told
/// to the loader, which moves the body; neither changes the other.
class KARMP_API KARMPDisplacementActuator2D : public KARMPActuator
{
    KARMP_ENTITY(KARMPDisplacementActuator2D, KARMPActuator)

public:
    using Super::GetLoader;

    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads displacement and drag line through their setters, so that a loader is told of them.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Gives the loader as a planar displacement actuator's; 0 with null when there is none of that
    /// kind.
    virtual KARStatus GetLoader(KARIMPDisplacementActuator2DLoader*& loader) const;

    /// Stores the transformation, in the axes of the plane, and tells the loader, whose answer is
    /// the result: 0 without one. A loader that cannot be fetched is a failed check and a failure.
    KARStatus SetDisplacement(const KARMathTransformation2D& displacement);
    /// The same for the drag line.
    KARStatus SetDisplacementByDragLine(const KARMathLine2D& line);
    /// Give what is stored; always 0.
    KARStatus GetDisplacement(KARMathTransformation2D& displacement) const;
    KARStatus GetDisplacementByDragLine(KARMathLine2D& line) const;
    /// Asks the loader what became of the last move: its status, 0 with 0 without a loader. A
    /// loader that cannot be fetched is a failed check and a failure.
    KARStatus GetMoveStatus(KARMPMoveStatus::Enum& status) const;

protected:
    KARMPDisplacementActuator2D();
    /// A copy has displacement and drag line.
    KARMPDisplacementActuator2D(const KARMPDisplacementActuator2D& source, CopyMode mode);
    ~KARMPDisplacementActuator2D() override;

private:
    KARMathTransformation2D m_displacement;
    KARMathLine2D m_dragLine;
};

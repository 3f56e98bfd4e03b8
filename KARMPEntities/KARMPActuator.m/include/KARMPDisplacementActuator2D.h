#pragma once

#include "KARMPActuator.h"
#include "KARMathLine2D.h"
#include "KARMathTransformation2D.h"

class KARIMPDisplacementActuator2DLoader;
class KARMPBody2D;
class KARMPGeometry2D;

/// Moves a body in a plane by a transformation, or drags it along a line.
///
/// Both are stored and told to the loader, which moves the body; neither changes the other. Null
/// handles are a failed check and a failure, and what is linked stays.
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

    /// Stores the body that is moved.
    KARStatus SetBody(const QOBSharedHandle<KARMPBody2D>& body) { return m_body.Set(body); }
    /// Gives the body. Without one a null handle, a failed check and a failure.
    KARStatus GetBody(QOBSharedHandle<KARMPBody2D>& body) const { return m_body.Require(body); }
    /// Stores the geometry at which the move is taken, whatever body it lies on.
    KARStatus SetGeometry(const QOBSharedHandle<KARMPGeometry2D>& geometry)
    {
        return m_geometry.Set(geometry);
    }
    /// Gives the geometry; without one 1, and the handle stays.
    KARStatus GetGeometry(QOBSharedHandle<KARMPGeometry2D>& geometry) const
    {
        return m_geometry.GetIfSet(geometry);
    }

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
    /// A copy has displacement and drag line, and neither body nor geometry.
    KARMPDisplacementActuator2D(const KARMPDisplacementActuator2D& source, CopyMode mode);
    ~KARMPDisplacementActuator2D() override;

private:
    KARMPLink<KARMPBody2D> m_body;
    KARMPLink<KARMPGeometry2D> m_geometry;
    KARMathTransformation2D m_displacement;
    KARMathLine2D m_dragLine;
};

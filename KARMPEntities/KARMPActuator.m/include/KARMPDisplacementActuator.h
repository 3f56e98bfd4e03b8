#pragma once

#include "KARMPActuator.h"
#include "KARMathLine.h"
#include "KARMathTransformation.h"

class KARIMPDisplacementActuatorLoader;
class KARMPBody;
class KARMPGeometry;

/// Moves a body by a transformation, or drags it along a line.
///
/// Both are stored and told to the loader, which moves the body; neither changes the other. Null
/// handles are a failed check and a failure, and what is linked stays.
class KARMP_API KARMPDisplacementActuator : public KARMPActuator
{
    KARMP_ENTITY(KARMPDisplacementActuator, KARMPActuator)

public:
    using Super::GetLoader;

    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads displacement and drag line through their setters, so that a loader is told of them.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Gives the loader as a displacement actuator's; 0 with null when there is none of that kind.
    virtual KARStatus GetLoader(KARIMPDisplacementActuatorLoader*& loader) const;

    /// Stores the body that is moved.
    KARStatus SetBody(const QOBSharedHandle<KARMPBody>& body) { return m_body.Set(body); }
    /// Gives the body. Without one a null handle, a failed check and a failure.
    KARStatus GetBody(QOBSharedHandle<KARMPBody>& body) const { return m_body.Require(body); }
    /// Stores the geometry at which the move is taken, whatever body it lies on.
    KARStatus SetGeometry(const QOBSharedHandle<KARMPGeometry>& geometry)
    {
        return m_geometry.Set(geometry);
    }
    /// Gives the geometry; without one 1, and the handle stays.
    KARStatus GetGeometry(QOBSharedHandle<KARMPGeometry>& geometry) const
    {
        return m_geometry.GetIfSet(geometry);
    }

    /// Stores the transformation, in world axes, and tells the loader, whose answer is the result:
    /// 0 without one. A loader that cannot be fetched is a failed check and a failure.
    KARStatus SetDisplacement(const KARMathTransformation& displacement);
    /// The same for the drag line.
    KARStatus SetDisplacementByDragLine(const KARMathLine& line);
    /// Give what is stored; always 0.
    KARStatus GetDisplacement(KARMathTransformation& displacement) const;
    KARStatus GetDisplacementByDragLine(KARMathLine& line) const;
    /// Asks the loader what became of the last move: its status, 0 with 0 without a loader. A
    /// loader that cannot be fetched is a failed check and a failure.
    KARStatus GetMoveStatus(KARMPMoveStatus::Enum& status) const;

protected:
    KARMPDisplacementActuator();
    /// A copy has displacement and drag line, and neither body nor geometry.
    KARMPDisplacementActuator(const KARMPDisplacementActuator& source, CopyMode mode);
    ~KARMPDisplacementActuator() override;

private:
    KARMPLink<KARMPBody> m_body;
    KARMPLink<KARMPGeometry> m_geometry;
    KARMathTransformation m_displacement;
    KARMathLine m_dragLine;
};

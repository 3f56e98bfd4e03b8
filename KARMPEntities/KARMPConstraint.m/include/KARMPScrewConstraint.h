#pragma once

#include "KARMPKinematicConstraint.h"

/// A turning about an axis coupled with a sliding along it, with the friction of a screw in its
/// nut.
class KARMP_API KARMPScrewConstraint : public KARMPKinematicConstraint
{
    KARMP_ENTITY(KARMPScrewConstraint, KARMPKinematicConstraint)

public:
    /// Writes "ScrewConstraint" with the base's content, the friction parameters while friction is
    /// enabled, and the motion. Failures are reported and give KARUnexpected, except that 0 comes
    /// back when the element itself could not be added.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the same. Friction parameters enable friction, and one that is missing keeps its
    /// value; what is missing of the motion is reported and gives KARUnexpected.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    std::wstring_view getClassSerializeID_() const override;

    /// Stores the parameters of the friction model, without a check and without enabling friction;
    /// always 0.
    KARStatus SetFrictionParameters(double staticFriction, double staticSpeedLimit,
                                    double dynamicFriction, double dynamicSpeedLimit,
                                    double referenceLength, double referenceDiameter);
    /// Always 0.
    KARStatus GetFrictionParameters(double& staticFriction, double& staticSpeedLimit,
                                    double& dynamicFriction, double& dynamicSpeedLimit,
                                    double& referenceLength, double& referenceDiameter) const;

    /// Stores the tangent of the helix; always 0, as all that follows.
    KARStatus SetTangent(double tangent);
    KARStatus GetTangent(double& tangent) const;
    /// Stores the angle at which the turning starts.
    KARStatus SetRotationOffset(double offset);
    KARStatus GetRotationOffset(double& offset) const;
    /// Stores the length at which the sliding starts.
    KARStatus SetTranslationOffset(double offset);
    KARStatus GetTranslationOffset(double& offset) const;
    /// Stores the state of the motion, free text of the solver.
    KARStatus SetMotionState(const KARString& state);
    /// The state of the motion, empty at first.
    KARString GetMotionState() const { return m_motionState; }

protected:
    KARMPScrewConstraint();
    KARMPScrewConstraint(const KARMPScrewConstraint& source, CopyMode mode);
    ~KARMPScrewConstraint() override;

private:
    std::array<double, 6> m_friction{}; // in the order of SetFrictionParameters
    KARString m_motionState;
    double m_tangent = 0.0;
    double m_rotationOffset = 0.0;
    double m_translationOffset = 0.0;
};

#pragma once

#include "KARMPInteraction.h"

#include <array>

class KARMPBody;

/// The parameters of contacts between two collidables, mostly bodies.
///
/// All numbers are 0 at first and stored as given, without a check; their setters and getters
/// return 0.
class KARMP_API KARMPCollisionRule : public KARMPInteraction
{
    KARMP_ENTITY(KARMPCollisionRule, KARMPInteraction)

public:
    /// Writes "CollisionRule" with the parameters behind the base's content, all but the depth
    /// tolerance. A null serializer, an element that cannot be added and a failing base are a
    /// failed check and a failure.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the same; a parameter that is missing is a failed check and stays.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// The depth of penetration over which damping grows to its full value.
    virtual KARStatus GetDampingTransitionDepth(double& depth) const;
    /// A friction coefficient, and the sliding speed that it belongs to.
    virtual KARStatus SetFrictionParameters(double coefficient, double velocity);
    virtual KARStatus GetFrictionParameters(double& coefficient, double& velocity) const;

    /// Replaces the first collidable by a body, or appends the body when there is none. The result
    /// of a replacement has a reversed sense: a replacement that works is a failed check and a
    /// failure, any other 0. A null handle is a failed check and a failure, and nothing changes.
    KARStatus SetFirstBody(const QOBSharedHandle<KARMPBody>& body);
    /// The same for the second collidable; with fewer than two the body is appended.
    KARStatus SetSecondBody(const QOBSharedHandle<KARMPBody>& body);
    /// Gives the first collidable; without one a null handle, a failed check and a failure. Throws
    /// QOBEInvalidCast when it is no body.
    KARStatus GetFirstBody(QOBSharedHandle<KARMPBody>& body) const;
    /// The same for the second collidable.
    KARStatus GetSecondBody(QOBSharedHandle<KARMPBody>& body) const;
    /// Takes a body out of the collidables. A null handle is a failed check and a failure; a body
    /// that is not among them gives 1.
    KARStatus RemoveBody(const QOBSharedHandle<KARMPBody>& body);

    /// Coefficients of restitution and of dynamic and static friction.
    KARStatus SetRestitutionCoefficient(double coefficient);
    KARStatus GetRestitutionCoefficient(double& coefficient) const;
    KARStatus SetDynamicFrictionCoefficient(double coefficient);
    KARStatus GetDynamicFrictionCoefficient(double& coefficient) const;
    KARStatus SetStaticFrictionCoefficient(double coefficient);
    KARStatus GetStaticFrictionCoefficient(double& coefficient) const;
    /// The elastic layer of the first collidable.
    KARStatus SetFirstCollidableParameters(double youngModulus, double poissonCoefficient,
                                           double elasticLayerThickness);
    KARStatus GetFirstCollidableParameters(double& youngModulus, double& poissonCoefficient,
                                           double& elasticLayerThickness) const;
    /// The elastic layer of the second collidable.
    KARStatus SetSecondCollidableParameters(double youngModulus, double poissonCoefficient,
                                            double elasticLayerThickness);
    KARStatus GetSecondCollidableParameters(double& youngModulus, double& poissonCoefficient,
                                            double& elasticLayerThickness) const;
    KARStatus SetDampingCoefficient(double coefficient);
    KARStatus GetDampingCoefficient(double& coefficient) const;
    /// Lets damping grow with the depth of penetration, or be the same at any depth when 0. Any
    /// other value than 0 is written as 1.
    KARStatus EnableDampingTransition(unsigned char enabled);
    /// The value that was stored, 1 or 0 after reading; 0 at first.
    unsigned char IsDampingTransitionEnabled() const { return m_dampingTransitionEnabled; }
    KARStatus SetDampingTransitionDepth(double depth);
    /// The largest depth of penetration that a solver tolerates; documents do not hold it.
    KARStatus SetMaxDepthTol(double depth);
    KARStatus GetMaxDepthTol(double& depth) const;

protected:
    KARMPCollisionRule();
    /// A copy has all parameters.
    KARMPCollisionRule(const KARMPCollisionRule& source, CopyMode mode);
    ~KARMPCollisionRule() override;

private:
    KARStatus SetBody(int index, const QOBSharedHandle<KARMPBody>& body);
    KARStatus GetBody(int index, QOBSharedHandle<KARMPBody>& body) const;

    double m_restitution = 0.0;
    double m_dynamicFriction = 0.0;
    double m_staticFriction = 0.0;
    // Young's modulus, Poisson coefficient and thickness of the elastic layers.
    std::array<double, 3> m_firstLayer{};
    std::array<double, 3> m_secondLayer{};
    double m_damping = 0.0;
    unsigned char m_dampingTransitionEnabled = 0;
    double m_dampingTransitionDepth = 0.0;
    double m_frictionCoefficient = 0.0;
    double m_frictionVelocity = 0.0;
    double m_maxDepthTolerance = 0.0;
};

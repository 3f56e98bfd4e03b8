#include "KARMPCollisionRule.h"

#include "KARMPBody.h"
#include "KARMPContactCoefficients.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

#include <tuple>

KARMP_DEFINE_ENTITY(KARMPCollisionRule, "6E398AB1-E0F7-45D1-8D34-6F3D5E07194D");

template <>
struct karmp::ContentOf<KARMPCollisionRule>
{
    using C = KARMPCollisionRule;
    static constexpr auto Length = KARMPPhysicalQuantity::Length;
    static constexpr auto Pressure = KARMPPhysicalQuantity::Pressure;

    static int IsTransitionEnabled(const C& rule)
    {
        return rule.m_dampingTransitionEnabled != 0 ? 1 : 0;
    }
    static void EnableTransition(C& rule, int enabled)
    {
        rule.m_dampingTransitionEnabled = enabled == 1 ? 1 : 0;
    }
    static constexpr auto List = Element(
        L"CollisionRule", "The parameters of contacts between two collidables.", LenientFrame,
        ContactCoefficients<&C::m_restitution, &C::m_dynamicFriction, &C::m_staticFriction>(),
        Number<At<&C::m_firstLayer, 0>>(L"YoungModulus1",
                                        "Young's modulus of the first collidable.", Pressure),
        Number<At<&C::m_firstLayer, 1>>(L"PoissonCoef1",
                                        "The Poisson coefficient of the first collidable."),
        Number<At<&C::m_firstLayer, 2>>(L"ElasticLayerThickness1",
                                        "How thick the first collidable's elastic layer is.",
                                        Length),
        Number<At<&C::m_secondLayer, 0>>(L"YoungModulus2",
                                         "Young's modulus of the second collidable.", Pressure),
        Number<At<&C::m_secondLayer, 1>>(L"PoissonCoef2",
                                         "The Poisson coefficient of the second collidable."),
        Number<At<&C::m_secondLayer, 2>>(L"ElasticLayerThickness2",
                                         "How thick the second collidable's elastic layer is.",
                                         Length),
        Number<&C::m_damping>(L"Damping", "The damping coefficient of a contact."),
        Integer<&IsTransitionEnabled>(L"EnableDampingTransition",
                                      "Whether damping grows with the depth of penetration: 1 when "
                                      "it does, any other number otherwise.")
            .Through<&EnableTransition>(),
        Number<&C::m_dampingTransitionDepth>(
            L"DampingTransitionDepth",
            "The depth of penetration over which damping grows to its full value.", Length),
        Number<&C::m_frictionCoefficient>(
            L"FrictionCoef", "The friction coefficient at the sliding speed of the next item."),
        Number<&C::m_frictionVelocity>(L"FrictionVelocity",
                                       "The sliding speed that the coefficient belongs to.",
                                       KARMPPhysicalQuantity::Velocity));
};
KARMP_DEFINE_CONTENT(KARMPCollisionRule);

KARMPCollisionRule::KARMPCollisionRule() = default;
KARMPCollisionRule::KARMPCollisionRule(const KARMPCollisionRule& source, CopyMode mode)
    : Super(source, mode),
      m_restitution(source.m_restitution),
      m_dynamicFriction(source.m_dynamicFriction),
      m_staticFriction(source.m_staticFriction),
      m_firstLayer(source.m_firstLayer),
      m_secondLayer(source.m_secondLayer),
      m_damping(source.m_damping),
      m_dampingTransitionEnabled(source.m_dampingTransitionEnabled),
      m_dampingTransitionDepth(source.m_dampingTransitionDepth),
      m_frictionCoefficient(source.m_frictionCoefficient),
      m_frictionVelocity(source.m_frictionVelocity),
      m_maxDepthTolerance(source.m_maxDepthTolerance)
{}
KARMPCollisionRule::~KARMPCollisionRule() = default;

KARStatus KARMPCollisionRule::SetBody(int index, const QOBSharedHandle<KARMPBody>& body)
{
    if (!KARMPVerify(static_cast<bool>(body)))
        return KARFailure;
    if (GetCollidableCount() <= index)
        return AddCollidable(body);
    // The reversed sense is required: callers are told of a failure when the body was replaced.
    return KARMPVerify(SetCollidable(index, body) != KARSuccess) ? KARSuccess : KARFailure;
}

KARStatus KARMPCollisionRule::GetBody(int index, QOBSharedHandle<KARMPBody>& body) const
{
    body = nullptr;
    QOBSharedHandle<KARMPEntity> collidable;
    if (!KARMPVerify(!KARFailed(GetCollidable(index, collidable))))
        return KARFailure;
    body = QOBSharedHandle<KARMPBody>(collidable);
    return KARSuccess;
}

KARStatus KARMPCollisionRule::SetFirstBody(const QOBSharedHandle<KARMPBody>& body)
{
    return SetBody(0, body);
}

KARStatus KARMPCollisionRule::SetSecondBody(const QOBSharedHandle<KARMPBody>& body)
{
    return SetBody(1, body);
}

KARStatus KARMPCollisionRule::GetFirstBody(QOBSharedHandle<KARMPBody>& body) const
{
    return GetBody(0, body);
}

KARStatus KARMPCollisionRule::GetSecondBody(QOBSharedHandle<KARMPBody>& body) const
{
    return GetBody(1, body);
}

KARStatus KARMPCollisionRule::RemoveBody(const QOBSharedHandle<KARMPBody>& body)
{
    return RemoveCollidable(body);
}

KARStatus KARMPCollisionRule::SetRestitutionCoefficient(double coefficient)
{
    m_restitution = coefficient;
    return KARSuccess;
}

KARStatus KARMPCollisionRule::GetRestitutionCoefficient(double& coefficient) const
{
    coefficient = m_restitution;
    return KARSuccess;
}

KARStatus KARMPCollisionRule::SetDynamicFrictionCoefficient(double coefficient)
{
    m_dynamicFriction = coefficient;
    return KARSuccess;
}

KARStatus KARMPCollisionRule::GetDynamicFrictionCoefficient(double& coefficient) const
{
    coefficient = m_dynamicFriction;
    return KARSuccess;
}

KARStatus KARMPCollisionRule::SetStaticFrictionCoefficient(double coefficient)
{
    m_staticFriction = coefficient;
    return KARSuccess;
}

KARStatus KARMPCollisionRule::GetStaticFrictionCoefficient(double& coefficient) const
{
    coefficient = m_staticFriction;
    return KARSuccess;
}

KARStatus KARMPCollisionRule::SetDampingCoefficient(double coefficient)
{
    m_damping = coefficient;
    return KARSuccess;
}

KARStatus KARMPCollisionRule::GetDampingCoefficient(double& coefficient) const
{
    coefficient = m_damping;
    return KARSuccess;
}

KARStatus KARMPCollisionRule::SetDampingTransitionDepth(double depth)
{
    m_dampingTransitionDepth = depth;
    return KARSuccess;
}

KARStatus KARMPCollisionRule::GetDampingTransitionDepth(double& depth) const
{
    depth = m_dampingTransitionDepth;
    return KARSuccess;
}

KARStatus KARMPCollisionRule::SetMaxDepthTol(double depth)
{
    m_maxDepthTolerance = depth;
    return KARSuccess;
}

KARStatus KARMPCollisionRule::GetMaxDepthTol(double& depth) const
{
    depth = m_maxDepthTolerance;
    return KARSuccess;
}

KARStatus KARMPCollisionRule::SetFirstCollidableParameters(double youngModulus,
                                                           double poissonCoefficient,
                                                           double elasticLayerThickness)
{
    m_firstLayer = {youngModulus, poissonCoefficient, elasticLayerThickness};
    return KARSuccess;
}

KARStatus KARMPCollisionRule::GetFirstCollidableParameters(double& youngModulus,
                                                           double& poissonCoefficient,
                                                           double& elasticLayerThickness) const
{
    std::tie(youngModulus, poissonCoefficient, elasticLayerThickness) =
        std::tuple_cat(m_firstLayer);
    return KARSuccess;
}

KARStatus KARMPCollisionRule::SetSecondCollidableParameters(double youngModulus,
                                                            double poissonCoefficient,
                                                            double elasticLayerThickness)
{
    m_secondLayer = {youngModulus, poissonCoefficient, elasticLayerThickness};
    return KARSuccess;
}

KARStatus KARMPCollisionRule::GetSecondCollidableParameters(double& youngModulus,
                                                            double& poissonCoefficient,
                                                            double& elasticLayerThickness) const
{
    std::tie(youngModulus, poissonCoefficient, elasticLayerThickness) =
        std::tuple_cat(m_secondLayer);
    return KARSuccess;
}

KARStatus KARMPCollisionRule::EnableDampingTransition(unsigned char enabled)
{
    m_dampingTransitionEnabled = enabled;
    return KARSuccess;
}

KARStatus KARMPCollisionRule::SetFrictionParameters(double coefficient, double velocity)
{
    m_frictionCoefficient = coefficient;
    m_frictionVelocity = velocity;
    return KARSuccess;
}

KARStatus KARMPCollisionRule::GetFrictionParameters(double& coefficient, double& velocity) const
{
    coefficient = m_frictionCoefficient;
    velocity = m_frictionVelocity;
    return KARSuccess;
}

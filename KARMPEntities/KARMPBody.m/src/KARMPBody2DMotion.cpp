#include "KARIMPBody2DLoader.h"
#include "KARMPBody2D.h"
#include "KARMPBodyMotion.h"
#include "KARMPBodyWalk.h"
#include "KARMPDisplacementSensor2D.h"
#include "KARMathLine2D.h"

bool KARMPBody2D::IsIdentity2D(const KARMathTransformation2D& transformation)
{
    double ratio = 0.0;
    return transformation.IsSimilitude() && transformation.IsScaling(ratio) && ratio == 1.0;
}

KARStatus KARMPBody2D::GetPosition(KARMathTransformation2D& position) const
{
    position = m_position;
    return KARSuccess;
}

KARStatus KARMPBody2D::SetPosition(const KARMathTransformation2D& position)
{
    KARMathTransformation2D move;
    if (!karmp::FindMove(m_position, position, move))
        return KARSuccess;
    m_position = position;
    return ApplyBody2DLoaderTransfo(move);
}

KARStatus KARMPBody2D::ApplyBody2DLoaderTransfo(const KARMathTransformation2D& move)
{
    return karmp::MoveByLoader<KARIMPBody2DLoader>(*this, move);
}

KARStatus KARMPBody2D::UpdatePosition(const KARMathTransformation2D& move, bool skipIdentity)
{
    if (skipIdentity && IsIdentity2D(move))
        return KARSuccess;
    MoveOneself(move);
    UpdateChildrenPosition();
    return KARSuccess;
}

void KARMPBody2D::MoveOneself(const KARMathTransformation2D& move)
{
    m_position = move * m_position;
    karmp::MoveSensor(m_displacementSensor, move);
    NotifyUpdate();
}

KARStatus KARMPBody2D::UpdateChildrenPosition()
{
    return karmp::BodyWalk<KARMPBody2D, KARMathTransformation2D>().Below(*this);
}

KARStatus KARMPBody2D::Get3DPosition(KARMathTransformation& position) const
{
    position = m_spatialPosition;
    return KARSuccess;
}

KARStatus KARMPBody2D::Set3DPosition(const KARMathTransformation& position)
{
    m_spatialPosition = position;
    return KARSuccess;
}

KARStatus KARMPBody2D::Update3DPosition(const KARMathTransformation& move, bool skipIdentity)
{
    if (skipIdentity && move.IsIdentity())
        return KARSuccess;
    m_spatialPosition = move * m_spatialPosition;
    NotifyUpdate();
    return KARSuccess;
}

KARStatus KARMPBody2D::Fix2D()
{
    return karmp::Hold<KARIMPBody2DLoader>(
        *this, m_fixed2D, true, [](auto& loader) { return loader.HoldBody2D(); });
}

KARStatus KARMPBody2D::Unfix2D()
{
    return karmp::Hold<KARIMPBody2DLoader>(
        *this, m_fixed2D, false, [](auto& loader) { return loader.ReleaseBody2D(); });
}

KARStatus KARMPBody2D::Fix3D()
{
    return karmp::Hold<KARIMPBody2DLoader>(
        *this, m_fixed3D, true, [](auto& loader) { return loader.HoldBody3D(); });
}

KARStatus KARMPBody2D::Unfix3D()
{
    return karmp::Hold<KARIMPBody2DLoader>(
        *this, m_fixed3D, false, [](auto& loader) { return loader.ReleaseBody3D(); });
}

KARStatus KARMPBody2D::SetVelocity(const KARMathVector2D& linear, double angular)
{
    m_linearVelocity = linear;
    m_angularVelocity = angular;
    KARIMPBody2DLoader* loader = nullptr;
    if (!KARMPVerify(!KARFailed(GetLoader(loader))))
        return KARFailure;
    m_velocitySet = true;
    return loader != nullptr ? loader->SetLoaderVelocity(linear, angular) : KARSuccess;
}

KARStatus KARMPBody2D::GetVelocity(KARMathVector2D& linear, double& angular) const
{
    if (!m_velocitySet)
        return KARFailure;
    linear = m_linearVelocity;
    angular = m_angularVelocity;
    return KARSuccess;
}

KARStatus KARMPBody2D::GetVelocity(KARMathVector2D& linear, double& angular, KARMathPoint2D& point)
{
    const KARStatus status = karmp::ReadByLoader<KARIMPBody2DLoader>(*this, [&](auto& loader) {
        return loader.ReadVelocity(m_linearVelocity, m_angularVelocity, point);
    });
    if (KARFailed(status))
        return status;
    linear = m_linearVelocity;
    angular = m_angularVelocity;
    return KARSuccess;
}

KARStatus KARMPBody2D::SetAcceleration(const KARMathVector2D& linear, double angular)
{
    m_linearAcceleration = linear;
    m_angularAcceleration = angular;
    return KARSuccess;
}

KARStatus KARMPBody2D::GetAcceleration(KARMathVector2D& linear, double& angular) const
{
    linear = m_linearAcceleration;
    angular = m_angularAcceleration;
    return KARSuccess;
}

KARStatus KARMPBody2D::GetAcceleration(KARMathVector2D& linear, double& angular,
                                       KARMathPoint2D& point)
{
    const KARStatus status = karmp::ReadByLoader<KARIMPBody2DLoader>(*this, [&](auto& loader) {
        return loader.ReadAcceleration(m_linearAcceleration, m_angularAcceleration, point);
    });
    return KARFailed(status) ? status : GetAcceleration(linear, angular);
}

KARStatus KARMPBody2D::GetVelocityAndAcceleration(
    KARMathVector2D& linearVelocity, double& angularVelocity, KARMathVector2D& linearAcceleration,
    double& angularAcceleration, KARMathPoint2D& point, unsigned char& hasAxis, KARMathLine2D& axis,
    PointWhereToComputeVelAndAcc where, const KARMathPoint2D* at,
    const QOBSharedHandle<KARMPBody2D>& reference, const KARMathAxis2D* frame)
{
    const KARStatus status = karmp::ReadByLoader<KARIMPBody2DLoader>(*this, [&](auto& loader) {
        return loader.ReadVelocityAndAcceleration(
            m_linearVelocity, m_angularVelocity, m_linearAcceleration, m_angularAcceleration, point,
            hasAxis, axis, where, at, reference, frame);
    });
    if (KARFailed(status))
        return status;
    linearVelocity = m_linearVelocity;
    angularVelocity = m_angularVelocity;
    return GetAcceleration(linearAcceleration, angularAcceleration);
}

KARStatus KARMPBody2D::GetVelocityAndAcceleration(
    KARMathVector2D& linearVelocity, double& angularVelocity, KARMathVector2D& linearAcceleration,
    double& angularAcceleration, KARMathPoint2D& point, PointWhereToComputeVelAndAcc where,
    const KARMathPoint2D* at, const QOBSharedHandle<KARMPBody2D>& reference,
    const KARMathAxis2D* frame)
{
    unsigned char hasAxis = 0;
    KARMathLine2D axis;
    return GetVelocityAndAcceleration(linearVelocity, angularVelocity, linearAcceleration,
                                      angularAcceleration, point, hasAxis, axis, where, at,
                                      reference, frame);
}

KARStatus KARMPBody2D::ActivateVelocityAndAccelerationComputationForKIN()
{
    return karmp::TellLoader<KARIMPBody2DLoader>(
        *this, [](auto& loader) { return loader.ActivateComputationForKIN(); });
}

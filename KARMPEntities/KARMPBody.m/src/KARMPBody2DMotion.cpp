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
    return karmp::SetVelocity<KARIMPBody2DLoader>(*this, m_motion, linear, angular);
}

KARStatus KARMPBody2D::GetVelocity(KARMathVector2D& linear, double& angular, KARMathPoint2D& point)
{
    return karmp::ReadVelocity<KARIMPBody2DLoader>(*this, m_motion, linear, angular, point);
}

KARStatus KARMPBody2D::GetAcceleration(KARMathVector2D& linear, double& angular,
                                       KARMathPoint2D& point)
{
    return karmp::ReadAcceleration<KARIMPBody2DLoader>(*this, m_motion, linear, angular, point);
}

KARStatus KARMPBody2D::GetVelocityAndAcceleration(
    KARMathVector2D& linearVelocity, double& angularVelocity, KARMathVector2D& linearAcceleration,
    double& angularAcceleration, KARMathPoint2D& point, unsigned char& hasAxis, KARMathLine2D& axis,
    PointWhereToComputeVelAndAcc where, const KARMathPoint2D* at,
    const QOBSharedHandle<KARMPBody2D>& reference, const KARMathAxis2D* frame)
{
    return karmp::ReadMotion<KARIMPBody2DLoader>(
        *this, KARMPSourceLocation::current(), m_motion, linearVelocity, angularVelocity,
        linearAcceleration, angularAcceleration, point, hasAxis, axis, where, at, reference, frame);
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

#include "KARMPBodyMotion.h"
#include "KARIMPBodyLoader.h"
#include "KARMPBody.h"
#include "KARMPBodyMove.h"
#include "KARMPDisplacementSensor.h"
#include "KARMathLine.h"
#include "KARProcessServices.h"
#include "QOBBasicBody3D.h"

#include <string_view>

KARStatus KARMPBody::GetPosition(KARMathTransformation& position) const
{
    if (m_wdmBody)
        m_wdmBody->GetPosition(position);
    else
        position = m_position;
    return KARSuccess;
}

KARStatus KARMPBody::SetPosition(const KARMathTransformation& position,
                                 unsigned char updateNeighbour)
{
    KARMathTransformation move;
    if (!karmp::FindMove(m_position, position, move))
        return KARSuccess;
    m_position = position;
    const KARStatus status = ApplyBodyLoaderTransfo(move);
    return updateNeighbour == 0 ? status : SetWDMBodyPosition(position);
}

KARStatus KARMPBody::SetWDMBodyPosition(const KARMathTransformation& position)
{
    if (m_wdmBody)
        KARMPVerify(!KARFailed(m_wdmBody->SetPosition(position)));
    return KARSuccess;
}

KARStatus KARMPBody::ApplyBodyLoaderTransfo(const KARMathTransformation& move)
{
    return karmp::MoveByLoader<KARIMPBodyLoader>(*this, move);
}

KARStatus KARMPBody::UpdatePosition(const KARMathTransformation& move, bool skipIdentity)
{
    if (skipIdentity && move.IsIdentity())
        return KARSuccess;
    MoveOneself(move);
    UpdateChildrenPosition(move);
    return KARSuccess;
}

void KARMPBody::MoveOneself(const KARMathTransformation& move)
{
    m_position = move * m_position;
    if (m_wdmBody)
        KARMPVerify(!KARFailed(m_wdmBody->SetPosition(m_position)));
    karmp::MoveSensor(m_displacementSensor, move);
    NotifyUpdate();
}

KARStatus KARMPBody::UpdateChildrenPosition(const KARMathTransformation& move)
{
    return karmp::BodyMove(move).Below(*this);
}

KARStatus KARMPBody::SetWDMBody(const QOBSharedHandle<QOBBasicBody3D>& neighbour)
{
    if (!neighbour)
        return KARSuccess;
    neighbour->GetPosition(m_position);
    m_wdmBody = neighbour;
    m_floating = neighbour->isFloating();
    m_initialFloating = m_floating;
    static const bool nameLeftOut = KARGetEnv("NO_MP_NAME_FOR_SERIALIZATION") != nullptr;
    if (!nameLeftOut)
        TakeNeighbourName();
    return KARSuccess;
}

void KARMPBody::TakeNeighbourName()
{
    // An external name opens with a prefix of this length.
    constexpr std::size_t PrefixLength = 18;
    std::wstring name = m_wdmBody->getEntityName(ExternalName, ExternalNameSeparator);
    name.erase(0, PrefixLength);
    for (const std::wstring_view tag : {L"---IN_WORK", L"--- IN_WORK"}) {
        const std::size_t position = name.find(tag);
        if (position != std::wstring::npos)
            name.erase(position, tag.size());
    }
    setEntityName(name);
}

KARStatus KARMPBody::SetFloating(bool floating)
{
    m_floating = floating;
    // This never moves the neighbour away from the status it came with.
    if (m_wdmBody)
        m_wdmBody->setFloating(m_initialFloating);
    return KARSuccess;
}

KARStatus KARMPBody::Restore_Initial_WDMBody_Floating_status()
{
    if (m_wdmBody)
        m_wdmBody->setFloating(m_initialFloating);
    m_floating = m_initialFloating;
    return KARSuccess;
}

KARStatus KARMPBody::Fix()
{
    return karmp::Hold<KARIMPBodyLoader>(
        *this, m_fixed, true, [](auto& loader) { return loader.HoldBody(); });
}

KARStatus KARMPBody::Unfix()
{
    return karmp::Hold<KARIMPBodyLoader>(
        *this, m_fixed, false, [](auto& loader) { return loader.ReleaseBody(); });
}

KARStatus KARMPBody::SetVelocity(const KARMathVector& linear, const KARMathVector& angular)
{
    return karmp::SetVelocity<KARIMPBodyLoader>(*this, m_motion, linear, angular);
}

KARStatus KARMPBody::GetVelocity(KARMathVector& linear, KARMathVector& angular, KARMathPoint& point)
{
    return karmp::ReadVelocity<KARIMPBodyLoader>(*this, m_motion, linear, angular, point);
}

KARStatus KARMPBody::GetAcceleration(KARMathVector& linear, KARMathVector& angular,
                                     KARMathPoint& point)
{
    return karmp::ReadAcceleration<KARIMPBodyLoader>(*this, m_motion, linear, angular, point);
}

KARStatus KARMPBody::GetVelocityAndAcceleration(
    KARMathVector& linearVelocity, KARMathVector& angularVelocity,
    KARMathVector& linearAcceleration, KARMathVector& angularAcceleration, KARMathPoint& point,
    unsigned char& hasAxis, KARMathLine& axis, PointWhereToComputeVelAndAcc where,
    const KARMathPoint* at, const QOBSharedHandle<KARMPBody>& reference, const KARMathAxis* frame)
{
    return karmp::ReadMotion<KARIMPBodyLoader>(
        *this, KARMPSourceLocation::current(), m_motion, linearVelocity, angularVelocity,
        linearAcceleration, angularAcceleration, point, hasAxis, axis, where, at, reference, frame);
}

KARStatus KARMPBody::GetVelocityAndAcceleration(
    KARMathVector& linearVelocity, KARMathVector& angularVelocity,
    KARMathVector& linearAcceleration, KARMathVector& angularAcceleration, KARMathPoint& point,
    PointWhereToComputeVelAndAcc where, const KARMathPoint* at,
    const QOBSharedHandle<KARMPBody>& reference, const KARMathAxis* frame)
{
    unsigned char hasAxis = 0;
    KARMathLine axis;
    return GetVelocityAndAcceleration(linearVelocity, angularVelocity, linearAcceleration,
                                      angularAcceleration, point, hasAxis, axis, where, at,
                                      reference, frame);
}

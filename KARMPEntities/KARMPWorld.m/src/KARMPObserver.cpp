#include "KARMPObserver.h"

#include "KARMPFailedCheck.h"
#include "KARMPWorld.h"
#include "KARMPWorldFamilies.h"

namespace {

const QOBUUID s_observerID("31B3C405-0400-48f4-93CF-F4D427B54123");

// The number of the event that an entity posts when it changed.
constexpr std::size_t UpdateEvent = 9;
// Subscriptions without a rank.
constexpr int NoRank = -1;

} // namespace

QOB_DEFINE_CLASS(KARMPObserver, QOBNotificationAgent);

const QOBUUID& KARMPObserver::ClassID()
{
    return s_observerID;
}

std::string KARMPObserver::ClassName()
{
    return ClassInfo().getName();
}

const QOBUUID& KARMPObserver::getClassID() const
{
    return ClassID();
}

QOBSharedHandle<KARMPObserver> KARMPObserver::create()
{
    return QOBSharedHandle<KARMPObserver>(new KARMPObserver);
}

KARMPObserver::KARMPObserver()
    : m_bodyFunctor(*this, &KARMPObserver::onBodyMoved),
      m_entityFunctor(*this, &KARMPObserver::onEntityModified)
{
    m_bodyEvents.set(UpdateEvent);
    m_entityEvents.set(UpdateEvent);
}

KARMPObserver::~KARMPObserver()
{
    UnsubscribeBodies();
    UnsubscribeEntities();
}

KARStatus KARMPObserver::Subscribe(const QOBSharedHandle<KARMPWorld>& world)
{
    // The argument may be the very handle that is emptied.
    const QOBSharedHandle<KARMPWorld> watched(world);
    Unsubscribe();
    if (!KARMPVerify(static_cast<bool>(watched)))
        return KARFailure;
    m_world = watched;
    karmp::Families::ForEach([this](auto family) {
        KARMPVerify(!KARFailed(SubscribeFamily<typename decltype(family)::Type>()));
    });
    return KARSuccess;
}

template <class T>
KARStatus KARMPObserver::SubscribeFamily()
{
    const QOBSharedHandle<KARMPWorld> world(m_world, QOBSharedBase::WriteLock);
    const QOBSharedHandle<KARMPObserver> self(this, QOBSharedBase::WriteLock);
    if (!KARMPVerify(world && self))
        return KARFailure;
    KARStatus result = KARSuccess;
    for (int i = 0; i < world->Count<T>(); ++i) {
        QOBSharedHandle<T> entity;
        if (!KARMPVerify(world->Get(i, entity) == KARSuccess))
            continue;
        const KARStatus status = Subscribe(entity);
        if (KARFailed(status))
            result = status;
    }
    return result;
}

KARStatus KARMPObserver::SubscribeBody(const QOBSharedHandle<KARMPBody>& body)
{
    const QOBSharedHandle<QOBNotificationAgent> agent(body, QOBSharedBase::WriteLock);
    if (!KARMPVerify(static_cast<bool>(agent)))
        return KARFailure;
    agent->addSubscriber(m_bodyFunctor, m_bodyEvents, NoRank);
    m_subscribedBodies.push_back(agent);
    return KARSuccess;
}

KARStatus KARMPObserver::SubscribeEntity(const QOBSharedHandle<KARMPEntity>& entity)
{
    const QOBSharedHandle<QOBNotificationAgent> agent(entity, QOBSharedBase::WriteLock);
    if (!KARMPVerify(static_cast<bool>(agent)))
        return KARFailure;
    agent->addSubscriber(m_entityFunctor, m_entityEvents, NoRank);
    m_subscribedEntities.push_back(agent);
    return KARSuccess;
}

void KARMPObserver::Unsubscribe()
{
    UnsubscribeBodies();
    UnsubscribeEntities();
    m_world.detach();
}

void KARMPObserver::UnsubscribeBodies()
{
    Unsubscribe(m_subscribedBodies, m_bodyFunctor);
}

void KARMPObserver::UnsubscribeEntities()
{
    Unsubscribe(m_subscribedEntities, m_entityFunctor);
}

void KARMPObserver::Unsubscribe(Agents& agents, const QOBNotificationFunctor& functor)
{
    for (const QOBSharedHandle<QOBNotificationAgent>& entry : agents) {
        const QOBSharedHandle<QOBNotificationAgent> agent(entry, QOBSharedBase::WriteLock);
        if (KARMPVerify(static_cast<bool>(agent)))
            agent->removeSubscriber(functor);
    }
    agents.clear();
}

void KARMPObserver::Reset()
{
    m_movedBodies[SinceReset].Clear();
    m_modifiedEntities[SinceReset].Clear();
}

std::uint64_t KARMPObserver::GetMovingBodyCount(SinceWhen since) const
{
    return static_cast<std::uint64_t>(m_movedBodies[since].Count());
}

std::uint64_t KARMPObserver::GetModifiedEntityCount(SinceWhen since) const
{
    return static_cast<std::uint64_t>(m_modifiedEntities[since].Count());
}

KARStatus KARMPObserver::GetMovingBody(int index, QOBSharedHandle<KARMPBody>& body,
                                       SinceWhen since) const
{
    const KARStatus status = m_movedBodies[since].Get(index, body);
    return KARMPVerify(!KARFailed(status)) ? KARSuccess : KARFailure;
}

KARStatus KARMPObserver::GetModifiedEntity(int index, QOBSharedHandle<KARMPEntity>& entity,
                                           SinceWhen since) const
{
    const KARStatus status = m_modifiedEntities[since].Get(index, entity);
    return KARMPVerify(!KARFailed(status)) ? KARSuccess : KARFailure;
}

void KARMPObserver::onBodyMoved(Sender agent, Events)
{
    if (!KARMPVerify(static_cast<bool>(agent)))
        return;
    if (!KARMPVerify(agent.isDerivedFrom(KARMPBody::ClassInfo())))
        return;
    const QOBSharedHandle<KARMPBody> body(agent);
    for (KARMPLinkList<KARMPBody>& moved : m_movedBodies)
        moved.Add(body);
}

// The class is not asked for first, as it is for a body: a sender that is no entity throws at the
// cast.
void KARMPObserver::onEntityModified(Sender agent, Events)
{
    if (!KARMPVerify(static_cast<bool>(agent)))
        return;
    const QOBSharedHandle<KARMPEntity> entity(agent);
    for (KARMPLinkList<KARMPEntity>& modified : m_modifiedEntities)
        modified.Add(entity);
}

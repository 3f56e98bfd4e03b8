#pragma once

#include "KARMPEntity.h"
#include "KARMPExport.h"
#include "KARMPLinkList.h"
#include "KARStatus.h"
#include "QOBNotificationAgent.h"

#include <array>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

class KARMPBody;
class KARMPWorld;

/// Watches a world: keeps which bodies moved and which other entities changed, since it began to
/// watch and since it was last reset.
class KARMP_API KARMPObserver : public QOBNotificationAgent
{
    QOB_CLASS(KARMPObserver)

public:
    /// The span of time that is asked about.
    enum SinceWhen : unsigned int {
        SinceSubscribe = 0, ///< All changes that were ever noticed.
        SinceReset = 1      ///< Those noticed since the last Reset.
    };

    /// The class's GUID.
    static const QOBUUID& ClassID();
    /// The class's name.
    static std::string ClassName();
    /// A new observer that watches nothing. It stops watching when it dies.
    static QOBSharedHandle<KARMPObserver> create();

    /// The identifier of the class of observers.
    const QOBUUID& getClassID() const override;

    /// Watches the entities that the world lists and stops watching all others. A null handle is a
    /// failed check and a failure, and then nothing is watched.
    KARStatus Subscribe(const QOBSharedHandle<KARMPWorld>& world);
    /// Watches one entity more: a body for its moves, anything else for its changes. An entity that
    /// is watched already is watched once more. A null handle is a failed check and a failure.
    template <class T>
    KARStatus Subscribe(QOBSharedHandle<T> entity)
    {
        if constexpr (std::is_same_v<T, KARMPBody>)
            return SubscribeBody(entity);
        else
            return SubscribeEntity(QOBSharedHandle<KARMPEntity>(entity));
    }
    /// Stops watching and lets the world go; the changes noticed so far stay.
    void Unsubscribe();
    /// Stops watching bodies.
    void UnsubscribeBodies();
    /// Stops watching other entities.
    void UnsubscribeEntities();
    /// Forgets the changes of SinceReset.
    void Reset();

    /// Number of bodies that moved, and of other entities that changed, in a span of time.
    std::uint64_t GetMovingBodyCount(SinceWhen since) const;
    std::uint64_t GetModifiedEntityCount(SinceWhen since) const;
    /// Gives one of them by index from 0, in the order of their first change. An index outside
    /// is a failed check and a failure, and the handle becomes null.
    KARStatus GetMovingBody(int index, QOBSharedHandle<KARMPBody>& body, SinceWhen since) const;
    KARStatus GetModifiedEntity(int index, QOBSharedHandle<KARMPEntity>& entity,
                                SinceWhen since) const;

protected:
    KARMPObserver();
    ~KARMPObserver() override;

private:
    using Agents = std::vector<QOBSharedHandle<QOBNotificationAgent>>;
    using Sender = QOBNotificationFunctor::Sender;

    KARStatus SubscribeBody(const QOBSharedHandle<KARMPBody>& body);
    KARStatus SubscribeEntity(const QOBSharedHandle<KARMPEntity>& entity);
    template <class T>
    KARStatus SubscribeFamily();
    static void Unsubscribe(Agents& agents, const QOBNotificationFunctor& functor);
    void onBodyMoved(Sender agent, Events events);
    void onEntityModified(Sender agent, Events events);

    QOBSharedHandle<KARMPWorld> m_world;
    std::array<KARMPLinkList<KARMPBody>, 2> m_movedBodies;
    Agents m_subscribedBodies;
    QOBNotificationFunctor m_bodyFunctor;
    Events m_bodyEvents;
    std::array<KARMPLinkList<KARMPEntity>, 2> m_modifiedEntities;
    Agents m_subscribedEntities;
    QOBNotificationFunctor m_entityFunctor;
    Events m_entityEvents;
};

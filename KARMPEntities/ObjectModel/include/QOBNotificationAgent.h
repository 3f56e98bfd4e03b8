#pragma once

#include "QOBSharedHandle.h"

#include <bitset>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

class QOBNotificationAgent;

/// What a subscriber wants to have called: a member of an agent, called while that agent lives.
/// Copies of a functor are one functor.
class KAR_API QOBNotificationFunctor
{
public:
    using Sender = QOBSharedConstPointer<QOBNotificationAgent>;
    using Events = std::bitset<64>;
    using Handler = std::function<void(Sender, Events)>;

    /// Calls nothing.
    QOBNotificationFunctor() = default;
    /// Calls the handler as long as the owner lives.
    QOBNotificationFunctor(QOBNotificationAgent& owner, Handler handler);
    /// Calls a member function of the owner as long as the owner lives.
    template <class Owner>
    QOBNotificationFunctor(Owner& owner, void (Owner::*member)(Sender, Events))
        : QOBNotificationFunctor(owner, Handler([&owner, member](Sender sender, Events events) {
                                     (owner.*member)(std::move(sender), events);
                                 }))
    {}

    /// False once the owner is gone, and for a functor that calls nothing.
    bool isAlive() const noexcept;
    /// Calls the handler; nothing when the functor is not alive.
    void operator()(const Sender& sender, Events events) const;

    friend bool operator==(const QOBNotificationFunctor& left,
                           const QOBNotificationFunctor& right) noexcept
    {
        return left.m_target == right.m_target;
    }

private:
    struct Target;
    std::shared_ptr<const Target> m_target;
};

/// A shared object that tells subscribers of numbered events.
class KAR_API QOBNotificationAgent : public QOBSharedObject
{
    QOB_CLASS(QOBNotificationAgent)

public:
    using Events = QOBNotificationFunctor::Events;

    /// Tells the subscribers whose mask holds the event's number, 0 to 63; other numbers are
    /// ignored. Subscribers that died are dropped. Subscribers may be added and removed meanwhile:
    /// an added one hears the next event, a removed one hears nothing more.
    void postEvent(std::uint64_t number) const;
    /// Subscribes a functor to the events of a mask, behind the present subscribers. The rank is
    /// kept for callers that order their subscribers; -1 means no rank.
    void addSubscriber(const QOBNotificationFunctor& functor, Events events, int rank = -1);
    /// Undoes one subscription of a functor; nothing when there is none.
    void removeSubscriber(const QOBNotificationFunctor& functor);
    /// Number of subscriptions whose owners live.
    std::size_t getSubscriberCount() const;

    /// Hook of a surrounding transaction; does nothing here.
    virtual void onNotificationTxn(TransactionTrigger trigger);
    /// Drops all subscribers.
    void orphanObject() override;

protected:
    /// An agent made with false never tells anybody.
    explicit QOBNotificationAgent(bool notifies = true) noexcept : m_notifies(notifies) {}
    /// A copy has no subscribers.
    QOBNotificationAgent(const QOBNotificationAgent& source) noexcept
        : QOBSharedObject(source), m_notifies(source.m_notifies)
    {}
    ~QOBNotificationAgent() override;

private:
    friend class QOBNotificationFunctor;
    struct Subscribers;
    struct KAR_API End
    {
        void operator()(Subscribers* subscribers) const noexcept;
    };

    Subscribers& subscribers() const;

    bool m_notifies; // first, so that it fits behind the base's last bytes
    // Made on first need: most agents are never watched, and postEvent then costs one test.
    mutable std::unique_ptr<Subscribers, End> m_subscribers;
};

#include "QOBNotificationAgent.h"

#include <algorithm>
#include <vector>

struct QOBNotificationAgent::Subscribers
{
    struct Subscription
    {
        QOBNotificationFunctor functor;
        Events events;
        int rank = -1;
        bool removed = false;
    };

    // Watched by functors, to learn that this agent is gone.
    std::shared_ptr<const bool> life = std::make_shared<const bool>(true);
    std::vector<Subscription> subscriptions;
    int posting = 0;

    // Counts the events that are being told; subscriptions stay in place until the last is done,
    // also when a handler throws.
    struct Posting
    {
        explicit Posting(Subscribers& all) : subscribers(all) { ++subscribers.posting; }
        Posting(const Posting&) = delete;
        Posting& operator=(const Posting&) = delete;
        ~Posting()
        {
            if (--subscribers.posting == 0)
                subscribers.dropRemoved();
        }

        Subscribers& subscribers;
    };

    void dropRemoved()
    {
        std::erase_if(
            subscriptions, [](const Subscription& s) { return s.removed; });
    }
};

struct QOBNotificationFunctor::Target
{
    std::weak_ptr<const bool> life;
    Handler handler;
};

QOBNotificationFunctor::QOBNotificationFunctor(QOBNotificationAgent& owner, Handler handler)
    : m_target(std::make_shared<const Target>(Target{owner.subscribers().life, std::move(handler)}))
{}

bool QOBNotificationFunctor::isAlive() const noexcept
{
    return m_target != nullptr && !m_target->life.expired();
}

void QOBNotificationFunctor::operator()(const Sender& sender, Events events) const
{
    if (!isAlive())
        return;
    // The handler may unsubscribe this very functor.
    const std::shared_ptr<const Target> target = m_target;
    target->handler(sender, events);
}

QOB_DEFINE_CLASS(QOBNotificationAgent, QOBSharedObject);

QOBNotificationAgent::~QOBNotificationAgent() = default;

void QOBNotificationAgent::End::operator()(Subscribers* subscribers) const noexcept
{
    delete subscribers;
}

QOBNotificationAgent::Subscribers& QOBNotificationAgent::subscribers() const
{
    if (m_subscribers == nullptr)
        m_subscribers.reset(new Subscribers);
    return *m_subscribers;
}

void QOBNotificationAgent::postEvent(std::uint64_t number) const
{
    if (m_subscribers == nullptr || !m_notifies || number >= Events().size())
        return;
    if (m_subscribers->subscriptions.empty())
        return;

    const QOBNotificationFunctor::Sender sender(this); // outlives the handlers
    Subscribers& subscribers = *m_subscribers;
    const auto bit = static_cast<std::size_t>(number);
    Events posted;
    posted.set(bit);

    const Subscribers::Posting scope(subscribers);
    const std::size_t count = subscribers.subscriptions.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (subscribers.subscriptions[i].removed || !subscribers.subscriptions[i].events[bit])
            continue;
        const QOBNotificationFunctor functor = subscribers.subscriptions[i].functor;
        if (functor.isAlive())
            functor(sender, posted);
        else
            subscribers.subscriptions[i].removed = true;
    }
}

void QOBNotificationAgent::addSubscriber(const QOBNotificationFunctor& functor, Events events,
                                         int rank)
{
    subscribers().subscriptions.push_back({functor, events, rank, false});
}

void QOBNotificationAgent::removeSubscriber(const QOBNotificationFunctor& functor)
{
    if (m_subscribers == nullptr)
        return;
    auto& subscriptions = m_subscribers->subscriptions;
    const auto found =
        std::find_if(subscriptions.begin(), subscriptions.end(),
                     [&functor](const auto& s) { return !s.removed && s.functor == functor; });
    if (found == subscriptions.end())
        return;
    if (m_subscribers->posting > 0)
        found->removed = true;
    else
        subscriptions.erase(found);
}

std::size_t QOBNotificationAgent::getSubscriberCount() const
{
    if (m_subscribers == nullptr)
        return 0;
    const auto& subscriptions = m_subscribers->subscriptions;
    return static_cast<std::size_t>(
        std::count_if(subscriptions.begin(), subscriptions.end(),
                      [](const auto& s) { return !s.removed && s.functor.isAlive(); }));
}

void QOBNotificationAgent::onNotificationTxn(TransactionTrigger) {}

void QOBNotificationAgent::orphanObject()
{
    if (m_subscribers != nullptr) {
        for (auto& subscription : m_subscribers->subscriptions)
            subscription.removed = true;
        if (m_subscribers->posting == 0)
            m_subscribers->dropRemoved();
    }
    QOBSharedObject::orphanObject();
}

#include "ObjectModelTestClasses.h"

#include <gtest/gtest.h>

namespace {

using Functor = QOBNotificationFunctor;

class Listener : public QOBNotificationAgent
{
public:
    void hear(Functor::Sender sender, Functor::Events events)
    {
        ++heard;
        lastSender = sender.get();
        lastEvents = events;
    }

    int heard = 0;
    const QOBNotificationAgent* lastSender = nullptr;
    Functor::Events lastEvents;
};

Functor::Events Mask(std::size_t bit)
{
    return Functor::Events().set(bit);
}

TEST(NotificationAgent, TellsSubscribersOfTheEventsInTheirMask)
{
    const auto item = MakeItem();
    const QOBSharedHandle<Listener> listener(new Listener);
    item->addSubscriber(Functor(*listener, &Listener::hear), Mask(9));
    item->postEvent(8);
    EXPECT_EQ(listener->heard, 0);
    item->postEvent(9);
    EXPECT_EQ(listener->heard, 1);
    EXPECT_EQ(listener->lastSender, item.get());
    EXPECT_EQ(listener->lastEvents, Mask(9));
    EXPECT_EQ(item->getReferenceCount(), 1U);
}

class Silent : public QOBNotificationAgent
{
public:
    Silent() : QOBNotificationAgent(false) {}
};

TEST(NotificationAgent, TellsNobodyWhenItWasMadeToBeSilent)
{
    const QOBSharedHandle<Silent> silent(new Silent);
    const QOBSharedHandle<Listener> listener(new Listener);
    silent->addSubscriber(Functor(*listener, &Listener::hear), Mask(9));
    silent->postEvent(9);
    EXPECT_EQ(listener->heard, 0);
}

TEST(NotificationAgent, IgnoresEventNumbersOutsideTheSet)
{
    const auto item = MakeItem();
    const QOBSharedHandle<Listener> listener(new Listener);
    item->addSubscriber(Functor(*listener, &Listener::hear), Functor::Events().set());
    item->postEvent(64);
    item->postEvent(~std::uint64_t{0});
    EXPECT_EQ(listener->heard, 0);
    item->postEvent(63);
    EXPECT_EQ(listener->heard, 1);
}

TEST(NotificationAgent, TellsAFunctorOnceForEachSubscription)
{
    const auto item = MakeItem();
    const QOBSharedHandle<Listener> listener(new Listener);
    const Functor functor(*listener, &Listener::hear);
    item->addSubscriber(functor, Mask(9));
    item->addSubscriber(functor, Mask(9), -1);
    item->postEvent(9);
    EXPECT_EQ(listener->heard, 2);
    item->removeSubscriber(functor);
    item->postEvent(9);
    EXPECT_EQ(listener->heard, 3);
    item->removeSubscriber(functor);
    item->removeSubscriber(functor);
    item->postEvent(9);
    EXPECT_EQ(listener->heard, 3);
    EXPECT_EQ(item->getSubscriberCount(), 0U);
}

TEST(NotificationAgent, NeverCallsASubscriberThatDied)
{
    const auto item = MakeItem();
    {
        const QOBSharedHandle<Listener> listener(new Listener);
        item->addSubscriber(Functor(*listener, &Listener::hear), Mask(9));
        EXPECT_EQ(item->getSubscriberCount(), 1U);
    }
    EXPECT_EQ(item->getSubscriberCount(), 0U);
    item->postEvent(9);
}

TEST(NotificationAgent, LetsHandlersSubscribeAndUnsubscribeMeanwhile)
{
    const auto item = MakeItem();
    const QOBSharedHandle<Listener> owner(new Listener);
    int first = 0;
    int later = 0;
    const Functor added(*owner, [&later](Functor::Sender, Functor::Events) { ++later; });
    Functor once;
    once = Functor(*owner, [&](Functor::Sender, Functor::Events) {
        ++first;
        item->removeSubscriber(once);
        item->addSubscriber(added, Mask(9));
    });
    item->addSubscriber(once, Mask(9));
    item->postEvent(9);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(later, 0);
    item->postEvent(9);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(later, 1);
}

TEST(NotificationAgent, DoesNotCallASubscriberThatAnEarlierOneRemoved)
{
    const auto item = MakeItem();
    const QOBSharedHandle<Listener> listener(new Listener);
    const Functor second(*listener, &Listener::hear);
    item->addSubscriber(
        Functor(*listener,
                [&](Functor::Sender, Functor::Events) { item->removeSubscriber(second); }),
        Mask(9));
    item->addSubscriber(second, Mask(9));
    item->postEvent(9);
    EXPECT_EQ(listener->heard, 0);
}

TEST(NotificationAgent, OutlivesAHandlerThatReleasesIt)
{
    const int before = Item::s_living;
    auto item = MakeItem();
    const QOBSharedHandle<Listener> listener(new Listener);
    item->addSubscriber(
        Functor(*listener, [&item](Functor::Sender, Functor::Events) { item.detach(); }), Mask(9));
    item.get()->postEvent(9);
    EXPECT_FALSE(item);
    EXPECT_EQ(Item::s_living, before);
}

TEST(NotificationAgent, ForgetsARemovedSubscriberAlsoAfterAHandlerThrew)
{
    const auto item = MakeItem();
    const QOBSharedHandle<Listener> listener(new Listener);
    auto content = std::make_shared<int>(0);
    const std::weak_ptr<int> held = content;
    Functor throws(*listener, [content = std::move(content)](auto, auto) { throw *content; });
    item->addSubscriber(throws, Mask(9));
    EXPECT_THROW(item->postEvent(9), int);
    item->removeSubscriber(throws);
    throws = Functor();
    EXPECT_TRUE(held.expired());
}

TEST(NotificationAgent, DropsItsSubscribersWhenOrphaned)
{
    const auto item = MakeItem();
    const QOBSharedHandle<Listener> listener(new Listener);
    item->addSubscriber(Functor(*listener, &Listener::hear), Mask(9));
    item->orphanObject();
    EXPECT_TRUE(item->isOrphaned());
    item->postEvent(9);
    EXPECT_EQ(listener->heard, 0);
}

TEST(NotificationFunctor, ThatCallsNothingIsNotAlive)
{
    const Functor functor;
    EXPECT_FALSE(functor.isAlive());
    functor(Functor::Sender(), Functor::Events());
}

} // namespace

#include "KARMutex.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

bool AnotherThreadGets(KARMutex& mutex)
{
    bool got = false;
    std::thread([&] {
        got = mutex.TryLock();
        mutex.Unlock();
    }).join();
    return got;
}

bool AnotherThreadGetsNumber(int number)
{
    bool got = false;
    std::thread([&] {
        KARSmartMutex mutex(number);
        got = mutex.TryLock();
    }).join();
    return got;
}

} // namespace

TEST(Mutex, KeepsThreadsApart)
{
    KARMutex mutex;
    int count = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 5000; ++round) {
                mutex.Lock();
                ++count;
                mutex.Unlock();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(count, 20000);
}

TEST(Mutex, EachLockNeedsItsUnlock)
{
    KARMutex mutex;
    mutex.Unlock();
    EXPECT_TRUE(AnotherThreadGets(mutex));
    mutex.Lock();
    EXPECT_TRUE(mutex.TryLock());
    mutex.Unlock();
    bool got = true;
    std::thread([&] { got = mutex.TryLock(); }).join();
    EXPECT_FALSE(got);
    mutex.Unlock();
    EXPECT_TRUE(AnotherThreadGets(mutex));
}

TEST(Mutex, SmartOnesOfOneNumberAreOneLock)
{
    {
        KARSmartMutex mutex(12);
        EXPECT_TRUE(AnotherThreadGetsNumber(12));
        mutex.Lock();
        mutex.Lock();
        EXPECT_FALSE(AnotherThreadGetsNumber(12));
        EXPECT_TRUE(AnotherThreadGetsNumber(13));
        KARSmartMutex same(12);
        same.Lock();
        mutex.Unlock();
        EXPECT_FALSE(AnotherThreadGetsNumber(12));
    }
    EXPECT_TRUE(AnotherThreadGetsNumber(12));
}

TEST(Mutex, ASmartOneGivesBackAllItHoldsAtItsEnd)
{
    {
        KARSmartMutex mutex(14);
        for (int i = 0; i < 3; ++i)
            mutex.Lock();
    }
    EXPECT_TRUE(AnotherThreadGetsNumber(14));
}

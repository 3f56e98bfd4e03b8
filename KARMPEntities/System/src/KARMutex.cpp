#include "KARMutex.h"

#include <map>
#include <utility>

namespace {

// Never destroyed: a fatal error during the process's exit still locks.
std::shared_ptr<std::recursive_mutex> SharedLock(int number)
{
    static auto& guard = *new std::mutex;
    static auto& locks = *new std::map<int, std::shared_ptr<std::recursive_mutex>>;
    const std::lock_guard<std::mutex> hold(guard);
    std::shared_ptr<std::recursive_mutex>& lock = locks[number];
    if (!lock)
        lock = std::make_shared<std::recursive_mutex>();
    return lock;
}

} // namespace

KARMutex::KARMutex() : KARMutex(std::make_shared<std::recursive_mutex>()) {}

KARMutex::KARMutex(std::shared_ptr<std::recursive_mutex> lock) : m_lock(std::move(lock)) {}

void KARMutex::Lock()
{
    m_lock->lock();
    ++m_held;
}

bool KARMutex::TryLock()
{
    if (!m_lock->try_lock())
        return false;
    ++m_held;
    return true;
}

void KARMutex::Unlock()
{
    if (m_held == 0)
        return;
    --m_held;
    m_lock->unlock();
}

KARSmartMutex::KARSmartMutex(int number) : KARMutex(SharedLock(number)) {}

KARSmartMutex::~KARSmartMutex()
{
    while (m_held > 0)
        Unlock();
}

// Locks between threads.
#pragma once

#include "KARPlatformExport.h"

#include <memory>
#include <mutex>

/// A lock that the thread holding it may take again; each Lock needs its Unlock.
class KAR_API KARMutex
{
public:
    /// Makes a lock of its own.
    KARMutex();
    KARMutex(const KARMutex&) = delete;
    KARMutex& operator=(const KARMutex&) = delete;

    /// Waits until no other thread holds the lock, and takes it.
    void Lock();
    /// Takes the lock if no other thread holds it, and tells whether it did.
    bool TryLock();
    /// Gives back one Lock made through this object by this thread. Without one it does nothing.
    void Unlock();

protected:
    /// Makes an object on a lock that others may share.
    explicit KARMutex(std::shared_ptr<std::recursive_mutex> lock);

    /// Locks made through this object and not given back; changed only while the lock is held.
    int m_held = 0;

private:
    std::shared_ptr<std::recursive_mutex> m_lock;
};

/// A lock known to the whole process by a number: all objects of one number share one lock, so
/// that objects local to a function keep threads apart. What is still held is given back at the
/// end of the object's life.
class KAR_API KARSmartMutex : public KARMutex
{
public:
    /// Makes an object on the process's lock of that number, without taking it.
    explicit KARSmartMutex(int number);
    ~KARSmartMutex();
};

// Roots of the object model: run-time identity, counted references, and the referent of handles.
#pragma once

#include "KARPlatformExport.h"
#include "KARReferenceCount.h"
#include "QOBClassInfo.h"
#include "QOBUUID.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

class QOBSharedObject;

/// Gives a class of the object model its record. QOB_DEFINE_CLASS stands in its source.
#define QOB_CLASS(Class)                                                                           \
public:                                                                                            \
    /** The class's record. */                                                                     \
    static const QOBClassInfo& ClassInfo();                                                        \
    std::string getClassName() const override;                                                     \
    const QOBClassInfo& getClassInfo() const override;                                             \
    bool isInstanceOf(const QOBClassInfo& info) const override;                                    \
    bool isDerivedFrom(const QOBClassInfo& info) const override;                                   \
                                                                                                   \
private:

#define QOB_DEFINE_CLASS(Class, Parent)                                                            \
    static const QOBClassInfo s_##Class##Info(typeid(Class*), sizeof(Class), nullptr,              \
                                              &Parent::ClassInfo(), nullptr);                      \
    const QOBClassInfo& Class::ClassInfo()                                                         \
    {                                                                                              \
        return s_##Class##Info;                                                                    \
    }                                                                                              \
    std::string Class::getClassName() const                                                        \
    {                                                                                              \
        return ClassInfo().getName();                                                              \
    }                                                                                              \
    const QOBClassInfo& Class::getClassInfo() const                                                \
    {                                                                                              \
        return ClassInfo();                                                                        \
    }                                                                                              \
    bool Class::isInstanceOf(const QOBClassInfo& info) const                                       \
    {                                                                                              \
        return ClassInfo().isInstanceOf(info);                                                     \
    }                                                                                              \
    bool Class::isDerivedFrom(const QOBClassInfo& info) const                                      \
    {                                                                                              \
        return ClassInfo().isDerivedFrom(info);                                                    \
    }                                                                                              \
    static_assert(true)

/// Root of run-time class identity and copying. All objects live on the heap.
class KAR_API QOBDynamicObject
{
public:
    /// Passed through to copy constructors; the object model gives its values no meaning.
    enum CopyMode : int { CopyDefault = 0, CopyShallow = 1, CopyDeep = 2 };

    static void* operator new(std::size_t size);
    static void operator delete(void* memory, std::size_t size) noexcept;
    static void operator delete[](void* memory, std::size_t size) noexcept;

    /// The record of this class.
    static const QOBClassInfo& ClassInfo();

    /// Plain name of the dynamic class.
    virtual std::string getClassName() const;
    /// Record of the dynamic class.
    virtual const QOBClassInfo& getClassInfo() const;
    /// True when the record is the dynamic class's own.
    virtual bool isInstanceOf(const QOBClassInfo& info) const;
    /// True when the record is the dynamic class's own or an ancestor's.
    virtual bool isDerivedFrom(const QOBClassInfo& info) const;
    /// Takes the object out of everything that it is linked to.
    virtual void orphanObject();
    /// A new default object of the dynamic class that carries one reference; null where none can be
    /// made.
    virtual QOBSharedObject* _replicateObject() const;
    /// A copy of this object that carries one reference; null where none can be made.
    virtual QOBSharedObject* _duplicateObject(CopyMode mode) const;

protected:
    QOBDynamicObject() = default;
    QOBDynamicObject(const QOBDynamicObject&) = default;
    QOBDynamicObject& operator=(const QOBDynamicObject&) = delete;
    virtual ~QOBDynamicObject();

public:
    /// As _replicateObject, for callers.
    virtual QOBSharedObject* replicateObject() const;
    /// As _duplicateObject, for callers.
    virtual QOBSharedObject* duplicateObject(CopyMode mode) const;
    /// GUID of the dynamic class; an empty text where a class has none.
    virtual const QOBUUID& getClassID() const;
};

/// An object that lives as long as somebody counts a reference on it.
class KAR_API QOBCountedObject : public QOBDynamicObject
{
    QOB_CLASS(QOBCountedObject)

public:
    /// Counts one reference more and returns the new count.
    unsigned int addReference() const noexcept;
    /// The same for an object that was just made, which no other thread knows of yet; not atomic.
    void addFirstReference() const noexcept;
    /// Counts one reference less and returns the new count; at 0 the object is gone.
    unsigned int removeReference() const noexcept;
    /// Present count, for tests and diagnostics.
    unsigned int getReferenceCount() const noexcept;

protected:
    QOBCountedObject() = default;
    /// A copy starts without references.
    QOBCountedObject(const QOBCountedObject& source) : QOBDynamicObject(source) {}
    ~QOBCountedObject() override;

private:
    friend class QOBExtendibleObject;
    friend class QOBExtensionObject;

    // An extension lives with its host: while it is counted at all it counts once on its host, and
    // the host deletes it. This bit of the count marks such an object.
    static constexpr std::uint32_t HostedBit = 0x80000000U;
    static constexpr std::uint32_t CountMask = 0x7FFFFFFFU;
    // Count of an object under destruction: handles that its destructor makes never bring it to 0.
    static constexpr std::uint32_t DyingCount = 0x20000000U;

    void firstReferenceOfHosted() const noexcept;
    void lastReferenceGone(std::uint32_t count) const noexcept;
    static void destroy(const QOBCountedObject* object) noexcept;

    mutable std::atomic<std::uint32_t> m_count{0};
};

/// The referent of handles.
class KAR_API QOBSharedObject : public QOBCountedObject
{
    QOB_CLASS(QOBSharedObject)

public:
    /// Argument of onNotificationTxn.
    enum TransactionTrigger : int { TransactionBegin = 0, TransactionCommit = 1 };

    /// True once the object's teardown has run.
    bool isOrphaned() const noexcept { return m_orphaned; }
    /// Marks the object as orphaned.
    void orphanObject() override;

protected:
    QOBSharedObject() = default;
    /// A copy is not orphaned.
    QOBSharedObject(const QOBSharedObject& source) : QOBCountedObject(source) {}
    ~QOBSharedObject() override;

private:
    bool m_orphaned = false;
};

inline unsigned int QOBCountedObject::addReference() const noexcept
{
    const std::uint32_t before = kar::Add(m_count, 1, std::memory_order_relaxed);
    if (before == HostedBit)
        firstReferenceOfHosted();
    return (before + 1) & CountMask;
}

inline void QOBCountedObject::addFirstReference() const noexcept
{
    // Its constructor may have made handles already.
    if (m_count.load(std::memory_order_relaxed) == 0)
        m_count.store(1, std::memory_order_relaxed);
    else
        addReference();
}

inline unsigned int QOBCountedObject::removeReference() const noexcept
{
    const std::uint32_t after = kar::Add(m_count, 0U - 1U, std::memory_order_acq_rel) - 1;
    if ((after & CountMask) == 0)
        lastReferenceGone(after);
    return after & CountMask;
}

inline unsigned int QOBCountedObject::getReferenceCount() const noexcept
{
    return m_count.load(std::memory_order_relaxed) & CountMask;
}

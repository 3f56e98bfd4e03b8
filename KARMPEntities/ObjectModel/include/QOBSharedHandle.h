// Counted handles on shared objects, 8 bytes each.
//
// A handle of an incomplete referent type can be made null, copied, stored and destroyed; only
// access to members and conversion between referent types need the complete type.
#pragma once

#include "KARPlatformExport.h"
#include "QOBSharedObject.h"

#include <compare>
#include <cstddef>
#include <functional>
#include <list>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

/// The untyped counted handle.
class KAR_API QOBSharedBase
{
public:
    /// How a handle's referent is going to be used. Accepted everywhere; no mode waits.
    enum LockMode : int { NoLock = 0, ReadLock = 1, WriteLock = 2 };

    QOBSharedBase() noexcept = default;
    /// Refers to the object; a null pointer gives a null handle.
    explicit QOBSharedBase(const QOBSharedObject* object, LockMode = NoLock) noexcept
        : m_referent(const_cast<QOBSharedObject*>(object))
    {
        if (m_referent != nullptr)
            m_referent->addReference();
    }
    QOBSharedBase(const QOBSharedBase& other) noexcept : QOBSharedBase(other.m_referent) {}
    QOBSharedBase(QOBSharedBase&& other) noexcept
        : m_referent(std::exchange(other.m_referent, nullptr))
    {}
    /// A second handle on the same referent.
    QOBSharedBase(const QOBSharedBase& other, LockMode) noexcept : QOBSharedBase(other.m_referent)
    {}
    /// Takes over a reference that was counted for the caller.
    static QOBSharedBase adopt(const QOBSharedObject* object) noexcept
    {
        QOBSharedBase handle;
        handle.m_referent = const_cast<QOBSharedObject*>(object);
        return handle;
    }
    /// Gives up the reference.
    ~QOBSharedBase()
    {
        if (m_referent != nullptr)
            m_referent->removeReference();
    }

    QOBSharedBase& operator=(const QOBSharedBase& other) noexcept
    {
        QOBSharedBase(other).swap(*this);
        return *this;
    }
    QOBSharedBase& operator=(QOBSharedBase&& other) noexcept
    {
        QOBSharedBase(std::move(other)).swap(*this);
        return *this;
    }
    /// Refers to the object instead; null empties the handle.
    QOBSharedBase& operator=(const QOBSharedObject* object) noexcept
    {
        QOBSharedBase(object).swap(*this);
        return *this;
    }

    /// True when there is a referent.
    explicit operator bool() const noexcept { return m_referent != nullptr; }
    /// The referent, or null.
    QOBSharedObject* _getReferent() const noexcept { return m_referent; }
    /// Empties the handle.
    void detach() noexcept { QOBSharedBase().swap(*this); }
    /// Empties the handle without giving up its reference, which the caller then has.
    QOBSharedObject* release() noexcept { return std::exchange(m_referent, nullptr); }
    /// Exchanges the referents of two handles.
    void swap(QOBSharedBase& other) noexcept { std::swap(m_referent, other.m_referent); }

    /// The referent's record; the root's for a null handle.
    const QOBClassInfo& getClassInfo() const;
    /// Asks the referent; false for a null handle.
    bool isDerivedFrom(const QOBClassInfo& info) const;
    /// Asks the referent; false for a null handle.
    bool isInstanceOf(const QOBClassInfo& info) const;

    /// Handles compare by the address of the referent.
    friend bool operator==(const QOBSharedBase& left, const QOBSharedBase& right) noexcept
    {
        return left.m_referent == right.m_referent;
    }
    friend bool operator==(const QOBSharedBase& left, const QOBSharedObject* right) noexcept
    {
        return left.m_referent == right;
    }
    friend bool operator==(const QOBSharedBase& left, std::nullptr_t) noexcept
    {
        return left.m_referent == nullptr;
    }
    friend std::strong_ordering operator<=>(const QOBSharedBase& left,
                                            const QOBSharedBase& right) noexcept
    {
        return std::compare_three_way()(left.m_referent, right.m_referent);
    }

protected:
    /// Throws the QOBEInvalidCast of a handle whose referent has another type than wanted.
    [[noreturn]] static void throwInvalidCast();

private:
    QOBSharedObject* m_referent = nullptr;
};

/// A counted handle whose referent is a T.
template <class T>
class QOBSharedHandle : public QOBSharedBase
{
public:
    QOBSharedHandle() noexcept = default;
    /// An empty handle.
    QOBSharedHandle(std::nullptr_t) noexcept {}
    QOBSharedHandle(const QOBSharedHandle&) noexcept = default;
    QOBSharedHandle(QOBSharedHandle&&) noexcept = default;
    /// A second handle on the same referent.
    QOBSharedHandle(const QOBSharedHandle& other, LockMode mode) noexcept
        : QOBSharedBase(other, mode)
    {}
    /// Refers to the object; a null pointer gives a null handle. Throws QOBEInvalidCast when the
    /// object is not a T.
    template <class U>
    requires std::is_convertible_v<const U*, const QOBSharedObject*>
    explicit QOBSharedHandle(const U* object, LockMode mode = NoLock)
        : QOBSharedBase(checked(object), mode)
    {}
    /// Converts between referent types: implicitly to a base, otherwise by a dynamic cast that
    /// throws QOBEInvalidCast when the referent is not a T. A null handle stays null.
    template <class U>
    explicit(!std::is_convertible_v<U*, T*>)
        QOBSharedHandle(const QOBSharedHandle<U>& other, LockMode mode = NoLock)
        : QOBSharedBase(converted<U>(other), mode)
    {}
    /// As above, from an untyped handle.
    explicit QOBSharedHandle(const QOBSharedBase& other, LockMode mode = NoLock)
        : QOBSharedBase(checked(other._getReferent()), mode)
    {}

    QOBSharedHandle& operator=(const QOBSharedHandle&) noexcept = default;
    QOBSharedHandle& operator=(QOBSharedHandle&&) noexcept = default;
    /// Empties the handle.
    QOBSharedHandle& operator=(std::nullptr_t) noexcept
    {
        detach();
        return *this;
    }
    /// Refers to the object instead, under the rule of the constructor.
    template <class U>
    requires std::is_convertible_v<const U*, const QOBSharedObject*> QOBSharedHandle& operator=(
        const U* object)
    {
        return *this = QOBSharedHandle(object);
    }

    /// A handle on a referent that the caller knows to be a T, as a container of Ts does.
    static QOBSharedHandle unchecked(const QOBSharedBase& other) noexcept
    {
        QOBSharedHandle handle;
        static_cast<QOBSharedBase&>(handle) = other;
        return handle;
    }

    /// The referent, or null.
    T* get() const noexcept { return static_cast<T*>(_getReferent()); }
    T* operator->() const noexcept { return get(); }
    T& operator*() const noexcept { return *get(); }

private:
    template <class U>
    static const QOBSharedObject* checked(const U* object)
    {
        if constexpr (!std::is_convertible_v<const U*, const T*>) {
            // A dynamic cast compares the names of classes even where the object is just a T.
            if (object != nullptr && &typeid(*object) != &typeid(T) &&
                dynamic_cast<const T*>(object) == nullptr)
                throwInvalidCast();
        }
        return object;
    }
    template <class U>
    static const QOBSharedObject* converted(const QOBSharedHandle<U>& other)
    {
        if constexpr (std::is_convertible_v<U*, T*>)
            return other._getReferent();
        else
            return checked(static_cast<const QOBSharedObject*>(other._getReferent()));
    }
};

/// A counted handle that gives read access only.
template <class T>
class QOBSharedConstPointer : public QOBSharedBase
{
public:
    QOBSharedConstPointer() noexcept = default;
    /// Refers to the object; null for none.
    explicit QOBSharedConstPointer(const T* object) noexcept : QOBSharedBase(object) {}

    /// The referent, or null.
    const T* get() const noexcept { return static_cast<const T*>(_getReferent()); }
    const T* operator->() const noexcept { return get(); }
};

/// A vector of handles, the out parameter of operations that give all of something.
template <class T>
using QOBSharedVector = std::vector<QOBSharedHandle<T>>;

/// A list of handles, the argument of operations on chosen objects.
template <class T>
using QOBSharedList = std::list<QOBSharedHandle<T>>;

template <class T>
struct std::hash<QOBSharedHandle<T>>
{
    std::size_t operator()(const QOBSharedHandle<T>& handle) const noexcept
    {
        return std::hash<const void*>()(handle._getReferent());
    }
};

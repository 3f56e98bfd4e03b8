#pragma once

#include "KARMPModelExport.h"
#include "QOBSharedHandle.h"

#include <cstddef>
#include <functional>
#include <type_traits>
#include <vector>

namespace karmp::model {

/// Ends the process with a sentence: a Ref that is false was used as an entity.
[[noreturn]] KARMP_MODEL_API void StopAtFalseRef(bool wasDeleted);

/// A counted reference to an entity of a model. It is false when it refers to none, and from the
/// moment on when its entity is deleted or the model ends. Two are equal when they refer to the
/// same entity. Access through a false one ends the process with a sentence.
///
/// T may be incomplete where a Ref is only kept, copied and tested.
template <class T>
class Ref
{
public:
    Ref() noexcept = default;
    /// A false reference.
    Ref(std::nullptr_t) noexcept {}
    /// Refers to an entity; false for a null handle.
    explicit Ref(QOBSharedHandle<T> entity) noexcept : m_entity(std::move(entity)) {}
    /// The same entity by a base of its class.
    template <class U>
    requires(!std::is_same_v<U, T> && std::is_convertible_v<U*, T*>) Ref(const Ref<U>& other)
        : m_entity(other.Handle())
    {}

    /// True while there is an entity that is not deleted.
    explicit operator bool() const noexcept
    {
        const QOBSharedObject* const object = m_entity._getReferent();
        return object != nullptr && !object->isOrphaned();
    }
    T* operator->() const { return &**this; }
    T& operator*() const
    {
        if (!*this)
            StopAtFalseRef(static_cast<bool>(m_entity));
        return *m_entity;
    }
    /// The entity by a derived class; false when it is of another one.
    template <class U>
    Ref<U> As() const
    {
        auto* const entity = *this ? dynamic_cast<U*>(m_entity.get()) : nullptr;
        return entity != nullptr ? Ref<U>(QOBSharedHandle<U>(entity)) : Ref<U>();
    }
    /// The handle, which is null or refers to an entity that may be deleted.
    const QOBSharedHandle<T>& Handle() const noexcept { return m_entity; }
    /// The same for operations of entities, which take handles of the class or of a base.
    template <class U>
    requires std::is_convertible_v<T*, U*>
    operator QOBSharedHandle<U>() const { return m_entity; }

    template <class U>
    friend bool operator==(const Ref& left, const Ref<U>& right) noexcept
    {
        return left.Handle()._getReferent() == right.Handle()._getReferent();
    }
    friend bool operator==(const Ref& left, std::nullptr_t) noexcept { return !left.m_entity; }

private:
    QOBSharedHandle<T> m_entity;
};

/// Entities that were found. The list stays as it is while the model is edited.
template <class T>
using RefList = std::vector<Ref<T>>;

} // namespace karmp::model

template <class T>
struct std::hash<karmp::model::Ref<T>>
{
    std::size_t operator()(const karmp::model::Ref<T>& ref) const noexcept
    {
        return std::hash<QOBSharedHandle<T>>()(ref.Handle());
    }
};

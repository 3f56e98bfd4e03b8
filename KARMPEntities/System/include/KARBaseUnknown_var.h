#pragma once

#include "KARBaseUnknown.h"

#include <concepts>
#include <cstddef>
#include <utility>

/// A counted pointer to an interface root: it holds one reference on what it points to, or is null.
class KARBaseUnknown_var
{
public:
    /// Makes a null pointer.
    KARBaseUnknown_var() noexcept = default;
    /// Takes a reference of its own on the object.
    KARBaseUnknown_var(KARBaseUnknown* object) : m_object(object)
    {
        if (m_object)
            m_object->AddRef();
    }
    KARBaseUnknown_var(const KARBaseUnknown_var& other) : KARBaseUnknown_var(other.m_object) {}
    KARBaseUnknown_var(KARBaseUnknown_var&& other) noexcept
        : m_object(std::exchange(other.m_object, nullptr))
    {}
    ~KARBaseUnknown_var()
    {
        if (m_object)
            m_object->Release();
    }

    /// Refers to another object; the former one is released last.
    KARBaseUnknown_var& operator=(KARBaseUnknown_var other) noexcept
    {
        std::swap(m_object, other.m_object);
        return *this;
    }

    /// Gives the object, without a reference for the caller.
    operator KARBaseUnknown*() const { return m_object; }
    KARBaseUnknown* operator->() const { return m_object; }
    KARBaseUnknown& operator*() const { return *m_object; }
    /// Gives the object, without a reference for the caller.
    KARBaseUnknown* Get() const { return m_object; }

    /// Equal when the objects are one.
    friend bool operator==(const KARBaseUnknown_var& left, const KARBaseUnknown_var& right)
    {
        return left.m_object == right.m_object;
    }
    /// Equal when the objects are one; a template, so that any pointer is the exact match.
    template <typename T>
    requires std::convertible_to<T*, const KARBaseUnknown*>
    friend bool operator==(const KARBaseUnknown_var& left, T* right)
    {
        return left.m_object == right;
    }
    /// Equal when there is no object.
    friend bool operator==(const KARBaseUnknown_var& left, std::nullptr_t)
    {
        return left.m_object == nullptr;
    }

private:
    KARBaseUnknown* m_object = nullptr;
};

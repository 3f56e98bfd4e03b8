#pragma once

#include "KARPlatformExport.h"

#include <atomic>

/// Root of counted objects: the objects of the modelling application that entities refer to. A
/// class that can be asked for has a static `const char* ClassId()`, which identifies it by its
/// text, and answers it in Query.
class KAR_API KARBaseUnknown
{
public:
    KARBaseUnknown(const KARBaseUnknown&) = delete;
    KARBaseUnknown& operator=(const KARBaseUnknown&) = delete;

    /// Gives this object as the class of that identifier (a `T*` for `T::ClassId()`), or null when
    /// it is none. No reference is added.
    virtual void* Query(const char* classId) = 0;
    /// Adds a reference and returns the new count.
    virtual unsigned int AddRef() = 0;
    /// Gives up a reference and returns the new count; at 0 the object is gone.
    virtual unsigned int Release() = 0;
    /// Gives the object that this one stands for; `kind` 0 asks for the one that keys compare.
    /// By default it is the object itself. No reference is added.
    virtual KARBaseUnknown* GetResolved(int kind);

    /// Identifier of this class.
    static const char* ClassId();

protected:
    KARBaseUnknown() = default;
    virtual ~KARBaseUnknown();
};

/// The name that queries know the root by.
using IUnknown = KARBaseUnknown;

/// Tells whether two class identifiers are the same. Null is none.
KAR_API bool KARSameClassId(const char* left, const char* right);

/// A root with an atomic count, which starts at 1: the maker's reference. The last Release deletes
/// the object.
class KAR_API KARCountedUnknown : public KARBaseUnknown
{
public:
    /// Answers the root's and this class's identifiers. A derived class answers its own and asks
    /// its base for the others.
    void* Query(const char* classId) override;
    unsigned int AddRef() override;
    unsigned int Release() override;

    /// Gives the references that are held now.
    unsigned int GetRefCount() const { return m_count.load(std::memory_order_relaxed); }

    /// Identifier of this class.
    static const char* ClassId();

protected:
    KARCountedUnknown() = default;
    ~KARCountedUnknown() override;

private:
    std::atomic<unsigned int> m_count{1};
};

/// Queries an object by a class identifier. Null gives null; no reference is added.
inline void* KAROmxQI(IUnknown* object, const char* classId)
{
    return object ? object->Query(classId) : nullptr;
}

/// Queries an object for a class. Null gives null; no reference is added.
template <typename T>
T* KAROmxQI(IUnknown* object)
{
    return static_cast<T*>(KAROmxQI(object, T::ClassId()));
}

/// Casts to a class by the object's dynamic type; null when it is none. No reference is added.
template <typename T>
T* KARSysDynamicCast(KARBaseUnknown* object)
{
    return dynamic_cast<T*>(object);
}
/// Casts to a class by the object's dynamic type; null when it is none. No reference is added.
template <typename T>
const T* KARSysDynamicCast(const KARBaseUnknown* object)
{
    return dynamic_cast<const T*>(object);
}

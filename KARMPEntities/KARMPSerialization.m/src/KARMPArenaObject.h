// Objects that are allocated either by operator new or in the arena of a tree.
#pragma once

#include "KARMPNodeMemory.h"

#include <memory>
#include <new>

namespace karmp {

/// The base of such an object, which records where it is allocated.
struct ArenaObject
{
    bool inArena = false;
};

/// Destroys an object, and frees it unless its arena does.
struct ReleaseArenaObject
{
    template <class T>
    void operator()(T* object) const noexcept
    {
        if (object->inArena)
            object->~T();
        else
            delete object;
    }
};

template <class T>
using ArenaPointer = std::unique_ptr<T, ReleaseArenaObject>;

/// A new object in an arena, or by operator new when `memory` is null.
template <class T>
T* NewIn(NodeMemory* memory)
{
    T* const object = memory != nullptr ? ::new (memory->Allocate(sizeof(T))) T() : new T();
    object->inArena = memory != nullptr;
    return object;
}

/// Deletes an object that has allocations of its own, unless it is in an arena: that destroys it,
/// whether its owner is destroyed or not.
struct ReleaseOwning
{
    template <class T>
    void operator()(T* owning) const noexcept
    {
        if (!owning->inArena)
            delete owning;
    }
};

template <class T>
using OwningPointer = std::unique_ptr<T, ReleaseOwning>;

/// The same as NewIn for an object that has allocations of its own.
template <class T>
OwningPointer<T> NewOwningIn(NodeMemory* memory)
{
    OwningPointer<T> object(memory != nullptr ? memory->Make<T>() : new T());
    object->inArena = memory != nullptr;
    return object;
}

} // namespace karmp

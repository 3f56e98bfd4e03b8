// Objects that are allocated either by operator new or in the memory of a tree.
#pragma once

#include "KARMPNodeMemory.h"

#include <memory>
#include <new>

namespace karmp {

/// The base of such an object: knows which of the two it is.
struct Placed
{
    bool inTree = false;
};

/// Destroys an object and frees it, unless the memory of its tree does.
struct EndPlaced
{
    template <class T>
    void operator()(T* placed) const noexcept
    {
        if (placed->inTree)
            placed->~T();
        else
            delete placed;
    }
};

template <class T>
using PlacedPointer = std::unique_ptr<T, EndPlaced>;

/// A new object in the memory of a tree, or by operator new when `memory` is null.
template <class T>
T* Place(NodeMemory* memory)
{
    T* const placed = memory != nullptr ? ::new (memory->Allocate(sizeof(T))) T() : new T();
    placed->inTree = memory != nullptr;
    return placed;
}

/// Frees an object that has allocations of its own: the memory of a tree destroys it, whether its
/// owner is destroyed or not.
struct EndOwning
{
    template <class T>
    void operator()(T* owning) const noexcept
    {
        if (!owning->inTree)
            delete owning;
    }
};

template <class T>
using OwningPointer = std::unique_ptr<T, EndOwning>;

/// The same as Place for an object that has allocations of its own.
template <class T>
OwningPointer<T> PlaceOwning(NodeMemory* memory)
{
    OwningPointer<T> placed(memory != nullptr ? memory->Make<T>() : new T());
    placed->inTree = memory != nullptr;
    return placed;
}

} // namespace karmp

#include "KARMemoryPool.h"

#include "KARPrefetch.h"

#include <algorithm>
#include <atomic>
#include <new>

namespace kar {

// Stands in the memory that was given back.
struct MemoryPool::FreePlace
{
    FreePlace* next;
};

// Stands before its places, each of which begins with a pointer to the chunk.
struct MemoryPool::Chunk
{
    Shelf* shelf = nullptr;
    Chunk* previous = nullptr; // among the shelf's chunks that have room
    Chunk* next = nullptr;
    FreePlace* free = nullptr;  // the places that were given back
    std::byte* fresh = nullptr; // the places that were never used, up to the end
    std::byte* end = nullptr;
    std::size_t used = 0;
    std::size_t bytes = 0;

    // It is the memory behind a place's pointer that must be aligned.
    std::byte* FirstPlace() { return reinterpret_cast<std::byte*>(this + 1) + Step - HeaderSize; }
    bool IsFull() const { return free == nullptr && fresh == end; }
};

MemoryPool::~MemoryPool()
{
    for (Group& group : m_groups) {
        for (Shelf& shelf : group) {
            for (Chunk* chunk = shelf.open; chunk != nullptr;) {
                Chunk* const next = chunk->next;
                if (chunk->used == 0)
                    Drop(shelf, chunk);
                chunk = next;
            }
        }
    }
}

std::size_t MemoryPool::PlaceSize(std::size_t bytes)
{
    return (std::max<std::size_t>(bytes, 1) + HeaderSize + Step - 1) / Step * Step;
}

std::size_t MemoryPool::GroupOfThread()
{
    static std::atomic<std::size_t> threads{0};
    thread_local std::size_t number = 0; // from 1
    if (number == 0) [[unlikely]]
        number = threads.fetch_add(1, std::memory_order_relaxed) + 1;
    return (number - 1) % GroupCount;
}

MemoryPool::Chunk*& MemoryPool::ChunkOf(void* memory)
{
    return *(static_cast<Chunk**>(memory) - 1);
}

MemoryPool::Chunk* MemoryPool::MakeChunk(Shelf& shelf, std::size_t placeSize)
{
    static_assert(sizeof(Chunk) % Step == 0);
    static_assert(Step % __STDCPP_DEFAULT_NEW_ALIGNMENT__ == 0);
    constexpr std::size_t Before = sizeof(Chunk) + Step - HeaderSize;
    static_assert(Before + LargestPlace <= SmallestChunk);
    const std::size_t room = std::clamp(shelf.heldBytes / 2, SmallestChunk, LargestChunk) - Before;
    const std::size_t bytes = Before + room / placeSize * placeSize;
    void* const memory = ::operator new(bytes);
    auto* const chunk = ::new (memory) Chunk;
    chunk->shelf = &shelf;
    chunk->fresh = chunk->FirstPlace();
    chunk->end = static_cast<std::byte*>(memory) + bytes;
    chunk->bytes = bytes;
    shelf.heldBytes += bytes;
    return chunk;
}

void MemoryPool::Open(Shelf& shelf, Chunk* chunk)
{
    chunk->previous = nullptr;
    chunk->next = shelf.open;
    if (chunk->next != nullptr)
        chunk->next->previous = chunk;
    shelf.open = chunk;
}

void MemoryPool::Close(Shelf& shelf, Chunk* chunk)
{
    if (chunk->next != nullptr)
        chunk->next->previous = chunk->previous;
    if (chunk->previous != nullptr)
        chunk->previous->next = chunk->next;
    else
        shelf.open = chunk->next;
}

void* MemoryPool::Allocate(std::size_t bytes)
{
    if (bytes > LargestSize)
        return ::operator new(bytes);
    const std::size_t placeSize = PlaceSize(bytes);
    Shelf& shelf = m_groups[GroupOfThread()][placeSize / Step - 1];
    const std::lock_guard lock(shelf.mutex);
    if (shelf.open == nullptr)
        Open(shelf, MakeChunk(shelf, placeSize));
    Chunk* const chunk = shelf.open;
    void* memory = chunk->free;
    if (memory != nullptr) {
        chunk->free = chunk->free->next;
    } else {
        memory = chunk->fresh + HeaderSize;
        ChunkOf(memory) = chunk;
        chunk->fresh += placeSize;
    }
    ++chunk->used;
    if (chunk->IsFull())
        Close(shelf, chunk);
    else if (chunk->free != nullptr)
        Prefetch(chunk->free, bytes);
    else
        Prefetch(chunk->fresh, placeSize);
    return memory;
}

void MemoryPool::Free(void* memory, std::size_t bytes) noexcept
{
    if (bytes > LargestSize) {
        ::operator delete(memory);
        return;
    }
    Chunk* const chunk = ChunkOf(memory);
    Shelf& shelf = *chunk->shelf;
    const std::lock_guard lock(shelf.mutex);
    if (chunk->IsFull())
        Open(shelf, chunk);
    chunk->free = ::new (memory) FreePlace{chunk->free};
    if (--chunk->used == 0)
        Tidy(shelf, chunk);
}

void MemoryPool::Drop(Shelf& shelf, Chunk* chunk)
{
    Close(shelf, chunk);
    shelf.heldBytes -= chunk->bytes;
    ::operator delete(chunk);
}

// A chunk lost its last used place. If it stays, its places are fresh: they are then handed out in
// the order in which they stand.
void MemoryPool::Tidy(Shelf& shelf, Chunk* chunk)
{
    chunk->free = nullptr;
    chunk->fresh = chunk->FirstPlace();
    const bool othersHaveRoom = shelf.open != chunk || chunk->next != nullptr;
    if (othersHaveRoom)
        Drop(shelf, chunk);
    Chunk* const last = shelf.open;
    if (last->used == 0 && last->bytes == shelf.heldBytes && last->bytes > SmallestChunk)
        Drop(shelf, last);
}

std::size_t MemoryPool::HeldBytes()
{
    std::size_t bytes = 0;
    for (Group& group : m_groups) {
        for (Shelf& shelf : group) {
            const std::lock_guard lock(shelf.mutex);
            bytes += shelf.heldBytes;
        }
    }
    return bytes;
}

} // namespace kar

#include "KARMemoryPool.h"

#include "KARPrefetch.h"
#include "KARSingleThread.h"

#include <algorithm>
#include <atomic>
#include <new>

namespace kar {

namespace {

// Locks a mutex unless there is but one thread, in which a lock is half of an allocation's time.
class Lock
{
public:
    explicit Lock(std::mutex& mutex) : m_mutex(IsSingleThreaded() ? nullptr : &mutex)
    {
        if (m_mutex != nullptr)
            m_mutex->lock();
    }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    ~Lock()
    {
        if (m_mutex != nullptr)
            m_mutex->unlock();
    }

private:
    std::mutex* m_mutex;
};

} // namespace

// Lies in a block that was freed.
struct MemoryPool::FreeBlock
{
    FreeBlock* next;
};

// The header of a chunk. Its blocks follow, each of which begins with a pointer to the chunk.
struct MemoryPool::Chunk
{
    SizeClass* sizeClass = nullptr;
    Chunk* previous = nullptr; // among the size class's chunks that have a free block
    Chunk* next = nullptr;
    FreeBlock* free = nullptr;  // the blocks that were freed
    std::byte* fresh = nullptr; // the blocks that were never used, up to the end
    std::byte* end = nullptr;
    std::size_t used = 0;
    std::size_t bytes = 0;

    // It is the memory behind a block's pointer that must be aligned.
    std::byte* FirstBlock() { return reinterpret_cast<std::byte*>(this + 1) + Step - HeaderSize; }
    bool IsFull() const { return free == nullptr && fresh == end; }
    bool IsPartOfRegion() const { return bytes > LargestChunk; }
};

MemoryPool::~MemoryPool()
{
    for (Group& group : m_groups) {
        for (SizeClass& sizeClass : group) {
            for (Chunk* chunk = sizeClass.open; chunk != nullptr;) {
                Chunk* const next = chunk->next;
                if (chunk->used == 0)
                    Drop(sizeClass, chunk);
                chunk = next;
            }
        }
    }
}

std::size_t MemoryPool::BlockSize(std::size_t bytes)
{
    return (std::max<std::size_t>(bytes, 1) + HeaderSize + Step - 1) / Step * Step;
}

std::size_t MemoryPool::GroupOfThread()
{
    if (IsSingleThreaded())
        return 0;
    static std::atomic<std::size_t> threads{0};
    thread_local std::size_t number = 0; // from 1
    if (number == 0)
        number = threads.fetch_add(1, std::memory_order_relaxed) + 1;
    return (number - 1) % GroupCount;
}

MemoryPool::Chunk*& MemoryPool::ChunkOf(void* memory)
{
    return *(static_cast<Chunk**>(memory) - 1);
}

MemoryPool::Chunk* MemoryPool::MakeChunk(SizeClass& sizeClass, std::size_t blockSize)
{
    static_assert(sizeof(Chunk) % Step == 0);
    static_assert(Step % __STDCPP_DEFAULT_NEW_ALIGNMENT__ == 0);
    constexpr std::size_t Before = sizeof(Chunk) + Step - HeaderSize;
    static_assert(Before + LargestBlock <= SmallestChunk);
    static_assert(LargestChunk < MemoryRegions::PartSize - LargestBlock);
    std::size_t space = std::clamp(sizeClass.heldBytes / 2, SmallestChunk, LargestChunk);
    const bool isPart = m_regions != nullptr && space == LargestChunk;
    if (isPart)
        space = MemoryRegions::PartSize;
    const std::size_t bytes = Before + (space - Before) / blockSize * blockSize;
    void* const memory = isPart ? m_regions->Allocate() : ::operator new(bytes);
    auto* const chunk = ::new (memory) Chunk;
    chunk->sizeClass = &sizeClass;
    chunk->fresh = chunk->FirstBlock();
    chunk->end = static_cast<std::byte*>(memory) + bytes;
    chunk->bytes = bytes;
    sizeClass.heldBytes += bytes;
    return chunk;
}

void MemoryPool::Open(SizeClass& sizeClass, Chunk* chunk)
{
    chunk->previous = nullptr;
    chunk->next = sizeClass.open;
    if (chunk->next != nullptr)
        chunk->next->previous = chunk;
    sizeClass.open = chunk;
}

void MemoryPool::Close(SizeClass& sizeClass, Chunk* chunk)
{
    if (chunk->next != nullptr)
        chunk->next->previous = chunk->previous;
    if (chunk->previous != nullptr)
        chunk->previous->next = chunk->next;
    else
        sizeClass.open = chunk->next;
}

void* MemoryPool::Allocate(std::size_t bytes)
{
    if (bytes > LargestSize)
        return ::operator new(bytes);
    const std::size_t blockSize = BlockSize(bytes);
    SizeClass& sizeClass = m_groups[GroupOfThread()][blockSize / Step - 1];
    const Lock lock(sizeClass.mutex);
    if (sizeClass.open == nullptr)
        Open(sizeClass, MakeChunk(sizeClass, blockSize));
    Chunk* const chunk = sizeClass.open;
    void* memory = chunk->free;
    if (memory != nullptr) {
        chunk->free = chunk->free->next;
    } else {
        memory = chunk->fresh + HeaderSize;
        ChunkOf(memory) = chunk;
        chunk->fresh += blockSize;
    }
    ++chunk->used;
    if (chunk->IsFull())
        Close(sizeClass, chunk);
    else if (chunk->free != nullptr)
        Prefetch(chunk->free, bytes);
    else
        Prefetch(chunk->fresh, blockSize);
    return memory;
}

void MemoryPool::Free(void* memory, std::size_t bytes) noexcept
{
    if (bytes > LargestSize) {
        ::operator delete(memory);
        return;
    }
    Chunk* const chunk = ChunkOf(memory);
    SizeClass& sizeClass = *chunk->sizeClass;
    const Lock lock(sizeClass.mutex);
    if (chunk->IsFull())
        Open(sizeClass, chunk);
    chunk->free = ::new (memory) FreeBlock{chunk->free};
    if (--chunk->used == 0)
        Tidy(sizeClass, chunk);
}

void MemoryPool::Drop(SizeClass& sizeClass, Chunk* chunk)
{
    Close(sizeClass, chunk);
    sizeClass.heldBytes -= chunk->bytes;
    if (chunk->IsPartOfRegion())
        m_regions->Free(chunk);
    else
        ::operator delete(chunk);
}

// A chunk lost its last used block. If it stays, its blocks are fresh: they are then allocated in
// the order of their addresses.
void MemoryPool::Tidy(SizeClass& sizeClass, Chunk* chunk)
{
    chunk->free = nullptr;
    chunk->fresh = chunk->FirstBlock();
    const bool othersHaveFreeBlocks = sizeClass.open != chunk || chunk->next != nullptr;
    if (othersHaveFreeBlocks)
        Drop(sizeClass, chunk);
    Chunk* const last = sizeClass.open;
    if (last->used == 0 && last->bytes == sizeClass.heldBytes && last->bytes > SmallestChunk)
        Drop(sizeClass, last);
}

std::size_t MemoryPool::HeldBytes()
{
    std::size_t bytes = 0;
    for (Group& group : m_groups) {
        for (SizeClass& sizeClass : group) {
            const Lock lock(sizeClass.mutex);
            bytes += sizeClass.heldBytes;
        }
    }
    return bytes;
}

} // namespace kar

#pragma once

#include "KARMemoryRegions.h"

#include <array>
#include <cstddef>
#include <mutex>

namespace kar {

/// Allocates blocks of a few sizes, cut from chunks of the heap.
///
/// A chunk has blocks of one size. It returns to the heap once it is empty, unless no other chunk
/// of its size has a free block: so allocating and freeing one block by turns moves no chunks, and
/// at most one chunk is empty for each size and group of threads. When nothing is in use, that one
/// is small. A chunk stays as long as one of its blocks is in use. Any thread may free what another
/// allocated. A pool with regions takes its largest chunks from these.
class MemoryPool
{
public:
    /// Memory of more bytes than these comes from the heap directly.
    static constexpr std::size_t LargestSize = 1016;
    /// A chunk's bytes at first; chunks grow with what the pool holds of their size.
    static constexpr std::size_t SmallestChunk = 2'000;
    /// The most bytes of a chunk: below what C libraries mostly fetch from the system one by one.
    static constexpr std::size_t LargestChunk = 128'000;

    constexpr MemoryPool() = default;
    /// Regions that outlive the pool.
    explicit constexpr MemoryPool(MemoryRegions& regions) : m_regions(&regions) {}
    /// Frees the empty chunks; what is in use stays valid.
    ~MemoryPool();
    MemoryPool(const MemoryPool&) = delete;
    MemoryPool& operator=(const MemoryPool&) = delete;

    /// Memory with the alignment of operator new; throws std::bad_alloc.
    void* Allocate(std::size_t bytes);
    /// Frees memory of Allocate, given the size that was asked for.
    void Free(void* memory, std::size_t bytes) noexcept;
    /// Bytes of all chunks that the pool has from the heap.
    std::size_t HeldBytes();

private:
    struct Chunk;
    struct FreeBlock;

    /// The chunks with blocks of one size.
    struct SizeClass
    {
        std::mutex mutex;
        Chunk* open = nullptr; // the chunks that have a free block
        std::size_t heldBytes = 0;
    };

    static constexpr std::size_t Step = 16;
    static constexpr std::size_t HeaderSize = sizeof(void*);
    static constexpr std::size_t LargestBlock = LargestSize + HeaderSize;
    /// Each group of threads has its own size classes, so that threads seldom wait for one another.
    static constexpr std::size_t GroupCount = 8;

    static std::size_t BlockSize(std::size_t bytes);
    static std::size_t GroupOfThread();
    static Chunk*& ChunkOf(void* memory);
    Chunk* MakeChunk(SizeClass& sizeClass, std::size_t blockSize);
    static void Open(SizeClass& sizeClass, Chunk* chunk);
    static void Close(SizeClass& sizeClass, Chunk* chunk);
    void Drop(SizeClass& sizeClass, Chunk* chunk);
    void Tidy(SizeClass& sizeClass, Chunk* chunk);

    using Group = std::array<SizeClass, LargestBlock / Step>;
    MemoryRegions* m_regions = nullptr;
    std::array<Group, GroupCount> m_groups;
};

} // namespace kar

// Memory in places of a few sizes, cut from chunks of the heap.
//
// A chunk has places of one size. It goes back to the heap once it is empty, unless no other chunk
// of its size has room: so whoever takes and gives one place by turns moves no chunks, and one
// chunk at most stands empty for each size and group of threads. Where nothing is in use at all,
// that one is small. What is never given back is the memory around a survivor: a chunk stays as
// long as one of its places is in use.
#pragma once

#include <array>
#include <cstddef>
#include <mutex>

namespace kar {

/// Any thread may give back what any other got.
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
    /// Gives back the chunks that stand empty; what is in use stays valid.
    ~MemoryPool();
    MemoryPool(const MemoryPool&) = delete;
    MemoryPool& operator=(const MemoryPool&) = delete;

    /// Memory with the alignment of operator new; throws std::bad_alloc.
    void* Allocate(std::size_t bytes);
    /// Gives back memory of Allocate, with the size that was asked for.
    void Free(void* memory, std::size_t bytes) noexcept;
    /// Bytes of all chunks that the pool has from the heap.
    std::size_t HeldBytes();

private:
    struct Chunk;
    struct FreePlace;

    /// The chunks with places of one size.
    struct Shelf
    {
        std::mutex mutex;
        Chunk* open = nullptr; // the chunks that have room
        std::size_t heldBytes = 0;
    };

    static constexpr std::size_t Step = 16;
    static constexpr std::size_t HeaderSize = sizeof(void*);
    static constexpr std::size_t LargestPlace = LargestSize + HeaderSize;
    /// Groups of threads have shelves of their own, so that threads seldom wait for one another.
    static constexpr std::size_t GroupCount = 8;

    static std::size_t PlaceSize(std::size_t bytes);
    static std::size_t GroupOfThread();
    static Chunk*& ChunkOf(void* memory);
    static Chunk* MakeChunk(Shelf& shelf, std::size_t placeSize);
    static void Open(Shelf& shelf, Chunk* chunk);
    static void Close(Shelf& shelf, Chunk* chunk);
    static void Drop(Shelf& shelf, Chunk* chunk);
    static void Tidy(Shelf& shelf, Chunk* chunk);

    using Group = std::array<Shelf, LargestPlace / Step>;
    std::array<Group, GroupCount> m_groups;
};

} // namespace kar

#pragma once

#include "KARMPExport.h"

#include <cstddef>
#include <new>
#include <utility>
#include <vector>

namespace karmp {

/// The arena of a whole element tree: it allocates from chunks in sequence and frees all blocks at
/// once. No destructors are called except of objects that Make created.
class NodeMemory
{
    /// An object that is destroyed before the chunks are freed, in reverse order of creation.
    struct Made
    {
        Made* former = nullptr;
        void (*destroy)(Made*) = nullptr;
    };

public:
    NodeMemory() = default;
    NodeMemory(const NodeMemory&) = delete;
    NodeMemory& operator=(const NodeMemory&) = delete;
    ~NodeMemory() { Clear(); }

    /// Allocates `size` bytes, aligned to 8. Throws std::bad_alloc.
    void* Allocate(std::size_t size)
    {
        size = (size + Alignment - 1) / Alignment * Alignment;
        if (size > m_left)
            AddChunk(size);
        void* const memory = m_next;
        m_next += size;
        m_left -= size;
        return memory;
    }

    /// Creates an object that is destroyed with the arena.
    template <class T>
    T* Make()
    {
        struct Holder : Made
        {
            T object;
        };
        static_assert(alignof(Holder) <= Alignment);
        auto* const holder = ::new (Allocate(sizeof(Holder))) Holder();
        holder->destroy = [](Made* made) { static_cast<Holder*>(made)->~Holder(); };
        holder->former = std::exchange(m_lastMade, holder);
        return &holder->object;
    }

    /// The size of all chunks in bytes, whether allocated from or not.
    std::size_t Size() const
    {
        std::size_t size = 0;
        for (const Chunk& chunk : m_chunks)
            size += chunk.size;
        return size;
    }

    /// Frees all chunks.
    void Clear() noexcept
    {
        while (m_lastMade != nullptr) {
            Made* const made = std::exchange(m_lastMade, m_lastMade->former);
            made->destroy(made);
        }
        FreeChunks();
        m_next = nullptr;
        m_left = 0;
    }

    /// Frees all chunks except the newest one, usually the largest, which serves the next
    /// allocations from its start.
    void Reuse() noexcept
    {
        if (m_chunks.empty())
            return;
        const Chunk kept = m_chunks.back();
        m_chunks.pop_back();
        Clear();
        m_chunks.push_back(kept);
        m_next = kept.memory;
        m_left = kept.size;
    }

private:
    static constexpr std::size_t Alignment = 8;
    // The first chunk is small, as most trees of tests and tools are. A tree that has filled
    // several chunks of the usual size belongs to a large model.
    static constexpr std::size_t FirstChunk = 1U << 12U;
    static constexpr std::size_t UsualChunk = 1U << 18U;
    static constexpr std::size_t UsualChunkCount = 8;
    static constexpr std::size_t LargeChunk = 1U << 22U;

    struct Chunk
    {
        std::byte* memory = nullptr;
        std::size_t size = 0;
    };

    KARMP_API void AddChunk(std::size_t needed);
    KARMP_API void FreeChunks() noexcept;

    std::vector<Chunk> m_chunks;
    Made* m_lastMade = nullptr;
    std::byte* m_next = nullptr;
    std::size_t m_left = 0;
};

} // namespace karmp

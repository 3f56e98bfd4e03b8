// The memory of a whole element tree: handed out in a row, given back all at once.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace karmp {

/// What stands in this memory ends with it. Destructors are not called, but for what Make made.
class NodeMemory
{
    /// What is destroyed before the memory goes, last made first.
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

    /// Memory for `size` bytes, aligned for pointers and numbers. Throws std::bad_alloc.
    void* Allocate(std::size_t size)
    {
        size = (size + Alignment - 1) / Alignment * Alignment;
        if (size > m_left) {
            AddChunk(size);
        }
        void* const memory = m_next;
        m_next += size;
        m_left -= size;
        return memory;
    }

    /// Makes an object that is destroyed with the memory.
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

    /// Gives everything back.
    void Clear() noexcept
    {
        while (m_lastMade != nullptr) {
            Made* const made = std::exchange(m_lastMade, m_lastMade->former);
            made->destroy(made);
        }
        m_chunks.clear();
        m_next = nullptr;
        m_left = 0;
    }

private:
    static constexpr std::size_t Alignment = 8;
    // The first chunk is small: most trees of tests and tools are.
    static constexpr std::size_t FirstChunk = 1U << 12U;
    static constexpr std::size_t LargestChunk = 1U << 18U;

    void AddChunk(std::size_t needed)
    {
        const std::size_t usual = m_chunks.empty() ? FirstChunk : LargestChunk;
        const std::size_t size = std::max(usual, needed);
        m_chunks.push_back(std::make_unique_for_overwrite<std::byte[]>(size));
        m_next = m_chunks.back().get();
        m_left = size;
    }

    std::vector<std::unique_ptr<std::byte[]>> m_chunks;
    Made* m_lastMade = nullptr;
    std::byte* m_next = nullptr;
    std::size_t m_left = 0;
};

} // namespace karmp

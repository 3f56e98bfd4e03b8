// The memory of a document's reader nodes: handed out in a row, given back all at once.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace karmp::documents {

class NodeArena
{
public:
    void* Allocate(std::size_t size)
    {
        constexpr std::size_t alignment = alignof(std::max_align_t);
        size = (size + alignment - 1) / alignment * alignment;
        if (size > m_left) {
            AddChunk(size);
        }
        void* const memory = m_next;
        m_next += size;
        m_left -= size;
        return memory;
    }

private:
    // The first chunk is small: most trees of tests and tools are.
    static constexpr std::size_t FirstChunk = 1U << 12U;
    static constexpr std::size_t LargestChunk = 1U << 18U;

    void AddChunk(std::size_t needed)
    {
        std::size_t size = m_chunks.empty() ? FirstChunk : LargestChunk;
        size = size < needed ? needed : size;
        m_chunks.push_back(std::make_unique_for_overwrite<std::byte[]>(size));
        m_next = m_chunks.back().get();
        m_left = size;
    }

    std::vector<std::unique_ptr<std::byte[]>> m_chunks;
    std::byte* m_next = nullptr;
    std::size_t m_left = 0;
};

} // namespace karmp::documents

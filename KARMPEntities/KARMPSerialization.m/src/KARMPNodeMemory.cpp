#include "KARMPNodeMemory.h"

#include "KARLargePages.h"

#include <algorithm>

namespace karmp {

void NodeMemory::AddChunk(std::size_t needed)
{
    const bool large = m_chunks.size() > UsualChunkCount;
    const std::size_t usual = m_chunks.empty() ? FirstChunk : large ? LargeChunk : UsualChunk;
    const std::size_t size = std::max(usual, needed);
    Chunk& chunk = m_chunks.emplace_back();
    // A large model's tree is written once from its start to its end.
    chunk.memory = static_cast<std::byte*>(kar::AllocateLargePages(size));
    chunk.size = size;
    m_next = chunk.memory;
    m_left = size;
}

void NodeMemory::FreeChunks() noexcept
{
    for (const Chunk& chunk : m_chunks)
        kar::FreeLargePages(chunk.memory, chunk.size);
    m_chunks.clear();
}

} // namespace karmp

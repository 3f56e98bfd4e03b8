#include "KARMPNodeMemory.h"

#include <algorithm>

#if defined(__linux__)
#    include <sys/mman.h>
#endif

namespace karmp {

namespace {

// A large model's tree is written once from its start to its end: large pages need a few hundredths
// of the page faults. Without them nothing changes.
void AskForLargePages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t size)
{
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    ::madvise(memory, size, MADV_HUGEPAGE);
#endif
}

} // namespace

void NodeMemory::AddChunk(std::size_t needed)
{
    const bool large = m_chunks.size() > UsualChunkCount;
    const std::size_t usual = m_chunks.empty() ? FirstChunk : large ? LargeChunk : UsualChunk;
    const std::size_t size = std::max(usual, needed);
    Chunk& chunk = m_chunks.emplace_back();
    if (size >= LargeChunk) {
        chunk.memory = static_cast<std::byte*>(::operator new(size, std::align_val_t(LargePage)));
        AskForLargePages(chunk.memory, size);
    } else {
        chunk.memory = static_cast<std::byte*>(::operator new(size));
    }
    chunk.size = size;
    m_next = chunk.memory;
    m_left = size;
}

void NodeMemory::FreeChunks() noexcept
{
    for (const Chunk& chunk : m_chunks)
        if (chunk.size >= LargeChunk)
            ::operator delete(chunk.memory, std::align_val_t(LargePage));
        else
            ::operator delete(chunk.memory);
    m_chunks.clear();
}

} // namespace karmp

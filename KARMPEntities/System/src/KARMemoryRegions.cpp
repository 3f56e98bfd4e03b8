#include "KARMemoryRegions.h"

#include <bit>
#include <new>

namespace kar {

namespace {

constexpr std::uint32_t AllParts = (1U << MemoryRegions::PartsPerRegion) - 1;

} // namespace

MemoryRegions::~MemoryRegions()
{
    if (m_open != nullptr && m_open->freeParts == AllParts)
        Drop(m_open);
}

void* MemoryRegions::Allocate()
{
    static_assert(sizeof(Region) <= HeaderSize);
    const std::lock_guard lock(m_mutex);
    if (m_open == nullptr) {
        void* const memory = AllocateLargePages(RegionSize);
        m_heldBytes += RegionSize;
        Open(::new (memory) Region);
    }
    Region* const region = m_open;
    const int part = std::countr_zero(region->freeParts);
    region->freeParts &= region->freeParts - 1;
    if (region->freeParts == 0)
        Close(region);
    return reinterpret_cast<std::byte*>(region) + HeaderSize +
           static_cast<std::size_t>(part) * PartSize;
}

void MemoryRegions::Free(void* part) noexcept
{
    const std::size_t offset = reinterpret_cast<std::uintptr_t>(part) % RegionSize;
    auto* const region = reinterpret_cast<Region*>(static_cast<std::byte*>(part) - offset);
    const std::lock_guard lock(m_mutex);
    if (region->freeParts == 0)
        Open(region);
    region->freeParts |= 1U << (offset - HeaderSize) / PartSize;
    if (region->freeParts != AllParts)
        return;
    if (region->next != nullptr || region->previous != nullptr)
        Drop(region);
    if (m_heldBytes == RegionSize && m_open != nullptr && m_open->freeParts == AllParts)
        Drop(m_open);
}

void MemoryRegions::Open(Region* region) noexcept
{
    region->previous = nullptr;
    region->next = m_open;
    if (region->next != nullptr)
        region->next->previous = region;
    m_open = region;
}

void MemoryRegions::Close(Region* region) noexcept
{
    if (region->next != nullptr)
        region->next->previous = region->previous;
    if (region->previous != nullptr)
        region->previous->next = region->next;
    else
        m_open = region->next;
}

void MemoryRegions::Drop(Region* region) noexcept
{
    Close(region);
    m_heldBytes -= RegionSize;
    FreeLargePages(region, RegionSize);
}

std::size_t MemoryRegions::HeldBytes()
{
    const std::lock_guard lock(m_mutex);
    return m_heldBytes;
}

} // namespace kar

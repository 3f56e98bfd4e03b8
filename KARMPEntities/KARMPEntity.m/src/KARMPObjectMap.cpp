#include "KARMPObjectMap.h"

#include "KARLargePages.h"
#include "KARMPEntity.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace karmp {

static_assert(sizeof(KARMPEntity) >= 64, "two entities begin within 64 bytes");

ObjectMap::ObjectMap() : m_pages(16) {}

ObjectMap::~ObjectMap()
{
    for (const Block& block : m_blocks)
        kar::FreeLargePages(block.slots, block.bytes);
}

QOBSharedObject** ObjectMap::AddRun(std::uintptr_t page)
{
    if (2 * (m_pageCount + 1) > m_pages.size()) {
        const std::vector<Page> former =
            std::exchange(m_pages, std::vector<Page>(2 * m_pages.size()));
        for (const Page& entry : former)
            if (entry.run != nullptr)
                m_pages[IndexOf(entry.number)] = entry;
    }
    if (m_freeRuns == 0)
        AddBlock();
    const Block& block = m_blocks.back();
    QOBSharedObject** const run =
        block.slots + (block.bytes / sizeof(QOBSharedObject*) - m_freeRuns-- * SlotCount);
    ++m_pageCount;
    m_pages[IndexOf(page)] = {page, run};
    return run;
}

// Blocks grow with the map, from some size on by a large page each: the page faults of smaller ones
// would cost more than the part of the last page that stays free.
void ObjectMap::AddBlock()
{
    constexpr std::size_t RunBytes = SlotCount * sizeof(QOBSharedObject*);
    constexpr std::size_t LargestRuns = kar::LargePage / RunBytes;
    constexpr std::size_t FirstRuns = 8;
    const std::size_t runs =
        m_pageCount < LargestRuns / 4 ? std::max(m_pageCount, FirstRuns) : LargestRuns;
    m_blocks.reserve(m_blocks.size() + 1);
    const std::size_t bytes = runs * RunBytes;
    auto* const slots = static_cast<QOBSharedObject**>(kar::AllocateLargePages(bytes));
    std::uninitialized_fill_n(slots, runs * SlotCount, nullptr);
    m_blocks.push_back({slots, bytes});
    m_freeRuns = runs;
}

} // namespace karmp

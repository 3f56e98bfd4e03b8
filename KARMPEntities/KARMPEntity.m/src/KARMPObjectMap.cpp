#include "KARMPObjectMap.h"

#include "KARLargePages.h"
#include "KARMPEntity.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace karmp {

ObjectMap::ObjectMap() : m_areas(16), m_hashShift(60)
{
    static_assert(sizeof(KARMPEntity) >= SlotBytes, "two entities begin within a slot's bytes");
}

ObjectMap::~ObjectMap()
{
    for (const Block& block : m_blocks)
        kar::FreeLargePages(block.slots, block.bytes);
}

void ObjectMap::AddArea(std::uintptr_t number)
{
    constexpr std::size_t LargestLoad = 4; // one in as many is in use
    if (LargestLoad * (m_runs.size() + 1) > m_areas.size()) {
        std::vector<Area> larger(2 * m_areas.size());
        const std::vector<Area> former = std::exchange(m_areas, std::move(larger));
        --m_hashShift;
        for (const Area& area : former)
            if (area.runs != nullptr)
                m_areas[IndexOf(area.number)] = area;
    }
    m_runs.push_back(std::make_unique<Runs>());
    m_areas[IndexOf(number)] = {number, m_runs.back()->data()};
}

QOBSharedObject*& ObjectMap::SlotOfOtherRun(const QOBSharedObject* from)
{
    const Area& area = m_areas[IndexOf(AreaOf(from))];
    QOBSharedObject** run = area.runs != nullptr ? area.runs[RunOf(from)] : nullptr;
    if (run == nullptr)
        run = AddRun(from);
    const std::uintptr_t number = reinterpret_cast<std::uintptr_t>(from) >> RunBits;
    m_recent[number % RecentRuns] = {number, run};
    return run[SlotIn(from)];
}

QOBSharedObject** ObjectMap::AddRun(const QOBSharedObject* from)
{
    if (m_areas[IndexOf(AreaOf(from))].runs == nullptr)
        AddArea(AreaOf(from));
    if (m_freeRuns == 0)
        AddBlock();
    QOBSharedObject** const run = std::exchange(m_nextRun, m_nextRun + SlotCount);
    --m_freeRuns;
    ++m_runCount;
    m_areas[IndexOf(AreaOf(from))].runs[RunOf(from)] = run;
    return run;
}

// Blocks grow with the map, from some size on to a large page each: the page faults of smaller ones
// would cost more than the part of the last page that stays free.
void ObjectMap::AddBlock()
{
    constexpr std::size_t BytesOfRun = SlotCount * sizeof(QOBSharedObject*);
    constexpr std::size_t LargestRuns = kar::LargePage / BytesOfRun;
    constexpr std::size_t FirstRuns = 4;
    const bool isLargest = m_runCount >= LargestRuns / 4;
    const std::size_t runs = isLargest ? LargestRuns : std::max(m_runCount, FirstRuns);
    const std::size_t bytes = isLargest ? kar::LargePage : runs * BytesOfRun;
    m_blocks.reserve(m_blocks.size() + 1);
    auto* const slots = static_cast<QOBSharedObject**>(kar::AllocateLargePages(bytes));
    std::uninitialized_fill_n(slots, bytes / sizeof(QOBSharedObject*), nullptr);
    m_blocks.push_back({slots, bytes});
    m_nextRun = slots;
    m_freeRuns = runs;
}

} // namespace karmp

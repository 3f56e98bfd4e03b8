#include "KARMPHandleSequence.h"

#include "KARPrefetch.h"
#include "KARSmallMemory.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

// Up to here a scan of the handles beats the upkeep of an index.
constexpr std::size_t LongestScanned = 48;
// The slots at first: few lists of a joint or of a geometry between two joints need more.
constexpr std::size_t FirstCapacity = 4;
// Most of a model's many lists stay in a piece of memory of this size; few grow on.
constexpr std::size_t LargestOfMany = 64;

void* AllocateBlock(std::size_t bytes)
{
    return bytes <= LargestOfMany ? kar::AllocateSmall(bytes) : ::operator new(bytes);
}

void FreeBlock(void* block, std::size_t bytes) noexcept
{
    if (bytes <= LargestOfMany)
        kar::FreeSmall(block, bytes);
    else
        ::operator delete(block);
}

// Makes the next entry at the end cost no memory.
template <class T>
void MakeRoomForOne(std::vector<T>& entries)
{
    if (entries.size() == entries.capacity())
        entries.reserve(2 * entries.size() + 1);
}

} // namespace

// Where each referent stands, and, once somebody asks for a position while there are holes, how
// many entries the slots hold: a binary indexed tree, so that a hole costs no shift of what is
// behind it.
struct KARMPHandleSequence::Index
{
    std::vector<std::uint32_t> counts; // empty, or one node a slot
    // One more than the last slot of a referent, at the place of its hash or behind it; 0 is a free
    // place. Half of the places are free at least, so that a lookup meets few of others.
    std::vector<std::uint32_t> places;
    // Empty, or, once a referent is listed twice, for each slot the next one with its referent:
    // rings, so that the last slot leads to the first.
    std::vector<std::uint32_t> following;
    std::uint32_t slots = 0; // holes included

    void Push()
    {
        const std::size_t node = counts.size() + 1;
        std::uint32_t count = 1;
        for (std::size_t step = 1; (node & step) == 0; step <<= 1)
            count += counts[node - step - 1];
        counts.push_back(count);
    }
    void Lower(std::size_t slot)
    {
        for (std::size_t node = slot + 1; node <= counts.size(); node += node & (~node + 1))
            --counts[node - 1];
    }
    std::size_t CountBefore(std::size_t slot) const
    {
        std::size_t count = 0;
        for (std::size_t node = slot; node > 0; node &= node - 1)
            count += counts[node - 1];
        return count;
    }
    std::size_t SlotAt(std::size_t position) const
    {
        std::size_t slot = 0;
        for (std::size_t step = std::bit_floor(counts.size()); step > 0; step >>= 1) {
            if (slot + step <= counts.size() && counts[slot + step - 1] <= position) {
                slot += step;
                position -= counts[slot - 1];
            }
        }
        return slot;
    }

    // Each piece of memory has a run of places, somewhere, and its objects have their places within
    // it: so what was made one after the other is found side by side. Objects smaller than 64 bytes
    // would share places, but entities are larger.
    static constexpr unsigned RunBits = 12;
    static constexpr unsigned ObjectBits = 6;
    static constexpr std::size_t RunSize = std::size_t{1} << RunBits;
    std::size_t Home(const QOBSharedObject* object) const
    {
        const auto address = reinterpret_cast<std::uintptr_t>(object);
        const std::uint64_t run = (address >> RunBits) * 0x9E3779B97F4A7C15U >> 32U;
        return static_cast<std::size_t>((run << (RunBits - ObjectBits)) +
                                        (address % RunSize >> ObjectBits)) &
               (places.size() - 1);
    }
    std::size_t Next(std::size_t place) const { return (place + 1) & (places.size() - 1); }
    // The place of a referent, or the free one that it would get.
    std::size_t PlaceOf(const QOBSharedBase* handles, const QOBSharedObject* object) const
    {
        std::size_t place = Home(object);
        while (places[place] != 0 && handles[places[place] - 1] != object)
            place = Next(place);
        return place;
    }
    // The first slot of a referent, `none` when it has none.
    std::size_t Find(const QOBSharedBase* handles, const QOBSharedObject* object,
                     std::size_t none) const
    {
        const std::uint32_t place = places[PlaceOf(handles, object)];
        if (place == 0)
            return none;
        return following.empty() ? place - 1 : following[place - 1];
    }
    // Makes the entry of one referent more cost no memory.
    void MakeRoom(const QOBSharedBase* handles, std::size_t count)
    {
        if (2 * (count + 1) <= places.size())
            return;
        places = std::vector<std::uint32_t>(std::bit_ceil(2 * (count + 1)));
        for (std::uint32_t slot = 0; slot < slots; ++slot) {
            const bool last = following.empty() || following[slot] <= slot;
            if (handles[slot] && last)
                places[PlaceOf(handles, handles[slot]._getReferent())] = slot + 1;
        }
    }
    // Enters the next slot, behind all others.
    void Enter(const QOBSharedBase* handles, const QOBSharedObject* object)
    {
        std::uint32_t& place = places[PlaceOf(handles, object)];
        if (place != 0 && following.empty()) {
            following.reserve(slots + 1);
            for (std::uint32_t slot = 0; slot < slots; ++slot)
                following.push_back(slot);
        }
        if (!following.empty()) {
            MakeRoomForOne(following);
            following.push_back(place != 0 ? std::exchange(following[place - 1], slots) : slots);
        }
        place = ++slots;
    }
    // Takes out a slot whose handle still stands there.
    void Leave(const QOBSharedBase* handles, std::size_t slot)
    {
        const std::size_t place = PlaceOf(handles, handles[slot]._getReferent());
        if (following.empty() || following[slot] == slot) {
            Free(handles, place);
            return;
        }
        std::uint32_t before = places[place] - 1;
        while (following[before] != slot)
            before = following[before];
        following[before] = following[slot];
        if (places[place] == slot + 1)
            places[place] = before + 1;
    }
    // What was entered behind a place that gets free moves up as far as its own hash allows, so
    // that no lookup ends early.
    void Free(const QOBSharedBase* handles, std::size_t place)
    {
        const std::size_t last = places.size() - 1;
        for (std::size_t next = Next(place); places[next] != 0; next = Next(next)) {
            const std::size_t home = Home(handles[places[next] - 1]._getReferent());
            if (((next - home) & last) >= ((next - place) & last)) {
                places[place] = places[next];
                place = next;
            }
        }
        places[place] = 0;
    }
    // Forgets the last slot, which is a hole.
    void Pop()
    {
        --slots;
        if (!counts.empty())
            counts.pop_back();
        if (!following.empty())
            following.pop_back();
    }
};

inline std::size_t KARMPHandleSequence::BlockSize(std::size_t capacity) noexcept
{
    return sizeof(Block) + capacity * sizeof(QOBSharedBase);
}

inline QOBSharedBase* KARMPHandleSequence::Slots(Block* block) noexcept
{
    return reinterpret_cast<QOBSharedBase*>(block + 1);
}

// Without an index there are no holes.
inline std::size_t KARMPHandleSequence::SlotCount(const Block* block) noexcept
{
    if (block == nullptr)
        return 0;
    return block->index != nullptr ? block->index->slots : block->count;
}

inline QOBSharedBase* KARMPHandleSequence::Slots() const noexcept
{
    return Slots(m_block.get());
}

inline std::size_t KARMPHandleSequence::SlotCount() const noexcept
{
    return SlotCount(m_block.get());
}

inline KARMPHandleSequence::Index* KARMPHandleSequence::GetIndex() const noexcept
{
    return m_block != nullptr ? m_block->index : nullptr;
}

inline std::size_t KARMPHandleSequence::SlotOf(const QOBSharedObject* object) const
{
    const std::size_t none = SlotCount();
    if (object == nullptr || none == 0)
        return none;
    if (m_block->index != nullptr)
        return m_block->index->Find(Slots(), object, none);
    const QOBSharedBase* const slots = Slots();
    return static_cast<std::size_t>(std::find(slots, slots + none, object) - slots);
}

inline void KARMPHandleSequence::MakeRoom()
{
    if (m_block == nullptr)
        Reserve(FirstCapacity);
    else if (SlotCount() == m_block->capacity)
        Reserve(2 * SlotCount());
}

void KARMPHandleSequence::End::operator()(Block* block) const noexcept
{
    const std::size_t count = SlotCount(block);
    for (std::size_t slot = 0; slot < count; ++slot) {
        if (slot + kar::PrefetchDistance < count)
            kar::Prefetch(Slots(block)[slot + kar::PrefetchDistance]._getReferent(),
                          kar::PrefetchedBytes);
        std::destroy_at(Slots(block) + slot);
    }
    delete block->index;
    const std::size_t capacity = block->capacity;
    block->~Block();
    FreeBlock(block, BlockSize(capacity));
}

KARMPHandleSequence::KARMPHandleSequence(const KARMPHandleSequence& source)
{
    if (source.Count() == 0)
        return;
    Reserve(source.Count());
    for (std::size_t slot = 0; slot < source.SlotCount(); ++slot)
        if (const QOBSharedBase& handle = source.Slots()[slot])
            ::new (Slots() + m_block->count++) QOBSharedBase(handle);
    if (Count() > LongestScanned)
        BuildIndex();
}

KARMPHandleSequence& KARMPHandleSequence::operator=(const KARMPHandleSequence& source)
{
    if (this != &source)
        *this = KARMPHandleSequence(source);
    return *this;
}

KARMPHandleSequence& KARMPHandleSequence::operator=(KARMPHandleSequence&& other) noexcept
{
    KARMPHandleSequence taken(std::move(other));
    m_block.swap(taken.m_block);
    return *this;
}

bool KARMPHandleSequence::Contains(const QOBSharedObject* object) const
{
    return SlotOf(object) != SlotCount();
}

const QOBSharedBase& KARMPHandleSequence::At(std::size_t position) const
{
    return Slots()[SlotAt(position)];
}

void KARMPHandleSequence::Append(const QOBSharedBase& handle)
{
    if (!handle)
        return;
    if (GetIndex() == nullptr && Count() >= LongestScanned)
        BuildIndex();
    QOBSharedBase added(handle); // before the argument, which may be an entry, moves
    // Room comes first, so that nothing is half done when memory ends.
    MakeRoom();
    const std::size_t slot = SlotCount();
    if (Index* const index = m_block->index) {
        if (!index->counts.empty())
            MakeRoomForOne(index->counts);
        index->MakeRoom(Slots(), Count());
        index->Enter(Slots(), added._getReferent());
        if (!index->counts.empty())
            index->Push();
    }
    ::new (Slots() + slot) QOBSharedBase(std::move(added));
    ++m_block->count;
}

void KARMPHandleSequence::Insert(std::size_t position, const QOBSharedBase& handle)
{
    if (position >= Count()) {
        Append(handle);
        return;
    }
    if (!handle)
        return;
    QOBSharedBase inserted(handle); // before the argument, which may be an entry, moves
    Compact();
    MakeRoom();
    QOBSharedBase* const end = Slots() + SlotCount();
    ::new (end) QOBSharedBase();
    std::move_backward(Slots() + position, end, end + 1);
    Slots()[position] = std::move(inserted);
    ++m_block->count;
    if (m_block->index != nullptr || Count() > LongestScanned)
        RebuildIndex();
}

bool KARMPHandleSequence::Remove(const QOBSharedObject* object, std::size_t* position)
{
    const std::size_t slot = SlotOf(object);
    if (slot == SlotCount())
        return false;
    if (position != nullptr)
        *position = PositionOf(slot);
    const QOBSharedBase released = Extract(slot); // goes when this sequence is in order again
    return true;
}

QOBSharedBase KARMPHandleSequence::Take(std::size_t position)
{
    // With an entry listed twice the index knows both slots; the one at this position goes.
    return Extract(SlotAt(position));
}

void KARMPHandleSequence::Clear()
{
    // What a referent's destructor does may reach this sequence again, so it is empty by then.
    const std::unique_ptr<Block, End> released = std::move(m_block);
}

void KARMPHandleSequence::Reserve(std::size_t capacity)
{
    if (capacity > std::numeric_limits<std::uint32_t>::max() / 4)
        throw std::length_error("KARMP handle sequence: too many entries");
    static_assert(sizeof(Block) % alignof(QOBSharedBase) == 0);
    void* const memory = AllocateBlock(BlockSize(capacity));
    auto* const block = ::new (memory) Block{nullptr, 0, static_cast<std::uint32_t>(capacity)};
    if (m_block != nullptr) {
        std::uninitialized_move_n(Slots(), SlotCount(), Slots(block));
        block->index = std::exchange(m_block->index, nullptr);
        block->count = std::exchange(m_block->count, 0);
    }
    m_block.reset(block);
}

std::size_t KARMPHandleSequence::SlotAt(std::size_t position) const
{
    Index* const index = GetIndex();
    if (index == nullptr || index->slots == m_block->count)
        return position;
    if (index->counts.empty()) {
        index->counts.reserve(index->slots);
        for (std::size_t slot = 0; slot < index->slots; ++slot)
            index->Push();
        for (std::size_t slot = 0; slot < index->slots; ++slot)
            if (!Slots()[slot])
                index->Lower(slot);
    }
    return index->SlotAt(position);
}

std::size_t KARMPHandleSequence::PositionOf(std::size_t slot) const
{
    if (SlotCount() == Count())
        return slot;
    static_cast<void>(SlotAt(0)); // makes the counts
    return m_block->index->CountBefore(slot);
}

QOBSharedBase KARMPHandleSequence::Extract(std::size_t slot)
{
    QOBSharedBase* const slots = Slots();
    Index* const index = m_block->index;
    if (index == nullptr) {
        QOBSharedBase handle = std::move(slots[slot]);
        std::move(slots + slot + 1, slots + m_block->count, slots + slot);
        --m_block->count; // the last slot is empty and needs no end
        return handle;
    }
    index->Leave(slots, slot);
    QOBSharedBase handle = std::move(slots[slot]);
    --m_block->count;
    if (!index->counts.empty())
        index->Lower(slot);
    while (index->slots > 0 && !slots[index->slots - 1])
        index->Pop();
    const std::size_t holes = index->slots - m_block->count;
    if (holes > LongestScanned && 2 * holes > index->slots)
        Compact();
    return handle;
}

void KARMPHandleSequence::BuildIndex()
{
    auto index = std::make_unique<Index>();
    index->MakeRoom(Slots(), Count());
    for (std::size_t slot = 0; slot < Count(); ++slot)
        index->Enter(Slots(), Slots()[slot]._getReferent());
    m_block->index = index.release();
}

void KARMPHandleSequence::DropIndex() noexcept
{
    delete std::exchange(m_block->index, nullptr);
}

// Without memory for an index the handles are scanned, until the next entry makes one.
void KARMPHandleSequence::RebuildIndex() noexcept
{
    DropIndex();
    try {
        BuildIndex();
    } catch (const std::bad_alloc&) {
        // There is none.
    }
}

void KARMPHandleSequence::Compact()
{
    if (SlotCount() == Count())
        return;
    QOBSharedBase* const slots = Slots();
    static_cast<void>(std::remove_if(slots, slots + SlotCount(),
                                     [](const QOBSharedBase& handle) { return !handle; }));
    RebuildIndex();
}

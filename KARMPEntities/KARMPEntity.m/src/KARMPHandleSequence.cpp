#include "KARMPHandleSequence.h"

#include "KARMPEntity.h"
#include "KARMPHandleIndex.h"
#include "KARMPLinkPlacer.h"
#include "KARPrefetch.h"
#include "KARSmallMemory.h"

#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

namespace {

// Up to here a scan of the handles beats the upkeep of an index.
constexpr std::size_t LongestScanned = 48;
// The slots at first: most lists of a joint or of a constraint need no more.
constexpr std::size_t FirstCapacity = 2;
// Most of a model's lists fit a block of this size; few grow on.
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

} // namespace

inline std::size_t KARMPHandleSequence::BlockSize(std::size_t capacity) noexcept
{
    return sizeof(Block) + capacity * sizeof(QOBSharedBase) +
           (capacity > LongestScanned ? sizeof(karmp::HandleIndex*) : 0);
}

inline QOBSharedBase* KARMPHandleSequence::Slots(Block* block) noexcept
{
    return reinterpret_cast<QOBSharedBase*>(block + 1);
}

// Of a block with more capacity than is scanned.
inline karmp::HandleIndex*& KARMPHandleSequence::IndexOf(Block* block) noexcept
{
    return *reinterpret_cast<karmp::HandleIndex**>(Slots(block) + block->capacity);
}

// The index, which a sequence has only while it is long.
inline karmp::HandleIndex* KARMPHandleSequence::GetIndex(const Block* block) noexcept
{
    return block->capacity > LongestScanned ? IndexOf(const_cast<Block*>(block)) : nullptr;
}

// Without an index there are no holes.
inline std::size_t KARMPHandleSequence::SlotCount(const Block* block) noexcept
{
    if (block == nullptr)
        return 0;
    const karmp::HandleIndex* const index = GetIndex(block);
    return index != nullptr ? index->SlotCount() : block->count;
}

inline QOBSharedBase* KARMPHandleSequence::Slots() const noexcept
{
    return Slots(m_block.get());
}

inline std::size_t KARMPHandleSequence::SlotCount() const noexcept
{
    return SlotCount(m_block.get());
}

inline karmp::HandleIndex* KARMPHandleSequence::GetIndex() const noexcept
{
    return m_block != nullptr ? GetIndex(m_block.get()) : nullptr;
}

inline std::size_t KARMPHandleSequence::SlotOf(const QOBSharedObject* object) const
{
    const std::size_t none = SlotCount();
    if (object == nullptr || none == 0)
        return none;
    EnsureIndex();
    if (const karmp::HandleIndex* const index = GetIndex())
        return index->Find(Slots(), object, none);
    const QOBSharedBase* const slots = Slots();
    return static_cast<std::size_t>(std::find(slots, slots + none, object) - slots);
}

inline void KARMPHandleSequence::EnsureFreeSlot()
{
    if (m_block == nullptr)
        Allocate(FirstCapacity);
    else if (SlotCount() == m_block->capacity)
        Allocate(2 * SlotCount());
}

// Prefetches what the release of handles in a row touches: far ahead the counts alone, nearer the
// whole of each referent whose last handle is among them, and then its texts.
inline void KARMPHandleSequence::PrefetchReleased(const QOBSharedBase* slots, std::size_t slot,
                                                  std::size_t count) noexcept
{
    constexpr std::size_t TextDistance = kar::PrefetchDistance / 2;
    const auto dies = [&](std::size_t ahead) -> const QOBSharedObject* {
        const QOBSharedObject* const next =
            slot + ahead < count ? slots[slot + ahead]._getReferent() : nullptr;
        return next != nullptr && next->getReferenceCount() == 1 ? next : nullptr;
    };
    if (slot + kar::FarPrefetchDistance < count)
        kar::Prefetch(slots[slot + kar::FarPrefetchDistance]._getReferent(),
                      sizeof(QOBSharedObject));
    if (const QOBSharedObject* const next = dies(kar::PrefetchDistance))
        kar::Prefetch(next, kar::PrefetchedBytes);
    if (const QOBSharedObject* const next = dies(TextDistance))
        static_cast<const KARMPEntity*>(next)->PrefetchTexts();
}

void KARMPHandleSequence::End::operator()(Block* block) const noexcept
{
    const std::size_t count = SlotCount(block);
    for (std::size_t slot = 0; slot < count; ++slot) {
        PrefetchReleased(Slots(block), slot, count);
        std::destroy_at(Slots(block) + slot);
    }
    delete GetIndex(block);
    const std::size_t capacity = block->capacity;
    block->~Block();
    FreeBlock(block, BlockSize(capacity));
}

KARMPHandleSequence::KARMPHandleSequence(const KARMPHandleSequence& source)
{
    if (source.Count() == 0)
        return;
    Allocate(source.Count());
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

std::size_t KARMPHandleSequence::Find(const QOBSharedObject* object) const
{
    const std::size_t slot = SlotOf(object);
    return slot != SlotCount() ? PositionOf(slot) : Count();
}

const QOBSharedBase& KARMPHandleSequence::At(std::size_t position) const
{
    return Slots()[SlotAt(position)];
}

std::span<const QOBSharedBase> KARMPHandleSequence::From(std::size_t position) const
{
    if (SlotCount() == Count())
        return {Slots() + position, Count() - position};
    return {&At(position), 1};
}

void KARMPHandleSequence::Append(const QOBSharedBase& handle)
{
    if (!handle)
        return;
    if (GetIndex() == nullptr && Count() >= LongestScanned) {
        EnsureFreeSlot(); // in a block with a pointer to an index
        BuildIndex();
    }
    AppendNew(QOBSharedBase(handle)); // a copy, since the argument may be an entry, which moves
}

// One look-up instead of two, which are 4 % of a world's build.
bool KARMPHandleSequence::AppendOnce(const QOBSharedBase& handle)
{
    EnsureIndex();
    karmp::HandleIndex* const index = GetIndex();
    if (index == nullptr || SlotCount() == m_block->capacity) {
        if (!handle || Contains(handle._getReferent()))
            return false;
        Append(handle);
        return true;
    }
    if (!handle || !index->Append(Slots(), Count(), handle._getReferent(), true))
        return false;
    ::new (Slots() + index->SlotCount() - 1) QOBSharedBase(handle);
    ++m_block->count;
    return true;
}

void KARMPHandleSequence::AppendNew(QOBSharedBase&& handle)
{
    if (!handle)
        return;
    // What allocates comes first, so that nothing is half done when that fails.
    EnsureFreeSlot();
    const std::size_t slot = SlotCount();
    if (karmp::HandleIndex* const index = GetIndex())
        index->Append(Slots(), Count(), handle._getReferent());
    ::new (Slots() + slot) QOBSharedBase(std::move(handle));
    ++m_block->count;
}

void KARMPHandleSequence::PlaceLinks(const KARMPHandleSequence& source, karmp::LinkPlacer& placer)
{
    if (m_block != nullptr)
        Clear();
    if (source.Count() == 0)
        return;
    Allocate(source.Count());
    Block& block = *m_block;
    const QOBSharedBase* const end = source.Slots() + source.SlotCount();
    // The count is right at any time, since an allocation of the placer may fail.
    for (const QOBSharedBase* from = source.Slots(); from != end; ++from)
        if (*from && placer.Place(Slots(&block) + block.count, from->_getReferent()))
            ++block.count;
}

bool KARMPHandleSequence::HasDroppedLinks() const noexcept
{
    return Count() > 0 && std::find(Slots(), Slots() + Count(), nullptr) != Slots() + Count();
}

void KARMPHandleSequence::Reserve(std::size_t count)
{
    Compact();
    if (count > 0 && (m_block == nullptr || m_block->capacity < count))
        Allocate(count);
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
    EnsureFreeSlot();
    QOBSharedBase* const end = Slots() + SlotCount();
    ::new (end) QOBSharedBase();
    std::move_backward(Slots() + position, end, end + 1);
    Slots()[position] = std::move(inserted);
    ++m_block->count;
    if (GetIndex() != nullptr || Count() > LongestScanned)
        RebuildIndex();
}

void KARMPHandleSequence::Replace(std::size_t position, const QOBSharedBase& handle)
{
    if (!handle)
        return;
    const std::size_t slot = SlotAt(position);
    QOBSharedBase exchanged(handle);
    if (karmp::HandleIndex* const index = GetIndex())
        index->Replace(Slots(), slot, exchanged._getReferent());
    // What was there is released when this sequence is consistent again.
    Slots()[slot].swap(exchanged);
}

bool KARMPHandleSequence::Remove(const QOBSharedObject* object, std::size_t* position)
{
    const std::size_t slot = SlotOf(object);
    if (slot == SlotCount())
        return false;
    if (position != nullptr)
        *position = PositionOf(slot);
    const QOBSharedBase released = Extract(slot); // released when this sequence is consistent again
    return true;
}

QOBSharedBase KARMPHandleSequence::Take(std::size_t position)
{
    EnsureIndex();
    // With an entry listed twice the index knows both slots; the one at this position goes.
    return Extract(SlotAt(position));
}

void KARMPHandleSequence::Clear()
{
    // What a referent's destructor does may reach this sequence again, so it is empty by then.
    const std::unique_ptr<Block, End> released = std::move(m_block);
}

void KARMPHandleSequence::Allocate(std::size_t capacity)
{
    if (capacity > std::numeric_limits<std::uint32_t>::max() / 4)
        throw std::length_error("KARMP handle sequence: too many entries");
    static_assert(sizeof(Block) % alignof(QOBSharedBase) == 0);
    void* const memory = AllocateBlock(BlockSize(capacity));
    auto* const block = ::new (memory) Block{0, static_cast<std::uint32_t>(capacity)};
    if (capacity > LongestScanned)
        ::new (&IndexOf(block)) karmp::HandleIndex*(nullptr);
    if (m_block != nullptr) {
        // A block never becomes smaller than one with an index.
        std::uninitialized_move_n(Slots(), SlotCount(), Slots(block));
        if (GetIndex() != nullptr)
            IndexOf(block) = std::exchange(IndexOf(m_block.get()), nullptr);
        block->count = std::exchange(m_block->count, 0);
    }
    m_block.reset(block);
}

std::size_t KARMPHandleSequence::SlotAt(std::size_t position) const
{
    return SlotCount() == Count() ? position : GetIndex()->SlotAt(Slots(), position);
}

std::size_t KARMPHandleSequence::PositionOf(std::size_t slot) const
{
    return SlotCount() == Count() ? slot : GetIndex()->PositionOf(Slots(), slot);
}

QOBSharedBase KARMPHandleSequence::Extract(std::size_t slot)
{
    QOBSharedBase* const slots = Slots();
    karmp::HandleIndex* const index = GetIndex();
    if (index == nullptr) {
        QOBSharedBase handle = std::move(slots[slot]);
        std::move(slots + slot + 1, slots + m_block->count, slots + slot);
        --m_block->count; // the last slot is empty and needs no destruction
        return handle;
    }
    index->Remove(slots, slot);
    QOBSharedBase handle = std::move(slots[slot]);
    --m_block->count;
    while (index->SlotCount() > 0 && !slots[index->SlotCount() - 1])
        index->Pop();
    const std::size_t holes = index->SlotCount() - m_block->count;
    if (holes > LongestScanned && 2 * holes > index->SlotCount())
        Compact();
    return handle;
}

void KARMPHandleSequence::BuildIndex() const
{
    auto index = std::make_unique<karmp::HandleIndex>();
    index->Reserve(Slots(), Count() + 1);
    for (std::size_t slot = 0; slot < Count(); ++slot)
        index->Append(Slots(), slot, Slots()[slot]._getReferent());
    IndexOf(m_block.get()) = index.release();
}

void KARMPHandleSequence::EnsureIndex() const noexcept
{
    if (GetIndex() == nullptr && Count() > LongestScanned)
        RebuildIndex();
}

void KARMPHandleSequence::DropIndex() const noexcept
{
    if (GetIndex() != nullptr)
        delete std::exchange(IndexOf(m_block.get()), nullptr);
}

// When the allocation fails the handles are scanned, until the next entry makes an index.
void KARMPHandleSequence::RebuildIndex() const noexcept
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

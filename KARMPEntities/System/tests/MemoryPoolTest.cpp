#include "KARMemoryPool.h"

#include "AllocationCounter.h"
#include "KARPrefetch.h"
#include "KARSmallMemory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <new>
#include <random>
#include <set>
#include <thread>
#include <vector>

namespace {

using kar::MemoryPool;

/// What one test got of a pool, each block filled with a byte of its own.
class Pieces
{
public:
    explicit Pieces(MemoryPool& pool) : m_pool(pool) {}
    Pieces(const Pieces&) = delete;
    Pieces& operator=(const Pieces&) = delete;
    ~Pieces()
    {
        while (Count() > 0)
            Free(Count() - 1);
    }

    std::size_t Count() const { return m_pieces.size(); }
    std::byte* Allocate(std::size_t bytes)
    {
        auto* const memory = static_cast<std::byte*>(m_pool.Allocate(bytes));
        const auto fill = static_cast<std::byte>(++m_fill);
        std::memset(memory, static_cast<int>(fill), bytes);
        m_pieces.push_back({memory, bytes, fill});
        return memory;
    }
    /// Frees the block at an index, which the last one moves to.
    void Free(std::size_t index)
    {
        std::swap(m_pieces[index], m_pieces.back());
        const Piece piece = m_pieces.back();
        m_pieces.pop_back();
        EXPECT_TRUE(IsWhole(piece));
        m_pool.Free(piece.memory, piece.bytes);
    }
    bool AreWhole() const { return std::all_of(m_pieces.begin(), m_pieces.end(), IsWhole); }

private:
    struct Piece
    {
        std::byte* memory;
        std::size_t bytes;
        std::byte fill;
    };

    static bool IsWhole(const Piece& piece)
    {
        return std::all_of(
            piece.memory, piece.memory + piece.bytes,
            [&piece](std::byte byte) { return byte == piece.fill; });
    }

    MemoryPool& m_pool;
    std::vector<Piece> m_pieces;
    unsigned m_fill = 0;
};

TEST(MemoryPool, GivesAlignedPiecesOfEverySizeThatDoNotOverlap)
{
    MemoryPool pool;
    Pieces pieces(pool);
    for (int round = 0; round < 3; ++round) {
        for (std::size_t bytes = 0; bytes <= MemoryPool::LargestSize + 40; ++bytes) {
            const auto address = reinterpret_cast<std::uintptr_t>(pieces.Allocate(bytes));
            ASSERT_EQ(address % __STDCPP_DEFAULT_NEW_ALIGNMENT__, 0U) << bytes;
        }
    }
    EXPECT_TRUE(pieces.AreWhole());
}

TEST(MemoryPool, GivesPiecesOfOneSizeSideBySideInOrder)
{
    MemoryPool pool;
    Pieces pieces(pool);
    const std::byte* former = pieces.Allocate(264);
    for (int count = 0; count < 6; ++count) {
        pieces.Allocate(100);
        const std::byte* const memory = pieces.Allocate(264);
        EXPECT_EQ(memory - former, 272);
        former = memory;
    }
}

TEST(MemoryPool, UsesABlockAgainForItsSizeOnly)
{
    MemoryPool pool;
    Pieces pieces(pool);
    pieces.Allocate(300);
    const std::byte* const memory = pieces.Allocate(300);
    pieces.Free(1);
    EXPECT_NE(pieces.Allocate(320), memory);
    EXPECT_EQ(pieces.Allocate(300), memory);
}

TEST(MemoryPool, UsesEveryFreeBlockAgain)
{
    MemoryPool pool;
    Pieces pieces(pool);
    for (int count = 0; count < 20'000; ++count)
        pieces.Allocate(264);
    const std::size_t held = pool.HeldBytes();
    for (std::size_t index = 0; index < 10'000; ++index)
        pieces.Free(index);
    while (pieces.Count() < 20'000)
        pieces.Allocate(264);
    EXPECT_LE(pool.HeldBytes(), held);
    EXPECT_TRUE(pieces.AreWhole());
}

TEST(MemoryPool, FillsAnEmptiedChunkInOrderAgain)
{
    MemoryPool pool;
    Pieces pieces(pool);
    const std::byte* const first = pieces.Allocate(200);
    pieces.Allocate(200);
    pieces.Free(1);
    pieces.Free(0);
    EXPECT_EQ(pieces.Allocate(200), first);
    EXPECT_GT(pieces.Allocate(200), first);
}

TEST(MemoryPool, TakesLargePiecesFromTheHeapDirectly)
{
    MemoryPool pool;
    Pieces pieces(pool);
    pieces.Allocate(MemoryPool::LargestSize + 1);
    EXPECT_EQ(pool.HeldBytes(), 0U);
    pieces.Allocate(MemoryPool::LargestSize);
    EXPECT_GT(pool.HeldBytes(), MemoryPool::LargestSize);
}

TEST(MemoryPool, TakesFewPiecesFromTheHeap)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "this build cannot count allocations";
    MemoryPool pool;
    std::vector<void*> memory(100'000);
    const AllocationCounter allocations;
    for (void*& piece : memory)
        piece = pool.Allocate(224);
    EXPECT_LT(allocations.Count(), 250U);
    EXPECT_EQ(allocations.Bytes(), pool.HeldBytes());
    EXPECT_LT(allocations.Bytes(), memory.size() * 240 * 21 / 20);
    for (void* piece : memory)
        pool.Free(piece, 224);
}

TEST(MemoryPool, GivesItsMemoryBackInWhicheverOrderItComes)
{
    MemoryPool pool;
    std::mt19937 random(7);
    for (int order = 0; order < 3; ++order) {
        std::vector<void*> memory(20'000);
        for (void*& piece : memory)
            piece = pool.Allocate(264);
        EXPECT_GT(pool.HeldBytes(), memory.size() * 264);
        if (order == 1)
            std::reverse(memory.begin(), memory.end());
        if (order == 2)
            std::shuffle(memory.begin(), memory.end(), random);
        for (void* piece : memory)
            pool.Free(piece, 264);
        EXPECT_LE(pool.HeldBytes(), MemoryPool::SmallestChunk);
    }
}

TEST(MemoryPool, KeepsAChunkAsLongAsABlockOfItIsInUse)
{
    MemoryPool pool;
    Pieces pieces(pool);
    for (int count = 0; count < 20'000; ++count)
        pieces.Allocate(264);
    const std::size_t full = pool.HeldBytes();
    for (std::size_t index = 0; index < pieces.Count(); ++index)
        pieces.Free(index);
    EXPECT_TRUE(pieces.AreWhole());
    EXPECT_LE(pool.HeldBytes(), full);
    while (pieces.Count() > 1)
        pieces.Free(1);
    EXPECT_TRUE(pieces.AreWhole());
    EXPECT_LE(pool.HeldBytes(), 2 * MemoryPool::LargestChunk);
}

TEST(MemoryPool, TakingAndGivingByTurnsMovesNoChunk)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "this build cannot count allocations";
    for (const int kept : {0, 5, 500, 5'000}) {
        MemoryPool pool;
        Pieces pieces(pool);
        for (int count = 0; count < kept; ++count)
            pieces.Allocate(500);
        // Wherever the end of a chunk is, it is met.
        for (int block = 0; block < 300; ++block) {
            pool.Free(pool.Allocate(500), 500);
            {
                const AllocationCounter allocations;
                for (int turn = 0; turn < 10; ++turn)
                    pool.Free(pool.Allocate(500), 500);
                ASSERT_EQ(allocations.Count(), 0U) << kept << ", " << block;
            }
            pieces.Allocate(500);
        }
    }
}

// The leak sanitizer sees what stays.
TEST(MemoryPool, KeepsNoEmptyChunkAtItsEnd)
{
    MemoryPool pool;
    pool.Free(pool.Allocate(200), 200);
    EXPECT_GT(pool.HeldBytes(), 0U);
}

TEST(MemoryPool, StaysWholeUnderAnyOrderOfCalls)
{
    MemoryPool pool;
    Pieces pieces(pool);
    std::mt19937 random(3);
    for (int call = 0; call < 50'000; ++call) {
        const bool growing = call / 5'000 % 2 == 0;
        if (pieces.Count() == 0 || random() % 3 < (growing ? 2U : 1U))
            pieces.Allocate(random() % 40 * 8);
        else
            pieces.Free(random() % pieces.Count());
    }
    EXPECT_TRUE(pieces.AreWhole());
}

TEST(MemoryPool, ChangesNothingWhenMemoryEnds)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "this build cannot let an allocation fail";
    MemoryPool pool;
    Pieces pieces(pool);
    for (const std::size_t bytes : {std::size_t{100}, MemoryPool::LargestSize + 1}) {
        AllocationCounter allocations;
        allocations.FailAllocation(1);
        EXPECT_THROW(pool.Allocate(bytes), std::bad_alloc);
        EXPECT_EQ(pool.HeldBytes(), 0U);
    }
    pieces.Allocate(100);
    EXPECT_GT(pool.HeldBytes(), 0U);
}

TEST(MemoryPool, TakesBackFromAnyThreadWhatAnotherGot)
{
    constexpr int ThreadCount = 12; // more than there are groups of size classes
    MemoryPool pool;
    std::mutex mutex;
    std::vector<std::pair<void*, std::size_t>> passedOn;
    const auto work = [&](unsigned seed) {
        std::mt19937 random(seed);
        for (int turn = 0; turn < 2'000; ++turn) {
            const std::size_t bytes = 16 + random() % 6 * 100;
            void* const memory = pool.Allocate(bytes);
            std::memset(memory, static_cast<int>(seed), bytes);
            std::pair<void*, std::size_t> other(nullptr, 0);
            {
                const std::lock_guard lock(mutex);
                passedOn.emplace_back(memory, bytes);
                if (random() % 4 != 0) {
                    std::swap(passedOn[random() % passedOn.size()], passedOn.back());
                    other = passedOn.back();
                    passedOn.pop_back();
                }
            }
            if (other.first != nullptr)
                pool.Free(other.first, other.second);
        }
    };
    std::vector<std::thread> threads;
    for (unsigned seed = 0; seed < ThreadCount; ++seed)
        threads.emplace_back(work, seed);
    for (std::thread& thread : threads)
        thread.join();
    std::set<void*> distinct;
    for (const auto& [memory, bytes] : passedOn) {
        EXPECT_TRUE(distinct.insert(memory).second);
        pool.Free(memory, bytes);
    }
    EXPECT_GT(distinct.size(), 1'000U);
    // Six sizes in each group of threads keep a small chunk at most.
    EXPECT_LE(pool.HeldBytes(), 6 * ThreadCount * MemoryPool::SmallestChunk);
}

TEST(SmallMemory, ServesEverySizeAndTakesItBack)
{
    std::vector<std::pair<void*, std::size_t>> memory;
    for (std::size_t bytes = 0; bytes < 3'000; bytes += 7) {
        memory.emplace_back(kar::AllocateSmall(bytes), bytes);
        std::memset(memory.back().first, 1, bytes);
    }
    for (const auto& [piece, bytes] : memory)
        kar::FreeSmall(piece, bytes);
    kar::FreeSmall(nullptr, 40);
}

TEST(Prefetch, TakesAnyAddress)
{
    const int number = 5;
    kar::Prefetch(&number, 1'000);
    kar::Prefetch(nullptr, 1'000);
    kar::Prefetch(reinterpret_cast<const void*>(std::uintptr_t{1}), 64);
    EXPECT_EQ(number, 5);
}

} // namespace

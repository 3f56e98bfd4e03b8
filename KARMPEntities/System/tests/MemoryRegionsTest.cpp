#include "KARLargePages.h"
#include "KARMemoryPool.h"
#include "KARMemoryRegions.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <set>
#include <thread>
#include <vector>

namespace {

using kar::MemoryPool;
using kar::MemoryRegions;

TEST(MemoryRegions, GivesAlignedPartsThatDoNotOverlap)
{
    MemoryRegions regions;
    std::vector<std::byte*> parts;
    for (std::size_t count = 0; count < 3 * MemoryRegions::PartsPerRegion; ++count) {
        parts.push_back(static_cast<std::byte*>(regions.Allocate()));
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(parts.back()) % MemoryRegions::Alignment, 0U);
        std::memset(parts.back(), static_cast<int>(count), MemoryRegions::PartSize);
    }
    EXPECT_EQ(regions.HeldBytes(), 3 * MemoryRegions::RegionSize);
    for (std::size_t count = 0; count < parts.size(); ++count) {
        EXPECT_EQ(parts[count][0], static_cast<std::byte>(count));
        EXPECT_EQ(parts[count][MemoryRegions::PartSize - 1], static_cast<std::byte>(count));
        regions.Free(parts[count]);
    }
    EXPECT_EQ(regions.HeldBytes(), 0U);
}

TEST(MemoryRegions, UsesAFreePartAgain)
{
    MemoryRegions regions;
    void* const first = regions.Allocate();
    void* const second = regions.Allocate();
    regions.Free(first);
    EXPECT_EQ(regions.Allocate(), first);
    regions.Free(first);
    regions.Free(second);
}

TEST(MemoryRegions, KeepsAnEmptyRegionOnlyBesideFullOnes)
{
    MemoryRegions regions;
    std::vector<void*> parts(2 * MemoryRegions::PartsPerRegion);
    for (void*& part : parts)
        part = regions.Allocate();
    for (std::size_t count = 0; count < MemoryRegions::PartsPerRegion; ++count) {
        regions.Free(parts.back());
        parts.pop_back();
    }
    EXPECT_EQ(regions.HeldBytes(), 2 * MemoryRegions::RegionSize);
    regions.Free(parts.back());
    parts.pop_back();
    EXPECT_LE(regions.HeldBytes(), 2 * MemoryRegions::RegionSize);
    for (void* const part : parts)
        regions.Free(part);
    EXPECT_EQ(regions.HeldBytes(), 0U);
}

TEST(MemoryRegions, ServesThreads)
{
    MemoryRegions regions;
    const auto work = [&regions] {
        std::vector<void*> parts(100);
        for (int turn = 0; turn < 20; ++turn) {
            for (void*& part : parts) {
                part = regions.Allocate();
                *static_cast<void**>(part) = part;
            }
            for (void* const part : parts) {
                ASSERT_EQ(*static_cast<void**>(part), part);
                regions.Free(part);
            }
        }
    };
    std::vector<std::thread> threads;
    for (int count = 0; count < 4; ++count)
        threads.emplace_back(work);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(regions.HeldBytes(), 0U);
}

TEST(MemoryRegions, GiveAPoolItsLargestChunks)
{
    MemoryRegions regions;
    MemoryPool pool(regions);
    std::vector<void*> memory(60'000);
    std::set<void*> distinct;
    for (void*& piece : memory) {
        piece = pool.Allocate(264);
        std::memset(piece, 1, 264);
        distinct.insert(piece);
    }
    EXPECT_EQ(distinct.size(), memory.size());
    EXPECT_GT(regions.HeldBytes(), pool.HeldBytes() * 9 / 10);
    EXPECT_LT(regions.HeldBytes(), pool.HeldBytes() + MemoryRegions::RegionSize);
    for (void* const piece : memory)
        pool.Free(piece, 264);
    EXPECT_EQ(regions.HeldBytes(), 0U);
    EXPECT_LE(pool.HeldBytes(), MemoryPool::SmallestChunk);
}

TEST(MemoryRegions, AreNotUsedForAFewEntities)
{
    MemoryRegions regions;
    MemoryPool pool(regions);
    std::vector<void*> memory(900);
    for (void*& piece : memory)
        piece = pool.Allocate(264);
    EXPECT_EQ(regions.HeldBytes(), 0U);
    for (void* const piece : memory)
        pool.Free(piece, 264);
}

TEST(LargePages, BeginTheMemoryThatHasAsManyBytes)
{
    for (const std::size_t bytes :
         {std::size_t{100}, kar::LargePage - 1, kar::LargePage, 3 * kar::LargePage + 5}) {
        auto* const memory = static_cast<std::byte*>(kar::AllocateLargePages(bytes));
        if (bytes >= kar::LargePage)
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % kar::LargePage, 0U) << bytes;
        std::memset(memory, 7, bytes);
        EXPECT_EQ(memory[bytes - 1], std::byte{7});
        kar::FreeLargePages(memory, bytes);
    }
}

TEST(LargePages, MayBeAskedForAnyMemory)
{
    std::vector<std::byte> memory(5 * kar::LargePage, std::byte{3});
    kar::AskForLargePages(memory.data() + 1, memory.size() - 2);
    kar::AskForLargePages(memory.data(), 10);
    kar::AskForLargePages(nullptr, 0);
    EXPECT_EQ(memory.back(), std::byte{3});
}

} // namespace

#include "KARMPAddressOrder.h"

#include "KARMPFilterParts.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace {

std::uint64_t AddressOf(const QOBSharedObject* object)
{
    return reinterpret_cast<std::uintptr_t>(object);
}

// Objects of several classes that are created by turns lie in as many rows.
constexpr std::size_t Rows = 8;
/// An object of a list and those listed before it.
using Window = std::array<const QOBSharedObject*, Rows + 1>;

// Looks at some samples of a list. Apart are objects of which one in four is near to none of those
// listed before it.
template <class WindowFrom>
bool AreSamplesApart(std::size_t size, WindowFrom windowFrom)
{
    constexpr std::size_t Few = 2'000;
    constexpr std::size_t Step = 61;
    constexpr std::size_t MostSamples = 100;
    constexpr std::uint64_t Near = 4'096;
    if (size < Few || size > UINT32_MAX)
        return false;
    const std::size_t samples = std::min(MostSamples, size / Step);
    std::size_t apart = 0;
    for (std::size_t sample = 1; sample <= samples; ++sample) {
        const Window window = windowFrom(sample * Step - (Rows + 1));
        const std::uint64_t address = AddressOf(window.back());
        apart += std::none_of(window.begin(), window.end() - 1, [address](const auto* other) {
            return address - AddressOf(other) + Near < 2 * Near;
        });
    }
    return 4 * apart > samples;
}

} // namespace

bool karmp::AddressOrder::AreApart(const QOBSharedList<KARMPEntity>& objects)
{
    auto next = objects.begin();
    std::size_t index = 0;
    return AreSamplesApart(objects.size(), [&](std::size_t first) {
        std::advance(next, static_cast<std::ptrdiff_t>(first - index));
        Window window;
        for (const QOBSharedObject*& object : window)
            object = (next++)->get();
        index = first + window.size();
        return window;
    });
}

bool karmp::AddressOrder::AreApart(std::span<const RegistryWalk> registries)
{
    std::size_t size = 0;
    for (const RegistryWalk& registry : registries)
        size += registry.Count();
    auto registry = registries.begin();
    std::size_t before = 0;
    return AreSamplesApart(size, [&](std::size_t first) {
        Window window;
        for (const QOBSharedObject*& object : window) {
            for (; first - before >= registry->Count(); ++registry)
                before += registry->Count();
            object = registry->At(first++ - before);
        }
        return window;
    });
}

// A radix sort, which takes a fifth of the time of one by comparisons. The lowest bits of an
// address, within a line of the cache, are left out, and so are digits that all entries share.
void karmp::AddressOrder::Sort(std::vector<Entry>& entries)
{
    constexpr unsigned LineBits = 6;
    constexpr unsigned DigitBits = 11;
    constexpr unsigned DigitCount = 5;
    constexpr unsigned GroupShift = LineBits + (DigitCount - 1) * DigitBits; // above addresses
    constexpr std::size_t Digits = std::size_t{1} << DigitBits;
    static_assert(MostGroups <= Digits);
    const auto digitOf = [](const Entry& entry, unsigned digit) {
        const std::uint64_t key =
            AddressOf(entry.object) + (std::uint64_t{entry.group} << GroupShift);
        return (key >> (LineBits + digit * DigitBits)) % Digits;
    };

    std::vector<Entry> other(entries.size());
    for (unsigned digit = 0; digit < DigitCount && !entries.empty(); ++digit) {
        std::array<std::uint32_t, Digits> starts{};
        for (const Entry& entry : entries)
            ++starts[digitOf(entry, digit)];
        if (starts[digitOf(entries.front(), digit)] == entries.size())
            continue;
        std::uint32_t start = 0;
        for (std::uint32_t& count : starts)
            start += std::exchange(count, start);
        for (const Entry& entry : entries)
            other[starts[digitOf(entry, digit)]++] = entry;
        entries.swap(other);
    }
}

#include "KARMPAddressOrder.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

std::uint64_t AddressOf(const QOBSharedObject* object)
{
    return reinterpret_cast<std::uintptr_t>(object);
}

} // namespace

// Of some samples, one in four is near to none of the objects listed before it. Objects of several
// classes that are created by turns lie in as many rows.
bool karmp::AddressOrder::AreApart(const QOBSharedList<KARMPEntity>& objects)
{
    constexpr std::size_t Few = 2'000;
    constexpr std::size_t Rows = 8;
    constexpr std::size_t Step = 61;
    constexpr std::size_t MostSamples = 100;
    constexpr std::uint64_t Near = 4'096;
    if (objects.size() < Few || objects.size() > UINT32_MAX)
        return false;
    std::array<std::uint64_t, Rows> before{};
    std::size_t samples = 0;
    std::size_t apart = 0;
    auto object = objects.begin();
    for (std::size_t index = 0; samples < MostSamples && object != objects.end(); ++index) {
        const std::uint64_t address = AddressOf((object++)->get());
        if (index % Step == Step - 1) {
            ++samples;
            if (std::none_of(before.begin(), before.end(), [address](std::uint64_t other) {
                    return address - other + Near < 2 * Near;
                }))
                ++apart;
        }
        before[index % Rows] = address;
    }
    return 4 * apart > samples;
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

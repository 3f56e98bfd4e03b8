// How the cost of one of many items grows with their number.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <string>

using Clock = std::chrono::steady_clock;

/// The number of items of a row's first size, to which the others are related.
constexpr std::int64_t FewestItems = 1'000;

/// Notes the time of all iterations of a row of size range(0) with `items` items each. "growth" is
/// the cost of an item relative to that at the first size, which stays low when costs are linear.
inline void NoteGrowth(benchmark::State& state, const std::string& row, Clock::duration time,
                       std::int64_t items)
{
    static std::map<std::string, double> first;
    const std::int64_t all = state.iterations() * items;
    const double cost = std::chrono::duration<double>(time).count() / static_cast<double>(all);
    state.SetItemsProcessed(all);
    if (state.range(0) == FewestItems)
        first[row] = cost;
    else if (first.count(row) != 0)
        state.counters["growth"] = cost / first[row];
}

/// The same with range(0) items each.
inline void NoteGrowth(benchmark::State& state, const std::string& row, Clock::duration time)
{
    NoteGrowth(state, row, time, state.range(0));
}

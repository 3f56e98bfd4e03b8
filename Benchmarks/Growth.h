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

/// Notes the time of all iterations of a row with range(0) items each. "growth" is the cost of an
/// item relative to that at the first size, which stays low when costs are linear.
inline void NoteGrowth(benchmark::State& state, const std::string& row, Clock::duration time)
{
    static std::map<std::string, double> first;
    const double items = static_cast<double>(state.iterations() * state.range(0));
    const double cost = std::chrono::duration<double>(time).count() / items;
    state.SetItemsProcessed(state.iterations() * state.range(0));
    if (state.range(0) == FewestItems)
        first[row] = cost;
    else if (first.count(row) != 0)
        state.counters["growth"] = cost / first[row];
}

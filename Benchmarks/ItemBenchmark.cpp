// What it costs to get and to set an item by its row of the table.
#include "HeapCounter.h"
#include "KARMPEntities.h"
#include "KARMPItems.h"

#include <benchmark/benchmark.h>

#include <array>

namespace {

const karmp::ItemInfo& Row(const KARMPEntity& entity, std::wstring_view name)
{
    return *karmp::FindItem(entity.getClassInfo(), name);
}

void GetItem(benchmark::State& state, std::wstring_view name)
{
    const auto body = KARMPBody::create(L"Body");
    const karmp::ItemInfo& row = Row(*body, name);
    const HeapCounter heap(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(row.Get(*body));
}

void SetItem(benchmark::State& state, std::wstring_view name, const karmp::Value& value)
{
    const auto body = KARMPBody::create(L"Body");
    const karmp::ItemInfo& row = Row(*body, name);
    if (KARFailed(row.Set(*body, value)))
        return state.SkipWithError("the item takes another value");
    const HeapCounter heap(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(row.Set(*body, value));
}

void GetNumberByTable(benchmark::State& state)
{
    GetItem(state, L"Mass");
}
BENCHMARK(GetNumberByTable);

void SetNumberByTable(benchmark::State& state)
{
    SetItem(state, L"Mass", 1.5);
}
BENCHMARK(SetNumberByTable);

void GetMatrixByTable(benchmark::State& state)
{
    GetItem(state, L"InertiaMatrix");
}
BENCHMARK(GetMatrixByTable);

void SetMatrixByTable(benchmark::State& state)
{
    SetItem(
        state, L"InertiaMatrix",
        *karmp::NumberArray::MatrixByRows(std::array{1.0, 0.0, 0.0, 0.0, 2.0, 0.0, 0.0, 0.0, 3.0}));
}
BENCHMARK(SetMatrixByTable);

void GetFlagByTable(benchmark::State& state)
{
    GetItem(state, L"is_fixed");
}
BENCHMARK(GetFlagByTable);

} // namespace

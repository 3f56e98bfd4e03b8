// What a step of a solver costs that updates the outputs of an entity in bulk: all of them, and a
// thousand of many.
#include "Growth.h"
#include "HeapCounter.h"
#include "KARMPEntities.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

constexpr std::int64_t Most = 1'000'000;

using Results = KAROmxOMap<KARString, KAROmxAny>;

std::string PathOf(std::int64_t number)
{
    return "output " + std::to_string(number);
}

/// A body with outputs of one number each.
QOBSharedHandle<KARMPBody> BodyWithOutputs(std::int64_t count)
{
    auto body = KARMPBody::create(L"Body");
    for (std::int64_t number = 0; number < count; ++number) {
        const auto output = KARMPOutput::create(L"Output");
        output->SetID(KARString(std::string_view(PathOf(number))));
        output->SetType("double");
        output->AddValue(KARMPConstant::create(L"Value"));
        body->AddOutput(output);
    }
    return body;
}

/// Results for the last `count` of the outputs of a body.
Results ResultsFor(const KARMPBody& body, std::int64_t count)
{
    Results results;
    const std::int64_t end = body.GetOutputCount();
    for (std::int64_t number = end - count; number < end; ++number)
        results.Insert(KARString(std::string_view(PathOf(number))), 0.5);
    return results;
}

/// Updates `count` of the outputs of a body that has as many as the row says.
void UpdateOutputs(benchmark::State& state, const std::string& row, std::int64_t count)
{
    const auto body = BodyWithOutputs(state.range(0));
    const Results results = ResultsFor(*body, count);
    body->UpdateOutputs(results); // makes the index
    {
        const HeapCounter heap(state);
        const auto start = Clock::now();
        for (auto _ : state)
            body->UpdateOutputs(results);
        NoteGrowth(state, row, Clock::now() - start, count);
    }
    double held = 0.0;
    if (KARFailed(body->GetOutputValue({KARString(std::string_view(PathOf(state.range(0) - 1)))}, 0,
                                       held)) ||
        held != 0.5)
        state.SkipWithError("the last output was not updated");
    body->orphanObject();
}

void OutputStep(benchmark::State& state)
{
    UpdateOutputs(state, "outputs", state.range(0));
}
BENCHMARK(OutputStep)->RangeMultiplier(10)->Range(FewestItems, Most)->Unit(benchmark::kMillisecond);

void OutputStepOfAThousand(benchmark::State& state)
{
    UpdateOutputs(state, "a thousand outputs", 1'000);
}
BENCHMARK(OutputStepOfAThousand)
    ->RangeMultiplier(10)
    ->Range(FewestItems, Most)
    ->Unit(benchmark::kMillisecond);

} // namespace

// What an entity costs in worlds with springs and motors, against one in a world with joints alone.
#include "BenchmarkWorld.h"
#include "KARMPDocuments.h"

#include <algorithm>
#include <array>
#include <limits>

namespace {

constexpr std::array Parts{"build", "save", "teardown", "load", "teardown_loaded"};
using Costs = std::array<double, Parts.size()>;

/// Builds, saves, destroys, loads and destroys again; keeps the least cost of an entity.
void TakeTurn(std::int64_t bodies, Content content, Costs& least)
{
    using namespace karmp::documents;
    QOBSharedHandle<KARMPWorld> world;
    std::string text;
    LoadOptions options;
    options.check = CheckLevel::None;
    const Costs costs{ProcessorSecondsOf([&] { world = Build(bodies, content); }),
                      ProcessorSecondsOf([&] { benchmark::DoNotOptimize(SaveText(world, text)); }),
                      ProcessorSecondsOf([&] { world.detach(); }),
                      ProcessorSecondsOf([&] { world = LoadText(text, "bench", options).world; }),
                      ProcessorSecondsOf([&] { world.detach(); })};
    const auto entities = static_cast<double>(bodies * EntitiesPerBody(content));
    for (std::size_t part = 0; part < Parts.size(); ++part)
        least[part] = std::min(least[part], costs[part] / entities);
}

/// Both kinds by turns in memory at hand. The worlds have as many bodies, or, since caches make the
/// entity of a smaller world cheaper, as many entities.
void ToJoints(benchmark::State& state, Content content, bool isOfEntities)
{
    const HeapThatKeeps heap;
    const std::int64_t bodies = state.range(0);
    const std::int64_t ofJoints =
        isOfEntities ? bodies * EntitiesPerBody(content) / EntitiesPerBody(Content::Joints)
                     : bodies;
    Costs costs;
    Costs joints;
    costs.fill(std::numeric_limits<double>::max());
    joints.fill(std::numeric_limits<double>::max());
    for (auto _ : state) {
        TakeTurn(bodies, content, costs);
        TakeTurn(ofJoints, Content::Joints, joints);
    }
    for (std::size_t part = 0; part < Parts.size(); ++part)
        state.counters[Parts[part]] = costs[part] / joints[part];
}

void Sizes(benchmark::internal::Benchmark* row)
{
    row->Unit(benchmark::kMillisecond);
    row->Arg(1'000)->Arg(10'000)->Arg(100'000);
}

BENCHMARK_CAPTURE(ToJoints, SpringsBodies, Content::Springs, false)->Apply(Sizes);
BENCHMARK_CAPTURE(ToJoints, MotorsBodies, Content::Motors, false)->Apply(Sizes);
BENCHMARK_CAPTURE(ToJoints, SpringsEntities, Content::Springs, true)->Apply(Sizes);
BENCHMARK_CAPTURE(ToJoints, MotorsEntities, Content::Motors, true)->Apply(Sizes);

} // namespace

// What the model library costs: building by single calls against the same by hand, look-ups and
// lists.
#include "Growth.h"
#include "KARMPBody.h"
#include "KARMPJointKinds.h"
#include "KARMPModel.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

using namespace karmp::model;

namespace {

std::vector<std::string> Names(std::int64_t count)
{
    std::vector<std::string> names;
    names.reserve(static_cast<std::size_t>(count));
    for (std::int64_t i = 0; i < count; ++i)
        names.push_back("body-" + std::to_string(i));
    return names;
}

// Building is timed, freeing is not.
template <class Build>
void TimeBuilding(benchmark::State& state, const std::string& row, Build build)
{
    Clock::duration time{};
    for (auto _ : state) {
        const auto begin = Clock::now();
        auto built = build();
        const auto passed = Clock::now() - begin;
        time += passed;
        state.SetIterationTime(std::chrono::duration<double>(passed).count());
        benchmark::DoNotOptimize(built);
    }
    NoteGrowth(state, row, time);
}

void BodyByHand(benchmark::State& state)
{
    const auto names = Names(state.range(0));
    TimeBuilding(state, "BodyByHand", [&] {
        auto basicWorld = QOBBasicWorld::create(L"M");
        auto world = KARMPWorld::create(basicWorld);
        for (const std::string& name : names) {
            const std::wstring wide(name.begin(), name.end());
            const auto body = KARMPBody::create(wide);
            body->SetIdentifier(wide);
            basicWorld->addLogicalChild(body);
            world->Add<KARMPBody>(body);
        }
        return world;
    });
}
BENCHMARK(BodyByHand)->Arg(1'000)->Arg(10'000)->Arg(100'000)->UseManualTime();

void BodyByModel(benchmark::State& state)
{
    const auto names = Names(state.range(0));
    TimeBuilding(state, "BodyByModel", [&] {
        Model model("M");
        for (const std::string& name : names)
            model.Body(name);
        return model;
    });
}
BENCHMARK(BodyByModel)->Arg(1'000)->Arg(10'000)->Arg(100'000)->UseManualTime();

void JointByModel(benchmark::State& state)
{
    const auto names = Names(state.range(0) + 1);
    Clock::duration time{};
    for (auto _ : state) {
        Model model("M");
        std::vector<Ref<KARMPBody>> bodies;
        std::vector<std::string> joints;
        for (const std::string& name : names) {
            bodies.push_back(model.Body(name));
            joints.push_back("joint-" + name);
        }
        const auto begin = Clock::now();
        for (std::size_t i = 1; i < bodies.size(); ++i)
            model.Joint<KARMPRevolute>(joints[i], bodies[i - 1], bodies[i], {1.0, 0.0, 0.0});
        const auto passed = Clock::now() - begin;
        time += passed;
        state.SetIterationTime(std::chrono::duration<double>(passed).count());
    }
    NoteGrowth(state, "JointByModel", time);
}
BENCHMARK(JointByModel)->Arg(1'000)->Arg(10'000)->Arg(100'000)->UseManualTime();

Model ModelOf(const std::vector<std::string>& names)
{
    Model model("M");
    for (const std::string& name : names)
        model.Body(name);
    return model;
}

void ModelFind(benchmark::State& state)
{
    const auto names = Names(state.range(0));
    const Model model = ModelOf(names);
    const auto begin = Clock::now();
    // A stride that meets each name once, in no order of memory.
    std::size_t next = 0;
    for (auto _ : state) {
        next = (next + 7919) % names.size();
        benchmark::DoNotOptimize(model.Find<KARMPBody>(names[next]));
    }
    NoteGrowth(state, "ModelFind", Clock::now() - begin, 1);
}
BENCHMARK(ModelFind)->Arg(1'000)->Arg(10'000)->Arg(100'000);

void ModelAll(benchmark::State& state)
{
    const Model model = ModelOf(Names(state.range(0)));
    const auto begin = Clock::now();
    for (auto _ : state)
        benchmark::DoNotOptimize(model.All<KARMPBody>());
    NoteGrowth(state, "ModelAll", Clock::now() - begin);
}
BENCHMARK(ModelAll)->Arg(1'000)->Arg(10'000)->Arg(100'000);

} // namespace

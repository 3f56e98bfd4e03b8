// What the model library costs: building by single calls against the same by hand, look-ups and
// lists.
#include "Growth.h"
#include "KARMPBody.h"
#include "KARMPJointKinds.h"
#include "KARMPModel.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"

#include <benchmark/benchmark.h>

#include <ctime>
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

/// The processor time of this thread, which other work on the machine does not lengthen.
double Seconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// The time of building alone; what was built is freed after it.
template <class Build>
double SecondsOf(Build build)
{
    const double begin = Seconds();
    auto built = build();
    const double end = Seconds();
    benchmark::DoNotOptimize(built);
    return end - begin;
}

Clock::duration DurationOf(double seconds)
{
    return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

QOBSharedHandle<KARMPWorld> BodiesByHand(const std::vector<std::string>& names)
{
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
}

Model ModelOf(const std::vector<std::string>& names)
{
    Model model("M");
    for (const std::string& name : names)
        model.Body(name);
    return model;
}

// By turns with the same by hand, to which the counter relates it.
void ModelBody(benchmark::State& state)
{
    const auto names = Names(state.range(0));
    double byHand = 0.0;
    double byModel = 0.0;
    for (auto _ : state) {
        byHand += SecondsOf([&] { return BodiesByHand(names); });
        const double seconds = SecondsOf([&] { return ModelOf(names); });
        byModel += seconds;
        state.SetIterationTime(seconds);
    }
    state.counters["ratio_to_hand"] = byModel / byHand;
    NoteGrowth(state, "ModelBody", DurationOf(byModel));
}
BENCHMARK(ModelBody)->Arg(1'000)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->UseManualTime();

void ModelJoint(benchmark::State& state)
{
    const auto names = Names(state.range(0) + 1);
    std::vector<std::string> joints;
    for (const std::string& name : names)
        joints.push_back("joint-" + name);
    double all = 0.0;
    for (auto _ : state) {
        Model model("M");
        std::vector<Ref<KARMPBody>> bodies;
        for (const std::string& name : names)
            bodies.push_back(model.Body(name));
        const double begin = Seconds();
        for (std::size_t i = 1; i < bodies.size(); ++i)
            model.Joint<KARMPRevolute>(joints[i], bodies[i - 1], bodies[i], {1.0, 0.0, 0.0});
        const double seconds = Seconds() - begin;
        all += seconds;
        state.SetIterationTime(seconds);
    }
    NoteGrowth(state, "ModelJoint", DurationOf(all));
}
BENCHMARK(ModelJoint)->Arg(1'000)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->UseManualTime();

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
BENCHMARK(ModelFind)->Arg(1'000)->Arg(10'000)->Arg(100'000)->Arg(1'000'000);

void ModelAll(benchmark::State& state)
{
    const Model model = ModelOf(Names(state.range(0)));
    const auto begin = Clock::now();
    for (auto _ : state)
        benchmark::DoNotOptimize(model.All<KARMPBody>());
    NoteGrowth(state, "ModelAll", Clock::now() - begin);
}
BENCHMARK(ModelAll)->Arg(1'000)->Arg(10'000)->Arg(100'000)->Arg(1'000'000);

} // namespace

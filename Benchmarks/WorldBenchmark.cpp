// What a world costs: N bodies, each with two geometries and a variable, N joints and 2 N
// constraints, N springs and their 3 N values, N motors and their 2 N values. Rows per entity, and
// the ratio to pugixml on the same text in the same run.
#include "BenchmarkWorld.h"
#include "HeapCounter.h"
#include "KARMPDocuments.h"
#include "KARMPEntities.h"
#include "StrippedReader.h"

#include <benchmark/benchmark.h>
#include <pugixml.hpp>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

namespace {

using karmp::documents::LoadText;
using karmp::documents::SaveText;

/// Texts are made once for each size.
const std::string& DocumentOf(std::int64_t count, Content content)
{
    static std::map<std::pair<std::int64_t, Content>, std::string> texts;
    std::string& text = texts[{count, content}];
    if (text.empty())
        benchmark::DoNotOptimize(SaveText(Build(count, content), text));
    return text;
}

void Build(benchmark::State& state, Content content)
{
    const PerEntity perEntity(state, content);
    const std::size_t before = HeapCounter::Bytes();
    for (auto _ : state) {
        state.PauseTiming();
        GiveFreeMemoryBack();
        state.ResumeTiming();
        auto world = Build(state.range(0), content);
        state.PauseTiming();
        world.detach();
        state.ResumeTiming();
    }
    state.counters["heap_bytes_per_entity"] =
        static_cast<double>(HeapCounter::Bytes() - before) /
        static_cast<double>(state.iterations() * state.range(0) * EntitiesPerBody(content));
}

void Teardown(benchmark::State& state, Content content)
{
    const PerEntity perEntity(state, content);
    for (auto _ : state) {
        state.PauseTiming();
        GiveFreeMemoryBack();
        auto world = Build(state.range(0), content);
        state.ResumeTiming();
        world.detach();
    }
}

/// Saves and writes by turns; `prepare` is called before each.
template <class Prepare>
void SaveAndWrite(benchmark::State& state, Content content, bool check, Prepare prepare)
{
    const auto world = Build(state.range(0), content);
    karmp::documents::SaveOptions options;
    options.check = check;
    pugi::xml_document bare;
    bare.load_string(DocumentOf(state.range(0), content).c_str());
    const auto save = [&] {
        std::string text;
        return SecondsOf([&] { benchmark::DoNotOptimize(SaveText(world, text, options)); });
    };
    const auto write = [&] {
        return SecondsOf([&] {
            std::ostringstream stream;
            bare.save(stream, " ", pugi::format_indent);
            benchmark::DoNotOptimize(stream);
        });
    };
    // The first ones make the identifiers, and give the heap what it may keep.
    save();
    write();
    double bareTime = 0.0;
    double time = 0.0;
    const PerEntity perEntity(state, content);
    for (auto _ : state) {
        state.PauseTiming();
        prepare();
        state.ResumeTiming();
        time += save();
        state.PauseTiming();
        prepare();
        bareTime += write();
        state.ResumeTiming();
    }
    state.counters["ratio_to_bare"] = time / bareTime;
}

void Save(benchmark::State& state, Content content)
{
    SaveAndWrite(state, content, true, GiveFreeMemoryBack);
}

/// The same in a process that saved the world before and kept the memory.
void SaveAgain(benchmark::State& state, Content content)
{
    const HeapThatKeeps heap;
    SaveAndWrite(state, content, true, [] {});
}

/// The same without the check for losses.
void UncheckedSaveAgain(benchmark::State& state, Content content)
{
    const HeapThatKeeps heap;
    SaveAndWrite(state, content, false, [] {});
}

/// Saves with and without the check for losses by turns.
void CheckedSave(benchmark::State& state, Content content)
{
    const auto world = Build(state.range(0), content);
    const PerEntity perEntity(state, content);
    karmp::documents::SaveOptions unchecked;
    unchecked.check = false;
    double uncheckedTime = 0.0;
    double time = 0.0;
    for (auto _ : state) {
        std::string text;
        state.PauseTiming();
        GiveFreeMemoryBack();
        state.ResumeTiming();
        time += SecondsOf([&] { benchmark::DoNotOptimize(SaveText(world, text)); });
        state.PauseTiming();
        text = std::string();
        GiveFreeMemoryBack();
        uncheckedTime +=
            SecondsOf([&] { benchmark::DoNotOptimize(SaveText(world, text, unchecked)); });
        text = std::string();
        state.ResumeTiming();
    }
    state.counters["ratio_to_unchecked"] = time / uncheckedTime;
}

/// Renders a tree that holds the whole world, which a save never does.
void Render(benchmark::State& state, Content content)
{
    KARMPDocumentWriter tree;
    if (KARFailed(Build(state.range(0), content)->Serialize(&tree)))
        state.SkipWithError("the world was not written");
    const PerEntity perEntity(state, content);
    for (auto _ : state) {
        std::string text;
        state.PauseTiming();
        GiveFreeMemoryBack();
        state.ResumeTiming();
        benchmark::DoNotOptimize(tree.RenderXml(text));
        state.PauseTiming();
        text = std::string();
        state.ResumeTiming();
    }
}

/// What is done with a document.
enum class Reading { Load, CheckedLoad, Check, Stripped };

karmp::documents::LoadResult Read(const std::string& text, Reading reading)
{
    using karmp::documents::CheckLevel;
    karmp::documents::LoadOptions options;
    options.check = reading == Reading::Load ? CheckLevel::None : CheckLevel::Form;
    if (reading == Reading::Load || reading == Reading::CheckedLoad)
        return LoadText(text, "bench", options);
    karmp::documents::LoadResult result;
    if (reading == Reading::Stripped)
        result.world = ReadStripped(text);
    else
        result.diagnostics = karmp::documents::CheckText(text, "bench", {}, CheckLevel::Form);
    return result;
}

/// Reads and parses by turns; `prepare` is called before each.
template <class Prepare>
void ReadAndParse(benchmark::State& state, Content content, Reading reading, Prepare prepare)
{
    const std::string& text = DocumentOf(state.range(0), content);
    double bareTime = 0.0;
    double time = 0.0;
    const PerEntity perEntity(state, content);
    for (auto _ : state) {
        karmp::documents::LoadResult result;
        state.PauseTiming();
        prepare();
        state.ResumeTiming();
        time += SecondsOf([&] { result = Read(text, reading); });
        state.PauseTiming();
        if ((reading != Reading::Check && !result.world) || !result.diagnostics.items.empty())
            state.SkipWithError("the document is not read cleanly");
        result.world.detach();
        prepare();
        bareTime += SecondsOf([&] {
            pugi::xml_document bare;
            benchmark::DoNotOptimize(bare.load_string(text.c_str()));
        });
        state.ResumeTiming();
    }
    state.counters["ratio_to_bare"] = time / bareTime;
    state.counters["text_bytes"] = static_cast<double>(text.size());
}

template <Reading TheReading>
void ReadFresh(benchmark::State& state, Content content)
{
    ReadAndParse(state, content, TheReading, GiveFreeMemoryBack);
}

/// The same in a process that read the document before and kept the memory.
template <Reading TheReading>
void ReadAgain(benchmark::State& state, Content content)
{
    const HeapThatKeeps heap;
    Read(DocumentOf(state.range(0), content), TheReading).world.detach();
    ReadAndParse(state, content, TheReading, [] {});
}

constexpr auto Load = ReadFresh<Reading::Load>;
constexpr auto CheckedLoad = ReadFresh<Reading::CheckedLoad>;
constexpr auto Check = ReadFresh<Reading::Check>;
constexpr auto LoadAgain = ReadAgain<Reading::Load>;
constexpr auto CheckedLoadAgain = ReadAgain<Reading::CheckedLoad>;
constexpr auto CheckAgain = ReadAgain<Reading::Check>;
constexpr auto StrippedLoadAgain = ReadAgain<Reading::Stripped>;

/// The most memory that this process has held, in bytes.
double PeakMemory()
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind("VmHWM:", 0) == 0)
            return 1024.0 * std::stod(line.substr(6));
    return 0.0;
}

/// The peak memory of a process that does nothing but load, over the text's size.
void LoadPeak(benchmark::State& state, Content content)
{
    const std::string path = "karmp-bench-load.xml";
    const std::string peakPath = path + ".peak";
    const std::size_t size = DocumentOf(state.range(0), content).size();
    std::ofstream(path, std::ios::binary) << DocumentOf(state.range(0), content);
    double peak = 0.0;
    for (auto _ : state) {
        const pid_t child = ::fork();
        if (child == 0) {
            // The loader is a new program, which starts without this one's memory.
            ::execl("/proc/self/exe", "karmp_bench", "--karmp-load", path.c_str(), nullptr);
            ::_exit(127);
        }
        ::waitpid(child, nullptr, 0);
        std::ifstream(peakPath) >> peak;
    }
    state.counters["peak_over_text"] = peak / static_cast<double>(size);
    std::remove(path.c_str());
    std::remove(peakPath.c_str());
}

/// The joints of the body that has them all.
struct HubJoint
{
    static constexpr const char* Word = "joint";
    static void Add(const QOBSharedHandle<QOBBasicWorld>& basicWorld,
                    const QOBSharedHandle<KARMPWorld>& world, const QOBSharedHandle<KARMPBody>& hub)
    {
        const auto joint = KARMPRevolute::create(L"Joint");
        basicWorld->addLogicalChild(joint);
        world->Add<KARMPJoint>(joint);
        joint->LinkToBody(hub, KARMPBodyOrientation::Out);
        hub->LinkToJoint(joint);
    }
};

/// The springs of the body that has them all, each with its values.
struct HubSpring
{
    static constexpr const char* Word = "spring";
    static void Add(const QOBSharedHandle<QOBBasicWorld>& basicWorld,
                    const QOBSharedHandle<KARMPWorld>& world, const QOBSharedHandle<KARMPBody>& hub)
    {
        const auto spring = KARMPLinearSpring::create(L"Spring");
        basicWorld->addLogicalChild(spring);
        world->Add<KARMPConnector>(spring);
        spring->SetFirstBody(hub);
        hub->LinkToConnector(spring);
        spring->SetStiffness(1000.0);
        spring->SetRestLength(0.25);
        spring->SetDampingCoefficient(10.0);
    }
};

/// One body with all joints, or all springs: every list of links is long once.
template <class Link>
void Hub(benchmark::State& state)
{
    const auto count = state.range(0);
    double time[4] = {};
    for (auto _ : state) {
        const auto basicWorld = QOBBasicWorld::create(L"Hub");
        auto world = KARMPWorld::create(basicWorld);
        time[0] += SecondsOf([&] {
            const auto hub = KARMPBody::create(L"Hub");
            basicWorld->addLogicalChild(hub);
            world->Add<KARMPBody>(hub);
            for (int i = 0; i < count; ++i)
                Link::Add(basicWorld, world, hub);
        });
        std::string text;
        time[1] += SecondsOf([&] { benchmark::DoNotOptimize(SaveText(world, text)); });
        karmp::documents::LoadOptions options;
        options.check = karmp::documents::CheckLevel::None;
        karmp::documents::LoadResult result;
        time[2] += SecondsOf([&] { result = LoadText(std::move(text), "hub", options); });
        time[3] += SecondsOf([&] { result.world.detach(); });
    }
    const char* names[] = {"build", "save", "load", "teardown"};
    for (int i = 0; i < 4; ++i)
        state.counters[std::string(names[i]) + "_s_per_" + Link::Word] =
            time[i] / static_cast<double>(state.iterations() * count);
}

BENCHMARK_CAPTURE(Build, Bodies, Content::Bodies)->SIZES;
BENCHMARK_CAPTURE(Save, Bodies, Content::Bodies)->SIZES;
BENCHMARK_CAPTURE(Render, Bodies, Content::Bodies)
    ->Arg(1'000)
    ->Arg(10'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CheckedSave, Bodies, Content::Bodies)->SIZES;
BENCHMARK_CAPTURE(Load, Bodies, Content::Bodies)->SIZES;
BENCHMARK_CAPTURE(Teardown, Bodies, Content::Bodies)->SIZES;
BENCHMARK_CAPTURE(LoadPeak, Bodies, Content::Bodies)->Arg(100'000)->Iterations(1);
BENCHMARK_CAPTURE(Build, Joints, Content::Joints)->SIZES;
BENCHMARK_CAPTURE(Save, Joints, Content::Joints)->SIZES;
BENCHMARK_CAPTURE(Render, Joints, Content::Joints)
    ->Arg(1'000)
    ->Arg(10'000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(CheckedSave, Joints, Content::Joints)->SIZES;
BENCHMARK_CAPTURE(Load, Joints, Content::Joints)->SIZES;
BENCHMARK_CAPTURE(Teardown, Joints, Content::Joints)->SIZES;
BENCHMARK_CAPTURE(LoadPeak, Joints, Content::Joints)->Arg(100'000)->Iterations(1);
BENCHMARK_CAPTURE(LoadAgain, Bodies, Content::Bodies)->SIZES;
BENCHMARK_CAPTURE(LoadAgain, Joints, Content::Joints)->SIZES;
BENCHMARK_CAPTURE(SaveAgain, Bodies, Content::Bodies)->SIZES;
BENCHMARK_CAPTURE(SaveAgain, Joints, Content::Joints)->SIZES;
BENCHMARK_CAPTURE(UncheckedSaveAgain, Joints, Content::Joints)->SIZES;
BENCHMARK_CAPTURE(CheckedLoad, Joints, Content::Joints)->SIZES;
BENCHMARK_CAPTURE(CheckedLoadAgain, Joints, Content::Joints)->SIZES;
BENCHMARK_CAPTURE(Check, Joints, Content::Joints)->SIZES;
BENCHMARK_CAPTURE(CheckAgain, Joints, Content::Joints)->SIZES;
BENCHMARK_CAPTURE(StrippedLoadAgain, Joints, Content::Joints)->SIZES;
BENCHMARK_CAPTURE(Build, Springs, Content::Springs)->SIZES;
BENCHMARK_CAPTURE(Save, Springs, Content::Springs)->SIZES;
BENCHMARK_CAPTURE(Load, Springs, Content::Springs)->SIZES;
BENCHMARK_CAPTURE(Teardown, Springs, Content::Springs)->SIZES;
BENCHMARK_CAPTURE(Build, Motors, Content::Motors)->SIZES;
BENCHMARK_CAPTURE(Save, Motors, Content::Motors)->SIZES;
BENCHMARK_CAPTURE(Load, Motors, Content::Motors)->SIZES;
BENCHMARK_CAPTURE(Teardown, Motors, Content::Motors)->SIZES;
BENCHMARK(Hub<HubJoint>)->Name("Hub")->Arg(1'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(Hub<HubSpring>)
    ->Name("HubOfSprings")
    ->Arg(1'000)
    ->Arg(100'000)
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::string_view(argv[1]) == "--karmp-load") {
        karmp::documents::LoadOptions options;
        options.check = karmp::documents::CheckLevel::None;
        const auto loaded = karmp::documents::LoadFile(argv[2], options);
        std::ofstream(std::string(argv[2]) + ".peak") << PeakMemory();
        return loaded.world ? 0 : 1;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

// What copies of a world, extracts of it and its observers cost. Each row of clones builds, clones
// and clones by a filter of all entities by turns, so that its ratios are of one run.
#include "BenchmarkWorld.h"
#include "KARMPDocuments.h"
#include "KARMPWorldExtraction.h"
#include "StrippedLinks.h"

#include <algorithm>
#include <random>

namespace {

/// How the entities are listed: as they were built, which is how they lie in memory, or at random.
enum class Order { Built, Random };

template <class T>
void Shuffle(std::vector<T>& entries)
{
    std::mt19937 generator(1);
    std::shuffle(entries.begin(), entries.end(), generator);
}

template <class T>
void ShuffleFamily(KARMPWorld& world)
{
    QOBSharedVector<T> entities;
    for (int i = 0; i < world.Count<T>(); ++i)
        world.Get(i, entities.emplace_back());
    Shuffle(entities);
    world.EmptyRegistry<T>();
    for (const QOBSharedHandle<T>& entity : entities)
        world.Add(entity);
}

template <class T>
void AppendFamily(const KARMPWorld& world, std::vector<QOBSharedHandle<KARMPEntity>>& entities)
{
    for (int i = 0; i < world.Count<T>(); ++i) {
        QOBSharedHandle<T> entity;
        world.Get(i, entity);
        entities.push_back(entity);
    }
}

QOBSharedList<KARMPEntity> AllOf(const KARMPWorld& world, Order order)
{
    std::vector<QOBSharedHandle<KARMPEntity>> entities;
    karmp::Families::ForEach(
        [&](auto family) { AppendFamily<typename decltype(family)::Type>(world, entities); });
    if (order == Order::Random)
        Shuffle(entities);
    return {entities.begin(), entities.end()};
}

/// The duplicates of a filtered clone hold one another, and are freed once they stand in its world.
void Free(QOBSharedHandle<KARMPWorld>& clone)
{
    const QOBSharedHandle<QOBBasicEntity> above(clone->getExtendible());
    for (const auto& entity : AllOf(*clone, Order::Built))
        above->addLogicalChild(entity);
    clone.detach();
}

/// Builds, clones and clones by a filter by turns. The heap keeps what is freed, and a round before
/// the first one is not counted, so that each part finds memory at hand.
void Clone(benchmark::State& state, Content content, Order order)
{
    const HeapThatKeeps heap;
    double build = 0.0;
    double clone = 0.0;
    double filtered = 0.0;
    const auto round = [&] {
        QOBSharedHandle<KARMPWorld> world;
        QOBSharedHandle<KARMPWorld> copy;
        build += ProcessorSecondsOf([&] { world = Build(state.range(0), content); });
        if (order == Order::Random)
            karmp::Families::ForEach(
                [&](auto family) { ShuffleFamily<typename decltype(family)::Type>(*world); });
        clone += ProcessorSecondsOf([&] { copy = world->Clone(); });
        copy.detach();
        const QOBSharedList<KARMPEntity> all = AllOf(*world, order);
        filtered += ProcessorSecondsOf([&] { copy = world->CloneWithFilter(all); });
        Free(copy);
    };
    round();
    build = clone = filtered = 0.0;
    for (auto _ : state)
        round();
    const auto entities =
        static_cast<double>(state.iterations() * state.range(0) * EntitiesPerBody(content));
    state.counters["build_s_per_entity"] = build / entities;
    state.counters["clone_s_per_entity"] = clone / entities;
    state.counters["filtered_s_per_entity"] = filtered / entities;
    state.counters["clone_to_build"] = clone / build;
    state.counters["filtered_to_build"] = filtered / build;
    state.counters["filtered_to_clone"] = filtered / clone;
}

/// What an extract of one body costs beside the load of the document that it is taken from.
void ExtractOne(benchmark::State& state, Content content)
{
    std::string text;
    benchmark::DoNotOptimize(karmp::documents::SaveText(Build(state.range(0), content), text));
    double load = 0.0;
    double extract = 0.0;
    for (auto _ : state) {
        QOBSharedHandle<KARMPWorld> world;
        GiveFreeMemoryBack();
        load += ProcessorSecondsOf([&] { world = karmp::documents::LoadText(text).world; });
        QOBSharedHandle<KARMPBody> body;
        world->Get<KARMPBody>(world->GetBodyCount() / 2, body);
        karmp::documents::Extraction extraction;
        extract += ProcessorSecondsOf(
            [&] { extraction = karmp::documents::ExtractWorld(*world, {body}); });
    }
    state.counters["load_s"] = load / static_cast<double>(state.iterations());
    state.counters["extract_s"] = extract / static_cast<double>(state.iterations());
    state.counters["load_and_extract_to_load"] = (load + extract) / load;
}

/// An observer of a world whose entities all change ten times.
void Observe(benchmark::State& state)
{
    constexpr int Changes = 10;
    const auto world = Build(state.range(0) / EntitiesPerBody(Content::Bodies), Content::Bodies);
    const QOBSharedList<KARMPEntity> all = AllOf(*world, Order::Built);
    double subscribe = 0.0;
    double notify = 0.0;
    double unsubscribe = 0.0;
    for (auto _ : state) {
        const auto observer = KARMPObserver::create();
        subscribe += ProcessorSecondsOf([&] { observer->Subscribe(world); });
        notify += ProcessorSecondsOf([&] {
            for (int change = 0; change < Changes; ++change)
                for (const QOBSharedHandle<KARMPEntity>& entity : all)
                    entity->NotifyUpdate();
        });
        unsubscribe += ProcessorSecondsOf([&] { observer->Unsubscribe(); });
    }
    const double entities =
        static_cast<double>(state.iterations()) * static_cast<double>(all.size());
    state.counters["subscribe_s_per_entity"] = subscribe / entities;
    state.counters["s_per_event"] = notify / (Changes * entities);
    state.counters["unsubscribe_s_per_entity"] = unsubscribe / entities;
}

/// A clone, and beside it the links alone that a filtered one has: what a clone with links takes at
/// the least, by turns with a filtered clone. The memory of all is at hand.
void CloneAndLinks(benchmark::State& state, Content content)
{
    const HeapThatKeeps heap;
    const auto world = Build(state.range(0), content);
    const QOBSharedList<KARMPEntity> all = AllOf(*world, Order::Built);
    StrippedLinks links(all);
    double clone = 0.0;
    double filtered = 0.0;
    double oneByOne = 0.0;
    double atOnce = 0.0;
    QOBSharedHandle<KARMPWorld> copy;
    const auto round = [&] {
        clone += ProcessorSecondsOf([&] { copy = world->Clone(); });
        copy.detach();
        filtered += ProcessorSecondsOf([&] { copy = world->CloneWithFilter(all); });
        Free(copy);
    };
    const auto link = [&](StrippedLinks::Blocks blocks, double& seconds) {
        seconds += ProcessorSecondsOf([&] { links.Make(blocks); });
        links.TakeAway();
    };
    round();
    clone = filtered = 0.0;
    for (auto _ : state)
        round();
    link(StrippedLinks::Blocks::OneByOne, oneByOne);
    oneByOne = 0.0;
    for (auto count = state.iterations(); count > 0; --count)
        link(StrippedLinks::Blocks::OneByOne, oneByOne);
    for (auto count = state.iterations(); count > 0; --count)
        link(StrippedLinks::Blocks::AtOnce, atOnce);
    const auto entities = static_cast<double>(state.iterations()) * static_cast<double>(all.size());
    state.counters["clone_s_per_entity"] = clone / entities;
    state.counters["filtered_s_per_entity"] = filtered / entities;
    state.counters["filtered_to_clone"] = filtered / clone;
    state.counters["stripped_to_clone"] = (clone + oneByOne) / clone;
    state.counters["stripped_at_once_to_clone"] = (clone + atOnce) / clone;
}

BENCHMARK(Observe)->SIZES;
BENCHMARK_CAPTURE(ExtractOne, Bodies, Content::Bodies)->SIZES;
BENCHMARK_CAPTURE(ExtractOne, Joints, Content::Joints)->SIZES;
BENCHMARK_CAPTURE(Clone, Bodies, Content::Bodies, Order::Built)->SIZES;
BENCHMARK_CAPTURE(Clone, Bodies at random, Content::Bodies, Order::Random)->SIZES;
BENCHMARK_CAPTURE(Clone, Joints, Content::Joints, Order::Built)->SIZES;
BENCHMARK_CAPTURE(CloneAndLinks, Bodies, Content::Bodies)->SIZES;
BENCHMARK_CAPTURE(CloneAndLinks, Joints, Content::Joints)->SIZES;
BENCHMARK_CAPTURE(Clone, Joints at random, Content::Joints, Order::Random)->SIZES;

} // namespace

// What the core of the library costs: entities by name, handles, tree nodes, identifiers.
//
// Each row also tells the bytes that it asks of the heap per operation.
#include "HeapCounter.h"
#include "KARMPDeserializer.h"
#include "KARMPEntity.h"
#include "KARMPGenericFactory.h"
#include "KARMPSerializer.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

class Writer : public KARMPSerializer
{
public:
    KARStatus Render(std::wstring&) const override { return KARNotImplemented; }
    KARStatus Save(const char*) const override { return KARNotImplemented; }

protected:
    KARMPSerializer* CreateChildElement() override { return new Writer; }
};

class Reader : public KARMPDeserializer
{
public:
    using KARMPDeserializer::AddAttributeValue;
    using KARMPDeserializer::AddElement;
    std::wstring Location() const override { return {}; }
};

void EntityByClassName(benchmark::State& state)
{
    const HeapCounter heap(state);
    for (auto _ : state) {
        QOBSharedHandle<KARMPEntity> entity;
        KARMPFactory::Create("KARMPBody", entity);
        benchmark::DoNotOptimize(entity._getReferent());
    }
}
BENCHMARK(EntityByClassName);

void HandleCopy(benchmark::State& state)
{
    QOBSharedHandle<KARMPEntity> entity;
    KARMPFactory::Create("KARMPBody", entity);
    const HeapCounter heap(state);
    for (auto _ : state) {
        const QOBSharedHandle<KARMPEntity> copy(entity);
        benchmark::DoNotOptimize(copy._getReferent());
    }
}
BENCHMARK(HandleCopy);

void AddAttribute(benchmark::State& state)
{
    const HeapCounter heap(state);
    while (state.KeepRunningBatch(1000)) {
        Writer node;
        for (int i = 0; i < 1000; ++i)
            node.AddAttribute(L"curveLowLimit", 0.25);
    }
}
BENCHMARK(AddAttribute);

void AddElement(benchmark::State& state)
{
    const HeapCounter heap(state);
    while (state.KeepRunningBatch(1000)) {
        Writer node;
        for (int i = 0; i < 1000; ++i) {
            KARMPSerializer* child = nullptr;
            node.AddElement(L"StaticFriction", child, 0.25);
        }
    }
}
BENCHMARK(AddElement);

void ReadAttributeByLiteral(benchmark::State& state)
{
    Reader node;
    node.AddAttributeValue(L"id", L"id0");
    node.AddAttributeValue(L"name", L"crank");
    node.AddAttributeValue(L"isActive", L"yes");
    node.AddAttributeValue(L"floating", false);
    const HeapCounter heap(state);
    for (auto _ : state) {
        bool floating = true;
        node.GetAttribute(L"floating", floating);
        benchmark::DoNotOptimize(floating);
    }
}
BENCHMARK(ReadAttributeByLiteral);

void UuidIdentifier(benchmark::State& state)
{
    std::wstring identifier;
    const HeapCounter heap(state);
    for (auto _ : state) {
        QOBSharedHandle<KARMPEntity> entity;
        state.PauseTiming();
        KARMPFactory::Create("KARMPBody", entity);
        state.ResumeTiming();
        entity->GetIdentifier(identifier);
    }
}
BENCHMARK(UuidIdentifier)->Iterations(20000);

// Per node: flat and nested trees, built and freed; the time per node must not depend on the count.
void WriterNodes(benchmark::State& state, bool nested)
{
    const auto count = state.range(0);
    const HeapCounter heap(state);
    while (state.KeepRunningBatch(count)) {
        Writer root;
        KARMPSerializer* parent = &root;
        for (std::int64_t i = 0; i < count; ++i) {
            KARMPSerializer* child = nullptr;
            parent->AddElement(L"Element", child);
            if (nested)
                parent = child;
        }
    }
}
BENCHMARK_CAPTURE(WriterNodes, Flat, false)->Arg(1'000)->Arg(1'000'000);
BENCHMARK_CAPTURE(WriterNodes, Nested, true)->Arg(1'000)->Arg(1'000'000);

void ReaderNodes(benchmark::State& state, bool nested)
{
    const auto count = state.range(0);
    const HeapCounter heap(state);
    while (state.KeepRunningBatch(count)) {
        Reader root;
        Reader* parent = &root;
        for (std::int64_t i = 0; i < count; ++i) {
            auto* child = new Reader;
            parent->AddElement(L"Element", child);
            if (nested)
                parent = child;
        }
        // The first lookup may build an index.
        const KARMPDeserializer* found = nullptr;
        for (std::int64_t i = 0; i < count; ++i)
            root.GetElement(L"Element", found);
        benchmark::DoNotOptimize(found);
    }
}
BENCHMARK_CAPTURE(ReaderNodes, Flat, false)->Arg(1'000)->Arg(1'000'000);
BENCHMARK_CAPTURE(ReaderNodes, Nested, true)->Arg(1'000)->Arg(1'000'000);

} // namespace

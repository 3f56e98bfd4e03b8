// What a step with many contacts costs a collision sensor: a reset, then the contacts one by one;
// and contacts that are all known.
#include "Growth.h"
#include "HeapCounter.h"
#include "KARMPEntities.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace {

constexpr std::int64_t Most = 1'000'000;

using Sensor = QOBSharedHandle<KARMPCollisionSensor>;

/// Bodies of which any two make a contact, as many as a number of contacts needs.
std::vector<QOBSharedHandle<KARMPBody>> MakeBodies(std::int64_t contacts)
{
    std::vector<QOBSharedHandle<KARMPBody>> bodies;
    while (static_cast<std::int64_t>(bodies.size() * bodies.size()) < contacts)
        bodies.push_back(KARMPBody::create(L"Body" + std::to_wstring(bodies.size())));
    return bodies;
}

void AddContacts(KARMPCollisionSensor& sensor,
                 const std::vector<QOBSharedHandle<KARMPBody>>& bodies, std::int64_t contacts)
{
    KARMPContactGeometryData data;
    for (std::int64_t contact = 0; contact < contacts; ++contact) {
        const auto number = static_cast<std::size_t>(contact);
        data.firstBody = bodies[number / bodies.size()];
        data.secondBody = bodies[number % bodies.size()];
        sensor.AddContactGeometryData(data);
    }
}

void ContactStep(benchmark::State& state)
{
    const auto bodies = MakeBodies(state.range(0));
    const Sensor sensor = KARMPCollisionSensor::create(L"sensor");
    AddContacts(*sensor, bodies, state.range(0));
    const HeapCounter heap(state);
    const auto start = Clock::now();
    for (auto _ : state) {
        sensor->Reset();
        AddContacts(*sensor, bodies, state.range(0));
    }
    NoteGrowth(state, "step", Clock::now() - start);
    sensor->Reset();
}
BENCHMARK(ContactStep)
    ->RangeMultiplier(10)
    ->Range(FewestItems, Most)
    ->Unit(benchmark::kMillisecond);

void RepeatedContact(benchmark::State& state)
{
    const auto bodies = MakeBodies(state.range(0));
    const Sensor sensor = KARMPCollisionSensor::create(L"sensor");
    AddContacts(*sensor, bodies, state.range(0));
    const HeapCounter heap(state);
    const auto start = Clock::now();
    for (auto _ : state)
        AddContacts(*sensor, bodies, state.range(0));
    NoteGrowth(state, "repeated", Clock::now() - start);
    sensor->Reset();
}
BENCHMARK(RepeatedContact)
    ->RangeMultiplier(10)
    ->Range(FewestItems, Most)
    ->Unit(benchmark::kMillisecond);

} // namespace

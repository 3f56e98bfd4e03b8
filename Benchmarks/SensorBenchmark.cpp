// What a step of a solver costs a world of sensors: all are updated in a row, each by its loader,
// and all are reset in a row.
#include "Growth.h"
#include "HeapCounter.h"
#include "KARMPEntities.h"

#include <benchmark/benchmark.h>

namespace {

/// Fills a sensor in as a solver does.
class Loader : public KARIMPJointDOFSensorLoader
{
public:
    explicit Loader(KARMPJointDOFSensor& sensor) : m_sensor(sensor) {}

    KARStatus Update() override
    {
        m_sensor.SetPosition(0.5);
        m_sensor.SetVelocity(2.0);
        return m_sensor.SetAcceleration(-1.0);
    }
    KARStatus OnActivate() override { return KARSuccess; }
    KARStatus OnDeactivate() override { return KARSuccess; }

private:
    KARMPJointDOFSensor& m_sensor; // owns the loader
};

QOBSharedHandle<KARMPWorld> WorldOfSensors(std::int64_t count)
{
    const auto basicWorld = QOBBasicWorld::create(L"Sensors");
    auto world = KARMPWorld::create(basicWorld);
    const auto joint = KARMPRevolute::create(L"Joint");
    basicWorld->addLogicalChild(joint);
    world->Add<KARMPJoint>(joint);
    for (std::int64_t index = 0; index < count; ++index) {
        const auto sensor = KARMPJointDOFSensor::create(L"Sensor");
        basicWorld->addLogicalChild(sensor);
        world->Add<KARMPSensor>(sensor);
        sensor->SetJoint(joint);
        sensor->SetLoader(new Loader(*sensor));
    }
    return world;
}

/// Calls an operation of all sensors of a world; false when one fails.
bool Call(const KARMPWorld& world, KARStatus (KARMPSensor::*operation)())
{
    bool isDone = true;
    QOBSharedHandle<KARMPSensor> sensor;
    for (int index = 0; index < world.Count<KARMPSensor>(); ++index) {
        world.Get<KARMPSensor>(index, sensor);
        isDone = (*sensor.*operation)() == KARSuccess && isDone;
    }
    return isDone;
}

void SensorStep(benchmark::State& state)
{
    auto world = WorldOfSensors(state.range(0));
    {
        const HeapCounter heap(state);
        const auto start = Clock::now();
        for (auto _ : state)
            if (!Call(*world, &KARMPSensor::Update) || !Call(*world, &KARMPSensor::Reset))
                state.SkipWithError("a sensor failed");
        NoteGrowth(state, "sensors", Clock::now() - start);
    }
    world.detach();
}
BENCHMARK(SensorStep)
    ->RangeMultiplier(10)
    ->Range(FewestItems, 100'000)
    ->Unit(benchmark::kMillisecond);

} // namespace

// Many sensors: what an update and a reset of all of them cost, and how links among many end. Costs
// are counted, so that they are the same on every machine.
#include "AllocationCounter.h"
#include "KARIMPJointDOFSensorLoader.h"
#include "KARMPConnectorSpatialForceSensor.h"
#include "KARMPConstraintSensor.h"
#include "KARMPDisplacementSensor.h"
#include "KARMPDofSensor.h"
#include "KARMPJointDOFSensor.h"
#include "KARMPPlainConstraints.h"
#include "KARMPTestFixture.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"

#include <utility>
#include <vector>

namespace {

using Sensor = QOBSharedHandle<KARMPSensor>;
using Constraint = QOBSharedHandle<KARMPConstraint>;

/// Fills a sensor with the number of updates so far.
class CountingLoader : public KARIMPJointDOFSensorLoader
{
public:
    CountingLoader(KARMPJointDOFSensor& sensor, int& updates) : m_sensor(sensor), m_updates(updates)
    {}
    KARStatus Update() override { return m_sensor.SetPosition(++m_updates); }
    KARStatus OnActivate() override { return KARSuccess; }
    KARStatus OnDeactivate() override { return KARSuccess; }

private:
    KARMPJointDOFSensor& m_sensor;
    int& m_updates;
};

/// A world with sensors of one freedom each.
class ManySensors : public KARMPTestFixture
{
protected:
    static constexpr int Count = 100000;

    ~ManySensors() override { KARMPWorld::destroy(world); }
    void Fill(int count)
    {
        for (int i = 0; i < count; ++i) {
            const auto sensor = KARMPJointDOFSensor::create(L"");
            sensor->SetLoader(new CountingLoader(*sensor, updates));
            sensor->SetIndexDOF(5);
            world->Add<KARMPSensor>(sensor);
        }
    }
    /// Calls an operation of every sensor; the number of those that give 0.
    template <class Operation>
    int WalkAll(Operation operation)
    {
        int succeeded = 0;
        const int count = world->Count<KARMPSensor>();
        for (int i = 0; i < count; ++i) {
            Sensor sensor;
            world->Get<KARMPSensor>(i, sensor);
            succeeded += operation(*sensor) == KARSuccess ? 1 : 0;
        }
        return succeeded;
    }
    double PositionOf(int index) const
    {
        Sensor sensor;
        world->Get<KARMPSensor>(index, sensor);
        double position = -1.0;
        QOBSharedHandle<KARMPJointDOFSensor>(sensor)->GetPosition(position);
        return position;
    }

    int updates = 0;
    QOBSharedHandle<QOBBasicWorld> basic = QOBBasicWorld::create(L"basic");
    QOBSharedHandle<KARMPWorld> world = KARMPWorld::create(basic);
};

TEST_F(ManySensors, AskTheirLoadersOnceForEachUpdate)
{
    Fill(Count);
    EXPECT_EQ(WalkAll([](KARMPSensor& sensor) { return sensor.Update(); }), Count);
    EXPECT_EQ(updates, Count);
    EXPECT_EQ(PositionOf(0), 1.0);
    EXPECT_EQ(PositionOf(Count - 1), Count);
    EXPECT_EQ(WalkAll([](KARMPSensor& sensor) { return sensor.Reset(); }), Count);
    EXPECT_EQ(updates, Count) << "a reset asks nobody";
    EXPECT_EQ(PositionOf(0), 0.0);
    EXPECT_EQ(PositionOf(Count - 1), 0.0);
    EXPECT_EQ(WalkAll([](KARMPSensor& sensor) { return sensor.Update(); }), Count);
    EXPECT_EQ(updates, 2 * Count);
}

TEST_F(ManySensors, AllocateNothingInUpdatesAndResets)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "this build does not count allocations";
    Fill(1000);
    const AllocationCounter allocations;
    EXPECT_EQ(WalkAll([](KARMPSensor& sensor) { return sensor.Update(); }), 1000);
    EXPECT_EQ(WalkAll([](KARMPSensor& sensor) { return sensor.Reset(); }), 1000);
    EXPECT_EQ(allocations.Count(), 0U);
}

TEST_F(ManySensors, TellTheInactiveOnesApartInAWalk)
{
    Fill(10);
    for (int i = 0; i < 10; i += 2) {
        Sensor sensor;
        world->Get<KARMPSensor>(i, sensor);
        sensor->Deactivate();
    }
    EXPECT_EQ(WalkAll([](KARMPSensor& sensor) { return sensor.Update(); }), 5);
    EXPECT_EQ(updates, 5);
}

/// A sensor whose result names many constraints, which are all linked to it.
class ManyConstraints : public KARMPTestFixture
{
protected:
    void Link(int count)
    {
        for (int i = 0; i < count; ++i) {
            constraints.emplace_back(KARMPConcentricity::create(L""));
            constraints.back()->LinkToSensor(Sensor(sensor));
        }
        const auto half = constraints.begin() + count / 2;
        sensor->SetRedundancyStatus(KARMPConstraintSensor::RedundancyStatus::Redundant,
                                    {constraints.begin(), half}, {half, constraints.end()});
    }
    std::pair<std::size_t, std::size_t> Listed() const
    {
        KARMPConstraintSensor::RedundancyStatus status{};
        QOBSharedVector<KARMPConstraint> first;
        QOBSharedVector<KARMPConstraint> second;
        sensor->GetRedundancyStatus(status, first, second);
        return {first.size(), second.size()};
    }

    QOBSharedHandle<KARMPConstraintSensor> sensor = KARMPConstraintSensor::create(L"s");
    QOBSharedVector<KARMPConstraint> constraints;
};

TEST_F(ManyConstraints, AreTakenOutOfASensorOneByOne)
{
    constexpr int Count = 100000;
    Link(Count);
    EXPECT_EQ(Listed(), std::pair(Count / 2UL, Count / 2UL));
    for (int i = 0; i < Count; i += 2)
        constraints[static_cast<std::size_t>(i)]->orphanObject();
    EXPECT_EQ(Listed(), std::pair(Count / 4UL, Count / 4UL));
    sensor->orphanObject();
    EXPECT_EQ(Listed(), std::pair(0UL, 0UL));
    for (const Constraint& constraint : constraints)
        EXPECT_EQ(constraint->GetLinkedSensorCount(), 0);
}

TEST_F(ManyConstraints, CostNoAllocationEachWhenTheyLetTheirSensorGo)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "this build does not count allocations";
    Link(10000);
    const AllocationCounter allocations;
    sensor->orphanObject();
    EXPECT_LE(allocations.Count(), 10U);
}

} // namespace

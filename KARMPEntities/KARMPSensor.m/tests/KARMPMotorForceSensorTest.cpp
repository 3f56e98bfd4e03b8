#include "KARMPMotorForceSensor.h"
#include "KARMPEntityTable.h"
#include "MeasuringSensors.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

#include <array>

namespace {

using Triple = std::array<double, 3>;
const Triple First{1, 2, 3};
const Triple Second{4, 5, 6};

class MotorForceSensor : public MeasuringSensor<MotorForceSensing>
{
protected:
    MotorForceSensor() { Measure(); }
    void Measure()
    {
        Triple first = First;
        Triple second = Second;
        EXPECT_EQ(sensor->SetForce(0.5, first.data(), second.data()), KARSuccess);
    }
    static void ExpectForce(const KARMPMotorForceSensor& one, double force, const Triple& first,
                            const Triple& second)
    {
        double foundForce = -1.0;
        Triple foundFirst{};
        Triple foundSecond{};
        EXPECT_EQ(one.GetForce(foundForce, foundFirst.data(), foundSecond.data()), KARSuccess);
        EXPECT_EQ(foundForce, force);
        EXPECT_EQ(foundFirst, first);
        EXPECT_EQ(foundSecond, second);
    }
};

TEST_F(MotorForceSensor, IsAsNewWithZeros)
{
    ExpectForce(*KARMPMotorForceSensor::create(L""), 0.0, {}, {});
}

TEST_F(MotorForceSensor, PassesOverNullArrays)
{
    ExpectForce(*sensor, 0.5, First, Second);
    Triple other{7, 8, 9};
    EXPECT_EQ(sensor->SetForce(1.5, nullptr, other.data()), KARSuccess);
    ExpectForce(*sensor, 1.5, First, other);
    EXPECT_EQ(sensor->SetForce(2.5, other.data(), nullptr), KARSuccess);
    ExpectForce(*sensor, 2.5, other, other);
    double force = 0.0;
    Triple found{};
    EXPECT_EQ(sensor->GetForce(force, nullptr, found.data()), KARSuccess);
    EXPECT_EQ(found, other);
    found = {};
    EXPECT_EQ(sensor->GetForce(force, found.data(), nullptr), KARSuccess);
    EXPECT_EQ(found, other);
    EXPECT_EQ(force, 2.5);
}

TEST_F(MotorForceSensor, ForgetsForceAndTriplesWhenReset)
{
    EXPECT_EQ(sensor->Reset(), KARSuccess);
    ExpectForce(*sensor, 0.0, {}, {});
}

TEST_F(MotorForceSensor, IsFilledByItsLoader)
{
    sensor->Reset();
    record.measure = [this] { Measure(); };
    sensor->SetLoader(new MotorForceSensing::Loader(record));
    EXPECT_EQ(sensor->Update(), KARSuccess);
    ExpectForce(*sensor, 0.5, First, Second);
}

TEST_F(MotorForceSensor, CopiesForceAndTriples)
{
    ExpectForce(*sensor->copy(), 0.5, First, Second);
}

TEST_F(MotorForceSensor, WritesAndReadsItsForceAlone)
{
    Set(target);
    TestSerializer root;
    EXPECT_EQ(sensor->Serialize(&root), KARSuccess);
    const TestSerializer& element = root.Child(0);
    ASSERT_EQ(element.GetElementCount(), 2U);
    EXPECT_EQ(element.Child(0).GetId(), L"Motor");
    EXPECT_EQ(element.Child(1).GetId(), L"Force");
    EXPECT_EQ(element.Number(L"Force"), 0.5);
    for (const bool asText : {false, true}) {
        const auto read = KARMPMotorForceSensor::create(L"");
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        EXPECT_EQ(read->Deserialize(tree.get(), {}), KARSuccess);
        ExpectForce(*read, 0.5, {}, {});
    }
}

TEST_F(MotorForceSensor, KeepsAForceThatADocumentLacks)
{
    TestDeserializer root;
    root.Add(L"MotorForceSensor")
        .Attribute(L"id", L"r")
        .Attribute(L"name", L"r")
        .Attribute(L"isActive", L"yes");
    const auto read = KARMPMotorForceSensor::create(L"");
    read->SetForce(3.5, nullptr, nullptr);
    EXPECT_EQ(read->Deserialize(&root, {}), KARSuccess);
    ExpectReports(1);
    ExpectForce(*read, 3.5, {}, {});
}

} // namespace

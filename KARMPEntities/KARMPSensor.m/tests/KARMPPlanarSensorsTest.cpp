// The sensors of displacements and of freedoms in the plane.
#include "ConcreteEntity.h"
#include "KARMPDisplacementSensor2D.h"
#include "KARMPDofSensor2D.h"
#include "KARMPEntityTable.h"
#include "KARMPTestFixture.h"
#include "RecordingSensorLoader.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

TestDeserializer& Plain(TestDeserializer& root, const wchar_t* element)
{
    return root.Add(element)
        .Attribute(L"id", L"r")
        .Attribute(L"name", L"r")
        .Attribute(L"isActive", L"yes");
}

/// A sensor with a displacement.
class PlanarDisplacementSensor : public KARMPTestFixture
{
protected:
    using Sensor = KARMPDisplacementSensor2D;

    PlanarDisplacementSensor() { sensor->SetDisplacement(Displacement); }
    static KARMathTransformation2D DisplacementOf(const Sensor& one)
    {
        KARMathTransformation2D displacement;
        one.GetDisplacement(displacement);
        return displacement;
    }

    const KARMathTransformation2D Displacement{{{0.5, 1.0}, {1.5, 2.0}}, {2.5, 3.0}};
    SensorLoaderRecord record;
    QOBSharedHandle<ConcreteEntity<Sensor>> sensor = ConcreteEntity<Sensor>::create(L"s");
};

TEST_F(PlanarDisplacementSensor, IsAsNewWithTheIdentity)
{
    EXPECT_EQ(DisplacementOf(*Sensor::create(L"")), KARMathTransformation2D());
}

TEST_F(PlanarDisplacementSensor, ForgetsItsDisplacementWhenReset)
{
    sensor->SetLoader(new RecordingSensorLoader(record));
    EXPECT_EQ(DisplacementOf(*sensor), Displacement);
    EXPECT_EQ(sensor->Reset(), KARSuccess);
    EXPECT_EQ(DisplacementOf(*sensor), KARMathTransformation2D());
    EXPECT_TRUE(record.calls.empty());
}

TEST_F(PlanarDisplacementSensor, HasItsLoaderUpdateUnlessInactive)
{
    EXPECT_EQ(sensor->Update(), KARFailure);
    ExpectReports(1);
    sensor->SetLoader(new RecordingSensorLoader(record));
    record.answer = KARUnchanged;
    EXPECT_EQ(sensor->Update(), KARSuccess);
    record.answer = KARUnexpected;
    EXPECT_EQ(sensor->Update(), KARFailure);
    ExpectReports(1);
    sensor->failsToFetch = true;
    EXPECT_EQ(sensor->Update(), KARFailure);
    ExpectReports(1);
    record.answer = KARSuccess;
    sensor->Deactivate();
    ExpectReports(0);
    record.calls.clear();
    EXPECT_EQ(sensor->Update(), KARSuccess);
    EXPECT_TRUE(record.calls.empty());
}

TEST_F(PlanarDisplacementSensor, CopiesItsDisplacement)
{
    EXPECT_EQ(DisplacementOf(*sensor->copy()), Displacement);
}

TEST_F(PlanarDisplacementSensor, WritesItsDisplacementByColumns)
{
    TestSerializer root;
    EXPECT_EQ(sensor->Serialize(&root), KARSuccess);
    const TestSerializer& element = root.Child(0);
    EXPECT_EQ(element.GetId(), L"DisplacementSensor2D");
    ASSERT_EQ(element.GetElementCount(), 1U);
    EXPECT_EQ(element.Number(L"Displacement2D/Translation2D/Vx"), 2.5);
    EXPECT_EQ(element.Number(L"Displacement2D/Translation2D/Vy"), 3.0);
    EXPECT_EQ(element.Number(L"Displacement2D/Rotation2D/M1x"), 0.5);
    EXPECT_EQ(element.Number(L"Displacement2D/Rotation2D/M1y"), 1.0);
    EXPECT_EQ(element.Number(L"Displacement2D/Rotation2D/M2x"), 1.5);
    EXPECT_EQ(element.Number(L"Displacement2D/Rotation2D/M2y"), 2.0);
}

TEST_F(PlanarDisplacementSensor, ReadsBackWhatItWroteInEitherForm)
{
    TestSerializer root;
    sensor->Serialize(&root);
    for (const bool asText : {false, true}) {
        const auto read = Sensor::create(L"");
        EXPECT_EQ(read->Deserialize(TestDeserializer::From(root, {.asText = asText}).get(), {}),
                  KARSuccess);
        EXPECT_EQ(DisplacementOf(*read), Displacement);
    }
}

TEST_F(PlanarDisplacementSensor, KeepsItsDisplacementWhereItIsMissing)
{
    TestDeserializer root;
    Plain(root, L"DisplacementSensor2D");
    const auto read = Sensor::create(L"");
    read->SetDisplacement(Displacement);
    EXPECT_EQ(read->Deserialize(&root, {}), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(DisplacementOf(*read), Displacement);
    TestDeserializer other;
    Plain(other, L"DisplacementSensor2D")
        .Add(L"Displacement2D")
        .Add(L"Translation2D")
        .Leaf(L"Vx", 1.0);
    const auto again = Sensor::create(L"");
    again->SetDisplacement(Displacement);
    EXPECT_EQ(again->Deserialize(&other, {}), KARSuccess);
    ExpectReports(2); // a component and the rotation
    EXPECT_EQ(DisplacementOf(*again), KARMathTransformation2D(Displacement.GetMatrix(), {1, 0}));
}

/// A sensor of freedoms in the plane.
class PlanarDofSensor : public KARMPTestFixture
{
protected:
    using Sensor = KARMPDofSensor2D;

    static int DofOf(const Sensor& one)
    {
        int number = -1;
        EXPECT_EQ(one.GetNumberOfDof(number), KARSuccess);
        return number;
    }
    void Fill()
    {
        sensor->AddTranslation({1, 2});
        sensor->AddTranslation({3, 4});
        sensor->AddRotation({5, 6});
    }
    static void ExpectFilled(const Sensor& one)
    {
        EXPECT_EQ(DofOf(one), 3);
        EXPECT_EQ(one.GetNumberOfTranslations(), 2);
        EXPECT_EQ(one.GetNumberOfRotations(), 1);
        KARMathVector2D translation;
        EXPECT_EQ(one.GetTranslation(0, translation), KARSuccess);
        EXPECT_EQ(translation, KARMathVector2D(1, 2));
        EXPECT_EQ(one.GetTranslation(1, translation), KARSuccess);
        EXPECT_EQ(translation, KARMathVector2D(3, 4));
        KARMathPoint2D center;
        EXPECT_EQ(one.GetRotation(0, center), KARSuccess);
        EXPECT_EQ(center, KARMathPoint2D(5, 6));
    }

    QOBSharedHandle<ConcreteEntity<Sensor>> sensor = ConcreteEntity<Sensor>::create(L"s");
};

TEST_F(PlanarDofSensor, HoldsThreeTranslationsAndThreeRotations)
{
    EXPECT_EQ(DofOf(*sensor), 0);
    for (int index = 0; index < 3; ++index) {
        EXPECT_EQ(sensor->AddTranslation({index + 0.5, 1}), KARSuccess);
        EXPECT_EQ(sensor->AddRotation({index + 1.5, 2}), KARSuccess);
    }
    EXPECT_EQ(sensor->AddTranslation({9, 9}), KARFailure);
    EXPECT_EQ(sensor->AddRotation({9, 9}), KARFailure);
    EXPECT_EQ(DofOf(*sensor), 6);
    for (int index = 0; index < 3; ++index) {
        KARMathVector2D translation;
        EXPECT_EQ(sensor->GetTranslation(index, translation), KARSuccess);
        EXPECT_EQ(translation, KARMathVector2D(index + 0.5, 1));
        KARMathPoint2D center;
        EXPECT_EQ(sensor->GetRotation(index, center), KARSuccess);
        EXPECT_EQ(center, KARMathPoint2D(index + 1.5, 2));
    }
}

TEST_F(PlanarDofSensor, RefusesAnIndexOutsideOfItsFreedoms)
{
    Fill();
    KARMathVector2D translation(9, 9);
    KARMathPoint2D center(9, 9);
    for (const int index : {-1, 2})
        EXPECT_EQ(sensor->GetTranslation(index, translation), KARFailure) << index;
    for (const int index : {-1, 1})
        EXPECT_EQ(sensor->GetRotation(index, center), KARFailure) << index;
    EXPECT_EQ(translation, KARMathVector2D(9, 9));
    EXPECT_EQ(center, KARMathPoint2D(9, 9));
}

TEST_F(PlanarDofSensor, LosesItsFreedomsWhenReset)
{
    Fill();
    EXPECT_EQ(sensor->Reset(), KARSuccess);
    EXPECT_EQ(DofOf(*sensor), 0);
    KARMathVector2D translation;
    EXPECT_EQ(sensor->GetTranslation(0, translation), KARFailure);
    KARMathPoint2D center;
    EXPECT_EQ(sensor->GetRotation(0, center), KARFailure);
    EXPECT_EQ(sensor->Update(), KARSuccess) << "its base's, without a loader";
}

TEST_F(PlanarDofSensor, CopiesItsFreedoms)
{
    Fill();
    ExpectFilled(*sensor->copy());
}

TEST_F(PlanarDofSensor, WritesItsFreedomsWithTheirNumbers)
{
    Fill();
    TestSerializer root;
    EXPECT_EQ(sensor->Serialize(&root), KARSuccess);
    const TestSerializer& element = root.Child(0);
    EXPECT_EQ(element.GetId(), L"DofSensor2D");
    ASSERT_EQ(element.GetElementCount(), 2U);
    EXPECT_EQ(element.Child(0).GetId(), L"Translations2D");
    EXPECT_EQ(element.Child(1).GetId(), L"Rotations2D");
    EXPECT_EQ(element.Integer(L"@numberOfDof"), 3);
    EXPECT_EQ(element.Integer(L"Translations2D/@number"), 2);
    EXPECT_EQ(element.Integer(L"Rotations2D/@number"), 1);
    EXPECT_EQ(element.Number(L"Translations2D/Translation2D/Tx"), 1.0);
    EXPECT_EQ(element.Number(L"Translations2D/Translation2D[1]/Ty"), 4.0);
    EXPECT_EQ(element.Number(L"Rotations2D/Rotation2D/Center/xCenter"), 5.0);
    EXPECT_EQ(element.Number(L"Rotations2D/Rotation2D/Center/yCenter"), 6.0);
}

TEST_F(PlanarDofSensor, ReadsBackWhatItWroteInEitherForm)
{
    Fill();
    TestSerializer root;
    sensor->Serialize(&root);
    for (const bool asText : {false, true}) {
        const auto read = Sensor::create(L"");
        EXPECT_EQ(read->Deserialize(TestDeserializer::From(root, {.asText = asText}).get(), {}),
                  KARSuccess);
        ExpectFilled(*read);
    }
}

TEST_F(PlanarDofSensor, CountsTheElementsThatItReads)
{
    TestDeserializer root;
    TestDeserializer& element = Plain(root, L"DofSensor2D").Attribute(L"numberOfDof", 17);
    TestDeserializer& translations = element.Add(L"Translations2D").Attribute(L"number", 1);
    for (int i = 0; i < 4; ++i)
        translations.Add(L"Translation2D").Leaf(L"Tx", i + 0.5).Leaf(L"Ty", 1.0);
    const auto read = Sensor::create(L"");
    EXPECT_EQ(read->Deserialize(&root, {}), KARSuccess);
    ExpectReports(2); // the translation that has no slot, and the list of rotations
    EXPECT_EQ(DofOf(*read), 3);
}

} // namespace

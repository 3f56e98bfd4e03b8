#include "KARMPDofSensor.h"
#include "ConcreteEntity.h"
#include "KARMPBody.h"
#include "KARMPEntityTable.h"
#include "KARMPTestFixture.h"
#include "RecordingSensorLoader.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

const KARMathPoint Poles[] = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
const KARMathVector Axes[] = {{0.5, 0, 0}, {0, 0.5, 0}, {0, 0, 0.5}};
const KARMathVector Untouched(9, 9, 9);

/// A sensor between two bodies.
class DofSensor : public KARMPTestFixture
{
protected:
    using Body = QOBSharedHandle<KARMPBody>;
    using Sensor = QOBSharedHandle<KARMPDofSensor>;

    DofSensor()
    {
        body->SetIdentifier(L"body");
        reference->SetIdentifier(L"reference");
        entities.Set(L"body", body);
        entities.Set(L"reference", reference);
    }
    ~DofSensor() override
    {
        sensor->orphanObject();
        body->orphanObject();
        reference->orphanObject();
    }
    static int DofOf(const KARMPDofSensor& one)
    {
        int number = -1;
        EXPECT_EQ(one.GetNumberOfDof(number), KARSuccess);
        return number;
    }
    static void ExpectTranslation(const KARMPDofSensor& one, int index,
                                  const KARMathVector& expected)
    {
        KARMathVector found;
        EXPECT_EQ(one.GetTranslation(index, found), KARSuccess) << index;
        EXPECT_EQ(found, expected) << index;
    }
    static void ExpectRotation(const KARMPDofSensor& one, int index, const KARMathPoint& pole,
                               const KARMathVector& axis)
    {
        KARMathPoint foundPole;
        KARMathVector foundAxis;
        EXPECT_EQ(one.GetRotation(index, foundPole, foundAxis), KARSuccess) << index;
        EXPECT_EQ(foundPole, pole) << index;
        EXPECT_EQ(foundAxis, axis) << index;
    }
    static void ExpectScrew(const KARMPDofSensor& one, int index, const KARMathPoint& pole,
                            const KARMathVector& axis, double pitch)
    {
        KARMathPoint foundPole;
        KARMathVector foundAxis;
        double foundPitch = 0.0;
        EXPECT_EQ(one.GetScrew(index, foundPole, foundAxis, foundPitch), KARSuccess) << index;
        EXPECT_EQ(foundPole, pole) << index;
        EXPECT_EQ(foundAxis, axis) << index;
        EXPECT_EQ(foundPitch, pitch) << index;
    }
    /// Two translations, a rotation and two screws.
    void Fill()
    {
        sensor->AddTranslation(Axes[0]);
        sensor->AddTranslation(Axes[1]);
        sensor->AddRotation(Poles[0], Axes[2]);
        sensor->AddScrew(Poles[1], Axes[1], 1.5);
        sensor->AddScrew(Poles[2], Axes[0], 2.5);
    }
    static void ExpectFilled(const KARMPDofSensor& one)
    {
        EXPECT_EQ(DofOf(one), 5);
        ExpectTranslation(one, 0, Axes[0]);
        ExpectTranslation(one, 1, Axes[1]);
        ExpectRotation(one, 0, Poles[0], Axes[2]);
        ExpectScrew(one, 0, Poles[1], Axes[1], 1.5);
        ExpectScrew(one, 1, Poles[2], Axes[0], 2.5);
    }
    static TestDeserializer& Plain(TestDeserializer& root)
    {
        return root.Add(L"DofSensor")
            .Attribute(L"id", L"r")
            .Attribute(L"name", L"r")
            .Attribute(L"isActive", L"yes")
            .Attribute(L"numberOfDof", 17);
    }
    static void AddTriple(TestDeserializer& node, const std::wstring& prefix)
    {
        node.Leaf(prefix + L"x", 1.0).Leaf(prefix + L"y", 2.0).Leaf(prefix + L"z", 3.0);
    }

    QOBSharedHandle<ConcreteEntity<KARMPDofSensor>> sensor =
        ConcreteEntity<KARMPDofSensor>::create(L"s");
    Body body = KARMPBody::create(L"body");
    Body reference = KARMPBody::create(L"reference");
    KARMPEntityTable entities;
};

TEST_F(DofSensor, IsAsNewWithoutFreedomsAndBodies)
{
    EXPECT_EQ(DofOf(*sensor), 0);
    EXPECT_EQ(sensor->GetNumberOfTranslations(), 0);
    EXPECT_EQ(sensor->GetNumberOfRotations(), 0);
    EXPECT_EQ(sensor->GetNumberOfScrews(), 0);
    Body found = body;
    EXPECT_EQ(sensor->GetConstrainedBody(found), KARFailure);
    EXPECT_FALSE(found);
    found = body;
    EXPECT_EQ(sensor->GetReferenceBody(found), KARFailure);
    EXPECT_FALSE(found);
}

TEST_F(DofSensor, HoldsThreeTranslations)
{
    for (int index = 0; index < 3; ++index) {
        EXPECT_EQ(sensor->AddTranslation(Axes[index]), KARSuccess);
        EXPECT_EQ(sensor->GetNumberOfTranslations(), index + 1);
    }
    EXPECT_EQ(sensor->AddTranslation({8, 8, 8}), KARFailure);
    EXPECT_EQ(sensor->GetNumberOfTranslations(), 3);
    for (int index = 0; index < 3; ++index)
        ExpectTranslation(*sensor, index, Axes[index]);
    EXPECT_EQ(sensor->AddRotation(Poles[0], Axes[0]), KARSuccess) << "their slots are others";
}

TEST_F(DofSensor, HoldsThreeRotationsOrScrews)
{
    for (int index = 0; index < 3; ++index)
        EXPECT_EQ(sensor->AddRotation(Poles[index], Axes[index]), KARSuccess);
    EXPECT_EQ(sensor->AddRotation(Poles[0], Axes[0]), KARFailure);
    EXPECT_EQ(sensor->AddScrew(Poles[0], Axes[0], 1.0), KARFailure);
    EXPECT_EQ(sensor->GetNumberOfRotations(), 3);
    EXPECT_EQ(sensor->GetNumberOfScrews(), 0);
    for (int index = 0; index < 3; ++index)
        ExpectRotation(*sensor, index, Poles[index], Axes[index]);
    sensor->Reset();
    for (int index = 0; index < 3; ++index)
        EXPECT_EQ(sensor->AddScrew(Poles[index], Axes[index], index + 0.5), KARSuccess);
    EXPECT_EQ(sensor->AddScrew(Poles[0], Axes[0], 1.0), KARFailure);
    EXPECT_EQ(sensor->GetNumberOfScrews(), 3);
    for (int index = 0; index < 3; ++index)
        ExpectScrew(*sensor, index, Poles[index], Axes[index], index + 0.5);
}

TEST_F(DofSensor, SharesSlotsBetweenRotationsAndScrews)
{
    sensor->AddRotation(Poles[0], Axes[0]);
    sensor->AddScrew(Poles[1], Axes[1], 1.5);
    sensor->AddRotation(Poles[2], Axes[2]);
    EXPECT_EQ(sensor->AddRotation(Poles[0], Axes[0]), KARFailure);
    EXPECT_EQ(sensor->AddScrew(Poles[0], Axes[0], 1.0), KARFailure);
    EXPECT_EQ(DofOf(*sensor), 3);
    ExpectRotation(*sensor, 0, Poles[0], Axes[0]);
    ExpectRotation(*sensor, 1, Poles[2], Axes[2]);
    ExpectScrew(*sensor, 0, Poles[1], Axes[1], 1.5);
}

TEST_F(DofSensor, FillsScrewsFromTheLastSlotBack)
{
    sensor->AddScrew(Poles[0], Axes[0], 0.5);
    sensor->AddScrew(Poles[1], Axes[1], 1.5);
    sensor->Reset();
    sensor->AddRotation(Poles[2], Axes[2]);
    sensor->AddRotation(Poles[2], Axes[2]);
    sensor->AddScrew(Poles[2], Axes[2], 2.5);
    // Slot 1 had the second screw and has the second rotation now.
    ExpectRotation(*sensor, 1, Poles[2], Axes[2]);
    ExpectScrew(*sensor, 0, Poles[2], Axes[2], 2.5);
}

TEST_F(DofSensor, RefusesAnIndexOutsideOfItsFreedoms)
{
    Fill();
    KARMathPoint pole(9, 9, 9);
    KARMathVector axis = Untouched;
    double pitch = 9.0;
    for (const int index : {-1, 2}) {
        EXPECT_EQ(sensor->GetTranslation(index, axis), KARFailure) << index;
        EXPECT_EQ(sensor->GetScrew(index, pole, axis, pitch), KARFailure) << index;
    }
    for (const int index : {-1, 1})
        EXPECT_EQ(sensor->GetRotation(index, pole, axis), KARFailure) << index;
    EXPECT_EQ(pole, KARMathPoint(9, 9, 9));
    EXPECT_EQ(axis, Untouched);
    EXPECT_EQ(pitch, 9.0);
}

TEST_F(DofSensor, LosesItsFreedomsAndKeepsItsBodiesWhenReset)
{
    Fill();
    sensor->SetConstrainedBody(body);
    sensor->SetReferenceBody(reference);
    EXPECT_EQ(sensor->Reset(), KARSuccess);
    EXPECT_EQ(DofOf(*sensor), 0);
    KARMathPoint pole;
    KARMathVector axis;
    double pitch = 0.0;
    EXPECT_EQ(sensor->GetTranslation(0, axis), KARFailure);
    EXPECT_EQ(sensor->GetRotation(0, pole, axis), KARFailure);
    EXPECT_EQ(sensor->GetScrew(0, pole, axis, pitch), KARFailure);
    Body found;
    EXPECT_EQ(sensor->GetConstrainedBody(found), KARSuccess);
    EXPECT_EQ(found, body);
    EXPECT_EQ(sensor->GetReferenceBody(found), KARSuccess);
    EXPECT_EQ(found, reference);
}

TEST_F(DofSensor, TakesNullForABody)
{
    EXPECT_EQ(sensor->SetConstrainedBody(body), KARSuccess);
    EXPECT_EQ(sensor->SetReferenceBody(reference), KARSuccess);
    EXPECT_EQ(sensor->SetConstrainedBody({}), KARSuccess);
    EXPECT_EQ(sensor->SetReferenceBody({}), KARSuccess);
    Body found;
    EXPECT_EQ(sensor->GetConstrainedBody(found), KARFailure);
    EXPECT_EQ(sensor->GetReferenceBody(found), KARFailure);
}

TEST_F(DofSensor, KeepsBodiesThatAreDestroyed)
{
    sensor->SetConstrainedBody(body);
    sensor->SetReferenceBody(reference);
    KARMPBody::destroy(body);
    Body found;
    EXPECT_EQ(sensor->GetConstrainedBody(found), KARSuccess);
    EXPECT_TRUE(found->isOrphaned());
    EXPECT_EQ(found->getReferenceCount(), 3U) << "the sensor's, the table's, this one";
    body = found;
}

TEST_F(DofSensor, UpdatesNothingItself)
{
    SensorLoaderRecord record;
    sensor->SetLoader(new RecordingSensorLoader(record));
    EXPECT_EQ(sensor->Update(), KARSuccess);
    EXPECT_TRUE(record.calls.empty());
}

TEST_F(DofSensor, CopiesItsFreedomsWithoutItsBodies)
{
    Fill();
    sensor->SetConstrainedBody(body);
    sensor->SetReferenceBody(reference);
    const auto copy = sensor->copy();
    ExpectFilled(*copy);
    Body found;
    EXPECT_EQ(copy->GetConstrainedBody(found), KARFailure);
    EXPECT_EQ(copy->GetReferenceBody(found), KARFailure);
}

TEST_F(DofSensor, WritesItsFreedomsWithTheirNumbers)
{
    Fill();
    sensor->SetConstrainedBody(body);
    sensor->SetReferenceBody(reference);
    TestSerializer root;
    EXPECT_EQ(sensor->Serialize(&root), KARSuccess);
    const TestSerializer& element = root.Child(0);
    EXPECT_EQ(element.GetId(), L"DofSensor");
    const wchar_t* const names[] = {L"Translations", L"Rotations", L"Screws", L"ConstrainedBody",
                                    L"ReferenceBody"};
    ASSERT_EQ(element.GetElementCount(), std::size(names));
    for (std::size_t i = 0; i < std::size(names); ++i)
        EXPECT_EQ(element.Child(i).GetId(), names[i]);
    EXPECT_EQ(element.Integer(L"@numberOfDof"), 5);
    EXPECT_EQ(element.Integer(L"Translations/@number"), 2);
    EXPECT_EQ(element.Integer(L"Rotations/@number"), 1);
    EXPECT_EQ(element.Integer(L"Screws/@number"), 2);
    EXPECT_EQ(element.Count(L"Translations/Translation"), 2U);
    EXPECT_EQ(element.Number(L"Translations/Translation/Tx"), 0.5);
    EXPECT_EQ(element.Number(L"Translations/Translation[1]/Ty"), 0.5);
    EXPECT_EQ(element.Number(L"Translations/Translation[1]/Tz"), 0.0);
    EXPECT_EQ(element.Number(L"Rotations/Rotation/Pole/Polex"), 1.0);
    EXPECT_EQ(element.Number(L"Rotations/Rotation/Pole/Polez"), 3.0);
    EXPECT_EQ(element.Number(L"Rotations/Rotation/Axis/Axisz"), 0.5);
    EXPECT_FALSE(element.Has(L"Rotations/Rotation/Pitch"));
    EXPECT_EQ(element.Number(L"Screws/Screw/Pole/Poley"), 5.0);
    EXPECT_EQ(element.Number(L"Screws/Screw/Axis/Axisy"), 0.5);
    EXPECT_EQ(element.Number(L"Screws/Screw/Pitch/Pitch"), 1.5);
    EXPECT_EQ(element.Number(L"Screws/Screw[1]/Pitch/Pitch"), 2.5);
    EXPECT_EQ(element.Text(L"ConstrainedBody/@id"), L"body");
    EXPECT_EQ(element.Text(L"ReferenceBody/@id"), L"reference");
    EXPECT_EQ(element.Text(L"ReferenceBody/@name"), L"reference");
}

TEST_F(DofSensor, WritesContainersWithoutFreedomsAsWell)
{
    TestSerializer root;
    EXPECT_EQ(sensor->Serialize(&root), KARSuccess);
    const TestSerializer& element = root.Child(0);
    ASSERT_EQ(element.GetElementCount(), 3U) << "no bodies";
    EXPECT_EQ(element.Integer(L"@numberOfDof"), 0);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(element.Child(i).Integer(L"@number"), 0);
        EXPECT_EQ(element.Child(i).GetElementCount(), 0U);
    }
}

TEST_F(DofSensor, ReadsBackWhatItWroteInEitherForm)
{
    Fill();
    sensor->SetConstrainedBody(body);
    sensor->SetReferenceBody(reference);
    TestSerializer root;
    sensor->Serialize(&root);
    for (const bool asText : {false, true}) {
        const Sensor read = KARMPDofSensor::create(L"");
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
        ExpectFilled(*read);
        Body found;
        EXPECT_EQ(read->GetConstrainedBody(found), KARSuccess);
        EXPECT_EQ(found, body);
        EXPECT_EQ(read->GetReferenceBody(found), KARSuccess);
        EXPECT_EQ(found, reference);
    }
}

TEST_F(DofSensor, CountsTheElementsThatItReadsAndNotWhatTheNumbersSay)
{
    TestDeserializer root;
    TestDeserializer& element = Plain(root);
    AddTriple(element.Add(L"Translations").Attribute(L"number", 3).Add(L"Translation"), L"T");
    element.Add(L"Rotations");
    element.Add(L"Screws").Attribute(L"number", L"many");
    const Sensor read = KARMPDofSensor::create(L"");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    EXPECT_EQ(DofOf(*read), 1);
    ExpectTranslation(*read, 0, {1, 2, 3});
}

TEST_F(DofSensor, ReportsContainersThatAreMissing)
{
    TestDeserializer root;
    Plain(root);
    const Sensor read = KARMPDofSensor::create(L"");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    ExpectReports(3);
    EXPECT_EQ(DofOf(*read), 0);
}

TEST_F(DofSensor, ReadsAsManyFreedomsAsItHasSlots)
{
    TestDeserializer root;
    TestDeserializer& element = Plain(root);
    TestDeserializer& translations = element.Add(L"Translations");
    for (int i = 0; i < 5; ++i)
        AddTriple(translations.Add(L"Translation"), L"T");
    element.Add(L"Rotations");
    element.Add(L"Screws");
    const Sensor read = KARMPDofSensor::create(L"");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    ExpectReports(2); // one for each that is refused
    EXPECT_EQ(read->GetNumberOfTranslations(), 3);
}

TEST_F(DofSensor, TakesZerosForPartsOfAFreedomThatAreMissing)
{
    TestDeserializer root;
    TestDeserializer& element = Plain(root);
    element.Add(L"Translations").Add(L"Translation").Leaf(L"Ty", 2.0);
    TestDeserializer& screw = element.Add(L"Screws").Add(L"Screw");
    AddTriple(screw.Add(L"Pole"), L"Pole");
    screw.Add(L"Pitch");
    element.Add(L"Rotations");
    const Sensor read = KARMPDofSensor::create(L"");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    ExpectReports(4); // two components, the axis, the pitch within its element
    ExpectTranslation(*read, 0, {0, 2, 0});
    ExpectScrew(*read, 0, {1, 2, 3}, {}, 0.0);
}

TEST_F(DofSensor, FailsWithoutItsElement)
{
    TestDeserializer root;
    EXPECT_EQ(sensor->Deserialize(&root, entities), KARFailure);
    EXPECT_EQ(sensor->Deserialize(nullptr, entities), KARFailure);
    EXPECT_EQ(sensor->Serialize(nullptr), KARFailure);
    ExpectReports(3);
}

} // namespace

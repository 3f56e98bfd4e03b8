#include "KARMPDisplacementActuator.h"
#include "ConcreteEntity.h"
#include "KARMPBody.h"
#include "KARMPDisplacementActuator2D.h"
#include "KARMPEntityTable.h"
#include "KARMPGlobalDisplacementActuator.h"
#include "KARMPPoint.h"
#include "KARMPTestFixture.h"
#include "QOBException.h"
#include "RecordingActuatorLoaders.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

class ActuatorBase : public KARMPTestFixture
{
protected:
    QOBSharedHandle<ConcreteEntity<KARMPActuator>> actuator =
        ConcreteEntity<KARMPActuator>::create(L"a");
};

TEST_F(ActuatorBase, WritesAndReadsTheContentOfAnEntity)
{
    const KARMPEntityTable entities;
    TestSerializer root;
    EXPECT_EQ(actuator->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"@id"), L"a");
    EXPECT_EQ(root.GetElementCount(), 0U);
    const auto read = KARMPGlobalDisplacementActuator::create(L"");
    EXPECT_EQ(read->KARMPActuator::Deserialize(TestDeserializer::From(root).get(), entities),
              KARSuccess);
    EXPECT_EQ(read->getEntityName(), L"a");
    EXPECT_EQ(actuator->Serialize(nullptr), KARFailure);
    EXPECT_EQ(actuator->Deserialize(nullptr, entities), KARFailure);
    ExpectReports(2);
}

/// The kinds of displacement actuators, with two moves and two lines of each.
struct Spatial
{
    using Actuator = KARMPDisplacementActuator;
    using Loader = RecordingDisplacementActuatorLoader;
    using Interface = KARIMPDisplacementActuatorLoader;
    using Transformation = KARMathTransformation;
    using Line = KARMathLine;

    static Transformation Move()
    {
        return {{{0.5, 1.0, 1.5}, {2.0, 2.5, 3.0}, {3.5, 4.0, 4.5}}, {5.0, 5.5, 6.0}};
    }
    static Line DragLine() { return {{1.0, 2.0, 3.0}, {0.0, 1.0, 0.0}}; }
};
struct Planar
{
    using Actuator = KARMPDisplacementActuator2D;
    using Loader = RecordingDisplacementActuator2DLoader;
    using Interface = KARIMPDisplacementActuator2DLoader;
    using Transformation = KARMathTransformation2D;
    using Line = KARMathLine2D;

    static Transformation Move() { return {{{0.5, 1.0}, {1.5, 2.0}}, {2.5, 3.0}}; }
    static Line DragLine() { return {{1.0, 2.0}, {3.0, 4.0}}; }
};

template <class Actuator>
auto DisplacementOf(const Actuator& actuator)
{
    std::conditional_t<std::is_base_of_v<KARMPDisplacementActuator, Actuator>,
                       KARMathTransformation, KARMathTransformation2D>
        displacement;
    EXPECT_EQ(actuator.GetDisplacement(displacement), KARSuccess);
    return displacement;
}
template <class Actuator>
auto DragLineOf(const Actuator& actuator)
{
    std::conditional_t<std::is_base_of_v<KARMPDisplacementActuator, Actuator>, KARMathLine,
                       KARMathLine2D>
        line;
    EXPECT_EQ(actuator.GetDisplacementByDragLine(line), KARSuccess);
    return line;
}

template <class Kind>
class DisplacementActuators : public KARMPTestFixture
{
protected:
    using Actuator = ConcreteEntity<typename Kind::Actuator>;

    LoaderRecord record;
    QOBSharedHandle<Actuator> actuator = Actuator::create(L"a");
    KARMPEntityTable entities;
};

using Kinds = ::testing::Types<Spatial, Planar>;
TYPED_TEST_SUITE(DisplacementActuators, Kinds);

TYPED_TEST(DisplacementActuators, KeepMoveAndDragLineApart)
{
    EXPECT_EQ(DisplacementOf(*this->actuator), typename TypeParam::Transformation());
    EXPECT_EQ(DragLineOf(*this->actuator), typename TypeParam::Line());
    EXPECT_EQ(this->actuator->SetDisplacement(TypeParam::Move()), KARSuccess);
    EXPECT_EQ(DragLineOf(*this->actuator), typename TypeParam::Line());
    EXPECT_EQ(this->actuator->SetDisplacementByDragLine(TypeParam::DragLine()), KARSuccess);
    EXPECT_EQ(DisplacementOf(*this->actuator), TypeParam::Move());
    EXPECT_EQ(DragLineOf(*this->actuator), TypeParam::DragLine());
    const auto copy = this->actuator->copy();
    EXPECT_EQ(DisplacementOf(*copy), TypeParam::Move());
    EXPECT_EQ(DragLineOf(*copy), TypeParam::DragLine());
}

TYPED_TEST(DisplacementActuators, GiveTheAnswerOfTheirLoader)
{
    auto* loader = new typename TypeParam::Loader(this->record);
    this->actuator->SetLoader(loader);
    for (const KARStatus answer : {KARSuccess, KARUnchanged, KARUnexpected}) {
        this->record.calls.clear();
        this->record.answer = answer;
        EXPECT_EQ(this->actuator->SetDisplacement(TypeParam::Move()), answer);
        EXPECT_EQ(this->actuator->SetDisplacementByDragLine(TypeParam::DragLine()), answer);
        KARMPMoveStatus::Enum status = {};
        EXPECT_EQ(this->actuator->GetMoveStatus(status), answer);
        EXPECT_EQ(status, loader->moveStatus);
        EXPECT_EQ(this->record.calls,
                  (std::vector<std::string>{"SetDisplacement", "SetDisplacementByDragLine",
                                            "GetMoveStatus"}));
    }
    EXPECT_EQ(loader->displacement, TypeParam::Move());
    EXPECT_EQ(loader->line, TypeParam::DragLine());
}

TYPED_TEST(DisplacementActuators, DoWithoutALoaderOfTheirKind)
{
    this->actuator->SetLoader(new RecordingEntityLoader(this->record));
    typename TypeParam::Interface* loader = nullptr;
    EXPECT_EQ(this->actuator->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr);
    EXPECT_EQ(this->actuator->SetDisplacement(TypeParam::Move()), KARSuccess);
    auto status = static_cast<KARMPMoveStatus::Enum>(5);
    EXPECT_EQ(this->actuator->GetMoveStatus(status), KARSuccess);
    EXPECT_EQ(status, 0);
}

TYPED_TEST(DisplacementActuators, StoreFirstWhenTheLoaderCannotBeFetched)
{
    this->actuator->failsToFetch = true;
    EXPECT_EQ(this->actuator->SetDisplacement(TypeParam::Move()), KARFailure);
    EXPECT_EQ(this->actuator->SetDisplacementByDragLine(TypeParam::DragLine()), KARFailure);
    auto status = static_cast<KARMPMoveStatus::Enum>(5);
    EXPECT_EQ(this->actuator->GetMoveStatus(status), KARFailure);
    EXPECT_EQ(status, 0);
    this->ExpectReports(6);
    EXPECT_EQ(DisplacementOf(*this->actuator), TypeParam::Move());
    EXPECT_EQ(DragLineOf(*this->actuator), TypeParam::DragLine());
}

TYPED_TEST(DisplacementActuators, ReadThroughTheirSetters)
{
    this->actuator->SetDisplacement(TypeParam::Move());
    this->actuator->SetDisplacementByDragLine(TypeParam::DragLine());
    TestSerializer root;
    EXPECT_EQ(this->actuator->Serialize(&root), KARSuccess);
    for (const bool asText : {false, true}) {
        const auto read = TypeParam::Actuator::create(L"");
        read->SetLoader(new typename TypeParam::Loader(this->record));
        this->record.calls.clear();
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        EXPECT_EQ(read->Deserialize(tree.get(), this->entities), KARSuccess);
        EXPECT_EQ(this->record.calls,
                  (std::vector<std::string>{"SetDisplacement", "SetDisplacementByDragLine"}));
        EXPECT_EQ(DisplacementOf(*read), TypeParam::Move());
        EXPECT_EQ(DragLineOf(*read), TypeParam::DragLine());
    }
}

TYPED_TEST(DisplacementActuators, ReportALoaderThatRefusesWhatIsRead)
{
    this->actuator->SetDisplacement(TypeParam::Move());
    TestSerializer root;
    this->actuator->Serialize(&root);
    const auto read = TypeParam::Actuator::create(L"");
    read->SetLoader(new typename TypeParam::Loader(this->record));
    this->record.answer = KARFailure;
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), this->entities), KARSuccess);
    this->ExpectReports(2);
    EXPECT_EQ(DisplacementOf(*read), TypeParam::Move());
}

/// A displacement actuator in space, with a body and a point on it.
class DisplacementActuator : public DisplacementActuators<Spatial>
{
protected:
    DisplacementActuator()
    {
        body->SetIdentifier(L"body");
        point->SetIdentifier(L"point");
        entities.Set(L"body", body);
        entities.Set(L"point", point);
    }
    static TestDeserializer& Plain(TestDeserializer& root, const wchar_t* element)
    {
        return root.Add(element)
            .Attribute(L"id", L"r")
            .Attribute(L"name", L"r")
            .Attribute(L"isActive", L"yes");
    }

    QOBSharedHandle<KARMPBody> body = KARMPBody::create(L"body");
    QOBSharedHandle<KARMPPoint> point = KARMPPoint::create(L"point");
};

TEST_F(DisplacementActuator, FailsWithTheLoaderOfAPlanarOne)
{
    actuator->SetLoader(new RecordingDisplacementActuator2DLoader(record));
    EXPECT_EQ(actuator->SetDisplacement(Spatial::Move()), KARNotImplemented);
    EXPECT_EQ(actuator->SetDisplacementByDragLine(Spatial::DragLine()), KARNotImplemented);
    EXPECT_TRUE(record.calls.empty());
}

TEST_F(DisplacementActuator, HasABodyAndPerhapsAGeometry)
{
    QOBSharedHandle<KARMPBody> foundBody = body;
    EXPECT_EQ(actuator->GetBody(foundBody), KARFailure);
    EXPECT_FALSE(foundBody);
    ExpectReports(1);
    QOBSharedHandle<KARMPGeometry> foundGeometry(point);
    EXPECT_EQ(actuator->GetGeometry(foundGeometry), KARUnchanged);
    EXPECT_EQ(foundGeometry, point);

    EXPECT_EQ(actuator->SetBody(body), KARSuccess);
    EXPECT_EQ(actuator->SetGeometry(point), KARSuccess);
    EXPECT_EQ(actuator->SetBody({}), KARFailure);
    EXPECT_EQ(actuator->SetGeometry({}), KARFailure);
    ExpectReports(2);
    EXPECT_EQ(actuator->GetBody(foundBody), KARSuccess);
    EXPECT_EQ(foundBody, body);
    foundGeometry = nullptr;
    EXPECT_EQ(actuator->GetGeometry(foundGeometry), KARSuccess);
    EXPECT_EQ(foundGeometry, point);

    const auto copy = actuator->copy();
    EXPECT_EQ(copy->GetBody(foundBody), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(copy->GetGeometry(foundGeometry), KARUnchanged);
}

TEST_F(DisplacementActuator, WritesItsLinksAndNumbersInOrder)
{
    actuator->SetBody(body);
    actuator->SetGeometry(point);
    actuator->SetDisplacement(Spatial::Move());
    TestSerializer root;
    EXPECT_EQ(actuator->Serialize(&root), KARSuccess);
    const TestSerializer& element = root.Child(0);
    EXPECT_EQ(element.GetId(), L"DisplacementActuator");
    const wchar_t* const names[] = {L"Body", L"Geometry", L"Displacement", L"DragLine"};
    ASSERT_EQ(element.GetElementCount(), std::size(names));
    for (std::size_t i = 0; i < std::size(names); ++i)
        EXPECT_EQ(element.Child(i).GetId(), names[i]);
    EXPECT_EQ(element.Text(L"Body/@id"), L"body");
    EXPECT_EQ(element.Text(L"Geometry/@name"), L"point");
    EXPECT_EQ(element.Number(L"Displacement/Translation/Vy"), 5.5);
    EXPECT_EQ(element.Number(L"Displacement/Rotation/M1y"), 1.0);
    EXPECT_EQ(element.Number(L"DragLine/Coordinates/Ox"), 0.0);
    EXPECT_EQ(element.Number(L"DragLine/Coordinates/Dx"), 1.0);
    const QOBSharedHandle<KARMPDisplacementActuator> read = KARMPDisplacementActuator::create(L"");
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    QOBSharedHandle<KARMPBody> foundBody;
    EXPECT_EQ(read->GetBody(foundBody), KARSuccess);
    QOBSharedHandle<KARMPGeometry> foundGeometry;
    EXPECT_EQ(read->GetGeometry(foundGeometry), KARSuccess);
}

TEST_F(DisplacementActuator, WritesTheIdentityInFullByDefault)
{
    TestSerializer root;
    EXPECT_EQ(actuator->Serialize(&root), KARSuccess);
    const TestSerializer& element = root.Child(0);
    ASSERT_EQ(element.GetElementCount(), 2U);
    EXPECT_EQ(element.Child(0).Child(0).GetElementCount(), 3U);
    EXPECT_EQ(element.Child(0).Child(1).GetElementCount(), 9U);
    for (const wchar_t* name : {L"M1x", L"M2y", L"M3z"})
        EXPECT_EQ(element.Number(std::wstring(L"Displacement/Rotation/") + name), 1.0);
    const QOBSharedHandle<KARMPDisplacementActuator> read = KARMPDisplacementActuator::create(L"");
    read->SetDisplacement(Spatial::Move());
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    EXPECT_EQ(DisplacementOf(*read), KARMathTransformation());
}

TEST_F(DisplacementActuator, ReportsAndKeepsWhatIsMissing)
{
    actuator->SetDisplacement(Spatial::Move());
    actuator->SetDisplacementByDragLine(Spatial::DragLine());
    TestDeserializer root;
    TestDeserializer& element = Plain(root, L"DisplacementActuator");
    EXPECT_EQ(actuator->Deserialize(&root, entities), KARSuccess);
    // The actuator has an identifier already; move and line are missing.
    ExpectReports(3);
    EXPECT_EQ(DisplacementOf(*actuator), Spatial::Move());
    EXPECT_EQ(DragLineOf(*actuator), Spatial::DragLine());

    element.Add(L"Body").Attribute(L"id", L"nobody");
    element.Add(L"DragLine");
    EXPECT_EQ(actuator->Deserialize(&root, entities), KARSuccess);
    ExpectReports(3);
    EXPECT_EQ(DragLineOf(*actuator), Spatial::DragLine());
    QOBSharedHandle<KARMPBody> found;
    EXPECT_EQ(actuator->GetBody(found), KARFailure);
    ExpectReports(1);
}

TEST_F(DisplacementActuator, MakesTheDirectionOfTheDragLineAUnitVector)
{
    TestDeserializer root;
    TestDeserializer& line =
        Plain(root, L"DisplacementActuator").Add(L"DragLine").Add(L"Coordinates");
    line.Leaf(L"Ox", 1.0).Leaf(L"Oy", 2.0).Leaf(L"Oz", 3.0);
    line.Leaf(L"Dx", 0.0).Leaf(L"Dy", 0.0).Leaf(L"Dz", 4.0);
    EXPECT_EQ(actuator->Deserialize(&root, entities), KARSuccess);
    ExpectReports(2);
    EXPECT_EQ(DragLineOf(*actuator), KARMathLine({1.0, 2.0, 3.0}, {0.0, 0.0, 1.0}));
}

TEST_F(DisplacementActuator, ThrowsForABodyOfAnotherClass)
{
    TestDeserializer root;
    Plain(root, L"DisplacementActuator").Add(L"Body").Attribute(L"id", L"point");
    EXPECT_THROW(actuator->Deserialize(&root, entities), QOBEInvalidCast);
    // The actuator has an identifier already.
    ExpectReports(1);
}

TEST_F(DisplacementActuator, FailsWithoutANodeOrItsElement)
{
    EXPECT_EQ(actuator->Serialize(nullptr), KARFailure);
    EXPECT_EQ(actuator->Deserialize(nullptr, entities), KARFailure);
    const TestDeserializer empty;
    EXPECT_EQ(actuator->Deserialize(&empty, entities), KARFailure);
    ExpectReports(3);
}

TEST_F(DisplacementActuator, InAPlaneWritesNamesOfItsOwn)
{
    const auto planar = KARMPDisplacementActuator2D::create(L"p");
    planar->SetDisplacement(Planar::Move());
    planar->SetDisplacementByDragLine(Planar::DragLine());
    TestSerializer root;
    EXPECT_EQ(planar->Serialize(&root), KARSuccess);
    const TestSerializer& element = root.Child(0);
    EXPECT_EQ(element.GetId(), L"DisplacementActuator2D");
    ASSERT_EQ(element.GetElementCount(), 2U);
    EXPECT_EQ(element.Number(L"Displacement2D/Translation2D/Vy"), 3.0);
    EXPECT_EQ(element.Number(L"Displacement2D/Rotation2D/M1y"), 1.0);
    EXPECT_EQ(element.Number(L"Displacement2D/Rotation2D/M2x"), 1.5);
    EXPECT_EQ(element.Number(L"DragLine2D/Coordinates2D/Oy"), 2.0);
    // The direction is no unit vector and stays as it is.
    EXPECT_EQ(element.Number(L"DragLine2D/Coordinates2D/Dx"), 3.0);
    TestDeserializer missing;
    Plain(missing, L"DisplacementActuator2D");
    EXPECT_EQ(planar->Deserialize(&missing, entities), KARSuccess);
    ExpectReports(3);
}

TEST(GlobalDisplacementActuator, KeepsOneTransformation)
{
    const auto actuator = KARMPGlobalDisplacementActuator::create(L"g");
    KARMathTransformation found = Spatial::Move();
    EXPECT_EQ(actuator->GetGlobalDisplacement(found), KARSuccess);
    EXPECT_EQ(found, KARMathTransformation());
    EXPECT_EQ(actuator->SetGlobalDisplacement(Spatial::Move()), KARSuccess);
    TestSerializer root;
    EXPECT_EQ(actuator->Serialize(&root), KARSuccess);
    const TestSerializer& element = root.Child(0);
    EXPECT_EQ(element.GetId(), L"GlobalDisplacementActuator");
    ASSERT_EQ(element.GetElementCount(), 1U);
    EXPECT_EQ(element.Number(L"Displacement/Rotation/M2x"), 2.0);
    const auto read = KARMPGlobalDisplacementActuator::create(L"");
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), KARMPEntityTable()),
              KARSuccess);
    EXPECT_EQ(read->GetGlobalDisplacement(found), KARSuccess);
    EXPECT_EQ(found, Spatial::Move());
    const auto copy = KARMPGlobalDisplacementActuator::clone(read, QOBDynamicObject::CopyDefault);
    copy->GetGlobalDisplacement(found);
    EXPECT_EQ(found, Spatial::Move());
}

} // namespace

#include "BodyTesting.h"
#include "KARMPEntityTable.h"
#include "QOBException.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

#include <memory>

namespace {

/// A body with every kind of content, and all that it refers to in a table.
class BodyTree : public BodyFixture
{
protected:
    BodyTree()
    {
        body->SetPosition(Position, 0);
        body->SetVelocity({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
        body->SetAcceleration({7.0, 8.0, 9.0}, {10.0, 11.0, 12.0});
        body->SetMass(2.5);
        body->SetCenterOfGravity({21.0, 22.0, 23.0});
        body->SetInertiaMatrix(Inertia);
        body->SetOutOfWorld(true);
        body->SetFilePath("not/written");
        body->SetFloating(false);
        father->AddBody(body);
        body->AddGeometry(point);
        body->LinkToJoint(joint);
        body->LinkToShape(shape);
        body->LinkToConnector(connector);
        body->SetDisplacementSensor(sensor);
        body->AddImpactedChildBody(impacted);
        body->AddBody(child);
        point->SetIdentifier(L"point");
        sensor->SetIdentifier(L"sensor");
        entities.Set(L"point", point);
        entities.Set(L"joint", joint);
        entities.Set(L"shape", shape);
        entities.Set(L"connector", connector);
        entities.Set(L"sensor", sensor);
        entities.Set(L"impacted", impacted);
        entities.Set(L"child", child);
    }
    std::unique_ptr<TestDeserializer> Written(const KARMPBody& from, const TestTreeForm& form = {})
    {
        TestSerializer root;
        EXPECT_EQ(from.Serialize(&root), KARSuccess);
        return TestDeserializer::From(root, form);
    }
    /// A tree with a body whose one attribute or element is as told.
    static TestDeserializer& Plain(TestDeserializer& root)
    {
        return root.Add(L"Body")
            .Attribute(L"id", L"r")
            .Attribute(L"name", L"r")
            .Attribute(L"isActive", L"yes");
    }

    const KARMathTransformation Position{{{0.5, 1.0, 1.5}, {2.0, -2.5, 3.0}, {3.5, 4.0, 4.5}},
                                         {5.0, 5.5, 6.0}};
    const KARMath3x3Matrix Inertia{{31.0, 32.0, 33.0}, {34.0, 35.0, 36.0}, {37.0, 38.0, 39.0}};

    Body father = NewBody(L"father");
    Body body = NewBody(L"body");
    QOBSharedHandle<KARMPPoint> point = Keep(KARMPPoint::create(L"point"));
    QOBSharedHandle<KARMPJoint> joint{New<KARMPJoint>(L"joint")};
    QOBSharedHandle<KARMPShape> shape{New<KARMPShape>(L"shape")};
    QOBSharedHandle<KARMPConnector> connector{New<KARMPConnector>(L"connector")};
    QOBSharedHandle<KARMPDisplacementSensor> sensor =
        Keep(KARMPDisplacementSensor::create(L"sensor"));
    Body impacted = NewBody(L"impacted");
    Body child = NewBody(L"child");
    Body read = Keep(KARMPBody::create(L"read"));
    KARMPEntityTable entities;
};

TEST_F(BodyTree, WritesAllOfItInOrder)
{
    TestSerializer root;
    EXPECT_EQ(body->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.GetElementCount(), 1U);
    const TestSerializer& element = *root.Find(L"Body");
    std::vector<std::wstring> names;
    for (std::size_t i = 0; i < element.GetElementCount(); ++i)
        names.emplace_back(element.Child(i).GetId());
    EXPECT_EQ(names, (std::vector<std::wstring>{L"Position", L"Velocity", L"Acceleration",
                                                L"Weight", L"OutOfWorld", L"Geometries", L"Joints",
                                                L"Shapes", L"Connectors", L"DisplacementSensor",
                                                L"ImpactedChildrenBodies", L"ChildrenBodies"}));
    EXPECT_EQ(element.Text(L"@id"), L"body");
    EXPECT_EQ(element.Text(L"@is_fixed"), L"no");
    EXPECT_FALSE(element.Flag(L"@floating"));
    EXPECT_TRUE(element.Flag(L"OutOfWorld"));

    const TestSerializer& position = *element.Find(L"Position");
    EXPECT_EQ(position.Number(L"Translation/Vx"), 5.0);
    EXPECT_EQ(position.Number(L"Translation/Vy"), 5.5);
    EXPECT_EQ(position.Number(L"Translation/Vz"), 6.0);
    const std::vector<std::pair<const wchar_t*, double>> rotation = {
        {L"M1x", 0.5}, {L"M1y", 1.0}, {L"M1z", 1.5}, {L"M2x", 2.0}, {L"M2y", -2.5},
        {L"M2z", 3.0}, {L"M3x", 3.5}, {L"M3y", 4.0}, {L"M3z", 4.5}};
    for (std::size_t i = 0; i < rotation.size(); ++i) {
        const TestSerializer& coefficient = position.Find(L"Rotation")->Child(i);
        EXPECT_EQ(coefficient.GetId(), rotation[i].first);
        EXPECT_EQ(coefficient.GetValued(), rotation[i].second);
    }
    double expected = 1.0;
    for (const wchar_t* group :
         {L"Velocity/LinearVelocity", L"Velocity/AngularVelocity",
          L"Acceleration/LinearAcceleration", L"Acceleration/AngularAcceleration"}) {
        const TestSerializer& vector = *element.Find(group);
        ASSERT_EQ(vector.GetElementCount(), 3U);
        for (const wchar_t* name : {L"Vx", L"Vy", L"Vz"})
            EXPECT_EQ(vector.Number(name), expected++);
    }
    EXPECT_EQ(element.Number(L"Weight/Mass"), 2.5);
    EXPECT_EQ(element.Number(L"Weight/COG/Px"), 21.0);
    EXPECT_EQ(element.Number(L"Weight/COG/Py"), 22.0);
    EXPECT_EQ(element.Number(L"Weight/COG/Pz"), 23.0);
    expected = 31.0;
    for (std::size_t i = 0; i < rotation.size(); ++i) {
        const TestSerializer& coefficient = element.Find(L"Weight/InertiaMatrix")->Child(i);
        EXPECT_EQ(coefficient.GetId(), rotation[i].first);
        EXPECT_EQ(coefficient.GetValued(), expected++);
    }
    EXPECT_EQ(element.Text(L"Geometries/Geometry/@id"), L"point");
    EXPECT_EQ(element.Text(L"Geometries/Geometry/@name"), L"point");
    EXPECT_EQ(element.Text(L"Joints/Joint/@id"), L"joint");
    EXPECT_EQ(element.Text(L"Shapes/Shape/@id"), L"shape");
    EXPECT_EQ(element.Text(L"Connectors/Connector/@id"), L"connector");
    EXPECT_EQ(element.Text(L"DisplacementSensor/@id"), L"sensor");
    EXPECT_EQ(element.Text(L"DisplacementSensor/@name"), L"sensor");
    EXPECT_EQ(element.Text(L"ImpactedChildrenBodies/ImpactedChildBody/@id"), L"impacted");
    EXPECT_EQ(element.Text(L"ChildrenBodies/ChildBody/@id"), L"child");
}

TEST_F(BodyTree, WritesNoListThatIsEmpty)
{
    TestSerializer root;
    EXPECT_EQ(NewBody(L"new")->Serialize(&root), KARSuccess);
    const TestSerializer& element = *root.Find(L"Body");
    EXPECT_EQ(element.GetElementCount(), 5U);
    EXPECT_FALSE(element.Has(L"@floating"));
}

TEST_F(BodyTree, WritesAChildForEachTimeItIsListed)
{
    body->AddBody(child);
    ExpectReports(1);
    TestSerializer root;
    body->Serialize(&root);
    EXPECT_EQ(root.Count(L"Body/ChildrenBodies/ChildBody"), 2U);
}

TEST_F(BodyTree, WritesFloatingOnlyForABodyThatFollowsAFather)
{
    const auto writes = [](const Body& one) {
        TestSerializer root;
        one->Serialize(&root);
        return root.Has(L"Body/@floating");
    };
    EXPECT_TRUE(writes(body));
    body->Fix();
    EXPECT_FALSE(writes(body));
    body->Unfix();
    body->SetFloating(true);
    EXPECT_FALSE(writes(body));
    EXPECT_FALSE(writes(NewFollower(L"no father")));
}

TEST_F(BodyTree, WritesThePositionOfTheNeighbour)
{
    const auto neighbour = TestNeighbour::create(L"n");
    body->SetWDMBody(neighbour);
    neighbour->SetPosition(shift(42.0));
    TestSerializer root;
    body->Serialize(&root);
    EXPECT_EQ(root.Number(L"Body/Position/Translation/Vx"), 42.0);
}

TEST_F(BodyTree, WritesOutOfWorldFromVersionR2016_1)
{
    TestSerializer below(L"R2016.0");
    body->Serialize(&below);
    EXPECT_FALSE(below.Has(L"Body/OutOfWorld"));
    TestSerializer empty(L"");
    body->Serialize(&empty);
    EXPECT_FALSE(empty.Has(L"Body/OutOfWorld"));
    TestSerializer at(L"R2016.1");
    body->Serialize(&at);
    EXPECT_TRUE(at.Flag(L"Body/OutOfWorld"));
}

TEST_F(BodyTree, ReadsOutOfWorldFromVersionR2016_1)
{
    const auto below = Written(*body, {.version = L"R2016.0"});
    read->Deserialize(below.get(), entities);
    bool outOfWorld = true;
    read->IsOutOfWorld(outOfWorld);
    EXPECT_FALSE(outOfWorld);
    TakeReports(); // the child has a father
    const Body other = Keep(KARMPBody::create(L""));
    const auto at = Written(*body, {.version = L"R2016.1"});
    other->Deserialize(at.get(), entities);
    other->IsOutOfWorld(outOfWorld);
    EXPECT_TRUE(outOfWorld);
    TakeReports();
}

TEST_F(BodyTree, ReadsBackWhatItWroteInEitherForm)
{
    body->Fix();
    for (const bool asText : {false, true}) {
        const Body copy = Keep(KARMPBody::create(L""));
        const Body newChild = NewBody(L"");
        entities.Set(L"child", newChild);
        const auto tree = Written(*body, {.asText = asText});
        EXPECT_EQ(copy->Deserialize(tree.get(), entities), KARSuccess);
        ExpectReports(0);
        TestSerializer again;
        copy->Serialize(&again);
        TestSerializer first;
        body->Serialize(&first);
        // But for the new child, all is the same.
        std::string expected = first.Dump();
        std::string dump = again.Dump();
        EXPECT_EQ(dump.substr(0, dump.find("ChildrenBodies")),
                  expected.substr(0, expected.find("ChildrenBodies")));
        EXPECT_EQ(copy->GetChildrenBodyCount(), 1);
        Body found;
        newChild->GetFatherBody(found);
        EXPECT_EQ(found, copy);
        EXPECT_TRUE(copy->IsFixed());
        EXPECT_TRUE(copy->GetFilePath() == KARUnicodeString());
        KARMathVector linear;
        KARMathVector angular;
        EXPECT_EQ(copy->GetVelocity(linear, angular), KARSuccess);
        QOBSharedHandle<KARMPDisplacementSensor> foundSensor;
        EXPECT_EQ(copy->GetDisplacementSensor(foundSensor), KARSuccess);
        EXPECT_EQ(foundSensor, sensor);
    }
}

TEST_F(BodyTree, ReadsItsOwnElementAsWellAsTheOneAround)
{
    TestDeserializer root;
    TestDeserializer& element = Plain(root);
    element.Add(L"Weight").Leaf(L"Mass", 7.0);
    EXPECT_EQ(read->Deserialize(&element, entities), KARSuccess);
    double mass = 0.0;
    read->GetMass(mass);
    EXPECT_EQ(mass, 7.0);
    TakeReports();
}

TEST_F(BodyTree, ReportsWhatIsMissingAndReadsTheRest)
{
    TestSerializer root;
    body->Serialize(&root);
    const std::size_t items =
        ForEachMissingItem(root, {}, [this](TestDeserializer& tree, const std::wstring& missing) {
            SCOPED_TRACE(testing::PrintToString(missing));
            const Body copy = Keep(KARMPBody::create(L""));
            entities.Set(L"child", NewBody(L""));
            const bool whole = missing.ends_with(L"/Body");
            EXPECT_EQ(copy->Deserialize(&tree, entities), whole ? KARFailure : KARSuccess);
            const auto has = [&missing](std::wstring_view part) {
                return missing.find(part) != std::wstring::npos;
            };
            const bool link = has(L"ies") || has(L"Joints") || has(L"Shapes") ||
                              has(L"Connectors") || has(L"DisplacementSensor");
            const bool optional = (link && !has(L"@id")) || has(L"@name") || has(L"@floating");
            if (missing == L"/Body/@name")
                ExpectReports(1);
            else
                ExpectReports(optional ? 0 : 1);
        });
    EXPECT_GT(items, 70U);
}

TEST_F(BodyTree, ReportsEachValueThatIsOfNoUse)
{
    TestSerializer root;
    body->Serialize(&root);
    ForEachSpoiltValue(root, {}, [this](TestDeserializer& tree, const std::wstring& spoilt) {
        SCOPED_TRACE(testing::PrintToString(spoilt));
        const Body copy = Keep(KARMPBody::create(L""));
        entities.Set(L"child", NewBody(L""));
        EXPECT_EQ(copy->Deserialize(&tree, entities), KARSuccess);
        // Identity and activity are the base's to report; the rest here may be missing as well.
        const bool others = spoilt == L"/Body/@id" || spoilt == L"/Body/@isActive" ||
                            spoilt.ends_with(L"@name") || spoilt == L"/Body/@floating";
        EXPECT_EQ(TakeReportsOf("KARMPBody"), others ? 0U : 1U);
    });
}

TEST_F(BodyTree, StaysAsItIsWhereElementsAreMissing)
{
    TestDeserializer root;
    Plain(root);
    body->Fix();
    const KARMathTransformation before = positionOf(*body);
    KARMPBody& same = *read;
    same.SetPosition(before, 0);
    same.SetMass(3.0);
    same.SetAcceleration({1.0, 0.0, 0.0}, {});
    same.SetOutOfWorld(true);
    same.SetInertiaMatrix(Inertia);
    same.Fix();
    EXPECT_EQ(same.Deserialize(&root, entities), KARSuccess);
    // Position, velocity, acceleration, weight, is_fixed, OutOfWorld.
    ExpectReports(6);
    EXPECT_EQ(positionOf(same), before);
    double mass = 0.0;
    same.GetMass(mass);
    EXPECT_EQ(mass, 3.0);
    bool outOfWorld = false;
    same.IsOutOfWorld(outOfWorld);
    EXPECT_TRUE(outOfWorld);
    EXPECT_TRUE(same.IsFixed());
}

TEST_F(BodyTree, ReadsAPositionOfWhichAPartIsMissing)
{
    TestDeserializer root;
    TestDeserializer& position = Plain(root).Add(L"Position");
    position.Add(L"Translation").Leaf(L"Vx", 3.0);
    read->SetPosition(quarterTurn(), 0);
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    TakeReports();
    EXPECT_EQ(positionOf(*read), shift(3.0));

    TestDeserializer other;
    Plain(other).Add(L"Position").Add(L"Rotation").Leaf(L"M1x", 2.0);
    EXPECT_EQ(read->Deserialize(&other, entities), KARSuccess);
    TakeReports();
    EXPECT_EQ(positionOf(*read),
              KARMathTransformation({{2.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}, {}));
}

TEST_F(BodyTree, ReadsAMissingComponentOfAVelocityAsZeroAndKeepsAllOthers)
{
    TestDeserializer root;
    TestDeserializer& element = Plain(root);
    element.Add(L"Velocity").Add(L"AngularVelocity").Leaf(L"Vy", 5.0);
    element.Add(L"Acceleration").Add(L"AngularAcceleration").Leaf(L"Vy", 6.0);
    TestDeserializer& weight = element.Add(L"Weight");
    weight.Add(L"COG").Leaf(L"Px", 7.0);
    weight.Add(L"InertiaMatrix").Leaf(L"M2z", 8.0);
    read->SetVelocity({1.0, 2.0, 3.0}, {1.0, 2.0, 3.0});
    read->SetAcceleration({1.0, 2.0, 3.0}, {1.0, 2.0, 3.0});
    read->SetMass(4.0);
    read->SetCenterOfGravity({1.0, 2.0, 3.0});
    read->SetInertiaMatrix(Inertia);
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    TakeReports();
    KARMathVector linear;
    KARMathVector angular;
    EXPECT_EQ(read->GetVelocity(linear, angular), KARSuccess);
    EXPECT_EQ(linear, KARMathVector(1.0, 2.0, 3.0));
    EXPECT_EQ(angular, KARMathVector(0.0, 5.0, 0.0));
    read->GetAcceleration(linear, angular);
    EXPECT_EQ(linear, KARMathVector(1.0, 2.0, 3.0));
    EXPECT_EQ(angular, KARMathVector(1.0, 6.0, 3.0));
    double mass = 0.0;
    read->GetMass(mass);
    EXPECT_EQ(mass, 4.0);
    KARMathPoint center;
    read->GetCenterOfGravity(center);
    EXPECT_EQ(center, KARMathPoint(7.0, 2.0, 3.0));
    KARMath3x3Matrix inertia;
    read->GetInertiaMatrix(inertia);
    EXPECT_EQ(inertia, KARMath3x3Matrix({31.0, 32.0, 33.0}, {34.0, 35.0, 8.0}, {37.0, 38.0, 39.0}));
}

TEST_F(BodyTree, TellsLoaderAndNeighbourOfAPositionThatIsRead)
{
    BodyLoaderRecord& record = NewRecord();
    read->SetLoader(new RecordingBodyLoader(record));
    const auto neighbour = TestNeighbour::create(L"n");
    read->SetWDMBody(neighbour);
    TestDeserializer root;
    TestDeserializer& element = Plain(root);
    element.Attribute(L"is_fixed", L"yes");
    element.Add(L"Position").Add(L"Translation").Leaf(L"Vx", 3.0);
    read->Deserialize(&root, entities);
    TakeReports();
    EXPECT_EQ(record.calls, (Calls{"ApplyTransformation", "ReleaseBody", "HoldBody"}));
    KARMathTransformation moved;
    neighbour->GetPosition(moved);
    EXPECT_EQ(moved, shift(3.0));
}

TEST_F(BodyTree, KnowsVelocitiesOnlyWithAPositiveComponent)
{
    const auto known = [this](KARMathVector linear, KARMathVector angular) {
        TestDeserializer root;
        TestDeserializer& velocity = Plain(root).Add(L"Velocity");
        velocity.Add(L"LinearVelocity")
            .Leaf(L"Vx", linear.GetX())
            .Leaf(L"Vy", linear.GetY())
            .Leaf(L"Vz", linear.GetZ());
        velocity.Add(L"AngularVelocity")
            .Leaf(L"Vx", angular.GetX())
            .Leaf(L"Vy", angular.GetY())
            .Leaf(L"Vz", angular.GetZ());
        const Body one = Keep(KARMPBody::create(L""));
        EXPECT_EQ(one->Deserialize(&root, entities), KARSuccess);
        TakeReports();
        KARMathVector a;
        KARMathVector b;
        KARMathPoint at;
        one->GetVelocity(a, b, at);
        EXPECT_EQ(a, linear);
        EXPECT_EQ(b, angular);
        return !KARFailed(one->GetVelocity(a, b));
    };
    EXPECT_TRUE(known({1.0, 0.0, 0.0}, {}));
    EXPECT_TRUE(known({0.0, 1e-9, 0.0}, {}));
    EXPECT_TRUE(known({-1.0, -1.0, 1.0}, {}));
    EXPECT_TRUE(known({}, {0.0, 0.0, 1.0}));
    EXPECT_FALSE(known({-1.0, 0.0, 0.0}, {}));
    EXPECT_FALSE(known({0.0, -1.0, 0.0}, {}));
    EXPECT_FALSE(known({0.0, 0.0, -1.0}, {}));
    EXPECT_FALSE(known({}, {0.0, -1.0, 0.0}));
    EXPECT_FALSE(known({}, {}));
}

TEST_F(BodyTree, IsFixedByTheWordYesAlone)
{
    for (const auto& [word, fixed] : {std::pair(L"yes", true), std::pair(L"YES", false),
                                      std::pair(L"no", false), std::pair(L"", false)}) {
        TestDeserializer root;
        Plain(root).Attribute(L"is_fixed", word);
        const Body one = Keep(KARMPBody::create(L""));
        one->SetFix(!fixed);
        one->Deserialize(&root, entities);
        TakeReports();
        EXPECT_EQ(one->IsFixed(), fixed);
    }
}

TEST_F(BodyTree, ReadsFloatingWithoutMovingTheNeighbourAway)
{
    TestDeserializer root;
    Plain(root).Attribute(L"floating", false);
    const auto neighbour = TestNeighbour::create(L"n");
    read->SetWDMBody(neighbour);
    neighbour->setFloating(false);
    read->Deserialize(&root, entities);
    TakeReports();
    EXPECT_FALSE(read->IsFloating());
    EXPECT_TRUE(neighbour->isFloating());
}

TEST_F(BodyTree, SkipsReferencesThatLeadNowhere)
{
    TestDeserializer root;
    TestDeserializer& geometries = Plain(root).Add(L"Geometries");
    geometries.Reference(L"Geometry", L"unknown");
    geometries.Reference(L"Geometry", L"null");
    geometries.Reference(L"Geometry", L"point");
    geometries.Reference(L"Geometry", L"point");
    entities.Set(L"null", {});
    read->Deserialize(&root, entities);
    ExpectReports(6); // the missing state
    EXPECT_EQ(read->GetGeometryCount(), 1);
}

TEST_F(BodyTree, RefusesAReferenceToAnotherClass)
{
    const std::vector<std::pair<const wchar_t*, const wchar_t*>> lists = {
        {L"Geometries", L"Geometry"},
        {L"Joints", L"Joint"},
        {L"Shapes", L"Shape"},
        {L"Connectors", L"Connector"},
        {L"ImpactedChildrenBodies", L"ImpactedChildBody"},
        {L"ChildrenBodies", L"ChildBody"}};
    for (const auto& [list, item] : lists) {
        TestDeserializer root;
        Plain(root).Add(list).Reference(item, L"sensor");
        EXPECT_THROW(read->Deserialize(&root, entities), QOBEInvalidCast);
    }
    TestDeserializer root;
    Plain(root).Reference(L"DisplacementSensor", L"point");
    EXPECT_THROW(read->Deserialize(&root, entities), QOBEInvalidCast);
    TakeReports();
}

TEST_F(BodyTree, HasNoUseForANullNode)
{
    EXPECT_EQ(body->Serialize(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(body->Deserialize(nullptr, entities), KARFailure);
    ExpectReports(1);
}

TEST_F(BodyTree, FailsToReadWithoutItsElementButWritesWithoutOne)
{
    TestDeserializer root;
    EXPECT_EQ(body->Deserialize(&root, entities), KARFailure);
    ExpectReports(1);
    TestSerializer full;
    full.FailCreation(1);
    EXPECT_EQ(body->Serialize(&full), KARSuccess);
    EXPECT_EQ(TakeReportsOf("KARMPBody"), 1U);
}

TEST_F(BodyTree, ReportsEachAdditionThatFailsAndWritesTheRest)
{
    const std::size_t creations =
        ForEachFailedCreation(L"R2018.1", [this](TestSerializer& root, std::size_t failing) {
            EXPECT_EQ(body->Serialize(&root), KARSuccess);
            EXPECT_EQ(TakeReportsOf("KARMPBody"), failing == 0 ? 0U : 1U);
            if (failing > 1)
                EXPECT_EQ(root.Text(L"Body/@is_fixed"), L"no");
        });
    EXPECT_GT(creations, 50U);
}

} // namespace

#include "Body2DTesting.h"
#include "KARMPEntityTable.h"
#include "QOBException.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

/// A planar body with every kind of content, and all that it refers to in a table.
class Body2DTree : public Body2DFixture
{
protected:
    Body2DTree()
    {
        body->SetPosition(Position);
        body->Set3DPosition(quarterTurn());
        body->SetVelocity({1.0, 2.0}, 3.0);
        body->SetAcceleration({4.0, 5.0}, 6.0);
        body->SetMass(2.5);
        body->SetCenterOfGravity({21.0, 22.0});
        body->SetInertiaMatrix(Inertia);
        body->Fix3D();
        body->SetSketch(sketch);
        body->AddGeometry(point);
        body->LinkToJoint(joint);
        body->LinkToShape(shape);
        body->SetDisplacementSensor(sensor);
        body->AddImpactedChildBody(impacted);
        for (const QOBSharedHandle<KARMPEntity>& entity :
             {QOBSharedHandle<KARMPEntity>(sketch), QOBSharedHandle<KARMPEntity>(point),
              QOBSharedHandle<KARMPEntity>(joint), QOBSharedHandle<KARMPEntity>(sensor),
              QOBSharedHandle<KARMPEntity>(impacted)}) {
            const std::wstring name = entity->getEntityName();
            entity->SetIdentifier(name);
            entities.Set(name, entity);
        }
        entities.Set(L"shape", shape);
    }
    static TestDeserializer& Plain(TestDeserializer& root)
    {
        return root.Add(L"Body2D")
            .Attribute(L"id", L"r")
            .Attribute(L"name", L"r")
            .Attribute(L"isActive", L"yes");
    }

    const KARMathTransformation2D Position{{{0.5, 1.0}, {2.0, -2.5}}, {5.0, 5.5}};
    const KARMath2x2Matrix Inertia{{31.0, 32.0}, {34.0, 35.0}};

    Body2D body = NewBody2D(L"body");
    QOBSharedHandle<KARMPSketch> sketch = Keep(KARMPSketch::create(L"sketch"));
    QOBSharedHandle<KARMPPoint2D> point = Keep(KARMPPoint2D::create(L"point"));
    QOBSharedHandle<KARMPUserDefined2D> joint = Keep(KARMPUserDefined2D::create(L"joint"));
    QOBSharedHandle<KARMPShape2D> shape{New<KARMPShape2D>(L"shape")};
    QOBSharedHandle<KARMPDisplacementSensor2D> sensor =
        Keep(KARMPDisplacementSensor2D::create(L"sensor"));
    Body2D impacted = Keep(KARMPBody2D::create(L"impacted"));
    Body2D read = Keep(KARMPBody2D::create(L"read"));
    KARMPEntityTable entities;
};

TEST_F(Body2DTree, WritesAllOfItInOrder)
{
    TestSerializer root;
    EXPECT_EQ(body->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.GetElementCount(), 1U);
    const TestSerializer& element = *root.Find(L"Body2D");
    std::vector<std::wstring> names;
    for (std::size_t i = 0; i < element.GetElementCount(); ++i)
        names.emplace_back(element.Child(i).GetId());
    EXPECT_EQ(names,
              (std::vector<std::wstring>{L"Position", L"Velocity", L"Acceleration", L"Weight",
                                         L"Geometries", L"Sketch", L"Joints", L"Shapes",
                                         L"DisplacementSensor", L"ImpactedChildrenBodies"}));
    EXPECT_EQ(element.Text(L"@id"), L"body");
    EXPECT_EQ(element.Text(L"@is_fixed2D"), L"no");
    EXPECT_FALSE(element.Has(L"@is_fixed"));
    EXPECT_FALSE(element.Has(L"@floating"));
    const std::vector<std::pair<const wchar_t*, double>> numbers = {
        {L"Position/Translation/Vx", 5.0},
        {L"Position/Translation/Vy", 5.5},
        {L"Position/Rotation/M1x", 0.5},
        {L"Position/Rotation/M1y", 1.0},
        {L"Position/Rotation/M2x", 2.0},
        {L"Position/Rotation/M2y", -2.5},
        {L"Velocity/LinearVelocity/Vx", 1.0},
        {L"Velocity/LinearVelocity/Vy", 2.0},
        {L"Velocity/AngularVelocity/Va", 3.0},
        {L"Acceleration/LinearAcceleration/Vx", 4.0},
        {L"Acceleration/LinearAcceleration/Vy", 5.0},
        {L"Acceleration/AngularAcceleration/Va", 6.0},
        {L"Weight/Mass", 2.5},
        {L"Weight/COG/Px", 21.0},
        {L"Weight/COG/Py", 22.0},
        {L"Weight/InertiaMatrix/M1x", 31.0},
        {L"Weight/InertiaMatrix/M1y", 32.0},
        {L"Weight/InertiaMatrix/M2x", 34.0},
        {L"Weight/InertiaMatrix/M2y", 35.0}};
    for (const auto& [path, value] : numbers)
        EXPECT_EQ(element.Number(path), value) << testing::PrintToString(std::wstring(path));
    for (const auto& [path, count] :
         {std::pair(L"Position/Translation", 2U), std::pair(L"Position/Rotation", 4U),
          std::pair(L"Velocity/LinearVelocity", 2U), std::pair(L"Velocity/AngularVelocity", 1U),
          std::pair(L"Acceleration/AngularAcceleration", 1U), std::pair(L"Weight/COG", 2U),
          std::pair(L"Weight/InertiaMatrix", 4U)})
        EXPECT_EQ(element.Find(path)->GetElementCount(), count);
    EXPECT_EQ(element.Text(L"Geometries/Geometry/@id"), L"point");
    EXPECT_EQ(element.Text(L"Sketch/@id"), L"sketch");
    EXPECT_EQ(element.Text(L"Sketch/@name"), L"sketch");
    EXPECT_EQ(element.Text(L"Joints/Joint/@id"), L"joint");
    EXPECT_EQ(element.Text(L"Shapes/Shape/@id"), L"shape");
    EXPECT_EQ(element.Text(L"DisplacementSensor/@id"), L"sensor");
    EXPECT_EQ(element.Text(L"ImpactedChildrenBodies/ImpactedChildBody/@id"), L"impacted");
}

TEST_F(Body2DTree, WritesNothingOfItsBase)
{
    const Body base(body);
    base->SetMass(99.0);
    base->SetOutOfWorld(true);
    base->SetFloating(false);
    base->AddBody(impacted);
    NewBody(L"father")->AddBody(base);
    base->AddGeometry(Keep(KARMPPoint::create(L"spatial")));
    TestSerializer root;
    EXPECT_EQ(base->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Number(L"Body2D/Weight/Mass"), 2.5);
    for (const wchar_t* path :
         {L"Body", L"Body2D/Body", L"Body2D/OutOfWorld", L"Body2D/ChildrenBodies",
          L"Body2D/Connectors", L"Body2D/@floating"})
        EXPECT_FALSE(root.Has(path)) << testing::PrintToString(std::wstring(path));
    EXPECT_EQ(root.Count(L"Body2D/Geometries/Geometry"), 1U);
}

TEST_F(Body2DTree, WritesNoListThatIsEmptyAndNoSketch)
{
    TestSerializer root;
    EXPECT_EQ(NewBody2D(L"new")->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Find(L"Body2D")->GetElementCount(), 4U);
}

TEST_F(Body2DTree, ReadsBackWhatItWroteInEitherForm)
{
    body->Fix2D();
    TestSerializer root;
    body->Serialize(&root);
    for (const bool asText : {false, true}) {
        const Body2D copy = Keep(KARMPBody2D::create(L""));
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        EXPECT_EQ(copy->Deserialize(tree.get(), entities), KARSuccess);
        EXPECT_EQ(positionOf(*copy), Position);
        KARMathVector2D linear;
        double angular = 0.0;
        EXPECT_EQ(copy->GetVelocity(linear, angular), KARSuccess);
        EXPECT_EQ(linear, KARMathVector2D(1.0, 2.0));
        EXPECT_EQ(angular, 3.0);
        copy->GetAcceleration(linear, angular);
        EXPECT_EQ(linear, KARMathVector2D(4.0, 5.0));
        EXPECT_EQ(angular, 6.0);
        double mass = 0.0;
        copy->GetMass(mass);
        EXPECT_EQ(mass, 2.5);
        KARMathPoint2D center;
        copy->GetCenterOfGravity(center);
        EXPECT_EQ(center, KARMathPoint2D(21.0, 22.0));
        KARMath2x2Matrix inertia;
        copy->GetInertiaMatrix(inertia);
        EXPECT_EQ(inertia, Inertia);
        EXPECT_TRUE(copy->IsFixed2D());
        QOBSharedHandle<KARMPGeometry2D> foundPoint;
        copy->GetGeometry(0, foundPoint);
        EXPECT_EQ(foundPoint, QOBSharedHandle<KARMPGeometry2D>(point));
        QOBSharedHandle<KARMPSketch> foundSketch;
        copy->GetSketch(foundSketch);
        EXPECT_EQ(foundSketch, sketch);
        QOBSharedHandle<KARMPJoint2D> foundJoint;
        copy->GetLinkedJoint(0, foundJoint);
        EXPECT_EQ(foundJoint, QOBSharedHandle<KARMPJoint2D>(joint));
        QOBSharedHandle<KARMPShape2D> foundShape;
        copy->GetLinkedShape(0, foundShape);
        EXPECT_EQ(foundShape, shape);
        QOBSharedHandle<KARMPDisplacementSensor2D> foundSensor;
        copy->GetDisplacementSensor(foundSensor);
        EXPECT_EQ(foundSensor, sensor);
        Body2D foundBody;
        copy->GetImpactedChildBody(0, foundBody);
        EXPECT_EQ(foundBody, impacted);
        // Not in the document: the position in space and whether it is fixed there.
        KARMathTransformation position;
        copy->Get3DPosition(position);
        EXPECT_EQ(position, KARMathTransformation());
        EXPECT_FALSE(copy->IsFixed3D());
        EXPECT_FALSE(copy->IsFixed());
    }
}

TEST_F(Body2DTree, KnowsVelocitiesOnceOneWasReadWhateverItIs)
{
    KARMathVector2D linear(9.0, 9.0);
    double angular = 9.0;
    TestDeserializer neither;
    Plain(neither).Add(L"Velocity");
    EXPECT_EQ(read->Deserialize(&neither, entities), KARSuccess);
    TakeReports();
    EXPECT_EQ(read->GetVelocity(linear, angular), KARFailure);
    for (const bool isLinear : {false, true}) {
        TestDeserializer root;
        TestDeserializer& velocity = Plain(root).Add(L"Velocity");
        if (isLinear)
            velocity.Add(L"LinearVelocity").Leaf(L"Vx", 0.0).Leaf(L"Vy", -1.0);
        else
            velocity.Add(L"AngularVelocity").Leaf(L"Va", 0.0);
        const Body2D one = Keep(KARMPBody2D::create(L""));
        EXPECT_EQ(one->Deserialize(&root, entities), KARSuccess);
        TakeReports();
        EXPECT_EQ(one->GetVelocity(linear, angular), KARSuccess);
        EXPECT_EQ(linear, KARMathVector2D(0.0, isLinear ? -1.0 : 0.0));
        EXPECT_EQ(angular, 0.0);
    }
}

TEST_F(Body2DTree, KnowsVelocitiesOnceANegativeAngularOneWasRead)
{
    TestDeserializer root;
    Plain(root).Add(L"Velocity").Add(L"AngularVelocity").Leaf(L"Va", -1.0);
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    TakeReports();
    KARMathVector2D linear;
    double angular = 0.0;
    EXPECT_EQ(read->GetVelocity(linear, angular), KARSuccess);
    EXPECT_EQ(angular, -1.0);
}

TEST_F(Body2DTree, ReadsAMissingComponentOfAVelocityAsZeroAndKeepsAllOthers)
{
    TestDeserializer root;
    TestDeserializer& element = Plain(root);
    TestDeserializer& velocity = element.Add(L"Velocity");
    velocity.Add(L"LinearVelocity").Leaf(L"Vy", 5.0);
    velocity.Add(L"AngularVelocity");
    TestDeserializer& acceleration = element.Add(L"Acceleration");
    acceleration.Add(L"LinearAcceleration").Leaf(L"Vy", 6.0);
    acceleration.Add(L"AngularAcceleration");
    element.Add(L"Weight").Add(L"COG").Leaf(L"Px", 7.0);
    element.Add(L"Position").Add(L"Rotation").Leaf(L"M1x", 2.0);
    read->SetPosition(quarterTurn2D());
    read->SetVelocity({1.0, 2.0}, 3.0);
    read->SetAcceleration({1.0, 2.0}, 3.0);
    read->SetCenterOfGravity({1.0, 2.0});
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    TakeReports();
    KARMathVector2D linear;
    double angular = 9.0;
    EXPECT_EQ(read->GetVelocity(linear, angular), KARSuccess);
    EXPECT_EQ(linear, KARMathVector2D(0.0, 5.0));
    EXPECT_EQ(angular, 0.0);
    read->GetAcceleration(linear, angular);
    EXPECT_EQ(linear, KARMathVector2D(1.0, 6.0));
    EXPECT_EQ(angular, 3.0);
    KARMathPoint2D center;
    read->GetCenterOfGravity(center);
    EXPECT_EQ(center, KARMathPoint2D(7.0, 2.0));
    EXPECT_EQ(positionOf(*read), KARMathTransformation2D({{2.0, 0.0}, {0.0, 1.0}}, {}));
}

TEST_F(Body2DTree, ReportsWhatIsMissingAndReadsTheRest)
{
    TestSerializer root;
    body->Serialize(&root);
    const std::size_t items =
        ForEachMissingItem(root, {}, [this](TestDeserializer& tree, const std::wstring& missing) {
            SCOPED_TRACE(testing::PrintToString(missing));
            const Body2D copy = Keep(KARMPBody2D::create(L""));
            const bool whole = missing.ends_with(L"/Body2D");
            EXPECT_EQ(copy->Deserialize(&tree, entities), whole ? KARFailure : KARSuccess);
            const auto has = [&missing](std::wstring_view part) {
                return missing.find(part) != std::wstring::npos;
            };
            const bool link = has(L"ies") || has(L"Joints") || has(L"Shapes") || has(L"Sketch") ||
                              has(L"DisplacementSensor");
            const bool optional = (link && !has(L"@id")) || has(L"@name");
            ExpectReports(optional && missing != L"/Body2D/@name" ? 0 : 1);
        });
    EXPECT_GT(items, 40U);
}

TEST_F(Body2DTree, IsFixedByTheWordYesAloneAndTellsItsLoader)
{
    for (const auto& [word, fixed] : {std::pair(L"yes", true), std::pair(L"YES", false),
                                      std::pair(L"no", false), std::pair(L"", false)}) {
        Body2DLoaderRecord& record = NewPlanarRecord();
        TestDeserializer root;
        TestDeserializer& element = Plain(root);
        element.Attribute(L"is_fixed2D", word);
        element.Add(L"Position").Add(L"Translation").Leaf(L"Vx", 3.0);
        const Body2D one = Keep(KARMPBody2D::create(L""));
        one->SetFix2D(!fixed);
        one->SetLoader(new RecordingBody2DLoader(record));
        one->Deserialize(&root, entities);
        TakeReports();
        EXPECT_EQ(one->IsFixed2D(), fixed);
        EXPECT_EQ(record.calls, (Calls{"ApplyTransformation", "ReleaseBody",
                                       fixed ? "HoldBody2D" : "ReleaseBody2D"}));
    }
}

TEST_F(Body2DTree, SkipsReferencesThatLeadNowhere)
{
    TestDeserializer root;
    TestDeserializer& element = Plain(root);
    element.Add(L"Geometries")
        .Reference(L"Geometry", L"unknown")
        .Reference(L"Geometry", L"null")
        .Reference(L"Geometry", L"point")
        .Reference(L"Geometry", L"point");
    element.Reference(L"Sketch", L"unknown");
    entities.Set(L"null", {});
    read->Deserialize(&root, entities);
    ExpectReports(5); // the missing state
    EXPECT_EQ(read->GetGeometryCount(), 1);
    QOBSharedHandle<KARMPSketch> found;
    EXPECT_EQ(read->GetSketch(found), KARFailure);
}

TEST_F(Body2DTree, RefusesAReferenceToAnotherClass)
{
    const auto spatial = NewBody(L"spatial");
    entities.Set(L"spatial", spatial);
    const std::vector<std::pair<const wchar_t*, const wchar_t*>> lists = {
        {L"Geometries", L"Geometry"},
        {L"Joints", L"Joint"},
        {L"Shapes", L"Shape"},
        {L"ImpactedChildrenBodies", L"ImpactedChildBody"}};
    for (const auto& [list, item] : lists) {
        TestDeserializer root;
        Plain(root).Add(list).Reference(item, L"spatial");
        EXPECT_THROW(read->Deserialize(&root, entities), QOBEInvalidCast);
    }
    for (const wchar_t* link : {L"Sketch", L"DisplacementSensor"}) {
        TestDeserializer root;
        Plain(root).Reference(link, L"spatial");
        EXPECT_THROW(read->Deserialize(&root, entities), QOBEInvalidCast);
    }
    TakeReports();
}

TEST_F(Body2DTree, HasNoUseForANullNode)
{
    EXPECT_EQ(body->Serialize(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(body->Deserialize(nullptr, entities), KARFailure);
    ExpectReports(1);
}

TEST_F(Body2DTree, FailsToReadWithoutItsElementButWritesWithoutOne)
{
    TestDeserializer root;
    root.Add(L"Body");
    EXPECT_EQ(body->Deserialize(&root, entities), KARFailure);
    ExpectReports(1);
    TestSerializer full;
    full.FailCreation(1);
    EXPECT_EQ(body->Serialize(&full), KARSuccess);
    EXPECT_EQ(TakeReportsOf("KARMPBody2D"), 1U);
}

TEST_F(Body2DTree, ReportsEachAdditionThatFailsAndWritesTheRest)
{
    const std::size_t creations =
        ForEachFailedCreation(L"R2018.1", [this](TestSerializer& root, std::size_t failing) {
            EXPECT_EQ(body->Serialize(&root), KARSuccess);
            EXPECT_EQ(TakeReportsOf("KARMPBody2D"), failing == 0 ? 0U : 1U);
            if (failing > 1)
                EXPECT_EQ(root.Text(L"Body2D/@is_fixed2D"), L"no");
        });
    EXPECT_GT(creations, 30U);
}

} // namespace

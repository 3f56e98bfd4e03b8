// The body and the geometry of planar actuators.
#include "ConcreteEntity.h"
#include "KARMPBody2D.h"
#include "KARMPDisplacementActuator2D.h"
#include "KARMPEntityTable.h"
#include "KARMPGeometry2D.h"
#include "KARMPSpatialForceActuator2D.h"
#include "KARMPTestFixture.h"
#include "QOBException.h"
#include "RecordingActuatorLoaders.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

using Body = QOBSharedHandle<KARMPBody2D>;
using Geometry = QOBSharedHandle<KARMPGeometry2D>;

/// Two planar bodies, a body in space and a planar geometry, all of them in a table.
class PlanarActuatorLinks : public KARMPTestFixture
{
protected:
    PlanarActuatorLinks()
    {
        Enter(L"body", body);
        Enter(L"other", other);
        Enter(L"spatial", KARMPBody::create(L"spatial"));
        entities.Set(L"geometry", geometry);
    }
    void Enter(const std::wstring& identifier, const QOBSharedHandle<KARMPEntity>& entity)
    {
        entity->SetIdentifier(identifier);
        entities.Set(identifier, entity);
    }
    static TestDeserializer& Plain(TestDeserializer& root, const wchar_t* element)
    {
        return root.Add(element)
            .Attribute(L"id", L"r")
            .Attribute(L"name", L"r")
            .Attribute(L"isActive", L"yes");
    }

    LoaderRecord record;
    KARMPEntityTable entities;
    Body body = KARMPBody2D::create(L"body");
    Body other = KARMPBody2D::create(L"other");
    Geometry geometry{ConcreteEntity<KARMPGeometry2D>::create(L"geometry")};
};

class PlanarDisplacementActuatorLinks : public PlanarActuatorLinks
{
protected:
    using Actuator = KARMPDisplacementActuator2D;

    QOBSharedHandle<ConcreteEntity<Actuator>> actuator = ConcreteEntity<Actuator>::create(L"a");
};

TEST_F(PlanarDisplacementActuatorLinks, HasABodyAndPerhapsAGeometry)
{
    Body found = body;
    EXPECT_EQ(actuator->GetBody(found), KARFailure);
    EXPECT_FALSE(found);
    ExpectReports(1);
    Geometry foundGeometry = geometry;
    EXPECT_EQ(actuator->GetGeometry(foundGeometry), KARUnchanged);
    EXPECT_EQ(foundGeometry, geometry);

    EXPECT_EQ(actuator->SetBody(body), KARSuccess);
    EXPECT_EQ(actuator->SetGeometry(geometry), KARSuccess);
    EXPECT_EQ(actuator->SetBody({}), KARFailure);
    EXPECT_EQ(actuator->SetGeometry({}), KARFailure);
    ExpectReports(2);
    EXPECT_EQ(actuator->GetBody(found), KARSuccess);
    EXPECT_EQ(found, body);
    foundGeometry = nullptr;
    EXPECT_EQ(actuator->GetGeometry(foundGeometry), KARSuccess);
    EXPECT_EQ(foundGeometry, geometry);

    const auto copy = actuator->copy();
    EXPECT_EQ(copy->GetBody(found), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(copy->GetGeometry(foundGeometry), KARUnchanged);
}

TEST_F(PlanarDisplacementActuatorLinks, StandBeforeItsNumbersAndComeBack)
{
    actuator->SetBody(body);
    actuator->SetGeometry(geometry);
    TestSerializer root;
    EXPECT_EQ(actuator->Serialize(&root), KARSuccess);
    const TestSerializer& element = root.Child(0);
    const wchar_t* const names[] = {L"Body2D", L"Geometry2D", L"Displacement2D", L"DragLine2D"};
    ASSERT_EQ(element.GetElementCount(), std::size(names));
    for (std::size_t i = 0; i < std::size(names); ++i)
        EXPECT_EQ(element.Child(i).GetId(), names[i]);
    EXPECT_EQ(element.Text(L"Body2D/@id"), L"body");
    EXPECT_EQ(element.Text(L"Geometry2D/@name"), L"geometry");
    const auto read = Actuator::create(L"");
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    Body found;
    EXPECT_EQ(read->GetBody(found), KARSuccess);
    EXPECT_EQ(found, body);
    Geometry foundGeometry;
    EXPECT_EQ(read->GetGeometry(foundGeometry), KARSuccess);
    EXPECT_EQ(foundGeometry, geometry);
}

TEST_F(PlanarDisplacementActuatorLinks, AreThoseOfTheirPlanarNamesAlone)
{
    TestDeserializer root;
    TestDeserializer& element = Plain(root, L"DisplacementActuator2D");
    element.Add(L"Body").Attribute(L"id", L"body");
    element.Add(L"Geometry2D").Attribute(L"id", L"nothing");
    EXPECT_EQ(actuator->Deserialize(&root, entities), KARSuccess);
    // The actuator has an identifier already; move and line are missing.
    ExpectReports(3);
    Body found;
    EXPECT_EQ(actuator->GetBody(found), KARFailure);
    ExpectReports(1);
    Geometry foundGeometry;
    EXPECT_EQ(actuator->GetGeometry(foundGeometry), KARUnchanged);
}

TEST_F(PlanarDisplacementActuatorLinks, ThrowForABodyInSpace)
{
    TestDeserializer root;
    Plain(root, L"DisplacementActuator2D").Add(L"Body2D").Attribute(L"id", L"spatial");
    EXPECT_THROW(Actuator::create(L"")->Deserialize(&root, entities), QOBEInvalidCast);
}

class PlanarForceActuatorLinks : public PlanarActuatorLinks
{
protected:
    using Actuator = KARMPSpatialForceActuator2D;

    PlanarForceActuatorLinks() { actuator->SetLoader(loader); }
    ~PlanarForceActuatorLinks() override { loader->body = nullptr; }
    static Body BodyOf(const Actuator& of)
    {
        Body found;
        EXPECT_EQ(of.GetBody(found), KARSuccess);
        return found;
    }

    QOBSharedHandle<ConcreteEntity<Actuator>> actuator = ConcreteEntity<Actuator>::create(L"a");
    RecordingSpatialForceActuator2DLoader* loader =
        new RecordingSpatialForceActuator2DLoader(record);
};

TEST_F(PlanarForceActuatorLinks, HasOneBodyOfWhichItsLoaderHears)
{
    EXPECT_FALSE(BodyOf(*actuator));
    EXPECT_EQ(actuator->SetBody(body), KARSuccess);
    EXPECT_EQ(loader->body, body);
    EXPECT_EQ(actuator->SetBody(body), KARUnchanged);
    EXPECT_EQ(actuator->SetBody({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(record.calls, std::vector<std::string>{"SetBody"});
    EXPECT_EQ(BodyOf(*actuator), body);
    EXPECT_FALSE(BodyOf(*actuator->copy()));
}

TEST_F(PlanarForceActuatorLinks, KeepsABodyThatItsLoaderRefuses)
{
    record.answer = KARUnexpected;
    EXPECT_EQ(actuator->SetBody(body), KARFailure);
    ExpectReports(1);
    record.answer = KARUnchanged;
    EXPECT_EQ(actuator->SetBody(other), KARSuccess);
    actuator->failsToFetch = true;
    EXPECT_EQ(actuator->SetBody(body), KARFailure);
    ExpectReports(2);
    EXPECT_EQ(BodyOf(*actuator), body);
}

TEST_F(PlanarForceActuatorLinks, StandsBehindItsPointAndComesBackThroughItsSetter)
{
    actuator->SetBody(body);
    TestSerializer root;
    EXPECT_EQ(actuator->Serialize(&root), KARSuccess);
    const TestSerializer& element = root.Child(0);
    ASSERT_EQ(element.GetElementCount(), 5U);
    EXPECT_EQ(element.Child(3).GetId(), L"ApplicationPoint2D");
    EXPECT_EQ(element.Child(4).GetId(), L"Body2D");
    EXPECT_EQ(element.Text(L"Body2D/@id"), L"body");
    for (const bool asText : {false, true}) {
        const auto read = Actuator::create(L"");
        auto* const told = new RecordingSpatialForceActuator2DLoader(record);
        read->SetLoader(told);
        record.calls.clear();
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
        EXPECT_EQ(record.calls, (std::vector<std::string>{"SetApplicationPoint", "SetBody"}));
        told->body = nullptr;
        EXPECT_EQ(BodyOf(*read), body);
    }
}

TEST_F(PlanarForceActuatorLinks, IsNoBodyInSpace)
{
    TestDeserializer root;
    TestDeserializer& element = Plain(root, L"SpatialForceActuator2D");
    element.Add(L"Body2D").Attribute(L"id", L"spatial");
    EXPECT_THROW(Actuator::create(L"")->Deserialize(&root, entities), QOBEInvalidCast);
    ExpectReports(2); // flag and point are missing
}

TEST_F(PlanarForceActuatorLinks, ALoaderOfAForceInSpaceHearsOfNoPlanarBody)
{
    const auto bare = Actuator::create(L"bare");
    bare->SetLoader(new RecordingSpatialForceActuatorLoader(record));
    EXPECT_EQ(bare->SetBody(body), KARSuccess);
    EXPECT_TRUE(record.calls.empty());
}

} // namespace

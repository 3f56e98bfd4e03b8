#include "KARMPConnector.h"
#include "ConcreteEntity.h"
#include "KARIMPConnectorLoader.h"
#include "KARMPBody.h"
#include "KARMPEntityTable.h"
#include "KARMPPoint.h"
#include "KARMPTestFixture.h"
#include "KARMPVariable.h"
#include "QOBException.h"
#include "RecordingEntityLoader.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

/// A connector with everything that it can link to.
class Connector : public KARMPTestFixture
{
protected:
    using Handle = QOBSharedHandle<KARMPConnector>;
    using Body = QOBSharedHandle<KARMPBody>;
    using Geometry = QOBSharedHandle<KARMPGeometry>;
    using Variable = QOBSharedHandle<KARMPVariable>;

    Connector()
    {
        Enter(L"first", first);
        Enter(L"second", second);
        Enter(L"point", point);
        Enter(L"other", other);
        Enter(L"variable", variable);
    }
    ~Connector() override
    {
        connector->orphanObject();
        first->orphanObject();
        second->orphanObject();
    }
    void Enter(const wchar_t* identifier, const QOBSharedHandle<KARMPEntity>& entity)
    {
        entity->SetIdentifier(identifier);
        entities.Set(identifier, entity);
    }
    void LinkAll()
    {
        connector->SetFirstBody(first);
        first->LinkToConnector(Handle(connector));
        connector->SetSecondBody(second);
        second->LinkToConnector(Handle(connector));
        connector->LinkToGeometry(point);
        connector->LinkToGeometry(other);
        connector->LinkToVariable(variable);
    }

    LoaderRecord record;
    QOBSharedHandle<ConcreteEntity<KARMPConnector>> connector =
        ConcreteEntity<KARMPConnector>::create(L"c");
    Body first = KARMPBody::create(L"first");
    Body second = KARMPBody::create(L"second");
    Geometry point = KARMPPoint::create(L"point");
    Geometry other = KARMPPoint::create(L"other");
    Variable variable = KARMPVariable::create(L"variable");
    KARMPEntityTable entities;
};

TEST_F(Connector, ActsBetweenTwoBodies)
{
    Body found = first;
    EXPECT_EQ(connector->GetFirstBody(found), KARFailure);
    EXPECT_FALSE(found);
    found = first;
    EXPECT_EQ(connector->GetSecondBody(found), KARFailure);
    EXPECT_FALSE(found);
    EXPECT_EQ(connector->SetFirstBody(first), KARSuccess);
    EXPECT_EQ(connector->SetSecondBody(second), KARSuccess);
    EXPECT_EQ(connector->SetFirstBody({}), KARFailure);
    EXPECT_EQ(connector->SetSecondBody({}), KARFailure);
    ExpectReports(2);
    EXPECT_EQ(connector->GetFirstBody(found), KARSuccess);
    EXPECT_EQ(found, first);
    EXPECT_EQ(connector->GetSecondBody(found), KARSuccess);
    EXPECT_EQ(found, second);
    EXPECT_EQ(first->GetLinkedConnectorCount(), 0) << "the other side is made by the body";
}

TEST_F(Connector, LetsOneBodyGoAtATimeAndTheFirstBeforeTheSecond)
{
    connector->SetFirstBody(first);
    connector->SetSecondBody(first);
    EXPECT_EQ(connector->RemoveBody({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(connector->RemoveBody(second), KARUnchanged);
    EXPECT_EQ(connector->RemoveBody(first), KARSuccess);
    Body found;
    EXPECT_EQ(connector->GetFirstBody(found), KARFailure);
    EXPECT_EQ(connector->GetSecondBody(found), KARSuccess);
    EXPECT_EQ(connector->RemoveBody(first), KARSuccess);
    EXPECT_EQ(connector->RemoveBody(first), KARUnchanged);
}

TEST_F(Connector, ListsGeometries)
{
    EXPECT_EQ(connector->LinkToGeometry({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(connector->LinkToGeometry(point), KARSuccess);
    EXPECT_EQ(connector->LinkToGeometry(other), KARSuccess);
    EXPECT_EQ(connector->LinkToGeometry(point), KARUnchanged);
    EXPECT_EQ(connector->GetLinkedGeometryCount(), 2);
    Geometry found;
    EXPECT_EQ(connector->GetLinkedGeometry(1, found), KARSuccess);
    EXPECT_EQ(found, other);
    EXPECT_EQ(connector->GetLinkedGeometry(2, found), KARFailure);
    EXPECT_FALSE(found);
    EXPECT_EQ(connector->RemoveGeometry({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(connector->RemoveGeometry(point), KARSuccess);
    EXPECT_EQ(connector->RemoveGeometry(point), KARUnchanged);
    EXPECT_EQ(connector->GetLinkedGeometryCount(), 1);
}

TEST_F(Connector, ListsVariables)
{
    EXPECT_EQ(connector->LinkToVariable({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(connector->LinkToVariable(variable), KARSuccess);
    EXPECT_EQ(connector->LinkToVariable(variable), KARUnchanged);
    EXPECT_EQ(connector->GetLinkedVariableCount(), 1);
    Variable found;
    EXPECT_EQ(connector->GetLinkedVariable(0, found), KARSuccess);
    EXPECT_EQ(found, variable);
    EXPECT_EQ(connector->GetLinkedVariable(-1, found), KARFailure);
    EXPECT_FALSE(found);
    EXPECT_EQ(connector->RemoveVariable({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(connector->RemoveVariable(variable), KARSuccess);
    EXPECT_EQ(connector->RemoveVariable(variable), KARUnchanged);
}

/// A connector that has one geometry more than it can give.
class BrokenConnector : public KARMPConnector
{
public:
    int GetLinkedGeometryCount() const override
    {
        return KARMPConnector::GetLinkedGeometryCount() + 1;
    }
};

TEST_F(Connector, ReportsALinkThatCannotBeComparedAndGoesOn)
{
    const Handle broken(new BrokenConnector);
    EXPECT_EQ(broken->LinkToGeometry(point), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(broken->LinkToGeometry(point), KARUnchanged);
    ExpectReports(0);
    TestSerializer root;
    EXPECT_EQ(broken->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Count(L"Geometries/Geometry"), 2U);
    EXPECT_TRUE(root.Flag(L"Geometries/Geometry[1]/@id"));
    EXPECT_TRUE(root.Flag(L"Geometries/Geometry[1]/@name"));
}

/// A connector that gives none of its geometries.
class MuteConnector : public KARMPConnector
{
public:
    KARStatus GetLinkedGeometry(int, QOBSharedHandle<KARMPGeometry>&) const override
    {
        return KARFailure;
    }
};

TEST_F(Connector, LinksAGeometryTwiceWhenItsGetterDoesNotGiveIt)
{
    const Handle mute(new MuteConnector);
    EXPECT_EQ(mute->LinkToGeometry(point), KARSuccess);
    EXPECT_EQ(mute->LinkToGeometry(point), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(mute->GetLinkedGeometryCount(), 2);
}

TEST_F(Connector, GivesItsLoader)
{
    KARIMPConnectorLoader* loader = nullptr;
    EXPECT_EQ(connector->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr);
    connector->SetLoader(new RecordingLoader<KARIMPConnectorLoader>(record));
    EXPECT_EQ(connector->GetLoader(loader), KARSuccess);
    EXPECT_NE(loader, nullptr);
    connector->failsToFetch = true;
    EXPECT_EQ(connector->GetLoader(loader), KARFailure);
    ExpectReports(1);
}

TEST_F(Connector, IsLetGoByItsBodiesWhenOrphaned)
{
    LinkAll();
    EXPECT_EQ(connector->RemoveParent(), KARSuccess);
    EXPECT_EQ(first->GetLinkedConnectorCount(), 0);
    EXPECT_EQ(second->GetLinkedConnectorCount(), 0);
    Body found;
    EXPECT_EQ(connector->GetFirstBody(found), KARFailure);
    EXPECT_EQ(connector->GetSecondBody(found), KARFailure);
    EXPECT_EQ(connector->GetLinkedGeometryCount(), 2);
    connector->orphanObject();
    EXPECT_EQ(connector->GetLinkedGeometryCount(), 0);
    EXPECT_EQ(connector->GetLinkedVariableCount(), 0);
}

TEST_F(Connector, CopiesNoLinks)
{
    LinkAll();
    const auto copy = connector->copy();
    Body found;
    EXPECT_EQ(copy->GetFirstBody(found), KARFailure);
    EXPECT_EQ(copy->GetSecondBody(found), KARFailure);
    EXPECT_EQ(copy->GetLinkedGeometryCount(), 0);
    EXPECT_EQ(copy->GetLinkedVariableCount(), 0);
}

TEST_F(Connector, WritesItsLinksInOrder)
{
    LinkAll();
    TestSerializer root;
    EXPECT_EQ(connector->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.GetElementCount(), 4U);
    EXPECT_EQ(root.Child(0).GetId(), L"FirstBody");
    EXPECT_EQ(root.Child(1).GetId(), L"SecondBody");
    EXPECT_EQ(root.Child(2).GetId(), L"Geometries");
    EXPECT_EQ(root.Child(3).GetId(), L"Variables");
    EXPECT_EQ(root.Text(L"FirstBody/@id"), L"first");
    EXPECT_EQ(root.Text(L"SecondBody/@name"), L"second");
    EXPECT_EQ(root.Text(L"Geometries/Geometry[1]/@id"), L"other");
    EXPECT_EQ(root.Text(L"Variables/Variable/@id"), L"variable");
}

TEST_F(Connector, WritesNoLinksThatItDoesNotHave)
{
    TestSerializer root;
    EXPECT_EQ(connector->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.GetElementCount(), 0U);
}

TEST_F(Connector, ReadsItsLinks)
{
    LinkAll();
    TestSerializer root;
    connector->Serialize(&root);
    const auto tree = TestDeserializer::From(root);
    const Handle read(ConcreteEntity<KARMPConnector>::create(L"read"));
    EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
    ExpectReports(1); // it has an identifier already
    Body found;
    EXPECT_EQ(read->GetFirstBody(found), KARSuccess);
    EXPECT_EQ(found, first);
    EXPECT_EQ(read->GetSecondBody(found), KARSuccess);
    EXPECT_EQ(found, second);
    EXPECT_EQ(read->GetLinkedGeometryCount(), 2);
    EXPECT_EQ(read->GetLinkedVariableCount(), 1);
}

TEST_F(Connector, SkipsReferencesThatLeadNowhereAndRefusesOtherClasses)
{
    TestDeserializer root(L"C");
    root.Attribute(L"id", L"c").Attribute(L"name", L"n").Attribute(L"isActive", L"yes");
    root.Reference(L"FirstBody", L"unknown");
    root.Reference(L"SecondBody", L"second");
    EXPECT_EQ(connector->Deserialize(&root, entities), KARSuccess);
    ExpectReports(1); // it has an identifier already
    Body found;
    EXPECT_EQ(connector->GetFirstBody(found), KARFailure);
    EXPECT_EQ(connector->GetSecondBody(found), KARSuccess);
    entities.Set(L"unknown", point);
    EXPECT_THROW(connector->Deserialize(&root, entities), QOBEInvalidCast);
    TakeReports();
}

TEST_F(Connector, HasNoUseForANullNode)
{
    EXPECT_EQ(connector->Serialize(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(connector->Deserialize(nullptr, entities), KARFailure);
    ExpectReports(1);
}

TEST_F(Connector, SucceedsWhenAnAdditionFails)
{
    LinkAll();
    EXPECT_EQ(ForEachFailedCreation(L"R2018.1",
                                    [this](TestSerializer& root, std::size_t failing) {
                                        EXPECT_EQ(connector->Serialize(&root), KARSuccess);
                                        EXPECT_EQ(TakeReports() > 0, failing != 0);
                                    }),
              7U);
}

} // namespace

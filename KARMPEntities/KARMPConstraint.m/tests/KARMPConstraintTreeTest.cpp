#include "ConstraintTesting.h"
#include "KARMPConstraint.h"
#include "KARMPDisplacementSensor.h"
#include "KARMPEntityTable.h"
#include "KARMPJointKinds.h"
#include "KARMPPlainConstraints.h"
#include "KARMPPoint.h"
#include "KARMPTestFixture.h"
#include "KARMPVariable.h"
#include "QOBException.h"

#include <map>

namespace {

/// A constraint whose first links cannot be had.
class Forgetful : public KARMPConcentricity
{
public:
    KARStatus GetLinkedGeometry(int index, QOBSharedHandle<KARMPGeometry>& link) const override
    {
        return index == 0 ? KARFailure : KARMPConcentricity::GetLinkedGeometry(index, link);
    }
    KARStatus GetLinkedVariable(int index, QOBSharedHandle<KARMPVariable>& link) const override
    {
        return index == 0 ? KARFailure : KARMPConcentricity::GetLinkedVariable(index, link);
    }
    KARStatus GetLinkedSensor(int index, QOBSharedHandle<KARMPSensor>& link) const override
    {
        return index == 0 ? KARFailure : KARMPConcentricity::GetLinkedSensor(index, link);
    }
};

/// A parameter that cannot be written.
class BrokenParameter : public KARMPConstraintParameter
{
public:
    KARStatus Serialize(KARMPSerializer*) const override { return KARFailure; }
};

/// A constraint that counts the parameters that are added.
class Counting : public KARMPConcentricity
{
public:
    KARStatus AddConstraintParameter(KARMPConstraintParameter* parameter) override
    {
        ++added;
        return KARMPConcentricity::AddConstraintParameter(parameter);
    }

    int added = 0;
};

/// A constraint that refuses its links.
class Refusing : public KARMPConcentricity
{
public:
    KARStatus LinkToGeometry(const QOBSharedHandle<KARMPGeometry>&) override { return KARFailure; }
    KARStatus SetJoint(const QOBSharedHandle<KARMPJoint>&) override { return KARFailure; }
};

/// A constraint with one of everything, and the table to read it by.
class ConstraintTree : public KARMPTestFixture
{
protected:
    ConstraintTree()
    {
        point->SetIdentifier(L"G1");
        otherPoint->SetIdentifier(L"G2");
        joint->SetIdentifier(L"J1");
        variable->SetIdentifier(L"V1");
        sensor->SetIdentifier(L"S1");
        entities.Set(L"G1", point);
        entities.Set(L"G2", otherPoint);
        entities.Set(L"J1", joint);
        entities.Set(L"V1", variable);
        entities.Set(L"S1", sensor);
        Link(*constraint);
        constraint->SetIdentifier(L"C1");
    }
    ~ConstraintTree() override
    {
        constraint->orphanObject();
        read->orphanObject();
    }
    void Link(KARMPConstraint& linked)
    {
        linked.LinkToGeometry(otherPoint);
        linked.LinkToGeometry(point);
        linked.SetJoint(joint);
        linked.LinkToVariable(variable);
        linked.LinkToSensor(sensor);
    }
    static KARMPConstraintParameter* AddParameter(KARMPConstraint& owner, int type,
                                                  bool initialized)
    {
        auto* parameter = new KARMPConstraintParameter;
        const std::array<int, 2> types{type, type + 1};
        parameter->SetTypes(types.data());
        parameter->SetInitialized(initialized);
        owner.AddConstraintParameter(parameter);
        return parameter;
    }
    static int TypeOf(const KARMPConstraint& owner, int index)
    {
        KARMPConstraintParameter* parameter = nullptr;
        owner.GetConstraintParameter(index, parameter);
        std::array<int, 2> types{};
        if (parameter != nullptr)
            parameter->GetTypes(types.data());
        return types[0];
    }

    QOBSharedHandle<KARMPConstraint> constraint = KARMPConcentricity::create(L"c");
    QOBSharedHandle<KARMPConstraint> read = KARMPConcentricity::create(L"");
    QOBSharedHandle<KARMPGeometry> point = KARMPPoint::create(L"p");
    QOBSharedHandle<KARMPGeometry> otherPoint = KARMPPoint::create(L"q");
    QOBSharedHandle<KARMPJoint> joint = KARMPRevolute::create(L"j");
    QOBSharedHandle<KARMPVariable> variable = KARMPVariable::create(L"v");
    QOBSharedHandle<KARMPSensor> sensor = KARMPDisplacementSensor::create(L"s");
    KARMPEntityTable entities;
};

TEST_F(ConstraintTree, WritesLinksThenParametersInOrder)
{
    AddParameter(*constraint, 1, true);
    TestSerializer root;
    EXPECT_EQ(constraint->Serialize(&root), KARSuccess);
    const TestSerializer* element = root.Find(L"Concentricity");
    ASSERT_NE(element, nullptr);
    ASSERT_EQ(element->GetElementCount(), 5U);
    EXPECT_EQ(element->Child(0).GetId(), L"Geometries");
    EXPECT_EQ(element->Child(1).GetId(), L"Joint");
    EXPECT_EQ(element->Child(2).GetId(), L"Variables");
    EXPECT_EQ(element->Child(3).GetId(), L"Sensors");
    EXPECT_EQ(element->Child(4).GetId(), L"ConstraintParameters");
    EXPECT_EQ(element->Count(L"Geometries/Geometry"), 2U);
    EXPECT_EQ(element->Text(L"Geometries/Geometry/@id"), L"G2");
    EXPECT_EQ(element->Text(L"Geometries/Geometry/@name"), L"q");
    EXPECT_EQ(element->Text(L"Geometries/Geometry[1]/@id"), L"G1");
    EXPECT_EQ(element->Text(L"Joint/@id"), L"J1");
    EXPECT_EQ(element->Text(L"Joint/@name"), L"j");
    EXPECT_EQ(element->Text(L"Variables/Variable/@id"), L"V1");
    EXPECT_EQ(element->Text(L"Variables/Variable/@name"), L"v");
    EXPECT_EQ(element->Text(L"Sensors/Sensor/@id"), L"S1");
    EXPECT_EQ(element->Text(L"Sensors/Sensor/@name"), L"s");
    EXPECT_EQ(element->Count(L"ConstraintParameters/ConstraintParameter"), 1U);
}

TEST_F(ConstraintTree, WritesTheSameInEveryVersion)
{
    for (const wchar_t* version : {L"R2015x.0", L"R2018.1"}) {
        TestSerializer root(version);
        EXPECT_EQ(constraint->Serialize(&root), KARSuccess);
        EXPECT_EQ(root.Find(L"Concentricity")->GetElementCount(), 4U);
    }
}

TEST_F(ConstraintTree, ConstraintWithoutLinksWritesNoneOfTheirElements)
{
    TestSerializer root;
    EXPECT_EQ(KARMPConcentricity::create(L"bare")->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Find(L"Concentricity")->GetElementCount(), 0U);
    const auto tree = TestDeserializer::From(root);
    EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
    EXPECT_EQ(read->GetLinkedGeometryCount(), 0);
    EXPECT_EQ(read->GetLinkedVariableCount(), 0);
    EXPECT_EQ(read->GetLinkedSensorCount(), 0);
    QOBSharedHandle<KARMPJoint> found;
    EXPECT_EQ(read->GetJoint(found), KARFailure);
}

TEST_F(ConstraintTree, ReadsBackItsOwnSideOfTheLinks)
{
    for (const bool asText : {false, true}) {
        const QOBSharedHandle<KARMPConstraint> copy = KARMPConcentricity::create(L"");
        EXPECT_EQ(CopyThroughTree(constraint, copy, entities, asText), KARSuccess);
        ASSERT_EQ(copy->GetLinkedGeometryCount(), 2);
        QOBSharedHandle<KARMPGeometry> geometry;
        copy->GetLinkedGeometry(0, geometry);
        EXPECT_EQ(geometry, otherPoint);
        copy->GetLinkedGeometry(1, geometry);
        EXPECT_EQ(geometry, point);
        QOBSharedHandle<KARMPJoint> foundJoint;
        EXPECT_EQ(copy->GetJoint(foundJoint), KARSuccess);
        EXPECT_EQ(foundJoint, joint);
        QOBSharedHandle<KARMPVariable> foundVariable;
        EXPECT_EQ(copy->GetLinkedVariable(0, foundVariable), KARSuccess);
        EXPECT_EQ(foundVariable, variable);
        QOBSharedHandle<KARMPSensor> foundSensor;
        EXPECT_EQ(copy->GetLinkedSensor(0, foundSensor), KARSuccess);
        EXPECT_EQ(foundSensor, sensor);
    }
    EXPECT_EQ(point->GetLinkedConstraintCount(), 0);
    EXPECT_EQ(variable->GetLinkedConstraintCount(), 0);
    EXPECT_EQ(joint->GetConstraintCount(), 0);
}

TEST_F(ConstraintTree, LinkThatCannotBeHadIsMarkedAndTheOthersFollow)
{
    const QOBSharedHandle<KARMPConstraint> forgetful(new Forgetful);
    Link(*forgetful);
    TestSerializer root;
    EXPECT_EQ(forgetful->Serialize(&root), KARSuccess);
    for (const wchar_t* marked :
         {L"Concentricity/Geometries/Geometry", L"Concentricity/Variables/Variable",
          L"Concentricity/Sensors/Sensor"}) {
        EXPECT_TRUE(root.Flag(marked + std::wstring(L"/@id"))) << marked;
        EXPECT_TRUE(root.Flag(marked + std::wstring(L"/@name"))) << marked;
    }
    EXPECT_EQ(root.Text(L"Concentricity/Geometries/Geometry[1]/@id"), L"G1");
    ExpectReports(0);
}

TEST_F(ConstraintTree, WritesNoParametersWhenNoneIsInitialized)
{
    AddParameter(*constraint, 1, false);
    constraint->AddConstraintParameter(nullptr);
    TestSerializer root;
    EXPECT_EQ(constraint->Serialize(&root), KARSuccess);
    EXPECT_FALSE(root.Has(L"Concentricity/ConstraintParameters"));
}

TEST_F(ConstraintTree, OneInitializedParameterLetsAllBeWritten)
{
    AddParameter(*constraint, 10, false);
    AddParameter(*constraint, 20, true);
    AddParameter(*constraint, 30, false);
    EXPECT_EQ(CopyThroughTree(constraint, read, entities), KARSuccess);
    ASSERT_EQ(read->GetConstraintParameterCount(), 3);
    for (int index = 0; index < 3; ++index) {
        EXPECT_EQ(TypeOf(*read, index), 10 * (index + 1));
        KARMPConstraintParameter* parameter = nullptr;
        read->GetConstraintParameter(index, parameter);
        EXPECT_TRUE(parameter->IsInitialized());
    }
}

TEST_F(ConstraintTree, NullAndBrokenParametersAreReportedAndPassedOver)
{
    constraint->AddConstraintParameter(nullptr);
    constraint->AddConstraintParameter(new BrokenParameter);
    AddParameter(*constraint, 20, true);
    TestSerializer root;
    EXPECT_EQ(constraint->Serialize(&root), KARSuccess);
    ExpectReports(2);
    EXPECT_EQ(root.Count(L"Concentricity/ConstraintParameters/ConstraintParameter"), 1U);
}

TEST_F(ConstraintTree, SubclassIsGivenEachParameterThatIsRead)
{
    AddParameter(*constraint, 10, true);
    AddParameter(*constraint, 20, true);
    auto* counting = new Counting;
    const QOBSharedHandle<KARMPConstraint> copy(counting);
    EXPECT_EQ(CopyThroughTree(constraint, copy, entities), KARSuccess);
    EXPECT_EQ(counting->added, 2);
    EXPECT_EQ(copy->GetConstraintParameterCount(), 2);
}

TEST_F(ConstraintTree, ParameterIsAddedWhateverItsElementLacks)
{
    TestDeserializer root;
    AddConstraint(root, L"Concentricity").Add(L"ConstraintParameters").Add(L"ConstraintParameter");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    ExpectReports(3);
    ASSERT_EQ(read->GetConstraintParameterCount(), 1);
    EXPECT_EQ(TypeOf(*read, 0), 0);
}

TEST_F(ConstraintTree, OnlyTheElementItselfDecidesTheStatus)
{
    AddParameter(*constraint, 1, true);
    // How many items stand in the element, the containers of links, that of the parameters, the
    // parameter and its groups: these are not tried when it fails, and all others are.
    const std::map<std::size_t, std::size_t> within{{1, 21},  {2, 2},  {6, 1},  {8, 1}, {10, 12},
                                                    {11, 11}, {12, 2}, {15, 3}, {19, 3}};
    const std::size_t creations =
        ForEachFailedCreation(L"R2018.1", [&](TestSerializer& root, std::size_t failing) {
            EXPECT_EQ(constraint->Serialize(&root), failing == 1 ? KARFailure : KARSuccess);
            EXPECT_EQ(TakeReports() > 0, failing != 0);
            const auto found = within.find(failing);
            EXPECT_EQ(root.Creations(), 22U - (found != within.end() ? found->second : 0U))
                << failing;
        });
    // The element, four containers and the joint, four references, and a parameter of twelve.
    EXPECT_EQ(creations, 1U + 5U + 4U + 12U);
}

TEST_F(ConstraintTree, GoesOnAfterAContainerThatCouldNotBeAdded)
{
    TestSerializer root;
    root.FailCreation(2);
    EXPECT_EQ(constraint->Serialize(&root), KARSuccess);
    ExpectReports(2);
    EXPECT_FALSE(root.Has(L"Concentricity/Geometries"));
    EXPECT_TRUE(root.Has(L"Concentricity/Joint"));
    EXPECT_TRUE(root.Has(L"Concentricity/Variables/Variable"));
    EXPECT_TRUE(root.Has(L"Concentricity/Sensors/Sensor"));
}

TEST_F(ConstraintTree, PassesOverUnknownAndNullTargetsInSilence)
{
    entities.Set(L"null", {});
    TestDeserializer root;
    auto& element = AddConstraint(root, L"Concentricity");
    element.Add(L"Geometries")
        .Reference(L"Geometry", L"nobody")
        .Reference(L"Geometry", L"null")
        .Reference(L"Geometry", L"G1");
    element.Reference(L"Joint", L"nobody");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    ASSERT_EQ(read->GetLinkedGeometryCount(), 1);
    QOBSharedHandle<KARMPGeometry> geometry;
    read->GetLinkedGeometry(0, geometry);
    EXPECT_EQ(geometry, point);
}

TEST_F(ConstraintTree, ReportsAReferenceWithoutIdAndGoesOn)
{
    TestDeserializer root;
    auto& element = AddConstraint(root, L"Concentricity");
    auto& geometries = element.Add(L"Geometries");
    geometries.Add(L"Geometry");
    geometries.Reference(L"Geometry", L"G1").Reference(L"Geometry", L"G1");
    element.Add(L"Joint");
    auto& variables = element.Add(L"Variables");
    variables.Add(L"Variable");
    variables.Reference(L"Variable", L"V1");
    auto& sensors = element.Add(L"Sensors");
    sensors.Add(L"Sensor");
    sensors.Reference(L"Sensor", L"S1");
    EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
    ExpectReports(4);
    EXPECT_EQ(read->GetLinkedGeometryCount(), 1);
    EXPECT_EQ(read->GetLinkedVariableCount(), 1);
    EXPECT_EQ(read->GetLinkedSensorCount(), 1);
}

TEST_F(ConstraintTree, ReportsALinkThatIsRefusedAndGoesOn)
{
    const QOBSharedHandle<KARMPConstraint> refusing(new Refusing);
    EXPECT_EQ(CopyThroughTree(constraint, refusing, entities), KARSuccess);
    ExpectReports(3);
    EXPECT_EQ(refusing->GetLinkedVariableCount(), 1);
}

TEST_F(ConstraintTree, TargetOfAnotherClassIsAnInvalidCast)
{
    TestDeserializer root;
    AddConstraint(root, L"Concentricity").Add(L"Geometries").Reference(L"Geometry", L"V1");
    EXPECT_THROW(read->Deserialize(&root, entities), QOBEInvalidCast);
    TestDeserializer other;
    AddConstraint(other, L"Concentricity").Reference(L"Joint", L"G1");
    EXPECT_THROW(KARMPConcentricity::create(L"")->Deserialize(&other, entities), QOBEInvalidCast);
}

TEST_F(ConstraintTree, NullArgumentsAreReportedAndFail)
{
    const auto serialize = [this] { return constraint->KARMPConstraint::Serialize(nullptr); };
    const auto deserialize = [this] {
        return read->KARMPConstraint::Deserialize(nullptr, entities);
    };
    EXPECT_EQ(serialize(), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(deserialize(), KARFailure);
    ExpectReports(1);
}

TEST_F(ConstraintTree, TriesNoParametersAfterTheEntityFailed)
{
    AddParameter(*constraint, 1, true);
    EXPECT_EQ(constraint->KARMPConstraint::Serialize(nullptr), KARFailure);
    ExpectReports(1);
}

TEST(ConstraintNamesProcess, ReferencesHaveNoNameWhenNamesAreLeftOut)
{
    const auto constraint = KARMPConcentricity::create(L"c");
    constraint->SetJoint(KARMPRevolute::create(L"j"));
    TestSerializer root;
    EXPECT_EQ(constraint->Serialize(&root), KARSuccess);
    EXPECT_TRUE(root.Has(L"Concentricity/Joint/@id"));
    EXPECT_FALSE(root.Has(L"Concentricity/Joint/@name"));
}

} // namespace

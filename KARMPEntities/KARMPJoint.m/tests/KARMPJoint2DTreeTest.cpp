#include "KARMPBody2D.h"
#include "KARMPEntityTable.h"
#include "KARMPPlainConstraints.h"
#include "KARMPTestFixture.h"
#include "KARMPUserDefined2D.h"
#include "QOBException.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

using Orientation = KARMPBodyOrientation;

constexpr std::wstring_view BeforeOrientations = L"R2017.0";
constexpr std::wstring_view WithOrientations = L"R2017.1";

// A planar joint with two bodies and two constraints, all of them in a table.
class PlanarJointTree : public KARMPTestFixture
{
protected:
    PlanarJointTree()
    {
        joint->SetIdentifier(L"J");
        Name(a, L"A");
        Name(b, L"B");
        Name(first, L"C1");
        Name(second, L"C2");
        joint->LinkToBody(a, Orientation::In);
        joint->LinkToBody(b, Orientation::Out);
        joint->AddConstraint(first);
        joint->AddConstraint(second);
    }
    void Name(const QOBSharedHandle<KARMPEntity>& entity, const std::wstring& identifier)
    {
        entity->SetIdentifier(identifier);
        table.Set(identifier, entity);
    }
    static QOBSharedHandle<KARMPUserDefined2D> New() { return KARMPUserDefined2D::create(L""); }
    // A joint's element with the entity's attributes.
    static TestDeserializer& Fill(TestDeserializer& element)
    {
        return element.Attribute(L"id", L"R")
            .Attribute(L"name", L"read")
            .Attribute(L"isActive", L"yes");
    }
    static void AddBody(TestDeserializer& bodies, std::wstring_view entry, std::wstring_view id,
                        std::wstring_view orientation)
    {
        bodies.Add(entry).Attribute(L"id", id).Attribute(L"bodyOrientation", orientation);
    }
    static Orientation::Enum OrientationOf(const KARMPJoint2D& of, int index)
    {
        QOBSharedHandle<KARMPBody2D> body;
        auto orientation = Orientation::Out;
        EXPECT_EQ(of.GetLinkedBody(index, body, orientation), KARSuccess);
        return orientation;
    }

    KARMPEntityTable table;
    QOBSharedHandle<KARMPUserDefined2D> joint = KARMPUserDefined2D::create(L"joint");
    QOBSharedHandle<KARMPBody2D> a = KARMPBody2D::create(L"a");
    QOBSharedHandle<KARMPBody2D> b = KARMPBody2D::create(L"b");
    QOBSharedHandle<KARMPConstraint> first{KARMP0DoF::create(L"first")};
    QOBSharedHandle<KARMPConstraint> second{KARMP6DoF::create(L"second")};
};

TEST_F(PlanarJointTree, PlanarBodiesAndConstraintsAreWritten)
{
    TestSerializer root;
    EXPECT_EQ(joint->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.GetElementCount(), 1u);
    const TestSerializer& element = root.Child(0);
    EXPECT_EQ(element.GetId(), L"UserDefined2D");
    EXPECT_EQ(element.Text(L"@id"), L"J");
    ASSERT_EQ(element.GetElementCount(), 2u);
    EXPECT_EQ(element.Child(0).GetId(), L"Bodies2D");
    EXPECT_EQ(element.Child(1).GetId(), L"Constraints");
    EXPECT_EQ(element.Count(L"Bodies2D/Body2D"), 2u);
    EXPECT_EQ(element.Text(L"Bodies2D/Body2D@id"), L"A");
    EXPECT_EQ(element.Text(L"Bodies2D/Body2D@name"), L"a");
    EXPECT_EQ(element.Text(L"Bodies2D/Body2D@bodyOrientation"), L"In");
    EXPECT_EQ(element.Text(L"Bodies2D/Body2D[1]@id"), L"B");
    EXPECT_EQ(element.Text(L"Bodies2D/Body2D[1]@bodyOrientation"), L"Out");
    EXPECT_EQ(element.Count(L"Constraints/Constraint"), 2u);
    EXPECT_EQ(element.Text(L"Constraints/Constraint[1]@id"), L"C2");
}

TEST_F(PlanarJointTree, AJointWithoutLinksWritesNoContainers)
{
    const auto bare = New();
    TestSerializer root;
    EXPECT_EQ(bare->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Child(0).GetElementCount(), 0u);
}

TEST_F(PlanarJointTree, WhatItsBaseHoldsIsNotWritten)
{
    const auto bare = New();
    KARMPJoint& base = *bare;
    base.LinkToBody(a, Orientation::In);
    base.AddConstraint(first);
    TestSerializer root;
    EXPECT_EQ(bare->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Child(0).GetElementCount(), 0u);
}

TEST_F(PlanarJointTree, TheBodiesOfAJointInSpaceAreNotRead)
{
    TestDeserializer element(L"UserDefined2D");
    Fill(element);
    AddBody(element.Add(L"Bodies"), L"Body", L"A", L"In");
    element.Add(L"Constraints").Reference(L"Constraint", L"C1");
    const auto read = New();
    EXPECT_EQ(read->Deserialize(&element, table), KARSuccess);
    EXPECT_EQ(read->GetLinkedBodyCount(), 0);
    EXPECT_EQ(read->GetConstraintCount(), 1);
    const KARMPJoint& base = *read;
    EXPECT_EQ(base.GetLinkedBodyCount(), 0);
    EXPECT_EQ(base.GetConstraintCount(), 0);
}

TEST_F(PlanarJointTree, OrientationsAreWrittenAndReadFromTheirVersionOn)
{
    TestSerializer before(BeforeOrientations);
    EXPECT_EQ(joint->Serialize(&before), KARSuccess);
    EXPECT_FALSE(before.Has(L"UserDefined2D/Bodies2D/Body2D@bodyOrientation"));
    TestSerializer at(WithOrientations);
    EXPECT_EQ(joint->Serialize(&at), KARSuccess);
    EXPECT_TRUE(at.Has(L"UserDefined2D/Bodies2D/Body2D@bodyOrientation"));

    for (const std::wstring_view version : {BeforeOrientations, WithOrientations}) {
        const bool isOld = version == BeforeOrientations;
        TestDeserializer element(L"UserDefined2D");
        Fill(element).At(version);
        TestDeserializer& bodies = element.Add(L"Bodies2D");
        AddBody(bodies, L"Body2D", L"A", L"In");
        bodies.Reference(L"Body2D", L"B");
        const auto read = New();
        EXPECT_EQ(read->Deserialize(&element, table), KARSuccess);
        ExpectReports(isOld ? 0 : 1);
        EXPECT_EQ(read->GetLinkedBodyCount(), isOld ? 2 : 1);
        EXPECT_EQ(OrientationOf(*read, 0), isOld ? Orientation::Out : Orientation::In);
    }
}

TEST_F(PlanarJointTree, WhatIsWrittenIsReadBack)
{
    TestSerializer root;
    joint->Serialize(&root);
    for (const bool asText : {false, true}) {
        const auto read = New();
        const auto document = TestDeserializer::From(root, {.asText = asText});
        EXPECT_EQ(read->Deserialize(document.get(), table), KARSuccess);
        EXPECT_EQ(read->getEntityName(), L"joint");
        ASSERT_EQ(read->GetLinkedBodyCount(), 2);
        QOBSharedHandle<KARMPBody2D> body;
        read->GetLinkedBody(1, body);
        EXPECT_EQ(body, b);
        EXPECT_EQ(OrientationOf(*read, 0), Orientation::In);
        EXPECT_EQ(OrientationOf(*read, 1), Orientation::Out);
        ASSERT_EQ(read->GetConstraintCount(), 2);
        QOBSharedHandle<KARMPConstraint> constraint;
        read->GetConstraint(0, constraint);
        EXPECT_EQ(constraint, first);
    }
}

TEST_F(PlanarJointTree, ABodyInSpaceIsNoneOfItsBodies)
{
    Name(KARMPBody::create(L"spatial"), L"S");
    TestDeserializer element(L"UserDefined2D");
    Fill(element);
    AddBody(element.Add(L"Bodies2D"), L"Body2D", L"S", L"In");
    EXPECT_THROW(New()->Deserialize(&element, table), QOBEInvalidCast);
}

TEST_F(PlanarJointTree, UnknownAndNullTargetsAreSkippedAndMissingIdsReported)
{
    table.Set(L"null", nullptr);
    TestDeserializer element(L"UserDefined2D");
    Fill(element);
    TestDeserializer& bodies = element.Add(L"Bodies2D");
    bodies.Reference(L"Body2D", L"unknown").Reference(L"Body2D", L"null");
    AddBody(bodies, L"Body2D", L"A", L"Inwards");
    bodies.Add(L"Body2D").Attribute(L"bodyOrientation", L"In");
    const auto read = New();
    EXPECT_EQ(read->Deserialize(&element, table), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(read->GetLinkedBodyCount(), 1);
    EXPECT_EQ(OrientationOf(*read, 0), Orientation::Out);
}

TEST_F(PlanarJointTree, NullArgumentsAndMissingElementsAreReported)
{
    EXPECT_EQ(joint->Serialize(nullptr), KARFailure);
    EXPECT_EQ(joint->Deserialize(nullptr, table), KARFailure);
    EXPECT_EQ(joint->KARMPJoint2D::Serialize(nullptr), KARFailure);
    EXPECT_EQ(joint->KARMPJoint2D::Deserialize(nullptr, table), KARFailure);
    ExpectReports(4);
    TestDeserializer other;
    other.Add(L"UserDefined").Attribute(L"id", L"J");
    EXPECT_EQ(New()->Deserialize(&other, table), KARFailure);
    ExpectReports(1);
}

TEST_F(PlanarJointTree, AFailedAdditionIsReportedAndWritingGoesOn)
{
    const std::size_t creations =
        ForEachFailedCreation(WithOrientations, [&](TestSerializer& root, std::size_t failing) {
            const KARStatus status = joint->Serialize(&root);
            EXPECT_EQ(status, failing == 1 ? KARFailure : KARSuccess) << failing;
            // The node reports, and so does the joint.
            ExpectReports(failing == 0 ? 0 : 2);
            EXPECT_EQ(root.Has(L"UserDefined2D/Constraints"), failing != 1 && failing != 5);
        });
    EXPECT_EQ(creations, 7u);
}

class PlanarJointTreeProcess : public PlanarJointTree
{};

TEST_F(PlanarJointTreeProcess, TheNamesOfBodiesAreWrittenAlsoWhereNamesAreLeftOut)
{
    TestSerializer root;
    EXPECT_EQ(joint->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"UserDefined2D/Bodies2D/Body2D@name"), L"a");
    EXPECT_FALSE(root.Has(L"UserDefined2D/Constraints/Constraint@name"));
}

} // namespace

#include "KARMPBody.h"
#include "KARMPEntityTable.h"
#include "KARMPJointKinds.h"
#include "KARMPPlainConstraints.h"
#include "KARMPTestFixture.h"
#include "QOBException.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

using Orientation = KARMPBodyOrientation;

constexpr std::wstring_view BeforeOrientations = L"R2017.0";
constexpr std::wstring_view WithOrientations = L"R2017.1";

// A revolute joint with two bodies and two constraints, all of them in a table.
class JointTree : public KARMPTestFixture
{
protected:
    JointTree()
    {
        joint->SetIdentifier(L"J");
        Name(a, L"A");
        Name(b, L"B");
        Name(first, L"C1");
        Name(second, L"C2");
    }
    void Name(const QOBSharedHandle<KARMPEntity>& entity, const std::wstring& identifier)
    {
        entity->SetIdentifier(identifier);
        table.Set(identifier, entity);
    }
    void LinkAll()
    {
        joint->LinkToBody(a, Orientation::In);
        joint->LinkToBody(b, Orientation::Out);
        joint->AddConstraint(first);
        joint->AddConstraint(second);
    }
    // A joint's element with the entity's attributes.
    static void Fill(TestDeserializer& element)
    {
        element.Attribute(L"id", L"R").Attribute(L"name", L"read").Attribute(L"isActive", L"yes");
    }
    static void AddBody(TestDeserializer& bodies, std::wstring_view id,
                        std::wstring_view orientation)
    {
        bodies.Add(L"Body").Attribute(L"id", id).Attribute(L"bodyOrientation", orientation);
    }
    static std::vector<QOBSharedHandle<KARMPBody>> BodiesOf(const KARMPJoint& of)
    {
        std::vector<QOBSharedHandle<KARMPBody>> bodies;
        for (int index = 0; index < of.GetLinkedBodyCount(); ++index)
            of.GetLinkedBody(index, bodies.emplace_back());
        return bodies;
    }
    static std::vector<QOBSharedHandle<KARMPConstraint>> ConstraintsOf(const KARMPJoint& of)
    {
        std::vector<QOBSharedHandle<KARMPConstraint>> constraints;
        for (int index = 0; index < of.GetConstraintCount(); ++index)
            of.GetConstraint(index, constraints.emplace_back());
        return constraints;
    }
    static Orientation::Enum OrientationOf(const KARMPJoint& of, int index)
    {
        QOBSharedHandle<KARMPBody> body;
        auto orientation = Orientation::Out;
        EXPECT_EQ(of.GetLinkedBody(index, body, orientation), KARSuccess);
        return orientation;
    }

    KARMPEntityTable table;
    QOBSharedHandle<KARMPJoint> joint{KARMPRevolute::create(L"joint")};
    QOBSharedHandle<KARMPJoint> read{KARMPRevolute::create(L"")};
    QOBSharedHandle<KARMPBody> a = KARMPBody::create(L"a");
    QOBSharedHandle<KARMPBody> b = KARMPBody::create(L"b");
    QOBSharedHandle<KARMPConstraint> first{KARMP0DoF::create(L"first")};
    QOBSharedHandle<KARMPConstraint> second{KARMP6DoF::create(L"second")};
};

TEST_F(JointTree, BodiesAndConstraintsAreWritten)
{
    LinkAll();
    TestSerializer root;
    EXPECT_EQ(joint->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"Revolute@id"), L"J");
    EXPECT_EQ(root.Count(L"Revolute/Bodies/Body"), 2u);
    EXPECT_EQ(root.Text(L"Revolute/Bodies/Body@id"), L"A");
    EXPECT_EQ(root.Text(L"Revolute/Bodies/Body@name"), L"a");
    EXPECT_EQ(root.Text(L"Revolute/Bodies/Body@bodyOrientation"), L"In");
    EXPECT_EQ(root.Text(L"Revolute/Bodies/Body[1]@id"), L"B");
    EXPECT_EQ(root.Text(L"Revolute/Bodies/Body[1]@bodyOrientation"), L"Out");
    EXPECT_EQ(root.Count(L"Revolute/Constraints/Constraint"), 2u);
    EXPECT_EQ(root.Text(L"Revolute/Constraints/Constraint@id"), L"C1");
    EXPECT_EQ(root.Text(L"Revolute/Constraints/Constraint@name"), L"first");
    EXPECT_EQ(root.Text(L"Revolute/Constraints/Constraint[1]@id"), L"C2");
}

TEST_F(JointTree, AJointWithoutLinksWritesNoContainers)
{
    TestSerializer root;
    EXPECT_EQ(joint->Serialize(&root), KARSuccess);
    EXPECT_FALSE(root.Has(L"Revolute/Bodies"));
    EXPECT_FALSE(root.Has(L"Revolute/Constraints"));
}

TEST_F(JointTree, AnOrientationOutsideTheTableIsWrittenAsOut)
{
    joint->LinkToBody(a, static_cast<Orientation::Enum>(2));
    TestSerializer root;
    EXPECT_EQ(joint->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"Revolute/Bodies/Body@bodyOrientation"), L"Out");
}

TEST_F(JointTree, OrientationsAreWrittenFromTheirVersionOn)
{
    LinkAll();
    TestSerializer before(BeforeOrientations);
    EXPECT_EQ(joint->Serialize(&before), KARSuccess);
    EXPECT_EQ(before.Count(L"Revolute/Bodies/Body"), 2u);
    EXPECT_FALSE(before.Has(L"Revolute/Bodies/Body@bodyOrientation"));
    TestSerializer at(WithOrientations);
    EXPECT_EQ(joint->Serialize(&at), KARSuccess);
    EXPECT_TRUE(at.Has(L"Revolute/Bodies/Body@bodyOrientation"));
}

TEST_F(JointTree, WhatIsWrittenIsReadBack)
{
    LinkAll();
    TestSerializer root;
    joint->Serialize(&root);
    for (const bool asText : {false, true}) {
        const QOBSharedHandle<KARMPJoint> other(KARMPRevolute::create(L""));
        const auto document = TestDeserializer::From(root, {.asText = asText});
        EXPECT_EQ(other->Deserialize(document.get(), table), KARSuccess);
        EXPECT_EQ(other->getEntityName(), L"joint");
        EXPECT_EQ(BodiesOf(*other), (std::vector{a, b}));
        EXPECT_EQ(OrientationOf(*other, 0), Orientation::In);
        EXPECT_EQ(OrientationOf(*other, 1), Orientation::Out);
        EXPECT_EQ(ConstraintsOf(*other), (std::vector{first, second}));
    }
}

TEST_F(JointTree, BeforeTheirVersionOrientationsAreOutWhateverStandsThere)
{
    TestDeserializer element(L"Revolute");
    Fill(element);
    element.At(BeforeOrientations);
    TestDeserializer& bodies = element.Add(L"Bodies");
    AddBody(bodies, L"A", L"In");
    bodies.Reference(L"Body", L"B");
    EXPECT_EQ(read->Deserialize(&element, table), KARSuccess);
    EXPECT_EQ(BodiesOf(*read), (std::vector{a, b}));
    EXPECT_EQ(OrientationOf(*read, 0), Orientation::Out);
    EXPECT_EQ(OrientationOf(*read, 1), Orientation::Out);
}

TEST_F(JointTree, FromTheirVersionOnABodyWithoutOrientationIsReportedAndNotLinked)
{
    TestDeserializer element(L"Revolute");
    Fill(element);
    element.At(WithOrientations);
    TestDeserializer& bodies = element.Add(L"Bodies");
    bodies.Reference(L"Body", L"A");
    AddBody(bodies, L"B", L"In");
    EXPECT_EQ(read->Deserialize(&element, table), KARSuccess);
    EXPECT_EQ(BodiesOf(*read), (std::vector{b}));
    EXPECT_EQ(OrientationOf(*read, 0), Orientation::In);
    ExpectReports(1);
}

TEST_F(JointTree, AnyTextButInReadsAsOut)
{
    for (const std::wstring_view text : {L"Out", L"", L"in", L"IN", L"Inwards", L"1"}) {
        const QOBSharedHandle<KARMPJoint> other(KARMPRevolute::create(L""));
        TestDeserializer element(L"Revolute");
        Fill(element);
        AddBody(element.Add(L"Bodies"), L"A", text);
        EXPECT_EQ(other->Deserialize(&element, table), KARSuccess);
        EXPECT_EQ(OrientationOf(*other, 0), Orientation::Out);
    }
}

TEST_F(JointTree, ABodyWithoutAnIdIsReportedAndSkipped)
{
    TestDeserializer element(L"Revolute");
    Fill(element);
    TestDeserializer& bodies = element.Add(L"Bodies");
    bodies.Add(L"Body").Attribute(L"bodyOrientation", L"In");
    AddBody(bodies, L"B", L"In");
    element.Add(L"Constraints").Add(L"Constraint");
    EXPECT_EQ(read->Deserialize(&element, table), KARSuccess);
    EXPECT_EQ(BodiesOf(*read), (std::vector{b}));
    EXPECT_EQ(read->GetConstraintCount(), 0);
    ExpectReports(2);
}

TEST_F(JointTree, UnknownAndNullTargetsAreSkippedInSilence)
{
    table.Set(L"null", nullptr);
    TestDeserializer element(L"Revolute");
    Fill(element);
    TestDeserializer& bodies = element.Add(L"Bodies");
    // Their orientation is not asked for.
    bodies.Reference(L"Body", L"unknown").Reference(L"Body", L"null");
    AddBody(bodies, L"A", L"Out");
    element.Add(L"Constraints")
        .Reference(L"Constraint", L"unknown")
        .Reference(L"Constraint", L"null")
        .Reference(L"Constraint", L"C2");
    EXPECT_EQ(read->Deserialize(&element, table), KARSuccess);
    EXPECT_EQ(BodiesOf(*read), (std::vector{a}));
    EXPECT_EQ(ConstraintsOf(*read), (std::vector{second}));
}

TEST_F(JointTree, ARepeatedReferenceChangesNothing)
{
    TestDeserializer element(L"Revolute");
    Fill(element);
    TestDeserializer& bodies = element.Add(L"Bodies");
    AddBody(bodies, L"A", L"In");
    AddBody(bodies, L"A", L"Out");
    element.Add(L"Constraints").Reference(L"Constraint", L"C1").Reference(L"Constraint", L"C1");
    EXPECT_EQ(read->Deserialize(&element, table), KARSuccess);
    EXPECT_EQ(BodiesOf(*read), (std::vector{a}));
    EXPECT_EQ(OrientationOf(*read, 0), Orientation::In);
    EXPECT_EQ(ConstraintsOf(*read), (std::vector{first}));
}

TEST_F(JointTree, EmptyContainersLinkNothing)
{
    TestDeserializer element(L"Revolute");
    Fill(element);
    element.Add(L"Bodies");
    element.Add(L"Constraints");
    EXPECT_EQ(read->Deserialize(&element, table), KARSuccess);
    EXPECT_EQ(read->GetLinkedBodyCount(), 0);
    EXPECT_EQ(read->GetConstraintCount(), 0);
}

TEST_F(JointTree, ATargetOfAnotherClassThrows)
{
    TestDeserializer body(L"Revolute");
    Fill(body);
    AddBody(body.Add(L"Bodies"), L"C1", L"In");
    EXPECT_THROW(read->Deserialize(&body, table), QOBEInvalidCast);
    TestDeserializer constraint(L"Revolute");
    Fill(constraint);
    constraint.Add(L"Constraints").Reference(L"Constraint", L"A");
    const QOBSharedHandle<KARMPJoint> other(KARMPRevolute::create(L""));
    EXPECT_THROW(other->Deserialize(&constraint, table), QOBEInvalidCast);
}

TEST_F(JointTree, AMissingOrientationIsFoundBeforeAWrongClass)
{
    TestDeserializer element(L"Revolute");
    Fill(element);
    element.Add(L"Bodies").Reference(L"Body", L"C1");
    EXPECT_EQ(read->Deserialize(&element, table), KARSuccess);
    ExpectReports(1);
}

TEST_F(JointTree, NullArgumentsAreReported)
{
    EXPECT_EQ(joint->Serialize(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(joint->Deserialize(nullptr, table), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(joint->KARMPJoint::Serialize(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(joint->KARMPJoint::Deserialize(nullptr, table), KARFailure);
    ExpectReports(1);
}

TEST_F(JointTree, AFailedAdditionIsReportedAndWritingGoesOn)
{
    LinkAll();
    const std::size_t creations =
        ForEachFailedCreation(WithOrientations, [&](TestSerializer& root, std::size_t failing) {
            const KARStatus status = joint->Serialize(&root);
            EXPECT_EQ(status, failing == 1 ? KARFailure : KARSuccess) << failing;
            // The node reports, and so does the joint.
            ExpectReports(failing == 0 ? 0 : 2);
            // The number of items left of two: none without the container.
            const auto left = [failing](std::size_t container) {
                if (failing == 1 || failing == container)
                    return 0u;
                return failing == container + 1 || failing == container + 2 ? 1u : 2u;
            };
            EXPECT_EQ(root.Count(L"Revolute/Bodies/Body"), left(2)) << failing;
            EXPECT_EQ(root.Count(L"Revolute/Constraints/Constraint"), left(5)) << failing;
        });
    EXPECT_EQ(creations, 7u);
}

// How many of the four links are lost with an item of the tree.
int LinksLostWithout(const std::wstring& item)
{
    if (item == L"/Revolute")
        return 4;
    if (item == L"/Revolute/Bodies" || item == L"/Revolute/Constraints")
        return 2;
    const bool inLink = item.starts_with(L"/Revolute/Bodies/Body") ||
                        item.starts_with(L"/Revolute/Constraints/Constraint");
    return inLink && !item.ends_with(L"@name") ? 1 : 0;
}

TEST_F(JointTree, AnyMissingItemCostsItsLinkAlone)
{
    LinkAll();
    TestSerializer root;
    joint->Serialize(&root);
    // The joint with three attributes, two containers, two bodies with three attributes each and
    // two constraints with two.
    const std::size_t items =
        ForEachMissingItem(root, {}, [&](TestDeserializer& document, const std::wstring& missing) {
            const QOBSharedHandle<KARMPJoint> other(KARMPRevolute::create(L""));
            EXPECT_EQ(other->Deserialize(&document, table),
                      missing == L"/Revolute" ? KARFailure : KARSuccess);
            EXPECT_EQ(4 - other->GetLinkedBodyCount() - other->GetConstraintCount(),
                      LinksLostWithout(missing));
            EXPECT_LE(TakeReports(), 1u);
        });
    EXPECT_EQ(items, 20u);
}

class JointTreeProcess : public JointTree
{};

TEST_F(JointTreeProcess, TheNamesOfBodiesAreWrittenAlsoWhereNamesAreLeftOut)
{
    LinkAll();
    TestSerializer root;
    EXPECT_EQ(joint->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"Revolute/Bodies/Body@name"), L"a");
    EXPECT_FALSE(root.Has(L"Revolute/Constraints/Constraint@name"));
}

} // namespace

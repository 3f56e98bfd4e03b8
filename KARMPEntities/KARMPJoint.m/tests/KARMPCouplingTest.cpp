#include "KARMPBody.h"
#include "KARMPCouplingKinds.h"
#include "KARMPEntityTable.h"
#include "KARMPEquation.h"
#include "KARMPLinearEquation.h"
#include "KARMPPlainConstraints.h"
#include "KARMPScrew.h"
#include "KARMPTestFixture.h"
#include "QOBException.h"
#include "RecordingJointLoader.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

class Coupling : public KARMPTestFixture
{
protected:
    Coupling()
    {
        equation->SetIdentifier(L"E");
        plain->SetIdentifier(L"P");
        table.Set(L"E", equation);
        table.Set(L"P", plain);
    }
    // What stands under an index of a joint's constraints.
    static QOBSharedHandle<KARMPConstraint> At(const KARMPJoint& joint, int index)
    {
        QOBSharedHandle<KARMPConstraint> constraint;
        EXPECT_EQ(joint.GetConstraint(index, constraint), KARSuccess);
        return constraint;
    }
    static void Fill(TestDeserializer& element)
    {
        element.Attribute(L"id", L"G").Attribute(L"name", L"read").Attribute(L"isActive", L"yes");
    }

    KARMPEntityTable table;
    LoaderRecord record;
    QOBSharedHandle<KARMPGear> gear = KARMPGear::create(L"gear");
    QOBSharedHandle<KARMPEquation> equation = KARMPEquation::create(L"equation");
    QOBSharedHandle<KARMPConstraint> plain{KARMP0DoF::create(L"plain")};
    QOBSharedHandle<KARMPEquation> found = equation;
};

TEST_F(Coupling, TheEquationIsTheFirstConstraint)
{
    EXPECT_EQ(gear->SetEquation(equation), KARSuccess);
    found = nullptr;
    EXPECT_EQ(gear->GetEquation(found), KARSuccess);
    EXPECT_EQ(found, equation);
    EXPECT_EQ(At(*gear, 0), equation);
    EXPECT_EQ(gear->GetConstraintCount(), 1);
}

TEST_F(Coupling, AnEmptyCouplingHasNoEquationAndWritesNone)
{
    EXPECT_EQ(gear->GetEquation(found), KARFailure);
    EXPECT_FALSE(found);
    TestSerializer root;
    EXPECT_EQ(gear->Serialize(&root), KARSuccess);
    EXPECT_TRUE(root.Has(L"Gear"));
    EXPECT_FALSE(root.Has(L"Gear/Equation"));
}

TEST_F(Coupling, AConstraintThatIsNoEquationIsNotHandedOut)
{
    gear->AddConstraint(plain);
    EXPECT_EQ(gear->GetEquation(found), KARFailure);
    EXPECT_FALSE(found);
    gear->AddConstraint(equation);
    EXPECT_EQ(gear->GetEquation(found), KARFailure);
    EXPECT_FALSE(found);
}

TEST_F(Coupling, ASecondEquationIsAcceptedAndNotStored)
{
    gear->SetEquation(equation);
    const auto second = KARMPEquation::create(L"second");
    EXPECT_EQ(gear->SetEquation(second), KARSuccess);
    EXPECT_EQ(gear->GetEquation(found), KARSuccess);
    EXPECT_EQ(found, equation);
    EXPECT_EQ(gear->GetConstraintCount(), 1);
    EXPECT_EQ(gear->SetEquation(nullptr), KARSuccess);
    EXPECT_EQ(gear->GetConstraintCount(), 1);
}

TEST_F(Coupling, AnEquationGoesInFrontOfAnotherConstraintAndStillFails)
{
    gear->AddConstraint(plain);
    EXPECT_EQ(gear->SetEquation(equation), KARFailure);
    EXPECT_EQ(gear->GetEquation(found), KARSuccess);
    EXPECT_EQ(found, equation);
    ASSERT_EQ(gear->GetConstraintCount(), 2);
    EXPECT_EQ(At(*gear, 1), plain);
}

TEST_F(Coupling, AnEquationBehindAnotherConstraintIsListedInFrontOnceMore)
{
    gear->AddConstraint(plain);
    gear->AddConstraint(equation);
    EXPECT_EQ(gear->SetEquation(equation), KARFailure);
    ASSERT_EQ(gear->GetConstraintCount(), 3);
    EXPECT_EQ(At(*gear, 0), equation);
    EXPECT_EQ(At(*gear, 1), plain);
    EXPECT_EQ(At(*gear, 2), equation);
}

TEST_F(Coupling, ANullEquationIsReported)
{
    EXPECT_EQ(gear->SetEquation(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(gear->GetConstraintCount(), 0);
    gear->AddConstraint(plain);
    EXPECT_EQ(gear->SetEquation(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(gear->GetConstraintCount(), 1);
}

TEST_F(Coupling, AKindOfEquationIsAnEquation)
{
    const auto linear = KARMPLinearEquation::create(L"linear");
    gear->AddConstraint(linear);
    EXPECT_EQ(gear->GetEquation(found), KARSuccess);
    EXPECT_EQ(found, linear);
}

TEST_F(Coupling, ACouplingHasNoFramesOfItsOwn)
{
    const auto expectNone = [this](auto joint) {
        auto* loader = new RecordingJointLoader(record);
        loader->frames.resize(3);
        joint->SetLoader(loader);
        EXPECT_EQ(joint->GetFrameCount(), 0);
        std::vector<KARMathAxis> frames(1);
        frames[0].SetOrigin({1.0, 2.0, 3.0});
        const auto before = frames;
        EXPECT_EQ(joint->GetFrames(frames), KARNotImplemented);
        EXPECT_EQ(joint->GetFrame(0, frames[0]), KARNotImplemented);
        EXPECT_EQ(frames, before);
        EXPECT_TRUE(record.calls.empty());
    };
    expectNone(gear);
    expectNone(KARMPRack::create(L"rack"));
    expectNone(KARMPCable::create(L"cable"));
}

TEST_F(Coupling, TheJointsFormsOfTheFramesStay)
{
    auto* loader = new RecordingJointLoader(record);
    loader->frames.resize(2);
    gear->SetLoader(loader);
    std::vector<KARMathAxis> frames;
    EXPECT_EQ(gear->GetFrames(frames, 0, 0), KARSuccess);
    EXPECT_EQ(frames.size(), 2u);
    KARMathAxis frame;
    EXPECT_EQ(gear->GetFrame(1, frame, 0), KARSuccess);
    EXPECT_EQ(gear->GetFrame(2, frame, 0), KARFailure);
}

TEST_F(Coupling, AScrewHasTheFramesOfItsLoader)
{
    const auto screw = KARMPScrew::create(L"screw");
    auto* loader = new RecordingJointLoader(record);
    loader->frames.resize(2);
    screw->SetLoader(loader);
    EXPECT_EQ(screw->GetFrameCount(), 2);
}

TEST_F(Coupling, TheEquationIsWrittenByItselfAndAmongTheConstraints)
{
    gear->SetEquation(equation);
    gear->AddConstraint(plain);
    TestSerializer root;
    EXPECT_EQ(gear->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"Gear/Equation@id"), L"E");
    EXPECT_EQ(root.Text(L"Gear/Equation@name"), L"equation");
    EXPECT_EQ(root.Child(0).Child(0).GetId(), L"Equation");
    EXPECT_EQ(root.Count(L"Gear/Constraints/Constraint"), 2u);
    EXPECT_EQ(root.Text(L"Gear/Constraints/Constraint@id"), L"E");
    EXPECT_EQ(root.Text(L"Gear/Constraints/Constraint[1]@id"), L"P");
}

TEST_F(Coupling, TheEquationIsReadOnce)
{
    gear->SetEquation(equation);
    gear->AddConstraint(plain);
    TestSerializer root;
    gear->Serialize(&root);
    const auto read = KARMPGear::create(L"");
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), table), KARSuccess);
    ASSERT_EQ(read->GetConstraintCount(), 2);
    EXPECT_EQ(At(*read, 0), equation);
    EXPECT_EQ(At(*read, 1), plain);
}

TEST_F(Coupling, TheEquationComesFirstWhereverTheConstraintsNameIt)
{
    TestDeserializer element(L"Gear");
    Fill(element);
    element.Add(L"Constraints").Reference(L"Constraint", L"P").Reference(L"Constraint", L"E");
    element.Reference(L"Equation", L"E");
    EXPECT_EQ(gear->Deserialize(&element, table), KARSuccess);
    ASSERT_EQ(gear->GetConstraintCount(), 2);
    EXPECT_EQ(At(*gear, 0), equation);
    EXPECT_EQ(At(*gear, 1), plain);
}

TEST_F(Coupling, AnEquationThatCannotBeResolvedIsSkipped)
{
    table.Set(L"null", nullptr);
    for (const wchar_t* id : {L"unknown", L"null"}) {
        const auto read = KARMPGear::create(L"");
        TestDeserializer element(L"Gear");
        Fill(element);
        element.Reference(L"Equation", id);
        EXPECT_EQ(read->Deserialize(&element, table), KARSuccess);
        EXPECT_EQ(read->GetConstraintCount(), 0);
    }
}

TEST_F(Coupling, AnEquationWithoutAnIdIsReportedAndSkipped)
{
    TestDeserializer element(L"Gear");
    Fill(element);
    element.Add(L"Equation");
    EXPECT_EQ(gear->Deserialize(&element, table), KARSuccess);
    EXPECT_EQ(gear->getEntityName(), L"read");
    EXPECT_EQ(gear->GetConstraintCount(), 0);
    ExpectReports(1);
}

TEST_F(Coupling, AnEquationReferringToAnotherClassThrows)
{
    TestDeserializer element(L"Gear");
    Fill(element);
    element.Reference(L"Equation", L"P");
    EXPECT_THROW(gear->Deserialize(&element, table), QOBEInvalidCast);
}

TEST_F(Coupling, AnEquationThatComesTooLateIsReportedAndPutInFront)
{
    gear->AddConstraint(plain);
    TestDeserializer element(L"Gear");
    Fill(element);
    element.Reference(L"Equation", L"E");
    EXPECT_EQ(gear->Deserialize(&element, table), KARSuccess);
    EXPECT_EQ(At(*gear, 0), equation);
    ExpectReports(1);
}

TEST_F(Coupling, NullArgumentsOfTheBaseAreReported)
{
    EXPECT_EQ(gear->KARMPCoupling::Serialize(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(gear->KARMPCoupling::Deserialize(nullptr, table), KARFailure);
    ExpectReports(1);
}

TEST_F(Coupling, AFailedAdditionIsReportedAndWritingGoesOn)
{
    gear->SetEquation(equation);
    const std::size_t creations =
        ForEachFailedCreation(L"R2018.1", [&](TestSerializer& root, std::size_t failing) {
            EXPECT_EQ(gear->Serialize(&root), failing == 1 ? KARFailure : KARSuccess);
            ExpectReports(failing == 0 ? 0 : 2);
            EXPECT_EQ(root.Has(L"Gear/Equation"), failing != 1 && failing != 2);
            EXPECT_EQ(root.Has(L"Gear/Constraints/Constraint"), failing == 0 || failing == 2);
        });
    EXPECT_EQ(creations, 4u);
}

TEST_F(Coupling, AScrewWritesNoEquationAndTakesOneWhereItStands)
{
    const auto screw = KARMPScrew::create(L"screw");
    screw->SetEquation(equation);
    TestSerializer root;
    EXPECT_EQ(screw->Serialize(&root), KARSuccess);
    EXPECT_FALSE(root.Has(L"Screw/Equation"));
    EXPECT_EQ(root.Text(L"Screw/Constraints/Constraint@id"), L"E");

    TestDeserializer element(L"Screw");
    Fill(element);
    element.Add(L"Constraints").Reference(L"Constraint", L"P");
    element.Reference(L"Equation", L"E");
    const auto read = KARMPScrew::create(L"");
    EXPECT_EQ(read->Deserialize(&element, table), KARSuccess);
    EXPECT_EQ(read->GetEquation(found), KARSuccess);
    EXPECT_EQ(found, equation);
    EXPECT_EQ(read->GetConstraintCount(), 2);
}

TEST_F(Coupling, ACopyHasNoEquation)
{
    gear->SetEquation(equation);
    const auto copy = KARMPGear::clone(gear, QOBDynamicObject::CopyDeep);
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->GetEquation(found), KARFailure);
    EXPECT_EQ(gear->GetConstraintCount(), 1);
}

} // namespace

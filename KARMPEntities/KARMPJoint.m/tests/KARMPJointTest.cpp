#include "KARMPJoint.h"

#include "AllocationCounter.h"
#include "KARMPBody.h"
#include "KARMPConstraint.h"
#include "KARMPJointKinds.h"
#include "KARMPPlainConstraints.h"
#include "KARMPTestFixture.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"
#include "RecordingJointLoader.h"

#include <new>
#include <utility>
#include <vector>

namespace {

using Orientation = KARMPBodyOrientation;
using Type = KARMPSolverEquivalentJointType;

// A joint whose inner steps are open, with a count of those that are alive.
class OpenJoint : public KARMPRevolute
{
public:
    OpenJoint() { ++s_alive; }
    ~OpenJoint() override { --s_alive; }

    using KARMPJoint::ClearContainers;
    using KARMPJoint::InsertConstraint;
    using KARMPJoint::RemoveParent;
    using KARMPRevolute::GetLoader;

    KARStatus GetLoader(KARIMPEntityLoader*& loader) const override
    {
        return fetchFails ? KARFailure : KARMPRevolute::GetLoader(loader);
    }
    static int Alive() { return s_alive; }

    bool fetchFails = false;

private:
    static inline int s_alive = 0;
};

// A joint whose loader is another one than that attached to it.
class LendingJoint : public KARMPRevolute
{
public:
    using KARMPRevolute::GetLoader;
    KARStatus GetLoader(KARIMPJointLoader*& loader) const override
    {
        loader = lent;
        return KARSuccess;
    }

    KARIMPJointLoader* lent = nullptr;
};

class Joint : public KARMPTestFixture
{
protected:
    RecordingJointLoader* GiveLoader()
    {
        auto* loader = new RecordingJointLoader(record);
        joint->SetLoader(loader);
        return loader;
    }
    std::vector<QOBSharedHandle<KARMPBody>> Bodies() const
    {
        std::vector<QOBSharedHandle<KARMPBody>> bodies;
        for (int index = 0; index < joint->GetLinkedBodyCount(); ++index)
            joint->GetLinkedBody(index, bodies.emplace_back());
        return bodies;
    }
    std::vector<QOBSharedHandle<KARMPConstraint>> Constraints() const
    {
        std::vector<QOBSharedHandle<KARMPConstraint>> constraints;
        for (int index = 0; index < joint->GetConstraintCount(); ++index)
            joint->GetConstraint(index, constraints.emplace_back());
        return constraints;
    }
    // Both sides of all links.
    void LinkAll()
    {
        for (const auto& body : {a, b}) {
            joint->LinkToBody(body, Orientation::In);
            body->LinkToJoint(joint);
        }
        joint->AddConstraint(constraint);
        constraint->SetJoint(joint);
    }

    LoaderRecord record;
    QOBSharedHandle<OpenJoint> joint{new OpenJoint};
    QOBSharedHandle<KARMPBody> a = KARMPBody::create(L"a");
    QOBSharedHandle<KARMPBody> b = KARMPBody::create(L"b");
    QOBSharedHandle<KARMPBody> c = KARMPBody::create(L"c");
    QOBSharedHandle<KARMPConstraint> constraint{KARMP0DoF::create(L"constraint")};
};

TEST_F(Joint, BodiesAreListedInTheOrderOfLinkingWithTheirOrientations)
{
    EXPECT_EQ(joint->LinkToBody(a, Orientation::In), KARSuccess);
    EXPECT_EQ(joint->LinkToBody(b, Orientation::Out), KARSuccess);
    EXPECT_EQ(joint->GetLinkedBodyCount(), 2);
    QOBSharedHandle<KARMPBody> body;
    auto orientation = Orientation::Out;
    EXPECT_EQ(joint->GetLinkedBody(0, body, orientation), KARSuccess);
    EXPECT_EQ(body, a);
    EXPECT_EQ(orientation, Orientation::In);
    EXPECT_EQ(joint->GetLinkedBody(1, body, orientation), KARSuccess);
    EXPECT_EQ(body, b);
    EXPECT_EQ(orientation, Orientation::Out);
    EXPECT_EQ(joint->GetLinkedBody(0, body), KARSuccess);
    EXPECT_EQ(body, a);
}

TEST_F(Joint, LinkingABodyLeavesTheBodysOwnListAlone)
{
    joint->LinkToBody(a, Orientation::In);
    EXPECT_EQ(a->GetLinkedJointCount(), 0);
}

TEST_F(Joint, SecondLinkOfABodyKeepsItsOrientation)
{
    joint->LinkToBody(a, Orientation::In);
    EXPECT_EQ(joint->LinkToBody(a, Orientation::Out), KARUnchanged);
    EXPECT_EQ(joint->GetLinkedBodyCount(), 1);
    QOBSharedHandle<KARMPBody> body;
    auto orientation = Orientation::Out;
    joint->GetLinkedBody(0, body, orientation);
    EXPECT_EQ(orientation, Orientation::In);
}

TEST_F(Joint, NullBodiesAndConstraintsAreReported)
{
    EXPECT_EQ(joint->LinkToBody(nullptr, Orientation::In), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(joint->RemoveBody(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(joint->AddConstraint(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(joint->RemoveConstraint(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(joint->InsertConstraint(0, nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(joint->GetLinkedBodyCount(), 0);
    EXPECT_EQ(joint->GetConstraintCount(), 0);
}

TEST_F(Joint, ARemovedBodyTakesItsOrientationAlong)
{
    joint->LinkToBody(a, Orientation::Out);
    joint->LinkToBody(b, Orientation::In);
    joint->LinkToBody(c, Orientation::Out);
    EXPECT_EQ(joint->RemoveBody(a), KARSuccess);
    EXPECT_EQ(Bodies(), (std::vector{b, c}));
    QOBSharedHandle<KARMPBody> body;
    auto orientation = Orientation::Out;
    joint->GetLinkedBody(0, body, orientation);
    EXPECT_EQ(orientation, Orientation::In);
    joint->GetLinkedBody(1, body, orientation);
    EXPECT_EQ(orientation, Orientation::Out);
    EXPECT_EQ(joint->RemoveBody(a), KARUnchanged);
    EXPECT_EQ(joint->GetLinkedBodyCount(), 2);
}

TEST_F(Joint, OrientationsFollowTheirBodiesThroughManyRemovals)
{
    std::vector<QOBSharedHandle<KARMPBody>> bodies;
    for (int index = 0; index < 300; ++index) {
        bodies.push_back(KARMPBody::create(L"body"));
        joint->LinkToBody(bodies.back(), index % 3 == 0 ? Orientation::In : Orientation::Out);
    }
    for (std::size_t index = 0; index < bodies.size(); index += 2)
        ASSERT_EQ(joint->RemoveBody(bodies[index]), KARSuccess);
    ASSERT_EQ(joint->GetLinkedBodyCount(), 150);
    for (int index = 0; index < 150; ++index) {
        const int number = 2 * index + 1;
        QOBSharedHandle<KARMPBody> body;
        auto orientation = Orientation::Out;
        ASSERT_EQ(joint->GetLinkedBody(index, body, orientation), KARSuccess);
        EXPECT_EQ(body, bodies[static_cast<std::size_t>(number)]);
        EXPECT_EQ(orientation, number % 3 == 0 ? Orientation::In : Orientation::Out);
    }
}

TEST_F(Joint, ABodyIsLinkedWithItsOrientationOrNotAtAllWhenMemoryEnds)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "allocations cannot fail in this build";
    std::size_t failures = 0;
    for (int index = 0; index < 80; ++index) {
        const auto given = index % 3 == 0 ? Orientation::In : Orientation::Out;
        const auto body = KARMPBody::create(L"body");
        bool linked = false;
        for (std::size_t failing = 1; !linked; ++failing) {
            AllocationCounter allocations;
            allocations.FailAllocation(failing);
            try {
                ASSERT_EQ(joint->LinkToBody(body, given), KARSuccess);
                linked = true;
            } catch (const std::bad_alloc&) {
                ++failures;
            }
            ASSERT_EQ(joint->GetLinkedBodyCount(), linked ? index + 1 : index);
        }
        QOBSharedHandle<KARMPBody> found;
        auto orientation = Orientation::Out;
        ASSERT_EQ(joint->GetLinkedBody(index, found, orientation), KARSuccess);
        EXPECT_EQ(found, body);
        EXPECT_EQ(orientation, given);
    }
    EXPECT_GT(failures, 10U);
}

TEST_F(Joint, AnIndexOutsideTheListsGivesANullHandle)
{
    joint->LinkToBody(a, Orientation::In);
    joint->AddConstraint(constraint);
    for (const int index : {-1, 1}) {
        QOBSharedHandle<KARMPBody> body = b;
        EXPECT_EQ(joint->GetLinkedBody(index, body), KARFailure);
        EXPECT_FALSE(body);
        body = b;
        auto orientation = Orientation::In;
        EXPECT_EQ(joint->GetLinkedBody(index, body, orientation), KARFailure);
        EXPECT_FALSE(body);
        QOBSharedHandle<KARMPConstraint> found = constraint;
        EXPECT_EQ(joint->GetConstraint(index, found), KARFailure);
        EXPECT_FALSE(found);
    }
}

TEST_F(Joint, ConstraintsAreListedOnceAndInOrder)
{
    const QOBSharedHandle<KARMPConstraint> second(KARMP6DoF::create(L"second"));
    EXPECT_EQ(joint->AddConstraint(constraint), KARSuccess);
    EXPECT_EQ(joint->AddConstraint(second), KARSuccess);
    EXPECT_EQ(joint->AddConstraint(constraint), KARUnchanged);
    EXPECT_EQ(Constraints(), (std::vector{constraint, second}));
    EXPECT_EQ(joint->RemoveConstraint(constraint), KARSuccess);
    EXPECT_EQ(joint->RemoveConstraint(constraint), KARUnchanged);
    EXPECT_EQ(Constraints(), (std::vector{second}));
}

TEST_F(Joint, InsertingAConstraintDoesNotLookForDuplicates)
{
    const QOBSharedHandle<KARMPConstraint> second(KARMP6DoF::create(L"second"));
    joint->AddConstraint(constraint);
    joint->AddConstraint(second);
    EXPECT_EQ(joint->InsertConstraint(1, second), KARSuccess);
    EXPECT_EQ(Constraints(), (std::vector{constraint, second, second}));
    EXPECT_EQ(joint->RemoveConstraint(second), KARSuccess);
    EXPECT_EQ(Constraints(), (std::vector{constraint, second}));
}

TEST_F(Joint, LoaderOfAnotherInterfaceCountsAsNone)
{
    KARIMPJointLoader* loader = nullptr;
    EXPECT_EQ(joint->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr);
    joint->SetLoader(new RecordingEntityLoader(record));
    EXPECT_EQ(joint->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr);
}

TEST_F(Joint, TheLoaderIsHandedOutAsAJoints)
{
    auto* given = GiveLoader();
    KARIMPJointLoader* loader = nullptr;
    EXPECT_EQ(joint->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, given);
}

TEST_F(Joint, WithoutALoaderTheKindStaysAndIsUnchanged)
{
    auto type = Type::Rigid;
    EXPECT_EQ(joint->GetSolverEquivalentJointType(type), KARUnchanged);
    EXPECT_EQ(type, Type::Rigid);
}

TEST_F(Joint, WithoutALoaderTheSecondReadingOfTheKindIsReported)
{
    auto type = Type::Rigid;
    EXPECT_EQ(joint->GetSolverEquivalentJointType2(type), KARFailure);
    EXPECT_EQ(type, Type::Rigid);
    ExpectReports(1);
}

TEST_F(Joint, TheTwoReadingsOfTheKindGoToTheLoader)
{
    auto* loader = GiveLoader();
    loader->type = Type::Cylindrical;
    loader->type2 = Type::Screw;
    record.answer = 7;
    auto type = Type::Rigid;
    EXPECT_EQ(joint->GetSolverEquivalentJointType(type), 7);
    EXPECT_EQ(type, Type::Cylindrical);
    EXPECT_EQ(joint->GetSolverEquivalentJointType2(type), 7);
    EXPECT_EQ(type, Type::Screw);
    EXPECT_EQ(record.calls, (std::vector<std::string>{"ReadSolverEquivalentJointType",
                                                      "ReadSolverEquivalentJointType2"}));
}

TEST_F(Joint, TheLoaderThatAJointHandsOutIsTheOneThatIsAsked)
{
    RecordingJointLoader loader(record);
    loader.frames.emplace_back();
    auto* const lending = new LendingJoint;
    const QOBSharedHandle<KARMPJoint> handle(lending);
    lending->lent = &loader;
    auto type = Type::Rigid;
    EXPECT_EQ(lending->GetSolverEquivalentJointType(type), KARSuccess);
    EXPECT_EQ(type, loader.type);
    EXPECT_EQ(lending->GetSolverEquivalentJointType2(type), KARSuccess);
    EXPECT_EQ(type, loader.type2);
    EXPECT_EQ(lending->GetFrameCount(), 1);
    std::vector<KARMathAxis> frames;
    EXPECT_EQ(lending->GetFrames(frames, 0, 1), KARSuccess);
    EXPECT_EQ(frames, loader.frames);
}

TEST_F(Joint, AStoredKindIsNotWhatTheGettersGive)
{
    auto stored = Type::Spherical;
    EXPECT_EQ(joint->SetSolverEquivalentJointType(stored), KARSuccess);
    auto type = Type::Rigid;
    EXPECT_EQ(joint->GetSolverEquivalentJointType(type), KARUnchanged);
    EXPECT_EQ(type, Type::Rigid);
    GiveLoader()->type = Type::Screw;
    EXPECT_EQ(joint->GetSolverEquivalentJointType(type), KARSuccess);
    EXPECT_EQ(type, Type::Screw);
}

TEST_F(Joint, AFailingFetchOfTheLoaderIsReportedByEachQuestion)
{
    joint->fetchFails = true;
    auto type = Type::Rigid;
    KARIMPJointLoader* loader = nullptr;
    EXPECT_EQ(joint->GetLoader(loader), KARFailure);
    ExpectReports(1);
    // The fetch reports, and so does who asked for it.
    EXPECT_EQ(joint->GetSolverEquivalentJointType(type), KARFailure);
    ExpectReports(2);
    EXPECT_EQ(joint->GetSolverEquivalentJointType2(type), KARFailure);
    ExpectReports(2);
    std::vector<KARMathAxis> frames;
    EXPECT_EQ(joint->GetFrames(frames, 0, 0), KARFailure);
    ExpectReports(2);
    EXPECT_EQ(type, Type::Rigid);
}

TEST_F(Joint, WithoutALoaderThereAreNoFramesToAskFor)
{
    std::vector<KARMathAxis> frames;
    EXPECT_EQ(joint->GetFrames(frames, 0, 0), KARUnchanged);
    EXPECT_EQ(joint->GetFrames(frames, 1, 0), KARUnchanged);
    EXPECT_TRUE(frames.empty());
    EXPECT_EQ(joint->GetFrameCount(), 0);
    KARMathAxis frame;
    EXPECT_EQ(joint->GetFrame(0, frame, 0), KARFailure);
}

TEST_F(Joint, FramesComeFromTheLoaderAsTheyAreWhateverTheCoordinatesAskedFor)
{
    auto* loader = GiveLoader();
    loader->frames.resize(2);
    loader->frames[1].SetOrigin({1.0, 2.0, 3.0});
    KARMathTransformation away(KARMathVector(5.0, 0.0, 0.0));
    for (const auto& body : {a, b}) {
        body->SetPosition(away, 0);
        joint->LinkToBody(body, Orientation::In);
    }
    for (const bool local : {false, true}) {
        std::vector<KARMathAxis> frames;
        EXPECT_EQ(joint->GetFrames(frames, local, 0), KARSuccess);
        EXPECT_EQ(frames, loader->frames);
    }
    record.answer = KARFailure;
    std::vector<KARMathAxis> frames;
    EXPECT_EQ(joint->GetFrames(frames, 0, 0), KARFailure);
}

TEST_F(Joint, FramesAreCountedAndHandedOutOneByOne)
{
    auto* loader = GiveLoader();
    loader->frames.resize(2);
    loader->frames[1].SetOrigin({1.0, 2.0, 3.0});
    // The status of the loader is not looked at.
    record.answer = KARFailure;
    EXPECT_EQ(joint->GetFrameCount(), 2);
    KARMathAxis frame;
    EXPECT_EQ(joint->GetFrame(1, frame, 1), KARSuccess);
    EXPECT_EQ(frame, loader->frames[1]);
    EXPECT_EQ(joint->GetFrame(0, frame, 0), KARSuccess);
    EXPECT_EQ(frame, KARMathAxis());
}

TEST_F(Joint, AFrameOutsideTheLoadersIsAFailure)
{
    GiveLoader()->frames.resize(2);
    KARMathAxis frame;
    frame.SetOrigin({1.0, 2.0, 3.0});
    const KARMathAxis before = frame;
    EXPECT_EQ(joint->GetFrame(2, frame, 0), KARFailure);
    EXPECT_EQ(joint->GetFrame(-1, frame, 0), KARFailure);
    EXPECT_EQ(frame, before);
}

// A joint that gives its frames itself and notes how it was asked for them.
class GivingJoint : public KARMPRevolute
{
public:
    KARStatus GetFrames(std::vector<KARMathAxis>& given, unsigned char local,
                        unsigned char compute) const override
    {
        asked.emplace_back(local, compute);
        given.resize(3);
        return KARFailure;
    }

    mutable std::vector<std::pair<int, int>> asked;
};

TEST_F(Joint, SingleFramesAreThoseThatTheJointsOwnKindGives)
{
    const QOBSharedHandle<GivingJoint> giving(new GivingJoint);
    KARMathAxis frame;
    EXPECT_EQ(giving->GetFrameCount(), 3);
    EXPECT_EQ(giving->GetFrame(2, frame, 1), KARSuccess);
    EXPECT_EQ(giving->GetFrame(3, frame, 0), KARFailure);
    EXPECT_EQ(giving->asked, (std::vector<std::pair<int, int>>{{0, 0}, {1, 0}, {0, 0}}));
}

TEST_F(Joint, ACopyHasTheNameAndNoLinks)
{
    joint->setEntityName(L"hinge");
    joint->LinkToBody(a, Orientation::In);
    joint->AddConstraint(constraint);
    GiveLoader();
    const auto copy = KARMPRevolute::clone(joint, QOBDynamicObject::CopyDeep);
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->getEntityName(), L"hinge");
    EXPECT_EQ(copy->GetLinkedBodyCount(), 0);
    EXPECT_EQ(copy->GetConstraintCount(), 0);
    KARIMPJointLoader* loader = nullptr;
    EXPECT_EQ(copy->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr);
    EXPECT_EQ(joint->GetLinkedBodyCount(), 1);
}

TEST_F(Joint, ADestroyedJointIsTakenOutOfItsBodiesAndConstraints)
{
    LinkAll();
    const QOBSharedHandle<OpenJoint> kept = joint;
    QOBSharedHandle<KARMPJoint> gone = joint;
    KARMPJoint::destroy(gone);
    EXPECT_FALSE(gone);
    EXPECT_EQ(a->GetLinkedJointCount(), 0);
    EXPECT_EQ(b->GetLinkedJointCount(), 0);
    QOBSharedHandle<KARMPJoint> owner;
    EXPECT_EQ(constraint->GetJoint(owner), KARFailure);
    EXPECT_EQ(kept->GetLinkedBodyCount(), 0);
    EXPECT_EQ(kept->GetConstraintCount(), 0);
}

TEST_F(Joint, DestroyedBodiesAndConstraintsAreTakenOutOfTheJoint)
{
    LinkAll();
    QOBSharedHandle<KARMPBody> body = a;
    KARMPBody::destroy(body);
    EXPECT_EQ(Bodies(), (std::vector{b}));
    QOBSharedHandle<KARMPConstraint> used = constraint;
    KARMPConstraint::destroy(used);
    EXPECT_EQ(joint->GetConstraintCount(), 0);
    EXPECT_EQ(b->RemoveJoint(joint), KARSuccess);
}

TEST_F(Joint, LeavingTheBodiesGivesTheStatusOfTheLastOne)
{
    LinkAll();
    EXPECT_EQ(joint->RemoveParent(), KARSuccess);
    // Nobody knows the joint any more.
    EXPECT_EQ(joint->RemoveParent(), KARUnchanged);
    a->LinkToJoint(joint);
    EXPECT_EQ(joint->RemoveParent(), KARUnchanged);
    b->LinkToJoint(joint);
    EXPECT_EQ(joint->RemoveParent(), KARSuccess);
    EXPECT_EQ(joint->GetLinkedBodyCount(), 2);
}

TEST_F(Joint, WithoutBodiesLeavingGivesTheStatusOfTheLastConstraint)
{
    EXPECT_EQ(joint->RemoveParent(), KARSuccess);
    joint->AddConstraint(constraint);
    EXPECT_EQ(joint->RemoveParent(), KARUnchanged);
    constraint->SetJoint(joint);
    EXPECT_EQ(joint->RemoveParent(), KARSuccess);
}

TEST_F(Joint, ClearedContainersHoldNoOrientationsEither)
{
    joint->LinkToBody(a, Orientation::In);
    joint->AddConstraint(constraint);
    joint->ClearContainers();
    EXPECT_EQ(joint->GetLinkedBodyCount(), 0);
    EXPECT_EQ(joint->GetConstraintCount(), 0);
    joint->LinkToBody(b, Orientation::Out);
    QOBSharedHandle<KARMPBody> body;
    auto orientation = Orientation::In;
    EXPECT_EQ(joint->GetLinkedBody(0, body, orientation), KARSuccess);
    EXPECT_EQ(orientation, Orientation::Out);
}

TEST_F(Joint, AWorldThatGoesFreesItsJoints)
{
    ASSERT_EQ(OpenJoint::Alive(), 1);
    {
        const auto basic = QOBBasicWorld::create(L"world");
        const auto world = KARMPWorld::create(basic);
        LinkAll();
        GiveLoader();
        for (const QOBSharedHandle<QOBBasicEntity>& entity :
             {QOBSharedHandle<QOBBasicEntity>(joint), QOBSharedHandle<QOBBasicEntity>(a),
              QOBSharedHandle<QOBBasicEntity>(b), QOBSharedHandle<QOBBasicEntity>(constraint)})
            basic->addLogicalChild(entity);
        joint = nullptr;
        EXPECT_EQ(OpenJoint::Alive(), 1);
    }
    EXPECT_EQ(OpenJoint::Alive(), 0);
    EXPECT_EQ(record.deleted, 1);
}

} // namespace

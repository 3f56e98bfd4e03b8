#include "KARMPJoint2D.h"

#include "KARMPBody2D.h"
#include "KARMPJointKinds.h"
#include "KARMPPlainConstraints.h"
#include "KARMPTestFixture.h"
#include "KARMPUserDefined2D.h"
#include "KARMPWorld.h"
#include "KARMathAxis.h"
#include "QOBBasicWorld.h"
#include "RecordingJoint2DLoader.h"
#include "RecordingJointLoader.h"
#include "VirtualSlot.h"

#include <memory>
#include <vector>

namespace {

using Orientation = KARMPBodyOrientation;
using Type = KARMPSolverEquivalentJointType;

// A planar joint whose inner steps are open, with a count of those that are alive.
class OpenPlanarJoint : public KARMPUserDefined2D
{
public:
    OpenPlanarJoint() { ++s_alive; }
    ~OpenPlanarJoint() override { --s_alive; }

    using KARMPJoint2D::ClearContainers;
    using KARMPJoint2D::InsertConstraint;
    using KARMPJoint2D::RemoveParent;
    using KARMPUserDefined2D::GetLoader;

    KARStatus GetLoader(KARIMPEntityLoader*& loader) const override
    {
        return fetchFails ? KARFailure : KARMPUserDefined2D::GetLoader(loader);
    }
    static int Alive() { return s_alive; }

    bool fetchFails = false;

private:
    static inline int s_alive = 0;
};

class PlanarJoint : public KARMPTestFixture
{
protected:
    // Links of both sides hold one another.
    ~PlanarJoint() override
    {
        if (joint)
            joint->ClearContainers();
    }
    RecordingJoint2DLoader* GiveLoader()
    {
        auto* loader = new RecordingJoint2DLoader(record);
        joint->SetLoader(loader);
        return loader;
    }
    static std::vector<QOBSharedHandle<KARMPBody2D>> BodiesOf(const KARMPJoint2D& of)
    {
        std::vector<QOBSharedHandle<KARMPBody2D>> bodies;
        for (int index = 0; index < of.GetLinkedBodyCount(); ++index)
            of.GetLinkedBody(index, bodies.emplace_back());
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
    QOBSharedHandle<OpenPlanarJoint> joint{new OpenPlanarJoint};
    QOBSharedHandle<KARMPBody2D> a = KARMPBody2D::create(L"a");
    QOBSharedHandle<KARMPBody2D> b = KARMPBody2D::create(L"b");
    QOBSharedHandle<KARMPBody2D> c = KARMPBody2D::create(L"c");
    QOBSharedHandle<KARMPConstraint> constraint{KARMP0DoF::create(L"constraint")};
};

TEST_F(PlanarJoint, BodiesAreListedOnceInTheOrderOfLinkingWithTheirOrientations)
{
    EXPECT_EQ(joint->LinkToBody(a, Orientation::In), KARSuccess);
    EXPECT_EQ(joint->LinkToBody(b, Orientation::Out), KARSuccess);
    EXPECT_EQ(joint->LinkToBody(a, Orientation::Out), KARUnchanged);
    EXPECT_EQ(BodiesOf(*joint), (std::vector{a, b}));
    QOBSharedHandle<KARMPBody2D> body;
    auto orientation = Orientation::Out;
    EXPECT_EQ(joint->GetLinkedBody(0, body, orientation), KARSuccess);
    EXPECT_EQ(body, a);
    EXPECT_EQ(orientation, Orientation::In);
    EXPECT_EQ(joint->GetLinkedBody(1, body, orientation), KARSuccess);
    EXPECT_EQ(body, b);
    EXPECT_EQ(orientation, Orientation::Out);
    EXPECT_EQ(a->GetLinkedJointCount(), 0) << "the body's own list is the caller's business";
}

TEST_F(PlanarJoint, ARemovedBodyTakesItsOrientationAlong)
{
    joint->LinkToBody(a, Orientation::Out);
    joint->LinkToBody(b, Orientation::In);
    joint->LinkToBody(c, Orientation::Out);
    EXPECT_EQ(joint->RemoveBody(a), KARSuccess);
    EXPECT_EQ(joint->RemoveBody(a), KARUnchanged);
    EXPECT_EQ(BodiesOf(*joint), (std::vector{b, c}));
    QOBSharedHandle<KARMPBody2D> body;
    auto orientation = Orientation::Out;
    joint->GetLinkedBody(0, body, orientation);
    EXPECT_EQ(orientation, Orientation::In);
}

TEST_F(PlanarJoint, ConstraintsAreListedOnceAndInsertedWithoutATestForDuplicates)
{
    const QOBSharedHandle<KARMPConstraint> second(KARMP6DoF::create(L"second"));
    EXPECT_EQ(joint->AddConstraint(constraint), KARSuccess);
    EXPECT_EQ(joint->AddConstraint(second), KARSuccess);
    EXPECT_EQ(joint->AddConstraint(constraint), KARUnchanged);
    EXPECT_EQ(joint->InsertConstraint(1, second), KARSuccess);
    EXPECT_EQ(Constraints(), (std::vector{constraint, second, second}));
    EXPECT_EQ(joint->RemoveConstraint(second), KARSuccess);
    EXPECT_EQ(Constraints(), (std::vector{constraint, second}));
    EXPECT_EQ(joint->RemoveConstraint(constraint), KARSuccess);
    EXPECT_EQ(joint->RemoveConstraint(constraint), KARUnchanged);
}

TEST_F(PlanarJoint, NullBodiesAndConstraintsAreReported)
{
    EXPECT_EQ(joint->LinkToBody(nullptr, Orientation::In), KARFailure);
    EXPECT_EQ(joint->RemoveBody(nullptr), KARFailure);
    EXPECT_EQ(joint->AddConstraint(nullptr), KARFailure);
    EXPECT_EQ(joint->RemoveConstraint(nullptr), KARFailure);
    EXPECT_EQ(joint->InsertConstraint(0, nullptr), KARFailure);
    ExpectReports(5);
    EXPECT_EQ(joint->GetLinkedBodyCount(), 0);
    EXPECT_EQ(joint->GetConstraintCount(), 0);
}

TEST_F(PlanarJoint, AnIndexOutsideTheListsGivesANullHandle)
{
    joint->LinkToBody(a, Orientation::In);
    joint->AddConstraint(constraint);
    for (const int index : {-1, 1}) {
        QOBSharedHandle<KARMPBody2D> body = b;
        EXPECT_EQ(joint->GetLinkedBody(index, body), KARFailure);
        EXPECT_FALSE(body);
        body = b;
        auto orientation = Orientation::In;
        EXPECT_EQ(joint->GetLinkedBody(index, body, orientation), KARFailure);
        EXPECT_FALSE(body);
        EXPECT_EQ(orientation, Orientation::In);
        QOBSharedHandle<KARMPConstraint> found = constraint;
        EXPECT_EQ(joint->GetConstraint(index, found), KARFailure);
        EXPECT_FALSE(found);
    }
}

TEST_F(PlanarJoint, ThroughItsBaseItHasNeitherBodiesNorConstraints)
{
    LinkAll();
    KARMPJoint& base = *joint;
    EXPECT_EQ(base.GetLinkedBodyCount(), 0);
    EXPECT_EQ(base.GetConstraintCount(), 0);
    EXPECT_EQ(joint->GetLinkedBodyCount(), 2);
    EXPECT_EQ(joint->GetConstraintCount(), 1);
    EXPECT_EQ(base.RemoveBody(a), KARUnchanged);
    EXPECT_EQ(base.RemoveConstraint(constraint), KARUnchanged);
    EXPECT_EQ(joint->GetLinkedBodyCount(), 2);
    EXPECT_EQ(joint->GetConstraintCount(), 1);
}

TEST_F(PlanarJoint, BodiesLinkedThroughItsBaseAreNotItsOwn)
{
    KARMPJoint& base = *joint;
    EXPECT_EQ(base.LinkToBody(a, Orientation::In), KARSuccess);
    EXPECT_EQ(base.AddConstraint(constraint), KARSuccess);
    EXPECT_EQ(joint->GetLinkedBodyCount(), 0);
    EXPECT_EQ(joint->GetConstraintCount(), 0);
    joint->ClearContainers();
    EXPECT_EQ(base.GetLinkedBodyCount(), 1);
    EXPECT_EQ(base.GetConstraintCount(), 1);
}

// A planar body stands for one in space where its base is asked for, with what its base holds.
TEST_F(PlanarJoint, AJointInSpaceLinksPlanarBodiesAsBodiesInSpace)
{
    const auto hinge = KARMPRevolute::create(L"hinge");
    KARMPBody& base = *a;
    EXPECT_EQ(hinge->LinkToBody(a, Orientation::In), KARSuccess);
    EXPECT_EQ(base.LinkToJoint(hinge), KARSuccess);
    EXPECT_EQ(hinge->GetLinkedBodyCount(), 1);
    EXPECT_EQ(base.GetLinkedJointCount(), 1);
    EXPECT_EQ(a->GetLinkedJointCount(), 0);
    a->SetPosition(KARMathTransformation2D(KARMathVector2D(3.0, 4.0)));
    auto* const loader = new RecordingJointLoader(record);
    loader->type = Type::Rigid;
    hinge->SetLoader(loader);
    std::vector<KARMathAxis> frames;
    EXPECT_EQ(hinge->GetFrames(frames, 0, 1), KARSuccess);
    ExpectReports(1); // it stands in no world
    EXPECT_EQ(frames, std::vector{KARMathAxis()});
    QOBSharedHandle<KARMPJoint> gone(hinge);
    KARMPJoint::destroy(gone);
    EXPECT_EQ(base.GetLinkedJointCount(), 0);
}

TEST_F(PlanarJoint, OnlyAPlanarLoaderIsItsOwn)
{
    KARIMPJoint2DLoader* loader = nullptr;
    EXPECT_EQ(joint->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr);
    // One that is replaced is the caller's again.
    const auto other = std::make_unique<RecordingEntityLoader>(record);
    joint->SetLoader(other.get());
    EXPECT_EQ(joint->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr);
    auto* const given = GiveLoader();
    EXPECT_EQ(joint->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, given);
    KARIMPJointLoader* spatial = nullptr;
    EXPECT_EQ(joint->GetLoader(spatial), KARSuccess);
    EXPECT_EQ(spatial, given);
}

TEST_F(PlanarJoint, WithoutALoaderThereAreNoFramesAndTheKindStays)
{
    std::vector<KARMathAxis2D> frames;
    EXPECT_EQ(joint->GetFrames(frames), KARUnchanged);
    EXPECT_TRUE(frames.empty());
    EXPECT_EQ(joint->GetFrameCount(), 0);
    KARMathAxis2D frame;
    EXPECT_EQ(joint->GetFrame(0, frame), KARFailure);
    auto type = Type::Rigid;
    EXPECT_EQ(joint->GetSolverEquivalentJointType(type), KARUnchanged);
    EXPECT_EQ(type, Type::Rigid);
}

TEST_F(PlanarJoint, FramesComeFromThePlanarLoader)
{
    auto* const loader = GiveLoader();
    loader->frames = {{{1.0, 2.0}, {0.0, 1.0}, {-1.0, 0.0}}, {{3.0, 4.0}, {1.0, 0.0}, {0.0, 1.0}}};
    std::vector<KARMathAxis2D> frames;
    EXPECT_EQ(joint->GetFrames(frames), KARSuccess);
    EXPECT_EQ(frames, loader->frames);
    // The status of the loader is that of the frames, and no concern of a single one's.
    record.answer = KARUnexpected;
    EXPECT_EQ(joint->GetFrames(frames), KARUnexpected);
    EXPECT_EQ(joint->GetFrameCount(), 2);
    KARMathAxis2D frame;
    EXPECT_EQ(joint->GetFrame(1, frame), KARSuccess);
    EXPECT_EQ(frame, loader->frames[1]);
    for (const int index : {-1, 2}) {
        EXPECT_EQ(joint->GetFrame(index, frame), KARFailure);
        EXPECT_EQ(frame, loader->frames[1]);
    }
}

TEST_F(PlanarJoint, ItsKindIsThePlanarLoadersFirstReading)
{
    auto* const loader = GiveLoader();
    loader->type = Type::Cylindrical;
    record.answer = 7;
    auto type = Type::Rigid;
    EXPECT_EQ(joint->GetSolverEquivalentJointType(type), 7);
    EXPECT_EQ(type, Type::Cylindrical);
    auto stored = Type::Spherical;
    EXPECT_EQ(joint->SetSolverEquivalentJointType(stored), KARSuccess);
    EXPECT_EQ(joint->GetSolverEquivalentJointType(type), 7);
    EXPECT_EQ(type, Type::Cylindrical);
}

// The loader of a joint in space is none to the planar operations and serves the inherited ones.
TEST_F(PlanarJoint, TheSpatialFormsStayThoseOfAJointInSpace)
{
    auto* const loader = new RecordingJointLoader(record);
    loader->frames.resize(3);
    joint->SetLoader(loader);
    auto type = Type::Rigid;
    EXPECT_EQ(joint->GetSolverEquivalentJointType(type), KARUnchanged);
    EXPECT_EQ(type, Type::Rigid);
    EXPECT_EQ(joint->GetFrameCount(), 0);
    EXPECT_TRUE(record.calls.empty());
    EXPECT_EQ(joint->GetSolverEquivalentJointType2(type), KARSuccess);
    EXPECT_EQ(type, Type::Screw);
    std::vector<KARMathAxis> frames;
    EXPECT_EQ(joint->GetFrames(frames, 0, 0), KARSuccess);
    EXPECT_EQ(frames.size(), 3u);
    KARMathAxis frame;
    EXPECT_EQ(joint->GetFrame(2, frame, 0), KARSuccess);
}

TEST_F(PlanarJoint, APlanarLoaderHasNoFramesInSpace)
{
    auto* const loader = GiveLoader();
    loader->frames.resize(2);
    std::vector<KARMathAxis> frames;
    EXPECT_EQ(joint->GetFrames(frames, 0, 0), KARNotImplemented);
    EXPECT_TRUE(frames.empty());
    LinkAll();
    loader->type = Type::Rigid;
    EXPECT_EQ(joint->GetFrames(frames, 0, 1), KARUnchanged);
    EXPECT_TRUE(frames.empty()) << "computed of the bodies that its base has";
    ExpectReports(1); // it stands in no world
}

TEST_F(PlanarJoint, AFailingFetchOfTheLoaderIsReportedByEachQuestion)
{
    joint->fetchFails = true;
    KARIMPJoint2DLoader* loader = nullptr;
    EXPECT_EQ(joint->GetLoader(loader), KARFailure);
    ExpectReports(1);
    // The fetch reports, and so does who asked for it.
    auto type = Type::Rigid;
    EXPECT_EQ(joint->GetSolverEquivalentJointType(type), KARFailure);
    ExpectReports(2);
    std::vector<KARMathAxis2D> frames;
    EXPECT_EQ(joint->GetFrames(frames), KARFailure);
    ExpectReports(2);
    EXPECT_EQ(joint->GetFrameCount(), 0);
    ExpectReports(2);
}

// A planar joint that gives its frames itself.
class GivingPlanarJoint : public KARMPUserDefined2D
{
public:
    using KARMPUserDefined2D::GetFrames;
    KARStatus GetFrames(std::vector<KARMathAxis2D>& given) const override
    {
        given.resize(3);
        return KARFailure;
    }
};

TEST_F(PlanarJoint, SingleFramesAreThoseThatTheJointsOwnKindGives)
{
    const QOBSharedHandle<GivingPlanarJoint> giving(new GivingPlanarJoint);
    KARMathAxis2D frame;
    EXPECT_EQ(giving->GetFrameCount(), 3);
    EXPECT_EQ(giving->GetFrame(2, frame), KARSuccess);
    EXPECT_EQ(giving->GetFrame(3, frame), KARFailure);
}

TEST_F(PlanarJoint, ACopyHasTheNameAndNoLinks)
{
    joint->setEntityName(L"hinge");
    LinkAll();
    GiveLoader();
    const auto copy = KARMPUserDefined2D::clone(joint, QOBDynamicObject::CopyDeep);
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->getClassName(), "KARMPUserDefined2D");
    EXPECT_EQ(copy->getEntityName(), L"hinge");
    EXPECT_EQ(copy->GetLinkedBodyCount(), 0);
    EXPECT_EQ(copy->GetConstraintCount(), 0);
    EXPECT_EQ(joint->GetLinkedBodyCount(), 2);
}

TEST_F(PlanarJoint, ADestroyedJointIsTakenOutOfItsBodiesAndConstraints)
{
    LinkAll();
    const QOBSharedHandle<OpenPlanarJoint> kept = joint;
    QOBSharedHandle<KARMPJoint> gone(joint);
    KARMPJoint::destroy(gone);
    EXPECT_EQ(a->GetLinkedJointCount(), 0);
    EXPECT_EQ(b->GetLinkedJointCount(), 0);
    QOBSharedHandle<KARMPJoint> owner;
    EXPECT_EQ(constraint->GetJoint(owner), KARFailure);
    EXPECT_EQ(kept->GetLinkedBodyCount(), 0);
    EXPECT_EQ(kept->GetConstraintCount(), 0);
}

TEST_F(PlanarJoint, ADestroyedBodyIsTakenOutOfTheJointAndAConstraintIsNot)
{
    LinkAll();
    QOBSharedHandle<KARMPBody2D> body = a;
    KARMPBody2D::destroy(body);
    EXPECT_EQ(BodiesOf(*joint), (std::vector{b}));
    // A constraint knows its joint as one in space.
    QOBSharedHandle<KARMPConstraint> used = constraint;
    KARMPConstraint::destroy(used);
    EXPECT_EQ(Constraints(), (std::vector{constraint}));
}

TEST_F(PlanarJoint, LeavingGivesTheStatusOfTheLastBodyOrConstraint)
{
    EXPECT_EQ(joint->RemoveParent(), KARSuccess);
    joint->AddConstraint(constraint);
    EXPECT_EQ(joint->RemoveParent(), KARUnchanged);
    constraint->SetJoint(joint);
    EXPECT_EQ(joint->RemoveParent(), KARSuccess);
    LinkAll();
    EXPECT_EQ(joint->RemoveParent(), KARSuccess);
    a->LinkToJoint(joint);
    EXPECT_EQ(joint->RemoveParent(), KARUnchanged);
    EXPECT_EQ(joint->GetLinkedBodyCount(), 2);
}

TEST_F(PlanarJoint, ClearedContainersHoldNoOrientationsEither)
{
    joint->LinkToBody(a, Orientation::In);
    joint->AddConstraint(constraint);
    joint->ClearContainers();
    EXPECT_EQ(joint->GetLinkedBodyCount(), 0);
    EXPECT_EQ(joint->GetConstraintCount(), 0);
    joint->LinkToBody(b, Orientation::Out);
    QOBSharedHandle<KARMPBody2D> body;
    auto orientation = Orientation::In;
    EXPECT_EQ(joint->GetLinkedBody(0, body, orientation), KARSuccess);
    EXPECT_EQ(orientation, Orientation::Out);
}

TEST_F(PlanarJoint, AWorldThatGoesFreesItsPlanarJoints)
{
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
        EXPECT_EQ(OpenPlanarJoint::Alive(), 1);
    }
    EXPECT_EQ(OpenPlanarJoint::Alive(), 0);
    EXPECT_EQ(record.deleted, 1);
}

#if defined(__GNUC__) && defined(__x86_64__)

// Applications and solvers derive from these classes and are built apart from the library.
TEST(PlanarJointOrder, PlanarOperationsStandBehindThoseOfJointsInSpace)
{
    using GetLoader = KARStatus (KARMPJoint2D::*)(KARIMPJoint2DLoader*&) const;
    using GetFrames = KARStatus (KARMPJoint2D::*)(std::vector<KARMathAxis2D>&) const;
    using GetFrame = KARStatus (KARMPJoint2D::*)(int, KARMathAxis2D&) const;
    ExpectSlotsBehind(VirtualSlot(&KARMPJoint::SetSolverEquivalentJointType),
                      {VirtualSlot(static_cast<GetLoader>(&KARMPJoint2D::GetLoader)),
                       VirtualSlot(static_cast<GetFrames>(&KARMPJoint2D::GetFrames)),
                       VirtualSlot(static_cast<GetFrame>(&KARMPJoint2D::GetFrame))});
    using ReadFrames = KARStatus (KARIMPJoint2DLoader::*)(std::vector<KARMathAxis2D>&);
    ExpectSlotsBehind(VirtualSlot(&KARIMPJointLoader::ReadSolverEquivalentJointType2),
                      {VirtualSlot(static_cast<ReadFrames>(&KARIMPJoint2DLoader::ReadFrames))});
}

#endif

} // namespace

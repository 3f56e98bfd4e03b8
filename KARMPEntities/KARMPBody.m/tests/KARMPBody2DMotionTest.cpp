#include "Body2DTesting.h"
#include "VirtualSlot.h"

namespace {

/// A planar body with a loader that records.
class Body2DMotion : public Body2DFixture
{
protected:
    Body2DMotion() { body->SetLoader(new RecordingBody2DLoader(record)); }

    Body2DLoaderRecord& record = NewPlanarRecord();
    QOBSharedHandle<OpenBody2D> body = New<KARMPBody2D>(L"body");
    QOBSharedHandle<OpenBody2D> alone = New<KARMPBody2D>(L"alone");
    KARMathVector2D linear;
    double angular = 0.0;
    KARMathPoint2D point;
};

/// A loader that looks at its body whenever it is told something.
class LookingLoader : public RecordingBody2DLoader
{
public:
    LookingLoader(Body2DLoaderRecord& record, const KARMPBody2D& body)
        : RecordingBody2DLoader(record), m_looked(body)
    {}

    KARStatus ApplyTransformation(const KARMathTransformation2D& move) override
    {
        position = positionOf(m_looked);
        return RecordingBody2DLoader::ApplyTransformation(move);
    }
    KARStatus SetLoaderVelocity(const KARMathVector2D& linear, double angular) override
    {
        KARMathVector2D v;
        double w = 0.0;
        velocityIsKnown = !KARFailed(m_looked.GetVelocity(v, w));
        return RecordingBody2DLoader::SetLoaderVelocity(linear, angular);
    }
    KARStatus HoldBody2D() override
    {
        fixed.push_back(m_looked.IsFixed2D());
        return RecordingBody2DLoader::HoldBody2D();
    }
    KARStatus ReleaseBody2D() override
    {
        fixed.push_back(m_looked.IsFixed2D());
        return RecordingBody2DLoader::ReleaseBody2D();
    }
    KARStatus HoldBody3D() override
    {
        fixed.push_back(m_looked.IsFixed3D());
        return RecordingBody2DLoader::HoldBody3D();
    }
    KARStatus ReleaseBody3D() override
    {
        fixed.push_back(m_looked.IsFixed3D());
        return RecordingBody2DLoader::ReleaseBody3D();
    }

    KARMathTransformation2D position;
    bool velocityIsKnown = false;
    std::vector<bool> fixed;

private:
    const KARMPBody2D& m_looked;
};

TEST_F(Body2DMotion, HandsOutItsPlanarLoader)
{
    KARIMPBody2DLoader* loader = nullptr;
    EXPECT_EQ(body->GetLoader(loader), KARSuccess);
    EXPECT_NE(loader, nullptr);
    EXPECT_EQ(alone->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr);
    BodyLoaderRecord& spatial = NewRecord();
    alone->SetLoader(new RecordingBodyLoader(spatial));
    EXPECT_EQ(alone->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr) << "a loader for space is none for the plane";
    body->failsToFetch = true;
    EXPECT_EQ(body->GetLoader(loader), KARFailure);
    ExpectReports(1);
}

TEST_F(Body2DMotion, PlanarLoaderIsALoaderOfABodyThatDoesNothingInSpace)
{
    KARIMPBodyLoader* loader = nullptr;
    EXPECT_EQ(body->GetLoader(loader), KARSuccess);
    ASSERT_NE(loader, nullptr);
    KARMathVector v;
    KARMathPoint p;
    unsigned char hasAxis = 0;
    KARMathLine axis;
    EXPECT_EQ(loader->ApplyTransformation({}), KARNotImplemented);
    EXPECT_EQ(loader->SetLoaderVelocity(v, v), KARNotImplemented);
    EXPECT_EQ(loader->ReadVelocity(v, v, p), KARNotImplemented);
    EXPECT_EQ(loader->ReadAcceleration(v, v, p), KARNotImplemented);
    EXPECT_EQ(loader->ReadVelocityAndAcceleration(v, v, v, v, p, hasAxis, axis,
                                                  KARMPBody::AtBodyOrigin, nullptr, {}, nullptr),
              KARNotImplemented);
    EXPECT_TRUE(record.calls.empty());
}

TEST_F(Body2DMotion, TransformationCountsAsTheIdentityAsAScalingOfRatioOne)
{
    EXPECT_TRUE(KARMPBody2D::IsIdentity2D({}));
    EXPECT_FALSE(KARMPBody2D::IsIdentity2D(shift2D(1e-12)));
    EXPECT_FALSE(KARMPBody2D::IsIdentity2D(KARMathTransformation2D::Rotation({}, 1e-6)));
    EXPECT_FALSE(KARMPBody2D::IsIdentity2D({2.0 * KARMath2x2Matrix::Identity(), {}}));
    EXPECT_FALSE(KARMPBody2D::IsIdentity2D({{{1.0, 0.0}, {0.0, -1.0}}, {}})) << "a reflection";
    EXPECT_FALSE(KARMPBody2D::IsIdentity2D({{{1.0, 0.0}, {1.0, 1.0}}, {}}));
    EXPECT_FALSE(KARMPBody2D::IsIdentity2D({KARMath2x2Matrix(), {}}));
}

TEST_F(Body2DMotion, SettingAPositionTellsTheLoaderTheChange)
{
    EXPECT_EQ(body->SetPosition(quarterTurn2D()), KARSuccess);
    EXPECT_EQ(body->SetPosition(shift2D(1.0) * quarterTurn2D()), KARSuccess);
    EXPECT_EQ(record.calls,
              (Calls{"ApplyTransformation", "ReleaseBody", "ApplyTransformation", "ReleaseBody"}));
    ASSERT_EQ(record.moves.size(), 2U);
    EXPECT_EQ(record.moves[0], quarterTurn2D());
    EXPECT_EQ(record.moves[1], shift2D(1.0));
    EXPECT_EQ(positionOf(*body), shift2D(1.0) * quarterTurn2D());
}

TEST_F(Body2DMotion, SettingThePresentPositionDoesNothing)
{
    for (const double size : {1.0, 1e7}) {
        const auto position = KARMathTransformation2D::Rotation({size, -size / 3.0}, 0.7);
        body->SetPosition(position);
        record.calls.clear();
        EXPECT_EQ(body->SetPosition(position), KARSuccess);
        EXPECT_TRUE(record.calls.empty());
        EXPECT_EQ(positionOf(*body), position);
    }
}

TEST_F(Body2DMotion, AShortTranslationIsStored)
{
    EXPECT_EQ(body->SetPosition(shift2D(1e-12)), KARSuccess);
    EXPECT_EQ(positionOf(*body), shift2D(1e-12));
    EXPECT_EQ(record.moves.size(), 1U);
}

TEST_F(Body2DMotion, AStoredPositionWithoutInverseGivesTheLoaderTheIdentity)
{
    const KARMathTransformation2D flat({{1.0, 0.0}, {1.0, 0.0}}, {});
    body->SetPosition(flat);
    EXPECT_EQ(body->SetPosition(flat), KARSuccess);
    ASSERT_EQ(record.moves.size(), 2U);
    EXPECT_EQ(record.moves[1], KARMathTransformation2D());
}

TEST_F(Body2DMotion, SettingAPositionGivesTheStatusOfTheReleaseOrOfTheFetch)
{
    record.answer = KARUnchanged;
    EXPECT_EQ(body->SetPosition(shift2D(1.0)), KARUnchanged);
    record.failing = "ApplyTransformation";
    EXPECT_EQ(body->SetPosition(shift2D(2.0)), KARUnchanged);
    ExpectReports(1);
    record.failing = "ReleaseBody";
    EXPECT_EQ(body->SetPosition(shift2D(3.0)), KARFailure);
    EXPECT_EQ(alone->SetPosition(shift2D(1.0)), KARSuccess);
    alone->failsToFetch = true;
    EXPECT_EQ(alone->SetPosition(shift2D(2.0)), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(positionOf(*alone), shift2D(2.0));
}

TEST_F(Body2DMotion, OnlyTheLoaderHearsOfAMoveThatIsForIt)
{
    EXPECT_EQ(body->ApplyBody2DLoaderTransfo(shift2D(2.0)), KARSuccess);
    EXPECT_EQ(record.calls, (Calls{"ApplyTransformation", "ReleaseBody"}));
    EXPECT_EQ(record.moves[0], shift2D(2.0));
    EXPECT_EQ(positionOf(*body), KARMathTransformation2D());
    EXPECT_EQ(alone->ApplyBody2DLoaderTransfo(shift2D(2.0)), KARSuccess);
    alone->failsToFetch = true;
    EXPECT_EQ(alone->ApplyBody2DLoaderTransfo(shift2D(2.0)), KARFailure);
    ExpectReports(1);
}

TEST_F(Body2DMotion, PositionInSpaceIsStoredAndNobodyIsTold)
{
    log->Watch(Body(body));
    KARMathTransformation position = shift(1.0);
    EXPECT_EQ(body->Get3DPosition(position), KARSuccess);
    EXPECT_EQ(position, KARMathTransformation());
    EXPECT_EQ(body->Set3DPosition(quarterTurn()), KARSuccess);
    EXPECT_EQ(body->Get3DPosition(position), KARSuccess);
    EXPECT_EQ(position, quarterTurn());
    EXPECT_TRUE(record.calls.empty());
    EXPECT_TRUE(log->changed.empty());
    EXPECT_EQ(positionOf(*body), KARMathTransformation2D());
    EXPECT_EQ(positionOf(static_cast<const KARMPBody&>(*body)), KARMathTransformation())
        << "the base has another position";
}

TEST_F(Body2DMotion, FixingInThePlaneAndInSpaceAreTwoThings)
{
    EXPECT_EQ(body->Fix2D(), KARSuccess);
    EXPECT_EQ(body->SetFix2D(true), KARSuccess);
    EXPECT_TRUE(body->IsFixed2D());
    EXPECT_FALSE(body->IsFixed3D());
    EXPECT_EQ(body->Fix3D(), KARSuccess);
    EXPECT_EQ(body->SetFix3D(true), KARSuccess);
    EXPECT_TRUE(body->IsFixed3D());
    EXPECT_EQ(body->SetFix2D(false), KARSuccess);
    EXPECT_EQ(body->Unfix2D(), KARSuccess);
    EXPECT_TRUE(body->IsFixed3D());
    EXPECT_EQ(body->SetFix3D(false), KARSuccess);
    EXPECT_EQ(body->Unfix3D(), KARSuccess);
    EXPECT_FALSE(body->IsFixed2D() || body->IsFixed3D());
    EXPECT_EQ(record.calls, (Calls{"HoldBody2D", "HoldBody3D", "ReleaseBody2D", "ReleaseBody3D"}));
}

TEST_F(Body2DMotion, FixingThroughTheBaseSaysNothingOfThePlane)
{
    const Body base(body);
    EXPECT_EQ(base->Fix(), KARSuccess);
    EXPECT_TRUE(base->IsFixed());
    EXPECT_EQ(record.calls, Calls{"HoldBody"});
    EXPECT_FALSE(body->IsFixed2D() || body->IsFixed3D());
    base->Unfix();
    body->Fix2D();
    body->Fix3D();
    EXPECT_FALSE(base->IsFixed());
}

TEST_F(Body2DMotion, FixingStandsWhenTheLoaderCannotBeFetched)
{
    body->failsToFetch = true;
    body->Fix2D();
    body->Fix3D();
    ExpectReports(4);
    EXPECT_TRUE(body->IsFixed2D() && body->IsFixed3D());
    body->Unfix2D();
    body->Unfix3D();
    ExpectReports(4);
    EXPECT_FALSE(body->IsFixed2D() || body->IsFixed3D());
    EXPECT_TRUE(record.calls.empty());
}

TEST_F(Body2DMotion, VelocitiesAreKnownOnceSet)
{
    EXPECT_EQ(body->GetVelocity(linear, angular), KARFailure);
    EXPECT_EQ(body->SetVelocity({1.0, 2.0}, 3.0), KARSuccess);
    EXPECT_EQ(record.calls, Calls{"SetLoaderVelocity"});
    EXPECT_EQ(record.linearVelocity, KARMathVector2D(1.0, 2.0));
    EXPECT_EQ(record.angularVelocity, 3.0);
    EXPECT_EQ(body->GetVelocity(linear, angular), KARSuccess);
    EXPECT_EQ(linear, KARMathVector2D(1.0, 2.0));
    EXPECT_EQ(angular, 3.0);
    KARMathVector v;
    KARMathVector w;
    EXPECT_EQ(body->KARMPBody::GetVelocity(v, w), KARFailure) << "the base knows others";
    record.answer = KARUnchanged;
    EXPECT_EQ(body->SetVelocity({}, 0.0), KARUnchanged);
    EXPECT_EQ(alone->SetVelocity({1.0, 0.0}, 0.0), KARSuccess);
    EXPECT_EQ(alone->GetVelocity(linear, angular), KARSuccess);
}

TEST_F(Body2DMotion, VelocitiesAreStoredButNotKnownWhenTheLoaderCannotBeFetched)
{
    alone->failsToFetch = true;
    EXPECT_EQ(alone->SetVelocity({1.0, 2.0}, 3.0), KARFailure);
    ExpectReports(2);
    EXPECT_EQ(alone->GetVelocity(linear, angular), KARFailure);
    alone->failsToFetch = false;
    EXPECT_EQ(alone->GetVelocity(linear, angular, point), KARSuccess);
    EXPECT_EQ(linear, KARMathVector2D(1.0, 2.0));
    EXPECT_EQ(angular, 3.0);
    alone->failsToFetch = true;
    EXPECT_EQ(alone->GetVelocity(linear, angular, point), KARFailure);
    EXPECT_EQ(alone->GetAcceleration(linear, angular, point), KARFailure);
    EXPECT_EQ(alone->GetVelocityAndAcceleration(linear, angular, linear, angular, point,
                                                KARMPBody::AtBodyOrigin, nullptr, {}, nullptr),
              KARFailure);
    ExpectReports(6);
}

TEST_F(Body2DMotion, TheLoaderAnswersForAPoint)
{
    record.linearVelocity = {1.0, 2.0};
    record.angularVelocity = 4.0;
    record.linearAcceleration = {7.0, 8.0};
    record.angularAcceleration = 10.0;
    record.point = {1.0, 1.0};
    EXPECT_EQ(body->GetVelocity(linear, angular, point), KARSuccess);
    EXPECT_EQ(linear, record.linearVelocity);
    EXPECT_EQ(angular, 4.0);
    EXPECT_EQ(point, record.point);
    EXPECT_EQ(body->GetVelocity(linear, angular), KARFailure) << "known only once set";
    EXPECT_EQ(body->GetAcceleration(linear, angular, point), KARSuccess);
    EXPECT_EQ(linear, record.linearAcceleration);
    EXPECT_EQ(angular, 10.0);
    record.linearAcceleration = {};
    EXPECT_EQ(body->GetAcceleration(linear, angular), KARSuccess);
    EXPECT_EQ(linear, KARMathVector2D(7.0, 8.0));
    for (const char* failing :
         {"ReadVelocity", "ReadAcceleration", "ReadVelocityAndAcceleration"}) {
        record.failing = failing;
        EXPECT_EQ(body->GetVelocity(linear, angular, point), KARSuccess);
        EXPECT_EQ(body->GetAcceleration(linear, angular, point), KARSuccess);
        EXPECT_EQ(body->GetVelocityAndAcceleration(linear, angular, linear, angular, point,
                                                   KARMPBody::AtBodyOrigin, nullptr, {}, nullptr),
                  KARSuccess);
        ExpectReports(1);
    }
}

TEST_F(Body2DMotion, AccelerationsAreStoredWithoutTheLoader)
{
    EXPECT_EQ(body->SetAcceleration({1.0, 2.0}, 3.0), KARSuccess);
    EXPECT_TRUE(record.calls.empty());
    EXPECT_EQ(body->GetAcceleration(linear, angular), KARSuccess);
    EXPECT_EQ(linear, KARMathVector2D(1.0, 2.0));
    EXPECT_EQ(angular, 3.0);
    EXPECT_EQ(alone->GetAcceleration(linear, angular, point), KARSuccess);
    EXPECT_EQ(linear, KARMathVector2D());
    EXPECT_EQ(angular, 0.0);
}

TEST_F(Body2DMotion, AllIsPassedOnWhenVelocitiesAndAccelerationsAreAskedForAtOnce)
{
    record.linearVelocity = {1.0, 0.0};
    record.angularVelocity = 2.0;
    record.linearAcceleration = {3.0, 0.0};
    record.angularAcceleration = 4.0;
    record.point = {5.0, 0.0};
    record.hasAxis = 7;
    record.axis = KARMathLine2D({6.0, 0.0}, {0.0, 1.0});
    KARMathVector2D linearAcceleration;
    double angularAcceleration = 0.0;
    unsigned char hasAxis = 0;
    KARMathLine2D axis;
    const KARMathPoint2D at;
    const KARMathAxis2D frame;
    EXPECT_EQ(body->GetVelocityAndAcceleration(linear, angular, linearAcceleration,
                                               angularAcceleration, point, hasAxis, axis,
                                               KARMPBody::AtGivenPoint, &at, Body2D(alone), &frame),
              KARSuccess);
    EXPECT_EQ(linear, record.linearVelocity);
    EXPECT_EQ(angular, 2.0);
    EXPECT_EQ(linearAcceleration, record.linearAcceleration);
    EXPECT_EQ(angularAcceleration, 4.0);
    EXPECT_EQ(point, record.point);
    EXPECT_EQ(hasAxis, 7);
    EXPECT_EQ(axis, record.axis);
    EXPECT_EQ(record.where, KARMPBody::AtGivenPoint);
    EXPECT_EQ(record.at, &at);
    EXPECT_EQ(record.reference, alone._getReferent());
    EXPECT_EQ(record.frame, &frame);
    // The accelerations stay, and so do the velocities, which are known only once set.
    EXPECT_EQ(body->GetVelocity(linear, angular), KARFailure);
    EXPECT_EQ(body->GetAcceleration(linear, angular), KARSuccess);
    EXPECT_EQ(linear, record.linearAcceleration);
    EXPECT_EQ(angular, 4.0);

    EXPECT_EQ(body->GetVelocityAndAcceleration(linear, angular, linearAcceleration,
                                               angularAcceleration, point,
                                               KARMPBody::AtCenterOfGravity, nullptr, {}, nullptr),
              KARSuccess);
    EXPECT_EQ(linear, record.linearVelocity);
    EXPECT_EQ(record.where, KARMPBody::AtCenterOfGravity);
    EXPECT_EQ(record.reference, nullptr);
    EXPECT_EQ(alone->GetVelocityAndAcceleration(linear, angular, linearAcceleration,
                                                angularAcceleration, point, KARMPBody::AtBodyOrigin,
                                                nullptr, {}, nullptr),
              KARSuccess);
    EXPECT_EQ(linear, KARMathVector2D());
}

TEST_F(Body2DMotion, ComputationInKinematicSimulationsIsUpToTheLoader)
{
    record.answer = KARUnchanged;
    EXPECT_EQ(body->ActivateVelocityAndAccelerationComputationForKIN(), KARUnchanged);
    EXPECT_EQ(record.calls, Calls{"ActivateComputationForKIN"});
    EXPECT_EQ(alone->ActivateVelocityAndAccelerationComputationForKIN(), KARSuccess);
    alone->failsToFetch = true;
    EXPECT_EQ(alone->ActivateVelocityAndAccelerationComputationForKIN(), KARFailure);
    ExpectReports(2);
}

TEST_F(Body2DMotion, TheLoaderHearsOfWhatTheBodyHasAlready)
{
    auto* const loader = new LookingLoader(record, *alone);
    alone->SetLoader(loader);
    alone->SetPosition(shift2D(1.0));
    EXPECT_EQ(loader->position, shift2D(1.0));
    alone->SetVelocity({1.0, 0.0}, 0.0);
    EXPECT_TRUE(loader->velocityIsKnown);
    alone->Fix2D();
    alone->Unfix2D();
    alone->Fix3D();
    alone->Unfix3D();
    EXPECT_EQ(loader->fixed, (std::vector<bool>{true, false, true, false}));
}

TEST_F(Body2DMotion, FixingGivesZeroWhateverTheLoaderAnswers)
{
    record.answer = KARFailure;
    EXPECT_EQ(body->Fix2D(), KARSuccess);
    EXPECT_EQ(body->Fix3D(), KARSuccess);
    EXPECT_TRUE(body->IsFixed2D() && body->IsFixed3D());
    EXPECT_EQ(body->Unfix2D(), KARSuccess);
    EXPECT_EQ(body->Unfix3D(), KARSuccess);
    EXPECT_FALSE(body->IsFixed2D() || body->IsFixed3D());
}

TEST_F(Body2DMotion, ALoaderThatAnswersOneHasNotFailed)
{
    record.answer = KARUnchanged;
    EXPECT_EQ(body->GetVelocity(linear, angular, point), KARSuccess);
    EXPECT_EQ(body->GetAcceleration(linear, angular, point), KARSuccess);
    EXPECT_EQ(body->GetVelocityAndAcceleration(linear, angular, linear, angular, point,
                                               KARMPBody::AtBodyOrigin, nullptr, {}, nullptr),
              KARSuccess);
}

TEST_F(Body2DMotion, MassIsNoMatterOfTheLoaderAndNotTheBases)
{
    EXPECT_EQ(body->SetMass(1.5), KARSuccess);
    EXPECT_EQ(body->SetCenterOfGravity({1.0, 2.0}), KARSuccess);
    EXPECT_EQ(body->SetInertiaMatrix({{1.0, 2.0}, {3.0, 4.0}}), KARSuccess);
    EXPECT_TRUE(record.calls.empty());
    double mass = 0.0;
    EXPECT_EQ(body->GetMass(mass), KARSuccess);
    EXPECT_EQ(mass, 1.5);
    EXPECT_EQ(body->GetCenterOfGravity(point), KARSuccess);
    EXPECT_EQ(point, KARMathPoint2D(1.0, 2.0));
    KARMath2x2Matrix inertia;
    EXPECT_EQ(body->GetInertiaMatrix(inertia), KARSuccess);
    EXPECT_EQ(inertia, KARMath2x2Matrix({1.0, 2.0}, {3.0, 4.0}));
    body->KARMPBody::GetMass(mass);
    EXPECT_EQ(mass, 0.0);
    body->KARMPBody::SetMass(7.0);
    body->GetMass(mass);
    EXPECT_EQ(mass, 1.5);
}

#if defined(__GNUC__) && defined(__x86_64__)

TEST_F(Body2DMotion, ThePlanarLoaderIsFetchedBehindTheOneForSpace)
{
    using Spatial = KARStatus (KARMPBody::*)(KARIMPBodyLoader*&) const;
    using Planar = KARStatus (KARMPBody2D::*)(KARIMPBody2DLoader*&) const;
    ExpectSlotsBehind(VirtualSlot(static_cast<Spatial>(&KARMPBody::GetLoader)),
                      {VirtualSlot(static_cast<Planar>(&KARMPBody2D::GetLoader))});
}

#endif

} // namespace

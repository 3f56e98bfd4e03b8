#include "BodyTesting.h"

namespace {

/// A body with a loader that records.
class BodyMotion : public BodyFixture
{
protected:
    BodyMotion() { body->SetLoader(new RecordingBodyLoader(record)); }

    BodyLoaderRecord& record = NewRecord();
    QOBSharedHandle<OpenBody> body = New<KARMPBody>(L"body");
    QOBSharedHandle<OpenBody> alone = New<KARMPBody>(L"alone");
    KARMathVector linear;
    KARMathVector angular;
    KARMathPoint point;
};

/// A loader that looks at its body whenever it is told something.
class LookingLoader : public RecordingBodyLoader
{
public:
    LookingLoader(BodyLoaderRecord& record, const KARMPBody& body)
        : RecordingBodyLoader(record), m_looked(body)
    {}

    KARStatus ApplyTransformation(const KARMathTransformation& move) override
    {
        position = positionOf(m_looked);
        return RecordingBodyLoader::ApplyTransformation(move);
    }
    KARStatus SetLoaderVelocity(const KARMathVector& linear, const KARMathVector& angular) override
    {
        KARMathVector v;
        KARMathVector w;
        velocityIsKnown = !KARFailed(m_looked.GetVelocity(v, w));
        return RecordingBodyLoader::SetLoaderVelocity(linear, angular);
    }
    KARStatus HoldBody() override
    {
        fixed.push_back(m_looked.IsFixed());
        return RecordingBodyLoader::HoldBody();
    }
    KARStatus ReleaseBody() override
    {
        fixed.push_back(m_looked.IsFixed());
        return RecordingBodyLoader::ReleaseBody();
    }

    KARMathTransformation position;
    bool velocityIsKnown = false;
    std::vector<bool> fixed;

private:
    const KARMPBody& m_looked;
};

TEST_F(BodyMotion, HandsOutItsLoader)
{
    KARIMPBodyLoader* loader = nullptr;
    EXPECT_EQ(body->GetLoader(loader), KARSuccess);
    EXPECT_NE(loader, nullptr);
    EXPECT_EQ(alone->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr);
}

TEST_F(BodyMotion, HandsOutNoLoaderOfAnotherInterface)
{
    LoaderRecord& other = NewRecord();
    alone->SetLoader(new RecordingEntityLoader(other));
    KARIMPBodyLoader* loader = nullptr;
    EXPECT_EQ(alone->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr);
}

TEST_F(BodyMotion, ReportsALoaderThatCannotBeFetched)
{
    body->failsToFetch = true;
    KARIMPBodyLoader* loader = nullptr;
    EXPECT_EQ(body->GetLoader(loader), KARFailure);
    EXPECT_EQ(loader, nullptr);
    ExpectReports(1);
}

TEST_F(BodyMotion, SettingAPositionTellsTheLoaderTheChange)
{
    EXPECT_EQ(body->SetPosition(shift(1.0), 0), KARSuccess);
    EXPECT_EQ(body->SetPosition(shift(3.0), 0), KARSuccess);
    EXPECT_EQ(record.calls,
              (Calls{"ApplyTransformation", "ReleaseBody", "ApplyTransformation", "ReleaseBody"}));
    ASSERT_EQ(record.moves.size(), 2U);
    EXPECT_EQ(record.moves[0], shift(1.0));
    EXPECT_EQ(record.moves[1], shift(2.0));
    EXPECT_EQ(positionOf(*body), shift(3.0));
}

TEST_F(BodyMotion, TheChangeComesBeforeTheStoredPosition)
{
    body->SetPosition(shift(1.0), 0);
    body->SetPosition(quarterTurn() * shift(1.0), 0);
    ASSERT_EQ(record.moves.size(), 2U);
    EXPECT_EQ(record.moves[1], quarterTurn());
}

TEST_F(BodyMotion, SettingThePresentPositionDoesNothing)
{
    const auto neighbour = TestNeighbour::create(L"n");
    body->SetWDMBody(neighbour);
    body->SetPosition(quarterTurn(), 1);
    record.calls.clear();
    neighbour->positionsSet = 0;
    EXPECT_EQ(body->SetPosition(quarterTurn(), 1), KARSuccess);
    EXPECT_TRUE(record.calls.empty());
    EXPECT_EQ(neighbour->positionsSet, 0);
}

TEST_F(BodyMotion, SettingThePresentPositionReachesNobodyAtLargeCoordinates)
{
    const auto neighbour = TestNeighbour::create(L"n");
    body->SetWDMBody(neighbour);
    const KARMathTransformation far =
        shift(1e7, -2e7, 3e7) *
        KARMathTransformation::Rotation({{1e7, 2e7, 0.0}, {1.0, 2.0, 3.0}}, 0.7);
    // The second is the first but for its rounding.
    const KARMathTransformation rounded(far.GetMatrix(), far.GetVector() * (1.0 + 4e-16));
    ASSERT_NE(rounded, far);
    body->SetPosition(far, 1);
    record.calls.clear();
    neighbour->positionsSet = 0;
    EXPECT_EQ(body->SetPosition(far, 1), KARSuccess);
    EXPECT_EQ(body->SetPosition(rounded, 1), KARSuccess);
    EXPECT_TRUE(record.calls.empty());
    EXPECT_EQ(neighbour->positionsSet, 0);
    EXPECT_EQ(positionOf(*body), far);
    EXPECT_EQ(body->SetPosition(shift(1e-6) * far, 1), KARSuccess);
    EXPECT_EQ(record.calls, (Calls{"ApplyTransformation", "ReleaseBody"}));
    EXPECT_EQ(neighbour->positionsSet, 1);
}

TEST_F(BodyMotion, SettingThePresentPositionReachesNobodyWithAnAlmostSingularMatrix)
{
    const KARMathTransformation thin({{1.0, 0.1, 0.3}, {1.0, 0.1 + 1e-11, 0.3}, {0.0, 0.7, 1.1}},
                                     {1.1, 2.3, 3.7});
    body->SetPosition(thin, 0);
    record.calls.clear();
    KARMathTransformation inverse;
    ASSERT_TRUE(thin.ComputeInverse(inverse));
    ASSERT_FALSE((thin * inverse).IsNoChange(thin, thin)) << "rounding is small here";
    EXPECT_EQ(body->SetPosition(thin, 0), KARSuccess);
    EXPECT_TRUE(record.calls.empty());
}

TEST_F(BodyMotion, AShortTranslationFromTheOriginIsStored)
{
    for (const double length : {9e-10, 1e-12, 1e-300}) {
        record.calls.clear();
        EXPECT_EQ(body->SetPosition(shift(length), 0), KARSuccess);
        EXPECT_EQ(positionOf(*body), shift(length));
        EXPECT_EQ(record.calls, (Calls{"ApplyTransformation", "ReleaseBody"}));
        body->SetPosition({}, 0);
    }
}

TEST_F(BodyMotion, AStoredPositionWithoutInverseGivesTheLoaderTheIdentity)
{
    const KARMathTransformation flat(KARMath3x3Matrix(), {1.0, 0.0, 0.0});
    body->SetPosition(flat, 0);
    EXPECT_EQ(body->SetPosition(shift(4.0), 0), KARSuccess);
    ASSERT_EQ(record.moves.size(), 2U);
    EXPECT_EQ(record.moves[1], KARMathTransformation());
    EXPECT_EQ(positionOf(*body), shift(4.0));
    // Even the same position is then a change.
    body->SetPosition(flat, 0);
    body->SetPosition(flat, 0);
    EXPECT_EQ(record.moves.size(), 4U);
}

TEST_F(BodyMotion, SettingAPositionGivesTheStatusOfTheRelease)
{
    record.failing = "ReleaseBody";
    EXPECT_EQ(body->SetPosition(shift(1.0), 0), KARFailure);
    EXPECT_EQ(body->SetPosition(shift(2.0), 1), KARSuccess) << "the neighbour's status instead";
    EXPECT_EQ(positionOf(*body), shift(2.0));
}

TEST_F(BodyMotion, ReportsALoaderThatDoesNotApplyAMove)
{
    record.failing = "ApplyTransformation";
    EXPECT_EQ(body->SetPosition(shift(1.0), 0), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(record.calls, (Calls{"ApplyTransformation", "ReleaseBody"}));
}

TEST_F(BodyMotion, SettingAPositionWithoutALoaderGivesTheStatusOfTheFetch)
{
    EXPECT_EQ(alone->SetPosition(shift(1.0), 0), KARSuccess);
    alone->failsToFetch = true;
    EXPECT_EQ(alone->SetPosition(shift(2.0), 0), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(positionOf(*alone), shift(2.0));
    EXPECT_EQ(alone->SetPosition(shift(3.0), 1), KARSuccess);
    ExpectReports(1);
}

TEST_F(BodyMotion, SettingAPositionMovesNeitherChildrenNorSensorAndTellsNobody)
{
    const Body child = NewFollower(L"child");
    body->AddBody(child);
    const auto sensor = Keep(KARMPDisplacementSensor::create(L"s"));
    body->SetDisplacementSensor(sensor);
    log->Watch(Body(body));
    body->SetPosition(shift(1.0), 1);
    EXPECT_EQ(positionOf(*child), KARMathTransformation());
    KARMathTransformation displacement = shift(1.0);
    sensor->GetDisplacement(displacement);
    EXPECT_EQ(displacement, KARMathTransformation());
    EXPECT_TRUE(log->changed.empty());
}

TEST_F(BodyMotion, OnlyTheLoaderHearsOfAMoveThatIsForIt)
{
    EXPECT_EQ(body->ApplyBodyLoaderTransfo(shift(2.0)), KARSuccess);
    EXPECT_EQ(record.calls, (Calls{"ApplyTransformation", "ReleaseBody"}));
    EXPECT_EQ(record.moves.back(), shift(2.0));
    EXPECT_EQ(positionOf(*body), KARMathTransformation());
    record.failing = "ApplyTransformation";
    EXPECT_EQ(body->ApplyBodyLoaderTransfo(shift(2.0)), KARSuccess);
    ExpectReports(1);
    record.failing = "ReleaseBody";
    EXPECT_EQ(body->ApplyBodyLoaderTransfo(shift(2.0)), KARFailure);
    EXPECT_EQ(alone->ApplyBodyLoaderTransfo(shift(2.0)), KARSuccess);
    alone->failsToFetch = true;
    EXPECT_EQ(alone->ApplyBodyLoaderTransfo(shift(2.0)), KARFailure);
    ExpectReports(1);
}

TEST_F(BodyMotion, FixingTellsTheLoaderOnce)
{
    EXPECT_EQ(body->Fix(), KARSuccess);
    EXPECT_EQ(body->SetFix(true), KARSuccess);
    EXPECT_TRUE(body->IsFixed());
    EXPECT_EQ(record.calls, Calls{"HoldBody"});
    EXPECT_EQ(body->SetFix(false), KARSuccess);
    EXPECT_EQ(body->Unfix(), KARSuccess);
    EXPECT_FALSE(body->IsFixed());
    EXPECT_EQ(record.calls, (Calls{"HoldBody", "ReleaseBody"}));
    EXPECT_EQ(alone->Fix(), KARSuccess);
    EXPECT_TRUE(alone->IsFixed());
}

TEST_F(BodyMotion, FixingStandsWhenTheLoaderCannotBeFetched)
{
    body->failsToFetch = true;
    body->Fix();
    ExpectReports(2);
    EXPECT_TRUE(body->IsFixed());
    body->Unfix();
    ExpectReports(2);
    EXPECT_FALSE(body->IsFixed());
    EXPECT_TRUE(record.calls.empty());
}

TEST_F(BodyMotion, VelocitiesAreKnownOnceSet)
{
    EXPECT_EQ(body->GetVelocity(linear, angular), KARFailure);
    EXPECT_EQ(body->SetVelocity({1.0, 0.0, 0.0}, {0.0, 2.0, 0.0}), KARSuccess);
    EXPECT_EQ(record.calls, Calls{"SetLoaderVelocity"});
    EXPECT_EQ(record.linearVelocity, KARMathVector(1.0, 0.0, 0.0));
    EXPECT_EQ(record.angularVelocity, KARMathVector(0.0, 2.0, 0.0));
    EXPECT_EQ(body->GetVelocity(linear, angular), KARSuccess);
    EXPECT_EQ(linear, KARMathVector(1.0, 0.0, 0.0));
    EXPECT_EQ(angular, KARMathVector(0.0, 2.0, 0.0));
    EXPECT_EQ(alone->SetVelocity({1.0, 0.0, 0.0}, {}), KARSuccess);
    EXPECT_EQ(alone->GetVelocity(linear, angular), KARSuccess);
}

TEST_F(BodyMotion, SettingVelocitiesGivesTheStatusOfTheLoader)
{
    record.answer = KARUnchanged;
    EXPECT_EQ(body->SetVelocity({1.0, 0.0, 0.0}, {}), KARUnchanged);
}

TEST_F(BodyMotion, VelocitiesThatTheLoaderRefusesAreKnownAllTheSame)
{
    record.failing = "SetLoaderVelocity";
    EXPECT_EQ(body->SetVelocity({1.0, 0.0, 0.0}, {}), KARFailure);
    EXPECT_EQ(body->GetVelocity(linear, angular), KARSuccess);
    EXPECT_EQ(linear, KARMathVector(1.0, 0.0, 0.0));
}

TEST_F(BodyMotion, VelocitiesAreStoredButNotKnownWhenTheLoaderCannotBeFetched)
{
    alone->failsToFetch = true;
    EXPECT_EQ(alone->SetVelocity({1.0, 0.0, 0.0}, {}), KARFailure);
    ExpectReports(2);
    EXPECT_EQ(alone->GetVelocity(linear, angular), KARFailure);
    alone->failsToFetch = false;
    EXPECT_EQ(alone->GetVelocity(linear, angular, point), KARSuccess);
    EXPECT_EQ(linear, KARMathVector(1.0, 0.0, 0.0));
    alone->failsToFetch = true;
    EXPECT_EQ(alone->GetVelocity(linear, angular, point), KARFailure);
    EXPECT_EQ(alone->GetAcceleration(linear, angular, point), KARFailure);
    EXPECT_EQ(alone->GetVelocityAndAcceleration(linear, angular, linear, angular, point,
                                                KARMPBody::AtBodyOrigin, nullptr, {}, nullptr),
              KARFailure);
    ExpectReports(6);
}

TEST_F(BodyMotion, TheLoaderAnswersForAPoint)
{
    record.linearVelocity = {1.0, 2.0, 3.0};
    record.angularVelocity = {4.0, 5.0, 6.0};
    record.linearAcceleration = {7.0, 8.0, 9.0};
    record.angularAcceleration = {10.0, 11.0, 12.0};
    record.point = {1.0, 1.0, 1.0};
    EXPECT_EQ(body->GetVelocity(linear, angular, point), KARSuccess);
    EXPECT_EQ(linear, record.linearVelocity);
    EXPECT_EQ(angular, record.angularVelocity);
    EXPECT_EQ(point, record.point);
    EXPECT_EQ(body->GetVelocity(linear, angular), KARFailure) << "known only once set";
    EXPECT_EQ(body->GetAcceleration(linear, angular, point), KARSuccess);
    EXPECT_EQ(linear, record.linearAcceleration);
    EXPECT_EQ(angular, record.angularAcceleration);
    // The answer stays.
    record.linearAcceleration = {};
    EXPECT_EQ(body->GetAcceleration(linear, angular), KARSuccess);
    EXPECT_EQ(linear, KARMathVector(7.0, 8.0, 9.0));
}

TEST_F(BodyMotion, ALoaderThatFailsToAnswerIsReportedAndWhatItFilledInGoesOut)
{
    record.linearVelocity = {1.0, 2.0, 3.0};
    record.failing = "ReadVelocity";
    EXPECT_EQ(body->GetVelocity(linear, angular, point), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(linear, record.linearVelocity);
    record.failing = "ReadAcceleration";
    EXPECT_EQ(body->GetAcceleration(linear, angular, point), KARSuccess);
    ExpectReports(1);
    record.failing = "ReadVelocityAndAcceleration";
    EXPECT_EQ(body->GetVelocityAndAcceleration(linear, angular, linear, angular, point,
                                               KARMPBody::AtBodyOrigin, nullptr, {}, nullptr),
              KARSuccess);
    ExpectReports(1);
}

TEST_F(BodyMotion, AccelerationsAreStoredWithoutTheLoader)
{
    EXPECT_EQ(body->SetAcceleration({1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}), KARSuccess);
    EXPECT_TRUE(record.calls.empty());
    EXPECT_EQ(body->GetAcceleration(linear, angular), KARSuccess);
    EXPECT_EQ(linear, KARMathVector(1.0, 0.0, 0.0));
    EXPECT_EQ(angular, KARMathVector(0.0, 1.0, 0.0));
    EXPECT_EQ(alone->GetAcceleration(linear, angular, point), KARSuccess);
    EXPECT_EQ(linear, KARMathVector());
}

TEST_F(BodyMotion, AllIsPassedOnWhenVelocitiesAndAccelerationsAreAskedForAtOnce)
{
    record.linearVelocity = {1.0, 0.0, 0.0};
    record.angularVelocity = {2.0, 0.0, 0.0};
    record.linearAcceleration = {3.0, 0.0, 0.0};
    record.angularAcceleration = {4.0, 0.0, 0.0};
    record.point = {5.0, 0.0, 0.0};
    record.hasAxis = 7;
    record.axis = KARMathLine({6.0, 0.0, 0.0}, {0.0, 1.0, 0.0});
    KARMathVector linearAcceleration;
    KARMathVector angularAcceleration;
    unsigned char hasAxis = 0;
    KARMathLine axis;
    const KARMathPoint at;
    const KARMathAxis frame;
    EXPECT_EQ(body->GetVelocityAndAcceleration(linear, angular, linearAcceleration,
                                               angularAcceleration, point, hasAxis, axis,
                                               KARMPBody::AtGivenPoint, &at, Body(alone), &frame),
              KARSuccess);
    EXPECT_EQ(linear, record.linearVelocity);
    EXPECT_EQ(angular, record.angularVelocity);
    EXPECT_EQ(linearAcceleration, record.linearAcceleration);
    EXPECT_EQ(angularAcceleration, record.angularAcceleration);
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
    EXPECT_EQ(angular, record.angularAcceleration);
    KARIMPBodyLoader* loader = nullptr;
    EXPECT_EQ(body->GetLoader(loader), KARSuccess);
    body->SetLoader(nullptr);
    EXPECT_EQ(body->GetVelocity(linear, angular, point), KARSuccess);
    EXPECT_EQ(linear, record.linearVelocity);
    EXPECT_EQ(angular, record.angularVelocity);
    body->SetLoader(loader);

    KARMathVector again;
    EXPECT_EQ(body->GetVelocityAndAcceleration(again, angular, linearAcceleration,
                                               angularAcceleration, point,
                                               KARMPBody::AtCenterOfGravity, nullptr, {}, nullptr),
              KARSuccess);
    EXPECT_EQ(again, record.linearVelocity);
    EXPECT_EQ(record.where, KARMPBody::AtCenterOfGravity);
    EXPECT_EQ(record.reference, nullptr);
    EXPECT_EQ(alone->GetVelocityAndAcceleration(again, angular, linearAcceleration,
                                                angularAcceleration, point, KARMPBody::AtBodyOrigin,
                                                nullptr, {}, nullptr),
              KARSuccess);
    EXPECT_EQ(again, KARMathVector());
}

TEST_F(BodyMotion, TheLoaderHearsOfWhatTheBodyHasAlready)
{
    auto* const loader = new LookingLoader(record, *alone);
    alone->SetLoader(loader);
    alone->SetPosition(shift(1.0), 0);
    EXPECT_EQ(loader->position, shift(1.0));
    alone->SetVelocity({1.0, 0.0, 0.0}, {});
    EXPECT_TRUE(loader->velocityIsKnown);
    loader->fixed.clear();
    alone->Fix();
    alone->Unfix();
    EXPECT_EQ(loader->fixed, (std::vector<bool>{true, false}));
}

TEST_F(BodyMotion, FixingGivesZeroWhateverTheLoaderAnswers)
{
    for (const KARStatus answer : {KARUnchanged, KARFailure}) {
        record.answer = answer;
        EXPECT_EQ(body->Fix(), KARSuccess);
        EXPECT_TRUE(body->IsFixed());
        EXPECT_EQ(body->Unfix(), KARSuccess);
        EXPECT_FALSE(body->IsFixed());
    }
}

TEST_F(BodyMotion, ALoaderThatAnswersOneHasNotFailed)
{
    record.answer = KARUnchanged;
    EXPECT_EQ(body->SetPosition(shift(1.0), 0), KARUnchanged);
    EXPECT_EQ(body->GetVelocity(linear, angular, point), KARSuccess);
    EXPECT_EQ(body->GetAcceleration(linear, angular, point), KARSuccess);
    EXPECT_EQ(body->GetVelocityAndAcceleration(linear, angular, linear, angular, point,
                                               KARMPBody::AtBodyOrigin, nullptr, {}, nullptr),
              KARSuccess);
}

TEST_F(BodyMotion, MassIsNoMatterOfTheLoader)
{
    EXPECT_EQ(body->SetMass(1.0), KARSuccess);
    EXPECT_EQ(body->SetCenterOfGravity({1.0, 0.0, 0.0}), KARSuccess);
    EXPECT_EQ(body->SetInertiaMatrix(KARMath3x3Matrix::Identity()), KARSuccess);
    EXPECT_EQ(body->SetOutOfWorld(true), KARSuccess);
    EXPECT_EQ(body->SetFloating(false), KARSuccess);
    EXPECT_TRUE(record.calls.empty());
}

} // namespace

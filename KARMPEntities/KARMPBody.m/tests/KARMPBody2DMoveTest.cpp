#include "Body2DTesting.h"

#include <stdexcept>
#include <utility>

namespace {

using Body2DMove = Body2DFixture;
using Changed = std::vector<const KARMPBody*>;

TEST_F(Body2DMove, ByTheIdentityIsSkippedOnlyWhenAskedTo)
{
    const Body2D body = NewBody2D(L"body");
    log->Watch(body);
    EXPECT_EQ(body->UpdatePosition({}, true), KARSuccess);
    EXPECT_TRUE(log->changed.empty());
    EXPECT_EQ(body->UpdatePosition({}, false), KARSuccess);
    EXPECT_EQ(log->changed, Changed{body.get()});
    EXPECT_EQ(body->UpdatePosition(shift2D(1e-12), true), KARSuccess);
    EXPECT_EQ(positionOf(*body), shift2D(1e-12));
}

TEST_F(Body2DMove, ComesBeforeTheStoredPositionAndTellsNoLoader)
{
    Body2DLoaderRecord& record = NewPlanarRecord();
    const Body2D body = NewBody2D(L"body");
    body->SetLoader(new RecordingBody2DLoader(record));
    body->SetPosition(shift2D(1.0));
    record.calls.clear();
    EXPECT_EQ(body->UpdatePosition(quarterTurn2D(), true), KARSuccess);
    EXPECT_EQ(positionOf(*body), quarterTurn2D() * shift2D(1.0));
    EXPECT_TRUE(record.calls.empty());
    EXPECT_EQ(positionOf(static_cast<const KARMPBody&>(*body)), KARMathTransformation());
}

TEST_F(Body2DMove, MovesAnActiveSensorOnly)
{
    const Body2D body = NewBody2D(L"body");
    const auto sensor = Keep(KARMPDisplacementSensor2D::create(L"sensor"));
    body->SetDisplacementSensor(sensor);
    sensor->SetDisplacement(shift2D(1.0));
    body->UpdatePosition(quarterTurn2D(), true);
    KARMathTransformation2D displacement;
    sensor->GetDisplacement(displacement);
    EXPECT_EQ(displacement, quarterTurn2D() * shift2D(1.0));
    sensor->Deactivate();
    body->UpdatePosition(shift2D(1.0), true);
    sensor->GetDisplacement(displacement);
    EXPECT_EQ(displacement, quarterTurn2D() * shift2D(1.0));
}

TEST_F(Body2DMove, ReachesTheBodyThenItsSensorAndThenThoseWhoAreTold)
{
    const Body2D body = NewBody2D(L"body");
    using Sensor = LookingSensor<KARMPDisplacementSensor2D>;
    const auto sensor = Keep(QOBSharedHandle<Sensor>(new Sensor));
    body->SetDisplacementSensor(sensor);
    KARMathTransformation2D seen;
    sensor->look = [&] { seen = positionOf(*body); };
    KARMathTransformation2D displacement;
    body->addSubscriber(
        QOBNotificationFunctor(*log,
                               [&](QOBNotificationFunctor::Sender, QOBNotificationFunctor::Events) {
                                   EXPECT_EQ(positionOf(*body), shift2D(1.0));
                                   sensor->GetDisplacement(displacement);
                               }),
        QOBNotificationFunctor::Events().set(9));
    body->UpdatePosition(shift2D(1.0), true);
    EXPECT_EQ(seen, shift2D(1.0));
    EXPECT_EQ(displacement, shift2D(1.0));
}

TEST_F(Body2DMove, RefreshesImpactedChildrenAndTheirsWithoutMovingThem)
{
    const Body2D father = NewBody2D(L"father");
    const Body2D fixed = NewBody2D(L"fixed");
    const Body2D further = NewBody2D(L"further");
    const Body2D last = NewBody2D(L"last");
    fixed->Fix2D();
    father->AddImpactedChildBody(fixed);
    father->AddImpactedChildBody(last);
    fixed->AddImpactedChildBody(further);
    for (const Body2D& body : {father, fixed, further, last})
        log->Watch(body);
    const auto sensor = Keep(KARMPDisplacementSensor2D::create(L"sensor"));
    sensor->SetDisplacement(shift2D(3.0));
    further->SetDisplacementSensor(sensor);
    further->SetPosition(shift2D(2.0));
    EXPECT_EQ(father->UpdatePosition(shift2D(1.0), true), KARSuccess);
    EXPECT_EQ(log->changed, (Changed{father.get(), fixed.get(), further.get(), last.get()}));
    EXPECT_EQ(positionOf(*fixed), KARMathTransformation2D());
    EXPECT_EQ(positionOf(*further), shift2D(2.0));
    KARMathTransformation2D displacement;
    sensor->GetDisplacement(displacement);
    EXPECT_EQ(displacement, shift2D(3.0));
}

TEST_F(Body2DMove, DoesNotReachTheChildrenOfTheTree)
{
    const Body2D father = NewBody2D(L"father");
    const Body2D child = NewBody2D(L"child");
    child->SetFloating(false);
    father->AddBody(child);
    log->Watch(child);
    father->UpdatePosition(shift2D(1.0), true);
    EXPECT_TRUE(log->changed.empty());
    // The base's move is another: it goes down the tree and moves the bodies in space.
    father->KARMPBody::UpdatePosition(shift(1.0), true);
    EXPECT_EQ(log->changed, Changed{child.get()});
    EXPECT_EQ(positionOf(*child), KARMathTransformation2D());
    EXPECT_EQ(positionOf(static_cast<const KARMPBody&>(*child)), shift(1.0));
}

TEST_F(Body2DMove, EndsWithAReportAtACycle)
{
    const Body2D a = NewBody2D(L"a");
    const Body2D b = NewBody2D(L"b");
    const Body2D behind = NewBody2D(L"behind");
    a->AddImpactedChildBody(b);
    b->AddImpactedChildBody(a);
    b->AddImpactedChildBody(behind);
    for (const Body2D& body : {a, b, behind})
        log->Watch(body);
    for (int turn = 0; turn < 2; ++turn) {
        log->changed.clear();
        EXPECT_EQ(a->UpdatePosition(shift2D(1.0), true), KARSuccess);
        ExpectReports(1);
        EXPECT_EQ(log->changed, (Changed{a.get(), b.get()}));
    }
    EXPECT_EQ(positionOf(*a), shift2D(2.0));
}

TEST_F(Body2DMove, LeavesNothingBehindWhenASubscriberThrows)
{
    const Body2D father = NewBody2D(L"father");
    const Body2D child = NewBody2D(L"child");
    const Body2D last = NewBody2D(L"last");
    father->AddImpactedChildBody(child);
    child->AddImpactedChildBody(last);
    bool thrown = false;
    last->addSubscriber(
        QOBNotificationFunctor(*log,
                               [&](QOBNotificationFunctor::Sender, QOBNotificationFunctor::Events) {
                                   if (!std::exchange(thrown, true))
                                       throw std::runtime_error("subscriber");
                               }),
        QOBNotificationFunctor::Events().set(9));
    EXPECT_THROW(father->UpdatePosition(shift2D(1.0), true), std::runtime_error);
    father->UpdatePosition(shift2D(1.0), true);
    EXPECT_EQ(positionOf(*father), shift2D(2.0));
}

TEST_F(Body2DMove, InSpaceTellsTheBodyAlone)
{
    const Body2D body = NewBody2D(L"body");
    const Body2D impacted = NewBody2D(L"impacted");
    body->AddImpactedChildBody(impacted);
    log->Watch(body);
    log->Watch(impacted);
    body->Set3DPosition(shift(1.0));
    EXPECT_EQ(body->Update3DPosition(quarterTurn(), true), KARSuccess);
    KARMathTransformation position;
    body->Get3DPosition(position);
    EXPECT_EQ(position, quarterTurn() * shift(1.0));
    EXPECT_EQ(log->changed, Changed{body.get()});
    EXPECT_EQ(positionOf(*body), KARMathTransformation2D());
    EXPECT_EQ(body->Update3DPosition({}, true), KARSuccess);
    EXPECT_EQ(log->changed.size(), 1U);
    EXPECT_EQ(body->Update3DPosition({}, false), KARSuccess);
    EXPECT_EQ(log->changed.size(), 2U);
}

TEST_F(Body2DMove, InSpaceIsToldWhenThePositionHasChanged)
{
    const Body2D body = NewBody2D(L"body");
    KARMathTransformation seen;
    body->addSubscriber(
        QOBNotificationFunctor(*log,
                               [&](QOBNotificationFunctor::Sender, QOBNotificationFunctor::Events) {
                                   body->Get3DPosition(seen);
                               }),
        QOBNotificationFunctor::Events().set(9));
    body->Update3DPosition(shift(1.0), true);
    EXPECT_EQ(seen, shift(1.0));
}

TEST(Body2DMoveDepth, DoesNotMatter)
{
    constexpr int Depth = 100000;
    const int before = OpenBody2D::Alive();
    QOBSharedHandle<OpenBody2D> first = OpenBody2D::create(L"0");
    QOBSharedHandle<OpenBody2D> last = first;
    for (int i = 1; i < Depth; ++i) {
        const auto next = OpenBody2D::create(L"x");
        last->AddImpactedChildBody(Body2D(next));
        last = next;
    }
    const QOBSharedHandle<ChangeLog> log(new ChangeLog);
    log->Watch(Body(last));
    last.detach();
    first->UpdatePosition(shift2D(1.0), true);
    EXPECT_EQ(log->changed.size(), 1U);
    EXPECT_EQ(OpenBody2D::Alive(), before + Depth);
    first.detach();
    EXPECT_EQ(OpenBody2D::Alive(), before);
}

} // namespace

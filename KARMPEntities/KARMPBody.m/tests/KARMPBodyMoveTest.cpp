#include "BodyTesting.h"

#include <random>
#include <stdexcept>
#include <utility>

namespace {

using BodyMove = BodyFixture;
using Changed = std::vector<const KARMPBody*>;

TEST_F(BodyMove, ByTheIdentityIsSkippedOnlyWhenAskedTo)
{
    const Body body = NewBody(L"b");
    const Body impacted = NewBody(L"i");
    body->AddImpactedChildBody(impacted);
    log->Watch(body);
    log->Watch(impacted);
    EXPECT_EQ(body->UpdatePosition({}, true), KARSuccess);
    EXPECT_TRUE(log->changed.empty());
    EXPECT_EQ(body->UpdatePosition({}, false), KARSuccess);
    EXPECT_EQ(log->changed, (Changed{body.get(), impacted.get()}));
}

TEST_F(BodyMove, OfAnyLengthIsFollowedByChildren)
{
    constexpr int Steps = 1000000;
    for (const double length : {9e-10, 1e-30}) {
        const Body father = NewBody(L"father");
        const Body child = NewFollower(L"child");
        father->AddBody(child);
        for (int i = 0; i < Steps; ++i)
            father->UpdatePosition(shift(length), true);
        EXPECT_NEAR(positionOf(*child).GetVector().GetX() / (Steps * length), 1.0, 1e-9);
        EXPECT_EQ(positionOf(*father), positionOf(*child));
    }
}

TEST_F(BodyMove, ComesBeforeTheStoredPosition)
{
    const Body body = NewBody(L"b");
    body->SetPosition(shift(1.0), 0);
    EXPECT_EQ(body->UpdatePosition(quarterTurn(), true), KARSuccess);
    EXPECT_EQ(positionOf(*body), quarterTurn() * shift(1.0));
}

TEST_F(BodyMove, TellsNoLoader)
{
    BodyLoaderRecord& record = NewRecord();
    const Body body = NewBody(L"b");
    body->SetLoader(new RecordingBodyLoader(record));
    body->UpdatePosition(shift(1.0), true);
    EXPECT_TRUE(record.calls.empty());
}

TEST_F(BodyMove, MovesAnActiveSensorOnly)
{
    const Body body = NewBody(L"b");
    const auto sensor = Keep(KARMPDisplacementSensor::create(L"s"));
    sensor->SetDisplacement(shift(1.0));
    body->SetDisplacementSensor(sensor);
    body->UpdatePosition(quarterTurn(), true);
    KARMathTransformation displacement;
    sensor->GetDisplacement(displacement);
    EXPECT_EQ(displacement, quarterTurn() * shift(1.0));
    sensor->Deactivate();
    body->UpdatePosition(shift(5.0), true);
    KARMathTransformation same;
    sensor->GetDisplacement(same);
    EXPECT_EQ(same, displacement);
}

TEST_F(BodyMove, IsToldWhenTheBodyAndItsSensorHaveMovedAndItsChildrenHaveNot)
{
    const Body father = NewBody(L"father");
    const Body child = NewFollower(L"child");
    father->AddBody(child);
    const auto neighbour = TestNeighbour::create(L"n");
    father->SetWDMBody(neighbour);
    const auto sensor = Keep(KARMPDisplacementSensor::create(L"s"));
    father->SetDisplacementSensor(sensor);
    int told = 0;
    father->addSubscriber(
        QOBNotificationFunctor(*log,
                               [&](QOBNotificationFunctor::Sender, QOBNotificationFunctor::Events) {
                                   ++told;
                                   EXPECT_EQ(positionOf(*father), shift(1.0));
                                   KARMathTransformation displacement;
                                   sensor->GetDisplacement(displacement);
                                   EXPECT_EQ(displacement, shift(1.0));
                                   EXPECT_EQ(positionOf(*child), KARMathTransformation());
                               }),
        QOBNotificationFunctor::Events().set(9));
    father->UpdatePosition(shift(1.0), true);
    EXPECT_EQ(told, 1);
    EXPECT_EQ(positionOf(*child), shift(1.0));
}

TEST_F(BodyMove, ReachesTheNeighbourBeforeTheSensor)
{
    const Body body = NewBody(L"b");
    const auto neighbour = TestNeighbour::create(L"n");
    body->SetWDMBody(neighbour);
    using Sensor = LookingSensor<KARMPDisplacementSensor>;
    const auto sensor = Keep(QOBSharedHandle<Sensor>(new Sensor));
    body->SetDisplacementSensor(sensor);
    KARMathTransformation seen;
    sensor->look = [&] { neighbour->GetPosition(seen); };
    body->UpdatePosition(shift(1.0), true);
    EXPECT_EQ(seen, shift(1.0));
}

TEST_F(BodyMove, EndsAmongTheChildrenAtOneThatIsFixed)
{
    const Body father = NewBody(L"father");
    const Body a = NewFollower(L"a");
    const Body b = NewFollower(L"b");
    const Body c = NewFollower(L"c");
    b->Fix();
    for (const Body& child : {a, b, c})
        father->AddBody(child);
    EXPECT_EQ(father->UpdatePosition(shift(1.0), true), KARSuccess);
    EXPECT_EQ(positionOf(*father), shift(1.0));
    EXPECT_EQ(positionOf(*a), shift(1.0));
    EXPECT_EQ(positionOf(*b), KARMathTransformation());
    EXPECT_EQ(positionOf(*c), KARMathTransformation());
}

TEST_F(BodyMove, EndsAmongTheChildrenAtOneThatFloats)
{
    const Body father = NewBody(L"father");
    const Body a = NewBody(L"a");
    const Body b = NewFollower(L"b");
    father->AddBody(a);
    father->AddBody(b);
    father->UpdatePosition(shift(1.0), true);
    EXPECT_EQ(positionOf(*a), KARMathTransformation());
    EXPECT_EQ(positionOf(*b), KARMathTransformation());
}

TEST_F(BodyMove, RefreshesAllImpactedChildrenWithoutMovingThem)
{
    const Body father = NewBody(L"father");
    const Body floating = NewBody(L"floating");
    const Body fixed = NewFollower(L"fixed");
    const Body follower = NewFollower(L"follower");
    fixed->Fix();
    for (const Body& body : {floating, fixed, follower}) {
        father->AddImpactedChildBody(body);
        log->Watch(body);
    }
    const auto neighbour = TestNeighbour::create(L"n");
    follower->SetWDMBody(neighbour);
    follower->SetFloating(false);
    follower->SetPosition(shift(4.0), 0);
    father->UpdatePosition(shift(1.0), true);
    EXPECT_EQ(log->changed, (Changed{floating.get(), fixed.get(), follower.get()}));
    EXPECT_EQ(positionOf(*floating), KARMathTransformation());
    EXPECT_EQ(positionOf(*follower), shift(4.0)) << "the position went to the neighbour";
}

TEST_F(BodyMove, RefreshesOnlyTheImpactedBelowAnImpactedChild)
{
    const Body father = NewBody(L"father");
    const Body impacted = NewBody(L"impacted");
    const Body child = NewFollower(L"child");
    const Body further = NewBody(L"further");
    father->AddImpactedChildBody(impacted);
    impacted->AddBody(child);
    impacted->AddImpactedChildBody(further);
    for (const Body& body : {father, impacted, child, further})
        log->Watch(body);
    father->UpdatePosition(shift(1.0), true);
    EXPECT_EQ(log->changed, (Changed{father.get(), impacted.get(), further.get()}));
}

TEST_F(BodyMove, MovesAChildThatIsListedTwiceTwice)
{
    const Body father = NewBody(L"father");
    const Body child = NewFollower(L"child");
    father->AddBody(child);
    father->AddBody(child);
    ExpectReports(1);
    father->UpdatePosition(shift(1.0), true);
    EXPECT_EQ(positionOf(*child), shift(2.0));
}

TEST_F(BodyMove, EndsWithAReportAtACycleOfChildren)
{
    const Body a = NewFollower(L"a");
    const Body b = NewFollower(L"b");
    const Body behind = NewFollower(L"behind");
    const Body impacted = NewBody(L"impacted");
    a->AddBody(b);
    b->AddBody(a);
    b->AddBody(behind);
    b->AddImpactedChildBody(impacted);
    log->Watch(impacted);
    EXPECT_EQ(a->UpdatePosition(shift(1.0), true), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(positionOf(*a), shift(1.0));
    EXPECT_EQ(positionOf(*b), shift(1.0));
    EXPECT_EQ(positionOf(*behind), KARMathTransformation());
    EXPECT_EQ(log->changed, Changed{impacted.get()});
    // The next move meets the cycle again: nothing is left of the first.
    a->UpdatePosition(shift(1.0), true);
    ExpectReports(1);
    EXPECT_EQ(positionOf(*b), shift(2.0));
}

TEST_F(BodyMove, EndsWithAReportAtACycleOfImpactedChildren)
{
    const Body a = NewBody(L"a");
    const Body b = NewBody(L"b");
    const Body behind = NewBody(L"behind");
    a->AddImpactedChildBody(b);
    a->AddImpactedChildBody(behind);
    b->AddImpactedChildBody(b);
    for (const Body& body : {a, b, behind})
        log->Watch(body);
    EXPECT_EQ(a->UpdatePosition(shift(1.0), true), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(log->changed, (Changed{a.get(), b.get(), behind.get()}));
}

TEST_F(BodyMove, MeetsAFatherAmongTheImpactedWithoutAReport)
{
    // The father rests the second time, so its children do not follow again.
    const Body father = NewBody(L"father");
    const Body child = NewFollower(L"child");
    father->AddBody(child);
    child->AddImpactedChildBody(father);
    log->Watch(father);
    log->Watch(child);
    father->UpdatePosition(shift(1.0), true);
    EXPECT_EQ(log->changed, (Changed{father.get(), child.get(), father.get()}));
    EXPECT_EQ(positionOf(*father), shift(1.0));
}

TEST_F(BodyMove, CanBeStartedFromWithinAnother)
{
    const Body father = NewBody(L"father");
    const Body child = NewFollower(L"child");
    const Body last = NewFollower(L"last");
    father->AddBody(child);
    father->AddBody(last);
    bool started = false;
    child->addSubscriber(
        QOBNotificationFunctor(*log,
                               [&](QOBNotificationFunctor::Sender, QOBNotificationFunctor::Events) {
                                   if (!std::exchange(started, true))
                                       father->UpdatePosition(shift(0.0, 1.0), true);
                               }),
        QOBNotificationFunctor::Events().set(9));
    father->UpdatePosition(shift(1.0), true);
    EXPECT_EQ(positionOf(*father), shift(1.0, 1.0));
    EXPECT_EQ(positionOf(*child), shift(1.0, 1.0));
    EXPECT_EQ(positionOf(*last), shift(1.0, 1.0));
}

TEST_F(BodyMove, LeavesNothingBehindWhenASubscriberThrows)
{
    const Body father = NewBody(L"father");
    const Body child = NewFollower(L"child");
    const Body last = NewFollower(L"last");
    father->AddBody(child);
    child->AddBody(last);
    bool thrown = false;
    last->addSubscriber(
        QOBNotificationFunctor(*log,
                               [&](QOBNotificationFunctor::Sender, QOBNotificationFunctor::Events) {
                                   if (!std::exchange(thrown, true))
                                       throw std::runtime_error("subscriber");
                               }),
        QOBNotificationFunctor::Events().set(9));
    EXPECT_THROW(father->UpdatePosition(shift(1.0), true), std::runtime_error);
    father->UpdatePosition(shift(1.0), true);
    EXPECT_EQ(positionOf(*last), shift(2.0));
}

TEST(BodyMoveDepth, DoesNotMatter)
{
    constexpr int Depth = 100000;
    const auto world = QOBBasicWorld::create(L"w");
    std::vector<Body> bodies;
    for (int i = 0; i < Depth; ++i) {
        bodies.push_back(KARMPBody::create(L""));
        bodies.back()->SetFloating(false);
        world->addLogicalChild(QOBSharedHandle<QOBBasicEntity>(bodies.back()));
        if (i > 0)
            bodies[static_cast<std::size_t>(i) - 1]->AddBody(bodies.back());
    }
    bodies.front()->UpdatePosition(shift(1.0), true);
    for (const Body& body : bodies)
        ASSERT_EQ(positionOf(*body), shift(1.0));
    for (std::size_t i = 1; i < bodies.size(); ++i)
        bodies[i - 1]->AddImpactedChildBody(bodies[i]);
    const QOBSharedHandle<ChangeLog> log(new ChangeLog);
    log->Watch(bodies.back());
    // Only the impacted rows end at the last body: through one child each it would take forever,
    // so the children are taken out of the move.
    for (const Body& body : bodies)
        body->Fix();
    bodies.front()->UpdatePosition(shift(1.0), true);
    EXPECT_EQ(log->changed.size(), 1U);
}

/// What a body is told to do, step by step, as a recursion.
struct Reference
{
    struct Node
    {
        bool floating = false;
        bool fixed = false;
        bool hasSensor = false;
        bool sensorActive = true;
        KARMathTransformation position;
        KARMathTransformation displacement;
        std::vector<std::size_t> children;
        std::vector<std::size_t> impacted;
    };
    std::vector<Node> nodes;
    std::vector<std::size_t> changed;

    KARStatus UpdatePosition(std::size_t index, const KARMathTransformation& move,
                             bool skipIdentity)
    {
        if (skipIdentity && move.IsIdentity())
            return KARSuccess;
        Node& node = nodes[index];
        node.position = move * node.position;
        if (node.hasSensor && node.sensorActive)
            node.displacement = move * node.displacement;
        changed.push_back(index);
        UpdateChildrenPosition(index, move);
        return KARSuccess;
    }
    KARStatus UpdateChildrenPosition(std::size_t index, const KARMathTransformation& move)
    {
        KARStatus status = KARSuccess;
        for (std::size_t child : nodes[index].children) {
            status = KARFailure;
            if (!nodes[child].floating && !nodes[child].fixed)
                status = UpdatePosition(child, move, true);
            if (KARFailed(status))
                break;
        }
        status = KARSuccess;
        for (std::size_t body : nodes[index].impacted) {
            status = UpdatePosition(body, KARMathTransformation(), false);
            if (KARFailed(status))
                break;
        }
        return status;
    }
};

/// Random bodies, the same in the library and in the reference.
class RandomBodies : public BodyFixture
{
protected:
    using Random = std::mt19937;

    bool Chance(int percent)
    {
        return std::uniform_int_distribution<int>(0, 99)(m_random) < percent;
    }
    double Coordinate() { return std::uniform_int_distribution<int>(-9, 9)(m_random) / 4.0; }
    KARMathTransformation Move()
    {
        if (Chance(10))
            return {};
        if (Chance(5))
            return shift(1e-11);
        const KARMathTransformation turn = KARMathTransformation::Rotation(
            {{Coordinate(), 0.0, 1.0}, {Coordinate(), 1.0, Coordinate()}}, Coordinate());
        return turn * shift(Coordinate(), Coordinate(), Coordinate());
    }
    void Build(std::size_t count)
    {
        m_reference = {};
        m_reference.nodes.resize(count);
        m_bodies.clear();
        m_sensors.clear();
        for (Reference::Node& node : m_reference.nodes) {
            const Body body = NewBody(L"");
            node.floating = Chance(12);
            body->SetFloating(node.floating);
            node.fixed = Chance(12);
            body->SetFix(node.fixed);
            node.position = Move();
            body->SetPosition(node.position, 0);
            node.hasSensor = Chance(60);
            node.sensorActive = Chance(70);
            const auto sensor = Keep(KARMPDisplacementSensor::create(L""));
            if (!node.sensorActive)
                sensor->Deactivate();
            if (node.hasSensor)
                body->SetDisplacementSensor(sensor);
            log->Watch(body);
            m_bodies.push_back(body);
            m_sensors.push_back(sensor);
        }
        // Links go to later bodies only, so that the recursion ends.
        for (std::size_t from = 0; from < count; ++from) {
            for (std::size_t to = from + 1; to < count; ++to) {
                if (Chance(30))
                    Link(from, to);
                if (Chance(12) && m_bodies[from]->AddImpactedChildBody(m_bodies[to]) == KARSuccess)
                    m_reference.nodes[from].impacted.push_back(to);
            }
        }
        TakeReports(); // second fathers
        // Stored positions that are nearly the identity are not stored.
        for (std::size_t i = 0; i < count; ++i)
            m_bodies[i]->GetPosition(m_reference.nodes[i].position);
    }
    void Link(std::size_t from, std::size_t to)
    {
        m_bodies[from]->AddBody(m_bodies[to]);
        m_reference.nodes[from].children.push_back(to);
    }
    void Compare()
    {
        ASSERT_EQ(log->changed.size(), m_reference.changed.size());
        for (std::size_t i = 0; i < log->changed.size(); ++i)
            ASSERT_EQ(log->changed[i], m_bodies[m_reference.changed[i]].get());
        for (std::size_t i = 0; i < m_bodies.size(); ++i) {
            ASSERT_EQ(positionOf(*m_bodies[i]), m_reference.nodes[i].position);
            KARMathTransformation displacement;
            m_sensors[i]->GetDisplacement(displacement);
            ASSERT_EQ(displacement, m_reference.nodes[i].displacement);
        }
    }

    std::vector<Body> m_bodies;
    std::vector<QOBSharedHandle<KARMPDisplacementSensor>> m_sensors;
    Reference m_reference;
    Random m_random{20260611};
};

TEST_F(RandomBodies, MoveAsTheRecursionSays)
{
    std::size_t told = 0;
    for (int round = 0; round < 300; ++round) {
        Build(2 + static_cast<std::size_t>(round % 9));
        for (int step = 0; step < 4; ++step) {
            const std::size_t start =
                std::uniform_int_distribution<std::size_t>(0, m_bodies.size() - 1)(m_random);
            const KARMathTransformation move = Move();
            const bool skip = Chance(50);
            log->changed.clear();
            m_reference.changed.clear();
            EXPECT_EQ(m_bodies[start]->UpdatePosition(move, skip),
                      m_reference.UpdatePosition(start, move, skip));
            ASSERT_NO_FATAL_FAILURE(Compare());
            told += log->changed.size();
        }
    }
    EXPECT_GT(told, 1500U) << "the trees are too small to tell anything";
}

} // namespace

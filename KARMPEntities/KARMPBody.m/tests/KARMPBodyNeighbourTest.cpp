#include "BodyTesting.h"

namespace {

/// A body and the body of the world model behind it.
class BodyNeighbour : public BodyFixture
{
protected:
    std::wstring NameTakenFrom(const std::wstring& name)
    {
        body->SetWDMBody(TestNeighbour::create(name));
        return body->getEntityName();
    }

    QOBSharedHandle<TestNeighbour> neighbour = TestNeighbour::create(L"123456789012345678crank");
    Body body = NewBody(L"body");
};

TEST_F(BodyNeighbour, GivesTheBodyItsPositionStatusAndName)
{
    BodyLoaderRecord& record = NewRecord();
    body->SetLoader(new RecordingBodyLoader(record));
    neighbour->SetPosition(quarterTurn());
    neighbour->setFloating(false);
    EXPECT_EQ(body->SetWDMBody(neighbour), KARSuccess);
    EXPECT_EQ(positionOf(*body), quarterTurn());
    EXPECT_FALSE(body->IsFloating());
    EXPECT_EQ(body->getEntityName(), L"crank");
    EXPECT_TRUE(record.calls.empty());
    // The stored position is the neighbour's as well: setting it is no change.
    body->SetPosition(quarterTurn(), 0);
    EXPECT_TRUE(record.calls.empty());
}

TEST_F(BodyNeighbour, ThatIsNullChangesNothing)
{
    body->SetWDMBody(neighbour);
    EXPECT_EQ(body->SetWDMBody({}), KARSuccess);
    neighbour->SetPosition(shift(3.0));
    EXPECT_EQ(positionOf(*body), shift(3.0));
}

TEST_F(BodyNeighbour, LosesTheFirstOfEachTagOfItsName)
{
    const std::wstring prefix(18, L'p');
    EXPECT_EQ(NameTakenFrom(prefix + L"crank---IN_WORK"), L"crank");
    EXPECT_EQ(NameTakenFrom(prefix + L"crank--- IN_WORK"), L"crank");
    EXPECT_EQ(NameTakenFrom(prefix + L"a---IN_WORKb--- IN_WORKc"), L"abc");
    EXPECT_EQ(NameTakenFrom(prefix + L"a---IN_WORKb---IN_WORK"), L"ab---IN_WORK");
    EXPECT_EQ(NameTakenFrom(L"---IN_WORK" + prefix), std::wstring(10, L'p'));
    EXPECT_EQ(NameTakenFrom(prefix), L"");
    EXPECT_EQ(NameTakenFrom(L"short"), L"");
    EXPECT_EQ(NameTakenFrom(L""), L"");
}

TEST_F(BodyNeighbour, IsTheAuthorityOnThePosition)
{
    body->SetWDMBody(neighbour);
    neighbour->SetPosition(shift(3.0));
    EXPECT_EQ(positionOf(*body), shift(3.0));
    neighbour->fails = true;
    KARMathTransformation position = shift(8.0);
    EXPECT_EQ(body->GetPosition(position), KARSuccess);
    EXPECT_EQ(position, shift(8.0)) << "what a failing neighbour leaves there";
}

TEST_F(BodyNeighbour, FollowsASetPositionWhenAskedTo)
{
    body->SetWDMBody(neighbour);
    neighbour->positionsSet = 0;
    EXPECT_EQ(body->SetPosition(shift(1.0), 0), KARSuccess);
    EXPECT_EQ(neighbour->positionsSet, 0);
    EXPECT_EQ(body->SetPosition(shift(2.0), 1), KARSuccess);
    EXPECT_EQ(neighbour->positionsSet, 1);
    EXPECT_EQ(positionOf(*body), shift(2.0));
    neighbour->fails = true;
    EXPECT_EQ(body->SetPosition(shift(4.0), 1), KARSuccess);
    ExpectReports(1);
}

TEST_F(BodyNeighbour, FollowsAMove)
{
    body->SetWDMBody(neighbour);
    EXPECT_EQ(body->UpdatePosition(shift(2.0), true), KARSuccess);
    EXPECT_EQ(positionOf(*body), shift(2.0));
    const Body child = NewFollower(L"child");
    body->AddBody(child);
    neighbour->fails = true;
    EXPECT_EQ(body->UpdatePosition(shift(2.0), true), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(positionOf(*child), shift(2.0)) << "the move goes on";
}

TEST_F(BodyNeighbour, KeepsTheFloatingStatusItCameWith)
{
    body->SetWDMBody(neighbour);
    body->SetFloating(false);
    EXPECT_FALSE(body->IsFloating());
    EXPECT_TRUE(neighbour->isFloating());
    neighbour->setFloating(false);
    body->SetFloating(true);
    EXPECT_TRUE(neighbour->isFloating());
}

TEST_F(BodyNeighbour, GetsItsFloatingStatusBack)
{
    neighbour->setFloating(false);
    body->SetWDMBody(neighbour);
    body->SetFloating(true);
    neighbour->setFloating(true);
    EXPECT_EQ(body->Restore_Initial_WDMBody_Floating_status(), KARSuccess);
    EXPECT_FALSE(body->IsFloating());
    EXPECT_FALSE(neighbour->isFloating());
}

/// A neighbour that notes whether its body floats whenever its own status is set.
class AskingNeighbour : public TestNeighbour
{
public:
    void setFloating(bool floating) override
    {
        seen.push_back(body->IsFloating());
        TestNeighbour::setFloating(floating);
    }

    const KARMPBody* body = nullptr;
    std::vector<bool> seen;
};

TEST_F(BodyNeighbour, HearsOfAStatusAfterTheBodyAndOfItsOwnBeforeIt)
{
    const QOBSharedHandle<AskingNeighbour> asking(new AskingNeighbour);
    asking->body = body.get();
    body->SetWDMBody(asking);
    EXPECT_TRUE(asking->seen.empty()) << "attaching sets nothing";
    body->SetFloating(false);
    EXPECT_EQ(asking->seen, std::vector<bool>{false});
    body->Restore_Initial_WDMBody_Floating_status();
    EXPECT_EQ(asking->seen, (std::vector<bool>{false, false}));
    EXPECT_TRUE(body->IsFloating());
}

TEST_F(BodyNeighbour, ThatNeverCameRestoresToNotFloating)
{
    EXPECT_EQ(body->Restore_Initial_WDMBody_Floating_status(), KARSuccess);
    EXPECT_FALSE(body->IsFloating());
}

TEST_F(BodyNeighbour, GetsTheNeighboursOfTheChildren)
{
    body->SetWDMBody(neighbour);
    const Body with = NewBody(L"with");
    const auto childNeighbour = TestNeighbour::create(L"c");
    with->SetWDMBody(childNeighbour);
    const Body without = NewBody(L"without");
    body->AddBody(with);
    body->AddBody(without);
    ASSERT_EQ(neighbour->added.size(), 2U);
    EXPECT_EQ(neighbour->added[0], childNeighbour);
    EXPECT_FALSE(neighbour->added[1]);
}

/// A neighbour that counts its body's children whenever it gets another one's neighbour.
class CountingNeighbour : public TestNeighbour
{
public:
    KARStatus addBody(const QOBSharedHandle<QOBBasicBody3D>& child) override
    {
        seen.push_back(body->GetChildrenBodyCount());
        return TestNeighbour::addBody(child);
    }

    const KARMPBody* body = nullptr;
    std::vector<int> seen;
};

TEST_F(BodyNeighbour, GetsTheNeighbourOfAChildBeforeTheBodyListsTheChild)
{
    const QOBSharedHandle<CountingNeighbour> counting(new CountingNeighbour);
    counting->body = body.get();
    body->SetWDMBody(counting);
    body->AddBody(NewBody(L"first"));
    body->AddBody(NewBody(L"second"));
    EXPECT_EQ(counting->seen, (std::vector<int>{0, 1}));
}

/// A neighbour that moves and answers 1.
class UnchangedNeighbour : public TestNeighbour
{
public:
    KARStatus SetPosition(const KARMathTransformation& position) override
    {
        TestNeighbour::SetPosition(position);
        return KARUnchanged;
    }
};

TEST_F(BodyNeighbour, ThatAnswersOneHasNotFailed)
{
    body->SetWDMBody(QOBSharedHandle<UnchangedNeighbour>(new UnchangedNeighbour));
    EXPECT_EQ(body->SetPosition(shift(1.0), 1), KARSuccess);
    EXPECT_EQ(body->UpdatePosition(shift(2.0), true), KARSuccess);
    EXPECT_EQ(positionOf(*body), shift(3.0));
}

TEST(BodyNeighbourNameProcess, IsLeftAloneWhenNamesAreSwitchedOff)
{
    Body body = KARMPBody::create(L"body");
    const auto neighbour = QOBBasicBody3D::create(L"123456789012345678crank");
    neighbour->SetPosition(shift(2.0));
    body->SetWDMBody(neighbour);
    EXPECT_EQ(body->getEntityName(), L"body");
    EXPECT_EQ(positionOf(*body), shift(2.0));
    KARMPBody::destroy(body);
}

} // namespace

#include "KARMPLink.h"
#include "KARMPTestFixture.h"
#include "TestEntity.h"

#include <type_traits>

class NeverDefined;

namespace {

class Link : public KARMPTestFixture
{
protected:
    KARMPLink<TestEntity> link;
    QOBSharedHandle<TestEntity> first = TestEntity::create(L"first");
    QOBSharedHandle<TestEntity> second = TestEntity::create(L"second");

    void ExpectLinked(const QOBSharedHandle<TestEntity>& expected) const
    {
        EXPECT_EQ(link.Handle(), expected);
        EXPECT_EQ(static_cast<bool>(link), static_cast<bool>(expected));
        QOBSharedHandle<TestEntity> handle = TestEntity::create(L"");
        EXPECT_EQ(link.Get(handle), expected ? KARSuccess : KARFailure);
        EXPECT_EQ(handle, expected);
    }
};

TEST_F(Link, IsNewlyNoneWhichIsNoFailedCheck)
{
    ExpectLinked(nullptr);
}

TEST_F(Link, KeepsTheLastHandleThatWasSet)
{
    EXPECT_EQ(link.Set(first), KARSuccess);
    ExpectLinked(first);
    EXPECT_EQ(link.Set(first), KARSuccess);
    ExpectLinked(first);
    EXPECT_EQ(link.Set(second), KARSuccess);
    ExpectLinked(second);
}

TEST_F(Link, StaysWhenANullHandleIsSetOrRemoved)
{
    link.Set(first);
    EXPECT_EQ(link.Set(nullptr), KARFailure);
    ExpectLinked(first);
    EXPECT_EQ(link.Remove(nullptr), KARFailure);
    ExpectLinked(first);
    ExpectReports(2);
}

TEST_F(Link, IsUnchangedByTheSameReferentWhenAnotherIsToBeSet)
{
    EXPECT_EQ(link.SetOther(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(link.SetOther(first), KARSuccess);
    EXPECT_EQ(link.SetOther(first), KARUnchanged);
    ExpectLinked(first);
    EXPECT_EQ(link.SetOther(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(link.SetOther(second), KARSuccess);
    ExpectLinked(second);
}

TEST_F(Link, LeavesTheArgumentAloneWhenItIsAskedForWhatMayNotBeSet)
{
    QOBSharedHandle<TestEntity> handle = second;
    EXPECT_EQ(link.GetIfSet(handle), KARUnchanged);
    EXPECT_EQ(handle, second);
    link.Set(first);
    EXPECT_EQ(link.GetIfSet(handle), KARSuccess);
    EXPECT_EQ(handle, first);
}

TEST_F(Link, TakesAnyHandleThatIsAssigned)
{
    EXPECT_EQ(link.Assign(first), KARSuccess);
    ExpectLinked(first);
    EXPECT_EQ(link.Assign(nullptr), KARSuccess);
    ExpectLinked(nullptr);
}

TEST_F(Link, ReportsAtTheCallerThatARequiredReferentIsMissing)
{
    QOBSharedHandle<TestEntity> found = first;
    EXPECT_EQ(link.Require(found), KARFailure);
    EXPECT_FALSE(found);
    ASSERT_EQ(UnclaimedReports().size(), 1U);
    EXPECT_NE(UnclaimedReports()[0].find("KARMPLinkTest.cpp"), std::string::npos);
    ExpectReports(1);
    link.Set(second);
    EXPECT_EQ(link.Require(found), KARSuccess);
    EXPECT_EQ(found, second);
}

TEST_F(Link, ReportsANullHandleAtTheCaller)
{
    EXPECT_EQ(link.Set(nullptr), KARFailure);
    EXPECT_EQ(link.Remove(nullptr), KARFailure);
    ASSERT_EQ(UnclaimedReports().size(), 2U);
    for (const std::string& report : UnclaimedReports())
        EXPECT_NE(report.find("KARMPLinkTest.cpp"), std::string::npos) << report;
    ExpectReports(2);
}

TEST_F(Link, IsRemovedByTheLinkedReferentOnly)
{
    EXPECT_EQ(link.Remove(first), KARUnchanged);
    link.Set(first);
    EXPECT_EQ(link.Remove(second), KARUnchanged);
    ExpectLinked(first);
    EXPECT_EQ(link.Remove(first), KARSuccess);
    ExpectLinked(nullptr);
}

TEST_F(Link, IsRemovedByItsOwnHandle)
{
    link.Set(first);
    EXPECT_EQ(link.Remove(link.Handle()), KARSuccess);
    ExpectLinked(nullptr);
}

TEST_F(Link, IsTakenOnce)
{
    link.Set(first);
    EXPECT_EQ(link.Take(), first);
    ExpectLinked(nullptr);
    EXPECT_EQ(link.Take(), nullptr);
}

TEST_F(Link, IsNoneAfterClear)
{
    link.Set(first);
    link.Clear();
    ExpectLinked(nullptr);
}

TEST_F(Link, CountsAReferenceForAsLongAsItLasts)
{
    const int before = TestEntity::Alive();
    link.Set(TestEntity::create(L""));
    {
        const KARMPLink<TestEntity> copy(link);
        link.Clear();
        EXPECT_EQ(TestEntity::Alive(), before + 1);
    }
    EXPECT_EQ(TestEntity::Alive(), before);
}

TEST_F(Link, MayReferToAnIncompleteType)
{
    const auto handle = QOBSharedHandle<NeverDefined>::unchecked(first);
    KARMPLink<NeverDefined> unknown;
    EXPECT_EQ(unknown.Set(handle), KARSuccess);
    const KARMPLink<NeverDefined> copy(unknown);
    EXPECT_EQ(unknown.Remove(handle), KARSuccess);
    EXPECT_FALSE(unknown);
    EXPECT_EQ(copy.Handle(), handle);
    EXPECT_EQ(unknown.Set(nullptr), KARFailure);
    ExpectReports(1);
    static_assert(sizeof(unknown) == sizeof(handle));
}

} // namespace

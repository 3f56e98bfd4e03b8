// Elements, bases and statuses of content lists, and the operations that a class has of them.
#include "ContentTesting.h"

namespace {

using namespace karmp;
using C = ContentTestEntity;

// What the base of a frame's test does.
KARStatus s_baseStatus = KARSuccess;
KARStatus WriteTestBase(const void*, KARMPSerializer* element)
{
    KARMPSerializer* child = nullptr;
    element->AddElement(L"Base", child);
    return s_baseStatus;
}
KARStatus ReadTestBase(void* owner, const KARMPDeserializer*, const KARMPEntityTable&)
{
    OwnerAs<C>(owner).calls.emplace_back("base");
    return s_baseStatus;
}

class ContentFrames : public ContentWalk
{
protected:
    ContentFrames() { s_baseStatus = KARSuccess; }

    // Both sides with the same statuses, around a number that is required.
    static auto With(const ContentStatuses& statuses)
    {
        return Element(L"E", "", {statuses, statuses},
                       Number<&C::number>(L"Number", "").Required().Through<&C::SetNumber>());
    }
    void AddNumber() { tree.Add(L"E").Leaf(L"Number", 1.0); }
};

TEST_F(ContentFrames, GiveTheStatusesOfNoNodeAndNoElement)
{
    const Content loud = Made(With({.nullNode = KARUnexpected, .missingElement = KAROutOfMemory}));
    EXPECT_EQ(WriteContent(loud, OwnerOf(*entity), nullptr, nullptr), KARUnexpected);
    ExpectReports(1);
    EXPECT_EQ(ReadContent(loud, OwnerOf(*entity), nullptr, entities, nullptr), KARUnexpected);
    ExpectReports(1);
    root.FailCreation(1);
    EXPECT_EQ(WriteContent(loud, OwnerOf(*entity), &root, nullptr), KAROutOfMemory);
    EXPECT_GE(TakeReports(), 1U);
    EXPECT_EQ(ReadContent(loud, OwnerOf(*entity), &tree, entities, nullptr), KAROutOfMemory);
    ExpectReports(1);
    const Content silent = Made(With({.nullNode = KARSuccess, .silentNull = true}));
    EXPECT_EQ(WriteContent(silent, OwnerOf(*entity), nullptr, nullptr), KARSuccess);
    EXPECT_EQ(ReadContent(silent, OwnerOf(*entity), nullptr, entities, nullptr), KARSuccess);
}

TEST_F(ContentFrames, CountFailuresOfItemsAndReportThemAgain)
{
    tree.Add(L"E");
    EXPECT_EQ(Read(With({})), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(Read(With({.counted = KARUnexpected, .itemsCount = true})), KARUnexpected);
    ExpectReports(1);
    EXPECT_EQ(Read(With({.itemsCount = true, .reportedAgain = true})), KARFailure);
    ExpectReports(2);
    root.FailCreation(2);
    EXPECT_EQ(Write(With({})), KARSuccess);
    const std::size_t reports = TakeReports();
    root.FailCreation(2);
    EXPECT_EQ(Write(With({.counted = KARUnexpected, .itemsCount = true, .reportedAgain = true})),
              KARUnexpected);
    ExpectReports(reports + 1);
}

TEST_F(ContentFrames, PutTheBaseFirstOrLast)
{
    AddNumber();
    Write(With({}), &WriteTestBase);
    EXPECT_EQ(root.Find(L"E")->Child(0).GetId(), L"Base");
    Write(With({.baseLast = true}), &WriteTestBase);
    EXPECT_EQ(root.Find(L"E[1]")->Child(1).GetId(), L"Base");
    Read(With({}), &ReadTestBase);
    Read(With({.baseLast = true}), &ReadTestBase);
    EXPECT_EQ(entity->calls, (std::vector<std::string>{"base", "number", "number", "base"}));
}

TEST_F(ContentFrames, EndPassOnOrGoOnWhenTheBaseFails)
{
    AddNumber();
    s_baseStatus = KARFailure;
    const auto ends = With({.failedBase = KARUnexpected});
    EXPECT_EQ(Write(ends, &WriteTestBase), KARUnexpected);
    EXPECT_EQ(Read(ends, &ReadTestBase), KARUnexpected);
    ExpectReports(2);
    EXPECT_FALSE(root.Has(L"E/Number"));
    EXPECT_EQ(entity->calls.size(), 1U);

    const auto goesOn = With({.goesOn = true});
    EXPECT_EQ(Write(goesOn, &WriteTestBase), KARSuccess);
    EXPECT_EQ(Read(goesOn, &ReadTestBase), KARSuccess);
    ExpectReports(2);
    EXPECT_FALSE(root.Has(L"E[1]/Number"));
    auto evenThen = goesOn;
    evenThen.list = evenThen.list.EvenIfBaseFails();
    EXPECT_EQ(Write(evenThen, &WriteTestBase), KARSuccess);
    EXPECT_EQ(Read(evenThen, &ReadTestBase), KARSuccess);
    ExpectReports(2);
    EXPECT_TRUE(root.Has(L"E[2]/Number"));
    EXPECT_EQ(entity->calls.back(), "number");

    s_baseStatus = KARUnchanged;
    const auto passes = With({.passesBase = true});
    EXPECT_EQ(Write(passes, &WriteTestBase), KARUnchanged);
    EXPECT_EQ(Read(passes, &ReadTestBase), KARUnchanged);
    EXPECT_TRUE(root.Has(L"E[3]/Number"));
    s_baseStatus = KARUnexpected;
    EXPECT_EQ(Write(passes, &WriteTestBase), KARUnexpected);
    EXPECT_EQ(Read(passes, &ReadTestBase), KARUnexpected);
    EXPECT_TRUE(root.Has(L"E[4]/Number"));
    EXPECT_EQ(entity->calls.back(), "number");
}

TEST_F(ContentFrames, LeaveTheOwnerOutUnderItsCondition)
{
    const auto list = With({}).LeftOutWhen<&C::IsWanted>();
    AddNumber();
    EXPECT_EQ(Write(list), KARSuccess);
    EXPECT_EQ(root.GetElementCount(), 0U);
    EXPECT_EQ(Read(list), KARSuccess);
    EXPECT_EQ(entity->number, 0.0);
    entity->isWanted = false;
    EXPECT_EQ(Read(list), KARSuccess);
    EXPECT_EQ(entity->number, 1.0);
    EXPECT_EQ(Write(list), KARSuccess);
    EXPECT_EQ(root.GetElementCount(), 1U);
}

TEST_F(ContentFrames, ReadAnotherElementThanTheyWrite)
{
    const auto list = With({}).ReadAs(L"Other");
    AddNumber();
    EXPECT_EQ(Read(list), KARFailure);
    ExpectReports(1);
    tree.Add(L"Other").Leaf(L"Number", 2.0);
    EXPECT_EQ(Read(list), KARSuccess);
    EXPECT_EQ(entity->number, 2.0);
    Write(list);
    EXPECT_TRUE(root.Has(L"E/Number"));
    EXPECT_FALSE(root.Has(L"Other"));
}

TEST_F(ContentWalk, MakesTheOperationsOfAClassAroundItsBase)
{
    entity->SetIdentifier(L"E1");
    entity->number = 2.5;
    EXPECT_EQ(entity->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"ContentTest/@id"), L"E1");
    EXPECT_EQ(root.Number(L"ContentTest/Number"), 2.5);
    const auto read = ContentTestEntity::create(L"");
    const auto written = TestDeserializer::From(root);
    EXPECT_EQ(read->Deserialize(written.get(), entities), KARSuccess);
    EXPECT_EQ(read->getEntityName(), L"entity");
    EXPECT_EQ(read->number, 2.5);

    const Content* const content = FindContent("ContentTestEntity");
    ASSERT_EQ(content, &ContentTestEntity::ClassContent());
    EXPECT_EQ(content->items.size(), 1U);
    EXPECT_EQ(&content->base(), &KARMPEntity::ClassContent());
    EXPECT_EQ(FindContent("NoClass"), nullptr);
}

} // namespace

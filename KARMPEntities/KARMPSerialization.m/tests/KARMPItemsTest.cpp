#include "KARMPItems.h"

#include "KARMPBody.h"
#include "KARMPJointKinds.h"
#include "KARMPPoint.h"
#include "KARMPTestFixture.h"

#include <algorithm>

using karmp::ItemData;
using karmp::ItemInfo;
using karmp::ItemKind;

namespace {

using Entities = std::vector<QOBSharedHandle<KARMPEntity>>;

class Items : public KARMPTestFixture
{
protected:
    // An entity and what it aggregates hold each other.
    ~Items() override { point->orphanObject(); }

    const ItemInfo& Row(std::wstring_view path)
    {
        static const ItemInfo none;
        const auto rows = karmp::ItemsOf(point->getClassInfo());
        const auto found = std::find_if(rows.begin(), rows.end(),
                                        [path](const ItemInfo& row) { return row.path == path; });
        EXPECT_NE(found, rows.end());
        return found != rows.end() ? *found : none;
    }
    ItemData Get(std::wstring_view path) { return Row(path).Get(*point); }
    KARStatus Set(std::wstring_view path, const ItemData& value)
    {
        return Row(path).Set(*point, value);
    }

    QOBSharedHandle<KARMPPoint> point = KARMPPoint::create(L"P");
    QOBSharedHandle<KARMPBody> body = KARMPBody::create(L"B");
};

TEST_F(Items, OfAClassStandBasesFirst)
{
    const auto rows = karmp::ItemsOf("KARMPPoint");
    std::vector<std::wstring_view> names;
    for (const ItemInfo& row : rows)
        names.push_back(row.name);
    EXPECT_EQ(names, (std::vector<std::wstring_view>{
                         L"id", L"name", L"isActive", L"entityID", L"Parameters", L"States",
                         L"Outputs", L"AggregatedElements", L"Body", L"Constraints", L"Origin"}));
    EXPECT_EQ(rows.data(), karmp::ItemsOf(point->getClassInfo()).data());
    EXPECT_TRUE(karmp::ItemsOf("NoSuchClass").empty());
}

TEST_F(Items, TellWhatTheyAre)
{
    const ItemInfo& origin = Row(L"Coordinates/Origin");
    EXPECT_EQ(origin.name, L"Origin");
    EXPECT_EQ(origin.kind, ItemKind::Numbers);
    EXPECT_EQ(origin.words.size(), 3U);
    EXPECT_EQ(origin.quantity, KARMPPhysicalQuantity::Length);
    EXPECT_EQ(origin.says, "The point.");
    EXPECT_TRUE(origin.readOnly.empty());
    EXPECT_EQ(Row(L"Body").target, "KARMPBody");
    EXPECT_EQ(Row(L"Body").otherSide, L"Geometries");
}

TEST_F(Items, AreFetchedAndStored)
{
    EXPECT_EQ(Get(L"Coordinates/Origin"), ItemData(std::vector{0.0, 0.0, 0.0}));
    EXPECT_EQ(Set(L"Coordinates/Origin", std::vector{1.0, 2.0, 3.0}), KARSuccess);
    KARMathPoint stored;
    EXPECT_EQ(point->GetPoint(stored), KARSuccess);
    EXPECT_EQ(stored.GetY(), 2.0);
    EXPECT_EQ(Get(L"Coordinates/Origin"), ItemData(std::vector{1.0, 2.0, 3.0}));
    EXPECT_EQ(Set(L"name", std::wstring(L"New")), KARSuccess);
    EXPECT_EQ(Get(L"name"), ItemData(std::wstring(L"New")));
}

TEST_F(Items, OfABoolAreBoolsWhateverTheirWords)
{
    EXPECT_EQ(Get(L"isActive"), ItemData(true));
    EXPECT_EQ(Set(L"isActive", false), KARSuccess);
    EXPECT_FALSE(point->IsActive());
    EXPECT_EQ(Set(L"isActive", std::wstring(L"yes")), KARSuccess);
    EXPECT_TRUE(point->IsActive());
}

TEST_F(Items, OfAnotherKindAreRefused)
{
    EXPECT_EQ(Set(L"Coordinates/Origin", std::vector{1.0, 2.0}), KARFailure);
    EXPECT_EQ(Set(L"Coordinates/Origin", 1.0), KARFailure);
    EXPECT_EQ(Set(L"isActive", std::wstring(L"maybe")), KARFailure);
    EXPECT_EQ(Set(L"name", ItemData()), KARFailure);
    EXPECT_EQ(Get(L"Coordinates/Origin"), ItemData(std::vector{0.0, 0.0, 0.0}));
}

TEST_F(Items, ThatCannotBeSetTellWhy)
{
    EXPECT_EQ(Row(L"id").readOnly, "An identifier never changes once it is given.");
    EXPECT_EQ(Set(L"id", std::wstring(L"other")), KARFailure);
}

TEST_F(Items, ThatAreReferencesTakeEntitiesOfTheirClass)
{
    EXPECT_EQ(Set(L"Body", QOBSharedHandle<KARMPEntity>(point)), KARFailure);
    EXPECT_EQ(Set(L"Body", QOBSharedHandle<KARMPEntity>()), KARFailure);
    EXPECT_EQ(Set(L"Body", QOBSharedHandle<KARMPEntity>(body)), KARSuccess);
    EXPECT_EQ(Get(L"Body"), ItemData(QOBSharedHandle<KARMPEntity>(body)));
}

TEST_F(Items, ThatAreListsTakeWhatTheyDoNotHold)
{
    const QOBSharedHandle<KARMPEntity> first(body);
    const QOBSharedHandle<KARMPEntity> second(KARMPBody::create(L"C"));
    EXPECT_EQ(Get(L"AggregatedElements"), ItemData(Entities()));
    EXPECT_EQ(Set(L"AggregatedElements", Entities{first}), KARSuccess);
    EXPECT_EQ(Set(L"AggregatedElements", Entities{first, second}), KARSuccess);
    EXPECT_EQ(Get(L"AggregatedElements"), ItemData(Entities{first, second}));
    EXPECT_EQ(Set(L"AggregatedElements", Entities{second}), KARFailure);
    EXPECT_EQ(Get(L"AggregatedElements"), ItemData(Entities{first, second}));
}

// A joint and its bodies hold one another.
TEST_F(Items, OfAListTellTheWordsOfItsEntries)
{
    const auto joint = KARMPRevolute::create(L"J");
    const auto other = KARMPBody::create(L"C");
    joint->LinkToBody(body, KARMPBodyOrientation::Out);
    joint->LinkToBody(other, KARMPBodyOrientation::In);
    const auto rows = karmp::ItemsOf(joint->getClassInfo());
    const auto bodies = std::find_if(rows.begin(), rows.end(),
                                     [](const ItemInfo& row) { return row.name == L"Bodies"; });
    ASSERT_NE(bodies, rows.end());
    EXPECT_TRUE(bodies->isInOrder);
    EXPECT_EQ(bodies->entryWord, L"bodyOrientation");
    EXPECT_EQ(bodies->Count(*joint), 2);
    EXPECT_EQ(bodies->EntryWords(*joint), (std::vector<std::wstring_view>{L"Out", L"In"}));
    joint->orphanObject();
}

TEST_F(Items, OfAListInAnyOrderSaySo)
{
    EXPECT_FALSE(Row(L"Constraints").isInOrder);
    EXPECT_EQ(Row(L"Constraints").entryWord, L"");
    EXPECT_EQ(Row(L"Constraints").Count(*point), 0);
    EXPECT_TRUE(Row(L"Constraints").EntryWords(*point).empty());
    EXPECT_EQ(Row(L"Coordinates/Origin").Count(*point), -1);
}

TEST_F(Items, ThatTheTableCannotGetSaySo)
{
    const auto canGet = [](std::string_view className, std::wstring_view path) {
        for (const ItemInfo& row : karmp::ItemsOf(className))
            if (row.path == path)
                return row.CanGet();
        ADD_FAILURE() << "no such item";
        return false;
    };
    EXPECT_TRUE(canGet("KARMPPoint", L"Coordinates/Origin"));
    EXPECT_TRUE(canGet("KARMPPoint", L"Constraints"));
    EXPECT_TRUE(canGet("KARMPExpression", L"Variables"));
    EXPECT_FALSE(canGet("KARMPExpression", L"VariableMapping/Var"));
    EXPECT_FALSE(canGet("KARMPLinearEquation", L"LinearTermDataContainer"));
    EXPECT_FALSE(canGet("KARMPSketchFunction", L"CurveSegments"));
}

TEST_F(Items, ThatAreLinksAreThoseOfTheTableThatCanBeFetched)
{
    std::vector<std::wstring_view> paths;
    for (const ItemInfo* const link : karmp::LinkItemsOf(point->getClassInfo()))
        paths.push_back(link->path);
    EXPECT_EQ(paths,
              (std::vector<std::wstring_view>{L"Parameters", L"States", L"Outputs",
                                              L"AggregatedElements", L"Body", L"Constraints"}));
    EXPECT_EQ(karmp::LinkItemsOf(point->getClassInfo()).front(), &Row(L"Parameters"));
}

TEST_F(Items, LeadToTheirTargetsOneByOne)
{
    const auto visited = [this] {
        std::vector<std::pair<std::wstring, const KARMPEntity*>> links;
        karmp::ForEachTarget(*point,
                             [&](const ItemInfo& item, const QOBSharedHandle<KARMPEntity>& target) {
                                 links.emplace_back(item.path, target.get());
                             });
        return links;
    };
    EXPECT_TRUE(visited().empty());
    const QOBSharedHandle<KARMPEntity> first(body);
    const QOBSharedHandle<KARMPEntity> second(KARMPBody::create(L"C"));
    Set(L"AggregatedElements", Entities{second, first});
    Set(L"Body", first);
    EXPECT_EQ(visited(), (std::vector<std::pair<std::wstring, const KARMPEntity*>>{
                             {L"AggregatedElements", second.get()},
                             {L"AggregatedElements", first.get()},
                             {L"Body", first.get()}}));
}

} // namespace

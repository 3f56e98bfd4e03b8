#include "EditTesting.h"
#include "QOBClassInfo.h"

#include <set>
#include <tuple>

using namespace karmp::model;
using karmp::ItemInfo;

namespace {

using LinksTest = KARMPTestFixture;
using Entity = QOBSharedHandle<KARMPEntity>;

const QOBClassInfo& InfoOf(const std::string& className)
{
    Entity entity;
    KARMPFactory::Create(className, entity);
    return entity->getClassInfo();
}

/// Each pair of halves that the content lists know, with two classes that have it.
struct KnownPair
{
    LinkPair pair;
    std::string first;
    std::string second;
};
const std::vector<KnownPair>& AllPairs()
{
    static const std::vector<KnownPair> all = [] {
        std::vector<KnownPair> pairs;
        // Classes of one family may have halves of one item in different lists.
        std::set<std::tuple<std::string, const void*, const void*>> known;
        const auto names = KARMPFactory::GetClassNames();
        for (const std::string& first : names)
            for (const std::string& second : names)
                for (const LinkPair& pair : PairsBetween(InfoOf(first), InfoOf(second)))
                    if (pair.second != nullptr &&
                        known.insert({first, pair.first->written, pair.second->written}).second)
                        pairs.push_back({pair, first, second});
        return pairs;
    }();
    return all;
}

TEST_F(LinksTest, EachItemWithAnOtherSideIsHalfOfAPair)
{
    std::set<const void*> halves;
    for (const KnownPair& known : AllPairs())
        halves.insert(known.pair.first->written);
    for (const std::string& name : KARMPFactory::GetClassNames())
        for (const ItemInfo* const item : karmp::LinkItemsOf(InfoOf(name)))
            if (!item->otherSide.empty())
                EXPECT_TRUE(halves.contains(item->written))
                    << name << ' ' << kar::ToUtf8(item->path);
    EXPECT_GE(AllPairs().size(), 30U);
}

TEST_F(LinksTest, OneCallMakesBothHalvesAndOneTakesThemAway)
{
    for (const KnownPair& known : AllPairs()) {
        Model model("M");
        const auto a = model.Add(known.first, "a");
        const auto b = model.Add(known.second, "b");
        ASSERT_TRUE(a && b);
        const std::string before = TextOf(model);
        const auto& [first, second] = known.pair;
        const std::string name = known.first + ' ' + kar::ToUtf8(first->path) + ' ' + known.second +
                                 ' ' + kar::ToUtf8(second->path);
        const std::string item =
            kar::ToUtf8(first->kind == karmp::ItemKind::Reference ? first->path : second->path);
        EXPECT_TRUE(model.Link(a, b, item)) << name;
        EXPECT_TRUE(Holds(*first, *a, b.Handle())) << name;
        EXPECT_TRUE(Holds(*second, *b, a.Handle())) << name;
        EXPECT_EQ(BrokenLinks(model), "") << name;
        EXPECT_TRUE(model.Link(a, b, item)) << name;
        EXPECT_TRUE(model.Unlink(a, b)) << name;
        EXPECT_FALSE(Holds(*first, *a, b.Handle())) << name;
        EXPECT_FALSE(Holds(*second, *b, a.Handle())) << name;
        EXPECT_TRUE(TextOf(model) == before) << name;
        EXPECT_TRUE(model.Problems().empty()) << name << ": " << model.Problems()[0].text;
    }
}

TEST_F(LinksTest, DeletionDropsALinkThatOneEndAloneHas)
{
    for (const KnownPair& known : AllPairs()) {
        for (const bool isTargetDeleted : {true, false}) {
            Model model("M");
            const auto holder = model.Add(known.first, "holder");
            const auto target = model.Add(known.second, "target");
            ASSERT_EQ(LinkHalf(*known.pair.first, *holder, target.Handle()), KARSuccess);
            ASSERT_NE(BrokenLinks(model), "");
            const std::string name = known.first + ' ' + kar::ToUtf8(known.pair.first->path);
            EXPECT_EQ(model.Dependents(target).size(), 1U) << name;
            EXPECT_TRUE(model.Dependents(holder).empty()) << name;
            const auto deletion = model.Delete(isTargetDeleted ? target : holder);
            EXPECT_TRUE(deletion) << name;
            EXPECT_EQ(deletion.unlinked.size(), isTargetDeleted ? 1U : 0U) << name;
            EXPECT_EQ(BrokenLinks(model), "") << name;
            if (isTargetDeleted)
                EXPECT_FALSE(Holds(*known.pair.first, *holder, target.Handle())) << name;
        }
    }
}

TEST_F(LinksTest, DeletionOfAnElementReachesAParentThatItDoesNotKnow)
{
    Model model("M");
    const auto first = model.Add<KARMPSketch>("first");
    const auto second = model.Add<KARMPSketch>("second");
    const auto element = model.Add<KARMPSketch>("element");
    for (const auto& parent : {first, second})
        ASSERT_EQ(parent->AddAggregatedElement(element.Handle()), KARSuccess);
    // The parent that it knows comes before the one that it does not.
    const auto dependents = model.Dependents(element);
    ASSERT_EQ(dependents.size(), 2U);
    EXPECT_EQ(dependents[0].entity, second);
    EXPECT_TRUE(model.Delete(element));
    EXPECT_EQ(first->GetAggregatedElementCount(), 0);
    EXPECT_EQ(second->GetAggregatedElementCount(), 0);
}

TEST_F(LinksTest, ElementHasOneParentAndIsNoPartOfItself)
{
    Model model("M");
    const auto whole = model.Add<KARMPSketch>("whole");
    const auto part = model.Add<KARMPSketch>("part");
    const auto other = model.Add<KARMPSketch>("other");
    ASSERT_TRUE(model.Link(whole, part, "AggregatedElements"));
    const std::string before = TextOf(model);
    EXPECT_FALSE(model.Link(other, part, "AggregatedElements"));
    EXPECT_FALSE(model.Link(part, whole, "AggregatedElements"));
    ASSERT_EQ(model.Problems().size(), 2U);
    EXPECT_EQ(model.Problems()[0].text,
              "KARMPSketch \"part\" is an element of another entity already");
    EXPECT_EQ(model.Problems()[1].text, "KARMPSketch \"whole\" cannot be an element of itself");
    model.ClearProblems();
    EXPECT_TRUE(TextOf(model) == before);
}

TEST_F(LinksTest, SingleLinkToAnotherEntityHasToBeUnlinkedFirst)
{
    Model model("M");
    const auto a = model.Body("A");
    const auto b = model.Body("B");
    const auto frame = model.Frame("F", a, {});
    const std::string before = TextOf(model);
    EXPECT_FALSE(model.Link(frame, b));
    ASSERT_EQ(model.Problems().size(), 1U);
    EXPECT_EQ(model.Problems()[0].text, "KARMPAxisSystem \"A.F\" is linked to KARMPBody \"A\" "
                                        "already, by its \"Body\"");
    model.ClearProblems();
    EXPECT_TRUE(TextOf(model) == before);
    EXPECT_TRUE(model.Unlink(frame, a));
    EXPECT_TRUE(model.Link(frame, b));
    EXPECT_EQ(BrokenLinks(model), "");
}

TEST_F(LinksTest, ConnectorTakesItsBodiesInOrderOrByItem)
{
    Model model("M");
    const auto a = model.Body("A");
    const auto b = model.Body("B");
    const auto spring = model.Add<KARMPLinearSpring>("S");
    EXPECT_TRUE(model.Link(spring, b, "SecondBody"));
    EXPECT_TRUE(model.Link(a, spring));
    QOBSharedHandle<KARMPBody> body;
    spring->GetFirstBody(body);
    EXPECT_EQ(body, a.Handle());
    spring->GetSecondBody(body);
    EXPECT_EQ(body, b.Handle());
    EXPECT_FALSE(model.Link(model.Body("C"), spring));
    EXPECT_EQ(BrokenLinks(model), "");
}

TEST_F(LinksTest, ConnectorOfOneBodyAtBothEndsKeepsTheOtherEnd)
{
    Model model("M");
    const auto a = model.Body("A");
    const auto spring = model.Add<KARMPLinearSpring>("S");
    EXPECT_TRUE(model.Link(spring, a, "FirstBody"));
    EXPECT_TRUE(model.Link(spring, a, "SecondBody"));
    EXPECT_TRUE(model.Unlink(spring, a, "FirstBody"));
    EXPECT_EQ(a->GetLinkedConnectorCount(), 1);
    EXPECT_EQ(BrokenLinks(model), "");
    EXPECT_TRUE(model.Set(spring, "FirstBody", Entity(a.Handle())));
    EXPECT_TRUE(model.Set(spring, "FirstBody", karmp::Value()));
    EXPECT_EQ(a->GetLinkedConnectorCount(), 1);
    EXPECT_TRUE(model.Unlink(a, spring));
    EXPECT_EQ(a->GetLinkedConnectorCount(), 0);
    QOBSharedHandle<KARMPBody> body;
    spring->GetSecondBody(body);
    EXPECT_FALSE(body);
}

TEST_F(LinksTest, ReferenceWithoutACounterpartIsLinkedTooWhereItIsTheOnlyOne)
{
    Model model("M");
    const auto motor = model.Add<KARMPMotor>("Motor");
    const auto angle = model.Variable("angle", KARMPPhysicalQuantity::Angle);
    EXPECT_TRUE(model.Link(motor, angle));
    QOBSharedHandle<KARMPVariable> driven;
    motor->GetVariable(driven);
    EXPECT_EQ(driven, angle.Handle());
    EXPECT_TRUE(model.Unlink(motor, angle));
    EXPECT_FALSE(model.Unlink(motor, angle));
    const auto number = model.Add<KARMPConstant>("number");
    EXPECT_FALSE(model.Link(motor, number));
    EXPECT_TRUE(model.Link(motor, number, "MaxForce"));
    ASSERT_EQ(model.Problems().size(), 2U);
    EXPECT_EQ(model.Problems()[1].text,
              "KARMPMotor \"Motor\" can refer to KARMPConstant \"number\" by several items: "
              "\"Position\", \"Velocity\", \"Acceleration\", \"MaxForce\"");
}

TEST_F(LinksTest, ReferenceWithACounterpartIsNotMadeWhereTheTargetHasNone)
{
    Model model("M");
    EXPECT_FALSE(model.Link(model.Add<KARMP3DRep>("shape"), model.PlanarBody("A")));
    ASSERT_EQ(model.Problems().size(), 1U);
    EXPECT_EQ(model.Problems()[0].text, "KARMP3DRep \"shape\" and KARMPBody2D \"A\" have no link");
}

TEST_F(LinksTest, ClassesWithoutALinkAreToldSo)
{
    Model model("M");
    EXPECT_FALSE(model.Link(model.Body("A"), model.Body("B"), "Joints"));
    ASSERT_EQ(model.Problems().size(), 1U);
    EXPECT_EQ(model.Problems()[0].text,
              "KARMPBody \"A\" and KARMPBody \"B\" have no link \"Joints\"");
}

} // namespace

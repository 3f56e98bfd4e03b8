#include "KARMPSchema.h"

#include "ContentTesting.h"

#include <algorithm>
#include <thread>

using karmp::ItemKind;
using karmp::ItemPresence;
using karmp::SchemaItem;
using karmp::SchemaOf;

namespace {

/// A class that is no entity, with an item of each kind that no simple class has.
struct Sample
{
    double number = 0.0;
    double other = 0.0;
    bool hasNumber = false;
    int integer = 0;
    KARMathVector axis;
    KARMathTransformation position;
};

constexpr karmp::Names<2> HasAndNumber{L"HasNumber", L"Number"};

constexpr auto SampleList = karmp::Element(
    L"Sample", "A sample.", karmp::LenientFrame,
    karmp::Transformation<&Sample::position>(L"Position", "Where it is."),
    karmp::OptionalNumber<&Sample::number, &Sample::hasNumber>(L"Limit", HasAndNumber,
                                                               "How far it goes."),
    karmp::Until(karmp::R2017_0, karmp::Integer<&Sample::integer>(L"Type", "Its type.")),
    karmp::Since(karmp::R2017_0,
                 karmp::WordOf<&Sample::integer>(L"Type", karmp::NoYes, "Its type.")),
    karmp::Group(L"Axis", "Its axis.",
                 karmp::Unequal(karmp::Numbers<&Sample::axis>(L"Axis", karmp::DirectionNames, "."),
                                karmp::Numbers<&Sample::axis>(L"Axis", karmp::NormalNames, "."))),
    karmp::Group(L"Row", "The first of two elements.",
                 karmp::Number<&Sample::number>(L"First", ".")),
    karmp::Group(L"Row", "The second of two elements.",
                 karmp::Number<&Sample::other>(L"Second", ".")));

const karmp::ContentRegistration SampleContent("TestSample", &ContentFrom<SampleList>);

constexpr auto RenamedList =
    karmp::Element(L"Outer", "Read under another name.", karmp::LenientFrame,
                   karmp::Number<&Sample::number>(L"Number", "."))
        .ReadAs(L"Inner");
const karmp::ContentRegistration RenamedContent("TestRenamed", &ContentFrom<RenamedList>);

const SchemaItem& Find(const std::vector<SchemaItem>& items, std::wstring_view name)
{
    static const SchemaItem none;
    const auto found = std::find_if(items.begin(), items.end(),
                                    [name](const SchemaItem& item) { return item.name == name; });
    EXPECT_NE(found, items.end());
    return found != items.end() ? *found : none;
}

std::vector<std::wstring_view> NamesOf(const std::vector<SchemaItem>& items)
{
    std::vector<std::wstring_view> names;
    for (const SchemaItem& item : items)
        names.push_back(item.name);
    return names;
}

using Names = std::vector<std::wstring_view>;

TEST(Schema, OfAClassHoldsWhatItsBasesHoldFirst)
{
    const SchemaItem* const point = SchemaOf("KARMPPoint");
    ASSERT_NE(point, nullptr);
    EXPECT_EQ(point->name, L"Point");
    EXPECT_EQ(point->says, "A point.");
    EXPECT_EQ(NamesOf(point->attributes), (Names{L"id", L"name", L"isActive", L"entityID"}));
    EXPECT_EQ(NamesOf(point->elements),
              (Names{L"Parameters", L"States", L"Outputs", L"AggregatedElements", L"Body",
                     L"Constraints", L"Coordinates"}));
    const SchemaItem& coordinates = Find(point->elements, L"Coordinates");
    EXPECT_EQ(coordinates.presence, ItemPresence::Required);
    EXPECT_EQ(NamesOf(coordinates.elements), (Names{L"Ox", L"Oy", L"Oz"}));
    EXPECT_EQ(coordinates.elements[0].kind, ItemKind::Number);
    EXPECT_EQ(coordinates.elements[0].quantity, KARMPPhysicalQuantity::Length);
}

TEST(Schema, OfAnAttributeTellsItsPresenceWordsAndVersion)
{
    const auto& attributes = SchemaOf("KARMPPoint")->attributes;
    EXPECT_EQ(Find(attributes, L"id").presence, ItemPresence::Required);
    EXPECT_EQ(Find(attributes, L"name").presence, ItemPresence::Reported);
    EXPECT_EQ(Find(attributes, L"entityID").presence, ItemPresence::Optional);
    const SchemaItem& isActive = Find(attributes, L"isActive");
    EXPECT_EQ(isActive.words, (Names{L"no", L"yes"}));
    EXPECT_FALSE(isActive.Applies(karmp::R2017_0));
    EXPECT_TRUE(isActive.Applies(karmp::R2017_1));
}

TEST(Schema, OfAReferenceNamesTargetAndOtherSide)
{
    const auto& elements = SchemaOf("KARMPPoint")->elements;
    const SchemaItem& body = Find(elements, L"Body");
    EXPECT_EQ(body.kind, ItemKind::Reference);
    EXPECT_EQ(body.target, "KARMPBody");
    EXPECT_EQ(body.otherSide, L"Geometries");
    EXPECT_EQ(NamesOf(body.attributes), (Names{L"id", L"name"}));
    EXPECT_EQ(Find(body.attributes, L"id").presence, ItemPresence::Required);

    const SchemaItem& constraints = Find(elements, L"Constraints");
    EXPECT_EQ(constraints.kind, ItemKind::Group);
    ASSERT_EQ(constraints.elements.size(), 1U);
    EXPECT_EQ(constraints.elements[0].target, "KARMPConstraint");
    EXPECT_TRUE(constraints.elements[0].repeats);
}

TEST(Schema, OfAClassWithoutAListIsNull)
{
    EXPECT_EQ(SchemaOf("NoSuchClass"), nullptr);
    EXPECT_EQ(SchemaOf(""), nullptr);
}

TEST(Schema, OfABaseHasNoName)
{
    const SchemaItem* const base = SchemaOf("KARMPEntity");
    ASSERT_NE(base, nullptr);
    EXPECT_TRUE(base->name.empty());
    EXPECT_EQ(base->attributes.size(), 4U);
}

TEST(Schema, OfTransformationAndOptionalNumberHoldsTheirParts)
{
    const auto& elements = SchemaOf("TestSample")->elements;
    const SchemaItem& position = Find(elements, L"Position");
    EXPECT_EQ(NamesOf(position.elements), (Names{L"Translation", L"Rotation"}));
    EXPECT_EQ(position.elements[0].elements.size(), 3U);
    EXPECT_EQ(position.elements[1].elements.size(), 9U);
    const SchemaItem& limit = Find(elements, L"Limit");
    EXPECT_EQ(NamesOf(limit.elements), (Names{L"HasNumber", L"Number"}));
    EXPECT_EQ(limit.elements[0].kind, ItemKind::Flag);
    EXPECT_EQ(limit.elements[0].presence, ItemPresence::Reported);
    EXPECT_EQ(limit.elements[1].presence, ItemPresence::Optional);
}

TEST(Schema, KeepsTheFormsOfVersionsApart)
{
    const auto& elements = SchemaOf("TestSample")->elements;
    const auto kindAt = [&](std::wstring_view version) {
        std::vector<ItemKind> kinds;
        for (const SchemaItem& item : elements)
            if (item.name == L"Type" && item.Applies(version))
                kinds.push_back(item.kind);
        return kinds;
    };
    EXPECT_EQ(kindAt(karmp::R2016_1), std::vector{ItemKind::Integer});
    EXPECT_EQ(kindAt(karmp::R2017_0), std::vector{ItemKind::Word});
}

TEST(Schema, KnowsWhatIsWrittenAndNotRead)
{
    const SchemaItem& axis = Find(SchemaOf("TestSample")->elements, L"Axis");
    EXPECT_EQ(axis.elements.size(), 6U);
    EXPECT_EQ(Find(axis.elements, L"Dx").presence, ItemPresence::Optional);
    EXPECT_FALSE(Find(axis.elements, L"Dx").isRead);
    EXPECT_EQ(Find(axis.elements, L"Nx").presence, ItemPresence::Reported);
    EXPECT_FALSE(Find(axis.elements, L"Nx").isWritten);
}

TEST(Schema, JoinsElementsOfOneName)
{
    const SchemaItem& row = Find(SchemaOf("TestSample")->elements, L"Row");
    EXPECT_TRUE(row.repeats);
    EXPECT_EQ(NamesOf(row.elements), (Names{L"First", L"Second"}));
    EXPECT_EQ(row.elements[0].presence, ItemPresence::Optional);
    EXPECT_EQ(row.elements[1].presence, ItemPresence::Optional);
}

TEST(Schema, OfAClassThatReadsAnotherElementHoldsItWithin)
{
    const SchemaItem* const outer = SchemaOf("TestRenamed");
    EXPECT_EQ(outer->name, L"Outer");
    EXPECT_EQ(NamesOf(outer->elements), (Names{L"Number", L"Inner"}));
    EXPECT_EQ(outer->elements[0].presence, ItemPresence::Optional);
    EXPECT_EQ(outer->elements[1].presence, ItemPresence::Required);
    EXPECT_EQ(outer->elements[1].elements[0].presence, ItemPresence::Reported);
}

TEST(Schema, IsTheSameForAllThreads)
{
    std::vector<const SchemaItem*> made(4);
    std::vector<std::thread> threads;
    for (const SchemaItem*& schema : made)
        threads.emplace_back([&schema] { schema = SchemaOf("KARMPGeometry"); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_NE(made[0], nullptr);
    EXPECT_EQ(std::count(made.begin(), made.end(), made[0]), 4);
}

} // namespace

// Values and their facets in content lists.
#include "ContentTesting.h"

namespace {

using namespace karmp;
using namespace std::literals;
using C = ContentTestEntity;

constexpr Names<2> BoundNames{L"HasBound", L"Bound"};

// One item of each kind of value.
constexpr auto Values =
    Counting(Number<&C::number>(L"Number", ""), Integer<&C::integer>(L"Integer", ""),
             Flag<&C::flag>(L"Flag", ""), Text<&C::text>(L"Text", ""), Word<&C::word>(L"Word", ""),
             Code<&C::code>(L"Code", ""), WordOf<&C::isYes>(L"IsYes", NoYes, ""),
             Numbers<&C::point>(L"Point", PointNames, ""),
             NumbersElement<&C::vector>(L"Vector", VectorNames, ""),
             Transformation<&C::transformation>(L"Transformation", ""),
             Transformation<&C::planar>(L"Planar", ""),
             OptionalNumber<&C::bound, &C::hasBound>(L"Bound", BoundNames, ""));

void Fill(ContentTestEntity& entity)
{
    entity.number = 1.5;
    entity.integer = -7;
    entity.flag = true;
    entity.text = "text";
    entity.word = KARMPAlignment::AntiAlign;
    entity.code = KARMPAlignment::Align;
    entity.isYes = true;
    entity.point = KARMathPoint(1.0, 2.0, 3.0);
    entity.vector = KARMathVector(4.0, 5.0, 6.0);
    entity.transformation.SetVector(KARMathVector(7.0, 8.0, 9.0));
    entity.planar = {{{1.0, 2.0}, {3.0, 4.0}}, {5.0, 6.0}};
    entity.bound = 10.0;
    entity.hasBound = true;
}

TEST_F(ContentWalk, WritesEachKindOfValue)
{
    Fill(*entity);
    EXPECT_EQ(Write(Values), KARSuccess);
    EXPECT_EQ(root.Number(L"E/Number"), 1.5);
    EXPECT_EQ(root.Integer(L"E/Integer"), -7);
    EXPECT_TRUE(root.Flag(L"E/Flag"));
    EXPECT_EQ(root.Text(L"E/Text"), L"text");
    EXPECT_EQ(root.Text(L"E/Word"), L"AntiAlign");
    EXPECT_EQ(root.Integer(L"E/Code"), 2);
    EXPECT_EQ(root.Text(L"E/IsYes"), L"yes");
    EXPECT_EQ(root.Number(L"E/Py"), 2.0);
    EXPECT_EQ(root.Number(L"E/Vector/Vz"), 6.0);
    EXPECT_EQ(root.Number(L"E/Transformation/Translation/Vy"), 8.0);
    EXPECT_EQ(root.Number(L"E/Transformation/Rotation/M2y"), 1.0);
    EXPECT_EQ(root.Number(L"E/Planar/Translation2D/Vy"), 6.0);
    EXPECT_EQ(root.Number(L"E/Planar/Rotation2D/M1y"), 2.0);
    EXPECT_EQ(root.Number(L"E/Planar/Rotation2D/M2x"), 3.0);
    EXPECT_TRUE(root.Flag(L"E/Bound/HasBound"));
    EXPECT_EQ(root.Number(L"E/Bound/Bound"), 10.0);
    // The items stand in the order of the list.
    const TestSerializer& element = *root.Find(L"E");
    EXPECT_EQ(element.Child(0).GetId(), L"Number");
    EXPECT_EQ(element.Child(6).GetId(), L"IsYes");
    EXPECT_EQ(element.Child(7).GetId(), L"Px");
    EXPECT_EQ(element.Child(13).GetId(), L"Bound");
}

TEST_F(ContentWalk, ReadsEachKindOfValueBack)
{
    Fill(*entity);
    Write(Values);
    for (const bool asText : {false, true}) {
        const auto written = TestDeserializer::From(root, {.asText = asText});
        const auto read = ContentTestEntity::create(L"read");
        EXPECT_EQ(ReadContent(Made(Values), OwnerOf(*read), written.get(), entities, nullptr),
                  KARSuccess);
        EXPECT_EQ(read->number, 1.5);
        EXPECT_EQ(read->integer, -7);
        EXPECT_TRUE(read->flag);
        EXPECT_EQ(read->text, "text");
        EXPECT_EQ(read->word, KARMPAlignment::AntiAlign);
        EXPECT_EQ(read->code, KARMPAlignment::Align);
        EXPECT_TRUE(read->isYes);
        EXPECT_EQ(read->point, KARMathPoint(1.0, 2.0, 3.0));
        EXPECT_EQ(read->vector, KARMathVector(4.0, 5.0, 6.0));
        EXPECT_EQ(read->transformation.GetVector(), KARMathVector(7.0, 8.0, 9.0));
        EXPECT_EQ(read->planar, entity->planar);
        EXPECT_EQ(read->bound, 10.0);
        EXPECT_TRUE(read->hasBound);
    }
}

TEST_F(ContentWalk, LeavesAnOptionalNumberThatIsNotSet)
{
    constexpr auto list =
        Counting(OptionalNumber<&C::bound, &C::hasBound>(L"Bound", BoundNames, ""));
    EXPECT_EQ(Write(list), KARSuccess);
    EXPECT_FALSE(root.Flag(L"E/Bound/HasBound"));
    EXPECT_FALSE(root.Has(L"E/Bound/Bound"));
    tree.Add(L"E").Add(L"Bound").Leaf(L"HasBound", false).Leaf(L"Bound", 3.0);
    EXPECT_EQ(Read(list), KARSuccess);
    EXPECT_FALSE(entity->hasBound);
    EXPECT_EQ(entity->bound, 0.0);
}

TEST_F(ContentWalk, PutsAttributesIntoTheElementItself)
{
    constexpr auto list =
        Counting(Attribute(Number<&C::number>(L"number", "")), Attribute(Text<&C::text>(L"t", "")),
                 Attribute(Word<&C::word>(L"word", "")));
    Fill(*entity);
    EXPECT_EQ(Write(list), KARSuccess);
    EXPECT_EQ(root.Number(L"E/@number"), 1.5);
    EXPECT_EQ(root.Text(L"E/@t"), L"text");
    EXPECT_EQ(root.Text(L"E/@word"), L"AntiAlign");
    EXPECT_EQ(root.Find(L"E")->GetElementCount(), 0U);
    tree.Add(L"E").Attribute(L"number", 2.5).Attribute(L"t", L"read").Attribute(L"word", L"Align");
    EXPECT_EQ(Read(list), KARSuccess);
    EXPECT_EQ(entity->number, 2.5);
    EXPECT_EQ(entity->text, "read");
    EXPECT_EQ(entity->word, KARMPAlignment::Align);
}

TEST_F(ContentWalk, WritesAWordOutsideTheTableAsItsFirstRow)
{
    entity->word = static_cast<KARMPAlignment::Enum>(9);
    Write(Counting(Word<&C::word>(L"Word", "")));
    EXPECT_EQ(root.Text(L"E/Word"), KARMPEnumText(KARMPAlignment::NotSpecified));
}

TEST_F(ContentWalk, TreatsAMissingValueByItsPresence)
{
    constexpr auto number = Number<&C::number>(L"Number", "");
    tree.Add(L"E");
    entity->number = 3.0;
    EXPECT_EQ(Read(Counting(number)), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(Read(Counting(number.Required())), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(Read(Counting(number.Required().Optional())), KARSuccess);
    EXPECT_EQ(Read(Counting(number.RequiredIfThere())), KARSuccess);
    EXPECT_EQ(entity->number, 3.0);
}

TEST_F(ContentWalk, TreatsAValueThatDoesNotConvertByItsPresence)
{
    constexpr auto number = Number<&C::number>(L"Number", "");
    tree.Add(L"E").Leaf(L"Number", L"none");
    EXPECT_EQ(Read(Counting(number.Optional())), KARSuccess);
    const std::size_t ofTheNode = TakeReports();
    EXPECT_EQ(Read(Counting(number.RequiredIfThere())), KARFailure);
    ExpectReports(ofTheNode + 1);
}

TEST_F(ContentWalk, ReportsAtTheLineOfTheItem)
{
    const int line = __LINE__ + 1;
    const auto list = Counting(Number<&C::number>(L"Number", ""));
    tree.Add(L"E");
    Read(list);
    ASSERT_EQ(UnclaimedReports().size(), 1U);
    EXPECT_NE(UnclaimedReports().front().find("KARMPContentTest.cpp:" + std::to_string(line)),
              std::string::npos);
    ExpectReports(1);
}

TEST_F(ContentWalk, KeepsWhatIsMissingUnlessItBecomesZero)
{
    constexpr auto number = Number<&C::number>(L"Number", "");
    constexpr auto point = Numbers<&C::point>(L"Point", PointNames, "");
    tree.Add(L"E").Leaf(L"Py", 20.0);
    Fill(*entity);
    Read(Counting(number, point));
    EXPECT_EQ(entity->number, 1.5);
    EXPECT_EQ(entity->point, KARMathPoint(1.0, 20.0, 3.0));
    ExpectReports(3);
    Read(Counting(number.ZeroIfMissing(), point.ZeroIfMissing()));
    EXPECT_EQ(entity->number, 0.0);
    EXPECT_EQ(entity->point, KARMathPoint(0.0, 20.0, 0.0));
    ExpectReports(3);
}

TEST_F(ContentWalk, TakesTheFirstRowForAnUnknownWordUnlessOnlyKnownOnesCount)
{
    constexpr auto word = Word<&C::word>(L"Word", "");
    tree.Add(L"E").Leaf(L"Word", L"unknown");
    entity->word = KARMPAlignment::Align;
    EXPECT_EQ(Read(Counting(word.KnownWordsOnly())), KARSuccess);
    EXPECT_EQ(entity->word, KARMPAlignment::Align);
    EXPECT_EQ(Read(Counting(word)), KARSuccess);
    EXPECT_EQ(entity->word, KARMPAlignment::NotSpecified);
}

TEST_F(ContentWalk, CallsSettersInTheOrderOfTheList)
{
    constexpr auto number = Number<&C::number>(L"Number", "").Through<&C::SetNumber>();
    constexpr auto integer = Integer<&C::integer>(L"Integer", "").Through<&C::SetInteger>();
    Target(L"T1");
    tree.Add(L"E").Leaf(L"Number", 1.0).Leaf(L"Integer", 2).Reference(L"Link", L"T1").Add(L"Group");
    Read(Counting(integer, Reference<&C::link, &C::Link>(L"Link", ""), number,
                  Group(L"Group", "").Through<&C::NoteGroup>(), integer));
    EXPECT_EQ(entity->calls,
              (std::vector<std::string>{"integer", "link", "number", "group", "integer"}));
    EXPECT_EQ(entity->number, 1.0);
    EXPECT_EQ(entity->integer, 2);
}

TEST_F(ContentWalk, CountsAFailingSetterWhereTheFrameSaysSo)
{
    constexpr auto number = Number<&C::number>(L"Number", "").Through<&C::SetNumber>();
    constexpr ContentFrame strict{{}, {.itemsCount = true, .settersCount = true}};
    tree.Add(L"E").Leaf(L"Number", 1.0);
    entity->setterStatus = KARFailure;
    EXPECT_EQ(Read(Counting(number)), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(Read(Element(L"E", "", strict, number)), KARFailure);
    ExpectReports(1);
    entity->setterStatus = KARUnchanged;
    EXPECT_EQ(Read(Element(L"E", "", strict, number)), KARSuccess);
}

TEST_F(ContentWalk, ReportsAFailingGetterOfAValue)
{
    entity->getterStatus = KARFailure;
    EXPECT_EQ(Write(Counting(Number<&C::GetNumber>(L"Number", "").Through<&C::number>(),
                             Integer<&C::integer>(L"Integer", ""))),
              KARFailure);
    ExpectReports(1);
    EXPECT_FALSE(root.Has(L"E/Number"));
    EXPECT_TRUE(root.Has(L"E/Integer"));
}

TEST_F(ContentWalk, WritesAndReadsUnderConditions)
{
    constexpr auto number = Number<&C::number>(L"Number", "");
    constexpr auto written = Counting(number.When<&C::IsWanted>());
    constexpr auto read = Counting(number.WhenRead<&C::IsWanted>());
    entity->isWanted = false;
    Write(written);
    EXPECT_FALSE(root.Has(L"E/Number"));
    Write(read);
    EXPECT_TRUE(root.Has(L"E[1]/Number"));
    tree.Add(L"E").Leaf(L"Number", 4.0);
    Read(read);
    EXPECT_EQ(entity->number, 0.0);
    Read(written);
    EXPECT_EQ(entity->number, 4.0);
    entity->isWanted = true;
    entity->number = 0.0;
    Read(read);
    EXPECT_EQ(entity->number, 4.0);
    Write(written);
    EXPECT_EQ(root.Number(L"E[2]/Number"), 4.0);
    // An item with a condition for reading is nothing when it is not there.
    TestDeserializer without;
    without.Add(L"E");
    EXPECT_EQ(ReadContent(Made(read), OwnerOf(*entity), &without, entities, nullptr), KARSuccess);
}

TEST_F(ContentWalk, GatesItemsByTheVersionOfTheDocument)
{
    constexpr auto list = Counting(Since(R2017_0, Number<&C::number>(L"New", "")),
                                   Until(R2017_0, Number<&C::second>(L"Old", "")));
    for (const std::wstring_view version : {L"R2016.9"sv, R2017_0, L"R2017.1"sv}) {
        const bool isNew = version >= R2017_0;
        TestSerializer written(version);
        WriteContent(Made(list), OwnerOf(*entity), &written, nullptr);
        EXPECT_EQ(written.Has(L"E/New"), isNew);
        EXPECT_EQ(written.Has(L"E/Old"), !isNew);
        TestDeserializer read;
        read.At(version).Add(L"E").Leaf(L"New", 1.0).Leaf(L"Old", 1.0);
        entity->number = entity->second = 0.0;
        ReadContent(Made(list), OwnerOf(*entity), &read, entities, nullptr);
        EXPECT_EQ(entity->number, isNew ? 1.0 : 0.0);
        EXPECT_EQ(entity->second, isNew ? 0.0 : 1.0);
    }
}

TEST_F(ContentWalk, GatesEachItemOfARowByItsOwnLimits)
{
    constexpr auto list = Counting(
        Since(R2016_1, Number<&C::number>(L"A", "")), Since(R2016_1, Number<&C::number>(L"B", "")),
        Since(R2017_0, Number<&C::number>(L"C", "")), Number<&C::number>(L"D", ""),
        Since(R2017_0, Until(R2018_0, Number<&C::number>(L"E", ""))),
        Since(R2016_1, Until(R2018_0, Number<&C::number>(L"F", ""))),
        Until(R2018_0, Number<&C::number>(L"G", "")));
    const auto written = [&](std::wstring_view version) {
        TestSerializer node(version);
        WriteContent(Made(list), OwnerOf(*entity), &node, nullptr);
        const TestSerializer& element = *node.Find(L"E");
        std::wstring names;
        for (std::size_t i = 0; i < static_cast<std::size_t>(element.GetElementCount()); ++i)
            names += element.Child(i).GetId();
        return names;
    };
    EXPECT_EQ(written(R2016_0), L"DG");
    EXPECT_EQ(written(R2016_1), L"ABDFG");
    EXPECT_EQ(written(R2017_0), L"ABCDEFG");
    EXPECT_EQ(written(R2018_0), L"ABCD");
}

TEST_F(ContentWalk, WritesOneFormAndReadsAnother)
{
    constexpr auto list = Counting(
        Unequal(Number<&C::number>(L"Written", ""), Number<&C::number>(L"Read", "").Required()));
    entity->number = 1.0;
    EXPECT_EQ(Write(list), KARSuccess);
    EXPECT_TRUE(root.Has(L"E/Written"));
    EXPECT_FALSE(root.Has(L"E/Read"));
    tree.Add(L"E").Leaf(L"Read", 6.0);
    EXPECT_EQ(Read(list), KARSuccess);
    EXPECT_EQ(entity->number, 6.0);
}

TEST_F(ContentWalk, LeavesOutItemsOfTheClassesOwnCode)
{
    constexpr auto list =
        Counting(Number<&C::number>(L"Number", "").Required().Coded(),
                 Described(ItemKind::Integer, L"Described", ""),
                 DescribedWord<KARMPAlignment::Enum>(L"Word", ""),
                 DescribedRecords(L"Records", L"Record", "", Integer<&C::integer>(L"Integer", "")),
                 Number<&C::second>(L"Second", ""));
    entity->number = 1.0;
    EXPECT_EQ(Write(list), KARSuccess);
    ASSERT_EQ(root.Find(L"E")->GetElementCount(), 1U);
    EXPECT_TRUE(root.Has(L"E/Second"));
    tree.Add(L"E").Leaf(L"Number", 5.0).Leaf(L"Second", 6.0).Add(L"Records").Leaf(L"Integer", 7);
    EXPECT_EQ(Read(list), KARSuccess);
    EXPECT_EQ(entity->number, 1.0);
    EXPECT_EQ(entity->second, 6.0);
    EXPECT_EQ(entity->integer, 0);
}

TEST_F(ContentWalk, CountsFailuresWithinAGroupWhereTheGroupSaysSo)
{
    constexpr auto group = Group(L"Group", "", Number<&C::number>(L"Number", "").Required());
    tree.Add(L"E").Add(L"Group");
    EXPECT_EQ(Read(Counting(group)), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(Read(Counting(group.Counting())), KARFailure);
    ExpectReports(1);
    root.FailCreation(3);
    EXPECT_EQ(Write(Counting(group)), KARSuccess);
    EXPECT_GE(TakeReports(), 1U);
    root.FailCreation(3);
    EXPECT_EQ(Write(Counting(group.Counting())), KARFailure);
    EXPECT_GE(TakeReports(), 1U);
}

TEST_F(ContentWalk, FindsTheItemsBehindAGroup)
{
    constexpr auto list =
        Counting(Group(L"Group", "", Number<&C::number>(L"Number", "").Required()).Optional(),
                 Number<&C::second>(L"Second", "").Required());
    tree.Add(L"E").Leaf(L"Second", 2.0);
    EXPECT_EQ(Read(list), KARSuccess);
    EXPECT_EQ(entity->second, 2.0);
    EXPECT_TRUE(entity->calls.empty());
    EXPECT_EQ(Write(list), KARSuccess);
    EXPECT_TRUE(root.Has(L"E/Group/Number"));
    EXPECT_FALSE(root.Has(L"E/Group/Second"));
    EXPECT_TRUE(root.Has(L"E/Second"));
}

TEST_F(ContentWalk, NeverCountsAnUncountedItem)
{
    constexpr auto number = Number<&C::number>(L"Number", "").Required();
    tree.Add(L"E");
    EXPECT_EQ(Read(Counting(number.Uncounted())), KARSuccess);
    ExpectReports(1);
    for (const bool isCounted : {true, false}) {
        root.FailCreation(2);
        EXPECT_EQ(isCounted ? Write(Counting(number)) : Write(Counting(number.Uncounted())),
                  isCounted ? KARFailure : KARSuccess);
        EXPECT_GE(TakeReports(), 1U);
    }
}

} // namespace

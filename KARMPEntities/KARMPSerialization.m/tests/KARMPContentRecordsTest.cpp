// Records in content lists.
#include "ContentTesting.h"
#include "KARMPItems.h"
#include "KARMPSchema.h"
#include "QOBException.h"

namespace {

using namespace karmp;
using C = ContentTestEntity;
using R = ContentTestRecord;

constexpr auto RecordNumber = Number<&R::number>(L"Number", "");
constexpr auto RecordVector = NumbersElement<&R::vector>(L"Vector", VectorNames, "");
constexpr auto RecordTarget = Reference<&R::target, &R::target>(L"Target", "");

// By the member, and by operations.
constexpr auto Listed =
    Records<&C::records, &C::AddRecord>(L"List", L"Entry", "", RecordNumber, RecordVector);
constexpr auto Counted = Records<&C::CountRecords, &C::GetRecord, &C::AddRecord>(
    L"List", L"Entry", "", RecordNumber, RecordVector);

TEST_F(ContentWalk, WritesARecordInAnElementOfItsOwn)
{
    entity->records = {{1.0, {2.0, 3.0, 4.0}, Target(L"T1")}, {5.0, {6.0, 7.0, 8.0}, {}}};
    constexpr auto list =
        Counting(Records<&C::records, &C::AddRecord>(L"List", L"Entry", "", RecordNumber,
                                                     RecordVector, RecordTarget),
                 Counted, Number<&C::number>(L"Number", ""));
    EXPECT_EQ(Write(list), KARSuccess);
    const TestSerializer& element = *root.Find(L"E");
    ASSERT_EQ(element.GetElementCount(), 3);
    for (const wchar_t* const container : {L"E/List", L"E/List[1]"}) {
        const std::wstring path(container);
        EXPECT_EQ(root.Count(path + L"/Entry"), 2U);
        EXPECT_EQ(root.Number(path + L"/Entry/Number"), 1.0);
        EXPECT_EQ(root.Number(path + L"/Entry/Vector/Vz"), 4.0);
        EXPECT_EQ(root.Number(path + L"/Entry[1]/Number"), 5.0);
        EXPECT_EQ(root.Number(path + L"/Entry[1]/Vector/Vx"), 6.0);
    }
    EXPECT_EQ(root.Text(L"E/List/Entry/Target/@id"), L"T1");
    EXPECT_FALSE(root.Has(L"E/List/Entry[1]/Target"));
    EXPECT_FALSE(root.Has(L"E/List/@number"));
}

TEST_F(ContentWalk, WritesAListWithoutRecords)
{
    EXPECT_EQ(Write(Counting(Listed, Counted.CountedBy(L"number"))), KARSuccess);
    EXPECT_EQ(root.Find(L"E/List")->GetElementCount(), 0);
    EXPECT_EQ(root.Integer(L"E/List[1]/@number"), 0);
    entity->isWanted = false;
    EXPECT_EQ(Write(Counting(Listed.When<&C::IsWanted>())), KARSuccess);
    EXPECT_EQ(root.Find(L"E[1]")->GetElementCount(), 0);
}

TEST_F(ContentWalk, LeavesOutARecordThatCannotBeHad)
{
    entity->records = {{1.0, {}, {}}, {2.0, {}, {}}};
    entity->getterStatus = KARFailure;
    EXPECT_EQ(Write(Counting(Counted.CountedBy(L"number"))), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(root.Count(L"E/List/Entry"), 1U);
    EXPECT_EQ(root.Number(L"E/List/Entry/Number"), 2.0);
    EXPECT_EQ(Write(Counting(Counted.Counting())), KARFailure);
    ExpectReports(1);
}

TEST_F(ContentWalk, ReadsRecordsInTheirOrder)
{
    Target(L"T1");
    TestDeserializer& records = tree.Add(L"E").Add(L"List");
    records.Attribute(L"number", 7);
    records.Add(L"Entry").Leaf(L"Number", 1.0).Add(L"Vector").Leaf(L"Vx", 2.0).Leaf(L"Vy", 3.0);
    records.Add(L"Other").Leaf(L"Number", 9.0);
    records.Add(L"Entry").Leaf(L"Number", 4.0).Reference(L"Target", L"T1").Add(L"Vector");
    EXPECT_EQ(Read(Counting(Records<&C::records, &C::AddRecord>(L"List", L"Entry", "", RecordNumber,
                                                                RecordVector, RecordTarget)
                                .CountedBy(L"number"))),
              KARSuccess);
    ExpectReports(4); // the components that are missing
    ASSERT_EQ(entity->records.size(), 2U);
    EXPECT_EQ(entity->records[0].number, 1.0);
    EXPECT_EQ(entity->records[0].vector, KARMathVector(2.0, 3.0, 0.0));
    EXPECT_FALSE(entity->records[0].target);
    EXPECT_EQ(entity->records[1].number, 4.0);
    EXPECT_EQ(entity->records[1].target->getEntityName(), L"name of T1");
}

TEST_F(ContentWalk, TreatsAMissingListOfRecordsByItsPresence)
{
    tree.Add(L"E");
    EXPECT_EQ(Read(Counting(Listed)), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(Read(Counting(Listed.Required())), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(Read(Counting(Listed.Optional().Counting())), KARSuccess);
}

TEST_F(ContentWalk, AddsNoRecordThatLacksARequiredItem)
{
    constexpr auto records =
        Records<&C::records, &C::AddRecord>(L"List", L"Entry", "", RecordNumber.Required());
    TestDeserializer& list = tree.Add(L"E").Add(L"List");
    list.Add(L"Entry");
    list.Add(L"Entry").Leaf(L"Number", 4.0);
    EXPECT_EQ(Read(Counting(records)), KARSuccess);
    ExpectReports(1);
    ASSERT_EQ(entity->records.size(), 1U);
    EXPECT_EQ(entity->records[0].number, 4.0);
    EXPECT_EQ(Read(Counting(records.Counting())), KARFailure);
    ExpectReports(1);
}

TEST_F(ContentWalk, ReportsARecordThatIsRefused)
{
    constexpr ContentFrame strict{{}, {.itemsCount = true, .settersCount = true}};
    constexpr auto records =
        Records<&C::records, &C::AddRecord>(L"List", L"Entry", "", RecordNumber);
    tree.Add(L"E").Add(L"List").Add(L"Entry").Leaf(L"Number", 4.0);
    entity->setterStatus = KARFailure;
    EXPECT_EQ(Read(Counting(records.Counting())), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(Read(Element(L"E", "", strict, records.Counting())), KARFailure);
    ExpectReports(1);
    EXPECT_TRUE(entity->records.empty());
}

TEST_F(ContentWalk, GatesTheItemsOfRecordsByTheVersionOfTheDocument)
{
    constexpr auto list = Counting(Records<&C::records, &C::AddRecord>(
        L"List", L"Entry", "", Since(R2017_0, RecordNumber), Until(R2017_0, RecordVector)));
    entity->records.resize(1);
    for (const std::wstring_view version : {R2016_1, R2017_0}) {
        TestSerializer written(version);
        WriteContent(Made(list), OwnerOf(*entity), &written, nullptr);
        EXPECT_EQ(written.Has(L"E/List/Entry/Number"), version == R2017_0);
        EXPECT_EQ(written.Has(L"E/List/Entry/Vector"), version != R2017_0);
    }
}

constexpr auto RegisteredList = Counting(
    Records<&C::records, &C::AddRecord>(L"List", L"Entry", "Records.",
                                        Number<&R::number>(L"Number", "A number of the record."),
                                        RecordVector, RecordTarget)
        .CountedBy(L"number"));
const ContentRegistration Registration("TestRecords", &ContentFrom<RegisteredList>);

TEST_F(ContentWalk, DescribesRecordsInTheSchema)
{
    const SchemaItem& element = *SchemaOf("TestRecords");
    ASSERT_EQ(element.elements.size(), 1U);
    const SchemaItem& list = element.elements[0];
    EXPECT_EQ(list.name, L"List");
    ASSERT_EQ(list.attributes.size(), 1U);
    EXPECT_EQ(list.attributes[0].name, L"number");
    EXPECT_EQ(list.attributes[0].kind, ItemKind::Integer);
    EXPECT_EQ(list.attributes[0].presence, ItemPresence::Optional);
    EXPECT_FALSE(list.attributes[0].isRead);
    ASSERT_EQ(list.elements.size(), 1U);
    const SchemaItem& entry = list.elements[0];
    EXPECT_EQ(entry.name, L"Entry");
    EXPECT_TRUE(entry.repeats);
    ASSERT_EQ(entry.elements.size(), 3U);
    EXPECT_EQ(entry.elements[0].says, "A number of the record.");
    EXPECT_EQ(entry.elements[1].elements.size(), 3U);
    EXPECT_EQ(entry.elements[2].target, "TestEntity");
}

TEST_F(ContentWalk, GivesRecordsByTheTableOfItems)
{
    const auto rows = ItemsOf("TestRecords");
    ASSERT_EQ(rows.size(), 1U);
    const ItemInfo& list = rows[0];
    EXPECT_EQ(list.kind, ItemKind::Records);
    ASSERT_EQ(list.fields.size(), 3U);
    EXPECT_EQ(list.fields[0].path, L"Number");
    EXPECT_EQ(list.fields[0].says, "A number of the record.");
    EXPECT_EQ(list.fields[2].target, "TestEntity");
    EXPECT_TRUE(list.GetRecords(*entity).empty());

    const QOBSharedHandle<KARMPEntity> target(Target(L"T1"));
    const NumberArray vector{1.0, 2.0, 3.0};
    EXPECT_EQ(list.AddRecord(*entity, std::vector<Value>{4.0, vector, target}), KARSuccess);
    EXPECT_EQ(list.AddRecord(*entity, std::vector<Value>{5, {}, {}}), KARSuccess);
    ASSERT_EQ(entity->records.size(), 2U);
    EXPECT_EQ(entity->records[0].vector, KARMathVector(1.0, 2.0, 3.0));
    const std::vector<std::vector<Value>> expected{{4.0, vector, target},
                                                   {5.0, NumberArray{0.0, 0.0, 0.0}, {}}};
    EXPECT_EQ(list.GetRecords(*entity), expected);
    EXPECT_EQ(ItemsOf("TestRecordsByOperations")[0].GetRecords(*entity).size(), 2U);
}

constexpr auto CountedList = karmp::Element(L"E", "An element.", CountingFrame, Counted);
const ContentRegistration CountedRegistration("TestRecordsByOperations", &ContentFrom<CountedList>);

TEST_F(ContentWalk, LeavesOutByTheTableOfItemsARecordThatCannotBeHad)
{
    entity->records = {{1.0, {}, {}}, {2.0, {}, {}}};
    entity->getterStatus = KARFailure;
    const auto records = ItemsOf("TestRecordsByOperations")[0].GetRecords(*entity);
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0][0], Value(2.0));
}

TEST_F(ContentWalk, AddsNoRecordWithAValueThatItsFieldRefuses)
{
    const ItemInfo& list = ItemsOf("TestRecords")[0];
    const auto add = [&](const std::vector<Value>& values) {
        return list.AddRecord(*entity, values);
    };
    EXPECT_EQ(add({std::wstring(L"text"), {}, {}}), KARFailure);
    EXPECT_EQ(add({1.0}), KARFailure);
    EXPECT_EQ(add({1.0, {}, QOBSharedHandle<KARMPEntity>(KARMPConstant::create(L"k"))}),
              KARFailure);
    EXPECT_TRUE(entity->records.empty());
    entity->setterStatus = KARUnchanged;
    EXPECT_EQ(add({1.0, {}, {}}), KARUnchanged);
    // The list is not set as a whole, and other items have no records.
    EXPECT_EQ(list.Set(*entity, Value(1.0)), KARFailure);
    const ItemInfo& number = ItemsOf("ContentTestEntity").back();
    EXPECT_EQ(number.AddRecord(*entity, {}), KARFailure);
    EXPECT_TRUE(number.GetRecords(*entity).empty());
}

} // namespace

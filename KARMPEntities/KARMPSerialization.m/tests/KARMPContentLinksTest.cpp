// References and value references in content lists.
#include "ContentTesting.h"
#include "QOBException.h"

namespace {

using namespace karmp;
using C = ContentTestEntity;

TEST_F(ContentWalk, ReadsAReferenceThatIsThere)
{
    constexpr auto list = Counting(Reference<&C::GetLink, &C::Link>(L"Link", ""));
    const auto target = Target(L"T1");
    TestDeserializer& element = tree.Add(L"E");
    EXPECT_EQ(Read(list), KARSuccess);
    TestDeserializer& link = element.Add(L"Link");
    EXPECT_EQ(Read(list), KARSuccess);
    ExpectReports(1);
    link.Attribute(L"id", L"unknown");
    EXPECT_EQ(Read(list), KARSuccess);
    EXPECT_TRUE(entity->calls.empty());
    link.Attribute(L"id", L"T1");
    entity->setterStatus = KARFailure;
    EXPECT_EQ(Read(list), KARSuccess);
    ExpectReports(1);
    entity->setterStatus = KARSuccess;
    EXPECT_EQ(Read(list), KARSuccess);
    EXPECT_EQ(entity->link.Handle(), target);
    entities.Set(L"other", KARMPConstant::create(L"other"));
    link.Attribute(L"id", L"other");
    EXPECT_THROW(Read(list), QOBEInvalidCast);
}

TEST_F(ContentWalk, WritesAReferenceThatTheGetterGives)
{
    constexpr auto list = Counting(Reference<&C::GetLink, &C::Link>(L"Link", ""));
    entity->Link(Target(L"T1"));
    entity->getterStatus = KARFailure;
    EXPECT_EQ(Write(list), KARSuccess);
    EXPECT_FALSE(root.Has(L"E/Link"));
    entity->getterStatus = KARSuccess;
    EXPECT_EQ(Write(list), KARSuccess);
    EXPECT_EQ(root.Text(L"E[1]/Link/@id"), L"T1");
    EXPECT_EQ(root.Text(L"E[1]/Link/@name"), L"name of T1");
    // A link itself gives nothing while it is empty.
    entity->link.Clear();
    EXPECT_EQ(Write(Counting(Reference<&C::link, &C::Link>(L"Link", ""))), KARSuccess);
    EXPECT_FALSE(root.Has(L"E[2]/Link"));
}

TEST_F(ContentWalk, WritesAndReadsAReferenceWithoutATarget)
{
    constexpr auto list = Counting(Reference<&C::link, &C::Link>(L"Link", "").EvenWithoutTarget());
    EXPECT_EQ(Write(list), KARSuccess);
    EXPECT_TRUE(root.Has(L"E/Link"));
    EXPECT_FALSE(root.Has(L"E/Link/@id"));
    TestDeserializer& link = tree.Add(L"E").Add(L"Link");
    EXPECT_EQ(Read(list), KARSuccess);
    ExpectReports(0);
    const auto target = Target(L"T1");
    link.Attribute(L"id", L"T1");
    EXPECT_EQ(Read(list), KARSuccess);
    EXPECT_EQ(entity->link.Handle(), target);
    EXPECT_EQ(Write(list), KARSuccess);
    EXPECT_EQ(root.Text(L"E[1]/Link/@id"), L"T1");
}

TEST_F(ContentWalk, WritesAndReadsValuesWithinAMember)
{
    using Record = ContentTestRecord;
    constexpr auto list =
        Counting(Number<Within<&C::single, &Record::number>>(L"Number", ""),
                 Flag<Within<&C::single, &Record::IsPositive>>(L"Positive", "").WrittenOnly());
    entity->single.number = 2.5;
    EXPECT_EQ(Write(list), KARSuccess);
    EXPECT_EQ(root.Number(L"E/Number"), 2.5);
    EXPECT_TRUE(root.Flag(L"E/Positive"));
    tree.Add(L"E").Leaf(L"Number", -4.0);
    EXPECT_EQ(Read(list), KARSuccess);
    EXPECT_EQ(entity->single.number, -4.0);
}

/// What is inherited comes behind something else, so that its address is not the record's own.
struct DerivedRecord : std::string, ContentTestRecord
{};

TEST_F(ContentWalk, ReachesInheritedValuesByTheRecordsOwnAddress)
{
    constexpr auto number =
        Number<As<DerivedRecord, &DerivedRecord::number>>(L"Number", "").items[0];
    constexpr auto target = Reference<As<DerivedRecord, &DerivedRecord::target>,
                                      As<DerivedRecord, &DerivedRecord::target>>(L"Target", "")
                                .items[0];
    DerivedRecord record;
    ItemValue value;
    value.numbers[0] = 3.5;
    EXPECT_EQ(number.set(&record, value), KARSuccess);
    EXPECT_EQ(record.number, 3.5);
    record.number = 4.5;
    EXPECT_EQ(number.get(&record, value), KARSuccess);
    EXPECT_EQ(value.numbers[0], 4.5);
    EXPECT_EQ(target.get(&record, value), KARSuccess) << "a null handle is a value, too";
    EXPECT_FALSE(value.entity);
    const QOBSharedHandle<KARMPEntity> entry(Target(L"T1"));
    value.target = &entry;
    EXPECT_EQ(target.set(&record, value), KARSuccess);
    EXPECT_EQ(record.target, entry);
}

TEST_F(ContentWalk, WritesAListOfEntitiesUnlessItIsEmpty)
{
    constexpr auto list = Counting(References<&C::list, &C::Append>(L"List", L"Entry", ""));
    EXPECT_EQ(Write(list), KARSuccess);
    EXPECT_FALSE(root.Has(L"E/List"));
    entity->Append(Target(L"T1"));
    entity->Append(Target(L"T2"));
    EXPECT_EQ(Write(list), KARSuccess);
    EXPECT_EQ(root.Count(L"E[1]/List/Entry"), 2U);
    EXPECT_EQ(root.Text(L"E[1]/List/Entry[1]/@id"), L"T2");
    // By operations: an entry that cannot be had keeps its position.
    entity->getterStatus = KARFailure;
    EXPECT_EQ(Write(Counting(References<&C::Count, &C::At, &C::Append>(L"List", L"Entry", ""))),
              KARSuccess);
    EXPECT_TRUE(root.Flag(L"E[2]/List/Entry/@id"));
    EXPECT_EQ(root.Text(L"E[2]/List/Entry[1]/@id"), L"T2");
}

TEST_F(ContentWalk, ReadsTheEntriesOfAListThatResolve)
{
    constexpr auto list = Counting(References<&C::list, &C::Append>(L"List", L"Entry", ""));
    const auto first = Target(L"T1");
    const auto second = Target(L"T2");
    TestDeserializer& element = tree.Add(L"E");
    EXPECT_EQ(Read(list), KARSuccess);
    element.Add(L"List")
        .Reference(L"Entry", L"T2")
        .Reference(L"Entry", L"unknown")
        .Reference(L"Other", L"T1")
        .Reference(L"Entry", L"T1")
        .Add(L"Entry");
    EXPECT_EQ(Read(list), KARSuccess);
    ExpectReports(1); // the one without an identifier
    ASSERT_EQ(entity->Count(), 2);
    EXPECT_EQ(entity->list.At(0), second);
    EXPECT_EQ(entity->list.At(1), first);
    entity->setterStatus = KARFailure;
    EXPECT_EQ(Read(list), KARSuccess);
    ExpectReports(3);
}

class ContentValueReference : public ContentWalk
{
protected:
    ContentValueReference()
    {
        constant->SetIdentifier(L"K1");
        entities.Set(L"K1", constant);
    }

    static constexpr auto Item = ValueReference<&C::constant, &C::SetConstant>(L"Value", "");
    QOBSharedHandle<KARMPConstant> constant = KARMPConstant::create(L"k");
};

TEST_F(ContentValueReference, IsWrittenWithIdentifierAndName)
{
    entity->SetConstant(constant);
    EXPECT_EQ(Write(Counting(Item)), KARSuccess);
    EXPECT_EQ(root.Text(L"E/Value/@id"), L"K1");
    EXPECT_EQ(root.Text(L"E/Value/@name"), L"k");
    root.FailCreation(2);
    EXPECT_EQ(Write(Counting(Item)), KARFailure);
    EXPECT_GE(TakeReports(), 1U);
}

TEST_F(ContentValueReference, WithoutAValueIsAFailureUnlessItIsOptional)
{
    EXPECT_EQ(Write(Counting(Item)), KARFailure);
    ExpectReports(1);
    EXPECT_FALSE(root.Has(L"E/Value"));
    EXPECT_EQ(Write(Counting(Item.Optional())), KARSuccess);
    EXPECT_FALSE(root.Has(L"E[1]/Value"));
}

TEST_F(ContentValueReference, IsAskedForByTheWriterAlone)
{
    constexpr auto asked =
        AskedValueReference<&C::constant, &C::GetConstant, &C::SetConstant>(L"Value", "");
    EXPECT_EQ(Write(Counting(asked)), KARFailure);
    ExpectReports(1);
    EXPECT_FALSE(root.Has(L"E/Value"));
    tree.Add(L"E");
    EXPECT_EQ(Read(Counting(asked)), KARSuccess);
    entity->SetConstant(constant);
    entity->getterStatus = KARFailure;
    EXPECT_EQ(Write(Counting(asked)), KARFailure);
    ExpectReports(1);
    ItemValue value;
    EXPECT_EQ(asked.items[0].get(OwnerOf(*entity), value), KARSuccess);
    entity->getterStatus = KARSuccess;
    EXPECT_EQ(Write(Counting(asked)), KARSuccess);
    EXPECT_EQ(root.Text(L"E[2]/Value/@id"), L"K1");
}

TEST_F(ContentValueReference, LinksTheValueOfTheDocument)
{
    tree.Add(L"E").Reference(L"Value", L"K1");
    EXPECT_EQ(Read(Counting(Item)), KARSuccess);
    EXPECT_EQ(entity->constant.Handle(), constant);
    entity->setterStatus = KARFailure;
    EXPECT_EQ(Read(Counting(Item)), KARSuccess);
    ExpectReports(1);
    entities.Set(L"K1", Target(L"T1"));
    EXPECT_THROW(Read(Counting(Item)), QOBEInvalidCast);
}

TEST_F(ContentValueReference, MissingOrUnknownIsAFailedCheckAndAFailure)
{
    TestDeserializer& element = tree.Add(L"E");
    EXPECT_EQ(Read(Counting(Item)), KARFailure);
    ExpectReports(2); // that of the services and that of the item
    EXPECT_EQ(Read(Counting(Item.Optional())), KARSuccess);
    element.Reference(L"Value", L"unknown");
    EXPECT_EQ(Read(Counting(Item)), KARFailure);
    ExpectReports(2);
    EXPECT_EQ(Read(Counting(Item.Optional())), KARFailure);
    ExpectReports(2);
    auto reported = Item;
    reported.First().presence = ItemPresence::Reported;
    EXPECT_EQ(Read(Counting(reported)), KARSuccess);
    ExpectReports(2);
    EXPECT_FALSE(entity->constant);
}

class ContentNamesProcess : public ContentValueReference
{};

TEST_F(ContentNamesProcess, AreWrittenWhereTheItemAsksForThem)
{
    ASSERT_FALSE(KARMPSerializer::SerializeName()) << "needs NO_MP_NAME_FOR_SERIALIZATION";
    constexpr auto list = References<&C::list, &C::Append>(L"List", L"Entry", "");
    entity->Append(Target(L"T1"));
    entity->Link(Target(L"T2"));
    entity->SetConstant(constant);
    Write(Counting(list, Reference<&C::link, &C::Link>(L"Link", ""), Item));
    EXPECT_FALSE(root.Has(L"E/List/Entry/@name"));
    EXPECT_FALSE(root.Has(L"E/Link/@name"));
    EXPECT_EQ(root.Text(L"E/Value/@name"), L"k");
    Write(Counting(list.AlwaysNamed()));
    EXPECT_EQ(root.Text(L"E[1]/List/Entry/@id"), L"T1");
    EXPECT_EQ(root.Text(L"E[1]/List/Entry/@name"), L"name of T1");
}

} // namespace

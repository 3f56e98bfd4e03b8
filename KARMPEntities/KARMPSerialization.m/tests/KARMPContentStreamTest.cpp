// Streams of bytes in content lists.
#include "ContentTesting.h"
#include "KARMPItems.h"
#include "KARMPSchema.h"

namespace {

using namespace karmp;
using C = ContentTestEntity;
using Bytes = std::vector<unsigned char>;

constexpr auto InElement = Stream<&C::bytes>(L"Stream", "");
constexpr auto InAttribute = Attribute(Stream<&C::bytes>(L"stream", ""));

TEST_F(ContentWalk, WritesAStreamAsBase64)
{
    entity->bytes = {0x00, 0xFF, 0x10, 'a'};
    EXPECT_EQ(Write(Counting(InElement, InAttribute)), KARSuccess);
    EXPECT_EQ(root.Text(L"E/Stream"), L"AP8QYQ==");
    EXPECT_EQ(root.Integer(L"E/Stream/@length"), 4);
    EXPECT_EQ(root.Text(L"E/@stream"), L"AP8QYQ==");
    entity->getterStatus = KARFailure;
    EXPECT_EQ(Write(Counting(Stream<&C::GetBytes>(L"Stream", "").Through<&C::SetBytes>())),
              KARFailure);
    ExpectReports(1);
    EXPECT_FALSE(root.Has(L"E[1]/Stream"));
}

TEST_F(ContentWalk, ReadsAStreamFromElementAndAttribute)
{
    const Bytes bytes{0x00, 0xFF, 0x10, 'a'};
    tree.Add(L"E").Attribute(L"stream", L"AP8QYQ==");
    EXPECT_EQ(Read(Counting(InAttribute)), KARSuccess);
    EXPECT_EQ(entity->bytes, bytes);
    entity->bytes.clear();
    TestDeserializer other;
    // The text decides, whatever the length.
    other.Add(L"E").Add(L"Stream").Attribute(L"length", 9).SetValue(L"AP8QYQ==");
    EXPECT_EQ(ReadContent(Made(Counting(InElement.Through<&C::SetBytes>())), OwnerOf(*entity),
                          &other, entities, nullptr),
              KARSuccess);
    EXPECT_EQ(entity->bytes, bytes);
}

TEST_F(ContentWalk, ReportsAStreamWithoutALength)
{
    tree.Add(L"E").Leaf(L"Stream", L"AP8QYQ==");
    EXPECT_EQ(Read(Counting(InElement.Required())), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(entity->bytes.size(), 4U);
}

TEST_F(ContentWalk, TreatsAMissingStreamByItsPresence)
{
    tree.Add(L"E");
    for (const auto& stream : {InElement, InAttribute}) {
        EXPECT_EQ(Read(Counting(stream)), KARSuccess);
        ExpectReports(1);
        EXPECT_EQ(Read(Counting(stream.Required())), KARFailure);
        ExpectReports(1);
        EXPECT_EQ(Read(Counting(stream.Optional())), KARSuccess);
    }
}

TEST_F(ContentWalk, ReportsAStreamThatIsNoBase64OrEmpty)
{
    entity->bytes = {7};
    for (const wchar_t* const text : {L"AP8QYQ=", L"AP8\x2014YQ==", L" AP8QYQ==", L""}) {
        TestDeserializer damaged;
        TestDeserializer& element = damaged.Add(L"E").Attribute(L"stream", text);
        element.Add(L"Stream").Attribute(L"length", 4).SetValue(text);
        for (const auto& stream : {InElement, InAttribute}) {
            const auto read = [&](const ItemList<1>& item) {
                return ReadContent(Made(Counting(item)), OwnerOf(*entity), &damaged, entities,
                                   nullptr);
            };
            EXPECT_EQ(read(stream), KARSuccess);
            ExpectReports(1);
            EXPECT_EQ(read(stream.Optional()), KARSuccess);
            ExpectReports(1);
            EXPECT_EQ(read(stream.Required()), KARFailure);
            ExpectReports(1);
        }
        EXPECT_EQ(entity->bytes, Bytes{7});
    }
}

TEST_F(ContentWalk, CountsAStreamThatCannotBeWritten)
{
    entity->bytes = {1, 2, 3};
    root.FailCreation(2);
    EXPECT_EQ(Write(Counting(InElement)), KARFailure);
    EXPECT_GE(TakeReports(), 1U);
}

constexpr auto RegisteredList = Counting(InElement, InAttribute);
const ContentRegistration Registration("TestStreams", &ContentFrom<RegisteredList>);

TEST_F(ContentWalk, DescribesStreamsInTheSchema)
{
    const SchemaItem& element = *SchemaOf("TestStreams");
    ASSERT_EQ(element.elements.size(), 1U);
    EXPECT_EQ(element.elements[0].kind, ItemKind::Text);
    ASSERT_EQ(element.elements[0].attributes.size(), 1U);
    EXPECT_EQ(element.elements[0].attributes[0].name, L"length");
    ASSERT_EQ(element.attributes.size(), 1U);
    EXPECT_EQ(element.attributes[0].kind, ItemKind::Text);
    EXPECT_TRUE(element.attributes[0].attributes.empty());
}

TEST_F(ContentWalk, GivesStreamsByTheTableOfItems)
{
    const ItemInfo& stream = ItemsOf("TestStreams")[0];
    EXPECT_EQ(stream.kind, ItemKind::Stream);
    EXPECT_EQ(stream.Set(*entity, Bytes{1, 2}), KARSuccess);
    EXPECT_EQ(entity->bytes, (Bytes{1, 2}));
    EXPECT_EQ(stream.Get(*entity), Value(Bytes{1, 2}));
    EXPECT_EQ(stream.Set(*entity, std::wstring(L"AP8QYQ==")), KARFailure);
}

} // namespace

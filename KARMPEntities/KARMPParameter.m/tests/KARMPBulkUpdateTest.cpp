#include "AttributeTesting.h"
#include "KARMPExpression.h"
#include "KAROmxAny.h"
#include "KAROmxOMap.h"
#include "QOBException.h"

#include <array>
#include <vector>

namespace {

using Entries = KAROmxOMap<KARString, KAROmxAny>;

const std::array<unsigned char, 4> Bytes{0, 0xC3, 0xA9, 0xFF};

class BulkUpdate : public KARMPTestFixture
{
protected:
    BulkUpdate()
    {
        entity->addSubscriber(
            QOBNotificationFunctor(
                *entity, [this](auto, const auto& events) { m_heard += events[9] ? 1 : 100; }),
            QOBNotificationAgent::Events().set());
    }
    ~BulkUpdate() override { entity->orphanObject(); }

    /// An attribute of a type that the entity lists.
    template <class T>
    QOBSharedHandle<T> Listed(const std::string& path, const char* type,
                              const QOBSharedHandle<KARMPValue>& value = {})
    {
        const auto attribute = NewAttribute<T>(path);
        attribute->SetType(type);
        if (value)
            attribute->AddValue(value);
        AddTo(*entity, attribute);
        return attribute;
    }
    /// Updates outputs and expects some reports and events.
    void ExpectUpdate(const Entries& entries, std::size_t reports, int events)
    {
        EXPECT_EQ(entity->UpdateOutputs(entries), KARSuccess);
        ExpectReports(reports);
        EXPECT_EQ(TakeEvents(), events);
    }
    static Entries Entry(const char* path, const KAROmxAny& value)
    {
        Entries entries;
        entries.Insert(path, value);
        return entries;
    }
    int TakeEvents() { return std::exchange(m_heard, 0); }

    const QOBSharedHandle<TestEntity> entity = TestEntity::create(L"crank");
    const QOBSharedHandle<KARMPConstant> number = KARMPConstant::create(L"number");
    const QOBSharedHandle<KARMPConstant> count = KARMPConstant::create(L"count");
    const QOBSharedHandle<KARMPString> text = KARMPString::create(L"text");
    const QOBSharedHandle<KARMPString> word = KARMPString::create(L"word");
    const QOBSharedHandle<KARMPBoolean> flag = KARMPBoolean::create(L"flag");

    double NumberIn(const QOBSharedHandle<KARMPConstant>& constant)
    {
        double held = 0.0;
        constant->GetValue(held);
        return held;
    }
    KARUnicodeString TextIn(const QOBSharedHandle<KARMPString>& string)
    {
        KARUnicodeString held;
        string->GetValue(held);
        return held;
    }
    unsigned char Flag()
    {
        unsigned char held = 0;
        flag->GetValue(held);
        return held;
    }

    Entries FullEntries()
    {
        Entries entries;
        entries.Insert("number", 2.5);
        entries.Insert("count", -3);
        entries.Insert("text", "caf\xC3\xA9");
        entries.Insert("word", KARString("open"));
        entries.Insert("flag", true);
        return entries;
    }
    template <class T>
    void ListAll()
    {
        Listed<T>("number", "double", number);
        Listed<T>("count", "int", count);
        Listed<T>("text", "string", text);
        Listed<T>("word", "enum", word);
        Listed<T>("flag", "bool", flag);
    }
    void ExpectFullEntries()
    {
        EXPECT_EQ(NumberIn(number), 2.5);
        EXPECT_TRUE(number->IsDouble());
        EXPECT_EQ(NumberIn(count), -3.0);
        EXPECT_FALSE(count->IsDouble());
        EXPECT_EQ(TextIn(text), "caf\xC3\xA9");
        EXPECT_EQ(TextIn(word), "open");
        EXPECT_EQ(Flag(), 1);
        EXPECT_EQ(TakeEvents(), 5);
        ExpectReports(0);
    }

private:
    int m_heard = 0;
};

TEST_F(BulkUpdate, TellsOfAnUpdateWhenTheValueIsStored)
{
    Listed<KARMPOutput>("number", "double", number);
    double heard = 0.0;
    entity->addSubscriber(
        QOBNotificationFunctor(*entity, [&](auto, const auto&) { heard = NumberIn(number); }),
        QOBNotificationAgent::Events().set());
    ExpectUpdate(Entry("number", 2.5), 0, 1);
    EXPECT_EQ(heard, 2.5);
}

TEST_F(BulkUpdate, OfOutputsStoresEachTypeInItsValue)
{
    ListAll<KARMPOutput>();
    EXPECT_EQ(entity->UpdateOutputs(FullEntries()), KARSuccess);
    ExpectFullEntries();
}

TEST_F(BulkUpdate, OfStatesStoresEachTypeInItsValue)
{
    ListAll<KARMPState>();
    EXPECT_EQ(entity->UpdateStates(FullEntries()), KARSuccess);
    ExpectFullEntries();
}

TEST_F(BulkUpdate, FindsAttributesBelowOthersByPathsWithDots)
{
    const auto arm = Listed<KARMPOutput>("arm", "");
    const auto unnamed = NewAttribute<KARMPOutput>("");
    const auto angle = NewAttribute<KARMPOutput>("angle");
    angle->SetType("double");
    angle->AddValue(number);
    arm->AddChild(unnamed);
    unnamed->AddChild(angle);
    ExpectUpdate(Entry("arm..angle", 1.5), 0, 1);
    EXPECT_EQ(NumberIn(number), 1.5);
    for (const char* const path :
         {"", ".", "arm", "arm.", "arm.angle", ".arm..angle", "arm..angle.", "Arm..angle"})
        ExpectUpdate(Entry(path, 2.5), 1, 0);
    EXPECT_EQ(NumberIn(number), 1.5);
}

TEST_F(BulkUpdate, TakesAnEmptyTextForAPathThatLeadsNowhere)
{
    const auto unnamed = Listed<KARMPOutput>("", "double", number);
    ExpectUpdate(Entry("", 1.5), 1, 0);
    const auto inner = NewAttribute<KARMPOutput>("");
    inner->SetType("double");
    inner->AddValue(count);
    unnamed->AddChild(inner);
    ExpectUpdate(Entry(".", 2.5), 0, 1);
    EXPECT_EQ(NumberIn(number), 0.0);
    EXPECT_EQ(NumberIn(count), 2.5);
}

TEST_F(BulkUpdate, OfAnEntityWithoutAttributesReportsEachPath)
{
    ExpectUpdate(FullEntries(), 5, 0);
    EXPECT_EQ(entity->UpdateStates(FullEntries()), KARSuccess);
    ExpectReports(5);
    ExpectUpdate({}, 0, 0);
}

TEST_F(BulkUpdate, GoesOnPastWhatCannotBeStored)
{
    Listed<KARMPOutput>("a", "unknown", text);
    Listed<KARMPOutput>("b", "double", number);
    Entries entries;
    entries.Insert("a", 1.0);
    entries.Insert("b", 2.0);
    entries.Insert("c", 3.0);
    ExpectUpdate(entries, 2, 1);
    EXPECT_EQ(NumberIn(number), 2.0);
}

TEST_F(BulkUpdate, KnowsTheTypesByTheirExactWordsOnly)
{
    const auto output = Listed<KARMPOutput>("o", "", number);
    for (const char* const type : {"", "Double", "double ", "float", "octets"}) {
        output->SetType(type);
        ExpectUpdate(Entry("o", 1.5), 1, 0);
    }
    output->SetType("double");
    ExpectUpdate(Entry("o", 1.5), 0, 1);
}

TEST_F(BulkUpdate, ConvertsNoEntry)
{
    const std::vector<std::pair<const char*, QOBSharedHandle<KARMPValue>>> types{
        {"double", number}, {"int", count}, {"string", text}, {"enum", word}, {"bool", flag}};
    const std::vector<KAROmxAny> values{KAROmxAny(), 1.5, 2, "word", true, _SEQUENCE_octet(Bytes)};
    const std::vector<std::vector<std::size_t>> fitting{{1}, {2}, {3}, {3}, {4}};
    for (std::size_t type = 0; type < types.size(); ++type) {
        const std::string path = std::to_string(type);
        Listed<KARMPOutput>(path, types[type].first, types[type].second);
        for (std::size_t value = 0; value < values.size(); ++value) {
            const bool fits = fitting[type].front() == value;
            ExpectUpdate(Entry(path.c_str(), values[value]), fits ? 0 : 1, fits ? 1 : 0);
        }
    }
    EXPECT_EQ(NumberIn(number), 1.5);
    EXPECT_EQ(NumberIn(count), 2.0);
    EXPECT_EQ(TextIn(text), "word");
    EXPECT_EQ(TextIn(word), "word");
    EXPECT_EQ(Flag(), 1);
}

TEST_F(BulkUpdate, NeedsExactlyOneValue)
{
    const auto output = Listed<KARMPOutput>("o", "double");
    ExpectUpdate(Entry("o", 1.5), 1, 0);
    output->AddValue(number);
    output->AddValue(count);
    ExpectUpdate(Entry("o", 1.5), 1, 0);
    EXPECT_EQ(NumberIn(number), 0.0);
}

TEST_F(BulkUpdate, ThrowsOverAValueOfAnotherClassAndKeepsWhatItStored)
{
    Listed<KARMPOutput>("a", "double", number);
    Listed<KARMPOutput>("b", "bool", count);
    Entries entries;
    entries.Insert("a", 1.5);
    entries.Insert("b", true);
    EXPECT_THROW(entity->UpdateOutputs(entries), QOBEInvalidCast);
    EXPECT_EQ(NumberIn(number), 1.5);
    EXPECT_EQ(TakeEvents(), 1);
    // The class counts before the entry.
    Listed<KARMPOutput>("c", "string", number);
    EXPECT_THROW(entity->UpdateOutputs(Entry("c", 1)), QOBEInvalidCast);
    Listed<KARMPOutput>("d", "int", QOBSharedHandle<KARMPValue>(KARMPExpression::create(L"")));
    EXPECT_THROW(entity->UpdateOutputs(Entry("d", 1)), QOBEInvalidCast);
    ExpectReports(0);
}

class RefusingString : public KARMPString
{
public:
    RefusingString() = default;
    KARStatus SetValue(KARUnicodeString) override { return KARFailure; }
};

TEST_F(BulkUpdate, ReportsAValueThatRefuses)
{
    Listed<KARMPOutput>("o", "string", QOBSharedHandle<KARMPValue>(new RefusingString));
    ExpectUpdate(Entry("o", "text"), 1, 0);
}

TEST_F(BulkUpdate, StoresBytesInTheOutputItself)
{
    const auto output = Listed<KARMPOutput>("o", "octet");
    ExpectUpdate(Entry("o", _SEQUENCE_octet(Bytes)), 0, 1);
    EXPECT_EQ(output->GetOctetSequence(), _SEQUENCE_octet(Bytes));
    // What is not bytes is not stored.
    for (const KAROmxAny& other : {KAROmxAny(), KAROmxAny(1.5), KAROmxAny("text")})
        ExpectUpdate(Entry("o", other), 1, 0);
    EXPECT_EQ(output->GetOctetSequence().length(), 4);
    // Nor does it matter whether there are values.
    output->AddValue(number);
    output->AddValue(count);
    ExpectUpdate(Entry("o", _SEQUENCE_octet()), 0, 1);
    EXPECT_EQ(output->GetOctetSequence().length(), 0);
}

TEST_F(BulkUpdate, OfStatesKnowsNoBytes)
{
    const auto state = Listed<KARMPState>("s", "octet", text);
    EXPECT_EQ(entity->UpdateStates(Entry("s", _SEQUENCE_octet(Bytes))), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(TakeEvents(), 0);
    EXPECT_EQ(state->GetOctetSequence().length(), 0);
}

// A walk for each path would compare 1e10 texts here, which takes minutes.
TEST_F(BulkUpdate, OfManyOutputsDoesNotWalkTheList)
{
    constexpr int Count = 100'000;
    Entries entries;
    for (int i = 0; i < Count; ++i) {
        const std::string path = "output " + std::to_string(i);
        Listed<KARMPOutput>(path, "double",
                            QOBSharedHandle<KARMPValue>(KARMPConstant::create(L"")));
        entries.Insert(path.c_str(), static_cast<double>(i));
    }
    for (int step = 0; step < 2; ++step)
        ExpectUpdate(entries, 0, Count);
    double held = 0.0;
    EXPECT_EQ(entity->GetOutputValue({"output 99999"}, 0, held), KARSuccess);
    EXPECT_EQ(held, 99999.0);
}

} // namespace

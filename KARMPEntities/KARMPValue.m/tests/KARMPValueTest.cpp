#include "ConcreteEntity.h"
#include "EnvironmentVariable.h"
#include "KARIMPConstantLoader.h"
#include "KARIMPValueLoader.h"
#include "KARMPBoolean.h"
#include "KARMPConstant.h"
#include "KARMPEntityTable.h"
#include "KARMPEnumerationTexts.h"
#include "KARMPString.h"
#include "KARMPTestFixture.h"
#include "RecordingEntityLoader.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

// A constant that tells another quantity than it stores.
class MeasuringConstant : public KARMPConstant
{
public:
    KARStatus GetPhysicalQuantity(KARMPPhysicalQuantity::Enum& quantity) const override
    {
        quantity = told;
        return told != KARMPPhysicalQuantity::NoPhysicalQuantity ? KARSuccess : KARFailure;
    }

    KARMPPhysicalQuantity::Enum told = KARMPPhysicalQuantity::NoPhysicalQuantity;
};

class Value : public KARMPTestFixture
{
protected:
    double Number() const
    {
        double number = -1.0;
        EXPECT_EQ(constant->GetValue(number), KARSuccess);
        return number;
    }

    // A document's element of that version with an entity's attributes in it.
    TestDeserializer& Element(std::wstring_view name, std::wstring_view version = L"R2018.1")
    {
        TestDeserializer& element = document.At(version).Add(name);
        return element.Attribute(L"id", L"K1")
            .Attribute(L"name", L"k")
            .Attribute(L"isActive", L"yes");
    }

    EnvironmentVariable dumpOutputs{"MOT_DUMP_OUTPUTS", nullptr};
    QOBSharedHandle<KARMPConstant> constant = KARMPConstant::create(L"k");
    QOBSharedHandle<KARMPBoolean> flag = KARMPBoolean::create(L"b");
    QOBSharedHandle<KARMPString> string = KARMPString::create(L"s");
    KARMPEntityTable entities;
    TestDeserializer document;
};

TEST_F(Value, RefusesNoPhysicalQuantity)
{
    KARMPPhysicalQuantity::Enum quantity = KARMPPhysicalQuantity::Mass;
    EXPECT_EQ(constant->GetPhysicalQuantity(quantity), KARFailure);
    EXPECT_EQ(quantity, 0);
    EXPECT_EQ(constant->SetPhysicalQuantity(KARMPPhysicalQuantity::Time), KARSuccess);
    EXPECT_EQ(constant->SetPhysicalQuantity(KARMPPhysicalQuantity::NoPhysicalQuantity), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(constant->GetPhysicalQuantity(quantity), KARSuccess);
    EXPECT_EQ(quantity, KARMPPhysicalQuantity::Time);
}

TEST_F(Value, ConstantsKeepNumberAndTypeWord)
{
    EXPECT_EQ(Number(), 0.0);
    EXPECT_TRUE(constant->IsDouble());
    EXPECT_EQ(constant->SetValue(3.0, "int"), KARSuccess);
    EXPECT_EQ(Number(), 3.0);
    EXPECT_FALSE(constant->IsDouble());
    constant->SetValue(4.0, "Int");
    EXPECT_TRUE(constant->IsDouble());
    constant->SetValue(4.0, "double");
    EXPECT_TRUE(constant->IsDouble());
}

TEST_F(Value, FlagsAndTextsKeepWhatTheyAreGiven)
{
    unsigned char value = 9;
    EXPECT_EQ(flag->GetValue(value), KARSuccess);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(flag->SetValue(7), KARSuccess);
    flag->GetValue(value);
    EXPECT_EQ(value, 7);
    KARUnicodeString text("former");
    EXPECT_EQ(string->GetValue(text), KARSuccess);
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(string->SetValue("text"), KARSuccess);
    string->GetValue(text);
    EXPECT_EQ(text, "text");
}

TEST_F(Value, GivesItsLoaderUnderEachInterfaceThatItHas)
{
    LoaderRecord record;
    auto* attached = new RecordingLoader<KARIMPConstantLoader>(record);
    constant->SetLoader(attached);
    KARIMPValueLoader* asValue = nullptr;
    EXPECT_EQ(constant->GetLoader(asValue), KARSuccess);
    EXPECT_EQ(asValue, attached);
    KARIMPConstantLoader* asConstant = nullptr;
    EXPECT_EQ(constant->GetLoader(asConstant), KARSuccess);
    EXPECT_EQ(asConstant, attached);
    constant->SetValue(1.0, "");
    constant->SetPhysicalQuantity(KARMPPhysicalQuantity::Mass);
    EXPECT_TRUE(record.calls.empty());
    constant.detach();
    EXPECT_EQ(record.deleted, 1);
}

TEST_F(Value, WithALoaderOfAnotherKindHasNoLoaderOfItsOwn)
{
    LoaderRecord record;
    constant->SetLoader(new RecordingLoader<KARIMPValueLoader>(record));
    auto* loader = reinterpret_cast<KARIMPConstantLoader*>(&record);
    EXPECT_EQ(constant->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr);
    constant.detach();
    const auto unreachable = ConcreteEntity<KARMPConstant>::create(L"u");
    unreachable->failsToFetch = true;
    loader = reinterpret_cast<KARIMPConstantLoader*>(&record);
    EXPECT_EQ(unreachable->KARMPConstant::GetLoader(loader), KARFailure);
    EXPECT_EQ(loader, nullptr);
    ExpectReports(1);
    auto* asValue = reinterpret_cast<KARIMPValueLoader*>(&record);
    EXPECT_EQ(unreachable->KARMPValue::GetLoader(asValue), KARFailure);
    EXPECT_EQ(asValue, nullptr);
    ExpectReports(1);
}

TEST_F(Value, CopyTakesOwnerQuantityAndValue)
{
    constant->SetValue(5.0, "int");
    constant->SetPhysicalQuantity(KARMPPhysicalQuantity::Mass);
    constant->SetOwner("Output");
    const auto copy = KARMPConstant::clone(constant, QOBDynamicObject::CopyDefault);
    double number = 0.0;
    copy->GetValue(number);
    EXPECT_EQ(number, 5.0);
    EXPECT_FALSE(copy->IsDouble());
    KARMPPhysicalQuantity::Enum quantity = {};
    EXPECT_EQ(copy->GetPhysicalQuantity(quantity), KARSuccess);
    EXPECT_EQ(quantity, KARMPPhysicalQuantity::Mass);
    TestSerializer root;
    EXPECT_EQ(copy->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.GetElementCount(), 0U);

    flag->SetValue(1);
    unsigned char value = 0;
    KARMPBoolean::clone(flag, QOBDynamicObject::CopyDefault)->GetValue(value);
    EXPECT_EQ(value, 1);
    string->SetValue("t");
    KARUnicodeString text;
    KARMPString::clone(string, QOBDynamicObject::CopyDefault)->GetValue(text);
    EXPECT_EQ(text, "t");
}

TEST_F(Value, WithoutAQuantityIsWrittenWithoutTheElement)
{
    constant->SetIdentifier(L"K1");
    constant->SetValue(2.5, "");
    TestSerializer root;
    EXPECT_EQ(constant->Serialize(&root), KARSuccess);
    ASSERT_EQ(root.GetElementCount(), 1U);
    EXPECT_EQ(root.Text(L"Constant/@id"), L"K1");
    EXPECT_EQ(root.Find(L"Constant")->GetElementCount(), 1U);
    EXPECT_EQ(root.Number(L"Constant/Value"), 2.5);
    EXPECT_EQ(constant->KARMPValue::Serialize(&root), KARUnchanged);
}

TEST_F(Value, IsWrittenWithTheQuantityThatASubclassTells)
{
    const QOBSharedHandle<MeasuringConstant> measuring(new MeasuringConstant);
    measuring->told = KARMPPhysicalQuantity::Mass;
    TestSerializer root;
    EXPECT_EQ(measuring->KARMPValue::Serialize(&root), KARSuccess);
    EXPECT_EQ(root.Text(L"PhysicalQuantity"), L"Mass");

    measuring->SetPhysicalQuantity(KARMPPhysicalQuantity::Time);
    measuring->told = KARMPPhysicalQuantity::NoPhysicalQuantity;
    TestSerializer without;
    EXPECT_EQ(measuring->KARMPValue::Serialize(&without), KARUnchanged);
    EXPECT_FALSE(without.Has(L"PhysicalQuantity"));
}

TEST_F(Value, QuantityIsANumberBelowItsVersionAndAWordFromItOn)
{
    for (int row = 1; row < 33; ++row) {
        constant->SetPhysicalQuantity(static_cast<KARMPPhysicalQuantity::Enum>(row));
        for (const wchar_t* version : {L"R2015x.0", L"R2017.9", L"R2018.0", L"R2018.1"}) {
            TestSerializer root(version);
            ASSERT_EQ(constant->Serialize(&root), KARSuccess);
            EXPECT_EQ(root.Find(L"Constant")->Child(0).GetId(), L"PhysicalQuantity");
            if (std::wstring_view(version) >= L"R2018.0")
                EXPECT_EQ(root.Text(L"Constant/PhysicalQuantity"),
                          KARMPEnumText(static_cast<KARMPPhysicalQuantity::Enum>(row)));
            else
                EXPECT_EQ(root.Integer(L"Constant/PhysicalQuantity"), row);
            const auto read = KARMPConstant::create(L"");
            const auto tree = TestDeserializer::From(root, {.asText = row % 2 == 0});
            EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
            KARMPPhysicalQuantity::Enum quantity = {};
            EXPECT_EQ(read->GetPhysicalQuantity(quantity), KARSuccess);
            EXPECT_EQ(quantity, row);
        }
    }
}

TEST_F(Value, WordOutsideTheTableGivesNoQuantityWithoutAReport)
{
    Element(L"Constant").Leaf(L"PhysicalQuantity", L"mass").Leaf(L"Value", 1.0);
    constant->SetPhysicalQuantity(KARMPPhysicalQuantity::Mass);
    EXPECT_EQ(constant->Deserialize(&document, entities), KARSuccess);
    KARMPPhysicalQuantity::Enum quantity = {};
    EXPECT_EQ(constant->GetPhysicalQuantity(quantity), KARFailure);
}

TEST_F(Value, QuantityOutsideTheTableIsWrittenAsTheFirstWord)
{
    constant->SetPhysicalQuantity(static_cast<KARMPPhysicalQuantity::Enum>(33));
    TestSerializer root;
    constant->Serialize(&root);
    EXPECT_EQ(root.Text(L"Constant/PhysicalQuantity"), L"NoPhysicalQuantity");
}

TEST_F(Value, MissingQuantityIsFineFromTheVersionOfItsWordOn)
{
    Element(L"Constant", L"R2018.0").Leaf(L"Value", L"2,5");
    EXPECT_EQ(constant->Deserialize(&document, entities), KARSuccess);
    EXPECT_EQ(Number(), 2.5);
    KARMPPhysicalQuantity::Enum quantity = {};
    EXPECT_EQ(constant->GetPhysicalQuantity(quantity), KARFailure);
    const KARMPDeserializer* element = nullptr;
    document.GetElement(L"Constant", element);
    EXPECT_EQ(KARMPConstant::create(L"")->KARMPValue::Deserialize(element, entities), KARUnchanged);
}

TEST_F(Value, MissingQuantityEndsTheReadingOfAnOlderDocument)
{
    Element(L"Constant", L"R2017.9").Leaf(L"Value", 2.5);
    EXPECT_EQ(constant->Deserialize(&document, entities), KARFailure);
    // The base reports the element, the kind its base.
    ExpectReports(2);
    EXPECT_EQ(Number(), 0.0);
    EXPECT_EQ(constant->getEntityName(), L"k");
}

TEST_F(Value, NumberOfAnOlderDocumentIsTheQuantityAsItStands)
{
    for (const int code : {0, 1, 32, 33}) {
        TestDeserializer root;
        TestDeserializer& element = root.At(L"R2017.9").Add(L"Constant");
        element.Attribute(L"id", L"K1").Attribute(L"name", L"k").Attribute(L"isActive", L"yes");
        element.Leaf(L"PhysicalQuantity", code).Leaf(L"Value", 2.5);
        const auto read = KARMPConstant::create(L"");
        read->SetPhysicalQuantity(KARMPPhysicalQuantity::Mass);
        EXPECT_EQ(read->Deserialize(&root, entities), KARSuccess);
        KARMPPhysicalQuantity::Enum quantity = {};
        EXPECT_EQ(read->GetPhysicalQuantity(quantity), code != 0 ? KARSuccess : KARFailure);
        EXPECT_EQ(quantity, code);
        double number = 0.0;
        read->GetValue(number);
        EXPECT_EQ(number, 2.5);
    }
}

TEST_F(Value, TypeWordDoesNotSurviveTheTree)
{
    constant->SetValue(3.0, "int");
    TestSerializer root;
    constant->Serialize(&root);
    const auto read = KARMPConstant::create(L"");
    read->SetValue(0.0, "int");
    EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
    EXPECT_TRUE(read->IsDouble());
}

TEST_F(Value, FlagIsAWordAndOnlyTheExactOneIsTrue)
{
    flag->SetValue(7);
    TestSerializer root;
    flag->Serialize(&root);
    EXPECT_EQ(root.Text(L"Boolean/Value"), L"TRUE");
    flag->SetValue(0);
    flag->Serialize(&root);
    EXPECT_EQ(root.Text(L"Boolean[1]/Value"), L"FALSE");

    auto& element = Element(L"Boolean").Add(L"Value");
    for (const auto& [word, expected] : std::vector<std::pair<const wchar_t*, int>>{
             {L"TRUE", 1}, {L"FALSE", 0}, {L"TRUE", 1}, {L"true", 0}, {L"1", 0}, {L"", 0}}) {
        element.SetValue(word);
        EXPECT_EQ(KARMPBoolean::create(L"")->Deserialize(&document, entities), KARSuccess);
        const auto read = KARMPBoolean::create(L"");
        read->SetValue(1);
        read->Deserialize(&document, entities);
        unsigned char value = 9;
        read->GetValue(value);
        EXPECT_EQ(value, expected);
    }
}

TEST_F(Value, TextComesBackInAnyScript)
{
    for (const char* text : {"", " two\nlines ", "\xc3\xa4\xe2\x82\xac\xf0\x9f\x98\x80"}) {
        string->SetValue(text);
        TestSerializer root;
        string->Serialize(&root);
        const auto read = KARMPString::create(L"");
        read->SetValue("former");
        EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), entities), KARSuccess);
        KARUnicodeString value;
        read->GetValue(value);
        EXPECT_EQ(value, text);
    }
}

TEST_F(Value, MissingValueIsReportedAndTheFormerOneStays)
{
    Element(L"Constant");
    Element(L"Boolean");
    Element(L"String");
    constant->SetValue(4.0, "int");
    flag->SetValue(1);
    string->SetValue("t");
    EXPECT_EQ(constant->Deserialize(&document, entities), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(Number(), 4.0);
    EXPECT_FALSE(constant->IsDouble());
    EXPECT_EQ(flag->Deserialize(&document, entities), KARSuccess);
    ExpectReports(1);
    unsigned char value = 0;
    flag->GetValue(value);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(string->Deserialize(&document, entities), KARSuccess);
    ExpectReports(1);
    KARUnicodeString text;
    string->GetValue(text);
    EXPECT_EQ(text, "t");
}

TEST_F(Value, NeedsItsElement)
{
    const std::vector<QOBSharedHandle<KARMPValue>> values{constant, flag, string};
    for (const auto& value : values) {
        EXPECT_EQ(value->Serialize(nullptr), KARFailure);
        ExpectReports(1);
        EXPECT_EQ(value->Deserialize(nullptr, entities), KARFailure);
        ExpectReports(1);
        EXPECT_EQ(value->Deserialize(&document, entities), KARFailure);
        ExpectReports(1);
        EXPECT_EQ(value->KARMPValue::Serialize(nullptr), KARFailure);
        ExpectReports(1);
        EXPECT_EQ(value->KARMPValue::Deserialize(nullptr, entities), KARFailure);
        ExpectReports(1);
    }
}

TEST_F(Value, AdditionThatFailsIsReportedAndFails)
{
    constant->SetPhysicalQuantity(KARMPPhysicalQuantity::Mass);
    for (const wchar_t* version : {L"R2017.0", L"R2018.1"}) {
        const std::size_t creations =
            ForEachFailedCreation(version, [this](TestSerializer& root, std::size_t failing) {
                EXPECT_EQ(constant->Serialize(&root), failing == 0 ? KARSuccess : KARFailure);
                EXPECT_EQ(TakeReports() != 0, failing != 0);
                // Without its quantity a value is not written either.
                EXPECT_EQ(root.Has(L"Constant/Value"), failing == 0);
            });
        EXPECT_EQ(creations, 3U);
    }
}

TEST_F(Value, OfEachKindFailsWithoutItsElementOrItsValue)
{
    for (const QOBSharedHandle<KARMPValue>& value :
         std::vector<QOBSharedHandle<KARMPValue>>{constant, flag, string}) {
        const std::size_t creations =
            ForEachFailedCreation(L"R2018.1", [&](TestSerializer& root, std::size_t failing) {
                EXPECT_EQ(value->Serialize(&root), failing == 0 ? KARSuccess : KARFailure);
                EXPECT_EQ(TakeReports() != 0, failing != 0);
            });
        EXPECT_EQ(creations, 2U);
    }
}

TEST_F(Value, OfAnOutputIsLeftOutUnlessTheVariableIsSet)
{
    const std::vector<QOBSharedHandle<KARMPValue>> values{constant, flag, string};
    for (const auto& value : values) {
        value->SetOwner("Output");
        value->SetPhysicalQuantity(KARMPPhysicalQuantity::Mass);
        TestSerializer root;
        EXPECT_EQ(value->Serialize(&root), KARSuccess);
        EXPECT_EQ(value->Serialize(nullptr), KARSuccess);
        EXPECT_EQ(value->KARMPValue::Serialize(&root), KARSuccess);
        EXPECT_EQ(root.GetElementCount() + root.GetAttributeCount(), 0U);
        EXPECT_EQ(value->Deserialize(nullptr, entities), KARSuccess);
        EXPECT_EQ(value->KARMPValue::Deserialize(nullptr, entities), KARSuccess);

        // The variable is looked up on every call, and its value does not matter.
        for (const char* any : {"", "0"}) {
            dumpOutputs.Set(any);
            TestSerializer dumped;
            EXPECT_EQ(value->Serialize(&dumped), KARSuccess);
            ASSERT_EQ(dumped.GetElementCount(), 1U);
            EXPECT_TRUE(dumped.Has(std::wstring(dumped.Child(0).GetId()) + L"/Value"));
            EXPECT_EQ(value->Deserialize(nullptr, entities), KARFailure);
            ExpectReports(1);
        }
        dumpOutputs.Set(nullptr);
    }
    for (const char* owner : {"output", "Outputs", ""}) {
        constant->SetOwner(owner);
        TestSerializer root;
        constant->Serialize(&root);
        EXPECT_EQ(root.GetElementCount(), 1U);
    }
}

TEST_F(Value, OfAnOutputIsNotReadUnlessTheVariableIsSet)
{
    Element(L"Constant").Leaf(L"Value", 2.0);
    constant->SetOwner("Output");
    EXPECT_EQ(constant->Deserialize(&document, entities), KARSuccess);
    EXPECT_EQ(Number(), 0.0);
    dumpOutputs.Set("no");
    EXPECT_EQ(constant->Deserialize(&document, entities), KARSuccess);
    EXPECT_EQ(Number(), 2.0);
}

} // namespace

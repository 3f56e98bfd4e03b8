#include "AttributeTesting.h"
#include "EnvironmentVariable.h"
#include "KARMPEntityTable.h"
#include "KARMPSupport.h"
#include "QOBException.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

#include <array>

namespace {

template <class T>
constexpr bool HasSupports = !std::is_same_v<T, KARMPState>;
template <class T>
std::wstring ElementName()
{
    const std::string name = T::ClassName().substr(5);
    return std::wstring(name.begin(), name.end());
}

template <class T>
class AttributeTree : public AttributeKindTest<T>
{
protected:
    AttributeTree()
    {
        attribute->SetType("double");
        attribute->SetPath({"arm", "angle"});
        attribute->AddChild(child);
        attribute->AddValue(value);
        attribute->AddSupport(support);
        entities.Set(L"child", child);
        entities.Set(L"value", value);
        entities.Set(L"support", support);
        value->SetIdentifier(L"value");
        support->SetIdentifier(L"support");
    }
    /// What an attribute writes, whose class's element must be all of it.
    const TestSerializer& Written(TestSerializer& root, const KARMPEntity& one)
    {
        EXPECT_EQ(one.Serialize(&root), KARSuccess);
        EXPECT_EQ(root.GetElementCount(), 1U);
        EXPECT_EQ(root.Child(0).GetId(), ElementName<T>());
        return root.Child(0);
    }

    const std::wstring name = ElementName<T>();
    const QOBSharedHandle<T> attribute = NewAttribute<T>("attribute");
    const QOBSharedHandle<T> child = NewAttribute<T>("child");
    const QOBSharedHandle<KARMPConstant> value = KARMPConstant::create(L"value");
    const QOBSharedHandle<KARMPSupport> support = KARMPSupport::create(L"support");
    KARMPEntityTable entities;
    EnvironmentVariable dumpOutputs{"MOT_DUMP_OUTPUTS", ""};
    EnvironmentVariable dumpOctets{"DUMP_OCTET_AS_UTF8", nullptr};
};
TYPED_TEST_SUITE(AttributeTree, AttributeKinds);

TYPED_TEST(AttributeTree, HoldsTextsValuesChildrenAndSupportsInOrder)
{
    TestSerializer root;
    const TestSerializer& element = this->Written(root, *this->attribute);
    EXPECT_EQ(element.Text(L"@id"), L"attribute");
    EXPECT_EQ(element.Text(L"@entityID"), L"attribute");
    EXPECT_EQ(element.Text(L"@type"), L"double");
    EXPECT_EQ(element.Text(L"@path"), L"arm.angle");
    ASSERT_EQ(element.GetElementCount(), HasSupports<TypeParam> ? 3U : 2U);
    EXPECT_EQ(element.Child(0).GetId(), L"Values");
    EXPECT_EQ(element.Child(1).GetId(), L"Children" + this->name + L"s");
    EXPECT_EQ(element.Text(L"Values/Value/@id"), L"value");
    EXPECT_EQ(element.Text(L"Values/Value/@name"), L"value");
    EXPECT_EQ(element.Child(1).Text(this->name + L"/@id"), L"child");
    if (HasSupports<TypeParam>)
        EXPECT_EQ(element.Text(L"Supports/Support/@id"), L"support");
}

TYPED_TEST(AttributeTree, HoldsNothingOfWhatIsEmpty)
{
    TestSerializer root;
    const auto empty = TypeParam::create(L"");
    const TestSerializer& element = this->Written(root, *empty);
    EXPECT_FALSE(element.Has(L"@type"));
    EXPECT_FALSE(element.Has(L"@path"));
    EXPECT_EQ(element.GetElementCount(), 0U);
    // A path of one empty element is an empty text.
    TestSerializer other;
    empty->SetPath({""});
    EXPECT_FALSE(this->Written(other, *empty).Has(L"@path"));
}

TYPED_TEST(AttributeTree, ReadsBackWhatItHolds)
{
    TestSerializer root;
    this->Written(root, *this->attribute);
    for (const bool asText : {false, true}) {
        const auto read = TypeParam::create(L"");
        const auto tree = TestDeserializer::From(root, {.asText = asText});
        EXPECT_EQ(read->Deserialize(tree.get(), this->entities), KARSuccess);
        EXPECT_EQ(read->GetID(), "attribute");
        EXPECT_EQ(read->GetType(), "double");
        EXPECT_EQ(read->GetPath(), (AttributePath{"arm", "angle"}));
        EXPECT_EQ(read->GetChildrenCount(), 1);
        EXPECT_EQ(read->GetSupportsCount(), HasSupports<TypeParam> ? 1 : 0);
        QOBSharedHandle<KARMPValue> held;
        EXPECT_EQ(read->GetValue(0, held), KARSuccess);
        EXPECT_EQ(held, this->value);
    }
}

TYPED_TEST(AttributeTree, ReadsAPathWithEmptyElements)
{
    TestDeserializer root;
    root.Add(this->name)
        .Attribute(L"id", L"x")
        .Attribute(L"name", L"")
        .Attribute(L"isActive", L"yes")
        .Attribute(L"path", L".a..b.");
    const auto read = TypeParam::create(L"");
    EXPECT_EQ(read->Deserialize(&root, this->entities), KARSuccess);
    EXPECT_EQ(read->GetPath(), (AttributePath{"", "a", "", "b", ""}));
    EXPECT_EQ(read->GetType(), "");
}

TYPED_TEST(AttributeTree, SkipsUnknownEntriesAndThrowsOverThoseOfOtherClasses)
{
    TestDeserializer root;
    TestDeserializer& element = root.Add(this->name);
    element.Attribute(L"id", L"x").Attribute(L"name", L"").Attribute(L"isActive", L"yes");
    TestDeserializer& values = element.Add(L"Values");
    values.Reference(L"Value", L"unknown").Reference(L"Value", L"value");
    TestDeserializer& children = element.Add(L"Children" + this->name + L"s");
    children.Reference(this->name, L"unknown").Reference(this->name, L"child");
    const auto read = TypeParam::create(L"");
    EXPECT_EQ(read->Deserialize(&root, this->entities), KARSuccess);
    EXPECT_EQ(read->GetValueCount(), 1);
    EXPECT_EQ(read->GetChildrenCount(), 1);
    this->ExpectReports(0);
    children.Reference(this->name, L"value");
    const auto second = TypeParam::create(L"");
    EXPECT_THROW(second->Deserialize(&root, this->entities), QOBEInvalidCast);
}

TYPED_TEST(AttributeTree, FailsWithoutNodeOrElement)
{
    TestDeserializer root;
    EXPECT_EQ(this->attribute->Serialize(nullptr), KARFailure);
    this->ExpectReports(1);
    EXPECT_EQ(this->attribute->KARMPAttribute::Serialize(nullptr), KARFailure);
    this->ExpectReports(1);
    EXPECT_EQ(this->attribute->Deserialize(nullptr, this->entities), KARFailure);
    this->ExpectReports(1);
    EXPECT_EQ(this->attribute->Deserialize(&root, this->entities), KARFailure);
    this->ExpectReports(1);
}

TYPED_TEST(AttributeTree, ShowsBytesAsTextWhileTheVariableIsSet)
{
    constexpr std::array<unsigned char, 3> bytes{'a', 0xC3, 0xA9};
    this->attribute->SetOctetSequence(_SEQUENCE_octet(bytes));
    for (const char* const variable : {static_cast<const char*>(nullptr), "", "0"}) {
        this->dumpOctets.Set(variable);
        TestSerializer root;
        const TestSerializer& element = this->Written(root, *this->attribute);
        EXPECT_EQ(element.Has(L"OctetSequence"), variable != nullptr);
        if (variable == nullptr)
            continue;
        EXPECT_EQ(element.Text(L"OctetSequence/@UTF8String"), L"a\u00E9");
        const auto tree = TestDeserializer::From(root);
        const auto read = TypeParam::create(L"");
        EXPECT_EQ(read->Deserialize(tree.get(), this->entities), KARSuccess);
        EXPECT_EQ(read->GetOctetSequence().length(), 0);
    }
    TestSerializer root;
    this->attribute->SetOctetSequence({});
    EXPECT_FALSE(this->Written(root, *this->attribute).Has(L"OctetSequence"));
}

// Bytes that are no text, and null bytes, come out as units that stand for them.
TYPED_TEST(AttributeTree, ShowsBytesThatAreNoText)
{
    this->dumpOctets.Set("");
    constexpr std::array<unsigned char, 4> bytes{0xFF, 0, 0xC3, 'b'};
    this->attribute->SetOctetSequence(_SEQUENCE_octet(bytes));
    TestSerializer root;
    const std::wstring text =
        this->Written(root, *this->attribute).Text(L"OctetSequence/@UTF8String");
    EXPECT_EQ(text, (std::wstring{static_cast<wchar_t>(0xDCFF), L'\0', static_cast<wchar_t>(0xDCC3),
                                  L'b'}));
}

class OutputTree : public AttributeTree<KARMPOutput>
{};

TEST_F(OutputTree, IsEmptyUnlessTheVariableIsSetAtThatMoment)
{
    TestSerializer full;
    Written(full, *attribute);
    const auto tree = TestDeserializer::From(full);
    dumpOutputs.Set(nullptr);
    const auto read = KARMPOutput::create(L"");
    TestSerializer root;
    EXPECT_EQ(attribute->Serialize(&root), KARSuccess);
    EXPECT_EQ(attribute->KARMPAttribute::Serialize(&root), KARSuccess);
    EXPECT_EQ(attribute->Serialize(nullptr), KARSuccess);
    EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
    EXPECT_EQ(read->KARMPAttribute::Deserialize(tree.get(), entities), KARSuccess);
    EXPECT_EQ(root.GetElementCount(), 0U);
    EXPECT_EQ(root.GetAttributeCount(), 0U);
    EXPECT_EQ(read->GetType(), "");
    EXPECT_EQ(read->GetValueCount(), 0);
    dumpOutputs.Set("0");
    EXPECT_EQ(read->Deserialize(tree.get(), entities), KARSuccess);
    EXPECT_EQ(read->GetType(), "double");
    Written(root, *attribute);
}

TEST_F(OutputTree, GoesWithoutTheVariableForParametersAndStates)
{
    dumpOutputs.Set(nullptr);
    TestSerializer root;
    EXPECT_EQ(NewAttribute<KARMPParameter>("p")->Serialize(&root), KARSuccess);
    EXPECT_EQ(NewAttribute<KARMPState>("s")->Serialize(&root), KARSuccess);
    EXPECT_EQ(root.GetElementCount(), 2U);
}

} // namespace

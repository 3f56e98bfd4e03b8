#include "AttributeTesting.h"
#include "ConcreteEntity.h"
#include "KARMPExpression.h"
#include "KARMPSupport.h"
#include "QOBException.h"

#include <array>

namespace {

using Child = QOBSharedHandle<KARMPAttribute>;
using Children = QOBSharedVector<KARMPAttribute>;

template <class T>
using AttributeOfKind = AttributeKindTest<T>;
TYPED_TEST_SUITE(AttributeOfKind, AttributeKinds);

TYPED_TEST(AttributeOfKind, KeepsChildrenOfItsKindOnceInOrder)
{
    const auto parent = NewAttribute<TypeParam>("parent");
    const auto first = NewAttribute<TypeParam>("first");
    const auto second = NewAttribute<TypeParam>("second");
    EXPECT_EQ(parent->AddChild(first), KARSuccess);
    EXPECT_EQ(parent->AddChild(second), KARSuccess);
    EXPECT_EQ(parent->AddChild(first), KARUnchanged);
    EXPECT_EQ(parent->GetChildrenCount(), 2);
    Child child;
    EXPECT_EQ(parent->GetChild(1, child), KARSuccess);
    EXPECT_EQ(child, second);
    for (const int outside : {-1, 2}) {
        child = first;
        EXPECT_EQ(parent->GetChild(outside, child), KARFailure);
        EXPECT_FALSE(child);
    }
    this->ExpectReports(0);
    EXPECT_EQ(parent->AddChild({}), KARFailure);
    this->ExpectReports(1);
}

TYPED_TEST(AttributeOfKind, RefusesChildrenOfOtherKindsWithoutAReport)
{
    const auto parent = NewAttribute<TypeParam>("parent");
    const Children kinds{NewAttribute<KARMPParameter>("p"), NewAttribute<KARMPState>("s"),
                         NewAttribute<KARMPOutput>("o"),
                         ConcreteEntity<KARMPAttribute>::create(L"a")};
    for (const Child& child : kinds) {
        const bool isOfKind = child->isDerivedFrom(TypeParam::ClassInfo());
        EXPECT_EQ(parent->AddChild(child), isOfKind ? KARSuccess : KARFailure);
    }
    EXPECT_EQ(parent->GetChildrenCount(), 1);
    this->ExpectReports(0);
}

TYPED_TEST(AttributeOfKind, FindsTheFirstChildOfAName)
{
    const auto parent = NewAttribute<TypeParam>("parent");
    const auto first = NewAttribute<TypeParam>("twin");
    const auto second = NewAttribute<TypeParam>("twin");
    const auto unnamed = NewAttribute<TypeParam>("");
    Child child = parent;
    EXPECT_EQ(parent->GetChild("twin", child), KARFailure);
    EXPECT_FALSE(child);
    for (const auto& one : {first, unnamed, second})
        parent->AddChild(one);
    EXPECT_EQ(parent->GetChild("twin", child), KARSuccess);
    EXPECT_EQ(child, first);
    EXPECT_EQ(parent->GetChild("", child), KARSuccess);
    EXPECT_EQ(child, unnamed);
    for (const char* const other : {"Twin", "twi", "parent"}) {
        EXPECT_EQ(parent->GetChild(other, child), KARFailure);
        EXPECT_FALSE(child);
    }
    this->ExpectReports(0);
}

TYPED_TEST(AttributeOfKind, GivesAllChildrenDepthFirst)
{
    const auto root = NewAttribute<TypeParam>("root");
    const auto a = NewAttribute<TypeParam>("a");
    const auto b = NewAttribute<TypeParam>("b");
    const auto aa = NewAttribute<TypeParam>("aa");
    Children all{a};
    EXPECT_EQ(root->GetAllChildren(all), KARUnchanged);
    root->AddChild(a);
    root->AddChild(b);
    a->AddChild(aa);
    // One that is listed at two places is given twice.
    b->AddChild(aa);
    EXPECT_EQ(root->GetAllChildren(all), KARSuccess);
    EXPECT_EQ(all, (Children{a, a, aa, b, aa}));
    this->ExpectReports(0);
}

TYPED_TEST(AttributeOfKind, EndsAtAnAttributeThatIsItsOwnDescendant)
{
    const auto root = NewAttribute<TypeParam>("root");
    const auto inner = NewAttribute<TypeParam>("inner");
    root->AddChild(inner);
    inner->AddChild(root);
    Children all;
    EXPECT_EQ(root->GetAllChildren(all), KARFailure);
    this->ExpectReports(1);
    EXPECT_EQ(all, Children{inner});
    root->orphanObject();
}

TYPED_TEST(AttributeOfKind, WalksAChainOfAnyDepth)
{
    constexpr std::size_t Depth = 100'000;
    auto last = NewAttribute<TypeParam>("0");
    const auto root = last;
    for (std::size_t level = 1; level < Depth; ++level) {
        const auto next = NewAttribute<TypeParam>("0");
        last->AddChild(next);
        last = next;
    }
    Children all;
    EXPECT_EQ(root->GetAllChildren(all), KARSuccess);
    EXPECT_EQ(all.size(), Depth - 1);
    EXPECT_EQ(all.back(), last);
}

TYPED_TEST(AttributeOfKind, IsEmptyOnceOrphaned)
{
    const auto attribute = NewAttribute<TypeParam>("attribute");
    const auto child = NewAttribute<TypeParam>("child");
    const auto value = KARMPConstant::create(L"value");
    const auto support = KARMPSupport::create(L"support");
    attribute->AddChild(child);
    attribute->AddValue(value);
    attribute->AddSupport(support);
    attribute->SetPath({"a"});
    attribute->orphanObject();
    EXPECT_EQ(attribute->GetChildrenCount(), 0);
    EXPECT_EQ(attribute->GetValueCount(), 0);
    EXPECT_EQ(attribute->GetSupportsCount(), 0);
    EXPECT_EQ(child->getReferenceCount(), 1U);
    EXPECT_EQ(value->getReferenceCount(), 1U);
    EXPECT_EQ(support->getReferenceCount(), 1U);
    EXPECT_EQ(attribute->GetPath().Size(), 1);
}

TYPED_TEST(AttributeOfKind, CopiesItsTextsAndBytesAndNoList)
{
    const std::array<unsigned char, 2> bytes{1, 2};
    const auto attribute = NewAttribute<TypeParam>("attribute");
    attribute->AddChild(NewAttribute<TypeParam>("child"));
    attribute->AddValue(KARMPConstant::create(L"value"));
    attribute->AddSupport(KARMPSupport::create(L"support"));
    attribute->SetType("octet");
    attribute->SetPath({"a", "b"});
    attribute->SetOctetSequence(_SEQUENCE_octet(bytes));
    const auto copy = TypeParam::clone(attribute, QOBDynamicObject::CopyDefault);
    EXPECT_EQ(copy->GetType(), "octet");
    EXPECT_EQ(copy->GetPath(), attribute->GetPath());
    EXPECT_EQ(copy->GetOctetSequence(), attribute->GetOctetSequence());
    EXPECT_EQ(copy->GetID(), "attribute");
    EXPECT_EQ(copy->GetChildrenCount(), 0);
    EXPECT_EQ(copy->GetValueCount(), 0);
    EXPECT_EQ(copy->GetSupportsCount(), 0);
}

class Attribute : public KARMPTestFixture
{
protected:
    const QOBSharedHandle<KARMPParameter> attribute = KARMPParameter::create(L"attribute");
};

TEST_F(Attribute, OfNoneOfTheThreeKindsHasNoChildren)
{
    const auto other = ConcreteEntity<KARMPAttribute>::create(L"other");
    EXPECT_EQ(other->AddChild(attribute), KARFailure);
    EXPECT_EQ(other->AddChild(other), KARFailure);
    EXPECT_EQ(other->GetChildrenCount(), 0);
    Child child = attribute;
    EXPECT_EQ(other->GetChild(0, child), KARFailure);
    EXPECT_FALSE(child);
    EXPECT_EQ(other->GetChild("attribute", child), KARFailure);
    Children all;
    EXPECT_EQ(other->GetAllChildren(all), KARUnchanged);
    ExpectReports(0);
}

TEST_F(Attribute, KeepsItsTextsAndBytes)
{
    EXPECT_EQ(attribute->GetType(), "");
    EXPECT_EQ(attribute->GetPath().Size(), 0);
    EXPECT_EQ(attribute->GetPathAsStr(), "");
    EXPECT_EQ(attribute->GetOctetSequence().length(), 0);
    const std::array<unsigned char, 3> bytes{0, 255, 0};
    EXPECT_EQ(attribute->SetType("enum"), KARSuccess);
    EXPECT_EQ(attribute->SetPath({"arm", "", "angle"}), KARSuccess);
    EXPECT_EQ(attribute->SetOctetSequence(_SEQUENCE_octet(bytes)), KARSuccess);
    EXPECT_EQ(attribute->GetType(), "enum");
    EXPECT_EQ(attribute->GetPath(), (AttributePath{"arm", "", "angle"}));
    EXPECT_EQ(attribute->GetPathAsStr(), "arm..angle");
    EXPECT_EQ(attribute->GetOctetSequence(), _SEQUENCE_octet(bytes));
}

TEST_F(Attribute, KeepsValuesOnceInOrder)
{
    const QOBSharedHandle<KARMPValue> first(KARMPConstant::create(L"first"));
    const QOBSharedHandle<KARMPValue> second(KARMPString::create(L"second"));
    EXPECT_EQ(attribute->AddValue(first), KARSuccess);
    EXPECT_EQ(attribute->AddValue(second), KARSuccess);
    EXPECT_EQ(attribute->AddValue(first), KARUnchanged);
    EXPECT_EQ(attribute->GetValueCount(), 2);
    QOBSharedHandle<KARMPValue> value;
    EXPECT_EQ(attribute->GetValue(1, value), KARSuccess);
    EXPECT_EQ(value, second);
    for (const int outside : {-1, 2}) {
        EXPECT_EQ(attribute->GetValue(outside, value), KARFailure);
        EXPECT_FALSE(value);
    }
    ExpectReports(0);
    EXPECT_EQ(attribute->AddValue({}), KARFailure);
    ExpectReports(1);
}

TEST_F(Attribute, GivesWhatItsValuesHold)
{
    const auto number = KARMPConstant::create(L"");
    const auto flag = KARMPBoolean::create(L"");
    const auto text = KARMPString::create(L"");
    number->SetValue(2.5, "double");
    flag->SetValue(1);
    text->SetValue("caf\xC3\xA9");
    attribute->AddValue(number);
    attribute->AddValue(flag);
    attribute->AddValue(text);
    double heldNumber = 0.0;
    unsigned char heldFlag = 0;
    KARUnicodeString heldText;
    EXPECT_EQ(attribute->GetValue(0, heldNumber), KARSuccess);
    EXPECT_EQ(attribute->GetValue(1, heldFlag), KARSuccess);
    EXPECT_EQ(attribute->GetValue(2, heldText), KARSuccess);
    EXPECT_EQ(heldNumber, 2.5);
    EXPECT_EQ(heldFlag, 1);
    EXPECT_EQ(heldText, "caf\xC3\xA9");
    ExpectReports(0);
    for (const int outside : {-1, 3}) {
        EXPECT_EQ(attribute->GetValue(outside, heldNumber), KARFailure);
        EXPECT_EQ(heldNumber, 2.5);
        ExpectReports(1);
    }
}

TEST_F(Attribute, ThrowsOverAValueOfAnotherClass)
{
    attribute->AddValue(KARMPConstant::create(L""));
    attribute->AddValue(KARMPExpression::create(L""));
    double number = -1.0;
    unsigned char flag = 7;
    KARUnicodeString text("old");
    EXPECT_THROW(attribute->GetValue(0, flag), QOBEInvalidCast);
    EXPECT_THROW(attribute->GetValue(0, text), QOBEInvalidCast);
    EXPECT_THROW(attribute->GetValue(1, number), QOBEInvalidCast);
    EXPECT_EQ(flag, 7);
    EXPECT_EQ(text, "old");
    EXPECT_EQ(number, -1.0);
    ExpectReports(0);
}

class SilentConstant : public KARMPConstant
{
public:
    SilentConstant() = default;
    using KARMPConstant::GetValue;
    KARStatus GetValue(double&) const override { return KARNotImplemented; }
};

TEST_F(Attribute, ReportsAValueThatCannotBeHad)
{
    attribute->AddValue(QOBSharedHandle<KARMPValue>(new SilentConstant));
    double number = 0.0;
    EXPECT_EQ(attribute->GetValue(0, number), KARFailure);
    ExpectReports(1);
}

TEST_F(Attribute, LeadsToOtherEntitiesBySupports)
{
    const QOBSharedHandle<KARMPEntity> target = TestEntity::create(L"target");
    const auto bound = KARMPSupport::create(L"bound");
    const auto loose = KARMPSupport::create(L"loose");
    bound->SetTarget(target);
    EXPECT_EQ(attribute->AddSupport(bound), KARSuccess);
    EXPECT_EQ(attribute->AddSupport(loose), KARSuccess);
    EXPECT_EQ(attribute->AddSupport(bound), KARUnchanged);
    EXPECT_EQ(attribute->GetSupportsCount(), 2);
    QOBSharedHandle<KARMPSupport> support;
    EXPECT_EQ(attribute->GetSupport(1, support), KARSuccess);
    EXPECT_EQ(support, loose);
    QOBSharedHandle<KARMPEntity> found;
    EXPECT_EQ(attribute->GetSupportTarget(0, found), KARSuccess);
    EXPECT_EQ(found, target);
    for (const int without : {-1, 1, 2}) {
        found = target;
        EXPECT_EQ(attribute->GetSupportTarget(without, found), KARFailure);
        EXPECT_FALSE(found);
    }
    EXPECT_EQ(attribute->GetSupport(2, support), KARFailure);
    EXPECT_FALSE(support);
    ExpectReports(0);
    EXPECT_EQ(attribute->AddSupport({}), KARFailure);
    ExpectReports(1);
}

} // namespace

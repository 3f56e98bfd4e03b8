// Linear and torsion springs, which differ in their attachments and in what their values measure.
#include "ConnectorTesting.h"
#include "KARIMPLinearSpringLoader.h"
#include "KARIMPTorsionSpringLoader.h"
#include "KARMPExpression.h"
#include "KARMPLinearSpring.h"
#include "KARMPTorsionSpring.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"

namespace {

using Behavior = KARMPSpringBehavior;
using Quantity = KARMPPhysicalQuantity;

/// A value that is given as a number, too.
template <class C>
struct NumberOf
{
    ValueOf<C> value;
    KARStatus (C::*set)(double);
    KARStatus (C::*get)(double&) const;
    Quantity::Enum quantity;
};

struct Linear
{
    using Spring = KARMPLinearSpring;
    using Loader = KARIMPLinearSpringLoader;
    static constexpr const wchar_t* Element = L"LinearSpring";

    static KARMathPoint Attachment() { return {1.5, 2.5, 3.5}; }
    static std::vector<NumberOf<Spring>> Numbers()
    {
        return {{{&Spring::SetStiffness, &Spring::GetStiffness, 1, L"Stiffness"},
                 &Spring::SetStiffness,
                 &Spring::GetStiffness,
                 Quantity::LinearStiffness},
                {{&Spring::SetRestLength, &Spring::GetRestLength, 1, L"RestLength"},
                 &Spring::SetRestLength,
                 &Spring::GetRestLength,
                 Quantity::Length},
                {{&Spring::SetDampingCoefficient, &Spring::GetDampingCoefficient, 1,
                  L"DampingCoefficient"},
                 &Spring::SetDampingCoefficient,
                 &Spring::GetDampingCoefficient,
                 Quantity::LinearDamping}};
    }
};

struct Torsion
{
    using Spring = KARMPTorsionSpring;
    using Loader = KARIMPTorsionSpringLoader;
    static constexpr const wchar_t* Element = L"TorsionSpring";

    static KARMathLine Attachment() { return {{1.5, 2.5, 3.5}, {0.0, 0.0, 1.0}}; }
    static std::vector<NumberOf<Spring>> Numbers()
    {
        return {{{&Spring::SetStiffness, &Spring::GetStiffness, 1, L"Stiffness"},
                 &Spring::SetStiffness,
                 &Spring::GetStiffness,
                 Quantity::AngularStiffness},
                {{&Spring::SetRestAngle, &Spring::GetRestAngle, 1, L"RestAngle"},
                 &Spring::SetRestAngle,
                 &Spring::GetRestAngle,
                 Quantity::Angle},
                {{&Spring::SetDampingCoefficient, &Spring::GetDampingCoefficient, 1,
                  L"DampingCoefficient"},
                 &Spring::SetDampingCoefficient,
                 &Spring::GetDampingCoefficient,
                 Quantity::AngularDamping}};
    }
};

template <class Kind>
class SpringWithAttachments : public ConnectorTest
{
protected:
    using Spring = typename Kind::Spring;

    static std::vector<ValueOf<Spring>> Values()
    {
        std::vector<ValueOf<Spring>> values;
        for (const NumberOf<Spring>& number : Kind::Numbers())
            values.push_back(number.value);
        return values;
    }
    static Value Get(const QOBSharedHandle<Spring>& from, const NumberOf<Spring>& number)
    {
        Value found;
        EXPECT_EQ((from.get()->*number.value.get)(found), KARSuccess);
        return found;
    }
    std::wstring Path(const std::wstring& below) const
    {
        return std::wstring(Kind::Element) + L"/" + below;
    }

    QOBSharedHandle<Spring> spring = Spring::create(L"spring");
    QOBSharedHandle<QOBBasicWorld> basicWorld = QOBBasicWorld::create(L"basic");
    QOBSharedHandle<KARMPWorld> world = KARMPWorld::create(basicWorld);
};

using Kinds = ::testing::Types<Linear, Torsion>;
TYPED_TEST_SUITE(SpringWithAttachments, Kinds);

TYPED_TEST(SpringWithAttachments, KeepsItsValuesWithoutTellingItsLoader)
{
    this->ExpectValues(this->Values());
}

TYPED_TEST(SpringWithAttachments, GivesItsLoader)
{
    this->template ExpectLoader<typename TypeParam::Spring, typename TypeParam::Loader>();
}

TYPED_TEST(SpringWithAttachments, ActsInBothSensesUnlessTold)
{
    Behavior::Enum behavior = Behavior::CompressionLock;
    EXPECT_EQ(this->spring->GetBehavior(behavior), KARSuccess);
    EXPECT_EQ(behavior, Behavior::Bidirectional);
    EXPECT_EQ(this->spring->SetBehavior(Behavior::ExtensionLock), KARSuccess);
    EXPECT_EQ(this->spring->GetBehavior(behavior), KARSuccess);
    EXPECT_EQ(behavior, Behavior::ExtensionLock);
}

TYPED_TEST(SpringWithAttachments, LosesItsAttachmentsInTheTree)
{
    const decltype(TypeParam::Attachment()) none;
    const auto expect = [](const auto& holder, const auto& atFirst, const auto& atSecond) {
        auto found = TypeParam::Attachment();
        EXPECT_EQ(holder->GetFirstAttachment(found), KARSuccess);
        EXPECT_EQ(found, atFirst);
        EXPECT_EQ(holder->GetSecondAttachment(found), KARSuccess);
        EXPECT_EQ(found, atSecond);
    };
    expect(this->spring, none, none);
    EXPECT_EQ(this->spring->SetFirstAttachment(TypeParam::Attachment()), KARSuccess);
    expect(this->spring, TypeParam::Attachment(), none);
    EXPECT_EQ(this->spring->SetSecondAttachment(TypeParam::Attachment()), KARSuccess);
    EXPECT_EQ(this->spring->SetFirstAttachment(none), KARSuccess);
    expect(this->spring, none, TypeParam::Attachment());
    for (const auto& value : this->Values())
        (this->spring.get()->*value.set)(this->first);
    expect(this->ReadBack(this->spring), none, none);
}

TYPED_TEST(SpringWithAttachments, MakesAConstantOfTheRightQuantityOfEachNumber)
{
    for (const auto& number : TypeParam::Numbers()) {
        EXPECT_EQ((this->spring.get()->*number.set)(2.5), KARSuccess);
        const auto value = this->Get(this->spring, number);
        ASSERT_TRUE(value->isInstanceOf(KARMPConstant::ClassInfo()));
        EXPECT_EQ(value->getEntityName(), L"Constant");
        Quantity::Enum quantity = Quantity::NoPhysicalQuantity;
        EXPECT_EQ(value->GetPhysicalQuantity(quantity), KARSuccess);
        EXPECT_EQ(quantity, number.quantity);
        double found = 0.0;
        EXPECT_EQ((this->spring.get()->*number.get)(found), KARSuccess);
        EXPECT_EQ(found, 2.5);
    }
    EXPECT_EQ(this->world->template Count<KARMPValue>(), 0);
}

TYPED_TEST(SpringWithAttachments, FilesItsNumbersInTheWorldThatItStandsIn)
{
    this->basicWorld->addLogicalChild(this->spring);
    int count = 0;
    for (const auto& number : TypeParam::Numbers()) {
        (this->spring.get()->*number.set)(2.5);
        ASSERT_EQ(this->world->template Count<KARMPValue>(), count + 1);
        typename TestFixture::Value filed;
        this->world->template Get<KARMPValue>(count++, filed);
        EXPECT_EQ(filed, this->Get(this->spring, number));
    }
}

TYPED_TEST(SpringWithAttachments, LeavesANumberInNoRegistryWhenItIsPlacedLater)
{
    const auto number = TypeParam::Numbers()[0];
    (this->spring.get()->*number.set)(2.5);
    this->basicWorld->addLogicalChild(this->spring);
    this->world->template Add<KARMPConnector>(this->spring);
    EXPECT_EQ(this->world->template Count<KARMPValue>(), 0);
    double found = 0.0;
    EXPECT_EQ((this->spring.get()->*number.get)(found), KARSuccess);
    EXPECT_EQ(found, 2.5);
    EXPECT_EQ((this->spring.get()->*number.set)(3.5), KARSuccess);
    EXPECT_EQ(this->world->template Count<KARMPValue>(), 1) << "each number is a new constant";
}

TYPED_TEST(SpringWithAttachments, GivesAsANumberOnlyWhatIsAConstant)
{
    typename TestFixture::Value expression = KARMPExpression::create(L"expression");
    typename TestFixture::Value nothing = KARMPConstant::create(L"without a quantity");
    QOBSharedHandle<KARMPConstant>(nothing)->SetValue(4.5, "int");
    for (const auto& number : TypeParam::Numbers()) {
        double found = 1.0;
        EXPECT_EQ((this->spring.get()->*number.get)(found), KARFailure);
        EXPECT_EQ(found, 0.0);
        this->ExpectReports(2); // that of the services and that of the spring
        (this->spring.get()->*number.value.set)(expression);
        found = 1.0;
        EXPECT_EQ((this->spring.get()->*number.get)(found), KARFailure);
        EXPECT_EQ(found, 0.0);
        this->ExpectReports(2);
        (this->spring.get()->*number.value.set)(nothing);
        EXPECT_EQ((this->spring.get()->*number.get)(found), KARSuccess);
        EXPECT_EQ(found, 4.5);
    }
}

/// A spring whose world cannot be found, and which refuses values when asked to.
template <class Spring>
class Unwilling : public Spring
{
public:
    using Spring::SetStiffness;

    bool refuses = false;

    KARStatus IsInWorld(bool&) const override { return KARFailure; }
    KARStatus SetStiffness(const QOBSharedHandle<KARMPValue>& value) override
    {
        return refuses ? KARFailure : Spring::SetStiffness(value);
    }
};

TYPED_TEST(SpringWithAttachments, StoresANumberWhoseConstantCouldNotBeFiled)
{
    auto* const unwilling = new Unwilling<typename TypeParam::Spring>;
    const QOBSharedHandle<typename TypeParam::Spring> held(unwilling);
    EXPECT_EQ(held->SetStiffness(2.5), KARSuccess);
    this->ExpectReports(2); // that of the services and that of the spring
    double found = 0.0;
    EXPECT_EQ(held->GetStiffness(found), KARSuccess);
    EXPECT_EQ(found, 2.5);
    unwilling->refuses = true;
    EXPECT_EQ(held->SetStiffness(3.5), KARFailure);
    this->ExpectReports(3);
    EXPECT_EQ(held->GetStiffness(found), KARSuccess);
    EXPECT_EQ(found, 2.5);
}

TYPED_TEST(SpringWithAttachments, WritesItsValuesAndTheBehaviorInOrder)
{
    typename TestFixture::Names names;
    for (const auto& value : this->Values()) {
        (this->spring.get()->*value.set)(names.empty() ? this->first : this->second);
        names.push_back(value.element);
    }
    names.insert(names.begin() + 2, L"Behavior");
    this->spring->SetBehavior(Behavior::CompressionFree);
    TestSerializer root;
    EXPECT_EQ(this->spring->Serialize(&root), KARSuccess);
    EXPECT_EQ(this->ElementsOf(root), names);
    EXPECT_EQ(root.Text(this->Path(L"Behavior")), L"CompressionFree");
    EXPECT_EQ(root.Text(this->Path(L"Stiffness/@id")), L"K1");
    EXPECT_EQ(root.Text(this->Path(L"DampingCoefficient/@id")), L"K2");
    EXPECT_EQ(root.Text(this->Path(L"DampingCoefficient/@name")), L"second");
}

TYPED_TEST(SpringWithAttachments, ReportsEachValueThatIsNotSetAndWritesTheOthers)
{
    TestSerializer bare;
    EXPECT_EQ(this->spring->Serialize(&bare), KARSuccess);
    this->ExpectReports(6); // three getters, and the writer of each
    EXPECT_EQ(this->ElementsOf(bare), typename TestFixture::Names{L"Behavior"});
    this->spring->SetDampingCoefficient(this->first);
    TestSerializer root;
    EXPECT_EQ(this->spring->Serialize(&root), KARSuccess);
    this->ExpectReports(4);
    EXPECT_EQ(this->ElementsOf(root),
              (typename TestFixture::Names{L"Behavior", L"DampingCoefficient"}));
}

/// A spring whose getters give something else than it holds.
template <class Spring>
class Other : public Spring
{
public:
    using Spring::GetStiffness;

    QOBSharedHandle<KARMPValue> given;

    KARStatus GetStiffness(QOBSharedHandle<KARMPValue>& value) const override
    {
        value = given;
        return KARSuccess;
    }
    KARStatus GetBehavior(Behavior::Enum& behavior) const override
    {
        behavior = Behavior::CompressionLock;
        return KARSuccess;
    }
};

TYPED_TEST(SpringWithAttachments, WritesWhatItsGettersGive)
{
    auto* const other = new Other<typename TypeParam::Spring>;
    const QOBSharedHandle<typename TypeParam::Spring> held(other);
    other->given = this->second;
    held->SetStiffness(this->first);
    TestSerializer root;
    EXPECT_EQ(held->Serialize(&root), KARSuccess);
    this->ExpectReports(4); // of the two values that are not set
    EXPECT_EQ(root.Text(this->Path(L"Stiffness/@id")), L"K2");
    EXPECT_EQ(root.Text(this->Path(L"Behavior")), L"CompressionLock");
}

TYPED_TEST(SpringWithAttachments, ReadsEachValueFromItsElement)
{
    this->ExpectValuesRead(TypeParam::Element, this->Values());
}

TYPED_TEST(SpringWithAttachments, MissesNothingThatIsNotThere)
{
    this->spring->SetBehavior(Behavior::ExtensionFree);
    TestDeserializer root;
    this->AddElement(root, TypeParam::Element);
    EXPECT_EQ(this->spring->Deserialize(&root, this->entities), KARSuccess);
    this->ExpectReports(0);
    Behavior::Enum behavior = Behavior::Bidirectional;
    this->spring->GetBehavior(behavior);
    EXPECT_EQ(behavior, Behavior::ExtensionFree);
}

TYPED_TEST(SpringWithAttachments, ReadsAnUnknownWordAsTheFirst)
{
    this->spring->SetBehavior(Behavior::ExtensionFree);
    TestDeserializer root;
    this->AddElement(root, TypeParam::Element).Leaf(L"Behavior", L"Stiff");
    EXPECT_EQ(this->spring->Deserialize(&root, this->entities), KARSuccess);
    Behavior::Enum behavior = Behavior::ExtensionFree;
    this->spring->GetBehavior(behavior);
    EXPECT_EQ(behavior, Behavior::Bidirectional);
}

TYPED_TEST(SpringWithAttachments, CopiesAttachmentsAndBehaviorWithoutItsValues)
{
    const auto original = ConcreteEntity<typename TypeParam::Spring>::create(L"original");
    original->SetFirstAttachment(TypeParam::Attachment());
    original->SetSecondAttachment(TypeParam::Attachment());
    original->SetBehavior(Behavior::CompressionLock);
    for (const auto& value : this->Values())
        (original.get()->*value.set)(this->first);
    const auto copy = original->copy();
    decltype(TypeParam::Attachment()) none;
    auto found = none;
    copy->GetFirstAttachment(found);
    EXPECT_EQ(found, TypeParam::Attachment());
    found = none;
    copy->GetSecondAttachment(found);
    EXPECT_EQ(found, TypeParam::Attachment());
    Behavior::Enum behavior = Behavior::Bidirectional;
    copy->GetBehavior(behavior);
    EXPECT_EQ(behavior, Behavior::CompressionLock);
    for (const auto& value : this->Values()) {
        typename TestFixture::Value nothing;
        EXPECT_EQ((copy.get()->*value.get)(nothing), KARFailure);
    }
    this->ExpectReports(3);
}

} // namespace

#include "AttributeTesting.h"
#include "QOBException.h"

namespace {

template <class T>
using AttributePathOf = AttributeKindTest<T>;
TYPED_TEST_SUITE(AttributePathOf, AttributeKinds);

TYPED_TEST(AttributePathOf, LeadsFromAnEntryThroughItsChildren)
{
    const auto arm = NewAttribute<TypeParam>("arm");
    const auto angle = NewAttribute<TypeParam>("angle");
    const auto unit = NewAttribute<TypeParam>("unit");
    arm->AddChild(angle);
    angle->AddChild(unit);
    AddTo(*this->entity, NewAttribute<TypeParam>("other"));
    AddTo(*this->entity, arm);
    typename TestFixture::Handle found;
    EXPECT_EQ(GetFrom(*this->entity, AttributePath{"arm"}, found), KARSuccess);
    EXPECT_EQ(found, arm);
    EXPECT_EQ(GetFrom(*this->entity, AttributePath{"arm", "angle"}, found), KARSuccess);
    EXPECT_EQ(found, angle);
    EXPECT_EQ(GetFrom(*this->entity, AttributePath{"arm", "angle", "unit"}, found), KARSuccess);
    EXPECT_EQ(found, unit);
}

TYPED_TEST(AttributePathOf, WithoutAnAttributeIsAFailureWithoutAReport)
{
    const auto arm = NewAttribute<TypeParam>("arm");
    typename TestFixture::Handle found = arm;
    EXPECT_EQ(GetFrom(*this->entity, AttributePath{"arm"}, found), KARFailure);
    EXPECT_FALSE(found);
    arm->AddChild(NewAttribute<TypeParam>("angle"));
    AddTo(*this->entity, arm);
    for (const AttributePath& path :
         {AttributePath{}, AttributePath{""}, AttributePath{"angle"}, AttributePath{"Arm"},
          AttributePath{"arm.angle"}, AttributePath{"arm", ""}, AttributePath{"arm", "arm"},
          AttributePath{"arm", "angle", "angle"}, AttributePath{"", "arm"}}) {
        found = arm;
        EXPECT_EQ(GetFrom(*this->entity, path, found), KARFailure);
        EXPECT_FALSE(found);
    }
    this->ExpectReports(0);
}

TYPED_TEST(AttributePathOf, TakesTheFirstEntryOfATextAndNoOther)
{
    const auto first = NewAttribute<TypeParam>("arm");
    const auto second = NewAttribute<TypeParam>("arm");
    const auto angle = NewAttribute<TypeParam>("angle");
    second->AddChild(angle);
    AddTo(*this->entity, first);
    AddTo(*this->entity, second);
    typename TestFixture::Handle found;
    EXPECT_EQ(GetFrom(*this->entity, AttributePath{"arm"}, found), KARSuccess);
    EXPECT_EQ(found, first);
    // The walk does not come back to the second one.
    EXPECT_EQ(GetFrom(*this->entity, AttributePath{"arm", "angle"}, found), KARFailure);
    first->SetID("leg");
    EXPECT_EQ(GetFrom(*this->entity, AttributePath{"arm", "angle"}, found), KARSuccess);
    EXPECT_EQ(found, angle);
}

TYPED_TEST(AttributePathOf, MayHaveAnEmptyElementForAnEntryWithoutAText)
{
    const auto unnamed = NewAttribute<TypeParam>("");
    const auto angle = NewAttribute<TypeParam>("angle");
    unnamed->AddChild(angle);
    AddTo(*this->entity, unnamed);
    typename TestFixture::Handle found;
    EXPECT_EQ(GetFrom(*this->entity, AttributePath{""}, found), KARSuccess);
    EXPECT_EQ(found, unnamed);
    EXPECT_EQ(GetFrom(*this->entity, AttributePath{"", "angle"}, found), KARSuccess);
    EXPECT_EQ(found, angle);
    EXPECT_EQ(GetFrom(*this->entity, AttributePath{}, found), KARFailure);
}

TYPED_TEST(AttributePathOf, LeadsThroughChildrenAloneAndNotThroughListsOfTheAttribute)
{
    const auto arm = NewAttribute<TypeParam>("arm");
    AddTo(*arm, NewAttribute<TypeParam>("angle"));
    AddTo(*this->entity, arm);
    typename TestFixture::Handle found;
    EXPECT_EQ(GetFrom(*this->entity, AttributePath{"arm", "angle"}, found), KARFailure);
    EXPECT_EQ(GetFrom(*arm, AttributePath{"angle"}, found), KARSuccess);
    arm->orphanObject();
}

TYPED_TEST(AttributePathOf, AllAttributesComeWithTheirDescendants)
{
    using All = QOBSharedVector<TypeParam>;
    const auto a = NewAttribute<TypeParam>("a");
    const auto b = NewAttribute<TypeParam>("b");
    const auto aa = NewAttribute<TypeParam>("aa");
    const auto aaa = NewAttribute<TypeParam>("aaa");
    const auto ab = NewAttribute<TypeParam>("ab");
    All all{b};
    EXPECT_EQ(GetAllOf(*this->entity, all), KARUnchanged);
    EXPECT_EQ(all, All{b});
    a->AddChild(aa);
    aa->AddChild(aaa);
    a->AddChild(ab);
    AddTo(*this->entity, a);
    AddTo(*this->entity, b);
    EXPECT_EQ(GetAllOf(*this->entity, all), KARSuccess);
    EXPECT_EQ(all, (All{b, a, aa, aaa, ab, b}));
    this->ExpectReports(0);
    aaa->AddChild(a);
    EXPECT_EQ(GetAllOf(*this->entity, all), KARFailure);
    this->ExpectReports(1);
    a->orphanObject();
}

class AttributePathTest : public KARMPTestFixture
{
protected:
    ~AttributePathTest() override { entity->orphanObject(); }
    const QOBSharedHandle<TestEntity> entity = TestEntity::create(L"crank");
};

TEST_F(AttributePathTest, KeepsToTheListOfItsKind)
{
    entity->AddParameter(NewAttribute<KARMPParameter>("p"));
    entity->AddState(NewAttribute<KARMPState>("s"));
    entity->AddOutput(NewAttribute<KARMPOutput>("o"));
    QOBSharedHandle<KARMPParameter> parameter;
    QOBSharedHandle<KARMPState> state;
    QOBSharedHandle<KARMPOutput> output;
    for (const char* const text : {"p", "s", "o"}) {
        const AttributePath path{text};
        EXPECT_EQ(entity->GetParameter(path, parameter) == KARSuccess, *text == 'p');
        EXPECT_EQ(entity->GetState(path, state) == KARSuccess, *text == 's');
        EXPECT_EQ(entity->GetOutput(path, output) == KARSuccess, *text == 'o');
    }
}

TEST_F(AttributePathTest, LeadsToWhatAValueHolds)
{
    const auto number = KARMPConstant::create(L"");
    const auto flag = KARMPBoolean::create(L"");
    const auto text = KARMPString::create(L"");
    number->SetValue(2.5, "");
    flag->SetValue(3);
    text->SetValue("text");
    const auto fill = [&](const QOBSharedHandle<KARMPAttribute>& attribute) {
        attribute->AddValue(number);
        attribute->AddValue(flag);
        attribute->AddValue(text);
    };
    const auto parameter = NewAttribute<KARMPParameter>("x");
    const auto state = NewAttribute<KARMPState>("x");
    const auto output = NewAttribute<KARMPOutput>("x");
    fill(parameter);
    fill(state);
    fill(output);
    entity->AddParameter(parameter);
    entity->AddState(state);
    entity->AddOutput(output);
    const auto expectValues = [&](auto number0, auto flag1, auto text2) {
        double heldNumber = 0.0;
        unsigned char heldFlag = 0;
        KARUnicodeString heldText;
        const AttributePath path{"x"};
        EXPECT_EQ((*entity.*number0)(path, 0, heldNumber), KARSuccess);
        EXPECT_EQ((*entity.*flag1)(path, 1, heldFlag), KARSuccess);
        EXPECT_EQ((*entity.*text2)(path, 2, heldText), KARSuccess);
        EXPECT_EQ(heldNumber, 2.5);
        EXPECT_EQ(heldFlag, 3);
        EXPECT_EQ(heldText, "text");
        ExpectReports(0);
        // Without an attribute, and outside the values.
        EXPECT_EQ((*entity.*number0)({"y"}, 0, heldNumber), KARFailure);
        ExpectReports(1);
        EXPECT_EQ((*entity.*number0)({}, 0, heldNumber), KARFailure);
        ExpectReports(1);
        EXPECT_EQ((*entity.*number0)(path, 3, heldNumber), KARFailure);
        ExpectReports(1);
        EXPECT_THROW((*entity.*number0)(path, 1, heldNumber), QOBEInvalidCast);
        EXPECT_EQ(heldNumber, 2.5);
    };
    expectValues(&KARMPEntity::GetParameterValue<double>,
                 &KARMPEntity::GetParameterValue<unsigned char>,
                 &KARMPEntity::GetParameterValue<KARUnicodeString>);
    expectValues(&KARMPEntity::GetStateValue<double>, &KARMPEntity::GetStateValue<unsigned char>,
                 &KARMPEntity::GetStateValue<KARUnicodeString>);
    expectValues(&KARMPEntity::GetOutputValue<double>, &KARMPEntity::GetOutputValue<unsigned char>,
                 &KARMPEntity::GetOutputValue<KARUnicodeString>);
}

} // namespace

#include "ConstraintTesting.h"
#include "KARIMPKinematicConstraintLoader.h"
#include "KARMPCylindricalConstraint.h"
#include "KARMPEnumerationTexts.h"
#include "KARMPJointKinds.h"
#include "KARMPPlainConstraints.h"
#include "KARMPPrismaticConstraint.h"
#include "KARMPRevoluteConstraint.h"
#include "KARMPScrewConstraint.h"
#include "KARMPSphericalConstraint.h"
#include "KARMPTestFixture.h"
#include "RecordingConstraintLoader.h"

#include <tuple>

namespace {

/// A class that stands for a joint: the friction elements in their order, each with the place of
/// its parameter among those of SetFrictionParameters.
template <class Class, std::size_t Parameters>
struct Kind
{
    using Constraint = Class;
    static constexpr std::size_t Count = Parameters;
    using Values = std::array<double, Parameters>;
    using Items = std::array<std::pair<const wchar_t*, std::size_t>, Parameters>;
    static constexpr bool IsScrew = std::is_same_v<Class, KARMPScrewConstraint>;

    static KARStatus Set(Class& constraint, const Values& values)
    {
        return std::apply([&](auto... value) { return constraint.SetFrictionParameters(value...); },
                          values);
    }
    static KARStatus Get(const Class& constraint, Values& values)
    {
        return std::apply(
            [&](auto&... value) { return constraint.GetFrictionParameters(value...); }, values);
    }
};

template <class Class>
struct Kind<Class, 0>
{
    using Constraint = Class;
    static constexpr std::size_t Count = 0;
    using Values = std::array<double, 0>;
    using Items = std::array<std::pair<const wchar_t*, std::size_t>, 0>;
    static constexpr bool IsScrew = false;

    static KARStatus Set(Class&, const Values&) { return KARSuccess; }
    static KARStatus Get(const Class&, Values&) { return KARSuccess; }
};

#define FRICTION                                                                                   \
    {L"StaticFriction", 0}, {L"DynamicFriction", 2}, {L"StaticSpeedLimit", 1},                     \
    {                                                                                              \
        L"DynamicSpeedLimit", 3                                                                    \
    }

struct Cylindrical : Kind<KARMPCylindricalConstraint, 6>
{
    static constexpr const wchar_t* Element = L"CylindricalConstraint";
    static constexpr Items Friction{{FRICTION, {L"ReferenceDiameter", 5}, {L"ReferenceLength", 4}}};
};
struct Prismatic : Kind<KARMPPrismaticConstraint, 6>
{
    static constexpr const wchar_t* Element = L"PrismaticConstraint";
    static constexpr Items Friction{{FRICTION, {L"ReferenceWidth", 4}, {L"ReferenceLength", 5}}};
};
struct Revolute : Kind<KARMPRevoluteConstraint, 7>
{
    static constexpr const wchar_t* Element = L"RevoluteConstraint";
    static constexpr Items Friction{{FRICTION,
                                     {L"ReferenceDiameter", 6},
                                     {L"ReferenceAxialDiameter", 5},
                                     {L"ReferenceLength", 4}}};
};
struct Screw : Kind<KARMPScrewConstraint, 6>
{
    static constexpr const wchar_t* Element = L"ScrewConstraint";
    static constexpr Items Friction{{FRICTION, {L"ReferenceDiameter", 5}, {L"ReferenceLength", 4}}};
};
struct Spherical : Kind<KARMPSphericalConstraint, 5>
{
    static constexpr const wchar_t* Element = L"SphericalConstraint";
    static constexpr Items Friction{{FRICTION, {L"ReferenceDiameter", 4}}};
};
struct Planar : Kind<KARMPPlanarConstraint, 0>
{
    static constexpr const wchar_t* Element = L"PlanarConstraint";
    static constexpr Items Friction{};
};
struct Universal : Kind<KARMPUniversalConstraint, 0>
{
    static constexpr const wchar_t* Element = L"UniversalConstraint";
    static constexpr Items Friction{};
};
#undef FRICTION

template <class Kind>
class KinematicConstraint : public KARMPTestFixture
{
protected:
    using Class = typename Kind::Constraint;
    using Values = typename Kind::Values;

    KinematicConstraint()
    {
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i] = 0.5 + static_cast<double>(i);
    }
    static std::wstring Path(const std::wstring& name)
    {
        return std::wstring(Kind::Element) + L"/" + name;
    }
    static Values FrictionOf(const QOBSharedHandle<Class>& constraint)
    {
        Values found{};
        EXPECT_EQ(Kind::Get(*constraint, found), KARSuccess);
        return found;
    }
    static KARMPSelectedAxis::Enum AxisOf(const QOBSharedHandle<Class>& constraint, int index)
    {
        KARMPSelectedAxis::Enum axis{};
        EXPECT_EQ(constraint->GetSelectedAxis(index, axis), KARSuccess);
        return axis;
    }
    static TestDeserializer& AddElement(TestDeserializer& root)
    {
        TestDeserializer& element = AddConstraint(root, Kind::Element);
        return element.Leaf(L"SelectedAxis0", L"X").Leaf(L"SelectedAxis1", L"YNeg");
    }
    static void AddMotion(TestDeserializer& element)
    {
        if (Kind::IsScrew) {
            element.Leaf(L"MotionState", L"m")
                .Leaf(L"ScrewTangent", 1.0)
                .Leaf(L"RotationOffset", 2.0)
                .Leaf(L"TranslationOffset", 3.0);
        }
    }

    QOBSharedHandle<Class> constraint = Class::create(L"c");
    QOBSharedHandle<Class> read = Class::create(L"");
    Values values{};
};

using AllKinds =
    ::testing::Types<Cylindrical, Prismatic, Revolute, Screw, Spherical, Planar, Universal>;
TYPED_TEST_SUITE(KinematicConstraint, AllKinds);

TYPED_TEST(KinematicConstraint, NewOneWritesBothAxesAsZAndNoFriction)
{
    TestSerializer written;
    EXPECT_EQ(this->constraint->Serialize(&written), KARSuccess);
    EXPECT_EQ(written.Child(0).GetId(), TypeParam::Element);
    EXPECT_EQ(this->constraint->getClassSerializeID_(), TypeParam::Element);
    EXPECT_EQ(written.Text(this->Path(L"SelectedAxis0")), L"Z");
    EXPECT_EQ(written.Text(this->Path(L"SelectedAxis1")), L"Z");
    EXPECT_EQ(written.Child(0).GetElementCount(), TypeParam::IsScrew ? 6U : 2U);
    EXPECT_EQ(this->FrictionOf(this->constraint), typename TypeParam::Values{});
    EXPECT_EQ(this->constraint->GetFrictionModel(), "none");
    EXPECT_FALSE(this->constraint->IsFrictionEnabled());
}

TYPED_TEST(KinematicConstraint, AxisOutsideTheTwoIsReportedAndFails)
{
    KARMPSelectedAxis::Enum axis = KARMPSelectedAxis::YNeg;
    for (const int index : {2, -1}) {
        EXPECT_EQ(this->constraint->SetSelectedAxis(index, KARMPSelectedAxis::X), KARFailure);
        this->ExpectReports(1);
        EXPECT_EQ(this->constraint->GetSelectedAxis(index, axis), KARFailure);
        this->ExpectReports(1);
    }
    EXPECT_EQ(axis, KARMPSelectedAxis::YNeg);
    EXPECT_EQ(this->AxisOf(this->constraint, 0), KARMPSelectedAxis::Z);
    EXPECT_EQ(this->AxisOf(this->constraint, 1), KARMPSelectedAxis::Z);
}

TYPED_TEST(KinematicConstraint, ParametersAndModelAloneEnableNothing)
{
    TypeParam::Set(*this->constraint, this->values);
    EXPECT_EQ(this->constraint->SetFrictionModel("Coulomb"), KARSuccess);
    EXPECT_FALSE(this->constraint->IsFrictionEnabled());
    TestSerializer written;
    EXPECT_EQ(this->constraint->Serialize(&written), KARSuccess);
    EXPECT_FALSE(written.Has(this->Path(L"FrictionModel")));
    EXPECT_FALSE(written.Has(this->Path(L"FrictionParameters")));
}

TYPED_TEST(KinematicConstraint, WritesFrictionInTheOrderOfItsElements)
{
    TypeParam::Set(*this->constraint, this->values);
    this->constraint->SetFrictionModel("Coul\xC3\xB6mb");
    this->constraint->EnableFriction();
    TestSerializer written;
    EXPECT_EQ(this->constraint->Serialize(&written), KARSuccess);
    const TestSerializer& element = written.Child(0);
    EXPECT_EQ(element.Child(2).GetId(), L"FrictionModel");
    EXPECT_EQ(element.Text(L"FrictionModel"), L"Coul\u00F6mb");
    EXPECT_EQ(element.Has(L"FrictionParameters"), TypeParam::Count > 0);
    if (TypeParam::Count == 0)
        return;
    const TestSerializer& friction = element.Child(3);
    ASSERT_EQ(friction.GetElementCount(), TypeParam::Count);
    std::size_t place = 0;
    for (const auto& [name, parameter] : TypeParam::Friction) {
        EXPECT_EQ(friction.Child(place++).GetId(), name);
        EXPECT_EQ(friction.Number(name), this->values[parameter]);
    }
}

TYPED_TEST(KinematicConstraint, ReadsBackWhatItWroteInEitherForm)
{
    for (const bool friction : {false, true}) {
        for (const bool asText : {false, true}) {
            const auto source = TypeParam::Constraint::create(L"c");
            const auto copy = TypeParam::Constraint::create(L"");
            source->SetSelectedAxis(0, KARMPSelectedAxis::XNeg);
            source->SetSelectedAxis(1, KARMPSelectedAxis::Y);
            TypeParam::Set(*source, this->values);
            source->SetFrictionModel("Coulomb");
            if (friction)
                source->EnableFriction();
            EXPECT_EQ(CopyThroughTree(source, copy, {}, asText), KARSuccess);
            EXPECT_EQ(this->AxisOf(copy, 0), KARMPSelectedAxis::XNeg);
            EXPECT_EQ(this->AxisOf(copy, 1), KARMPSelectedAxis::Y);
            EXPECT_EQ(copy->GetFrictionModel(), friction ? "Coulomb" : "none");
            // Without parameters nothing tells a reader that friction was enabled.
            EXPECT_EQ(copy->IsFrictionEnabled(), friction && TypeParam::Count > 0);
            EXPECT_EQ(this->FrictionOf(copy),
                      (friction ? this->values : typename TypeParam::Values{}));
        }
    }
}

TYPED_TEST(KinematicConstraint, EveryAxisComesBackByItsWord)
{
    const auto& rows = karmp::EnumTexts<KARMPSelectedAxis::Enum>::Rows;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const auto axis = static_cast<KARMPSelectedAxis::Enum>(row);
        this->constraint->SetSelectedAxis(0, axis);
        this->constraint->SetSelectedAxis(1, axis);
        TestSerializer written;
        this->constraint->Serialize(&written);
        EXPECT_EQ(written.Text(this->Path(L"SelectedAxis0")), rows[row]);
        EXPECT_EQ(written.Text(this->Path(L"SelectedAxis1")), rows[row]);
        const auto copy = TypeParam::Constraint::create(L"");
        EXPECT_EQ(CopyThroughTree(this->constraint, copy), KARSuccess);
        EXPECT_EQ(this->AxisOf(copy, 0), axis);
        EXPECT_EQ(this->AxisOf(copy, 1), axis);
    }
}

TYPED_TEST(KinematicConstraint, UnknownAxisIsTheFirstOneInBothDirections)
{
    this->constraint->SetSelectedAxis(0, static_cast<KARMPSelectedAxis::Enum>(17));
    TestSerializer written;
    EXPECT_EQ(this->constraint->Serialize(&written), KARSuccess);
    EXPECT_EQ(written.Text(this->Path(L"SelectedAxis0")), L"X");
    TestDeserializer root;
    auto& element = AddConstraint(root, TypeParam::Element);
    element.Leaf(L"SelectedAxis0", L"W").Leaf(L"SelectedAxis1", L"Y");
    this->AddMotion(element);
    EXPECT_EQ(this->read->Deserialize(&root, {}), KARSuccess);
    EXPECT_EQ(this->AxisOf(this->read, 0), KARMPSelectedAxis::X);
}

TYPED_TEST(KinematicConstraint, MissingAxisFailsAfterTheOtherAndTheModelWereRead)
{
    TestDeserializer root;
    auto& element = AddConstraint(root, TypeParam::Element);
    element.Leaf(L"SelectedAxis1", L"Y").Leaf(L"FrictionModel", L"Coulomb");
    element.Add(L"FrictionParameters");
    EXPECT_EQ(this->read->Deserialize(&root, {}), KARUnexpected);
    // The axis, and the base's failure.
    this->ExpectReports(2);
    EXPECT_EQ(this->AxisOf(this->read, 0), KARMPSelectedAxis::Z);
    EXPECT_EQ(this->AxisOf(this->read, 1), KARMPSelectedAxis::Y);
    EXPECT_EQ(this->read->GetFrictionModel(), "Coulomb");
    EXPECT_FALSE(this->read->IsFrictionEnabled());
}

TYPED_TEST(KinematicConstraint, BaseFailsWithItsOwnStatus)
{
    using Base = KARMPKinematicConstraint;
    const Base& written = *this->constraint;
    EXPECT_EQ(written.Base::Serialize(nullptr), KARFailure);
    this->ExpectReports(1);
    Base& target = *this->read;
    EXPECT_EQ(target.Base::Deserialize(nullptr, {}), KARFailure);
    this->ExpectReports(1);
    TestDeserializer root;
    EXPECT_EQ(target.Base::Deserialize(&AddConstraint(root, TypeParam::Element), {}), KARFailure);
    this->ExpectReports(2);
}

TYPED_TEST(KinematicConstraint, ModelWithoutParametersIsKeptAndDroppedByASecondWrite)
{
    TestDeserializer root;
    auto& element = this->AddElement(root).Leaf(L"FrictionModel", L"Coulomb");
    this->AddMotion(element);
    EXPECT_EQ(this->read->Deserialize(&root, {}), KARSuccess);
    EXPECT_EQ(this->read->GetFrictionModel(), "Coulomb");
    EXPECT_FALSE(this->read->IsFrictionEnabled());
    TestSerializer written;
    this->read->Serialize(&written);
    EXPECT_FALSE(written.Has(this->Path(L"FrictionModel")));
}

TYPED_TEST(KinematicConstraint, MissingFrictionParameterKeepsItsValueInSilence)
{
    TypeParam::Set(*this->read, this->values);
    TestDeserializer root;
    auto& element = this->AddElement(root);
    element.Add(L"FrictionParameters").Leaf(L"DynamicFriction", 99.0);
    this->AddMotion(element);
    EXPECT_EQ(this->read->Deserialize(&root, {}), KARSuccess);
    EXPECT_EQ(this->read->IsFrictionEnabled(), TypeParam::Count > 0);
    auto expected = this->values;
    if constexpr (TypeParam::Count > 0)
        expected[2] = 99.0;
    EXPECT_EQ(this->FrictionOf(this->read), expected);
}

TYPED_TEST(KinematicConstraint, FrictionStaysEnabledWhenATreeHasNone)
{
    this->read->EnableFriction();
    EXPECT_EQ(CopyThroughTree(this->constraint, this->read), KARSuccess);
    EXPECT_TRUE(this->read->IsFrictionEnabled());
}

TYPED_TEST(KinematicConstraint, NullArgumentsAndAMissingElementAreUnexpected)
{
    EXPECT_EQ(this->constraint->Serialize(nullptr), KARUnexpected);
    this->ExpectReports(1);
    EXPECT_EQ(this->constraint->Deserialize(nullptr, {}), KARUnexpected);
    this->ExpectReports(1);
    TestDeserializer root(L"World");
    EXPECT_EQ(this->constraint->Deserialize(&root, {}), KARUnexpected);
    this->ExpectReports(1);
}

TYPED_TEST(KinematicConstraint, FailedAdditionsAreUnexpectedExceptOfModelAndScrewElement)
{
    this->constraint->EnableFriction();
    const std::size_t friction = TypeParam::Count > 0 ? 1 + TypeParam::Count : 0;
    const std::size_t creations =
        ForEachFailedCreation(L"R2018.1", [&](TestSerializer& root, std::size_t failing) {
            const bool element = failing == 1;
            const bool axis = failing == 2 || failing == 3;
            const bool model = failing == 4;
            const bool passes = failing == 0 || model || (element && TypeParam::IsScrew);
            EXPECT_EQ(this->constraint->Serialize(&root), passes ? KARSuccess : KARUnexpected);
            // The tree's reports, one or two with a value, and one here; an axis is reported by the
            // base's caller as well.
            const bool container = element || (failing == 5 && friction > 0);
            this->ExpectReports(failing == 0 ? 0 : container ? 2 : axis ? 4 : 3);
            // A failed axis ends the class's own part, not the base's; all else that does not stand
            // in what failed is tried.
            const std::size_t whole = 4U + friction + (TypeParam::IsScrew ? 4U : 0U);
            const std::size_t within = container ? TypeParam::Count : 0U;
            EXPECT_EQ(root.Creations(), element ? 1U : axis ? 4U : whole - within) << failing;
        });
    EXPECT_EQ(creations, 4U + friction + (TypeParam::IsScrew ? 4U : 0U));
}

TYPED_TEST(KinematicConstraint, CopyTakesItsNumbersAndNoLinks)
{
    this->constraint->SetSelectedAxis(0, KARMPSelectedAxis::ZNeg);
    this->constraint->SetFrictionModel("Coulomb");
    this->constraint->EnableFriction();
    TypeParam::Set(*this->constraint, this->values);
    this->constraint->SetJoint(KARMPRevolute::create(L"j"));
    const auto copy = TypeParam::Constraint::clone(this->constraint, {});
    ASSERT_TRUE(copy);
    EXPECT_EQ(this->AxisOf(copy, 0), KARMPSelectedAxis::ZNeg);
    EXPECT_EQ(this->AxisOf(copy, 1), KARMPSelectedAxis::Z);
    EXPECT_EQ(copy->GetFrictionModel(), "Coulomb");
    EXPECT_TRUE(copy->IsFrictionEnabled());
    EXPECT_EQ(this->FrictionOf(copy), this->values);
    QOBSharedHandle<KARMPJoint> joint;
    EXPECT_EQ(copy->GetJoint(joint), KARFailure);
}

TYPED_TEST(KinematicConstraint, HandsOutTheLoaderOfItsKindAndTellsItNothing)
{
    ConstraintLoaderRecord record;
    auto* loader = new RecordingConstraintLoader<KARIMPKinematicConstraintLoader>(record);
    this->constraint->SetLoader(loader);
    KARIMPKinematicConstraintLoader* found = nullptr;
    EXPECT_EQ(this->constraint->GetLoader(found), KARSuccess);
    EXPECT_EQ(found, loader);
    this->constraint->SetSelectedAxis(0, KARMPSelectedAxis::X);
    this->constraint->SetFrictionModel("Coulomb");
    this->constraint->EnableFriction();
    TypeParam::Set(*this->constraint, this->values);
    EXPECT_TRUE(record.calls.empty());
    EXPECT_EQ(Unfetchable<typename TypeParam::Constraint>::create()->GetLoader(found), KARFailure);
    this->ExpectReports(1);
    EXPECT_EQ(found, nullptr);
}

class ScrewConstraint : public KARMPTestFixture
{
protected:
    ScrewConstraint()
    {
        constraint->SetMotionState("locked");
        constraint->SetTangent(0.25);
        constraint->SetRotationOffset(1.5);
        constraint->SetTranslationOffset(-2.5);
    }
    static void ExpectMotion(const KARMPScrewConstraint& screw)
    {
        double tangent = 0.0;
        double rotation = 0.0;
        double translation = 0.0;
        EXPECT_EQ(screw.GetTangent(tangent), KARSuccess);
        EXPECT_EQ(screw.GetRotationOffset(rotation), KARSuccess);
        EXPECT_EQ(screw.GetTranslationOffset(translation), KARSuccess);
        EXPECT_EQ(screw.GetMotionState(), "locked");
        EXPECT_EQ(tangent, 0.25);
        EXPECT_EQ(rotation, 1.5);
        EXPECT_EQ(translation, -2.5);
    }

    QOBSharedHandle<KARMPScrewConstraint> constraint = KARMPScrewConstraint::create(L"c");
};

TEST_F(ScrewConstraint, NewOneWritesItsMotionWithAnEmptyState)
{
    TestSerializer written;
    EXPECT_EQ(KARMPScrewConstraint::create(L"new")->Serialize(&written), KARSuccess);
    const TestSerializer& element = written.Child(0);
    ASSERT_EQ(element.GetElementCount(), 6U);
    EXPECT_EQ(element.Child(2).GetId(), L"MotionState");
    EXPECT_EQ(element.Text(L"MotionState"), L"");
    EXPECT_EQ(element.Child(3).GetId(), L"ScrewTangent");
    EXPECT_EQ(element.Child(4).GetId(), L"RotationOffset");
    EXPECT_EQ(element.Child(5).GetId(), L"TranslationOffset");
    EXPECT_EQ(element.Number(L"ScrewTangent"), 0.0);
}

TEST_F(ScrewConstraint, MotionFollowsTheFriction)
{
    constraint->EnableFriction();
    TestSerializer written;
    EXPECT_EQ(constraint->Serialize(&written), KARSuccess);
    EXPECT_EQ(written.Child(0).Child(3).GetId(), L"FrictionParameters");
    EXPECT_EQ(written.Child(0).Child(4).GetId(), L"MotionState");
}

TEST_F(ScrewConstraint, MotionComesBackWithAndWithoutFriction)
{
    for (const bool friction : {false, true}) {
        if (friction)
            constraint->EnableFriction();
        const auto copy = KARMPScrewConstraint::create(L"");
        EXPECT_EQ(CopyThroughTree(constraint, copy), KARSuccess);
        ExpectMotion(*copy);
    }
}

TEST_F(ScrewConstraint, CopyTakesItsMotion)
{
    ExpectMotion(*KARMPScrewConstraint::clone(constraint, {}));
}

TEST_F(ScrewConstraint, EachMissingItemOfTheMotionIsReportedAndUnexpected)
{
    TestDeserializer root;
    AddConstraint(root, L"ScrewConstraint")
        .Leaf(L"SelectedAxis0", L"X")
        .Leaf(L"SelectedAxis1", L"X");
    EXPECT_EQ(constraint->Deserialize(&root, {}), KARUnexpected);
    ExpectReports(4);
    ExpectMotion(*constraint);

    TestSerializer written;
    constraint->Serialize(&written);
    ForEachMissingItem(written, {}, [this](TestDeserializer& tree, const std::wstring& missing) {
        const bool attribute = missing.find(L'@') != std::wstring::npos;
        const auto copy = KARMPScrewConstraint::create(L"");
        EXPECT_EQ(copy->Deserialize(&tree, {}), attribute ? KARSuccess : KARUnexpected);
        TakeReports();
    });
}

} // namespace

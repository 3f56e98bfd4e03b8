#include "ConstraintTesting.h"
#include "KARIMPCoaxialityLoader.h"
#include "KARIMPParallelismLoader.h"
#include "KARIMPPerpendicularityLoader.h"
#include "KARIMPRollCurveConstraintLoader.h"
#include "KARIMPSymmetryLoader.h"
#include "KARMPAngle.h"
#include "KARMPCoaxiality.h"
#include "KARMPCoincidence.h"
#include "KARMPDistance.h"
#include "KARMPEnumerationTexts.h"
#include "KARMPNormal.h"
#include "KARMPParallelism.h"
#include "KARMPPerpendicularity.h"
#include "KARMPRollCurveConstraint.h"
#include "KARMPSymmetry.h"
#include "KARMPTangency.h"
#include "KARMPTestFixture.h"
#include "RecordingConstraintLoader.h"

#include <gmock/gmock.h>

namespace {

/// An option of a class: its element, its setter and getter, and what it is newly.
template <class Class, class Enum, Enum Default>
struct Option
{
    using Constraint = Class;
    using Value = Enum;
    static constexpr Enum Newly = Default;
};

#define OPTION(Tag, Class, Name, Default, Number)                                                  \
    struct Tag : Option<Class, KARMP##Name::Enum, KARMP##Name::Default>                            \
    {                                                                                              \
        static constexpr const wchar_t* Element = L"" #Name;                                       \
        static constexpr std::size_t Place = Number;                                               \
        static KARStatus Set(Class& constraint, Value value)                                       \
        {                                                                                          \
            return constraint.Set##Name(value);                                                    \
        }                                                                                          \
        static KARStatus Get(const Class& constraint, Value& value)                                \
        {                                                                                          \
            return constraint.Get##Name(value);                                                    \
        }                                                                                          \
    }

OPTION(AngleHingeMode, KARMPAngle, HingeMode, Parallel, 0);
OPTION(CoaxialityAlignment, KARMPCoaxiality, Alignment, NotSpecified, 0);
OPTION(CoincidenceAlignment, KARMPCoincidence, Alignment, NotSpecified, 0);
OPTION(CoincidenceOrientation, KARMPCoincidence, CircleTorusOrientation, NotSpecified, 1);
OPTION(DistanceAlignment, KARMPDistance, Alignment, NotSpecified, 0);
OPTION(DistanceHalfSpace, KARMPDistance, HalfSpace, NotSpecified, 1);
OPTION(NormalAlignment, KARMPNormal, Alignment, NotSpecified, 0);
OPTION(ParallelismAlignment, KARMPParallelism, Alignment, NotSpecified, 0);
OPTION(PerpendicularityAlignment, KARMPPerpendicularity, Alignment, NotSpecified, 0);
OPTION(RollCurveAlignment, KARMPRollCurveConstraint, Alignment, NotSpecified, 0);
OPTION(SymmetryAlignment, KARMPSymmetry, Alignment, NotSpecified, 0);
OPTION(SymmetryPlane, KARMPSymmetry, SelectedPlane, XY, 1);
OPTION(TangencyAlignment, KARMPTangency, Alignment, NotSpecified, 0);
OPTION(TangencyOrientation, KARMPTangency, SurfaceOrientation, NotSpecified, 1);
#undef OPTION

template <class Option>
class ConstraintOption : public KARMPTestFixture
{
protected:
    using Tested = typename Option::Constraint;
    using Held = typename Option::Value;

    static Held ValueOf(const QOBSharedHandle<Tested>& constraint)
    {
        auto value = static_cast<Held>(99);
        EXPECT_EQ(Option::Get(*constraint, value), KARSuccess);
        return value;
    }
    static std::wstring ElementName()
    {
        const std::string name = Tested::ClassName();
        return std::wstring(name.begin() + 5, name.end());
    }

    QOBSharedHandle<Tested> constraint = Tested::create(L"c");
    QOBSharedHandle<Tested> read = Tested::create(L"");
};

using AllOptions =
    ::testing::Types<AngleHingeMode, CoaxialityAlignment, CoincidenceAlignment,
                     CoincidenceOrientation, DistanceAlignment, DistanceHalfSpace, NormalAlignment,
                     ParallelismAlignment, PerpendicularityAlignment, RollCurveAlignment,
                     SymmetryAlignment, SymmetryPlane, TangencyAlignment, TangencyOrientation>;
TYPED_TEST_SUITE(ConstraintOption, AllOptions);

TYPED_TEST(ConstraintOption, HasItsDefaultInANewConstraint)
{
    EXPECT_EQ(this->ValueOf(this->constraint), TypeParam::Newly);
}

TYPED_TEST(ConstraintOption, EveryValueComesBackFromTheTreeByItsWord)
{
    using Value = typename TypeParam::Value;
    const auto& rows = karmp::EnumTexts<Value>::Rows;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const auto value = static_cast<Value>(row);
        EXPECT_EQ(TypeParam::Set(*this->constraint, value), KARSuccess);
        TestSerializer written;
        EXPECT_EQ(this->constraint->Serialize(&written), KARSuccess);
        const TestSerializer* element = written.Find(this->ElementName());
        ASSERT_NE(element, nullptr);
        EXPECT_EQ(element->Child(TypeParam::Place).GetId(), TypeParam::Element);
        EXPECT_EQ(element->Text(TypeParam::Element), rows[row]);
        const auto copy = TypeParam::Constraint::create(L"");
        const auto tree = TestDeserializer::From(written);
        EXPECT_EQ(copy->Deserialize(tree.get(), {}), KARSuccess);
        EXPECT_EQ(this->ValueOf(copy), value);
    }
}

TYPED_TEST(ConstraintOption, ValueOutsideTheTableIsWrittenAsTheFirstWord)
{
    using Value = typename TypeParam::Value;
    TypeParam::Set(*this->constraint, static_cast<Value>(17));
    TestSerializer written;
    EXPECT_EQ(this->constraint->Serialize(&written), KARSuccess);
    EXPECT_EQ(written.Text(this->ElementName() + L"/" + TypeParam::Element),
              karmp::EnumTexts<Value>::Rows[0]);
}

TYPED_TEST(ConstraintOption, UnknownWordIsReadAsTheFirstValueWithoutAReport)
{
    using Value = typename TypeParam::Value;
    TypeParam::Set(*this->read, static_cast<Value>(2));
    TestSerializer written;
    this->constraint->Serialize(&written);
    TestDeserializer root;
    auto& element = AddConstraint(root, this->ElementName());
    const TestSerializer* source = written.Find(this->ElementName());
    for (std::size_t place = 0; place < source->GetElementCount(); ++place)
        element.Leaf(source->Child(place).GetId(), L"Nonsense");
    EXPECT_EQ(this->read->Deserialize(&root, {}), KARSuccess);
    EXPECT_EQ(this->ValueOf(this->read), static_cast<Value>(0));
}

TYPED_TEST(ConstraintOption, MissingOptionIsReportedAndFailsAfterTheOthersWereRead)
{
    TestDeserializer root;
    AddConstraint(root, this->ElementName());
    TestSerializer written;
    this->constraint->Serialize(&written);
    const std::size_t options = written.Find(this->ElementName())->GetElementCount();
    const auto last = static_cast<typename TypeParam::Value>(2);
    TypeParam::Set(*this->read, last);
    EXPECT_EQ(this->read->Deserialize(&root, {}), KARFailure);
    // Each option, and the end.
    this->ExpectReports(options + 1);
    EXPECT_EQ(this->ValueOf(this->read), last);

    TestDeserializer alone;
    AddConstraint(alone, this->ElementName())
        .Leaf(TypeParam::Element, karmp::EnumTexts<typename TypeParam::Value>::Rows[1]);
    const auto second = TypeParam::Constraint::create(L"");
    EXPECT_EQ(second->Deserialize(&alone, {}), options == 1 ? KARSuccess : KARFailure);
    this->ExpectReports(options == 1 ? 0 : 2);
    EXPECT_EQ(this->ValueOf(second), static_cast<typename TypeParam::Value>(1));
}

TYPED_TEST(ConstraintOption, EveryFailedAdditionFailsAndTheOthersAreWritten)
{
    TestSerializer whole;
    this->constraint->Serialize(&whole);
    const std::size_t options = whole.Find(this->ElementName())->GetElementCount();
    const std::size_t creations =
        ForEachFailedCreation(L"R2018.1", [&](TestSerializer& root, std::size_t failing) {
            EXPECT_EQ(this->constraint->Serialize(&root), failing == 0 ? KARSuccess : KARFailure);
            // The tree reports once, or twice for a value; then the place, then the end.
            this->ExpectReports(failing == 0 ? 0 : failing == 1 ? 2 : 4);
            if (failing > 1)
                EXPECT_EQ(root.Find(this->ElementName())->GetElementCount(), options - 1);
        });
    EXPECT_EQ(creations, options + 1);
}

TYPED_TEST(ConstraintOption, NullArgumentsAndAMissingElementAreReportedAndFail)
{
    EXPECT_EQ(this->constraint->Serialize(nullptr), KARFailure);
    this->ExpectReports(1);
    EXPECT_EQ(this->constraint->Deserialize(nullptr, {}), KARFailure);
    this->ExpectReports(1);
    TestDeserializer root(L"World");
    EXPECT_EQ(this->constraint->Deserialize(&root, {}), KARFailure);
    this->ExpectReports(1);
}

TYPED_TEST(ConstraintOption, TakesItsOwnElementAsWellAsTheNodeAboveIt)
{
    TypeParam::Set(*this->constraint, static_cast<typename TypeParam::Value>(1));
    TestSerializer written;
    this->constraint->Serialize(&written);
    const auto tree = TestDeserializer::From(written);
    const KARMPDeserializer* element = nullptr;
    tree->GetElement(this->ElementName(), element);
    EXPECT_EQ(this->read->Deserialize(element, {}), KARSuccess);
    EXPECT_EQ(this->ValueOf(this->read), static_cast<typename TypeParam::Value>(1));
}

TYPED_TEST(ConstraintOption, TravelsWithACopyExceptOfANormal)
{
    using Class = typename TypeParam::Constraint;
    const auto value = static_cast<typename TypeParam::Value>(2);
    TypeParam::Set(*this->constraint, value);
    const auto copy = Class::clone(this->constraint, {});
    ASSERT_TRUE(copy);
    EXPECT_EQ(this->ValueOf(copy), (std::is_same_v<Class, KARMPNormal> ? TypeParam::Newly : value));
}

/// A setter that tells a loader, and what it calls it.
template <class Option, class RecordingLoader>
struct Pushing : Option
{
    using Loader = RecordingLoader;
};

using PushedCoaxiality =
    Pushing<CoaxialityAlignment, RecordingAlignmentLoader<KARIMPCoaxialityLoader>>;

template <class Option>
class PushedOption : public KARMPTestFixture
{
protected:
    using Tested = typename Option::Constraint;

    static std::string CallOf(int value)
    {
        const std::wstring name = Option::Element;
        return "Set" + std::string(name.begin(), name.end()) + " " + std::to_string(value);
    }

    QOBSharedHandle<Tested> constraint = Tested::create(L"c");
    ConstraintLoaderRecord record;
};

using PushedOptions = ::testing::Types<
    PushedCoaxiality, Pushing<CoincidenceAlignment, RecordingCoincidenceLoader>,
    Pushing<DistanceAlignment, RecordingDistanceLoader>,
    Pushing<DistanceHalfSpace, RecordingDistanceLoader>,
    Pushing<ParallelismAlignment, RecordingAlignmentLoader<KARIMPParallelismLoader>>,
    Pushing<PerpendicularityAlignment, RecordingAlignmentLoader<KARIMPPerpendicularityLoader>>,
    Pushing<RollCurveAlignment, RecordingAlignmentLoader<KARIMPRollCurveConstraintLoader>>,
    Pushing<SymmetryAlignment, RecordingAlignmentLoader<KARIMPSymmetryLoader>>,
    Pushing<TangencyAlignment, RecordingTangencyLoader>,
    Pushing<TangencyOrientation, RecordingTangencyLoader>>;
TYPED_TEST_SUITE(PushedOption, PushedOptions);

TYPED_TEST(PushedOption, IsToldToTheLoaderWhoseAnswerIsTheResult)
{
    using Value = typename TypeParam::Value;
    this->constraint->SetLoader(new typename TypeParam::Loader(this->record));
    EXPECT_EQ(TypeParam::Set(*this->constraint, static_cast<Value>(2)), KARSuccess);
    EXPECT_EQ(this->record.calls, std::vector<std::string>{this->CallOf(2)});
    this->record.answer = KAROutOfMemory;
    EXPECT_EQ(TypeParam::Set(*this->constraint, static_cast<Value>(1)), KAROutOfMemory);
    Value value{};
    TypeParam::Get(*this->constraint, value);
    EXPECT_EQ(value, static_cast<Value>(1));
}

TYPED_TEST(PushedOption, IsToldToTheLoaderThatASubclassGives)
{
    using Loader = typename TypeParam::Loader;
    Loader loader(this->record);
    const auto own =
        WithOwnLoader<typename TypeParam::Constraint, typename Loader::LoaderInterface>::create(
            loader);
    EXPECT_EQ(TypeParam::Set(*own, static_cast<typename TypeParam::Value>(2)), KARSuccess);
    EXPECT_EQ(this->record.calls, std::vector<std::string>{this->CallOf(2)});
}

TYPED_TEST(PushedOption, ChangesWithoutALoader)
{
    using Value = typename TypeParam::Value;
    EXPECT_EQ(TypeParam::Set(*this->constraint, static_cast<Value>(2)), KARSuccess);
    Value value{};
    TypeParam::Get(*this->constraint, value);
    EXPECT_EQ(value, static_cast<Value>(2));
}

TYPED_TEST(PushedOption, ChangesEvenIfTheLoaderCannotBeFetched)
{
    using Value = typename TypeParam::Value;
    using Class = typename TypeParam::Constraint;
    const auto broken = Unfetchable<Class>::create();
    const KARStatus expected = std::is_same_v<Class, KARMPCoaxiality> ? KARSuccess : KARFailure;
    EXPECT_EQ(TypeParam::Set(*broken, static_cast<Value>(2)), expected);
    this->ExpectReports(2);
    Value value{};
    TypeParam::Get(*broken, value);
    EXPECT_EQ(value, static_cast<Value>(2));
}

TYPED_TEST(PushedOption, IsToldToAnAttachedLoaderWhenRead)
{
    using Class = typename TypeParam::Constraint;
    TypeParam::Set(*this->constraint, static_cast<typename TypeParam::Value>(2));
    const auto read = Class::create(L"");
    read->SetLoader(new typename TypeParam::Loader(this->record));
    EXPECT_EQ(CopyThroughTree(this->constraint, read), KARSuccess);
    EXPECT_THAT(this->record.calls, ::testing::Contains(this->CallOf(2)));
}

TYPED_TEST(PushedOption, RefusalOfTheLoaderFailsTheReading)
{
    const auto read = TypeParam::Constraint::create(L"");
    read->SetLoader(new typename TypeParam::Loader(this->record));
    this->record.answer = KARFailure;
    EXPECT_EQ(CopyThroughTree(this->constraint, read), KARFailure);
    // Each option that the loader is told of, and the end.
    this->ExpectReports(this->record.calls.size() + 1);
}

TYPED_TEST(PushedOption, TypedLoaderIsHandedOut)
{
    using Class = typename TypeParam::Constraint;
    auto* loader = new typename TypeParam::Loader(this->record);
    this->constraint->SetLoader(loader);
    KARIMPConstraintLoader* base = nullptr;
    const KARMPConstraint& asBase = *this->constraint;
    EXPECT_EQ(asBase.GetLoader(base), KARSuccess);
    EXPECT_EQ(base, loader);
    // A loader of constraints in general is none of this class.
    const auto other = Class::create(L"");
    other->SetLoader(new RecordingConstraintLoader<>(this->record));
    EXPECT_EQ(TypeParam::Set(*other, static_cast<typename TypeParam::Value>(1)), KARSuccess);
    EXPECT_TRUE(this->record.calls.empty());
}

class GeometricConstraint : public KARMPTestFixture
{
protected:
    ConstraintLoaderRecord record;
};

TEST_F(GeometricConstraint, NewAngleWritesParallelAlthoughItIsNotTheFirstWord)
{
    TestSerializer written;
    EXPECT_EQ(KARMPAngle::create(L"a")->Serialize(&written), KARSuccess);
    EXPECT_EQ(written.Text(L"Angle/HingeMode"), L"Parallel");
}

TEST_F(GeometricConstraint, PlainSettersTellNoLoader)
{
    const auto coincidence = KARMPCoincidence::create(L"c");
    coincidence->SetLoader(new RecordingCoincidenceLoader(record));
    EXPECT_EQ(coincidence->SetCircleTorusOrientation(KARMPCircleTorusOrientation::Parallel),
              KARSuccess);
    const auto symmetry = KARMPSymmetry::create(L"s");
    symmetry->SetLoader(new RecordingAlignmentLoader<KARIMPSymmetryLoader>(record));
    EXPECT_EQ(symmetry->SetSelectedPlane(KARMPSelectedPlane::ZX), KARSuccess);
    EXPECT_TRUE(record.calls.empty());
}

TEST_F(GeometricConstraint, ReadsOptionsInTheOrderOfTheirElements)
{
    const auto tangency = KARMPTangency::create(L"t");
    tangency->SetAlignment(KARMPAlignment::Align);
    tangency->SetSurfaceOrientation(KARMPSurfaceOrientation::Negative);
    const auto read = KARMPTangency::create(L"");
    read->SetLoader(new RecordingTangencyLoader(record));
    EXPECT_EQ(CopyThroughTree(tangency, read), KARSuccess);
    EXPECT_EQ(record.calls,
              (std::vector<std::string>{"SetAlignment 2", "SetSurfaceOrientation 2"}));
}

template <class Class, class Loader>
void AskForParameters(ConstraintLoaderRecord& record)
{
    std::array<double, 2> parameters{};
    const auto constraint = Class::create(L"c");
    EXPECT_EQ(constraint->GetSolverConstraintParameters(parameters.data()), KARFailure);
    EXPECT_EQ(parameters, (std::array{0.0, 0.0}));
    constraint->SetLoader(new Loader(record));
    EXPECT_EQ(constraint->GetSolverConstraintParameters(parameters.data()), KARSuccess);
    EXPECT_EQ(parameters, (std::array{1.5, 2.5}));
    record.answer = KARNotImplemented;
    EXPECT_EQ(constraint->GetSolverConstraintParameters(parameters.data()), KARNotImplemented);
}

TEST_F(GeometricConstraint, LoaderFillsTheParametersOfACoincidenceAndATangency)
{
    AskForParameters<KARMPCoincidence, RecordingCoincidenceLoader>(record);
    record = {};
    AskForParameters<KARMPTangency, RecordingTangencyLoader>(record);
    std::array<double, 2> parameters{};
    EXPECT_EQ(
        Unfetchable<KARMPCoincidence>::create()->GetSolverConstraintParameters(parameters.data()),
        KARFailure);
    ExpectReports(2);
    EXPECT_EQ(
        Unfetchable<KARMPTangency>::create()->GetSolverConstraintParameters(parameters.data()),
        KARFailure);
    ExpectReports(2);
}

template <class Class, class Loader>
void AskSubclassForParameters(ConstraintLoaderRecord& record)
{
    Loader loader(record);
    const auto own = WithOwnLoader<Class, typename Loader::LoaderInterface>::create(loader);
    std::array<double, 2> parameters{};
    EXPECT_EQ(own->GetSolverConstraintParameters(parameters.data()), KARSuccess);
    EXPECT_EQ(parameters, (std::array{1.5, 2.5}));
}

TEST_F(GeometricConstraint, LoaderThatASubclassGivesFillsTheParameters)
{
    AskSubclassForParameters<KARMPCoincidence, RecordingCoincidenceLoader>(record);
    AskSubclassForParameters<KARMPTangency, RecordingTangencyLoader>(record);
}

TEST_F(GeometricConstraint, OperationsWithoutACallerHaveBodies)
{
    RecordingAlignmentLoader<KARIMPRollCurveConstraintLoader> loader(record);
    EXPECT_EQ(loader.UpdateRelation(), KARSuccess);
    EXPECT_EQ(loader.ResetContact(), KARSuccess);
}

} // namespace

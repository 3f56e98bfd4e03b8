#include "KARMPConstraint.h"

#include "ConcreteEntity.h"
#include "ConstraintTesting.h"
#include "KARMPDisplacementSensor.h"
#include "KARMPJointKinds.h"
#include "KARMPPlainConstraints.h"
#include "KARMPPoint.h"
#include "KARMPTestFixture.h"
#include "KARMPVariable.h"
#include "RecordingConstraintLoader.h"

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

namespace {

/// A sensor that refuses to forget a constraint.
class StubbornSensor : public KARMPSensor
{
public:
    KARStatus RemoveConstraint(const QOBSharedHandle<KARMPConstraint>&) override
    {
        ++asked;
        return KARUnexpected;
    }

    int asked = 0;
};

class CountedParameter : public KARMPConstraintParameter
{
public:
    CountedParameter() { ++Alive; }
    ~CountedParameter() override { --Alive; }

    static inline int Alive = 0;
};

/// Notes its number when it is freed.
class NumberedParameter : public KARMPConstraintParameter
{
public:
    NumberedParameter(int number, std::vector<int>& freed) : m_number(number), m_freed(freed) {}
    ~NumberedParameter() override { m_freed.push_back(m_number); }

private:
    int m_number;
    std::vector<int>& m_freed;
};

class Constraint : public KARMPTestFixture
{
protected:
    ~Constraint() override
    {
        constraint->orphanObject();
        joint->orphanObject();
        point->orphanObject();
        variable->orphanObject();
        sensor->orphanObject();
    }

    QOBSharedHandle<KARMPConstraint> constraint = KARMPConcentricity::create(L"c");
    QOBSharedHandle<KARMPJoint> joint = KARMPRevolute::create(L"j");
    QOBSharedHandle<KARMPGeometry> point = KARMPPoint::create(L"p");
    QOBSharedHandle<KARMPVariable> variable = KARMPVariable::create(L"v");
    QOBSharedHandle<KARMPSensor> sensor = KARMPDisplacementSensor::create(L"s");
};

// The three lists of links behave alike; each is tried through its own operations.
struct GeometryLinks
{
    using Linked = KARMPGeometry;
    static auto Make(const wchar_t* name) { return KARMPPoint::create(name); }
    static constexpr auto link = &KARMPConstraint::LinkToGeometry;
    static constexpr auto get = &KARMPConstraint::GetLinkedGeometry;
    static constexpr auto count = &KARMPConstraint::GetLinkedGeometryCount;
    static constexpr auto remove = &KARMPConstraint::RemoveGeometry;
};

struct VariableLinks
{
    using Linked = KARMPVariable;
    static auto Make(const wchar_t* name) { return KARMPVariable::create(name); }
    static constexpr auto link = &KARMPConstraint::LinkToVariable;
    static constexpr auto get = &KARMPConstraint::GetLinkedVariable;
    static constexpr auto count = &KARMPConstraint::GetLinkedVariableCount;
    static constexpr auto remove = &KARMPConstraint::RemoveVariable;
};

struct SensorLinks
{
    using Linked = KARMPSensor;
    static auto Make(const wchar_t* name) { return KARMPDisplacementSensor::create(name); }
    static constexpr auto link = &KARMPConstraint::LinkToSensor;
    static constexpr auto get = &KARMPConstraint::GetLinkedSensor;
    static constexpr auto count = &KARMPConstraint::GetLinkedSensorCount;
    static constexpr auto remove = &KARMPConstraint::RemoveSensor;
};

template <class Links>
class ConstraintLinks : public KARMPTestFixture
{
protected:
    using Handle = QOBSharedHandle<typename Links::Linked>;

    KARStatus Link(const Handle& handle) { return ((*constraint).*Links::link)(handle); }
    KARStatus Remove(const Handle& handle) { return ((*constraint).*Links::remove)(handle); }
    int Count() { return ((*constraint).*Links::count)(); }
    KARStatus Get(int index, Handle& handle) { return ((*constraint).*Links::get)(index, handle); }

    QOBSharedHandle<KARMPConstraint> constraint = KARMPConcentricity::create(L"c");
    Handle first = Links::Make(L"first");
    Handle second = Links::Make(L"second");
    Handle third = Links::Make(L"third");
};

using AllLinks = ::testing::Types<GeometryLinks, VariableLinks, SensorLinks>;
TYPED_TEST_SUITE(ConstraintLinks, AllLinks);

TYPED_TEST(ConstraintLinks, AreEmptyAtFirst)
{
    EXPECT_EQ(this->Count(), 0);
}

TYPED_TEST(ConstraintLinks, SecondLinkToTheSameReferentChangesNothing)
{
    EXPECT_EQ(this->Link(this->first), KARSuccess);
    EXPECT_EQ(this->Link(this->first), KARUnchanged);
    EXPECT_EQ(this->Count(), 1);
}

TYPED_TEST(ConstraintLinks, NullHandleIsReportedAndFails)
{
    EXPECT_EQ(this->Link(nullptr), KARFailure);
    this->ExpectReports(1);
    EXPECT_EQ(this->Remove(nullptr), KARFailure);
    this->ExpectReports(1);
    EXPECT_EQ(this->Count(), 0);
}

TYPED_TEST(ConstraintLinks, IndexOutsideTheListGivesANullHandle)
{
    this->Link(this->first);
    auto handle = this->second;
    EXPECT_EQ(this->Get(-1, handle), KARFailure);
    EXPECT_FALSE(handle);
    handle = this->second;
    EXPECT_EQ(this->Get(1, handle), KARFailure);
    EXPECT_FALSE(handle);
    EXPECT_EQ(this->Get(0, handle), KARSuccess);
    EXPECT_EQ(handle, this->first);
}

TYPED_TEST(ConstraintLinks, RemovingKeepsTheOrderOfTheOthers)
{
    this->Link(this->first);
    this->Link(this->second);
    this->Link(this->third);
    EXPECT_EQ(this->Remove(this->second), KARSuccess);
    EXPECT_EQ(this->Remove(this->second), KARUnchanged);
    ASSERT_EQ(this->Count(), 2);
    typename TestFixture::Handle handle;
    this->Get(0, handle);
    EXPECT_EQ(handle, this->first);
    this->Get(1, handle);
    EXPECT_EQ(handle, this->third);
}

TEST_F(Constraint, HasOneJointAtMostAndTakesANullOne)
{
    QOBSharedHandle<KARMPJoint> found = joint;
    EXPECT_EQ(constraint->GetJoint(found), KARFailure);
    EXPECT_FALSE(found);
    EXPECT_EQ(constraint->SetJoint(joint), KARSuccess);
    EXPECT_EQ(constraint->GetJoint(found), KARSuccess);
    EXPECT_EQ(found, joint);
    EXPECT_EQ(constraint->SetJoint(nullptr), KARSuccess);
    EXPECT_EQ(constraint->GetJoint(found), KARFailure);
}

TEST_F(Constraint, RemovesNoOtherJointThanItsOwn)
{
    constraint->SetJoint(joint);
    EXPECT_EQ(constraint->RemoveJoint(nullptr), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(constraint->RemoveJoint(KARMPRevolute::create(L"other")), KARUnchanged);
    QOBSharedHandle<KARMPJoint> found;
    EXPECT_EQ(constraint->GetJoint(found), KARSuccess);
    EXPECT_EQ(constraint->RemoveJoint(joint), KARSuccess);
    EXPECT_EQ(constraint->GetJoint(found), KARFailure);
    EXPECT_EQ(constraint->RemoveJoint(joint), KARUnchanged);
}

TEST_F(Constraint, GivesItsParametersByIndex)
{
    auto* parameter = new KARMPConstraintParameter;
    EXPECT_EQ(constraint->AddConstraintParameter(parameter), KARSuccess);
    EXPECT_EQ(constraint->AddConstraintParameter(nullptr), KARSuccess);
    EXPECT_EQ(constraint->GetConstraintParameterCount(), 2);
    KARMPConstraintParameter marker;
    KARMPConstraintParameter* found = &marker;
    EXPECT_EQ(constraint->GetConstraintParameter(-1, found), KARFailure);
    EXPECT_EQ(constraint->GetConstraintParameter(2, found), KARFailure);
    EXPECT_EQ(found, &marker);
    EXPECT_EQ(constraint->GetConstraintParameter(0, found), KARSuccess);
    EXPECT_EQ(found, parameter);
    EXPECT_EQ(constraint->GetConstraintParameter(1, found), KARSuccess);
    EXPECT_EQ(found, nullptr);
}

TEST_F(Constraint, GivesNoParameterThatOnlyASubclassCounts)
{
    class Boastful : public KARMPConcentricity
    {
    public:
        int GetConstraintParameterCount() const override { return 5; }
    };
    const QOBSharedHandle<KARMPConstraint> boastful(new Boastful);
    KARMPConstraintParameter* found = nullptr;
    EXPECT_EQ(boastful->GetConstraintParameter(4, found), KARFailure);
}

TEST_F(Constraint, FreesEachParameterOnce)
{
    QOBSharedHandle<KARMPConstraint> owner = KARMPConcentricity::create(L"owner");
    auto* twice = new CountedParameter;
    owner->AddConstraintParameter(twice);
    owner->AddConstraintParameter(new CountedParameter);
    owner->AddConstraintParameter(nullptr);
    owner->AddConstraintParameter(twice);
    EXPECT_EQ(CountedParameter::Alive, 2);
    owner->orphanObject();
    EXPECT_EQ(owner->GetConstraintParameterCount(), 4);
    owner = nullptr;
    EXPECT_EQ(CountedParameter::Alive, 0);
}

TEST_F(Constraint, FreesItsParametersInTheOrderOfTheList)
{
    for (const std::size_t count : {5U, 100U, 100000U}) {
        std::vector<int> freed;
        std::vector<int> expected(count);
        std::iota(expected.begin(), expected.end(), 0);
        std::vector<KARMPConstraintParameter*> parameters;
        for (const int number : expected)
            parameters.push_back(new NumberedParameter(number, freed));
        // The order of the numbers has nothing to do with that of the addresses.
        std::shuffle(parameters.begin(), parameters.end(), std::mt19937(5));
        QOBSharedHandle<KARMPConstraint> owner = KARMPConcentricity::create(L"owner");
        for (std::size_t i = 0; i < count; ++i) {
            owner->AddConstraintParameter(parameters[i]);
            if (i % 3 == 0)
                owner->AddConstraintParameter(nullptr);
            if (i % 4 == 0)
                owner->AddConstraintParameter(parameters[i / 2]);
        }
        std::shuffle(expected.begin(), expected.end(), std::mt19937(5));
        owner = nullptr;
        EXPECT_EQ(freed, expected) << count;
    }
}

TEST_F(Constraint, PutsEachQuestionToItsLoader)
{
    ConstraintLoaderRecord record;
    constraint->SetLoader(new RecordingConstraintLoader<>(record));
    EXPECT_TRUE(constraint->IsSatisfied());
    double residual = 0.0;
    EXPECT_TRUE(constraint->IsSatisfied(residual));
    EXPECT_EQ(residual, 0.5);
    double value = 0.0;
    double rate = 0.0;
    EXPECT_EQ(constraint->CurrentValue(3, value, rate), KARSuccess);
    EXPECT_EQ(value, 0.5);
    EXPECT_EQ(rate, 0.25);
    value = 0.0;
    EXPECT_EQ(constraint->CurrentValue(value), KARSuccess);
    EXPECT_EQ(value, 0.5);
    KARMPOptionsOrientation options;
    EXPECT_EQ(constraint->CurrentOptions(options), KARSuccess);
    EXPECT_EQ(options.number, 7);
    EXPECT_EQ(record.calls,
              (std::vector<std::string>{"IsSatisfied", "IsSatisfied residual", "CurrentValue 3",
                                        "CurrentValue", "CurrentOptions"}));
}

TEST_F(Constraint, PassesTheLoadersAnswersOn)
{
    ConstraintLoaderRecord record;
    record.satisfied = false;
    record.answer = KAROutOfMemory;
    constraint->SetLoader(new RecordingConstraintLoader<>(record));
    double number = 0.0;
    KARMPOptionsOrientation options;
    EXPECT_FALSE(constraint->IsSatisfied());
    EXPECT_FALSE(constraint->IsSatisfied(number));
    EXPECT_EQ(constraint->CurrentValue(number), KAROutOfMemory);
    EXPECT_EQ(constraint->CurrentValue(0, number, number), KAROutOfMemory);
    EXPECT_EQ(constraint->CurrentOptions(options), KAROutOfMemory);
}

TEST_F(Constraint, AsksTheLoaderThatItsSubclassGives)
{
    ConstraintLoaderRecord record;
    RecordingConstraintLoader<> loader(record);
    const auto own = WithOwnLoader<KARMPConcentricity, KARIMPConstraintLoader>::create(loader);
    double number = 0.0;
    KARMPOptionsOrientation options;
    EXPECT_TRUE(own->IsSatisfied());
    EXPECT_TRUE(own->IsSatisfied(number));
    EXPECT_EQ(own->CurrentValue(number), KARSuccess);
    EXPECT_EQ(own->CurrentValue(0, number, number), KARSuccess);
    EXPECT_EQ(own->CurrentOptions(options), KARSuccess);
}

TEST_F(Constraint, AsksAfreshEachTime)
{
    ConstraintLoaderRecord record;
    constraint->SetLoader(new RecordingConstraintLoader<>(record));
    EXPECT_TRUE(constraint->IsSatisfied());
    record.satisfied = false;
    EXPECT_FALSE(constraint->IsSatisfied());
    EXPECT_EQ(record.calls.size(), 2U);
}

TEST_F(Constraint, AsksWithinTheCompatibilityScopeInOneFormOnly)
{
    ConstraintLoaderRecord record;
    constraint->SetLoader(new RecordingConstraintLoader<>(record));
    constraint->IsSatisfied();
    EXPECT_EQ(record.compatibility, 1);
    EXPECT_EQ(GMKTkCompatCtx::Depth(), 0);
    double residual = 0.0;
    constraint->IsSatisfied(residual);
    EXPECT_EQ(record.compatibility, 0);
}

TEST_F(Constraint, AnswersWithoutALoaderAndLeavesTheArgumentsAlone)
{
    double value = 17.0;
    double rate = 18.0;
    KARMPOptionsOrientation options{9};
    EXPECT_FALSE(constraint->IsSatisfied());
    EXPECT_FALSE(constraint->IsSatisfied(value));
    EXPECT_EQ(constraint->CurrentValue(value), KARFailure);
    EXPECT_EQ(constraint->CurrentValue(0, value, rate), KARFailure);
    EXPECT_EQ(constraint->CurrentOptions(options), KARFailure);
    EXPECT_EQ(value, 17.0);
    EXPECT_EQ(rate, 18.0);
    EXPECT_EQ(options.number, 9);
    ExpectReports(0);
}

TEST_F(Constraint, LoaderOfAnotherKindCountsAsNone)
{
    LoaderRecord record;
    constraint->SetLoader(new RecordingEntityLoader(record));
    ConstraintLoaderRecord other;
    RecordingConstraintLoader<> marker(other);
    KARIMPConstraintLoader* loader = &marker;
    EXPECT_EQ(constraint->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr);
    EXPECT_FALSE(constraint->IsSatisfied());
}

TEST_F(Constraint, ReportsALoaderThatCannotBeFetched)
{
    const auto broken = Unfetchable<KARMPConcentricity>::create();
    ConstraintLoaderRecord record;
    RecordingConstraintLoader<> marker(record);
    KARIMPConstraintLoader* loader = &marker;
    const KARMPConstraint& base = *broken;
    EXPECT_EQ(base.GetLoader(loader), KARFailure);
    EXPECT_EQ(loader, nullptr);
    ExpectReports(1);
    // One report for the fetch and one for the question.
    double number = 0.0;
    KARMPOptionsOrientation options;
    EXPECT_FALSE(broken->IsSatisfied());
    ExpectReports(2);
    EXPECT_FALSE(broken->IsSatisfied(number));
    ExpectReports(2);
    EXPECT_EQ(broken->CurrentValue(number), KARFailure);
    ExpectReports(2);
    EXPECT_EQ(broken->CurrentValue(0, number, number), KARFailure);
    ExpectReports(2);
    EXPECT_EQ(broken->CurrentOptions(options), KARFailure);
    ExpectReports(2);
}

TEST_F(Constraint, CopyIsAsNew)
{
    constraint->LinkToGeometry(point);
    constraint->LinkToVariable(variable);
    constraint->LinkToSensor(sensor);
    constraint->SetJoint(joint);
    constraint->AddConstraintParameter(new KARMPConstraintParameter);
    constraint->Deactivate();
    constraint->SetID("kept behind");
    const auto copy = KARMPConstraint::clone(constraint, {});
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->getClassName(), "KARMPConcentricity");
    EXPECT_EQ(copy->GetLinkedGeometryCount(), 0);
    EXPECT_EQ(copy->GetLinkedVariableCount(), 0);
    EXPECT_EQ(copy->GetLinkedSensorCount(), 0);
    EXPECT_EQ(copy->GetConstraintParameterCount(), 0);
    QOBSharedHandle<KARMPJoint> found;
    EXPECT_EQ(copy->GetJoint(found), KARFailure);
    EXPECT_TRUE(copy->IsActive());
    EXPECT_TRUE(copy->GetID().IsEmpty());
}

TEST_F(Constraint, TakesItselfOutOfAllThatListItWhenOrphaned)
{
    constraint->LinkToGeometry(point);
    constraint->LinkToVariable(variable);
    constraint->LinkToSensor(sensor);
    constraint->SetJoint(joint);
    point->LinkToConstraint(constraint);
    variable->LinkToConstraint(constraint);
    joint->AddConstraint(constraint);
    constraint->AddConstraintParameter(new KARMPConstraintParameter);

    constraint->orphanObject();
    EXPECT_EQ(point->GetLinkedConstraintCount(), 0);
    EXPECT_EQ(variable->GetLinkedConstraintCount(), 0);
    EXPECT_EQ(joint->GetConstraintCount(), 0);
    EXPECT_EQ(constraint->GetLinkedGeometryCount(), 0);
    EXPECT_EQ(constraint->GetLinkedVariableCount(), 0);
    EXPECT_EQ(constraint->GetLinkedSensorCount(), 0);
    EXPECT_EQ(constraint->GetConstraintParameterCount(), 1);
    QOBSharedHandle<KARMPJoint> found;
    EXPECT_EQ(constraint->GetJoint(found), KARFailure);
}

TEST_F(Constraint, IsNotStoppedByOnesThatDoNotListIt)
{
    const auto other = KARMPVariable::create(L"other");
    constraint->SetJoint(joint);
    constraint->LinkToGeometry(point);
    constraint->LinkToVariable(variable);
    constraint->LinkToVariable(other);
    other->LinkToConstraint(constraint);
    constraint->orphanObject();
    EXPECT_EQ(other->GetLinkedConstraintCount(), 0);
}

TEST_F(Constraint, StopsAtASensorThatRefuses)
{
    auto* stubborn = new StubbornSensor;
    auto* next = new StubbornSensor;
    const QOBSharedHandle<KARMPSensor> first(stubborn);
    const QOBSharedHandle<KARMPSensor> second(next);
    constraint->LinkToSensor(first);
    constraint->LinkToSensor(second);
    constraint->LinkToVariable(variable);
    variable->LinkToConstraint(constraint);
    constraint->orphanObject();
    EXPECT_EQ(stubborn->asked, 1);
    EXPECT_EQ(next->asked, 0);
    EXPECT_EQ(variable->GetLinkedConstraintCount(), 0);
    EXPECT_EQ(constraint->GetLinkedSensorCount(), 0);
}

TEST_F(Constraint, TellsTheStatusOfASensorThatRefuses)
{
    const auto refused = ConcreteEntity<KARMPConcentricity>::create(L"refused");
    refused->LinkToSensor(QOBSharedHandle<KARMPSensor>(new StubbornSensor));
    EXPECT_EQ(refused->RemoveParent(), KARUnexpected);
}

TEST_F(Constraint, OnesLinkedInCirclesAreGoneAfterTheyWereOrphaned)
{
    using Live = Counted<KARMPConcentricity>;
    {
        QOBSharedHandle<KARMPConstraint> linked(new Live);
        linked->LinkToGeometry(point);
        point->LinkToConstraint(linked);
        linked->SetJoint(joint);
        joint->AddConstraint(linked);
        KARMPConstraint::destroy(linked);
        EXPECT_FALSE(linked);
    }
    EXPECT_EQ(Live::Alive, 0);
}

} // namespace

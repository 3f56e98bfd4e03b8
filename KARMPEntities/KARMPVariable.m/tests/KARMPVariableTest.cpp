#include "KARMPVariable.h"
#include "KARIMPValueLoader.h"
#include "KARMPEntityTable.h"
#include "KARMPEquation.h"
#include "KARMPTestFixture.h"
#include "RecordingVariableLoader.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

namespace {

// A variable whose loader cannot be had.
class LoaderlessVariable : public KARMPVariable
{
public:
    using KARMPVariable::GetLoader;
    KARStatus GetLoader(KARIMPEntityLoader*&) const override { return KARFailure; }
};

// A variable whose second link cannot be had.
class UnsureVariable : public KARMPVariable
{
public:
    KARStatus GetLinkedConstraint(int index,
                                  QOBSharedHandle<KARMPConstraint>& constraint) const override
    {
        return index != 1 ? KARMPVariable::GetLinkedConstraint(index, constraint) : KARFailure;
    }
};

// A variable whose first link refers to nothing.
class HollowVariable : public KARMPVariable
{
public:
    KARStatus GetLinkedConstraint(int index,
                                  QOBSharedHandle<KARMPConstraint>& constraint) const override
    {
        return index != 0 ? KARMPVariable::GetLinkedConstraint(index, constraint) : KARSuccess;
    }
};

// A loader that looks at its variable when it is told of a number.
class LookingLoader : public RecordingVariableLoader
{
public:
    LookingLoader(LoaderRecord& record, const KARMPVariable& variable, std::vector<double>& seen)
        : RecordingVariableLoader(record), m_variable(variable), m_seen(seen)
    {}
    KARStatus SetValue(double) override
    {
        return Look(&KARMPVariable::HasValue, &KARMPVariable::GetValue);
    }
    KARStatus SetMinValue(double) override
    {
        return Look(&KARMPVariable::HasMinValue, &KARMPVariable::GetMinValue);
    }
    KARStatus SetMaxValue(double) override
    {
        return Look(&KARMPVariable::HasMaxValue, &KARMPVariable::GetMaxValue);
    }

private:
    KARStatus Look(bool (KARMPVariable::*has)() const,
                   KARStatus (KARMPVariable::*get)(double& number) const)
    {
        double number = 0.0;
        (m_variable.*get)(number);
        if ((m_variable.*has)())
            m_seen.push_back(number);
        return KARSuccess;
    }

    const KARMPVariable& m_variable;
    std::vector<double>& m_seen;
};

class OpenVariable : public KARMPVariable
{
public:
    using KARMPVariable::RemoveParent;
};

class Variable : public KARMPTestFixture
{
protected:
    ~Variable() override
    {
        for (auto& constraint : constraints)
            KARMPEquation::destroy(constraint);
    }

    QOBSharedHandle<KARMPEquation> NewConstraint()
    {
        constraints.push_back(KARMPEquation::create(L"c" + std::to_wstring(constraints.size())));
        return constraints.back();
    }

    double Value() const
    {
        double value = -1.0;
        EXPECT_EQ(variable->GetValue(value), KARSuccess);
        return value;
    }

    std::vector<QOBSharedHandle<KARMPEquation>> constraints;
    QOBSharedHandle<KARMPVariable> variable = KARMPVariable::create(L"v");
    LoaderRecord record;
};

TEST_F(Variable, IsNewlyWithoutAnythingSetAndGivesZeros)
{
    EXPECT_FALSE(variable->HasValue());
    EXPECT_FALSE(variable->HasMinValue());
    EXPECT_FALSE(variable->HasMaxValue());
    EXPECT_FALSE(variable->HasRestitutionOnMinLimit());
    EXPECT_FALSE(variable->HasRestitutionOnMaxLimit());
    double value = 1.0;
    EXPECT_EQ(variable->GetValue(value), KARSuccess);
    EXPECT_EQ(value, 0.0);
    value = 1.0;
    EXPECT_EQ(variable->GetMinValue(value), KARSuccess);
    EXPECT_EQ(value, 0.0);
    value = 1.0;
    EXPECT_EQ(variable->GetMaxValue(value), KARSuccess);
    EXPECT_EQ(value, 0.0);
    value = 1.0;
    EXPECT_EQ(variable->GetRestitutionOnMinLimit(value), KARSuccess);
    EXPECT_EQ(value, 0.0);
    value = 1.0;
    EXPECT_EQ(variable->GetRestitutionOnMaxLimit(value), KARSuccess);
    EXPECT_EQ(value, 0.0);
    EXPECT_EQ(variable->GetPhysicalQuantity(), KARMPPhysicalQuantity::NoPhysicalQuantity);
    EXPECT_EQ(variable->GetType(), KARMPVariableType::Free);
    EXPECT_EQ(variable->GetLinkedConstraintCount(), 0);
}

TEST_F(Variable, SettersStoreAndFlagOneNumberEach)
{
    EXPECT_EQ(variable->SetValue(1.0), KARSuccess);
    EXPECT_TRUE(variable->HasValue());
    EXPECT_FALSE(variable->HasMinValue());
    EXPECT_EQ(variable->SetMinValue(2.0), KARSuccess);
    EXPECT_TRUE(variable->HasMinValue());
    EXPECT_FALSE(variable->HasMaxValue());
    EXPECT_EQ(variable->SetMaxValue(3.0), KARSuccess);
    EXPECT_TRUE(variable->HasMaxValue());
    EXPECT_FALSE(variable->HasRestitutionOnMinLimit());
    EXPECT_EQ(variable->SetRestitutionOnMinLimit(0.25), KARSuccess);
    EXPECT_TRUE(variable->HasRestitutionOnMinLimit());
    EXPECT_FALSE(variable->HasRestitutionOnMaxLimit());
    EXPECT_EQ(variable->SetRestitutionOnMaxLimit(0.5), KARSuccess);
    EXPECT_TRUE(variable->HasRestitutionOnMaxLimit());
    double number = 0.0;
    EXPECT_EQ(Value(), 1.0);
    variable->GetMinValue(number);
    EXPECT_EQ(number, 2.0);
    variable->GetMaxValue(number);
    EXPECT_EQ(number, 3.0);
    variable->GetRestitutionOnMinLimit(number);
    EXPECT_EQ(number, 0.25);
    variable->GetRestitutionOnMaxLimit(number);
    EXPECT_EQ(number, 0.5);
}

TEST_F(Variable, KeepsQuantityAndType)
{
    EXPECT_EQ(variable->SetPhysicalQuantity(KARMPPhysicalQuantity::Torque), KARSuccess);
    EXPECT_EQ(variable->GetPhysicalQuantity(), KARMPPhysicalQuantity::Torque);
    EXPECT_EQ(variable->SetType(KARMPVariableType::Constant), KARSuccess);
    EXPECT_EQ(variable->GetType(), KARMPVariableType::Constant);
}

TEST_F(Variable, PassesChangesOnToItsLoaderWhoseAnswerIsTheResult)
{
    variable->SetLoader(new RecordingVariableLoader(record));
    record.answer = KARNotImplemented;
    EXPECT_EQ(variable->SetValue(1.5), KARNotImplemented);
    EXPECT_EQ(variable->SetMinValue(-2.0), KARNotImplemented);
    EXPECT_EQ(variable->SetMaxValue(3.0), KARNotImplemented);
    EXPECT_EQ(variable->Fix(), KARNotImplemented);
    record.answer = KARUnchanged;
    EXPECT_EQ(variable->Unfix(), KARUnchanged);
    EXPECT_EQ(record.calls, (std::vector<std::string>{"SetValue 1.5", "SetMinValue -2",
                                                      "SetMaxValue 3", "Fix", "Unfix"}));
    EXPECT_EQ(Value(), 1.5);
    variable.detach();
    EXPECT_EQ(record.deleted, 1);
}

TEST_F(Variable, HasNumberAndFlagWhenItsLoaderIsTold)
{
    std::vector<double> seen;
    variable->SetLoader(new LookingLoader(record, *variable, seen));
    variable->SetValue(1.5);
    variable->SetMinValue(-2.0);
    variable->SetMaxValue(3.0);
    EXPECT_EQ(seen, (std::vector<double>{1.5, -2.0, 3.0}));
    variable.detach();
}

TEST_F(Variable, DoesNotTellItsLoaderOfRestitutionsQuantityTypeOrResults)
{
    variable->SetLoader(new RecordingVariableLoader(record));
    variable->SetRestitutionOnMinLimit(0.5);
    variable->SetRestitutionOnMaxLimit(0.5);
    variable->SetPhysicalQuantity(KARMPPhysicalQuantity::Angle);
    variable->SetType(KARMPVariableType::Controlled);
    variable->UpdateValue(4.0);
    EXPECT_TRUE(record.calls.empty());
    variable.detach();
}

TEST_F(Variable, FixAndUnfixWithoutALoaderGiveSuccess)
{
    EXPECT_EQ(variable->Fix(), KARSuccess);
    EXPECT_EQ(variable->Unfix(), KARSuccess);
}

TEST_F(Variable, GivesItsLoaderAsAVariablesLoader)
{
    auto* attached = new RecordingVariableLoader(record);
    KARIMPVariableLoader* loader = attached;
    EXPECT_EQ(variable->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr);
    variable->SetLoader(attached);
    EXPECT_EQ(variable->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, attached);
    variable.detach();
}

TEST_F(Variable, WithALoaderOfAnotherKindBehavesAsWithoutOne)
{
    variable->SetLoader(new RecordingLoader<KARIMPValueLoader>(record));
    auto* loader = reinterpret_cast<KARIMPVariableLoader*>(&record);
    EXPECT_EQ(variable->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr);
    EXPECT_EQ(variable->SetValue(2.0), KARSuccess);
    EXPECT_EQ(Value(), 2.0);
    variable.detach();
}

TEST_F(Variable, SetterThatCannotHaveTheLoaderFailsYetKeepsNumberAndFlag)
{
    variable = QOBSharedHandle<KARMPVariable>(new LoaderlessVariable);
    // The fetch and the setter report one after the other.
    EXPECT_EQ(variable->SetMinValue(7.0), KARFailure);
    ExpectReports(2);
    EXPECT_TRUE(variable->HasMinValue());
    double number = 0.0;
    variable->GetMinValue(number);
    EXPECT_EQ(number, 7.0);
    EXPECT_EQ(variable->SetValue(8.0), KARFailure);
    ExpectReports(2);
    EXPECT_TRUE(variable->HasValue());
    EXPECT_EQ(Value(), 8.0);
    EXPECT_EQ(variable->SetMaxValue(9.0), KARFailure);
    ExpectReports(2);
    EXPECT_TRUE(variable->HasMaxValue());
    EXPECT_EQ(variable->Fix(), KARFailure);
    ExpectReports(2);
    EXPECT_EQ(variable->Unfix(), KARFailure);
    ExpectReports(2);
    auto* loader = reinterpret_cast<KARIMPVariableLoader*>(&record);
    EXPECT_EQ(variable->GetLoader(loader), KARFailure);
    EXPECT_EQ(loader, nullptr);
    ExpectReports(1);
}

TEST_F(Variable, ResultIsStoredWithoutTheFlag)
{
    EXPECT_EQ(variable->UpdateValue(5.0), KARSuccess);
    EXPECT_EQ(Value(), 5.0);
    EXPECT_FALSE(variable->HasValue());
    variable->SetValue(1.0);
    variable->UpdateValue(6.0);
    EXPECT_EQ(Value(), 6.0);
    EXPECT_TRUE(variable->HasValue());
}

class VariableNotification : public Variable
{
protected:
    // Subscribes to an entity and counts its updates into a number.
    void Watch(const QOBSharedHandle<KARMPEntity>& entity, int& heard)
    {
        const QOBNotificationFunctor functor(*listener, [&heard](auto, auto) { ++heard; });
        entity->addSubscriber(functor, QOBNotificationAgent::Events().set());
    }

    QOBSharedHandle<KARMPVariable> listener = KARMPVariable::create(L"listener");
    int ofVariable = 0;
    int ofFirst = 0;
    int ofSecond = 0;
};

TEST_F(VariableNotification, ResultOfAControlledVariableIsToldForItsConstraintsToo)
{
    const auto first = NewConstraint();
    const auto second = NewConstraint();
    variable->LinkToConstraint(first);
    variable->LinkToConstraint(second);
    Watch(variable, ofVariable);
    Watch(first, ofFirst);
    Watch(second, ofSecond);
    variable->UpdateValue(1.0);
    variable->SetType(KARMPVariableType::Constant);
    variable->UpdateValue(2.0);
    EXPECT_EQ(ofVariable, 2);
    EXPECT_EQ(ofFirst + ofSecond, 0);
    variable->SetType(KARMPVariableType::Controlled);
    EXPECT_EQ(variable->UpdateValue(3.0), KARSuccess);
    EXPECT_EQ(ofVariable, 3);
    EXPECT_EQ(ofFirst, 1);
    EXPECT_EQ(ofSecond, 1);
    variable->SetValue(4.0);
    EXPECT_EQ(ofVariable, 3);
}

TEST_F(VariableNotification, ResultIsThereWhenSubscribersAreTold)
{
    std::vector<double> heard;
    const QOBNotificationFunctor functor(*listener, [&](auto, auto) { heard.push_back(Value()); });
    variable->addSubscriber(functor, QOBNotificationAgent::Events().set());
    variable->UpdateValue(5.0);
    EXPECT_EQ(heard, std::vector<double>{5.0});
}

TEST_F(VariableNotification, LinkThatCannotBeHadIsReportedAndTheNextOneTold)
{
    variable = QOBSharedHandle<KARMPVariable>(new UnsureVariable);
    for (int i = 0; i < 3; ++i)
        variable->LinkToConstraint(NewConstraint());
    Watch(constraints[0], ofFirst);
    Watch(constraints[2], ofSecond);
    variable->SetType(KARMPVariableType::Controlled);
    EXPECT_EQ(variable->UpdateValue(3.0), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(ofFirst, 1);
    EXPECT_EQ(ofSecond, 1);
}

TEST_F(VariableNotification, LinkWithoutAConstraintIsReportedAndTheNextOneTold)
{
    variable = QOBSharedHandle<KARMPVariable>(new HollowVariable);
    for (int i = 0; i < 2; ++i)
        variable->LinkToConstraint(NewConstraint());
    Watch(constraints[1], ofSecond);
    variable->SetType(KARMPVariableType::Controlled);
    EXPECT_EQ(variable->UpdateValue(3.0), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(ofSecond, 1);
}

TEST_F(Variable, SecondLinkToTheSameConstraintChangesNothing)
{
    const auto constraint = NewConstraint();
    EXPECT_EQ(variable->LinkToConstraint(constraint), KARSuccess);
    EXPECT_EQ(variable->LinkToConstraint(constraint), KARUnchanged);
    EXPECT_EQ(variable->GetLinkedConstraintCount(), 1);
    EXPECT_EQ(variable->LinkToConstraint({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(variable->GetLinkedConstraintCount(), 1);
}

TEST_F(Variable, RemovingAConstraintKeepsTheOrderOfTheOthers)
{
    for (int i = 0; i < 3; ++i)
        variable->LinkToConstraint(NewConstraint());
    EXPECT_EQ(variable->RemoveConstraint(constraints[0]), KARSuccess);
    EXPECT_EQ(variable->RemoveConstraint(constraints[0]), KARUnchanged);
    EXPECT_EQ(variable->RemoveConstraint({}), KARFailure);
    ExpectReports(1);
    ASSERT_EQ(variable->GetLinkedConstraintCount(), 2);
    QOBSharedHandle<KARMPConstraint> constraint;
    EXPECT_EQ(variable->GetLinkedConstraint(0, constraint), KARSuccess);
    EXPECT_EQ(constraint, constraints[1]);
    EXPECT_EQ(variable->GetLinkedConstraint(1, constraint), KARSuccess);
    EXPECT_EQ(constraint, constraints[2]);
    EXPECT_EQ(variable->GetLinkedConstraint(2, constraint), KARFailure);
    EXPECT_FALSE(constraint);
    constraint = constraints[1];
    EXPECT_EQ(variable->GetLinkedConstraint(-1, constraint), KARFailure);
    EXPECT_FALSE(constraint);
}

TEST_F(Variable, OrphanedVariableLeavesItsConstraintsAndDropsThem)
{
    for (int i = 0; i < 2; ++i) {
        variable->LinkToConstraint(NewConstraint());
        constraints.back()->LinkToVariable(variable);
    }
    const auto other = KARMPVariable::create(L"other");
    constraints[1]->LinkToVariable(other);
    auto handle = variable;
    KARMPVariable::destroy(handle);
    EXPECT_EQ(variable->GetLinkedConstraintCount(), 0);
    EXPECT_EQ(constraints[0]->GetLinkedVariableCount(), 0);
    ASSERT_EQ(constraints[1]->GetLinkedVariableCount(), 1);
    QOBSharedHandle<KARMPVariable> left;
    constraints[1]->GetLinkedVariable(0, left);
    EXPECT_EQ(left, other);
    EXPECT_EQ(variable->getReferenceCount(), 1U);
}

TEST_F(Variable, LeavingTheConstraintsGivesTheStatusOfTheLastOne)
{
    const QOBSharedHandle<OpenVariable> open(new OpenVariable);
    EXPECT_EQ(open->RemoveParent(), KARSuccess);
    for (int i = 0; i < 2; ++i)
        open->LinkToConstraint(NewConstraint());
    // The first one does not know the variable, which does not end the walk.
    constraints[1]->LinkToVariable(open);
    EXPECT_EQ(open->RemoveParent(), KARSuccess);
    EXPECT_EQ(constraints[1]->GetLinkedVariableCount(), 0);
    constraints[0]->LinkToVariable(open);
    EXPECT_EQ(open->RemoveParent(), KARUnchanged);
    EXPECT_EQ(constraints[0]->GetLinkedVariableCount(), 0);
    EXPECT_EQ(open->GetLinkedConstraintCount(), 2);
}

// Which of the five numbers are set.
std::vector<bool> FlagsOf(const KARMPVariable& variable)
{
    return {variable.HasValue(), variable.HasMinValue(), variable.HasMaxValue(),
            variable.HasRestitutionOnMinLimit(), variable.HasRestitutionOnMaxLimit()};
}

TEST_F(Variable, EachFlagGoesItsOwnWayIntoCopiesAndThroughTheTree)
{
    using Setter = KARStatus (KARMPVariable::*)(double);
    const std::vector<Setter> setters{
        &KARMPVariable::SetValue, &KARMPVariable::SetMinValue, &KARMPVariable::SetMaxValue,
        &KARMPVariable::SetRestitutionOnMinLimit, &KARMPVariable::SetRestitutionOnMaxLimit};
    for (std::size_t one = 0; one < setters.size(); ++one) {
        const auto source = KARMPVariable::create(L"source");
        ((*source).*setters[one])(0.5);
        std::vector<bool> expected(setters.size());
        expected[one] = true;
        ASSERT_EQ(FlagsOf(*source), expected);
        EXPECT_EQ(FlagsOf(*KARMPVariable::clone(source, QOBDynamicObject::CopyDefault)), expected);
        TestSerializer root;
        source->Serialize(&root);
        const auto read = KARMPVariable::create(L"");
        EXPECT_EQ(read->Deserialize(TestDeserializer::From(root).get(), {}), KARSuccess);
        EXPECT_EQ(FlagsOf(*read), expected);
    }
}

TEST_F(Variable, CopyHasNoLinksWhateverTheMode)
{
    variable->SetValue(1.0);
    variable->LinkToConstraint(NewConstraint());
    for (const auto mode : {QOBDynamicObject::CopyDefault, QOBDynamicObject::CopyShallow,
                            QOBDynamicObject::CopyDeep}) {
        const auto copy = KARMPVariable::clone(variable, mode);
        ASSERT_TRUE(copy);
        EXPECT_TRUE(copy->HasValue());
        EXPECT_EQ(copy->GetLinkedConstraintCount(), 0);
    }
}

TEST_F(Variable, CopyTakesEverythingButTheLinks)
{
    variable->SetValue(1.0);
    variable->SetMinValue(2.0);
    variable->SetMaxValue(3.0);
    variable->SetRestitutionOnMinLimit(4.0);
    variable->SetRestitutionOnMaxLimit(5.0);
    variable->SetPhysicalQuantity(KARMPPhysicalQuantity::Mass);
    variable->SetType(KARMPVariableType::Controlled);
    variable->LinkToConstraint(NewConstraint());
    variable->SetLoader(new RecordingVariableLoader(record));

    const auto copy = KARMPVariable::clone(variable, QOBDynamicObject::CopyDefault);
    ASSERT_TRUE(copy);
    variable->UpdateValue(-1.0);
    double number = 0.0;
    copy->GetValue(number);
    EXPECT_EQ(number, 1.0);
    copy->GetMinValue(number);
    EXPECT_EQ(number, 2.0);
    copy->GetMaxValue(number);
    EXPECT_EQ(number, 3.0);
    copy->GetRestitutionOnMinLimit(number);
    EXPECT_EQ(number, 4.0);
    copy->GetRestitutionOnMaxLimit(number);
    EXPECT_EQ(number, 5.0);
    EXPECT_TRUE(copy->HasValue() && copy->HasMinValue() && copy->HasMaxValue());
    EXPECT_TRUE(copy->HasRestitutionOnMinLimit() && copy->HasRestitutionOnMaxLimit());
    EXPECT_EQ(copy->GetPhysicalQuantity(), KARMPPhysicalQuantity::Mass);
    EXPECT_EQ(copy->GetType(), KARMPVariableType::Controlled);
    EXPECT_EQ(copy->GetLinkedConstraintCount(), 0);
    KARIMPVariableLoader* loader = nullptr;
    copy->GetLoader(loader);
    EXPECT_EQ(loader, nullptr);
    variable.detach();
}

} // namespace

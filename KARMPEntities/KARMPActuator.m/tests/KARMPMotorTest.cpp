#include "KARMPMotor.h"
#include "ConcreteEntity.h"
#include "KARMPConstant.h"
#include "KARMPEntityTable.h"
#include "KARMPExpression.h"
#include "KARMPSerializationServices.h"
#include "KARMPString.h"
#include "KARMPTestFixture.h"
#include "KARMPVariable.h"
#include "KARMPWorld.h"
#include "KARWBFactory.h"
#include "QOBBasicWorld.h"
#include "RecordingActuatorLoaders.h"

namespace {

using Quantity = KARMPPhysicalQuantity;
using Target = KARMPMotorTargetType;
using Value = QOBSharedHandle<KARMPValue>;

/// A motor that gives a loader without having been given one, or fails to.
class OwnLoaderMotor : public KARMPMotor
{
public:
    explicit OwnLoaderMotor(KARIMPMotorLoader& loader) : m_loader(loader) {}

    KARStatus answer = KARSuccess;

    using KARMPMotor::GetLoader;
    KARStatus GetLoader(KARIMPMotorLoader*& loader) const override
    {
        loader = &m_loader;
        return answer;
    }

private:
    KARIMPMotorLoader& m_loader;
};

/// The operations of one of a motor's values.
struct ValueOperations
{
    const char* name;
    int target;
    KARStatus (KARMPMotor::*setValue)(const Value&);
    KARStatus (KARMPMotor::*setNumber)(double);
    KARStatus (KARMPMotor::*setFactory)(KARWBFactory*);
    KARStatus (KARMPMotor::*getValue)(Value&) const;
    KARStatus (KARMPMotor::*getNumber)(double&) const;
    KARStatus (KARMPMotor::*getFactory)(KARWBFactory*&) const;
    bool (KARMPMotor::*hasConstant)() const;
    const char* call;
    Quantity::Enum ofNumber[2]; // of a length, of an angle
    Quantity::Enum ofEquation[2];
};

const ValueOperations AllValues[] = {
    {"position",
     1,
     &KARMPMotor::SetPosition,
     &KARMPMotor::SetPosition,
     &KARMPMotor::SetPosition,
     &KARMPMotor::GetPosition,
     &KARMPMotor::GetPosition,
     &KARMPMotor::GetPosition,
     &KARMPMotor::HasConstantPosition,
     "SetPosition",
     {Quantity::Length, Quantity::Angle},
     {Quantity::Length, Quantity::Angle}},
    {"velocity",
     2,
     &KARMPMotor::SetVelocity,
     &KARMPMotor::SetVelocity,
     &KARMPMotor::SetVelocity,
     &KARMPMotor::GetVelocity,
     &KARMPMotor::GetVelocity,
     &KARMPMotor::GetVelocity,
     &KARMPMotor::HasConstantVelocity,
     "SetVelocity",
     {Quantity::Length, Quantity::Angle},
     {Quantity::Velocity, Quantity::AngularVelocity}},
    {"acceleration",
     3,
     &KARMPMotor::SetAcceleration,
     &KARMPMotor::SetAcceleration,
     &KARMPMotor::SetAcceleration,
     &KARMPMotor::GetAcceleration,
     &KARMPMotor::GetAcceleration,
     &KARMPMotor::GetAcceleration,
     &KARMPMotor::HasConstantAcceleration,
     "SetAcceleration",
     {Quantity::Length, Quantity::Angle},
     {Quantity::Acceleration, Quantity::AngularAcceleration}},
    {"maximum force",
     0,
     &KARMPMotor::SetMaxForce,
     &KARMPMotor::SetMaxForce,
     &KARMPMotor::SetMaxForce,
     &KARMPMotor::GetMaxForce,
     &KARMPMotor::GetMaxForce,
     &KARMPMotor::GetMaxForce,
     &KARMPMotor::HasConstantMaxForce,
     "SetMaxForce",
     {Quantity::Force, Quantity::Torque},
     {Quantity::Force, Quantity::Torque}},
};

/// A motor in a world, which drives a length.
class Motor : public KARMPTestFixture
{
protected:
    using MotorHandle = QOBSharedHandle<ConcreteEntity<KARMPMotor>>;
    using Variable = QOBSharedHandle<KARMPVariable>;

    Motor()
    {
        variable->SetPhysicalQuantity(Quantity::Length);
        motor = NewMotor();
        Parse(factory, L"2 * t");
    }
    MotorHandle NewMotor() const
    {
        MotorHandle made = ConcreteEntity<KARMPMotor>::create(L"m");
        basicWorld->addLogicalChild(made);
        return made;
    }
    static void Parse(KARWBFactory& factory, const wchar_t* text, bool isOne = true)
    {
        KARWBEquation* equation = nullptr;
        EXPECT_EQ(KARFailed(KARMPSerializationServices::ParseWBEquation(text, &factory, equation)),
                  !isOne);
    }
    static Quantity::Enum QuantityOf(const Value& value)
    {
        Quantity::Enum quantity = {};
        value->GetPhysicalQuantity(quantity);
        return quantity;
    }
    Value Get(const ValueOperations& of) const
    {
        Value value;
        (*motor.*of.getValue)(value);
        return value;
    }

    QOBSharedHandle<QOBBasicWorld> basicWorld = QOBBasicWorld::create(L"basic");
    QOBSharedHandle<KARMPWorld> world = KARMPWorld::create(basicWorld);
    Variable variable = KARMPVariable::create(L"v");
    KARWBFactory factory;
    LoaderRecord record;
    MotorHandle motor;
    const Value constant = KARMPConstant::create(L"c");
    const Value expression = KARMPExpression::create(L"e");
};

TEST_F(Motor, DrivesOneVariable)
{
    Variable found = variable;
    EXPECT_EQ(motor->GetVariable(found), KARFailure);
    EXPECT_FALSE(found);
    EXPECT_EQ(motor->GetLinkedVariableCount(), 0);
    found = variable;
    EXPECT_EQ(motor->GetLinkedVariable(0, found), KARFailure);
    EXPECT_FALSE(found);
    ExpectReports(1);
    EXPECT_EQ(motor->SetVariable({}), KARFailure);
    EXPECT_EQ(motor->LinkToVariable({}), KARFailure);
    ExpectReports(2);
    EXPECT_EQ(motor->LinkToVariable(variable), KARSuccess);
    EXPECT_EQ(motor->LinkToVariable(variable), KARUnchanged);
    EXPECT_EQ(motor->SetVariable(variable), KARSuccess);
    EXPECT_EQ(motor->LinkToVariable({}), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(motor->GetLinkedVariableCount(), 1);
    EXPECT_EQ(motor->GetLinkedVariable(0, found), KARSuccess);
    EXPECT_EQ(found, variable);
    for (const int index : {-1, 1}) {
        found = variable;
        EXPECT_EQ(motor->GetLinkedVariable(index, found), KARFailure);
        EXPECT_FALSE(found);
        ExpectReports(1);
    }
}

TEST_F(Motor, ReplacesItsVariableByASecondOne)
{
    const Variable second = KARMPVariable::create(L"second");
    motor->LinkToVariable(variable);
    EXPECT_EQ(motor->LinkToVariable(second), KARSuccess);
    Variable found;
    EXPECT_EQ(motor->GetVariable(found), KARSuccess);
    EXPECT_EQ(found, second);
    EXPECT_EQ(motor->GetLinkedVariableCount(), 1);
}

TEST_F(Motor, CombinesTargetTypesAsBits)
{
    EXPECT_EQ(motor->GetTargetType(), Target::NotSpecified);
    motor->SetMaxForce(constant);
    EXPECT_EQ(motor->GetTargetType(), Target::NotSpecified);
    motor->SetPosition(constant);
    EXPECT_EQ(motor->GetTargetType(), Target::PositionTarget);
    motor->SetVelocity(constant);
    EXPECT_EQ(motor->GetTargetType(), Target::AccelerationTarget);
    EXPECT_EQ(motor->SetTargetType(Target::VelocityTarget), KARSuccess);
    EXPECT_EQ(motor->GetTargetType(), Target::VelocityTarget);
    motor->SetVelocity(constant);
    EXPECT_EQ(motor->GetTargetType(), Target::VelocityTarget);
    motor->SetAcceleration(constant);
    EXPECT_EQ(motor->GetTargetType(), Target::AccelerationTarget);
}

TEST_F(Motor, RefusesToHaveNoTargetTypeAgain)
{
    motor->SetTargetType(Target::VelocityTarget);
    EXPECT_EQ(motor->SetTargetType(Target::NotSpecified), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(motor->GetTargetType(), Target::VelocityTarget);
}

TEST_F(Motor, HoldsAValueForEachQuantity)
{
    for (const ValueOperations& of : AllValues) {
        SCOPED_TRACE(of.name);
        motor = NewMotor();
        Value found = constant;
        EXPECT_EQ((*motor.*of.getValue)(found), KARFailure);
        EXPECT_FALSE(found);
        EXPECT_EQ((*motor.*of.setValue)({}), KARFailure);
        ExpectReports(1);
        EXPECT_EQ(motor->GetTargetType(), Target::NotSpecified);
        EXPECT_EQ((*motor.*of.setValue)(expression), KARSuccess);
        EXPECT_EQ((*motor.*of.setValue)(constant), KARSuccess);
        EXPECT_EQ(motor->GetTargetType(), of.target);
        EXPECT_EQ((*motor.*of.getValue)(found), KARSuccess);
        EXPECT_EQ(found, constant);
        for (const ValueOperations& other : AllValues)
            EXPECT_EQ(static_cast<bool>(Get(other)), &other == &of);
    }
}

TEST_F(Motor, TellsItsLoaderOfEachValue)
{
    auto* loader = new RecordingMotorLoader(record);
    motor->SetLoader(loader);
    for (const ValueOperations& of : AllValues) {
        SCOPED_TRACE(of.name);
        record.calls.clear();
        record.answer = KARUnchanged;
        EXPECT_EQ((*motor.*of.setValue)(constant), KARSuccess);
        EXPECT_EQ(record.calls, std::vector<std::string>{of.call});
        EXPECT_EQ(loader->last, constant);
        record.answer = KARUnexpected;
        EXPECT_EQ((*motor.*of.setValue)(expression), KARFailure);
        ExpectReports(1);
        EXPECT_EQ(Get(of), expression) << "what the loader refused stays";
    }
    loader->last = nullptr;
}

TEST_F(Motor, KeepsAValueWhoseLoaderCannotBeFetched)
{
    motor->failsToFetch = true;
    EXPECT_EQ(motor->SetVelocity(constant), KARFailure);
    ExpectReports(2);
    EXPECT_EQ(motor->GetTargetType(), Target::VelocityTarget);
    motor->failsToFetch = false;
    Value found;
    EXPECT_EQ(motor->GetVelocity(found), KARSuccess);
}

TEST_F(Motor, TakesALoaderOfAnotherKindForNone)
{
    motor->SetLoader(new RecordingEntityLoader(record));
    KARIMPMotorLoader* loader = nullptr;
    EXPECT_EQ(motor->GetLoader(loader), KARSuccess);
    EXPECT_EQ(loader, nullptr);
    EXPECT_EQ(motor->SetPosition(constant), KARSuccess);
    EXPECT_TRUE(record.calls.empty());
}

TEST_F(Motor, NeedsAVariableForANumberButNotForItsTargetType)
{
    for (const ValueOperations& of : AllValues) {
        SCOPED_TRACE(of.name);
        motor = NewMotor();
        EXPECT_EQ((*motor.*of.setNumber)(5.0), KARFailure);
        ExpectReports(2);
        EXPECT_EQ(motor->GetTargetType(), of.target);
        EXPECT_FALSE(Get(of));
        (*motor.*of.setValue)(expression);
        EXPECT_EQ((*motor.*of.setNumber)(5.0), KARFailure);
        ExpectReports(2);
        EXPECT_EQ(Get(of), expression);
        // A constant takes the number whoever gave it.
        (*motor.*of.setValue)(constant);
        EXPECT_EQ((*motor.*of.setNumber)(5.0), KARSuccess);
    }
    EXPECT_EQ(world->Count<KARMPValue>(), 0);
}

TEST_F(Motor, MakesOneConstantForItsNumbers)
{
    for (const ValueOperations& of : AllValues) {
        SCOPED_TRACE(of.name);
        motor = NewMotor();
        motor->SetVariable(variable);
        const int known = world->Count<KARMPValue>();
        EXPECT_EQ((*motor.*of.setNumber)(5.0), KARSuccess);
        const Value made = Get(of);
        ASSERT_TRUE(made);
        EXPECT_TRUE((*motor.*of.hasConstant)());
        EXPECT_EQ((*motor.*of.setNumber)(6.5), KARSuccess);
        EXPECT_EQ(Get(of), made);
        double number = 0.0;
        EXPECT_EQ((*motor.*of.getNumber)(number), KARSuccess);
        EXPECT_EQ(number, 6.5);
        EXPECT_EQ(motor->GetTargetType(), of.target);
        EXPECT_EQ(world->Count<KARMPValue>(), known + 1);
    }
}

TEST_F(Motor, ChangesANumberInAConstantThatTwoMotorsShare)
{
    const MotorHandle other = NewMotor();
    motor->SetPosition(constant);
    other->SetVelocity(constant);
    EXPECT_EQ(motor->SetPosition(7.5), KARSuccess);
    double number = 0.0;
    EXPECT_EQ(other->GetVelocity(number), KARSuccess);
    EXPECT_EQ(number, 7.5);
}

TEST_F(Motor, TellsItsLoaderOfEachNumber)
{
    motor->SetVariable(variable);
    auto* loader = new RecordingMotorLoader(record);
    motor->SetLoader(loader);
    EXPECT_EQ(motor->SetMaxForce(1.0), KARSuccess);
    EXPECT_EQ(motor->SetMaxForce(2.0), KARSuccess);
    EXPECT_EQ(record.calls, (std::vector<std::string>{"SetMaxForce", "SetMaxForce"}));
    Value held;
    motor->GetMaxForce(held);
    EXPECT_EQ(loader->last, held);
    record.answer = KARFailure;
    EXPECT_EQ(motor->SetMaxForce(3.0), KARFailure);
    ExpectReports(2);
    double number = 0.0;
    EXPECT_EQ(motor->GetMaxForce(number), KARSuccess);
    EXPECT_EQ(number, 3.0);
    loader->last = nullptr;
}

TEST_F(Motor, GivesNumbersAndEquationsQuantitiesByDifferentRules)
{
    const Quantity::Enum driven[] = {Quantity::Length, Quantity::Angle};
    for (const ValueOperations& of : AllValues) {
        SCOPED_TRACE(of.name);
        for (std::size_t i = 0; i < std::size(driven); ++i) {
            variable->SetPhysicalQuantity(driven[i]);
            motor = NewMotor();
            motor->SetVariable(variable);
            (*motor.*of.setNumber)(1.0);
            EXPECT_EQ(QuantityOf(Get(of)), of.ofNumber[i]);
            EXPECT_EQ((*motor.*of.setFactory)(&factory), KARSuccess);
            EXPECT_EQ(QuantityOf(Get(of)), of.ofEquation[i]);
        }
        variable->SetPhysicalQuantity(Quantity::Temperature);
        (*motor.*of.setFactory)(&factory);
        EXPECT_EQ(QuantityOf(Get(of)), Quantity::Temperature);
        (*motor.*of.setNumber)(1.0);
        EXPECT_EQ(QuantityOf(Get(of)), Quantity::Temperature);
    }
}

TEST_F(Motor, GetsItsNumberAlthoughTheVariableHasNoQuantity)
{
    variable->SetPhysicalQuantity(Quantity::NoPhysicalQuantity);
    motor->SetVariable(variable);
    EXPECT_EQ(motor->SetPosition(5.0), KARSuccess);
    ExpectReports(3);
    double number = 0.0;
    EXPECT_EQ(motor->GetPosition(number), KARSuccess);
    EXPECT_EQ(number, 5.0);
    EXPECT_EQ(motor->SetVelocity(&factory), KARFailure);
    ExpectReports(3);
    Value found;
    EXPECT_EQ(motor->GetVelocity(found), KARFailure);
}

TEST_F(Motor, MakesAnExpressionOfAnEquation)
{
    for (const ValueOperations& of : AllValues) {
        SCOPED_TRACE(of.name);
        motor = NewMotor();
        motor->SetVariable(variable);
        auto* loader = new RecordingMotorLoader(record);
        motor->SetLoader(loader);
        record.calls.clear();
        KARWBFactory* found = &factory;
        EXPECT_EQ((*motor.*of.getFactory)(found), KARFailure);
        EXPECT_EQ(found, nullptr);
        EXPECT_EQ((*motor.*of.setFactory)(&factory), KARSuccess);
        EXPECT_EQ(motor->GetTargetType(), of.target);
        EXPECT_EQ((*motor.*of.getFactory)(found), KARSuccess);
        EXPECT_EQ(found, &factory);
        const Value made = Get(of);
        ASSERT_TRUE(made.isDerivedFrom(KARMPExpression::ClassInfo()));
        EXPECT_EQ(QOBSharedHandle<KARMPExpression>(made)->GetLinkedVariableCount(), 1);
        EXPECT_FALSE((*motor.*of.hasConstant)());
        double number = 3.0;
        EXPECT_EQ((*motor.*of.getNumber)(number), KARFailure);
        EXPECT_EQ(number, 0.0);
        ExpectReports(2);
        EXPECT_EQ(record.calls, std::vector<std::string>{of.call});
        loader->last = nullptr;
    }
}

TEST_F(Motor, KeepsAFactoryThatItsValueWasNotMadeOf)
{
    motor->SetVariable(variable);
    motor->SetPosition(&factory);
    EXPECT_EQ(motor->SetPosition(5.0), KARSuccess);
    EXPECT_TRUE(motor->HasConstantPosition());
    KARWBFactory* found = nullptr;
    EXPECT_EQ(motor->GetPosition(found), KARSuccess);
    EXPECT_EQ(found, &factory);
}

TEST_F(Motor, RefusesEquationsThatItCannotUse)
{
    EXPECT_EQ(motor->SetVelocity(static_cast<KARWBFactory*>(nullptr)), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(motor->GetTargetType(), Target::NotSpecified);
    KARWBFactory* found = nullptr;
    EXPECT_EQ(motor->SetVelocity(&factory), KARFailure) << "without a variable";
    ExpectReports(1);
    EXPECT_EQ(motor->GetTargetType(), Target::VelocityTarget);
    EXPECT_EQ(motor->GetVelocity(found), KARSuccess) << "the factory is kept all the same";
    EXPECT_EQ(found, &factory);
    motor->SetVariable(variable);
    for (const wchar_t* text : {L"2 *", L"1; 2"}) {
        KARWBFactory unusable;
        Parse(unusable, text, false);
        ExpectReports(1);
        EXPECT_EQ(motor->SetVelocity(&unusable), KARFailure);
        ExpectReports(2);
        EXPECT_EQ(motor->GetVelocity(found), KARSuccess);
        EXPECT_EQ(found, &unusable);
        Value value;
        EXPECT_EQ(motor->GetVelocity(value), KARFailure);
    }
}

TEST_F(Motor, ReportsALoaderThatRefusesAnEquation)
{
    motor->SetVariable(variable);
    auto* loader = new RecordingMotorLoader(record);
    motor->SetLoader(loader);
    record.answer = KARFailure;
    EXPECT_EQ(motor->SetPosition(&factory), KARFailure);
    ExpectReports(2);
    Value held;
    EXPECT_EQ(motor->GetPosition(held), KARSuccess);
    loader->last = nullptr;
}

TEST_F(Motor, HasNoNumberWithoutAConstant)
{
    double number = 3.0;
    EXPECT_EQ(motor->GetPosition(number), KARFailure);
    EXPECT_EQ(number, 0.0);
    ExpectReports(1);
    EXPECT_FALSE(motor->HasConstantPosition());
    motor->SetPosition(Value(KARMPString::create(L"s")));
    EXPECT_FALSE(motor->HasConstantPosition());
    EXPECT_EQ(motor->GetPosition(number), KARFailure);
    ExpectReports(2);
}

TEST_F(Motor, MakesValuesOutsideAWorldThatAreAddedLater)
{
    motor = ConcreteEntity<KARMPMotor>::create(L"outside");
    motor->SetVariable(variable);
    EXPECT_EQ(motor->SetPosition(5.0), KARSuccess);
    EXPECT_EQ(motor->SetVelocity(&factory), KARSuccess);
    EXPECT_EQ(world->Count<KARMPValue>(), 0);
    Value velocity;
    motor->GetVelocity(velocity);
    EXPECT_EQ(QOBSharedHandle<KARMPExpression>(velocity)->GetLinkedVariableCount(), 0);
    EXPECT_EQ(world->Add<KARMPValue>(velocity), KARSuccess);
    EXPECT_EQ(motor->SetPosition(6.0), KARSuccess);
    EXPECT_EQ(world->Count<KARMPValue>(), 1);
}

TEST_F(Motor, IsActivatedOnceByItsHook)
{
    motor->SetLoader(new RecordingMotorLoader(record));
    EXPECT_EQ(motor->Activate(), KARSuccess) << "it is active";
    EXPECT_TRUE(record.calls.empty());
    EXPECT_EQ(motor->Deactivate(), KARSuccess);
    EXPECT_EQ(record.calls, (std::vector<std::string>{"OnDeactivate", "OnDeactivate"}));
    EXPECT_EQ(motor->Deactivate(), KARSuccess);
    EXPECT_EQ(record.calls.size(), 2U);
    record.answer = KARUnchanged;
    EXPECT_EQ(motor->Activate(), KARSuccess);
    EXPECT_EQ(record.calls.back(), "OnActivate");
    EXPECT_EQ(record.calls.size(), 3U);
    EXPECT_EQ(motor->Deactivate(), KARUnchanged);
}

TEST_F(Motor, AnswersOneToActivationWithoutALoader)
{
    EXPECT_EQ(motor->Deactivate(), KARUnchanged);
    EXPECT_FALSE(motor->IsActive());
    EXPECT_EQ(motor->Activate(), KARUnchanged);
    EXPECT_TRUE(motor->IsActive());
    motor->SetLoader(new RecordingEntityLoader(record));
    EXPECT_EQ(motor->Deactivate(), KARUnchanged);
    EXPECT_EQ(record.calls.size(), 1U) << "the base tells any loader";
}

TEST_F(Motor, ReportsLoadersThatFailAtActivation)
{
    motor->SetLoader(new RecordingMotorLoader(record));
    record.answer = KARUnexpected;
    EXPECT_EQ(motor->Deactivate(), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(record.calls.size(), 1U);
    EXPECT_FALSE(motor->IsActive());
    EXPECT_EQ(motor->Activate(), KARFailure);
    ExpectReports(1);
    record.answer = KARSuccess;
    motor->failsToFetch = true;
    EXPECT_EQ(motor->Deactivate(), KARFailure);
    ExpectReports(2);
    EXPECT_EQ(motor->Activate(), KARFailure);
    ExpectReports(2);
}

TEST_F(Motor, AsksItsSubclassForTheLoaderAtActivation)
{
    RecordingMotorLoader loader(record);
    auto* own = new OwnLoaderMotor(loader);
    const QOBSharedHandle<KARMPMotor> held(own);
    EXPECT_EQ(own->Deactivate(), KARSuccess);
    EXPECT_EQ(record.calls, std::vector<std::string>{"OnDeactivate"});
    EXPECT_EQ(own->Activate(), KARSuccess);
    own->answer = KARUnexpected;
    EXPECT_EQ(own->Deactivate(), KARFailure);
    ExpectReports(1);
    EXPECT_EQ(own->Activate(), KARFailure);
    ExpectReports(1);
}

TEST_F(Motor, CopiesItsTargetTypeAlone)
{
    motor->SetVariable(variable);
    motor->SetVelocity(&factory);
    const auto copy = motor->copy();
    EXPECT_EQ(copy->GetTargetType(), Target::VelocityTarget);
    EXPECT_EQ(copy->GetLinkedVariableCount(), 0);
    Value found;
    EXPECT_EQ(copy->GetVelocity(found), KARFailure);
    KARWBFactory* stale = nullptr;
    EXPECT_EQ(copy->GetVelocity(stale), KARFailure);
}

TEST_F(Motor, LetsVariableAndValuesGoWhenOrphaned)
{
    motor->SetVariable(variable);
    for (const ValueOperations& of : AllValues)
        (*motor.*of.setValue)(constant);
    motor->orphanObject();
    EXPECT_EQ(motor->GetLinkedVariableCount(), 0);
    for (const ValueOperations& of : AllValues)
        EXPECT_FALSE(Get(of)) << of.name;
    EXPECT_EQ(constant->getReferenceCount(), 1U);
}

TEST_F(Motor, OutlivesItsWorldInAHandle)
{
    motor->SetVariable(variable);
    motor->SetPosition(5.0);
    Value held;
    motor->GetPosition(held);
    world = nullptr;
    basicWorld = nullptr;
    EXPECT_TRUE(motor->isOrphaned());
    EXPECT_TRUE(held->isOrphaned());
    EXPECT_EQ(motor->GetLinkedVariableCount(), 0);
}

} // namespace

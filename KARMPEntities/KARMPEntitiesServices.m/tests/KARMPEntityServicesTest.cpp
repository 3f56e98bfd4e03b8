#include "KARMPEntityServices.h"
#include "ConcreteEntity.h"
#include "KARMPConstant.h"
#include "KARMPExpression.h"
#include "KARMPPoint.h"
#include "KARMPSerializationServices.h"
#include "KARMPString.h"
#include "KARMPTestFixture.h"
#include "KARMPVariable.h"
#include "KARMPWorld.h"
#include "KARWBEquation.h"
#include "KARWBFactory.h"
#include "QOBBasicWorld.h"

/// A constant of an application's own class.
class ApplicationConstant : public KARMPConstant
{
    KARMP_ENTITY(ApplicationConstant, KARMPConstant)

protected:
    ApplicationConstant() = default;
    ApplicationConstant(const ApplicationConstant& source, CopyMode mode) : Super(source, mode) {}
};
KARMP_DEFINE_ENTITY(ApplicationConstant, "6da4da8b-430f-4301-a3a9-b5dec13e6fbf");

namespace {

using Quantity = KARMPPhysicalQuantity;
using Value = QOBSharedHandle<KARMPValue>;

/// A constant whose getter and setter of the number fail.
class FailingConstant : public KARMPConstant
{
public:
    static Value Make() { return Value(new FailingConstant); }
    KARStatus SetValue(double, const KARString&) override { return KARUnexpected; }
    KARStatus GetValue(double&) const override { return KARUnexpected; }
};

/// An entity that cannot tell whether it is in a world, or which.
class LostEntity : public ConcreteEntity<KARMPPoint>
{
public:
    explicit LostEntity(KARStatus isInWorld) : m_isInWorld(isInWorld) {}
    KARStatus IsInWorld(bool& inWorld) const override
    {
        inWorld = !KARFailed(m_isInWorld);
        return m_isInWorld;
    }
    KARStatus GetWorld(QOBSharedHandle<KARMPWorld>&) const override { return KARUnexpected; }

private:
    KARStatus m_isInWorld;
};

/// Notes the number that a constant has at each report.
class NumberNoter : private KARMPFailedCheckListener
{
public:
    explicit NumberNoter(const Value& value) : m_value(value) {}
    std::vector<double> numbers;

private:
    void OnFailedCheck(const char*, int) override
    {
        numbers.emplace_back();
        QOBSharedHandle<KARMPConstant>(m_value)->GetValue(numbers.back());
    }

    const Value& m_value;
};

/// A world with an entity in it and one outside.
class EntityServices : public KARMPTestFixture
{
protected:
    EntityServices() { basicWorld->addLogicalChild(inside); }

    static Value MakeNumber(const KARMPEntity* holder, double number,
                            Quantity::Enum quantity = Quantity::Length)
    {
        Value value;
        EXPECT_EQ(karmp::MakeConstant(holder, number, quantity, value), KARSuccess);
        return value;
    }
    static double NumberOf(const Value& value)
    {
        double number = -1.0;
        EXPECT_EQ(karmp::ReadConstant(value, number), KARSuccess);
        return number;
    }
    static Quantity::Enum QuantityOf(const Value& value)
    {
        Quantity::Enum quantity = {};
        value->GetPhysicalQuantity(quantity);
        return quantity;
    }
    /// Adds the equations of a text to the factory.
    void Parse(const wchar_t* text, std::size_t reports = 0)
    {
        KARWBEquation* equation = nullptr;
        EXPECT_EQ(KARFailed(KARMPSerializationServices::ParseWBEquation(text, &factory, equation)),
                  reports != 0);
        ExpectReports(reports);
    }

    QOBSharedHandle<QOBBasicWorld> basicWorld = QOBBasicWorld::create(L"basic");
    QOBSharedHandle<KARMPWorld> world = KARMPWorld::create(basicWorld);
    QOBSharedHandle<KARMPPoint> inside = KARMPPoint::create(L"inside");
    QOBSharedHandle<KARMPPoint> outside = KARMPPoint::create(L"outside");
    KARWBFactory factory;
};

TEST_F(EntityServices, ReadTheNumberOfAConstantAlone)
{
    EXPECT_EQ(NumberOf(MakeNumber(nullptr, 2.5)), 2.5);
    for (const Value& value : {Value(), Value(KARMPString::create(L"s")),
                               Value(KARMPExpression::create(L"e")), FailingConstant::Make()}) {
        double number = 7.0;
        EXPECT_EQ(karmp::ReadConstant(value, number), KARFailure);
        EXPECT_EQ(number, 0.0);
        ExpectReports(1);
    }
}

TEST_F(EntityServices, TellConstantsFromOtherValues)
{
    EXPECT_TRUE(karmp::IsConstant(KARMPConstant::create(L"c")));
    EXPECT_FALSE(karmp::IsConstant(KARMPExpression::create(L"e")));
    EXPECT_FALSE(karmp::IsConstant({}));
    EXPECT_FALSE(karmp::IsConstant(ApplicationConstant::create(L"a"))) << "of a class of its own";
}

TEST_F(EntityServices, ChangeTheNumberOfAConstantAlone)
{
    const QOBSharedHandle<KARMPConstant> constant = KARMPConstant::create(L"c");
    constant->SetValue(1.0, "int");
    EXPECT_EQ(karmp::ChangeConstant(constant, 3.5), KARSuccess);
    EXPECT_EQ(NumberOf(constant), 3.5);
    EXPECT_TRUE(constant->IsDouble());
    for (const Value& value :
         {Value(), Value(KARMPString::create(L"s")), FailingConstant::Make()}) {
        EXPECT_EQ(karmp::ChangeConstant(value, 3.5), KARFailure);
        ExpectReports(1);
    }
}

TEST_F(EntityServices, MakeAConstantInTheWorldOfTheHolder)
{
    const Value value = MakeNumber(inside.get(), 4.5, Quantity::Torque);
    EXPECT_TRUE(karmp::IsConstant(value));
    EXPECT_EQ(value->getEntityName(), L"Constant");
    EXPECT_EQ(NumberOf(value), 4.5);
    EXPECT_EQ(QuantityOf(value), Quantity::Torque);
    EXPECT_TRUE(QOBSharedHandle<KARMPConstant>(value)->IsDouble());
    ASSERT_EQ(world->Count<KARMPValue>(), 1);
    Value listed;
    world->Get(0, listed);
    EXPECT_EQ(listed, value);
    EXPECT_TRUE(basicWorld->hasLogicalChild(value));
}

TEST_F(EntityServices, MakeAConstantOutsideAnyWorldForAHolderOutside)
{
    for (const KARMPEntity* holder : {static_cast<const KARMPEntity*>(outside.get()),
                                      static_cast<const KARMPEntity*>(nullptr)}) {
        const Value value = MakeNumber(holder, 4.5);
        bool inWorld = true;
        value->IsInWorld(inWorld);
        EXPECT_FALSE(inWorld);
    }
    EXPECT_EQ(world->Count<KARMPValue>(), 0);
}

TEST_F(EntityServices, KeepAConstantWhoseQuantityIsRefused)
{
    Value value;
    EXPECT_EQ(karmp::MakeConstant(inside.get(), 4.5, Quantity::NoPhysicalQuantity, value),
              KARFailure);
    ExpectReports(2);
    EXPECT_EQ(NumberOf(value), 4.5);
    EXPECT_EQ(world->Count<KARMPValue>(), 1);
}

TEST_F(EntityServices, GiveAConstantItsQuantityBeforeItsNumber)
{
    Value value;
    NumberNoter noter(value);
    karmp::MakeConstant(nullptr, 4.5, Quantity::NoPhysicalQuantity, value);
    EXPECT_EQ(noter.numbers, (std::vector<double>{0.0, 0.0}));
    EXPECT_EQ(NumberOf(value), 4.5);
}

TEST_F(EntityServices, KeepAConstantWhoseWorldIsNotFound)
{
    for (const KARStatus isInWorld : {KARUnexpected, KARSuccess}) {
        const QOBSharedHandle<LostEntity> lost(new LostEntity(isInWorld));
        Value value;
        EXPECT_EQ(karmp::MakeConstant(lost.get(), 4.5, Quantity::Length, value), KARFailure);
        ExpectReports(1);
        EXPECT_EQ(NumberOf(value), 4.5);
        value = nullptr;
        Parse(L"2");
        EXPECT_EQ(karmp::MakeExpression(lost.get(), &factory, Quantity::Length, value), KARFailure);
        EXPECT_FALSE(value);
        ExpectReports(1);
    }
}

TEST_F(EntityServices, MakeAnExpressionLinkedToTheTimeOfTheWorld)
{
    Parse(L"2 * t");
    Value value;
    ASSERT_EQ(karmp::MakeExpression(inside.get(), &factory, Quantity::Force, value), KARSuccess);
    EXPECT_EQ(value->getEntityName(), L"Expression");
    EXPECT_EQ(QuantityOf(value), Quantity::Force);
    ASSERT_EQ(world->Count<KARMPValue>(), 1);
    Value listed;
    world->Get(0, listed);
    EXPECT_EQ(listed, value);
    const QOBSharedHandle<KARMPExpression> expression(value);
    KARWBEquation* equation = nullptr;
    EXPECT_EQ(expression->GetValue(equation), KARSuccess);
    EXPECT_EQ(equation, factory.GetEquationById(0));
    ASSERT_EQ(expression->GetLinkedVariableCount(), 1);
    QOBSharedHandle<KARMPVariable> time;
    world->GetGlobalTime(time);
    QOBSharedHandle<KARMPVariable> linked;
    expression->GetLinkedVariable(0, linked);
    EXPECT_EQ(linked, time);
}

TEST_F(EntityServices, MakeAnExpressionWithoutTimeOutsideAWorld)
{
    Parse(L"2 * t");
    for (const KARMPEntity* holder : {static_cast<const KARMPEntity*>(outside.get()),
                                      static_cast<const KARMPEntity*>(nullptr)}) {
        Value value;
        ASSERT_EQ(karmp::MakeExpression(holder, &factory, Quantity::Force, value), KARSuccess);
        EXPECT_EQ(QOBSharedHandle<KARMPExpression>(value)->GetLinkedVariableCount(), 0);
    }
    EXPECT_EQ(world->Count<KARMPValue>(), 0);
}

TEST_F(EntityServices, RefuseAFactoryOfNoneOrSeveralEquations)
{
    Value value = KARMPString::create(L"s");
    EXPECT_EQ(karmp::MakeExpression(inside.get(), nullptr, Quantity::Force, value), KARFailure);
    EXPECT_FALSE(value);
    ExpectReports(1);
    Parse(L"2 *", 1);
    EXPECT_EQ(karmp::MakeExpression(inside.get(), &factory, Quantity::Force, value), KARFailure);
    ExpectReports(1);
    Parse(L"2; 3", 1);
    value = KARMPString::create(L"s");
    EXPECT_EQ(karmp::MakeExpression(inside.get(), &factory, Quantity::Force, value), KARFailure);
    EXPECT_FALSE(value);
    ExpectReports(1);
    EXPECT_EQ(world->Count<KARMPValue>(), 0);
}

TEST_F(EntityServices, MakeNoExpressionWithoutAQuantity)
{
    Parse(L"2");
    Value value;
    EXPECT_EQ(karmp::MakeExpression(inside.get(), &factory, Quantity::NoPhysicalQuantity, value),
              KARFailure);
    EXPECT_FALSE(value);
    ExpectReports(2);
    EXPECT_EQ(world->Count<KARMPValue>(), 0);
}

TEST_F(EntityServices, MakeNoExpressionInAWorldWithoutTime)
{
    world->SetGlobalTime({});
    Parse(L"2");
    Value value;
    EXPECT_EQ(karmp::MakeExpression(inside.get(), &factory, Quantity::Force, value), KARFailure);
    EXPECT_FALSE(value);
    ExpectReports(2);
}

TEST_F(EntityServices, MapTheQuantitiesOfLengthsAndAnglesOnly)
{
    EXPECT_EQ(karmp::VelocityOf(Quantity::Length), Quantity::Velocity);
    EXPECT_EQ(karmp::VelocityOf(Quantity::Angle), Quantity::AngularVelocity);
    EXPECT_EQ(karmp::AccelerationOf(Quantity::Length), Quantity::Acceleration);
    EXPECT_EQ(karmp::AccelerationOf(Quantity::Angle), Quantity::AngularAcceleration);
    EXPECT_EQ(karmp::ForceOf(Quantity::Length), Quantity::Force);
    EXPECT_EQ(karmp::ForceOf(Quantity::Angle), Quantity::Torque);
    for (int code = 0; code <= Quantity::AngularDamping; ++code) {
        const auto quantity = static_cast<Quantity::Enum>(code);
        if (quantity == Quantity::Length || quantity == Quantity::Angle)
            continue;
        EXPECT_EQ(karmp::VelocityOf(quantity), quantity);
        EXPECT_EQ(karmp::AccelerationOf(quantity), quantity);
        EXPECT_EQ(karmp::ForceOf(quantity), quantity);
    }
}

} // namespace

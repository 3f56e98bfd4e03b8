// Values and motors.
#include "KARMPConstant.h"
#include "KARMPExpression.h"
#include "KARMPModel.h"
#include "KARMPModelCore.h"
#include "KARMPModelNames.h"
#include "KARMPModelValues.h"
#include "KARMPMotor.h"
#include "KARMPSerializationServices.h"
#include "KARMPVariable.h"
#include "KARTextConversion.h"
#include "KARWBEvaluator.h"
#include "KARWBFactory.h"
#include "KARWBVariable.h"

#include <cmath>

namespace karmp::model {

namespace {

using Quantity = KARMPPhysicalQuantity;

// A target of a motor as a constant, which names the quantity of the position also for its rates.
bool SetTarget(Edit& edit, KARMPMotor& motor, const std::string& identifier,
               KARStatus (KARMPMotor::*set)(const KARMPMotor::Value&), Quantity::Enum quantity,
               const std::optional<double>& number)
{
    if (!number)
        return true;
    const auto constant = MakeConstant(edit, identifier, quantity, *number);
    return constant && edit.Check((motor.*set)(constant), "a value", motor);
}

bool MakeControlled(Edit& edit, const QOBSharedHandle<KARMPVariable>& variable)
{
    const ItemInfo* const type = FindItem(variable->getClassInfo(), L"Type");
    return type != nullptr && edit.Set(variable, *type, Value(std::wstring(L"Controlled")));
}

} // namespace

Result<double> Model::Evaluate(const Ref<KARMPExpression>& expression,
                               std::initializer_list<std::pair<std::string_view, double>> variables,
                               Where where) const
{
    const auto failed = [where](std::string text) {
        return Outcome(Problem{std::move(text), KARFailure, where});
    };
    if (!expression)
        return failed("there is no expression");
    if (m_core->IsForeign(*expression))
        return failed("the expression, " + TitleOf(*expression) + ", is of another world");
    KARWBEquation* equation = nullptr;
    KARWBFactory* factory = nullptr;
    double number = 0.0;
    expression->GetValue(equation);
    World()->GetWBFactory(factory);
    if (equation == nullptr || factory == nullptr)
        return failed(TitleOf(*expression) + " has no equation");
    for (const auto& given : variables)
        if (factory->GetVariable(given.first) == nullptr)
            return failed("no equation has a variable \"" + std::string(given.first) + '"');
    for (const auto& [name, value] : variables)
        factory->GetVariable(name)->SetValue(value);
    if (KARFailed(KARWBEvaluator().Evaluate(*equation, number)))
        return failed("the equation of " + TitleOf(*expression) + " has no number");
    return number;
}

QOBSharedHandle<KARMPConstant> MakeConstant(Edit& edit, std::string_view identifier,
                                            Quantity::Enum quantity, double number)
{
    if (!std::isfinite(number)) {
        edit.Fail("the number of \"" + std::string(identifier) + "\" is not finite");
        return {};
    }
    auto constant = edit.Create<KARMPConstant>(identifier);
    const bool isSet =
        constant &&
        edit.Check(constant->SetPhysicalQuantity(quantity), "the quantity", *constant) &&
        edit.Check(constant->SetValue(number, {}), "the number", *constant);
    return isSet ? constant : QOBSharedHandle<KARMPConstant>();
}

Ref<KARMPConstant> Model::Constant(std::string_view identifier, Quantity::Enum quantity,
                                   double number, Where where)
{
    return Ref(m_core->Make<KARMPConstant>(
        where,
        [&](Edit& edit, auto& constant) {
            constant = MakeConstant(edit, identifier, quantity, number);
            return static_cast<bool>(constant);
        }));
}

Ref<KARMPExpression> Model::Expression(std::string_view identifier, Quantity::Enum quantity,
                                       std::string_view equation,
                                       std::span<const Ref<KARMPVariable>> variables, Where where)
{
    return Ref(m_core->Make<KARMPExpression>(
        where,
        [&](Edit& edit, auto& expression) {
            expression = edit.Create<KARMPExpression>(identifier);
            if (!expression ||
                !edit.Check(expression->SetPhysicalQuantity(quantity), "the quantity", *expression))
                return false;
            for (const Ref<KARMPVariable>& variable : variables)
                if (!edit.IsThere(variable.Handle(), "variable of the equation") ||
                    !edit.Check(expression->LinkToVariable(variable), "a variable", *expression))
                    return false;
            KARWBFactory* factory = nullptr;
            KARWBEquation* made = nullptr;
            if (!edit.Check(m_core->World()->GetWBFactory(factory), "the world of the equation",
                            *expression))
                return false;
            if (KARFailed(KARMPSerializationServices::ParseWBEquation(kar::ToWide(equation),
                                                                      factory, made)))
                return edit.Fail('"' + std::string(equation) + "\" is no equation");
            return edit.Check(expression->SetValue(made), "the equation", *expression);
        }));
}

Ref<KARMPExpression> Model::Expression(std::string_view identifier, Quantity::Enum quantity,
                                       std::string_view equation,
                                       std::initializer_list<Ref<KARMPVariable>> variables,
                                       Where where)
{
    return Expression(identifier, quantity, equation,
                      std::span(variables.begin(), variables.size()), where);
}

Ref<KARMPMotor> Model::Motor(std::string_view identifier, const Ref<KARMPVariable>& variable,
                             const MotorOptions& options, Where where)
{
    return Ref(m_core->Make<KARMPMotor>(
        where,
        [&](Edit& edit, auto& motor) {
            if (!edit.IsThere(variable.Handle(), "variable of the motor"))
                return false;
            const int targets = int{options.position.has_value()} +
                                int{options.velocity.has_value()} +
                                int{options.acceleration.has_value()};
            if (targets > 1)
                return edit.Fail("the motor \"" + std::string(identifier) +
                                 "\" is to reach a position, a velocity or an acceleration, and " +
                                 "not several of them");
            const Quantity::Enum quantity = variable->GetPhysicalQuantity();
            const bool hasNumbers = targets > 0 || options.maximum;
            if (hasNumbers && quantity == Quantity::NoPhysicalQuantity)
                return edit.Fail(TitleOf(*variable) +
                                 " has no quantity, in which a motor could have a number");
            motor = edit.Create<KARMPMotor>(identifier);
            const std::string name(identifier);
            const Quantity::Enum force =
                quantity == Quantity::Length ? Quantity::Force : Quantity::Torque;
            return motor && edit.Link(motor, variable.Handle()) && MakeControlled(edit, variable) &&
                   SetTarget(edit, *motor, name + ".maximum", &KARMPMotor::SetMaxForce, force,
                             options.maximum) &&
                   SetTarget(edit, *motor, name + ".position", &KARMPMotor::SetPosition, quantity,
                             options.position) &&
                   SetTarget(edit, *motor, name + ".velocity", &KARMPMotor::SetVelocity, quantity,
                             options.velocity) &&
                   SetTarget(edit, *motor, name + ".acceleration", &KARMPMotor::SetAcceleration,
                             quantity, options.acceleration);
        }));
}

} // namespace karmp::model

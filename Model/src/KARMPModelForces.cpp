// Values, motors and connectors, and geometries on bodies.
#include "KARMPAxisSystem.h"
#include "KARMPBody2D.h"
#include "KARMPConnector.h"
#include "KARMPConstant.h"
#include "KARMPExpression.h"
#include "KARMPGeometry.h"
#include "KARMPLinearSpring.h"
#include "KARMPModel.h"
#include "KARMPModelCore.h"
#include "KARMPModelNames.h"
#include "KARMPModelPlacing.h"
#include "KARMPModelValues.h"
#include "KARMPMotor.h"
#include "KARMPPoint.h"
#include "KARMPSerializationServices.h"
#include "KARMPTorsionSpring.h"
#include "KARMPVariable.h"
#include "KARMathAxis.h"
#include "KARMathDirection.h"
#include "KARMathLine.h"
#include "KARTextConversion.h"

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

// Where a geometry holds a connector: at a point, or at an axis system along its third direction.
KARMathLine HoldOf(const KARMPGeometry& geometry)
{
    KARMathAxis axis;
    KARMathPoint point;
    if (const auto* const frame = dynamic_cast<const KARMPAxisSystem*>(&geometry))
        frame->GetAxisSystem(axis);
    else if (const auto* const at = dynamic_cast<const KARMPPoint*>(&geometry);
             at != nullptr && !KARFailed(at->GetPoint(point)))
        axis.SetOrigin(point);
    return {axis.GetOrigin(), axis.GetThirdDirection()};
}

// The attachments of a spring repeat in memory where its geometries are.
bool SetAttachments(Edit& edit, KARMPEntity& connector, const KARMathLine& first,
                    const KARMathLine& second)
{
    constexpr std::string_view what = "an attachment";
    if (auto* const linear = dynamic_cast<KARMPLinearSpring*>(&connector))
        return edit.Check(linear->SetFirstAttachment(first.GetOrigin()), what, connector) &&
               edit.Check(linear->SetSecondAttachment(second.GetOrigin()), what, connector);
    if (auto* const torsion = dynamic_cast<KARMPTorsionSpring*>(&connector))
        return edit.Check(torsion->SetFirstAttachment(first), what, connector) &&
               edit.Check(torsion->SetSecondAttachment(second), what, connector);
    return true;
}

} // namespace

QOBSharedHandle<KARMPConstant> MakeConstant(Edit& edit, std::string_view identifier,
                                            Quantity::Enum quantity, double number)
{
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
            const Quantity::Enum quantity = variable->GetPhysicalQuantity();
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

Model::Entity Model::AddConnector(const QOBClassInfo& info, std::string_view identifier,
                                  const Ref<KARMPGeometry>& onFirst,
                                  const Ref<KARMPGeometry>& onSecond, Settings settings,
                                  Where where)
{
    return m_core->Make<KARMPEntity>(
        where,
        [&](Edit& edit, Entity& connector) {
            QOBSharedHandle<KARMPBody> first;
            QOBSharedHandle<KARMPBody> second;
            if (!edit.IsThere(onFirst.Handle(), "geometry of the first body") ||
                !edit.IsThere(onSecond.Handle(), "geometry of the second body"))
                return false;
            onFirst->GetBody(first);
            onSecond->GetBody(second);
            if (!first || !second || first == second)
                return edit.Fail("a connector needs geometries of two bodies");
            connector = edit.Create(info, identifier);
            return connector && edit.Link(connector, first, "FirstBody") &&
                   edit.Link(connector, second, "SecondBody") &&
                   edit.Link(connector, onFirst.Handle()) &&
                   edit.Link(connector, onSecond.Handle()) &&
                   SetAttachments(edit, *connector, HoldOf(*onFirst), HoldOf(*onSecond)) &&
                   edit.SetAll(connector, settings);
        });
}

Model::Entity Model::AttachGeometry(const QOBClassInfo& info, std::string_view identifier,
                                    const Ref<KARMPEntity>& body, Settings settings, Where where)
{
    return m_core->Make<KARMPEntity>(
        where,
        [&](Edit& edit, Entity& geometry) {
            geometry = MountOn(edit, info, identifier, body.Handle());
            return geometry && edit.SetAll(geometry, settings);
        });
}

} // namespace karmp::model

#include "KARMPEntityServices.h"

#include "KARMPConstant.h"
#include "KARMPExpression.h"
#include "KARMPFailedCheck.h"
#include "KARMPVariable.h"
#include "KARMPWorld.h"
#include "KARWBFactory.h"

namespace karmp {

namespace {

using Where = KARMPSourceLocation;

/// True when a step succeeded; a failure is a failed check.
bool Check(KARStatus status, Where where = Where::current())
{
    return KARMPVerify(!KARFailed(status), where);
}

/// Finds the world of a holder; null where it stands in none. False when the search fails.
bool FindWorld(const KARMPEntity* holder, QOBSharedHandle<KARMPWorld>& world)
{
    bool inWorld = false;
    if (holder == nullptr || (Check(holder->IsInWorld(inWorld)) && !inWorld))
        return true;
    return inWorld && Check(holder->GetWorld(world));
}

/// Adds a value to a world, if there is one.
bool AddTo(const QOBSharedHandle<KARMPWorld>& world, const QOBSharedHandle<KARMPValue>& value)
{
    const QOBSharedHandle<KARMPWorld> locked(world, QOBSharedBase::WriteLock);
    return !locked || Check(locked->Add<KARMPValue>(value));
}

} // namespace

bool IsConstant(const QOBSharedHandle<KARMPValue>& value)
{
    return value && value->isInstanceOf(KARMPConstant::ClassInfo());
}

KARStatus ReadConstant(const QOBSharedHandle<KARMPValue>& value, double& number)
{
    number = 0.0;
    if (!KARMPVerify(IsConstant(value)))
        return KARFailure;
    const QOBSharedHandle<KARMPConstant> constant(value, QOBSharedBase::WriteLock);
    return Check(constant->GetValue(number)) ? KARSuccess : KARFailure;
}

KARStatus ChangeConstant(const QOBSharedHandle<KARMPValue>& value, double number)
{
    if (!KARMPVerify(IsConstant(value)))
        return KARFailure;
    const QOBSharedHandle<KARMPConstant> constant(value, QOBSharedBase::WriteLock);
    return Check(constant->SetValue(number, KARString())) ? KARSuccess : KARFailure;
}

KARStatus MakeConstant(const KARMPEntity* holder, double number,
                       KARMPPhysicalQuantity::Enum quantity, QOBSharedHandle<KARMPValue>& value)
{
    value = nullptr;
    const QOBSharedHandle<KARMPConstant> constant = KARMPConstant::create(L"Constant");
    if (!KARMPVerify(static_cast<bool>(constant)))
        return KARFailure;
    value = constant;
    bool isWhole = Check(constant->SetPhysicalQuantity(quantity));
    isWhole = Check(constant->SetValue(number, KARString())) && isWhole;
    QOBSharedHandle<KARMPWorld> world;
    isWhole = FindWorld(holder, world) && AddTo(world, value) && isWhole;
    return isWhole ? KARSuccess : KARFailure;
}

KARStatus MakeExpression(const KARMPEntity* holder, const KARWBFactory* factory,
                         KARMPPhysicalQuantity::Enum quantity, QOBSharedHandle<KARMPValue>& value)
{
    value = nullptr;
    if (!KARMPVerify(factory != nullptr && factory->GetNbOfEquations() == 1))
        return KARFailure;
    const QOBSharedHandle<KARMPExpression> expression = KARMPExpression::create(L"Expression");
    QOBSharedHandle<KARMPWorld> world;
    if (!KARMPVerify(static_cast<bool>(expression)) ||
        !Check(expression->SetPhysicalQuantity(quantity)) ||
        !Check(expression->SetValue(factory->GetEquationById(0))) || !FindWorld(holder, world) ||
        !AddTo(world, expression))
        return KARFailure;
    if (world) {
        QOBSharedHandle<KARMPVariable> time;
        if (!Check(world->GetGlobalTime(time)) || !Check(expression->LinkToVariable(time)))
            return KARFailure;
    }
    value = expression;
    return KARSuccess;
}

} // namespace karmp

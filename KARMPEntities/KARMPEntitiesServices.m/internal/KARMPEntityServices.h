// What motors, force actuators and springs share: the values behind their plain numbers and
// equations.
//
// Numbers are in the unit of their physical quantity.
#pragma once

#include "KARMPEnumerations.h"
#include "KARStatus.h"
#include "QOBSharedHandle.h"

class KARMPEntity;
class KARMPValue;
class KARWBFactory;

namespace karmp {

/// True for a value whose class is KARMPConstant itself; false for a null handle.
bool IsConstant(const QOBSharedHandle<KARMPValue>& value);

/// Reads the number of a constant. A null handle and a value of any other class are a failed check
/// and a failure with 0; a failing getter of the constant is a failed check, too.
KARStatus ReadConstant(const QOBSharedHandle<KARMPValue>& value, double& number);

/// Replaces the number of a constant, with an empty type word. A value for which IsConstant is
/// false and a failing setter are a failed check and a failure.
KARStatus ChangeConstant(const QOBSharedHandle<KARMPValue>& value, double number);

/// Makes a constant of a number and adds it to the world of the holder, which may be null or stand
/// in no world. `value` is null when there is no constant. Each later step is tried: one that
/// fails, as the setter of the quantity does with none, is a failed check and a failure, and
/// `value` keeps the constant.
KARStatus MakeConstant(const KARMPEntity* holder, double number,
                       KARMPPhysicalQuantity::Enum quantity, QOBSharedHandle<KARMPValue>& value);

/// Makes an expression of the one equation of a factory, which keeps on owning it, and adds it to
/// the world of the holder, which may be null or stand in no world; there it is linked to the
/// world's time. A factory that is null or has none or several equations and any step that fails
/// are a failed check and a failure with a null `value`.
KARStatus MakeExpression(const KARMPEntity* holder, const KARWBFactory* factory,
                         KARMPPhysicalQuantity::Enum quantity, QOBSharedHandle<KARMPValue>& value);

/// The quantity that belongs to another one: `ofLength` to Length, `ofAngle` to Angle. Any other
/// quantity stays as it is.
constexpr KARMPPhysicalQuantity::Enum MapQuantity(KARMPPhysicalQuantity::Enum quantity,
                                                  KARMPPhysicalQuantity::Enum ofLength,
                                                  KARMPPhysicalQuantity::Enum ofAngle)
{
    if (quantity == KARMPPhysicalQuantity::Length)
        return ofLength;
    return quantity == KARMPPhysicalQuantity::Angle ? ofAngle : quantity;
}

/// The first derivative by time, the second one, and what acts on a length or an angle.
constexpr KARMPPhysicalQuantity::Enum VelocityOf(KARMPPhysicalQuantity::Enum quantity)
{
    return MapQuantity(quantity, KARMPPhysicalQuantity::Velocity,
                       KARMPPhysicalQuantity::AngularVelocity);
}
constexpr KARMPPhysicalQuantity::Enum AccelerationOf(KARMPPhysicalQuantity::Enum quantity)
{
    return MapQuantity(quantity, KARMPPhysicalQuantity::Acceleration,
                       KARMPPhysicalQuantity::AngularAcceleration);
}
constexpr KARMPPhysicalQuantity::Enum ForceOf(KARMPPhysicalQuantity::Enum quantity)
{
    return MapQuantity(quantity, KARMPPhysicalQuantity::Force, KARMPPhysicalQuantity::Torque);
}

} // namespace karmp

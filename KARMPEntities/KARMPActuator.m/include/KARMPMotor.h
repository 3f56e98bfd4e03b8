#pragma once

#include "KARMPActuator.h"

#include <array>
#include <string_view>

class KARIMPMotorLoader;
class KARMPValue;
class KARMPVariable;
class KARWBFactory;

/// Drives one variable towards a target.
///
/// Position, velocity, acceleration and maximum force are each held as a value, which is what is
/// written, read and told to the loader. A number and an equation are two more ways of giving that
/// value. Numbers are in the unit of the value's physical quantity.
///
/// A setter returns 0 when the value is stored and the loader, if there is one, took it. It
/// combines the target type with that of its quantity by a bitwise OR, also when it fails later;
/// the setter of the maximum force leaves the target type. What a failing loader refused stays
/// stored. A null handle and a null factory, which change nothing, a loader that cannot be fetched
/// and one that fails are each a failed check and a failure.
class KARMP_API KARMPMotor : public KARMPActuator
{
    KARMP_ENTITY(KARMPMotor, KARMPActuator)

public:
    using Super::GetLoader;
    using Value = QOBSharedHandle<KARMPValue>;
    using Variable = QOBSharedHandle<KARMPVariable>;

    /// Makes the motor active: 0 when it is active already or has a loader, else 1. A failing base
    /// and a loader that cannot be fetched are a failed check and a failure.
    KARStatus Activate() override;
    /// Makes the motor inactive: 0 when it is so already, 1 without a loader. With one, its
    /// deactivation hook is called a second time after the base called it, and gives the result.
    KARStatus Deactivate() override;
    /// Writes the motor. A failure when the target type or a value could not be written.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the motor. A failure when the target type is missing or a value could not be read. The
    /// values combine the target type that was read with their own.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Gives the loader as a motor's; 0 with null when there is none of that kind.
    virtual KARStatus GetLoader(KARIMPMotorLoader*& loader) const;

    /// Stores the driven variable in place of the one before. Null is a failed check and a failure.
    KARStatus SetVariable(const Variable& variable) { return m_variable.Set(variable); }
    /// Gives the variable; a null handle and a failure without one.
    KARStatus GetVariable(Variable& variable) const { return m_variable.Get(variable); }
    /// The same as SetVariable, but gives 1 for the variable that is set already.
    KARStatus LinkToVariable(const Variable& variable);
    /// Number of driven variables, 0 or 1.
    int GetLinkedVariableCount() const { return m_variable ? 1 : 0; }
    /// Gives the variable at index 0. Another index and no variable are a failed check and a
    /// failure with a null handle.
    KARStatus GetLinkedVariable(int index, Variable& variable) const;

    /// Stores the target type. NotSpecified is a failed check and a failure.
    KARStatus SetTargetType(KARMPMotorTargetType::Enum type);
    KARMPMotorTargetType::Enum GetTargetType() const { return m_targetType; }

    /// Store a value.
    KARStatus SetPosition(const Value& position) { return SetValue(Position, position); }
    KARStatus SetVelocity(const Value& velocity) { return SetValue(Velocity, velocity); }
    KARStatus SetAcceleration(const Value& value) { return SetValue(Acceleration, value); }
    KARStatus SetMaxForce(const Value& maxForce) { return SetValue(MaxForce, maxForce); }
    /// Store a number: in the constant that is there, or in a new one, which has the quantity of
    /// the variable, for the maximum force that of what acts on it. A new one without a variable to
    /// give its quantity is two failed checks and a failure.
    KARStatus SetPosition(double position) { return SetNumber(Position, position); }
    KARStatus SetVelocity(double velocity) { return SetNumber(Velocity, velocity); }
    KARStatus SetAcceleration(double acceleration) { return SetNumber(Acceleration, acceleration); }
    KARStatus SetMaxForce(double maxForce) { return SetNumber(MaxForce, maxForce); }
    /// Store an expression of the one equation of a factory, which is borrowed and kept for the
    /// getter. The expression has the quantity that belongs to that of the variable, without which
    /// the call is a failed check and a failure.
    KARStatus SetPosition(KARWBFactory* position) { return SetEquation(Position, position); }
    KARStatus SetVelocity(KARWBFactory* velocity) { return SetEquation(Velocity, velocity); }
    KARStatus SetAcceleration(KARWBFactory* factory) { return SetEquation(Acceleration, factory); }
    KARStatus SetMaxForce(KARWBFactory* maxForce) { return SetEquation(MaxForce, maxForce); }

    /// Give the value; a null handle and a failure without one.
    KARStatus GetPosition(Value& position) const { return m_values[Position].Get(position); }
    KARStatus GetVelocity(Value& velocity) const { return m_values[Velocity].Get(velocity); }
    KARStatus GetAcceleration(Value& value) const { return m_values[Acceleration].Get(value); }
    KARStatus GetMaxForce(Value& maxForce) const { return m_values[MaxForce].Get(maxForce); }
    /// Give the number of a constant. No value and one that is no constant are a failed check and a
    /// failure with 0.
    KARStatus GetPosition(double& position) const { return GetNumber(Position, position); }
    KARStatus GetVelocity(double& velocity) const { return GetNumber(Velocity, velocity); }
    KARStatus GetAcceleration(double& number) const { return GetNumber(Acceleration, number); }
    KARStatus GetMaxForce(double& maxForce) const { return GetNumber(MaxForce, maxForce); }
    /// Give the factory of the last equation, whatever was set since; a failure with null when
    /// there was none.
    KARStatus GetPosition(KARWBFactory*& factory) const { return GetFactory(Position, factory); }
    KARStatus GetVelocity(KARWBFactory*& factory) const { return GetFactory(Velocity, factory); }
    KARStatus GetAcceleration(KARWBFactory*& factory) const
    {
        return GetFactory(Acceleration, factory);
    }
    KARStatus GetMaxForce(KARWBFactory*& factory) const { return GetFactory(MaxForce, factory); }
    /// True while the value is a constant.
    bool HasConstantPosition() const { return HasConstant(Position); }
    bool HasConstantVelocity() const { return HasConstant(Velocity); }
    bool HasConstantAcceleration() const { return HasConstant(Acceleration); }
    bool HasConstantMaxForce() const { return HasConstant(MaxForce); }

    /// Adds a reference to the value of a quantity, "Position", "Velocity", "Acceleration" or
    /// "MaxForce", under that name. Returns 1 when it is not set and for any other name. A null
    /// serializer and whatever fails are a failed check and a failure.
    KARStatus SerializeValue(KARMPSerializer* serializer, std::wstring_view name) const;
    /// Reads such a reference and sets its value. Returns 1 without an element of the name and for
    /// any other name. A null deserializer, a value that the table does not have and a failing
    /// setter are a failed check and a failure.
    KARStatus DeserializeValue(const KARMPDeserializer* deserializer, std::wstring_view name,
                               const KARMPEntityTable& entities);

protected:
    void ClearContainers() override;

    KARMPMotor();
    /// A copy has the target type, and neither variable nor values.
    KARMPMotor(const KARMPMotor& source, CopyMode mode);
    ~KARMPMotor() override;

private:
    // In the order of documents and of the loader's operations.
    enum Slot : std::size_t { Position, Velocity, Acceleration, MaxForce, SlotCount };

    void CombineTargetType(Slot slot);
    KARStatus SetValue(Slot slot, const Value& value);
    KARStatus SetNumber(Slot slot, double number);
    KARStatus MakeNumber(Slot slot, double number, Value& value) const;
    KARStatus SetEquation(Slot slot, KARWBFactory* factory);
    KARStatus GetNumber(Slot slot, double& number) const;
    KARStatus GetFactory(Slot slot, KARWBFactory*& factory) const;
    bool HasConstant(Slot slot) const;

    KARMPLink<KARMPVariable> m_variable;
    KARMPMotorTargetType::Enum m_targetType = KARMPMotorTargetType::NotSpecified;
    std::array<KARWBFactory*, SlotCount> m_factories{}; // borrowed
    std::array<KARMPLink<KARMPValue>, SlotCount> m_values;
};

#include "KARMPMotor.h"

#include "KARIMPMotorLoader.h"
#include "KARMPContentWalk.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPEntityServices.h"
#include "KARMPFrames.h"
#include "KARMPLinkPrefetch.h"
#include "KARMPLoaderAccess.h"
#include "KARMPSerializationServices.h"
#include "KARMPValue.h"
#include "KARMPVariable.h"

#include <algorithm>
#include <tuple>

KARMP_DEFINE_ENTITY(KARMPMotor, "93D94421-11AE-459b-8A24-58677A143A43");

// The values are written and read by operations of their own, which take a name; the text of a
// document is the same by the list.
template <>
struct karmp::ContentOf<KARMPMotor>
{
    using C = KARMPMotor;
    template <C::Slot Slot>
    static KARStatus Get(const C& motor, QOBSharedHandle<KARMPValue>& value)
    {
        return motor.m_values[Slot].Get(value);
    }
    template <C::Slot Slot>
    static KARStatus Set(C& motor, const QOBSharedHandle<KARMPValue>& value)
    {
        return motor.SetValue(Slot, value);
    }
    template <C::Slot Slot>
    static KARStatus Remove(C& motor, const QOBSharedHandle<KARMPValue>& value)
    {
        return motor.m_values[Slot].Remove(value);
    }
    static constexpr auto List =
        Element(L"Motor", "Drives one variable towards a target.", CountingFrame,
                Reference<&C::m_variable, &C::SetVariable>(L"Variable", "The driven variable."),
                Word<&C::m_targetType>(L"TargetType", "What the motor aims at.").Required(),
                ValueReference<&Get<C::Position>, &Set<C::Position>>(
                    L"Position", "What the position is driven to.")
                    .Removing<&Remove<C::Position>>()
                    .Optional(),
                ValueReference<&Get<C::Velocity>, &Set<C::Velocity>>(
                    L"Velocity", "What the velocity is driven to.")
                    .Removing<&Remove<C::Velocity>>()
                    .Optional(),
                ValueReference<&Get<C::Acceleration>, &Set<C::Acceleration>>(
                    L"Acceleration", "What the acceleration is driven to.")
                    .Removing<&Remove<C::Acceleration>>()
                    .Optional(),
                ValueReference<&Get<C::MaxForce>, &Set<C::MaxForce>>(
                    L"MaxForce", "The largest force or torque of the motor.")
                    .Removing<&Remove<C::MaxForce>>()
                    .Optional())
            .WrittenByList();
};
KARMP_DESCRIBE_CONTENT(KARMPMotor);

namespace {

using Quantity = KARMPPhysicalQuantity::Enum;
using Target = KARMPMotorTargetType;

constexpr Quantity Same(Quantity quantity)
{
    return quantity;
}

// What tells the values apart, in the order of the slots. A number's quantity is the variable's for
// a velocity and an acceleration, too; an equation's is not.
constexpr struct ValueRules
{
    std::wstring_view name;
    Target::Enum target;
    Quantity (*ofNumber)(Quantity variable);
    Quantity (*ofEquation)(Quantity variable);
    KARStatus (KARIMPMotorLoader::*tell)(const QOBSharedHandle<KARMPValue>& value);
} Rules[] = {{L"Position", Target::PositionTarget, &Same, &Same, &KARIMPMotorLoader::SetPosition},
             {L"Velocity", Target::VelocityTarget, &Same, &karmp::VelocityOf,
              &KARIMPMotorLoader::SetVelocity},
             {L"Acceleration", Target::AccelerationTarget, &Same, &karmp::AccelerationOf,
              &KARIMPMotorLoader::SetAcceleration},
             {L"MaxForce", Target::NotSpecified, &karmp::ForceOf, &karmp::ForceOf,
              &KARIMPMotorLoader::SetMaxForce}};

// Index of the value of a name; that behind the last one when there is none.
std::size_t IndexOf(std::wstring_view name)
{
    const auto* const found =
        std::find_if(std::begin(Rules), std::end(Rules),
                     [name](const ValueRules& rules) { return rules.name == name; });
    return static_cast<std::size_t>(found - std::begin(Rules));
}

Quantity QuantityOf(const KARMPLink<KARMPVariable>& link)
{
    const QOBSharedHandle<KARMPVariable> variable(link.Handle(), QOBSharedBase::ReadLock);
    return variable->GetPhysicalQuantity();
}

} // namespace

KARMPMotor::KARMPMotor() = default;
KARMPMotor::KARMPMotor(const KARMPMotor& source, CopyMode mode)
    : Super(source, mode), m_targetType(source.m_targetType)
{}
KARMPMotor::~KARMPMotor()
{
    std::apply([](const auto&... links) { karmp::PrefetchLinked(links...); }, m_values);
}

void KARMPMotor::ClearContainers()
{
    m_variable.Clear();
    for (auto& value : m_values)
        value.Clear();
}

KARStatus KARMPMotor::GetLoader(KARIMPMotorLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPMotor::Activate()
{
    if (IsActive())
        return KARSuccess;
    KARIMPMotorLoader* loader = nullptr;
    if (!KARMPVerify(!KARFailed(Super::Activate())) || !KARMPVerify(!KARFailed(GetLoader(loader))))
        return KARFailure;
    return loader != nullptr ? KARSuccess : KARUnchanged;
}

KARStatus KARMPMotor::Deactivate()
{
    if (!IsActive())
        return KARSuccess;
    KARIMPMotorLoader* loader = nullptr;
    if (!KARMPVerify(!KARFailed(Super::Deactivate())) ||
        !KARMPVerify(!KARFailed(GetLoader(loader))))
        return KARFailure;
    return loader != nullptr ? loader->OnDeactivate() : KARUnchanged;
}

KARStatus KARMPMotor::LinkToVariable(const Variable& variable)
{
    return m_variable.SetOther(variable);
}

KARStatus KARMPMotor::GetLinkedVariable(int index, Variable& variable) const
{
    variable = nullptr;
    if (!KARMPVerify(index == 0 && m_variable))
        return KARFailure;
    variable = m_variable.Handle();
    return KARSuccess;
}

KARStatus KARMPMotor::SetTargetType(KARMPMotorTargetType::Enum type)
{
    if (!KARMPVerify(type != KARMPMotorTargetType::NotSpecified))
        return KARFailure;
    m_targetType = type;
    return KARSuccess;
}

// The types combine as bits: a position and a velocity read as a target acceleration.
void KARMPMotor::CombineTargetType(Slot slot)
{
    m_targetType = static_cast<Target::Enum>(m_targetType | Rules[slot].target);
}

KARStatus KARMPMotor::SetValue(Slot slot, const Value& value)
{
    if (!KARMPVerify(static_cast<bool>(value)))
        return KARFailure;
    CombineTargetType(slot);
    m_values[slot].Assign(value);
    return karmp::PassToLoader<KARIMPMotorLoader>(
        *this, [&](auto& loader) { return (loader.*Rules[slot].tell)(m_values[slot].Handle()); });
}

KARStatus KARMPMotor::SetNumber(Slot slot, double number)
{
    CombineTargetType(slot);
    Value value = m_values[slot].Handle();
    if (karmp::IsConstant(value))
        karmp::ChangeConstant(value, number);
    else
        KARMPVerify(!KARFailed(MakeNumber(slot, number, value)));
    // A constant that was made with failures is set all the same.
    if (!value)
        return KARFailure;
    return KARMPVerify(!KARFailed(SetValue(slot, value))) ? KARSuccess : KARFailure;
}

KARStatus KARMPMotor::MakeNumber(Slot slot, double number, Value& value) const
{
    value = nullptr;
    if (!KARMPVerify(static_cast<bool>(m_variable)))
        return KARFailure;
    return karmp::MakeConstant(this, number, Rules[slot].ofNumber(QuantityOf(m_variable)), value);
}

KARStatus KARMPMotor::SetEquation(Slot slot, KARWBFactory* factory)
{
    if (!KARMPVerify(factory != nullptr))
        return KARFailure;
    CombineTargetType(slot);
    m_factories[slot] = factory;
    if (!KARMPVerify(static_cast<bool>(m_variable)))
        return KARFailure;
    Value value;
    const Quantity quantity = Rules[slot].ofEquation(QuantityOf(m_variable));
    if (!KARMPVerify(!KARFailed(karmp::MakeExpression(this, factory, quantity, value))))
        return KARFailure;
    return KARMPVerify(!KARFailed(SetValue(slot, value))) ? KARSuccess : KARFailure;
}

KARStatus KARMPMotor::GetNumber(Slot slot, double& number) const
{
    number = 0.0;
    const Value& value = m_values[slot].Handle();
    if (!KARMPVerify(value && !KARFailed(karmp::ReadConstant(value, number))))
        return KARFailure;
    return KARSuccess;
}

KARStatus KARMPMotor::GetFactory(Slot slot, KARWBFactory*& factory) const
{
    factory = m_factories[slot];
    return factory != nullptr ? KARSuccess : KARFailure;
}

bool KARMPMotor::HasConstant(Slot slot) const
{
    return karmp::IsConstant(m_values[slot].Handle());
}

KARStatus KARMPMotor::Serialize(KARMPSerializer* serializer) const
{
    karmp::ElementWriter element(serializer, L"Motor");
    if (!element || !element.Base(Super::Serialize(element.Node())))
        return KARFailure;
    if (m_variable) {
        // A variable that cannot be written does not count.
        karmp::ElementWriter uncounted(element);
        uncounted.Reference(L"Variable", m_variable.Handle());
    }
    element.Word(L"TargetType", m_targetType);
    for (const ValueRules& rules : Rules)
        element.Base(SerializeValue(element.Node(), rules.name));
    return element.Status();
}

KARStatus KARMPMotor::SerializeValue(KARMPSerializer* serializer, std::wstring_view name) const
{
    if (!KARMPVerify(serializer != nullptr))
        return KARFailure;
    const std::size_t index = IndexOf(name);
    if (index == SlotCount || !m_values[index])
        return KARUnchanged;
    const KARStatus status =
        KARMPSerializationServices::Serialize(serializer, m_values[index].Handle(), name);
    KARMPVerify(!KARFailed(status));
    return status;
}

KARStatus KARMPMotor::Deserialize(const KARMPDeserializer* deserializer,
                                  const KARMPEntityTable& entities)
{
    karmp::ElementReader element(deserializer, L"Motor");
    if (!element || !element.Base(Super::Deserialize(element.Node(), entities)))
        return KARFailure;
    element.Reference<KARMPVariable>(L"Variable", entities,
                                     [this](const auto& v) { return SetVariable(v); });
    element.Word(L"TargetType", m_targetType, karmp::Absent::ReportAndFail);
    for (const ValueRules& rules : Rules)
        if (KARFailed(DeserializeValue(element.Node(), rules.name, entities)))
            element.Fail();
    return element.Status();
}

KARStatus KARMPMotor::DeserializeValue(const KARMPDeserializer* deserializer,
                                       std::wstring_view name, const KARMPEntityTable& entities)
{
    if (!KARMPVerify(deserializer != nullptr))
        return KARFailure;
    const std::size_t index = IndexOf(name);
    if (index == SlotCount || !deserializer->HasElement(name))
        return KARUnchanged;
    Value value;
    const KARStatus status =
        KARMPSerializationServices::Deserialize(deserializer, name, entities, value);
    if (!KARMPVerify(!KARFailed(status) && value))
        return KARFailure;
    return KARMPVerify(!KARFailed(SetValue(static_cast<Slot>(index), value))) ? KARSuccess
                                                                              : KARFailure;
}

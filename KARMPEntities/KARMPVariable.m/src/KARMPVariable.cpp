#include "KARMPVariable.h"

#include "KARIMPVariableLoader.h"
#include "KARMPConstraint.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPLoaderAccess.h"

KARMP_DEFINE_ENTITY(KARMPVariable, "F7F19E64-062A-4122-A54D-00AF9A9932C0");

namespace {

// Of each optional number the flag and the number.
constexpr karmp::Names<2> ValueNames{L"HasValue", L"Value"};
constexpr karmp::Names<2> MinNames{L"HasMinValue", L"MinValue"};
constexpr karmp::Names<2> MaxNames{L"HasMaxValue", L"MaxValue"};
constexpr karmp::Names<2> MinRestitutionNames{L"HasMinLimitRestitution",
                                              L"MinLimitRestitutionValue"};
constexpr karmp::Names<2> MaxRestitutionNames{L"HasMaxLimitRestitution",
                                              L"MaxLimitRestitutionValue"};

} // namespace

template <>
struct karmp::ContentOf<KARMPVariable>
{
    using C = KARMPVariable;

    static constexpr auto Min =
        OptionalNumber<&C::m_minValue, &C::m_hasMinValue>(
            L"MinValue", MinNames, "The lower bound, in the unit of the quantity.")
            .Through<&C::SetMinValue>();
    static constexpr auto Max =
        OptionalNumber<&C::m_maxValue, &C::m_hasMaxValue>(
            L"MaxValue", MaxNames, "The upper bound, in the unit of the quantity.")
            .Through<&C::SetMaxValue>();
    // The loader is not told of restitutions.
    static constexpr auto MinRestitution =
        OptionalNumber<&C::m_restitutionOnMinLimit, &C::m_hasRestitutionOnMinLimit>(
            L"MinLimitRestitution", MinRestitutionNames,
            "The share of the speed that is kept at the lower bound.");
    static constexpr auto MaxRestitution =
        OptionalNumber<&C::m_restitutionOnMaxLimit, &C::m_hasRestitutionOnMaxLimit>(
            L"MaxLimitRestitution", MaxRestitutionNames,
            "The share of the speed that is kept at the upper bound.");

    // The older form has no flags: every variable has all three numbers, and reading sets none.
    static constexpr auto List = Element(
        L"Variable", "A scalar unknown of the mechanism.", LenientFrame,
        Until(R2017_0,
              Attribute(Number<&C::m_value>(L"value", "The value, in the unit of the quantity."))
                  .Optional(),
              Attribute(Number<&C::m_minValue>(L"minvalue",
                                               "The lower bound, in the unit of the quantity."))
                  .Optional(),
              Attribute(Number<&C::m_maxValue>(L"maxvalue",
                                               "The upper bound, in the unit of the quantity."))
                  .Optional(),
              Code<&C::m_physicalQuantity>(L"PhysicalQuantity", "What the number measures."),
              Since(R2016_0, Code<&C::m_type>(L"Type", "Who decides on the value."))),
        Since(R2017_0,
              OptionalNumber<&C::m_value, &C::m_hasValue>(L"Value", ValueNames,
                                                          "The value, in the unit of the quantity.")
                  .Through<&C::SetValue>(),
              Unequal(karmp::List(Max, Min, MaxRestitution, MinRestitution),
                      karmp::List(Min, Max, MinRestitution, MaxRestitution)),
              Word<&C::m_physicalQuantity>(L"PhysicalQuantity", "What the number measures."),
              Word<&C::m_type>(L"Type", "Who decides on the value.")),
        References<&C::GetLinkedConstraintCount, &C::GetLinkedConstraint, &C::LinkToConstraint>(
            L"Constraints", L"Constraint", "The constraints that use it.")
            .Removing<&C::RemoveConstraint>()
            .OtherSide(L"Variables"));
};
KARMP_DEFINE_CONTENT(KARMPVariable);

KARMPVariable::KARMPVariable() = default;

KARMPVariable::KARMPVariable(const KARMPVariable& source, CopyMode mode)
    : Super(source, mode),
      m_hasValue(source.m_hasValue),
      m_hasMinValue(source.m_hasMinValue),
      m_hasMaxValue(source.m_hasMaxValue),
      m_hasRestitutionOnMinLimit(source.m_hasRestitutionOnMinLimit),
      m_hasRestitutionOnMaxLimit(source.m_hasRestitutionOnMaxLimit),
      m_physicalQuantity(source.m_physicalQuantity),
      m_type(source.m_type),
      m_value(source.m_value),
      m_minValue(source.m_minValue),
      m_maxValue(source.m_maxValue),
      m_restitutionOnMinLimit(source.m_restitutionOnMinLimit),
      m_restitutionOnMaxLimit(source.m_restitutionOnMaxLimit)
{}

KARMPVariable::~KARMPVariable() = default;

void KARMPVariable::ClearContainers()
{
    m_constraints.Clear();
}

KARStatus KARMPVariable::RemoveParent()
{
    const QOBSharedHandle<KARMPVariable> self(this, QOBSharedBase::NoLock);
    KARStatus status = KARSuccess;
    for (int i = 0; i < m_constraints.Count() && !KARFailed(status); ++i) {
        const QOBSharedHandle<KARMPConstraint> constraint(m_constraints.At(i),
                                                          QOBSharedBase::WriteLock);
        status = KARMPVerify(static_cast<bool>(constraint)) ? constraint->RemoveVariable(self)
                                                            : KARFailure;
    }
    return status;
}

KARStatus KARMPVariable::GetLoader(KARIMPVariableLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPVariable::SetValue(double value)
{
    m_value = value;
    m_hasValue = true;
    return karmp::TellLoader<KARIMPVariableLoader>(
        *this, [value](KARIMPVariableLoader& loader) { return loader.SetValue(value); });
}

KARStatus KARMPVariable::GetValue(double& value) const
{
    value = m_value;
    return KARSuccess;
}

KARStatus KARMPVariable::UpdateValue(double value)
{
    m_value = value;
    NotifyUpdate();
    if (GetType() != KARMPVariableType::Controlled)
        return KARSuccess;
    for (int i = 0; i < GetLinkedConstraintCount(); ++i) {
        QOBSharedHandle<KARMPConstraint> constraint;
        if (!KARMPVerify(!KARFailed(GetLinkedConstraint(i, constraint))))
            continue;
        const QOBSharedHandle<KARMPConstraint> locked(constraint, QOBSharedBase::WriteLock);
        if (KARMPVerify(static_cast<bool>(locked)))
            locked->NotifyUpdate();
    }
    return KARSuccess;
}

KARStatus KARMPVariable::SetMinValue(double value)
{
    m_minValue = value;
    m_hasMinValue = true;
    return karmp::TellLoader<KARIMPVariableLoader>(
        *this, [value](KARIMPVariableLoader& loader) { return loader.SetMinValue(value); });
}

KARStatus KARMPVariable::GetMinValue(double& value) const
{
    value = m_minValue;
    return KARSuccess;
}

KARStatus KARMPVariable::SetMaxValue(double value)
{
    m_maxValue = value;
    m_hasMaxValue = true;
    return karmp::TellLoader<KARIMPVariableLoader>(
        *this, [value](KARIMPVariableLoader& loader) { return loader.SetMaxValue(value); });
}

KARStatus KARMPVariable::GetMaxValue(double& value) const
{
    value = m_maxValue;
    return KARSuccess;
}

KARStatus KARMPVariable::SetPhysicalQuantity(KARMPPhysicalQuantity::Enum quantity)
{
    m_physicalQuantity = quantity;
    return KARSuccess;
}

KARStatus KARMPVariable::SetType(KARMPVariableType::Enum type)
{
    m_type = type;
    return KARSuccess;
}

KARStatus KARMPVariable::SetRestitutionOnMinLimit(double restitution)
{
    m_restitutionOnMinLimit = restitution;
    m_hasRestitutionOnMinLimit = true;
    return KARSuccess;
}

KARStatus KARMPVariable::GetRestitutionOnMinLimit(double& restitution) const
{
    restitution = m_restitutionOnMinLimit;
    return KARSuccess;
}

KARStatus KARMPVariable::SetRestitutionOnMaxLimit(double restitution)
{
    m_restitutionOnMaxLimit = restitution;
    m_hasRestitutionOnMaxLimit = true;
    return KARSuccess;
}

KARStatus KARMPVariable::GetRestitutionOnMaxLimit(double& restitution) const
{
    restitution = m_restitutionOnMaxLimit;
    return KARSuccess;
}

KARStatus KARMPVariable::Fix()
{
    return karmp::TellLoader<KARIMPVariableLoader>(
        *this, [](KARIMPVariableLoader& loader) { return loader.Fix(); });
}

KARStatus KARMPVariable::Unfix()
{
    return karmp::TellLoader<KARIMPVariableLoader>(
        *this, [](KARIMPVariableLoader& loader) { return loader.Unfix(); });
}

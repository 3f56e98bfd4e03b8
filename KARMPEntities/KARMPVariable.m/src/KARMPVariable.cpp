#include "KARMPVariable.h"

#include "KARIMPVariableLoader.h"
#include "KARMPConstraint.h"
#include "KARMPLoaderAccess.h"

KARMP_DEFINE_ENTITY(KARMPVariable, "F7F19E64-062A-4122-A54D-00AF9A9932C0");

KARMPVariable::KARMPVariable() = default;

KARMPVariable::KARMPVariable(const KARMPVariable& source, CopyMode mode)
    : Super(source, mode),
      m_value(source.m_value),
      m_minValue(source.m_minValue),
      m_maxValue(source.m_maxValue),
      m_restitutionOnMinLimit(source.m_restitutionOnMinLimit),
      m_restitutionOnMaxLimit(source.m_restitutionOnMaxLimit),
      m_hasValue(source.m_hasValue),
      m_hasMinValue(source.m_hasMinValue),
      m_hasMaxValue(source.m_hasMaxValue),
      m_hasRestitutionOnMinLimit(source.m_hasRestitutionOnMinLimit),
      m_hasRestitutionOnMaxLimit(source.m_hasRestitutionOnMaxLimit),
      m_physicalQuantity(source.m_physicalQuantity),
      m_type(source.m_type)
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

KARStatus KARMPVariable::LinkToConstraint(const QOBSharedHandle<KARMPConstraint>& constraint)
{
    return m_constraints.Add(constraint);
}

KARStatus KARMPVariable::RemoveConstraint(const QOBSharedHandle<KARMPConstraint>& constraint)
{
    return m_constraints.Remove(constraint);
}

KARStatus KARMPVariable::GetLinkedConstraint(int index,
                                             QOBSharedHandle<KARMPConstraint>& constraint) const
{
    return m_constraints.Get(index, constraint);
}

int KARMPVariable::GetLinkedConstraintCount() const
{
    return m_constraints.Count();
}

bool KARMPVariable::HasValue() const
{
    return m_hasValue;
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

bool KARMPVariable::HasMinValue() const
{
    return m_hasMinValue;
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

bool KARMPVariable::HasMaxValue() const
{
    return m_hasMaxValue;
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

KARMPPhysicalQuantity::Enum KARMPVariable::GetPhysicalQuantity() const
{
    return m_physicalQuantity;
}

KARStatus KARMPVariable::SetType(KARMPVariableType::Enum type)
{
    m_type = type;
    return KARSuccess;
}

KARMPVariableType::Enum KARMPVariable::GetType() const
{
    return m_type;
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

// A loader that is asked for and cannot be had is a failed check and a failure; what was stored
// stays.
#pragma once

#include "KARMPEntity.h"

class KARIMPVariableLoader;
class KARMPConstraint;

/// A scalar unknown of the mechanism: a number with optional bounds, an optional restitution at
/// each bound, and the constraints that use it. Numbers are in the unit of the quantity.
class KARMP_API KARMPVariable : public KARMPEntity
{
    KARMP_ENTITY(KARMPVariable, KARMPEntity)

public:
    using Super::GetLoader;

    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Gives the loader as a variable's; 0 with null when there is none of that kind.
    virtual KARStatus GetLoader(KARIMPVariableLoader*& loader) const;
    /// Links a constraint that uses the variable. A null handle is a failed check and a failure; a
    /// constraint that is linked already gives 1.
    virtual KARStatus LinkToConstraint(const QOBSharedHandle<KARMPConstraint>& constraint)
    {
        return m_constraints.Add(constraint);
    }
    /// Gives the linked constraint at an index from 0; outside the list a null handle and a
    /// failure.
    virtual KARStatus GetLinkedConstraint(int index,
                                          QOBSharedHandle<KARMPConstraint>& constraint) const
    {
        return m_constraints.Get(index, constraint);
    }
    /// Number of linked constraints.
    virtual int GetLinkedConstraintCount() const { return m_constraints.Count(); }

    /// True once SetValue was called.
    virtual bool HasValue() const { return m_hasValue; }
    /// Stores the value and tells the loader, whose answer is the result.
    virtual KARStatus SetValue(double value);
    /// Gives the value, set or not; always 0. The same holds for the bounds and restitutions.
    virtual KARStatus GetValue(double& value) const;
    /// Takes a result: stores the value without HasValue and without the loader and tells the
    /// subscribers, those of the linked constraints too when the variable is controlled; always 0.
    virtual KARStatus UpdateValue(double value);

    /// The lower bound, under the rules of the value.
    virtual bool HasMinValue() const { return m_hasMinValue; }
    virtual KARStatus SetMinValue(double value);
    virtual KARStatus GetMinValue(double& value) const;
    /// The upper bound, under the rules of the value.
    virtual bool HasMaxValue() const { return m_hasMaxValue; }
    virtual KARStatus SetMaxValue(double value);
    virtual KARStatus GetMaxValue(double& value) const;

    /// What the number measures; always 0.
    virtual KARStatus SetPhysicalQuantity(KARMPPhysicalQuantity::Enum quantity);
    virtual KARMPPhysicalQuantity::Enum GetPhysicalQuantity() const { return m_physicalQuantity; }
    /// Who decides on the value; always 0.
    virtual KARStatus SetType(KARMPVariableType::Enum type);
    virtual KARMPVariableType::Enum GetType() const { return m_type; }

    /// Share of the speed that is kept at the lower bound. The loader is not told; always 0.
    bool HasRestitutionOnMinLimit() const { return m_hasRestitutionOnMinLimit; }
    KARStatus SetRestitutionOnMinLimit(double restitution);
    KARStatus GetRestitutionOnMinLimit(double& restitution) const;
    /// The same at the upper bound.
    bool HasRestitutionOnMaxLimit() const { return m_hasRestitutionOnMaxLimit; }
    KARStatus SetRestitutionOnMaxLimit(double restitution);
    KARStatus GetRestitutionOnMaxLimit(double& restitution) const;

    /// Tells the loader to keep the value, or to let it vary again; nothing is stored. The loader's
    /// answer is the result, 0 without one.
    KARStatus Fix();
    KARStatus Unfix();

    /// Takes a constraint out and keeps the order of the rest. A null handle is a failed check and
    /// a failure; a constraint that is not linked gives 1.
    KARStatus RemoveConstraint(const QOBSharedHandle<KARMPConstraint>& constraint)
    {
        return m_constraints.Remove(constraint);
    }

protected:
    void ClearContainers() override;
    KARStatus RemoveParent() override;

    KARMPVariable();
    /// A copy takes everything but the links.
    KARMPVariable(const KARMPVariable& source, CopyMode mode);
    ~KARMPVariable() override;

private:
    /// True when a subclass leaves the links to this class, which may then be read and made
    /// together.
    template <class T>
    static constexpr bool HasFamilyLinks = requires
    {
        requires karmp::AreMembersOf<KARMPVariable>(&T::LinkToConstraint, &T::GetLinkedConstraint,
                                                    &T::GetLinkedConstraintCount);
    };

    // First, where the base leaves space.
    bool m_hasValue = false;
    bool m_hasMinValue = false;
    bool m_hasMaxValue = false;
    bool m_hasRestitutionOnMinLimit = false;
    bool m_hasRestitutionOnMaxLimit = false;
    KARMPPhysicalQuantity::Enum m_physicalQuantity = KARMPPhysicalQuantity::NoPhysicalQuantity;
    KARMPVariableType::Enum m_type = KARMPVariableType::Free;
    double m_value = 0.0;
    double m_minValue = 0.0;
    double m_maxValue = 0.0;
    double m_restitutionOnMinLimit = 0.0;
    double m_restitutionOnMaxLimit = 0.0;
    KARMPLinkList<KARMPConstraint> m_constraints;
};

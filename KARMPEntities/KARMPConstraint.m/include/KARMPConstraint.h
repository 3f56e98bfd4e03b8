#pragma once

#include "KARMPConstraintParameter.h"
#include "KARMPEntity.h"
#include "KARMPLink.h"

#include <vector>

class KARIMPConstraintLoader;
class KARMPGeometry;
class KARMPJoint;
class KARMPSensor;
class KARMPVariable;
struct KARMPOptionsOrientation;

/// Base of every condition that a model places on its geometry: geometric constraints, the
/// constraints that stand for joints, and equations.
///
/// A constraint keeps its links and parameters and computes nothing: whether it holds, and its
/// value, is asked of the solver's loader each time.
class KARMP_API KARMPConstraint : public KARMPEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPConstraint, KARMPEntity)

public:
    /// Writes links and parameters into the constraint's element. A null element and a failure of
    /// the base are a failed check and a failure; later failures are reported and give 0.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads this constraint's side of its links, and its parameters, with the statuses of
    /// Serialize.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

protected:
    /// Drops the links to geometries, variables and sensors.
    void ClearContainers() override;
    /// Takes the constraint out of the lists of its joint, geometries, variables and sensors, up to
    /// the first failure. The joint is dropped in any case.
    KARStatus RemoveParent() override;

public:
    using Super::GetLoader;
    /// Gives the loader, null without one.
    virtual KARStatus GetLoader(KARIMPConstraintLoader*& loader) const;

    /// Stores the joint that the constraint belongs to, null included; always 0.
    virtual KARStatus SetJoint(const QOBSharedHandle<KARMPJoint>& joint);
    /// Gives the joint; a null handle and a failure without one.
    virtual KARStatus GetJoint(QOBSharedHandle<KARMPJoint>& joint) const
    {
        return m_joint.Get(joint);
    }

    /// Appends a link. A null handle is a failed check and a failure; one that is linked already
    /// gives 1. The same holds for variables and sensors.
    virtual KARStatus LinkToGeometry(const QOBSharedHandle<KARMPGeometry>& geometry);
    /// Gives the link at an index from 0; outside the list a null handle and a failure. The
    /// same holds for variables and sensors.
    virtual KARStatus GetLinkedGeometry(int index, QOBSharedHandle<KARMPGeometry>& geometry) const;
    virtual int GetLinkedGeometryCount() const { return m_geometries.Count(); }
    virtual KARStatus LinkToVariable(const QOBSharedHandle<KARMPVariable>& variable);
    virtual KARStatus GetLinkedVariable(int index, QOBSharedHandle<KARMPVariable>& variable) const;
    virtual int GetLinkedVariableCount() const { return m_variables.Count(); }
    virtual KARStatus LinkToSensor(const QOBSharedHandle<KARMPSensor>& sensor);
    virtual KARStatus GetLinkedSensor(int index, QOBSharedHandle<KARMPSensor>& sensor) const;
    virtual int GetLinkedSensorCount() const { return m_sensors.Count(); }

    /// Appends a parameter, null included, and takes it over; always 0.
    virtual KARStatus AddConstraintParameter(KARMPConstraintParameter* parameter);
    /// Gives the parameter at an index from 0, which the constraint keeps; outside the list a
    /// failure, with the argument left alone.
    virtual KARStatus GetConstraintParameter(int index, KARMPConstraintParameter*& parameter) const;
    virtual int GetConstraintParameterCount() const
    {
        return static_cast<int>(m_parameters.size());
    }

    /// Asks the loader whether the constraint holds and by how much it is missed; false without
    /// one. A failing GetLoader is a failed check, here and in the questions that follow.
    virtual bool IsSatisfied(double& residual) const;
    /// Asks the loader whether the constraint holds, within the compatibility scope of the
    /// geometric kernel; false without one.
    virtual bool IsSatisfied() const;
    /// Asks the loader for value and rate of one of the constraint's variables; a failure without a
    /// loader.
    virtual KARStatus CurrentValue(int index, double& value, double& rate) const;
    /// Asks the loader for the value of the constraint; a failure without one.
    virtual KARStatus CurrentValue(double& value) const;
    /// Asks the loader for its options; a failure without one.
    virtual KARStatus CurrentOptions(KARMPOptionsOrientation& options) const;

    /// Takes a link out. A null handle is a failed check and a failure; one that is not linked
    /// gives 1. The same holds for joint, variables and sensors.
    KARStatus RemoveGeometry(const QOBSharedHandle<KARMPGeometry>& geometry);
    KARStatus RemoveJoint(const QOBSharedHandle<KARMPJoint>& joint);
    KARStatus RemoveVariable(const QOBSharedHandle<KARMPVariable>& variable);
    KARStatus RemoveSensor(const QOBSharedHandle<KARMPSensor>& sensor);

protected:
    KARMPConstraint();
    /// A copy is as new: it takes neither links nor parameters nor anything of the entity base.
    KARMPConstraint(const KARMPConstraint& source, CopyMode mode);
    ~KARMPConstraint() override;

private:
    void WriteParameters(KARMPSerializer* element) const;
    void ReadParameters(const KARMPDeserializer* element);

    /// True when a subclass leaves the links to this class, which may then be read and made
    /// together.
    template <class T>
    static constexpr bool HasFamilyLinks = requires
    {
        requires karmp::AreMembersOf<KARMPConstraint>(
            &T::SetJoint, &T::GetJoint, &T::LinkToGeometry, &T::GetLinkedGeometry,
            &T::GetLinkedGeometryCount, &T::LinkToVariable, &T::GetLinkedVariable,
            &T::GetLinkedVariableCount, &T::LinkToSensor, &T::GetLinkedSensor,
            &T::GetLinkedSensorCount);
    };

    KARMPLink<KARMPJoint> m_joint;
    KARMPLinkList<KARMPGeometry> m_geometries;
    KARMPLinkList<KARMPVariable> m_variables;
    KARMPLinkList<KARMPSensor> m_sensors;
    std::vector<KARMPConstraintParameter*> m_parameters; // owned; one may be listed twice
};

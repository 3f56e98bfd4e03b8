// In lists of bodies and of constraints a null handle is a failed check and a failure, and an entry
// that is listed already, or is not listed, gives 1. An entry is got by its index from 0; outside
// the list that gives a null handle and a failure.
#pragma once

#include "KARMPBodyLinkList.h"
#include "KARMPEntity.h"

#include <vector>

class KARIMPJointLoader;
class KARMPBody;
class KARMPConstraint;
class KARMathAxis;

/// Base of the joints of a mechanism: a joint links bodies and holds the constraints that realise
/// it.
///
/// What a joint is to the solver comes from its loader alone. Its frames, one for each linked body,
/// come from the loader or are computed from the bodies and the constraints' geometry.
class KARMP_API KARMPJoint : public KARMPEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPJoint, KARMPEntity)

public:
    /// Writes bodies and constraints into the kind's element. Failures inside are reported; 0 but
    /// for a null serializer, which is a failed check and a failure.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads bodies and constraints from the kind's element. A null deserializer or a failing base
    /// is a failed check and a failure.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Gives the joint's loader, null without one. A failing fetch is a failed check and a
    /// failure.
    virtual KARStatus GetLoader(KARIMPJointLoader*& loader) const;
    using Super::GetLoader;
    /// Gives the frames, one for each linked body. With `compute` they are appended as
    /// KARMPJointFramesServices::ComputeFrames tells, in each body's coordinates with `local`.
    /// Otherwise the loader gives them, whatever `local` says: its status, 1 without a loader, a
    /// failed check and a failure when fetching it fails.
    virtual KARStatus GetFrames(std::vector<KARMathAxis>& frames, unsigned char local,
                                unsigned char compute) const;
    /// Number of frames that the loader gives.
    virtual int GetFrameCount() const;
    /// Gives one of the loader's frames by its index from 0; a failure outside of them.
    virtual KARStatus GetFrame(int index, KARMathAxis& frame, unsigned char local) const;
    /// Asks the loader for the kind of joint that the solver takes this one for: its status, 1 with
    /// `type` untouched without a loader, a failed check and a failure when fetching it fails.
    virtual KARStatus GetSolverEquivalentJointType(
        KARMPSolverEquivalentJointType::Enum& type) const;
    /// Asks the loader's second reading of the kind. No loader is a failed check and a failure too.
    virtual KARStatus GetSolverEquivalentJointType2(
        KARMPSolverEquivalentJointType::Enum& type) const;
    /// Stores a kind, which the two getters do not look at; always 0.
    virtual KARStatus SetSolverEquivalentJointType(KARMPSolverEquivalentJointType::Enum& type);

    /// Links a body to the joint; KARMPBody::LinkToJoint makes the other side. A body that is
    /// linked already keeps its orientation.
    KARStatus LinkToBody(const QOBSharedHandle<KARMPBody>& body,
                         KARMPBodyOrientation::Enum orientation)
    {
        return m_bodies.Add(body, orientation);
    }
    /// Takes a body out with its orientation.
    KARStatus RemoveBody(const QOBSharedHandle<KARMPBody>& body) { return m_bodies.Remove(body); }
    int GetLinkedBodyCount() const { return m_bodies.Count(); }
    KARStatus GetLinkedBody(int index, QOBSharedHandle<KARMPBody>& body) const
    {
        return m_bodies.Get(index, body);
    }
    /// The same with the orientation, which stays as it was outside the list.
    KARStatus GetLinkedBody(int index, QOBSharedHandle<KARMPBody>& body,
                            KARMPBodyOrientation::Enum& orientation) const
    {
        return m_bodies.Get(index, body, orientation);
    }

    /// Appends a constraint; KARMPConstraint::SetJoint makes the other side.
    KARStatus AddConstraint(const QOBSharedHandle<KARMPConstraint>& constraint)
    {
        return m_constraints.Add(constraint);
    }
    KARStatus RemoveConstraint(const QOBSharedHandle<KARMPConstraint>& constraint)
    {
        return m_constraints.Remove(constraint);
    }
    int GetConstraintCount() const { return m_constraints.Count(); }
    KARStatus GetConstraint(int index, QOBSharedHandle<KARMPConstraint>& constraint) const
    {
        return m_constraints.Get(index, constraint);
    }

protected:
    void ClearContainers() override;
    KARStatus RemoveParent() override;

    /// Places a constraint before an index, without a test for duplicates.
    KARStatus InsertConstraint(int index, const QOBSharedHandle<KARMPConstraint>& constraint)
    {
        return m_constraints.Insert(index, constraint);
    }

    KARMPJoint();
    /// A copy has no bodies and no constraints.
    KARMPJoint(const KARMPJoint& source, CopyMode mode);
    ~KARMPJoint() override;

private:
    /// True when a subclass leaves the links to this class, which may then be read and made
    /// together.
    template <class T>
    static constexpr bool HasFamilyLinks = requires
    {
        requires karmp::AreMembersOf<KARMPJoint>(&T::LinkToBody, &T::AddConstraint,
                                                 &T::GetLinkedBodyCount, &T::GetConstraintCount);
    };

    KARMPLinkList<KARMPConstraint> m_constraints;
    KARMPBodyLinkList<KARMPBody> m_bodies;
    KARMPSolverEquivalentJointType::Enum m_solverEquivalentType = {};
};

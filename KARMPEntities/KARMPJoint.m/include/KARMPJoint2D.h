// Lists behave as those of KARMPJoint.h, with planar bodies. The operations here hide those of the
// same name there: what is called through a KARMPJoint works on that class's lists, which a planar
// joint leaves empty.
#pragma once

#include "KARMPJoint.h"

class KARIMPJoint2DLoader;
class KARMPBody2D;
class KARMathAxis2D;

/// Base of the joints of a planar mechanism: it links planar bodies and holds the constraints that
/// realise it.
///
/// Its frames in the plane come from the solver's planar loader alone; none are computed.
class KARMP_API KARMPJoint2D : public KARMPJoint
{
    KARMP_ABSTRACT_ENTITY(KARMPJoint2D, KARMPJoint)

public:
    using Super::GetFrame;
    using Super::GetFrames;
    using Super::GetLoader;

    /// Writes planar bodies and constraints into the kind's element. Failures inside are reported;
    /// 0 but for a null serializer, which is a failed check and a failure.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads planar bodies and constraints from the kind's element. A null deserializer or a
    /// failing base is a failed check and a failure.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Number of planar frames that the loader gives.
    int GetFrameCount() const override;
    /// Asks the planar loader for the kind of joint that the solver takes this one for: its status,
    /// 1 with `type` untouched without a loader, a failed check and a failure when fetching it
    /// fails.
    KARStatus GetSolverEquivalentJointType(
        KARMPSolverEquivalentJointType::Enum& type) const override;
    /// Stores a kind, which the getters do not look at; always 0.
    KARStatus SetSolverEquivalentJointType(KARMPSolverEquivalentJointType::Enum& type) override;
    /// Gives the joint's planar loader, null without one. A failing fetch is a failed check and a
    /// failure.
    virtual KARStatus GetLoader(KARIMPJoint2DLoader*& loader) const;
    /// Has the planar loader give the frames, in the axes of the plane: its status, 1 without a
    /// loader, a failed check and a failure when fetching it fails.
    virtual KARStatus GetFrames(std::vector<KARMathAxis2D>& frames) const;
    /// Gives one of them by its index from 0; a failure outside of them.
    virtual KARStatus GetFrame(int index, KARMathAxis2D& frame) const;

    /// Links a body to the joint; KARMPBody2D::LinkToJoint makes the other side. A body that is
    /// linked already keeps its orientation.
    KARStatus LinkToBody(const QOBSharedHandle<KARMPBody2D>& body,
                         KARMPBodyOrientation::Enum orientation)
    {
        return m_bodies.Add(body, orientation);
    }
    /// Takes a body out with its orientation.
    KARStatus RemoveBody(const QOBSharedHandle<KARMPBody2D>& body) { return m_bodies.Remove(body); }
    int GetLinkedBodyCount() const { return m_bodies.Count(); }
    KARStatus GetLinkedBody(int index, QOBSharedHandle<KARMPBody2D>& body) const
    {
        return m_bodies.Get(index, body);
    }
    /// The same with the orientation, which stays as it was outside the list.
    KARStatus GetLinkedBody(int index, QOBSharedHandle<KARMPBody2D>& body,
                            KARMPBodyOrientation::Enum& orientation) const
    {
        return m_bodies.Get(index, body, orientation);
    }

    /// Appends a constraint; KARMPConstraint::SetJoint makes the other side. Its joint is a
    /// KARMPJoint there, so that a constraint that is torn down stays in this list.
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

    KARMPJoint2D();
    /// A copy has no bodies and no constraints.
    KARMPJoint2D(const KARMPJoint2D& source, CopyMode mode);
    ~KARMPJoint2D() override;

private:
    KARMPLinkList<KARMPConstraint> m_constraints;
    KARMPBodyLinkList<KARMPBody2D> m_bodies;
    KARMPSolverEquivalentJointType::Enum m_solverEquivalentType = {};
};

// Operations that return a status give 0 where nothing else is told. A loader that is asked for and
// cannot be had is a failed check.
#pragma once

#include "KARMPEntity.h"
#include "KARMPMotionState.h"
#include "KARMPPointWhereToComputeVelAndAcc.h"
#include "KARMath3x3Matrix.h"
#include "KARMathPoint.h"
#include "KARMathTransformation.h"
#include "KARMathVector.h"
#include "KARUnicodeString.h"

class KARIMPBodyLoader;
class KARMPConnector;
class KARMPDisplacementSensor;
class KARMPGeometry;
class KARMPJoint;
class KARMPShape;
class KARMathAxis;
class KARMathLine;
class QOBBasicBody3D;

namespace karmp {

template <class Body, class Transformation>
class BodyWalk;
class BodyMove;

} // namespace karmp

/// A rigid body of a mechanism: its position, motion and mass, and the hub to which geometries,
/// joints, shapes, connectors and a displacement sensor are linked.
///
/// Bodies form a tree through a father and a list of children; a child that is neither floating nor
/// fixed follows its father. Impacted children are a looser list: they stay where they are and are
/// told when this body moves. A body of the world model may stand behind a body, as its neighbour;
/// it is then the authority on the position.
///
/// The position takes points from the body's axes to the world's. The library stores the mass, the
/// centre of gravity, the inertia matrix, the velocities and the accelerations as they are given
/// and computes nothing with them: about which point and in which axes inertia and motion are meant
/// is agreed between the application and the solver.
class KARMP_API KARMPBody : public KARMPEntity
{
    KARMP_ENTITY(KARMPBody, KARMPEntity)

public:
    /// Where velocities and accelerations are wanted; the loader knows what to make of it.
    using PointWhereToComputeVelAndAcc = karmp::PointWhereToComputeVelAndAcc;
    using enum karmp::PointWhereToComputeVelAndAcc;

    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Gives the body's loader, null without one. A failing fetch is a failed check and a failure.
    virtual KARStatus GetLoader(KARIMPBodyLoader*& loader) const;
    using Super::GetLoader;

    /// Links an entity to this body, not this body to it. A null handle is a failed check and a
    /// failure; an entity that is linked already gives 1.
    KARStatus AddGeometry(const QOBSharedHandle<KARMPGeometry>& geometry)
    {
        return m_geometries.Add(geometry);
    }
    KARStatus LinkToJoint(const QOBSharedHandle<KARMPJoint>& joint) { return m_joints.Add(joint); }
    KARStatus LinkToShape(const QOBSharedHandle<KARMPShape>& shape) { return m_shapes.Add(shape); }
    KARStatus LinkToConnector(const QOBSharedHandle<KARMPConnector>& connector)
    {
        return m_connectors.Add(connector);
    }
    /// Lists a body that must be refreshed when this one moves, under the same rule.
    KARStatus AddImpactedChildBody(const QOBSharedHandle<KARMPBody>& body)
    {
        return m_impactedChildren.Add(body);
    }
    /// Takes an entity out of its list. A null handle is a failed check and a failure; an entity
    /// that is not linked gives 1.
    KARStatus RemoveGeometry(const QOBSharedHandle<KARMPGeometry>& geometry)
    {
        return m_geometries.Remove(geometry);
    }
    KARStatus RemoveJoint(const QOBSharedHandle<KARMPJoint>& joint)
    {
        return m_joints.Remove(joint);
    }
    KARStatus RemoveShape(const QOBSharedHandle<KARMPShape>& shape)
    {
        return m_shapes.Remove(shape);
    }
    KARStatus RemoveConnector(const QOBSharedHandle<KARMPConnector>& connector)
    {
        return m_connectors.Remove(connector);
    }
    /// Takes a body out of the impacted children, under the same rule; children stay.
    KARStatus RemoveBody(const QOBSharedHandle<KARMPBody>& body)
    {
        return m_impactedChildren.Remove(body);
    }
    /// Lengths of the lists.
    int GetGeometryCount() const { return m_geometries.Count(); }
    int GetLinkedJointCount() const { return m_joints.Count(); }
    int GetLinkedShapeCount() const { return m_shapes.Count(); }
    int GetLinkedConnectorCount() const { return m_connectors.Count(); }
    int GetImpactedChildBodyCount() const { return m_impactedChildren.Count(); }
    int GetChildrenBodyCount() const { return m_children.Count(); }
    /// Gives the entry at an index from 0; outside the list a null handle and a failure.
    KARStatus GetGeometry(int index, QOBSharedHandle<KARMPGeometry>& geometry) const
    {
        return m_geometries.Get(index, geometry);
    }
    KARStatus GetLinkedJoint(int index, QOBSharedHandle<KARMPJoint>& joint) const
    {
        return m_joints.Get(index, joint);
    }
    KARStatus GetLinkedShape(int index, QOBSharedHandle<KARMPShape>& shape) const
    {
        return m_shapes.Get(index, shape);
    }
    KARStatus GetLinkedConnector(int index, QOBSharedHandle<KARMPConnector>& connector) const
    {
        return m_connectors.Get(index, connector);
    }
    KARStatus GetImpactedChildBody(int index, QOBSharedHandle<KARMPBody>& body) const
    {
        return m_impactedChildren.Get(index, body);
    }
    KARStatus GetChildBody(int index, QOBSharedHandle<KARMPBody>& body) const
    {
        return m_children.Get(index, body);
    }

    /// Appends a child, also one that is listed already, and attaches its neighbour to this body's.
    /// The child's father becomes this body; a child that has a father keeps it, which is a failed
    /// check. A null handle is a failure.
    KARStatus AddBody(const QOBSharedHandle<KARMPBody>& child);
    /// Gives the father, null without one.
    KARStatus GetFatherBody(QOBSharedHandle<KARMPBody>& father) const;

    /// Stores the sensor of the body's displacement, or none for a null handle;
    /// KARMPDisplacementSensor::SetBody makes the other side of the link.
    KARStatus SetDisplacementSensor(const QOBSharedHandle<KARMPDisplacementSensor>& sensor)
    {
        return m_displacementSensor.Assign(sensor);
    }
    /// Gives the sensor; a null handle and a failure without one.
    KARStatus GetDisplacementSensor(QOBSharedHandle<KARMPDisplacementSensor>& sensor) const
    {
        return m_displacementSensor.Get(sensor);
    }
    /// Lets the sensor go if it is the stored one. A null handle is a failed check.
    KARStatus RemoveDisplacementSensor(const QOBSharedHandle<KARMPDisplacementSensor>& sensor);

    /// Mass, centre of gravity and inertia matrix; see the class on what they refer to.
    KARStatus GetMass(double& mass) const { return Copy(m_mass, mass); }
    KARStatus SetMass(double mass) { return Copy(mass, m_mass); }
    KARStatus GetCenterOfGravity(KARMathPoint& center) const
    {
        return Copy(m_centerOfGravity, center);
    }
    KARStatus SetCenterOfGravity(const KARMathPoint& center)
    {
        return Copy(center, m_centerOfGravity);
    }
    KARStatus GetInertiaMatrix(KARMath3x3Matrix& inertia) const
    {
        return Copy(m_inertiaMatrix, inertia);
    }
    KARStatus SetInertiaMatrix(const KARMath3x3Matrix& inertia)
    {
        return Copy(inertia, m_inertiaMatrix);
    }
    /// Whether the body lies outside the world.
    KARStatus IsOutOfWorld(bool& outOfWorld) const { return Copy(m_outOfWorld, outOfWorld); }
    KARStatus SetOutOfWorld(bool outOfWorld) { return Copy(outOfWorld, m_outOfWorld); }
    /// Free path text of the modelling application; not written to documents.
    const KARUnicodeString& GetFilePath() const { return m_filePath; }
    void SetFilePath(const KARUnicodeString& path) { m_filePath = path; }

    /// True when the body is fixed.
    bool IsFixed() const { return m_fixed; }
    /// Fixes or releases the body.
    KARStatus SetFix(bool fixed) { return fixed ? Fix() : Unfix(); }
    /// Fixes the body and has the loader hold it, unless it is fixed already. The body is fixed
    /// whether the loader can be had or not.
    KARStatus Fix();
    /// Releases the body in the same manner.
    KARStatus Unfix();
    /// True when the body floats freely, as a new one does.
    bool IsFloating() const { return m_floating; }
    /// Stores whether the body floats. A neighbour is given the status that it had when it was
    /// attached, not this one.
    KARStatus SetFloating(bool floating);
    /// Gives body and neighbour the floating status that the neighbour had when it was attached.
    KARStatus Restore_Initial_WDMBody_Floating_status();

    /// Attaches the neighbour: takes over its position, its floating status and, unless names are
    /// switched off, its name. The loader is not told. A null handle does nothing.
    KARStatus SetWDMBody(const QOBSharedHandle<QOBBasicBody3D>& neighbour);

    /// Gives the transformation from the body's axes to the world's: the neighbour's, or the stored
    /// one without a neighbour.
    KARStatus GetPosition(KARMathTransformation& position) const;
    /// Moves this body alone to a position and tells the loader by how much; a position that is
    /// the present one changes nothing. With `updateNeighbour` the neighbour moves too and the
    /// result is 0; otherwise it is the loader's.
    KARStatus SetPosition(const KARMathTransformation& position, unsigned char updateNeighbour);
    /// Moves this body by a transformation of the world, then its neighbour, its active sensor and
    /// the tree below it, telling the subscribers of each body. With `skipIdentity` the identity
    /// does nothing. A body that is reached again on the way down is a failed check and ends the
    /// walk over the list in which it stands.
    KARStatus UpdatePosition(const KARMathTransformation& move, bool skipIdentity);
    /// Has the loader move its body alone. Without a loader the status of fetching it.
    KARStatus ApplyBodyLoaderTransfo(const KARMathTransformation& move);

    /// Stores the velocities and gives them to the loader, whose status is the result. A loader
    /// that cannot be had gives a failure.
    KARStatus SetVelocity(const KARMathVector& linear, const KARMathVector& angular);
    /// Gives the stored velocities; a failure while there are none.
    KARStatus GetVelocity(KARMathVector& linear, KARMathVector& angular) const
    {
        return m_motion.GetVelocity(linear, angular);
    }
    /// Reads the velocities at a point from the loader, stores and gives them; without a loader the
    /// stored ones. A loader that cannot be had gives a failure, a failing one a failed check. The
    /// same holds for the forms below that take a point.
    KARStatus GetVelocity(KARMathVector& linear, KARMathVector& angular, KARMathPoint& point);
    /// Stores the accelerations.
    KARStatus SetAcceleration(const KARMathVector& linear, const KARMathVector& angular)
    {
        return m_motion.SetAcceleration(linear, angular);
    }
    /// Gives the stored accelerations.
    KARStatus GetAcceleration(KARMathVector& linear, KARMathVector& angular) const
    {
        return m_motion.GetAcceleration(linear, angular);
    }
    KARStatus GetAcceleration(KARMathVector& linear, KARMathVector& angular, KARMathPoint& point);
    /// Reads velocities and accelerations at once; `hasAxis` and `axis` are what the loader makes
    /// of them.
    KARStatus GetVelocityAndAcceleration(KARMathVector& linearVelocity,
                                         KARMathVector& angularVelocity,
                                         KARMathVector& linearAcceleration,
                                         KARMathVector& angularAcceleration, KARMathPoint& point,
                                         unsigned char& hasAxis, KARMathLine& axis,
                                         PointWhereToComputeVelAndAcc where, const KARMathPoint* at,
                                         const QOBSharedHandle<KARMPBody>& reference,
                                         const KARMathAxis* frame);
    KARStatus GetVelocityAndAcceleration(KARMathVector& linearVelocity,
                                         KARMathVector& angularVelocity,
                                         KARMathVector& linearAcceleration,
                                         KARMathVector& angularAcceleration, KARMathPoint& point,
                                         PointWhereToComputeVelAndAcc where, const KARMathPoint* at,
                                         const QOBSharedHandle<KARMPBody>& reference,
                                         const KARMathAxis* frame);

protected:
    void ClearContainers() override;
    KARStatus RemoveParent() override;
    /// Empties the lists of bodies and lets the father go.
    void ClearBodies();

    /// What plain accessors do: they copy and answer 0.
    template <class Value>
    static KARStatus Copy(const Value& from, Value& to)
    {
        to = from;
        return KARSuccess;
    }

    KARMPBody();
    /// A copy has the state of its source; it has no links, no neighbour and no known velocities,
    /// and it lies in the world.
    KARMPBody(const KARMPBody& source, CopyMode mode);
    ~KARMPBody() override;

private:
    friend class karmp::BodyWalk<KARMPBody, KARMathTransformation>;
    friend class karmp::BodyMove;

    KARStatus SetWDMBodyPosition(const KARMathTransformation& position);
    KARStatus UpdateChildrenPosition(const KARMathTransformation& move);
    void MoveOneself(const KARMathTransformation& move);
    void TakeNeighbourName();

    /// True when a subclass leaves the links to this class, which may then be read and made
    /// together.
    template <class T>
    static constexpr bool HasFamilyLinks = requires
    {
        requires karmp::AreMembersOf<KARMPBody>(&T::AddGeometry, &T::LinkToJoint, &T::LinkToShape,
                                                &T::GetGeometryCount, &T::GetLinkedJointCount,
                                                &T::GetLinkedShapeCount);
    };

    // First, where the base leaves space.
    bool m_fixed = false;
    bool m_outOfWorld = false;
    bool m_floating = true;
    bool m_initialFloating = false;
    KARMPLinkList<KARMPGeometry> m_geometries;
    KARMPLinkList<KARMPJoint> m_joints;
    KARMPLinkList<KARMPShape> m_shapes;
    KARMPLinkList<KARMPConnector> m_connectors;
    KARMPLink<KARMPDisplacementSensor> m_displacementSensor;
    KARMPLinkList<KARMPBody> m_impactedChildren;
    KARMPLinkList<KARMPBody> m_children; // may list a body twice
    QOBSharedHandle<KARMPBody> m_father;
    KARMathTransformation m_position;
    karmp::MotionState<KARMathVector, KARMathVector> m_motion;
    double m_mass = 0.0;
    KARMathPoint m_centerOfGravity;
    KARMath3x3Matrix m_inertiaMatrix;
    QOBSharedHandle<QOBBasicBody3D> m_wdmBody;
    KARUnicodeString m_filePath;
    // The walks that this body is on the path of.
    const karmp::BodyWalk<KARMPBody, KARMathTransformation>* m_walks[2] = {};
};

// Operations that return a status give 0 where nothing else is told. A loader that is asked for and
// cannot be had is a failed check.
#pragma once

#include "KARMPBody.h"
#include "KARMath2x2Matrix.h"
#include "KARMathPoint2D.h"
#include "KARMathTransformation2D.h"
#include "KARMathVector2D.h"

class KARIMPBody2DLoader;
class KARMPDisplacementSensor2D;
class KARMPGeometry2D;
class KARMPJoint2D;
class KARMPShape2D;
class KARMPSketch;
class KARMathAxis2D;
class KARMathLine2D;

/// A rigid body of a planar mechanism: its position in the plane of a sketch, its motion and mass,
/// and the hub to which planar geometries, joints, shapes and a displacement sensor are linked.
///
/// It has state and links of its own, and its operations hide those of the base that have the same
/// names: what is set here is not seen through a KARMPBody, and what is set there is not seen here.
/// The tree of bodies with its fathers and children, the neighbour in the world model and the
/// out-of-world flag are the base's, unused here and not written to documents.
///
/// The position takes points from the body's axes to the sketch's plane, the spatial position
/// places that plane in space. Units and frames of reference are agreed between the application and
/// the solver, as for a spatial body.
class KARMP_API KARMPBody2D : public KARMPBody
{
    KARMP_ENTITY(KARMPBody2D, KARMPBody)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Gives the body's planar loader, null without one. A failing fetch is a failed check and a
    /// failure.
    virtual KARStatus GetLoader(KARIMPBody2DLoader*& loader) const;
    using Super::GetLoader;

    /// Stores the sketch in whose plane the body lies. A null handle is a failed check and a
    /// failure.
    KARStatus SetSketch(const QOBSharedHandle<KARMPSketch>& sketch) { return m_sketch.Set(sketch); }
    /// Gives the sketch; a null handle and a failure without one.
    KARStatus GetSketch(QOBSharedHandle<KARMPSketch>& sketch) const { return m_sketch.Get(sketch); }

    /// Links an entity to this body, not this body to it. A null handle is a failed check and a
    /// failure; an entity that is linked already gives 1.
    KARStatus AddGeometry(const QOBSharedHandle<KARMPGeometry2D>& geometry)
    {
        return m_geometries.Add(geometry);
    }
    KARStatus LinkToJoint(const QOBSharedHandle<KARMPJoint2D>& joint)
    {
        return m_joints.Add(joint);
    }
    KARStatus LinkToShape(const QOBSharedHandle<KARMPShape2D>& shape)
    {
        return m_shapes.Add(shape);
    }
    /// Lists a body that must be refreshed when this one moves, under the same rule.
    KARStatus AddImpactedChildBody(const QOBSharedHandle<KARMPBody2D>& body)
    {
        return m_impactedChildren.Add(body);
    }
    /// Takes an entity out of its list. A null handle is a failed check and a failure; an entity
    /// that is not linked gives 1.
    KARStatus RemoveGeometry(const QOBSharedHandle<KARMPGeometry2D>& geometry)
    {
        return m_geometries.Remove(geometry);
    }
    KARStatus RemoveJoint(const QOBSharedHandle<KARMPJoint2D>& joint)
    {
        return m_joints.Remove(joint);
    }
    KARStatus RemoveShape(const QOBSharedHandle<KARMPShape2D>& shape)
    {
        return m_shapes.Remove(shape);
    }
    /// Takes a body out of the impacted children, under the same rule.
    KARStatus RemoveBody(const QOBSharedHandle<KARMPBody2D>& body)
    {
        return m_impactedChildren.Remove(body);
    }
    int GetGeometryCount() const { return m_geometries.Count(); }
    int GetLinkedJointCount() const { return m_joints.Count(); }
    int GetLinkedShapeCount() const { return m_shapes.Count(); }
    int GetImpactedChildBodyCount() const { return m_impactedChildren.Count(); }
    /// Gives the entry at an index from 0; outside the list a null handle and a failure.
    KARStatus GetGeometry(int index, QOBSharedHandle<KARMPGeometry2D>& geometry) const
    {
        return m_geometries.Get(index, geometry);
    }
    KARStatus GetLinkedJoint(int index, QOBSharedHandle<KARMPJoint2D>& joint) const
    {
        return m_joints.Get(index, joint);
    }
    KARStatus GetLinkedShape(int index, QOBSharedHandle<KARMPShape2D>& shape) const
    {
        return m_shapes.Get(index, shape);
    }
    KARStatus GetImpactedChildBody(int index, QOBSharedHandle<KARMPBody2D>& body) const
    {
        return m_impactedChildren.Get(index, body);
    }

    /// Stores the sensor of the body's displacement, or none for a null handle;
    /// KARMPDisplacementSensor2D::SetBody makes the other side of the link.
    KARStatus SetDisplacementSensor(const QOBSharedHandle<KARMPDisplacementSensor2D>& sensor)
    {
        return m_displacementSensor.Assign(sensor);
    }
    /// Gives the sensor; a null handle and a failure without one.
    KARStatus GetDisplacementSensor(QOBSharedHandle<KARMPDisplacementSensor2D>& sensor) const
    {
        return m_displacementSensor.Get(sensor);
    }
    /// Lets the sensor go if it is the stored one. A null handle is a failed check.
    KARStatus RemoveDisplacementSensor(const QOBSharedHandle<KARMPDisplacementSensor2D>& sensor);

    /// Mass, centre of gravity and planar inertia matrix.
    KARStatus GetMass(double& mass) const { return Copy(m_mass, mass); }
    KARStatus SetMass(double mass) { return Copy(mass, m_mass); }
    KARStatus GetCenterOfGravity(KARMathPoint2D& center) const
    {
        return Copy(m_centerOfGravity, center);
    }
    KARStatus SetCenterOfGravity(const KARMathPoint2D& center)
    {
        return Copy(center, m_centerOfGravity);
    }
    KARStatus GetInertiaMatrix(KARMath2x2Matrix& inertia) const
    {
        return Copy(m_inertiaMatrix, inertia);
    }
    KARStatus SetInertiaMatrix(const KARMath2x2Matrix& inertia)
    {
        return Copy(inertia, m_inertiaMatrix);
    }

    /// True when the body is fixed in its plane.
    bool IsFixed2D() const { return m_fixed2D; }
    /// True when the plane of the body is fixed in space. Not written to documents.
    bool IsFixed3D() const { return m_fixed3D; }
    /// Fixes or releases the body in its plane, or its plane in space.
    KARStatus SetFix2D(bool fixed) { return fixed ? Fix2D() : Unfix2D(); }
    KARStatus SetFix3D(bool fixed) { return fixed ? Fix3D() : Unfix3D(); }
    /// Fixes the body in its plane and has the loader hold it there, unless it is fixed already.
    /// The body is fixed whether the loader can be had or not. The others are alike.
    KARStatus Fix2D();
    KARStatus Unfix2D();
    KARStatus Fix3D();
    KARStatus Unfix3D();

    /// True when a transformation of the plane counts as the identity: a similitude that scales
    /// with a ratio of exactly 1.0.
    static bool IsIdentity2D(const KARMathTransformation2D& transformation);
    /// Gives the transformation from the body's axes to the sketch's plane.
    KARStatus GetPosition(KARMathTransformation2D& position) const
    {
        return Copy(m_position, position);
    }
    /// Moves this body alone to a position and tells the loader by how much, with the loader's
    /// status as the result; a position that is the present one changes nothing.
    KARStatus SetPosition(const KARMathTransformation2D& position);
    /// Moves this body by a transformation of the plane, then its active sensor, tells the
    /// subscribers, and refreshes the impacted children in the same manner without moving them.
    /// With `skipIdentity` the identity does nothing. A body that is reached again on the way down
    /// is a failed check and ends the walk over the list in which it stands.
    KARStatus UpdatePosition(const KARMathTransformation2D& move, bool skipIdentity);
    /// Has the loader move its body alone. Without a loader the status of fetching it.
    KARStatus ApplyBody2DLoaderTransfo(const KARMathTransformation2D& move);
    /// Gives the position of the body's plane in space. Not written to documents.
    KARStatus Get3DPosition(KARMathTransformation& position) const
    {
        return Copy(m_spatialPosition, position);
    }
    /// Stores the position of the body's plane in space and tells nobody.
    KARStatus Set3DPosition(const KARMathTransformation& position)
    {
        return Copy(position, m_spatialPosition);
    }
    /// Moves the body's plane by a transformation of space and tells the subscribers of this body
    /// alone. With `skipIdentity` the identity does nothing.
    KARStatus Update3DPosition(const KARMathTransformation& move, bool skipIdentity);

    /// Stores the velocities and gives them to the loader, whose status is the result. A loader
    /// that cannot be had gives a failure.
    KARStatus SetVelocity(const KARMathVector2D& linear, double angular);
    /// Gives the stored velocities; a failure while there are none.
    KARStatus GetVelocity(KARMathVector2D& linear, double& angular) const
    {
        return m_motion.GetVelocity(linear, angular);
    }
    /// Reads the velocities at a point from the loader, stores and gives them; without a loader the
    /// stored ones. A loader that cannot be had gives a failure, a failing one a failed check. The
    /// same holds for the forms below that take a point.
    KARStatus GetVelocity(KARMathVector2D& linear, double& angular, KARMathPoint2D& point);
    /// Stores the accelerations.
    KARStatus SetAcceleration(const KARMathVector2D& linear, double angular)
    {
        return m_motion.SetAcceleration(linear, angular);
    }
    /// Gives the stored accelerations.
    KARStatus GetAcceleration(KARMathVector2D& linear, double& angular) const
    {
        return m_motion.GetAcceleration(linear, angular);
    }
    KARStatus GetAcceleration(KARMathVector2D& linear, double& angular, KARMathPoint2D& point);
    /// Reads velocities and accelerations at once; `hasAxis` and `axis` are what the loader makes
    /// of them.
    KARStatus GetVelocityAndAcceleration(KARMathVector2D& linearVelocity, double& angularVelocity,
                                         KARMathVector2D& linearAcceleration,
                                         double& angularAcceleration, KARMathPoint2D& point,
                                         unsigned char& hasAxis, KARMathLine2D& axis,
                                         PointWhereToComputeVelAndAcc where,
                                         const KARMathPoint2D* at,
                                         const QOBSharedHandle<KARMPBody2D>& reference,
                                         const KARMathAxis2D* frame);
    KARStatus GetVelocityAndAcceleration(KARMathVector2D& linearVelocity, double& angularVelocity,
                                         KARMathVector2D& linearAcceleration,
                                         double& angularAcceleration, KARMathPoint2D& point,
                                         PointWhereToComputeVelAndAcc where,
                                         const KARMathPoint2D* at,
                                         const QOBSharedHandle<KARMPBody2D>& reference,
                                         const KARMathAxis2D* frame);
    /// Has the loader compute velocities and accelerations in a kinematic simulation too; 0 without
    /// a loader.
    KARStatus ActivateVelocityAndAccelerationComputationForKIN();

protected:
    void ClearContainers() override;
    KARStatus RemoveParent() override;

    KARMPBody2D();
    /// A copy has the state of its source; it has no links, no sketch and no known velocities.
    KARMPBody2D(const KARMPBody2D& source, CopyMode mode);
    ~KARMPBody2D() override;

private:
    friend class karmp::BodyWalk<KARMPBody2D, KARMathTransformation2D>;

    KARStatus UpdateChildrenPosition();
    void MoveOneself(const KARMathTransformation2D& move);

    KARMPLink<KARMPSketch> m_sketch;
    KARMPLinkList<KARMPGeometry2D> m_geometries;
    KARMPLink<KARMPDisplacementSensor2D> m_displacementSensor;
    KARMPLinkList<KARMPJoint2D> m_joints;
    KARMPLinkList<KARMPBody2D> m_impactedChildren;
    KARMPLinkList<KARMPShape2D> m_shapes;
    bool m_fixed2D = false;
    bool m_fixed3D = false;
    KARMath2x2Matrix m_inertiaMatrix;
    KARMathPoint2D m_centerOfGravity;
    double m_mass = 0.0;
    KARMathTransformation2D m_position;
    KARMathTransformation m_spatialPosition;
    karmp::MotionState<KARMathVector2D, double> m_motion;
    // The walks that this body is on the path of.
    const karmp::BodyWalk<KARMPBody2D, KARMathTransformation2D>* m_walks[2] = {};
};

#include "KARMPBody2D.h"

#include "KARIMPBody2DLoader.h"
#include "KARMPBodyMotion.h"
#include "KARMPContentWalk.h"
#include "KARMPDisplacementSensor2D.h"
#include "KARMPGeometry2D.h"
#include "KARMPJoint2D.h"
#include "KARMPShape2D.h"
#include "KARMPSketch.h"

KARMP_DEFINE_ENTITY(KARMPBody2D, "51C80380-5151-4C27-AD17-9CB525818264");

template <>
struct karmp::ContentOf<KARMPBody2D>
{
    using C = KARMPBody2D;
    using Motion = MotionState<KARMathVector2D, double>;

    // What the loader answers to the move is not the document's concern.
    static void TakePosition(C& body, const KARMathTransformation2D& position)
    {
        body.SetPosition(position);
    }
    // Velocities that were read count as known, whatever they are.
    static void TakeLinearVelocity(C& body, const KARMathVector2D& read)
    {
        body.m_motion.linearVelocity = read;
        body.m_motion.velocitySet = true;
    }
    static void TakeAngularVelocity(C& body, double read)
    {
        body.m_motion.angularVelocity = read;
        body.m_motion.velocitySet = true;
    }

    static constexpr Names<1> AngularNames{L"Va"};
    static constexpr auto Velocities = Group(
        L"Velocity", "The last known velocities.",
        NumbersElement<Within<&C::m_motion, &Motion::linearVelocity>>(
            L"LinearVelocity", PlanarVectorNames,
            "The linear velocity in the plane; application and solver agree on point and axes.",
            KARMPPhysicalQuantity::Velocity)
            .ZeroIfMissing()
            .Through<&TakeLinearVelocity>(),
        NumbersElement<Within<&C::m_motion, &Motion::angularVelocity>>(
            L"AngularVelocity", AngularNames, "The angular velocity about the normal of the plane.",
            KARMPPhysicalQuantity::AngularVelocity)
            .ZeroIfMissing()
            .Through<&TakeAngularVelocity>());
    static constexpr auto Accelerations = Group(
        L"Acceleration", "The last known accelerations.",
        NumbersElement<Within<&C::m_motion, &Motion::linearAcceleration>>(
            L"LinearAcceleration", PlanarVectorNames,
            "The linear acceleration in the plane; application and solver agree on point and axes.",
            KARMPPhysicalQuantity::Acceleration),
        NumbersElement<Within<&C::m_motion, &Motion::angularAcceleration>>(
            L"AngularAcceleration", AngularNames,
            "The angular acceleration about the normal of the plane.",
            KARMPPhysicalQuantity::AngularAcceleration));
    static constexpr auto Weight =
        Group(L"Weight", "The mass and how it is distributed.",
              Number<&C::m_mass>(L"Mass", "The mass.", KARMPPhysicalQuantity::Mass),
              NumbersElement<&C::m_centerOfGravity>(
                  L"COG", PlanarPointNames,
                  "The centre of gravity in the plane; application and solver agree on the axes.",
                  KARMPPhysicalQuantity::Length),
              NumbersElement<&C::m_inertiaMatrix>(L"InertiaMatrix", PlanarMatrixNames,
                                                  "The planar inertia matrix, by columns; "
                                                  "application and solver agree on point and axes.",
                                                  KARMPPhysicalQuantity::Inertia));
    static constexpr auto Links = karmp::List(
        References<&C::m_geometries, &C::AddGeometry>(
            L"Geometries", L"Geometry", "The planar geometries that it carries, given in its axes.")
            .Removing<&C::RemoveGeometry>()
            .OtherSide(L"Body2D"),
        Reference<&C::m_sketch, &C::SetSketch>(L"Sketch", "The sketch in whose plane it lies."),
        References<&C::m_joints, &C::LinkToJoint>(L"Joints", L"Joint",
                                                  "The planar joints that link it to other bodies.")
            .Removing<&C::RemoveJoint>()
            .OtherSide(L"Bodies2D"),
        References<&C::m_shapes, &C::LinkToShape>(L"Shapes", L"Shape", "Its planar shapes.")
            .Removing<&C::RemoveShape>()
            .OtherSide(L"Bodies"),
        Reference<&C::m_displacementSensor, &C::SetDisplacementSensor>(
            L"DisplacementSensor", "The sensor that measures how far it was moved.")
            .Removing<&C::RemoveDisplacementSensor>()
            .OtherSide(L"Body2D"),
        References<&C::m_impactedChildren, &C::AddImpactedChildBody>(
            L"ImpactedChildrenBodies", L"ImpactedChildBody",
            "The planar bodies that are refreshed when it moves.")
            .Removing<&C::RemoveBody>());

    // A failing base costs the state, not the links; an element that cannot be added gives 0.
    static constexpr ContentFrame Frame{{.missingElement = KARSuccess, .goesOn = true},
                                        {.goesOn = true}};
    static constexpr auto List = Element(
        L"Body2D", "A rigid body of a planar mechanism.", Frame,
        Transformation<&C::GetPosition>(
            L"Position", PlanarPosition,
            "The transformation from the body's axes to those of the sketch's plane.")
            .ZeroIfMissing()
            .Through<&TakePosition>(),
        Velocities, Accelerations, Weight,
        Attribute(WordOf<&C::m_fixed2D>(L"is_fixed2D", NoYes, "Whether it is fixed in its plane."))
            .Through<&C::SetFix2D>(),
        Links.EvenIfBaseFails());
};
// The spatial state of the base stays out of documents.
KARMP_DEFINE_CONTENT(KARMPBody2D, KARMPEntity);

KARMPBody2D::KARMPBody2D() = default;

KARMPBody2D::KARMPBody2D(const KARMPBody2D& source, CopyMode mode)
    : Super(source, mode),
      m_fixed2D(source.m_fixed2D),
      m_fixed3D(source.m_fixed3D),
      m_inertiaMatrix(source.m_inertiaMatrix),
      m_centerOfGravity(source.m_centerOfGravity),
      m_mass(source.m_mass),
      m_position(source.m_position),
      m_spatialPosition(source.m_spatialPosition),
      m_motion(source.m_motion.Copied())
{}

KARMPBody2D::~KARMPBody2D() = default;

void KARMPBody2D::ClearContainers()
{
    m_geometries.Clear();
    m_joints.Clear();
    m_impactedChildren.Clear();
    m_shapes.Clear();
    // The tree of bodies is the base's, and its fathers and children keep each other alive.
    ClearBodies();
}

KARStatus KARMPBody2D::RemoveParent()
{
    return karmp::UnlinkFromBody(*this, KARMPSourceLocation::current(), m_displacementSensor,
                                 m_geometries, m_joints, m_shapes, m_impactedChildren);
}

KARStatus KARMPBody2D::GetLoader(KARIMPBody2DLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPBody2D::RemoveDisplacementSensor(
    const QOBSharedHandle<KARMPDisplacementSensor2D>& sensor)
{
    m_displacementSensor.Remove(sensor);
    return KARSuccess;
}

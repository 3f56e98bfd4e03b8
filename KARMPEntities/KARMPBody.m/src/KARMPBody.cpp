#include "KARMPBody.h"

#include "KARIMPBodyLoader.h"
#include "KARMPBodyMotion.h"
#include "KARMPConnector.h"
#include "KARMPContentWalk.h"
#include "KARMPDisplacementSensor.h"
#include "KARMPGeometry.h"
#include "KARMPJoint.h"
#include "KARMPShape.h"
#include "QOBBasicBody3D.h"

KARMP_DEFINE_ENTITY(KARMPBody, "DC8D8FB9-6ECD-4707-93D5-A11AF41E855B");

template <>
struct karmp::ContentOf<KARMPBody>
{
    using C = KARMPBody;
    using Motion = MotionState<KARMathVector, KARMathVector>;

    // What loader and neighbour answer to the move is not the document's concern.
    static void TakePosition(C& body, const KARMathTransformation& position)
    {
        body.SetPosition(position, 1);
    }
    // Velocities count as known only when a component is above 0: a body that moves along negative
    // axes alone reads back without known velocities.
    static void NoteVelocity(C& body, const KARMathVector& read)
    {
        if (read.GetX() > 0.0 || read.GetY() > 0.0 || read.GetZ() > 0.0)
            body.m_motion.velocitySet = true;
    }
    static void TakeLinearVelocity(C& body, const KARMathVector& read)
    {
        body.m_motion.linearVelocity = read;
        NoteVelocity(body, read);
    }
    static void TakeAngularVelocity(C& body, const KARMathVector& read)
    {
        body.m_motion.angularVelocity = read;
        NoteVelocity(body, read);
    }
    // A body that is listed twice remains the father's child until both entries are gone.
    static KARStatus RemoveChild(C& body, const QOBSharedHandle<KARMPBody>& child)
    {
        const KARStatus status = body.m_children.Remove(child);
        if (status == KARSuccess && child->m_father.get() == &body &&
            !body.m_children.Contains(child))
            child->m_father.detach();
        return status;
    }
    static bool FollowsFather(const C& body)
    {
        return !body.m_floating && !body.m_fixed && body.m_father;
    }

    static constexpr auto Velocities =
        Group(L"Velocity", "The last known velocities.",
              NumbersElement<Within<&C::m_motion, &Motion::linearVelocity>>(
                  L"LinearVelocity", VectorNames,
                  "The linear velocity; application and solver agree on point and axes.",
                  KARMPPhysicalQuantity::Velocity)
                  .ZeroIfMissing()
                  .Through<&TakeLinearVelocity>(),
              NumbersElement<Within<&C::m_motion, &Motion::angularVelocity>>(
                  L"AngularVelocity", VectorNames,
                  "The angular velocity; application and solver agree on the axes.",
                  KARMPPhysicalQuantity::AngularVelocity)
                  .ZeroIfMissing()
                  .Through<&TakeAngularVelocity>());
    static constexpr auto Accelerations =
        Group(L"Acceleration", "The last known accelerations.",
              NumbersElement<Within<&C::m_motion, &Motion::linearAcceleration>>(
                  L"LinearAcceleration", VectorNames,
                  "The linear acceleration; application and solver agree on point and axes.",
                  KARMPPhysicalQuantity::Acceleration),
              NumbersElement<Within<&C::m_motion, &Motion::angularAcceleration>>(
                  L"AngularAcceleration", VectorNames,
                  "The angular acceleration; application and solver agree on the axes.",
                  KARMPPhysicalQuantity::AngularAcceleration));
    static constexpr auto Weight = Group(
        L"Weight", "The mass and how it is distributed.",
        Number<&C::m_mass>(L"Mass", "The mass.", KARMPPhysicalQuantity::Mass),
        NumbersElement<&C::m_centerOfGravity>(
            L"COG", PointNames, "The centre of gravity; application and solver agree on the axes.",
            KARMPPhysicalQuantity::Length),
        NumbersElement<&C::m_inertiaMatrix>(
            L"InertiaMatrix", MatrixNames,
            "The inertia matrix, by columns; application and solver agree on point and axes.",
            KARMPPhysicalQuantity::Inertia));
    static constexpr auto Links = karmp::List(
        References<&C::m_geometries, &C::AddGeometry>(
            L"Geometries", L"Geometry", "The geometries that it carries, given in its axes.")
            .Removing<&C::RemoveGeometry>()
            .OtherSide(L"Body"),
        References<&C::m_joints, &C::LinkToJoint>(L"Joints", L"Joint",
                                                  "The joints that link it to other bodies.")
            .Removing<&C::RemoveJoint>()
            .OtherSide(L"Bodies"),
        References<&C::m_shapes, &C::LinkToShape>(L"Shapes", L"Shape", "The shapes that it has.")
            .Removing<&C::RemoveShape>()
            .OtherSide(L"Bodies"),
        References<&C::m_connectors, &C::LinkToConnector>(L"Connectors", L"Connector",
                                                          "The connectors that act on it.")
            .Removing<&C::RemoveConnector>()
            .OtherSide(L"FirstBody SecondBody"),
        Reference<&C::GetDisplacementSensor, &C::SetDisplacementSensor>(
            L"DisplacementSensor", "The sensor that measures how far it was moved.")
            .Removing<&C::RemoveDisplacementSensor>()
            .OtherSide(L"Body"),
        References<&C::m_impactedChildren, &C::AddImpactedChildBody>(
            L"ImpactedChildrenBodies", L"ImpactedChildBody",
            "The bodies that are refreshed when it moves.")
            .Removing<&C::RemoveBody>(),
        References<&C::m_children, &C::AddBody>(L"ChildrenBodies", L"ChildBody",
                                                "The children in the tree of bodies.")
            .Removing<&RemoveChild>());

    // A failing base costs the state, not the links; an element that cannot be added gives 0.
    static constexpr ContentFrame Frame{{.missingElement = KARSuccess, .goesOn = true},
                                        {.goesOn = true}};
    static constexpr auto List = Element(
        L"Body", "A rigid body.", Frame,
        Transformation<&C::GetPosition>(L"Position",
                                        "The transformation from the body's axes to the world's: "
                                        "where its origin lies and how it is turned.")
            .ZeroIfMissing()
            .Through<&TakePosition>(),
        Velocities, Accelerations, Weight,
        Attribute(WordOf<&C::m_fixed>(L"is_fixed", NoYes, "Whether it is fixed in the world."))
            .Through<&C::SetFix>(),
        Since(R2016_1, Flag<&C::m_outOfWorld>(L"OutOfWorld", "Whether it lies outside the world.")),
        Links.EvenIfBaseFails(),
        Attribute(Flag<&C::m_floating>(
                      L"floating",
                      "Whether it floats; written for a body that follows its father alone."))
            .Optional()
            .When<&FollowsFather>()
            .Through<&C::SetFloating>()
            .EvenIfBaseFails());
};
KARMP_DEFINE_CONTENT(KARMPBody);

KARMPBody::KARMPBody() = default;

KARMPBody::KARMPBody(const KARMPBody& source, CopyMode mode)
    : Super(source, mode),
      m_fixed(source.m_fixed),
      m_floating(source.m_floating),
      m_position(source.m_position),
      m_motion(source.m_motion.Copied()),
      m_mass(source.m_mass),
      m_centerOfGravity(source.m_centerOfGravity),
      m_inertiaMatrix(source.m_inertiaMatrix),
      m_filePath(source.m_filePath)
{}

KARMPBody::~KARMPBody() = default;

void KARMPBody::ClearBodies()
{
    m_impactedChildren.Clear();
    m_children.Clear();
    m_father.detach();
}

void KARMPBody::ClearContainers()
{
    m_geometries.Clear();
    m_joints.Clear();
    m_shapes.Clear();
    m_connectors.Clear();
    ClearBodies();
}

KARStatus KARMPBody::RemoveParent()
{
    return karmp::UnlinkFromBody(*this, KARMPSourceLocation::current(), m_displacementSensor,
                                 m_geometries, m_joints, m_shapes, m_connectors,
                                 m_impactedChildren);
}

KARStatus KARMPBody::GetLoader(KARIMPBodyLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPBody::AddBody(const QOBSharedHandle<KARMPBody>& child)
{
    if (!child)
        return KARFailure;
    if (m_wdmBody)
        m_wdmBody->addBody(child->m_wdmBody);
    m_children.Insert(m_children.Count(), child);
    if (KARMPVerify(!child->m_father))
        child->m_father = this;
    return KARSuccess;
}

KARStatus KARMPBody::GetFatherBody(QOBSharedHandle<KARMPBody>& father) const
{
    father = m_father;
    return KARSuccess;
}

KARStatus KARMPBody::RemoveDisplacementSensor(
    const QOBSharedHandle<KARMPDisplacementSensor>& sensor)
{
    m_displacementSensor.Remove(sensor);
    return KARSuccess;
}

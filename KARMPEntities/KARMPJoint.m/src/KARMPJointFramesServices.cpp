#include "KARMPJointFramesServices.h"

#include "KARIMPJointLoader.h"
#include "KARMPAxisSystem.h"
#include "KARMPBody.h"
#include "KARMPConstraint.h"
#include "KARMPFailedCheck.h"
#include "KARMPGeometry.h"
#include "KARMPJoint.h"
#include "KARMPPoint.h"
#include "KARMPWorld.h"
#include "KARMathAxis.h"
#include "KARMathTransformation.h"

namespace {

using Type = KARMPSolverEquivalentJointType;

// What the frames of a kind of joint lie on.
enum class Carrier { Loader, AxisSystem, Point, Body };

// What the coordinates of a candidate frame are relative to.
enum class Coordinates { GlobalBody, World, OwnBody };

// One frame and one kind of coordinates for each linked body; a loader that gives frames and fails
// leaves the frames without coordinates.
struct Candidates
{
    std::vector<KARMathAxis> frames;
    std::vector<Coordinates> coordinates;

    void Add(const KARMathAxis& frame, Coordinates relativeTo)
    {
        frames.push_back(frame);
        coordinates.push_back(relativeTo);
    }
};

Carrier CarrierOf(Type::Enum type)
{
    switch (type) {
    case Type::Revolute:
    case Type::Cylindrical:
    case Type::Screw:
        return Carrier::AxisSystem;
    case Type::Spherical:
    case Type::PointOnCurve:
        return Carrier::Point;
    case Type::Rigid:
    case Type::SixDoF:
        return Carrier::Body;
    }
    return Carrier::Loader;
}

// The first geometry of a kind that the joint's constraints use on a body, null without one.
template <class Geometry>
QOBSharedHandle<Geometry> FindGeometry(const KARMPJoint& joint,
                                       const QOBSharedHandle<KARMPBody>& body)
{
    for (int index = 0; index < joint.GetConstraintCount(); ++index) {
        QOBSharedHandle<KARMPConstraint> constraint;
        joint.GetConstraint(index, constraint);
        const int count = constraint ? constraint->GetLinkedGeometryCount() : 0;
        for (int linked = 0; linked < count; ++linked) {
            QOBSharedHandle<KARMPGeometry> geometry;
            QOBSharedHandle<KARMPBody> carrier;
            constraint->GetLinkedGeometry(linked, geometry);
            if (geometry)
                geometry->GetBody(carrier);
            if (carrier == body && geometry.isDerivedFrom(Geometry::ClassInfo()))
                return QOBSharedHandle<Geometry>(geometry);
        }
    }
    return {};
}

// A body's position as an axis system, moved to a point of the body if there is one.
KARMathAxis FrameOf(const KARMPBody& body, const KARMPPoint* point)
{
    KARMathTransformation position;
    body.GetPosition(position);
    double c[12];
    position.GetCoef(c);
    KARMathPoint origin(c[9], c[10], c[11]);
    if (point != nullptr) {
        KARMathPoint local;
        point->GetPoint(local);
        origin = position * local;
    }
    return {origin, {c[0], c[1], c[2]}, {c[3], c[4], c[5]}, {c[6], c[7], c[8]}};
}

void CollectFromBody(const KARMPJoint& joint, Carrier carrier,
                     const QOBSharedHandle<KARMPBody>& body, Candidates& candidates)
{
    QOBSharedHandle<KARMPPoint> point;
    if (carrier == Carrier::AxisSystem) {
        if (const auto geometry = FindGeometry<KARMPAxisSystem>(joint, body)) {
            KARMathAxis frame;
            geometry->GetAxisSystem(frame);
            candidates.Add(frame, Coordinates::OwnBody);
            return;
        }
    } else if (carrier == Carrier::Point) {
        point = FindGeometry<KARMPPoint>(joint, body);
    }
    if (body)
        candidates.Add(FrameOf(*body, point.get()), Coordinates::World);
}

void CollectFromBodies(const KARMPJoint& joint, Carrier carrier, Candidates& candidates)
{
    QOBSharedHandle<KARMPWorld> world;
    QOBSharedHandle<KARMPBody> globalBody;
    joint.GetWorld(world);
    if (world)
        world->GetGlobalBody(globalBody);
    for (int index = 0; index < joint.GetLinkedBodyCount(); ++index) {
        QOBSharedHandle<KARMPBody> body;
        joint.GetLinkedBody(index, body);
        if (body == globalBody)
            candidates.Add(KARMathAxis(), Coordinates::GlobalBody);
        else
            CollectFromBody(joint, carrier, body, candidates);
    }
}

KARStatus CollectFromLoader(const KARMPJoint& joint, Candidates& candidates)
{
    KARIMPJointLoader* loader = nullptr;
    KARStatus status = joint.GetLoader(loader);
    if (loader == nullptr)
        return KARFailed(status) ? status : KARUnchanged;
    status = loader->ReadFrames(candidates.frames);
    if (status == KARSuccess)
        candidates.coordinates.assign(candidates.frames.size(), Coordinates::World);
    return status;
}

// Nothing is added where the conversion needs a body and there is none.
void Convert(const KARMathAxis& frame, Coordinates coordinates, bool local,
             const QOBSharedHandle<KARMPBody>& body, std::vector<KARMathAxis>& frames)
{
    if (coordinates == Coordinates::GlobalBody) {
        frames.emplace_back();
        return;
    }
    if (local == (coordinates == Coordinates::OwnBody)) {
        frames.push_back(frame);
        return;
    }
    if (!body)
        return;
    KARMathTransformation position;
    body->GetPosition(position);
    if (!local) {
        frames.push_back(position * frame);
        return;
    }
    KARMathTransformation inverse;
    position.ComputeInverse(inverse);
    frames.push_back(inverse * frame);
}

} // namespace

KARStatus KARMPJointFramesServices::ComputeFrames(const KARMPJoint* joint,
                                                  std::vector<KARMathAxis>& frames,
                                                  unsigned char local)
{
    if (!KARMPVerify(joint != nullptr))
        return KARUnchanged;
    // No kind has this value: a joint without a loader, which leaves it, goes on to the loader.
    auto type = static_cast<Type::Enum>(-1);
    joint->GetSolverEquivalentJointType(type);

    KARStatus status = KARUnchanged;
    Candidates candidates;
    if (const Carrier carrier = CarrierOf(type); carrier == Carrier::Loader)
        status = CollectFromLoader(*joint, candidates);
    else
        CollectFromBodies(*joint, carrier, candidates);

    if (KARMPVerify(candidates.frames.size() == candidates.coordinates.size())) {
        for (std::size_t index = 0; index < candidates.frames.size(); ++index) {
            QOBSharedHandle<KARMPBody> body;
            joint->GetLinkedBody(static_cast<int>(index), body);
            Convert(candidates.frames[index], candidates.coordinates[index], local != 0, body,
                    frames);
        }
    }
    return frames.empty() ? status : KARSuccess;
}

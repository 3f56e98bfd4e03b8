// What spatial and planar bodies do alike with positions, loaders, sensors and links.
#pragma once

#include "KARMPFailedCheck.h"
#include "KARMPLink.h"
#include "KARMPLoaderAccess.h"
#include "KARMPMotionState.h"
#include "KARMPUnlinkAll.h"

namespace karmp {

/// Gives the move that takes one position to another; a start that has no inverse leaves the move
/// as it is. False when the positions are the same.
template <class Transformation>
bool FindMove(const Transformation& start, const Transformation& target, Transformation& move)
{
    Transformation inverse;
    if (!start.ComputeInverse(inverse))
        return true;
    move = target * inverse;
    // Equal positions are no change even where a matrix close to singular magnifies rounding.
    return target != start && !move.IsNoChange(start, target);
}

/// Has the loader of a body move it. Without a loader the status of fetching it.
template <class Loader, class Body, class Transformation>
KARStatus MoveByLoader(const Body& body, const Transformation& move,
                       KARMPSourceLocation where = KARMPSourceLocation::current())
{
    Loader* loader = nullptr;
    const KARStatus status = body.GetLoader(loader);
    if (loader == nullptr)
        return status;
    KARMPVerify(!KARFailed(loader->ApplyTransformation(move)), where);
    return loader->ReleaseBody();
}

/// Has the loader of a body, if there is one, read what the body stores: a failing read is a failed
/// check only, a failing fetch a failure.
template <class Loader, class Body, class Read>
KARStatus ReadByLoader(const Body& body, Read read,
                       KARMPSourceLocation where = KARMPSourceLocation::current())
{
    return TellLoader<Loader>(
        body,
        [&](Loader& loader) {
            KARMPVerify(!KARFailed(read(loader)), where);
            return KARSuccess;
        },
        where);
}

/// Stores the velocities of a body and gives them to its loader, whose status is the result.
template <class Loader, class Body, class Vector, class Angular>
KARStatus SetVelocity(const Body& body, MotionState<Vector, Angular>& motion, const Vector& linear,
                      const Angular& angular,
                      KARMPSourceLocation where = KARMPSourceLocation::current())
{
    motion.linearVelocity = linear;
    motion.angularVelocity = angular;
    Loader* loader = nullptr;
    if (!KARMPVerify(!KARFailed(body.GetLoader(loader)), where))
        return KARFailure;
    motion.velocitySet = true;
    return loader != nullptr ? loader->SetLoaderVelocity(linear, angular) : KARSuccess;
}

/// Reads the velocities of a body at a point from its loader, stores and gives them.
template <class Loader, class Body, class Vector, class Angular, class Point>
KARStatus ReadVelocity(const Body& body, MotionState<Vector, Angular>& motion, Vector& linear,
                       Angular& angular, Point& point,
                       KARMPSourceLocation where = KARMPSourceLocation::current())
{
    const auto read = [&](Loader& loader) {
        return loader.ReadVelocity(motion.linearVelocity, motion.angularVelocity, point);
    };
    const KARStatus status = ReadByLoader<Loader>(body, read, where);
    if (KARFailed(status))
        return status;
    linear = motion.linearVelocity;
    angular = motion.angularVelocity;
    return KARSuccess;
}

/// Reads its accelerations in the same manner.
template <class Loader, class Body, class Vector, class Angular, class Point>
KARStatus ReadAcceleration(const Body& body, MotionState<Vector, Angular>& motion, Vector& linear,
                           Angular& angular, Point& point,
                           KARMPSourceLocation where = KARMPSourceLocation::current())
{
    const auto read = [&](Loader& loader) {
        return loader.ReadAcceleration(motion.linearAcceleration, motion.angularAcceleration,
                                       point);
    };
    const KARStatus status = ReadByLoader<Loader>(body, read, where);
    return KARFailed(status) ? status : motion.GetAcceleration(linear, angular);
}

/// Reads both at once; `rest` is what else the loader is asked with.
template <class Loader, class Body, class Vector, class Angular, class... Rest>
KARStatus ReadMotion(const Body& body, KARMPSourceLocation where,
                     MotionState<Vector, Angular>& motion, Vector& linearVelocity,
                     Angular& angularVelocity, Vector& linearAcceleration,
                     Angular& angularAcceleration, Rest&&... rest)
{
    const auto read = [&](Loader& loader) {
        return loader.ReadVelocityAndAcceleration(motion.linearVelocity, motion.angularVelocity,
                                                  motion.linearAcceleration,
                                                  motion.angularAcceleration, rest...);
    };
    const KARStatus status = ReadByLoader<Loader>(body, read, where);
    if (KARFailed(status))
        return status;
    linearVelocity = motion.linearVelocity;
    angularVelocity = motion.angularVelocity;
    return motion.GetAcceleration(linearAcceleration, angularAcceleration);
}

/// Changes a flag of a body and tells the loader, unless the flag has that value; always 0.
template <class Loader, class Body, class Tell>
KARStatus Hold(const Body& body, bool& flag, bool value, Tell tell,
               KARMPSourceLocation where = KARMPSourceLocation::current())
{
    if (flag == value)
        return KARSuccess;
    flag = value;
    TellLoader<Loader>(body, tell, where);
    return KARSuccess;
}

/// Moves the displacement of an active sensor.
template <class Transformation, class Sensor>
void MoveSensor(const KARMPLink<Sensor>& link, const Transformation& move)
{
    if (const auto& sensor = link.Handle(); sensor && sensor->IsActive()) {
        Transformation displacement;
        sensor->GetDisplacement(displacement);
        sensor->SetDisplacement(move * displacement);
    }
}

/// Takes a body out of its sensor, which it lets go, then out of the entries of its lists in their
/// order, up to the first failure, which is the result.
template <class Body, class Sensor, class... Lists>
KARStatus UnlinkFromBody(Body& body, KARMPSourceLocation where, KARMPLink<Sensor>& sensor,
                         const Lists&... lists)
{
    const QOBSharedHandle<Body> self(&body);
    KARStatus status = KARSuccess;
    if (sensor) {
        status = sensor.Handle()->RemoveBody(self);
        sensor.Clear();
    }
    const auto unlink = [&](const auto& list) {
        if (!KARFailed(status))
            status = UnlinkAll(
                list, [&](auto& entity) { return entity.RemoveBody(self); }, where);
    };
    (unlink(lists), ...);
    return status;
}

} // namespace karmp

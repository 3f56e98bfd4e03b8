// The body of a displacement sensor, in space or in a plane.
#pragma once

#include "KARMPLink.h"

namespace karmp {

/// Lets a sensor's body go and has it forget the sensor, whose failure is the result.
template <class Sensor, class Body>
KARStatus LeaveMeasuredBody(const QOBSharedHandle<Sensor>& sensor, KARMPLink<Body>& link)
{
    if (!link)
        return KARSuccess;
    const KARStatus status = link.Take()->RemoveDisplacementSensor(sensor);
    return KARFailed(status) ? status : KARSuccess;
}

} // namespace karmp

// How every sensor has its loader measure.
#pragma once

#include "KARIMPEntityLoader.h"
#include "KARMPFailedCheck.h"
#include "KARMPSensor.h"

namespace karmp {

/// Has an active sensor's loader update, fetched through the sensor's GetLoader for that interface.
/// No loader, a failing fetch of it and a failing loader are each a failed check and a failure. An
/// inactive sensor gives `inactive`.
template <class Loader, class Sensor>
KARStatus UpdateByLoader(const Sensor& sensor, KARStatus inactive,
                         KARMPSourceLocation where = KARMPSourceLocation::current())
{
    if (!sensor.IsActive())
        return inactive;
    Loader* loader = nullptr;
    if (!KARMPVerify(!KARFailed(sensor.GetLoader(loader)), where))
        return KARFailure;
    if (!KARMPVerify(loader != nullptr, where))
        return KARFailure;
    return KARMPVerify(!KARFailed(loader->Update()), where) ? KARSuccess : KARFailure;
}

} // namespace karmp

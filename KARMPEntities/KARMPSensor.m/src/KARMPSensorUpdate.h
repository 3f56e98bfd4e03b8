// How every sensor turns to its loader.
#pragma once

#include "KARIMPSensorLoader.h"
#include "KARMPFailedCheck.h"
#include "KARMPSensor.h"

namespace karmp {

/// Gives a sensor's loader through the GetLoader that the sensor's class has for that interface. A
/// class without one asks the entity's GetLoader, and a loader of another kind counts as none.
template <class Loader, class Sensor>
KARStatus GetSensorLoader(const Sensor& sensor, Loader*& loader)
{
    if constexpr (requires { sensor.GetLoader(loader); }) {
        return sensor.GetLoader(loader);
    } else {
        KARIMPEntityLoader* attached = nullptr;
        const KARStatus status = sensor.GetLoader(attached);
        loader = dynamic_cast<Loader*>(attached);
        return status;
    }
}

/// Gives what `ask` returns with a sensor's loader. No loader and a failing fetch of it are each a
/// failed check and a failure.
template <class Loader, class Sensor, class Ask>
KARStatus AskSensorLoader(const Sensor& sensor, Ask ask,
                          KARMPSourceLocation where = KARMPSourceLocation::current())
{
    Loader* loader = nullptr;
    if (!KARMPVerify(!KARFailed(GetSensorLoader(sensor, loader)), where))
        return KARFailure;
    return KARMPVerify(loader != nullptr, where) ? ask(*loader) : KARFailure;
}

/// Has a sensor's loader measure, whether the sensor is active or not; 0 when it did. No loader, a
/// failing fetch of it and a failing loader are each a failed check and a failure.
template <class Loader, class Sensor>
KARStatus UpdateByLoader(const Sensor& sensor,
                         KARMPSourceLocation where = KARMPSourceLocation::current())
{
    const auto update = [where](Loader& loader) {
        return KARMPVerify(!KARFailed(loader.Update()), where) ? KARSuccess : KARFailure;
    };
    return AskSensorLoader<Loader>(sensor, update, where);
}

/// The same for an active sensor; an inactive one gives `inactive` and does not ask.
template <class Loader, class Sensor>
KARStatus UpdateIfActive(const Sensor& sensor, KARStatus inactive,
                         KARMPSourceLocation where = KARMPSourceLocation::current())
{
    return sensor.IsActive() ? UpdateByLoader<Loader>(sensor, where) : inactive;
}

} // namespace karmp

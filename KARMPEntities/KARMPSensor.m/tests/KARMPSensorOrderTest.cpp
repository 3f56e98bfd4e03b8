#include "KARMPCollisionSensor.h"
#include "KARMPConnectorSpatialForceSensor.h"
#include "KARMPJointDOFSensor.h"
#include "KARMPJointSpatialForceSensor.h"
#include "KARMPMotorForceSensor.h"
#include "KARMPProximitySensor.h"
#include "VirtualSlot.h"

// Applications derive from these classes and are built apart from the library, so the order of the
// virtual operations is part of its interface.

#if defined(__GNUC__) && defined(__x86_64__)

namespace {

/// The slot of the GetLoader for the interface of a class's own.
template <class Sensor, class Loader>
std::size_t LoaderSlot()
{
    using GetLoader = KARStatus (Sensor::*)(Loader*&) const;
    return VirtualSlot(static_cast<GetLoader>(&Sensor::GetLoader));
}

TEST(SensorOrder, ASensorsWayToItsLoaderStandsBehindTheOperationsOfSensors)
{
    const std::size_t last = VirtualSlot(&KARMPSensor::RemoveConstraint);
    ExpectSlotsBehind(last, {LoaderSlot<KARMPJointDOFSensor, KARIMPJointDOFSensorLoader>()});
    ExpectSlotsBehind(last, {LoaderSlot<KARMPMotorForceSensor, KARIMPMotorForceSensorLoader>()});
    ExpectSlotsBehind(
        last, {LoaderSlot<KARMPJointSpatialForceSensor, KARIMPJointSpatialForceSensorLoader>()});
    ExpectSlotsBehind(
        last,
        {LoaderSlot<KARMPConnectorSpatialForceSensor, KARIMPConnectorSpatialForceSensorLoader>()});
    ExpectSlotsBehind(last, {LoaderSlot<KARMPCollisionSensor, KARIMPCollisionSensorLoader>()});
    ExpectSlotsBehind(last, {LoaderSlot<KARMPProximitySensor, KARIMPProximitySensorLoader>()});
}

} // namespace

#endif

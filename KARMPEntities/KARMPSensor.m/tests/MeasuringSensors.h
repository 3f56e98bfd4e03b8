// The sensors that measure one entity each, as far as they behave alike.
#pragma once

#include "ConcreteEntity.h"
#include "KARIMPJointDOFSensorLoader.h"
#include "KARIMPMotorForceSensorLoader.h"
#include "KARMPBody.h"
#include "KARMPConnector.h"
#include "KARMPConnectorSpatialForceSensor.h"
#include "KARMPConstraintSensor.h"
#include "KARMPDisplacementSensor.h"
#include "KARMPJointDOFSensor.h"
#include "KARMPJointKinds.h"
#include "KARMPJointSpatialForceSensor.h"
#include "KARMPMotor.h"
#include "KARMPMotorForceSensor.h"
#include "KARMPPlainConstraints.h"
#include "KARMPTestFixture.h"
#include "RecordingSensorLoader.h"

#include <gtest/gtest.h>

#include <string>

/// An entity with the identifier "target"; ConcreteEntity makes the like.
template <class T>
QOBSharedHandle<T> MakeIdentified()
{
    const QOBSharedHandle<T> target = T::create(L"target");
    target->SetIdentifier(L"target");
    return target;
}

/// Each of these names a sensor, what it measures, and its loader with the status of an inactive
/// update. `ReportsOfFetch` is the number of failed checks of an update whose loader cannot be
/// fetched: a GetLoader of the class's own makes one as well.
struct DisplacementSensing
{
    using Sensor = KARMPDisplacementSensor;
    using Target = KARMPBody;
    using Loader = RecordingSensorLoader;
    static constexpr KARStatus Inactive = KARSuccess;
    static constexpr std::size_t ReportsOfFetch = 1;
    static constexpr auto Set = &Sensor::SetBody;
    static constexpr auto Get = &Sensor::GetBody;
    static constexpr const wchar_t* Element = L"DisplacementSensor";
    static constexpr const wchar_t* Reference = L"Body";
    static QOBSharedHandle<Target> MakeTarget() { return MakeIdentified<KARMPBody>(); }
};

struct JointDOFSensing
{
    using Sensor = KARMPJointDOFSensor;
    using Target = KARMPJoint;
    using Loader = RecordingSensorLoaderOf<KARIMPJointDOFSensorLoader>;
    static constexpr KARStatus Inactive = KARUnchanged;
    static constexpr std::size_t ReportsOfFetch = 2;
    static constexpr auto Set = &Sensor::SetJoint;
    static constexpr auto Get = &Sensor::GetJoint;
    static constexpr const wchar_t* Element = L"JointDOFSensor";
    static constexpr const wchar_t* Reference = L"Joint";
    static QOBSharedHandle<Target> MakeTarget() { return MakeIdentified<KARMPRevolute>(); }
};

struct JointSpatialForceSensing
{
    using Sensor = KARMPJointSpatialForceSensor;
    using Target = KARMPJoint;
    using Loader = RecordingJointSpatialForceLoader;
    static constexpr KARStatus Inactive = KARUnchanged;
    static constexpr std::size_t ReportsOfFetch = 2;
    static constexpr auto Set = &Sensor::SetJoint;
    static constexpr auto Get = &Sensor::GetJoint;
    static constexpr const wchar_t* Element = L"JointSpatialForceSensor";
    static constexpr const wchar_t* Reference = L"Joint";
    static QOBSharedHandle<Target> MakeTarget() { return MakeIdentified<KARMPRevolute>(); }
};

struct ConnectorSpatialForceSensing
{
    using Sensor = KARMPConnectorSpatialForceSensor;
    using Target = KARMPConnector;
    using Loader = RecordingConnectorSpatialForceLoader;
    static constexpr KARStatus Inactive = KARUnchanged;
    static constexpr std::size_t ReportsOfFetch = 2;
    static constexpr auto Set = &Sensor::SetConnector;
    static constexpr auto Get = &Sensor::GetConnector;
    static constexpr const wchar_t* Element = L"ConnectorSpatialForceSensor";
    static constexpr const wchar_t* Reference = L"Connector";
    static QOBSharedHandle<Target> MakeTarget()
    {
        return QOBSharedHandle<Target>(ConcreteEntity<KARMPConnector>::create(L"target"));
    }
};

struct MotorForceSensing
{
    using Sensor = KARMPMotorForceSensor;
    using Target = KARMPMotor;
    using Loader = RecordingSensorLoaderOf<KARIMPMotorForceSensorLoader>;
    static constexpr KARStatus Inactive = KARUnchanged;
    static constexpr std::size_t ReportsOfFetch = 2;
    static constexpr auto Set = &Sensor::SetMotor;
    static constexpr auto Get = &Sensor::GetMotor;
    static constexpr const wchar_t* Element = L"MotorForceSensor";
    static constexpr const wchar_t* Reference = L"Motor";
    static QOBSharedHandle<Target> MakeTarget() { return MakeIdentified<KARMPMotor>(); }
};

/// This one has its base's update.
struct ConstraintSensing
{
    using Sensor = KARMPConstraintSensor;
    using Target = KARMPConstraint;
    static constexpr auto Set = &Sensor::SetConstraint;
    static constexpr auto Get = &Sensor::GetConstraint;
    static constexpr const wchar_t* Element = L"ConstraintSensor";
    static constexpr const wchar_t* Reference = L"Constraint";
    static QOBSharedHandle<Target> MakeTarget() { return MakeIdentified<KARMPConcentricity>(); }
};

/// A sensor and what it measures.
template <class Kind>
class MeasuringSensor : public KARMPTestFixture
{
protected:
    using Concrete = ConcreteEntity<typename Kind::Sensor>;
    using Target = QOBSharedHandle<typename Kind::Target>;

    ~MeasuringSensor() override
    {
        sensor->orphanObject();
        target->orphanObject();
    }
    KARStatus Set(const Target& one) { return ((*sensor).*Kind::Set)(one); }
    KARStatus Get(Target& found) const { return ((*sensor).*Kind::Get)(found); }

    SensorLoaderRecord record;
    QOBSharedHandle<Concrete> sensor = Concrete::create(L"s");
    Target target = Kind::MakeTarget();
};

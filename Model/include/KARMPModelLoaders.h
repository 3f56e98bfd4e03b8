// What a solver attaches to entities, with all that it does not need: classes to derive from, and
// loaders that call a function.
#pragma once

#include "KARIMPBodyLoader.h"
#include "KARIMPCollisionSensorLoader.h"
#include "KARIMPConnectorSpatialForceSensorLoader.h"
#include "KARIMPJointDOFSensorLoader.h"
#include "KARIMPJointSpatialForceSensorLoader.h"
#include "KARIMPMotorForceSensorLoader.h"
#include "KARIMPProximitySensorLoader.h"
#include "KARIMPVariableLoader.h"
#include "KARMPModelExport.h"

#include <type_traits>
#include <utility>

class KARMPCollisionSensor;
class KARMPConnectorSpatialForceSensor;
class KARMPJointDOFSensor;
class KARMPJointSpatialForceSensor;
class KARMPMotorForceSensor;
class KARMPProximitySensor;
class KARMPSensor;

namespace karmp::model {

/// A body's loader that does nothing, and has no motion to tell: KARNotImplemented. A class that is
/// derived from it overrides what it wants to hear.
class BodyLoader : public KARIMPBodyLoader
{
public:
    KARStatus ApplyTransformation(const KARMathTransformation&) override { return KARSuccess; }
    KARStatus SetLoaderVelocity(const KARMathVector&, const KARMathVector&) override
    {
        return KARSuccess;
    }
    KARStatus ReadVelocity(KARMathVector&, KARMathVector&, KARMathPoint&) override
    {
        return KARNotImplemented;
    }
    KARStatus ReadAcceleration(KARMathVector&, KARMathVector&, KARMathPoint&) override
    {
        return KARNotImplemented;
    }
    KARStatus HoldBody() override { return KARSuccess; }
    KARStatus ReleaseBody() override { return KARSuccess; }
    KARStatus ReadVelocityAndAcceleration(KARMathVector&, KARMathVector&, KARMathVector&,
                                          KARMathVector&, KARMathPoint&, unsigned char&,
                                          KARMathLine&, karmp::PointWhereToComputeVelAndAcc,
                                          const KARMathPoint*, const QOBSharedHandle<KARMPBody>&,
                                          const KARMathAxis*) override
    {
        return KARNotImplemented;
    }
    KARStatus OnActivate() override { return KARSuccess; }
    KARStatus OnDeactivate() override { return KARSuccess; }
};

/// The same for a variable.
class VariableLoader : public KARIMPVariableLoader
{
public:
    KARStatus SetValue(double) override { return KARSuccess; }
    KARStatus SetMinValue(double) override { return KARSuccess; }
    KARStatus SetMaxValue(double) override { return KARSuccess; }
    KARStatus Fix() override { return KARSuccess; }
    KARStatus Unfix() override { return KARSuccess; }
    KARStatus OnActivate() override { return KARSuccess; }
    KARStatus OnDeactivate() override { return KARSuccess; }
};

/// A variable's loader that calls a function with each new value, in the variable's unit.
template <class Hear>
class ValueLoader : public VariableLoader
{
public:
    /// Keeps the function, which takes a double.
    explicit ValueLoader(Hear hear) : m_hear(std::move(hear)) {}
    KARStatus SetValue(double value) override
    {
        m_hear(value);
        return KARSuccess;
    }

private:
    Hear m_hear;
};

/// The loader on the force in a joint, which reads the frames of what the joint is held on.
class KARMP_MODEL_API JointForceLoader : public KARIMPJointSpatialForceSensorLoader
{
public:
    /// On a sensor, which outlives it.
    explicit JointForceLoader(const KARMPSensor& sensor) : m_sensor(&sensor) {}
    /// The frame on the first body.
    KARStatus ReadJointFrame(KARMathAxis& frame) override;
    KARStatus ReadFrame(KARMPAxisMode::Enum mode, KARMathAxis& frame) override;

private:
    const KARMPSensor* m_sensor;
};

/// The same for a connector.
class KARMP_MODEL_API ConnectorForceLoader : public KARIMPConnectorSpatialForceSensorLoader
{
public:
    /// On a sensor, which outlives it.
    explicit ConnectorForceLoader(const KARMPSensor& sensor) : m_sensor(&sensor) {}
    /// The frame on the first body.
    KARStatus ReadConnectorFrame(KARMathAxis& frame) override;
    KARStatus ReadFrame(KARMPAxisMode::Enum mode, KARMathAxis& frame) override;

private:
    const KARMPSensor* m_sensor;
};

/// A loader of a kind that knows nothing of its sensor.
template <class Interface>
class PlainLoader : public Interface
{
public:
    /// Takes a sensor as the other ones do.
    explicit PlainLoader(const KARMPSensor&) {}
};

/// The loader that a class of sensors takes.
template <class S>
struct LoaderOf : std::type_identity<PlainLoader<KARIMPSensorLoader>>
{};
template <>
struct LoaderOf<KARMPCollisionSensor> : std::type_identity<PlainLoader<KARIMPCollisionSensorLoader>>
{};
template <>
struct LoaderOf<KARMPConnectorSpatialForceSensor> : std::type_identity<ConnectorForceLoader>
{};
template <>
struct LoaderOf<KARMPJointDOFSensor> : std::type_identity<PlainLoader<KARIMPJointDOFSensorLoader>>
{};
template <>
struct LoaderOf<KARMPJointSpatialForceSensor> : std::type_identity<JointForceLoader>
{};
template <>
struct LoaderOf<KARMPMotorForceSensor>
    : std::type_identity<PlainLoader<KARIMPMotorForceSensorLoader>>
{};
template <>
struct LoaderOf<KARMPProximitySensor> : std::type_identity<PlainLoader<KARIMPProximitySensorLoader>>
{};

/// The loader of a sensor that fills it in by a function at each update.
template <class S, class Fill>
class FillingLoader : public LoaderOf<S>::type
{
public:
    /// On a sensor, which outlives it; keeps the function, which takes the sensor.
    FillingLoader(S& sensor, Fill fill)
        : LoaderOf<S>::type(sensor), m_sensor(&sensor), m_fill(std::move(fill))
    {}
    /// Calls the function.
    KARStatus Update() override
    {
        m_fill(*m_sensor);
        return KARSuccess;
    }
    /// Nothing to do.
    KARStatus OnActivate() override { return KARSuccess; }
    /// Nothing to do.
    KARStatus OnDeactivate() override { return KARSuccess; }

private:
    S* m_sensor;
    Fill m_fill;
};

} // namespace karmp::model

#pragma once

#include "KARMPEntities.h"
#include "MechanismQueries.h"

#include <functional>
#include <utility>
#include <vector>

/// A solver's loader on a sensor: each update fills the sensor in by its setters, and keeps one
/// number of the result.
template <class Loader, class Sensor>
class RecordingLoader : public Loader
{
public:
    using Measure = std::function<double(Sensor&)>;

    RecordingLoader(Sensor& sensor, std::vector<double>& record, Measure measure)
        : m_sensor(sensor), m_record(record), m_measure(std::move(measure))
    {}

    KARStatus Update() override
    {
        m_record.push_back(m_measure(m_sensor));
        return KARSuccess;
    }
    KARStatus OnActivate() override { return KARSuccess; }
    KARStatus OnDeactivate() override { return KARSuccess; }

protected:
    Sensor& m_sensor; // owns the loader

private:
    std::vector<double>& m_record;
    Measure m_measure;
};

/// A loader on the force in a joint knows the frames of the joint's bodies, too.
class JointForceLoader
    : public RecordingLoader<KARIMPJointSpatialForceSensorLoader, KARMPJointSpatialForceSensor>
{
public:
    using RecordingLoader::RecordingLoader;

    KARStatus ReadJointFrame(KARMathAxis& frame) override
    {
        return ReadFrame(KARMPAxisMode::FirstBody, frame);
    }
    KARStatus ReadFrame(KARMPAxisMode::Enum mode, KARMathAxis& frame) override
    {
        QOBSharedHandle<KARMPJoint> joint;
        QOBSharedHandle<KARMPConstraint> constraint;
        QOBSharedHandle<KARMPGeometry> geometry;
        QOBSharedHandle<KARMPBody> body;
        m_sensor.GetJoint(joint);
        joint->GetConstraint(0, constraint);
        constraint->GetLinkedGeometry(mode == KARMPAxisMode::FirstBody ? 0 : 1, geometry);
        geometry->GetBody(body);
        QOBSharedHandle<KARMPAxisSystem>(geometry)->GetAxisSystem(frame);
        frame = PositionOf(*body) * frame;
        return KARSuccess;
    }
};

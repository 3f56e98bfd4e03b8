#pragma once

#include "KARIMPConnectorSpatialForceSensorLoader.h"
#include "KARIMPJointSpatialForceSensorLoader.h"
#include "KARIMPSensorLoader.h"
#include "KARMathAxis.h"
#include "RecordingEntityLoader.h"

#include <functional>

/// The record of one or more loaders of sensors.
struct SensorLoaderRecord : LoaderRecord
{
    /// What a loader does to its sensor when it is told to measure; nothing unless set.
    std::function<void()> measure;
    /// What is read as a frame, and the mode with which it was asked for last.
    KARMathAxis frame;
    int mode = -1;
};

/// A loader of a sensor, of any interface, that records its updates and measures what a test wants.
template <class Interface>
class RecordingSensorLoaderOf : public RecordingLoader<Interface>
{
public:
    explicit RecordingSensorLoaderOf(SensorLoaderRecord& record)
        : RecordingLoader<Interface>(record), m_sensor(record)
    {}

    KARStatus Update() override
    {
        if (m_sensor.measure)
            m_sensor.measure();
        return m_sensor.Note("Update");
    }

protected:
    SensorLoaderRecord& m_sensor;
};

using RecordingSensorLoader = RecordingSensorLoaderOf<KARIMPSensorLoader>;

/// A loader of a sensor of spatial forces.
template <class Interface>
class RecordingSpatialForceLoaderOf : public RecordingSensorLoaderOf<Interface>
{
public:
    using RecordingSensorLoaderOf<Interface>::RecordingSensorLoaderOf;

    KARStatus ReadFrame(KARMPAxisMode::Enum mode, KARMathAxis& frame) override
    {
        this->m_sensor.mode = mode;
        return Give("ReadFrame", frame);
    }

protected:
    KARStatus Give(const char* call, KARMathAxis& frame)
    {
        frame = this->m_sensor.frame;
        return this->m_sensor.Note(call);
    }
};

class RecordingJointSpatialForceLoader
    : public RecordingSpatialForceLoaderOf<KARIMPJointSpatialForceSensorLoader>
{
public:
    using RecordingSpatialForceLoaderOf::RecordingSpatialForceLoaderOf;

    KARStatus ReadJointFrame(KARMathAxis& frame) override { return Give("ReadJointFrame", frame); }
};

class RecordingConnectorSpatialForceLoader
    : public RecordingSpatialForceLoaderOf<KARIMPConnectorSpatialForceSensorLoader>
{
public:
    using RecordingSpatialForceLoaderOf::RecordingSpatialForceLoaderOf;

    KARStatus ReadConnectorFrame(KARMathAxis& frame) override
    {
        return Give("ReadConnectorFrame", frame);
    }
};

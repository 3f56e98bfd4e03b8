// The actuators' loaders, which record what they were told.
#pragma once

#include "KARIMPDisplacementActuator2DLoader.h"
#include "KARIMPDisplacementActuatorLoader.h"
#include "KARIMPJointForceActuatorLoader.h"
#include "KARIMPMotorLoader.h"
#include "KARIMPSpatialForceActuator2DLoader.h"
#include "KARIMPSpatialForceActuatorLoader.h"
#include "KARMathLine.h"
#include "KARMathLine2D.h"
#include "KARMathPoint.h"
#include "KARMathPoint2D.h"
#include "KARMathTransformation.h"
#include "KARMathTransformation2D.h"
#include "RecordingEntityLoader.h"

#include <type_traits>

/// The loader of a displacement actuator in space or in a plane.
template <class Interface, class Transformation, class Line>
class RecordingMoveLoader : public RecordingLoader<Interface>
{
public:
    using RecordingLoader<Interface>::RecordingLoader;

    KARStatus SetDisplacement(const Transformation& given) override
    {
        displacement = given;
        return this->m_record.Note("SetDisplacement");
    }
    KARStatus SetDisplacementByDragLine(const Line& given) override
    {
        line = given;
        return this->m_record.Note("SetDisplacementByDragLine");
    }
    KARStatus GetMoveStatus(KARMPMoveStatus::Enum& status) override
    {
        status = moveStatus;
        return this->m_record.Note("GetMoveStatus");
    }

    Transformation displacement;
    Line line;
    KARMPMoveStatus::Enum moveStatus = static_cast<KARMPMoveStatus::Enum>(3);
};
using RecordingDisplacementActuatorLoader =
    RecordingMoveLoader<KARIMPDisplacementActuatorLoader, KARMathTransformation, KARMathLine>;
using RecordingDisplacementActuator2DLoader =
    RecordingMoveLoader<KARIMPDisplacementActuator2DLoader, KARMathTransformation2D, KARMathLine2D>;

class RecordingMotorLoader : public RecordingLoader<KARIMPMotorLoader>
{
public:
    using RecordingLoader::RecordingLoader;
    using Value = QOBSharedHandle<KARMPValue>;

    KARStatus SetPosition(const Value& value) override { return Take(value, "SetPosition"); }
    KARStatus SetVelocity(const Value& value) override { return Take(value, "SetVelocity"); }
    KARStatus SetAcceleration(const Value& value) override
    {
        return Take(value, "SetAcceleration");
    }
    KARStatus SetMaxForce(const Value& value) override { return Take(value, "SetMaxForce"); }

    Value last;

private:
    KARStatus Take(const Value& value, const char* call)
    {
        last = value;
        return m_record.Note(call);
    }
};

class RecordingJointForceActuatorLoader : public RecordingLoader<KARIMPJointForceActuatorLoader>
{
public:
    using RecordingLoader::RecordingLoader;

    KARStatus UpdateForce() override { return m_record.Note("UpdateForce"); }
    KARStatus SetForce(const QOBSharedHandle<KARMPValue>& given) override
    {
        force = given;
        return m_record.Note("SetForce");
    }
    KARStatus SetIndexDOF(int) override { return m_record.Note("SetIndexDOF"); }
    KARStatus SetJoint(const QOBSharedHandle<KARMPJoint>& given) override
    {
        joint = given;
        return m_record.Note("SetJoint");
    }

    QOBSharedHandle<KARMPValue> force;
    QOBSharedHandle<KARMPJoint> joint;
};

class RecordingSpatialForceActuatorLoader : public RecordingLoader<KARIMPSpatialForceActuatorLoader>
{
public:
    using RecordingLoader::RecordingLoader;

    KARStatus UpdateForce() override { return m_record.Note("UpdateForce"); }
    KARStatus SetForce(const Components& given) override
    {
        force = given;
        return m_record.Note("SetForce");
    }
    KARStatus SetTorque(const Components& given) override
    {
        torque = given;
        return m_record.Note("SetTorque");
    }
    KARStatus SetBody(const QOBSharedHandle<KARMPBody>& given) override
    {
        body = given;
        return m_record.Note("SetBody");
    }
    KARStatus SetApplicationPoint(const KARMathPoint& given) override
    {
        point = given;
        return m_record.Note("SetApplicationPoint");
    }

    Components force;
    Components torque;
    QOBSharedHandle<KARMPBody> body;
    KARMathPoint point;
};

class RecordingSpatialForceActuator2DLoader
    : public RecordingLoader<KARIMPSpatialForceActuator2DLoader>
{
public:
    using RecordingLoader::RecordingLoader;

    KARStatus UpdateForce() override { return m_record.Note("UpdateForce"); }
    KARStatus SetForce(const ForceComponents& given) override
    {
        force = given;
        return m_record.Note("SetForce");
    }
    KARStatus SetTorque(const TorqueComponents& given) override
    {
        torque = given;
        return m_record.Note("SetTorque");
    }
    KARStatus SetBody(const QOBSharedHandle<KARMPBody2D>& given) override
    {
        body = given;
        return m_record.Note("SetBody");
    }
    KARStatus SetApplicationPoint(const KARMathPoint2D& given) override
    {
        point = given;
        return m_record.Note("SetApplicationPoint");
    }

    ForceComponents force;
    TorqueComponents torque;
    QOBSharedHandle<KARMPBody2D> body;
    KARMathPoint2D point;
};

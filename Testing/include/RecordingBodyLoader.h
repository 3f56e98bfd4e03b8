#pragma once

#include "KARIMPBody2DLoader.h"
#include "KARIMPBodyLoader.h"
#include "KARMPPointWhereToComputeVelAndAcc.h"
#include "KARMathAxis.h"
#include "KARMathAxis2D.h"
#include "KARMathLine.h"
#include "KARMathLine2D.h"
#include "KARMathTransformation.h"
#include "KARMathTransformation2D.h"
#include "RecordingEntityLoader.h"

/// The types in which a body's loader speaks of motion.
struct SpatialMotion
{
    using Interface = KARIMPBodyLoader;
    using Body = KARMPBody;
    using Transformation = KARMathTransformation;
    using Vector = KARMathVector;
    using Angular = KARMathVector;
    using AngularArgument = const KARMathVector&;
    using Point = KARMathPoint;
    using Line = KARMathLine;
    using Axis = KARMathAxis;
};
struct PlanarMotion
{
    using Interface = KARIMPBody2DLoader;
    using Body = KARMPBody2D;
    using Transformation = KARMathTransformation2D;
    using Vector = KARMathVector2D;
    using Angular = double;
    using AngularArgument = double;
    using Point = KARMathPoint2D;
    using Line = KARMathLine2D;
    using Axis = KARMathAxis2D;
};

/// The record of one or more loaders of bodies.
template <class Motion>
struct MotionRecord : LoaderRecord
{
    /// The operation that fails instead of giving `answer`.
    std::string failing;
    std::vector<typename Motion::Transformation> moves;
    /// What was given by SetLoaderVelocity, and what the reading operations give.
    typename Motion::Vector linearVelocity;
    typename Motion::Angular angularVelocity{};
    typename Motion::Vector linearAcceleration;
    typename Motion::Angular angularAcceleration{};
    typename Motion::Point point;
    unsigned char hasAxis = 0;
    typename Motion::Line axis;
    /// What was passed along with the last question.
    int where = -1;
    const typename Motion::Point* at = nullptr;
    const void* reference = nullptr;
    const typename Motion::Axis* frame = nullptr;

    KARStatus Note(const char* call)
    {
        return failing == call ? (LoaderRecord::Note(call), KARFailure) : LoaderRecord::Note(call);
    }
};
using BodyLoaderRecord = MotionRecord<SpatialMotion>;
using Body2DLoaderRecord = MotionRecord<PlanarMotion>;

/// A body's loader that records what it was told and moves as a test wants.
template <class Motion>
class RecordingMotionLoader : public RecordingLoader<typename Motion::Interface>
{
public:
    using Vector = typename Motion::Vector;
    using Angular = typename Motion::Angular;
    using Point = typename Motion::Point;

    explicit RecordingMotionLoader(MotionRecord<Motion>& record)
        : RecordingLoader<typename Motion::Interface>(record), m_body(record)
    {}

    KARStatus ApplyTransformation(const typename Motion::Transformation& relative) override
    {
        m_body.moves.push_back(relative);
        return m_body.Note("ApplyTransformation");
    }
    KARStatus SetLoaderVelocity(const Vector& linear,
                                typename Motion::AngularArgument angular) override
    {
        m_body.linearVelocity = linear;
        m_body.angularVelocity = angular;
        return m_body.Note("SetLoaderVelocity");
    }
    KARStatus ReadVelocity(Vector& linear, Angular& angular, Point& point) override
    {
        linear = m_body.linearVelocity;
        angular = m_body.angularVelocity;
        point = m_body.point;
        return m_body.Note("ReadVelocity");
    }
    KARStatus ReadAcceleration(Vector& linear, Angular& angular, Point& point) override
    {
        linear = m_body.linearAcceleration;
        angular = m_body.angularAcceleration;
        point = m_body.point;
        return m_body.Note("ReadAcceleration");
    }
    KARStatus HoldBody() override { return m_body.Note("HoldBody"); }
    KARStatus ReleaseBody() override { return m_body.Note("ReleaseBody"); }
    KARStatus ReadVelocityAndAcceleration(Vector& linearVelocity, Angular& angularVelocity,
                                          Vector& linearAcceleration, Angular& angularAcceleration,
                                          Point& point, unsigned char& hasAxis,
                                          typename Motion::Line& axis,
                                          karmp::PointWhereToComputeVelAndAcc where,
                                          const Point* at,
                                          const QOBSharedHandle<typename Motion::Body>& reference,
                                          const typename Motion::Axis* frame) override
    {
        linearVelocity = m_body.linearVelocity;
        angularVelocity = m_body.angularVelocity;
        linearAcceleration = m_body.linearAcceleration;
        angularAcceleration = m_body.angularAcceleration;
        point = m_body.point;
        hasAxis = m_body.hasAxis;
        axis = m_body.axis;
        m_body.where = where;
        m_body.at = at;
        m_body.reference = reference._getReferent();
        m_body.frame = frame;
        return m_body.Note("ReadVelocityAndAcceleration");
    }

protected:
    MotionRecord<Motion>& m_body;
};
using RecordingBodyLoader = RecordingMotionLoader<SpatialMotion>;

class RecordingBody2DLoader : public RecordingMotionLoader<PlanarMotion>
{
public:
    using RecordingMotionLoader::RecordingMotionLoader;

    KARStatus HoldBody2D() override { return m_body.Note("HoldBody2D"); }
    KARStatus ReleaseBody2D() override { return m_body.Note("ReleaseBody2D"); }
    KARStatus HoldBody3D() override { return m_body.Note("HoldBody3D"); }
    KARStatus ReleaseBody3D() override { return m_body.Note("ReleaseBody3D"); }
    KARStatus ActivateComputationForKIN() override
    {
        return m_body.Note("ActivateComputationForKIN");
    }
};

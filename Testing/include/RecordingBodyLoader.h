#pragma once

#include "KARIMPBodyLoader.h"
#include "KARMPPointWhereToComputeVelAndAcc.h"
#include "KARMathAxis.h"
#include "KARMathLine.h"
#include "KARMathTransformation.h"
#include "RecordingEntityLoader.h"

/// The record of one or more loaders of bodies.
struct BodyLoaderRecord : LoaderRecord
{
    /// The operation that fails instead of giving `answer`.
    std::string failing;
    std::vector<KARMathTransformation> moves;
    /// What was given by SetLoaderVelocity, and what the reading operations give.
    KARMathVector linearVelocity;
    KARMathVector angularVelocity;
    KARMathVector linearAcceleration;
    KARMathVector angularAcceleration;
    KARMathPoint point;
    unsigned char hasAxis = 0;
    KARMathLine axis;
    /// What was passed along with the last question.
    int where = -1;
    const KARMathPoint* at = nullptr;
    const void* reference = nullptr;
    const KARMathAxis* frame = nullptr;

    KARStatus Note(const char* call)
    {
        return failing == call ? (LoaderRecord::Note(call), KARFailure) : LoaderRecord::Note(call);
    }
};

/// A body's loader that records what it was told and moves as a test wants.
class RecordingBodyLoader : public RecordingLoader<KARIMPBodyLoader>
{
public:
    explicit RecordingBodyLoader(BodyLoaderRecord& record) : RecordingLoader(record), m_body(record)
    {}

    KARStatus ApplyTransformation(const KARMathTransformation& relative) override
    {
        m_body.moves.push_back(relative);
        return m_body.Note("ApplyTransformation");
    }
    KARStatus SetLoaderVelocity(const KARMathVector& linear, const KARMathVector& angular) override
    {
        m_body.linearVelocity = linear;
        m_body.angularVelocity = angular;
        return m_body.Note("SetLoaderVelocity");
    }
    KARStatus ReadVelocity(KARMathVector& linear, KARMathVector& angular,
                           KARMathPoint& point) override
    {
        linear = m_body.linearVelocity;
        angular = m_body.angularVelocity;
        point = m_body.point;
        return m_body.Note("ReadVelocity");
    }
    KARStatus ReadAcceleration(KARMathVector& linear, KARMathVector& angular,
                               KARMathPoint& point) override
    {
        linear = m_body.linearAcceleration;
        angular = m_body.angularAcceleration;
        point = m_body.point;
        return m_body.Note("ReadAcceleration");
    }
    KARStatus HoldBody() override { return m_body.Note("HoldBody"); }
    KARStatus ReleaseBody() override { return m_body.Note("ReleaseBody"); }
    KARStatus ReadVelocityAndAcceleration(
        KARMathVector& linearVelocity, KARMathVector& angularVelocity,
        KARMathVector& linearAcceleration, KARMathVector& angularAcceleration, KARMathPoint& point,
        unsigned char& hasAxis, KARMathLine& axis, karmp::PointWhereToComputeVelAndAcc where,
        const KARMathPoint* at, const QOBSharedHandle<KARMPBody>& reference,
        const KARMathAxis* frame) override
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

private:
    BodyLoaderRecord& m_body;
};

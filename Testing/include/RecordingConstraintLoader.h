// Loaders of constraints that record what they were told and answer what a test wants.
#pragma once

#include "GMKTkCompatCtx.h"
#include "KARIMPCoincidenceLoader.h"
#include "KARIMPConstraintLoader.h"
#include "KARIMPDistanceLoader.h"
#include "KARIMPTangencyLoader.h"
#include "RecordingEntityLoader.h"

#include <string>

/// The content of the tests' own.
struct KARMPOptionsOrientation
{
    int number = 0;
};

/// The record of constraint loaders, with what they answer.
struct ConstraintLoaderRecord : LoaderRecord
{
    bool satisfied = true;
    double value = 0.5;
    double rate = 0.25;
    /// Scopes of compatibility at the last call.
    int compatibility = 0;

    KARStatus NoteCall(const std::string& call)
    {
        compatibility = GMKTkCompatCtx::Depth();
        return Note(call.c_str());
    }
};

/// Answers the questions that every constraint puts.
template <class Interface = KARIMPConstraintLoader>
class RecordingConstraintLoader : public RecordingLoader<Interface>
{
public:
    using LoaderInterface = Interface;

    explicit RecordingConstraintLoader(ConstraintLoaderRecord& record)
        : RecordingLoader<Interface>(record), m_own(record)
    {}

    bool IsSatisfied(double& residual) override
    {
        Told("IsSatisfied residual");
        residual = m_own.value;
        return m_own.satisfied;
    }
    bool IsSatisfied() override
    {
        Told("IsSatisfied");
        return m_own.satisfied;
    }
    KARStatus CurrentValue(int index, double& value, double& rate) override
    {
        value = m_own.value;
        rate = m_own.rate;
        return Told("CurrentValue", index);
    }
    KARStatus CurrentValue(double& value) override
    {
        value = m_own.value;
        return Told("CurrentValue");
    }
    KARStatus UpdateParameters() override { return Told("UpdateParameters"); }
    KARStatus CurrentOptions(KARMPOptionsOrientation& options) override
    {
        options.number = 7;
        return Told("CurrentOptions");
    }

protected:
    KARStatus Told(const char* call) { return m_own.NoteCall(call); }
    KARStatus Told(const char* call, int argument)
    {
        return m_own.NoteCall(call + (" " + std::to_string(argument)));
    }
    ConstraintLoaderRecord& m_own;
};

/// Hears of the alignment besides.
template <class Interface>
class RecordingAlignmentLoader : public RecordingConstraintLoader<Interface>
{
public:
    using RecordingConstraintLoader<Interface>::RecordingConstraintLoader;

    KARStatus SetAlignment(int alignment) override { return this->Told("SetAlignment", alignment); }
};

/// Fills an array of two besides.
template <class Interface>
class RecordingParametersLoader : public RecordingAlignmentLoader<Interface>
{
public:
    using RecordingAlignmentLoader<Interface>::RecordingAlignmentLoader;

    KARStatus GetSolverConstraintParameters(double* parameters) override
    {
        parameters[0] = 1.5;
        parameters[1] = 2.5;
        return this->Told("GetSolverConstraintParameters");
    }
};

using RecordingCoincidenceLoader = RecordingParametersLoader<KARIMPCoincidenceLoader>;

class RecordingDistanceLoader : public RecordingAlignmentLoader<KARIMPDistanceLoader>
{
public:
    using RecordingAlignmentLoader::RecordingAlignmentLoader;

    KARStatus SetHalfSpace(int halfSpace) override { return Told("SetHalfSpace", halfSpace); }
};

class RecordingTangencyLoader : public RecordingParametersLoader<KARIMPTangencyLoader>
{
public:
    using RecordingParametersLoader::RecordingParametersLoader;

    KARStatus SetSurfaceOrientation(int orientation) override
    {
        return Told("SetSurfaceOrientation", orientation);
    }
};

#pragma once

#include "KARIMPJoint2DLoader.h"
#include "KARMathAxis2D.h"
#include "RecordingEntityLoader.h"

/// A planar joint's loader that records its calls and gives the frames and kinds that a test puts
/// in.
class RecordingJoint2DLoader : public RecordingLoader<KARIMPJoint2DLoader>
{
public:
    using RecordingLoader::ReadFrames;
    using RecordingLoader::RecordingLoader;

    KARStatus ReadFrames(std::vector<KARMathAxis2D>& read) override
    {
        read.insert(read.end(), frames.begin(), frames.end());
        return m_record.Note("ReadFrames");
    }
    KARStatus ReadSolverEquivalentJointType(KARMPSolverEquivalentJointType::Enum& read) override
    {
        read = type;
        return m_record.Note("ReadSolverEquivalentJointType");
    }
    KARStatus ReadSolverEquivalentJointType2(KARMPSolverEquivalentJointType::Enum& read) override
    {
        read = type2;
        return m_record.Note("ReadSolverEquivalentJointType2");
    }

    std::vector<KARMathAxis2D> frames;
    KARMPSolverEquivalentJointType::Enum type = KARMPSolverEquivalentJointType::Revolute;
    KARMPSolverEquivalentJointType::Enum type2 = KARMPSolverEquivalentJointType::Screw;
};

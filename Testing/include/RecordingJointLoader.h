#pragma once

#include "KARIMPJointLoader.h"
#include "KARMathAxis.h"
#include "RecordingEntityLoader.h"

/// A joint's loader that records its calls and gives the frames and kinds that a test puts in.
class RecordingJointLoader : public RecordingLoader<KARIMPJointLoader>
{
public:
    using RecordingLoader::RecordingLoader;

    KARStatus ReadFrames(std::vector<KARMathAxis>& read) override
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

    std::vector<KARMathAxis> frames;
    /// A kind whose frames the loader gives.
    KARMPSolverEquivalentJointType::Enum type =
        static_cast<KARMPSolverEquivalentJointType::Enum>(5);
    KARMPSolverEquivalentJointType::Enum type2 = KARMPSolverEquivalentJointType::Screw;
};

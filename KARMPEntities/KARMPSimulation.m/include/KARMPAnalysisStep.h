#pragma once

#include "KARMPEntity.h"

/// One step of an analysis.
class KARMP_API KARMPAnalysisStep : public KARMPEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPAnalysisStep, KARMPEntity)

protected:
    KARMPAnalysisStep();
    KARMPAnalysisStep(const KARMPAnalysisStep& source, CopyMode mode);
    ~KARMPAnalysisStep() override;
};

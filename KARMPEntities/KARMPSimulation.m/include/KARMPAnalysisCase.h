#pragma once

#include "KARMPEntity.h"

/// Set-up of one analysis.
class KARMP_API KARMPAnalysisCase : public KARMPEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPAnalysisCase, KARMPEntity)

protected:
    KARMPAnalysisCase();
    KARMPAnalysisCase(const KARMPAnalysisCase& source, CopyMode mode);
    ~KARMPAnalysisCase() override;
};

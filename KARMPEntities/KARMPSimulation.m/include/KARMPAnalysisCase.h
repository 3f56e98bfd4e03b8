// Set-up of one analysis.
#pragma once

#include "KARMPEntity.h"

class KARMP_API KARMPAnalysisCase : public KARMPEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPAnalysisCase, KARMPEntity)

protected:
    KARMPAnalysisCase();
    KARMPAnalysisCase(const KARMPAnalysisCase& source, CopyMode mode);
    ~KARMPAnalysisCase() override;
};

#include "KARMPAnalysisCase.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPAnalysisCase, "55E34230-2EB9-4171-9358-B49294B3BD79");

KARMPAnalysisCase::KARMPAnalysisCase() = default;
KARMPAnalysisCase::KARMPAnalysisCase(const KARMPAnalysisCase& source, CopyMode mode)
    : Super(source, mode)
{}
KARMPAnalysisCase::~KARMPAnalysisCase() = default;

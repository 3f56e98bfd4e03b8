#include "KARMPAnalysisStep.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPAnalysisStep, "94CC8F7A-D0BF-4368-9B13-7B2CFE06E13A");

KARMPAnalysisStep::KARMPAnalysisStep() = default;
KARMPAnalysisStep::KARMPAnalysisStep(const KARMPAnalysisStep& source, CopyMode mode)
    : Super(source, mode)
{}
KARMPAnalysisStep::~KARMPAnalysisStep() = default;

#include "KARMPInitialCondition.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPInitialCondition, "F2D98B10-249A-4DF1-AB2B-E46AAE3B895C");

KARMPInitialCondition::KARMPInitialCondition() = default;
KARMPInitialCondition::KARMPInitialCondition(const KARMPInitialCondition& source, CopyMode mode)
    : Super(source, mode)
{}
KARMPInitialCondition::~KARMPInitialCondition() = default;

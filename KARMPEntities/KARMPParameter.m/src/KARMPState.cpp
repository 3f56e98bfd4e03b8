#include "KARMPState.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPState, "232A05FA-B2B5-4237-BCD8-E6FC220B7860");

KARMPState::KARMPState() = default;
KARMPState::KARMPState(const KARMPState& source, CopyMode mode) : Super(source, mode) {}
KARMPState::~KARMPState() = default;

#include "KARMPInteraction.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPInteraction, "BCA864C9-2331-46F5-B1F1-A18363EE9CDF");

KARMPInteraction::KARMPInteraction() = default;
KARMPInteraction::KARMPInteraction(const KARMPInteraction& source, CopyMode mode)
    : Super(source, mode)
{}
KARMPInteraction::~KARMPInteraction() = default;

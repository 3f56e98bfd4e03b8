#include "KARMPAttribute.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPAttribute, "138E0D53-6E69-42B5-B25C-3E2CB0A93689");

KARMPAttribute::KARMPAttribute() = default;
KARMPAttribute::KARMPAttribute(const KARMPAttribute& source, CopyMode mode) : Super(source, mode) {}
KARMPAttribute::~KARMPAttribute() = default;

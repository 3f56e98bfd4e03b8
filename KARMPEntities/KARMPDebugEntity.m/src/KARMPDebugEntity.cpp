#include "KARMPDebugEntity.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPDebugEntity, "E2951591-1871-4B80-85A9-20636423F6B6");

KARMPDebugEntity::KARMPDebugEntity() = default;
KARMPDebugEntity::KARMPDebugEntity(const KARMPDebugEntity& source, CopyMode mode)
    : Super(source, mode)
{}
KARMPDebugEntity::~KARMPDebugEntity() = default;

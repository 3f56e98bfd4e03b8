#include "KARMPGenericEntity.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPGenericEntity, "4B469FEE-1046-4C4F-8427-2027C0092622");

KARMPGenericEntity::KARMPGenericEntity() = default;
KARMPGenericEntity::KARMPGenericEntity(const KARMPGenericEntity& source, CopyMode mode)
    : Super(source, mode)
{}
KARMPGenericEntity::~KARMPGenericEntity() = default;

#include "KARMPMaterial.h"

#include "KARMPFailedCheck.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPMaterial, "0C0D92BC-2539-4d58-888F-9C582EDB1F05");

KARMPMaterial::KARMPMaterial() = default;
KARMPMaterial::KARMPMaterial(const KARMPMaterial& source, CopyMode mode) : Super(source, mode) {}
KARMPMaterial::~KARMPMaterial() = default;

KARStatus KARMPMaterial::Serialize(KARMPSerializer* serializer) const
{
    return KARMPVerify(serializer != nullptr) ? KARSuccess : KARFailure;
}

KARStatus KARMPMaterial::Deserialize(const KARMPDeserializer* deserializer, const KARMPEntityTable&)
{
    return KARMPVerify(deserializer != nullptr) ? KARSuccess : KARFailure;
}

#include "KARMPScrew.h"

#include "KARMPJointKindElement.h"

// Documents and registries know the screw as a joint, so its record names KARMPJoint as parent.
KARMP_DEFINE_ENTITY(KARMPScrew, "1DE43FB1-A0F1-439a-986F-3CBFD603DE65", KARMPJoint);

KARMPScrew::KARMPScrew() = default;
KARMPScrew::KARMPScrew(const KARMPScrew& source, CopyMode mode) : Super(source, mode) {}
KARMPScrew::~KARMPScrew() = default;

// Writing passes the coupling over and reading does not, and that is wanted: a screw is written as
// any joint, and a document that names its equation is understood all the same.
KARStatus KARMPScrew::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteKind(
        serializer, L"Screw",
        [this](auto* node) {
            return KARMPJoint::Serialize(node); // NOLINT(bugprone-parent-virtual-call)
        });
}

KARStatus KARMPScrew::Deserialize(const KARMPDeserializer* deserializer,
                                  const KARMPEntityTable& entities)
{
    return karmp::ReadKind(
        deserializer, L"Screw",
        [&](const auto* node) { return KARMPCoupling::Deserialize(node, entities); });
}

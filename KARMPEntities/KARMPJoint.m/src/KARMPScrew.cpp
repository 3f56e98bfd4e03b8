#include "KARMPScrew.h"

#include "KARMPKindDefinition.h"

// Documents and registries know the screw as a joint, so its record names KARMPJoint as parent.
KARMP_DEFINE_ENTITY(KARMPScrew, "1DE43FB1-A0F1-439a-986F-3CBFD603DE65", KARMPJoint);

template <>
struct karmp::ContentOf<KARMPScrew>
{
    static constexpr auto List = Element(
        L"Screw", "A joint that couples a rotation about an axis with the translation along it.",
        PassingFrame);
};
// The list says what is understood, a coupling's content. Its two sides have different bases, so
// the operations are written out: writing passes the coupling over and reading does not. A screw is
// written as any joint, and a document that names its equation is read all the same.
KARMP_DESCRIBE_CONTENT(KARMPScrew, KARMPCoupling);

KARMP_DEFINE_KIND_LIFE(KARMPScrew);

KARStatus KARMPScrew::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteContent<KARMPJoint>(*this, serializer);
}

KARStatus KARMPScrew::Deserialize(const KARMPDeserializer* deserializer,
                                  const KARMPEntityTable& entities)
{
    return karmp::ReadContent<KARMPCoupling>(*this, deserializer, entities);
}

#include "KARMPShapeBody.h"

#include "KARBody.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPStoredObject.h"

KARMP_DEFINE_ENTITY(KARMPShapeBody, "FCF93C86-E6C9-4FC9-B080-43952920F591");

namespace {

constexpr std::wstring_view StreamName = L"stream";
constexpr int HeaderMode = 1;

} // namespace

// Code reads the stream: what SetBody gives is the result.
template <>
struct karmp::ContentOf<KARMPShapeBody>
{
    using C = KARMPShapeBody;
    static constexpr auto Body =
        Attribute(Stream<&C::GetStream>(StreamName, "The topological body."))
            .Through<&C::SetStream>()
            .When<&C::HasBody>()
            .Required();
    static constexpr auto List =
        Element(L"ShapeBody", "The shape of a planar body as a topological body.", LenientFrame,
                Unequal(Body, Body.Coded()))
            .WrittenByList();
};
KARMP_DESCRIBE_CONTENT(KARMPShapeBody);

KARMPShapeBody::KARMPShapeBody() = default;
KARMPShapeBody::KARMPShapeBody(const KARMPShapeBody& source, CopyMode mode) : Super(source, mode)
{
    KARMPShapeBody::SetBody(source.m_body);
}
KARMPShapeBody::~KARMPShapeBody()
{
    if (m_body != nullptr)
        m_body->Release();
}

KARStatus KARMPShapeBody::SetBody(KARBody* body)
{
    if (body == nullptr)
        return KARSuccess;
    // The new one first: it may be the one that is stored.
    body->AddRef();
    if (m_body != nullptr)
        m_body->Release();
    m_body = body;
    return KARSuccess;
}

KARStatus KARMPShapeBody::GetStream(std::vector<unsigned char>& bytes) const
{
    return karmp::SaveStoredObject(GetBody(), bytes, HeaderMode) ? KARSuccess : KARFailure;
}

KARStatus KARMPShapeBody::SetStream(const std::vector<unsigned char>& bytes)
{
    const karmp::StoredObjects stored = karmp::LoadStoredObjects(bytes, HeaderMode);
    auto* const body =
        stored.objects.Size() == 1 ? KARSysDynamicCast<KARBody>(stored.objects[1]) : nullptr;
    return body != nullptr ? SetBody(body) : KARUnchanged;
}

KARStatus KARMPShapeBody::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteContent<Super>(*this, serializer);
}

KARStatus KARMPShapeBody::Deserialize(const KARMPDeserializer* deserializer,
                                      const KARMPEntityTable& entities)
{
    karmp::ElementReader element(deserializer, L"ShapeBody");
    if (!element || !element.Base(Super::Deserialize(element.Node(), entities)))
        return KARFailure;
    karmp::StreamBytes bytes;
    return karmp::ReadStreamAttribute(element, StreamName, bytes) ? SetStream(bytes) : KARFailure;
}

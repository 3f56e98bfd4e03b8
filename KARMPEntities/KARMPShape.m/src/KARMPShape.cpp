#include "KARMPShape.h"

#include "KARIMPShapeLoader.h"
#include "KARMPBody.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPLoaderAccess.h"
#include "KARMPUnlinkAll.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPShape, "22BF6BE3-9C8A-4FE2-B8D0-F2F0209BAA3E");

KARMPShape::KARMPShape() = default;
KARMPShape::KARMPShape(const KARMPShape& source, CopyMode mode) : Super(source, mode) {}
KARMPShape::~KARMPShape() = default;

void KARMPShape::ClearContainers()
{
    m_bodies.Clear();
}

KARStatus KARMPShape::RemoveParent()
{
    const QOBSharedHandle<KARMPShape> self(this);
    return karmp::UnlinkAll(m_bodies, [&self](KARMPBody& body) { return body.RemoveShape(self); });
}

KARStatus KARMPShape::GetLoader(KARIMPShapeLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPShape::LinkToBody(const QOBSharedHandle<KARMPBody>& body)
{
    return m_bodies.Add(body);
}

KARStatus KARMPShape::GetLinkedBody(int index, QOBSharedHandle<KARMPBody>& body) const
{
    if (index >= GetLinkedBodyCount()) {
        body = nullptr;
        return KARFailure;
    }
    return m_bodies.Get(index, body);
}

int KARMPShape::GetLinkedBodyCount() const
{
    return m_bodies.Count();
}

KARStatus KARMPShape::RemoveBody(const QOBSharedHandle<KARMPBody>& body)
{
    return m_bodies.Remove(body);
}

KARStatus KARMPShape::Serialize(KARMPSerializer* serializer) const
{
    karmp::ElementWriter element(serializer);
    if (!element || !element.Base(Super::Serialize(element.Node())))
        return KARFailure;
    element.References<KARMPBody>(
        L"Bodies", L"Body", GetLinkedBodyCount(),
        [this](int index, auto& body) { return GetLinkedBody(index, body); });
    return KARSuccess;
}

KARStatus KARMPShape::Deserialize(const KARMPDeserializer* deserializer,
                                  const KARMPEntityTable& entities)
{
    karmp::ElementReader element(deserializer);
    if (!element || !element.Base(Super::Deserialize(element.Node(), entities)))
        return KARFailure;
    element.References<KARMPBody>(L"Bodies", L"Body", entities,
                                  [this](const auto& body) { return LinkToBody(body); });
    return KARSuccess;
}

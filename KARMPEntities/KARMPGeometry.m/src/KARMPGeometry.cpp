#include "KARMPGeometry.h"

#include "KARIMPGeometryLoader.h"
#include "KARMPBody.h"
#include "KARMPConstraint.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPLoaderAccess.h"
#include "KARMPUnlinkAll.h"

#include <utility>

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPGeometry, "75F51E72-CC9C-44c3-AE3B-5F1AF2E51326");

KARMPGeometry::KARMPGeometry() = default;
KARMPGeometry::KARMPGeometry(const KARMPGeometry& source, CopyMode mode) : Super(source, mode) {}
KARMPGeometry::~KARMPGeometry() = default;

void KARMPGeometry::ClearContainers()
{
    m_linkedConstraints.Clear();
}

KARStatus KARMPGeometry::RemoveParent()
{
    const QOBSharedHandle<KARMPGeometry> self(this);
    if (m_body) {
        const KARStatus status = std::exchange(m_body, nullptr)->RemoveGeometry(self);
        if (KARFailed(status))
            return status;
    }
    return karmp::UnlinkAll(m_linkedConstraints, [&self](KARMPConstraint& constraint) {
        return constraint.RemoveGeometry(self);
    });
}

KARStatus KARMPGeometry::GetLoader(KARIMPGeometryLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPGeometry::SetBody(const QOBSharedHandle<KARMPBody>& body)
{
    if (!KARMPVerify(static_cast<bool>(body)))
        return KARFailure;
    m_body = body;
    return KARSuccess;
}

KARStatus KARMPGeometry::GetBody(QOBSharedHandle<KARMPBody>& body) const
{
    body = m_body;
    return body ? KARSuccess : KARFailure;
}

KARStatus KARMPGeometry::RemoveBody(const QOBSharedHandle<KARMPBody>& body)
{
    if (!KARMPVerify(static_cast<bool>(body)))
        return KARFailure;
    if (m_body != body)
        return KARUnchanged;
    m_body.detach();
    return KARSuccess;
}

KARStatus KARMPGeometry::LinkToConstraint(const QOBSharedHandle<KARMPConstraint>& constraint)
{
    return m_linkedConstraints.Add(constraint);
}

KARStatus KARMPGeometry::GetLinkedConstraint(int index,
                                             QOBSharedHandle<KARMPConstraint>& constraint) const
{
    return m_linkedConstraints.Get(index, constraint);
}

int KARMPGeometry::GetLinkedConstraintCount() const
{
    return m_linkedConstraints.Count();
}

KARStatus KARMPGeometry::RemoveConstraint(const QOBSharedHandle<KARMPConstraint>& constraint)
{
    return m_linkedConstraints.Remove(constraint);
}

KARStatus KARMPGeometry::Serialize(KARMPSerializer* serializer) const
{
    karmp::ElementWriter element(serializer);
    if (!element || !element.Base(Super::Serialize(element.Node())))
        return KARFailure;
    QOBSharedHandle<KARMPBody> body;
    if (!KARFailed(GetBody(body)))
        element.Reference(L"Body", body);
    element.References<KARMPConstraint>(
        L"Constraints", L"Constraint", GetLinkedConstraintCount(),
        [this](int index, auto& constraint) { return GetLinkedConstraint(index, constraint); });
    return KARSuccess;
}

KARStatus KARMPGeometry::Deserialize(const KARMPDeserializer* deserializer,
                                     const KARMPEntityTable& entities)
{
    karmp::ElementReader element(deserializer);
    if (!element || !element.Base(Super::Deserialize(element.Node(), entities)))
        return KARFailure;
    element.Reference<KARMPBody>(
        L"Body", entities, [this](const auto& body) { return SetBody(body); });
    element.References<KARMPConstraint>(
        L"Constraints", L"Constraint", entities,
        [this](const auto& constraint) { return LinkToConstraint(constraint); });
    return KARSuccess;
}

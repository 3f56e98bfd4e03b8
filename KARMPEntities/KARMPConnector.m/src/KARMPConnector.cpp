#include "KARMPConnector.h"

#include "KARIMPConnectorLoader.h"
#include "KARMPBody.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPGeometry.h"
#include "KARMPLoaderAccess.h"
#include "KARMPVariable.h"

#include <utility>

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPConnector, "1AD098B4-541A-4f2f-8701-6E548C40C230");

namespace {

KARStatus SetBody(QOBSharedHandle<KARMPBody>& field, const QOBSharedHandle<KARMPBody>& body)
{
    if (!KARMPVerify(static_cast<bool>(body)))
        return KARFailure;
    field = body;
    return KARSuccess;
}

} // namespace

KARMPConnector::KARMPConnector() = default;
KARMPConnector::KARMPConnector(const KARMPConnector& source, CopyMode mode) : Super(source, mode) {}
KARMPConnector::~KARMPConnector() = default;

void KARMPConnector::ClearContainers()
{
    m_linkedGeometries.Clear();
    m_linkedVariables.Clear();
}

// Only the bodies list their connectors; geometries and variables do not know them.
KARStatus KARMPConnector::RemoveParent()
{
    const QOBSharedHandle<KARMPConnector> self(this);
    for (QOBSharedHandle<KARMPBody>* field : {&m_firstBody, &m_secondBody}) {
        const QOBSharedHandle<KARMPBody> body = std::exchange(*field, nullptr);
        const KARStatus status = body ? body->RemoveConnector(self) : KARSuccess;
        if (KARFailed(status))
            return status;
    }
    return KARSuccess;
}

KARStatus KARMPConnector::GetLoader(KARIMPConnectorLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPConnector::SetFirstBody(const QOBSharedHandle<KARMPBody>& body)
{
    return SetBody(m_firstBody, body);
}

KARStatus KARMPConnector::GetFirstBody(QOBSharedHandle<KARMPBody>& body) const
{
    body = m_firstBody;
    return body ? KARSuccess : KARFailure;
}

KARStatus KARMPConnector::SetSecondBody(const QOBSharedHandle<KARMPBody>& body)
{
    return SetBody(m_secondBody, body);
}

KARStatus KARMPConnector::GetSecondBody(QOBSharedHandle<KARMPBody>& body) const
{
    body = m_secondBody;
    return body ? KARSuccess : KARFailure;
}

KARStatus KARMPConnector::LinkToGeometry(const QOBSharedHandle<KARMPGeometry>& geometry)
{
    if (!KARMPVerify(static_cast<bool>(geometry)))
        return KARFailure;
    // Asked one by one through the getter, which a class may replace; there are few of them.
    const int count = GetLinkedGeometryCount();
    for (int index = 0; index < count; ++index) {
        QOBSharedHandle<KARMPGeometry> linked;
        if (KARMPVerify(!KARFailed(GetLinkedGeometry(index, linked))) && linked == geometry)
            return KARUnchanged;
    }
    return m_linkedGeometries.Add(geometry);
}

KARStatus KARMPConnector::GetLinkedGeometry(int index,
                                            QOBSharedHandle<KARMPGeometry>& geometry) const
{
    return m_linkedGeometries.Get(index, geometry);
}

int KARMPConnector::GetLinkedGeometryCount() const
{
    return m_linkedGeometries.Count();
}

KARStatus KARMPConnector::LinkToVariable(const QOBSharedHandle<KARMPVariable>& variable)
{
    return m_linkedVariables.Add(variable);
}

KARStatus KARMPConnector::GetLinkedVariable(int index,
                                            QOBSharedHandle<KARMPVariable>& variable) const
{
    return m_linkedVariables.Get(index, variable);
}

int KARMPConnector::GetLinkedVariableCount() const
{
    return m_linkedVariables.Count();
}

KARStatus KARMPConnector::RemoveBody(const QOBSharedHandle<KARMPBody>& body)
{
    if (!KARMPVerify(static_cast<bool>(body)))
        return KARFailure;
    for (QOBSharedHandle<KARMPBody>* field : {&m_firstBody, &m_secondBody}) {
        if (*field == body) {
            field->detach();
            return KARSuccess;
        }
    }
    return KARUnchanged;
}

KARStatus KARMPConnector::RemoveGeometry(const QOBSharedHandle<KARMPGeometry>& geometry)
{
    return m_linkedGeometries.Remove(geometry);
}

KARStatus KARMPConnector::RemoveVariable(const QOBSharedHandle<KARMPVariable>& variable)
{
    return m_linkedVariables.Remove(variable);
}

KARStatus KARMPConnector::Serialize(KARMPSerializer* serializer) const
{
    karmp::ElementWriter element(serializer);
    if (!element || !element.Base(Super::Serialize(element.Node())))
        return KARFailure;
    QOBSharedHandle<KARMPBody> body;
    if (!KARFailed(GetFirstBody(body)))
        element.Reference(L"FirstBody", body);
    if (!KARFailed(GetSecondBody(body)))
        element.Reference(L"SecondBody", body);
    element.References<KARMPGeometry>(
        L"Geometries", L"Geometry", GetLinkedGeometryCount(),
        [this](int index, auto& geometry) { return GetLinkedGeometry(index, geometry); });
    element.References<KARMPVariable>(
        L"Variables", L"Variable", GetLinkedVariableCount(),
        [this](int index, auto& variable) { return GetLinkedVariable(index, variable); });
    return KARSuccess;
}

KARStatus KARMPConnector::Deserialize(const KARMPDeserializer* deserializer,
                                      const KARMPEntityTable& entities)
{
    karmp::ElementReader element(deserializer);
    if (!element || !element.Base(Super::Deserialize(element.Node(), entities)))
        return KARFailure;
    element.Reference<KARMPBody>(
        L"FirstBody", entities, [this](const auto& body) { return SetFirstBody(body); });
    element.Reference<KARMPBody>(
        L"SecondBody", entities, [this](const auto& body) { return SetSecondBody(body); });
    element.References<KARMPGeometry>(
        L"Geometries", L"Geometry", entities,
        [this](const auto& geometry) { return LinkToGeometry(geometry); });
    element.References<KARMPVariable>(
        L"Variables", L"Variable", entities,
        [this](const auto& variable) { return LinkToVariable(variable); });
    return KARSuccess;
}

#include "KARMPConnector.h"

#include "KARIMPConnectorLoader.h"
#include "KARMPBody.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPGeometry.h"
#include "KARMPLoaderAccess.h"
#include "KARMPVariable.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPConnector, "1AD098B4-541A-4f2f-8701-6E548C40C230");

template <>
struct karmp::ContentOf<KARMPConnector>
{
    using C = KARMPConnector;
    static KARStatus RemoveFirst(C& connector, const QOBSharedHandle<KARMPBody>& body)
    {
        return connector.m_firstBody.Remove(body);
    }
    static KARStatus RemoveSecond(C& connector, const QOBSharedHandle<KARMPBody>& body)
    {
        return connector.m_secondBody.Remove(body);
    }
    static constexpr auto List = Base(
        "An element that acts between two bodies.", LenientFrame,
        Reference<&C::GetFirstBody, &C::SetFirstBody>(L"FirstBody", "The body at its first end.")
            .Removing<&RemoveFirst>()
            .OtherSide(L"Connectors"),
        Reference<&C::GetSecondBody, &C::SetSecondBody>(L"SecondBody",
                                                        "The body at its second end.")
            .Removing<&RemoveSecond>()
            .OtherSide(L"Connectors"),
        References<&C::GetLinkedGeometryCount, &C::GetLinkedGeometry, &C::LinkToGeometry>(
            L"Geometries", L"Geometry", "The geometries at which it acts.")
            .Removing<&C::RemoveGeometry>()
            .InOrder(),
        References<&C::GetLinkedVariableCount, &C::GetLinkedVariable, &C::LinkToVariable>(
            L"Variables", L"Variable", "The variables that it depends on.")
            .Removing<&C::RemoveVariable>()
            .InOrder());
};
KARMP_DEFINE_CONTENT(KARMPConnector);

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
    for (KARMPLink<KARMPBody>* link : {&m_firstBody, &m_secondBody}) {
        const QOBSharedHandle<KARMPBody> body = link->Take();
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

KARStatus KARMPConnector::LinkToGeometry(const QOBSharedHandle<KARMPGeometry>& geometry)
{
    if (!KARMPVerify(static_cast<bool>(geometry)))
        return KARFailure;
    // Asked one by one through the getter, which a subclass may replace and which alone decides;
    // there are few of them.
    const int count = GetLinkedGeometryCount();
    for (int index = 0; index < count; ++index) {
        QOBSharedHandle<KARMPGeometry> linked;
        if (KARMPVerify(!KARFailed(GetLinkedGeometry(index, linked))) && linked == geometry)
            return KARUnchanged;
    }
    m_linkedGeometries.Append(geometry);
    return KARSuccess;
}

KARStatus KARMPConnector::RemoveBody(const QOBSharedHandle<KARMPBody>& body)
{
    const KARStatus status = m_firstBody.Remove(body);
    return status == KARUnchanged ? m_secondBody.Remove(body) : status;
}

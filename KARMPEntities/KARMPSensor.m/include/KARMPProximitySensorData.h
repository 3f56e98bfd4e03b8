#pragma once

#include "KARMPExport.h"
#include "KARMPLinkList.h"
#include "KARStatus.h"
#include "QOBSharedHandle.h"

class KARMPBody;

/// What a proximity sensor watches: a body, and the bodies that it may come near to. The numbers
/// and flags are stored as given; their setters return 0.
class KARMP_API KARMPProximitySensorData
{
public:
    /// Stores the body that is watched, null included; always 0.
    KARStatus SetSensorBody(const QOBSharedHandle<KARMPBody>& body);
    /// Gives the body; a null handle and a failure without one.
    KARStatus GetSensorBody(QOBSharedHandle<KARMPBody>& body) const;
    /// Appends a body to the group. A null handle is a failed check and a failure; a body that is
    /// in the group already gives 1.
    KARStatus AddBodyToGroup(const QOBSharedHandle<KARMPBody>& body);
    /// Takes a body out of the group. A null handle is a failed check and a failure; a body that is
    /// not in the group gives 1.
    KARStatus RemoveBodyFromGroup(const QOBSharedHandle<KARMPBody>& body);
    /// Gives the body at an index from 0; outside the group a null handle and a failure.
    KARStatus GetBodyInGroup(int index, QOBSharedHandle<KARMPBody>& body) const;
    int GetBodyInGroupCount() const { return m_group.Count(); }

    /// Whether only the bodies of the group count; otherwise all bodies do.
    KARStatus SetUseGroupContext(bool use);
    bool GetUseGroupContext() const { return m_useGroupContext; }
    /// Whether the status is true while no body is near.
    KARStatus SetInverseResult(bool inverse);
    bool GetInverseResult() const { return m_inverseResult; }
    /// Whether bodies are near within the clearance; otherwise only bodies that touch are.
    KARStatus SetUseClearance(bool use);
    bool GetUseClearance() const { return m_useClearance; }
    /// The distance below which a body is near, in the world's unit of length.
    KARStatus SetClearance(double clearance);
    double GetClearance() const { return m_clearance; }

    /// The same flags and numbers without any body.
    KARMPProximitySensorData WithoutBodies() const;

private:
    QOBSharedHandle<KARMPBody> m_sensorBody;
    bool m_useGroupContext = false;
    KARMPLinkList<KARMPBody> m_group;
    bool m_inverseResult = false;
    bool m_useClearance = false;
    double m_clearance = 0.0;
};

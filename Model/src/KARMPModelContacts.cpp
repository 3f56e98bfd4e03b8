// Contacts between geometries.
#include "KARMPModelContacts.h"

#include "KARMPBody.h"
#include "KARMPCollisionSensor.h"
#include "KARMPGeometry.h"
#include "KARMPModelReading.h"

namespace karmp::model {

std::optional<KARMPContactForceData> ContactBetween(const Ref<KARMPGeometry>& first,
                                                    const Ref<KARMPGeometry>& second, double push)
{
    const auto gap = GapBetween(first, second);
    if (!gap || gap->distance >= 0.0)
        return {};
    KARMPContactForceData contact;
    first->GetBody(contact.firstBody);
    second->GetBody(contact.secondBody);
    contact.penetrationDepth = -gap->distance;
    contact.firstContactPoint = gap->onFirst;
    contact.secondContactPoint = gap->onSecond;
    contact.firstNormalVector = -gap->normal;
    contact.secondNormalVector = gap->normal;
    contact.firstNormalForce = push * gap->normal;
    contact.secondNormalForce = -contact.firstNormalForce;
    contact.firstContactForce = contact.firstNormalForce;
    contact.secondContactForce = contact.secondNormalForce;
    return contact;
}

// A sensor that is given contacts one by one keeps one of each pair of bodies.
KARStatus RecordContacts(KARMPCollisionSensor& sensor,
                         std::span<const KARMPContactForceData> contacts)
{
    sensor.Reset();
    for (const KARMPContactForceData& contact : contacts)
        if (const KARStatus status = sensor.AddContactData({contact.firstBody, contact.secondBody});
            KARFailed(status))
            return status;
    return sensor.SetContactForceData({contacts.begin(), contacts.end()});
}

} // namespace karmp::model

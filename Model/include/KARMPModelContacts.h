// Contacts as a solver finds them, and their record in a collision sensor.
#pragma once

#include "KARMPContactForceData.h"
#include "KARMPModelExport.h"
#include "KARMPModelRef.h"
#include "KARStatus.h"

#include <optional>
#include <span>

class KARMPCollisionSensor;
class KARMPGeometry;

namespace karmp::model {

/// The contact of two geometries of bodies that overlap, where they are deepest: they push each
/// other apart along the normal, with a force in N and without friction. Nothing where GapBetween
/// knows no gap, or where it is not negative.
KARMP_MODEL_API std::optional<KARMPContactForceData> ContactBetween(
    const Ref<KARMPGeometry>& first, const Ref<KARMPGeometry>& second, double push);
/// Replaces what a sensor recorded by the contacts of one step; a pair of bodies may have several.
KARMP_MODEL_API KARStatus RecordContacts(KARMPCollisionSensor& sensor,
                                         std::span<const KARMPContactForceData> contacts);

} // namespace karmp::model

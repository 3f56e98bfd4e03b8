#pragma once

#include "KARMPContactForceData.h"
#include "KARMPContactGeometryData.h"
#include "KARMPSensor.h"

#include <set>
#include <utility>
#include <vector>

class KARIMPCollisionSensorLoader;
class KARMPCollisionRule;
class KARMPInteraction;

/// Records the contacts that a solver found during a step, as geometry, as forces, or both.
///
/// Contacts are counted by their pairs of bodies, in one set for both kinds of data: a pair that
/// has data of one kind gets none of the other. (a, b) and (b, a) are two pairs.
class KARMP_API KARMPCollisionSensor : public KARMPSensor
{
    KARMP_ENTITY(KARMPCollisionSensor, KARMPSensor)

public:
    /// The first and the second body of a contact.
    using ContactPair = std::pair<QOBSharedHandle<KARMPBody>, QOBSharedHandle<KARMPBody>>;
    /// Ordered by the comparison of handles, which is another one in each run.
    using ContactPairs = std::set<ContactPair>;

    /// Writes "CollisionSensor" with the rule, if there is one, and the contacts. What cannot be
    /// added is a failed check and a failure.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the same. Every contact of the document is taken, whatever pairs there are already,
    /// unless one of its bodies is missing: that is a failed check.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Forgets all contacts and keeps the interaction; always 0.
    KARStatus Reset() override;
    /// Has the loader measure; 1 for an inactive sensor. No loader, a failing fetch of it and a
    /// failing loader are each a failed check and a failure.
    KARStatus Update() override;
    /// Gives the loader, null without one. A failing fetch is a failed check and a failure.
    virtual KARStatus GetLoader(KARIMPCollisionSensorLoader*& loader) const;
    using Super::GetLoader;

    /// Stores the interaction whose contacts are recorded. A null handle is a failed check and a
    /// failure, and the former interaction stays.
    KARStatus SetInteraction(const QOBSharedHandle<KARMPInteraction>& interaction);
    /// Gives the interaction; without one a null handle, a failed check and a failure.
    KARStatus GetInteraction(QOBSharedHandle<KARMPInteraction>& interaction) const;
    /// Makes a rule the interaction, as SetInteraction does.
    KARStatus SetCollisionRule(const QOBSharedHandle<KARMPCollisionRule>& rule);
    /// Gives the interaction as a rule. Without an interaction a null handle, a failed check and a
    /// failure; with one that is no rule a null handle and a failure.
    KARStatus GetCollisionRule(QOBSharedHandle<KARMPCollisionRule>& rule) const;

    /// Records a contact. A pair that is recorded already, in either kind of data, gives 1, and the
    /// data is not kept. A contact without one of its bodies is a failed check and a failure.
    KARStatus AddContactGeometryData(const KARMPContactGeometryData& data);
    KARStatus AddContactForceData(const KARMPContactForceData& data);
    /// Enters a pair into the set alone; 1 when it is there already.
    KARStatus AddContactData(const ContactPair& pair);
    /// Replaces the data of one kind by any other; the set of pairs stays. Always 0.
    KARStatus SetContactGeometryData(const std::vector<KARMPContactGeometryData>& data);
    KARStatus SetContactForceData(const std::vector<KARMPContactForceData>& data);
    /// Gives the data at an index from 0; outside the list a failure that leaves the argument as it
    /// is.
    KARStatus GetContactGeometryData(int index, KARMPContactGeometryData& data) const;
    KARStatus GetContactForceData(int index, KARMPContactForceData& data) const;
    int GetContactGeometryDataCount() const { return static_cast<int>(m_geometryData.size()); }
    int GetContactForceDataCount() const { return static_cast<int>(m_forceData.size()); }

    /// Number of pairs in the set, and the set itself.
    int GetContactCount() const { return static_cast<int>(m_pairs.size()); }
    ContactPairs::const_iterator ContactDataBegin() const { return m_pairs.begin(); }
    ContactPairs::const_iterator ContactDataEnd() const { return m_pairs.end(); }

protected:
    KARMPCollisionSensor();
    /// A copy has neither interaction nor contacts.
    KARMPCollisionSensor(const KARMPCollisionSensor& source, CopyMode mode);
    ~KARMPCollisionSensor() override;

private:
    KARStatus TakeGeometryData(const KARMPContactGeometryData& data);
    KARStatus TakeForceData(const KARMPContactForceData& data);

    KARMPLink<KARMPInteraction> m_interaction;
    std::vector<KARMPContactGeometryData> m_geometryData;
    std::vector<KARMPContactForceData> m_forceData;
    ContactPairs m_pairs;
};

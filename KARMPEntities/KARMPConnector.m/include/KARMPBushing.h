// The index is that of a freedom: 0 to 2 along the first to third axis, 3 to 5 about them. An index
// outside of these is a failed check and a failure. No loader is told.
#pragma once

#include "KARMPConnector.h"

#include <array>

class KARIMPBushingLoader;
class KARMPValue;

/// An elastic bearing: stiffness, damping and pre-load force in each of six freedoms.
class KARMP_API KARMPBushing : public KARMPConnector
{
    KARMP_ENTITY(KARMPBushing, KARMPConnector)

public:
    using Super::GetLoader;
    using Value = QOBSharedHandle<KARMPValue>;

    /// Writes and reads "Bushing" with the values that are set. Failures inside are reported; 0 but
    /// for a null node, a missing element and a failing base.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Gives the loader, null without one.
    virtual KARStatus GetLoader(KARIMPBushingLoader*& loader) const;

    /// Stores the force per length, or the torque per angle, of a freedom. A null handle is a
    /// failed check and a failure.
    virtual KARStatus SetStiffness(int index, const Value& value);
    /// Gives the value, null where none was set, with 0; a null handle for an index outside.
    virtual KARStatus GetStiffness(int index, Value& value) const;
    /// Force per velocity, or torque per angular velocity, in the same manner.
    virtual KARStatus SetDamping(int index, const Value& value);
    virtual KARStatus GetDamping(int index, Value& value) const;
    /// Force, or torque, at rest, in the same manner.
    virtual KARStatus SetPreLoadForce(int index, const Value& value);
    virtual KARStatus GetPreLoadForce(int index, Value& value) const;

protected:
    KARMPBushing();
    /// A copy has no values.
    KARMPBushing(const KARMPBushing& source, CopyMode mode);
    ~KARMPBushing() override;

private:
    using Values = std::array<Value, 6>;

    Values m_stiffness;
    Values m_damping;
    Values m_preLoadForce;
};

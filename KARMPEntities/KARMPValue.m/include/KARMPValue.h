#pragma once

#include "KARMPEntity.h"

class KARIMPValueLoader;

/// Base of the fixed and computed data of a model: constants, flags, texts, expressions, functions.
class KARMP_API KARMPValue : public KARMPEntity
{
    KARMP_ABSTRACT_ENTITY(KARMPValue, KARMPEntity)

public:
    using Super::GetLoader;

    /// Writes the content of the base into the element of the kind. Returns 1 when the value has no
    /// physical quantity, and 0 with nothing written for an output whose writing is not asked for.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads what Serialize writes, with the same 1 and 0. A missing "PhysicalQuantity" is a failed
    /// check and a failure where the document's version has it as a number, else 1.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Gives the loader as a value's; 0 with null when there is none of that kind.
    virtual KARStatus GetLoader(KARIMPValueLoader*& loader) const;
    /// Stores what the value measures. None is a failed check and a failure, and nothing changes.
    virtual KARStatus SetPhysicalQuantity(KARMPPhysicalQuantity::Enum quantity);
    /// Gives what the value measures; a failure when nothing was set.
    virtual KARStatus GetPhysicalQuantity(KARMPPhysicalQuantity::Enum& quantity) const;
    /// Stores who owns the value. One whose owner is "Output" goes into documents only when the
    /// environment variable "MOT_DUMP_OUTPUTS" is set.
    virtual void SetOwner(const KARString& owner) { m_owner = owner; }

protected:
    /// True for an output whose writing and reading is not asked for at this moment.
    bool IsLeftOut() const;

    KARMPValue();
    /// A copy takes owner and quantity.
    KARMPValue(const KARMPValue& source, CopyMode mode);
    ~KARMPValue() override;

private:
    karmp::RareText m_owner;
    KARMPPhysicalQuantity::Enum m_physicalQuantity = KARMPPhysicalQuantity::NoPhysicalQuantity;
};

#pragma once

#include "KARMPValue.h"

/// A flag of the model. Setter and getter always return 0.
class KARMP_API KARMPBoolean : public KARMPValue
{
    KARMP_ENTITY(KARMPBoolean, KARMPValue)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Stores the flag, true when it is not 0.
    virtual KARStatus SetValue(unsigned char value)
    {
        m_value = value;
        return KARSuccess;
    }
    /// Gives the flag as it was stored.
    virtual KARStatus GetValue(unsigned char& value) const
    {
        value = m_value;
        return KARSuccess;
    }

protected:
    KARMPBoolean();
    KARMPBoolean(const KARMPBoolean& source, CopyMode mode);
    ~KARMPBoolean() override;

private:
    unsigned char m_value = 0;
};

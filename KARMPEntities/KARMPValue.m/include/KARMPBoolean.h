// A flag of the model.
#pragma once

#include "KARMPValue.h"

class KARMP_API KARMPBoolean : public KARMPValue
{
    KARMP_ENTITY(KARMPBoolean, KARMPValue)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Stores the flag, true when it is not 0; always 0.
    virtual KARStatus SetValue(unsigned char value);
    /// Hands out the flag as it was stored; always 0.
    virtual KARStatus GetValue(unsigned char& value) const;

protected:
    KARMPBoolean();
    KARMPBoolean(const KARMPBoolean& source, CopyMode mode);
    ~KARMPBoolean() override;

private:
    unsigned char m_value = 0;
};

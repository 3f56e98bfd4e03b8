// A text of the model.
#pragma once

#include "KARMPValue.h"
#include "KARUnicodeString.h"

class KARMP_API KARMPString : public KARMPValue
{
    KARMP_ENTITY(KARMPString, KARMPValue)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Stores the text; always 0.
    virtual KARStatus SetValue(KARUnicodeString value);
    /// Hands out the text; always 0.
    virtual KARStatus GetValue(KARUnicodeString& value) const;

protected:
    KARMPString();
    KARMPString(const KARMPString& source, CopyMode mode);
    ~KARMPString() override;

private:
    KARUnicodeString m_value;
};

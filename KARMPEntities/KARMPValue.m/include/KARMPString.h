#pragma once

#include "KARMPValue.h"
#include "KARUnicodeString.h"

#include <utility>

/// A text of the model. Setter and getter always return 0.
class KARMP_API KARMPString : public KARMPValue
{
    KARMP_ENTITY(KARMPString, KARMPValue)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// The text, stored and given as it is.
    virtual KARStatus SetValue(KARUnicodeString value)
    {
        m_value = std::move(value);
        return KARSuccess;
    }
    virtual KARStatus GetValue(KARUnicodeString& value) const
    {
        value = m_value;
        return KARSuccess;
    }

protected:
    KARMPString();
    KARMPString(const KARMPString& source, CopyMode mode);
    ~KARMPString() override;

private:
    KARUnicodeString m_value;
};

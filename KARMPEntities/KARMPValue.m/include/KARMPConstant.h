// A number of the model: a length, a stiffness, a count.
#pragma once

#include "KARMPValue.h"

class KARIMPConstantLoader;

class KARMP_API KARMPConstant : public KARMPValue
{
    KARMP_ENTITY(KARMPConstant, KARMPValue)

public:
    using Super::GetLoader;

    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the number; the type word becomes empty, since documents do not hold it.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Hands out the loader as a constant's; 0 with null when there is none of that kind.
    virtual KARStatus GetLoader(KARIMPConstantLoader*& loader) const;
    /// Stores the number, in the unit of the quantity, and the word of its type; always 0.
    virtual KARStatus SetValue(double value, const KARString& type);
    /// Hands out the number; always 0.
    virtual KARStatus GetValue(double& value) const;

    /// True unless the type word is "int".
    bool IsDouble() const;

protected:
    KARMPConstant();
    KARMPConstant(const KARMPConstant& source, CopyMode mode);
    ~KARMPConstant() override;

private:
    double m_value = 0.0;
    KARString m_type;
};

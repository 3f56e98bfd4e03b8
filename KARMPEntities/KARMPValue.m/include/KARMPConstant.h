#pragma once

#include "KARMPValue.h"

class KARIMPConstantLoader;

/// A number of the model: a length, a stiffness, a count. Setter and getter of the number always
/// return 0.
class KARMP_API KARMPConstant : public KARMPValue
{
    KARMP_ENTITY(KARMPConstant, KARMPValue)

public:
    using Super::GetLoader;

    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the number; the type word becomes empty, since documents do not hold it.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Gives the loader as a constant's; 0 with null when there is none of that kind.
    virtual KARStatus GetLoader(KARIMPConstantLoader*& loader) const;
    /// Stores the number, in the unit of the quantity, and the word of its type.
    virtual KARStatus SetValue(double value, const KARString& type)
    {
        m_value = value;
        m_type = type;
        return KARSuccess;
    }
    virtual KARStatus GetValue(double& value) const
    {
        value = m_value;
        return KARSuccess;
    }

    /// True unless the type word is "int".
    bool IsDouble() const { return m_type.View() != "int"; }

protected:
    KARMPConstant();
    KARMPConstant(const KARMPConstant& source, CopyMode mode);
    ~KARMPConstant() override;

private:
    double m_value = 0.0;
    karmp::RareText m_type;
};

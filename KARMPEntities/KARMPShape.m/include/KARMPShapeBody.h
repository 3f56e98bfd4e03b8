#pragma once

#include "KARMPShape2D.h"

#include <vector>

class KARBody;

/// The shape of a planar body as a topological body of the stored geometry.
class KARMP_API KARMPShapeBody : public KARMPShape2D
{
    KARMP_ENTITY(KARMPShapeBody, KARMPShape2D)

public:
    /// Writes the planar bodies and the body, if there is one, as a stream with a header.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the planar bodies and the body. A stream that is missing or no base-64 is a failed
    /// check and a failure; one without its header, that cannot be loaded or does not hold exactly
    /// one body gives 1.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// Stores a body with a reference on it and gives up that on the former one. Null changes
    /// nothing. Always 0.
    virtual KARStatus SetBody(KARBody* body);
    /// The body, without a reference for the caller; null without one.
    virtual KARBody* GetBody() const { return m_body; }

protected:
    KARMPShapeBody();
    /// A copy shares the body and takes a reference of its own.
    KARMPShapeBody(const KARMPShapeBody& source, CopyMode mode);
    ~KARMPShapeBody() override;

private:
    bool HasBody() const { return GetBody() != nullptr; }
    KARStatus GetStream(std::vector<unsigned char>& bytes) const;
    KARStatus SetStream(const std::vector<unsigned char>& bytes);

    KARBody* m_body = nullptr;
};

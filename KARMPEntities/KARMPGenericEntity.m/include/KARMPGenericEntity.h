#pragma once

#include "KARMPEntity.h"

/// Entity of a category that the application names and gives its meaning.
class KARMP_API KARMPGenericEntity : public KARMPEntity
{
    KARMP_ENTITY(KARMPGenericEntity, KARMPEntity)

public:
    /// Writes "GenericEntity" with the category. A null serializer, an element that cannot be added
    /// and a failing base are a failed check and a failure.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the same, in the same manner, but for the category: it is read from the node that is
    /// given, whether that is the entity's element, as in a world, or the node above it. A missing
    /// one is a failed check, and the category stays.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// The category.
    KARString GetCategoryId() const { return m_category; }
    /// Stores the category.
    void SetCategoryId(const KARString& category) { m_category = category; }

protected:
    KARMPGenericEntity();
    /// A copy takes the category.
    KARMPGenericEntity(const KARMPGenericEntity& source, CopyMode mode);
    ~KARMPGenericEntity() override;

private:
    KARString m_category;
};

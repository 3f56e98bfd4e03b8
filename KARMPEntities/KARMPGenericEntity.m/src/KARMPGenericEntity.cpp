#include "KARMPGenericEntity.h"

#include "KARMPContentWalk.h"
#include "KARMPFailedCheck.h"
#include "KARMPFrames.h"
#include "KARTextConversion.h"

KARMP_DEFINE_ENTITY(KARMPGenericEntity, "4B469FEE-1046-4C4F-8427-2027C0092622");

namespace {

constexpr std::wstring_view CategoryName = L"categoryID";

} // namespace

// Code reads the category, on another node than the element.
template <>
struct karmp::ContentOf<KARMPGenericEntity>
{
    using C = KARMPGenericEntity;
    static constexpr auto Category =
        Attribute(Text<&C::m_category>(CategoryName, "The category, which the application names."));
    static constexpr auto List =
        Element(L"GenericEntity", "An entity of a category that the application names.",
                LenientFrame, Unequal(Category, Category.Coded()))
            .WrittenByList();
};
KARMP_DESCRIBE_CONTENT(KARMPGenericEntity);

KARMPGenericEntity::KARMPGenericEntity() = default;
KARMPGenericEntity::KARMPGenericEntity(const KARMPGenericEntity& source, CopyMode mode)
    : Super(source, mode), m_category(source.m_category)
{}
KARMPGenericEntity::~KARMPGenericEntity() = default;

KARStatus KARMPGenericEntity::Serialize(KARMPSerializer* serializer) const
{
    return karmp::WriteContent<Super>(*this, serializer);
}

KARStatus KARMPGenericEntity::Deserialize(const KARMPDeserializer* deserializer,
                                          const KARMPEntityTable& entities)
{
    const KARStatus status = karmp::ReadContent<Super>(*this, deserializer, entities);
    if (KARFailed(status))
        return status;
    karmp::ReadText category;
    if (KARMPVerify(!KARFailed(deserializer->GetAttribute(CategoryName, category))))
        m_category = KARString(kar::ToUtf8(category.View()));
    return status;
}

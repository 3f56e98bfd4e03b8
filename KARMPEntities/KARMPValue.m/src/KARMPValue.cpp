#include "KARMPValue.h"

#include "KARIMPValueLoader.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPLoaderAccess.h"
#include "KARMPOutputGate.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPValue, "B06D8474-E35A-4405-8D99-EEED7277B78C");

namespace {

constexpr std::wstring_view QuantityName = L"PhysicalQuantity";

} // namespace

// Operations around the list add the status of a value without a quantity. What is read is stored
// as it is: the setter would refuse "no quantity".
template <>
struct karmp::ContentOf<KARMPValue>
{
    using C = KARMPValue;
    static bool HasQuantity(const C& value)
    {
        KARMPPhysicalQuantity::Enum quantity = {};
        return !KARFailed(value.GetPhysicalQuantity(quantity));
    }
    static constexpr std::string_view Says = "What the value measures.";
    static constexpr auto List =
        Base("A fixed or computed datum of the model.", CountingFrame,
             Until(R2018_0, Code<&C::GetPhysicalQuantity>(QuantityName, Says)
                                .Required()
                                .When<&HasQuantity>()
                                .Through<&C::m_physicalQuantity>()),
             Since(R2018_0, Word<&C::GetPhysicalQuantity>(QuantityName, Says)
                                .RequiredIfThere()
                                .When<&HasQuantity>()
                                .Through<&C::m_physicalQuantity>()))
            .LeftOutWhen<&C::IsLeftOut>()
            .WrittenByList();
};
KARMP_DESCRIBE_CONTENT(KARMPValue);

KARMPValue::KARMPValue() = default;
KARMPValue::KARMPValue(const KARMPValue& source, CopyMode mode)
    : Super(source, mode), m_owner(source.m_owner), m_physicalQuantity(source.m_physicalQuantity)
{}
KARMPValue::~KARMPValue() = default;

KARStatus KARMPValue::GetLoader(KARIMPValueLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPValue::SetPhysicalQuantity(KARMPPhysicalQuantity::Enum quantity)
{
    if (!KARMPVerify(quantity != KARMPPhysicalQuantity::NoPhysicalQuantity))
        return KARFailure;
    m_physicalQuantity = quantity;
    return KARSuccess;
}

KARStatus KARMPValue::GetPhysicalQuantity(KARMPPhysicalQuantity::Enum& quantity) const
{
    quantity = m_physicalQuantity;
    return quantity != KARMPPhysicalQuantity::NoPhysicalQuantity ? KARSuccess : KARFailure;
}

bool KARMPValue::IsLeftOut() const
{
    return karmp::IsOutputLeftOut(m_owner.View());
}

KARStatus KARMPValue::Serialize(KARMPSerializer* serializer) const
{
    if (IsLeftOut())
        return KARSuccess;
    const KARStatus status = karmp::WriteContent<Super>(*this, serializer);
    if (KARFailed(status) || karmp::ContentOf<KARMPValue>::HasQuantity(*this))
        return status;
    return KARUnchanged;
}

KARStatus KARMPValue::Deserialize(const KARMPDeserializer* deserializer,
                                  const KARMPEntityTable& entities)
{
    if (IsLeftOut())
        return KARSuccess;
    const KARStatus status = karmp::ReadContent<Super>(*this, deserializer, entities);
    if (KARFailed(status) || deserializer->HasElement(QuantityName))
        return status;
    return KARUnchanged;
}

#include "KARMPValue.h"

#include "KARIMPValueLoader.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPLoaderAccess.h"
#include "KARProcessServices.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPValue, "B06D8474-E35A-4405-8D99-EEED7277B78C");

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

void KARMPValue::SetOwner(const KARString& owner)
{
    m_owner = owner;
}

bool KARMPValue::IsLeftOut() const
{
    return m_owner == "Output" && KARGetEnv("MOT_DUMP_OUTPUTS") == nullptr;
}

KARStatus KARMPValue::Serialize(KARMPSerializer* serializer) const
{
    if (IsLeftOut())
        return KARSuccess;
    karmp::ElementWriter element(serializer);
    if (!element || !element.Base(Super::Serialize(serializer)))
        return KARFailure;
    KARMPPhysicalQuantity::Enum quantity = {};
    if (KARFailed(GetPhysicalQuantity(quantity)))
        return KARUnchanged;
    if (karmp::AtLeast(element.Version(), karmp::R2018_0))
        element.Word(L"PhysicalQuantity", quantity);
    else
        element.Value(L"PhysicalQuantity", static_cast<int>(quantity));
    return element.Status();
}

KARStatus KARMPValue::Deserialize(const KARMPDeserializer* deserializer,
                                  const KARMPEntityTable& entities)
{
    using karmp::Absent;
    if (IsLeftOut())
        return KARSuccess;
    karmp::ElementReader element(deserializer);
    if (!element || !element.Base(Super::Deserialize(deserializer, entities)))
        return KARFailure;
    // Both forms are stored as they are: the setter would refuse "no quantity".
    if (karmp::AtLeast(element.Version(), karmp::R2018_0)) {
        if (!element.Has(L"PhysicalQuantity"))
            return KARUnchanged;
        element.Word(L"PhysicalQuantity", m_physicalQuantity, Absent::ReportAndFail);
    } else {
        int number = 0;
        if (element.Value(L"PhysicalQuantity", number, Absent::ReportAndFail))
            m_physicalQuantity = static_cast<KARMPPhysicalQuantity::Enum>(number);
    }
    return element.Status();
}

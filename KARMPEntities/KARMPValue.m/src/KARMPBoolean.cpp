#include "KARMPBoolean.h"

#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"

KARMP_DEFINE_ENTITY(KARMPBoolean, "2FCBEC9A-BD97-4F19-B8AB-670B2EE0BBAC");

namespace {

constexpr std::wstring_view True = L"TRUE";
constexpr std::wstring_view False = L"FALSE";

} // namespace

KARMPBoolean::KARMPBoolean() = default;

KARMPBoolean::KARMPBoolean(const KARMPBoolean& source, CopyMode mode)
    : Super(source, mode), m_value(source.m_value)
{}

KARMPBoolean::~KARMPBoolean() = default;

KARStatus KARMPBoolean::SetValue(unsigned char value)
{
    m_value = value;
    return KARSuccess;
}

KARStatus KARMPBoolean::GetValue(unsigned char& value) const
{
    value = m_value;
    return KARSuccess;
}

KARStatus KARMPBoolean::Serialize(KARMPSerializer* serializer) const
{
    if (IsLeftOut())
        return KARSuccess;
    karmp::ElementWriter element(serializer, L"Boolean");
    if (!element || !element.Base(Super::Serialize(element.Node())))
        return KARFailure;
    element.Value(L"Value", m_value != 0 ? True : False);
    return element.Status();
}

KARStatus KARMPBoolean::Deserialize(const KARMPDeserializer* deserializer,
                                    const KARMPEntityTable& entities)
{
    if (IsLeftOut())
        return KARSuccess;
    karmp::ElementReader element(deserializer, L"Boolean");
    if (!element || !element.Base(Super::Deserialize(element.Node(), entities)))
        return KARFailure;
    std::wstring_view value;
    if (element.Value(L"Value", value, karmp::Absent::ReportAndKeep))
        element.Set(SetValue(value == True ? 1 : 0));
    return KARSuccess;
}

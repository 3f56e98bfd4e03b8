#include "KARMPString.h"

#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"

KARMP_DEFINE_ENTITY(KARMPString, "CB11062A-00CA-45A4-9580-5BB2E3DA5F08");

KARMPString::KARMPString() = default;

KARMPString::KARMPString(const KARMPString& source, CopyMode mode)
    : Super(source, mode), m_value(source.m_value)
{}

KARMPString::~KARMPString() = default;

KARStatus KARMPString::SetValue(KARUnicodeString value)
{
    m_value = std::move(value);
    return KARSuccess;
}

KARStatus KARMPString::GetValue(KARUnicodeString& value) const
{
    value = m_value;
    return KARSuccess;
}

KARStatus KARMPString::Serialize(KARMPSerializer* serializer) const
{
    if (IsLeftOut())
        return KARSuccess;
    karmp::ElementWriter element(serializer, L"String");
    if (!element || !element.Base(Super::Serialize(element.Node())))
        return KARFailure;
    element.Value(L"Value", m_value.ConvertToWString());
    return element.Status();
}

KARStatus KARMPString::Deserialize(const KARMPDeserializer* deserializer,
                                   const KARMPEntityTable& entities)
{
    if (IsLeftOut())
        return KARSuccess;
    karmp::ElementReader element(deserializer, L"String");
    if (!element || !element.Base(Super::Deserialize(element.Node(), entities)))
        return KARFailure;
    std::wstring_view text;
    if (element.Value(L"Value", text, karmp::Absent::ReportAndKeep)) {
        KARUnicodeString value;
        value.BuildFromWChar(text);
        element.Set(SetValue(std::move(value)));
    }
    return KARSuccess;
}

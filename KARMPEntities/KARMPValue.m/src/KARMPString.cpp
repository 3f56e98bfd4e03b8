#include "KARMPString.h"

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ENTITY(KARMPString, "CB11062A-00CA-45A4-9580-5BB2E3DA5F08");

template <>
struct karmp::ContentOf<KARMPString>
{
    using C = KARMPString;
    static constexpr auto List =
        Element(L"String", "A text of the model.", CountingFrame,
                Text<&C::m_value>(L"Value", "The text.").Through<&C::SetValue>())
            .LeftOutWhen<&KARMPValue::IsLeftOut>();
};
KARMP_DEFINE_CONTENT(KARMPString);

KARMPString::KARMPString() = default;
KARMPString::KARMPString(const KARMPString& source, CopyMode mode)
    : Super(source, mode), m_value(source.m_value)
{}
KARMPString::~KARMPString() = default;

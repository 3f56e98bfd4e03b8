#include "KARMPBoolean.h"

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ENTITY(KARMPBoolean, "2FCBEC9A-BD97-4F19-B8AB-670B2EE0BBAC");

template <>
struct karmp::ContentOf<KARMPBoolean>
{
    using C = KARMPBoolean;
    static bool IsTrue(const C& flag) { return flag.m_value != 0; }
    static constexpr auto List =
        Element(L"Boolean", "A flag of the model.", CountingFrame,
                WordOf<&IsTrue>(L"Value", FalseTrue, "Whether the value is true.")
                    .Through<&C::SetValue>())
            .LeftOutWhen<&KARMPValue::IsLeftOut>();
};
KARMP_DEFINE_CONTENT(KARMPBoolean);

KARMPBoolean::KARMPBoolean() = default;
KARMPBoolean::KARMPBoolean(const KARMPBoolean& source, CopyMode mode)
    : Super(source, mode), m_value(source.m_value)
{}
KARMPBoolean::~KARMPBoolean() = default;

#include "KARMPCoaxiality.h"

#include "KARIMPCoaxialityLoader.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPLoaderAccess.h"

KARMP_DEFINE_ENTITY(KARMPCoaxiality, "7525EEEA-82EA-41e4-BFC9-E826C18FEB1F");

template <>
struct karmp::ContentOf<KARMPCoaxiality>
{
    using C = KARMPCoaxiality;
    static constexpr auto List =
        Element(L"Coaxiality", "Two geometries have one axis.", ConstraintFrame,
                Word<&C::m_alignment>(L"Alignment", "How the directions are aligned.")
                    .Required()
                    .Through<&C::SetAlignment>());
};
KARMP_DEFINE_CONTENT(KARMPCoaxiality);

KARMPCoaxiality::KARMPCoaxiality() = default;
KARMPCoaxiality::KARMPCoaxiality(const KARMPCoaxiality& source, CopyMode mode)
    : Super(source, mode), m_alignment(source.m_alignment)
{}
KARMPCoaxiality::~KARMPCoaxiality() = default;

KARStatus KARMPCoaxiality::GetLoader(KARIMPCoaxialityLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPCoaxiality::SetAlignment(KARMPAlignment::Enum alignment)
{
    // Unlike in the other classes, a loader that cannot be fetched is reported, yet it is no
    // failure.
    m_alignment = alignment;
    KARIMPCoaxialityLoader* loader = nullptr;
    if (!KARMPVerify(!KARFailed(GetLoader(loader))) || loader == nullptr)
        return KARSuccess;
    return loader->SetAlignment(alignment);
}

KARStatus KARMPCoaxiality::GetAlignment(KARMPAlignment::Enum& alignment) const
{
    alignment = m_alignment;
    return KARSuccess;
}

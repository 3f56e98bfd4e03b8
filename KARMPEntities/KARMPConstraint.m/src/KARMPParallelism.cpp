#include "KARMPParallelism.h"

#include "KARIMPParallelismLoader.h"
#include "KARMPConstraintOption.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ENTITY(KARMPParallelism, "B15B637D-7193-474e-A95E-B4C9D58AD9BD");

template <>
struct karmp::ContentOf<KARMPParallelism>
{
    using C = KARMPParallelism;
    static constexpr auto List =
        Element(L"Parallelism", "Two geometries have parallel directions.", ConstraintFrame,
                Word<&C::m_alignment>(L"Alignment", "How the directions are aligned.")
                    .Required()
                    .Through<&C::SetAlignment>());
};
KARMP_DEFINE_CONTENT(KARMPParallelism);

KARMPParallelism::KARMPParallelism() = default;
KARMPParallelism::KARMPParallelism(const KARMPParallelism& source, CopyMode mode)
    : Super(source, mode), m_alignment(source.m_alignment)
{}
KARMPParallelism::~KARMPParallelism() = default;

KARStatus KARMPParallelism::GetLoader(KARIMPParallelismLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPParallelism::SetAlignment(KARMPAlignment::Enum alignment)
{
    return karmp::StoreAndTell(*this, m_alignment, alignment,
                               &KARIMPParallelismLoader::SetAlignment);
}

KARStatus KARMPParallelism::GetAlignment(KARMPAlignment::Enum& alignment) const
{
    alignment = m_alignment;
    return KARSuccess;
}

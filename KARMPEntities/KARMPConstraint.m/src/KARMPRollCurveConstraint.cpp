#include "KARMPRollCurveConstraint.h"

#include "KARIMPRollCurveConstraintLoader.h"
#include "KARMPConstraintOption.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ENTITY(KARMPRollCurveConstraint, "FE7C870B-8ACE-452D-BC33-EBF61441AAB9");

template <>
struct karmp::ContentOf<KARMPRollCurveConstraint>
{
    using C = KARMPRollCurveConstraint;
    static constexpr auto List =
        Element(L"RollCurveConstraint", "Two curves roll on one another.", ConstraintFrame,
                Word<&C::m_alignment>(L"Alignment", "How the directions are aligned.")
                    .Required()
                    .Through<&C::SetAlignment>());
};
KARMP_DEFINE_CONTENT(KARMPRollCurveConstraint);

KARMPRollCurveConstraint::KARMPRollCurveConstraint() = default;
KARMPRollCurveConstraint::KARMPRollCurveConstraint(const KARMPRollCurveConstraint& source,
                                                   CopyMode mode)
    : Super(source, mode), m_alignment(source.m_alignment)
{}
KARMPRollCurveConstraint::~KARMPRollCurveConstraint() = default;

KARStatus KARMPRollCurveConstraint::GetLoader(KARIMPRollCurveConstraintLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPRollCurveConstraint::SetAlignment(KARMPAlignment::Enum alignment)
{
    return karmp::StoreAndTell(*this, m_alignment, alignment,
                               &KARIMPRollCurveConstraintLoader::SetAlignment);
}

KARStatus KARMPRollCurveConstraint::GetAlignment(KARMPAlignment::Enum& alignment) const
{
    alignment = m_alignment;
    return KARSuccess;
}

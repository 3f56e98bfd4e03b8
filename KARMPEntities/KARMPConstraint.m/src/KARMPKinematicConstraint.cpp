#include "KARMPKinematicConstraint.h"

#include "KARIMPKinematicConstraintLoader.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPLoaderAccess.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPKinematicConstraint, "1119F983-7340-46E1-9762-4CED9CC509EA");

template <>
struct karmp::ContentOf<KARMPKinematicConstraint>
{
    using C = KARMPKinematicConstraint;
    static constexpr auto List = Base(
        "What stands for a joint's behaviour.", CountingFrame,
        Word<At<&C::m_axes, 0>>(L"SelectedAxis0", "The axis that is used of the first geometry.")
            .Required(),
        Word<At<&C::m_axes, 1>>(L"SelectedAxis1", "The axis that is used of the second geometry.")
            .Required(),
        // The model is not part of the result.
        Text<&C::m_frictionModel>(L"FrictionModel", "The friction model, free text of the solver.")
            .Optional()
            .When<&C::IsFrictionEnabled>()
            .Uncounted());
};
KARMP_DEFINE_CONTENT(KARMPKinematicConstraint);

KARMPKinematicConstraint::KARMPKinematicConstraint() = default;
KARMPKinematicConstraint::KARMPKinematicConstraint(const KARMPKinematicConstraint& source,
                                                   CopyMode mode)
    : Super(source, mode),
      m_axes(source.m_axes),
      m_frictionModel(source.m_frictionModel),
      m_frictionEnabled(source.m_frictionEnabled)
{}
KARMPKinematicConstraint::~KARMPKinematicConstraint() = default;

KARStatus KARMPKinematicConstraint::GetLoader(KARIMPKinematicConstraintLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPKinematicConstraint::SetSelectedAxis(int index, KARMPSelectedAxis::Enum axis)
{
    const auto position = static_cast<std::size_t>(index);
    if (!KARMPVerify(position < m_axes.size()))
        return KARFailure;
    m_axes[position] = axis;
    return KARSuccess;
}

KARStatus KARMPKinematicConstraint::GetSelectedAxis(int index, KARMPSelectedAxis::Enum& axis) const
{
    const auto position = static_cast<std::size_t>(index);
    if (!KARMPVerify(position < m_axes.size()))
        return KARFailure;
    axis = m_axes[position];
    return KARSuccess;
}

KARStatus KARMPKinematicConstraint::SetFrictionModel(const KARString& model)
{
    m_frictionModel = model;
    return KARSuccess;
}

#include "KARMPAnalysisCase.h"

#include "KARMPAnalysisStep.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ENTITY(KARMPAnalysisCase, "55E34230-2EB9-4171-9358-B49294B3BD79");

template <>
struct karmp::ContentOf<KARMPAnalysisCase>
{
    using C = KARMPAnalysisCase;
    static constexpr auto List =
        Element(L"AnalysisCase", "The set-up of an analysis.", LenientFrame,
                References<&C::GetAnalysisStepCount, &C::GetAnalysisStep, &C::AddAnalysisStep>(
                    L"Steps", L"Step", "The steps, in the order in which they are run.")
                    .Removing<&C::RemoveAnalysisStep>()
                    .InOrder());
};
KARMP_DEFINE_CONTENT(KARMPAnalysisCase);

KARMPAnalysisCase::KARMPAnalysisCase() = default;
KARMPAnalysisCase::KARMPAnalysisCase(const KARMPAnalysisCase& source, CopyMode mode)
    : Super(source, mode)
{}
KARMPAnalysisCase::~KARMPAnalysisCase() = default;

void KARMPAnalysisCase::ClearContainers()
{
    m_steps.Clear();
}

KARStatus KARMPAnalysisCase::GetAnalysisStep(int index,
                                             QOBSharedHandle<KARMPAnalysisStep>& step) const
{
    return m_steps.Get(index, step);
}

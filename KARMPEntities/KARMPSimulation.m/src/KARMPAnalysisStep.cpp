#include "KARMPAnalysisStep.h"

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

#include <utility>

KARMP_DEFINE_ENTITY(KARMPAnalysisStep, "94CC8F7A-D0BF-4368-9B13-7B2CFE06E13A");

template <>
struct karmp::ContentOf<KARMPAnalysisStep>
{
    static constexpr auto List =
        Element(L"AnalysisStep", "One step of an analysis case.", LenientFrame);
};
KARMP_DEFINE_CONTENT(KARMPAnalysisStep);

KARMPAnalysisStep::KARMPAnalysisStep() = default;
KARMPAnalysisStep::KARMPAnalysisStep(const KARMPAnalysisStep& source, CopyMode mode)
    : Super(source, mode), m_resultStream(source.m_resultStream)
{}
KARMPAnalysisStep::~KARMPAnalysisStep() = default;

void KARMPAnalysisStep::UpdateResultStream(std::shared_ptr<KARString> stream)
{
    m_resultStream = std::move(stream);
}

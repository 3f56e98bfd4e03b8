#include "FilledEntities.h"
#include "KARMPAnalysisCase.h"
#include "KARMPDebugEntity.h"
#include "KARMPDiagnostic.h"
#include "KARMPGenericEntity.h"
#include "KARMPInitialCondition.h"
#include "KARMPSupport.h"

// What a run needs around a mechanism; false for an entity of another kind.
bool FilledEntities::FillSetUp(KARMPEntity& entity)
{
    if (auto* analysis = dynamic_cast<KARMPAnalysisCase*>(&entity)) {
        for (std::size_t index = 0; HasLinks() && index < 2; ++index)
            analysis->AddAnalysisStep(m_steps[index]);
    } else if (auto* step = dynamic_cast<KARMPAnalysisStep*>(&entity)) {
        step->UpdateResultStream(std::make_shared<KARString>("results"));
    } else if (auto* support = dynamic_cast<KARMPSupport*>(&entity)) {
        support->SetOwner("Owner");
        if (HasLinks())
            support->SetTarget(m_bodies[0]);
    } else if (auto* generic = dynamic_cast<KARMPGenericEntity*>(&entity)) {
        generic->SetCategoryId(Choose("category", "other"));
    } else if (auto* diagnostic = dynamic_cast<KARMPDiagnostic*>(&entity)) {
        diagnostic->SetDiagnosticID(
            Choose(KARMPDiagnosticID::Redundant, KARMPDiagnosticID::NotConverged));
        diagnostic->SetMessageString(Choose("finding", "other"));
        for (std::size_t index = 0; HasLinks() && index < 2; ++index)
            diagnostic->AddEntity(m_bodies[index]);
    } else {
        return dynamic_cast<KARMPInitialCondition*>(&entity) != nullptr ||
               dynamic_cast<KARMPDebugEntity*>(&entity) != nullptr;
    }
    return true;
}

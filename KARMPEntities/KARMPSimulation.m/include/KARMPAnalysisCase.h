#pragma once

#include "KARMPEntity.h"

class KARMPAnalysisStep;

/// Set-up of one analysis: the steps that it consists of, in their order.
///
/// The steps do not know the case; a step may belong to several.
class KARMP_API KARMPAnalysisCase : public KARMPEntity
{
    KARMP_ENTITY(KARMPAnalysisCase, KARMPEntity)

public:
    /// Writes "AnalysisCase" with the steps. A null serializer, an element that cannot be added and
    /// a failing base are a failed check and a failure.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the same, in the same manner. A step that the document does not have is passed over.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

protected:
    /// Drops the steps.
    void ClearContainers() override;

public:
    /// Gives the step at an index from 0; outside the list a null handle and a failure.
    virtual KARStatus GetAnalysisStep(int index, QOBSharedHandle<KARMPAnalysisStep>& step) const;
    virtual int GetAnalysisStepCount() const { return m_steps.Count(); }

    /// Appends a step. A null handle is a failed check and a failure; a step that is listed already
    /// gives 1.
    KARStatus AddAnalysisStep(const QOBSharedHandle<KARMPAnalysisStep>& step)
    {
        return m_steps.Add(step);
    }
    /// Takes a step out and keeps the order of the rest. A null handle is a failed check and a
    /// failure; a step that is not listed gives 1.
    KARStatus RemoveAnalysisStep(const QOBSharedHandle<KARMPAnalysisStep>& step)
    {
        return m_steps.Remove(step);
    }

protected:
    KARMPAnalysisCase();
    /// A copy has no steps.
    KARMPAnalysisCase(const KARMPAnalysisCase& source, CopyMode mode);
    ~KARMPAnalysisCase() override;

private:
    KARMPLinkList<KARMPAnalysisStep> m_steps;
};

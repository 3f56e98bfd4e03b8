#pragma once

#include "KARMPEntity.h"

#include <memory>

/// One step of an analysis case, with the stream of what the step gave.
class KARMP_API KARMPAnalysisStep : public KARMPEntity
{
    KARMP_ENTITY(KARMPAnalysisStep, KARMPEntity)

public:
    /// Writes "AnalysisStep" without the result stream, which is for the run only. A null
    /// serializer, an element that cannot be added and a failing base are a failed check and a
    /// failure.
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    /// Reads the same, in the same manner.
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;

    /// The stream of results, null before there is one; the application knows what it holds.
    std::shared_ptr<KARString> GetResultStream() const { return m_resultStream; }
    /// Drops the stream that is there and takes another one, or null.
    void UpdateResultStream(std::shared_ptr<KARString> stream);

protected:
    KARMPAnalysisStep();
    /// A copy shares the result stream.
    KARMPAnalysisStep(const KARMPAnalysisStep& source, CopyMode mode);
    ~KARMPAnalysisStep() override;

private:
    std::shared_ptr<KARString> m_resultStream;
};

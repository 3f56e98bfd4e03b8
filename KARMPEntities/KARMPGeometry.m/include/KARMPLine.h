#pragma once

#include "KARMPGeometry.h"
#include "KARMathLine.h"

/// A straight line without ends.
/// Setters store values as given; all accessors return 0.
class KARMP_API KARMPLine : public KARMPGeometry
{
    KARMP_ENTITY(KARMPLine, KARMPGeometry)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Stores the line.
    virtual KARStatus SetLine(const KARMathLine& line) { return Copy(line, m_line); }
    /// Gives the line.
    virtual KARStatus GetLine(KARMathLine& line) const { return Copy(m_line, line); }

protected:
    KARMPLine();
    KARMPLine(const KARMPLine& source, CopyMode mode);
    ~KARMPLine() override;

private:
    KARMathLine m_line;
};

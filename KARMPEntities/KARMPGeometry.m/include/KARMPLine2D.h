#pragma once

#include "KARMPGeometry2D.h"
#include "KARMathLine2D.h"

/// A straight line of a plane, without ends. Its direction is what was given or read: it is not
/// made a unit vector.
/// Setters store values as given; all accessors return 0.
class KARMP_API KARMPLine2D : public KARMPGeometry2D
{
    KARMP_ENTITY(KARMPLine2D, KARMPGeometry2D)

public:
    KARStatus Serialize(KARMPSerializer* serializer) const override;
    KARStatus Deserialize(const KARMPDeserializer* deserializer,
                          const KARMPEntityTable& entities) override;
    /// Stores the line.
    virtual KARStatus SetLine(const KARMathLine2D& line) { return Copy(line, m_line); }
    /// Gives the line.
    virtual KARStatus GetLine(KARMathLine2D& line) const { return Copy(m_line, line); }

protected:
    KARMPLine2D();
    KARMPLine2D(const KARMPLine2D& source, CopyMode mode);
    ~KARMPLine2D() override;

private:
    KARMathLine2D m_line;
};

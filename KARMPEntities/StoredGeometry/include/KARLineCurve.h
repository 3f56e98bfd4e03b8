#pragma once

#include "KARCurve.h"
#include "KARMathLine.h"

/// A segment of a straight line: origin + parameter * direction.
class KAR_API KARLineCurve final : public KARCurve
{
    KAR_STORED_CLASS(KARLineCurve, KARCurve)

    /// Makes a segment with one reference; null when a number is not finite, the direction is
    /// null, or low is not below high.
    static KARLineCurve* Create(const KARMathLine& line, double low, double high);

    /// The line.
    const KARMathLine& GetLine() const { return m_line; }

    void GetLimits(double& low, double& high) const override;
    void Evaluate(double parameter, KARMathPoint& point, KARMathVector& tangent) const override;
    bool Store(kar::GMKWriter& writer) const override;

private:
    KARLineCurve(const KARMathLine& line, double low, double high);
    ~KARLineCurve() override;

    KARMathLine m_line;
    double m_low;
    double m_high;
};

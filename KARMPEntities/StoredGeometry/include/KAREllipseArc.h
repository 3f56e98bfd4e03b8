// Arcs of an ellipse and of a circle; the parameter is the angle in radians.
#pragma once

#include "KARCurve.h"

/// An arc of an ellipse: center + cos(angle) * firstRadius * first + sin(angle) * secondRadius *
/// second.
class KAR_API KAREllipseArc : public KARCurve
{
    KAR_STORED_CLASS(KAREllipseArc, KARCurve)

    /// Makes an arc with one reference; null when a number is not finite, the directions are not
    /// of length 1 and at a right angle within 1e-9, a radius is not above 0, low is not below
    /// high, or the arc is longer than one turn.
    static KAREllipseArc* Create(const KARMathPoint& center, const KARMathVector& first,
                                 const KARMathVector& second, double firstRadius,
                                 double secondRadius, double low, double high);

    /// The centre.
    const KARMathPoint& GetCenter() const { return m_center; }
    /// The directions of the two radii.
    void GetDirections(KARMathVector& first, KARMathVector& second) const;
    /// The radius along the first direction.
    double GetFirstRadius() const { return m_firstRadius; }
    /// The radius along the second direction.
    double GetSecondRadius() const { return m_secondRadius; }

    void GetLimits(double& low, double& high) const override;
    void Evaluate(double parameter, KARMathPoint& point, KARMathVector& tangent) const override;
    bool Store(kar::GMKWriter& writer) const override;

protected:
    KAREllipseArc(const KARMathPoint& center, const KARMathVector& first,
                  const KARMathVector& second, double firstRadius, double secondRadius, double low,
                  double high);
    ~KAREllipseArc() override;
    /// True when Create takes these values.
    static bool Accepts(const KARMathPoint& center, const KARMathVector& first,
                        const KARMathVector& second, double firstRadius, double secondRadius,
                        double low, double high);

private:
    KARMathPoint m_center;
    KARMathVector m_first;
    KARMathVector m_second;
    double m_firstRadius;
    double m_secondRadius;
    double m_low;
    double m_high;
};

/// An arc of a circle: an ellipse with one radius.
class KAR_API KARCircleArc final : public KAREllipseArc
{
    KAR_STORED_CLASS(KARCircleArc, KAREllipseArc)

    /// Makes an arc with one reference; null where the ellipse's Create gives null.
    static KARCircleArc* Create(const KARMathPoint& center, const KARMathVector& first,
                                const KARMathVector& second, double radius, double low,
                                double high);

    /// The radius.
    double GetRadius() const { return GetFirstRadius(); }

    bool Store(kar::GMKWriter& writer) const override;

private:
    using KAREllipseArc::KAREllipseArc;
    ~KARCircleArc() override;
};

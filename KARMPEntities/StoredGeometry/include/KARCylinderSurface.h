#pragma once

#include "KARSurface.h"

/// A part of a cylinder: origin + radius * (cos(u) * first + sin(u) * second) + v * (first x
/// second), u in radians.
class KAR_API KARCylinderSurface final : public KARSurface
{
    KAR_STORED_CLASS(KARCylinderSurface, KARSurface)

    /// Makes a cylinder with one reference; null when a number is not finite, the directions are
    /// not of length 1 and at a right angle within 1e-9, the radius is not above 0, a low limit is
    /// not below its high one, or u goes round more than once.
    static KARCylinderSurface* Create(const KARMathPoint& origin, const KARMathVector& first,
                                      const KARMathVector& second, double radius,
                                      const KARSurLimits& limits);

    /// The origin, a point of the axis.
    const KARMathPoint& GetOrigin() const { return m_origin; }
    /// The two directions across the axis.
    void GetDirections(KARMathVector& first, KARMathVector& second) const;
    /// The radius.
    double GetRadius() const { return m_radius; }

    KARSurLimits GetLimits() const override { return m_limits; }
    void Evaluate(double u, double v, KARMathPoint& point, KARMathVector& alongU,
                  KARMathVector& alongV) const override;
    bool Store(kar::GMKWriter& writer) const override;

private:
    KARCylinderSurface(const KARMathPoint& origin, const KARMathVector& first,
                       const KARMathVector& second, double radius, const KARSurLimits& limits);
    ~KARCylinderSurface() override;

    KARMathPoint m_origin;
    KARMathVector m_first;
    KARMathVector m_second;
    double m_radius;
    KARSurLimits m_limits;
};

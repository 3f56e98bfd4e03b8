#pragma once

#include "KARSurface.h"

/// A rectangle of a plane: origin + u * first + v * second.
class KAR_API KARPlaneSurface final : public KARSurface
{
    KAR_STORED_CLASS(KARPlaneSurface, KARSurface)

    /// Makes a plane with one reference; null when a number is not finite, the directions are not
    /// of length 1 and at a right angle within 1e-9, or a low limit is not below its high one.
    static KARPlaneSurface* Create(const KARMathPoint& origin, const KARMathVector& first,
                                   const KARMathVector& second, const KARSurLimits& limits);

    /// The origin.
    const KARMathPoint& GetOrigin() const { return m_origin; }
    /// The directions of u and v.
    void GetDirections(KARMathVector& first, KARMathVector& second) const;

    KARSurLimits GetLimits() const override { return m_limits; }
    void Evaluate(double u, double v, KARMathPoint& point, KARMathVector& alongU,
                  KARMathVector& alongV) const override;
    bool Store(kar::GMKWriter& writer) const override;

private:
    KARPlaneSurface(const KARMathPoint& origin, const KARMathVector& first,
                    const KARMathVector& second, const KARSurLimits& limits);
    ~KARPlaneSurface() override;

    KARMathPoint m_origin;
    KARMathVector m_first;
    KARMathVector m_second;
    KARSurLimits m_limits;
};

#pragma once

#include "KARMathTransformation.h"
#include "KARSurface.h"

/// Another surface, moved by an affine transformation.
class KAR_API KARLinearTransfoSurface final : public KARSurface
{
    KAR_STORED_CLASS(KARLinearTransfoSurface, KARSurface)

    /// How many transformed surfaces may stand one upon the other.
    static constexpr int MaximumDepth = 32;

    /// Makes a transformed surface with one reference, which holds one on the other surface. Null
    /// when the surface is null or stands at MaximumDepth already, or when the transformation has
    /// a number that is not finite or no inverse.
    static KARLinearTransfoSurface* Create(KARSurface* surface,
                                           const KARMathTransformation& transformation);

    /// The surface that is transformed; no reference is added.
    KARSurface* GetTransformedSurface() const { return m_surface; }
    /// The transformation.
    const KARMathTransformation& GetTransformation() const { return m_transformation; }

    KARSurLimits GetLimits() const override;
    void Evaluate(double u, double v, KARMathPoint& point, KARMathVector& alongU,
                  KARMathVector& alongV) const override;
    int GetDepth() const override { return m_depth; }
    void GetReferences(std::vector<const KARIGMKObject*>& references) const override;
    bool Store(kar::GMKWriter& writer) const override;

private:
    KARLinearTransfoSurface(KARSurface* surface, const KARMathTransformation& transformation);
    ~KARLinearTransfoSurface() override;

    KARSurface* m_surface;
    KARMathTransformation m_transformation;
    int m_depth;
};

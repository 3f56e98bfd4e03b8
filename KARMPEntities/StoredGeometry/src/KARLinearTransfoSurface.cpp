#include "KARLinearTransfoSurface.h"

#include "GMKChecks.h"

namespace {

bool IsUsable(const KARMathTransformation& transformation)
{
    KARMathTransformation inverse;
    return kar::IsFinite(transformation) && transformation.ComputeInverse(inverse);
}

} // namespace

KARLinearTransfoSurface::KARLinearTransfoSurface(KARSurface* surface,
                                                 const KARMathTransformation& transformation)
    : m_surface(surface), m_transformation(transformation), m_depth(surface->GetDepth() + 1)
{
    m_surface->AddRef();
}

KARLinearTransfoSurface::~KARLinearTransfoSurface()
{
    m_surface->Release();
}

KARLinearTransfoSurface* KARLinearTransfoSurface::Create(
    KARSurface* surface, const KARMathTransformation& transformation)
{
    // The depth is bounded because evaluation and release go down from surface to surface.
    if (surface == nullptr || surface->GetDepth() >= MaximumDepth || !IsUsable(transformation))
        return nullptr;
    return new KARLinearTransfoSurface(surface, transformation);
}

KARSurLimits KARLinearTransfoSurface::GetLimits() const
{
    return m_surface->GetLimits();
}

void KARLinearTransfoSurface::Evaluate(double u, double v, KARMathPoint& point,
                                       KARMathVector& alongU, KARMathVector& alongV) const
{
    m_surface->Evaluate(u, v, point, alongU, alongV);
    point = m_transformation * point;
    alongU = m_transformation * alongU;
    alongV = m_transformation * alongV;
}

void KARLinearTransfoSurface::GetReferences(std::vector<const KARIGMKObject*>& references) const
{
    references.push_back(m_surface);
}

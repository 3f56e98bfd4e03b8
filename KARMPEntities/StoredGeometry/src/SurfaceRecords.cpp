// The records of surfaces, writer and reader side by side.
#include "GMKReader.h"
#include "GMKWriter.h"
#include "KARCylinderSurface.h"
#include "KARLinearTransfoSurface.h"
#include "KARNurbsSurface.h"
#include "KARPlaneSurface.h"

#include <utility>

using kar::GMKWriter;
using kar::StoredKind;

bool KARPlaneSurface::Store(GMKWriter& writer) const
{
    writer.Kind(StoredKind::PlaneSurface);
    writer.Point(m_origin);
    writer.Vector(m_first);
    writer.Vector(m_second);
    writer.Limits(m_limits);
    return true;
}

KARIGMKObject* kar::ReadPlaneSurface(GMKReader& reader)
{
    const KARMathPoint origin = reader.Point();
    const KARMathVector first = reader.Vector();
    const KARMathVector second = reader.Vector();
    const KARSurLimits limits = reader.Limits();
    return reader.Failed() ? nullptr : KARPlaneSurface::Create(origin, first, second, limits);
}

bool KARCylinderSurface::Store(GMKWriter& writer) const
{
    writer.Kind(StoredKind::CylinderSurface);
    writer.Point(m_origin);
    writer.Vector(m_first);
    writer.Vector(m_second);
    writer.Real(m_radius);
    writer.Limits(m_limits);
    return true;
}

KARIGMKObject* kar::ReadCylinderSurface(GMKReader& reader)
{
    const KARMathPoint origin = reader.Point();
    const KARMathVector first = reader.Vector();
    const KARMathVector second = reader.Vector();
    const double radius = reader.Real();
    const KARSurLimits limits = reader.Limits();
    return reader.Failed() ? nullptr
                           : KARCylinderSurface::Create(origin, first, second, radius, limits);
}

bool KARNurbsSurface::Store(GMKWriter& writer) const
{
    writer.Kind(StoredKind::NurbsSurface);
    for (const KARSplineBasis* basis : {&m_u, &m_v}) {
        writer.Integer(basis->degree);
        writer.Reals(basis->knots);
    }
    writer.Points(m_poles);
    writer.Reals(m_weights);
    return true;
}

KARIGMKObject* kar::ReadNurbsSurface(GMKReader& reader)
{
    KARSplineBasis u;
    KARSplineBasis v;
    for (KARSplineBasis* basis : {&u, &v}) {
        basis->degree = reader.Integer();
        basis->knots = reader.Reals();
    }
    std::vector<KARMathPoint> poles = reader.Points();
    std::vector<double> weights = reader.Reals();
    return reader.Failed() ? nullptr
                           : KARNurbsSurface::Create(std::move(u), std::move(v), std::move(poles),
                                                     std::move(weights));
}

bool KARLinearTransfoSurface::Store(GMKWriter& writer) const
{
    writer.Kind(StoredKind::LinearTransfoSurface);
    writer.Reference(m_surface);
    writer.Transformation(m_transformation);
    return true;
}

KARIGMKObject* kar::ReadLinearTransfoSurface(GMKReader& reader)
{
    auto* surface = reader.Reference<KARSurface>();
    const KARMathTransformation transformation = reader.Transformation();
    return reader.Failed() ? nullptr : KARLinearTransfoSurface::Create(surface, transformation);
}

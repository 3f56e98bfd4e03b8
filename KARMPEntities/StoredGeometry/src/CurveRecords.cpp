// The records of curves, writer and reader side by side.
#include "GMKReader.h"
#include "GMKWriter.h"
#include "KAREllipseArc.h"
#include "KARLineCurve.h"
#include "KARNurbsCurve.h"
#include "KARPolylineCurve.h"

#include <utility>

using kar::GMKWriter;
using kar::StoredKind;

bool KARLineCurve::Store(GMKWriter& writer) const
{
    writer.Kind(StoredKind::LineCurve);
    writer.Point(m_line.GetOrigin());
    writer.Vector(m_line.GetDirection());
    writer.Real(m_low);
    writer.Real(m_high);
    return true;
}

KARIGMKObject* kar::ReadLineCurve(GMKReader& reader)
{
    const KARMathPoint origin = reader.Point();
    const KARMathVector direction = reader.Vector();
    const double low = reader.Real();
    const double high = reader.Real();
    return reader.Failed() ? nullptr : KARLineCurve::Create({origin, direction}, low, high);
}

bool KARCircleArc::Store(GMKWriter& writer) const
{
    KARMathVector first;
    KARMathVector second;
    GetDirections(first, second);
    double low = 0.0;
    double high = 0.0;
    GetLimits(low, high);
    writer.Kind(StoredKind::CircleArc);
    writer.Point(GetCenter());
    writer.Vector(first);
    writer.Vector(second);
    writer.Real(GetRadius());
    writer.Real(low);
    writer.Real(high);
    return true;
}

KARIGMKObject* kar::ReadCircleArc(GMKReader& reader)
{
    const KARMathPoint center = reader.Point();
    const KARMathVector first = reader.Vector();
    const KARMathVector second = reader.Vector();
    const double radius = reader.Real();
    const double low = reader.Real();
    const double high = reader.Real();
    return reader.Failed() ? nullptr
                           : KARCircleArc::Create(center, first, second, radius, low, high);
}

bool KAREllipseArc::Store(GMKWriter& writer) const
{
    writer.Kind(StoredKind::EllipseArc);
    writer.Point(m_center);
    writer.Vector(m_first);
    writer.Vector(m_second);
    writer.Real(m_firstRadius);
    writer.Real(m_secondRadius);
    writer.Real(m_low);
    writer.Real(m_high);
    return true;
}

KARIGMKObject* kar::ReadEllipseArc(GMKReader& reader)
{
    const KARMathPoint center = reader.Point();
    const KARMathVector first = reader.Vector();
    const KARMathVector second = reader.Vector();
    const double firstRadius = reader.Real();
    const double secondRadius = reader.Real();
    const double low = reader.Real();
    const double high = reader.Real();
    return reader.Failed()
               ? nullptr
               : KAREllipseArc::Create(center, first, second, firstRadius, secondRadius, low, high);
}

bool KARPolylineCurve::Store(GMKWriter& writer) const
{
    writer.Kind(StoredKind::PolylineCurve);
    writer.Points(m_points);
    return true;
}

KARIGMKObject* kar::ReadPolylineCurve(GMKReader& reader)
{
    std::vector<KARMathPoint> points = reader.Points();
    return reader.Failed() ? nullptr : KARPolylineCurve::Create(std::move(points));
}

bool KARNurbsCurve::Store(GMKWriter& writer) const
{
    writer.Kind(StoredKind::NurbsCurve);
    writer.Integer(m_degree);
    writer.Reals(m_knots);
    writer.Points(m_poles);
    writer.Reals(m_weights);
    return true;
}

KARIGMKObject* kar::ReadNurbsCurve(GMKReader& reader)
{
    const int degree = reader.Integer();
    std::vector<double> knots = reader.Reals();
    std::vector<KARMathPoint> poles = reader.Points();
    std::vector<double> weights = reader.Reals();
    return reader.Failed() ? nullptr
                           : KARNurbsCurve::Create(degree, std::move(knots), std::move(poles),
                                                   std::move(weights));
}

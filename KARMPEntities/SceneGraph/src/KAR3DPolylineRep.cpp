#include "KAR3DPolylineRep.h"

#include "KARFinite.h"

#include <utility>

KAR3DPolylineRep::KAR3DPolylineRep(std::vector<KARMathPoint> points) : m_points(std::move(points))
{}

KAR3DPolylineRep::~KAR3DPolylineRep() = default;

KAR3DPolylineRep* KAR3DPolylineRep::CreateRep(std::vector<KARMathPoint> points)
{
    if (points.size() < 2 || !kar::AllFinite(points))
        return nullptr;
    return new KAR3DPolylineRep(std::move(points));
}

KAR3DRep* KAR3DPolylineRep::CopyAlone() const
{
    return new KAR3DPolylineRep(m_points);
}

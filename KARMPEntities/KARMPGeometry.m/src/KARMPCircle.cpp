#include "KARMPCircle.h"

#include "KARMPCoordinates.h"
#include "KARMathPlane.h"

KARMP_DEFINE_ENTITY(KARMPCircle, "31B3C405-0400-48f4-93CF-F4D427B545C8");

template <>
struct karmp::ContentOf<KARMPCircle>
{
    using C = KARMPCircle;
    static KARMathPoint Center(const C& circle) { return circle.m_circle.GetCenter(); }
    static void SetCenter(C& circle, const KARMathPoint& center)
    {
        KARMathVector first;
        KARMathVector second;
        circle.m_circle.GetDirections(first, second);
        Set(circle, center, first, second, circle.m_circle.GetRadius());
    }
    static KARMathDirection Axis(const C& circle) { return circle.m_circle.GetNormal(); }
    // The two directions of the circle's plane follow from the axis; those of before are lost.
    static void SetAxis(C& circle, const KARMathDirection& axis)
    {
        const KARMathPoint center = circle.m_circle.GetCenter();
        KARMathVector first;
        KARMathVector second;
        KARMathPlane(center, axis).GetDirections(first, second);
        Set(circle, center, first, second, circle.m_circle.GetRadius());
    }
    static double Radius(const C& circle) { return circle.m_circle.GetRadius(); }
    static void SetRadius(C& circle, double radius)
    {
        KARMathVector first;
        KARMathVector second;
        circle.m_circle.GetDirections(first, second);
        Set(circle, circle.m_circle.GetCenter(), first, second, radius);
    }
    static void Set(C& circle, const KARMathPoint& center, const KARMathVector& first,
                    const KARMathVector& second, double radius)
    {
        circle.m_circle.Set(center, first, second, radius, 1.0, 0.0);
    }
    static constexpr auto List = Element(
        L"Circle", "A circle.", CountingFrame,
        Coordinates(PointOf<&Center>(L"Center", CentreNames, "Its centre.").Through<&SetCenter>(),
                    DirectionOf<&Axis>(L"Axis", DirectionNames, "Its axis, a unit vector.")
                        .Through<&SetAxis>(),
                    Length<&Radius>(L"radius", "Its radius.").Through<&SetRadius>()));
};
KARMP_DEFINE_CONTENT(KARMPCircle);

KARMPCircle::KARMPCircle() = default;
KARMPCircle::KARMPCircle(const KARMPCircle& source, CopyMode mode)
    : Super(source, mode), m_circle(source.m_circle)
{}
KARMPCircle::~KARMPCircle() = default;

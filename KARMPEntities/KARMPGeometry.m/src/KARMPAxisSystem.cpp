#include "KARMPAxisSystem.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPAxisSystem, "EDE08973-A4E0-4ee6-A30D-83C1253293B3");

template <>
struct karmp::ContentOf<KARMPAxisSystem>
{
    using C = KARMPAxisSystem;
    static constexpr Names<3> FirstNames{L"D1x", L"D1y", L"D1z"};
    static constexpr Names<3> SecondNames{L"D2x", L"D2y", L"D2z"};
    static constexpr Names<3> ThirdNames{L"D3x", L"D3y", L"D3z"};

    static KARMathPoint Origin(const C& axes) { return axes.m_axisSystem.GetOrigin(); }
    static void SetOrigin(C& axes, const KARMathPoint& origin)
    {
        axes.m_axisSystem.SetOrigin(origin);
    }
    static KARMathVector First(const C& axes) { return axes.m_axisSystem.GetFirstDirection(); }
    static void SetFirst(C& axes, const KARMathVector& first)
    {
        axes.m_axisSystem.SetDirections(first, Second(axes), Third(axes));
    }
    static KARMathVector Second(const C& axes) { return axes.m_axisSystem.GetSecondDirection(); }
    static void SetSecond(C& axes, const KARMathVector& second)
    {
        axes.m_axisSystem.SetDirections(First(axes), second, Third(axes));
    }
    static KARMathVector Third(const C& axes) { return axes.m_axisSystem.GetThirdDirection(); }
    static void SetThird(C& axes, const KARMathVector& third)
    {
        axes.m_axisSystem.SetDirections(First(axes), Second(axes), third);
    }
    // The directions are taken as they are read.
    static constexpr auto List = Element(
        L"AxisSystem", "An axis system.", CountingFrame,
        Coordinates(
            PointOf<&Origin>(L"Origin", OriginNames, "Its origin.").Through<&SetOrigin>(),
            DirectionOf<&First>(L"First", FirstNames, "Its first direction.").Through<&SetFirst>(),
            DirectionOf<&Second>(L"Second", SecondNames, "Its second direction.")
                .Through<&SetSecond>(),
            DirectionOf<&Third>(L"Third", ThirdNames, "Its third direction.")
                .Through<&SetThird>()));
};
KARMP_DEFINE_CONTENT(KARMPAxisSystem);

KARMPAxisSystem::KARMPAxisSystem() = default;
KARMPAxisSystem::KARMPAxisSystem(const KARMPAxisSystem& source, CopyMode mode)
    : Super(source, mode), m_axisSystem(source.m_axisSystem)
{}
KARMPAxisSystem::~KARMPAxisSystem() = default;

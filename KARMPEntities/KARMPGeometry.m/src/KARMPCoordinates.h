// What the kinds of geometry have in common in a document: "Coordinates" with a child element for
// each number. A missing number is reported and counts as 0.
#pragma once

#include "KARMPContentWalk.h"
#include "KARMPDirectionItem.h"
#include "KARMPFrames.h"
#include "KARMathPlane.h"

namespace karmp {

/// The numbers of a kind, in the axes of the geometry's body.
template <std::size_t... N>
constexpr auto Coordinates(const ItemList<N>&... numbers)
{
    return Group(L"Coordinates", "The numbers of the geometry, in the axes of its body.",
                 List(numbers...).ZeroIfMissing())
        .Required();
}

/// A point, a direction, a length.
template <auto Access, std::size_t N>
constexpr auto PointOf(std::wstring_view name, const Names<N>& names, std::string_view says,
                       Where where = Where::current())
{
    return Numbers<Access>(name, names, says, KARMPPhysicalQuantity::Length, where);
}
template <auto Access, std::size_t N>
constexpr auto DirectionOf(std::wstring_view name, const Names<N>& names, std::string_view says,
                           Where where = Where::current())
{
    return Numbers<Access>(name, names, says, KARMPPhysicalQuantity::NoPhysicalQuantity, where);
}
template <auto Access>
constexpr auto Length(std::wstring_view name, std::string_view says, Where where = Where::current())
{
    return Number<Access>(name, says, KARMPPhysicalQuantity::Length, where);
}

/// Origin and direction of a line that is a member, in space or in a plane.
template <auto Line>
struct LineParts
{
    using C = typename TraitsOf<Line>::Class;
    using Value = typename TraitsOf<Line>::Value;
    using Point = std::remove_cvref_t<decltype(Value().GetOrigin())>;
    using Vector = std::remove_cvref_t<decltype(Value().GetDirection())>;
    static Point Origin(const C& owner) { return (owner.*Line).GetOrigin(); }
    static void SetOrigin(C& owner, const Point& origin) { (owner.*Line).SetOrigin(origin); }
    static Vector Direction(const C& owner) { return (owner.*Line).GetDirection(); }
    static void SetDirection(C& owner, const Vector& direction)
    {
        (owner.*Line).SetDirection(direction);
    }
};
/// The coordinates of a line that is a member, origin before direction.
template <auto Line, std::size_t N>
constexpr auto LineCoordinates(const Names<N>& originNames, const Names<N>& directionNames,
                               std::string_view direction, Where where = Where::current())
{
    using Parts = LineParts<Line>;
    return Coordinates(
        PointOf<&Parts::Origin>(L"Origin", originNames, "A point of the line.", where)
            .template Through<&Parts::SetOrigin>(),
        DirectionOf<&Parts::Direction>(L"Direction", directionNames, direction, where)
            .template Through<&Parts::SetDirection>());
}

/// Origin and normal of a plane that is a member.
template <auto Plane>
struct PlaneParts
{
    using C = typename TraitsOf<Plane>::Class;
    static KARMathPoint Origin(const C& owner) { return (owner.*Plane).GetOrigin(); }
    static void SetOrigin(C& owner, const KARMathPoint& origin)
    {
        owner.*Plane = KARMathPlane(origin, (owner.*Plane).GetNormal());
    }
    static KARMathDirection Normal(const C& owner) { return (owner.*Plane).GetNormal(); }
    static void SetNormal(C& owner, const KARMathDirection& normal)
    {
        owner.*Plane = KARMathPlane((owner.*Plane).GetOrigin(), normal);
    }
};
/// The coordinates of a plane that is a member, origin before normal.
template <auto Plane>
constexpr auto PlaneCoordinates(Where where = Where::current())
{
    using Parts = PlaneParts<Plane>;
    return Coordinates(
        PointOf<&Parts::Origin>(L"Origin", OriginNames, "A point of the plane.", where)
            .template Through<&Parts::SetOrigin>(),
        DirectionOf<&Parts::Normal>(L"Normal", NormalNames, "Its normal, a unit vector.", where)
            .template Through<&Parts::SetNormal>());
}

/// Centre, major direction and normal of a kind of conic section.
template <auto Center, auto MajorDirection, auto Normal>
constexpr auto ConicPlane(Where where = Where::current())
{
    return List(PointOf<Center>(L"Center", CentreNames, "The centre.", where),
                DirectionOf<MajorDirection>(L"MajorDirection", DirectionNames,
                                            "The direction of the major axis, a unit vector.",
                                            where),
                DirectionOf<Normal>(L"Normal", NormalNames,
                                    "The normal of the plane, a unit vector.", where));
}

} // namespace karmp

#include "KARMPCircle.h"

#include "KARMPCoordinates.h"
#include "KARMathPlane.h"

KARMP_DEFINE_ENTITY(KARMPCircle, "31B3C405-0400-48f4-93CF-F4D427B545C8");

KARMPCircle::KARMPCircle() = default;
KARMPCircle::KARMPCircle(const KARMPCircle& source, CopyMode mode)
    : Super(source, mode), m_circle(source.m_circle)
{}
KARMPCircle::~KARMPCircle() = default;

namespace {

// What stands in "Coordinates", in order.
struct Values
{
    KARMathPoint center;
    KARMathDirection axis;
    double radius = 0.0;
};

auto Coordinates(auto& values)
{
    return std::tuple(karmp::Triple(karmp::CentreNames, values.center),
                      karmp::Triple(karmp::DirectionNames, values.axis),
                      karmp::Number(L"radius", values.radius));
}

} // namespace

KARStatus KARMPCircle::Serialize(KARMPSerializer* serializer) const
{
    KARMathVector first;
    KARMathVector second;
    m_circle.GetDirections(first, second);
    const Values values{m_circle.GetCenter(), first.Cross(second), m_circle.GetRadius()};
    return karmp::WriteKind(*this, serializer, L"Circle", Coordinates(values));
}

KARStatus KARMPCircle::Deserialize(const KARMPDeserializer* deserializer,
                                   const KARMPEntityTable& entities)
{
    Values values;
    const KARStatus status =
        karmp::ReadKind(*this, deserializer, entities, L"Circle", Coordinates(values));
    if (KARFailed(status))
        return status;
    KARMathVector first;
    KARMathVector second;
    KARMathPlane(values.center, values.axis).GetDirections(first, second);
    m_circle.Set(values.center, first, second, values.radius, 1.0, 0.0);
    return status;
}

#include "KARMPAxisSystem.h"

#include "KARMPCoordinates.h"

KARMP_DEFINE_ENTITY(KARMPAxisSystem, "EDE08973-A4E0-4ee6-A30D-83C1253293B3");

KARMPAxisSystem::KARMPAxisSystem() = default;
KARMPAxisSystem::KARMPAxisSystem(const KARMPAxisSystem& source, CopyMode mode)
    : Super(source, mode), m_axisSystem(source.m_axisSystem)
{}
KARMPAxisSystem::~KARMPAxisSystem() = default;

namespace {

constexpr karmp::Names<3> FirstNames{L"D1x", L"D1y", L"D1z"};
constexpr karmp::Names<3> SecondNames{L"D2x", L"D2y", L"D2z"};
constexpr karmp::Names<3> ThirdNames{L"D3x", L"D3y", L"D3z"};

// What stands in "Coordinates", in order; the directions are taken as they are read.
struct Values
{
    KARMathPoint origin;
    KARMathVector first;
    KARMathVector second;
    KARMathVector third;
};

auto Coordinates(auto& values)
{
    return std::tuple(
        karmp::Triple(karmp::OriginNames, values.origin), karmp::Triple(FirstNames, values.first),
        karmp::Triple(SecondNames, values.second), karmp::Triple(ThirdNames, values.third));
}

} // namespace

KARStatus KARMPAxisSystem::Serialize(KARMPSerializer* serializer) const
{
    Values values{m_axisSystem.GetOrigin(), {}, {}, {}};
    m_axisSystem.GetDirections(values.first, values.second, values.third);
    return karmp::WriteKind(*this, serializer, L"AxisSystem", Coordinates(values));
}

KARStatus KARMPAxisSystem::Deserialize(const KARMPDeserializer* deserializer,
                                       const KARMPEntityTable& entities)
{
    Values values;
    const KARStatus status =
        karmp::ReadKind(*this, deserializer, entities, L"AxisSystem", Coordinates(values));
    if (KARFailed(status))
        return status;
    m_axisSystem.SetOrigin(values.origin);
    m_axisSystem.SetDirections(values.first, values.second, values.third);
    return status;
}

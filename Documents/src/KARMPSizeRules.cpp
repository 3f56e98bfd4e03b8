// The rules of numbers that are sizes, coefficients or shares: radii and lengths, friction,
// stiffness of contacts, restitution.
#include "KARMPMechanismRules.h"
#include "KARMPNodeQueries.h"
#include "KARMPSchemaClasses.h"
#include "KARMPTextEscapes.h"

#include <optional>
#include <string>
#include <vector>

namespace karmp::documents {

namespace {

enum class Range { Positive, NotNegative, Share, PoissonCoefficient };

/// The numbers of a group, or of the entity where no group is named, in entities of a class.
struct RangedNumbers
{
    std::string_view className;
    std::wstring_view group;
    Range range;
    std::vector<std::wstring_view> elements;
};

const std::vector<RangedNumbers>& AllRangedNumbers()
{
    using W = std::vector<std::wstring_view>;
    static const W radius{L"radius"};
    static const W radii{L"major_radius", L"minor_radius"};
    static const W friction{L"StaticFriction", L"DynamicFriction"};
    static const std::vector<RangedNumbers> numbers{
        {"KARMPCircle", L"Coordinates", Range::Positive, radius},
        {"KARMPCircle2D", L"Coordinates", Range::Positive, radius},
        {"KARMPCylinder", L"Coordinates", Range::Positive, radius},
        {"KARMPSphere", L"Coordinates", Range::Positive, radius},
        {"KARMPTorus", L"Coordinates", Range::Positive, radii},
        {"KARMPEllipse", L"Coordinates", Range::Positive, radii},
        {"KARMPHyperbola", L"Coordinates", Range::Positive, radii},
        // A cone may be given at its apex.
        {"KARMPCylicone", L"Coordinates", Range::NotNegative, radius},
        {"KARMPKinematicConstraint", L"FrictionParameters", Range::NotNegative, friction},
        {"KARMPKinematicConstraint",
         L"FrictionParameters",
         Range::NotNegative,
         {L"StaticSpeedLimit", L"DynamicSpeedLimit", L"ReferenceDiameter",
          L"ReferenceAxialDiameter", L"ReferenceWidth", L"ReferenceLength"}},
        {"KARMPVariable", L"MaxLimitRestitution", Range::Share, {L"MaxLimitRestitutionValue"}},
        {"KARMPVariable", L"MinLimitRestitution", Range::Share, {L"MinLimitRestitutionValue"}},
        {"KARMPInteraction", {}, Range::Share, {L"Restitution"}},
        {"KARMPInteraction", {}, Range::NotNegative, friction},
        {"KARMPCollisionRule", {}, Range::PoissonCoefficient, {L"PoissonCoef1", L"PoissonCoef2"}},
        {"KARMPCollisionRule",
         {},
         Range::NotNegative,
         {L"YoungModulus1", L"YoungModulus2", L"ElasticLayerThickness1", L"ElasticLayerThickness2",
          L"Damping", L"DampingTransitionDepth", L"FrictionCoef", L"FrictionVelocity"}},
    };
    return numbers;
}

/// What a range says of a number that lies outside.
struct Verdict
{
    Code code;
    const char* expected;
};

std::optional<Verdict> VerdictOf(Range range, double number)
{
    switch (range) {
    case Range::Positive:
        return number <= 0.0 ? std::optional(Verdict{Code::NoSize, "a positive number"})
                             : std::nullopt;
    case Range::NotNegative:
        return number < 0.0 ? std::optional(Verdict{Code::NegativeNumber, "0 or a positive number"})
                            : std::nullopt;
    case Range::Share:
        return number < 0.0 || number > 1.0
                   ? std::optional(Verdict{Code::OutsideLimits, "a number from 0 to 1"})
                   : std::nullopt;
    case Range::PoissonCoefficient:
        return number < -1.0 || number > 0.5
                   ? std::optional(Verdict{Code::OutsideLimits, "a number from -1 to 0.5"})
                   : std::nullopt;
    }
    return {};
}

/// Tells of a number that lies outside of its range.
void Judge(const MechanismRules::Tell& tell, const KARMPDocumentReader& entity,
           std::optional<double> number, Range range, std::wstring_view name,
           const RulePlace& place)
{
    const std::optional<Verdict> verdict = number ? VerdictOf(range, *number) : std::nullopt;
    if (verdict)
        tell(verdict->code, entity, place,
             Quoted(name) + " is " + TextOf(*number) + "; " + verdict->expected + " was expected");
}

} // namespace

void MechanismRules::CheckRanges(const Lineage& lineage, const Node& entity)
{
    for (const RangedNumbers& numbers : AllRangedNumbers()) {
        if (!HasClass(lineage, numbers.className))
            continue;
        const bool isGrouped = !numbers.group.empty();
        const KARMPDeserializer* const group = isGrouped ? First(entity, numbers.group) : &entity;
        for (const std::wstring_view name : numbers.elements) {
            const KARMPDeserializer* const element =
                group != nullptr ? First(*group, name) : nullptr;
            if (element != nullptr)
                Judge(m_tell, entity, NumberIn(*group, name), numbers.range, name,
                      (isGrouped ? RulePlace({group, element}) : RulePlace({element})).Text());
        }
    }
}

void MechanismRules::CheckClearance(const Node& entity)
{
    constexpr std::wstring_view name = L"Clearance";
    const KARMPDeserializer* const data = First(entity, L"ProximitySensorData");
    if (data == nullptr)
        return;
    RulePlace place({data});
    place.attribute = name;
    Judge(m_tell, entity, NumberOf(*data, name), Range::NotNegative, name, place);
}

void MechanismRules::CheckWorldSize(const Node& world)
{
    const KARMPDeserializer* const size = First(world, L"Size");
    for (const std::wstring_view name : {L"SizeX", L"SizeY", L"SizeZ"})
        if (const KARMPDeserializer* const element = size != nullptr ? First(*size, name) : nullptr)
            Judge(m_tell, world, NumberIn(*size, name), Range::Positive, name,
                  RulePlace({size, element}).Text());
}

} // namespace karmp::documents

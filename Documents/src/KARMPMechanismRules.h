// What a well-formed document says that no mechanism can mean.
#pragma once

#include "KARMPDocumentPath.h"
#include "KARMPDocumentReader.h"
#include "KARMPEntityTrees.h"
#include "KARMPIdentifiers.h"
#include "KARMPJoinedBodies.h"

#include <array>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace karmp::documents {

/// What a finding about an entity points to: the entity, or the node that `below` leads to from
/// there, its attribute or its text.
struct RulePlace
{
    RulePlace() = default;
    RulePlace(Way way) : below(std::move(way)) {}
    RulePlace(std::initializer_list<const KARMPDeserializer*> way) : below(way) {}
    /// The same with the text in place of the element's name.
    RulePlace Text() const
    {
        RulePlace place = *this;
        place.atText = true;
        return place;
    }

    Way below;
    std::wstring_view attribute;
    bool atText = false;
};

/// The finite number in the first element of a name; empty when there is none.
std::optional<double> NumberIn(const KARMPDeserializer& group, std::wstring_view name);
/// The finite number in an attribute; empty when there is none.
std::optional<double> NumberOf(const KARMPDeserializer& node, std::wstring_view attribute);
/// A number for people, with six digits.
std::string TextOf(double number);
/// The finite number that a text is; empty when it is none.
std::optional<double> NumberFrom(std::wstring_view text);
/// The word of the physical quantity of a value or variable; empty when it names none.
std::wstring_view QuantityOf(const KARMPDeserializer& entity);

/// Looks at one entity at a time: first Note for all entities of a document, then Check. Time and
/// memory are linear in the document.
class MechanismRules
{
public:
    using Node = KARMPDocumentReader;
    /// The class of an entity and the classes above it.
    using Lineage = std::vector<std::string>;
    /// Takes a finding about an entity and the place that it points to.
    using Tell = std::function<void(Code code, const Node& entity, const RulePlace& place,
                                    std::string text)>;

    MechanismRules(Identifiers& identifiers, Tell tell);

    /// Keeps what the rules of other entities ask of this one, which has the number `number`.
    void Note(std::uint32_t number, const Lineage& lineage, const Node& entity);
    /// Ends the notes: what follows of all entities together is worked out.
    void EndNotes();
    /// Tells of the settings of the world, before the entities.
    void CheckWorld(const Node& world);
    /// Tells what the rules of the entity's class and of the classes above it find.
    void Check(const Lineage& lineage, const Node& entity);
    /// Tells what the list of a family, given by its class, shows by itself.
    void CheckFamily(std::string_view className, const Node& list);

private:
    friend struct MechanismRule;
    using EntityCheck = void (*)(MechanismRules& rules, const Node& entity);

    /// What is checked of the entities of a class.
    const std::vector<EntityCheck>& ChecksOf(const Lineage& lineage);

    /// The identifier of an attribute in paths, by its number, and its element.
    struct NamedNode
    {
        std::uint32_t name;
        const Node* node;
    };

    /// A number that bounds others, or is bounded, and where it stands.
    struct Limit
    {
        std::optional<double> number;
        RulePlace place;
    };

    void CheckBody(const Node& entity);
    void CheckInertia(const Node& entity, const KARMPDeserializer& weight,
                      const KARMPDeserializer& inertia);
    void CheckRotations(const Node& entity);
    void CheckAxes(const Node& entity, const std::array<std::array<double, 3>, 3>& axes,
                   const RulePlace& place);
    void CheckCoordinates(const Node& entity);
    /// True when there is a finding.
    bool CheckDirections(const Node& entity, const KARMPDeserializer& group,
                         const RulePlace& place);
    void CheckDragLine(const Node& entity);
    void CheckFreedoms(const Node& entity);
    void CheckLimits(const Node& entity, const Limit& low, const Limit& high, const Limit* value);
    static Limit LimitIn(const Node& entity, std::wstring_view group, std::wstring_view flag);
    void CheckVariable(const Node& entity);
    void CheckSegments(const Node& entity);
    void CheckTolerances(const Node& world);
    void CheckWorldSize(const Node& world);
    void CheckClearance(const Node& entity);
    void CheckRanges(const Lineage& lineage, const Node& entity);

    void CheckLinearEquation(const Node& entity);
    void CheckExpression(const Node& entity);
    void CheckMapping(const Node& entity, std::size_t linked);

    /// Tells of a reference to a quantity that is neither `expected` nor `other`.
    void CheckFit(const Node& entity, const KARMPDeserializer& reference,
                  std::wstring_view expected, const RulePlace& place, std::wstring_view other = {});
    void CheckQuantitiesOf(const Lineage& lineage, const Node& entity);
    void CheckMotorQuantities(const Node& entity);
    void CheckFreedomIndex(const Node& entity);
    void CheckJoint(const Node& entity);
    void CheckCoupling(const Node& entity);
    void CheckConstraint(const Lineage& lineage, const Node& entity);
    void CheckLoose(const Node& entity);
    void CheckFloating(const Node& entity);
    void CheckTrees(const Node& entity);
    void NoteLinks(std::uint32_t number, const Lineage& lineage, const Node& entity);
    void NoteReferences(const KARMPDeserializer& node, int depth);

    void CheckActuator(const Node& entity);
    void CheckMotor(const Node& entity);
    void CheckTarget(const Node& entity);
    void CheckConnector(const Node& entity);
    void CheckEnds(const Node& entity);
    void CheckConstraint(const Node& entity);
    void CheckDofSensor(const Node& entity);
    void CheckCollisionRule(const Node& entity);
    void CheckCollisionLayer(const Node& entity);
    void CheckCollisionInterLayer(const Node& entity);
    void CheckProximitySensor(const Node& entity);
    void CheckAnalysisCase(const Node& entity);
    /// Tells of the attributes of one list that have one identifier.
    void CheckSiblings(const Node& entity);
    void CheckNames(const Node& entity, std::wstring_view list);
    void CheckAttribute(const Node& entity);
    void CheckStoredValue(const Node& entity);
    void CheckCurve(const Node& entity);
    void CheckSurface(const Node& entity);
    /// Tells of the stored object in an element that `below` leads to.
    void CheckStoredStream(const Node& entity, const Way& below);
    void CheckShape(const Node& entity);
    void CheckRep(const Node& entity);
    void CheckShapeBody(const Node& entity);
    void NoteAttribute(std::uint32_t number, const Node& entity);
    void NoteDimensions(std::uint32_t number, const Lineage& lineage);
    /// Tells that an entity has no link in the element `element`.
    void NeedLink(const Node& entity, std::wstring_view element, Code code, const char* text);
    /// Tells of the references, in the entity and in its groups, to values of no quantity.
    void CheckQuantities(const Node& entity);
    void CheckQuantity(const Node& entity, const KARMPDeserializer& reference,
                       const RulePlace& place);

    Identifiers& m_identifiers;
    Tell m_tell;
    /// By the names of classes.
    std::unordered_map<std::string, std::vector<EntityCheck>> m_checks;
    std::unordered_set<std::uint32_t> m_valuesWithoutQuantity;
    std::unordered_set<std::uint32_t> m_layers;
    std::unordered_set<std::uint32_t> m_steps;
    std::unordered_set<std::uint32_t> m_planarJoints;
    std::vector<bool> m_spatialGeometries; // by their numbers
    Identifiers m_names;
    std::unordered_map<std::uint32_t, NamedNode> m_attributes;
    /// The first motor of a variable, and the first layer of an entity.
    std::unordered_map<std::uint32_t, const Node*> m_driven;
    std::unordered_map<std::uint32_t, const Node*> m_layered;
    /// The quantities of values and variables.
    std::unordered_map<std::uint32_t, std::wstring_view> m_quantities;
    EntityTrees m_trees;
    JoinedBodies m_joined;
    /// What joints, connectors, actuators, sensors, rules and other bodies refer to.
    std::unordered_set<std::uint32_t> m_referred;
    bool m_hasLinks = false;
};

} // namespace karmp::documents

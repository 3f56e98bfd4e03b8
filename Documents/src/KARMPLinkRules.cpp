// The rules of links: what joints, constraints and couplings need, quantities that fit, trees
// without cycles, and bodies that hang on nothing.
#include "KARMPMechanismRules.h"
#include "KARMPNodeQueries.h"
#include "KARMPSchema.h"
#include "KARMPSchemaClasses.h"
#include "KARMPTextEscapes.h"
#include "KARTextConversion.h"

#include <algorithm>
#include <array>

namespace karmp::documents {

namespace {

/// The quantity of the value that a group or element refers to, in an entity of a class.
struct ExpectedQuantity
{
    std::string_view className;
    std::wstring_view group; // empty for an item of the entity itself
    std::wstring_view element;
    std::wstring_view quantity;
};

constexpr std::array Expected{
    ExpectedQuantity{"KARMPAxialSpring", {}, L"RestLength", L"Length"},
    ExpectedQuantity{"KARMPAxialSpring", {}, L"Stiffness", L"LinearStiffness"},
    ExpectedQuantity{"KARMPAxialSpring", {}, L"Damping", L"LinearDamping"},
    ExpectedQuantity{"KARMPAxialSpring", {}, L"PreLoadForce", L"Force"},
    ExpectedQuantity{"KARMPLinearSpring", {}, L"RestLength", L"Length"},
    ExpectedQuantity{"KARMPLinearSpring", {}, L"Stiffness", L"LinearStiffness"},
    ExpectedQuantity{"KARMPLinearSpring", {}, L"DampingCoefficient", L"LinearDamping"},
    ExpectedQuantity{"KARMPTorsionSpring", {}, L"RestAngle", L"Angle"},
    ExpectedQuantity{"KARMPTorsionSpring", {}, L"Stiffness", L"AngularStiffness"},
    ExpectedQuantity{"KARMPTorsionSpring", {}, L"DampingCoefficient", L"AngularDamping"},
    ExpectedQuantity{"KARMPBushing", {}, L"StiffnessTx", L"LinearStiffness"},
    ExpectedQuantity{"KARMPBushing", {}, L"StiffnessTy", L"LinearStiffness"},
    ExpectedQuantity{"KARMPBushing", {}, L"StiffnessTz", L"LinearStiffness"},
    ExpectedQuantity{"KARMPBushing", {}, L"StiffnessRx", L"AngularStiffness"},
    ExpectedQuantity{"KARMPBushing", {}, L"StiffnessRy", L"AngularStiffness"},
    ExpectedQuantity{"KARMPBushing", {}, L"StiffnessRz", L"AngularStiffness"},
    ExpectedQuantity{"KARMPBushing", {}, L"DampingTx", L"LinearDamping"},
    ExpectedQuantity{"KARMPBushing", {}, L"DampingTy", L"LinearDamping"},
    ExpectedQuantity{"KARMPBushing", {}, L"DampingTz", L"LinearDamping"},
    ExpectedQuantity{"KARMPBushing", {}, L"DampingRx", L"AngularDamping"},
    ExpectedQuantity{"KARMPBushing", {}, L"DampingRy", L"AngularDamping"},
    ExpectedQuantity{"KARMPBushing", {}, L"DampingRz", L"AngularDamping"},
    ExpectedQuantity{"KARMPBushing", {}, L"PreForceTx", L"Force"},
    ExpectedQuantity{"KARMPBushing", {}, L"PreForceTy", L"Force"},
    ExpectedQuantity{"KARMPBushing", {}, L"PreForceTz", L"Force"},
    ExpectedQuantity{"KARMPBushing", {}, L"PreForceRx", L"Torque"},
    ExpectedQuantity{"KARMPBushing", {}, L"PreForceRy", L"Torque"},
    ExpectedQuantity{"KARMPBushing", {}, L"PreForceRz", L"Torque"},
    ExpectedQuantity{"KARMPSpatialForceActuator", L"Force", L"Vx", L"Force"},
    ExpectedQuantity{"KARMPSpatialForceActuator", L"Force", L"Vy", L"Force"},
    ExpectedQuantity{"KARMPSpatialForceActuator", L"Force", L"Vz", L"Force"},
    ExpectedQuantity{"KARMPSpatialForceActuator", L"Torque", L"Vx", L"Torque"},
    ExpectedQuantity{"KARMPSpatialForceActuator", L"Torque", L"Vy", L"Torque"},
    ExpectedQuantity{"KARMPSpatialForceActuator", L"Torque", L"Vz", L"Torque"},
    ExpectedQuantity{"KARMPSpatialForceActuator2D", L"Force2D", L"Vx", L"Force"},
    ExpectedQuantity{"KARMPSpatialForceActuator2D", L"Force2D", L"Vy", L"Force"},
    ExpectedQuantity{"KARMPSpatialForceActuator2D", L"Torque2D", L"Vx", L"Torque"},
    ExpectedQuantity{"KARMPAngle", L"Variables", {}, L"Angle"},
    ExpectedQuantity{"KARMPDistance", L"Variables", {}, L"Length"},
    ExpectedQuantity{"KARMPRevoluteConstraint", L"Variables", {}, L"Angle"},
    ExpectedQuantity{"KARMPSphericalConstraint", L"Variables", {}, L"Angle"},
    ExpectedQuantity{"KARMPUniversalConstraint", L"Variables", {}, L"Angle"},
    ExpectedQuantity{"KARMPPrismaticConstraint", L"Variables", {}, L"Length"},
};

/// The quantities of a motor's values by that of the variable.
struct MotorQuantities
{
    std::wstring_view variable;
    std::array<std::pair<std::wstring_view, std::wstring_view>, 4> values;
};

constexpr std::array Motors{MotorQuantities{L"Length",
                                            {{{L"Position", L"Length"},
                                              {L"Velocity", L"Velocity"},
                                              {L"Acceleration", L"Acceleration"},
                                              {L"MaxForce", L"Force"}}}},
                            MotorQuantities{L"Angle",
                                            {{{L"Position", L"Angle"},
                                              {L"Velocity", L"AngularVelocity"},
                                              {L"Acceleration", L"AngularAcceleration"},
                                              {L"MaxForce", L"Torque"}}}}};

// The physical quantities in the order of their numbers.
const std::vector<std::wstring_view>& QuantityWords()
{
    static const std::vector<std::wstring_view> none;
    const SchemaItem* const constant = SchemaOf("KARMPConstant");
    if (constant == nullptr)
        return none;
    const auto found =
        std::find_if(constant->elements.begin(), constant->elements.end(),
                     [](const SchemaItem& item) { return item.name == L"PhysicalQuantity"; });
    return found != constant->elements.end() ? found->words : none;
}

} // namespace

// A word, or a number in documents of older versions.
std::wstring_view QuantityOf(const KARMPDeserializer& entity)
{
    const KARMPDeserializer* const element = First(entity, L"PhysicalQuantity");
    std::wstring text;
    if (element == nullptr || !NodeOf(*element).HasText() || KARFailed(element->GetValue(text)))
        return {};
    const std::vector<std::wstring_view>& words = QuantityWords();
    int number = 0;
    if (kar::IsInteger(text) && kar::ScanInt(text, number) == 1)
        return number >= 0 && static_cast<std::size_t>(number) < words.size()
                   ? words[static_cast<std::size_t>(number)]
                   : std::wstring_view();
    const auto found = std::find(words.begin(), words.end(), text);
    return found != words.end() ? *found : std::wstring_view();
}

void MechanismRules::CheckFit(const Node& entity, const KARMPDeserializer& reference,
                              std::wstring_view expected, const RulePlace& place,
                              std::wstring_view other)
{
    const auto number = m_identifiers.Of(reference);
    const auto found = number ? m_quantities.find(*number) : m_quantities.end();
    if (found == m_quantities.end() || found->second.empty() ||
        found->second == L"NoPhysicalQuantity" || found->second == expected ||
        found->second == other)
        return;
    m_tell(Code::WrongQuantity, entity, place,
           Quoted(reference.Id()) + " refers to a quantity of the kind " +
               kar::ToUtf8(found->second) + "; " + kar::ToUtf8(expected) + " was expected");
}

void MechanismRules::CheckQuantitiesOf(const Lineage& lineage, const Node& entity)
{
    for (const ExpectedQuantity& expected : Expected) {
        if (lineage.front() != expected.className)
            continue;
        if (expected.element.empty()) {
            const KARMPDeserializer* const list = First(entity, expected.group);
            for (const KARMPDeserializer* item : ItemsOf(entity, expected.group))
                CheckFit(entity, *item, expected.quantity, {list, item});
            continue;
        }
        const KARMPDeserializer* const group =
            expected.group.empty() ? &entity : First(entity, expected.group);
        const KARMPDeserializer* const item =
            group != nullptr ? First(*group, expected.element) : nullptr;
        if (item != nullptr)
            CheckFit(entity, *item, expected.quantity,
                     expected.group.empty() ? RulePlace({item}) : RulePlace({group, item}));
    }
}

void MechanismRules::CheckMotorQuantities(const Node& entity)
{
    const KARMPDeserializer* const variable = First(entity, L"Variable");
    const auto number = variable != nullptr ? m_identifiers.Of(*variable) : std::nullopt;
    const auto driven = number ? m_quantities.find(*number) : m_quantities.end();
    if (driven == m_quantities.end())
        return;
    // A motor that is given numbers keeps them with the quantity of its variable.
    for (const MotorQuantities& motor : Motors)
        if (motor.variable == driven->second)
            for (const auto& [element, quantity] : motor.values)
                if (const KARMPDeserializer* const item = First(entity, element))
                    CheckFit(entity, *item, quantity, {item}, motor.variable);
}

void MechanismRules::CheckFreedomIndex(const Node& entity)
{
    const KARMPDeserializer* const element = First(entity, L"DOFindex");
    const auto index = NumberIn(entity, L"DOFindex");
    if (!index)
        return;
    if (*index < 0.0 || *index > 5.0)
        m_tell(Code::UnknownFreedom, entity, RulePlace({element}).Text(),
               "there is no freedom of this number; 0 to 5 was expected");
    else if (const KARMPDeserializer* const force = First(entity, L"Force");
             force != nullptr && NodeOf(*force).HasAttribute(L"id"))
        CheckFit(entity, *force, *index < 3.0 ? L"Force" : L"Torque", {force});
}

void MechanismRules::CheckJoint(const Node& entity)
{
    const bool isPlanar = First(entity, L"Bodies2D") != nullptr;
    const std::size_t count = ItemsOf(entity, isPlanar ? L"Bodies2D" : L"Bodies").size();
    if (count < 2)
        m_tell(Code::TooFewBodies, entity, {},
               count == 0 ? "the joint links no bodies; two were expected"
                          : "the joint links one body; two were expected");
}

void MechanismRules::CheckCoupling(const Node& entity)
{
    if (First(entity, L"Equation") == nullptr)
        m_tell(Code::CouplingWithoutEquation, entity, {},
               "the coupling couples nothing: it has no \"Equation\"");
}

void MechanismRules::CheckConstraint(const Lineage& lineage, const Node& entity)
{
    if (!HasClass(lineage, "KARMPConstraint") || HasClass(lineage, "KARMPEquation"))
        return;
    const std::size_t count = ItemsOf(entity, L"Geometries").size();
    if (count < 2)
        m_tell(Code::TooFewGeometries, entity, {},
               count == 0 ? "the constraint is on no geometry; two were expected"
                          : "the constraint is on one geometry; two were expected");
}

void MechanismRules::NoteLinks(std::uint32_t number, const Lineage& lineage, const Node& entity)
{
    m_joined.Note(number, lineage, entity);
    const std::vector<std::uint32_t> children = m_trees.Note(number, entity);
    m_referred.insert(children.begin(), children.end());
    if (!children.empty())
        m_referred.insert(number);
    m_hasLinks = m_hasLinks || HasClass(lineage, "KARMPJoint") ||
                 HasClass(lineage, "KARMPJoint2D") || HasClass(lineage, "KARMPConnector");
    if (HasClass(lineage, "KARMPJoint") || HasClass(lineage, "KARMPJoint2D") ||
        HasClass(lineage, "KARMPConnector") || HasClass(lineage, "KARMPActuator") ||
        HasClass(lineage, "KARMPInteraction") || HasClass(lineage, "KARMPSensor"))
        NoteReferences(entity, 3);
}

// All identifiers that elements below a node refer to, down to a depth.
void MechanismRules::NoteReferences(const KARMPDeserializer& node, int depth)
{
    KARMPDeserializer::ElementVector children;
    node.AppendOrderedElements(children);
    for (const KARMPDeserializer* child : children) {
        if (const auto target = m_identifiers.Of(*child))
            m_referred.insert(*target);
        if (depth > 1)
            NoteReferences(*child, depth - 1);
    }
}

void MechanismRules::CheckLoose(const Node& entity)
{
    const auto number = m_identifiers.Of(entity);
    if (!m_hasLinks || !number || m_referred.count(*number) != 0)
        return;
    for (const std::wstring_view list : {L"Joints", L"Connectors", L"ChildrenBodies"})
        if (!ItemsOf(entity, list).empty())
            return;
    if (First(entity, L"DisplacementSensor") != nullptr || IsFixedBody(entity))
        return;
    m_tell(Code::LooseBody, entity, {},
           "the body hangs on nothing: no joint, connector, drive, sensor, rule or other body "
           "refers to it");
}

// Told at the first body of a chain.
void MechanismRules::CheckFloating(const Node& entity)
{
    constexpr std::size_t most = 3; // bodies that are named
    if (!m_hasLinks)
        return;
    const std::vector<const Node*> chain = m_joined.FloatingChain(entity);
    if (chain.empty())
        return;
    std::string names;
    for (std::size_t index = 0; index < chain.size() && index < most; ++index) {
        std::wstring identifier;
        chain[index]->GetAttribute(L"id", identifier);
        names += (index == 0 ? "" : ", ") + Quoted(identifier);
    }
    if (chain.size() > most)
        names += " and " + std::to_string(chain.size() - most) + " more";
    m_tell(Code::FloatingChain, entity, {},
           "these bodies are joined with one another, and neither with the ground nor with a fixed "
           "body: " +
               names);
}

void MechanismRules::CheckWorld(const Node& world)
{
    CheckTolerances(world);
    CheckWorldSize(world);
    const KARMPDeserializer* const globals = First(world, L"Globals");
    if (globals == nullptr)
        return;
    NoteReferences(*globals, 1);
    for (const std::wstring_view name : {L"GlobalBody", L"GlobalAxisSystem"})
        if (const KARMPDeserializer* const global = First(*globals, name))
            m_joined.Fix(*global);
    if (const KARMPDeserializer* const time = First(*globals, L"GlobalTime"))
        CheckFit(world, *time, L"Time", {globals, time});
}

void MechanismRules::EndNotes()
{
    m_trees.EndNotes();
}

void MechanismRules::CheckTrees(const Node& entity)
{
    const auto number = m_identifiers.Of(entity);
    if (!number)
        return;
    m_trees.ForEachChild(entity, [&](const KARMPDeserializer& list, const KARMPDeserializer& item,
                                     std::uint32_t child, std::size_t tree) {
        if (m_trees.IsCycle(tree, *number, child))
            m_tell(Code::Cycle, entity, {&list, &item},
                   child == *number ? "the entity refers to itself as its own child"
                                    : "the entity below this one is above it as well");
        else if (const Node* const father = m_trees.OtherFather(tree, *number, child))
            m_tell(Code::SecondFather, entity, {&list, &item},
                   "the entity has a father already, in line " + std::to_string(father->Line()));
    });
}

} // namespace karmp::documents

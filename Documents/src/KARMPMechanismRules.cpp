#include "KARMPMechanismRules.h"

#include "KARMPNodeQueries.h"
#include "KARMPSchemaClasses.h"
#include "KARMPTextEscapes.h"
#include "KARTextConversion.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace karmp::documents {

namespace {

// The number of records that a list of a sensor states, or of those that it holds when it states
// none.
int StatedCount(const KARMPDeserializer& list)
{
    int count = 0;
    if (KARFailed(list.GetAttribute(L"number", count))) {
        KARMPDeserializer::ElementVector records;
        list.AppendOrderedElements(records);
        count = static_cast<int>(records.size());
    }
    return count;
}

std::string Counts(int stated, std::size_t held)
{
    return "it states " + std::to_string(stated) + " and holds " + std::to_string(held);
}

} // namespace

/// A rule of a class and of all classes below it.
struct MechanismRule
{
    std::string_view className;
    void (*check)(MechanismRules& rules, const MechanismRules::Node& entity);

    template <void (MechanismRules::*Member)(const MechanismRules::Node&)>
    static void Run(MechanismRules& rules, const MechanismRules::Node& entity)
    {
        (rules.*Member)(entity);
    }
    template <const wchar_t* const& Element>
    static void Target(MechanismRules& rules, const MechanismRules::Node& entity)
    {
        rules.NeedLink(entity, Element, Code::SensorWithoutTarget, "it measures nothing");
    }

    static const std::vector<MechanismRule>& All();
};

namespace {

constexpr const wchar_t* Body = L"Body";
constexpr const wchar_t* Joint = L"Joint";
constexpr const wchar_t* Connector = L"Connector";
constexpr const wchar_t* Motor = L"Motor";
constexpr const wchar_t* Constraint = L"Constraint";
constexpr const wchar_t* ConstrainedBody = L"ConstrainedBody";
constexpr const wchar_t* Body2D = L"Body2D";
constexpr const wchar_t* ConstrainedBody2D = L"ConstrainedBody2D";
constexpr const wchar_t* CollisionRule = L"CollisionRule";

} // namespace

const std::vector<MechanismRule>& MechanismRule::All()
{
    using R = MechanismRules;
    static const std::vector<MechanismRule> rules{
        {"KARMPActuator", Run<&R::CheckActuator>},
        {"KARMPMotor", Run<&R::CheckMotor>},
        {"KARMPJointForceActuator",
         [](R& all, const R::Node& entity) {
             all.NeedLink(entity, Joint, Code::ForceWithoutTarget, "the force acts on no joint");
         }},
        {"KARMPSpatialForceActuator",
         [](R& all, const R::Node& entity) {
             all.NeedLink(entity, Body, Code::ForceWithoutTarget, "the force acts on no body");
         }},
        {"KARMPSpatialForceActuator2D",
         [](R& all, const R::Node& entity) {
             all.NeedLink(entity, Body2D, Code::ForceWithoutTarget, "the force acts on no body");
         }},
        {"KARMPDisplacementActuator",
         [](R& all, const R::Node& entity) {
             if (First(entity, L"Geometry") == nullptr)
                 all.NeedLink(entity, Body, Code::ForceWithoutTarget, "it moves no body");
         }},
        {"KARMPDisplacementActuator2D",
         [](R& all, const R::Node& entity) {
             if (First(entity, L"Geometry2D") == nullptr)
                 all.NeedLink(entity, Body2D, Code::ForceWithoutTarget, "it moves no body");
         }},
        {"KARMPBody2D",
         [](R& all, const R::Node& entity) {
             all.NeedLink(entity, L"Sketch", Code::BodyWithoutSketch, "the body lies in no plane");
         }},
        {"KARMPSketch",
         [](R& all, const R::Node& entity) {
             all.NeedLink(entity, Body, Code::SketchWithoutBody, "no body carries the plane");
         }},
        {"KARMPConnector", Run<&R::CheckConnector>},
        {"KARMPConstraint", Run<&R::CheckConstraint>},
        {"KARMPDisplacementSensor", Target<Body>},
        {"KARMPDisplacementSensor2D", Target<Body2D>},
        {"KARMPJointDOFSensor", Target<Joint>},
        {"KARMPJointSpatialForceSensor", Target<Joint>},
        {"KARMPConnectorSpatialForceSensor", Target<Connector>},
        {"KARMPMotorForceSensor", Target<Motor>},
        {"KARMPConstraintSensor", Target<Constraint>},
        {"KARMPCollisionSensor", Target<CollisionRule>},
        {"KARMPProximitySensor", Run<&R::CheckProximitySensor>},
        {"KARMPProximitySensor", Run<&R::CheckClearance>},
        {"KARMPDofSensor", Target<ConstrainedBody>},
        {"KARMPDofSensor", Run<&R::CheckDofSensor>},
        {"KARMPDofSensor2D", Target<ConstrainedBody2D>},
        {"KARMPDofSensor2D", Run<&R::CheckDofSensor>},
        {"KARMPCollisionRule", Run<&R::CheckCollisionRule>},
        {"KARMPCollisionLayer", Run<&R::CheckCollisionLayer>},
        {"KARMPCollisionInterLayer", Run<&R::CheckCollisionInterLayer>},
        {"KARMPAnalysisCase", Run<&R::CheckAnalysisCase>},
        {"KARMPBody", Run<&R::CheckBody>},
        {"KARMPBody", Run<&R::CheckLoose>},
        {"KARMPBody", Run<&R::CheckFloating>},
        {"KARMPBody2D", Run<&R::CheckBody>},
        {"KARMPBody2D", Run<&R::CheckLoose>},
        {"KARMPGeometry", Run<&R::CheckCoordinates>},
        {"KARMPGeometry", Run<&R::CheckSegments>},
        {"KARMPSketchFunction", Run<&R::CheckSegments>},
        {"KARMPActuator", Run<&R::CheckDragLine>},
        {"KARMPJointForceActuator", Run<&R::CheckFreedomIndex>},
        {"KARMPJointDOFSensor", Run<&R::CheckFreedomIndex>},
        {"KARMPMotor", Run<&R::CheckMotorQuantities>},
        {"KARMPDofSensor", Run<&R::CheckFreedoms>},
        {"KARMPDofSensor2D", Run<&R::CheckFreedoms>},
        {"KARMPVariable", Run<&R::CheckVariable>},
        {"KARMPLinearEquation", Run<&R::CheckLinearEquation>},
        {"KARMPExpression", Run<&R::CheckExpression>},
        {"KARMPJoint", Run<&R::CheckJoint>},
        {"KARMPJoint2D", Run<&R::CheckJoint>},
        {"KARMPCoupling", Run<&R::CheckCoupling>},
        {"KARMPEntity", Run<&R::CheckRotations>},
        {"KARMPEntity", Run<&R::CheckTrees>},
        {"KARMPEntity", Run<&R::CheckSiblings>},
        {"KARMPAttribute", Run<&R::CheckAttribute>},
        {"KARMPState", Run<&R::CheckStoredValue>},
        {"KARMPOutput", Run<&R::CheckStoredValue>},
        {"KARMPCurve", Run<&R::CheckCurve>},
        {"KARMPCurve2D", Run<&R::CheckCurve>},
        {"KARMPSurface", Run<&R::CheckSurface>},
        {"KARMPShape", Run<&R::CheckShape>},
        {"KARMP3DRep", Run<&R::CheckRep>},
        {"KARMPShapeBody", Run<&R::CheckShapeBody>},
    };
    return rules;
}

MechanismRules::MechanismRules(Identifiers& identifiers, Tell tell)
    : m_identifiers(identifiers),
      m_tell(std::move(tell)),
      m_trees(identifiers),
      m_joined(identifiers)
{}

void MechanismRules::Note(std::uint32_t number, const Lineage& lineage, const Node& entity)
{
    if (HasClass(lineage, "KARMPCollisionLayer"))
        m_layers.insert(number);
    if (HasClass(lineage, "KARMPAnalysisStep"))
        m_steps.insert(number);
    if (HasClass(lineage, "KARMPAttribute"))
        NoteAttribute(number, entity);
    NoteDimensions(number, lineage);
    NoteLinks(number, lineage, entity);
    if (!HasClass(lineage, "KARMPValue") && !HasClass(lineage, "KARMPVariable"))
        return;
    const std::wstring_view quantity = QuantityOf(entity);
    m_quantities.try_emplace(number, quantity);
    const bool needsOne =
        HasClass(lineage, "KARMPConstant") || HasClass(lineage, "KARMPExpression");
    // Of a word that is none, something else is told.
    const bool isMissing = First(entity, L"PhysicalQuantity") == nullptr;
    if (needsOne && (isMissing || quantity == L"NoPhysicalQuantity"))
        m_valuesWithoutQuantity.insert(number);
}

void MechanismRules::NoteDimensions(std::uint32_t number, const Lineage& lineage)
{
    if (HasClass(lineage, "KARMPJoint2D"))
        m_planarJoints.insert(number);
    if (!HasClass(lineage, "KARMPGeometry") || HasClass(lineage, "KARMPGeometry2D"))
        return;
    m_spatialGeometries.resize(std::max<std::size_t>(m_spatialGeometries.size(), number + 1));
    m_spatialGeometries[number] = true;
}

// Planar classes count as those in space too.
const std::vector<MechanismRules::EntityCheck>& MechanismRules::ChecksOf(const Lineage& lineage)
{
    const auto [place, added] = m_checks.try_emplace(lineage.front());
    std::vector<EntityCheck>& checks = place->second;
    if (!added)
        return checks;
    for (const MechanismRule& rule : MechanismRule::All())
        if (HasClass(lineage, rule.className) &&
            std::find(checks.begin(), checks.end(), rule.check) == checks.end())
            checks.push_back(rule.check);
    return checks;
}

void MechanismRules::Check(const Lineage& lineage, const Node& entity)
{
    for (const EntityCheck check : ChecksOf(lineage))
        check(*this, entity);
    CheckConstraint(lineage, entity);
    CheckQuantitiesOf(lineage, entity);
    CheckRanges(lineage, entity);
}

void MechanismRules::NeedLink(const Node& entity, std::wstring_view element, Code code,
                              const char* text)
{
    if (First(entity, element) == nullptr)
        m_tell(code, entity, {}, std::string(text) + ": it has no " + Quoted(element));
}

void MechanismRules::CheckActuator(const Node& entity)
{
    CheckQuantities(entity);
}

void MechanismRules::CheckMotor(const Node& entity)
{
    const KARMPDeserializer* const variable = First(entity, L"Variable");
    if (variable == nullptr) {
        m_tell(Code::MotorWithoutVariable, entity, {}, "the motor drives no variable");
        return;
    }
    const auto number = m_identifiers.Of(*variable);
    if (!number)
        return;
    const auto [first, added] = m_driven.try_emplace(*number, &entity);
    if (!added)
        m_tell(Code::SharedVariable, entity, {variable},
               "the motor in line " + std::to_string(first->second->Line()) +
                   " drives this variable too");
    CheckTarget(entity);
}

// "VelocityTarget" asks for "Velocity", and so on.
void MechanismRules::CheckTarget(const Node& entity)
{
    constexpr std::wstring_view ending = L"Target";
    const KARMPDeserializer* const type = First(entity, L"TargetType");
    std::wstring target;
    if (type == nullptr || !NodeOf(*type).HasText() || KARFailed(type->GetValue(target)))
        return;
    for (const std::wstring_view value : {L"Position", L"Velocity", L"Acceleration"})
        if (target == std::wstring(value) + std::wstring(ending) && First(entity, value) == nullptr)
            m_tell(Code::MotorWithoutTarget, entity, RulePlace({type}).Text(),
                   "the motor aims at no value: it has no " + Quoted(value));
}

void MechanismRules::CheckConnector(const Node& entity)
{
    CheckQuantities(entity);
    const bool first = First(entity, L"FirstBody") != nullptr;
    const bool second = First(entity, L"SecondBody") != nullptr;
    const bool onJoint = First(entity, L"Joint") != nullptr;
    if (first && second)
        CheckEnds(entity);
    if ((first && second) || onJoint)
        return;
    m_tell(Code::ConnectorWithoutBody, entity, {},
           first || second ? "it acts on one body only: it has no " +
                                 Quoted(first ? L"SecondBody" : L"FirstBody")
                           : "it acts on no body: it has neither \"FirstBody\" nor \"SecondBody\"");
}

void MechanismRules::CheckEnds(const Node& entity)
{
    const KARMPDeserializer* const second = First(entity, L"SecondBody");
    const auto number = m_identifiers.Of(*second);
    if (number && number == m_identifiers.Of(*First(entity, L"FirstBody")))
        m_tell(Code::RepeatedReference, entity, {second}, "both ends act on one body");
}

void MechanismRules::CheckQuantities(const Node& entity)
{
    KARMPDeserializer::ElementVector children;
    entity.AppendOrderedElements(children);
    for (const KARMPDeserializer* child : children) {
        CheckQuantity(entity, *child, {child});
        KARMPDeserializer::ElementVector items;
        child->AppendOrderedElements(items);
        for (const KARMPDeserializer* item : items)
            CheckQuantity(entity, *item, {child, item});
    }
}

void MechanismRules::CheckQuantity(const Node& entity, const KARMPDeserializer& reference,
                                   const RulePlace& place)
{
    const auto number = m_identifiers.Of(reference);
    if (number && m_valuesWithoutQuantity.contains(*number))
        m_tell(Code::ValueWithoutQuantity, entity, place,
               "the value of " + Quoted(reference.Id()) + " has no physical quantity, so no unit");
}

void MechanismRules::CheckConstraint(const Node& entity)
{
    const KARMPDeserializer* const joint = First(entity, L"Joint");
    const auto jointNumber = joint != nullptr ? m_identifiers.Of(*joint) : std::nullopt;
    if (!jointNumber || !m_planarJoints.contains(*jointNumber))
        return;
    for (const KARMPDeserializer* item : ItemsOf(entity, L"Geometries")) {
        const auto number = m_identifiers.Of(*item);
        if (number && *number < m_spatialGeometries.size() && m_spatialGeometries[*number])
            m_tell(Code::MixedDimensions, entity, {First(entity, L"Geometries"), item},
                   "the joint is planar and this geometry lies in space");
    }
}

void MechanismRules::CheckDofSensor(const Node& entity)
{
    constexpr std::array<std::wstring_view, 5> Lists{L"Translations", L"Rotations", L"Screws",
                                                     L"Translations2D", L"Rotations2D"};
    int sum = 0;
    for (const std::wstring_view name : Lists) {
        const KARMPDeserializer* const list = First(entity, name);
        if (list == nullptr)
            continue;
        const int stated = StatedCount(*list);
        const std::size_t held = ItemsOf(entity, name).size();
        if (stated < 0 || static_cast<std::size_t>(stated) != held)
            m_tell(Code::WrongCount, entity, {list},
                   "the number of " + Quoted(name) +
                       " disagrees with the list: " + Counts(stated, held));
        sum += static_cast<int>(held);
    }
    int stated = 0;
    if (!KARFailed(entity.GetAttribute(L"numberOfDof", stated)) && stated != sum)
        m_tell(Code::WrongCount, entity, {},
               "the number of degrees of freedom disagrees with the lists: " +
                   Counts(stated, static_cast<std::size_t>(sum)));
}

void MechanismRules::CheckProximitySensor(const Node& entity)
{
    const KARMPDeserializer* const data = First(entity, L"ProximitySensorData");
    const KARMPDeserializer* const body = data != nullptr ? First(*data, L"SensorBody") : nullptr;
    if (body == nullptr || !NodeOf(*body).HasAttribute(L"id"))
        m_tell(Code::SensorWithoutTarget, entity, {},
               "it measures nothing: its \"SensorBody\" is no body");
}

void MechanismRules::CheckCollisionRule(const Node& entity)
{
    const std::size_t count = ItemsOf(entity, L"Collidables").size();
    if (count < 2)
        m_tell(Code::RuleWithoutBody, entity, {},
               count == 0 ? "the rule is about no collidable"
                          : "the rule is about one collidable; it takes two");
}

void MechanismRules::CheckCollisionLayer(const Node& entity)
{
    for (const KARMPDeserializer* item : ItemsOf(entity, L"Entities")) {
        const auto number = m_identifiers.Of(*item);
        if (!number)
            continue;
        const auto [first, added] = m_layered.try_emplace(*number, &entity);
        if (!added && first->second != &entity)
            m_tell(Code::SharedByLayers, entity, {First(entity, L"Entities"), item},
                   "the layer in line " + std::to_string(first->second->Line()) +
                       " holds this entity too");
    }
}

void MechanismRules::CheckCollisionInterLayer(const Node& entity)
{
    for (const KARMPDeserializer* item : ItemsOf(entity, L"CollisionLayers")) {
        const auto number = m_identifiers.Of(*item);
        if (number && !m_layers.contains(*number))
            m_tell(Code::NoLayer, entity, {First(entity, L"CollisionLayers"), item},
                   "this is no collision layer");
    }
}

void MechanismRules::CheckAnalysisCase(const Node& entity)
{
    for (const KARMPDeserializer* item : ItemsOf(entity, L"Steps")) {
        const auto number = m_identifiers.Of(*item);
        if (!number || !m_steps.contains(*number))
            m_tell(Code::UnknownStep, entity, {First(entity, L"Steps"), item},
                   "the case runs without this step: it is no analysis step of the document");
    }
}

void MechanismRules::CheckFamily(std::string_view className, const Node& list)
{
    KARMPDeserializer::ElementVector entities;
    list.AppendOrderedElements(entities);
    if (className == "KARMPMaterial" && entities.empty())
        m_tell(Code::LostMaterials, list, {},
               "the materials of the world that was saved are lost: they wrote nothing");
}

} // namespace karmp::documents

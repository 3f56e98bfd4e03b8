// What a well-formed document says that no mechanism can mean.
#pragma once

#include "KARMPDocumentPath.h"
#include "KARMPDocumentReader.h"
#include "KARMPIdentifiers.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace karmp::documents {

/// Looks at one entity at a time: first Note for all entities of a document, then Check. Time and
/// memory are linear in the document.
class MechanismRules
{
public:
    using Node = KARMPDocumentReader;
    /// The class of an entity and the classes above it.
    using Lineage = std::vector<std::string>;
    /// Takes a warning about an entity, or about the node that `below` leads to from there.
    using Tell =
        std::function<void(Code code, const Node& entity, const Way& below, std::string text)>;

    MechanismRules(Identifiers& identifiers, Tell tell);

    /// Keeps what the rules of other entities ask of this one, which has the number `number`.
    void Note(std::uint32_t number, const Lineage& lineage, const Node& entity);
    /// Tells what the rules of the entity's class and of the classes above it find.
    void Check(const Lineage& lineage, const Node& entity);
    /// Tells what the list of a family, given by its class, shows by itself.
    void CheckFamily(std::string_view className, const Node& list);

private:
    friend struct MechanismRule;

    /// The identifier of an attribute in paths, by its number, and its element.
    struct NamedNode
    {
        std::uint32_t name;
        const Node* node;
    };

    void CheckActuator(const Node& entity);
    void CheckMotor(const Node& entity);
    void CheckConnector(const Node& entity);
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
    void CheckQuantity(const Node& entity, const KARMPDeserializer& reference, const Way& below);

    Identifiers& m_identifiers;
    Tell m_tell;
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
};

} // namespace karmp::documents

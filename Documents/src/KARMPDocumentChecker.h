// Compares the tree of a document with what the entity classes read.
#pragma once

#include "KARMPDocumentLinks.h"
#include "KARMPDocumentReader.h"
#include "KARMPDocumentSchema.h"
#include "KARMPIdentifiers.h"
#include "KARMPMechanismRules.h"
#include "KARMPMessages.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace karmp::documents {

/// The known version that a version is, or that it is near to; itself when none is near. A check
/// takes it, so that a misspelt version is one finding, without the items that it lacks.
std::wstring VersionMeant(std::wstring_view version);

/// One run over one tree, in time and memory linear in it and without recursion. It keeps nothing
/// of what is made of the entities meanwhile.
class DocumentChecker
{
public:
    /// Checks no less than the form. `hasForm` is true when all entities have the form of their
    /// classes, so that there is nothing to tell of it.
    DocumentChecker(const KARMPDocumentReader& root, Messages& messages, CheckLevel level,
                    bool hasForm);
    void Run();

    /// The references to entities of a wrong class.
    const std::vector<WrongReference>& WrongReferences() const { return m_wrongReferences; }
    /// An identifier that no entity carries.
    std::wstring UnusedIdentifier() const;

private:
    using Node = KARMPDocumentReader;

    /// What is known of the class that belongs to an element name.
    struct Class
    {
        /// The class and those above it; empty when there is no such class.
        std::vector<std::string> lineage;
        const SchemaItem* item = nullptr;
        /// The links that both ends must have.
        std::vector<LinkSide> sides;
    };
    /// The entity that carries an identifier, if there is one.
    struct Identified
    {
        const Node* node = nullptr;
        const Class* type = nullptr;
    };
    /// How far the check of an element's children has come.
    struct Frame
    {
        const Node* node;
        /// Null below what is not known here.
        const SchemaItem* item;
        /// The family when the element is its list.
        const Family* family;
        /// The element's children among all pending ones.
        std::size_t begin;
        std::size_t next;
        std::size_t end;
        /// The item after the one found last, which mostly comes next.
        std::size_t likely;
        /// One bit for each of the item's elements.
        std::uint64_t seen;
        /// One bit for each element in whose place a misspelt one stands.
        std::uint64_t misspelt;
    };

    void CollectIdentifiers();
    void Identify(const Node& entity);
    const Class& ClassOf(std::wstring_view element);

    bool Push(const Node& node, const SchemaItem* item, const Family* family);
    void Pop();
    void CheckChild(const Node& child);
    void CheckEntity(const Node& entity, const Family& family);
    void CheckUnknownContent(const Node& node);
    const SchemaItem* FindElement(Frame& frame, const Node& child);
    bool Applies(const SchemaItem& item) const { return item.Applies(m_version); }
    void CheckElement(const Node& node, const SchemaItem& item);
    void CheckAttributes(const Node& node, const SchemaItem& item);
    void CheckText(const Node& node, const SchemaItem& item, std::wstring_view text,
                   std::wstring_view attribute);
    void CheckReference(const Node& node, const SchemaItem* item);
    void CheckCounterpart(const Node& node, std::uint32_t target);
    void CheckName(const Node& reference, const Node& target);
    bool TellRepeated(const Node& node, const SchemaItem& item, std::uint32_t target);
    void CheckDisabledValue(const Node& node, const SchemaItem& item);
    static std::string SuggestionOfClass(std::wstring_view element, const Family& family);
    std::string SuggestionOfIdentifier(const std::wstring& identifier);
    void TellMissing(const Node& node, const SchemaItem& item, Code code, std::string_view what);
    void Tell(Severity severity, Code code, const Node& node, std::string text,
              std::wstring_view attribute = {});
    void TellAt(Severity severity, Code code, const Node& node, const RulePlace& place,
                std::string text);

    const Node& m_root;
    Messages& m_messages;
    const bool m_hasForm;
    std::wstring m_version;
    std::unordered_map<std::wstring_view, Class> m_classes;
    Identifiers m_identifiers;
    std::vector<Identified> m_identified;
    DocumentLinks m_links;
    /// Empty where the meaning is not checked.
    std::optional<MechanismRules> m_rules;
    std::vector<WrongReference> m_wrongReferences;
    /// The identifier of the entity that is checked, if it has one.
    std::optional<std::uint32_t> m_entity;
    /// The targets of the list whose references are checked.
    std::unordered_set<std::uint32_t> m_listed;
    std::size_t m_suggestions = 0;
    /// The entities of which a reference with another name was told.
    std::unordered_set<const Node*> m_misnamed;
    std::vector<Frame> m_frames;
    KARMPDeserializer::ElementVector m_pending;
};

} // namespace karmp::documents

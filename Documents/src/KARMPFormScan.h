#pragma once

#include "KARMPDocumentReader.h"
#include "KARMPDocumentRecords.h"
#include "KARMPDocumentSchema.h"
#include "KARMPTextEscapes.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace karmp::documents {

class DocumentSource;

/// Tells whether a document has the form of its classes throughout, in two passes over its records:
/// one over the identifiers of entities, one over all. It makes no nodes and composes no messages:
/// where something is amiss, DocumentChecker tells what. Whatever it has no short way for counts as
/// amiss. Time is linear in the document but for sorting long lists of links.
class FormScan
{
public:
    /// Checks as DocumentChecker does at a level.
    FormScan(DocumentSource& source, CheckLevel level);
    FormScan(const FormScan&) = delete;
    FormScan& operator=(const FormScan&) = delete;

    /// True when there is nothing to tell of.
    bool Run();

private:
    struct Class;
    /// An item with its name in the document.
    struct Form
    {
        const SchemaItem* item = nullptr;
        std::uint32_t name = 0;
        /// False at another version.
        bool applies = false;
        /// A number in an element without attributes.
        bool isNumber = false;
        /// Nothing is wrong with any text.
        bool isText = false;
        /// No other item of the list follows it.
        bool isLast = false;
        /// All elements are numbers that stand once.
        bool areNumbers = false;
        /// A reference without elements, whose attributes are texts.
        bool isReference = false;
        /// An entry of a list that refers to each entity once.
        bool isInSet = false;
        /// The last text that was nothing to tell of, which mostly comes again; null before that.
        mutable const char* usual = nullptr;
        /// The attributes and elements are made.
        bool isMade = false;
        /// A flag and the number that it says to be there.
        bool isOptionalNumber = false;
        /// An entity's reference or list of references; where `needsBack` is true, its targets must
        /// refer back under one of the names.
        bool isSide = false;
        bool needsBack = false;
        std::vector<std::uint32_t> backNames;
        std::vector<Form> attributes;
        std::vector<Form> elements;
        /// One bit for each of them that must be there.
        std::uint64_t neededAttributes = 0;
        std::uint64_t neededElements = 0;
        /// Classes of entities that a reference may have.
        std::vector<const Class*> targets;
    };
    /// A class whose entities the document has.
    struct Class
    {
        /// The class and those above it; empty when there is none.
        std::vector<std::string> lineage;
        Form form;
        /// The family that it was found to belong to.
        const Family* family = nullptr;

        bool IsA(std::string_view className) const;
    };
    struct Entity
    {
        /// Null without a name.
        const char* name;
        const Class* type;
        /// The first of its links among all.
        std::uint32_t links;
    };
    /// A reference of an entity, by its item's name.
    struct Link
    {
        std::uint32_t target;
        std::uint32_t name;

        bool operator<(const Link& other) const
        {
            return target != other.target ? target < other.target : name < other.name;
        }
    };
    /// A link that must be returned.
    struct Back
    {
        std::uint32_t owner;
        std::uint32_t target;
        const Form* side;
    };
    struct Attributes
    {
        const AttributeRecord* identifier = nullptr;
        const AttributeRecord* name = nullptr;
    };

    const ElementRecord& RecordOf(std::uint32_t number) const { return m_records.elements[number]; }
    std::uint32_t End(std::uint32_t number) const { return RecordOf(number).end; }
    Attributes AttributesOf(std::uint32_t number) const;
    bool IsFamily(std::uint32_t name) const;
    std::vector<Form> FormsOf(const std::vector<SchemaItem>& items, std::uint64_t& needed) const;
    void MakeLevel(Form& form) const;
    void MakeSides(Form& form) const;
    Class& ClassOf(std::uint32_t element);

    bool Identify();
    bool Enter(std::uint32_t entity);

    static Form* FindForm(std::vector<Form>& forms, std::uint32_t name, std::size_t& likely);
    bool CheckElement(std::uint32_t number, Form& form, const Form* side, unsigned level);
    bool IsUsualNumber(std::uint32_t number, const Form& form) const;
    bool AreUsualNumbers(std::uint32_t number, const Form& form) const;
    bool IsUsualReference(std::uint32_t number, const Form& form) const;
    bool CheckAttributes(std::uint32_t number, Form& form, unsigned level) const;
    bool CheckChildren(std::uint32_t number, Form& form, const Form* side, unsigned level);
    bool CheckEntities(std::uint32_t list, const Family& family);
    bool CheckReference(std::uint32_t number, Form& form, const Form* side);
    static bool IsTarget(const Class& type, Form& form);
    bool CheckRepeated(std::size_t first);
    bool CheckText(const ElementRecord& record, const Form& form) const;
    bool CheckText(const char* text, bool isPlain, const Form& form, TextContext context) const;
    std::span<Link> LinksOf(std::uint32_t entity);
    bool CheckBacks();

    DocumentSource& m_source;
    const DocumentRecords& m_records;
    const bool m_isFormAlone;
    std::wstring_view m_version;
    std::uint32_t m_nameName;
    Form m_root;
    /// By the names of their elements; null until they are looked up.
    std::vector<std::unique_ptr<Class>> m_classes;
    std::vector<Entity> m_entities;
    /// The index of the entity of each identifier's number.
    std::vector<std::uint32_t> m_numbers;
    std::vector<Link> m_links;
    std::vector<Back> m_backs;
    /// The entity that is checked.
    std::uint32_t m_owner = 0;
    /// The targets of the lists that are being checked.
    std::vector<std::uint32_t> m_listed;
};

} // namespace karmp::documents

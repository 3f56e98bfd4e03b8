// The reference of the format, for one class and for all.
#include "KARMPDocumentSchemas.h"
#include "KARMPDocumentWriter.h"
#include "KARMPEntity.h"
#include "KARMPEnumerationTexts.h"
#include "KARMPGenericFactory.h"
#include "KARMPItems.h"
#include "KARMPSchemaClasses.h"
#include "KARTextConversion.h"

#include <algorithm>
#include <pugixml.hpp>
#include <set>

namespace karmp::documents {

namespace {

// The class of every entity says nothing about one.
bool IsAnyEntity(std::string_view className)
{
    return className == "KARMPEntity";
}

// The name of an item's quantity. Here and below, items of the schema or of the table of items.
template <class AnyItem>
std::string QuantityOf(const AnyItem& item)
{
    const auto index = static_cast<std::size_t>(item.quantity);
    const auto& rows = EnumTexts<KARMPPhysicalQuantity::Enum>::Rows;
    const bool isKnown = item.quantity != KARMPPhysicalQuantity::NoPhysicalQuantity;
    return isKnown && index < rows.size() ? kar::ToUtf8(rows[index]) : std::string();
}

template <class AnyItem>
std::string WordsOf(const AnyItem& item)
{
    std::string words;
    for (const std::wstring_view word : item.words)
        words += (words.empty() ? "" : ", ") + kar::ToUtf8(word);
    return words;
}

std::string InBrackets(const std::string& text)
{
    return text.empty() ? text : " (" + text + ')';
}

std::string KindOf(const SchemaItem& item)
{
    switch (item.kind) {
    case ItemKind::Number:
        return "number" + InBrackets(QuantityOf(item));

    case ItemKind::Integer:
        return "whole number";
    case ItemKind::Code:
        return "number of: " + WordsOf(item);
    case ItemKind::Flag:
        return "true or false";
    case ItemKind::Word:
        return "one of: " + WordsOf(item);
    case ItemKind::Text:
        return "text";
    case ItemKind::Reference:
        return (item.isOwned ? "owned " : "reference to ") +
               (IsAnyEntity(item.target) ? "any entity" : std::string(item.target)) +
               InBrackets(QuantityOf(item));
    default:
        return "group";
    }
}

std::string PresenceOf(const SchemaItem& item)
{
    std::string presence = item.presence == ItemPresence::Required   ? "required"
                           : item.presence == ItemPresence::Reported ? "expected"
                                                                     : "optional";
    if (item.repeats)
        presence += ", repeated";
    if (!item.isRead)
        presence += ", written only";
    if (!item.isWritten)
        presence += ", read only";
    return presence;
}

std::string VersionsOf(const SchemaItem& item)
{
    std::string versions;
    if (!item.since.empty())
        versions = "since " + kar::ToUtf8(item.since);
    if (!item.until.empty())
        versions += (versions.empty() ? "below " : ", below ") + kar::ToUtf8(item.until);
    return versions;
}

std::string NameOf(const SchemaItem& item)
{
    return item.anyName ? std::string("(any name)") : kar::ToUtf8(item.name);
}

/// The values of a new entity, by paths of elements with "@" before an attribute.
class Defaults
{
public:
    Defaults() = default;
    explicit Defaults(const EntityClass& entityClass)
    {
        Read(entityClass, CurrentVersion, m_current);
        Read(entityClass, R2015x_0, m_first);
    }
    std::string Of(const SchemaItem& item, const std::string& path) const
    {
        // The identifier of a new entity is another one each time.
        if (item.kind == ItemKind::Group || path == "@id")
            return {};
        const pugi::xml_node entity = (item.until.empty() ? m_current : m_first).first_child();
        const std::size_t mark = path.find('@');
        const pugi::xml_node element = entity.first_element_by_path(path.substr(0, mark).c_str());
        return mark == std::string::npos ? element.text().get()
                                         : (mark == 0 ? entity : element)
                                               .attribute(path.substr(mark + 1).c_str())
                                               .value();
    }

private:
    static void Read(const EntityClass& entityClass, std::wstring_view version,
                     pugi::xml_document& values)
    {
        QOBSharedHandle<KARMPEntity> entity;
        KARMPDocumentWriter root{version};
        std::string text;
        if (KARFailed(KARMPFactory::Create(entityClass.name, entity)))
            return;
        entity->Serialize(&root);
        static_cast<void>(root.RenderXml(text));
        pugi::xml_document document;
        document.load_string(text.c_str());
        values.append_copy(document.document_element().first_child());
    }

    pugi::xml_document m_current;
    pugi::xml_document m_first;
};

// What all references carry is told once.
std::vector<const SchemaItem*> AttributesOf(const SchemaItem& element)
{
    std::vector<const SchemaItem*> attributes;
    for (const SchemaItem& attribute : element.attributes) {
        const bool isCommon = attribute.name == L"id" || attribute.name == L"name";
        if (element.kind != ItemKind::Reference || !isCommon)
            attributes.push_back(&attribute);
    }
    return attributes;
}

/// Goes through the items of an element in the order of the document.
template <class Visit>
void ForEachItem(const SchemaItem& element, const std::string& path, const Visit& visit)
{
    for (const SchemaItem* const attribute : AttributesOf(element))
        visit(*attribute, path + '@' + NameOf(*attribute));
    for (const SchemaItem& child : element.elements) {
        const std::string childPath =
            path.empty() || path.back() == '/' ? path + NameOf(child) : path + '/' + NameOf(child);
        visit(child, childPath);
        ForEachItem(child, childPath, visit);
    }
}

/// One row of a table; numbers of one meaning stand in one row.
struct Row
{
    const SchemaItem* item;
    std::string path;
    std::string holder;
    std::string value;
};

bool AreOne(const Row& left, const Row& right)
{
    return left.item->kind == ItemKind::Number && right.item->kind == ItemKind::Number &&
           left.holder == right.holder && left.item->says == right.item->says &&
           left.item->presence == right.item->presence && left.item->isRead == right.item->isRead &&
           left.item->isWritten == right.item->isWritten && !left.item->says.empty();
}

/// Items are the same when a base has one of the name and versions.
bool Holds(const std::vector<SchemaItem>& items, const SchemaItem& item)
{
    return std::any_of(
        items.begin(), items.end(),
        [&](const SchemaItem& known) {
            return known.name == item.name && known.since == item.since &&
                   known.until == item.until;
        });
}

/// Whether an element has whatever another one has. A class need not: one of a planar mechanism
/// leaves out what its base in space holds.
bool HoldsAll(const SchemaItem& whole, const SchemaItem& part)
{
    return std::all_of(
               part.attributes.begin(), part.attributes.end(),
               [&whole](const SchemaItem& item) { return Holds(whole.attributes, item); }) &&
           std::all_of(
               part.elements.begin(), part.elements.end(),
               [&whole](const SchemaItem& item) {
                   return std::any_of(
                       whole.elements.begin(), whole.elements.end(),
                       [&item](const SchemaItem& known) {
                           return Holds({known}, item) && HoldsAll(known, item);
                       });
               });
}

/// What a class adds to its base.
SchemaItem OwnItems(const SchemaItem& whole, const SchemaItem* base)
{
    SchemaItem own = whole;
    if (base != nullptr) {
        std::erase_if(
            own.attributes,
            [base](const SchemaItem& item) { return Holds(base->attributes, item); });
        std::erase_if(own.elements,
                      [base](const SchemaItem& item) { return Holds(base->elements, item); });
    }
    return own;
}

class ReferencePrinter
{
public:
    std::string Print();

private:
    void Table(const SchemaItem& element, const Defaults& defaults);
    void Class(const EntityClass& entityClass);
    void Base(const std::string& name, const EntityClass& sample);
    void Document();
    void Family(const documents::Family& family);
    /// The nearest class above, from an index of the bases on, all of whose items an element holds;
    /// empty without one.
    static std::string BaseOf(const std::vector<std::string>& bases, std::size_t index,
                              const SchemaItem& whole);

    std::vector<EntityClass> m_classes = EntityClasses();
    std::set<std::string> m_printed;
    std::string m_text;
};

std::string ReferencePrinter::BaseOf(const std::vector<std::string>& bases, std::size_t index,
                                     const SchemaItem& whole)
{
    for (; index < bases.size(); ++index) {
        const SchemaItem* const base = SchemaOf(bases[index]);
        if (base != nullptr && HoldsAll(whole, *base))
            return bases[index];
    }
    return {};
}

void ReferencePrinter::Table(const SchemaItem& element, const Defaults& defaults)
{
    std::vector<Row> rows;
    ForEachItem(element, {}, [&](const SchemaItem& item, const std::string& path) {
        const std::size_t end = path.find_last_of("/@");
        Row row{&item, path, end == std::string::npos ? std::string() : path.substr(0, end),
                defaults.Of(item, path)};
        if (!rows.empty() && AreOne(rows.back(), row)) {
            rows.back().path += ", " + NameOf(item);
            if (!row.value.empty())
                rows.back().value += ", " + row.value;
        } else {
            rows.push_back(std::move(row));
        }
    });
    if (rows.empty()) {
        m_text += "Nothing of its own.\n\n";
        return;
    }
    m_text += "| Item | Kind | Presence | Versions | Default | Meaning |\n"
              "|---|---|---|---|---|---|\n";
    for (const Row& row : rows) {
        m_text += "| `" + row.path + "` | " + KindOf(*row.item) + " | " + PresenceOf(*row.item) +
                  " | " + VersionsOf(*row.item) + " | " + row.value + " | " +
                  std::string(row.item->says) + " |\n";
    }
    m_text += '\n';
}

void ReferencePrinter::Class(const EntityClass& entityClass)
{
    const std::string base = BaseOf(entityClass.bases, 0, *entityClass.item);
    m_text += "### " + kar::ToUtf8(entityClass.item->name) + "\n\n" +
              std::string(entityClass.item->says) + " Class `" + entityClass.name + "`";
    m_text += base.empty() ? ".\n\n" : ", with all that `" + base + "` holds.\n\n";
    Table(OwnItems(*entityClass.item, SchemaOf(base)), Defaults(entityClass));
}

void ReferencePrinter::Base(const std::string& name, const EntityClass& sample)
{
    const auto place = std::find(sample.bases.begin(), sample.bases.end(), name);
    const SchemaItem& item = *SchemaOf(name);
    const std::string base =
        BaseOf(sample.bases, static_cast<std::size_t>(place - sample.bases.begin()) + 1, item);
    m_text += "### Base " + name + "\n\n" + std::string(item.says);
    m_text += base.empty() ? "\n\n" : " It has all that `" + base + "` holds.\n\n";
    Table(OwnItems(item, SchemaOf(base)), Defaults(sample));
}

void ReferencePrinter::Document()
{
    const SchemaItem& root = RootItem();
    m_text += "## The document\n\nThe root element is `" + kar::ToUtf8(root.name) +
              "`; the entities of the world stand in the lists of their families.\n\n";
    Table(root, Defaults());
}

// The bases that this family's classes have, topmost first, then the classes.
void ReferencePrinter::Family(const documents::Family& family)
{
    std::string classes;
    std::swap(classes, m_text);
    for (const EntityClass& entityClass : m_classes) {
        if (!entityClass.IsA(family.className))
            continue;
        for (auto base = entityClass.bases.rbegin(); base != entityClass.bases.rend(); ++base) {
            const SchemaItem* const item = SchemaOf(*base);
            if (item != nullptr && item->name.empty() && m_printed.insert(*base).second)
                Base(*base, entityClass);
        }
        Class(entityClass);
    }
    std::swap(classes, m_text);
    if (!classes.empty())
        m_text += "## " + kar::ToUtf8(family.element) + "\n\n" + classes;
}

std::string ReferencePrinter::Print()
{
    m_text = "# The format of documents\n\n"
             "Made by `karmp schema --reference`; a change of it is a change of the classes.\n\n"
             "An item is an element, or an attribute behind `@`; items stand in any order. "
             "*Required*: what holds the item cannot be read without it. *Expected*: it is always "
             "there, and reading goes on without it. Numbers are decimal, with point or comma. "
             "Each reference carries the attribute `id`, the identifier of its target, and may "
             "carry `name`, which is not read. The default is that of a new entity.\n\n";
    Document();
    for (const documents::Family& family : Families())
        Family(family);
    while (m_text.size() > 1 && m_text[m_text.size() - 2] == '\n')
        m_text.pop_back();
    return std::move(m_text);
}

void PrintLine(std::string& text, const SchemaItem& item, std::string_view mark, unsigned depth)
{
    text += std::string(std::size_t{2} * depth, ' ') + std::string(mark) + NameOf(item) + ": " +
            KindOf(item) + ", " + PresenceOf(item);
    if (const std::string versions = VersionsOf(item); !versions.empty())
        text += ", " + versions;
    if (!item.says.empty())
        text += ". " + std::string(item.says);
    text += '\n';
}

void PrintTree(std::string& text, const SchemaItem& element, unsigned depth)
{
    for (const SchemaItem* const attribute : AttributesOf(element))
        PrintLine(text, *attribute, "@", depth);
    for (const SchemaItem& child : element.elements) {
        PrintLine(text, child, "", depth);
        PrintTree(text, child, depth + 1);
    }
}

// What an item can be set to as a text; empty for what texts do not tell.
std::string ValuesOf(const ItemInfo& item)
{
    const std::string orNone = item.CanRemoveTarget() ? " or None" : "";
    if (item.isFlag)
        return "yes or no";
    switch (item.kind) {
    case ItemKind::Number:
        return "a number" + InBrackets(QuantityOf(item));
    case ItemKind::OptionalNumber:
        return "a number" + InBrackets(QuantityOf(item)) + " or None";
    case ItemKind::Numbers:
        return std::to_string(item.numberCount) + " numbers: " + WordsOf(item);
    case ItemKind::Transformation:
        return std::to_string(item.numberCount) + " numbers: translation, rotation by columns";
    case ItemKind::Integer:
        return "a whole number";
    case ItemKind::Text:
        return "a text";
    case ItemKind::Word:
    case ItemKind::Code:
        return "one of: " + WordsOf(item);
    case ItemKind::Reference:
        return IsAnyEntity(item.target) ? "an entity" + orNone
                                        : "an entity of class " + std::string(item.target) + orNone;
    case ItemKind::References:
        return IsAnyEntity(item.target) ? "entities" + orNone
                                        : "entities of class " + std::string(item.target) + orNone;
    default:
        return {};
    }
}

void PrintSettable(std::string& text, const std::string& className)
{
    text += "Items that can be set, with their values as 'karmp set' takes them:\n";
    for (const ItemInfo& item : ItemsOf(className))
        if (const std::string values = ValuesOf(item); item.readOnly.empty() && !values.empty())
            text += "  " + kar::ToUtf8(item.path) + ": " + values + '\n';
}

bool IsSameName(std::string_view left, std::string_view right)
{
    const auto lower = [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [&lower](char first, char second) { return lower(first) == lower(second); });
}

} // namespace

std::string ClassReference(std::string_view name)
{
    for (const EntityClass& entityClass : EntityClasses()) {
        if (!IsSameName(entityClass.name, name) &&
            !IsSameName(kar::ToUtf8(entityClass.item->name), name))
            continue;
        std::string text = kar::ToUtf8(entityClass.item->name) + ": " +
                           std::string(entityClass.item->says) + " Class " + entityClass.name +
                           ".\n";
        PrintTree(text, *entityClass.item, 1);
        PrintSettable(text, entityClass.name);
        return text;
    }
    return {};
}

std::string FormatReference()
{
    return ReferencePrinter().Print();
}

} // namespace karmp::documents

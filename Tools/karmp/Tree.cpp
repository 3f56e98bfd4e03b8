#include "ClassLinks.h"
#include "Commands.h"
#include "KARMPEnumerationTexts.h"
#include "KARTextConversion.h"
#include "Loading.h"
#include "Output.h"

#include <iostream>
#include <unordered_map>

namespace karmp::tool {

namespace {

using Element = KARMPDeserializer;

constexpr const auto& Quantities = EnumTexts<KARMPPhysicalQuantity::Enum>::Rows;

/// Prints the entities of a document's world in their order, each with its links.
class TreePrinter
{
public:
    TreePrinter(const Element& world, const TreeOptions& options)
        : m_world(world), m_options(options)
    {
        ForEachEntity([this](std::wstring_view, const Element& entity) {
            std::wstring_view id;
            if (!KARFailed(entity.GetAttribute(L"id", id)))
                m_entities.emplace(id, &entity);
        });
    }

    /// False when the world has no list of the wanted name.
    bool Print()
    {
        std::wstring_view last;
        bool found = false;
        ForEachEntity([&](std::wstring_view family, const Element& entity) {
            if (!m_options.family.empty() && kar::ToUtf8(family) != m_options.family)
                return;
            if (family != last)
                std::cout << (found ? "\n" : "") << Bold(Printable(family)) << '\n';
            last = family;
            found = true;
            PrintEntity(entity);
        });
        return found || m_options.family.empty();
    }

private:
    // An entity is an item of one of the world's lists and has an identifier of its own.
    template <class Visit>
    void ForEachEntity(Visit visit) const
    {
        Element::ElementVector families;
        m_world.AppendOrderedElements(families);
        for (const Element* family : families) {
            if (family->Id() == L"Globals")
                continue;
            Element::ElementVector entities;
            family->AppendOrderedElements(entities);
            for (const Element* entity : entities)
                if (entity->HasAttribute(L"id"))
                    visit(family->Id(), *entity);
        }
    }

    void PrintEntity(const Element& entity)
    {
        std::wstring_view id;
        std::wstring_view name;
        std::wstring_view active = L"yes";
        entity.GetAttribute(L"id", id);
        entity.GetAttribute(L"name", name);
        entity.GetAttribute(L"isActive", active);
        std::cout << "  " << Printable(entity.Id()) << ' ' << Title(name, id);
        if (m_options.identifiers && !name.empty())
            std::cout << ' ' << Dim('[' + Printable(id) + ']');
        if (active == L"no")
            std::cout << ' ' << Dim("(inactive)");
        PrintWords(entity);
        std::cout << '\n';
        PrintLinks(entity);
    }

    // What tells attributes and generic entities apart where their names do not.
    static void PrintWords(const Element& entity)
    {
        for (const std::wstring_view name : {L"entityID", L"path", L"type", L"categoryID"}) {
            std::wstring_view word;
            entity.GetAttribute(name, word);
            if (!word.empty())
                std::cout << ", " << Printable(name) << ' ' << Printable(word);
        }
    }

    // Elements below an entity that have an identifier refer to another entity: directly, as an
    // item of a list, which is printed as one line, or within a group that the class knows.
    void PrintLinks(const Element& entity)
    {
        const auto [links, isNew] = m_links.try_emplace(entity.Id(), entity.Id());
        PrintLinks(entity, links->second, {});
    }

    // Groups are nested as deep as the items of a class.
    void PrintLinks(const Element& group, const ClassLinks& links, const std::wstring& path) const
    {
        Element::ElementVector children;
        group.AppendOrderedElements(children);
        for (const Element* child : children) {
            const std::wstring childPath = path + std::wstring(child->Id());
            if (child->HasAttribute(L"id")) {
                std::cout << "    " << Printable(childPath) << ": " << Target(*child) << '\n';
                continue;
            }
            const LinkRole role = links.RoleOf(childPath);
            if (role == LinkRole::Group)
                PrintLinks(*child, links, childPath + L'/');
            else if (role == LinkRole::Records)
                PrintCount(*child, childPath);
            else
                PrintList(*child, childPath);
        }
    }

    void PrintList(const Element& list, const std::wstring& path) const
    {
        Element::ElementVector items;
        list.AppendOrderedElements(items);
        std::string targets;
        for (const Element* item : items)
            if (item->HasAttribute(L"id"))
                targets += (targets.empty() ? "" : ", ") + Target(*item);
        if (!targets.empty())
            std::cout << "    " << Printable(path) << ": " << targets << '\n';
    }

    static void PrintCount(const Element& records, const std::wstring& path)
    {
        Element::ElementVector items;
        records.AppendOrderedElements(items);
        if (!items.empty())
            std::cout << "    " << Printable(path) << ": " << items.size() << ' '
                      << Printable(items.front()->Id()) << '\n';
    }

    std::string Target(const Element& reference) const
    {
        std::wstring_view id;
        reference.GetAttribute(L"id", id);
        const auto found = m_entities.find(id);
        if (found == m_entities.end())
            return Red("missing [" + Printable(id) + ']');
        const Element& target = *found->second;
        std::wstring_view name;
        target.GetAttribute(L"name", name);
        std::string text = Printable(target.Id()) + ' ' + Title(name, id);
        if (target.Id() == L"Constant")
            text += NumberOf(target);
        std::wstring_view orientation;
        if (!KARFailed(reference.GetAttribute(L"bodyOrientation", orientation)))
            text += " (" + Printable(orientation) + ')';
        return text;
    }

    // The number of a constant and what it measures, as the document has them.
    std::string NumberOf(const Element& constant) const
    {
        const std::wstring_view number = ValueOf(constant, L"Value");
        if (number.empty())
            return {};
        std::string text = " = " + Printable(number);
        const std::wstring_view quantity = QuantityOf(constant);
        if (!quantity.empty() && quantity != Quantities.front())
            text += ' ' + Printable(quantity);
        return text;
    }

    // Below R2018.0 the quantity is written as its number.
    static std::wstring_view QuantityOf(const Element& value)
    {
        const std::wstring_view text = ValueOf(value, L"PhysicalQuantity");
        std::size_t row = 0;
        for (const wchar_t digit : text) {
            if (digit < L'0' || digit > L'9' || row >= Quantities.size())
                return text;
            row = row * 10 + static_cast<std::size_t>(digit - L'0');
        }
        return row < Quantities.size() ? Quantities[row] : text;
    }

    static std::wstring_view ValueOf(const Element& element, std::wstring_view name)
    {
        std::wstring_view value;
        const Element::ElementSpan children = element.ElementsNamed(name);
        if (!children.empty() && children.front()->HasValue())
            children.front()->GetValue(value);
        return value;
    }

    const Element& m_world;
    const TreeOptions& m_options;
    std::unordered_map<std::wstring_view, const Element*> m_entities;
    std::unordered_map<std::wstring_view, ClassLinks> m_links; // by the classes' elements
};

} // namespace

int RunTree(const TreeOptions& options)
{
    const auto document = ReadTree(options.file);
    if (!document)
        return Unreadable;
    const KARMPDeserializer* world = nullptr;
    document->Root()->GetElement(L"World", world);
    if (world == nullptr) {
        std::cerr << "karmp: the document has no World\n";
        return Unreadable;
    }
    if (!TreePrinter(*world, options).Print()) {
        std::cerr << "karmp: the world has no list " << Printable(std::string_view(options.family))
                  << '\n';
        return Findings;
    }
    return Clean;
}

} // namespace karmp::tool

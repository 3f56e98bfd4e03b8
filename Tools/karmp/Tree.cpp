#include "Commands.h"
#include "KARTextConversion.h"
#include "Loading.h"
#include "Output.h"

#include <iostream>
#include <unordered_map>

namespace karmp::tool {

namespace {

using Element = KARMPDeserializer;

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
        std::cout << '\n';
        PrintLinks(entity);
    }

    // Elements below an entity that have an identifier refer to another entity: directly, or as an
    // item of a list. A list is printed as one line; deeper elements are no links.
    void PrintLinks(const Element& entity) const
    {
        Element::ElementVector children;
        entity.AppendOrderedElements(children);
        for (const Element* child : children) {
            if (child->HasAttribute(L"id")) {
                std::cout << "    " << Printable(child->Id()) << ": " << Target(*child) << '\n';
                continue;
            }
            Element::ElementVector items;
            child->AppendOrderedElements(items);
            const char* separator = ": ";
            for (const Element* item : items) {
                if (!item->HasAttribute(L"id"))
                    continue;
                if (separator[0] == ':')
                    std::cout << "    " << Printable(child->Id());
                std::cout << separator << Target(*item);
                separator = ", ";
            }
            if (separator[0] == ',')
                std::cout << '\n';
        }
    }

    std::string Target(const Element& reference) const
    {
        std::wstring_view id;
        reference.GetAttribute(L"id", id);
        const auto found = m_entities.find(id);
        if (found == m_entities.end())
            return Red("missing [" + Printable(id) + ']');
        std::wstring_view name;
        found->second->GetAttribute(L"name", name);
        std::string text = Printable(found->second->Id()) + ' ' + Title(name, id);
        std::wstring_view orientation;
        if (!KARFailed(reference.GetAttribute(L"bodyOrientation", orientation)))
            text += " (" + Printable(orientation) + ')';
        return text;
    }

    const Element& m_world;
    const TreeOptions& m_options;
    std::unordered_map<std::wstring_view, const Element*> m_entities;
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

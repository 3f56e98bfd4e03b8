#include "ClassLinks.h"
#include "Commands.h"
#include "KARBase64.h"
#include "KARMPEnumerationTexts.h"
#include "KARMPWorldDifference.h"
#include "KARTextConversion.h"
#include "Loading.h"
#include "Output.h"

#include <iostream>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

namespace karmp::tool {

namespace {

using Element = KARMPDeserializer;

constexpr const auto& Quantities = EnumTexts<KARMPPhysicalQuantity::Enum>::Rows;

/// Prints the entities of a document's world in their order, each with its links.
class TreePrinter
{
public:
    /// All families when `family` is empty.
    TreePrinter(const Element& world, const TreeOptions& options, std::wstring family)
        : m_world(world), m_options(options), m_family(std::move(family))
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
            if (!m_family.empty() && family != m_family)
                return;
            if (m_options.json) {
                std::cout << (found ? ",\n" : "\n");
                PrintJson(family, entity);
            } else {
                if (family != last)
                    std::cout << (found ? "\n" : "") << Bold(Printable(family)) << '\n';
                PrintEntity(entity);
            }
            last = family;
            found = true;
        });
        return found || m_family.empty();
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
        const auto [id, name, isActive] = HeadOf(entity);
        std::cout << "  " << Printable(entity.Id()) << ' ' << Title(name, id);
        if (m_options.identifiers && !name.empty())
            std::cout << ' ' << Dim('[' + Printable(id) + ']');
        if (!isActive)
            std::cout << ' ' << Dim("(inactive)");
        ForEachWord(entity, [](std::wstring_view word, std::wstring_view text) {
            std::cout << ", " << Printable(word) << ' ' << Printable(text);
        });
        std::cout << '\n';
        for (const Link& link : LinksOf(entity)) {
            const char* separator = ": ";
            std::cout << "    " << Printable(link.path);
            for (const std::string& target : link.targets)
                std::cout << std::exchange(separator, ", ") << target;
            std::cout << '\n';
        }
    }

    void PrintJson(std::wstring_view family, const Element& entity)
    {
        const auto [id, name, isActive] = HeadOf(entity);
        std::cout << "    {\"family\": " << JsonOf(family) << ", \"class\": " << JsonOf(entity.Id())
                  << ", \"id\": " << JsonOf(id) << ", \"name\": " << JsonOf(name)
                  << ", \"active\": " << (isActive ? "true" : "false");
        ForEachWord(entity, [](std::wstring_view word, std::wstring_view text) {
            std::cout << ", " << JsonOf(word) << ": " << JsonOf(text);
        });
        std::cout << ", \"links\": [";
        const char* separator = "\n      ";
        for (const Link& link : LinksOf(entity)) {
            std::cout << std::exchange(separator, ",\n      ") << "{\"item\": " << JsonOf(link.path)
                      << ", \"targets\": [";
            const char* comma = "";
            for (const std::string& target : link.targets)
                std::cout << std::exchange(comma, ", ") << JsonText(target);
            std::cout << "]}";
        }
        std::cout << "]}";
    }

    static std::string JsonOf(std::wstring_view text) { return JsonText(kar::ToUtf8(text)); }

    struct Head
    {
        std::wstring_view id;
        std::wstring_view name;
        bool isActive;
    };
    static Head HeadOf(const Element& entity)
    {
        std::wstring_view id;
        std::wstring_view name;
        std::wstring_view active = L"yes";
        entity.GetAttribute(L"id", id);
        entity.GetAttribute(L"name", name);
        entity.GetAttribute(L"isActive", active);
        return {id, name, active != L"no"};
    }

    // Calls `visit` with the attributes that tell attributes and generic entities apart where their
    // names do not, and with what shapes look like.
    template <class Visit>
    static void ForEachWord(const Element& entity, Visit visit)
    {
        for (const std::wstring_view name : {L"entityID", L"path", L"type", L"categoryID"}) {
            std::wstring_view word;
            entity.GetAttribute(name, word);
            if (!word.empty())
                visit(name, word);
        }
        // Of a shape, what its stream holds.
        std::wstring_view stream;
        std::vector<unsigned char> bytes;
        const bool isShape = entity.Id() == L"Rep3D" || entity.Id() == L"ShapeBody";
        if (isShape && !KARFailed(entity.GetAttribute(L"stream", stream)) &&
            kar::Base64Decode(stream, bytes))
            visit(L"stream", kar::ToWide(documents::StreamText(bytes)));
    }

    /// The targets of an item of an entity, or the length of a list, as text.
    struct Link
    {
        std::wstring path;
        std::vector<std::string> targets;
    };

    // Elements below an entity that have an identifier refer to another entity: directly, as an
    // item of a list, or within a group that the class knows.
    std::vector<Link> LinksOf(const Element& entity)
    {
        const auto [links, isNew] = m_links.try_emplace(entity.Id(), entity.Id());
        std::vector<Link> found;
        AddLinks(entity, links->second, {}, found);
        return found;
    }

    // Groups are nested as deep as the items of a class.
    void AddLinks(const Element& group, const ClassLinks& links, const std::wstring& path,
                  std::vector<Link>& found) const
    {
        Element::ElementVector children;
        group.AppendOrderedElements(children);
        for (const Element* child : children) {
            const std::wstring childPath = path + std::wstring(child->Id());
            if (child->HasAttribute(L"id")) {
                found.push_back({childPath, {Target(*child)}});
                continue;
            }
            const LinkRole role = links.RoleOf(childPath);
            if (role == LinkRole::Group)
                AddLinks(*child, links, childPath + L'/', found);
            else if (role == LinkRole::Records)
                AddCount(*child, childPath, found);
            else
                AddList(*child, childPath, found);
        }
    }

    void AddList(const Element& list, const std::wstring& path, std::vector<Link>& found) const
    {
        Element::ElementVector items;
        list.AppendOrderedElements(items);
        Link link{path, {}};
        for (const Element* item : items)
            if (item->HasAttribute(L"id"))
                link.targets.push_back(Target(*item));
        if (!link.targets.empty())
            found.push_back(std::move(link));
    }

    static void AddCount(const Element& records, const std::wstring& path, std::vector<Link>& found)
    {
        Element::ElementVector items;
        records.AppendOrderedElements(items);
        if (!items.empty())
            found.push_back(
                {path, {std::to_string(items.size()) + ' ' + Printable(items.front()->Id())}});
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
    std::wstring m_family;
    std::unordered_map<std::wstring_view, const Element*> m_entities;
    std::unordered_map<std::wstring_view, ClassLinks> m_links; // by the classes' elements
};

} // namespace

int RunTree(const TreeOptions& options)
{
    const auto family =
        options.family.empty() ? std::optional(std::wstring()) : FamilyNamed(options.family);
    if (!family)
        return WrongArguments;
    const auto document = ReadTree(options.file);
    if (!document)
        return Unreadable;
    const KARMPDeserializer* world = nullptr;
    document->Root()->GetElement(L"World", world);
    if (world == nullptr) {
        std::cerr << "karmp: the document has no World\n";
        return Unreadable;
    }
    if (options.json)
        std::cout << "{\n  \"file\": " << JsonText(options.file) << ",\n  \"entities\": [";
    const bool found = TreePrinter(*world, options, *family).Print();
    if (options.json)
        std::cout << "\n  ]\n}\n";
    if (!found)
        std::cerr << "karmp: the world has no list " << Printable(*family) << '\n';
    return found && document->Messages().items.empty() ? Clean : Findings;
}

} // namespace karmp::tool

#include "KARMPEntityElement.h"

#include "KARBase64.h"
#include "KARMPClassItems.h"
#include "KARMPEntityContents.h"
#include "KARTextConversion.h"

#include <array>
#include <charconv>
#include <iterator>
#include <map>
#include <set>

namespace karmp::documents {

namespace {

using Type = KARMPSerializationVariable::Type;

// Of what a class writes by code alone a summary is shown.
constexpr std::size_t LongestSummary = 120;

constexpr std::wstring_view LengthName = L"length";

std::wstring TextOf(const Value& data)
{
    if (const auto* const bytes = std::get_if<std::vector<unsigned char>>(&data))
        return kar::ToWide(StreamText(*bytes));
    if (const auto* const text = std::get_if<std::wstring>(&data))
        return *text;
    if (const auto* const flag = std::get_if<bool>(&data))
        return *flag ? L"true" : L"false";
    if (const auto* const integer = std::get_if<int>(&data))
        return std::to_wstring(*integer);
    const auto* const number = std::get_if<double>(&data);
    if (number == nullptr)
        return {};
    std::array<char, 32> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), *number).ptr;
    return std::wstring(buffer.data(), end);
}

/// The children of an element by their names, the second one of a name with "[2]" behind it.
using NamedChildren = std::vector<std::pair<std::wstring, const EntityElement*>>;

NamedChildren ChildrenOf(const EntityElement& element)
{
    NamedChildren children;
    std::map<std::wstring_view, int> counts;
    for (int i = 0; i < element.ChildCount(); ++i) {
        const EntityElement& child = element.Child(i);
        const int count = ++counts[child.Name()];
        std::wstring name(child.Name());
        if (count > 1)
            name += L'[' + std::to_wstring(count) + L']';
        children.emplace_back(std::move(name), &child);
    }
    return children;
}

} // namespace

EntityElement::EntityElement()
{
    SetExactDoubles(true);
}

const EntityElement* EntityElement::Write(const KARMPEntity& entity, EntityElement& root)
{
    entity.Serialize(&root);
    return root.ChildCount() > 0 ? &root.Child(0) : nullptr;
}

Value EntityElement::Content() const
{
    switch (GetType()) {
    case Type::Bool:
        return GetValueb();
    case Type::Double:
        return GetValued();
    case Type::Int:
        return GetValuei();
    case Type::String: {
        // The text of a stream stands for its bytes.
        std::vector<unsigned char> bytes;
        if (IsStream() && kar::Base64Decode(std::wstring_view(GetValues()), bytes))
            return bytes;
        return std::wstring(GetValues());
    }
    default:
        return {};
    }
}

Value EntityElement::AttributeValue(int index) const
{
    switch (GetAttributeType(index)) {
    case Type::Bool:
        return GetAttributeValueb(index);
    case Type::Double:
        return GetAttributeValued(index);
    case Type::Int:
        return GetAttributeValuei(index);
    case Type::String:
        return std::wstring(GetAttributeValues(index));
    default:
        return {};
    }
}

bool EntityElement::IsStream() const
{
    return Name().ends_with(L"Stream") &&
           !std::holds_alternative<std::monostate>(AttributeNamed(LengthName));
}

Value EntityElement::AttributeNamed(std::wstring_view name) const
{
    for (int i = 0; i < AttributeCount(); ++i)
        if (AttributeName(i) == name)
            return AttributeValue(i);
    return {};
}

std::wstring EntityElement::Summary() const
{
    std::wstring summary;
    const auto add = [&summary](const Value& data) {
        const std::wstring text = TextOf(data);
        if (!summary.empty() && !text.empty())
            summary += L", ";
        summary += text;
    };
    std::vector<const EntityElement*> pending{this};
    while (!pending.empty() && summary.size() < LongestSummary) {
        const EntityElement& element = *pending.back();
        pending.pop_back();
        for (int i = 0; i < element.AttributeCount(); ++i)
            add(element.AttributeValue(i));
        add(element.Content());
        for (int i = element.ChildCount(); i > 0; --i)
            pending.push_back(&element.Child(i - 1));
    }
    if (summary.size() > LongestSummary)
        summary = summary.substr(0, LongestSummary) + L"...";
    return summary;
}

KARStatus EntityElement::Render(std::wstring&) const
{
    return KARNotImplemented;
}

KARStatus EntityElement::Save(const char*) const
{
    return KARNotImplemented;
}

KARMPSerializer* EntityElement::CreateChildElement()
{
    return new EntityElement;
}

void ElementComparison::Compare(const KARMPEntity& before, const KARMPEntity& after)
{
    EntityElement beforeRoot;
    EntityElement afterRoot;
    m_pairs.push_back({EntityElement::Write(before, beforeRoot),
                       EntityElement::Write(after, afterRoot), std::wstring()});
    while (!m_pairs.empty()) {
        const Pair pair = std::move(m_pairs.back());
        m_pairs.pop_back();
        if (pair.before == nullptr && pair.after == nullptr)
            continue;
        if (pair.before == nullptr || pair.after == nullptr) {
            Tell(pair.path, pair.before != nullptr ? pair.before->Summary() : Value(),
                 pair.after != nullptr ? pair.after->Summary() : Value());
            continue;
        }
        CompareAttributes(pair);
        CompareChildren(pair);
        if (!pair.path.empty())
            Tell(pair.path, pair.before->Content(), pair.after->Content());
    }
}

void ElementComparison::Tell(std::wstring path, Value before, Value after)
{
    if (!AreEqual(before, after, ItemKind::Number, m_options))
        m_note(std::move(path), std::move(before), std::move(after));
}

// An identifier below the entity's own element is that of another entity, whose name is told by
// that one.
void ElementComparison::CompareAttributes(const Pair& pair)
{
    std::set<std::wstring> names;
    for (const EntityElement* const element : {pair.before, pair.after})
        for (int i = 0; i < element->AttributeCount(); ++i)
            names.emplace(element->AttributeName(i));
    const bool isReference = !pair.path.empty() && names.count(L"id") != 0;
    for (const std::wstring& name : names) {
        const std::wstring path = pair.path.empty() ? name : pair.path + L'/' + name;
        // The length of a stream changes with the stream.
        const bool isLength =
            name == LengthName && pair.before->IsStream() && pair.after->IsStream();
        if (m_items.IsGiven(path) || (isReference && name == L"name") || isLength)
            continue;
        Value before = pair.before->AttributeNamed(name);
        Value after = pair.after->AttributeNamed(name);
        const auto* const first = std::get_if<std::wstring>(&before);
        const auto* const second = std::get_if<std::wstring>(&after);
        const bool areIdentifiers =
            isReference && name == L"id" && first != nullptr && second != nullptr;
        if (!areIdentifiers)
            Tell(path, std::move(before), std::move(after));
        else if (!m_areSame(*first, *second))
            m_note(std::wstring(path), std::move(before), std::move(after));
    }
}

// The last pair is looked at first.
void ElementComparison::CompareChildren(const Pair& pair)
{
    const NamedChildren before = ChildrenOf(*pair.before);
    const NamedChildren after = ChildrenOf(*pair.after);
    std::map<std::wstring_view, const EntityElement*> others(after.begin(), after.end());
    std::vector<Pair> pairs;
    const auto add = [&](const std::wstring& name, const EntityElement* first,
                         const EntityElement* second) {
        std::wstring path = pair.path.empty() ? name : pair.path + L'/' + name;
        if (!m_items.IsGiven(path))
            pairs.push_back({first, second, std::move(path)});
    };
    for (const auto& [name, child] : before) {
        const auto found = others.find(name);
        add(name, child, found != others.end() ? found->second : nullptr);
        if (found != others.end())
            others.erase(found);
    }
    for (const auto& [name, child] : after)
        if (others.count(name) != 0)
            add(name, nullptr, child);
    m_pairs.insert(m_pairs.end(), std::make_move_iterator(pairs.rbegin()),
                   std::make_move_iterator(pairs.rend()));
}

} // namespace karmp::documents

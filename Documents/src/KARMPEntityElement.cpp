#include "KARMPEntityElement.h"

#include "KARBase64.h"
#include "KARMPClassItems.h"
#include "KARMPEntityContents.h"
#include "KARTextConversion.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <map>
#include <set>
#include <utility>
#include <vector>

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

/// The children of two corresponding elements that have one name, in their order.
struct Namesakes
{
    std::wstring_view name;
    std::array<std::vector<const EntityElement*>, 2> children;
};

// In the order of the first child of each name.
std::vector<Namesakes> NamesakesOf(const EntityElement& before, const EntityElement& after)
{
    std::vector<Namesakes> groups;
    std::map<std::wstring_view, std::size_t> numbers;
    const auto add = [&](const EntityElement& element, std::size_t side) {
        for (int i = 0; i < element.ChildCount(); ++i) {
            const EntityElement& child = element.Child(i);
            const auto [found, isNew] = numbers.try_emplace(child.Name(), groups.size());
            if (isNew)
                groups.push_back({child.Name(), {}});
            groups[found->second].children[side].push_back(&child);
        }
    };
    add(before, 0);
    add(after, 1);
    return groups;
}

// The second child of a name has "[2]" behind it.
std::wstring NumberedName(std::wstring_view name, std::size_t index)
{
    std::wstring numbered(name);
    if (index > 0)
        numbered += L'[' + std::to_wstring(index + 1) + L']';
    return numbered;
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
    CompareFrom({EntityElement::Write(before, beforeRoot), EntityElement::Write(after, afterRoot),
                 std::wstring()});
}

void ElementComparison::CompareFrom(Pair first)
{
    m_pairs.push_back(std::move(first));
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

bool ElementComparison::HoldSame(const Pair& pair) const
{
    bool areSame = true;
    const auto note = [&areSame](std::wstring&&, Value&&, Value&&) { areSame = false; };
    ElementComparison(m_items, m_options, note, m_areSame).CompareFrom(pair);
    return areSame;
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
    std::vector<Pair> pairs;
    for (const auto& namesakes : NamesakesOf(*pair.before, *pair.after)) {
        const std::wstring_view name = namesakes.name;
        const auto& before = namesakes.children[0];
        const auto& after = namesakes.children[1];
        const auto pairOf = [&](std::size_t first, std::size_t second) {
            const std::size_t index = first < before.size() ? first : second;
            std::wstring path = NumberedName(name, index);
            if (!pair.path.empty())
                path.insert(0, pair.path + L'/');
            return Pair{first < before.size() ? before[first] : nullptr,
                        second < after.size() ? after[second] : nullptr, std::move(path)};
        };
        const auto add = [&](std::size_t first, std::size_t second) {
            Pair added = pairOf(first, second);
            if (!m_items.IsGiven(added.path))
                pairs.push_back(std::move(added));
        };
        // Where an entry was added or removed the entries before and behind it are the same.
        const std::size_t both = std::min(before.size(), after.size());
        std::size_t head = 0;
        std::size_t tail = 0;
        if (before.size() != after.size()) {
            while (head < both && HoldSame(pairOf(head, head)))
                ++head;
            while (head + tail < both &&
                   HoldSame(pairOf(before.size() - 1 - tail, after.size() - 1 - tail)))
                ++tail;
        }
        for (std::size_t i = head; i + tail < std::max(before.size(), after.size()); ++i)
            add(i + tail < before.size() ? i : before.size(),
                i + tail < after.size() ? i : after.size());
    }
    m_pairs.insert(m_pairs.end(), std::make_move_iterator(pairs.rbegin()),
                   std::make_move_iterator(pairs.rend()));
}

} // namespace karmp::documents

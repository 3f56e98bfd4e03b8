#include "KARMPDeserializer.h"

#include "KARMPFailedCheck.h"
#include "KARMPNodeTeardown.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <unordered_map>
#include <utility>

using karmp::NodeText;
using karmp::ReadValue;
using karmp::SameName;

namespace {

// A list of up to this many names is scanned; a longer one gets an index.
constexpr std::size_t LongestScan = 16;

// What stands in the memory of a tree or in memory of its own.
struct Placed
{
    bool inTree = false;
};

template <class T>
T* Place(karmp::NodeMemory* memory)
{
    T* const placed = memory != nullptr ? ::new (memory->Allocate(sizeof(T))) T() : new T();
    placed->inTree = memory != nullptr;
    return placed;
}

struct EndPlaced
{
    template <class T>
    void operator()(T* placed) const noexcept
    {
        if (placed->inTree)
            placed->~T();
        else
            delete placed;
    }
};

template <class T>
std::wstring_view NameOf(const T& element)
{
    return element.name.View();
}

// True when the elements' names share their storage and no two are the same. Few are compared each
// with each in fewer steps than an index takes.
template <class T>
bool AreRecord(std::span<const T> elements)
{
    if (elements.size() > LongestScan)
        return false;
    const auto* const first = elements.data();
    const auto* const end = first + elements.size();
    for (const auto* element = first; element != end; ++element) {
        const NodeText& name = element->name;
        bool isNew = name.SharesStorage();
        for (const auto* former = first; former != element; ++former)
            isNew = isNew && !former->name.IsSameAs(name);
        if (!isNew)
            return false;
    }
    return true;
}

// Where each name stands in a list; the names are views of the list's own texts. The index owns a
// table: in the memory of a tree it ends with it.
struct NameIndex : Placed
{
    struct End
    {
        void operator()(NameIndex* index) const noexcept
        {
            if (!index->inTree)
                delete index;
        }
    };

    std::unordered_map<std::wstring_view, std::uint32_t> places;
};

using OwnedIndex = std::unique_ptr<NameIndex, NameIndex::End>;

// The element of a name, null when there is none.
template <class T>
const T* FindNamed(const karmp::NodeArray<T>& list, const NameIndex* index, std::wstring_view name)
{
    if (index != nullptr) {
        const auto found = index->places.find(name);
        return found != index->places.end() ? &list[found->second] : nullptr;
    }
    for (const T& element : list)
        if (SameName(NameOf(element), name))
            return &element;
    return nullptr;
}

// The same where elements are mostly asked for in their order: `likely` is the place after the one
// found last.
template <class T>
const T* FindNext(const karmp::NodeArray<T>& list, const NameIndex* index, std::uint32_t& likely,
                  std::wstring_view name)
{
    if (likely < list.size() && SameName(NameOf(list[likely]), name))
        return &list[likely++];
    const T* const found = FindNamed(list, index, name);
    if (found != nullptr)
        likely = static_cast<std::uint32_t>(found - list.begin() + 1);
    return found;
}

// Enters the name of the element that is about to be appended to `list`, once the list is long.
template <class T>
void IndexNext(OwnedIndex& index, const karmp::NodeArray<T>& list, std::wstring_view name,
               karmp::NodeMemory* memory)
{
    if (list.size() < LongestScan)
        return;
    if (!index) {
        OwnedIndex made(memory != nullptr ? memory->Make<NameIndex>() : new NameIndex());
        made->inTree = memory != nullptr;
        for (const T& element : list) {
            made->places.emplace(NameOf(element),
                                 static_cast<std::uint32_t>(&element - list.begin()));
        }
        index = std::move(made);
    }
    index->places.emplace(name, static_cast<std::uint32_t>(list.size()));
}

// The elements of a list in the order of their names.
template <class T>
std::vector<const T*> ByName(const karmp::NodeArray<T>& list)
{
    std::vector<const T*> sorted;
    sorted.reserve(list.size());
    for (const T& element : list)
        sorted.push_back(&element);
    std::sort(sorted.begin(), sorted.end(),
              [](const T* left, const T* right) { return NameOf(*left) < NameOf(*right); });
    return sorted;
}

std::wstring_view ViewOf(const wchar_t* text)
{
    return text != nullptr ? std::wstring_view(text) : std::wstring_view();
}

} // namespace

/// A child and the name that it stands under.
struct KARMPDeserializer::Child
{
    operator KARMPDeserializer*() const { return node; }

    NodeText name;
    KARMPDeserializer* node;
};

/// The children of one name.
struct KARMPDeserializer::Group
{
    /// Several children, and the walk through them.
    struct Several : Placed
    {
        karmp::NodeArray<KARMPDeserializer*> members;
        /// One past the member that the walk stands on; 0 before the walk begins.
        std::size_t walked = 0;
        /// The number of additions to the node when the walk began.
        std::size_t additions = 0;
    };

    KARMPDeserializer* const* begin() const
    {
        return several ? std::as_const(several->members).begin() : &only;
    }
    KARMPDeserializer* const* end() const
    {
        return several ? std::as_const(several->members).end() : &only + 1;
    }
    friend std::wstring_view NameOf(const Group& group) { return group.name; }

    void Append(KARMPDeserializer* child, karmp::NodeMemory* memory);
    KARMPDeserializer* Next(std::size_t additions) const;

    /// A view of the first child's entry.
    std::wstring_view name;
    KARMPDeserializer* only;
    std::unique_ptr<Several, EndPlaced> several;
};

void KARMPDeserializer::Group::Append(KARMPDeserializer* child, karmp::NodeMemory* memory)
{
    if (!several) {
        std::unique_ptr<Several, EndPlaced> made(Place<Several>(memory));
        made->members.MakeRoom(memory);
        made->members.Append(only);
        several = std::move(made);
    }
    several->members.MakeRoom(memory);
    several->members.Append(child);
}

// A walk that began before the last addition to the node counts as not begun. One child needs no
// walk: it is first and last.
KARMPDeserializer* KARMPDeserializer::Group::Next(std::size_t additions) const
{
    if (!several)
        return only;
    if (several->additions != additions) {
        several->additions = additions;
        several->walked = 0;
    }
    if (several->walked == several->members.size()) {
        several->walked = 0;
        return several->members[0];
    }
    return several->members[several->walked++];
}

/// The children by name, for a node that has many or several of one name.
struct KARMPDeserializer::Groups : Placed
{
    const Group* Find(std::wstring_view name) const
    {
        return FindNext(list, index.get(), likely, name);
    }
    void Append(std::wstring_view name, KARMPDeserializer* child, karmp::NodeMemory* memory);

    mutable std::uint32_t likely = 0;
    karmp::NodeArray<Group> list;
    OwnedIndex index;
    /// Counts the calls of AddElement: each ends all walks.
    std::size_t additions = 1;
};

void KARMPDeserializer::Groups::Append(std::wstring_view name, KARMPDeserializer* child,
                                       karmp::NodeMemory* memory)
{
    if (const Group* const found = Find(name)) {
        // Mostly the next child has the same name, or a new one.
        likely = static_cast<std::uint32_t>(found - list.begin());
        list[likely].Append(child, memory);
        return;
    }
    list.MakeRoom(memory);
    IndexNext(index, list, name, memory);
    list.Append({name, child, nullptr});
}

/// What a leaf does without. Most other nodes are records: a few children, each of a name of its
/// own, which are found in their list; they have no groups.
struct KARMPDeserializer::Content : Placed
{
    const Attribute* FindAttribute(std::wstring_view name) const
    {
        return FindNamed(attributes, attributeIndex.get(), name);
    }
    void Append(Attribute&& attribute, karmp::NodeMemory* memory);
    const Child* Find(std::wstring_view name) const
    {
        return FindNext(children, nullptr, likely, name);
    }
    void Append(NodeText name, KARMPDeserializer* child, karmp::NodeMemory* memory);
    bool NeedsGroupsWith(const NodeText& name) const;
    void MakeGroups(karmp::NodeMemory* memory);

    mutable std::uint32_t likely = 0;
    karmp::NodeArray<Attribute> attributes;
    OwnedIndex attributeIndex;
    karmp::NodeArray<Child> children;
    std::unique_ptr<Groups, EndPlaced> groups;
};

// The room for the attribute was made before.
void KARMPDeserializer::Content::Append(Attribute&& attribute, karmp::NodeMemory* memory)
{
    IndexNext(attributeIndex, attributes, attribute.name.View(), memory);
    attributes.Append(std::move(attribute));
}

bool KARMPDeserializer::Content::NeedsGroupsWith(const NodeText& name) const
{
    return children.size() >= LongestScan ||
           std::any_of(
               children.begin(), children.end(),
               [&name](const Child& child) { return child.name == name; });
}

void KARMPDeserializer::Content::MakeGroups(karmp::NodeMemory* memory)
{
    std::unique_ptr<Groups, EndPlaced> made(Place<Groups>(memory));
    for (const Child& child : children)
        made->Append(NameOf(child), child, memory);
    groups = std::move(made);
}

// The room for the child was made before. When memory ends, nothing was added and the child is
// still the caller's.
void KARMPDeserializer::Content::Append(NodeText name, KARMPDeserializer* child,
                                        karmp::NodeMemory* memory)
{
    if (!groups && NeedsGroupsWith(name))
        MakeGroups(memory);
    if (groups)
        groups->Append(name.View(), child, memory);
    children.Append({std::move(name), child});
}

void KARMPDeserializer::Release::operator()(Content* content) const noexcept
{
    EndPlaced()(content);
}

KARMPDeserializer::KARMPDeserializer() : m_version(NodeText::CurrentVersion()) {}

KARMPDeserializer::~KARMPDeserializer()
{
    Clean();
}

void KARMPDeserializer::Clean() noexcept
{
    if (m_content) {
        // Names and index are of no use any more, so that groups and children may move.
        const auto byName = [](const auto& left, const auto& right) {
            return NameOf(left) < NameOf(right);
        };
        karmp::NodeArray<Child>& children = m_content->children;
        if (Groups* const groups = m_content->groups.get()) {
            std::sort(groups->list.begin(), groups->list.end(), byName);
            Child* place = children.begin();
            for (const Group& group : groups->list)
                for (KARMPDeserializer* const member : group)
                    (place++)->node = member;
        } else {
            std::sort(children.begin(), children.end(), byName);
        }
        karmp::NodeTeardown<KARMPDeserializer>::DeleteChildren(this, children);
        m_content.reset();
    }
    m_value = ReadValue();
}

KARMPDeserializer::Content& KARMPDeserializer::NeedContent(karmp::NodeMemory* memory)
{
    if (!m_content)
        m_content.reset(Place<Content>(memory));
    return *m_content;
}

// The part counts as made while it is, so that making it may use the node; when memory ends it is
// still to be made.
void KARMPDeserializer::Make(Later part) const
{
    const std::uint8_t before = std::exchange(m_later, static_cast<std::uint8_t>(m_later & ~part));
    // No node is made as a constant; readers are handed constant ones.
    auto& node = const_cast<KARMPDeserializer&>(*this);
    try {
        if (part == AttributesLater)
            node.MakeAttributes();
        else
            node.MakeContent();
    } catch (...) {
        m_later = before;
        throw;
    }
}

bool KARMPDeserializer::FindUnmade(std::wstring_view /*name*/, karmp::AsciiText& /*value*/) const
{
    return false;
}

void KARMPDeserializer::Forget() noexcept
{
    // What it refers to may be gone, so that nothing is destroyed.
    static_cast<void>(m_content.release());
    m_value.emplace<std::monostate>();
}

KARStatus KARMPDeserializer::SetVersion(std::wstring_view version)
{
    m_version = m_memory != nullptr ? NodeText::Name(version, *m_memory) : NodeText::Name(version);
    return KARSuccess;
}

KARStatus KARMPDeserializer::GetVersion(std::wstring& version) const
{
    version = Version();
    return KARSuccess;
}

KARStatus KARMPDeserializer::GetId(std::wstring& id) const
{
    id = Id();
    return KARSuccess;
}

void KARMPDeserializer::SetId(std::wstring_view id)
{
    m_name = NodeText::Name(id);
}

void KARMPDeserializer::SetValue(std::wstring_view value)
{
    m_value = NodeText::Value(value);
}

void KARMPDeserializer::SetValue(const wchar_t* value)
{
    m_value = NodeText::Copy(ViewOf(value));
}

void KARMPDeserializer::SetValue(std::wstring&& value)
{
    m_value = NodeText::Take(std::move(value));
}

void KARMPDeserializer::SetValue(int value)
{
    m_value = value;
}

void KARMPDeserializer::SetValue(double value)
{
    m_value = value;
}

void KARMPDeserializer::SetBoolValue(bool value)
{
    m_value = value;
}

void KARMPDeserializer::AddAttributeValue(std::wstring_view name, std::wstring_view value)
{
    PutAttribute(name, NodeText::Value(value));
}

void KARMPDeserializer::AddAttributeValue(std::wstring_view name, const wchar_t* value)
{
    PutAttribute(name, NodeText::Copy(ViewOf(value)));
}

void KARMPDeserializer::AddAttributeValue(std::wstring_view name, std::wstring&& value)
{
    PutAttribute(name, NodeText::Take(std::move(value)));
}

void KARMPDeserializer::AddAttributeValue(std::wstring_view name, int value)
{
    PutAttribute(name, value);
}

void KARMPDeserializer::AddAttributeValue(std::wstring_view name, double value)
{
    PutAttribute(name, value);
}

void KARMPDeserializer::AddBoolAttributeValue(std::wstring_view name, bool value)
{
    PutAttribute(name, value);
}

void KARMPDeserializer::PutAttribute(std::wstring_view name, ReadValue&& value)
{
    Content& content = NeedContent(m_memory);
    if (const Attribute* const found = content.FindAttribute(name)) {
        found->value = std::move(value);
        return;
    }
    content.attributes.MakeRoom(m_memory);
    content.Append({NodeText::Name(name), std::move(value)}, m_memory);
}

bool KARMPDeserializer::PlaceAttributes(std::span<const Attribute> attributes,
                                        karmp::NodeMemory& memory)
{
    Content& content = NeedContent(&memory);
    content.attributes.MakeRoomFor(attributes.size(), &memory);
    if (content.attributes.size() == 0 && AreRecord(attributes)) {
        content.attributes.Fill(attributes.size(),
                                [attributes](std::size_t number) { return attributes[number]; });
        return true;
    }
    bool allNew = true;
    for (const Attribute& attribute : attributes) {
        if (const Attribute* const found = content.FindAttribute(attribute.name.View())) {
            found->value = attribute.value;
            allNew = false;
        } else {
            content.Append(Attribute(attribute), &memory);
        }
    }
    return allNew;
}

ReadValue* KARMPDeserializer::FindAttribute(std::wstring_view name) const
{
    Need(AttributesLater);
    const Attribute* const found = m_content ? m_content->FindAttribute(name) : nullptr;
    return found != nullptr ? &found->value : nullptr;
}

std::size_t KARMPDeserializer::GetAttributeCount() const
{
    Need(AttributesLater);
    return m_content ? m_content->attributes.size() : 0;
}

std::wstring_view KARMPDeserializer::GetAttributeId(std::size_t index) const
{
    Need(AttributesLater);
    return m_content->attributes[index].name.View();
}

KARStatus KARMPDeserializer::AddElement(std::wstring_view name, KARMPDeserializer* child)
{
    if (m_content && m_content->groups)
        ++m_content->groups->additions;
    if (!KARMPVerify(child != nullptr))
        return KARFailure;
    Content& content = NeedContent(m_memory);
    content.children.MakeRoom(m_memory);
    content.Append(NodeText::Name(name), child, m_memory);
    return KARSuccess;
}

void KARMPDeserializer::PlaceElements(std::span<KARMPDeserializer* const> children,
                                      karmp::NodeMemory& memory)
{
    if (children.empty())
        return;
    Content& content = NeedContent(&memory);
    if (content.groups)
        ++content.groups->additions;
    content.children.MakeRoomFor(children.size(), &memory);
    if (content.groups) {
        for (KARMPDeserializer* const child : children)
            content.Append(child->m_name, child, &memory);
        return;
    }
    const bool isFirst = content.children.size() == 0;
    content.children.Fill(children.size(), [children](std::size_t number) {
        return Child{children[number]->m_name, children[number]};
    });
    if (AreRecord(std::span<const Child>(content.children.begin(), content.children.size())))
        return;
    try {
        content.MakeGroups(&memory);
    } catch (...) {
        if (isFirst)
            content.children.Clear();
        throw;
    }
}

bool KARMPDeserializer::HasAttribute(std::wstring_view name) const
{
    karmp::AsciiText unmade;
    if ((m_later & AttributesLater) != 0 && FindUnmade(name, unmade))
        return unmade.characters != nullptr;
    return FindAttribute(name) != nullptr;
}

bool KARMPDeserializer::HasElement(std::wstring_view name) const
{
    Need(ContentLater);
    if (!m_content)
        return false;
    // What is asked about is mostly read next, so that its place stays the likely one.
    if (const Groups* const groups = m_content->groups.get()) {
        const Group* const group = groups->Find(name);
        if (group != nullptr)
            --groups->likely;
        return group != nullptr;
    }
    const Child* const child = m_content->Find(name);
    if (child != nullptr)
        --m_content->likely;
    return child != nullptr;
}

KARMPDeserializer* KARMPDeserializer::NextElement(std::wstring_view name) const
{
    Need(ContentLater);
    if (!m_content)
        return nullptr;
    if (const Groups* const groups = m_content->groups.get()) {
        const Group* const group = groups->Find(name);
        return group != nullptr ? group->Next(groups->additions) : nullptr;
    }
    const Child* const child = m_content->Find(name);
    return child != nullptr ? child->node : nullptr;
}

KARStatus KARMPDeserializer::GetElement(std::wstring_view name,
                                        const KARMPDeserializer*& child) const
{
    KARMPDeserializer* const next = NextElement(name);
    if (next != nullptr && !(next->m_version == m_version))
        next->m_version = m_version;
    child = next;
    return KARSuccess;
}

KARStatus KARMPDeserializer::GetElements(ElementList& elements) const
{
    Need(ContentLater);
    if (!m_content)
        return KARSuccess;
    elements.reserve(elements.size() + m_content->children.size());
    if (const Groups* const groups = m_content->groups.get())
        for (const Group* group : ByName(groups->list))
            elements.insert(elements.end(), group->begin(), group->end());
    else
        for (const Child* child : ByName(m_content->children))
            elements.push_back(*child);
    return KARSuccess;
}

KARStatus KARMPDeserializer::GetElements(std::wstring_view name, ElementIterator& begin,
                                         ElementIterator& end) const
{
    Need(ContentLater);
    if (!m_content)
        return KARSuccess;
    if (const Groups* const groups = m_content->groups.get()) {
        if (const Group* const group = groups->Find(name)) {
            begin = group->begin();
            end = group->end();
        }
    } else if (const Child* const child = m_content->Find(name)) {
        begin = &child->node;
        end = begin + 1;
    }
    return KARSuccess;
}

KARStatus KARMPDeserializer::GetOrderedElementList(ElementList& elements) const
{
    Need(ContentLater);
    if (m_content)
        elements.insert(elements.end(), m_content->children.begin(), m_content->children.end());
    return KARSuccess;
}

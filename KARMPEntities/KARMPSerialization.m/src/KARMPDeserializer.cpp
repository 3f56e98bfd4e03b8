#include "KARMPDeserializer.h"

#include "KARMPFailedCheck.h"
#include "KARMPNodeTeardown.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

using karmp::NodeAttribute;
using karmp::NodeText;
using karmp::NodeValue;

namespace {

// A list of up to this many names is scanned; a longer one gets an index.
constexpr std::size_t LongestScan = 16;

// Where each name stands in a list; the names are views of the list's own texts.
using NameIndex = std::unordered_map<std::wstring_view, std::size_t>;

std::wstring_view NameOf(const NodeAttribute& attribute)
{
    return attribute.name.View();
}

// Enters in the index of `list` the name of the element that is about to be appended to it.
template <class List>
void IndexNext(NameIndex& index, const List& list, std::wstring_view name)
{
    if (index.empty()) {
        NameIndex filled;
        for (std::size_t place = 0; place < list.size(); ++place) {
            filled.emplace(NameOf(list[place]), place);
        }
        index = std::move(filled);
    }
    index.emplace(name, list.size());
}

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

template <class T>
void End(T* placed) noexcept
{
    if (placed->inTree) {
        placed->~T();
    } else {
        delete placed;
    }
}

std::wstring_view ViewOf(const wchar_t* text)
{
    return text != nullptr ? std::wstring_view(text) : std::wstring_view();
}

} // namespace

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

    struct EndSeveral
    {
        void operator()(Several* ended) const noexcept { End(ended); }
    };

    KARMPDeserializer* const* begin() const
    {
        return several ? std::as_const(several->members).begin() : &only;
    }
    KARMPDeserializer* const* end() const
    {
        return several ? std::as_const(several->members).end() : &only + 1;
    }
    friend std::wstring_view NameOf(const Group& group) { return group.name.View(); }

    void Append(KARMPDeserializer* child, karmp::NodeMemory* memory);
    KARMPDeserializer* Next(std::size_t additions) const;

    NodeText name;
    KARMPDeserializer* only;
    std::unique_ptr<Several, EndSeveral> several;
};

void KARMPDeserializer::Group::Append(KARMPDeserializer* child, karmp::NodeMemory* memory)
{
    if (!several) {
        std::unique_ptr<Several, EndSeveral> made(Place<Several>(memory));
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
    if (!several) {
        return only;
    }
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

struct KARMPDeserializer::Branch : Placed
{
    const Group* Find(std::wstring_view name) const;
    void Append(NodeText name, KARMPDeserializer* child, karmp::NodeMemory* memory);

    std::size_t IndexedPlace(std::wstring_view name) const;
    std::size_t PlaceOf(const NodeText& name) const;

    /// Where names stand, once there are many.
    struct Indexes : Placed
    {
        NameIndex groups;
        NameIndex attributes;
    };
    Indexes& NeedIndexes(karmp::NodeMemory* memory);
    struct EndIndexes
    {
        void operator()(Indexes* ended) const noexcept;
    };

    karmp::NodeArray<KARMPDeserializer*> ordered;
    karmp::NodeArray<Group> groups;
    std::unique_ptr<Indexes, EndIndexes> indexes;
    /// Counts the calls of AddElement: each ends all walks.
    std::size_t additions = 1;
    /// The group after the one found last: entities mostly read in the order of writing.
    mutable std::size_t likely = 0;
};

const KARMPDeserializer::Group* KARMPDeserializer::Branch::Find(std::wstring_view name) const
{
    if (likely < groups.size() && NameOf(groups[likely]) == name) {
        return &groups[likely++];
    }
    std::size_t place = groups.size();
    if (groups.size() > LongestScan) {
        place = IndexedPlace(name);
    } else {
        const auto found = std::find_if(groups.begin(), groups.end(), [name](const Group& group) {
            return NameOf(group) == name;
        });
        place = static_cast<std::size_t>(found - groups.begin());
    }
    if (place == groups.size()) {
        return nullptr;
    }
    likely = place + 1;
    return &groups[place];
}

std::size_t KARMPDeserializer::Branch::IndexedPlace(std::wstring_view name) const
{
    const auto found = indexes->groups.find(name);
    return found != indexes->groups.end() ? found->second : groups.size();
}

// The place of the name's group, one past the groups when there is none.
std::size_t KARMPDeserializer::Branch::PlaceOf(const NodeText& name) const
{
    if (likely < groups.size() && groups[likely].name == name) {
        return likely;
    }
    if (groups.size() > LongestScan) {
        return IndexedPlace(name.View());
    }
    const auto found = std::find_if(groups.begin(), groups.end(),
                                    [&name](const Group& group) { return group.name == name; });
    return static_cast<std::size_t>(found - groups.begin());
}

// The indexes own tables: in the memory of a tree they end with it.
KARMPDeserializer::Branch::Indexes& KARMPDeserializer::Branch::NeedIndexes(
    karmp::NodeMemory* memory)
{
    if (!indexes) {
        indexes.reset(memory != nullptr ? memory->Make<Indexes>() : new Indexes());
        indexes->inTree = memory != nullptr;
    }
    return *indexes;
}

void KARMPDeserializer::Branch::EndIndexes::operator()(Indexes* ended) const noexcept
{
    if (!ended->inTree) {
        delete ended;
    }
}

void KARMPDeserializer::Release::operator()(Branch* branch) const noexcept
{
    End(branch);
}

// When memory ends, nothing was added and the child is still the caller's.
void KARMPDeserializer::Branch::Append(NodeText name, KARMPDeserializer* child,
                                       karmp::NodeMemory* memory)
{
    ordered.MakeRoom(memory);
    if (const std::size_t place = PlaceOf(name); place < groups.size()) {
        groups[place].Append(child, memory);
        // Mostly the next child has the same name, or a new one.
        likely = place;
    } else {
        groups.MakeRoom(memory);
        Group group{std::move(name), child, nullptr};
        if (groups.size() >= LongestScan) {
            IndexNext(NeedIndexes(memory).groups, groups, NameOf(group));
        }
        groups.Append(std::move(group));
    }
    ordered.Append(child);
}

KARMPDeserializer::KARMPDeserializer() : m_version(NodeText::CurrentVersion()) {}

KARMPDeserializer::~KARMPDeserializer()
{
    Clean();
}

void KARMPDeserializer::Clean() noexcept
{
    if (m_branch) {
        // The index is of no use any more, so that the groups may move.
        std::sort(
            m_branch->groups.begin(), m_branch->groups.end(),
            [](const Group& left, const Group& right) { return NameOf(left) < NameOf(right); });
        auto place = m_branch->ordered.begin();
        for (const Group& group : m_branch->groups) {
            place = std::copy(group.begin(), group.end(), place);
        }
        karmp::NodeTeardown<KARMPDeserializer>::DeleteChildren(this, m_branch->ordered);
        m_branch.reset();
    }
    m_attributes.Clear();
    m_value = NodeValue();
}

KARMPDeserializer::Branch& KARMPDeserializer::NeedBranch(karmp::NodeMemory* memory)
{
    if (!m_branch) {
        m_branch.reset(Place<Branch>(memory));
    }
    return *m_branch;
}

KARStatus KARMPDeserializer::SetVersion(std::wstring_view version)
{
    m_version = NodeText::Name(version);
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

void KARMPDeserializer::PutAttribute(std::wstring_view name, NodeValue&& value)
{
    if (const NodeAttribute* const found = FindAttribute(name)) {
        m_attributes[static_cast<std::size_t>(found - m_attributes.begin())].value =
            std::move(value);
        return;
    }
    AppendAttribute({NodeText::Name(name), std::move(value)}, nullptr);
}

bool KARMPDeserializer::PlaceAttribute(const NodeText& name, NodeText value,
                                       karmp::NodeMemory& memory)
{
    if (const NodeAttribute* const found = FindAttribute(name.View())) {
        m_attributes[static_cast<std::size_t>(found - m_attributes.begin())].value =
            std::move(value);
        return false;
    }
    AppendAttribute({name, std::move(value)}, &memory);
    return true;
}

void KARMPDeserializer::AppendAttribute(NodeAttribute&& attribute, karmp::NodeMemory* memory)
{
    m_attributes.MakeRoom(memory);
    if (m_attributes.size() >= LongestScan) {
        IndexNext(NeedBranch(memory).NeedIndexes(memory).attributes, m_attributes,
                  NameOf(attribute));
    }
    m_attributes.Append(std::move(attribute));
}

const NodeAttribute* KARMPDeserializer::FindAttribute(std::wstring_view name) const
{
    if (m_attributes.size() > LongestScan) {
        const NameIndex& index = m_branch->indexes->attributes;
        const auto found = index.find(name);
        return found != index.end() ? &m_attributes[found->second] : nullptr;
    }
    for (const NodeAttribute& attribute : m_attributes) {
        if (NameOf(attribute) == name) {
            return &attribute;
        }
    }
    return nullptr;
}

KARStatus KARMPDeserializer::AddElement(std::wstring_view name, KARMPDeserializer* child)
{
    if (m_branch) {
        ++m_branch->additions;
    }
    if (!KARMPVerify(child != nullptr)) {
        return KARFailure;
    }
    NeedBranch(nullptr).Append(NodeText::Name(name), child, nullptr);
    return KARSuccess;
}

void KARMPDeserializer::PlaceElement(const NodeText& name, KARMPDeserializer* child,
                                     karmp::NodeMemory& memory)
{
    Branch& branch = NeedBranch(&memory);
    ++branch.additions;
    branch.Append(name, child, &memory);
}

bool KARMPDeserializer::HasAttribute(std::wstring_view name) const
{
    return FindAttribute(name) != nullptr;
}

bool KARMPDeserializer::HasElement(std::wstring_view name) const
{
    if (!m_branch) {
        return false;
    }
    const Group* const group = m_branch->Find(name);
    if (group == nullptr) {
        return false;
    }
    // What is asked about is mostly read next.
    m_branch->likely = static_cast<std::size_t>(group - m_branch->groups.begin());
    return true;
}

KARStatus KARMPDeserializer::GetElement(std::wstring_view name,
                                        const KARMPDeserializer*& child) const
{
    child = nullptr;
    const Group* const group = m_branch ? m_branch->Find(name) : nullptr;
    if (group != nullptr) {
        KARMPDeserializer* const next = group->Next(m_branch->additions);
        next->m_version = m_version;
        child = next;
    }
    return KARSuccess;
}

KARStatus KARMPDeserializer::GetElements(ElementList& elements) const
{
    if (!m_branch) {
        return KARSuccess;
    }
    std::vector<const Group*> sorted;
    sorted.reserve(m_branch->groups.size());
    for (const Group& group : m_branch->groups) {
        sorted.push_back(&group);
    }
    std::sort(sorted.begin(), sorted.end(),
              [](const Group* left, const Group* right) { return NameOf(*left) < NameOf(*right); });
    elements.reserve(elements.size() + m_branch->ordered.size());
    for (const Group* group : sorted) {
        elements.insert(elements.end(), group->begin(), group->end());
    }
    return KARSuccess;
}

KARStatus KARMPDeserializer::GetElements(std::wstring_view name, ElementIterator& begin,
                                         ElementIterator& end) const
{
    if (const Group* const group = m_branch ? m_branch->Find(name) : nullptr) {
        begin = group->begin();
        end = group->end();
    }
    return KARSuccess;
}

KARStatus KARMPDeserializer::GetOrderedElementList(ElementList& elements) const
{
    if (m_branch) {
        elements.insert(elements.end(), m_branch->ordered.begin(), m_branch->ordered.end());
    }
    return KARSuccess;
}

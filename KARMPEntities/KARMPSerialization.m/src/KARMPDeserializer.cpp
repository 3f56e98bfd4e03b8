#include "KARMPDeserializer.h"

#include "KARMPFailedCheck.h"
#include "KARMPNodeContent.h"
#include "KARMPNodeTeardown.h"

#include <algorithm>
#include <utility>

using karmp::ElementGroup;
using karmp::ElementGroups;
using karmp::NodeChild;
using karmp::NodeContent;
using karmp::NodeText;
using karmp::ReadAttribute;
using karmp::ReadValue;

namespace {

std::wstring_view ViewOf(const wchar_t* text)
{
    return text != nullptr ? std::wstring_view(text) : std::wstring_view();
}

} // namespace

KARMPDeserializer::KARMPDeserializer() : m_version(NodeText::CurrentVersion()) {}

KARMPDeserializer::~KARMPDeserializer()
{
    Clean();
}

void KARMPDeserializer::Release::operator()(NodeContent* content) const noexcept
{
    karmp::ReleaseArenaObject()(content);
}

// Names and index are not used again, so that groups and children may be moved from.
void KARMPDeserializer::Clean() noexcept
{
    if (m_content) {
        const auto byName = [](const auto& left, const auto& right) {
            return NameOf(left) < NameOf(right);
        };
        karmp::NodeArray<NodeChild>& children = m_content->children;
        if (ElementGroups* const groups = m_content->groups.get()) {
            std::sort(groups->list.begin(), groups->list.end(), byName);
            NodeChild* next = children.begin();
            for (const ElementGroup& group : groups->list)
                for (KARMPDeserializer* const member : group)
                    (next++)->node = member;
        } else {
            std::sort(children.begin(), children.end(), byName);
        }
        karmp::NodeTeardown<KARMPDeserializer>::DeleteChildren(this, children);
        m_content.reset();
    }
    m_value = ReadValue();
}

NodeContent& KARMPDeserializer::NeedContent(karmp::NodeMemory* memory)
{
    if (!m_content)
        m_content.reset(karmp::NewIn<NodeContent>(memory));
    return *m_content;
}

// The part counts as filled while it is being filled, so that the source may use the node; after a
// failed allocation it is missing again.
void KARMPDeserializer::Fill(std::uint8_t part, std::wstring_view name) const
{
    if ((m_missing & Heard) != 0 && !name.empty())
        m_source->HearName(*this, static_cast<karmp::NodePart>(part), name);
    if ((m_missing & part) == 0)
        return;
    const std::uint8_t before =
        std::exchange(m_missing, static_cast<std::uint8_t>(m_missing & ~part));
    // No node is created const; readers get const pointers.
    auto& node = const_cast<KARMPDeserializer&>(*this);
    try {
        if (part == karmp::AttributesPart)
            m_source->FillAttributes(node);
        else
            m_source->FillContent(node);
    } catch (...) {
        m_missing = before;
        throw;
    }
}

KARStatus KARMPDeserializer::SetVersion(std::wstring_view version)
{
    m_version = m_source != nullptr ? NodeText::Name(version, *m_source) : NodeText::Name(version);
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
    NodeContent& content = NeedContent(nullptr);
    if (const ReadAttribute* const found = content.FindAttribute(name)) {
        found->value = std::move(value);
        return;
    }
    content.attributes.GrowIfFull();
    content.Append({NodeText::Name(name), std::move(value)}, nullptr);
}

ReadValue* KARMPDeserializer::FindAttribute(std::wstring_view name) const
{
    Need(karmp::AttributesPart, name);
    const ReadAttribute* const found = m_content ? m_content->FindAttribute(name) : nullptr;
    return found != nullptr ? &found->value : nullptr;
}

std::size_t KARMPDeserializer::GetAttributeCount() const
{
    Need(karmp::AttributesPart);
    return m_content ? m_content->attributes.size() : 0;
}

std::wstring_view KARMPDeserializer::GetAttributeId(std::size_t index) const
{
    Need(karmp::AttributesPart);
    return m_content->attributes[index].name.View();
}

KARStatus KARMPDeserializer::AddElement(std::wstring_view name, KARMPDeserializer* child)
{
    if (m_content && m_content->groups)
        ++m_content->groups->additions;
    if (!KARMPVerify(child != nullptr))
        return KARFailure;
    NodeContent& content = NeedContent(nullptr);
    content.children.GrowIfFull();
    content.Append(NodeText::Name(name), child, nullptr);
    return KARSuccess;
}

bool KARMPDeserializer::HasAttribute(std::wstring_view name) const
{
    karmp::AsciiText unfilled;
    if ((m_missing & karmp::AttributesPart) != 0 && m_source->FindAttribute(*this, name, unfilled))
        return unfilled.characters != nullptr;
    return FindAttribute(name) != nullptr;
}

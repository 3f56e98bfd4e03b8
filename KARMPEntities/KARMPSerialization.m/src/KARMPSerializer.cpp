#include "KARMPSerializer.h"

#include "KARMPFailedCheck.h"
#include "KARMPNodeTeardown.h"
#include "KARMPNumberGrid.h"
#include "KARMPVersions.h"
#include "KARProcessServices.h"

#include <bit>
#include <utility>

using karmp::NodeText;
using karmp::NodeValue;

namespace {

std::wstring_view ViewOf(const wchar_t* text)
{
    return text != nullptr ? std::wstring_view(text) : std::wstring_view();
}

} // namespace

KARMPSerializer::KARMPSerializer() : m_version(NodeText::CurrentVersion()) {}

KARMPSerializer::KARMPSerializer(std::unique_ptr<karmp::NodeMemory> memory)
    : m_ownsMemory(memory != nullptr), m_memory(memory.release())
{
    SetVersion(karmp::CurrentVersion);
}

KARMPSerializer::~KARMPSerializer()
{
    Clean();
    if (m_ownsMemory)
        delete m_memory;
}

double KARMPSerializer::StoredDouble(double value) const
{
    if (m_exactDoubles)
        return value;
    const double snapped = karmp::SnapToGrid(value);
    // Most numbers of a model are on the grid, and the environment makes no difference to them.
    // The bits decide: -0.0 equals 0.0, but is not the same.
    if (std::bit_cast<std::uint64_t>(snapped) == std::bit_cast<std::uint64_t>(value))
        return value;
    return KARGetEnv("SERIALIZATION_PRECISION") != nullptr ? value : snapped;
}

void KARMPSerializer::Clean() noexcept
{
    // Children in the arena of a tree are freed with it.
    if (m_memory == nullptr && m_elements.size() != 0)
        karmp::NodeTeardown<KARMPSerializer>::DeleteChildren(this, m_elements);
    m_elements.Clear();
    m_attributes.Clear();
    m_value = NodeValue();
}

NodeText KARMPSerializer::NameText(std::wstring_view text) const
{
    return m_memory != nullptr ? NodeText::Name(text, *m_memory) : NodeText::Name(text);
}

NodeText KARMPSerializer::ValueText(std::wstring_view text) const
{
    return m_memory != nullptr ? NodeText::Copy(text, *m_memory) : NodeText::Copy(text);
}

NodeText KARMPSerializer::ValueText(std::wstring&& text) const
{
    return m_memory != nullptr ? NodeText::Copy(text, *m_memory) : NodeText::Take(std::move(text));
}

KARStatus KARMPSerializer::AddValue(std::wstring_view name, NodeValue&& value)
{
    m_attributes.GrowIfFull(m_memory);
    m_attributes.Append({NameText(name), std::move(value)});
    return KARSuccess;
}

KARStatus KARMPSerializer::AddAttribute(std::wstring_view name, std::wstring_view value)
{
    return AddValue(name, ValueText(value));
}

KARStatus KARMPSerializer::AddAttribute(std::wstring_view name, const wchar_t* value)
{
    return AddValue(name, ValueText(ViewOf(value)));
}

KARStatus KARMPSerializer::AddAttribute(std::wstring_view name, std::wstring&& value)
{
    return AddValue(name, ValueText(std::move(value)));
}

KARStatus KARMPSerializer::AddAttribute(std::wstring_view name, int value)
{
    return AddValue(name, value);
}

KARStatus KARMPSerializer::AddAttribute(std::wstring_view name, double value)
{
    return AddValue(name, StoredDouble(value));
}

KARStatus KARMPSerializer::AddBoolAttribute(std::wstring_view name, bool value)
{
    return AddValue(name, value);
}

KARStatus KARMPSerializer::AddElement(std::wstring_view name, KARMPSerializer*& child)
{
    if (!KARMPVerify(child == nullptr))
        return KARFailure;
    // All allocations come first: no later step fails once there is a child.
    m_elements.GrowIfFull(m_memory);
    NodeText id = NameText(name);
    NodeText version = m_version;
    KARMPSerializer* const created = CreateChildElement();
    if (!KARMPVerify(created != nullptr))
        return KARFailure;
    created->m_name = std::move(id);
    created->m_value = NodeValue();
    created->m_version = std::move(version);
    created->m_exactDoubles = m_exactDoubles;
    m_elements.Append(created);
    child = created;
    return KARSuccess;
}

KARStatus KARMPSerializer::AddElementWithValue(std::wstring_view name, KARMPSerializer*& child,
                                               NodeValue&& value)
{
    const KARStatus status = AddElement(name, child);
    if (!KARMPVerify(!KARFailed(status) && child != nullptr))
        return KARFailure;
    child->m_value = std::move(value);
    return KARSuccess;
}

KARStatus KARMPSerializer::AddElement(std::wstring_view name, KARMPSerializer*& child,
                                      std::wstring_view value)
{
    return AddElementWithValue(name, child, ValueText(value));
}

KARStatus KARMPSerializer::AddElement(std::wstring_view name, KARMPSerializer*& child,
                                      const wchar_t* value)
{
    return AddElementWithValue(name, child, ValueText(ViewOf(value)));
}

KARStatus KARMPSerializer::AddElement(std::wstring_view name, KARMPSerializer*& child,
                                      std::wstring&& value)
{
    return AddElementWithValue(name, child, ValueText(std::move(value)));
}

KARStatus KARMPSerializer::AddElement(std::wstring_view name, KARMPSerializer*& child, int value)
{
    return AddElementWithValue(name, child, value);
}

KARStatus KARMPSerializer::AddElement(std::wstring_view name, KARMPSerializer*& child, double value)
{
    return AddElementWithValue(name, child, StoredDouble(value));
}

KARStatus KARMPSerializer::AddBoolElement(std::wstring_view name, KARMPSerializer*& child,
                                          bool value)
{
    return AddElementWithValue(name, child, value);
}

KARStatus KARMPSerializer::GetVersion(std::wstring& version) const
{
    version = Version();
    return KARSuccess;
}

KARStatus KARMPSerializer::SetVersion(std::wstring_view version)
{
    m_version = NameText(version);
    return KARSuccess;
}

bool KARMPSerializer::SerializeName()
{
    static const bool named = KARGetEnv("NO_MP_NAME_FOR_SERIALIZATION") == nullptr;
    return named;
}

KARMPSerializationVariable KARMPSerializer::GetVariable() const
{
    return karmp::PlainVariable(GetId(), m_value);
}

KARMPSerializationVariable KARMPSerializer::GetAttribute(int index) const
{
    return karmp::PlainVariable(GetAttributeId(index), Attribute(index).value);
}

// The reader's lookups of child elements.
#include "KARMPDeserializer.h"
#include "KARMPNodeContent.h"

using karmp::ContentPart;
using karmp::ElementGroup;
using karmp::ElementGroups;
using karmp::NodeChild;
using karmp::NodeContent;

namespace {

KARMPDeserializer* NextElement(const NodeContent& content, std::wstring_view name)
{
    if (const ElementGroups* const groups = content.groups.get()) {
        const ElementGroup* const group = groups->Find(name);
        return group != nullptr ? group->Next(groups->additions) : nullptr;
    }
    const NodeChild* const child = content.Find(name);
    return child != nullptr ? child->node : nullptr;
}

// Appends the children by name to a vector or a list.
template <class Elements>
void AppendByName(const NodeContent& content, Elements& elements)
{
    if (const ElementGroups* const groups = content.groups.get())
        for (const ElementGroup* group : karmp::ByName(groups->list))
            elements.insert(elements.end(), group->begin(), group->end());
    else
        for (const NodeChild* child : karmp::ByName(content.children))
            elements.push_back(*child);
}

} // namespace

// Nothing is filled for what is asked for in vain.
bool KARMPDeserializer::Lacks(std::wstring_view name) const
{
    return (m_missing & ContentPart) != 0 && m_source->LacksElement(*this, name);
}

bool KARMPDeserializer::HasElement(std::wstring_view name) const
{
    if (Lacks(name))
        return false;
    Need(ContentPart, name);
    if (!m_content)
        return false;
    if (const ElementGroups* const groups = m_content->groups.get())
        return groups->Find(name) != nullptr;
    return m_content->Find(name) != nullptr;
}

KARStatus KARMPDeserializer::GetElement(std::wstring_view name,
                                        const KARMPDeserializer*& child) const
{
    if (Lacks(name)) {
        child = nullptr;
        return KARSuccess;
    }
    Need(ContentPart, name);
    KARMPDeserializer* const next = m_content ? NextElement(*m_content, name) : nullptr;
    if (next != nullptr && !(next->m_version == m_version))
        next->m_version = m_version;
    child = next;
    return KARSuccess;
}

KARStatus KARMPDeserializer::GetElements(ElementList& elements) const
{
    Need(ContentPart);
    if (m_content)
        AppendByName(*m_content, elements);
    return KARSuccess;
}

KARStatus KARMPDeserializer::GetElements(std::wstring_view name, ElementIterator& begin,
                                         ElementIterator& end) const
{
    Need(ContentPart, name);
    if (!m_content || m_content->Named(name).empty())
        return KARSuccess;
    karmp::NodeMemory* const memory =
        m_source != nullptr ? &m_source->ContentMemory(*this) : nullptr;
    if (!m_content->groups)
        m_content->MakeGroups(memory);
    ElementGroups& groups = *m_content->groups;
    const ElementList& list = groups.ListOf(*groups.Find(name), memory);
    begin = list.begin();
    end = list.end();
    return KARSuccess;
}

KARStatus KARMPDeserializer::GetOrderedElementList(ElementList& elements) const
{
    Need(ContentPart);
    if (m_content)
        elements.insert(elements.end(), m_content->children.begin(), m_content->children.end());
    return KARSuccess;
}

void KARMPDeserializer::AppendElements(ElementVector& elements) const
{
    Need(ContentPart);
    if (!m_content)
        return;
    elements.reserve(elements.size() + m_content->children.size());
    AppendByName(*m_content, elements);
}

void KARMPDeserializer::AppendOrderedElements(ElementVector& elements) const
{
    Need(ContentPart);
    if (m_content)
        elements.insert(elements.end(), m_content->children.begin(), m_content->children.end());
}

KARMPDeserializer::ElementSpan KARMPDeserializer::ElementsNamed(std::wstring_view name) const
{
    Need(ContentPart, name);
    return m_content ? m_content->Named(name) : ElementSpan();
}

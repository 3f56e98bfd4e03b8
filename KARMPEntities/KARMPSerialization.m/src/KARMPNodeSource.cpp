#include "KARMPNodeSource.h"

#include "KARMPNodeContent.h"

namespace karmp {

NodeSource::~NodeSource() = default;

void NodeSource::FillAttributes(KARMPDeserializer& /*node*/) {}

void NodeSource::FillContent(KARMPDeserializer& /*node*/) {}

bool NodeSource::FindAttribute(const KARMPDeserializer& /*node*/, std::wstring_view /*name*/,
                               AsciiText& /*value*/) const
{
    return false;
}

bool NodeSource::LacksElement(const KARMPDeserializer& /*node*/, std::wstring_view /*name*/) const
{
    return false;
}

RecordedElement NodeSource::Recorded(const KARMPDeserializer& /*node*/) const
{
    return {};
}

void NodeSource::HearName(const KARMPDeserializer& /*node*/, NodePart /*part*/,
                          std::wstring_view /*name*/)
{}

NodeMemory& NodeSource::ContentMemory(const KARMPDeserializer& /*node*/)
{
    return *this;
}

void NodeSource::BeginReading(const KARMPDeserializer& /*node*/) noexcept {}

void NodeSource::EndReading(const KARMPDeserializer& /*node*/) noexcept {}

bool NodeBuilder::AddAttributes(KARMPDeserializer& node, std::span<const ReadAttribute> attributes,
                                NodeMemory& memory)
{
    NodeContent& content = node.NeedContent(&memory);
    content.attributes.Reserve(attributes.size(), &memory);
    if (content.attributes.size() == 0 && AreRecord(attributes)) {
        content.attributes.Fill(attributes.size(),
                                [attributes](std::size_t number) { return attributes[number]; });
        return true;
    }
    bool allNew = true;
    for (const ReadAttribute& attribute : attributes) {
        if (const ReadAttribute* const found = content.FindAttribute(attribute.name.View())) {
            found->value = attribute.value;
            allNew = false;
        } else {
            content.Append(ReadAttribute(attribute), &memory);
        }
    }
    return allNew;
}

void NodeBuilder::AddElements(KARMPDeserializer& node, std::span<KARMPDeserializer* const> children,
                              NodeMemory& memory)
{
    if (children.empty())
        return;
    NodeContent& content = node.NeedContent(&memory);
    if (content.groups)
        ++content.groups->additions;
    content.children.Reserve(children.size(), &memory);
    if (content.groups) {
        for (KARMPDeserializer* const child : children)
            content.Append(child->m_name, child, &memory);
        return;
    }
    const bool isFirst = content.children.size() == 0;
    content.children.Fill(children.size(), [children](std::size_t number) {
        return NodeChild{children[number]->m_name, children[number]};
    });
    if (AreRecord(std::span<const NodeChild>(content.children.begin(), content.children.size())))
        return;
    try {
        content.MakeGroups(&memory);
    } catch (...) {
        if (isFirst)
            content.children.Clear();
        throw;
    }
}

void NodeBuilder::Forget(KARMPDeserializer& node) noexcept
{
    // The content may have been freed with its arena, so it is not destroyed.
    static_cast<void>(node.m_content.release());
    node.m_value.emplace<std::monostate>();
}

} // namespace karmp

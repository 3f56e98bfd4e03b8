#include "KARMPDocumentNodes.h"

#include "KARMPDocumentSource.h"
#include "KARMPTextEscapes.h"

#include <algorithm>
#include <string>
#include <vector>

namespace karmp::documents {

namespace {

KARMPDocumentReader& NodeOf(KARMPDeserializer& node)
{
    return static_cast<KARMPDocumentReader&>(node);
}

const KARMPDocumentReader& NodeOf(const KARMPDeserializer& node)
{
    return static_cast<const KARMPDocumentReader&>(node);
}

std::string_view Trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(Blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(Blanks) - first + 1);
}

// False when there is no text to append.
bool AppendText(std::wstring& text, std::string_view raw, bool trimmed)
{
    if (trimmed)
        raw = Trimmed(raw);
    if (raw.empty())
        return false;
    AppendDecoded(text, raw, TextContext::Element);
    return true;
}

} // namespace

std::uint32_t DocumentNodes::Number(const KARMPDocumentReader& node)
{
    return static_cast<std::uint32_t>(&node.m_record - node.m_source.Records().elements.data());
}

bool DocumentNodes::IsRead(const KARMPDocumentReader& node)
{
    return node.m_source.IsRead(node);
}

// The attributes end where those of the next record begin.
inline std::uint8_t DocumentNodes::PartsToFill(const ElementRecord& record) noexcept
{
    unsigned parts = (&record)[1].attributes != record.attributes ? AttributesPart : NoPart;
    parts |= record.Kind() != TextKind::Plain ? ContentPart : NoPart;
    return static_cast<std::uint8_t>(parts);
}

// The text of an element without children is nearly always plain.
inline void DocumentNodes::Begin(KARMPDocumentReader& node) noexcept
{
    if (node.m_record.Kind() == TextKind::Plain)
        NodeBuilder::SetValue(node, AsciiText{node.m_source.At(node.m_record.text)});
    NodeBuilder::SetMissing(node, PartsToFill(node.m_record));
}

} // namespace karmp::documents

inline KARMPDocumentReader::KARMPDocumentReader(const karmp::ElementRecord& record, unsigned depth,
                                                karmp::documents::DocumentSource& source,
                                                karmp::documents::DocumentNodes& memory)
    : KARMPDeserializer(source.Records().names[record.Name()], source.Version(), memory),
      m_depth(static_cast<std::uint8_t>(std::min(depth, karmp::documents::EntityDepth + 1))),
      m_record(record),
      m_source(source)
{
    karmp::documents::DocumentNodes::Begin(*this);
}

namespace karmp::documents {

KARMPDocumentReader* DocumentNodes::Make(const ElementRecord& record, unsigned depth,
                                         DocumentSource& source)
{
    return ::new (Allocate(sizeof(KARMPDocumentReader)))
        KARMPDocumentReader(record, depth, source, *this);
}

DocumentNodes& DocumentNodes::ContentMemory(const KARMPDeserializer& node)
{
    DocumentSource& source = NodeOf(node).m_source;
    return source.IsRead(NodeOf(node)) ? source.ReadNodes() : *this;
}

// Content that was filled before stays with the caller that asked for it.
void DocumentNodes::BeginReading(const KARMPDeserializer& read) noexcept
{
    const KARMPDocumentReader& node = NodeOf(read);
    if (node.m_source.IsRead(node) ||
        (node.m_depth == EntityDepth && NodeBuilder::Missing(node) == PartsToFill(node.m_record)))
        node.m_source.BeginReading(node);
}

void DocumentNodes::EndReading(const KARMPDeserializer& read) noexcept
{
    DocumentSource& source = NodeOf(read).m_source;
    if (source.IsRead(NodeOf(read)) && source.EndReading()) {
        auto& node = const_cast<KARMPDocumentReader&>(NodeOf(read)); // no node is created const
        NodeBuilder::Forget(node);
        Begin(node);
    }
}

// The last attribute of a name counts.
bool DocumentNodes::FindAttribute(const KARMPDeserializer& asked, std::wstring_view name,
                                  AsciiText& value) const
{
    const KARMPDocumentReader& node = NodeOf(asked);
    const DocumentSource& source = node.m_source;
    if (source.IsDropped(Number(node)))
        return false;
    const DocumentRecords& records = source.Records();
    const ElementRecord& record = node.m_record;
    for (std::uint32_t index = (&record)[1].attributes; index != record.attributes;) {
        const AttributeRecord& attribute = records.attributes[--index];
        if (SameName(records.names[attribute.Name()].View(), name)) {
            value.characters = source.At(attribute.value);
            return attribute.IsPlain();
        }
    }
    value.characters = nullptr;
    return true;
}

bool DocumentNodes::LacksElement(const KARMPDeserializer& asked, std::wstring_view name) const
{
    const KARMPDocumentReader& node = NodeOf(asked);
    const DocumentRecords& records = node.m_source.Records();
    const std::uint32_t wanted = records.names.Find(name);
    if (wanted == NoName)
        return true;
    std::uint32_t child = Number(node) + 1;
    while (child != node.m_record.end && records.elements[child].Name() != wanted)
        child = records.elements[child].end;
    return child == node.m_record.end;
}

// The records still have the references that are dropped.
RecordedElement DocumentNodes::Recorded(const KARMPDeserializer& asked) const
{
    const KARMPDocumentReader& node = NodeOf(asked);
    const DocumentSource& source = node.m_source;
    if (source.HasDropped())
        return {};
    return {&source.Records(), source.Text().data(), Number(node)};
}

void DocumentNodes::FillAttributes(KARMPDeserializer& empty)
{
    KARMPDocumentReader& node = NodeOf(empty);
    DocumentSource& source = node.m_source;
    NodeMemory& memory = ContentMemory(node);
    const DocumentRecords& records = source.Records();
    std::vector<ReadAttribute>& attributes = source.ToCollect().attributes;
    std::wstring& text = source.ToCollect().text;
    attributes.clear();
    const std::uint32_t end = (&node.m_record)[1].attributes;
    for (std::uint32_t index = node.m_record.attributes; index != end; ++index) {
        const AttributeRecord& attribute = records.attributes[index];
        const char* const value = source.At(attribute.value);
        if (attribute.IsPlain()) {
            attributes.push_back({records.names[attribute.Name()], AsciiText{value}});
        } else {
            text.clear();
            AppendDecoded(text, value, TextContext::Attribute);
            attributes.push_back({records.names[attribute.Name()], NodeText::Copy(text, memory)});
        }
    }
    NodeBuilder::AddAttributes(node, attributes, memory);
    if (source.IsDropped(Number(node))) {
        const ReadAttribute identifier[] = {
            {NodeText::Name(L"id", memory), NodeText::Copy(source.Unused(), memory)}};
        NodeBuilder::AddAttributes(node, identifier, memory);
    }
}

void DocumentNodes::FillContent(KARMPDeserializer& empty)
{
    KARMPDocumentReader& node = NodeOf(empty);
    DocumentSource& source = node.m_source;
    DocumentNodes& memory = ContentMemory(node);
    const ElementRecord* const records = source.Records().elements.data();
    std::vector<KARMPDeserializer*>& children = source.ToCollect().children;
    children.clear();
    const ElementRecord* const end = records + node.m_record.end;
    for (const ElementRecord* child = &node.m_record + 1; child != end;
         child = records + child->end)
        children.push_back(memory.Make(*child, node.m_depth + 1U, source));
    FillText(node, memory);
    NodeBuilder::AddElements(node, children, memory);
}

// Beside elements, literal blanks at the ends of a piece are indentation.
void DocumentNodes::FillText(KARMPDocumentReader& node, NodeMemory& memory)
{
    const ElementRecord& record = node.m_record;
    if (record.Kind() == TextKind::None)
        return;
    DocumentSource& source = node.m_source;
    std::wstring& text = source.ToCollect().text;
    text.clear();
    const bool hasElements = record.end != Number(node) + 1;
    bool hasText = !hasElements;
    if (record.Kind() == TextKind::Raw) {
        AppendDecoded(text, source.At(record.text), TextContext::Element);
    } else {
        const std::vector<PieceRecord>& pieces = source.Records().pieces;
        std::uint32_t next = record.text;
        do {
            const PieceRecord& piece = pieces[next];
            const std::string_view raw = source.At(piece.text);
            if (piece.isCData != 0) {
                AppendDecodedCData(text, raw);
                hasText = true;
            } else {
                hasText = AppendText(text, raw, hasElements) || hasText;
            }
            next = piece.next;
        } while (next != 0);
    }
    if (hasText)
        NodeBuilder::SetValue(node, NodeText::Copy(text, memory));
}

} // namespace karmp::documents

#include "KARMPDocumentReader.h"

#include "KARMPDocumentParser.h"
#include "KARMPDocumentSource.h"
#include "KARMPTextEscapes.h"
#include "KARMPVersions.h"

#include <algorithm>
#include <limits>
#include <utility>

using karmp::documents::AppendDecoded;
using karmp::documents::AppendDecodedCData;
using karmp::documents::AttributeRecord;
using karmp::documents::Blanks;
using karmp::documents::DocumentRecords;
using karmp::documents::DocumentSource;
using karmp::documents::ElementRecord;
using karmp::documents::EntityDepth;
using karmp::documents::PieceRecord;
using karmp::documents::SourcePlace;
using karmp::documents::TextKind;
using karmp::documents::TextPlace;

namespace {

std::string_view Trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(Blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(Blanks) - first + 1);
}

// False when there is nothing to append.
bool AppendText(std::wstring& text, std::string_view raw, bool trimmed)
{
    if (trimmed)
        raw = Trimmed(raw);
    if (raw.empty())
        return false;
    AppendDecoded(text, raw, TextPlace::Element);
    return true;
}

} // namespace

KARMPDocumentReader::~KARMPDocumentReader() = default;

std::wstring KARMPDocumentReader::Location() const
{
    const SourcePlace place = Place();
    return std::to_wstring(place.line) + L':' + std::to_wstring(place.column);
}

std::size_t KARMPDocumentReader::Line() const
{
    return Place().line;
}

std::size_t KARMPDocumentReader::Column() const
{
    return Place().column;
}

SourcePlace KARMPDocumentReader::Place() const
{
    return m_source.Lines().Find(m_record.place);
}

void KARMPDocumentReader::operator delete(void* /*memory*/) {}

std::uint32_t KARMPDocumentReader::Number() const
{
    return static_cast<std::uint32_t>(&m_record - m_source.Records().elements.data());
}

// The next record tells where the attributes end.
inline std::uint8_t KARMPDocumentReader::PartsMadeLater(const ElementRecord& record) noexcept
{
    unsigned later = (&record)[1].attributes != record.attributes ? AttributesLater : NothingLater;
    later |= record.Kind() != TextKind::Plain ? ContentLater : NothingLater;
    return static_cast<std::uint8_t>(later);
}

// The text of an element without children is nearly always the bytes themselves.
inline void KARMPDocumentReader::Begin() noexcept
{
    if (m_record.Kind() == TextKind::Plain)
        PlaceValue(karmp::AsciiText{m_source.At(m_record.text)});
    MakeLater(PartsMadeLater(m_record));
}

inline KARMPDocumentReader::KARMPDocumentReader(const ElementRecord& record, unsigned depth,
                                                DocumentSource& source, karmp::NodeMemory& memory)
    : KARMPDeserializer(source.Records().names[record.name], source.Version(), memory),
      m_depth(static_cast<std::uint8_t>(std::min(depth, EntityDepth + 1))),
      m_record(record),
      m_source(source)
{
    Begin();
}

KARMPDocumentReader* KARMPDocumentReader::Make(const ElementRecord& record, unsigned depth,
                                               DocumentSource& source, karmp::NodeMemory& memory)
{
    return ::new (memory.Allocate(sizeof(KARMPDocumentReader)))
        KARMPDocumentReader(record, depth, source, memory);
}

karmp::NodeMemory& KARMPDocumentReader::ContentMemory() const
{
    return m_source.IsRead(*this) ? m_source.ReadMemory() : *Memory();
}

// What is made already belongs to whoever asked for it.
void KARMPDocumentReader::BeginReading() const noexcept
{
    if (m_source.IsRead(*this) || (m_depth == EntityDepth && Unmade() == PartsMadeLater(m_record)))
        m_source.BeginReading(*this);
}

void KARMPDocumentReader::EndReading() const noexcept
{
    if (m_source.IsRead(*this) && m_source.EndReading()) {
        auto& node = const_cast<KARMPDocumentReader&>(*this); // no node is made as a constant
        node.Forget();
        node.Begin();
    }
}

// The last attribute of a name counts.
bool KARMPDocumentReader::FindUnmade(std::wstring_view name, karmp::AsciiText& value) const
{
    if (m_source.IsDropped(Number()))
        return false;
    const DocumentRecords& records = m_source.Records();
    for (std::uint32_t place = (&m_record)[1].attributes; place != m_record.attributes;) {
        const AttributeRecord& attribute = records.attributes[--place];
        if (karmp::SameName(records.names[attribute.name].View(), name)) {
            value.characters = m_source.At(attribute.value);
            return attribute.isPlain != 0;
        }
    }
    value.characters = nullptr;
    return true;
}

void KARMPDocumentReader::MakeAttributes()
{
    karmp::NodeMemory& memory = ContentMemory();
    const DocumentRecords& records = m_source.Records();
    std::vector<Attribute>& attributes = m_source.ToCollect().attributes;
    std::wstring& text = m_source.ToCollect().text;
    attributes.clear();
    for (std::uint32_t place = m_record.attributes; place != (&m_record)[1].attributes; ++place) {
        const AttributeRecord& attribute = records.attributes[place];
        const char* const value = m_source.At(attribute.value);
        if (attribute.isPlain != 0) {
            attributes.push_back({records.names[attribute.name], karmp::AsciiText{value}});
        } else {
            text.clear();
            AppendDecoded(text, value, TextPlace::Attribute);
            attributes.push_back(
                {records.names[attribute.name], karmp::NodeText::Copy(text, memory)});
        }
    }
    PlaceAttributes(attributes, memory);
    if (m_source.IsDropped(Number())) {
        const Attribute identifier[] = {{karmp::NodeText::Name(L"id", memory),
                                         karmp::NodeText::Copy(m_source.Unused(), memory)}};
        PlaceAttributes(identifier, memory);
    }
}

void KARMPDocumentReader::MakeContent()
{
    karmp::NodeMemory& memory = ContentMemory();
    const ElementRecord* const records = m_source.Records().elements.data();
    std::vector<KARMPDeserializer*>& children = m_source.ToCollect().children;
    children.clear();
    const ElementRecord* const behind = records + m_record.behind;
    for (const ElementRecord* child = &m_record + 1; child != behind;
         child = records + child->behind) {
        children.push_back(::new (memory.Allocate(sizeof(KARMPDocumentReader)))
                               KARMPDocumentReader(*child, m_depth + 1U, m_source, memory));
    }
    MakeText(memory);
    PlaceElements(children, memory);
}

// Where there are elements as well, literal blanks at the ends of a piece are indentation.
void KARMPDocumentReader::MakeText(karmp::NodeMemory& memory)
{
    const ElementRecord& record = m_record;
    if (record.Kind() == TextKind::None)
        return;
    std::wstring& text = m_source.ToCollect().text;
    text.clear();
    const bool hasElements = record.behind != Number() + 1;
    bool hasText = !hasElements;
    if (record.Kind() == TextKind::Raw) {
        AppendDecoded(text, m_source.At(record.text), TextPlace::Element);
    } else {
        const std::vector<PieceRecord>& pieces = m_source.Records().pieces;
        std::uint32_t next = record.text;
        do {
            const PieceRecord& piece = pieces[next];
            const std::string_view raw = m_source.At(piece.text);
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
        PlaceValue(karmp::NodeText::Copy(text, memory));
}

namespace karmp::documents {

Document::Document(std::string name, const Limits& limits)
    : m_source(std::make_unique<DocumentSource>()),
      m_name(std::move(name)),
      m_version(CurrentVersion),
      m_limits(limits)
{
    constexpr std::size_t largest = std::numeric_limits<std::uint32_t>::max();
    m_limits.bytes = std::min(m_limits.bytes, largest);
}

Document::Document(Document&& other) noexcept
    : m_source(std::move(other.m_source)),
      m_root(std::exchange(other.m_root, nullptr)),
      m_name(std::move(other.m_name)),
      m_version(std::move(other.m_version)),
      m_limits(other.m_limits),
      m_messages(std::move(other.m_messages)),
      m_wrongReferences(std::move(other.m_wrongReferences)),
      m_unusedIdentifier(std::move(other.m_unusedIdentifier))
{}

Document& Document::operator=(Document&& other) noexcept
{
    if (this != &other) {
        m_root = std::exchange(other.m_root, nullptr);
        m_source = std::move(other.m_source);
        m_name = std::move(other.m_name);
        m_version = std::move(other.m_version);
        m_limits = other.m_limits;
        m_messages = std::move(other.m_messages);
        m_wrongReferences = std::move(other.m_wrongReferences);
        m_unusedIdentifier = std::move(other.m_unusedIdentifier);
    }
    return *this;
}

// The nodes end with the source, the memory that they and all their parts stand in.
Document::~Document() = default;

Document Document::ReadFile(const std::filesystem::path& path, const Limits& limits)
{
    return DocumentParser::ReadFile(path, limits);
}

Document Document::ReadText(std::string text, std::string name, const Limits& limits)
{
    return DocumentParser::ReadText(std::move(text), std::move(name), limits);
}

} // namespace karmp::documents

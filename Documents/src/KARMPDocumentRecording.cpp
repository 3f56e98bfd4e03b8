// How the parser records elements, attributes and texts.
#include "KARMPDocumentParser.h"

#include <cstring>
#include <unordered_set>
#include <utility>

namespace karmp::documents {

namespace {

// From an "&" up to a ";", or to where a name ends.
std::size_t ReferenceLength(const char* begin)
{
    constexpr std::size_t longest = 40;
    std::size_t length = 1;
    while (length < longest && begin[length] != '\0' &&
           std::strchr("&;<> \t\r\n\"'", begin[length]) == nullptr)
        ++length;
    return begin[length] == ';' ? length + 1 : length;
}

// In a text in which one is unknown.
const char* FirstUnknownReference(const char* raw)
{
    const char* const first = std::strchr(raw, '&');
    std::wstring decoded;
    for (const char* place = first; place != nullptr; place = std::strchr(place + 1, '&'))
        if (!AppendDecoded(decoded, std::string_view(place, ReferenceLength(place)),
                           TextContext::Element))
            return place;
    return first;
}

} // namespace

class DocumentParser::Walk final : public pugi::xml_tree_walker
{
public:
    explicit Walk(DocumentParser& parser) : m_parser(parser) {}

private:
    bool for_each(pugi::xml_node& node) override
    {
        const auto above = static_cast<std::size_t>(depth());
        switch (node.type()) {
        case pugi::node_element:
            return m_parser.RecordElement(node, above);
        case pugi::node_pcdata:
            m_parser.CloseTo(above);
            m_parser.CheckReferences(node.value(), node.parent(), nullptr);
            m_parser.RecordPiece(node.value(), false);
            return true;
        case pugi::node_cdata:
            m_parser.CloseTo(above);
            m_parser.RecordPiece(node.value(), true);
            return true;
        default:
            return true;
        }
    }

    DocumentParser& m_parser;
};

// Reserved pages cost nothing until they are written to.
bool DocumentParser::RecordAll()
{
    constexpr std::size_t expectedElement = 24;
    m_records.elements.reserve(m_source.Text().size() / expectedElement + 1);
    Walk walk(*this);
    if (!m_parsed.traverse(walk))
        return false;
    CloseTo(0);
    ElementRecord& end = m_records.elements.emplace_back();
    end.attributes = static_cast<std::uint32_t>(m_records.attributes.size());
    return true;
}

void DocumentParser::CloseTo(std::size_t depth)
{
    while (m_open.size() > depth) {
        m_records.elements[m_open.back().number].end =
            static_cast<std::uint32_t>(m_records.elements.size());
        m_open.pop_back();
    }
}

// The XML parser gives the text of an element that has none an address outside of the source.
Offset DocumentParser::OffsetOf(const char* text) const
{
    return *text != '\0' ? static_cast<Offset>(text - m_source.Text().data()) : NoOffset;
}

RepeatedNames::Name DocumentParser::NameOf(const char* bytes)
{
    const std::string& text = m_source.Text();
    return m_names.Get(bytes, text.data() + text.size());
}

bool DocumentParser::StandsForItself(const char* raw) const
{
    const std::string& text = m_source.Text();
    return *raw == '\0' || documents::StandsForItself(raw, text.data() + text.size());
}

bool DocumentParser::RecordElement(const pugi::xml_node& element, std::size_t depth)
{
    const char* const bytes = element.name();
    const RepeatedNames::Name name = NameOf(bytes);
    if (depth >= m_document.m_limits.depth) {
        return Fail(Code::TooDeep,
                    "an element stands deeper than the limit of " +
                        std::to_string(m_document.m_limits.depth),
                    PositionOf(bytes), Path(element.parent()));
    }
    if (!CountNode())
        return ReportTooMany(PositionOf(bytes), element.parent());
    if (name.size > m_document.m_limits.nameLength)
        return ReportTooLong(bytes, "element", PositionOf(bytes), element.parent());
    CloseTo(depth);
    const auto number = static_cast<std::uint32_t>(m_records.elements.size());
    ElementRecord& record = m_records.elements.emplace_back();
    record.name = name.number & 0x3FFFFFFFU;
    record.nameOffset = static_cast<Offset>(bytes - m_source.Text().data());
    record.end = number + 1;
    record.attributes = static_cast<std::uint32_t>(m_records.attributes.size());
    record.text = NoOffset;
    const char* const text = element.value();
    const bool isLeaf = !element.first_child();
    if (isLeaf) {
        const bool isPlain = m_isClean || StandsForItself(text);
        record.kind = static_cast<std::uint32_t>(isPlain ? TextKind::Plain : TextKind::Raw) & 3U;
        record.text = OffsetOf(text);
    } else {
        m_open.push_back({number, 0});
    }
    if (element.first_attribute() && !RecordAttributes(element))
        return false;
    if (*text != '\0') {
        CheckReferences(text, element, nullptr);
        if (!isLeaf)
            RecordPiece(text, false);
    }
    return true;
}

// Appends a piece to the text of the innermost open element.
void DocumentParser::RecordPiece(const char* raw, bool isCData)
{
    const auto number = static_cast<std::uint32_t>(m_records.pieces.size());
    Open& open = m_open.back();
    ElementRecord& record = m_records.elements[open.number];
    if (record.Kind() == TextKind::None) {
        record.kind = static_cast<std::uint32_t>(TextKind::Pieces) & 3U;
        record.text = number;
    } else {
        m_records.pieces[open.lastPiece].next = number & 0x7FFFFFFFU;
    }
    open.lastPiece = number;
    PieceRecord& piece = m_records.pieces.emplace_back();
    piece.text = OffsetOf(raw);
    piece.next = 0;
    piece.isCData = isCData ? 1U : 0U;
}

bool DocumentParser::RecordAttributes(const pugi::xml_node& element)
{
    const std::size_t first = m_records.attributes.size();
    for (pugi::xml_attribute attribute = element.first_attribute(); attribute;
         attribute = attribute.next_attribute()) {
        const char* const bytes = attribute.name();
        const RepeatedNames::Name name = NameOf(bytes);
        if (!CountNode())
            return ReportTooMany(PositionOf(element.name()), element);
        if (name.size > m_document.m_limits.nameLength)
            return ReportTooLong(bytes, "attribute", PositionOf(element.name()), element);
        const char* const value = attribute.value();
        AttributeRecord& record = m_records.attributes.emplace_back();
        record.name = name.number & 0x7FFFFFFFU;
        record.isPlain = StandsForItself(value) ? 1U : 0U;
        record.value = static_cast<Offset>(value - m_source.Text().data());
        if (std::strchr(value, '<') != nullptr)
            return ReportOpenBracket(value, element, bytes);
        CheckReferences(value, element, bytes);
    }
    // For a few names, comparing all pairs is faster than a hash table.
    constexpr std::size_t few = 8;
    const std::size_t end = m_records.attributes.size();
    bool allNew = end - first <= few;
    for (std::size_t index = first; index != end && allNew; ++index) {
        const NodeText& name = m_records.names[m_records.attributes[index].name];
        for (std::size_t former = first; former != index && allNew; ++former)
            allNew = !(m_records.names[m_records.attributes[former].name] == name);
    }
    if (!allNew)
        ReportRepeatedAttributes(element, first);
    return true;
}

bool DocumentParser::ReportOpenBracket(const char* value, const pugi::xml_node& element,
                                       const char* attribute)
{
    return Fail(Code::Syntax,
                "the value of the attribute \"" + std::string(attribute) +
                    "\" has an unescaped \"<\": a quotation mark is missing, or \"&lt;\" is meant",
                PositionOf(std::strchr(value, '<')), Path(element) + "/@" + attribute);
}

void DocumentParser::ReportRepeatedAttributes(const pugi::xml_node& element, std::size_t first)
{
    std::unordered_set<std::wstring_view> names;
    pugi::xml_attribute attribute = element.first_attribute();
    for (std::size_t index = first; index < m_records.attributes.size(); ++index) {
        const std::wstring_view name = m_records.names[m_records.attributes[index].name].View();
        if (!names.insert(name).second) {
            Fail(Code::DuplicateAttribute,
                 "the attribute " + Quoted(name) + " stands twice; the last one is taken",
                 PositionOf(attribute.name()), Path(element));
        }
        attribute = attribute.next_attribute();
    }
}

void DocumentParser::CheckReferences(const char* raw, const pugi::xml_node& element,
                                     const char* attribute)
{
    if (!m_hasReferences || std::strchr(raw, '&') == nullptr)
        return;
    m_value.clear();
    if (AppendDecoded(m_value, raw, TextContext::Element))
        return;
    std::string path = Path(element);
    if (attribute != nullptr) {
        path += "/@";
        path += attribute;
    }
    const char* const wrong = FirstUnknownReference(raw);
    m_value.clear();
    AppendDecodedCData(m_value, std::string_view(wrong, ReferenceLength(wrong)));
    std::string text = "\"";
    AppendUtf8(text, m_value);
    Fail(Code::Reference,
         text + "\" is no reference and is kept as text; for the sign itself \"&amp;\" is "
                "written",
         PositionOf(wrong), std::move(path));
}

bool DocumentParser::ReportTooMany(SourcePosition position, const pugi::xml_node& inside)
{
    return Fail(Code::TooManyNodes,
                "there are more elements and attributes than the limit of " +
                    std::to_string(m_document.m_limits.nodes),
                position, Path(inside));
}

bool DocumentParser::ReportTooLong(std::string_view name, std::string_view kind,
                                   SourcePosition position, const pugi::xml_node& inside)
{
    std::wstring start;
    AppendDecodedCData(start, name.substr(0, 100));
    return Fail(Code::NameTooLong,
                "the " + std::string(kind) + " name " + Quoted(start) +
                    " is longer than the limit of " +
                    std::to_string(m_document.m_limits.nameLength) + " bytes",
                position, Path(inside));
}

} // namespace karmp::documents

#include "KARMPDocumentParser.h"

#include "KARMPDocumentNames.h"
#include "KARMPDocuments.h"
#include "KARMPFileAccess.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <stdexcept>
#include <unordered_set>
#include <utility>

namespace karmp::documents {

namespace {

// No references, line ends or blanks are touched by the parser: they are decoded afterwards, where
// a literal blank and a reference to one can still be told apart.
constexpr unsigned ParseFlags = pugi::parse_minimal | pugi::parse_cdata | pugi::parse_doctype |
                                pugi::parse_declaration | pugi::parse_embed_pcdata |
                                pugi::parse_ws_pcdata_single | pugi::parse_fragment;

bool IsBlank(std::string_view text)
{
    return text.find_first_not_of(Blanks) == std::string_view::npos;
}

std::size_t LeadingBlanks(std::string_view text)
{
    return std::min(text.find_first_not_of(Blanks), text.size());
}

std::string_view ParseErrorText(pugi::xml_parse_status status)
{
    switch (status) {
    case pugi::status_unrecognized_tag:
        return "a \"<\" begins no tag";
    case pugi::status_bad_pi:
        return "a processing instruction or declaration is malformed or not closed";
    case pugi::status_bad_comment:
        return "a comment is malformed or not closed";
    case pugi::status_bad_cdata:
        return "a CDATA section is malformed or not closed";
    case pugi::status_bad_pcdata:
        return "a text is malformed";
    case pugi::status_bad_start_element:
        return "a start tag is malformed or not closed";
    case pugi::status_bad_attribute:
        return "an attribute is malformed or not closed";
    case pugi::status_bad_end_element:
        return "an end tag is malformed or not closed";
    case pugi::status_end_element_mismatch:
        return "a start tag and an end tag do not match, or an element is not closed";
    default:
        return "the document is no well-formed XML";
    }
}

bool SameWithoutCase(std::string_view left, std::string_view right)
{
    const auto lower = [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                    : character;
    };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [lower](char a, char b) { return lower(a) == lower(b); });
}

} // namespace

Document DocumentParser::ReadFile(const std::filesystem::path& path, const Limits& limits)
{
    Document document(path.string(), limits);
    Messages messages(document.m_messages, document.m_name, limits.diagnostics);
    try {
        std::string text;
        if (ReadWholeFile(path, document.m_limits.bytes, text, messages))
            DocumentParser(document, std::move(text)).Run();
    } catch (const std::bad_alloc&) {
        messages.Error(Code::OutOfMemory, "memory ended while the file was read");
    }
    return document;
}

Document DocumentParser::ReadText(std::string text, std::string name, const Limits& limits)
{
    Document document(std::move(name), limits);
    DocumentParser(document, std::move(text)).Run();
    return document;
}

DocumentParser::DocumentParser(Document& document, std::string text)
    : m_document(document),
      m_source(*document.m_source),
      m_records(m_source.Records()),
      m_messages(document.m_messages, document.m_name, document.m_limits.diagnostics),
      m_names(m_records.names, m_source.Nodes(), document.m_limits.nameLength)
{
    m_source.Text() = std::move(text);
}

void DocumentParser::Run()
{
    bool complete = false;
    try {
        if (CheckBytes()) {
            m_source.FindLines();
            complete = Parse();
        }
    } catch (const std::bad_alloc&) {
        m_messages.Error(Code::OutOfMemory, "memory ended while the document was read");
    } catch (const std::length_error&) {
        m_messages.Error(Code::OutOfMemory, "the document is too large for memory");
    }
    if (!complete) {
        m_document.m_root = nullptr;
        m_source.Drop();
    }
}

SourcePlace DocumentParser::PlaceOf(const char* text) const
{
    return m_source.Lines().Find(static_cast<std::size_t>(text - m_source.Text().data()));
}

bool DocumentParser::Fail(Code code, std::string text, SourcePlace place, std::string path)
{
    m_messages.Error(code, std::move(text), std::move(path), place.line, place.column);
    return false;
}

bool DocumentParser::CheckBytes()
{
    const std::string_view text = m_source.Text();
    if (text.size() > m_document.m_limits.bytes) {
        m_messages.Error(Code::TooLarge, "the document is larger than the limit of " +
                                             std::to_string(m_document.m_limits.bytes) + " bytes");
        return false;
    }
    if (IsBlank(text)) {
        m_messages.Error(Code::Empty, "the document is empty");
        return false;
    }
    if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF"))
        return Fail(Code::Encoding, "the document is UTF-16; only UTF-8 is read", {});
    return true;
}

bool DocumentParser::Parse()
{
    const SourceText& lines = m_source.Lines();
    if (lines.Found() != SourceText::Fault::None) {
        const bool notUtf8 = lines.Found() == SourceText::Fault::NotUtf8;
        return Fail(Code::Encoding,
                    notUtf8 ? "the bytes are no UTF-8" : "a control character that XML cannot hold",
                    lines.Find(lines.FaultOffset()));
    }
    std::string& text = m_source.Text();
    m_hasReferences = text.find('&') != std::string::npos;
    m_isClean = lines.IsClean() && !m_hasReferences && text.find('\\') == std::string::npos;
    const pugi::xml_parse_result result =
        m_parsed.load_buffer_inplace(text.data(), text.size(), ParseFlags, pugi::encoding_utf8);
    if (!result)
        return TellParseError(result);
    pugi::xml_node root;
    if (!FindRoot(root) || !ReadVersion(root) || !RecordAll())
        return false;
    m_document.m_root = m_source.MakeRoot(m_document.m_version);
    return true;
}

bool DocumentParser::TellParseError(const pugi::xml_parse_result& result)
{
    if (result.status == pugi::status_out_of_memory)
        throw std::bad_alloc();
    const SourcePlace place = m_source.Lines().Find(static_cast<std::size_t>(result.offset));
    if (result.status == pugi::status_bad_doctype)
        return Fail(Code::Doctype, "a document type declaration is refused", place);
    return Fail(Code::Syntax, std::string(ParseErrorText(result.status)), place);
}

bool DocumentParser::CheckDeclaration(const pugi::xml_node& declaration)
{
    const pugi::xml_attribute encoding = declaration.attribute("encoding");
    if (!encoding || SameWithoutCase(encoding.value(), "UTF-8") ||
        SameWithoutCase(encoding.value(), "US-ASCII"))
        return true;
    return Fail(Code::Encoding,
                "the document is declared as " + std::string(encoding.value()).substr(0, 40) +
                    "; only UTF-8 is read",
                {});
}

bool DocumentParser::FindRoot(pugi::xml_node& root)
{
    for (pugi::xml_node node = m_parsed.first_child(); node; node = node.next_sibling()) {
        switch (node.type()) {
        case pugi::node_doctype:
            return Fail(Code::Doctype, "a document type declaration is refused",
                        PlaceOf(node.value()));
        case pugi::node_declaration:
            if (!CheckDeclaration(node))
                return false;
            break;
        case pugi::node_element:
            if (root)
                return Fail(Code::Syntax, "there is a second root element", PlaceOf(node.name()));
            root = node;
            break;
        default:
            return Fail(Code::Syntax, "there is text outside the root element",
                        PlaceOf(node.value() + LeadingBlanks(node.value())));
        }
    }
    if (!root) {
        return Fail(Code::Syntax, "there is no root element",
                    m_source.Lines().Find(m_source.Text().size() - 1));
    }
    if (RootName != root.name()) {
        std::wstring name;
        AppendDecodedCData(name, std::string_view(root.name()).substr(0, 400));
        return Fail(Code::WrongRoot,
                    "the root element is " + Quoted(name) + " instead of \"" +
                        std::string(RootName) + "\"",
                    PlaceOf(root.name()));
    }
    return true;
}

bool DocumentParser::ReadVersion(const pugi::xml_node& root)
{
    constexpr const char* rootPath = "/KARMPDocument";
    const SourcePlace place = PlaceOf(root.name());
    const pugi::xml_attribute version = root.attribute("version");
    if (!version) {
        m_messages.Warning(Code::MissingVersion,
                           "the root has no version; the current one is taken", rootPath,
                           place.line, place.column);
        return true;
    }
    m_document.m_version.clear();
    AppendDecoded(m_document.m_version, version.value(), TextPlace::Attribute);
    const auto& known = KnownVersions();
    if (std::find(known.begin(), known.end(), m_document.m_version) == known.end()) {
        m_messages.Warning(Code::UnknownVersion,
                           "the version " + Quoted(m_document.m_version) + " is not known",
                           std::string(rootPath) + "/@version", place.line, place.column);
    }
    return true;
}

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

// Room that is not written to costs nothing where the system hands memory out when it is.
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
        m_records.elements[m_open.back().number].behind =
            static_cast<std::uint32_t>(m_records.elements.size());
        m_open.pop_back();
    }
}

// What the parser gives for nothing stands outside of the source.
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
                    PlaceOf(bytes), Path(element.parent()));
    }
    if (!CountNode())
        return TellTooMany(PlaceOf(bytes), element.parent());
    if (name.size > m_document.m_limits.nameLength)
        return TellTooLong(bytes, "element", PlaceOf(bytes), element.parent());
    CloseTo(depth);
    const auto number = static_cast<std::uint32_t>(m_records.elements.size());
    ElementRecord& record = m_records.elements.emplace_back();
    record.name = name.number & 0x3FFFFFFFU;
    record.place = static_cast<Offset>(bytes - m_source.Text().data());
    record.behind = number + 1;
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

// Appends a piece to the text of the element opened last.
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
            return TellTooMany(PlaceOf(element.name()), element);
        if (name.size > m_document.m_limits.nameLength)
            return TellTooLong(bytes, "attribute", PlaceOf(element.name()), element);
        const char* const value = attribute.value();
        AttributeRecord& record = m_records.attributes.emplace_back();
        record.name = name.number & 0x7FFFFFFFU;
        record.isPlain = StandsForItself(value) ? 1U : 0U;
        record.value = OffsetOf(value);
        CheckReferences(value, element, bytes);
    }
    // A few names are compared each with each in fewer steps than a table takes.
    constexpr std::size_t few = 8;
    const std::size_t end = m_records.attributes.size();
    bool allNew = end - first <= few;
    for (std::size_t place = first; place != end && allNew; ++place) {
        const NodeText& name = m_records.names[m_records.attributes[place].name];
        for (std::size_t former = first; former != place && allNew; ++former)
            allNew = !(m_records.names[m_records.attributes[former].name] == name);
    }
    if (!allNew)
        TellRepeatedAttributes(element, first);
    return true;
}

void DocumentParser::TellRepeatedAttributes(const pugi::xml_node& element, std::size_t first)
{
    std::unordered_set<std::wstring_view> names;
    for (std::size_t place = first; place < m_records.attributes.size(); ++place) {
        const std::wstring_view name = m_records.names[m_records.attributes[place].name].View();
        if (!names.insert(name).second) {
            Fail(Code::DuplicateAttribute,
                 "the attribute " + Quoted(name) + " stands twice; the last one is taken",
                 PlaceOf(element.name()), Path(element));
        }
    }
}

void DocumentParser::CheckReferences(const char* raw, const pugi::xml_node& element,
                                     const char* attribute)
{
    if (!m_hasReferences || std::strchr(raw, '&') == nullptr)
        return;
    m_value.clear();
    if (AppendDecoded(m_value, raw, TextPlace::Element))
        return;
    std::string path = Path(element);
    if (attribute != nullptr) {
        path += "/@";
        path += attribute;
    }
    Fail(Code::Reference, "a text holds an unknown reference", PlaceOf(element.name()),
         std::move(path));
}

bool DocumentParser::TellTooMany(SourcePlace place, const pugi::xml_node& inside)
{
    return Fail(Code::TooManyNodes,
                "there are more elements and attributes than the limit of " +
                    std::to_string(m_document.m_limits.nodes),
                place, Path(inside));
}

bool DocumentParser::TellTooLong(std::string_view name, std::string_view kind, SourcePlace place,
                                 const pugi::xml_node& inside)
{
    std::wstring start;
    AppendDecodedCData(start, name.substr(0, 100));
    return Fail(Code::NameTooLong,
                "the " + std::string(kind) + " name " + Quoted(start) +
                    " is longer than the limit of " +
                    std::to_string(m_document.m_limits.nameLength) + " bytes",
                place, Path(inside));
}

std::string DocumentParser::Path(pugi::xml_node element) const
{
    constexpr std::size_t longest = 64;
    std::string path;
    if (m_messages.Full())
        return path;
    std::vector<pugi::xml_node> way;
    for (; element.type() == pugi::node_element; element = element.parent())
        way.push_back(element);
    std::wstring name;
    for (std::size_t place = 0; place < way.size() && place < longest; ++place) {
        const pugi::xml_node& step = way[way.size() - 1 - place];
        name.clear();
        AppendDecodedCData(name, step.name());
        path += '/';
        AppendUtf8(path, name);
        std::size_t number = 1;
        for (pugi::xml_node former = step.previous_sibling(step.name()); former;
             former = former.previous_sibling(step.name()))
            ++number;
        if (number > 1 || step.next_sibling(step.name()))
            path += '[' + std::to_string(number) + ']';
    }
    return way.size() > longest ? path + "/..." : path;
}

} // namespace karmp::documents

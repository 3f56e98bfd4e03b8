#include "KARMPTreeBuilder.h"

#include "KARMPDocumentNames.h"
#include "KARMPDocuments.h"
#include "KARMPFileAccess.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <span>
#include <stdexcept>
#include <unordered_set>
#include <utility>

namespace karmp::documents {

namespace {

constexpr std::string_view Blanks = " \t\r\n";

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

std::string_view Trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(Blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(Blanks) - first + 1);
}

// Tells of a node and those behind it.
bool HaveElements(pugi::xml_node node)
{
    for (; node; node = node.next_sibling()) {
        if (node.type() == pugi::node_element) {
            return true;
        }
    }
    return false;
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

Document TreeBuilder::ReadFile(const std::filesystem::path& path, const Limits& limits)
{
    Document document(path.string(), limits);
    Messages messages(document.m_messages, document.m_name, limits.diagnostics);
    try {
        std::string text;
        if (ReadWholeFile(path, document.m_limits.bytes, text, messages)) {
            TreeBuilder(document, std::move(text)).Run();
        }
    } catch (const std::bad_alloc&) {
        messages.Error(Code::OutOfMemory, "memory ended while the file was read");
    }
    return document;
}

Document TreeBuilder::ReadText(std::string text, std::string name, const Limits& limits)
{
    Document document(std::move(name), limits);
    TreeBuilder(document, std::move(text)).Run();
    return document;
}

TreeBuilder::TreeBuilder(Document& document, std::string text)
    : m_document(document),
      m_source(*document.m_source),
      m_messages(document.m_messages, document.m_name, document.m_limits.diagnostics),
      m_names(m_source)
{
    m_source.Text() = std::move(text);
}

void TreeBuilder::Run()
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
        m_source.Clear();
        m_source.Text() = std::string();
    }
}

SourcePlace TreeBuilder::PlaceOf(const char* text) const
{
    return m_source.Lines().Find(static_cast<std::size_t>(text - m_source.Text().data()));
}

bool TreeBuilder::Fail(Code code, std::string text, SourcePlace place, std::string path)
{
    m_messages.Error(code, std::move(text), std::move(path), place.line, place.column);
    return false;
}

bool TreeBuilder::CheckBytes()
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
    if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF")) {
        return Fail(Code::Encoding, "the document is UTF-16; only UTF-8 is read", {});
    }
    return true;
}

bool TreeBuilder::Parse()
{
    const SourceText& lines = m_source.Lines();
    if (lines.Found() != SourceText::Fault::None) {
        const bool notUtf8 = lines.Found() == SourceText::Fault::NotUtf8;
        return Fail(Code::Encoding,
                    notUtf8 ? "the bytes are no UTF-8" : "a control character that XML cannot hold",
                    lines.Find(lines.FaultOffset()));
    }
    std::string& text = m_source.Text();
    const pugi::xml_parse_result result =
        m_parsed.load_buffer_inplace(text.data(), text.size(), ParseFlags, pugi::encoding_utf8);
    if (!result) {
        return TellParseError(result);
    }
    pugi::xml_node root;
    return FindRoot(root) && ReadVersion(root) && BuildTree(root);
}

bool TreeBuilder::TellParseError(const pugi::xml_parse_result& result)
{
    if (result.status == pugi::status_out_of_memory) {
        throw std::bad_alloc();
    }
    const SourcePlace place = m_source.Lines().Find(static_cast<std::size_t>(result.offset));
    if (result.status == pugi::status_bad_doctype) {
        return Fail(Code::Doctype, "a document type declaration is refused", place);
    }
    return Fail(Code::Syntax, std::string(ParseErrorText(result.status)), place);
}

bool TreeBuilder::CheckDeclaration(const pugi::xml_node& declaration)
{
    const pugi::xml_attribute encoding = declaration.attribute("encoding");
    if (!encoding || SameWithoutCase(encoding.value(), "UTF-8") ||
        SameWithoutCase(encoding.value(), "US-ASCII")) {
        return true;
    }
    return Fail(Code::Encoding,
                "the document is declared as " + std::string(encoding.value()).substr(0, 40) +
                    "; only UTF-8 is read",
                {});
}

bool TreeBuilder::FindRoot(pugi::xml_node& root)
{
    for (pugi::xml_node node = m_parsed.first_child(); node; node = node.next_sibling()) {
        switch (node.type()) {
        case pugi::node_doctype:
            return Fail(Code::Doctype, "a document type declaration is refused",
                        PlaceOf(node.value()));
        case pugi::node_declaration:
            if (!CheckDeclaration(node)) {
                return false;
            }
            break;
        case pugi::node_element:
            if (root) {
                return Fail(Code::Syntax, "there is a second root element", PlaceOf(node.name()));
            }
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

bool TreeBuilder::ReadVersion(const pugi::xml_node& root)
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

// The parsed form of a large document is given back while it is read, an element together with
// those of its children that have none themselves, so that its memory serves the tree.
bool TreeBuilder::BuildTree(pugi::xml_node root)
{
    constexpr std::size_t largeText = 1U << 24U;
    m_givesBack = m_source.Text().size() >= largeText;
    if (m_givesBack) {
        m_source.TakeSmallPieces();
    }
    m_version = karmp::NodeText::Name(m_document.m_version, m_source);
    if (!Enter(root)) {
        return false;
    }
    while (!m_levels.empty()) {
        Level& level = m_levels.back();
        const pugi::xml_node child = level.next;
        const pugi::xml_node_type type = child.type();
        if (type == pugi::node_null) {
            Leave();
            continue;
        }
        level.next = child.next_sibling();
        if (type != pugi::node_element) {
            ReadText(level, child);
        } else if (!Enter(child)) {
            return false;
        }
    }
    return true;
}

bool TreeBuilder::TellTooMany(SourcePlace place)
{
    return Fail(Code::TooManyNodes,
                "there are more elements and attributes than the limit of " +
                    std::to_string(m_document.m_limits.nodes),
                place, Path());
}

bool TreeBuilder::TellTooLong(std::string_view name, std::string_view kind, SourcePlace place)
{
    std::wstring start;
    AppendDecodedCData(start, name.substr(0, 100));
    return Fail(Code::NameTooLong,
                "the " + std::string(kind) + " name " + Quoted(start) +
                    " is longer than the limit of " +
                    std::to_string(m_document.m_limits.nameLength) + " bytes",
                place, Path());
}

bool TreeBuilder::Enter(pugi::xml_node source)
{
    const std::string_view name = source.name();
    if (m_levels.size() >= m_document.m_limits.depth) {
        return Fail(Code::TooDeep,
                    "an element stands deeper than the limit of " +
                        std::to_string(m_document.m_limits.depth),
                    PlaceOf(name.data()), Path());
    }
    if (!CountNode()) {
        return TellTooMany(PlaceOf(name.data()));
    }
    if (name.size() > m_document.m_limits.nameLength) {
        return TellTooLong(name, "element", PlaceOf(name.data()));
    }
    const auto offset = static_cast<std::uint32_t>(name.data() - m_source.Text().data());
    auto* const node = ::new (m_source.Allocate(sizeof(KARMPDocumentReader)))
        KARMPDocumentReader(m_names.Get(name), m_version, m_source, offset);
    if (m_levels.empty()) {
        m_document.m_root = node;
    } else {
        m_children.push_back(node);
    }

    const pugi::xml_node first = source.first_child();
    const bool isLeaf = first.type() == pugi::node_null;
    m_levels.push_back({source, first, node, m_children.size(), m_texts.size(),
                        !isLeaf && HaveElements(first), false});
    const pugi::xml_attribute attribute = source.first_attribute();
    if (attribute && !ReadAttributes(attribute, *node)) {
        return false;
    }
    const char* const text = source.value();
    if (isLeaf) {
        if (StandsForItself(text)) {
            node->PlaceValue(karmp::AsciiText{text});
        } else {
            node->PlaceValue(Decode(text, TextPlace::Element, *node, nullptr));
        }
        m_levels.pop_back();
    } else if (*text != '\0') {
        ReadText(m_levels.back(), source);
    }
    return true;
}

void TreeBuilder::Leave()
{
    const Level level = m_levels.back();
    m_levels.pop_back();
    if (level.hasText || !level.hasElements) {
        const std::wstring_view text = std::wstring_view(m_texts).substr(level.textStart);
        level.node->PlaceValue(karmp::NodeText::Copy(text, m_source));
        m_texts.resize(level.textStart);
    }
    level.node->PlaceElements(std::span(m_children).subspan(level.firstChild));
    m_children.resize(level.firstChild);
    if (m_givesBack && !m_levels.empty()) {
        m_levels.back().source.remove_child(level.source);
    }
}

// Where there are elements as well, literal blanks at the ends of a text are indentation.
void TreeBuilder::ReadText(Level& level, const pugi::xml_node& source)
{
    std::string_view raw = source.value();
    if (source.type() == pugi::node_cdata) {
        AppendDecodedCData(m_texts, raw);
        level.hasText = true;
        return;
    }
    if (level.hasElements) {
        raw = Trimmed(raw);
    }
    if (!raw.empty()) {
        level.hasText = true;
        if (!AppendDecoded(m_texts, raw, TextPlace::Element)) {
            m_messages.Error(Code::Reference, "a text holds an unknown reference", Path(),
                             level.node->Line(), level.node->Column());
        }
    }
}

bool TreeBuilder::ReadAttributes(pugi::xml_attribute attribute, KARMPDocumentReader& node)
{
    m_attributes.clear();
    for (; attribute; attribute = attribute.next_attribute()) {
        const std::string_view name = attribute.name();
        if (!CountNode()) {
            return TellTooMany(node.Place());
        }
        if (name.size() > m_document.m_limits.nameLength) {
            return TellTooLong(name, "attribute", node.Place());
        }
        const char* const value = attribute.value();
        if (StandsForItself(value)) {
            m_attributes.push_back({m_names.Get(name), karmp::AsciiText{value}});
        } else {
            m_attributes.push_back(
                {m_names.Get(name), Decode(value, TextPlace::Attribute, node, name.data())});
        }
    }
    if (!node.PlaceAttributes(m_attributes)) {
        TellRepeatedAttributes(node);
    }
    return true;
}

void TreeBuilder::TellRepeatedAttributes(const KARMPDocumentReader& node)
{
    std::unordered_set<std::wstring_view> names;
    for (const auto& attribute : m_attributes) {
        if (!names.insert(attribute.name.View()).second) {
            m_messages.Error(Code::DuplicateAttribute,
                             "the attribute " + Quoted(attribute.name.View()) +
                                 " stands twice; the last one is taken",
                             Path(), node.Line(), node.Column());
        }
    }
}

// What the parser gives for nothing stands outside of the source.
bool TreeBuilder::StandsForItself(const char* raw) const
{
    const std::string& text = m_source.Text();
    return *raw == '\0' || documents::StandsForItself(raw, text.data() + text.size());
}

karmp::NodeText TreeBuilder::Decode(const char* raw, TextPlace place,
                                    const KARMPDocumentReader& node, const char* attribute)
{
    m_value.clear();
    if (!AppendDecoded(m_value, raw, place)) {
        std::string path = Path();
        if (attribute != nullptr) {
            path += "/@";
            path += attribute;
        }
        m_messages.Error(Code::Reference, "a text holds an unknown reference", std::move(path),
                         node.Line(), node.Column());
    }
    return karmp::NodeText::Copy(m_value, m_source);
}

// Counts the children of a level up to one of them that have its name.
std::size_t TreeBuilder::NumberOfName(const Level& parent, const Level& child) const
{
    const auto first = m_children.begin() + static_cast<std::ptrdiff_t>(parent.firstChild);
    const auto last = m_children.begin() + static_cast<std::ptrdiff_t>(child.firstChild);
    const auto count = std::count_if(first, last, [&child](const KARMPDeserializer* node) {
        return node->Id() == child.node->Id();
    });
    return static_cast<std::size_t>(count);
}

std::string TreeBuilder::Path() const
{
    constexpr std::size_t longest = 64;
    std::string path;
    if (m_messages.Full()) {
        return path;
    }
    for (std::size_t place = 0; place < m_levels.size() && place < longest; ++place) {
        const Level& level = m_levels[place];
        path += '/';
        AppendUtf8(path, level.node->Id());
        const auto number = place > 0 ? NumberOfName(m_levels[place - 1], level) : 0;
        if (number > 1 || (number == 1 && level.source.next_sibling(level.source.name()))) {
            path += '[' + std::to_string(number) + ']';
        }
    }
    return m_levels.size() > longest ? path + "/..." : path;
}

} // namespace karmp::documents

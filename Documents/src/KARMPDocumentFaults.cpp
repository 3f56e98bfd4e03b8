#include "KARMPDocumentFaults.h"

#include "KARMPDocumentNames.h"
#include "KARMPDocuments.h"
#include "KARMPOpenElements.h"
#include "KARMPTextEscapes.h"
#include "KARMPValueFaults.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <unordered_set>
#include <utility>

namespace karmp::documents {

namespace {

// The XML parser leaves references, line ends and blanks as they are: they are decoded afterwards,
// where a literal blank and a reference to one can still be distinguished.
constexpr unsigned ParseFlags = pugi::parse_minimal | pugi::parse_cdata | pugi::parse_doctype |
                                pugi::parse_declaration | pugi::parse_embed_pcdata |
                                pugi::parse_ws_pcdata_single | pugi::parse_fragment;

std::size_t LeadingBlanks(std::string_view text)
{
    return std::min(text.find_first_not_of(Blanks), text.size());
}

std::string_view ParseErrorText(pugi::xml_parse_status status)
{
    switch (status) {
    case pugi::status_unrecognized_tag:
        return "a \"<\" begins no tag; for the sign itself \"&lt;\" is written";
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
        return "an attribute is malformed, or its value is not closed: a quotation mark is missing";
    case pugi::status_bad_end_element:
        return "an end tag is malformed or not closed";
    case pugi::status_end_element_mismatch:
        return "a start tag and an end tag do not match";
    default:
        return "the document is no well-formed XML";
    }
}

std::string InTag(const std::string& name)
{
    std::wstring wide;
    AppendDecodedCData(wide, name);
    const std::string quoted = Quoted(wide);
    return '<' + quoted.substr(1, quoted.size() - 2) + '>';
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

// From an "&" up to a ";", or to where a name ends.
std::size_t ReferenceLength(const char* begin)
{
    std::size_t length = 1;
    while (begin[length] != '\0' && std::strchr("&;<> \t\r\n\"'", begin[length]) == nullptr)
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

// What is not well-formed about a declaration that can be read; empty when nothing is.
std::string_view LapseOf(const pugi::xml_node& declaration)
{
    constexpr std::array<std::string_view, 3> names{"version", "encoding", "standalone"};
    if (!declaration.attribute("version"))
        return "the declaration of the document names no version of XML";
    auto next = names.begin();
    for (const pugi::xml_attribute& attribute : declaration.attributes()) {
        next = std::find(next, names.end(), std::string_view(attribute.name()));
        if (next == names.end())
            return "a declaration of a document has version, encoding and standalone, in this "
                   "order, and no more";
        ++next;
    }
    const std::string_view standalone = declaration.attribute("standalone").value();
    if (declaration.attribute("standalone") && standalone != "yes" && standalone != "no")
        return "the declaration of the document is standalone in another way than \"yes\" or "
               "\"no\"";
    return {};
}

} // namespace

class DocumentFaults::Walk final : public pugi::xml_tree_walker
{
public:
    explicit Walk(DocumentFaults& faults) : m_faults(faults) {}

private:
    bool for_each(pugi::xml_node& node) override
    {
        switch (node.type()) {
        case pugi::node_element:
            return m_faults.CheckElement(node, static_cast<std::size_t>(depth()));
        case pugi::node_pcdata:
            m_faults.CheckReferences(node.value(), node.parent(), nullptr);
            return true;
        default:
            return true;
        }
    }

    DocumentFaults& m_faults;
};

DocumentFaults::DocumentFaults(std::string text, const SourceText& lines, const Limits& limits,
                               Messages& messages)
    : m_text(std::move(text)), m_lines(lines), m_limits(limits), m_messages(messages)
{}

bool DocumentFaults::Tell(std::wstring& version)
{
    const pugi::xml_parse_result result = Load();
    if (!result)
        return ReportParseError(result);
    pugi::xml_node root;
    Walk walk(*this);
    return FindRoot(root) && ReadVersion(root, version) && m_parsed.traverse(walk);
}

pugi::xml_parse_result DocumentFaults::Load()
{
    return m_parsed.load_buffer_inplace(m_text.data(), m_text.size(), ParseFlags,
                                        pugi::encoding_utf8);
}

bool DocumentFaults::IsDeclaration(std::string_view target)
{
    return SameWithoutCase(target, "xml");
}

bool DocumentFaults::IsGoodDeclaration(std::string_view declaration, std::string_view& lapse)
{
    const SourceText lines;
    const Limits limits;
    Diagnostics found;
    Messages messages(found, {}, limits.diagnostics);
    DocumentFaults faults(std::string(declaration), lines, limits, messages);
    if (!faults.Load() || !faults.CheckDeclaration(faults.m_parsed.first_child()))
        return false;
    lapse = LapseOf(faults.m_parsed.first_child());
    return true;
}

SourcePosition DocumentFaults::PositionOf(const char* text) const
{
    return m_lines.Find(static_cast<std::size_t>(text - m_text.data()));
}

bool DocumentFaults::Fail(Code code, std::string text, SourcePosition position, std::string path)
{
    m_messages.Error(code, std::move(text), std::move(path), position.line, position.column);
    return false;
}

bool DocumentFaults::ReportParseError(const pugi::xml_parse_result& result)
{
    if (result.status == pugi::status_out_of_memory)
        throw std::bad_alloc();
    const SourcePosition position = m_lines.Find(static_cast<std::size_t>(result.offset));
    if (result.status == pugi::status_bad_doctype)
        return Fail(Code::Doctype, "a document type declaration is refused", position);
    return Fail(Code::Syntax, SyntaxFault(result), position);
}

// One sentence: the end of the document explains a fault there, an open element an end tag that
// does not match.
std::string DocumentFaults::SyntaxFault(const pugi::xml_parse_result& result) const
{
    const std::string_view text = m_text;
    const auto fault = static_cast<std::size_t>(result.offset);
    const OpenElements found(m_parsed, text, fault);
    std::string open = "no element is open";
    if (!found.Open().empty()) {
        const OpenElements::Element& last = found.Open().back();
        open = InTag(last.name) + " is open, since line " +
               std::to_string(m_lines.Find(last.offset).line);
    }
    const std::size_t end = text.find_last_not_of(std::string(Blanks) + '\0');
    if (end == std::string_view::npos || fault >= end ||
        text.find('>', fault) == std::string_view::npos)
        return "the document ends here, as if it were cut off; " + open;
    if (result.status == pugi::status_end_element_mismatch && !found.Met().empty())
        return "the end tag " + InTag('/' + found.Met()) + " stands where " + open;
    // The parser tells of a value that is not closed where it begins.
    const bool isValue = result.status == pugi::status_bad_attribute && fault > 0 &&
                         (text[fault - 1] == '"' || text[fault - 1] == '\'');
    if (isValue && text.find(text[fault - 1], fault) == std::string_view::npos)
        return "the value of an attribute is not closed: a quotation mark is missing, or the "
               "document "
               "is cut off; " +
               open;
    return std::string(ParseErrorText(result.status));
}

bool DocumentFaults::CheckDeclaration(const pugi::xml_node& declaration)
{
    const auto value = [](const pugi::xml_attribute& attribute) {
        return std::string(attribute.value()).substr(0, 40);
    };
    const pugi::xml_attribute version = declaration.attribute("version");
    if (version && value(version) != "1.0")
        return Fail(Code::Syntax,
                    "the document is XML " + value(version) + "; only XML 1.0 is read",
                    PositionOf(version.name()));
    const pugi::xml_attribute encoding = declaration.attribute("encoding");
    if (!encoding || SameWithoutCase(encoding.value(), "UTF-8") ||
        SameWithoutCase(encoding.value(), "US-ASCII"))
        return true;
    return Fail(Code::Encoding,
                "the document is declared as " + value(encoding) + "; only UTF-8 is read",
                PositionOf(encoding.name()));
}

bool DocumentFaults::FindRoot(pugi::xml_node& root)
{
    for (pugi::xml_node node = m_parsed.first_child(); node; node = node.next_sibling()) {
        switch (node.type()) {
        case pugi::node_doctype:
            return Fail(Code::Doctype, "a document type declaration is refused",
                        PositionOf(node.value()));
        case pugi::node_declaration:
            if (!CheckDeclaration(node))
                return false;
            break;
        case pugi::node_element:
            if (root)
                return Fail(Code::Syntax, "there is a second root element",
                            PositionOf(node.name()));
            root = node;
            break;
        default:
            return Fail(Code::Syntax, "there is text outside the root element",
                        PositionOf(node.value() + LeadingBlanks(node.value())));
        }
    }
    if (!root)
        return Fail(Code::Syntax, "there is no root element", m_lines.Find(m_text.size() - 1));
    if (RootName != root.name()) {
        std::wstring name;
        AppendDecodedCData(name, std::string_view(root.name()).substr(0, 400));
        return Fail(Code::WrongRoot,
                    "the root element is " + Quoted(name) + " instead of \"" +
                        std::string(RootName) + "\"",
                    PositionOf(root.name()));
    }
    return true;
}

bool DocumentFaults::ReadVersion(const pugi::xml_node& root, std::wstring& read)
{
    constexpr const char* rootPath = "/KARMPDocument";
    const SourcePosition position = PositionOf(root.name());
    const pugi::xml_attribute version = root.attribute("version");
    if (!version) {
        m_messages.Warning(Code::MissingVersion,
                           "the root has no version; the current one is taken", rootPath,
                           position.line, position.column);
        return true;
    }
    read.clear();
    AppendDecoded(read, version.value(), TextContext::Attribute);
    const auto& known = KnownVersions();
    if (std::find(known.begin(), known.end(), read) == known.end()) {
        const SourcePosition place = PositionOf(version.name());
        std::string text = "the version " + Quoted(read) + " is not known" +
                           Suggestion(read, known) + "; known are";
        for (const std::wstring_view tag : known) {
            text += tag == known.front() ? " " : ", ";
            AppendUtf8(text, tag);
        }
        m_messages.Warning(Code::UnknownVersion, std::move(text),
                           std::string(rootPath) + "/@version", place.line, place.column);
    }
    return true;
}

std::string DocumentFaults::Path(pugi::xml_node element) const
{
    constexpr std::size_t longest = 64;
    std::string path;
    if (m_messages.Full())
        return path;
    std::vector<pugi::xml_node> ancestors;
    for (; element.type() == pugi::node_element; element = element.parent())
        ancestors.push_back(element);
    std::wstring name;
    for (std::size_t depth = 0; depth < ancestors.size() && depth < longest; ++depth) {
        const pugi::xml_node& step = ancestors[ancestors.size() - 1 - depth];
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
    return ancestors.size() > longest ? path + "/..." : path;
}

bool DocumentFaults::CheckElement(const pugi::xml_node& element, std::size_t depth)
{
    const char* const name = element.name();
    if (depth >= m_limits.depth) {
        return Fail(Code::TooDeep,
                    "an element stands deeper than the limit of " + std::to_string(m_limits.depth),
                    PositionOf(name), Path(element.parent()));
    }
    if (!CountNode())
        return ReportTooMany(PositionOf(name), element.parent());
    if (std::strlen(name) > m_limits.nameLength)
        return ReportTooLong(name, "element", PositionOf(name), element.parent());
    if (element.first_attribute() && !CheckAttributes(element))
        return false;
    CheckReferences(element.value(), element, nullptr);
    return true;
}

bool DocumentFaults::CheckAttributes(const pugi::xml_node& element)
{
    std::unordered_set<std::string_view> names;
    std::vector<pugi::xml_attribute> repeated;
    for (pugi::xml_attribute attribute = element.first_attribute(); attribute;
         attribute = attribute.next_attribute()) {
        const char* const name = attribute.name();
        if (!CountNode())
            return ReportTooMany(PositionOf(element.name()), element);
        if (std::strlen(name) > m_limits.nameLength)
            return ReportTooLong(name, "attribute", PositionOf(element.name()), element);
        if (std::strchr(attribute.value(), '<') != nullptr)
            return ReportOpenBracket(attribute.value(), element, name);
        CheckReferences(attribute.value(), element, name);
        if (!names.insert(name).second)
            repeated.push_back(attribute);
    }
    for (const pugi::xml_attribute& attribute : repeated) {
        std::wstring name;
        AppendDecodedCData(name, attribute.name());
        Fail(Code::DuplicateAttribute,
             "the attribute " + Quoted(name) + " stands twice; the last one is taken",
             PositionOf(attribute.name()), Path(element));
    }
    return true;
}

bool DocumentFaults::ReportOpenBracket(const char* value, const pugi::xml_node& element,
                                       const char* attribute)
{
    return Fail(Code::Syntax,
                "the value of the attribute \"" + std::string(attribute) +
                    "\" has an unescaped \"<\": a quotation mark is missing, or \"&lt;\" is meant",
                PositionOf(std::strchr(value, '<')), Path(element) + "/@" + attribute);
}

void DocumentFaults::CheckReferences(const char* raw, const pugi::xml_node& element,
                                     const char* attribute)
{
    std::wstring text;
    if (std::strchr(raw, '&') == nullptr || AppendDecoded(text, raw, TextContext::Element))
        return;
    std::string path = Path(element);
    if (attribute != nullptr) {
        path += "/@";
        path += attribute;
    }
    const char* const wrong = FirstUnknownReference(raw);
    text.clear();
    constexpr std::size_t longest = 40;
    AppendDecodedCData(text, std::string_view(wrong, ReferenceLength(wrong)).substr(0, longest));
    std::string quoted = "\"";
    AppendUtf8(quoted, text);
    Fail(Code::Reference,
         quoted + "\" is no reference and is kept as text; for the sign itself \"&amp;\" is "
                  "written",
         PositionOf(wrong), std::move(path));
}

bool DocumentFaults::ReportTooMany(SourcePosition position, const pugi::xml_node& inside)
{
    return Fail(Code::TooManyNodes,
                "there are more elements and attributes than the limit of " +
                    std::to_string(m_limits.nodes),
                position, Path(inside));
}

bool DocumentFaults::ReportTooLong(std::string_view name, std::string_view kind,
                                   SourcePosition position, const pugi::xml_node& inside)
{
    std::wstring start;
    AppendDecodedCData(start, name.substr(0, 100));
    return Fail(Code::NameTooLong,
                "the " + std::string(kind) + " name " + Quoted(start) +
                    " is longer than the limit of " + std::to_string(m_limits.nameLength) +
                    " bytes",
                position, Path(inside));
}

} // namespace karmp::documents

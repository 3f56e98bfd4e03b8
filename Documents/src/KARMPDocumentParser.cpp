#include "KARMPDocumentParser.h"

#include "KARMPDocumentNames.h"
#include "KARMPDocuments.h"
#include "KARMPFileAccess.h"
#include "KARMPOpenElements.h"
#include "KARMPValueFaults.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <utility>

namespace karmp::documents {

namespace {

// The XML parser leaves references, line ends and blanks as they are: they are decoded afterwards,
// where a literal blank and a reference to one can still be distinguished.
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

// The encoding that the declaration at the begin of a document names; empty when it names none.
std::string DeclaredEncoding(std::string_view text)
{
    if (text.starts_with("\xEF\xBB\xBF"))
        text.remove_prefix(3);
    if (!text.starts_with("<?xml"))
        return {};
    text = text.substr(0, std::min(text.find("?>"), std::size_t{200}));
    const std::size_t name = text.find("encoding");
    const std::size_t begin = name != text.npos ? text.find_first_of("\"'", name) : text.npos;
    if (begin == text.npos)
        return {};
    const std::size_t end = text.find(text[begin], begin + 1);
    const std::string_view encoding =
        text.substr(begin + 1, std::min(end, text.size()) - begin - 1);
    const bool isPlain = std::all_of(encoding.begin(), encoding.end(),
                                     [](char byte) { return byte > ' ' && byte <= '~'; });
    return isPlain ? std::string(encoding.substr(0, 40)) : std::string();
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
        messages.Error(Code::OutOfMemory, "an allocation failed while the file was read");
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
        m_messages.Error(Code::OutOfMemory, "an allocation failed while the document was read");
    } catch (const std::length_error&) {
        m_messages.Error(Code::OutOfMemory, "the document is too large for memory");
    }
    if (!complete) {
        m_document.m_root = nullptr;
        m_source.Drop();
    }
}

SourcePosition DocumentParser::PositionOf(const char* text) const
{
    return m_source.Lines().Find(static_cast<std::size_t>(text - m_source.Text().data()));
}

bool DocumentParser::Fail(Code code, std::string text, SourcePosition position, std::string path)
{
    m_messages.Error(code, std::move(text), std::move(path), position.line, position.column);
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
    if (lines.Found() != SourceText::Fault::None)
        return ReportFaultyBytes();
    std::string& text = m_source.Text();
    m_hasReferences = text.find('&') != std::string::npos;
    m_isClean = lines.IsClean() && !m_hasReferences && text.find('\\') == std::string::npos;
    const pugi::xml_parse_result result =
        m_parsed.load_buffer_inplace(text.data(), text.size(), ParseFlags, pugi::encoding_utf8);
    if (!result)
        return ReportParseError(result);
    pugi::xml_node root;
    if (!FindRoot(root) || !ReadVersion(root) || !RecordAll())
        return false;
    m_document.m_root = m_source.MakeRoot(m_document.m_version);
    return true;
}

bool DocumentParser::ReportFaultyBytes()
{
    const SourceText& lines = m_source.Lines();
    const std::string& text = m_source.Text();
    const SourcePosition position = lines.Find(lines.FaultOffset());
    if (lines.Found() == SourceText::Fault::NotUtf8) {
        const std::string declared = DeclaredEncoding(text);
        return Fail(Code::Encoding,
                    "the bytes are no UTF-8; the document " +
                        (declared.empty() ? std::string("declares no encoding")
                                          : "is declared as " + declared),
                    position);
    }
    const bool isWide = text.size() > 1 && (text[0] == '\0') != (text[1] == '\0');
    return Fail(Code::Encoding,
                isWide ? "the document is UTF-16; only UTF-8 is read"
                       : "a control character that XML cannot hold",
                position);
}

bool DocumentParser::ReportParseError(const pugi::xml_parse_result& result)
{
    if (result.status == pugi::status_out_of_memory)
        throw std::bad_alloc();
    const SourcePosition position = m_source.Lines().Find(static_cast<std::size_t>(result.offset));
    if (result.status == pugi::status_bad_doctype)
        return Fail(Code::Doctype, "a document type declaration is refused", position);
    return Fail(Code::Syntax, SyntaxFault(result), position);
}

// One sentence: the end of the document explains a fault there, an open element an end tag that
// does not match.
std::string DocumentParser::SyntaxFault(const pugi::xml_parse_result& result) const
{
    const std::string_view text = m_source.Text();
    const auto fault = static_cast<std::size_t>(result.offset);
    const OpenElements found(m_parsed, text, fault);
    std::string open = "no element is open";
    if (!found.Open().empty()) {
        const OpenElements::Element& last = found.Open().back();
        open = InTag(last.name) + " is open, since line " +
               std::to_string(m_source.Lines().Find(last.offset).line);
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

bool DocumentParser::CheckDeclaration(const pugi::xml_node& declaration)
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

bool DocumentParser::FindRoot(pugi::xml_node& root)
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
                    PositionOf(root.name()));
    }
    return true;
}

bool DocumentParser::ReadVersion(const pugi::xml_node& root)
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
    m_document.m_version.clear();
    AppendDecoded(m_document.m_version, version.value(), TextContext::Attribute);
    const auto& known = KnownVersions();
    if (std::find(known.begin(), known.end(), m_document.m_version) == known.end()) {
        const SourcePosition place = PositionOf(version.name());
        std::string text = "the version " + Quoted(m_document.m_version) + " is not known" +
                           Suggestion(m_document.m_version, known) + "; known are";
        for (const std::wstring_view tag : known) {
            text += tag == known.front() ? " " : ", ";
            AppendUtf8(text, tag);
        }
        m_messages.Warning(Code::UnknownVersion, std::move(text),
                           std::string(rootPath) + "/@version", place.line, place.column);
    }
    return true;
}

std::string DocumentParser::Path(pugi::xml_node element) const
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

} // namespace karmp::documents

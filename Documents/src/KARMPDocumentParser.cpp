#include "KARMPDocumentParser.h"

#include "KARMPDocumentNames.h"
#include "KARMPDocuments.h"
#include "KARMPFileAccess.h"

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
        return ReportParseError(result);
    pugi::xml_node root;
    if (!FindRoot(root) || !ReadVersion(root) || !RecordAll())
        return false;
    m_document.m_root = m_source.MakeRoot(m_document.m_version);
    return true;
}

bool DocumentParser::ReportParseError(const pugi::xml_parse_result& result)
{
    if (result.status == pugi::status_out_of_memory)
        throw std::bad_alloc();
    const SourcePosition position = m_source.Lines().Find(static_cast<std::size_t>(result.offset));
    if (result.status == pugi::status_bad_doctype)
        return Fail(Code::Doctype, "a document type declaration is refused", position);
    return Fail(Code::Syntax, std::string(ParseErrorText(result.status)), position);
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
        m_messages.Warning(Code::UnknownVersion,
                           "the version " + Quoted(m_document.m_version) + " is not known",
                           std::string(rootPath) + "/@version", position.line, position.column);
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

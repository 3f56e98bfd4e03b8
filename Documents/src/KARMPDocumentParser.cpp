#include "KARMPDocumentParser.h"

#include "KARMPDocumentFaults.h"
#include "KARMPDocumentScanner.h"
#include "KARMPFileAccess.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <utility>

namespace karmp::documents {

namespace {

bool IsBlank(std::string_view text)
{
    return text.find_first_not_of(Blanks) == std::string_view::npos;
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
      m_messages(document.m_messages, document.m_name, document.m_limits.diagnostics)
{
    m_source.Text() = std::move(text);
}

void DocumentParser::Run()
{
    bool complete = false;
    try {
        if (CheckBytes()) {
            m_source.CheckText();
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

bool DocumentParser::Fail(Code code, std::string text, SourcePosition position)
{
    m_messages.Error(code, std::move(text), {}, position.line, position.column);
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
    using Outcome = DocumentScanner::Outcome;
    DocumentScanner scanner(m_source, m_document.m_limits);
    const Outcome outcome = scanner.Run();
    if (outcome == Outcome::Clean) {
        m_document.m_version = scanner.Version();
    } else {
        DocumentFaults faults(scanner.Original(), lines, m_document.m_limits, m_messages);
        if (!faults.Tell(m_document.m_version))
            return false;
        if (outcome == Outcome::Faulty)
            return Fail(Code::Syntax, "the document is no well-formed XML",
                        lines.Find(scanner.Reached()));
    }
    TellOfLapses(scanner);
    m_document.m_root = m_source.MakeRoot(m_document.m_version);
    return true;
}

void DocumentParser::TellOfLapses(const DocumentScanner& scanner)
{
    const SourceText& lines = m_source.Lines();
    const auto warn = [&](Code code, std::string text, std::size_t offset) {
        const SourcePosition position = lines.Find(offset);
        m_messages.Warning(code, std::move(text), {}, position.line, position.column);
    };
    for (const DocumentScanner::Lapse& lapse : scanner.Lapses())
        if (!m_messages.Full())
            warn(Code::Syntax, std::string(lapse.text), lapse.offset);
    if (lines.IsClean())
        return;
    // The first of them stands for all.
    constexpr std::string_view start = "\xEF\xBF";
    const std::string& text = m_source.Text();
    for (auto at = text.find(start); at != text.npos; at = text.find(start, at + 1))
        if (const char last = text[at + 2]; last == '\xBE' || last == '\xBF') {
            warn(Code::Encoding,
                 std::string("the character U+FFF") + (last == '\xBE' ? 'E' : 'F') +
                     ", which XML cannot hold",
                 at);
            return;
        }
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

} // namespace karmp::documents

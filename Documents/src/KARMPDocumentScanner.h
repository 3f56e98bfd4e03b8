#pragma once

#include "KARMPDocumentLimits.h"
#include "KARMPDocumentRecords.h"
#include "KARMPIdentifierNumbers.h"
#include "KARMPRepeatedNames.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace karmp::documents {

class DocumentSource;

/// Makes the records of a document in one pass over its bytes. It puts a null behind each value and
/// each text, and composes no messages: what is out of the ordinary is left to DocumentFaults.
class DocumentScanner
{
public:
    enum class Outcome {
        Clean,    ///< There is nothing to tell of.
        Doubtful, ///< The records are whole; there is something to tell of.
        Faulty    ///< The document cannot be read.
    };

    /// What is no well-formed XML, though it is read.
    struct Lapse
    {
        std::size_t offset;
        std::string_view text;
    };

    /// `source` has the bytes, UTF-8 without control characters that XML cannot hold.
    DocumentScanner(DocumentSource& source, const Limits& limits);
    DocumentScanner(const DocumentScanner&) = delete;
    DocumentScanner& operator=(const DocumentScanner&) = delete;

    Outcome Run();
    /// The document's version; empty when there is none that is known.
    std::wstring_view Version() const { return m_version; }
    /// What is to be warned of, in the order of the document, whatever the outcome.
    const std::vector<Lapse>& Lapses() const { return m_lapses; }
    /// How far Run came.
    std::size_t Reached() const { return static_cast<std::size_t>(m_at - m_begin); }
    /// The bytes as they were before Run.
    std::string Original() const;

private:
    bool ScanMisc();
    bool ScanInstruction();
    bool ScanMark();
    bool ScanStartTag();
    bool ScanAttributes(bool& isClosed);
    bool ScanAttribute();
    bool ScanEndTag();
    bool ScanContent();
    bool ScanText(char* text);
    bool SkipComment();
    bool ScanCData();
    /// False when the text does not follow.
    bool SkipPast(std::string_view text);
    void SkipBlanks();
    bool StartsWith(std::string_view text) const;
    void CheckNames(std::size_t first);
    void CheckRoot();
    void CheckReferences(const char* raw);
    void AddChild();
    void AddPiece(Offset text, bool isCData);
    Offset OffsetOf(const char* text) const { return static_cast<Offset>(text - m_begin); }

    DocumentSource& m_source;
    DocumentRecords& m_records;
    const Limits& m_limits;
    RepeatedNames m_names;
    IdentifierNumbers m_identifiers;
    char* m_begin = nullptr;
    /// Behind a byte order mark.
    char* m_start = nullptr;
    char* m_at = nullptr;
    /// A null.
    char* m_end = nullptr;
    /// The innermost open element, and how many are open.
    std::uint32_t m_open = 0;
    std::size_t m_depth = 0;
    std::size_t m_nodes = 0;
    bool m_isDoubtful = false;
    std::wstring_view m_version;
    std::vector<Lapse> m_lapses;
};

} // namespace karmp::documents

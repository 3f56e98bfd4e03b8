// The bytes of a document, the records of its elements and the memory of its nodes.
#pragma once

#include "KARMPDocumentNodes.h"
#include "KARMPDocumentReader.h"
#include "KARMPDocumentRecords.h"
#include "KARMPSourceText.h"
#include "KARMPTextEscapes.h"

#include <algorithm>
#include <string>
#include <vector>

namespace karmp::documents {

/// What the nodes of a document are filled from. The nodes stand in two memories: one for those that
/// stay, and one for what is filled while an entity is read, which is used again for the next one.
class DocumentSource
{
public:
    DocumentSource() = default;
    DocumentSource(const DocumentSource&) = delete;
    DocumentSource& operator=(const DocumentSource&) = delete;

    /// The bytes, which the parser changes once their lines are found.
    std::string& Text() { return m_text; }
    /// Finds the lines of at most 4 GiB less one.
    void FindLines() { m_lines = SourceText(m_text); }
    const SourceText& Lines() const { return m_lines; }
    /// The records, which refer to the bytes.
    DocumentRecords& Records() { return m_records; }
    const DocumentRecords& Records() const { return m_records; }
    /// Frees bytes, records and nodes.
    void Drop() noexcept;

    /// Makes the root's node, at a version that all its nodes share.
    KARMPDocumentReader* MakeRoot(std::wstring_view version);
    const NodeText& Version() const { return m_version; }
    /// The memory of the nodes that stay, and of other texts of the document.
    DocumentNodes& Nodes() { return m_nodes; }
    /// The bytes at a place, up to a null.
    const char* At(Offset offset) const { return offset != NoOffset ? m_text.data() + offset : ""; }

    /// Begins the reading of an entity's node, of one at a time: another one that begins meanwhile
    /// keeps what is filled of it.
    void BeginReading(const KARMPDocumentReader& entity) noexcept
    {
        m_read = m_read == nullptr ? &entity : m_read;
        m_readings += m_read == &entity ? 1U : 0U;
    }
    /// Ends the reading that began last. True when none is left, so that what was filled is freed.
    bool EndReading() noexcept;
    bool IsRead(const KARMPDocumentReader& entity) const noexcept { return m_read == &entity; }
    /// The memory for what is filled of the entity that is read.
    DocumentNodes& ReadNodes() { return m_readNodes; }

    /// Gives the elements of these numbers an identifier that nobody carries when their attributes
    /// are filled.
    void DropReferences(std::vector<std::uint32_t> numbers, std::wstring unused);
    bool IsDropped(std::uint32_t number) const
    {
        return !m_dropped.empty() && std::binary_search(m_dropped.begin(), m_dropped.end(), number);
    }
    const std::wstring& Unused() const { return m_unused; }

    /// What is collected for a node while it is filled.
    struct Collected
    {
        std::vector<ReadAttribute> attributes;
        std::vector<KARMPDeserializer*> children;
        std::wstring text;
    };
    Collected& ToCollect() { return m_collected; }

private:
    std::string m_text;
    SourceText m_lines;
    DocumentRecords m_records;
    NodeText m_version;
    DocumentNodes m_nodes;
    DocumentNodes m_readNodes;
    const KARMPDocumentReader* m_read = nullptr;
    unsigned m_readings = 0;
    std::vector<std::uint32_t> m_dropped;
    std::wstring m_unused;
    Collected m_collected;
};

} // namespace karmp::documents

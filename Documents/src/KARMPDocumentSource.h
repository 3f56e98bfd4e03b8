#pragma once

#include "KARMPDocumentNodes.h"
#include "KARMPDocumentReader.h"
#include "KARMPDocumentRecords.h"
#include "KARMPProgressSteps.h"
#include "KARMPSourceText.h"
#include "KARMPTextEscapes.h"

#include <algorithm>
#include <string>
#include <vector>

namespace karmp::documents {

/// The bytes of a document, the records of its elements, and two arenas of nodes: one for nodes
/// that stay, and one for what is filled while an entity is read, which is reused for the next one.
class DocumentSource
{
public:
    DocumentSource() = default;
    DocumentSource(const DocumentSource&) = delete;
    DocumentSource& operator=(const DocumentSource&) = delete;

    /// The bytes, which the parser modifies once they are checked.
    std::string& Text() { return m_text; }
    const std::string& Text() const { return m_text; }
    /// Checks the bytes, which are at most 4 GiB less one; line feeds stay as they are.
    void CheckText() { m_lines = SourceText(m_text); }
    const SourceText& Lines() const { return m_lines; }
    /// The records, which refer to the bytes.
    DocumentRecords& Records() { return m_records; }
    const DocumentRecords& Records() const { return m_records; }
    /// The source of a node.
    static DocumentSource& Of(const KARMPDocumentReader& node) { return node.m_source; }
    /// The steps that the readings of entities are.
    ProgressSteps& Progress() { return m_progress; }
    /// Frees bytes, records and nodes.
    void Drop() noexcept;

    /// Makes the root's node, at a version that all its nodes share.
    KARMPDocumentReader* MakeRoot(std::wstring_view version);
    const NodeText& Version() const { return m_version; }
    /// The arena of the nodes that stay and of the document's names.
    DocumentNodes& Nodes() { return m_nodes; }
    /// The bytes at an offset, up to a null.
    const char* At(Offset offset) const { return offset != NoOffset ? m_text.data() + offset : ""; }

    /// Begins the reading of an entity's node, one at a time: another one whose reading begins
    /// meanwhile keeps what is filled of it.
    void BeginReading(const KARMPDocumentReader& entity) noexcept
    {
        m_read = m_read == nullptr ? &entity : m_read;
        m_readings += m_read == &entity ? 1U : 0U;
    }
    /// Ends the reading that began last. True when no reading is open, so that what was filled
    /// is freed.
    bool EndReading() noexcept;
    bool IsRead(const KARMPDocumentReader& entity) const noexcept { return m_read == &entity; }
    /// The arena of what is filled of the entity that is read.
    DocumentNodes& ReadNodes() { return m_readNodes; }

    /// Gives the elements of these indices an identifier that no entity carries when their
    /// attributes are filled.
    void DropReferences(std::vector<std::uint32_t> numbers, std::wstring unused);
    bool IsDropped(std::uint32_t number) const
    {
        return !m_dropped.empty() && std::binary_search(m_dropped.begin(), m_dropped.end(), number);
    }
    bool HasDropped() const { return !m_dropped.empty(); }
    const std::wstring& Unused() const { return m_unused; }

    /// Buffers for the content of the node that is being filled.
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
    ProgressSteps m_progress;
};

} // namespace karmp::documents

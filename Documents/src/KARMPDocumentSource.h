// What the nodes of a document are made from: its bytes, the records of its elements and the memory
// that the nodes stand in.
#pragma once

#include "KARMPDocumentReader.h"
#include "KARMPDocumentRecords.h"
#include "KARMPNodeMemory.h"
#include "KARMPSourceText.h"
#include "KARMPTextEscapes.h"

#include <algorithm>
#include <string>
#include <vector>

namespace karmp::documents {

/// The memory of nodes that stay, and a second one for what is made of the entity that is read,
/// which is used again for the next one.
class DocumentSource final : public NodeMemory
{
public:
    /// The bytes, which the parser changes once their lines are found.
    std::string& Text() { return m_text; }
    /// Finds the lines of at most 4 GiB less one.
    void FindLines() { m_lines = SourceText(m_text); }
    const SourceText& Lines() const { return m_lines; }
    /// The records, which refer to the bytes.
    DocumentRecords& Records() { return m_records; }
    /// Ends bytes, records and nodes.
    void Drop() noexcept;

    /// Makes the root's node, at a version that all its nodes share.
    KARMPDocumentReader* MakeRoot(std::wstring_view version);
    const NodeText& Version() const { return m_version; }
    /// The bytes at a place, up to a null.
    const char* At(Offset offset) const { return offset != NoOffset ? m_text.data() + offset : ""; }

    /// Begins the reading of an entity's node, of one at a time: another one that begins meanwhile
    /// keeps what is made of it.
    void BeginReading(const KARMPDocumentReader& entity) noexcept
    {
        m_read = m_read == nullptr ? &entity : m_read;
        m_readings += m_read == &entity ? 1U : 0U;
    }
    /// Ends the reading that began last. True when none is left, so that what was made is gone.
    bool EndReading() noexcept;
    bool IsRead(const KARMPDocumentReader& entity) const noexcept { return m_read == &entity; }
    /// The memory for what is made of the entity that is read.
    NodeMemory& ReadMemory() { return m_readMemory; }

    /// Gives the elements of these numbers an identifier that nobody carries when their attributes
    /// are made.
    void DropReferences(std::vector<std::uint32_t> numbers, std::wstring unused);
    bool IsDropped(std::uint32_t number) const
    {
        return !m_dropped.empty() && std::binary_search(m_dropped.begin(), m_dropped.end(), number);
    }
    const std::wstring& Unused() const { return m_unused; }

    /// What a node collects while it is made.
    struct Collected
    {
        std::vector<KARMPDocumentReader::Attribute> attributes;
        std::vector<KARMPDeserializer*> children;
        std::wstring text;
    };
    Collected& ToCollect() { return m_collected; }

private:
    std::string m_text;
    SourceText m_lines;
    DocumentRecords m_records;
    NodeText m_version;
    NodeMemory m_readMemory;
    const KARMPDocumentReader* m_read = nullptr;
    unsigned m_readings = 0;
    std::vector<std::uint32_t> m_dropped;
    std::wstring m_unused;
    Collected m_collected;
};

} // namespace karmp::documents

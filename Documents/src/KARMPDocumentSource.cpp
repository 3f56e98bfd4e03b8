#include "KARMPDocumentSource.h"

#include <algorithm>
#include <utility>

namespace karmp::documents {

void DocumentSource::Drop() noexcept
{
    m_readNodes.Clear();
    m_read = nullptr;
    m_readings = 0;
    m_nodes.Clear();
    m_records = DocumentRecords();
    m_lines = SourceText();
    m_text = std::string();
}

KARMPDocumentReader* DocumentSource::MakeRoot(std::wstring_view version)
{
    m_version = NodeText::Name(version, m_nodes);
    return m_nodes.Make(m_records.elements.front(), 0, *this);
}

bool DocumentSource::EndReading() noexcept
{
    if (--m_readings != 0)
        return false;
    m_read = nullptr;
    m_readNodes.Reuse();
    m_progress.Step();
    return true;
}

void DocumentSource::DropReferences(std::vector<std::uint32_t> numbers, std::wstring unused)
{
    m_dropped = std::move(numbers);
    std::sort(m_dropped.begin(), m_dropped.end());
    m_unused = std::move(unused);
}

} // namespace karmp::documents

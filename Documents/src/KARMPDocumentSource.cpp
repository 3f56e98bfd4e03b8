#include "KARMPDocumentSource.h"

#include <algorithm>
#include <new>
#include <utility>

namespace karmp::documents {

void DocumentSource::Drop() noexcept
{
    m_readMemory.Clear();
    m_read = nullptr;
    Clear();
    m_records = DocumentRecords();
    m_text = std::string();
}

KARMPDocumentReader* DocumentSource::MakeRoot(std::wstring_view version)
{
    m_version = NodeText::Name(version, *this);
    return ::new (Allocate(sizeof(KARMPDocumentReader))) KARMPDocumentReader(0, 0, *this, *this);
}

void DocumentSource::EndReading() noexcept
{
    m_read = nullptr;
    m_readMemory.Reuse();
}

void DocumentSource::DropReferences(std::vector<std::uint32_t> numbers, std::wstring unused)
{
    m_dropped = std::move(numbers);
    std::sort(m_dropped.begin(), m_dropped.end());
    m_unused = std::move(unused);
}

bool DocumentSource::IsDropped(std::uint32_t number) const
{
    return !m_dropped.empty() && std::binary_search(m_dropped.begin(), m_dropped.end(), number);
}

} // namespace karmp::documents

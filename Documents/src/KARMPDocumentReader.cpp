#include "KARMPDocumentReader.h"

#include "KARMPDocumentSource.h"

using karmp::documents::SourcePlace;

KARMPDocumentReader::~KARMPDocumentReader() = default;

std::wstring KARMPDocumentReader::Location() const
{
    const SourcePlace place = Place();
    return std::to_wstring(place.line) + L':' + std::to_wstring(place.column);
}

std::size_t KARMPDocumentReader::Line() const
{
    return Place().line;
}

std::size_t KARMPDocumentReader::Column() const
{
    return Place().column;
}

SourcePlace KARMPDocumentReader::Place() const
{
    return m_source.Lines().Find(m_record.place);
}

void KARMPDocumentReader::operator delete(void* /*memory*/) {}

#include "KARMPDocumentReader.h"

#include "KARMPDocumentSource.h"

using karmp::documents::SourcePosition;

KARMPDocumentReader::~KARMPDocumentReader() = default;

std::wstring KARMPDocumentReader::Location() const
{
    const SourcePosition position = Position();
    return std::to_wstring(position.line) + L':' + std::to_wstring(position.column);
}

std::size_t KARMPDocumentReader::Line() const
{
    return Position().line;
}

std::size_t KARMPDocumentReader::Column() const
{
    return Position().column;
}

SourcePosition KARMPDocumentReader::Position() const
{
    return m_source.Lines().Find(m_record.nameOffset);
}

void KARMPDocumentReader::operator delete(void* /*memory*/) {}

#include "KARMPDocumentReader.h"

#include "KARMPDocumentSource.h"
#include "KARMPTextEscapes.h"

#include <string_view>

using karmp::AttributeRecord;
using karmp::DocumentRecords;
using karmp::NoOffset;
using karmp::Offset;
using karmp::TextKind;
using karmp::documents::SourcePosition;

namespace {

bool IsBlank(char byte)
{
    return karmp::documents::Blanks.find(byte) != std::string_view::npos;
}

// The offset of an attribute's name from that of its value: before the value stand a quotation
// mark, an equals sign with blanks around it, and the name. The parser has put nulls in place of
// what ended the name.
Offset NameBefore(const std::string& text, Offset value)
{
    std::size_t end = value - 1; // the quotation mark
    while (end > 0 && (IsBlank(text[end - 1]) || text[end - 1] == '=' || text[end - 1] == '\0'))
        --end;
    std::size_t begin = end;
    while (begin > 0 && !IsBlank(text[begin - 1]) && text[begin - 1] != '\0')
        --begin;
    return static_cast<Offset>(begin);
}

// The offset of the first byte of a text that is no blank, NoOffset when there is none.
Offset FirstByte(const std::string& text, Offset offset)
{
    while (offset != NoOffset && IsBlank(text[offset]))
        ++offset;
    return offset == NoOffset || text[offset] == '\0' ? NoOffset : offset;
}

} // namespace

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

bool KARMPDocumentReader::FindAttribute(std::wstring_view name, std::size_t& line,
                                        std::size_t& column) const
{
    const DocumentRecords& records = m_source.Records();
    Offset found = NoOffset;
    for (std::uint32_t index = m_record.attributes; index != (&m_record)[1].attributes; ++index) {
        const AttributeRecord& attribute = records.attributes[index];
        if (records.names[attribute.Name()].View() == name)
            found = attribute.value;
    }
    const bool isThere = found != NoOffset;
    const SourcePosition position =
        m_source.Lines().Find(isThere ? NameBefore(m_source.Text(), found) : m_record.nameOffset);
    line = position.line;
    column = position.column;
    return isThere;
}

bool KARMPDocumentReader::FindText(std::size_t& line, std::size_t& column) const
{
    const std::string& text = m_source.Text();
    Offset found = NoOffset;
    if (m_record.Kind() == TextKind::Pieces) {
        std::uint32_t next = m_record.text;
        do {
            found = FirstByte(text, m_source.Records().pieces[next].text);
            next = m_source.Records().pieces[next].next;
        } while (found == NoOffset && next != 0);
    } else if (m_record.Kind() != TextKind::None) {
        found = FirstByte(text, m_record.text);
    }
    const bool isThere = found != NoOffset;
    const SourcePosition position = m_source.Lines().Find(isThere ? found : m_record.nameOffset);
    line = position.line;
    column = position.column;
    return isThere;
}

void KARMPDocumentReader::operator delete(void* /*memory*/) {}

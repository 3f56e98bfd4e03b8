#include "KARMPDocumentScanner.h"

#include "KARMPByteBlock.h"
#include "KARMPDocumentFaults.h"
#include "KARMPDocumentNames.h"
#include "KARMPDocumentSource.h"
#include "KARMPDocuments.h"
#include "KARMPTextEscapes.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace karmp::documents {

namespace {

// Bytes that do not stand for themselves in the value of an attribute.
struct ValueMarks
{
    static ByteMask Of(const ByteBlock& block)
    {
        return block.Below(' ') | block.Equal('<') | block.Equal('&') | block.Equal('\\');
    }
};

// In the text of an element, tabs and line feeds stand for themselves.
struct TextMarks
{
    static ByteMask Of(const ByteBlock& block)
    {
        return block.Below(0) | block.Equal('&') | block.Equal('\\') | block.Equal('\r');
    }
};

// The end of a text at a byte, and whether anything before that is marked. The end may be that of
// all bytes, a null.
template <class Marks>
char* FindEnd(char* text, const char* end, char last, bool& isMarked)
{
    for (unsigned marks = 0;; text += ByteBlock::Size) {
        const auto left = static_cast<std::size_t>(end - text);
        const ByteBlock block = BlockAt(text, left, last);
        const unsigned found = block.Equal(last).Bits();
        const unsigned marked = Marks::Of(block).Bits();
        if (found == 0) {
            marks |= marked;
            continue;
        }
        isMarked = (marks | (marked & ((found & (0U - found)) - 1U))) != 0;
        return text + std::min(left, static_cast<std::size_t>(std::countr_zero(found)));
    }
}

// Of control characters, the bytes have none but blanks, and the null at their end.
bool IsBlank(char byte)
{
    return byte > 0 && byte <= ' ';
}

// True when an element has anything but attributes and one text.
bool HoldsMore(const ElementRecord& element)
{
    return element.Kind() == TextKind::None || element.Kind() == TextKind::Pieces;
}

} // namespace

DocumentScanner::DocumentScanner(DocumentSource& source, const Limits& limits)
    : m_source(source),
      m_records(source.Records()),
      m_limits(limits),
      m_names(m_records.names.List(), source.Nodes(), limits.nameLength),
      m_identifiers(m_records)
{}

std::string DocumentScanner::Original() const
{
    std::string text = m_source.Text();
    const auto restore = [&text](Offset offset, char ending) {
        if (offset != NoOffset)
            text[offset + std::strlen(text.data() + offset)] = ending;
    };
    for (const AttributeRecord& attribute : m_records.attributes)
        restore(attribute.value, text[attribute.value - 1]);
    for (const ElementRecord& element : m_records.elements)
        if (element.Kind() == TextKind::Plain || element.Kind() == TextKind::Raw)
            restore(element.text, '<');
    for (const PieceRecord& piece : m_records.pieces)
        restore(piece.text, piece.isCData != 0 ? ']' : '<');
    return text;
}

inline void DocumentScanner::SkipBlanks()
{
    while (IsBlank(*m_at)) {
        const ByteBlock block = BlockAt(m_at, static_cast<std::size_t>(m_end - m_at), '\0');
        m_at += std::countr_one(block.Below(' ' + 1).Without(block.Below(1)).Bits());
    }
}

bool DocumentScanner::StartsWith(std::string_view text) const
{
    return std::string_view(m_at, static_cast<std::size_t>(m_end - m_at)).starts_with(text);
}

bool DocumentScanner::SkipPast(std::string_view text)
{
    const std::string_view rest(m_at, static_cast<std::size_t>(m_end - m_at));
    const std::size_t found = rest.find(text);
    if (found == rest.npos)
        return false;
    m_at += found + text.size();
    return true;
}

// Blanks, comments and instructions outside of the root.
bool DocumentScanner::ScanMisc()
{
    for (;;) {
        SkipBlanks();
        const bool isInstruction = StartsWith("<?");
        if (!isInstruction && !StartsWith("<!--"))
            return true;
        ++m_at;
        if (!(isInstruction ? ScanInstruction() : SkipComment()))
            return false;
    }
}

bool DocumentScanner::SkipComment()
{
    m_at += std::string_view("!--").size();
    if (!SkipPast("--"))
        return false;
    if (*m_at != '>') {
        m_lapses.push_back({OffsetOf(m_at) - std::size_t{2}, "\"--\" stands within a comment"});
        --m_at;
        return SkipPast("-->");
    }
    ++m_at;
    return true;
}

// A declaration stands outside of the root.
bool DocumentScanner::ScanInstruction()
{
    const char* const begin = m_at - 1;
    ++m_at;
    if (!BeginsName(*m_at))
        return false;
    const char* const name = m_at;
    while (IsInName(*m_at))
        ++m_at;
    const std::string_view target(name, static_cast<std::size_t>(m_at - name));
    if (!SkipPast("?>"))
        return false;
    if (!DocumentFaults::IsDeclaration(target))
        return true;
    std::string_view lapse;
    const std::string_view declaration(begin, static_cast<std::size_t>(m_at - begin));
    if (m_depth != 0 || !DocumentFaults::IsGoodDeclaration(declaration, lapse))
        return false;
    if (begin != m_start)
        lapse = "the declaration of the document does not stand at its begin";
    if (!lapse.empty())
        m_lapses.push_back({OffsetOf(begin), lapse});
    return true;
}

// While an element is open, its end is the index of the element around it.
inline bool DocumentScanner::ScanStartTag()
{
    const RepeatedNames::Name name = m_names.Get(m_at, m_end, m_depth);
    if (m_depth >= m_limits.depth || ++m_nodes > m_limits.nodes || name.size > m_limits.nameLength)
        return false;
    if (m_depth != 0)
        AddChild();
    const auto number = static_cast<std::uint32_t>(m_records.elements.size());
    constexpr auto plain = static_cast<std::uint32_t>(TextKind::Plain) << ElementRecord::NameBits;
    m_records.elements.push_back({name.number | plain, OffsetOf(m_at), m_open,
                                  static_cast<std::uint32_t>(m_records.attributes.size()),
                                  NoOffset});
    m_at += name.size;
    bool isClosed = false;
    if (*m_at == '>')
        ++m_at;
    else if (!ScanAttributes(isClosed))
        return false;
    if (isClosed) {
        m_records.elements[number].end = number + 1;
    } else {
        m_open = number;
        ++m_depth;
    }
    return true;
}

// What stands between the name of a start tag and its end.
inline bool DocumentScanner::ScanAttributes(bool& isClosed)
{
    const std::size_t first = m_records.attributes.size();
    std::uint64_t seen = 0;
    bool areNew = true;
    for (;;) {
        SkipBlanks();
        if (!BeginsName(*m_at))
            break;
        // A blank divides attributes from each other and from the name.
        if (!IsBlank(m_at[-1]) || !ScanAttribute())
            return false;
        const std::uint64_t bit = std::uint64_t{1} << (m_records.attributes.back().Name() % 64);
        areNew = areNew && (seen & bit) == 0;
        seen |= bit;
    }
    isClosed = *m_at == '/';
    m_at += isClosed ? 1 : 0;
    if (*m_at != '>')
        return false;
    ++m_at;
    if (!areNew)
        CheckNames(first);
    return true;
}

inline bool DocumentScanner::ScanAttribute()
{
    const RepeatedNames::Name name = m_names.Get(m_at, m_end, m_depth);
    if (++m_nodes > m_limits.nodes || name.size > m_limits.nameLength)
        return false;
    const bool isIdentifier = name.size == 2 && m_at[0] == 'i' && m_at[1] == 'd';
    m_at += name.size;
    SkipBlanks();
    if (*m_at != '=')
        return false;
    ++m_at;
    SkipBlanks();
    const char quote = *m_at;
    if (quote != '"' && quote != '\'')
        return false;
    ++m_at;
    char* const value = m_at;
    bool isMarked = false;
    m_at = FindEnd<ValueMarks>(value, m_end, quote, isMarked);
    if (m_at == m_end)
        return false;
    const auto size = static_cast<std::size_t>(m_at - value);
    *m_at = '\0';
    ++m_at;
    const auto number = static_cast<std::uint32_t>(m_records.attributes.size());
    m_records.attributes.push_back({name.number | (isMarked ? AttributeRecord::Raw : 0U),
                                    OffsetOf(value), isIdentifier ? RawIdentifier : NoIdentifier});
    if (isIdentifier && !isMarked)
        m_identifiers.Add({value, size}, number);
    if (!isMarked)
        return true;
    CheckReferences(value);
    return std::strchr(value, '<') == nullptr;
}

// Tells whether two attributes have one name.
void DocumentScanner::CheckNames(std::size_t first)
{
    std::vector<std::uint32_t> names;
    for (std::size_t index = first; index < m_records.attributes.size(); ++index)
        names.push_back(m_records.attributes[index].Name());
    std::sort(names.begin(), names.end());
    if (std::adjacent_find(names.begin(), names.end()) != names.end())
        m_isDoubtful = true;
}

inline bool DocumentScanner::ScanEndTag()
{
    ++m_at;
    ElementRecord& record = m_records.elements[m_open];
    const std::size_t size = m_names.SizeOf(record.Name(), m_at, m_end);
    if (size == 0)
        return false;
    m_at += size;
    SkipBlanks();
    if (*m_at != '>')
        return false;
    ++m_at;
    if (record.Kind() == TextKind::Pieces) {
        PieceRecord& last = m_records.pieces[record.text];
        record.text = last.next;
        last.next = 0;
    }
    m_open = record.end;
    record.end = static_cast<std::uint32_t>(m_records.elements.size());
    --m_depth;
    return true;
}

bool DocumentScanner::ScanCData()
{
    m_at += std::string_view("![CDATA[").size();
    const char* const text = m_at;
    if (!SkipPast("]]>"))
        return false;
    AddChild();
    AddPiece(OffsetOf(text), true);
    m_at[-3] = '\0';
    return true;
}

void DocumentScanner::CheckReferences(const char* raw)
{
    std::wstring decoded;
    if (std::strchr(raw, '&') != nullptr && !AppendDecoded(decoded, raw, TextContext::Element))
        m_isDoubtful = true;
}

// The first attribute of the name counts.
void DocumentScanner::CheckRoot()
{
    const auto& [elements, attributes, pieces, names, identifiers, simple] = m_records;
    const auto& known = KnownVersions();
    for (std::uint32_t index = elements[1].attributes; index-- > elements[0].attributes;)
        if (names[attributes[index].Name()].View() == VersionName) {
            const std::string_view value = m_begin + attributes[index].value;
            const auto tag =
                std::find(known.begin(), known.end(), std::wstring(value.begin(), value.end()));
            m_version = tag != known.end() ? *tag : std::wstring_view();
        }
    if (names[elements[0].Name()].View() != WideRootName || m_version.empty())
        m_isDoubtful = true;
}

// Makes the text that the innermost open element has so far a piece, since more follows.
inline void DocumentScanner::AddChild()
{
    ElementRecord& record = m_records.elements[m_open];
    if (HoldsMore(record))
        return;
    const Offset text = record.text;
    record.SetKind(TextKind::None);
    record.text = NoOffset;
    if (text != NoOffset)
        AddPiece(text, false);
}

// Appends a piece to the text of the innermost open element. Until that is closed, its text is its
// last piece, which the first one follows.
void DocumentScanner::AddPiece(Offset text, bool isCData)
{
    const auto number = static_cast<std::uint32_t>(m_records.pieces.size());
    ElementRecord& record = m_records.elements[m_open];
    PieceRecord& piece = m_records.pieces.emplace_back();
    piece.text = text;
    piece.isCData = isCData ? 1U : 0U;
    PieceRecord& last = record.Kind() == TextKind::Pieces ? m_records.pieces[record.text] : piece;
    piece.next = last.next;
    last.next = number & 0x7FFFFFFFU;
    record.SetKind(TextKind::Pieces);
    record.text = number;
}

inline bool DocumentScanner::ScanText(char* text)
{
    bool isMarked = false;
    m_at = FindEnd<TextMarks>(text, m_end, '<', isMarked);
    if (m_at == m_end)
        return false;
    *m_at = '\0';
    ElementRecord& record = m_records.elements[m_open];
    if (!HoldsMore(record) && record.text == NoOffset) {
        record.text = OffsetOf(text);
        if (isMarked)
            record.SetKind(TextKind::Raw);
    } else {
        AddChild();
        AddPiece(OffsetOf(text), false);
    }
    if (isMarked)
        CheckReferences(text);
    return true;
}

// A text, if there is one, up to a "<". Blanks count only as all that an element holds.
inline bool DocumentScanner::ScanContent()
{
    char* const text = m_at;
    SkipBlanks();
    const bool isText =
        *m_at != '<' || (m_at != text && m_at[1] == '/' && !HoldsMore(m_records.elements[m_open]));
    return !isText || ScanText(text);
}

// What follows a "<".
inline bool DocumentScanner::ScanMark()
{
    if (BeginsName(*m_at))
        return ScanStartTag();
    if (*m_at == '/')
        return ScanEndTag();
    if (*m_at == '?')
        return ScanInstruction();
    if (StartsWith("!--"))
        return SkipComment();
    return StartsWith("![CDATA[") && ScanCData();
}

// Reserved pages cost nothing until they are written to.
DocumentScanner::Outcome DocumentScanner::Run()
{
    constexpr std::size_t expectedElement = 24;
    constexpr std::size_t expectedAttribute = 48;
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    std::string& text = m_source.Text();
    m_records.elements.reserve(text.size() / expectedElement + 1);
    m_records.attributes.reserve(text.size() / expectedAttribute + 1);
    m_begin = text.data();
    m_end = m_begin + text.size();
    m_start = m_begin + (text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0);
    m_at = m_start;
    if (!ScanMisc() || *m_at != '<' || !BeginsName(m_at[1]))
        return Outcome::Faulty;
    do {
        ++m_at;
        if (!ScanMark())
            return Outcome::Faulty;
    } while (m_depth != 0 && ScanContent());
    if (m_depth != 0 || !ScanMisc() || m_at != m_end)
        return Outcome::Faulty;
    m_identifiers.Finish();
    ElementRecord& end = m_records.elements.emplace_back();
    end.attributes = static_cast<std::uint32_t>(m_records.attributes.size());
    CheckRoot();
    return m_isDoubtful ? Outcome::Doubtful : Outcome::Clean;
}

} // namespace karmp::documents

#include "KARMPDocumentScanner.h"

#include "KARMPDocumentFaults.h"
#include "KARMPDocumentNames.h"
#include "KARMPDocumentSource.h"
#include "KARMPDocuments.h"
#include "KARMPTextEscapes.h"

#include <algorithm>
#include <bit>
#include <cstring>
#if defined(__SSE2__)
#    include <emmintrin.h>
#endif

namespace karmp::documents {

namespace {

using Word = std::uint64_t;
constexpr bool IsLittleEndian = std::endian::native == std::endian::little;

bool IsBeyondAscii(char byte)
{
    return static_cast<signed char>(byte) < 0;
}

// Bytes that do not stand for themselves in the value of an attribute.
struct ValueMarks
{
    static bool Mark(char byte)
    {
        return static_cast<signed char>(byte) < ' ' || byte == '<' || byte == '&' || byte == '\\';
    }
    template <class Block>
    static unsigned Mark(const Block& block)
    {
        return block.Below(' ') | block.Equal('<') | block.Equal('&') | block.Equal('\\');
    }
};

// In the text of an element, tabs and line feeds stand for themselves.
struct TextMarks
{
    static bool Mark(char byte)
    {
        return IsBeyondAscii(byte) || byte == '&' || byte == '\\' || byte == '\r';
    }
    template <class Block>
    static unsigned Mark(const Block& block)
    {
        return block.Below(0) | block.Equal('&') | block.Equal('\\') | block.Equal('\r');
    }
};

#if defined(__SSE2__)
// Sixteen bytes that are compared at once: a bit for each, which halves the scanner's time for
// values and texts. As signed numbers, bytes beyond ASCII are below all others.
class Block
{
public:
    static constexpr std::ptrdiff_t Size = sizeof(__m128i);

    explicit Block(const char* bytes)
        : m_bytes(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)))
    {}
    unsigned Equal(char byte) const { return Bits(_mm_cmpeq_epi8(m_bytes, _mm_set1_epi8(byte))); }
    unsigned Below(char byte) const { return Bits(_mm_cmplt_epi8(m_bytes, _mm_set1_epi8(byte))); }

private:
    static unsigned Bits(__m128i bytes) { return static_cast<unsigned>(_mm_movemask_epi8(bytes)); }

    __m128i m_bytes;
};

// Skips blocks in which a byte is not; their marks are in `marks` then. True when it was found.
template <class Marks>
bool SkipBlocks(char*& text, const char* end, char last, unsigned& marks)
{
    for (; end - text >= Block::Size; text += Block::Size) {
        const Block block(text);
        const unsigned found = block.Equal(last);
        const unsigned marked = Marks::Mark(block);
        if (found != 0) {
            marks |= marked & ((found & (0U - found)) - 1U);
            text += std::countr_zero(found);
            return true;
        }
        marks |= marked;
    }
    return false;
}
#else
template <class Marks>
bool SkipBlocks(char*& /*text*/, const char* /*end*/, char /*last*/, unsigned& /*marks*/)
{
    return false;
}
#endif

// The end of a text at a byte, and whether anything before that is marked. The end may be that of
// all bytes, a null.
template <class Marks>
char* FindEnd(char* text, const char* end, char last, bool& isMarked)
{
    unsigned marks = 0;
    if (!SkipBlocks<Marks>(text, end, last, marks))
        for (; text != end && *text != last; ++text)
            marks |= Marks::Mark(*text) ? 1U : 0U;
    isMarked = marks != 0;
    return text;
}

// Compares short names without a call; `left` bytes may be read of both.
bool SameBytes(const char* first, const char* second, std::size_t size, std::size_t left)
{
    if (!IsLittleEndian || size > sizeof(Word) || left < sizeof(Word))
        return std::memcmp(first, second, size) == 0;
    Word firstWord = 0;
    Word secondWord = 0;
    std::memcpy(&firstWord, first, sizeof(Word));
    std::memcpy(&secondWord, second, sizeof(Word));
    return size == 0 || (firstWord ^ secondWord) << (sizeof(Word) - size) * 8 == 0;
}

bool IsBlank(char byte)
{
    return byte == ' ' || byte == '\n' || byte == '\t' || byte == '\r';
}

} // namespace

DocumentScanner::DocumentScanner(DocumentSource& source, const Limits& limits)
    : m_source(source),
      m_records(source.Records()),
      m_limits(limits),
      m_names(m_records.names.List(), source.Nodes(), limits.nameLength),
      m_identifiers(m_records)
{}

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
    m_at = m_begin + (text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0);
    if (!ScanMisc() || *m_at != '<' || !BeginsName(m_at[1]))
        return Outcome::Faulty;
    ++m_at;
    if (!ScanStartTag())
        return Outcome::Faulty;
    while (!m_open.empty())
        if (!ScanContent())
            return Outcome::Faulty;
    if (!ScanMisc() || m_at != m_end)
        return Outcome::Faulty;
    m_identifiers.Finish();
    ElementRecord& end = m_records.elements.emplace_back();
    end.attributes = static_cast<std::uint32_t>(m_records.attributes.size());
    CheckRoot();
    return m_isDoubtful ? Outcome::Doubtful : Outcome::Clean;
}

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

void DocumentScanner::SkipBlanks()
{
    while (IsBlank(*m_at))
        ++m_at;
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
    return SkipPast("-->");
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
    return !DocumentFaults::IsDeclaration(target) ||
           (m_open.empty() &&
            DocumentFaults::IsGoodDeclaration({begin, static_cast<std::size_t>(m_at - begin)}));
}

// What follows a "<".
bool DocumentScanner::ScanMark()
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

bool DocumentScanner::ScanStartTag()
{
    const RepeatedNames::Name name = m_names.Get(m_at, m_end, m_open.size());
    if (m_open.size() >= m_limits.depth || ++m_nodes > m_limits.nodes ||
        name.size > m_limits.nameLength)
        return false;
    if (!m_open.empty())
        AddChild();
    const auto number = static_cast<std::uint32_t>(m_records.elements.size());
    ElementRecord& record = m_records.elements.emplace_back();
    record.name = name.number & 0x3FFFFFFFU;
    record.kind = static_cast<std::uint32_t>(TextKind::Plain) & 3U;
    record.nameOffset = OffsetOf(m_at);
    record.end = number + 1;
    record.attributes = static_cast<std::uint32_t>(m_records.attributes.size());
    record.text = NoOffset;
    m_at += name.size;
    bool isClosed = false;
    if (*m_at == '>')
        ++m_at;
    else if (!ScanAttributes(isClosed))
        return false;
    if (!isClosed)
        m_open.push_back({number, 0, name.size, false});
    return true;
}

// What stands between the name of a start tag and its end.
bool DocumentScanner::ScanAttributes(bool& isClosed)
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
        const std::uint64_t bit = std::uint64_t{1} << (m_records.attributes.back().name % 64);
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

bool DocumentScanner::ScanAttribute()
{
    const RepeatedNames::Name name = m_names.Get(m_at, m_end, m_open.size());
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
    const char* const end = m_at;
    *m_at = '\0';
    ++m_at;
    AttributeRecord& record = m_records.attributes.emplace_back();
    record.name = name.number & 0x7FFFFFFFU;
    record.isPlain = isMarked ? 0U : 1U;
    record.value = OffsetOf(value);
    record.identifier = isIdentifier ? RawIdentifier : NoIdentifier;
    if (isIdentifier && !isMarked)
        m_identifiers.Add({value, static_cast<std::size_t>(end - value)});
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
        names.push_back(m_records.attributes[index].name);
    std::sort(names.begin(), names.end());
    if (std::adjacent_find(names.begin(), names.end()) != names.end())
        m_isDoubtful = true;
}

bool DocumentScanner::ScanEndTag()
{
    ++m_at;
    const Open open = m_open.back();
    ElementRecord& record = m_records.elements[open.number];
    const auto left = static_cast<std::size_t>(m_end - m_at);
    if (left <= open.nameSize || !SameBytes(m_at, m_begin + record.nameOffset, open.nameSize, left))
        return false;
    m_at += open.nameSize;
    if (IsInName(*m_at))
        return false;
    SkipBlanks();
    if (*m_at != '>')
        return false;
    ++m_at;
    record.end = static_cast<std::uint32_t>(m_records.elements.size());
    m_open.pop_back();
    return true;
}

// A text, if there is one, and the mark behind it. Blanks count only as all that an element holds.
bool DocumentScanner::ScanContent()
{
    char* const text = m_at;
    SkipBlanks();
    const bool isText = *m_at != '<' || (m_at != text && m_at[1] == '/' && !m_open.back().hasChild);
    if (isText && !ScanText(text))
        return false;
    ++m_at;
    return ScanMark();
}

bool DocumentScanner::ScanText(char* text)
{
    bool isMarked = false;
    m_at = FindEnd<TextMarks>(text, m_end, '<', isMarked);
    if (m_at == m_end)
        return false;
    *m_at = '\0';
    Open& open = m_open.back();
    ElementRecord& record = m_records.elements[open.number];
    if (!open.hasChild && record.text == NoOffset) {
        record.text = OffsetOf(text);
        record.kind = static_cast<std::uint32_t>(isMarked ? TextKind::Raw : TextKind::Plain) & 3U;
    } else {
        AddChild();
        AddPiece(OffsetOf(text), false);
    }
    if (isMarked)
        CheckReferences(text);
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
        if (names[attributes[index].name].View() == VersionName) {
            const std::string_view value = m_begin + attributes[index].value;
            const auto tag =
                std::find(known.begin(), known.end(), std::wstring(value.begin(), value.end()));
            m_version = tag != known.end() ? *tag : std::wstring_view();
        }
    if (names[elements[0].name].View() != WideRootName || m_version.empty())
        m_isDoubtful = true;
}

// Makes the text that the innermost open element has so far a piece, since more follows.
void DocumentScanner::AddChild()
{
    Open& open = m_open.back();
    if (open.hasChild)
        return;
    open.hasChild = true;
    ElementRecord& record = m_records.elements[open.number];
    const Offset text = record.text;
    record.kind = static_cast<std::uint32_t>(TextKind::None) & 3U;
    record.text = NoOffset;
    if (text != NoOffset)
        AddPiece(text, false);
}

// Appends a piece to the text of the innermost open element.
void DocumentScanner::AddPiece(Offset text, bool isCData)
{
    const auto number = static_cast<std::uint32_t>(m_records.pieces.size());
    Open& open = m_open.back();
    ElementRecord& record = m_records.elements[open.number];
    if (record.Kind() == TextKind::None) {
        record.kind = static_cast<std::uint32_t>(TextKind::Pieces) & 3U;
        record.text = number;
    } else {
        m_records.pieces[open.lastPiece].next = number & 0x7FFFFFFFU;
    }
    open.lastPiece = number;
    PieceRecord& piece = m_records.pieces.emplace_back();
    piece.text = text;
    piece.next = 0;
    piece.isCData = isCData ? 1U : 0U;
}

} // namespace karmp::documents

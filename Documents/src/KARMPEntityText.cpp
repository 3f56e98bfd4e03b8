#include "KARMPEntityText.h"

#include "KARMPContentWriter.h"
#include "KARMPNumberGrid.h"
#include "KARMPTextElement.h"
#include "KARProcessServices.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <stdexcept>

namespace karmp::documents {

namespace {

// Below this quotient the units of the grid are counted exactly, and a decimal number of that many
// digits is the shortest form of the double nearest to it.
constexpr double MostUnits = 999'999'999'999'999.0;
constexpr double UnitsInOne = 1e12;
constexpr double LeastPlain = 1e-3;

} // namespace

EntityText::EntityText(ByteBuffer& out, bool isExact)
    : m_out(out),
      m_isExact(isExact || KARGetEnv("SERIALIZATION_PRECISION") != nullptr),
      m_top(m_places.data())
{
    for (Place& place : m_places)
        place.text = this;
}

EntityText::Name EntityText::MakeName(std::wstring_view name)
{
    std::string bytes;
    AppendUtf8(bytes, name);
    if (bytes.size() > LongestName)
        throw std::length_error("KARMP document: a name of a class is too long");
    Name made;
    made.literal = name;
    made.isPlain = IsXmlName(name);
    made.size = bytes.size();
    std::copy(bytes.begin(), bytes.end(), made.bytes.begin());
    return made;
}

EntityText::Group EntityText::MakeGroup(std::span<const std::wstring_view> names)
{
    Group made;
    std::string bytes = ">";
    std::string endTag;
    for (std::size_t index = 0; index <= names.size(); ++index) {
        bytes += endTag;
        if (index < names.size()) {
            std::string name;
            AppendUtf8(name, names[index]);
            bytes += '<' + name + '>';
            endTag = "</" + name + '>';
        }
        if (bytes.size() > LongestName || names.size() > LargestGroup)
            return {};
        Piece& piece = made.pieces.emplace_back();
        piece.size = bytes.size();
        std::copy(bytes.begin(), bytes.end(), piece.bytes.begin());
        bytes.clear();
    }
    return made;
}

void EntityText::Begin(std::size_t depth)
{
    m_top = m_places.data();
    m_top->depth = depth;
    m_elementName = {};
    m_links.clear();
    m_notFinite.clear();
}

namespace {

KARStatus WriteText(const Content& content, const KARMPEntity& entity,
                    ContentWriter<TextElement>& writer, TextElement::Place* place)
{
    return WalkContent<TextElement>(
        content, content.frame.write, &entity, place, &Content::ElementOf, content.base != nullptr,
        [&](TextElement::Place* element) {
            return WriteText(content.base(), entity, writer, element);
        },
        [&](TextElement& element, bool baseFailed) {
            const std::size_t written =
                content.base == nullptr ? element.Names(content, entity) : 0;
            writer.Walk(content.items.subspan(written), element, baseFailed);
        });
}

} // namespace

KARStatus EntityText::Write(const Content& content, const KARMPEntity& entity,
                            std::wstring_view version)
{
    Place& list = m_places.front();
    ContentWriter<TextElement> writer(&entity, version);
    const KARStatus status = WriteText(content, entity, writer, &list);
    CloseTo(list);
    return status;
}

// Whether the children of an element stand on one line is known when the last one is there; until
// then numbers do. True when the child stands on the line of the element.
bool EntityText::BeginChild(Place& parent, bool isNumber)
{
    if (parent.state == State::Tag) {
        parent.tagEnd = m_out.Size();
        m_out.Put('>');
        m_groupCount = 0;
        if (isNumber) {
            parent.state = State::Group;
            ++m_groupCount;
            return true;
        }
    } else if (parent.state == State::Group) {
        Spread(parent);
    }
    parent.state = State::Lines;
    return false;
}

// Puts each child of a group on a line of its own.
void EntityText::Spread(const Place& group)
{
    std::array<std::size_t, LargestGroup> children{};
    std::size_t count = 0;
    const std::string_view text = m_out.From(group.tagEnd);
    for (std::size_t tag = text.find('<'); count < m_groupCount; tag = text.find('<', tag + 1))
        if (text[tag + 1] != '/')
            children[count++] = group.tagEnd + tag;
    const std::size_t indentation = std::min(1 + group.depth, LongestLineStart);
    std::size_t moved = count * indentation;
    for (std::size_t& offset : m_notFinite)
        offset += indentation * static_cast<std::size_t>(std::count_if(
                                    children.begin(), children.begin() + count,
                                    [offset](std::size_t begin) { return begin < offset; }));
    std::size_t end = m_out.Size();
    m_out.Insert(end, moved);
    for (std::size_t number = count; number-- > 0;) {
        const std::size_t begin = children[number];
        std::copy_backward(m_out.At(begin), m_out.At(end), m_out.At(end + moved));
        end = begin;
        moved -= indentation;
        char* const line = m_out.At(begin + moved);
        std::fill_n(line, indentation, ' ');
        *line = '\n';
    }
}

EntityText::Place& EntityText::Open(const Name& name)
{
    m_out.End(BeginTag(name, false));
    const std::size_t number = static_cast<std::size_t>(m_top - m_places.data()) + 1;
    Place& place = m_places.at(number);
    if (number == 1)
        m_elementName = name.literal;
    place.name = &name;
    place.depth = m_top->depth + 1;
    place.state = State::Tag;
    m_top = &place;
    return place;
}

void EntityText::Close()
{
    const Place& place = *m_top--;
    if (place.state == State::Tag) {
        m_out.PutPadded<2>("/>", 2);
        return;
    }
    if (place.state == State::Lines)
        m_out.End(StartLine(m_top->depth, m_out.Begin(LongestLineStart)));
    PutEndTag(*place.name);
}

// Moves an attribute that was written behind other content to its element's start tag.
void EntityText::EndLateAttribute(Place& place, std::size_t begin)
{
    const std::size_t end = m_out.Size();
    const std::size_t size = end - begin;
    m_late.assign(m_out.At(begin), size);
    char* const tagEnd = m_out.At(place.tagEnd);
    std::memmove(tagEnd + size, tagEnd, begin - place.tagEnd);
    std::memcpy(tagEnd, m_late.data(), size);
    for (std::size_t& offset : m_notFinite)
        if (offset > begin)
            offset -= begin - place.tagEnd;
        else if (offset > place.tagEnd)
            offset += size;
    place.tagEnd += size;
}

void EntityText::PutText(std::wstring_view text, TextContext context)
{
    if (!m_out.PutPlain(text))
        m_out.AppendBy([&](std::string& bytes) { AppendEscaped(bytes, text, context); });
}

// True when the first items of a content are the identifier and the name.
bool EntityText::IsNamed(const Content& content)
{
    if (&content != m_named && content.items[0].name == L"id" && content.items[1].name == L"name")
        m_named = &content;
    return &content == m_named;
}

// Puts numbers behind the start tag of the innermost element; false, with nothing put, when they do
// not stand on its line.
bool EntityText::PutGroup(std::span<const std::wstring_view> names, const double* values)
{
    const Group& group = m_groups.Of(names.data(), names.size(), [&] { return MakeGroup(names); });
    if (m_top->state != State::Tag || group.pieces.size() < 2)
        return false;
    m_top->tagEnd = m_out.Size();
    m_top->state = State::Group;
    m_groupCount = names.size();
    char* to = m_out.Begin(group.pieces.size() * (LongestName + ByteBuffer::LongestNumber));
    for (std::size_t index = 0; index < names.size(); ++index)
        to = PutDouble(values[index], Copy(group.pieces[index], to));
    m_out.End(Copy(group.pieces.back(), to));
    return true;
}

char* EntityText::PutOtherDouble(double value, char* to)
{
    to = m_isExact ? ByteBuffer::PutNumber(value, to) : PutSnapped(value, to);
    if (!std::isfinite(value))
        m_notFinite.push_back(m_out.OffsetOf(to));
    return to;
}

// The operations are those of SnapToGrid.
char* EntityText::PutSnapped(double value, char* to)
{
    const double rounded = std::fabs(value / Grid) + 0.5;
    if (!(rounded < MostUnits) || std::fabs(value) < Grid)
        return ByteBuffer::PutNumber(SnapToGrid(value), to);
    const auto units = static_cast<std::uint64_t>(rounded);
    const double snapped = static_cast<double>(units) * Grid;
    if (snapped < LeastPlain || static_cast<double>(units) / UnitsInOne != snapped)
        return ByteBuffer::PutNumber(value < 0 ? -snapped : snapped, to);
    if (value < 0)
        *to++ = '-';
    return ByteBuffer::PutDecimal(units, to);
}

// `start` is what stands before the attribute's value.
template <std::size_t Size>
void EntityText::PutAttribute(const char (&start)[Size], const kar::SharedText& text)
{
    const std::string_view narrow = text.Narrow();
    char* to = m_out.Begin(Size + narrow.size());
    std::memcpy(to, start, Size - 1);
    to += Size - 1;
    m_out.End(to);
    if (!text.IsNarrow() || !ByteBuffer::Narrow(narrow, to))
        return PutEscaped(text);
    to[narrow.size()] = '"';
    m_out.End(to + narrow.size() + 1);
}

void EntityText::PutEscaped(const kar::SharedText& text)
{
    const kar::SharedText::Wide wide(text);
    m_out.AppendBy(
        [&](std::string& bytes) { AppendEscaped(bytes, wide.View(), TextContext::Attribute); });
    m_out.Put('"');
}

void EntityText::PutReference(const KARMPEntity& entity, bool withName)
{
    const kar::SharedText* identifier = nullptr;
    if (!KARFailed(EntityAccess::Identifier(entity, identifier)))
        PutAttribute(" id=\"", *identifier);
    if (withName)
        PutAttribute(" name=\"", entity.getStoredName());
}

std::string PathWithin(std::string_view entity, std::size_t offset)
{
    struct Open
    {
        std::string_view name;
        std::size_t number = 0;
        std::map<std::string_view, std::size_t> children;
    };
    // What is around the entity comes first.
    std::vector<Open> open(1);
    std::vector<Open> found;
    std::string attribute;
    std::size_t kept = 0;
    const auto close = [&] {
        const std::size_t depth = open.size() - 1;
        if (depth <= kept && depth + 1 < found.size())
            found[depth].children = open[depth].children;
        kept = std::min(kept, depth - 1);
        open.pop_back();
    };
    for (std::size_t tag = entity.find('<'); tag != std::string_view::npos;
         tag = entity.find('<', tag + 1)) {
        const std::size_t end = entity.find('>', tag);
        const bool isEndTag = entity[tag + 1] == '/';
        if (!isEndTag) {
            const std::string_view name =
                entity.substr(tag + 1, entity.find_first_of(" />", tag) - tag - 1);
            open.push_back({name, ++open.back().children[name], {}});
        }
        if (found.empty() && end >= offset) {
            found = open;
            kept = open.size() - 1;
            if (tag < offset) {
                const std::size_t equals = entity.rfind("=\"", offset);
                const std::size_t blank = entity.rfind(' ', equals);
                attribute = "/@" + std::string(entity.substr(blank + 1, equals - blank - 1));
            }
        }
        if (isEndTag || entity[end - 1] == '/')
            close();
    }
    std::string path;
    for (std::size_t depth = 2; depth < found.size(); ++depth) {
        path += '/' + std::string(found[depth].name);
        if (found[depth - 1].children[found[depth].name] > 1)
            path += '[' + std::to_string(found[depth].number) + ']';
    }
    return path + attribute;
}

} // namespace karmp::documents

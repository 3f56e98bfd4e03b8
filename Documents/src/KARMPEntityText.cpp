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

const EntityText::Name& EntityText::AddName(std::wstring_view name, std::size_t slot)
{
    std::string bytes;
    AppendUtf8(bytes, name);
    if (bytes.size() > LongestName || m_known.size() >= SlotCount / 2)
        throw std::length_error("KARMP document: a name of a class is too long");
    Name& known = m_known.emplace_back();
    known.isPlain = IsXmlName(name);
    known.address = name.data();
    known.length = name.size();
    known.size = bytes.size();
    std::copy(bytes.begin(), bytes.end(), known.bytes.begin());
    m_names[slot] = &known;
    return known;
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

KARStatus WriteText(const Content& content, const KARMPEntity& entity, std::wstring_view version,
                    TextElement::Place* place)
{
    return WalkContent<TextElement>(
        content, content.frame.write, &entity, place, &Content::ElementOf, content.base != nullptr,
        [&](TextElement::Place* element) {
            return WriteText(content.base(), entity, version, element);
        },
        [&](TextElement& element, bool baseFailed) {
            const std::size_t written =
                content.base == nullptr ? element.Names(content, entity) : 0;
            ContentWriter<TextElement>(&entity, version)
                .Walk(content.items.subspan(written), element, baseFailed);
        });
}

} // namespace

KARStatus EntityText::Write(const Content& content, const KARMPEntity& entity,
                            std::wstring_view version)
{
    Place& list = m_places.front();
    const KARStatus status = WriteText(content, entity, version, &list);
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
            m_group[m_groupCount++] = m_out.Size();
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
    const std::size_t indentation = std::min(1 + group.depth, LongestLineStart);
    std::size_t moved = m_groupCount * indentation;
    for (std::size_t& offset : m_notFinite)
        offset += indentation * static_cast<std::size_t>(std::count_if(
                                    m_group.begin(), m_group.begin() + m_groupCount,
                                    [offset](std::size_t begin) { return begin < offset; }));
    std::size_t end = m_out.Size();
    m_out.Insert(end, moved);
    for (std::size_t number = m_groupCount; number-- > 0;) {
        const std::size_t begin = m_group[number];
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
    BeginTag(name, false);
    const std::size_t number = static_cast<std::size_t>(m_top - m_places.data()) + 1;
    Place& place = m_places.at(number);
    if (number == 1)
        m_elementName = {name.address, name.length};
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
    for (std::size_t number = 0; number < m_groupCount; ++number)
        m_group[number] += size;
    place.tagEnd += size;
}

void EntityText::PutText(std::wstring_view text, TextContext context)
{
    if (!m_out.PutPlain(text))
        m_out.AppendBy([&](std::string& bytes) { AppendEscaped(bytes, text, context); });
}

// Most numbers of a model are 0 and 1, and stay so on the grid; a negative zero does not.
void EntityText::PutDouble(double value)
{
    if (value == 0.0 && (!m_isExact || !std::signbit(value)))
        m_out.Put('0');
    else if (value == 1.0)
        m_out.Put('1');
    else if (m_isExact)
        m_out.PutNumber(value);
    else
        PutSnapped(value);
    if (!std::isfinite(value))
        m_notFinite.push_back(m_out.Size());
}

// The operations are those of SnapToGrid.
void EntityText::PutSnapped(double value)
{
    const double rounded = std::fabs(value / Grid) + 0.5;
    if (!(rounded < MostUnits) || std::fabs(value) < Grid) {
        m_out.PutNumber(SnapToGrid(value));
        return;
    }
    const auto units = static_cast<std::uint64_t>(rounded);
    const double snapped = static_cast<double>(units) * Grid;
    if (snapped >= LeastPlain && static_cast<double>(units) / UnitsInOne == snapped) {
        if (value < 0)
            m_out.Put('-');
        m_out.PutDecimal(units);
    } else {
        m_out.PutNumber(value < 0 ? -snapped : snapped);
    }
}

void EntityText::PutStored(const kar::SharedText& text)
{
    if (text.IsNarrow() && m_out.PutPlain(text.Narrow()))
        return;
    const kar::SharedText::Wide wide(text);
    m_out.AppendBy(
        [&](std::string& bytes) { AppendEscaped(bytes, wide.View(), TextContext::Attribute); });
}

void EntityText::PutReference(const KARMPEntity& entity, bool withName)
{
    const kar::SharedText* identifier = nullptr;
    if (!KARFailed(EntityAccess::Identifier(entity, identifier))) {
        m_out.PutPadded<5>(" id=\"", 5);
        PutStored(*identifier);
        m_out.Put('"');
    }
    if (withName) {
        m_out.PutPadded<7>(" name=\"", 7);
        PutStored(entity.getStoredName());
        m_out.Put('"');
    }
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

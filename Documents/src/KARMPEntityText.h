#pragma once

#include "KARMPByteBuffer.h"
#include "KARMPTextEscapes.h"
#include "KARStatus.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

class KARMPEntity;

namespace kar {
class SharedText;
}
namespace karmp {
struct Content;
struct Item;
} // namespace karmp

namespace karmp::documents {

/// A link of an entity that was written: the item and the target.
struct WrittenLink
{
    const Item* item;
    const KARMPEntity* target;
};
using WrittenLinks = std::vector<WrittenLink>;

/// The text of entities, written by the lists of their contents without nodes: elements come in the
/// order of the document. The text is the one that XmlRenderer makes of the nodes of the same
/// content.
class EntityText
{
public:
    /// Doubles are kept as they are when `isExact`, otherwise snapped as by a tree.
    EntityText(ByteBuffer& out, bool isExact);
    EntityText(const EntityText&) = delete;
    EntityText& operator=(const EntityText&) = delete;

    /// The deepest element and the longest name of an entity.
    static constexpr std::size_t LargestDepth = 24;
    static constexpr std::size_t LongestName = 64;

    /// Begins the text of an entity whose element is at a depth.
    void Begin(std::size_t depth);
    /// Appends an entity whose class has the content, and gives the status of writing it.
    KARStatus Write(const Content& content, const KARMPEntity& entity, std::wstring_view version);
    /// The name of the element that was written; empty when there is none.
    std::wstring_view ElementName() const { return m_elementName; }
    /// The links of the entity, in the order of their items.
    const WrittenLinks& Links() const { return m_links; }
    /// The offsets behind the numbers of the entity that are not finite.
    const std::vector<std::size_t>& NotFinite() const { return m_notFinite; }

private:
    friend class TextElement;

    /// A name or a word in bytes. They are literals of content lists, so that the address tells
    /// one; a plain one is text as it is.
    struct Name
    {
        const wchar_t* address = nullptr;
        std::size_t length = 0;
        std::size_t size = 0;
        bool isPlain = false;
        std::array<char, LongestName> bytes{};
    };
    enum class State : std::uint8_t {
        Tag,   ///< The start tag is open.
        Value, ///< There is a value and no child yet.
        Group, ///< All children are numbers and stand on one line, unless others follow.
        Lines  ///< Each child is on a line of its own.
    };
    /// An open element; the first one is the list that the entity is in.
    struct Place
    {
        EntityText* text = nullptr;
        const Name* name = nullptr;
        std::size_t depth = 0;
        std::size_t tagEnd = 0;
        State state = State::Lines;
    };
    /// An axis system is the largest group of numbers on one line.
    static constexpr std::size_t LargestGroup = 12;
    static constexpr std::size_t SlotCount = 1024;
    /// Deeper elements are not indented further.
    static constexpr std::size_t LongestLineStart = 101;
    static constexpr std::array<char, LongestLineStart> LineStart = [] {
        std::array<char, LongestLineStart> line{};
        line.fill(' ');
        line.front() = '\n';
        return line;
    }();

    const Name& NameOf(std::wstring_view name)
    {
        std::size_t slot = (reinterpret_cast<std::uintptr_t>(name.data()) >> 2U) % SlotCount;
        for (; m_names[slot] != nullptr; slot = (slot + 1) % SlotCount)
            if (m_names[slot]->address == name.data() && m_names[slot]->length == name.size())
                return *m_names[slot];
        return AddName(name, slot);
    }
    const Name& AddName(std::wstring_view name, std::size_t slot);
    static char* Copy(const Name& name, char* to)
    {
        constexpr std::size_t usual = 32;
        std::memcpy(to, name.bytes.data(), usual);
        if (name.size > usual)
            std::memcpy(to + usual, name.bytes.data() + usual, LongestName - usual);
        return to + name.size;
    }
    void PutName(const Name& name) { m_out.End(Copy(name, m_out.Begin(LongestName))); }
    void PutEndTag(const Name& name)
    {
        char* to = m_out.Begin(LongestName + 3);
        *to++ = '<';
        *to++ = '/';
        to = Copy(name, to);
        *to++ = '>';
        m_out.End(to);
    }

    /// Closes what is open within an element.
    void CloseTo(const Place& place)
    {
        while (m_top != &place)
            Close();
    }
    void Close();
    /// Begins a child element of the innermost one: its start tag without attributes.
    void BeginTag(const Name& name, bool isNumber)
    {
        const Place& parent = *m_top;
        bool isOnLine = false;
        if (parent.state == State::Group && isNumber && m_groupCount < LargestGroup) {
            m_group[m_groupCount++] = m_out.Size();
            isOnLine = true;
        } else if (parent.state != State::Lines) {
            isOnLine = BeginChild(*m_top, isNumber);
        }
        char* to = m_out.Begin(LongestLineStart + LongestName + 1);
        if (!isOnLine)
            to = StartLine(parent.depth, to);
        *to++ = '<';
        m_out.End(Copy(name, to));
    }
    /// Begins a line at the indentation of the children of an element at a depth.
    static char* StartLine(std::size_t depth, char* to)
    {
        constexpr std::size_t usual = 16;
        const std::size_t size = 1 + std::min(depth, LongestLineStart - 1);
        std::memcpy(to, LineStart.data(), usual);
        if (size > usual)
            std::memcpy(to + usual, LineStart.data() + usual, size - usual);
        return to + size;
    }
    bool BeginChild(Place& parent, bool isNumber);
    Place& Open(const Name& name);
    void Spread(const Place& group);
    void BeginAttribute(const Name& name)
    {
        m_out.Put(' ');
        PutName(name);
        m_out.PutPadded<2>("=\"", 2);
    }
    void EndLateAttribute(Place& place, std::size_t begin);

    void PutText(std::wstring_view text, TextContext context);
    void PutBool(bool value) { m_out.Put(value ? std::string_view("true") : "false"); }
    void PutDouble(double value);
    void PutSnapped(double value);
    void PutStored(const kar::SharedText& text);
    void PutReference(const KARMPEntity& entity, bool withName);

    ByteBuffer& m_out;
    const bool m_isExact;
    std::array<Place, LargestDepth> m_places;
    Place* m_top;
    std::array<const Name*, SlotCount> m_names{};
    std::deque<Name> m_known;
    std::array<std::size_t, LargestGroup> m_group{};
    std::size_t m_groupCount = 0;
    /// Keeps its capacity from one late attribute to the next.
    std::string m_late;
    std::wstring_view m_elementName;
    WrittenLinks m_links;
    std::vector<std::size_t> m_notFinite;
};

/// The path of the value that ends at an offset in the text of an entity, below the entity's own
/// element: names, each with "/" before it.
std::string PathWithin(std::string_view entity, std::size_t offset);

} // namespace karmp::documents

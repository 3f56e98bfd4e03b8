#pragma once

#include "KARMPByteBuffer.h"
#include "KARMPTextEscapes.h"
#include "KARStatus.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <span>
#include <stdexcept>
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

    /// Bytes that are ready to be copied.
    struct Piece
    {
        std::size_t size = 0;
        std::array<char, LongestName> bytes{};
    };
    /// A name or a word in bytes; a plain one is text as it is.
    struct Name : Piece
    {
        std::wstring_view literal;
        bool isPlain = false;
    };
    /// The elements of numbers on one line but for the numbers: what is before each, and after the
    /// last one. There is nothing where that does not fit pieces.
    struct Group
    {
        std::vector<Piece> pieces;
    };
    /// What was made of names, which are literals of content lists, so that the address tells one.
    template <class Made>
    class LiteralTable
    {
    public:
        template <class Char, class Make>
        const Made& Of(const Char* literal, std::size_t length, Make make)
        {
            std::size_t slot = (reinterpret_cast<std::uintptr_t>(literal) >> 2U) % SlotCount;
            for (; m_slots[slot].made != nullptr; slot = (slot + 1) % SlotCount)
                if (m_slots[slot].literal == literal && m_slots[slot].length == length)
                    return *m_slots[slot].made;
            if (m_made.size() >= SlotCount / 2)
                throw std::length_error("KARMP document: too many names in content lists");
            m_made.push_back(make());
            m_slots[slot] = {literal, length, &m_made.back()};
            return m_made.back();
        }

    private:
        struct Slot
        {
            const void* literal = nullptr;
            std::size_t length = 0;
            const Made* made = nullptr;
        };
        static constexpr std::size_t SlotCount = 1024;

        std::array<Slot, SlotCount> m_slots{};
        std::deque<Made> m_made;
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
        return m_names.Of(
            name.data(), name.size(), [&] { return MakeName(name); });
    }
    static Name MakeName(std::wstring_view name);
    static Group MakeGroup(std::span<const std::wstring_view> names);
    static char* Copy(const Piece& piece, char* to)
    {
        constexpr std::size_t usual = 32;
        std::memcpy(to, piece.bytes.data(), usual);
        if (piece.size > usual)
            std::memcpy(to + usual, piece.bytes.data() + usual, LongestName - usual);
        return to + piece.size;
    }
    void PutName(const Name& name) { m_out.End(Copy(name, m_out.Begin(LongestName))); }
    static char* PutEndTag(const Name& name, char* to)
    {
        *to++ = '<';
        *to++ = '/';
        to = Copy(name, to);
        *to++ = '>';
        return to;
    }
    void PutEndTag(const Name& name) { m_out.End(PutEndTag(name, m_out.Begin(LongestName + 3))); }

    /// Closes what is open within an element.
    void CloseTo(const Place& place)
    {
        while (m_top != &place)
            Close();
    }
    void Close();
    /// Puts the start tag of a child of the innermost element without attributes. Gives its end,
    /// behind which there is capacity for a number and an end tag.
    char* BeginTag(const Name& name, bool isNumber)
    {
        const Place& parent = *m_top;
        bool isOnLine = false;
        if (parent.state == State::Group && isNumber && m_groupCount < LargestGroup) {
            ++m_groupCount;
            isOnLine = true;
        } else if (parent.state != State::Lines) {
            isOnLine = BeginChild(*m_top, isNumber);
        }
        char* to = m_out.Begin(LongestLineStart + 2 * LongestName + 5 + ByteBuffer::LongestNumber);
        if (!isOnLine)
            to = StartLine(parent.depth, to);
        *to++ = '<';
        return Copy(name, to);
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
    bool IsNamed(const Content& content);
    bool PutGroup(std::span<const std::wstring_view> names, const double* values);
    // Most numbers of a model are 0 and 1, and stay so on the grid; a negative zero does not.
    char* PutDouble(double value, char* to)
    {
        if ((value == 0.0 && !(m_isExact && std::signbit(value))) || value == 1.0) {
            *to = value == 0.0 ? '0' : '1';
            return to + 1;
        }
        return PutOtherDouble(value, to);
    }
    char* PutOtherDouble(double value, char* to);
    static char* PutSnapped(double value, char* to);
    template <std::size_t Size>
    void PutAttribute(const char (&start)[Size], const kar::SharedText& text);
    void PutEscaped(const kar::SharedText& text);
    void PutReference(const KARMPEntity& entity, bool withName);

    ByteBuffer& m_out;
    const bool m_isExact;
    std::array<Place, LargestDepth> m_places;
    Place* m_top;
    LiteralTable<Name> m_names;
    LiteralTable<Group> m_groups;
    std::size_t m_groupCount = 0;
    /// Keeps its capacity from one late attribute to the next.
    std::string m_late;
    std::wstring_view m_elementName;
    WrittenLinks m_links;
    const Content* m_named = nullptr;
    std::vector<std::size_t> m_notFinite;
};

/// The path of the value that ends at an offset in the text of an entity, below the entity's own
/// element: names, each with "/" before it.
std::string PathWithin(std::string_view entity, std::size_t offset);

} // namespace karmp::documents

// The records of a document's elements, attributes and texts, from which content is read, and the
// nodes of its tree are filled where they are asked for.
#pragma once

#include "KARMPRecordedNames.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace karmp {

/// An offset in the bytes of a document, which are fewer than 4 GiB.
using Offset = std::uint32_t;
/// The offset of an empty text.
constexpr Offset NoOffset = 0xFFFFFFFFU;
/// What stands for the number of an identifier that has none.
constexpr std::uint32_t NoIdentifier = 0xFFFFFFFFU;
constexpr std::uint32_t RawIdentifier = 0xFFFFFFFEU;

/// How the text of an element is kept.
enum class TextKind : std::uint8_t {
    None,  ///< There is none, only elements.
    Plain, ///< The bytes up to a null are the text; there are no elements.
    Raw,   ///< The bytes up to a null have to be decoded; there are no elements.
    Pieces ///< A linked list of pieces, mostly between elements.
};

/// An element. Words in place of bit-fields: what is stored in a part of a word and loaded with the
/// rest soon after waits for the store.
struct ElementRecord
{
    /// The kind of the text in the highest bits.
    std::uint32_t nameAndKind = 0;
    /// The offset of the name.
    Offset nameOffset;
    /// The end of the element's subtree: the index of the next element of its parent, if that has
    /// more.
    std::uint32_t end;
    /// The index of the first attribute; those of the next element begin where these end.
    std::uint32_t attributes;
    /// The offset of the text, or the index of its first piece.
    std::uint32_t text;

    static constexpr unsigned NameBits = 30;

    /// The number of the name.
    std::uint32_t Name() const { return nameAndKind & ((1U << NameBits) - 1); }
    TextKind Kind() const { return static_cast<TextKind>(nameAndKind >> NameBits); }
    void SetKind(TextKind kind)
    {
        nameAndKind = Name() | static_cast<std::uint32_t>(kind) << NameBits;
    }
};

/// An attribute.
struct AttributeRecord
{
    /// The number of the name, with the highest bit when the value has to be decoded.
    std::uint32_t nameAndRaw;
    Offset value;
    /// The number of the identifier that the value is; RawIdentifier for one that has to be
    /// decoded, NoIdentifier for an attribute of another name.
    std::uint32_t identifier;

    static constexpr std::uint32_t Raw = 1U << 31U;

    std::uint32_t Name() const { return nameAndRaw & ~Raw; }
    /// The bytes up to a null are the value.
    bool IsPlain() const { return (nameAndRaw & Raw) == 0; }
};

/// A piece of an element's text, between two of its children or a CDATA section.
struct PieceRecord
{
    Offset text;
    /// The index of the element's next piece, 0 for none.
    std::uint32_t next : 31;
    std::uint32_t isCData : 1;
};

/// All records of a document, in document order; they refer to each other, and to names, by index.
/// The root has index 0; a last element record without an element ends the attributes.
struct DocumentRecords
{
    std::vector<ElementRecord> elements;
    std::vector<AttributeRecord> attributes;
    std::vector<PieceRecord> pieces;
    RecordedNames names;
    /// How many numbers of identifiers there are, from 0.
    std::uint32_t identifiers = 0;
    /// The element that was last found to be simple by RecordElement.
    mutable std::uint32_t lastSimple = 0;
};

/// An element of a document in its records; none when `records` is null.
struct RecordedElement
{
    const DocumentRecords* records = nullptr;
    /// The bytes that offsets count from.
    const char* bytes = nullptr;
    std::uint32_t number = 0;
};

/// The last identifier of an element; null when it has none.
inline const AttributeRecord* IdentifierOf(const RecordedElement& element)
{
    const ElementRecord* const record = element.records->elements.data() + element.number;
    for (std::uint32_t index = record[1].attributes; index != record->attributes;)
        if (element.records->attributes[--index].identifier != NoIdentifier)
            return &element.records->attributes[index];
    return nullptr;
}

} // namespace karmp

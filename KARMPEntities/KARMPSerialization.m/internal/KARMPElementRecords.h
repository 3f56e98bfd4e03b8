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

/// An element.
struct ElementRecord
{
    std::uint32_t name : 30;
    std::uint32_t kind : 2;
    /// The offset of the name.
    Offset nameOffset;
    /// The end of the element's subtree: the index of the next element of its parent, if that has
    /// more.
    std::uint32_t end;
    /// The index of the first attribute; those of the next element begin where these end.
    std::uint32_t attributes;
    /// The offset of the text, or the index of its first piece.
    std::uint32_t text;

    TextKind Kind() const { return static_cast<TextKind>(kind); }
};

/// An attribute.
struct AttributeRecord
{
    std::uint32_t name : 31;
    /// 1 when the bytes up to a null are the value, 0 when they have to be decoded.
    std::uint32_t isPlain : 1;
    Offset value;
    /// The number of the identifier that the value is; RawIdentifier for one that has to be
    /// decoded, NoIdentifier for an attribute of another name.
    std::uint32_t identifier;
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

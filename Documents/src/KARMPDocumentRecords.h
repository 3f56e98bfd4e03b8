// The elements of a document in their order, each in a record: what the nodes of its tree are made
// from.
#pragma once

#include "KARMPNodeStorage.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace karmp::documents {

/// The number of elements above an entity's: the root, the world and a family's list.
constexpr unsigned EntityDepth = 3;

/// A place in the bytes of a document, which are fewer than 4 GiB.
using Offset = std::uint32_t;
/// The place of an empty text.
constexpr Offset NoOffset = 0xFFFFFFFFU;

/// How the text of an element is kept.
enum class TextKind : std::uint8_t {
    None,  ///< Elements alone.
    Plain, ///< The bytes up to a null are the text; there are no elements.
    Raw,   ///< The bytes up to a null have to be decoded; there are no elements.
    Pieces ///< A list of pieces, mostly between elements.
};

struct ElementRecord
{
    std::uint32_t name : 30;
    std::uint32_t kind : 2;
    /// Of the name.
    Offset place;
    /// The element behind this one and all below it: the next one of its parent, if that has more.
    std::uint32_t behind;
    /// The first attribute; the next record tells the one behind the last.
    std::uint32_t attributes;
    /// The place of the text, or its first piece.
    std::uint32_t text;

    TextKind Kind() const { return static_cast<TextKind>(kind); }
};

struct AttributeRecord
{
    std::uint32_t name : 31;
    /// The bytes up to a null are the value.
    std::uint32_t isPlain : 1;
    Offset value;
};

struct PieceRecord
{
    Offset text;
    /// The next piece of the element, 0 for none.
    std::uint32_t next : 31;
    std::uint32_t isCData : 1;
};

/// Records are found by their numbers, in the order of the document, the root's being 0.
struct DocumentRecords
{
    std::vector<ElementRecord> elements;
    std::vector<AttributeRecord> attributes;
    std::vector<PieceRecord> pieces;
    std::vector<NodeText> names;
};

} // namespace karmp::documents

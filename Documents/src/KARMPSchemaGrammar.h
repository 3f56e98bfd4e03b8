// The grammar of documents as RELAX NG knows it, apart from its two syntaxes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace karmp::documents {

/// A pattern of RELAX NG.
struct Pattern
{
    enum class Kind {
        Element,    ///< An element `name`, or any when that is empty, around the one child.
        Attribute,  ///< The same of an attribute.
        Group,      ///< The children one after the other.
        Interleave, ///< The children in any order.
        Choice,     ///< One of the children.
        Optional,   ///< The child or nothing.
        ZeroOrMore, ///< The child any number of times.
        OneOrMore,  ///< The child at least once.
        Text,       ///< Any text.
        Empty,      ///< Nothing.
        Value,      ///< The text `name`.
        Data,       ///< A text that the regular expression `name` describes.
        Reference   ///< The definition `name`.
    };
    Kind kind = Kind::Empty;
    std::string name;
    std::vector<Pattern> children = {};
    /// A sentence for people.
    std::string says = {};
};

/// A named pattern.
struct Definition
{
    std::string name;
    Pattern pattern;
};

/// A grammar; the first definition is where it starts.
std::vector<Definition> MakeGrammar(std::wstring_view version);

} // namespace karmp::documents

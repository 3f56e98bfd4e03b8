#pragma once

#include "KARMPDocumentDiagnostics.h"
#include "KARMPSchema.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace karmp::documents {

/// What is wrong with the text of an item.
struct ValueFault
{
    Severity severity;
    Code code;
    /// One sentence on what was read and what was expected.
    std::string text;
};

/// What is wrong with a text, of an element or of an attribute, for an item of any kind; empty when
/// nothing is.
std::optional<ValueFault> FaultOf(const SchemaItem& item, std::wstring_view text);

/// " (did you mean "word"?)" for the nearest of some words, empty when none is near.
std::string Suggestion(std::wstring_view word, const std::vector<std::wstring_view>& candidates);
/// The same for a word that is the nearest, empty for none.
std::string Suggestion(std::wstring_view nearest);

} // namespace karmp::documents

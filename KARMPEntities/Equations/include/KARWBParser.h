#pragma once

#include "KARPlatformExport.h"
#include "KARStatus.h"

#include <cstddef>
#include <string_view>

class KARCDSIntArray;
class KARWBBlackBoxList;
class KARWBModel;
class KARWBParserMessenger;

/// Turns text into equations; docs/equations.md tells the language.
class KAR_API KARWBParser
{
public:
    /// Longest text that is parsed, in bytes.
    static constexpr std::size_t MaxTextLength = std::size_t{64} << 20;

    /// Parses the equations of a terminated text into the model, replacing its content, and fills
    /// `ids` with their indices in the model. Returns 0, or a failure with errors in the messenger,
    /// an empty model and empty ids: after an error in the text, a null text, or black boxes given
    /// (the language has none). Parsing goes on behind the next `;` so that all errors show.
    static KARStatus Parse(const char* text, KARWBModel& model, KARCDSIntArray& ids,
                           KARWBParserMessenger& messenger, const KARWBBlackBoxList* blackBoxes);

    /// The same with a text of any bytes.
    static KARStatus Parse(std::string_view text, KARWBModel& model, KARCDSIntArray& ids,
                           KARWBParserMessenger& messenger, const KARWBBlackBoxList* blackBoxes);
};

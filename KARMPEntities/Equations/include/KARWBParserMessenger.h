#pragma once

#include "KARCDSString.h"
#include "KARPlatformExport.h"

#include <string>
#include <string_view>
#include <vector>

/// One error: the line and the column it stands at, both counted from 1, and a sentence in English.
struct KARWBParserError
{
    int line = 1;
    int column = 1;
    KARCDSString text;
};

/// Collects what a parser reports about a text: the errors, each with its line and column.
class KAR_API KARWBParserMessenger
{
public:
    /// Errors of one text beyond this number are dropped by the parser.
    static constexpr int MaxErrorsPerText = 100;

    /// Adds an error at a line and a column, both counted from 1.
    void AddError(int line, int column, std::string_view text);

    /// Number of errors collected since the last `Clear`.
    int GetNbOfErrors() const { return static_cast<int>(m_errors.size()); }

    /// The error at an index from 0, in the order found; throws `std::out_of_range` outside.
    const KARWBParserError& GetError(int index) const;

    /// All errors, one a line, as "line:column: text".
    std::string GetText() const;

    /// Forgets all errors.
    void Clear() { m_errors.clear(); }

private:
    std::vector<KARWBParserError> m_errors;
};

#pragma once

#include "KARPlatformExport.h"
#include "KARStatus.h"

class KARCDSString;
class KARWBEquation;

/// Turns an equation into text of the language.
class KAR_API KARWBEquationPrinter
{
public:
    /// Renders the equation with as few parentheses as the tree allows. Parsing the text gives the
    /// same tree again; it holds printable ASCII characters only. Returns 0, or a failure and an
    /// empty text if the equation is null or not complete.
    static KARStatus Print(const KARWBEquation* equation, KARCDSString& text);
};

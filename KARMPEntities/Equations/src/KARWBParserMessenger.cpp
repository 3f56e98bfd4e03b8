#include "KARWBParserMessenger.h"

void KARWBParserMessenger::AddError(int line, int column, std::string_view text)
{
    m_errors.push_back({line, column, KARCDSString(text)});
}

const KARWBParserError& KARWBParserMessenger::GetError(int index) const
{
    return m_errors.at(static_cast<std::size_t>(index));
}

std::string KARWBParserMessenger::GetText() const
{
    std::string text;
    for (const KARWBParserError& error : m_errors) {
        text += std::to_string(error.line) + ":" + std::to_string(error.column) + ": ";
        text += error.text;
        text += '\n';
    }
    return text;
}

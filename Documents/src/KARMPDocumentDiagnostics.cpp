#include "KARMPDocumentDiagnostics.h"

#include "KARMPMessages.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace karmp::documents {

std::string_view SeverityText(Severity severity)
{
    return severity == Severity::Error ? "error" : "warning";
}

bool LosesContent(const Diagnostic& diagnostic)
{
    switch (diagnostic.code) {
    case Code::UnknownElement:
    case Code::UnknownAttribute:
    case Code::UnexpectedText:
    case Code::OtherVersion:
    case Code::InvalidValue:
    case Code::DuplicateElement:
    case Code::NotKept:
        return true;
    default:
        return diagnostic.severity == Severity::Error;
    }
}

std::string Format(const Diagnostic& diagnostic)
{
    std::string text = diagnostic.file;
    if (diagnostic.line != 0) {
        text += ':';
        text += std::to_string(diagnostic.line);
        if (diagnostic.column != 0) {
            text += ':';
            text += std::to_string(diagnostic.column);
        }
    }
    if (!text.empty())
        text += ": ";
    text += SeverityText(diagnostic.severity);
    text += ": ";
    text += diagnostic.text;
    text += " [";
    text += CodeText(diagnostic.code);
    text += ']';
    if (!diagnostic.path.empty()) {
        text += " at ";
        text += diagnostic.path;
    }
    return text;
}

std::size_t Diagnostics::Count(Severity severity) const
{
    return static_cast<std::size_t>(std::count_if(
        items.begin(), items.end(),
        [severity](const Diagnostic& item) { return item.severity == severity; }));
}

const Diagnostic* Diagnostics::Find(Code code) const
{
    const auto found = std::find_if(items.begin(), items.end(),
                                    [code](const Diagnostic& item) { return item.code == code; });
    return found != items.end() ? &*found : nullptr;
}

void Diagnostics::Append(Diagnostics further)
{
    std::move(further.items.begin(), further.items.end(), std::back_inserter(items));
}

void Messages::Add(Severity severity, Code code, std::string text, std::string path,
                   std::size_t line, std::size_t column)
{
    if (Full())
        return;
    if (m_target.items.size() == m_limit) {
        m_target.items.push_back({Severity::Error,
                                  Code::TooManyDiagnostics,
                                  m_name,
                                  0,
                                  0,
                                  {},
                                  "too many messages; the rest is not shown"});
        return;
    }
    m_target.items.push_back(
        {severity, code, m_name, line, column, std::move(path), std::move(text)});
}

} // namespace karmp::documents

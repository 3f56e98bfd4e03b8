#pragma once

#include "KARMPDocumentDiagnostics.h"

#include <string>
#include <utility>

namespace karmp::documents {

/// Collects the messages of one operation up to the limit.
class Messages
{
public:
    /// Collects into `target`, whose messages are about the file or text `name`.
    Messages(Diagnostics& target, std::string name, std::size_t limit)
        : m_target(target), m_name(std::move(name)), m_limit(limit)
    {}

    /// True when further messages are dropped, so that they need not be composed.
    bool Full() const { return m_target.items.size() > m_limit; }
    void Add(Severity severity, Code code, std::string text, std::string path = {},
             std::size_t line = 0, std::size_t column = 0);
    void Error(Code code, std::string text, std::string path = {}, std::size_t line = 0,
               std::size_t column = 0)
    {
        Add(Severity::Error, code, std::move(text), std::move(path), line, column);
    }
    void Warning(Code code, std::string text, std::string path = {}, std::size_t line = 0,
                 std::size_t column = 0)
    {
        Add(Severity::Warning, code, std::move(text), std::move(path), line, column);
    }

private:
    Diagnostics& m_target;
    std::string m_name;
    std::size_t m_limit;
};

} // namespace karmp::documents

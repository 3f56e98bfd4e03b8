#include "KARMPModelResult.h"

#include "KARMPModelRef.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string_view>

namespace karmp::model {

void StopAtFalseRef(bool wasDeleted)
{
    std::fputs(wasDeleted ? "karmp::model: a reference to a deleted entity was used\n"
                          : "karmp::model: a reference to no entity was used\n",
               stderr);
    std::abort();
}

void StopAtMovedModel()
{
    std::fputs("karmp::model: a model was used that was moved from\n", stderr);
    std::abort();
}

void StopAtFailure(const Problem& problem)
{
    std::fprintf(stderr, "karmp::model: the value of a call that failed was used; %s\n",
                 Format(problem).c_str());
    std::abort();
}

std::string Format(const Problem& problem)
{
    const std::string_view file = problem.where.file;
    const std::size_t slash = file.find_last_of("/\\");
    std::string text(slash == std::string_view::npos ? file : file.substr(slash + 1));
    if (!text.empty())
        text += ':' + std::to_string(problem.where.line) + ": ";
    return text + problem.text;
}

const Problem& Outcome::Error() const
{
    static const Problem none{{}, KARSuccess, {"", 0}};
    return m_problem ? *m_problem : none;
}

Outcome Outcome::AsFailure(Outcome outcome)
{
    if (!outcome.m_problem)
        outcome.m_problem = Problem{"the call gives no value", KARFailure, {"", 0}};
    return outcome;
}

int Outcome::Report() const
{
    return Report(std::cerr);
}

int Outcome::Report(std::ostream& stream) const
{
    for (const documents::Diagnostic& finding : m_findings.items)
        stream << documents::Format(finding) << '\n';
    if (m_problem)
        stream << Format(*m_problem) << '\n';
    return m_problem ? 1 : 0;
}

} // namespace karmp::model

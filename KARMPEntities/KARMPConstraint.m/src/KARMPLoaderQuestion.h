// How a constraint puts a question to its loader.
#pragma once

#include "KARMPFailedCheck.h"
#include "KARStatus.h"

namespace karmp {

/// Returns what `ask` returns with the loader that the constraint's typed GetLoader gives, and
/// `otherwise` without one. A failing GetLoader is a failed check.
template <class Loader, class Constraint, class Answer, class Ask>
Answer AskLoader(const Constraint& constraint, Answer otherwise, Ask ask,
                 KARMPSourceLocation where = KARMPSourceLocation::current())
{
    Loader* loader = nullptr;
    if (!KARMPVerify(!KARFailed(constraint.GetLoader(loader)), where))
        return otherwise;
    return loader != nullptr ? ask(*loader) : otherwise;
}

} // namespace karmp

// Errors as values: what went wrong in a call, and results that hold a value or that.
#pragma once

#include "KARMPDocumentDiagnostics.h"
#include "KARMPFailedCheck.h"
#include "KARMPModelExport.h"
#include "KARStatus.h"

#include <iosfwd>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

namespace karmp::model {

/// The line of a call, by default the caller's.
using Where = KARMPSourceLocation;

/// What a call could not do.
struct Problem
{
    /// One sentence in UTF-8 that names the entities.
    std::string text;
    /// The status of the operation that failed; KARFailure when none was called.
    KARStatus status = KARFailure;
    /// The line of the call.
    Where where{"", 0};
};

/// "file:line: text", the file without its folder.
KARMP_MODEL_API std::string Format(const Problem& problem);

/// What all results have: the problem, if there is one, and what a document had to say.
class KARMP_MODEL_API Outcome
{
public:
    Outcome() = default;
    /// A failure, with what a document had to say.
    explicit Outcome(Problem problem, documents::Diagnostics findings = {})
        : m_problem(std::move(problem)), m_findings(std::move(findings))
    {}

    /// True when the call did what it says.
    bool Succeeded() const { return !m_problem.has_value(); }
    explicit operator bool() const { return Succeeded(); }
    /// The problem of a call that failed; an empty one of a call that succeeded.
    const Problem& Error() const;
    /// Warnings and errors about a document; of a call that succeeded there are warnings alone.
    const documents::Diagnostics& Findings() const { return m_findings; }
    /// Prints findings and problem, a line each, to standard error or to a stream, and returns what
    /// the program should end with: 0 after a success, 1 after a failure.
    int Report() const;
    int Report(std::ostream& stream) const;

protected:
    /// A failure, also of an outcome that succeeded, which has no value to give.
    static Outcome AsFailure(Outcome outcome);
    void Keep(documents::Diagnostics findings) { m_findings = std::move(findings); }

private:
    std::optional<Problem> m_problem;
    documents::Diagnostics m_findings;
};

/// Ends the process with a sentence: a result that failed was used as a value.
[[noreturn]] KARMP_MODEL_API void StopAtFailure(const Problem& problem);

/// A value, or the problem for which there is none. Access to the value of a failure ends the
/// process with a sentence, and with the problem.
template <class T>
class [[nodiscard]] Result : public Outcome
{
public:
    /// The value of a call that succeeded, with warnings about a document.
    Result(T value, documents::Diagnostics findings = {}) : m_value(std::move(value))
    {
        Keep(std::move(findings));
    }
    /// A failure, without a value; also where the outcome is a success, which has none.
    Result(Outcome failure) : Outcome(AsFailure(std::move(failure))) {}
    /// The result of another call is no value.
    template <class U>
    requires(!std::is_same_v<U, T>) Result(const Result<U>&)
    = delete;

    /// The value, which only a success has.
    T& operator*() & { return *Checked(*this).m_value; }
    const T& operator*() const& { return *Checked(*this).m_value; }
    T&& operator*() && { return *std::move(Checked(*this).m_value); }
    T* operator->() { return &**this; }
    const T* operator->() const { return &**this; }
    /// The value, or another one after a failure.
    T ValueOr(T other) const { return m_value.has_value() ? *m_value : std::move(other); }

private:
    template <class Self>
    static Self& Checked(Self& self)
    {
        if (!self.m_value.has_value())
            StopAtFailure(self.Error());
        return self;
    }

    std::optional<T> m_value;
};

/// The result of a call that gives nothing.
template <>
class [[nodiscard]] Result<void> : public Outcome
{
public:
    Result() = default;
    Result(Outcome outcome) : Outcome(std::move(outcome)) {}
    explicit Result(documents::Diagnostics findings) { Keep(std::move(findings)); }
};

} // namespace karmp::model

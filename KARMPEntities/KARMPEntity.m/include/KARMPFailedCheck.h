// Failed checks: how the library reports a broken expectation before it goes on with its failure
// path. In a normal run a report has no effect and costs the test of one byte.
#pragma once

#include "KARMPExport.h"

#include <atomic>
#include <cstdint>

class KARUnicodeString;

/// A location in the source, by default that of the call it is an argument of.
struct KARMPSourceLocation
{
    const char* file;
    int line;

    /// The location of this call, or of the call whose default argument it is.
    static constexpr KARMPSourceLocation current(const char* callFile = __builtin_FILE(),
                                                 int callLine = __builtin_LINE())
    {
        return {callFile, callLine};
    }
};

/// What the process does with failed checks: worked out at the first one and kept.
struct KARMP_API KARMPFailedCheckFlags
{
    /// The bits of the settings.
    enum Flag : std::uint8_t {
        Computed = 1,    ///< The next three were worked out.
        Abend = 2,       ///< "ADL_ODT_IN" is set: a report ends the process.
        Development = 4, ///< The development stage: a report is logged.
        Silenced = 8,    ///< "CP_NO_ABEND" is set: a report has no effect.
        Listened = 16    ///< At least one KARMPFailedCheckListener lives in the process.
    };

    /// The flags of this process.
    static std::atomic<std::uint8_t> s_flags;
};

/// Reports a failed check at a location in the source; returns, unless the environment asks for an
/// end of the process.
KARMP_API void KARMPReportFailedCheck(const char* message, const char* file, int line);

/// Decides on a report: nothing, log and go on, or end the process. `messageOnly` leaves message
/// and location out of the text; `fatal` ends the process whatever the stage, one thread alone.
KARMP_API void KARMPCheckFailed(const char* message, const char* file, int line, bool messageOnly,
                                bool fatal);

/// Replaces `text` with "AssertionFailed: ", the message and location unless `messageOnly`, and the
/// calling frames.
KARMP_API void KARMPBuildFailureText(const char* message, const char* file, int line,
                                     bool messageOnly, KARUnicodeString& text);

/// Ends the process with the text; one thread alone gets there, any other waits for the end.
[[noreturn]] KARMP_API void KARMPAbend(const char* file, int line, bool messageOnly,
                                       const KARUnicodeString& text);

/// Reports a failed check at the calling location when `holds` is false; returns `holds`. A helper
/// that checks on behalf of its caller passes the caller's location on.
inline bool KARMPVerify(bool holds, KARMPSourceLocation where = KARMPSourceLocation::current())
{
    if (!holds)
        KARMPReportFailedCheck("", where.file, where.line);
    return holds;
}

/// Hears the failed checks of the thread that made it, for as long as it lives.
///
/// The innermost listener of a thread hears each report first; then the report takes its ordinary
/// course. A report made while a listener is told goes to the listener around it. A listener dies
/// in the thread that made it.
class KARMP_API KARMPFailedCheckListener
{
public:
    /// Listens from now on, in front of the thread's other listeners.
    KARMPFailedCheckListener();
    /// Stops listening.
    virtual ~KARMPFailedCheckListener();
    KARMPFailedCheckListener(const KARMPFailedCheckListener&) = delete;
    KARMPFailedCheckListener& operator=(const KARMPFailedCheckListener&) = delete;

    /// Told of each report with the source path and line of the check.
    virtual void OnFailedCheck(const char* file, int line) = 0;

private:
    friend void KARMPCheckFailed(const char*, const char*, int, bool, bool);
    static void Tell(const char* file, int line);

    KARMPFailedCheckListener* m_outer;
};

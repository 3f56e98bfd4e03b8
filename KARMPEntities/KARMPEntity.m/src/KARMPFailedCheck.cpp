#include "KARMPFailedCheck.h"

#include "KARMutex.h"
#include "KARProcessServices.h"
#include "KARStackTrace.h"
#include "KARUnicodeString.h"

#include <mutex>
#include <utility>

// The text leaves the three functions of the report out of the trace, so that each keeps a frame.
#if defined(__GNUC__)
#    define KARMP_KEEP_FRAME __attribute__((noinline))
#    define KARMP_END_FRAME() __asm__ volatile("")
#else
#    define KARMP_KEEP_FRAME
#    define KARMP_END_FRAME() static_cast<void>(0)
#endif

using Flags = KARMPFailedCheckFlags;

std::atomic<std::uint8_t> KARMPFailedCheckFlags::s_flags = 0;

namespace {

constexpr int ReportFrames = 3;

thread_local KARMPFailedCheckListener* innermostListener = nullptr;

// Two threads may work the flags out at once; both arrive at the same.
std::uint8_t ComputeFlags()
{
    unsigned flags = Flags::Computed;
    if (KARDevelopmentStage(0) != 0)
        flags |= Flags::Development;
    if (KARGetEnv("ADL_ODT_IN") != nullptr)
        flags |= Flags::Abend;
    if (KARGetEnv("CP_NO_ABEND") != nullptr)
        flags |= Flags::Silenced;
    const auto computed = static_cast<std::uint8_t>(flags);
    return static_cast<std::uint8_t>(Flags::s_flags.fetch_or(computed, std::memory_order_relaxed) |
                                     computed);
}

// Keeps the flag in step with the number of listeners in all threads.
void CountListeners(int change)
{
    static std::mutex mutex;
    static int count = 0;
    const std::lock_guard lock(mutex);
    count += change;
    if (count > 0) {
        Flags::s_flags.fetch_or(Flags::Listened, std::memory_order_relaxed);
    } else {
        Flags::s_flags.fetch_and(static_cast<std::uint8_t>(~unsigned{Flags::Listened}),
                                 std::memory_order_relaxed);
    }
}

} // namespace

KARMP_KEEP_FRAME void KARMPReportFailedCheck(const char* message, const char* file, int line)
{
    KARMPCheckFailed(message, file, line, false, false);
    KARMP_END_FRAME();
}

KARMP_KEEP_FRAME void KARMPCheckFailed(const char* message, const char* file, int line,
                                       bool messageOnly, bool fatal)
{
    unsigned flags = Flags::s_flags.load(std::memory_order_relaxed);
    if ((flags & Flags::Computed) == 0)
        flags = ComputeFlags();
    if ((flags & (Flags::Abend | Flags::Development | Flags::Listened)) == 0)
        return;
    if ((flags & Flags::Listened) != 0)
        KARMPFailedCheckListener::Tell(file, line);
    if ((flags & (Flags::Abend | Flags::Development)) == 0 || (flags & Flags::Silenced) != 0)
        return;
    KARUnicodeString text;
    KARMPBuildFailureText(message, file, line, messageOnly, text);
    if (fatal)
        KARMPAbend(file, line, messageOnly, text);
    if ((flags & Flags::Abend) != 0) {
        KARFatalError(text.CastToCharPtr(), nullptr, nullptr, nullptr, messageOnly ? nullptr : file,
                      messageOnly ? 0 : line);
    }
    KARSysLogAbend(text.CastToCharPtr());
}

KARMP_KEEP_FRAME void KARMPBuildFailureText(const char* message, const char* file, int line,
                                            bool messageOnly, KARUnicodeString& text)
{
    text = "AssertionFailed: ";
    if (!messageOnly) {
        KARUnicodeString number;
        number.BuildFromNum(line, "%d");
        text.Append(message).Append("\n");
        text.Append("File: ").Append(file).Append("\n");
        text.Append("Line: ").Append(number);
    }
    text.Append("\n");

    KARStackTrace trace;
    trace.GetTrace();
    const int depth = trace.GetDepth();
    for (int frame = ReportFrames; frame < depth; ++frame) {
        char buffer[1024] = "";
        trace.Read(frame, buffer, sizeof buffer);
        text.Append(buffer).Append("\n");
    }
}

void KARMPAbend(const char* file, int line, bool messageOnly, const KARUnicodeString& text)
{
    // Held to the end: a second thread waits here while the first one ends the process.
    KARSmartMutex mutex(0);
    mutex.Lock();
    KARFatalError(text.CastToCharPtr(), nullptr, nullptr, nullptr, messageOnly ? nullptr : file,
                  messageOnly ? 0 : line);
}

KARMPFailedCheckListener::KARMPFailedCheckListener() : m_outer(innermostListener)
{
    innermostListener = this;
    CountListeners(1);
}

KARMPFailedCheckListener::~KARMPFailedCheckListener()
{
    // Usually the innermost one dies first, but nothing depends on it.
    KARMPFailedCheckListener** link = &innermostListener;
    while (*link != nullptr && *link != this)
        link = &(*link)->m_outer;
    if (*link == this)
        *link = m_outer;
    CountListeners(-1);
}

void KARMPFailedCheckListener::Tell(const char* file, int line)
{
    KARMPFailedCheckListener* const told = innermostListener;
    if (told == nullptr)
        return;
    // A report made by the listener itself goes to the one around it, which ends the recursion.
    struct Restore
    {
        KARMPFailedCheckListener* told;
        ~Restore() { innermostListener = told; }
    } restore{told};
    innermostListener = told->m_outer;
    told->OnFailedCheck(file, line);
}

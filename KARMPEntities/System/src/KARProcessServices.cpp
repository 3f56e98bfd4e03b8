#include "KARProcessServices.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace {

// Constant-initialised: failed checks may come before main.
constinit std::atomic<KARDevelopmentStageHandler> stageHandler{nullptr};
constinit std::atomic<KARFatalErrorHandler> fatalHandler{nullptr};
constinit std::atomic<KARSysLogAbendHandler> logHandler{nullptr};

void PrintToErrorStream(const char* text)
{
    std::fprintf(stderr, "%s\n", text ? text : "");
    std::fflush(stderr);
}

void PrintFatalError(const char* text, const char* path, int line)
{
    PrintToErrorStream(text);
    if (path != nullptr)
        std::fprintf(stderr, "Fatal error at %s:%d\n", path, line);
}

} // namespace

const char* KARGetEnv(const char* name)
{
    return name ? std::getenv(name) : nullptr;
}

int KARDevelopmentStage(int stage)
{
    const KARDevelopmentStageHandler handler = stageHandler.load();
    return handler ? handler(stage) : 0;
}

void KARFatalError(const char* text, const void* first, const void* second, const void* third,
                   const char* path, int line)
{
    if (const KARFatalErrorHandler handler = fatalHandler.load())
        handler(text, first, second, third, path, line);
    else
        PrintFatalError(text, path, line);
    std::abort();
}

void KARSysLogAbend(const char* text)
{
    if (const KARSysLogAbendHandler handler = logHandler.load())
        handler(text);
    else
        PrintToErrorStream(text);
}

KARDevelopmentStageHandler KARSetDevelopmentStageHandler(
    KARDevelopmentStageHandler handler) noexcept
{
    return stageHandler.exchange(handler);
}

KARFatalErrorHandler KARSetFatalErrorHandler(KARFatalErrorHandler handler) noexcept
{
    return fatalHandler.exchange(handler);
}

KARSysLogAbendHandler KARSetSysLogAbendHandler(KARSysLogAbendHandler handler) noexcept
{
    return logHandler.exchange(handler);
}

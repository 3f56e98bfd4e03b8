// What the process offers to all code: its environment, and the ways to log and to end.
#pragma once

#include "KARPlatformExport.h"

/// Gives the value of an environment variable, or null when it is not set. The text belongs to the
/// process.
KAR_API const char* KARGetEnv(const char* name);

/// Tells whether the process runs in the development stage of the given number: non-zero when it
/// does. By default it never does.
KAR_API int KARDevelopmentStage(int stage);

/// Ends the process after a fatal error. `path` and `line` say where it was found; null and 0 say
/// nothing. By default the text goes to the error stream and the process aborts. An exception that
/// the handler throws leaves this function; a handler that returns does not keep the process alive.
[[noreturn]] KAR_API void KARFatalError(const char* text, const void* first, const void* second,
                                        const void* third, const char* path, int line);

/// Logs that a check failed, and returns. By default the text goes to the error stream.
KAR_API void KARSysLogAbend(const char* text);

/// Answers KARDevelopmentStage.
using KARDevelopmentStageHandler = int (*)(int stage);
/// Takes what KARFatalError is given.
using KARFatalErrorHandler = void (*)(const char* text, const void* first, const void* second,
                                      const void* third, const char* path, int line);
/// Takes what KARSysLogAbend is given.
using KARSysLogAbendHandler = void (*)(const char* text);

/// Sets the handler for all threads and returns the previous one; null stands for the default.
KAR_API KARDevelopmentStageHandler
KARSetDevelopmentStageHandler(KARDevelopmentStageHandler handler) noexcept;
/// Sets the handler for all threads and returns the previous one; null stands for the default.
KAR_API KARFatalErrorHandler KARSetFatalErrorHandler(KARFatalErrorHandler handler) noexcept;
/// Sets the handler for all threads and returns the previous one; null stands for the default.
KAR_API KARSysLogAbendHandler KARSetSysLogAbendHandler(KARSysLogAbendHandler handler) noexcept;

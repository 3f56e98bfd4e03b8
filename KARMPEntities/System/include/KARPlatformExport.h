// Marks what the platform library exports.
#pragma once

#if defined(_WIN32)
#    if defined(KAR_PLATFORM_BUILD)
#        define KAR_API __declspec(dllexport)
#    else
#        define KAR_API __declspec(dllimport)
#    endif
#else
#    define KAR_API __attribute__((visibility("default")))
#endif

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

#if __cplusplus < 202002L && !(defined(_MSVC_LANG) && _MSVC_LANG >= 202002L)
#    error "KARMPEntities needs C++20: compile with -std=c++20 or link KARMP::KARMPEntities"
#endif

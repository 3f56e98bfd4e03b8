// Marks what the model library exports.
#pragma once

#include "KARPlatformExport.h" // refuses what is older than C++20

#if defined(_WIN32)
#    if defined(KARMP_MODEL_BUILD)
#        define KARMP_MODEL_API __declspec(dllexport)
#    else
#        define KARMP_MODEL_API __declspec(dllimport)
#    endif
#else
#    define KARMP_MODEL_API __attribute__((visibility("default")))
#endif

// Base-64 of byte arrays, with results that the caller frees.
#pragma once

#include "KARPlatformExport.h"
#include "KARStatus.h"

#include <cstdint>

/// Converter whose lengths are of 32 bits.
class KAR_API KARSysTSCodePage
{
public:
    /// Gives the null-terminated base-64 text of `count` bytes, to be freed with `free`. No bytes
    /// give the empty text. KARFailure, with a null text, when `bytes` is null and `count` is not
    /// 0, or `count` is negative; KAROutOfMemory, with a null text, when the allocation fails.
    static KARStatus ConvertToBase64(const void* bytes, std::int32_t count, char*& text);

    /// Gives the bytes of a null-terminated base-64 text, to be freed with `free`, and their
    /// number. The empty text gives no bytes, yet a pointer to free. KARFailure, with a null
    /// result and a count of 0, when the text is null, is not strict base-64 or too long;
    /// KAROutOfMemory, likewise, when the allocation fails.
    static KARStatus ConvertFromBase64(const char* text, unsigned char*& bytes,
                                       std::int32_t& count);
};

/// The same converter with lengths of 64 bits.
class KAR_API KARSysTSCodePage64
{
public:
    /// As KARSysTSCodePage::ConvertToBase64.
    static KARStatus ConvertToBase64(const void* bytes, std::uint64_t count, char*& text);
    /// As KARSysTSCodePage::ConvertFromBase64.
    static KARStatus ConvertFromBase64(const char* text, unsigned char*& bytes,
                                       std::uint64_t& count);
};

#include "KARSysTSCodePage.h"

#include "KARBase64.h"

#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

KARStatus Encode(const void* bytes, std::uint64_t count, char*& text)
{
    text = nullptr;
    if (bytes == nullptr && count != 0)
        return KARFailure;
    if (count > kar::Base64MaxBytes)
        return KAROutOfMemory;
    const auto size = static_cast<std::size_t>(count);
    const std::size_t length = kar::Base64EncodedSize(size);
    text = static_cast<char*>(std::malloc(length + 1));
    if (text == nullptr)
        return KAROutOfMemory;
    kar::Base64Encode({static_cast<const unsigned char*>(bytes), size}, text);
    text[length] = '\0';
    return KARSuccess;
}

KARStatus Decode(const char* text, std::uint64_t largest, unsigned char*& bytes,
                 std::uint64_t& count)
{
    bytes = nullptr;
    count = 0;
    if (text == nullptr)
        return KARFailure;
    const std::string_view view(text, std::strlen(text));
    std::size_t size = 0;
    if (!kar::Base64DecodedSize(view, size) || size > largest)
        return KARFailure;
    // One byte at least: an empty result is not a missing one.
    auto* decoded = static_cast<unsigned char*>(std::malloc(size != 0 ? size : 1));
    if (decoded == nullptr)
        return KAROutOfMemory;
    if (!kar::Base64Decode(view, decoded)) {
        std::free(decoded);
        return KARFailure;
    }
    bytes = decoded;
    count = size;
    return KARSuccess;
}

} // namespace

KARStatus KARSysTSCodePage::ConvertToBase64(const void* bytes, std::int32_t count, char*& text)
{
    text = nullptr;
    return count < 0 ? KARFailure : Encode(bytes, static_cast<std::uint64_t>(count), text);
}

KARStatus KARSysTSCodePage::ConvertFromBase64(const char* text, unsigned char*& bytes,
                                              std::int32_t& count)
{
    constexpr std::int32_t Largest = std::numeric_limits<std::int32_t>::max();
    std::uint64_t size = 0;
    const KARStatus status = Decode(text, Largest, bytes, size);
    count = static_cast<std::int32_t>(size);
    return status;
}

KARStatus KARSysTSCodePage64::ConvertToBase64(const void* bytes, std::uint64_t count, char*& text)
{
    return Encode(bytes, count, text);
}

KARStatus KARSysTSCodePage64::ConvertFromBase64(const char* text, unsigned char*& bytes,
                                                std::uint64_t& count)
{
    return Decode(text, std::numeric_limits<std::uint64_t>::max(), bytes, count);
}

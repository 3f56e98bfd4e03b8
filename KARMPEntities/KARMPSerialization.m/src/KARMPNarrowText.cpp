#include "KARMPNarrowText.h"

#include <climits>
#include <cwchar>

namespace karmp {

bool NarrowText(std::wstring_view text, std::string& narrow)
{
    constexpr auto failed = static_cast<std::size_t>(-1);
    char bytes[MB_LEN_MAX];
    std::mbstate_t state{};
    narrow.clear();
    narrow.reserve(text.size());
    for (const wchar_t character : text) {
        const std::size_t count = std::wcrtomb(bytes, character, &state);
        if (count == failed) {
            narrow.clear();
            return false;
        }
        narrow.append(bytes, count);
    }
    // An encoding with shift states returns to its first one; the null itself is left out.
    const std::size_t ending = std::wcrtomb(bytes, L'\0', &state);
    narrow.append(bytes, ending == failed ? 0 : ending - 1);
    return true;
}

} // namespace karmp

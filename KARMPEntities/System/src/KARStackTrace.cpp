#include "KARStackTrace.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <string>

#if __has_include(<execinfo.h>) && __has_include(<dlfcn.h>) && __has_include(<cxxabi.h>)
#    define KAR_HAS_STACK_TRACE 1
#    include <cxxabi.h>
#    include <dlfcn.h>
#    include <execinfo.h>
#else
#    define KAR_HAS_STACK_TRACE 0
#endif

#if KAR_HAS_STACK_TRACE
namespace {

std::string Demangled(const char* symbol)
{
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(symbol, nullptr, nullptr, nullptr), &std::free);
    return name ? name.get() : symbol;
}

std::string Hexadecimal(std::uintptr_t number)
{
    char text[2 + 2 * sizeof number + 1];
    std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(number));
    return text;
}

// "function+offset (file) [address]", as far as known; without a function the offset is the file's.
std::string Describe(const void* frame)
{
    const auto address = reinterpret_cast<std::uintptr_t>(frame);
    std::string text;
    Dl_info info = {};
    if (dladdr(frame, &info) != 0) {
        const bool named = info.dli_sname != nullptr;
        const void* origin = named ? info.dli_saddr : info.dli_fbase;
        const std::string offset =
            "+" + Hexadecimal(address - reinterpret_cast<std::uintptr_t>(origin));
        const std::string file = info.dli_fname ? info.dli_fname : "";
        if (named)
            text = Demangled(info.dli_sname) + offset + " (" + file + ") ";
        else
            text = file + offset + " ";
    }
    return text + "[" + Hexadecimal(address) + "]";
}

} // namespace

// Not inlined, so that its caller is what this returns to. The frames in front of that are left out
// whatever their number: a sanitizer puts one of its own under backtrace().
[[gnu::noinline]] void KARStackTrace::GetTrace()
{
    constexpr int OwnFrames = 4;
    void* frames[MaxDepth + OwnFrames];
    void** const end =
        std::next(frames, std::max(backtrace(frames, static_cast<int>(std::size(frames))), 0));
    void** first = std::find(frames, end, __builtin_return_address(0));
    if (first == end)
        first = std::min(std::next(frames), end);
    m_depth = static_cast<int>(std::min<std::ptrdiff_t>(end - first, MaxDepth));
    std::copy_n(first, m_depth, m_frames);
}

#else

void KARStackTrace::GetTrace()
{
    m_depth = 0;
}

#endif

KARStatus KARStackTrace::Read(int frame, char* buffer, std::size_t size) const
{
    if (buffer == nullptr || size == 0)
        return KARFailure;
    buffer[0] = '\0';
    if (frame < 0 || frame >= m_depth)
        return KARFailure;
#if KAR_HAS_STACK_TRACE
    std::snprintf(buffer, size, "%s", Describe(m_frames[frame]).c_str());
#endif
    return KARSuccess;
}

#include "KARSmallMemory.h"

#include "KARMemoryPool.h"

#include <new>

// A sanitizer watches the blocks of the heap and sees nothing within them, so there is no pool in
// a build with one.
#if defined(__has_feature)
#    if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) ||                     \
        __has_feature(memory_sanitizer)
#        define KAR_HAS_SANITIZER 1
#    endif
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#    define KAR_HAS_SANITIZER 1
#endif

namespace kar {

#if defined(KAR_HAS_SANITIZER)

void* AllocateSmall(std::size_t bytes)
{
    return ::operator new(bytes);
}

void FreeSmall(void* memory, std::size_t) noexcept
{
    ::operator delete(memory);
}

#else

namespace {

// There before and after all objects with static storage: these may hold what comes from it.
template <class T>
union Lasting {
    template <class... Arguments>
    constexpr explicit Lasting(Arguments&... arguments) : object(arguments...)
    {}
    ~Lasting() {} // leaves the object as it is

    T object;
};
constinit Lasting<MemoryRegions> s_regions;
constinit Lasting<MemoryPool> s_pool(s_regions.object);

} // namespace

void* AllocateSmall(std::size_t bytes)
{
    return s_pool.object.Allocate(bytes);
}

void FreeSmall(void* memory, std::size_t bytes) noexcept
{
    if (memory != nullptr)
        s_pool.object.Free(memory, bytes);
}

#endif

} // namespace kar

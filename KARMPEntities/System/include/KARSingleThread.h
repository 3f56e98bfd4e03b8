#pragma once

#include "KARPlatformExport.h"

#if __has_include(<sys/single_threaded.h>)
#    include <sys/single_threaded.h>
#endif

namespace kar {

/// True while the process is known to have no other thread than this one.
inline bool IsSingleThreaded() noexcept
{
#if __has_include(<sys/single_threaded.h>)
    return __libc_single_threaded != 0;
#else
    return false;
#endif
}

} // namespace kar

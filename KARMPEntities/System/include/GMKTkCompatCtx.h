#pragma once

#include "KARPlatformExport.h"

/// Enters the calling thread's compatibility scope of the geometric kernel for as long as it lives.
/// Scopes nest.
class KAR_API GMKTkCompatCtx
{
public:
    /// Enters the scope.
    GMKTkCompatCtx() noexcept;
    /// Leaves the scope, on the thread that entered it.
    ~GMKTkCompatCtx();
    GMKTkCompatCtx(const GMKTkCompatCtx&) = delete;
    GMKTkCompatCtx& operator=(const GMKTkCompatCtx&) = delete;

    /// Gives the number of scopes that the calling thread is in.
    static int Depth() noexcept;
};

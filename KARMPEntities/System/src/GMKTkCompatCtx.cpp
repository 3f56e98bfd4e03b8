#include "GMKTkCompatCtx.h"

namespace {

thread_local int scopes = 0;

} // namespace

GMKTkCompatCtx::GMKTkCompatCtx() noexcept
{
    ++scopes;
}

GMKTkCompatCtx::~GMKTkCompatCtx()
{
    --scopes;
}

int GMKTkCompatCtx::Depth() noexcept
{
    return scopes;
}

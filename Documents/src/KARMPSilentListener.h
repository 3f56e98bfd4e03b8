#pragma once

#include "KARMPFailedCheck.h"

namespace karmp::documents {

/// Keeps the failed checks of its thread from listeners around it.
class SilentListener final : private KARMPFailedCheckListener
{
    void OnFailedCheck(const char* /*file*/, int /*line*/) override {}
};

} // namespace karmp::documents

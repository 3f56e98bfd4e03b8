// Results stay out of documents unless the environment asks for them.
#pragma once

#include "KARProcessServices.h"

#include <string_view>

namespace karmp {

/// True while "MOT_DUMP_OUTPUTS" is not set; any value counts.
inline bool AreOutputsLeftOut()
{
    return KARGetEnv("MOT_DUMP_OUTPUTS") == nullptr;
}

/// True when what belongs to an owner is neither written nor read: the owner word says that it is a
/// result, and results are left out.
inline bool IsOutputLeftOut(std::string_view owner)
{
    return owner == "Output" && AreOutputsLeftOut();
}

} // namespace karmp

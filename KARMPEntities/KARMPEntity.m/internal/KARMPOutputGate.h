// Results stay out of documents unless the environment asks for them.
#pragma once

#include "KARProcessServices.h"
#include "KARString.h"

namespace karmp {

/// True when what belongs to an owner is neither written nor read: the owner word says that it is a
/// result, and "MOT_DUMP_OUTPUTS" is not set.
inline bool IsOutputLeftOut(const KARString& owner)
{
    return owner == "Output" && KARGetEnv("MOT_DUMP_OUTPUTS") == nullptr;
}

} // namespace karmp

#pragma once

#include "KARMPExport.h"

namespace karmp {

/// The value of "MP_DUMP_PATH" when the library was loaded, null where it was not set. Nothing here
/// uses it.
KARMP_API extern const char* const DumpPath;

} // namespace karmp

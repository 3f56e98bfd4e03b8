#pragma once

namespace karmp {

/// The value of "MP_DUMP_PATH" when the library was loaded, null where it was not set. Nothing here
/// uses it.
extern const char* const DumpPath;

} // namespace karmp

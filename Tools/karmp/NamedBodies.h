// Bodies by what a command line calls them.
#pragma once

#include "KARMPBody.h"
#include "QOBSharedHandle.h"

#include <string>
#include <vector>

class KARMPWorld;

namespace karmp::tool {

using Bodies = std::vector<QOBSharedHandle<KARMPBody>>;

/// The bodies of a world by name or identifier, each once; empty, with the reason on standard
/// error, unless each name belongs to one body. Other names are wrong arguments.
Bodies FindBodies(const KARMPWorld& world, const std::vector<std::string>& names);

} // namespace karmp::tool

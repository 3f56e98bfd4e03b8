// The memory of a document's nodes and of all that they hold.
#pragma once

#include "KARMPNodeMemory.h"

namespace karmp::documents {

class NodeArena final : public NodeMemory
{};

} // namespace karmp::documents

// The graph of a mechanism as Graphviz text.
#pragma once

#include <string>

class KARMPWorld;

namespace karmp::tool {

/// What a graph has besides bodies, joints, force elements and marks of drives.
struct GraphContents
{
    bool sensors = false;
    bool collisions = false;
};

/// The graph of a world: bodies are boxes; a joint of two bodies is an edge and a force element a
/// dashed one, any other one a node; what motors and forces act on says so. Sensors are notes, and
/// what they measure is a node; a collision rule is a dotted edge.
std::string GraphText(const KARMPWorld& world, const GraphContents& contents);

} // namespace karmp::tool

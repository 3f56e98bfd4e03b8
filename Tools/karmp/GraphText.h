// The graph of a mechanism as Graphviz text.
#pragma once

#include <cstddef>
#include <limits>
#include <string>

class KARMPBody;
class KARMPWorld;

namespace karmp::tool {

/// What a graph shows besides bodies, joints, force elements and marks of drives, and of which part
/// of the mechanism.
struct GraphContents
{
    bool sensors = false;
    bool collisions = false;
    /// First line of the title; UTF-8.
    std::string title;
    /// The bodies up to `reach` joints from this one; all bodies without it.
    const KARMPBody* around = nullptr;
    std::size_t reach = std::numeric_limits<std::size_t>::max();
    /// No more bodies than these: those that are nearest to the ground, or to `around`.
    std::size_t mostBodies = std::numeric_limits<std::size_t>::max();
};

/// The graph of a world: bodies are boxes, ground is hatched, a joint is a node by its kind with an
/// arrow to the In body, a force element a dashed one; what motors and forces act on says so.
/// Sensors are notes on what they measure; a collision rule is a dotted node. Inactive entities are
/// grey, and joints that close a loop have thick edges.
std::string GraphText(const KARMPWorld& world, const GraphContents& contents);

} // namespace karmp::tool

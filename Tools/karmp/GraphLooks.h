// How joints of each kind are drawn in a graph.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace karmp::tool {

/// The node of a joint: a shape of Graphviz and a light fill for black text.
struct JointLook
{
    std::string_view className;
    std::string_view shape;
    std::string_view fill;
};

/// The look of a class of joints; a class of the caller's looks like a user-defined joint.
const JointLook& LookOf(std::string_view className);

/// Text between quotes in Graphviz text.
std::string QuotedText(std::string_view text);
/// Text within Graphviz's labels with tags; a line feed begins a new line.
std::string TaggedText(std::string_view text);

} // namespace karmp::tool

// Runs Graphviz for the pictures of the tool.
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace karmp::tool {

/// The bytes of the picture ("svg" or "png") that Graphviz's program dot makes of a graph's text;
/// empty, with the reason on standard error, when the program is missing, fails, gives no picture
/// of the format, or takes longer than the limit, after which it is killed.
std::optional<std::string> DrawPicture(const std::string& text, const std::string& format,
                                       std::chrono::milliseconds limit);

} // namespace karmp::tool

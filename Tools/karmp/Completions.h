// What shells offer to complete in a command line of the tool.
#pragma once

#include <string>

namespace karmp::tool {

struct ToolText;

/// A file for bash, to be sourced or found by its name "karmp".
std::string BashCompletions(const ToolText& tool);
/// A file for zsh, to be sourced or found by its name "_karmp".
std::string ZshCompletions(const ToolText& tool);
/// A file for fish, to be sourced or found by its name "karmp.fish".
std::string FishCompletions(const ToolText& tool);

} // namespace karmp::tool

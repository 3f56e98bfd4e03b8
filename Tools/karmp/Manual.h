// The manual page of the tool.
#pragma once

#include <string>

namespace karmp::tool {

struct ToolText;

/// The page in the language of man(7). Paragraphs that end the footer of every command are told
/// once, at the end: `common` are those paragraphs.
std::string ManualPage(const ToolText& tool, const std::string& version, const std::string& common);

} // namespace karmp::tool

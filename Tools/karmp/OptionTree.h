// The commands and options of the tool as texts, from which its manual and the completions of
// shells are printed.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace karmp::tool {

/// What a shell can offer as the value of an option or operand.
enum class ValueKind { None, Text, File, Folder };

/// An option, or an operand, which has a place among the arguments and no name.
struct OptionText
{
    std::vector<std::string> names; // with their dashes; none for an operand
    std::string says;
    std::string value; // such as "FILE" or "INT"; empty for a flag
    ValueKind kind = ValueKind::None;
    std::vector<std::string> words; // the only values, if there are such
    std::string standard;           // the value without the option, if it is told
    bool isRequired = false;
    bool isRepeated = false; // takes several values

    bool IsOperand() const { return names.empty(); }
};

struct CommandText
{
    std::string name;
    std::string says;
    std::vector<OptionText> options; // those of groups too, operands among them
    std::string footer;              // paragraphs
};

/// The tool itself, and its commands without those that its help does not list.
struct ToolText
{
    CommandText tool;
    std::vector<CommandText> commands;
};

/// The texts of a program whose options are defined.
ToolText ReadOptions(const CLI::App& app);

} // namespace karmp::tool

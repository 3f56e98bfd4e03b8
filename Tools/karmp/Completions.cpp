#include "Completions.h"

#include "OptionTree.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace karmp::tool {

namespace {

std::string Joined(const std::vector<std::string>& words, std::string_view separator = " ")
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : std::string(separator)) + word;
    return text;
}

/// The text with a backslash before each of some characters.
std::string Escaped(std::string_view text, std::string_view characters)
{
    std::string escaped;
    for (const char character : text)
        escaped += characters.find(character) != std::string_view::npos
                       ? std::string{'\\', character}
                       : std::string{character};
    return escaped;
}

/// The text as a word in single quotes for bash and zsh.
std::string Quoted(std::string_view text)
{
    std::string quoted = "'";
    for (const char character : text)
        quoted += character == '\'' ? std::string("'\\''") : std::string{character};
    return quoted + '\'';
}

std::vector<std::string> OptionNames(const CommandText& command)
{
    std::vector<std::string> names;
    for (const OptionText& option : command.options)
        names.insert(names.end(), option.names.begin(), option.names.end());
    return names;
}

std::vector<std::string> CommandNames(const ToolText& tool)
{
    std::vector<std::string> names;
    for (const CommandText& command : tool.commands)
        names.push_back(command.name);
    return names;
}

bool TakesFiles(const CommandText& command)
{
    return std::any_of(
        command.options.begin(), command.options.end(),
        [](const OptionText& option) {
            return option.IsOperand() && option.kind == ValueKind::File;
        });
}

constexpr std::string_view BashStart =
    R"(# Completions of karmp for bash, printed by "karmp completions bash".

_karmp_words() {
    mapfile -t COMPREPLY < <(compgen -W "$2" -- "$1")
}

# Files by -f, folders by -d.
_karmp_files() {
    mapfile -t COMPREPLY < <(compgen "$2" -- "$1")
    compopt -o filenames 2>/dev/null
}

_karmp() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} options files=
    COMPREPLY=()
    # --option=value arrives as three words.
    [[ $previous == = ]] && previous=${COMP_WORDS[COMP_CWORD - 2]}
    [[ $current == = ]] && current=
)";

constexpr std::string_view BashEnd = R"(    *) return ;;
    esac
    if [[ $current == -* || -z $files ]]; then
        _karmp_words "$current" "$options"
    else
        _karmp_files "$current" -f
    fi
}

complete -F _karmp karmp
)";

/// What is offered behind an option that takes a value.
std::string BashValue(const OptionText& option)
{
    std::string line = "        " + Joined(option.names, " | ") + ") ";
    if (!option.words.empty())
        line += "_karmp_words \"$current\" " + Quoted(Joined(option.words)) + "; ";
    else if (option.kind == ValueKind::File)
        line += "_karmp_files \"$current\" -f; ";
    else if (option.kind == ValueKind::Folder)
        line += "_karmp_files \"$current\" -d; ";
    return line + "return ;;\n";
}

std::string BashCommand(const CommandText& command)
{
    std::string values;
    for (const OptionText& option : command.options)
        if (!option.IsOperand() && option.kind != ValueKind::None)
            values += BashValue(option);
    return "    " + command.name + ")\n        options=" + Quoted(Joined(OptionNames(command))) +
           (TakesFiles(command) ? "\n        files=yes" : "") +
           (values.empty() ? std::string()
                           : "\n        case $previous in\n" + values + "        esac") +
           "\n        ;;\n";
}

/// What zsh offers as the value of an option or operand, with its title.
std::string ZshValue(const OptionText& option)
{
    const std::string title = ':' + Escaped(option.value, ":") + ':';
    if (!option.words.empty())
        return title + '(' + Joined(option.words) + ')';
    switch (option.kind) {
    case ValueKind::None:
        return {};
    case ValueKind::Text:
        return title;
    case ValueKind::File:
        return title + "_files";
    case ValueKind::Folder:
        return title + "_files -/";
    }
    return {};
}

/// The specifications of an option for _arguments, one for each name.
std::string ZshOption(const OptionText& option)
{
    const std::string separator = " \\\n            ";
    if (option.IsOperand())
        return separator + Quoted((option.isRepeated ? "*" : "") + ZshValue(option));
    std::string specifications;
    for (const std::string& name : option.names) {
        const bool isLong = name.starts_with("--") && option.kind != ValueKind::None;
        const std::string before =
            option.isRepeated ? "*"
                              : (option.names.size() > 1 ? '(' + Joined(option.names) + ')' : "");
        std::string specification = before + name;
        specification.append(isLong ? "=[" : "[").append(Escaped(option.says, "[]\\")).append("]");
        specifications += separator + Quoted(specification.append(ZshValue(option)));
    }
    return specifications;
}

std::string ZshOptions(const CommandText& command)
{
    std::string options;
    for (const OptionText& option : command.options)
        options += ZshOption(option);
    return options;
}

/// The text as a word in single quotes for fish.
std::string FishQuoted(std::string_view text)
{
    return '\'' + Escaped(text, "'\\") + '\'';
}

std::string FishOption(const std::string& condition, const OptionText& option)
{
    std::string line = "complete -c karmp -n " + FishQuoted(condition);
    for (const std::string& name : option.names)
        line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    if (!option.words.empty())
        line += " -x -a " + FishQuoted(Joined(option.words));
    else if (option.kind == ValueKind::File)
        line += option.IsOperand() ? " -F" : " -r -F";
    else if (option.kind == ValueKind::Folder)
        line += " -x -a '(__fish_complete_directories)'";
    else if (option.kind == ValueKind::Text)
        line += " -x";
    return line + (option.IsOperand() ? "" : " -d " + FishQuoted(option.says)) + '\n';
}

std::string FishOptions(const std::string& condition, const CommandText& command)
{
    std::string lines;
    for (const OptionText& option : command.options)
        if (!option.IsOperand())
            lines += FishOption(condition, option);
    const auto operand =
        std::find_if(command.options.begin(), command.options.end(), [](const OptionText& option) {
            return option.IsOperand() && option.kind == ValueKind::File;
        });
    return operand == command.options.end() ? lines : lines + FishOption(condition, *operand);
}

} // namespace

std::string BashCompletions(const ToolText& tool)
{
    std::vector<std::string> first = CommandNames(tool);
    for (const std::string& name : OptionNames(tool.tool))
        first.push_back(name);
    std::string text(BashStart);
    text += "    if ((COMP_CWORD == 1)); then\n        _karmp_words \"$current\" " +
            Quoted(Joined(first)) + "\n        return\n    fi\n    case ${COMP_WORDS[1]} in\n";
    for (const CommandText& command : tool.commands)
        text += BashCommand(command);
    return text.append(BashEnd);
}

std::string ZshCompletions(const ToolText& tool)
{
    std::string text = "#compdef karmp\n# Completions of karmp for zsh, printed by \"karmp "
                       "completions zsh\".\n\n_karmp() {\n"
                       "    local context state state_descr line\n    typeset -A opt_args\n"
                       "    local -a commands=(\n";
    for (const CommandText& command : tool.commands)
        text += "        " + Quoted(command.name + ':' + command.says) + '\n';
    text += "    )\n    _arguments -C" + ZshOptions(tool.tool) +
            " \\\n            '1:command:->command' '*::argument:->arguments'\n"
            "    case $state in\n"
            "    command) _describe command commands ;;\n"
            "    arguments)\n        case $line[1] in\n";
    for (const CommandText& command : tool.commands)
        text += "        " + command.name + ")\n            _arguments" + ZshOptions(command) +
                "\n            ;;\n";
    return text + "        esac\n        ;;\n    esac\n}\n\n"
                  "if [[ $funcstack[1] == _karmp ]]; then\n    _karmp \"$@\"\nelse\n"
                  "    compdef _karmp karmp\nfi\n";
}

std::string FishCompletions(const ToolText& tool)
{
    const std::string first = "__fish_use_subcommand";
    std::string text = "# Completions of karmp for fish, printed by \"karmp completions fish\".\n"
                       "complete -c karmp -f\n";
    text += FishOptions(first, tool.tool);
    for (const CommandText& command : tool.commands)
        text += "complete -c karmp -n " + first + " -a " + command.name + " -d " +
                FishQuoted(command.says) + '\n';
    for (const CommandText& command : tool.commands)
        text += FishOptions("__fish_seen_subcommand_from " + command.name, command);
    return text;
}

} // namespace karmp::tool

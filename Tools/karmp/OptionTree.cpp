#include "OptionTree.h"

#include <CLI/CLI.hpp>

#include <sstream>

namespace karmp::tool {

namespace {

/// The words of a type such as "TEXT:{dot,svg}".
std::vector<std::string> WordsOf(const std::string& type)
{
    std::vector<std::string> words;
    const auto open = type.find('{');
    const auto close = type.find('}', open);
    if (open == std::string::npos || close == std::string::npos)
        return words;
    std::istringstream list(type.substr(open + 1, close - open - 1));
    for (std::string word; std::getline(list, word, ',');)
        words.push_back(word);
    return words;
}

ValueKind KindOf(const std::string& value)
{
    if (value.empty())
        return ValueKind::None;
    return value == "FILE" ? ValueKind::File
                           : (value == "FOLDER" ? ValueKind::Folder : ValueKind::Text);
}

OptionText TextOf(const CLI::Option& option)
{
    OptionText text;
    for (const std::string& name : option.get_snames())
        text.names.push_back('-' + name);
    for (const std::string& name : option.get_lnames())
        text.names.push_back("--" + name);
    text.says = option.get_description();
    if (option.get_items_expected_max() > 0) {
        const std::string type = option.get_type_name();
        const std::string place = option.get_name(true);
        const bool isFile = option.get_positional() && place == "FILE";
        const std::string first = type.substr(0, type.find(':'));
        text.kind = isFile ? ValueKind::File : KindOf(first);
        text.value = option.get_positional() ? place : first;
        text.words = WordsOf(type);
    }
    text.standard = option.get_default_str();
    text.isRequired = option.get_required();
    text.isRepeated = option.get_items_expected_max() > 1;
    return text;
}

void AppendOptions(const CLI::App& app, std::vector<OptionText>& options)
{
    const bool isGroup = app.get_name().empty(); // it has another option for help
    for (const CLI::Option* const option : app.get_options())
        if (!option->get_group().empty() && !(isGroup && option == app.get_help_ptr()))
            options.push_back(TextOf(*option));
    for (const CLI::App* const part : app.get_subcommands({}))
        if (part->get_name().empty())
            AppendOptions(*part, options);
}

CommandText CommandOf(const CLI::App& app)
{
    CommandText text;
    text.name = app.get_name();
    text.says = app.get_description();
    AppendOptions(app, text.options);
    text.footer = app.get_footer();
    return text;
}

} // namespace

ToolText ReadOptions(const CLI::App& app)
{
    ToolText text{CommandOf(app), {}};
    for (const CLI::App* const command : app.get_subcommands({}))
        if (!command->get_name().empty() && !command->get_group().empty())
            text.commands.push_back(CommandOf(*command));
    return text;
}

} // namespace karmp::tool

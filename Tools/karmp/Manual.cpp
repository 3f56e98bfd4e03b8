#include "Manual.h"

#include "OptionTree.h"

#include <string_view>

namespace karmp::tool {

namespace {

/// A text whose characters roff takes as they are, wherever it stands in a line.
std::string Plain(std::string_view text)
{
    std::string plain;
    for (const char character : text)
        switch (character) {
        case '\\':
            plain += "\\e";
            break;
        case '-':
            plain += "\\-";
            break;
        case '~':
            plain += "\\(ti";
            break;
        case '^':
            plain += "\\(ha";
            break;
        case '`':
            plain += "\\(ga";
            break;
        case '\'':
            plain += "\\(aq";
            break;
        case '"':
            plain += "\\(dq";
            break;
        default:
            plain += character;
        }
    return plain.starts_with('.') ? "\\&" + plain : plain;
}

std::string Bold(std::string_view text)
{
    return "\\fB" + Plain(text) + "\\fR";
}

std::string Italic(std::string_view text)
{
    return "\\fI" + Plain(text) + "\\fR";
}

/// Paragraphs that an empty line divides; a line that begins with blanks is an example.
std::string Paragraphs(std::string_view text)
{
    std::string page;
    for (bool isFirst = true; !text.empty(); isFirst = false) {
        const auto end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.empty() || isFirst)
            page += ".PP\n";
        if (line.starts_with("  "))
            page += ".RS 4\n.nf\n" + Plain(line.substr(2)) + "\n.fi\n.RE\n";
        else if (!line.empty())
            page += Plain(line) + '\n';
    }
    return page;
}

std::string OperandText(const OptionText& operand)
{
    const std::string name = Italic(operand.value) + (operand.isRepeated ? "..." : "");
    return operand.isRequired ? name : '[' + name + ']';
}

std::string Synopsis(const CommandText& command)
{
    std::string line = Bold("karmp " + command.name) + " [" + Italic("options") + ']';
    for (const OptionText& option : command.options)
        if (option.IsOperand())
            line += ' ' + OperandText(option);
    return line;
}

std::string Joined(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : ", ") + Bold(word);
    return text;
}

std::string Entry(const OptionText& option)
{
    std::string entry = ".TP\n";
    entry += option.IsOperand() ? Italic(option.value) : Joined(option.names);
    if (!option.IsOperand() && !option.value.empty())
        entry += ' ' + Italic(option.value) + (option.isRepeated ? "..." : "");
    entry += '\n' + Plain(option.says) + ".\n";
    if (!option.words.empty())
        entry += "One of " + Joined(option.words) + ".\n";
    if (!option.standard.empty())
        entry += "Without it " + Bold(option.standard) + ".\n";
    if (option.isRequired && !option.IsOperand())
        entry += "Required.\n";
    return entry;
}

std::string Entries(const CommandText& command)
{
    std::string entries;
    for (const OptionText& option : command.options)
        entries += Entry(option);
    return entries;
}

std::string_view Without(std::string_view text, std::string_view end)
{
    return text.ends_with(end) ? text.substr(0, text.size() - end.size()) : text;
}

} // namespace

std::string ManualPage(const ToolText& tool, const std::string& version, const std::string& common)
{
    std::string page = ".\\\" Printed by \"karmp manual\" from the options of the tool.\n"
                       ".TH KARMP 1 \"\" \"KARMPEntities " +
                       version +
                       "\" \"User commands\"\n"
                       ".SH NAME\nkarmp \\- look at, check and convert documents of mechanisms\n"
                       ".SH SYNOPSIS\n";
    for (const CommandText& command : tool.commands)
        page += Synopsis(command) + "\n.br\n";
    page += Bold("karmp") + ' ' + Bold("--help") + " | " + Bold("--version") + '\n';
    page += ".SH DESCRIPTION\n" + Plain(tool.tool.says) + '\n';
    page += std::string(Paragraphs(Without(tool.tool.footer, common)));
    page += ".SH OPTIONS\n" + Entries(tool.tool) + ".SH COMMANDS\n";
    for (const CommandText& command : tool.commands)
        page += ".SS " + Synopsis(command) + '\n' + Plain(command.says) + ".\n" + Entries(command) +
                Paragraphs(Without(command.footer, common));
    return page + ".SH STANDARD STREAMS AND EXIT STATUS\n" + Paragraphs(common);
}

} // namespace karmp::tool

// What the tool prints: plain for a pipe, emphasised on a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace karmp::tool {

/// Text of a name from a model, safe to print: UTF-8, with control characters written as escapes so
/// that no document can control the terminal.
std::string Printable(std::wstring_view text);
/// The same for text that is UTF-8 already; bytes that are none, as in the name of a file, are
/// written as escapes too.
std::string Printable(std::string_view text);
/// A name in quotes, or the identifier where the name is empty.
std::string Title(std::wstring_view name, std::wstring_view identifier);
/// The shortest text of a number that reads back the same.
std::string NumberText(double number);
/// A count with its noun: "1 comment", "2 comments".
std::string CountText(std::size_t count, const char* one, const char* several);
/// Text as a JSON string with its quotes; a byte that is no UTF-8 becomes U+FFFD.
std::string JsonText(std::string_view text);

/// The JSON texts of a list's items as an array of a member, one a line; `textOf` gives that of an
/// item.
template <class Items, class TextOf>
std::string JsonList(const Items& items, const TextOf& textOf)
{
    std::string list;
    for (const auto& item : items)
        list += (list.empty() ? "\n    " : ",\n    ") + textOf(item);
    return '[' + list + (list.empty() ? "]" : "\n  ]");
}

/// True when standard output is a terminal that may be coloured.
bool IsTerminal();
/// Text emphasised on a terminal, as it is otherwise.
std::string Bold(std::string_view text);
std::string Red(std::string_view text);
std::string Yellow(std::string_view text);
std::string Dim(std::string_view text);

/// Lines of two columns, the first as wide as its longest text.
class Columns
{
public:
    /// Adds a line.
    void Add(std::string label, std::string text);
    /// Prints the lines, indented by a number of blanks.
    void Print(std::size_t indentation) const;
    /// The lines as a JSON array of labels and texts, one a line.
    std::string Json(std::size_t indentation) const;

private:
    struct Line
    {
        std::string label;
        std::string text;
    };
    std::vector<Line> m_lines;
};

} // namespace karmp::tool

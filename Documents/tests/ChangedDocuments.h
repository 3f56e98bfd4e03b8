// The example documents, and changed ones.
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace karmp::documents {

/// The texts of all examples.
inline std::vector<std::string> ExampleTexts()
{
    std::vector<std::filesystem::path> paths{KARMP_EVERY_CLASS};
    for (const auto& entry : std::filesystem::directory_iterator(KARMP_EXAMPLE_DOCUMENTS))
        if (entry.path().extension() == ".xml")
            paths.push_back(entry.path());
    std::vector<std::string> texts;
    for (const std::filesystem::path& path : paths) {
        std::ifstream file(path, std::ios::binary);
        texts.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return texts;
}

/// Makes small changes of the kind that people make when they edit a document.
class Changes
{
public:
    std::string Changed(std::string text)
    {
        for (std::size_t count = 1 + Below(2); count > 0; --count)
            Change(text);
        return text;
    }

private:
    std::size_t Below(std::size_t count) { return m_random() % count; }

    void Change(std::string& text)
    {
        constexpr std::string_view bytes = "0 9.,-xe<1>&;T\"";
        const std::size_t at = Below(text.size() - 1);
        const std::size_t line = text.find('\n', at);
        const std::size_t end = text.find('\n', line + 1);
        switch (Below(6)) {
        case 0:
            text[at] = bytes[Below(bytes.size())];
            return;
        case 1:
            text.insert(at, 1, bytes[Below(bytes.size())]);
            return;
        case 2:
            if (end != text.npos)
                text.erase(line, end - line);
            return;
        case 3:
            if (end != text.npos)
                text.insert(line, text.substr(line, end - line));
            return;
        default:
            Copy(text, Below(2) == 0 ? " id=\"" : ">");
        }
    }
    // Puts a text behind one mark in place of one behind another.
    void Copy(std::string& text, std::string_view mark)
    {
        const std::size_t from = text.find(mark, Below(text.size()));
        const std::size_t to = text.find(mark, Below(text.size()));
        if (from == text.npos || to == text.npos)
            return;
        const auto end = [&](std::size_t begin) {
            return std::min(text.find_first_of("\"<", begin + mark.size()), text.size());
        };
        const std::string copy = text.substr(from, end(from) - from);
        text.replace(to, end(to) - to, copy);
    }

    std::mt19937 m_random{11};
};

} // namespace karmp::documents

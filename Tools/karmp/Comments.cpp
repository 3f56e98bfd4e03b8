#include "Comments.h"

#include "Output.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>
#include <system_error>

namespace karmp::tool {

namespace {

struct Comments
{
    std::size_t comments = 0;
    std::size_t instructions = 0;
    std::size_t first = std::string_view::npos; // offset
};

bool IsDeclaration(std::string_view text)
{
    constexpr std::string_view begin = "<?xml";
    return text.starts_with(begin) && text.find_first_of(" \t\r\n") == begin.size();
}

// In well-formed XML every "<" outside of these begins a tag.
Comments CommentsIn(std::string_view text)
{
    Comments found;
    for (std::size_t at = text.find('<'); at != text.npos; at = text.find('<', at)) {
        const std::string_view rest = text.substr(at);
        if (rest.starts_with("<!--")) {
            ++found.comments;
            found.first = std::min(found.first, at);
            at = text.find("-->", at + 4);
        } else if (rest.starts_with("<?")) {
            if (!IsDeclaration(rest)) {
                ++found.instructions;
                found.first = std::min(found.first, at);
            }
            at = text.find("?>", at + 2);
        } else {
            at = rest.starts_with("<![CDATA[") ? text.find("]]>", at) : at + 1;
        }
    }
    return found;
}

std::string TextOf(const Comments& found)
{
    std::string text;
    if (found.comments > 0)
        text = CountText(found.comments, "comment", "comments");
    if (found.instructions > 0)
        text += (text.empty() ? "" : " and ") +
                CountText(found.instructions, "processing instruction", "processing instructions");
    const bool isOne = found.comments + found.instructions == 1;
    return text + (isOne ? " is not kept" : " are not kept; the first one stands here");
}

} // namespace

std::optional<documents::Diagnostic> FindComments(const std::string& file)
{
    std::error_code missing;
    if (!std::filesystem::is_regular_file(file, missing))
        return std::nullopt;
    std::ifstream stream(file, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    const Comments found = CommentsIn(text);
    if (found.first == text.npos)
        return std::nullopt;
    const std::string_view before = std::string_view(text).substr(0, found.first);
    const std::string_view line = before.substr(before.rfind('\n') + 1);
    const auto isCharacter = [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
    };
    documents::Diagnostic told;
    told.severity = documents::Severity::Warning;
    told.code = documents::Code::NotKept;
    told.file = file;
    told.line = 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
    told.column =
        1 + static_cast<std::size_t>(std::count_if(line.begin(), line.end(), isCharacter));
    told.text = TextOf(found);
    return told;
}

} // namespace karmp::tool

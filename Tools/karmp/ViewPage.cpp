#include "ViewPage.h"

#include "KARBase64.h"
#include "ViewerFiles.h" // made of the files in viewer

#include <charconv>
#include <cstdint>
#include <span>
#include <vector>

namespace karmp::tool {

namespace {

// The source expression of a text, as a page's policy names it, of a hash in hexadecimal digits.
std::string HashSource(std::string_view digits)
{
    std::vector<unsigned char> bytes(digits.size() / 2);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        std::from_chars(digits.data() + 2 * i, digits.data() + 2 * i + 2, bytes[i], 16);
    return "'sha256-" + kar::Base64Encode(bytes) + '\'';
}

std::string Policy()
{
    return "default-src 'none'; img-src data:; base-uri 'none'; form-action 'none'; style-src " +
           HashSource(viewer::StyleHash) + "; script-src " + HashSource(viewer::ProgramHash);
}

std::string Joined(std::span<const std::string_view> pieces)
{
    std::string text;
    for (const std::string_view piece : pieces)
        text += piece;
    return text;
}

} // namespace

std::string ViewPage(std::string_view sceneJson)
{
    const std::string policy = Policy();
    const std::string frame = Joined(viewer::Page);
    const std::string style = Joined(viewer::Style);
    const std::string program = Joined(viewer::Program);
    std::string page;
    page.reserve(frame.size() + style.size() + program.size() + sceneJson.size() + policy.size());
    std::string_view rest = frame;
    const auto replace = [&](std::string_view mark, std::string_view text) {
        const auto found = rest.find(mark);
        page += rest.substr(0, found);
        page += text;
        rest.remove_prefix(found + mark.size());
    };
    replace("@policy@", policy);
    replace("@style@", style);
    replace("@scene@", sceneJson);
    replace("@program@", program);
    page += rest;
    return page;
}

} // namespace karmp::tool

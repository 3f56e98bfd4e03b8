#include "GoldenFile.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

namespace {

namespace fs = std::filesystem;

using Lines = std::vector<std::string>;

Lines LinesOf(std::istream&& stream)
{
    Lines lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

// The heading "== ..." that the line at an index stands under.
std::string HeadingOf(const Lines& lines, std::size_t index)
{
    for (std::size_t i = std::min(index + 1, lines.size()); i > 0; --i)
        if (lines[i - 1].starts_with("=="))
            return lines[i - 1];
    return {};
}

std::string LineAt(const Lines& lines, std::size_t index)
{
    return index < lines.size() ? lines[index] : "(the end)";
}

} // namespace

void ExpectGolden(const std::string& name, const std::string& text)
{
    const fs::path path = fs::path(KARMP_GOLDEN_FOLDER) / (name + ".txt");
    if (std::getenv("KARMP_WRITE_GOLDEN") != nullptr) {
        std::ofstream file(path, std::ios::binary);
        file << text;
        EXPECT_TRUE(file.flush()) << path << " cannot be written";
        return;
    }
    std::ifstream file(path, std::ios::binary);
    ASSERT_TRUE(file) << path << " is missing";
    const Lines kept = LinesOf(std::move(file));
    const Lines now = LinesOf(std::istringstream(text));
    if (kept == now)
        return;
    std::size_t first = 0;
    while (first < kept.size() && first < now.size() && kept[first] == now[first])
        ++first;
    ADD_FAILURE() << path.string() << ":" << first + 1 << ": under \"" << HeadingOf(kept, first)
                  << "\"\n  kept: " << LineAt(kept, first) << "\n   now: " << LineAt(now, first);
}

void ExpectNoOtherGolden(const std::function<bool(const std::string& name)>& isKnown)
{
    for (const fs::directory_entry& entry : fs::directory_iterator(KARMP_GOLDEN_FOLDER)) {
        const std::string name = entry.path().filename().string();
        EXPECT_TRUE(isKnown(name.substr(0, name.find('.')))) << name << " belongs to no class";
    }
}

#include "PlantedTesting.h"

#include "KARMPWorld.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

namespace karmp::documents {

namespace {

std::string ReadFile(const std::string& name)
{
    std::filesystem::path path = std::filesystem::path(KARMP_EXAMPLE_DOCUMENTS) / (name + ".xml");
    if (!std::filesystem::exists(path))
        path = std::filesystem::path(KARMP_TEST_DOCUMENTS) / (name + ".xml");
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

std::string SavedFor(const std::string& name, const std::string& version)
{
    SaveOptions options;
    options.version = std::wstring(version.begin(), version.end());
    options.check = false;
    std::string text;
    const QOBSharedHandle<KARMPWorld> world = LoadText(ReadFile(name)).world;
    EXPECT_EQ(CompleteWorld(*world), KARSuccess);
    EXPECT_FALSE(SaveText(world, text, options).HasErrors()) << name;
    return text;
}

/// A document with a mistake in it and where it stands.
struct Prepared
{
    std::string text;
    std::size_t line = 0;
    std::size_t column = 0;
};

// Line and column from 1, the latter in characters.
void Locate(Prepared& prepared, std::size_t offset)
{
    const std::string before = prepared.text.substr(0, offset);
    const std::size_t feed = before.rfind('\n');
    const std::string line = before.substr(feed == std::string::npos ? 0 : feed + 1);
    prepared.line = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')) + 1;
    prepared.column =
        static_cast<std::size_t>(std::count_if(
            line.begin(), line.end(),
            [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; })) +
        1;
}

Prepared Prepare(const Planted& planted)
{
    Prepared prepared;
    prepared.text = ReadDocument(planted.document);
    const std::string sound = planted.sound != nullptr ? planted.sound : prepared.text;
    std::string mistaken = planted.mistaken;
    const std::size_t at = prepared.text.find(sound);
    EXPECT_NE(at, std::string::npos) << sound;
    if (at == std::string::npos)
        return prepared;
    const std::size_t mark = mistaken.find('^');
    if (mark != std::string::npos)
        mistaken.erase(mark, 1);
    prepared.text.replace(at, sound.size(), mistaken);
    if (mark != std::string::npos) {
        Locate(prepared, at + mark);
    } else if (planted.at != nullptr) {
        std::string place = planted.at;
        const std::size_t offset = place.find('^');
        place.erase(offset, 1);
        const std::size_t found = prepared.text.find(place);
        EXPECT_NE(found, std::string::npos) << place;
        Locate(prepared, found + offset);
    } else {
        EXPECT_TRUE(prepared.text.empty()) << "no place is marked";
    }
    return prepared;
}

} // namespace

std::string ReadDocument(const std::string& name)
{
    static std::map<std::string, std::string> texts;
    const auto [found, isNew] = texts.try_emplace(name);
    if (isNew) {
        const std::size_t at = name.find('@');
        found->second = at == std::string::npos ? ReadFile(name)
                                                : SavedFor(name.substr(0, at), name.substr(at + 1));
    }
    return found->second;
}

std::string AllOf(const Diagnostics& found)
{
    std::string all;
    for (const Diagnostic& item : found.items)
        all += Format(item) + '\n';
    return all;
}

Diagnostics FindingsIn(std::string text)
{
    LoadOptions options;
    options.check = CheckLevel::Mechanism;
    return LoadText(std::move(text), "x.xml", options).diagnostics;
}

void ExpectFindings(const std::vector<Planted>& mistakes)
{
    for (const Planted& planted : mistakes) {
        SCOPED_TRACE(planted.document + ": " + planted.mistaken);
        const Prepared prepared = Prepare(planted);
        const Diagnostics found = FindingsIn(prepared.text);
        EXPECT_EQ(found.items.size(), planted.besides == nullptr ? 1U : 2U) << AllOf(found);
        if (planted.besides != nullptr) {
            const auto second = FindCode(planted.besides);
            EXPECT_TRUE(second && found.Find(*second) != nullptr) << AllOf(found);
        }
        const auto code = FindCode(planted.code);
        ASSERT_TRUE(code) << planted.code;
        const Diagnostic* const item = found.Find(*code);
        if (item == nullptr) {
            ADD_FAILURE() << planted.code << " is not among\n" << AllOf(found);
            continue;
        }
        EXPECT_NE(item->text.find(planted.says), std::string::npos) << Format(*item);
        EXPECT_EQ(item->line, prepared.line) << Format(*item);
        EXPECT_EQ(item->column, prepared.column) << Format(*item);
    }
}

} // namespace karmp::documents

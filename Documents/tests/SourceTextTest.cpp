// The bytes of a document: what is at fault, what is clean, where lines begin.
#include "KARMPSourceText.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using karmp::documents::SourcePosition;
using karmp::documents::SourceText;

namespace {

constexpr std::size_t Length = 200;

std::string Lines()
{
    std::string text;
    while (text.size() < Length)
        text += "a line of text, then\n\n";
    return text.substr(0, Length);
}

TEST(SourceText, FindsAFaultAtEveryOffset)
{
    for (std::size_t offset = 0; offset < Length; ++offset) {
        std::string text = Lines();
        text[offset] = '\x01';
        const SourceText control(text);
        EXPECT_EQ(control.Found(), SourceText::Fault::ControlCharacter);
        EXPECT_EQ(control.FaultOffset(), offset);
        text[offset] = '\x80';
        const SourceText encoding(text);
        EXPECT_EQ(encoding.Found(), SourceText::Fault::NotUtf8);
        EXPECT_EQ(encoding.FaultOffset(), offset);
        EXPECT_FALSE(encoding.IsClean());
    }
}

TEST(SourceText, CharactersOfSeveralBytesMayStandAnywhere)
{
    for (std::size_t offset = 0; offset < Length; ++offset) {
        const std::string text = Lines().insert(offset, "\xE2\x98\x83");
        const SourceText source(text);
        EXPECT_EQ(source.Found(), SourceText::Fault::None);
        EXPECT_FALSE(source.IsClean());
    }
    for (std::size_t cut = 1; cut < 4; ++cut) {
        const SourceText source(Lines() + std::string("\xF0\x9F\x98\x80").substr(0, cut));
        EXPECT_EQ(source.Found(), SourceText::Fault::NotUtf8);
        EXPECT_EQ(source.FaultOffset(), Length);
    }
}

TEST(SourceText, IsCleanWithLineFeedsAlone)
{
    EXPECT_TRUE(SourceText(Lines()).IsClean());
    EXPECT_TRUE(SourceText().IsClean());
    EXPECT_TRUE(SourceText("~").IsClean());
    for (const char character : {'\t', '\r'}) {
        for (std::size_t offset = 0; offset < Length; ++offset) {
            std::string text = Lines();
            text[offset] = character;
            const SourceText source(text);
            EXPECT_EQ(source.Found(), SourceText::Fault::None);
            EXPECT_FALSE(source.IsClean()) << offset;
        }
    }
}

// The characters behind a start have the columns from 1.
void ExpectColumnsOfCharacters(const std::vector<std::string>& characters,
                               const std::string& start = {})
{
    std::string text = start;
    for (const std::string& character : characters)
        text += character;
    const SourceText source(text);
    ASSERT_EQ(source.Found(), SourceText::Fault::None);
    SourcePosition position;
    std::size_t offset = start.size();
    for (const std::string& character : characters) {
        EXPECT_EQ(source.Find(offset).line, position.line) << offset;
        EXPECT_EQ(source.Find(offset).column, position.column) << offset;
        offset += character.size();
        position = character == "\n" ? SourcePosition{position.line + 1, 1}
                                     : SourcePosition{position.line, position.column + 1};
    }
}

TEST(SourceText, CountsCharactersOfAnyLengthAsOneColumn)
{
    const std::vector<std::string> kinds{"\xC3\xA4",     "x",  "\t",
                                         "\xE2\x98\x83", "\n", "\xF0\x9F\x98\x80"};
    for (std::size_t period = 1; period <= kinds.size(); ++period)
        for (const std::size_t clean : {std::size_t{0}, std::size_t{63}, Length}) {
            std::vector<std::string> characters(clean, "-");
            for (std::size_t index = 0; index < Length; ++index)
                characters.push_back(kinds[index % period]);
            characters.insert(characters.end(), clean, "-");
            ExpectColumnsOfCharacters(characters);
        }
}

TEST(SourceText, GivesAByteOrderMarkNoColumn)
{
    ExpectColumnsOfCharacters({"<", "x", "/", ">", "\n", "\xC3\xA4"}, "\xEF\xBB\xBF");
}

TEST(SourceText, KnowsTheLineOfEveryByte)
{
    const std::string text = Lines();
    const SourceText source(text);
    SourcePosition position;
    for (std::size_t offset = 0; offset < text.size(); ++offset) {
        EXPECT_EQ(source.Find(offset).line, position.line);
        EXPECT_EQ(source.Find(offset).column, position.column);
        position = text[offset] == '\n' ? SourcePosition{position.line + 1, 1}
                                        : SourcePosition{position.line, position.column + 1};
    }
}

} // namespace

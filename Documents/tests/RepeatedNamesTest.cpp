// The cache of names by their bytes.
#include "KARMPRepeatedNames.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using karmp::documents::RepeatedNames;

namespace {

TEST(RepeatedNames, DistinguishNamesOfEveryLength)
{
    std::vector<karmp::NodeText> names;
    karmp::NodeMemory memory;
    RepeatedNames repeated(names, memory, 1000);
    // Each length with a difference at each index, one after the other up to the end of the bytes.
    std::string bytes;
    std::vector<std::size_t> offsets;
    std::vector<std::string> expected;
    for (std::size_t length = 0; length < 24; ++length) {
        for (std::size_t different = 0; different <= length; ++different) {
            std::string name(length, 'a');
            if (different < length)
                name[different] = 'b';
            expected.push_back(name);
        }
    }
    // The second and the third time they are guessed, the fourth time the guesses are wrong.
    for (int time = 0; time < 4; ++time) {
        for (std::size_t index = 0; index < expected.size(); ++index) {
            const std::size_t other = time < 3 ? index : expected.size() - 1 - index;
            offsets.push_back(bytes.size());
            bytes += expected[other];
            bytes += '\0';
        }
    }
    for (std::size_t index = 0; index < offsets.size(); ++index) {
        const RepeatedNames::Name name =
            repeated.Get(bytes.data() + offsets[index], bytes.data() + bytes.size());
        const std::string text = bytes.data() + offsets[index];
        EXPECT_EQ(name.size, text.size());
        EXPECT_EQ(names[name.number].View(), std::wstring(text.begin(), text.end()));
    }
}

TEST(RepeatedNames, EachOfManyNamesHasOneNumber)
{
    std::vector<karmp::NodeText> names;
    karmp::NodeMemory memory;
    RepeatedNames repeated(names, memory, 1000);
    std::vector<std::string> texts;
    texts.reserve(3000);
    for (int number = 0; number < 3000; ++number)
        texts.push_back("name" + std::to_string(number));
    for (int time = 0; time < 2; ++time) {
        for (const std::string& text : texts) {
            const auto name = repeated.Get(text.c_str(), text.c_str() + text.size() + 1);
            EXPECT_EQ(names[name.number].View(), std::wstring(text.begin(), text.end()));
        }
        EXPECT_EQ(names.size(), texts.size());
    }
}

TEST(RepeatedNames, ANameThatIsTooLongIsMeasuredAndNotKept)
{
    std::vector<karmp::NodeText> names;
    karmp::NodeMemory memory;
    RepeatedNames repeated(names, memory, 10);
    const std::string text = "abcdefghij";
    const std::string all = text + '\0' + text + "k" + '\0' + '\0' + text + '\0';
    const char* const end = all.data() + all.size();
    for (int time = 0; time < 3; ++time) {
        EXPECT_EQ(repeated.Get(all.data(), end).size, 10U);
        EXPECT_EQ(repeated.Get(all.data() + 11, end).size, 11U);
        EXPECT_EQ(repeated.Get(all.data() + 23, end).size, 0U);
        EXPECT_EQ(repeated.Get(all.data() + 24, end).size, 10U);
    }
    EXPECT_EQ(names.size(), 2U);
}

TEST(RepeatedNames, ARepeatedNameIsKeptOnce)
{
    std::vector<karmp::NodeText> names;
    karmp::NodeMemory memory;
    RepeatedNames repeated(names, memory, 1000);
    const std::string bytes = "Translation";
    for (int time = 0; time < 100; ++time)
        repeated.Get(bytes.c_str(), bytes.c_str() + bytes.size() + 1);
    EXPECT_EQ(names.size(), 1U);
}

} // namespace

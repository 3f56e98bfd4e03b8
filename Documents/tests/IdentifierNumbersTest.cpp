// Equal identifiers of a document have one number, in whatever order and number they come.
#include "KARMPIdentifierNumbers.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

using namespace karmp;
using namespace karmp::documents;

namespace {

std::vector<std::uint32_t> NumbersOf(const std::vector<std::string>& identifiers)
{
    DocumentRecords records;
    IdentifierNumbers numbers(records);
    for (const std::string& identifier : identifiers) {
        numbers.Add(identifier, static_cast<std::uint32_t>(records.attributes.size()));
        records.attributes.emplace_back();
    }
    numbers.Finish();
    std::vector<std::uint32_t> given;
    for (const AttributeRecord& attribute : records.attributes) {
        given.push_back(attribute.identifier);
        EXPECT_LT(attribute.identifier, records.identifiers);
    }
    return given;
}

TEST(IdentifierNumbers, NumberDifferentTextsInTheirOrder)
{
    const std::vector<std::string> identifiers{
        "", "a", "b", "a", "eight888", "eight889", "eight888", "seventeen_letters", "", "b"};
    EXPECT_EQ(NumbersOf(identifiers), (std::vector<std::uint32_t>{0, 1, 2, 1, 3, 4, 3, 5, 0, 2}));
}

TEST(IdentifierNumbers, FindEachOfManyAgain)
{
    constexpr std::size_t count = 5000;
    std::vector<std::string> identifiers;
    for (std::size_t index = 0; index < count; ++index)
        identifiers.push_back("id" + std::to_string(index * 7919 % count));
    for (std::size_t index = 0; index < count; ++index)
        identifiers.push_back("id" + std::to_string(index));
    const std::vector<std::uint32_t> numbers = NumbersOf(identifiers);
    std::map<std::string, std::uint32_t> first;
    for (std::size_t index = 0; index < identifiers.size(); ++index) {
        const auto [known, isNew] = first.try_emplace(identifiers[index], numbers[index]);
        EXPECT_EQ(known->second, numbers[index]);
        if (isNew)
            EXPECT_EQ(numbers[index], first.size() - 1);
    }
    EXPECT_EQ(first.size(), count);
}

} // namespace

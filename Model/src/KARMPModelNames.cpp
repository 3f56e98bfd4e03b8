#include "KARMPModelNames.h"

#include "KARMPNearestWord.h"
#include "KARTextConversion.h"

#include <algorithm>
#include <array>

namespace karmp::model {

std::string NearestName(std::string_view text, const std::vector<std::string>& names)
{
    if (std::find(names.begin(), names.end(), text) != names.end())
        return std::string(text);
    std::vector<std::wstring> wide;
    wide.reserve(names.size());
    for (const std::string& name : names)
        wide.push_back(kar::ToWide(name));
    const std::vector<std::wstring_view> candidates(wide.begin(), wide.end());
    return kar::ToUtf8(karmp::NearestWord(kar::ToWide(text), candidates));
}

std::string NumberWord(std::size_t number)
{
    constexpr std::array<std::string_view, 8> words{"two", "three", "four",  "five",
                                                    "six", "seven", "eight", "nine"};
    return number >= 2 && number < 2 + words.size() ? std::string(words[number - 2])
                                                    : std::to_string(number);
}

} // namespace karmp::model

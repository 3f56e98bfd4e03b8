#include "KARMPNearestWord.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace karmp {

namespace {

constexpr std::size_t LongestWord = 64;
using Row = std::array<std::size_t, LongestWord + 1>;

wchar_t Lower(wchar_t letter)
{
    return letter >= L'A' && letter <= L'Z' ? static_cast<wchar_t>(letter - L'A' + L'a') : letter;
}

constexpr std::size_t Change = 16; // of a letter; another case costs 1

std::size_t CostOf(wchar_t left, wchar_t right)
{
    if (left == right)
        return 0;
    return Lower(left) == Lower(right) ? 1 : Change;
}

// The cost of the cheapest changes between two words that are no longer than LongestWord.
std::size_t Distance(std::wstring_view left, std::wstring_view right)
{
    std::array<Row, 3> rows{};
    for (std::size_t column = 0; column <= right.size(); ++column)
        rows[0][column] = Change * column;
    for (std::size_t line = 1; line <= left.size(); ++line) {
        Row& now = rows[line % 3];
        const Row& before = rows[(line - 1) % 3];
        now[0] = Change * line;
        for (std::size_t column = 1; column <= right.size(); ++column) {
            const std::size_t cost = CostOf(left[line - 1], right[column - 1]);
            now[column] = std::min(
                {before[column] + Change, now[column - 1] + Change, before[column - 1] + cost});
            if (line > 1 && column > 1 && left[line - 1] == right[column - 2] &&
                left[line - 2] == right[column - 1])
                now[column] = std::min(now[column], rows[(line - 2) % 3][column - 2] + Change);
        }
    }
    return rows[left.size() % 3][right.size()];
}

} // namespace

std::wstring_view NearestWord(std::wstring_view word,
                              const std::vector<std::wstring_view>& candidates)
{
    if (word.empty() || word.size() > LongestWord)
        return {};
    std::wstring_view nearest;
    std::size_t least = Change * std::max<std::size_t>(1, word.size() / 3) + 1;
    for (const std::wstring_view candidate : candidates) {
        const std::size_t difference =
            std::max(candidate.size(), word.size()) - std::min(candidate.size(), word.size());
        if (candidate.empty() || candidate.size() > LongestWord || Change * difference >= least)
            continue;
        const std::size_t distance = Distance(word, candidate);
        // A word of which every letter changes has nothing of the candidate.
        if (distance > 0 && distance < least && distance < Change * word.size()) {
            least = distance;
            nearest = candidate;
        }
    }
    return nearest;
}

} // namespace karmp

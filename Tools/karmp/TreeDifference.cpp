#include "TreeDifference.h"

#include "KARMPDeserializer.h"
#include "Output.h"

#include <map>
#include <utility>

namespace karmp::tool {

namespace {

using Element = KARMPDeserializer;

// The attribute of the root that two versions differ in.
constexpr std::wstring_view VersionName = L"version";

/// Two elements that correspond, and where the first one stands.
struct Pair
{
    const Element* before;
    const Element* after;
    std::string path;
    bool isRoot = false;
};

/// Compares trees of any depth with a list of pairs to go through.
class Comparison
{
public:
    explicit Comparison(std::size_t limit) : m_limit(limit) {}

    std::vector<Difference> Run(const Element& before, const Element& after)
    {
        m_pairs.push_back({&before, &after, '/' + Printable(before.Id()), true});
        while (!m_pairs.empty() && m_differences.size() < m_limit) {
            const Pair pair = std::move(m_pairs.back());
            m_pairs.pop_back();
            CompareValues(pair);
            CompareChildren(pair);
        }
        return std::move(m_differences);
    }

private:
    using Key = std::pair<std::wstring_view, std::wstring>;

    void Note(const std::string& path, const std::string& text)
    {
        if (m_differences.size() < m_limit)
            m_differences.push_back({path, text});
    }

    void CompareValues(const Pair& pair)
    {
        std::wstring_view before;
        std::wstring_view after;
        pair.before->GetValue(before);
        pair.after->GetValue(after);
        if (before != after)
            Note(pair.path,
                 Printable(before) + " becomes " + (after.empty() ? "nothing" : Printable(after)));
        CompareAttributes(pair);
    }

    void CompareAttributes(const Pair& pair)
    {
        for (std::size_t index = 0; index < pair.before->GetAttributeCount(); ++index) {
            const std::wstring_view name = pair.before->GetAttributeId(index);
            if (pair.isRoot && name == VersionName)
                continue;
            std::wstring_view before;
            std::wstring_view after;
            pair.before->GetAttribute(name, before);
            if (KARFailed(pair.after->GetAttribute(name, after)))
                Note(pair.path + "/@" + Printable(name), Printable(before) + " is lost");
            else if (before != after)
                Note(pair.path + "/@" + Printable(name),
                     Printable(before) + " becomes " + Printable(after));
        }
    }

    static std::map<Key, const Element*> ChildrenOf(const Element& element)
    {
        Element::ElementVector children;
        element.AppendOrderedElements(children);
        std::map<Key, const Element*> keyed;
        std::map<std::wstring_view, int> numbers;
        for (const Element* child : children) {
            std::wstring_view id;
            if (KARFailed(child->GetAttribute(L"id", id)))
                keyed.emplace(Key(child->Id(), L'#' + std::to_wstring(++numbers[child->Id()])),
                              child);
            else
                keyed.emplace(Key(child->Id(), std::wstring(id)), child);
        }
        return keyed;
    }

    void CompareChildren(const Pair& pair)
    {
        const auto after = ChildrenOf(*pair.after);
        for (const auto& [key, child] : ChildrenOf(*pair.before)) {
            const bool numbered = key.second.front() == L'#';
            std::string path = pair.path + '/' + Printable(key.first);
            if (!numbered)
                path += '[' + Printable(key.second) + ']';
            else if (key.second != L"#1")
                path += '[' + Printable(std::wstring_view(key.second).substr(1)) + ']';
            const auto found = after.find(key);
            if (found == after.end())
                Note(path, "is lost");
            else
                m_pairs.push_back({child, found->second, std::move(path), false});
        }
    }

    std::size_t m_limit;
    std::vector<Pair> m_pairs;
    std::vector<Difference> m_differences;
};

} // namespace

std::vector<Difference> FindDifferences(const KARMPDeserializer& before,
                                        const KARMPDeserializer& after, std::size_t limit)
{
    return Comparison(limit).Run(before, after);
}

} // namespace karmp::tool

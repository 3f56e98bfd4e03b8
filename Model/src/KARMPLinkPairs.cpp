// Which links two entities can have, found by the items of their content lists.
#include "KARMPHalfLinks.h"
#include "KARMPItems.h"
#include "QOBClassInfo.h"

#include <algorithm>
#include <functional>
#include <unordered_map>
#include <utility>

namespace karmp::model {

namespace {

bool IsA(const QOBClassInfo& info, std::string_view className)
{
    for (const QOBClassInfo* record = &info; record != nullptr; record = record->getParent())
        if (record->getName() == className)
            return true;
    return false;
}

const ItemInfo* FindLink(const QOBClassInfo& info, std::wstring_view name)
{
    for (const ItemInfo* const item : LinkItemsOf(info))
        if (item->name == name)
            return item;
    return nullptr;
}

// The other side is one name, or several between blanks.
bool IsAmong(std::wstring_view names, std::wstring_view name)
{
    const std::size_t at = names.find(name);
    if (at == std::wstring_view::npos)
        return false;
    const std::size_t end = at + name.size();
    return (at == 0 || names[at - 1] == L' ') && (end == names.size() || names[end] == L' ');
}

void AddPairs(const QOBClassInfo& first, const QOBClassInfo& second,
              const std::function<void(const HalfLink&, const HalfLink&)>& add)
{
    for (const ItemInfo* const item : LinkItemsOf(first)) {
        if (item->otherSide.empty() || !IsA(second, item->target))
            continue;
        for (const ItemInfo* const other : LinkItemsOf(second)) {
            const bool isMutual = other->otherSide.empty() || IsAmong(other->otherSide, item->name);
            if (!IsAmong(item->otherSide, other->name) || !isMutual || !IsA(first, other->target))
                continue;
            const HalfLink* const half = HalfOf(first, item->name);
            const HalfLink* const back = HalfOf(second, other->name);
            if (half != nullptr && back != nullptr)
                add(*half, *back);
        }
    }
}

std::vector<LinkPair> FindPairs(const QOBClassInfo& first, const QOBClassInfo& second)
{
    std::vector<LinkPair> pairs;
    const auto add = [&pairs](const HalfLink& half, const HalfLink& back) {
        const bool isKnown = std::any_of(pairs.begin(), pairs.end(), [&](const LinkPair& pair) {
            return pair.first == &half && pair.second == &back;
        });
        if (!isKnown)
            pairs.push_back({&half, &back});
    };
    AddPairs(first, second, add);
    AddPairs(second, first,
             [&add](const HalfLink& half, const HalfLink& back) { add(back, half); });
    return pairs;
}

struct PairHash
{
    std::size_t operator()(const std::pair<const QOBClassInfo*, const QOBClassInfo*>& pair) const
    {
        const std::hash<const void*> hash;
        return hash(pair.first) * 31 + hash(pair.second);
    }
};

} // namespace

const HalfLink* HalfOf(const QOBClassInfo& info, std::wstring_view item)
{
    const ItemInfo* const own = FindLink(info, item);
    if (own == nullptr)
        return nullptr;
    for (const HalfLink& half : HalfLinks()) {
        if (half.item != item || !IsA(info, half.owner))
            continue;
        for (const ItemInfo& declared : ItemsOf(half.owner))
            if (declared.written == own->written)
                return &half;
    }
    return nullptr;
}

const std::vector<LinkPair>& PairsBetween(const QOBClassInfo& first, const QOBClassInfo& second)
{
    thread_local std::unordered_map<std::pair<const QOBClassInfo*, const QOBClassInfo*>,
                                    std::vector<LinkPair>, PairHash>
        found;
    const std::pair key(&first, &second);
    const auto entry = found.find(key);
    return entry != found.end() ? entry->second
                                : found.emplace(key, FindPairs(first, second)).first->second;
}

} // namespace karmp::model

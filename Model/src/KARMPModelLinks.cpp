#include "KARMPModelLinks.h"

#include "QOBClassInfo.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <unordered_map>
#include <utility>

namespace karmp::model {

namespace {

using Entity = QOBSharedHandle<KARMPEntity>;

constexpr std::wstring_view ParentWord = L"Out";
constexpr std::wstring_view ChildWord = L"In";

// The other side is one name, or several between blanks.
bool Names(std::wstring_view otherSide, std::wstring_view name)
{
    const std::wstring names = L' ' + std::wstring(otherSide) + L' ';
    return names.find(L' ' + std::wstring(name) + L' ') != std::wstring::npos;
}

bool Knows(const std::vector<LinkPair>& pairs, const LinkPair& pair)
{
    return std::any_of(
        pairs.begin(), pairs.end(),
        [&pair](const LinkPair& other) {
            return other.first == pair.first && other.second == pair.second;
        });
}

void AddMutual(std::vector<LinkPair>& pairs, const QOBClassInfo& first, const QOBClassInfo& second)
{
    for (const ItemInfo* const item : LinkItemsOf(first)) {
        if (!IsA(second, item->target))
            continue;
        for (const ItemInfo* const other : OtherSidesOf(*item, first, second)) {
            // In the plane and in space there are items of one name.
            if (!item->otherSide.empty() && !other->otherSide.empty() &&
                !(Names(item->otherSide, other->name) && Names(other->otherSide, item->name)))
                continue;
            const LinkPair pair{item, other};
            if (!Knows(pairs, pair))
                pairs.push_back(pair);
        }
    }
}

std::vector<LinkPair> FindPairs(const QOBClassInfo& first, const QOBClassInfo& second)
{
    std::vector<LinkPair> pairs;
    AddMutual(pairs, first, second);
    for (const ItemInfo* const item : LinkItemsOf(first))
        if (item->otherSide.empty() && IsA(second, item->target) &&
            OtherSidesOf(*item, first, second).empty())
            pairs.push_back({item, nullptr});
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

bool IsA(const QOBClassInfo& info, std::string_view className)
{
    for (const QOBClassInfo* record = &info; record != nullptr; record = record->getParent())
        if (record->getName() == className)
            return true;
    return false;
}

Entity HeldBy(const ItemInfo& item, const KARMPEntity& entity)
{
    if (item.kind != ItemKind::Reference)
        return {};
    const Value value = item.Get(entity);
    const auto* const held = std::get_if<Entity>(&value);
    return held != nullptr ? *held : Entity();
}

std::vector<Entity> TargetsOf(const ItemInfo& item, const KARMPEntity& entity)
{
    const Value value = item.Get(entity);
    if (const auto* const targets = std::get_if<std::vector<Entity>>(&value))
        return *targets;
    if (const auto* const target = std::get_if<Entity>(&value); target != nullptr && *target)
        return {*target};
    return {};
}

bool Holds(const ItemInfo& item, const KARMPEntity& entity, const Entity& target, int near)
{
    return item.kind == ItemKind::References ? target && item.FindTarget(entity, *target, near) >= 0
                                             : target && HeldBy(item, entity) == target;
}

KARStatus LinkHalf(const ItemInfo& item, KARMPEntity& entity, const Entity& target)
{
    if (item.entryWord.empty())
        return item.AddTarget(entity, target);
    return item.AddTarget(entity, target, item.Count(entity) == 0 ? ParentWord : ChildWord);
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

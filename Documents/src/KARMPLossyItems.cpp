#include "KARMPLossyItems.h"

#include "KARMPGenericFactory.h"
#include "QOBClassInfo.h"

#include <algorithm>
#include <optional>

namespace karmp::documents {

namespace {

// A class that leaves an entity out as a whole has no lossy items for that.
bool IsConditional(const ItemInfo& item)
{
    return std::any_of(
        item.conditions.begin(), item.conditions.end(),
        [](const ItemCondition& condition) { return condition.wanted; });
}

// The application's own text is written unless it is empty; whether a body floats matters to one
// that follows its father, and there it is written.
bool IsWrittenWhereItMatters(const ItemInfo& item)
{
    return item.path == L"entityID" || item.path == L"floating";
}

// A number that is written and not read tells the length of a list, a text what nothing else tells.
bool IsForPeople(const ItemInfo& item)
{
    return item.read == nullptr && item.kind == ItemKind::Text;
}

std::optional<LossReason> ReasonOf(const ItemInfo& item, std::wstring_view version)
{
    if (item.path == L"id" || !item.CanGet() || item.kind == ItemKind::Records ||
        IsWrittenWhereItMatters(item))
        return std::nullopt;
    if (!item.IsHeldAt(version))
        return LossReason::Version;
    if (!item.isReadBack || IsForPeople(item))
        return LossReason::Reading;
    if (item.read != nullptr && IsConditional(item))
        return LossReason::Condition;
    return std::nullopt;
}

bool IsRequiredAt(const ItemInfo& item, std::wstring_view version)
{
    const bool isOlder = !item.since.empty() && !AtLeast(version, item.since);
    if (isOlder && item.older == nullptr)
        return false;
    return (isOlder ? item.older->presence : item.presence) == ItemPresence::Required;
}

} // namespace

bool LossyItem::IsLostOf(const KARMPEntity& entity, ItemValue& value) const
{
    if (reason == LossReason::Condition && item->IsWrittenFor(entity))
        return false;
    if (isEntryWord) {
        const auto words = item->EntryWords(entity);
        const std::wstring_view first = std::get<EnumWord>(fresh).text;
        return std::any_of(words.begin(), words.end(),
                           [first](std::wstring_view word) { return word != first; });
    }
    if (item->kind == ItemKind::References)
        return item->Count(entity) > 0;
    // Numbers and texts, which many constraints have, are compared where they are.
    const auto* const number = std::get_if<double>(&fresh);
    const auto* const text = std::get_if<std::wstring>(&fresh);
    if ((number != nullptr && item->kind == ItemKind::Number) || text != nullptr)
        return KARFailed(item->written->get(&entity, value)) ||
               (text != nullptr ? value.text != *text : value.numbers[0] != *number);
    return item->Get(entity) != fresh;
}

std::wstring LossyItem::Path() const
{
    return isEntryWord ? item->path + L'/' + std::wstring(item->entryWord) : item->path;
}

std::span<const LossyItem> LossyItems::Of(const QOBClassInfo& info)
{
    const auto found = m_made.find(&info);
    return found != m_made.end() ? found->second : m_made.emplace(&info, Make(info)).first->second;
}

bool NeededItem::IsMissingOf(const KARMPEntity& entity, ItemValue& value) const
{
    if (!item->IsWrittenFor(entity))
        return true;
    if (item->kind == ItemKind::Stream)
        return item->Count(entity) == 0;
    if (item->kind != ItemKind::Reference)
        return false;
    value.entity = {};
    return KARFailed(item->written->get(&entity, value)) || !value.entity;
}

std::vector<NeededItem> NeededItemsOf(const QOBClassInfo& info, std::wstring_view version)
{
    std::vector<NeededItem> needed;
    for (const ItemInfo& item : ItemsOf(info)) {
        const bool mayLack = IsConditional(item) || item.kind == ItemKind::Stream ||
                             (item.kind == ItemKind::Reference && item.CanGet());
        const bool isInGroup = item.path.find(L'/') != std::wstring::npos;
        if (mayLack && !isInGroup && item.read != nullptr && IsRequiredAt(item, version))
            needed.push_back({&item});
    }
    return needed;
}

std::vector<LossyItem> LossyItems::Make(const QOBClassInfo& info) const
{
    std::vector<LossyItem> made;
    QOBSharedHandle<KARMPEntity> sample;
    for (const ItemInfo& item : ItemsOf(info)) {
        if (const auto reason = ReasonOf(item, m_version)) {
            if (!sample && KARFailed(KARMPFactory::Create(info.getName(), sample)))
                return made;
            made.push_back({&item, *reason, false, item.Get(*sample)});
        } else if (!item.entryWordSince.empty() && !AtLeast(m_version, item.entryWordSince)) {
            made.push_back({&item, LossReason::Version, true, EnumWord{item.entryWords.front()}});
        }
    }
    return made;
}

} // namespace karmp::documents

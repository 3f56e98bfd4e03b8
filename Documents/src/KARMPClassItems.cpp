#include "KARMPClassItems.h"

#include "KARMPContentItem.h"
#include "QOBClassInfo.h"

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <mutex>

namespace karmp::documents {

const ClassItems& ClassItems::Of(const KARMPEntity& entity)
{
    static std::mutex mutex;
    static std::map<const QOBClassInfo*, std::unique_ptr<const ClassItems>> made;
    const QOBClassInfo& info = entity.getClassInfo();
    const std::lock_guard lock(mutex);
    auto& items = made[&info];
    if (items == nullptr)
        items = std::make_unique<const ClassItems>(info);
    return *items;
}

ClassItems::ClassItems(const QOBClassInfo& info)
    : m_name(info.getName()), m_hash(std::hash<std::string>()(m_name)), m_links(LinkItemsOf(info))
{
    for (const ItemInfo& item : ItemsOf(info)) {
        const bool isLink = item.kind == ItemKind::Reference || item.kind == ItemKind::References;
        const bool isTitle = item.path == L"id" || item.path == L"name";
        if (!item.CanGet() || item.kind == ItemKind::Records) {
            m_others.push_back(&item);
            continue;
        }
        AddGiven(item);
        if (!isTitle && !isLink)
            m_values.push_back(&item);
    }
}

// Numbers side by side stand in elements of their own names.
void ClassItems::AddGiven(const ItemInfo& item)
{
    if (item.written->place != ItemPlace::Inline) {
        m_given.insert(item.path);
        return;
    }
    const std::wstring group = item.path.substr(0, item.path.rfind(L'/') + 1);
    for (const std::wstring_view word : item.words)
        m_given.insert(group + std::wstring(word));
}

const ItemInfo* ClassItems::Find(const std::wstring& path) const
{
    for (const std::span<const ItemInfo* const> items : {std::span(m_values), m_links}) {
        const auto found = std::find_if(items.begin(), items.end(), [&path](const ItemInfo* item) {
            return item->path == path;
        });
        if (found != items.end())
            return *found;
    }
    return nullptr;
}

bool ClassItems::HasMore(const KARMPEntity& entity) const
{
    return std::any_of(
        m_others.begin(), m_others.end(),
        [&entity](const ItemInfo* item) { return item->Count(entity) != 0; });
}

} // namespace karmp::documents

#include "KARMPItems.h"

#include "KARMPContentWalk.h"
#include "QOBClassInfo.h"

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>

namespace karmp {

namespace {

using Target = QOBSharedHandle<KARMPEntity>;

// The names of numbers, each of which has an element; otherwise the item's own.
bool AreNamesSame(const Item& left, const Item& right)
{
    return left.kind == ItemKind::Numbers ? std::equal(left.words.begin(), left.words.end(),
                                                       right.words.begin(), right.words.end())
                                          : left.name == right.name;
}

bool IsReadBack(const ItemInfo& row)
{
    return row.read == nullptr || AreNamesSame(*row.written, *row.read);
}

// An enumeration has one value as a word and as a number.
bool IsSameValue(const Item& left, const Item& right)
{
    const auto kindOf = [](const Item& item) {
        return item.kind == ItemKind::Code ? ItemKind::Word : item.kind;
    };
    return kindOf(left) == kindOf(right);
}

/// The rows of a class, made from its list and those of its bases.
class RowMaker
{
public:
    std::vector<ItemInfo> Make(const Content& content)
    {
        for (const Content* part = &content; part != nullptr;
             part = part->base != nullptr ? &part->base() : nullptr)
            if (part->leftOut != nullptr)
                m_conditions.push_back({part->leftOut, false});
        AddContent(content);
        const bool isFound = content.ReadElement() == content.element;
        for (ItemInfo& row : m_rows)
            row.isReadBack = isFound && IsReadBack(row);
        return std::move(m_rows);
    }
    /// Those of a record.
    std::vector<ItemInfo> MakeFields(const Item& records, std::span<const Item> inner)
    {
        if (records.record != nullptr)
            AddContent(records.record());
        AddItems(inner, {}, {});
        return std::move(m_rows);
    }

private:
    /// Sides that walk an item, by itself or by the group that holds it, and the conditions for
    /// writing.
    struct Sides
    {
        bool written = true;
        bool read = true;
        std::vector<ItemCondition> conditions;
    };

    void AddContent(const Content& content);
    void AddItems(std::span<const Item> items, const std::wstring& path, const Sides& sides);
    void AddRow(const Item& item, std::span<const Item> inner, const std::wstring& path,
                const Sides& sides);
    ItemInfo* WrittenForm(const Item& read);

    std::vector<ItemInfo> m_rows;
    /// The conditions of the class.
    std::vector<ItemCondition> m_conditions;
    /// The items of older versions that stand before what later versions hold, by their paths.
    std::map<std::wstring, const Item*> m_older;
};

std::size_t DoublesOf(const Item& item)
{
    return item.kind == ItemKind::Transformation
               ? item.parts->vector.size() + item.parts->matrix.size()
               : item.words.size();
}

// The word in an attribute of the entries of a list; null without one.
const Item* EntryWordOf(const Item& item)
{
    const bool hasWord = item.kind == ItemKind::References && item.inner > 0;
    return hasWord && (&item)[1].kind == ItemKind::Word ? &item + 1 : nullptr;
}

std::string_view ReasonAgainstSetting(const Item& item)
{
    if (!item.fixedBecause.empty())
        return item.fixedBecause;
    if (item.set == nullptr)
        return "The class itself writes and reads it.";
    return {};
}

// What tells an element from an earlier one of its name: nothing for the first one.
std::wstring NumberAmong(const std::vector<ItemInfo>& rows, const std::wstring& path)
{
    const auto count = std::count_if(rows.begin(), rows.end(), [&path](const ItemInfo& row) {
        return row.path == path || row.path.starts_with(path + L'[');
    });
    return count > 0 ? L'[' + std::to_wstring(count + 1) + L']' : std::wstring();
}

void RowMaker::AddContent(const Content& content)
{
    if (content.base != nullptr)
        AddContent(content.base());
    AddItems(content.items, {}, {true, true, m_conditions});
}

void RowMaker::AddItems(std::span<const Item> items, const std::wstring& path, const Sides& sides)
{
    for (std::size_t i = 0; i < items.size(); i += 1U + items[i].inner) {
        const Item& item = items[i];
        const std::wstring ownPath = path + std::wstring(item.name);
        // What a later version holds in another form.
        if (!item.until.empty()) {
            m_older[ownPath] = &item;
            continue;
        }
        Sides walked{sides.written && item.isWritten, sides.read && item.isRead, sides.conditions};
        if (item.when != nullptr)
            walked.conditions.push_back({item.when, true});
        const auto inner = items.subspan(i + 1, item.inner);
        if (item.kind == ItemKind::Group)
            AddItems(inner, ownPath + L'/', walked);
        else
            AddRow(item, inner, ownPath, walked);
    }
}

// The row that waits for the form that is read: the first one of the name, or of the same shape.
ItemInfo* RowMaker::WrittenForm(const Item& read)
{
    const auto waits = [](const ItemInfo& row) { return row.read == nullptr; };
    const auto find = [&](auto isForm) -> ItemInfo* {
        const auto found = std::find_if(
            m_rows.begin(), m_rows.end(),
            [&](const ItemInfo& row) { return waits(row) && isForm(*row.written); });
        return found != m_rows.end() ? &*found : nullptr;
    };
    if (ItemInfo* const row = find([&](const Item& item) { return item.name == read.name; }))
        return row;
    return find([&](const Item& item) {
        return item.kind == read.kind && DoublesOf(item) == DoublesOf(read);
    });
}

void RowMaker::AddRow(const Item& item, std::span<const Item> inner, const std::wstring& path,
                      const Sides& sides)
{
    if (!sides.written && sides.read) {
        if (ItemInfo* const row = WrittenForm(item)) {
            row->read = &item;
            row->presence = item.presence;
            row->readOnly = ReasonAgainstSetting(item);
            return;
        }
    }
    ItemInfo row;
    row.name = item.name;
    row.path = path + NumberAmong(m_rows, path);
    row.kind = item.kind;
    row.presence = item.presence;
    row.since = item.since;
    row.says = item.says;
    row.quantity = item.quantity;
    row.words = item.words;
    row.shape = item.kind == ItemKind::Transformation ? NumberShape::Transformation : item.shape;
    row.numberCount = DoublesOf(item);
    if (item.target != nullptr)
        row.target = item.target().getName();
    row.otherSide = item.otherSide;
    row.isOwned = item.isOwned;
    row.isFlag = item.isFlag || item.kind == ItemKind::Flag;
    if (item.kind == ItemKind::Records)
        row.fields = RowMaker().MakeFields(item, inner);
    row.isInOrder = item.isInOrder || item.kind == ItemKind::Records;
    if (const Item* const word = EntryWordOf(item)) {
        row.entryWord = word->name;
        row.entryWords = word->words;
        row.entryWordSince = word->since;
    }
    row.written = &item;
    row.conditions = sides.conditions;
    if (const auto older = m_older.find(path);
        older != m_older.end() && IsSameValue(item, *older->second))
        row.older = older->second;
    if (sides.read) {
        row.read = &item;
        row.readOnly = ReasonAgainstSetting(item);
    } else {
        row.readOnly = "It is written and not read.";
    }
    m_rows.push_back(std::move(row));
}

// Whether a name is one of those between the blanks.
bool IsAmong(std::wstring_view name, std::wstring_view names)
{
    while (!names.empty()) {
        const std::size_t end = std::min(names.find(L' '), names.size());
        if (names.substr(0, end) == name)
            return true;
        names.remove_prefix(std::min(end + 1, names.size()));
    }
    return false;
}

bool IsLink(const ItemInfo& item)
{
    return item.kind == ItemKind::Reference || item.kind == ItemKind::References;
}

} // namespace

std::span<const ItemInfo> ItemsOf(std::string_view className)
{
    static std::mutex mutex;
    static std::map<std::string, std::vector<ItemInfo>, std::less<>> made;
    const Content* const content = FindContent(className);
    if (content == nullptr)
        return {};
    const std::lock_guard lock(mutex);
    auto found = made.find(className);
    if (found == made.end())
        found = made.emplace(className, RowMaker().Make(*content)).first;
    return found->second;
}

std::span<const ItemInfo> ItemsOf(const QOBClassInfo& info)
{
    static std::mutex mutex;
    static std::unordered_map<const QOBClassInfo*, std::span<const ItemInfo>> known;
    const std::lock_guard lock(mutex);
    if (const auto found = known.find(&info); found != known.end())
        return found->second;
    // Before the entry, which an allocation that fails would leave empty.
    const auto items = ItemsOf(info.getName());
    return known.emplace(&info, items).first->second;
}

const ItemInfo* FindItem(const QOBClassInfo& info, std::wstring_view pathOrName)
{
    const ItemInfo* named = nullptr;
    bool isOne = true;
    for (const ItemInfo& item : ItemsOf(info)) {
        if (item.path == pathOrName)
            return &item;
        if (item.name == pathOrName) {
            isOne = named == nullptr;
            named = &item;
        }
    }
    return isOne ? named : nullptr;
}

std::vector<const ItemInfo*> OtherSidesOf(const ItemInfo& item, const QOBClassInfo& info,
                                          const QOBClassInfo& target)
{
    std::vector<const ItemInfo*> others;
    for (const ItemInfo* const other : LinkItemsOf(target)) {
        const Item& stored = *other->written;
        const bool isNamed =
            IsAmong(other->name, item.otherSide) || IsAmong(item.name, other->otherSide);
        if (isNamed && (stored.target == nullptr || info.isDerivedFrom(stored.target())))
            others.push_back(other);
    }
    return others;
}

std::span<const ItemInfo* const> LinkItemsOf(const QOBClassInfo& info)
{
    static std::mutex mutex;
    static std::unordered_map<const QOBClassInfo*, std::vector<const ItemInfo*>> made;
    const std::lock_guard lock(mutex);
    if (const auto found = made.find(&info); found != made.end())
        return found->second;
    std::vector<const ItemInfo*> links;
    for (const ItemInfo& item : ItemsOf(info))
        if (IsLink(item) && item.CanGet())
            links.push_back(&item);
    return made.emplace(&info, std::move(links)).first->second;
}

void ForEachTarget(const KARMPEntity& entity,
                   const std::function<void(const ItemInfo&, const Target&)>& visit)
{
    ItemValue value;
    for (const ItemInfo* const item : LinkItemsOf(entity.getClassInfo())) {
        const Item& written = *item->written;
        const bool isList = item->kind == ItemKind::References && written.count != nullptr;
        const int count = isList ? written.count(&entity) : written.get != nullptr ? 1 : 0;
        for (int index = 0; index < count; ++index) {
            value.entity = {};
            const KARStatus status =
                isList ? written.at(&entity, index, value) : written.get(&entity, value);
            if (!KARFailed(status) && value.entity)
                visit(*item, Target::unchecked(value.entity));
        }
    }
}

} // namespace karmp

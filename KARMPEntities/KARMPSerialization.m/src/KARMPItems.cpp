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
using Targets = std::vector<Target>;

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
    if (item.kind == ItemKind::Records)
        return "Its entries are changed by operations of the class.";
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

Target HandleOf(const ItemValue& value)
{
    return Target::unchecked(value.entity);
}

std::vector<double> DoublesIn(const ItemValue& value, std::size_t count)
{
    return {value.numbers.data(), value.numbers.data() + count};
}

ItemData WordIn(const ItemInfo& row, const ItemValue& value)
{
    const auto index = static_cast<std::size_t>(value.number);
    if (row.isFlag)
        return value.number != 0;
    if (index < row.words.size())
        return std::wstring(row.words[index]);
    return value.number;
}

// Calls `visit` with each entry that can be had.
template <class Visit>
void ForEachEntry(const Item& item, const void* owner, Visit visit)
{
    ItemValue value;
    const int count = item.count(owner);
    for (int index = 0; index < count; ++index) {
        value.entity = {};
        if (!KARFailed(item.at(owner, index, value)))
            visit(value);
    }
}

ItemData EntriesIn(const Item& item, const void* owner)
{
    Targets entries;
    ForEachEntry(item, owner, [&](const ItemValue& value) { entries.push_back(HandleOf(value)); });
    return entries;
}

// The double, integer, text or word of a value; false when it is of another kind.
bool TakeValue(const ItemInfo& row, const Item& item, const ItemData& data, ItemValue& value)
{
    const auto* const flag = std::get_if<bool>(&data);
    const auto* const integer = std::get_if<int>(&data);
    const auto* const number = std::get_if<double>(&data);
    const auto* const text = std::get_if<std::wstring>(&data);
    switch (item.kind) {
    case ItemKind::Number:
    case ItemKind::OptionalNumber:
        if (number == nullptr && integer == nullptr)
            return false;
        value.numbers[0] = number != nullptr ? *number : static_cast<double>(*integer);
        value.number = 1;
        return true;
    case ItemKind::Integer:
        if (integer == nullptr)
            return false;
        value.number = *integer;
        return true;
    case ItemKind::Text:
        if (text == nullptr)
            return false;
        value.buffer = *text;
        value.text = value.buffer;
        return true;
    case ItemKind::Flag:
        if (flag == nullptr)
            return false;
        value.number = *flag ? 1 : 0;
        return true;
    case ItemKind::Word:
    case ItemKind::Code: {
        if (flag != nullptr && row.isFlag) {
            value.number = *flag ? 1 : 0;
            return true;
        }
        const auto found = text != nullptr ? std::find(item.words.begin(), item.words.end(), *text)
                                           : item.words.end();
        value.number = static_cast<int>(found - item.words.begin());
        return found != item.words.end();
    }
    case ItemKind::Numbers:
    case ItemKind::Transformation: {
        const auto* const doubles = std::get_if<std::vector<double>>(&data);
        if (doubles == nullptr || doubles->size() != DoublesOf(item))
            return false;
        std::copy(doubles->begin(), doubles->end(), value.numbers.begin());
        return true;
    }
    case ItemKind::Stream: {
        const auto* const bytes = std::get_if<std::vector<unsigned char>>(&data);
        if (bytes != nullptr)
            value.bytes = *bytes;
        return bytes != nullptr;
    }
    default:
        return false;
    }
}

bool IsTarget(const Item& item, const Target& target)
{
    return target && (item.target == nullptr || target->isDerivedFrom(item.target()));
}

KARStatus SetTarget(const Item& item, void* owner, const Target& target)
{
    ItemValue value;
    value.target = &target;
    return item.set(owner, value);
}

// Adds what the list does not hold yet; an entry that is left out could not be taken away.
KARStatus AddTargets(const Item& item, void* owner, const Targets& targets)
{
    const auto held = std::get<Targets>(EntriesIn(item, owner));
    const auto isIn = [](const Targets& list, const Target& target) {
        return std::any_of(
            list.begin(), list.end(),
            [&](const Target& entry) { return entry.get() == target.get(); });
    };
    const bool isWhole = std::all_of(
        held.begin(), held.end(), [&](const Target& entry) { return isIn(targets, entry); });
    const bool areTargets = std::all_of(targets.begin(), targets.end(),
                                        [&](const Target& entry) { return IsTarget(item, entry); });
    if (!isWhole || !areTargets)
        return KARFailure;
    for (const Target& target : targets) {
        if (isIn(held, target))
            continue;
        if (const KARStatus status = SetTarget(item, owner, target); KARFailed(status))
            return status;
    }
    return KARSuccess;
}

bool IsLink(const ItemInfo& item)
{
    return item.kind == ItemKind::Reference || item.kind == ItemKind::References;
}

} // namespace

ItemData ItemInfo::Get(const KARMPEntity& entity) const
{
    return GetFrom(&entity);
}

KARStatus ItemInfo::Set(KARMPEntity& entity, const ItemData& data) const
{
    return SetIn(&entity, data);
}

ItemData ItemInfo::GetFrom(const void* owner) const
{
    if (kind == ItemKind::References && written->count != nullptr)
        return EntriesIn(*written, owner);
    ItemValue value;
    if (written->get == nullptr || KARFailed(written->get(owner, value)))
        return {};
    switch (kind) {
    case ItemKind::Number:
        return value.numbers[0];
    case ItemKind::OptionalNumber:
        return value.number != 0 ? ItemData(value.numbers[0]) : ItemData();
    case ItemKind::Integer:
        return value.number;
    case ItemKind::Flag:
        return value.number != 0;
    case ItemKind::Text:
        return std::wstring(value.text);
    case ItemKind::Word:
    case ItemKind::Code:
        return WordIn(*this, value);
    case ItemKind::Numbers:
    case ItemKind::Transformation:
        return DoublesIn(value, DoublesOf(*written));
    case ItemKind::Reference:
        return value.entity ? ItemData(HandleOf(value)) : ItemData();
    case ItemKind::Stream:
        return std::move(value.bytes);
    default:
        return {};
    }
}

bool ItemInfo::CanGet() const
{
    if (kind == ItemKind::Records)
        return false;
    return written->get != nullptr || (kind == ItemKind::References && written->count != nullptr);
}

int ItemInfo::Count(const KARMPEntity& entity) const
{
    return written->count != nullptr ? written->count(&entity) : -1;
}

bool ItemInfo::IsHeldAt(std::wstring_view version) const
{
    return written->ExistsAt(version) || (older != nullptr && older->ExistsAt(version));
}

bool ItemInfo::IsWrittenFor(const KARMPEntity& entity) const
{
    return std::all_of(
        conditions.begin(), conditions.end(),
        [&entity](const ItemCondition& condition) {
            return condition.holds(&entity) == condition.wanted;
        });
}

std::vector<std::wstring_view> ItemInfo::EntryWords(const KARMPEntity& entity) const
{
    std::vector<std::wstring_view> texts;
    const Item* const word = EntryWordOf(*written);
    if (written->count == nullptr || kind != ItemKind::References)
        return texts;
    ForEachEntry(*written, &entity, [&](const ItemValue& value) {
        const auto row = static_cast<std::size_t>(value.number);
        texts.push_back(word != nullptr && row < word->words.size() ? word->words[row]
                                                                    : std::wstring_view());
    });
    return texts;
}

KARStatus ItemInfo::SetIn(void* owner, const ItemData& data) const
{
    if (!readOnly.empty())
        return KARFailure;
    if (kind == ItemKind::Reference) {
        const auto* const handle = std::get_if<Target>(&data);
        return handle != nullptr && IsTarget(*read, *handle) ? SetTarget(*read, owner, *handle)
                                                             : KARFailure;
    }
    if (kind == ItemKind::References) {
        const auto* const targets = std::get_if<Targets>(&data);
        return targets != nullptr ? AddTargets(*read, owner, *targets) : KARFailure;
    }
    ItemValue value;
    return TakeValue(*this, *read, data, value) ? read->set(owner, value) : KARFailure;
}

std::vector<std::vector<ItemData>> ItemInfo::GetRecords(const KARMPEntity& entity) const
{
    std::vector<std::vector<ItemData>> records;
    if (kind != ItemKind::Records || written->count == nullptr || written->at == nullptr)
        return records;
    const auto made = written->makeRecord != nullptr ? written->makeRecord() : nullptr;
    ItemValue value;
    const int count = written->count(&entity);
    for (int index = 0; index < count; ++index) {
        value.made = made.get();
        if (KARFailed(written->at(&entity, index, value)))
            continue;
        std::vector<ItemData>& record = records.emplace_back();
        for (const ItemInfo& field : fields)
            record.push_back(field.GetFrom(value.record));
    }
    return records;
}

KARStatus ItemInfo::AddRecord(KARMPEntity& entity, std::span<const ItemData> values) const
{
    if (read == nullptr || read->makeRecord == nullptr || values.size() != fields.size())
        return KARFailure;
    const auto made = read->makeRecord();
    for (std::size_t i = 0; i < fields.size(); ++i)
        if (values[i].index() != 0 && KARFailed(fields[i].SetIn(made.get(), values[i])))
            return KARFailure;
    ItemValue value;
    value.record = made.get();
    return read->set(&entity, value);
}

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
    return ItemsOf(info.getName());
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
    for (const ItemInfo* const item : LinkItemsOf(entity.getClassInfo())) {
        const ItemData data = item->Get(entity);
        if (const auto* const target = std::get_if<Target>(&data))
            visit(*item, *target);
        else if (const auto* const targets = std::get_if<Targets>(&data))
            for (const Target& entry : *targets)
                if (entry)
                    visit(*item, entry);
    }
}

} // namespace karmp

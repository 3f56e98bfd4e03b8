// Getting and setting the items of an entity by the table.
#include "KARMPContentItem.h"
#include "KARMPItemRefusal.h"
#include "KARMPItems.h"
#include "QOBClassInfo.h"

#include <algorithm>

namespace karmp {

namespace {

using Target = QOBSharedHandle<KARMPEntity>;
using Targets = std::vector<Target>;

Target HandleOf(const ItemValue& value)
{
    return Target::unchecked(value.entity);
}

bool IsLink(ItemKind kind)
{
    return kind == ItemKind::Reference || kind == ItemKind::References;
}

Value WordIn(const ItemInfo& row, const ItemValue& value)
{
    const auto index = static_cast<std::size_t>(value.number);
    if (row.isFlag)
        return value.number != 0;
    if (index < row.words.size())
        return EnumWord{row.words[index]};
    return value.number;
}

// Calls `visit` with each entry that can be had.
template <class Visit>
void ForEachEntry(const Item& item, const void* owner, Visit visit)
{
    const auto made = item.makeRecord != nullptr ? item.makeRecord() : nullptr;
    ItemValue value;
    const int count = item.count(owner);
    for (int index = 0; index < count; ++index) {
        value.entity = {};
        value.made = made.get();
        if (!KARFailed(item.at(owner, index, value)))
            visit(value);
    }
}

Targets EntriesIn(const Item& item, const void* owner)
{
    Targets entries;
    ForEachEntry(item, owner, [&](const ItemValue& value) { entries.push_back(HandleOf(value)); });
    return entries;
}

bool TakeWord(const ItemInfo& row, const Item& item, const Value& data, ItemValue& value)
{
    if (const auto* const flag = std::get_if<bool>(&data); flag != nullptr && row.isFlag) {
        value.number = *flag ? 1 : 0;
        return true;
    }
    const auto* const word = std::get_if<EnumWord>(&data);
    const auto* const text = std::get_if<std::wstring>(&data);
    if (word == nullptr && text == nullptr)
        return false;
    const std::wstring_view name = word != nullptr ? word->text : std::wstring_view(*text);
    const auto found = std::find(item.words.begin(), item.words.end(), name);
    value.number = static_cast<int>(found - item.words.begin());
    return found != item.words.end();
}

// The content of a value; false when it is of another kind, or of another shape.
bool TakeValue(const ItemInfo& row, const Item& item, const Value& data, ItemValue& value)
{
    const auto take = [&data]<class T>(T& to) {
        const T* const from = std::get_if<T>(&data);
        if (from != nullptr)
            to = *from;
        return from != nullptr;
    };
    switch (item.kind) {
    case ItemKind::Number:
    case ItemKind::OptionalNumber:
        value.number = 1;
        if (const int* const integer = std::get_if<int>(&data)) {
            value.numbers[0] = *integer;
            return true;
        }
        return take(value.numbers[0]);
    case ItemKind::Integer:
        return take(value.number);
    case ItemKind::Text:
        value.text = {};
        if (const auto* const text = std::get_if<std::wstring>(&data)) {
            value.text = *text;
            return true;
        }
        return false;
    case ItemKind::Flag: {
        bool flag = false;
        const bool isFlag = take(flag);
        value.number = flag ? 1 : 0;
        return isFlag;
    }
    case ItemKind::Word:
    case ItemKind::Code:
        return TakeWord(row, item, data, value);
    case ItemKind::Numbers:
    case ItemKind::Transformation: {
        const auto* const numbers = std::get_if<NumberArray>(&data);
        if (numbers == nullptr || numbers->Shape() != row.shape ||
            numbers->size() != row.numberCount)
            return false;
        std::copy(numbers->begin(), numbers->end(), value.numbers.begin());
        return true;
    }
    case ItemKind::Stream:
        return take(value.bytes);
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

// Adds what the list does not hold yet; an entry that is left out stays where it is.
KARStatus AddTargets(const Item& item, void* owner, const Targets& targets)
{
    const Targets held = EntriesIn(item, owner);
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

} // namespace

Value ItemInfo::Get(const KARMPEntity& entity) const
{
    return GetFrom(&entity);
}

KARStatus ItemInfo::Set(KARMPEntity& entity, const Value& value) const
{
    return SetIn(&entity, value);
}

KARStatus ItemInfo::Set(KARMPEntity& entity, const Value& value, std::string& why) const
{
    const KARStatus status = SetIn(&entity, value);
    if (KARFailed(status))
        why = RefusalOf(*this, value);
    return status;
}

bool ItemInfo::Takes(const Value& value) const
{
    const Item& item = read != nullptr ? *read : *written;
    if (kind == ItemKind::Reference) {
        const auto* const linked = std::get_if<Target>(&value);
        return linked != nullptr ? IsTarget(item, *linked)
                                 : value.IsNone() && item.remove != nullptr;
    }
    if (kind == ItemKind::References) {
        const auto* const targets = std::get_if<Targets>(&value);
        return targets != nullptr &&
               std::all_of(targets->begin(), targets->end(),
                           [&item](const Target& entry) { return IsTarget(item, entry); });
    }
    if (kind == ItemKind::Records)
        return std::holds_alternative<std::vector<RecordValues>>(value);
    if (kind == ItemKind::OptionalNumber && value.IsNone())
        return true;
    ItemValue taken;
    return TakeValue(*this, item, value, taken);
}

Value ItemInfo::GetFrom(const void* owner) const
{
    if (written->count != nullptr && kind == ItemKind::References)
        return EntriesIn(*written, owner);
    if (written->at != nullptr && kind == ItemKind::Records)
        return RecordsIn(owner);
    ItemValue value;
    if (written->get == nullptr || KARFailed(written->get(owner, value)))
        return {};
    switch (kind) {
    case ItemKind::Number:
        return value.numbers[0];
    case ItemKind::OptionalNumber:
        return value.number != 0 ? Value(value.numbers[0]) : Value();
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
        return NumberArray(shape, {value.numbers.data(), numberCount});
    case ItemKind::Reference:
        return value.entity ? Value(HandleOf(value)) : Value();
    case ItemKind::Stream:
        return std::move(value.bytes);
    default:
        return {};
    }
}

bool ItemInfo::CanGet() const
{
    return written->get != nullptr || written->at != nullptr;
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
    if (written->count == nullptr || kind != ItemKind::References)
        return texts;
    ForEachEntry(*written, &entity, [&](const ItemValue& value) {
        const auto row = static_cast<std::size_t>(value.number);
        texts.push_back(row < entryWords.size() ? entryWords[row] : std::wstring_view());
    });
    return texts;
}

Target ItemInfo::TargetAt(const KARMPEntity& entity, int index, std::wstring_view& word) const
{
    word = {};
    if (kind != ItemKind::References || index < 0 || index >= Count(entity))
        return {};
    ItemValue value;
    if (KARFailed(written->at(&entity, index, value)))
        return {};
    const auto row = static_cast<std::size_t>(value.number);
    if (row < entryWords.size())
        word = entryWords[row];
    return HandleOf(value);
}

int ItemInfo::FindTarget(const KARMPEntity& entity, const KARMPEntity& linked, int first) const
{
    std::wstring_view word;
    for (const int near : {first, first - 1})
        if (TargetAt(entity, near, word).get() == &linked)
            return near;
    const int count = Count(entity);
    for (int index = 0; index < count; ++index)
        if (TargetAt(entity, index, word).get() == &linked)
            return index;
    return -1;
}

KARStatus ItemInfo::SetIn(void* owner, const Value& data) const
{
    if (!readOnly.empty())
        return KARFailure;
    if (kind == ItemKind::Reference)
        return SetTargetIn(owner, data);
    if (kind == ItemKind::References) {
        const auto* const targets = std::get_if<Targets>(&data);
        return targets != nullptr ? AddTargets(*read, owner, *targets) : KARFailure;
    }
    if (kind == ItemKind::Records)
        return AddRecords(owner, data);
    ItemValue value;
    if (kind == ItemKind::OptionalNumber && data.IsNone())
        return read->remove(owner, value);
    return TakeValue(*this, *read, data, value) ? read->set(owner, value) : KARFailure;
}

KARStatus ItemInfo::SetTargetIn(void* owner, const Value& data) const
{
    if (const auto* const handle = std::get_if<Target>(&data))
        return IsTarget(*read, *handle) ? SetTarget(*read, owner, *handle) : KARFailure;
    if (!data.IsNone() || read->remove == nullptr)
        return KARFailure;
    ItemValue held;
    if (KARFailed(written->get(owner, held)) || !held.entity)
        return KARUnchanged;
    const Target linked = HandleOf(held);
    ItemValue value;
    value.target = &linked;
    return read->remove(owner, value);
}

KARStatus ItemInfo::AddTarget(KARMPEntity& entity, const Target& linked,
                              std::wstring_view word) const
{
    if (!IsLink(kind) || !readOnly.empty() || !IsTarget(*read, linked))
        return KARFailure;
    ItemValue value;
    value.target = &linked;
    if (!word.empty()) {
        const auto found = std::find(entryWords.begin(), entryWords.end(), word);
        if (found == entryWords.end())
            return KARFailure;
        value.number = static_cast<int>(found - entryWords.begin());
    }
    return read->set(&entity, value);
}

bool ItemInfo::CanRemoveTarget() const
{
    return IsLink(kind) && readOnly.empty() && read->remove != nullptr;
}

KARStatus ItemInfo::RemoveTarget(KARMPEntity& entity, const Target& linked) const
{
    if (!CanRemoveTarget() || !IsTarget(*read, linked))
        return KARFailure;
    ItemValue value;
    value.target = &linked;
    return read->remove(&entity, value);
}

std::vector<RecordValues> ItemInfo::RecordsIn(const void* owner) const
{
    std::vector<RecordValues> records;
    ForEachEntry(*written, owner, [&](const ItemValue& value) {
        RecordValues& record = records.emplace_back();
        record.reserve(fields.size());
        for (const ItemInfo& field : fields)
            record.push_back(field.GetFrom(value.record));
    });
    return records;
}

std::vector<RecordValues> ItemInfo::GetRecords(const KARMPEntity& entity) const
{
    return kind == ItemKind::Records && written->at != nullptr ? RecordsIn(&entity)
                                                               : std::vector<RecordValues>();
}

namespace {

/// Takes the records back that were added, unless they are kept.
class AddedRecords
{
public:
    AddedRecords(const Item& item, void* owner)
        : m_item(item), m_owner(owner), m_former(item.count(owner))
    {}
    ~AddedRecords()
    {
        if (m_isKept || m_item.remove == nullptr)
            return;
        ItemValue value;
        value.number = m_former;
        m_item.remove(m_owner, value);
    }
    AddedRecords(const AddedRecords&) = delete;
    AddedRecords& operator=(const AddedRecords&) = delete;

    void Keep() { m_isKept = true; }

private:
    const Item& m_item;
    void* m_owner;
    int m_former;
    bool m_isKept = false;
};

} // namespace

// Adds what comes behind the records that are held, which stay as they are.
KARStatus ItemInfo::AddRecords(void* owner, const Value& data) const
{
    const auto* const records = std::get_if<std::vector<RecordValues>>(&data);
    if (records == nullptr)
        return KARFailure;
    const std::vector<RecordValues> held = RecordsIn(owner);
    if (held.size() > records->size() || !std::equal(held.begin(), held.end(), records->begin()))
        return KARFailure;
    AddedRecords added(*written, owner);
    for (std::size_t i = held.size(); i < records->size(); ++i)
        if (const KARStatus status = AddRecordIn(owner, (*records)[i]); KARFailed(status))
            return status;
    added.Keep();
    return KARSuccess;
}

KARStatus ItemInfo::AddRecordIn(void* owner, std::span<const Value> values) const
{
    if (read == nullptr || read->makeRecord == nullptr || read->set == nullptr ||
        values.size() != fields.size())
        return KARFailure;
    const auto made = read->makeRecord();
    for (std::size_t i = 0; i < fields.size(); ++i)
        if (!values[i].IsNone() && KARFailed(fields[i].SetIn(made.get(), values[i])))
            return KARFailure;
    ItemValue value;
    value.record = made.get();
    return read->set(owner, value);
}

KARStatus ItemInfo::AddRecord(KARMPEntity& entity, std::span<const Value> values) const
{
    return AddRecordIn(&entity, values);
}

} // namespace karmp

#include "KARMPSchema.h"

#include "KARMPContentWalk.h"
#include "QOBClassInfo.h"

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>

namespace karmp {

namespace {

using SchemaItems = std::vector<SchemaItem>;

/// Makes the schema of a class from its list and those of its bases.
class SchemaMaker
{
public:
    SchemaItem Make(const Content& content) const;

private:
    SchemaItem MakeElement(const Content& content) const;
    void AddContent(const Content& content, SchemaItem& holder) const;
    void AddItems(std::span<const Item> items, SchemaItem& holder) const;
    void AddItem(const Item& item, std::span<const Item> inner, SchemaItem& holder) const;
    static void Add(SchemaItem&& item, ItemPlace place, SchemaItem& holder);
    static void Merge(SchemaItem& earlier, SchemaItem&& later);
};

SchemaItem Named(std::wstring_view name, ItemKind kind, std::string_view says,
                 ItemPresence presence = ItemPresence::Reported)
{
    SchemaItem made;
    made.name = name;
    made.kind = kind;
    made.says = says;
    made.presence = presence;
    return made;
}

SchemaItem Described(const Item& item, ItemKind kind)
{
    SchemaItem made = Named(item.name, kind, item.says, item.presence);
    made.quantity = item.quantity;
    made.since = item.since;
    made.until = item.until;
    made.isWritten = item.isWritten;
    made.isRead = item.isRead;
    return made;
}

void AddNumbers(std::span<const std::wstring_view> names, const Item& item, ItemPresence presence,
                SchemaItem& holder)
{
    for (const std::wstring_view name : names) {
        SchemaItem number = Described(item, ItemKind::Number);
        number.name = name;
        number.presence = presence;
        number.since = {};
        number.until = {};
        holder.elements.push_back(std::move(number));
    }
}

SchemaItem NumberGroup(std::wstring_view name, std::string_view says,
                       std::span<const std::wstring_view> names, Quantity quantity)
{
    SchemaItem group = Named(name, ItemKind::Group, says);
    for (const std::wstring_view component : names) {
        group.elements.push_back(Named(component, ItemKind::Number, says));
        group.elements.back().quantity = quantity;
    }
    return group;
}

void AddReferenceAttributes(SchemaItem& reference)
{
    reference.attributes = {
        Named(L"id", ItemKind::Text, "The identifier of the entity.", ItemPresence::Required),
        Named(L"name", ItemKind::Text, "The entity's name, for people.", ItemPresence::Optional)};
}

void Link(const Item& item, SchemaItem& reference)
{
    if (item.target != nullptr)
        reference.target = item.target().getName();
    reference.otherSide = item.otherSide;
    reference.isOwned = item.isOwned;
    AddReferenceAttributes(reference);
    if (item.isWithoutTarget)
        reference.attributes.front().presence = ItemPresence::Optional;
}

// The entry of a list, within its container.
SchemaItem Entry(const Item& item, ItemKind kind)
{
    SchemaItem entry = Named(item.entry, kind, item.says, ItemPresence::Optional);
    entry.repeats = true;
    entry.anyName = item.anyName;
    return entry;
}

bool DoVersionsMeet(const SchemaItem& left, const SchemaItem& right)
{
    const auto ends = [](std::wstring_view until, std::wstring_view since) {
        return !until.empty() && !since.empty() && AtLeast(since, until);
    };
    return !ends(left.until, right.since) && !ends(right.until, left.since);
}

SchemaItem* FindItem(SchemaItems& items, std::wstring_view name)
{
    const auto found = std::find_if(items.begin(), items.end(),
                                    [name](const SchemaItem& item) { return item.name == name; });
    return found != items.end() ? &*found : nullptr;
}

// What one of two forms alone holds cannot be missed in the other.
void JoinChildren(SchemaItems& earlier, SchemaItems&& later)
{
    for (SchemaItem& item : earlier)
        if (FindItem(later, item.name) == nullptr)
            item.presence = ItemPresence::Optional;
    for (SchemaItem& item : later) {
        if (FindItem(earlier, item.name) == nullptr) {
            item.presence = ItemPresence::Optional;
            earlier.push_back(std::move(item));
        }
    }
}

template <class Change>
void ChangeTree(SchemaItem& item, const Change& change)
{
    change(item);
    for (SchemaItem& attribute : item.attributes)
        ChangeTree(attribute, change);
    for (SchemaItem& element : item.elements)
        ChangeTree(element, change);
}

// What is not read cannot be missed.
void MakeWrittenOnly(SchemaItem& item)
{
    ChangeTree(
        item,
        [](SchemaItem& inner) {
            inner.presence = ItemPresence::Optional;
            inner.isRead = false;
        });
}

void MakeReadOnly(SchemaItem& item)
{
    ChangeTree(
        item, [](SchemaItem& inner) { inner.isWritten = false; });
}

// Adds the items of the form that is written where they stand beside those that are read.
void AddWritten(SchemaItems& read, SchemaItems&& written)
{
    for (SchemaItem& item : written) {
        if (SchemaItem* const known = FindItem(read, item.name)) {
            known->isWritten = true;
            AddWritten(known->attributes, std::move(item.attributes));
            AddWritten(known->elements, std::move(item.elements));
        } else {
            read.push_back(std::move(item));
        }
    }
}

// Two items of one name at one version: the forms of an item that are written and read, or two
// elements of a row that are told apart by their order.
void SchemaMaker::Merge(SchemaItem& earlier, SchemaItem&& later)
{
    if (earlier.isRead != later.isRead) {
        if (!earlier.isRead)
            std::swap(earlier, later);
        earlier.isWritten = true;
        AddWritten(earlier.attributes, std::move(later.attributes));
        AddWritten(earlier.elements, std::move(later.elements));
        return;
    }
    earlier.repeats = true;
    JoinChildren(earlier.attributes, std::move(later.attributes));
    JoinChildren(earlier.elements, std::move(later.elements));
}

void SchemaMaker::Add(SchemaItem&& item, ItemPlace place, SchemaItem& holder)
{
    if (!item.isRead)
        MakeWrittenOnly(item);
    if (!item.isWritten)
        MakeReadOnly(item);
    SchemaItems& items = place == ItemPlace::Attribute ? holder.attributes : holder.elements;
    for (SchemaItem& known : items)
        if (known.name == item.name && DoVersionsMeet(known, item))
            return Merge(known, std::move(item));
    items.push_back(std::move(item));
}

void SchemaMaker::AddItems(std::span<const Item> items, SchemaItem& holder) const
{
    for (std::size_t i = 0; i < items.size(); i += 1U + items[i].inner)
        AddItem(items[i], items.subspan(i + 1, items[i].inner), holder);
}

void SchemaMaker::AddItem(const Item& item, std::span<const Item> inner, SchemaItem& holder) const
{
    SchemaItem made = Described(item, ItemKind::Group);
    switch (item.kind) {
    case ItemKind::Number:
    case ItemKind::Integer:
    case ItemKind::Flag:
    case ItemKind::Text:
    case ItemKind::Word:
    case ItemKind::Code:
        made.kind = item.kind;
        made.words.assign(item.words.begin(), item.words.end());
        break;
    case ItemKind::Stream:
        made.kind = ItemKind::Text;
        if (item.place == ItemPlace::Element)
            made.attributes.push_back(Named(L"length", ItemKind::Integer, "How many bytes it is."));
        break;
    case ItemKind::Numbers:
        if (item.place == ItemPlace::Inline) {
            SchemaItem numbers;
            AddNumbers(item.words, item, item.presence, numbers);
            for (SchemaItem& number : numbers.elements) {
                number.since = item.since;
                number.until = item.until;
                Add(std::move(number), ItemPlace::Element, holder);
            }
            return;
        }
        AddNumbers(item.words, item, ItemPresence::Reported, made);
        break;
    case ItemKind::Transformation:
        made.elements = {
            NumberGroup(item.parts->translation, "The shift.", item.parts->vector, item.quantity),
            NumberGroup(item.parts->rotation, "The rotation matrix by columns.", item.parts->matrix,
                        KARMPPhysicalQuantity::NoPhysicalQuantity)};
        break;
    case ItemKind::OptionalNumber:
        made.elements = {Named(item.words[0], ItemKind::Flag, "Whether there is a number."),
                         Named(item.words[1], ItemKind::Number, item.says, ItemPresence::Optional)};
        made.elements[1].quantity = item.quantity;
        break;
    case ItemKind::Reference:
        made.kind = ItemKind::Reference;
        Link(item, made);
        break;
    case ItemKind::References: {
        SchemaItem entry = Entry(item, ItemKind::Reference);
        Link(item, entry);
        AddItems(inner, entry);
        made.elements.push_back(std::move(entry));
        break;
    }
    case ItemKind::Records: {
        SchemaItem entry = Entry(item, ItemKind::Group);
        if (item.record != nullptr)
            AddContent(item.record(), entry);
        AddItems(inner, entry);
        made.elements.push_back(std::move(entry));
        if (!item.countName.empty()) {
            made.attributes.push_back(
                Named(item.countName, ItemKind::Integer, "How many entries there are."));
            MakeWrittenOnly(made.attributes.back());
        }
        break;
    }
    case ItemKind::Group:
        AddItems(inner, made);
        if (item.anyName) {
            for (SchemaItem& element : made.elements) {
                element.anyName = true;
                element.repeats = true;
                element.presence = ItemPresence::Optional;
            }
        }
        break;
    }
    Add(std::move(made), item.place, holder);
}

void SchemaMaker::AddContent(const Content& content, SchemaItem& holder) const
{
    if (content.base != nullptr)
        AddContent(content.base(), holder);
    AddItems(content.items, holder);
}

SchemaItem SchemaMaker::MakeElement(const Content& content) const
{
    SchemaItem element =
        Named(content.element, ItemKind::Group, content.says, ItemPresence::Optional);
    AddContent(content, element);
    return element;
}

// A class whose reader looks for another element finds it within the one that is written, of which
// it takes the attributes alone.
SchemaItem SchemaMaker::Make(const Content& content) const
{
    SchemaItem element = MakeElement(content);
    if (content.ReadElement() == content.element)
        return element;
    SchemaItem inner = element;
    inner.name = content.ReadElement();
    inner.presence = ItemPresence::Required;
    MakeReadOnly(inner);
    for (SchemaItem& item : element.elements)
        MakeWrittenOnly(item);
    element.elements.push_back(std::move(inner));
    return element;
}

} // namespace

const SchemaItem* SchemaOf(std::string_view className)
{
    static std::mutex mutex;
    static std::map<std::string, std::unique_ptr<const SchemaItem>, std::less<>> made;
    const Content* const content = FindContent(className);
    if (content == nullptr || !content->isInDocuments)
        return nullptr;
    const std::lock_guard lock(mutex);
    auto found = made.find(className);
    if (found == made.end())
        found = made.emplace(className,
                             std::make_unique<const SchemaItem>(SchemaMaker().Make(*content)))
                    .first;
    return found->second.get();
}

} // namespace karmp

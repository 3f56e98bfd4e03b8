// Items of a content list that hold records: values of a class that is no entity, each with items
// of its own.
//
//     Records<&C::GetCount, &C::GetTerm, &C::AddTerm>(
//         L"Terms", L"Term", "The terms of the sum.",
//         Number<&Term::factor>(L"Factor", "What the term is multiplied by."))
//         .CountedBy(L"number")
#pragma once

#include "KARMPContent.h"

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

namespace karmp {

/// Count and entries of a member that is a sequence of records, or of pointers to records.
template <auto Sequence>
struct ListedRecords
{
    using C = typename TraitsOf<Sequence>::Class;
    static int Count(const void* owner)
    {
        return static_cast<int>((OwnerAs<C>(owner).*Sequence).size());
    }
    static KARStatus Fetch(const void* owner, int index, ItemValue& value)
    {
        const auto& entry = (OwnerAs<C>(owner).*Sequence)[static_cast<std::size_t>(index)];
        if constexpr (std::is_pointer_v<std::remove_cvref_t<decltype(entry)>>)
            value.record = entry;
        else
            value.record = &entry;
        return value.record != nullptr ? KARSuccess : KARFailure;
    }
};

/// What fills a record by its index: an operation, or a function with the object.
template <class Getter>
struct RecordGetter;
template <class C, class R>
struct RecordGetter<KARStatus (C::*)(int, R&) const>
{
    using Class = C;
};
template <class C, class R>
struct RecordGetter<KARStatus (*)(const C&, int, R&)>
{
    using Class = C;
};
/// Count and entries of records that a pair of operations gives.
template <auto CountOf, auto GetAt, class Record>
struct CountedRecords
{
    using C = typename RecordGetter<std::remove_const_t<decltype(GetAt)>>::Class;
    static int Count(const void* owner) { return std::invoke(CountOf, OwnerAs<C>(owner)); }
    static KARStatus Fetch(const void* owner, int index, ItemValue& value)
    {
        value.record = value.made;
        return std::invoke(GetAt, OwnerAs<C>(owner), index, *static_cast<Record*>(value.made));
    }
};

/// Adds the record that was read.
template <auto Add>
KARStatus AddRecord(void* owner, const ItemValue& value)
{
    using Traits = TraitsOf<Add>;
    return Traits::Set(Add, OwnerAs<typename Traits::Class>(owner),
                       *static_cast<const typename Traits::Value*>(value.record));
}

/// Makes a record that is empty.
template <class Made>
std::shared_ptr<void> MakeRecord()
{
    return std::make_shared<Made>();
}
/// Lets programs add records, which the class's code writes and reads, by the table of items. `Add`
/// is the operation that adds one; its argument's class is that of the records.
template <auto Add, std::size_t N>
constexpr ItemList<N> AddedBy(ItemList<N> records)
{
    Item& item = records.First();
    item.set = &AddRecord<Add>;
    item.hasSetter = true;
    item.makeRecord = &MakeRecord<typename TraitsOf<Add>::Value>;
    return records;
}

template <class Entries, auto Add, std::size_t... N>
constexpr auto MakeRecords(std::wstring_view name, std::wstring_view entry, std::string_view says,
                           const ItemList<N>&... inner)
{
    auto list = Group(name, says, inner...);
    Item& item = list.First();
    item.entry = entry;
    item.kind = ItemKind::Records;
    item.count = &Entries::Count;
    item.at = &Entries::Fetch;
    return AddedBy<Add>(list);
}
/// An element, there without records too, with an element for each record, which holds the inner
/// items: their owner is the record. `Add` is the operation that adds a record that was read; its
/// argument's class is that of the records. One that lacks a required item is not added.
template <auto Sequence, auto Add, std::size_t... N>
constexpr auto Records(std::wstring_view name, std::wstring_view entry, std::string_view says,
                       const ItemList<N>&... inner)
{
    return MakeRecords<ListedRecords<Sequence>, Add>(name, entry, says, inner...);
}
/// The same by the operations that count the records and fill one by its index. A record that
/// cannot be had is a failed check and left out.
template <auto CountOf, auto GetAt, auto Add, std::size_t... N>
constexpr auto Records(std::wstring_view name, std::wstring_view entry, std::string_view says,
                       const ItemList<N>&... inner)
{
    using Record = typename TraitsOf<Add>::Value;
    return MakeRecords<CountedRecords<CountOf, GetAt, Record>, Add>(name, entry, says, inner...);
}

/// Records that the class's code writes and reads; `record` is the content of each.
template <auto Sequence>
constexpr ItemList<1> DescribedRecords(std::wstring_view name, std::wstring_view entry,
                                       const Content& (*record)(), std::string_view says,
                                       Where where = Where::current())
{
    auto list = Described(ItemKind::Records, name, says, where).Optional();
    Item& item = list.First();
    item.entry = entry;
    item.record = record;
    item.count = &ListedRecords<Sequence>::Count;
    item.at = &ListedRecords<Sequence>::Fetch;
    return list;
}
/// The same without a way to them; `inner` is what each entry holds.
template <std::size_t... N>
constexpr auto DescribedRecords(std::wstring_view name, std::wstring_view entry,
                                std::string_view says, const ItemList<N>&... inner)
{
    auto list = Group(name, says, inner...);
    list.First().kind = ItemKind::Records;
    list.First().entry = entry;
    list.First().isCoded = true;
    return list;
}

} // namespace karmp

// What takes records back that the table of items added, when one behind them is refused.
#pragma once

#include "KARMPContent.h"

#include <type_traits>

namespace karmp {

/// Shortens a member that is a sequence of records, or of pointers to records that the object owns,
/// or the number of the records that count.
template <auto Member>
void Shorten(typename TraitsOf<Member>::Class& owner, int count)
{
    auto& held = owner.*Member;
    if constexpr (std::is_same_v<std::remove_cvref_t<decltype(held)>, int>) {
        held = count;
    } else {
        for (auto left = held.size(); left > static_cast<std::size_t>(count); --left) {
            if constexpr (std::is_pointer_v<std::remove_cvref_t<decltype(held.back())>>)
                delete held.back();
            held.pop_back();
        }
    }
}

template <class F>
struct OwnerOfShortening;
template <class C>
struct OwnerOfShortening<void (*)(C&, int)>
{
    using Class = C;
};
/// Such a function as an item has it: the value's number is the count of the records that stay.
template <auto Function>
KARStatus TakeBackRecords(void* owner, const ItemValue& value)
{
    using C = typename OwnerOfShortening<std::remove_const_t<decltype(Function)>>::Class;
    Function(OwnerAs<C>(owner), value.number);
    return KARSuccess;
}

/// Lets records that were added be taken back from the end, by a function of the object and of the
/// count of those that stay. It must not fail.
template <auto Function, std::size_t N>
constexpr ItemList<N> TakenBackBy(ItemList<N> records)
{
    records.First().remove = &TakeBackRecords<Function>;
    return records;
}
/// The same from the member that holds or counts them.
template <auto Member, std::size_t N>
constexpr ItemList<N> TakenBackFrom(const ItemList<N>& records)
{
    return TakenBackBy<&Shorten<Member>>(records);
}

} // namespace karmp

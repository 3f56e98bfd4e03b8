// How an item reaches its member: from a data member, a getter or a setter to one form of function
// that all items share.
#pragma once

#include "KARMPContentItem.h"
#include "KARMPEntity.h"
#include "KARMath3x3Matrix.h"
#include "KARMathDirection.h"
#include "KARMathTransformation.h"
#include "KARMathTransformation2D.h"
#include "KARTextConversion.h"
#include "KARUnicodeString.h"

#include <type_traits>
#include <utility>

namespace karmp {

/// The owner of an item as its class.
template <class C>
const C& OwnerAs(const void* owner)
{
    if constexpr (std::is_base_of_v<KARMPEntity, C>)
        return *static_cast<const C*>(static_cast<const KARMPEntity*>(owner));
    else
        return *static_cast<const C*>(owner);
}
template <class C>
C& OwnerAs(void* owner)
{
    return const_cast<C&>(OwnerAs<C>(static_cast<const void*>(owner)));
}
/// The address by which items know an owner.
template <class C>
const void* OwnerOf(const C& object)
{
    if constexpr (std::is_base_of_v<KARMPEntity, C>)
        return static_cast<const KARMPEntity*>(&object);
    else
        return &object;
}
template <class C>
void* OwnerOf(C& object)
{
    return const_cast<void*>(OwnerOf(std::as_const(object)));
}

/// What is known of a way to a value: the class, the value's type, and how to go it.
template <class Access>
struct AccessTraits;

template <class C, class T>
requires std::is_object_v<T>
struct AccessTraits<T C::*>
{
    using Class = C;
    using Value = T;
    static constexpr bool Stores = true;
    static KARStatus Get(T C::*member, const C& owner, T& value)
    {
        value = owner.*member;
        return KARSuccess;
    }
    static KARStatus Set(T C::*member, C& owner, const T& value)
    {
        owner.*member = value;
        return KARSuccess;
    }
};

/// A getter that returns the value.
template <class Function, class C, class R>
struct ReturningGetter
{
    using Class = C;
    using Value = std::remove_cvref_t<R>;
    static constexpr bool Stores = false;
    static KARStatus Get(Function function, const C& owner, Value& value)
    {
        value = std::invoke(function, owner);
        return KARSuccess;
    }
};
template <class C, class R>
struct AccessTraits<R (C::*)() const> : ReturningGetter<R (C::*)() const, C, R>
{};
template <class C, class R>
struct AccessTraits<R (C::*)() const noexcept> : ReturningGetter<R (C::*)() const noexcept, C, R>
{};
template <class C, class R>
struct AccessTraits<R (*)(const C&)> : ReturningGetter<R (*)(const C&), C, R>
{};

/// A getter that fills its argument and returns a status.
template <class Function, class C, class T>
struct FillingGetter
{
    using Class = C;
    using Value = T;
    static constexpr bool Stores = false;
    static KARStatus Get(Function function, const C& owner, T& value)
    {
        return std::invoke(function, owner, value);
    }
};
template <class C, class T>
struct AccessTraits<KARStatus (C::*)(T&) const> : FillingGetter<KARStatus (C::*)(T&) const, C, T>
{};
template <class C, class T>
requires(!std::is_const_v<T>) struct AccessTraits<KARStatus (*)(const C&, T&)>
    : FillingGetter<KARStatus (*)(const C&, T&), C, T>
{};

/// A setter.
template <class Function, class C, class R, class T>
struct CalledSetter
{
    using Class = C;
    using Value = std::remove_cvref_t<T>;
    static constexpr bool Stores = true;
    template <class V>
    static KARStatus Set(Function function, C& owner, V&& value)
    {
        if constexpr (std::is_void_v<R>) {
            std::invoke(function, owner, std::forward<V>(value));
            return KARSuccess;
        } else {
            return std::invoke(function, owner, std::forward<V>(value));
        }
    }
};
template <class C, class R, class T>
struct AccessTraits<R (C::*)(T)> : CalledSetter<R (C::*)(T), C, R, T>
{};
template <class C, class R, class T>
requires(!std::is_const_v<C>) struct AccessTraits<R (*)(C&, T)>
    : CalledSetter<R (*)(C&, T), C, R, T>
{};

/// Something that is told of without a value.
template <class C, class R>
struct AccessTraits<R (C::*)()>
{
    using Class = C;
    using Value = void;
};

template <auto Access>
using TraitsOf = AccessTraits<std::remove_const_t<decltype(Access)>>;

/// The way to one entry of a member that is an array: `Number<At<&C::m_friction, 2>>(...)`.
template <auto Array, std::size_t Index>
struct ArrayEntry
{};
template <auto Array, std::size_t Index>
inline constexpr ArrayEntry<Array, Index> At{};

template <auto Array, std::size_t Index>
struct AccessTraits<ArrayEntry<Array, Index>>
{
    using Class = typename TraitsOf<Array>::Class;
    using Value = typename TraitsOf<Array>::Value::value_type;
    static constexpr bool Stores = true;
    static KARStatus Get(ArrayEntry<Array, Index>, const Class& owner, Value& value)
    {
        value = std::get<Index>(owner.*Array);
        return KARSuccess;
    }
    static KARStatus Set(ArrayEntry<Array, Index>, Class& owner, const Value& value)
    {
        std::get<Index>(owner.*Array) = value;
        return KARSuccess;
    }
};

/// The way to a value of a member of the owner: `Number<Within<&C::m_data, &Data::m_depth>>(...)`.
template <auto Member, auto Access>
struct MemberAccess
{};
template <auto Member, auto Access>
inline constexpr MemberAccess<Member, Access> Within{};

template <auto Member, auto Access>
struct AccessTraits<MemberAccess<Member, Access>>
{
    using Class = typename TraitsOf<Member>::Class;
    using Value = typename TraitsOf<Access>::Value;
    static constexpr bool Stores = TraitsOf<Access>::Stores;
    static KARStatus Get(MemberAccess<Member, Access>, const Class& owner, Value& value)
    {
        return TraitsOf<Access>::Get(Access, owner.*Member, value);
    }
    template <class V>
    static KARStatus Set(MemberAccess<Member, Access>, Class& owner, V&& value)
    {
        return TraitsOf<Access>::Set(Access, owner.*Member, std::forward<V>(value));
    }
};

/// A way that a class inherits, with that class as the owner, as records need it. The way to a
/// handle then always gives one, null or not.
template <class C, auto Access>
struct InheritedAccess
{};
template <class C, auto Access>
inline constexpr InheritedAccess<C, Access> As{};

template <class C, auto Access>
struct AccessTraits<InheritedAccess<C, Access>>
{
    using Class = C;
    using Value = typename TraitsOf<Access>::Value;
    static constexpr bool Stores = TraitsOf<Access>::Stores;
    static KARStatus Get(InheritedAccess<C, Access>, const C& owner, Value& value)
    {
        return TraitsOf<Access>::Get(Access, owner, value);
    }
    template <class V>
    static KARStatus Set(InheritedAccess<C, Access>, C& owner, V&& value)
    {
        return TraitsOf<Access>::Set(Access, owner, std::forward<V>(value));
    }
};

/// How a type of value stands in an ItemValue.
template <class T>
struct ItemConversion;

template <>
struct ItemConversion<double>
{
    static void Put(double from, ItemValue& to) { to.numbers[0] = from; }
    static double Take(const ItemValue& from) { return from.numbers[0]; }
};

template <class T>
requires std::is_integral_v<T> || std::is_enum_v<T>
struct ItemConversion<T>
{
    static void Put(T from, ItemValue& to) { to.number = static_cast<int>(from); }
    static T Take(const ItemValue& from) { return static_cast<T>(from.number); }
};

template <>
struct ItemConversion<std::wstring>
{
    static void Put(std::wstring&& from, ItemValue& to)
    {
        to.buffer = std::move(from);
        to.text = to.buffer;
    }
    static std::wstring Take(const ItemValue& from) { return std::wstring(from.text); }
};
/// Refers to a text of the owner.
template <>
struct ItemConversion<std::wstring_view>
{
    static void Put(std::wstring_view from, ItemValue& to) { to.text = from; }
    static std::wstring_view Take(const ItemValue& from) { return from.text; }
};
template <>
struct ItemConversion<KARString>
{
    static void Put(const KARString& from, ItemValue& to)
    {
        ItemConversion<std::wstring>::Put(kar::ToWide(from.Text()), to);
    }
    static KARString Take(const ItemValue& from) { return KARString(kar::ToUtf8(from.text)); }
};
template <>
struct ItemConversion<KARUnicodeString>
{
    static void Put(const KARUnicodeString& from, ItemValue& to)
    {
        ItemConversion<std::wstring>::Put(from.ConvertToWString(), to);
    }
    static KARUnicodeString Take(const ItemValue& from)
    {
        KARUnicodeString text;
        text.BuildFromWChar(from.text);
        return text;
    }
};

template <>
struct ItemConversion<std::vector<unsigned char>>
{
    using Bytes = std::vector<unsigned char>;
    static void Put(Bytes from, ItemValue& to) { to.bytes = std::move(from); }
    static const Bytes& Take(const ItemValue& from) { return from.bytes; }
};

/// A point or a vector. Directions follow a rule of their own; see KARMPDirectionItem.h.
template <class T>
requires requires(T& triple)
{
    triple.SetZ(triple.GetZ());
} &&(!std::is_same_v<T, KARMathDirection>)struct ItemConversion<T>
{
    static void Put(const T& from, ItemValue& to)
    {
        to.numbers[0] = from.GetX();
        to.numbers[1] = from.GetY();
        to.numbers[2] = from.GetZ();
    }
    static T Take(const ItemValue& from)
    {
        return T(from.numbers[0], from.numbers[1], from.numbers[2]);
    }
};
/// A point or a vector in the plane.
template <class T>
requires requires(T& pair)
{
    pair.SetY(pair.GetY());
    requires !requires
    {
        pair.GetZ();
    };
}
struct ItemConversion<T>
{
    static void Put(const T& from, ItemValue& to) { from.GetCoord(to.numbers[0], to.numbers[1]); }
    static T Take(const ItemValue& from) { return T(from.numbers[0], from.numbers[1]); }
};
template <std::size_t N>
struct ItemConversion<std::array<double, N>>
{
    static_assert(N <= ItemValue::Capacity);
    static void Put(const std::array<double, N>& from, ItemValue& to)
    {
        std::copy(from.begin(), from.end(), to.numbers.begin());
    }
    static std::array<double, N> Take(const ItemValue& from)
    {
        std::array<double, N> to;
        std::copy_n(from.numbers.begin(), N, to.begin());
        return to;
    }
};
template <>
struct ItemConversion<KARMath3x3Matrix>
{
    static void Put(const KARMath3x3Matrix& from, ItemValue& to, std::size_t first = 0)
    {
        for (int i = 0; i < 9; ++i)
            to.numbers[first + static_cast<std::size_t>(i)] = from.GetColumn(i / 3)[i % 3];
    }
    static KARMath3x3Matrix Take(const ItemValue& from, std::size_t first = 0)
    {
        const double* const c = from.numbers.data() + first;
        KARMath3x3Matrix to;
        to.SetColumns({c[0], c[1], c[2]}, {c[3], c[4], c[5]}, {c[6], c[7], c[8]});
        return to;
    }
};
template <>
struct ItemConversion<KARMath2x2Matrix>
{
    static void Put(const KARMath2x2Matrix& from, ItemValue& to, std::size_t first = 0)
    {
        double* const c = to.numbers.data() + first;
        from.GetFirstColumn().GetCoord(c[0], c[1]);
        from.GetSecondColumn().GetCoord(c[2], c[3]);
    }
    static KARMath2x2Matrix Take(const ItemValue& from, std::size_t first = 0)
    {
        const double* const c = from.numbers.data() + first;
        return {{c[0], c[1]}, {c[2], c[3]}};
    }
};
/// The translation comes before the matrix.
template <>
struct ItemConversion<KARMathTransformation>
{
    static void Put(const KARMathTransformation& from, ItemValue& to)
    {
        ItemConversion<KARMathVector>::Put(from.GetVector(), to);
        ItemConversion<KARMath3x3Matrix>::Put(from.GetMatrix(), to, 3);
    }
    static KARMathTransformation Take(const ItemValue& from)
    {
        KARMathTransformation to;
        to.SetVector(ItemConversion<KARMathVector>::Take(from));
        to.SetMatrix(ItemConversion<KARMath3x3Matrix>::Take(from, 3));
        return to;
    }
};

template <>
struct ItemConversion<KARMathTransformation2D>
{
    static void Put(const KARMathTransformation2D& from, ItemValue& to)
    {
        ItemConversion<KARMathVector2D>::Put(from.GetVector(), to);
        ItemConversion<KARMath2x2Matrix>::Put(from.GetMatrix(), to, 2);
    }
    static KARMathTransformation2D Take(const ItemValue& from)
    {
        return {ItemConversion<KARMath2x2Matrix>::Take(from, 2),
                ItemConversion<KARMathVector2D>::Take(from)};
    }
};

/// The functions of an item for a way to its value.
template <auto Get>
KARStatus FetchItem(const void* owner, ItemValue& value)
{
    using Traits = TraitsOf<Get>;
    const auto& object = OwnerAs<typename Traits::Class>(owner);
    using Fetched = typename Traits::Value;
    if constexpr (std::is_member_object_pointer_v<decltype(Get)> &&
                  !std::is_same_v<Fetched, std::wstring>) {
        ItemConversion<Fetched>::Put(object.*Get, value);
        return KARSuccess;
    } else {
        Fetched fetched{};
        const KARStatus status = Traits::Get(Get, object, fetched);
        if (!KARFailed(status))
            ItemConversion<Fetched>::Put(std::move(fetched), value);
        return status;
    }
}
template <auto Set>
KARStatus StoreItem(void* owner, const ItemValue& value)
{
    using Traits = TraitsOf<Set>;
    auto& object = OwnerAs<typename Traits::Class>(owner);
    if constexpr (std::is_void_v<typename Traits::Value>) {
        (object.*Set)();
        return KARSuccess;
    } else {
        return Traits::Set(Set, object, ItemConversion<typename Traits::Value>::Take(value));
    }
}
/// Null for a way that does not store.
template <auto Access>
constexpr auto StoreItemOrNone() -> KARStatus (*)(void*, const ItemValue&)
{
    if constexpr (TraitsOf<Access>::Stores)
        return &StoreItem<Access>;
    else
        return nullptr;
}

} // namespace karmp

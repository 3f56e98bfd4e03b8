// What calls take from Python and give to it: types of arguments and results with the names that
// signatures, and so the stubs, have for them.
#pragma once

#include "Bindings.h"

#include <pybind11/stl.h>

#include <algorithm>
#include <utility>

namespace karmp::python {

/// A text of arguments, which need not be UTF-8.
struct Text : std::string
{};

/// Numbers in a row, and in rows, as what they are taken for; raises for another count.
struct Numbers
{
    std::vector<double> values;

    const double* Exactly(std::size_t count) const;
    operator KARMathPoint() const;
    operator KARMathVector() const { return KARMathPoint(*this) - KARMathPoint(); }
    operator KARMathPoint2D() const;
};
struct Rows : Numbers
{
    /// The axis system of a homogeneous matrix.
    operator KARMathAxis() const;
};

/// A class of entities that is T or derived from it.
template <class T>
struct Kind
{
    const EntityClass* of = nullptr;
    operator const QOBClassInfo&() const { return *of->info; }
};

/// The things that an iterable gives, or a dict by pairs; what they were made of stays alive.
template <class T>
struct Each : std::vector<T>
{
    py::list source;
};

/// The text of a type as a template's argument.
template <std::size_t N>
struct TypeText
{
    consteval TypeText(const char (&given)[N]) { std::copy_n(given, N, text); }
    char text[N];
};
/// Python objects of a type that the signature tells, and entities of a class.
template <TypeText Name, class Base = py::object>
struct Typed : Base
{
    using Base::Base;
    Typed() = default;
    Typed(const Base& made) : Base(made) {}
};
template <class T>
struct Of : py::object
{
    Of(const py::object& made) : py::object(made) {}
};

/// "Body" for KARMPBody, of which the compiler tells the name.
template <class T>
consteval auto ClassText()
{
    constexpr std::string_view text = __PRETTY_FUNCTION__;
    constexpr std::size_t begin = text.rfind("KARMP") + 5;
    return []<std::size_t... I>(std::index_sequence<I...>, const char* name)
    {
        return py::detail::descr<sizeof...(I)>(name[I]...);
    }
    (std::make_index_sequence<text.size() - begin - 1>(), text.data() + begin);
}

/// Raises for entities of other models among the arguments of a call.
template <class T>
void CheckOwn(const ModelState&, const T&)
{}
template <class T>
void CheckOwn(const ModelState& state, const Ref<T>& entity)
{
    CheckOwn(state, Entity(entity.Handle()));
}
template <class T>
void CheckOwn(const ModelState& state, const std::optional<T>& argument)
{
    if (argument)
        CheckOwn(state, *argument);
}
template <class T, class U>
void CheckOwn(const ModelState& state, const std::pair<T, U>& argument)
{
    CheckOwn(state, argument.first);
}
template <class T>
void CheckOwn(const ModelState& state, const Each<T>& arguments)
{
    for (const T& argument : arguments)
        CheckOwn(state, argument);
}

} // namespace karmp::python

namespace pybind11::detail {

namespace own = karmp::python;

template <own::TypeText Name, class Base>
struct handle_type_name<own::Typed<Name, Base>>
{
    static constexpr auto name = const_name(Name.text);
};
template <class T>
struct handle_type_name<own::Of<T>>
{
    static constexpr auto name = own::ClassText<T>();
};

template <class T>
struct type_caster<karmp::model::Ref<T>>
{
    PYBIND11_TYPE_CASTER(karmp::model::Ref<T>, own::ClassText<T>());
    bool load(handle source, bool)
    {
        if (PyObject_TypeCheck(source.ptr(), own::Types().entity) != 0)
            value = karmp::model::Ref<KARMPEntity>(own::AliveOf(source).entity).template As<T>();
        return static_cast<bool>(value);
    }
};

template <class T>
struct type_caster<own::Kind<T>>
{
    PYBIND11_TYPE_CASTER(own::Kind<T>, const_name("type[_E]"));
    bool load(handle source, bool)
    {
        value.of = own::FindClass(source);
        return value.of != nullptr && value.of->info->isDerivedFrom(T::ClassInfo());
    }
};

template <>
struct type_caster<own::Text>
{
    PYBIND11_TYPE_CASTER(own::Text, const_name("str"));
    bool load(handle source, bool)
    {
        if (!isinstance<str>(source))
            return false;
        value = {own::Utf8Of(source)};
        return true;
    }
};

template <std::derived_from<own::Numbers> T>
struct type_caster<T>
{
    static constexpr bool IsRows = std::is_same_v<T, own::Rows>;
    PYBIND11_TYPE_CASTER(T, const_name<IsRows>("_Rows", "_Numbers"));
    bool load(handle source, bool)
    {
        if (!isinstance<sequence>(source))
            return false;
        value.values = own::NumbersOf(source);
        return true;
    }
};

template <class T>
constexpr auto EachName = const_name("Iterable[") + make_caster<T>::name + const_name("]");
template <class T, class U>
constexpr auto EachName<std::pair<T, U>> = const_name("dict[") + make_caster<T>::name +
                                           const_name(", ") + make_caster<U>::name +
                                           const_name("]");

template <class T>
struct type_caster<own::Each<T>>
{
    PYBIND11_TYPE_CASTER(own::Each<T>, EachName<T>);
    bool load(handle source, bool convert)
    {
        value.source = isinstance<dict>(source) ? list(source.attr("items")())
                                                : list(reinterpret_borrow<object>(source));
        for (const handle item : value.source) {
            make_caster<T> caster;
            if (!caster.load(item, convert))
                return false;
            value.push_back(cast_op<T>(std::move(caster)));
        }
        return true;
    }
};

/// A quantity by its word, such as "Length".
template <>
struct type_caster<KARMPPhysicalQuantity::Enum>
{
    PYBIND11_TYPE_CASTER(KARMPPhysicalQuantity::Enum, const_name("_Quantity"));
    bool load(handle source, bool);
};

} // namespace pybind11::detail

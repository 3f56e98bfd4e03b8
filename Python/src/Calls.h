// Functions of C++ in Python: how arguments are taken by their types and results are given, and the
// one template that binds all functions. What people call is written in Python on top of them.
#pragma once

#include "Core.h"

#include <concepts>
#include <filesystem>
#include <functional>
#include <span>
#include <tuple>
#include <type_traits>
#include <utility>

namespace karmp::python {

/// Numbers in a row, or in rows one after the other, as what they are taken for; raises for another
/// count.
struct Numbers
{
    std::vector<double> values;
    bool isInRows = false;

    const double* Exactly(std::size_t count) const;
    operator KARMathPoint() const;
    operator KARMathPoint2D() const;
    operator KARMathVector() const { return KARMathPoint(*this) - KARMathPoint(); }
    /// The axis system of a homogeneous matrix.
    operator KARMathAxis() const;
};

/// A class of entities that is T or derived from it.
template <class T>
struct Kind
{
    const QOBClassInfo* info = nullptr;
    operator const QOBClassInfo&() const { return *info; }
};

/// Arguments by their types, which raise what they cannot be. Entities are alive, and of the model
/// that a call is for.
void Take(py::handle given, ModelState* of, std::string& taken);
void Take(py::handle given, ModelState* of, std::wstring& taken);
void Take(py::handle given, ModelState* of, std::filesystem::path& taken);
void Take(py::handle given, ModelState* of, std::vector<unsigned char>& taken);
void Take(py::handle given, ModelState* of, Numbers& taken);
void Take(py::handle given, ModelState* of, Entity& taken);
void Take(py::handle given, ModelState* of, model::BodyOptions& taken);
void Take(py::handle given, ModelState* of, model::Term& taken);
void Take(py::handle given, ModelState* of, model::MotorOptions& taken);
void Take(py::handle given, ModelState* of, documents::SaveOptions& taken);
void Take(py::handle given, ModelState* of, documents::ExtractionOptions& taken);
/// A quantity by its word, such as "Length".
void Take(py::handle given, ModelState* of, KARMPPhysicalQuantity::Enum& taken);

template <class T>
T Taken(py::handle given, ModelState* of = nullptr)
{
    T taken{};
    Take(given, of, taken);
    return taken;
}
template <class T>
requires std::is_arithmetic_v<T>
void Take(py::handle given, ModelState*, T& taken)
{
    py::detail::make_caster<T> caster;
    if (!caster.load(given, true))
        RaiseNeeded("a number", given);
    taken = py::detail::cast_op<T>(caster);
}
template <class T>
requires std::convertible_to<Numbers, T>
void Take(py::handle given, ModelState* of, T& taken)
{
    taken = Taken<Numbers>(given, of);
}
/// An entity by a derived class; raises for one of another class.
template <class T>
Ref<T> As(const AnyRef& entity)
{
    const auto found = entity.As<T>();
    if (!found)
        Raise(PyExc_TypeError,
              TitleOf(*entity) + " is no " + ClassNameOf(T::ClassInfo().getName()));
    return found;
}
template <class T>
void Take(py::handle given, ModelState* of, Ref<T>& taken)
{
    taken = As<T>(AnyRef(Taken<Entity>(given, of)));
}
template <class T>
void Take(py::handle given, ModelState*, Kind<T>& taken)
{
    const EntityClass* const found = FindClass(given);
    if (found == nullptr || !found->info->isDerivedFrom(T::ClassInfo()))
        RaiseNeeded("a class of " + ClassNameOf(T::ClassInfo().getName()), given);
    taken.info = found->info;
}
template <class T>
void Take(py::handle given, ModelState* of, std::optional<T>& taken)
{
    if (!given.is_none())
        Take(given, of, taken.emplace());
}
template <class T>
void Take(py::handle given, ModelState* of, std::vector<T>& taken)
{
    for (const py::handle entry : py::list(py::reinterpret_borrow<py::object>(given)))
        Take(entry, of, taken.emplace_back());
}

/// Results to Python, entities as those of a model.
py::object Give(std::wstring_view text, ModelState* of);
py::object Give(std::string_view text, ModelState* of);
py::object Give(EnumWord word, ModelState* of);
py::object Give(const NumberArray& numbers, ModelState* of);
py::object Give(const std::vector<unsigned char>& bytes, ModelState* of);
py::object Give(const KARMathVector& vector, ModelState* of);
py::object Give(const model::BodyOptions& solid, ModelState* of);
py::object Give(const model::Dependent& dependent, ModelState* of);
py::object Give(const model::Deletion& deletion, ModelState* of);
py::object Give(const documents::CutLink& cut, ModelState* of);
py::object Give(const documents::Diagnostics& findings, ModelState* of);
py::object Give(model::Result<Model> made, ModelState* of);
py::object Give(model::Result<model::Extraction> made, ModelState* of);

inline py::object Give(std::monostate, ModelState*)
{
    return py::none();
}
inline py::object Give(py::object object, ModelState*)
{
    return object;
}
inline py::object Give(const Entity& entity, ModelState* of)
{
    return Wrap(entity, *of);
}
template <class T>
requires std::is_arithmetic_v<T> py::object Give(T number, ModelState*)
{
    return py::cast(number);
}
template <class T>
py::object Give(const Ref<T>& entity, ModelState* of)
{
    return Wrap(Entity(entity.Handle()), *of);
}
template <class T>
py::object Give(const std::vector<T>& list, ModelState* of)
{
    py::list given(list.size());
    for (std::size_t i = 0; i < list.size(); ++i)
        given[i] = Give(list[i], of);
    return given;
}
template <std::same_as<Value> T>
py::object Give(const T& value, ModelState* of)
{
    return std::visit([of](const auto& held) { return Give(held, of); }, value);
}
/// Raises what a call with a document failed with.
template <class T>
void CheckDocument(const model::Result<T>& made)
{
    if (!made)
        Raise(OfPackage("DocumentError"), made.Error().text, Give(made.Findings(), nullptr));
}
template <class T>
py::object Give(const model::Result<T>& made, ModelState* of)
{
    CheckDocument(made);
    if constexpr (std::is_void_v<T>)
        return Give(made.Findings(), of);
    else
        return Give(*made, of);
}

inline ModelState* StateOf(ModelState& state)
{
    return &state;
}
inline ModelState* StateOf(EntityObject& object)
{
    return object.state.get();
}
template <class T>
ModelState* StateOf(const T&)
{
    return nullptr;
}

/// What is kept of an argument while a function runs.
template <class T>
struct Kept : std::remove_cvref<T>
{};
template <>
struct Kept<std::string_view> : std::type_identity<std::string>
{};
template <class T>
struct Kept<std::span<const T>> : std::type_identity<std::vector<T>>
{};
template <class T>
decltype(auto) Argument(const py::args& given, std::size_t index, ModelState* of)
{
    if constexpr (std::is_same_v<T, ModelState&>)
        return ModelOf(given[index]);
    else if constexpr (std::is_same_v<T, EntityObject&>)
        return AliveOf(given[index]);
    else if constexpr (std::is_same_v<T, model::Where>)
        return model::Where::current();
    else
        return Taken<typename Kept<T>::type>(given[index], of);
}

/// Calls a function as its first parameter tells: of a Model it is an edit, of a const one work
/// without the interpreter's lock. Entities among the others are those of the first one's model.
template <class First, class... A, class Function, std::size_t... I>
py::object Call(Function function, const char* name, const py::args& given,
                std::index_sequence<I...>)
{
    constexpr bool isEdit = std::is_same_v<First, Model&>;
    constexpr bool isWork = std::is_same_v<First, const Model&>;
    using Self = std::conditional_t<isEdit || isWork, ModelState&, First>;
    Self self = Argument<Self>(given, 0, nullptr);
    ModelState* const of = StateOf(self);
    std::tuple<decltype(Argument<A>(given, I, of))...> more{Argument<A>(given, I + 1, of)...};
    const auto run = [&](auto& first) {
        return std::invoke(function, first, std::get<I>(more)...);
    };
    if constexpr (isEdit)
        return Give(Do(self, name, [&] { return run(self.model); }), of);
    else if constexpr (isWork)
        return Give(
            [&] {
                const Exclusive exclusive(self, self);
                return run(std::as_const(self.model));
            }(),
            of);
    else
        return Give(run(self), of);
}
template <class... A, class Function>
void Expose(py::module_& module, const char* name, Function function)
{
    module.def(('_' + std::string(name)).c_str(),
               [function, name](const py::args& given) {
                   return Call<A...>(function, name, given,
                                     std::make_index_sequence<sizeof...(A) - 1>());
               });
}
/// Binds a function by its name behind a "_".
template <class R, class... A>
void Bind(py::module_& module, const char* name, R (*function)(A...))
{
    Expose<A...>(module, name, function);
}
template <class R, class... A>
void Bind(py::module_& module, const char* name, R (Model::*function)(A...))
{
    Expose<Model&, A...>(module, name, function);
}
template <class R, class... A>
void Bind(py::module_& module, const char* name, R (Model::*function)(A...) const)
{
    Expose<const Model&, A...>(module, name, function);
}

} // namespace karmp::python

// Functions of C++ in Python: how arguments are taken by their types and results are given, and the
// one template that binds all functions. What people call is written in Python on top of them.
#pragma once

#include "Core.h"
#include "KARTextConversion.h"

#include <pybind11/stl/filesystem.h>

#include <functional>
#include <ranges>
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
    operator KARMathPoint() const { return {Exactly(3)[0], values[1], values[2]}; }
    operator KARMathVector() const { return {Exactly(3)[0], values[1], values[2]}; }
    operator KARMathPoint2D() const { return {Exactly(2)[0], values[1]}; }
    /// The axis system of a homogeneous matrix.
    operator KARMathAxis() const;
};

/// What is a tuple in Python; None leaves a field as it is.
struct Fields
{
    static auto Of(model::Term& of) { return std::tie(of.variable, of.coefficient); }
    static auto Of(model::PlanarBodyOptions& of) { return std::tie(of.at, of.towards); }
    static auto Of(model::MotorOptions& of)
    {
        return std::tie(of.position, of.velocity, of.acceleration, of.maximum);
    }
    static auto Of(model::ModelOptions& of)
    {
        return std::tie(of.gravity, of.linearTolerance, of.angularTolerance);
    }
    static auto Of(const model::ModelOptions& of)
    {
        return std::tie(of.gravity, of.linearTolerance, of.angularTolerance);
    }
    static auto Of(documents::SaveOptions& of) { return std::tie(of.version, of.doubles); }
    static auto Of(documents::ExtractionOptions& of) { return std::tie(of.reach, of.families); }
    static auto Of(const documents::CutLink& of) { return std::tie(of.holder, of.item, of.target); }
    static auto Of(const model::Dependent& of) { return std::tie(of.entity, of.item, of.target); }
    static auto Of(const model::Deletion& of)
    {
        return std::tie(of.gone, of.unlinked, of.leftShort);
    }
    static auto Of(const KARMathPoint& of) { return std::tuple(of[0], of[1], of[2]); }
    static auto Of(const KARMathVector& of) { return std::tuple(of[0], of[1], of[2]); }
    static auto Of(const documents::Diagnostic& of)
    {
        return std::tuple(documents::SeverityText(of.severity), documents::CodeText(of.code),
                          of.file, of.path, of.text, of.line, of.column, documents::Format(of));
    }
    static auto Of(const FamilyRecord& of)
    {
        return std::tuple(SnakeCase(of.element), of.info->getName());
    }
    static auto Of(const ItemInfo& of)
    {
        return std::tuple(SnakeCase(of.path), of.says, static_cast<int>(of.kind), of.words,
                          of.readOnly, static_cast<int>(of.shape), of.numberCount, of.target,
                          of.fields, of.isFlag, of.isInOrder, of.CanGet(), of.path);
    }
};

Numbers NumbersOf(py::handle given);
Entity EntityOf(py::handle given, const ModelState* of);
std::vector<unsigned char> BytesOf(py::handle given);
/// An entity by a derived class; raises for one of another class.
template <class T>
model::Ref<T> As(const AnyRef& entity, const model::Ref<T>* = nullptr)
{
    const auto found = entity.As<T>();
    if (!found)
        Raise(PyExc_TypeError, TitleOf(*entity) + " is no " + NameOf(T::ClassInfo()));
    return found;
}

/// An argument by its type, which raises what it cannot be. Entities are alive, and of the model
/// that a call is for.
template <class T>
decltype(auto) Taken(py::handle given, ModelState* of = nullptr)
{
    if constexpr (std::is_same_v<T, ModelState&>)
        return ModelOf(given);
    else if constexpr (std::is_same_v<T, const State&>)
        return StateOf(given);
    else if constexpr (std::is_same_v<T, EntityObject&>)
        return AliveOf(given);
    else if constexpr (std::is_same_v<T, const QOBClassInfo&>)
        return InfoOf(given);
    else if constexpr (std::is_reference_v<T>)
        return Taken<std::remove_cvref_t<T>>(given, of);
    else if constexpr (requires(T optional) { optional.has_value(); })
        return given.is_none() ? T() : T(Taken<typename T::value_type>(given, of));
    else if constexpr (requires { typename T::element_type; })
        return Taken<std::vector<typename T::value_type>>(given, of);
    else if constexpr (std::is_convertible_v<T, std::string_view>)
        return kar::ToUtf8(WideOf(given));
    else if constexpr (std::is_same_v<T, std::wstring>)
        return WideOf(given);
    else if constexpr (std::is_same_v<T, Entity>)
        return EntityOf(given, of);
    else if constexpr (std::is_same_v<T, std::vector<unsigned char>>)
        return BytesOf(given);
    else if constexpr (std::is_enum_v<T>)
        return static_cast<T>(Taken<int>(given));
    else if constexpr (std::is_convertible_v<Numbers, T>)
        return T(NumbersOf(given));
    else if constexpr (requires(T ref) { ref.Handle(); })
        return As(AnyRef(EntityOf(given, of)), static_cast<const T*>(nullptr));
    else if constexpr (requires(T list) { list.emplace_back(); }) {
        T list;
        for (const py::handle entry : py::list(py::reinterpret_borrow<py::object>(given)))
            list.push_back(Taken<typename T::value_type>(entry, of));
        return list;
    } else if constexpr (requires(T fields) { Fields::Of(fields); }) {
        T taken;
        const py::tuple values(py::reinterpret_borrow<py::object>(given));
        std::size_t at = 0;
        const auto set = [&]<class U>(U& field) {
            if (const py::handle value = values[at++]; !value.is_none())
                field = Taken<U>(value, of);
        };
        std::apply([&](auto&... field) { (set(field), ...); }, Fields::Of(taken));
        return taken;
    } else {
        py::detail::make_caster<T> caster;
        constexpr bool isSolid = std::is_same_v<T, model::BodyOptions>;
        if (!caster.load(given, true))
            RaiseNeeded(std::is_arithmetic_v<T> ? "a number"
                        : isSolid               ? "a Solid"
                                                : "a path",
                        given);
        return T(py::detail::cast_op<T&>(caster));
    }
}

py::object ArrayOf(const NumberArray& numbers);

/// A result to Python, entities as those of a model.
template <class T>
py::object Give(const T& result, ModelState* of)
{
    if constexpr (std::is_same_v<T, py::object>)
        return result;
    else if constexpr (std::is_same_v<T, std::monostate>)
        return py::none();
    else if constexpr (std::is_same_v<T, EnumWord>)
        return ToText(result.text);
    else if constexpr (std::is_same_v<T, NumberArray>)
        return ArrayOf(result);
    else if constexpr (std::is_convertible_v<T, Entity>)
        return Wrap(result, *of);
    else if constexpr (std::is_same_v<T, Value>)
        return std::visit([of](const auto& held) { return Give(held, of); }, result);
    else if constexpr (std::is_same_v<T, std::vector<unsigned char>>)
        return py::bytes(reinterpret_cast<const char*>(result.data()), result.size());
    else if constexpr (requires { ToText(result); })
        return ToText(result);
    else if constexpr (requires { result.has_value(); })
        return result ? Give(*result, of) : py::none();
    else if constexpr (requires { Fields::Of(result); })
        return std::apply([of](const auto&... field) { return py::make_tuple(Give(field, of)...); },
                          Fields::Of(result));
    else if constexpr (requires { result.size(); }) {
        py::list list(result.size());
        for (std::size_t i = 0; i < result.size(); ++i)
            list[i] = Give(result[i], of);
        return list;
    } else
        return py::cast(result);
}

/// What a call with a model or a document gives; raises what it failed with.
template <class T>
py::object Give(model::Result<T> made, ModelState* of)
{
    const auto& findings = made.Findings().items;
    if (!made && findings.empty())
        RaiseFailure(made.Error().text, made.Error().status);
    if (!made)
        Raise(OfPackage("DocumentError"), made.Error().text, Give(findings, of));
    if constexpr (std::is_void_v<T>)
        return Give(findings, of);
    else if constexpr (std::is_same_v<T, Model>)
        return py::cast(std::make_shared<ModelState>(*std::move(made), findings));
    else if constexpr (std::is_same_v<T, model::Extraction>)
        return py::make_tuple(std::make_shared<ModelState>(std::move(made->model)),
                              Give(made->cutLinks, of));
    else
        return Give(*made, of);
}

/// Calls a function as its first parameter tells: of a Model it is an edit; of a const one, and of
/// what is no reference, it is work without the interpreter's lock. Entities among the others are
/// those of the first one's model.
template <class First, class... A, class Function, std::size_t... I>
py::object Call(Function function, const char* name, const py::args& given,
                std::index_sequence<I...>)
{
    constexpr bool isEdit = std::is_same_v<First, Model&>;
    constexpr bool isWork = std::is_same_v<First, const Model&>;
    using Self = std::conditional_t<isEdit || isWork, ModelState&, First>;
    decltype(auto) self = Taken<Self>(given[0]);
    ModelState* of = nullptr;
    if constexpr (std::is_same_v<Self, ModelState&>)
        of = &self;
    else if constexpr (std::is_same_v<Self, EntityObject&>)
        of = self.state.get();
    const auto take = [&]<class T>(std::type_identity<T>, std::size_t at) -> decltype(auto) {
        if constexpr (std::is_same_v<T, model::Where>)
            return model::Where::current();
        else
            return Taken<T>(given[at], of);
    };
    using std::type_identity;
    const std::tuple<decltype(take(type_identity<A>(), I))...> others{
        take(type_identity<A>(), I + 1)...};
    const auto run = [&](auto& first) {
        return std::invoke(function, first, std::get<I>(others)...);
    };
    if constexpr (isEdit)
        return Give(Do(self, name, [&] { return run(self.model); }), of);
    else if constexpr (isWork)
        return Give(Alone(self, self, [&] { return run(std::as_const(self.model)); }), of);
    else if constexpr (std::is_reference_v<First>)
        return Give(run(self), of);
    else {
        const auto work = [&] {
            const Unlocked unlocked;
            return run(self);
        };
        return Give(work(), of);
    }
}

/// A function of the module, which is bound by assigning it. A member function that takes its
/// caller's line at the end is given this one.
struct Bound
{
    py::module_& module;
    const char* name;

    void operator=(auto lambda) const { *this = +lambda; }
    template <class R, class... A>
    void operator=(R (*function)(A...)) const
    {
        Bind<A...>(function);
    }
    template <class R, class... A>
    void operator=(R (Model::*function)(A...)) const
    {
        Bind<Model&, A...>(function);
    }
    template <class R, class... A>
    void operator=(R (Model::*function)(A...) const) const
    {
        Bind<const Model&, A...>(function);
    }

private:
    template <class... A, class Function>
    void Bind(Function function) const
    {
        constexpr std::make_index_sequence<sizeof...(A) - 1> others;
        module.def(('_' + std::string(name)).c_str(),
                   [function, others, name = name](const py::args& given) {
                       return Call<A...>(function, name, given, others);
                   });
    }
};
/// The functions of the module by their names, which begin with a "_" in Python.
struct Functions
{
    py::module_& module;
    Bound operator[](const char* name) const { return {module, name}; }
};

} // namespace karmp::python

// What the sources of the extension module share: models, the Python objects of their entities, and
// errors.
#pragma once

#include "KARMPFailedCheck.h"
#include "KARMPItems.h"
#include "KARMPModel.h"

#include <pybind11/pybind11.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <vector>

namespace karmp::python {

namespace py = pybind11;
using Entity = QOBSharedHandle<KARMPEntity>;

/// What objects of the module's classes hold, which is never null.
struct Held
{};
template <class T>
concept NeverNull = std::is_base_of_v<Held, T> || std::is_same_v<T, documents::Diagnostic>;

/// A model, which lives as long as its Python object or that of one of its entities does.
struct ModelState : Held
{
    explicit ModelState(model::Model made, documents::Diagnostics told = {})
        : model(std::move(made)), findings(std::move(told))
    {}

    model::Model model;
    /// What loading the model had to say.
    documents::Diagnostics findings;
    /// A thread works on the model without the interpreter's lock.
    bool isBusy = false;
    std::size_t openBlocks = 0;
    /// The Python objects of the entities, which take themselves out at their end.
    std::unordered_map<const KARMPEntity*, PyObject*> objects;
};
using State = std::shared_ptr<ModelState>;

/// The Python object of an entity.
struct EntityObject
{
    PyObject base;
    Entity entity;
    State state;
    PyObject* weakReferences;
};

/// An item as a property of a Python class.
struct Property
{
    const ItemInfo* item;
    std::string name;
    std::string doc;
    PyGetSetDef definition{};
    /// The class of its records, made when the first one is asked for.
    PyObject* record = nullptr;
};

/// An entity class in Python.
struct EntityClass
{
    const QOBClassInfo* info;
    PyTypeObject* type;
    std::string name;
    /// Those of the bases first.
    std::vector<Property*> properties;
};

/// The classes and errors of the module. Python keeps them until the process ends.
struct Registry
{
    PyObject* error = nullptr;
    PyObject* documentError = nullptr;
    PyObject* deletedError = nullptr;
    PyObject* checkWarning = nullptr;
    PyTypeObject* entity = nullptr;
    /// In an order in which bases stand before what is derived from them.
    std::vector<std::unique_ptr<EntityClass>> classes;
    std::unordered_map<const QOBClassInfo*, EntityClass*> byInfo;
    std::unordered_map<const PyTypeObject*, EntityClass*> byType;
};
Registry& Types();

/// Texts to Python and back; what is no UTF-8 survives.
py::str ToText(std::wstring_view text);
py::str ToText(std::string_view text);
std::wstring WideOf(py::handle text);
std::string Utf8Of(py::handle text);
/// "center_of_gravity" for "CenterOfGravity", "axis_direction" for "Axis/Direction".
std::string SnakeCase(std::wstring_view path);
/// "Body" for "KARMPBody"; what would begin with a digit keeps its prefix.
std::string ClassNameOf(std::string_view className);
/// "; near: ..." with the nearest of some names, empty when none is near.
std::string NearText(std::string_view text, const std::vector<std::string>& names);

/// Raise exceptions: of a type, karmp.Error with its attributes, and karmp.DocumentError.
[[noreturn]] void Raise(PyObject* type, const std::string& text);
[[noreturn]] void RaiseError(const std::string& text, KARStatus status, py::handle entity = {});
[[noreturn]] void RaiseDocumentError(const std::string& text,
                                     const documents::Diagnostics& findings);
/// Sets the Python exception for a C++ one that is being handled.
void SetException();

/// Counts the failed checks of this thread. What is heard in a call becomes a warning.
class Checks final : public KARMPFailedCheckListener
{
public:
    static Checks& OfThread();
    void OnFailedCheck(const char*, int) override { ++m_count; }
    void Begin() { m_count = 0; }
    /// Warns of what was heard since Begin; `what` is told only then.
    template <class What>
    void End(What what)
    {
        if (m_count != 0)
            Warn(what());
    }

private:
    void Warn(const std::string& what) const;

    int m_count = 0;
};

/// Raises for a model that another thread works on.
inline void CheckFree(const ModelState& state)
{
    if (state.isBusy)
        RaiseError("another thread works on the model", KARFailure);
}

/// Work on a model without the interpreter's lock; other threads are refused meanwhile.
class Exclusive
{
public:
    explicit Exclusive(ModelState& state) : m_state(state)
    {
        CheckFree(state);
        state.isBusy = true;
        m_release.emplace();
    }
    ~Exclusive()
    {
        m_release.reset();
        m_state.isBusy = false;
    }
    Exclusive(const Exclusive&) = delete;
    Exclusive& operator=(const Exclusive&) = delete;

private:
    ModelState& m_state;
    std::optional<py::gil_scoped_release> m_release;
};

/// Calls of a model: what it could not do is raised, failed checks become warnings.
template <class Call>
auto Do(const State& state, const char* what, Call call)
{
    CheckFree(*state);
    Checks& checks = Checks::OfThread();
    checks.Begin();
    auto result = call(state->model);
    if (!state->model.Problems().empty()) {
        const model::Problem problem = state->model.Problems().front();
        state->model.ClearProblems();
        RaiseError(problem.text, problem.status);
    }
    checks.End([what] { return std::string(what); });
    return result;
}

/// The Python object of an entity, the same one each time; None for a null handle.
py::object Wrap(const Entity& entity, const State& state);
/// The object of an entity that is not deleted, of a model that is free; raises otherwise, and
/// TypeError for what is no entity.
EntityObject& AliveOf(py::handle object);
/// The same, of that model or of none.
const Entity& EntityIn(py::handle object, const State& state);
template <class T>
model::Ref<T> RefIn(py::handle object, const State& state)
{
    const auto ref = model::Ref<KARMPEntity>(EntityIn(object, state)).As<T>();
    if (!ref)
        Raise(PyExc_TypeError, py::repr(object).cast<std::string>() + " is no " +
                                   ClassNameOf(T::ClassInfo().getName()));
    return ref;
}
/// The class that a Python class stands for; raises TypeError for another one.
const EntityClass& ClassOf(py::handle type);
const EntityClass& ClassOf(const KARMPEntity& entity);
/// The property of a class by its name, or by the item's name or path; null without one.
Property* FindProperty(const EntityClass& of, const std::string& name);
/// Raises AttributeError with a near name.
[[noreturn]] void RaiseNoItem(const EntityClass& of, const std::string& name);
std::string TitleOf(const KARMPEntity& entity);

/// Get and set an item of an entity that is alive.
py::object GetItem(EntityObject& object, Property& property);
void SetItem(EntityObject& object, const Property& property, py::handle value);
/// Values to Python and back. A value of another type raises; what the item says of it does not.
py::object ToPython(const Value& value, Property& property, const State& state);
Value FromPython(py::handle value, const ItemInfo& item, const State& state);
/// Imports numpy, as must be done before the first array: pybind11 would import it within the
/// initialization of a static variable, where threads that wait for that keep the interpreter's
/// lock from the one that imports.
void LoadNumpy();
/// Numbers of a sequence, of sequences of one length row by row; raises for another count.
std::vector<double> NumbersOf(py::handle value);
/// Exactly `count` of them.
std::vector<double> NumbersOf(py::handle value, std::size_t count, const char* what);

/// Stores a value of an item, links on both sides, undone with the block of edits it is in.
void SetByModel(const State& state, const Entity& entity, const ItemInfo& item, const Value& value);
/// Raises what setting an item failed with.
[[noreturn]] void RaiseRefused(const ItemInfo& item, const Value& value, const std::string& why,
                               KARStatus status, py::handle entity);

/// All entities of a class in a model.
std::vector<Entity> AllOf(const State& state, const EntityClass& of);

/// Findings as Python objects.
py::list ToPython(const documents::Diagnostics& findings);

/// A Python class that cannot be called has no objects but those that the module makes.
template <class Class>
void Seal(const Class& type)
{
    reinterpret_cast<PyTypeObject*>(type.ptr())->tp_new = nullptr;
}

void BindErrors(py::module_& module);
void BindEntities(py::module_& module);
void BindLinks(py::module_& module);
void BindDocuments(py::module_& module);
void BindPictures(py::module_& module);

using ModelClass = py::class_<ModelState, State>;
void BindModel(ModelClass& of);
void BindFamilies(py::module_& module, ModelClass& of);
void BindBuilding(py::module_& module, ModelClass& of);
void BindModelDocuments(py::module_& module, ModelClass& of);
void BindColumns(ModelClass& of);

} // namespace karmp::python

/// None is no object, be it given as self.
template <karmp::python::NeverNull T>
class pybind11::detail::type_caster<std::shared_ptr<T>>
    : public pybind11::detail::copyable_holder_caster<T, std::shared_ptr<T>>
{
public:
    bool load(pybind11::handle source, bool convert)
    {
        return !source.is_none() &&
               pybind11::detail::copyable_holder_caster<T, std::shared_ptr<T>>::load(source,
                                                                                     convert);
    }
};

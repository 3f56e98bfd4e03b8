// What the sources of the extension module share: models, the Python objects of their entities, and
// errors.
#pragma once

#include "KARMPEntities.h"
#include "KARMPFailedCheck.h"
#include "KARMPItems.h"
#include "KARMPModel.h"

#include <pybind11/pybind11.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace karmp::python {

namespace py = pybind11;
using py::literals::operator""_a;
using model::Ref;
using Entity = QOBSharedHandle<KARMPEntity>;

/// A model, which lives as long as its Python object or that of one of its entities does.
struct ModelState : std::enable_shared_from_this<ModelState>
{
    explicit ModelState(model::Model made, documents::Diagnostics told = {})
        : model(std::move(made)), findings(std::move(told))
    {}

    model::Model model;
    /// What loading the model had to say.
    documents::Diagnostics findings;
    /// A thread works on the model without the interpreter's lock.
    bool isBusy = false;
    /// The blocks of edits that are open.
    std::size_t openBlocks = 0;
    /// The Python objects of the entities, which take themselves out at their end.
    std::unordered_map<const KARMPEntity*, PyObject*> objects;
};
using State = std::shared_ptr<ModelState>;
using ModelClass = py::class_<ModelState, State>;

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
    /// Null for an item that a planar class hides of the spatial one.
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

/// The classes of the module. Python keeps them until the process ends.
struct Registry
{
    /// The class of lists of links, of an entity and the name of its item.
    py::object links;
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

/// Raise exceptions: one that is made, one of a type, the one that Python has set, and karmp.Error.
[[noreturn]] void Raise(const py::object& error);
[[noreturn]] void Raise(py::handle type, const std::string& text);
inline void RaiseIfSet()
{
    if (PyErr_Occurred() != nullptr)
        throw py::error_already_set();
}
[[noreturn]] void RaiseError(const std::string& text, KARStatus status,
                             const py::object& entity = py::none());
/// An error class of the package.
py::object ErrorType(const char* name);
/// Sets the Python exception for a C++ one that is being handled.
void SetException();

/// Counts the failed checks of this thread. What is heard between Begin and End becomes a warning.
class Checks final : public KARMPFailedCheckListener
{
public:
    static Checks& OfThread();
    void OnFailedCheck(const char*, int) override { ++m_count; }
    void Begin() { m_count = 0; }
    void End(std::string_view what) const
    {
        if (m_count != 0)
            Warn(what);
    }

private:
    void Warn(std::string_view what) const;

    int m_count = 0;
};

/// Raises for a model that another thread works on.
inline void CheckFree(const ModelState& state)
{
    if (state.isBusy)
        RaiseError("another thread works on the model", KARFailure);
}

/// Work on a model, or on two, without the interpreter's lock; other threads are refused meanwhile.
class Exclusive
{
public:
    explicit Exclusive(ModelState& state) : Exclusive(state, state) {}
    Exclusive(ModelState& first, ModelState& second) : m_first(first), m_second(second)
    {
        CheckFree(first);
        CheckFree(second);
        first.isBusy = second.isBusy = true;
        m_release.emplace();
    }
    ~Exclusive()
    {
        m_release.reset();
        m_first.isBusy = m_second.isBusy = false;
    }
    Exclusive(const Exclusive&) = delete;
    Exclusive& operator=(const Exclusive&) = delete;

private:
    ModelState& m_first;
    ModelState& m_second;
    std::optional<py::gil_scoped_release> m_release;
};

/// An edit of a model: what it could not do is raised, failed checks become warnings.
template <class Call>
auto Do(ModelState& state, std::string_view what, Call call)
{
    CheckFree(state);
    Checks& checks = Checks::OfThread();
    checks.Begin();
    auto result = call(state.model);
    if (!state.model.Problems().empty()) {
        const model::Problem problem = state.model.Problems().front();
        state.model.ClearProblems();
        RaiseError(problem.text, problem.status);
    }
    checks.End(what);
    return result;
}

/// A block of edits within one call, undone unless it is kept.
class CallBlock
{
public:
    explicit CallBlock(ModelState& state) : m_state(state), m_begin(state.model.BeginEditing())
    {
        ++state.openBlocks;
    }
    ~CallBlock()
    {
        m_state.model.EndEditing(m_begin, m_isKept);
        --m_state.openBlocks;
    }
    CallBlock(const CallBlock&) = delete;
    CallBlock& operator=(const CallBlock&) = delete;
    void Keep() { m_isKept = true; }

private:
    ModelState& m_state;
    std::size_t m_begin;
    bool m_isKept = false;
};

/// The Python object of an entity, the same one each time; None for a null handle.
py::object Wrap(const Entity& entity, ModelState& state);
py::list WrapAll(const std::vector<Entity>& entities, ModelState& state);
inline EntityObject& ObjectOf(py::handle object)
{
    return *reinterpret_cast<EntityObject*>(object.ptr());
}
/// The object of an entity that is not deleted, of a model that is free; raises otherwise, and
/// TypeError for what is no entity.
EntityObject& AliveOf(py::handle object);
/// Raises for an entity of another model.
void CheckOwn(const ModelState& state, const Entity& entity);
/// The class that a Python class stands for, null for another one.
const EntityClass* FindClass(py::handle type);
const EntityClass& ClassOf(const KARMPEntity& entity);
inline py::handle TypeOf(const EntityClass& of)
{
    return reinterpret_cast<PyObject*>(of.type);
}
/// The property of a class by its name; raises AttributeError, or another error with another text,
/// that tells the near name.
Property& PropertyOf(const EntityClass& of, const std::string& name, py::handle error = {},
                     const std::string& text = {});
/// The same; null without one.
Property* FindProperty(const EntityClass& of, std::string_view name);
/// "Body "Crank"".
std::string TitleOf(const KARMPEntity& entity);

/// Get and set an item of an entity that is alive.
py::object GetItem(EntityObject& object, Property& property);
void SetItem(EntityObject& object, const Property& property, py::handle value);
/// Values to Python and back. A value of another type raises; what the item says of it does not.
py::object ToPython(const Value& value, Property& property, ModelState& state);
Value FromPython(py::handle value, const ItemInfo& item, const ModelState& state);
/// Numbers of a sequence, of sequences of one length row by row.
std::vector<double> NumbersOf(py::handle value);
/// Imports numpy, as must be done before the first array: pybind11 would import it within the
/// initialization of a static variable, where threads that wait for that keep the interpreter's
/// lock from the one that imports.
void LoadNumpy();

/// "; near: ..." with the nearest of some names, empty when none is near.
std::string NearText(const std::wstring& text, const std::vector<std::wstring>& names);
/// All entities of a class in a model.
std::vector<Entity> AllOf(ModelState& state, const EntityClass& of);

/// A Python class that cannot be called has no objects but those that the module makes.
template <class Class>
void Seal(const Class& type)
{
    reinterpret_cast<PyTypeObject*>(type.ptr())->tp_new = nullptr;
}

void BindEntities(py::module_& module);
void BindModel(py::module_& module, ModelClass& of);
void BindFamilies(py::module_& module, ModelClass& of);
void BindItems(py::module_& module, ModelClass& of);
void BindDocuments(py::module_& module, ModelClass& of);

} // namespace karmp::python

/// A model as self or another argument, which is free: neither None nor one without __init__.
template <>
class pybind11::detail::type_caster<karmp::python::ModelState>
    : public type_caster_base<karmp::python::ModelState>
{
public:
    bool load(handle source, bool convert)
    {
        copyable_holder_caster<karmp::python::ModelState, karmp::python::State> held;
        if (source.is_none() || !held.load(source, convert))
            return false;
        karmp::python::ModelState& state = *static_cast<karmp::python::State&>(held);
        karmp::python::CheckFree(state);
        value = &state;
        return true;
    }
};

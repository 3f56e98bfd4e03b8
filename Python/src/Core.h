// What the sources of the extension module share: models, the Python objects of their entities, and
// errors.
#pragma once

#include "KARMPEntities.h"
#include "KARMPItems.h"
#include "KARMPModel.h"

#include <pybind11/pybind11.h>

#include <atomic>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace karmp::python {

namespace py = pybind11;
using py::literals::operator""_a;
using model::Model;
using AnyRef = model::Ref<KARMPEntity>;
using Entity = QOBSharedHandle<KARMPEntity>;

/// A model, which lives as long as its Python object or that of one of its entities does.
struct ModelState : std::enable_shared_from_this<ModelState>
{
    explicit ModelState(Model made, std::vector<documents::Diagnostic> told = {})
        : model(std::move(made)), findings(std::move(told))
    {}

    Model model;
    /// What loading the model had to say.
    std::vector<documents::Diagnostic> findings;
    /// A thread works on the model without the interpreter's lock.
    bool isBusy = false;
    /// The blocks of edits that are open.
    std::size_t openBlocks = 0;
    /// The Python objects of the entities, which take themselves out at their end.
    std::unordered_map<const KARMPEntity*, PyObject*> objects;
};
using State = std::shared_ptr<ModelState>;

/// What the Python object of an entity holds.
struct EntityObject
{
    EntityObject(const Entity& of, ModelState& in) : entity(of), state(in.shared_from_this()) {}
    ~EntityObject() { state->objects.erase(entity.get()); }

    Entity entity;
    State state;
};

/// An item as a property of a Python class.
struct Property
{
    const ItemInfo* item;
    std::string name;
    std::string doc;
    PyGetSetDef definition{};
};

/// Texts to Python and back; what is no UTF-8 survives.
py::str ToText(std::wstring_view text);
py::str ToText(std::string_view text);
std::wstring WideOf(py::handle text);
/// "center_of_gravity" for "CenterOfGravity", "axis_direction" for "Axis/Direction".
std::string SnakeCase(std::wstring_view path);

/// What the package has by a name, such as an error.
py::object OfPackage(const char* name);
/// Raises an exception of a class.
template <class... More>
[[noreturn]] void Raise(py::handle type, const std::string& text, const More&... more)
{
    PyErr_SetObject(type.ptr(), py::object(type(ToText(text), more...)).ptr());
    throw py::error_already_set();
}
/// Raises TypeError for another thing than the one that is needed.
[[noreturn]] void RaiseNeeded(const std::string& what, py::handle given);
/// A sentence of the library with the names that classes have in Python, texts in quotation marks
/// left alone.
std::string WithPythonNames(std::string_view text);
[[noreturn]] void RaiseFailure(std::string_view text, KARStatus status,
                               const py::object& entity = py::none());
/// Takes over what Python made; raises what it has set instead.
template <class T = py::object>
T Made(PyObject* made)
{
    if (made == nullptr)
        throw py::error_already_set();
    return py::reinterpret_steal<T>(made);
}

/// Releases the interpreter's lock. Where the interpreter ends meanwhile, taking it back would end
/// the thread, and unwind it through destructors that need the lock: it waits for the process's
/// end. That waits for what runs without the lock, which uses tables that end with the process.
class Unlocked
{
public:
    Unlocked();
    ~Unlocked();
    Unlocked(const Unlocked&) = delete;
    Unlocked& operator=(const Unlocked&) = delete;

    /// Lets the process wait at its end until no thread runs without the lock.
    static void WaitForAllAtExit();

private:
    static std::atomic<int> s_running;
    PyThreadState* m_thread = nullptr;
};

/// Raises for a model that another thread works on.
inline void CheckFree(const ModelState& state)
{
    if (state.isBusy)
        RaiseFailure("another thread works on the model", KARFailure);
}
/// The failed checks of this thread, counted from 0.
int& FailedChecks();
/// Raises the first problem of a model, and forgets all; warns of failed checks.
void EndEdit(Model& model, std::string_view what);

/// An edit of a model: what it could not do is raised, failed checks become warnings.
template <class Work>
auto Do(ModelState& state, std::string_view what, Work work)
{
    CheckFree(state);
    FailedChecks() = 0;
    auto result = work();
    EndEdit(state.model, what);
    return result;
}

/// Work on a model, or on two, without the interpreter's lock; other threads are refused meanwhile.
template <class Work>
auto Alone(ModelState& first, ModelState& second, Work work)
{
    CheckFree(first);
    CheckFree(second);
    first.isBusy = second.isBusy = true;
    const std::shared_ptr<void> end(nullptr, [&](void*) { first.isBusy = second.isBusy = false; });
    const Unlocked unlocked;
    return work();
}

/// The model of a Python object, or one that is free; raises otherwise.
State StateOf(py::handle object);
ModelState& ModelOf(py::handle object);
/// The Python object of an entity, the same one each time; None for a null handle.
py::object Wrap(const Entity& entity, ModelState& state);
/// The object of an entity that is not deleted, of a model that is free; raises otherwise.
EntityObject& AliveOf(py::handle object);
/// The record of a Python class; raises for another one. The Python class of a record, or the
/// nearest base's, and its name.
const QOBClassInfo& InfoOf(py::handle type);
py::handle TypeOf(const QOBClassInfo& info);
std::string NameOf(const QOBClassInfo& info);
/// The item of a class by the name of its property; null for another name, or raises for it.
const ItemInfo* FindItemOf(const QOBClassInfo& info, const std::string& name);
const ItemInfo& ItemOf(const QOBClassInfo& info, const std::string& name);
/// "Body "Crank"".
std::string TitleOf(const KARMPEntity& entity);

/// Get and set an item, as properties of Python do.
PyObject* GetItem(PyObject* self, void* property);
int SetItem(PyObject* self, PyObject* value, void* property);

struct Functions;
void BindClasses(py::module_& module);
void BindItems(const Functions& calls);

} // namespace karmp::python

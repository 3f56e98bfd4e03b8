// The entities of a model by family and by class, found by identifier or name.
#include "Bindings.h"
#include "KARMPEntities.h"
#include "KARTextConversion.h"

#include <algorithm>
#include <span>

namespace karmp::python {

namespace {

using py::literals::operator""_a;
using AnyRef = model::Ref<KARMPEntity>;
using AnyRefs = model::RefList<KARMPEntity>;
using Model = model::Model;

/// What a model does with one family.
struct FamilyCalls
{
    std::wstring_view element;
    const QOBClassInfo* info;
    AnyRefs (*all)(const Model& model);
    AnyRef (*find)(const Model& model, std::string_view key);
    std::string (*why)(const Model& model, std::string_view key);
    int (*count)(const Model& model);
};

template <class T>
FamilyCalls CallsOf(std::wstring_view element)
{
    return {element,
            &T::ClassInfo(),
            [](const Model& model) {
                const auto all = model.All<T>();
                return AnyRefs(all.begin(), all.end());
            },
            [](const Model& model, std::string_view key) { return AnyRef(model.Find<T>(key)); },
            [](const Model& model, std::string_view key) { return model.Get<T>(key).Error().text; },
            [](const Model& model) {
                if constexpr (std::is_same_v<T, KARMPEntity>)
                    return static_cast<int>(model.All<T>().size());
                else
                    return model.World()->template Count<T>();
            }};
}

// All families, and the base of all of them at last.
const std::vector<FamilyCalls>& Calls()
{
    static const auto& calls = *new std::vector<FamilyCalls>([] {
        std::vector<FamilyCalls> made;
        ForEachRegistryElement([&made]<class T>(const RegistryElement<T>& element) {
            made.push_back(CallsOf<T>(element.name));
        });
        made.push_back(CallsOf<KARMPEntity>({}));
        return made;
    }());
    return calls;
}

/// The entities of a class, those of the classes that are derived from it as well.
struct Entities : Held
{
    State state;
    const EntityClass* of;
    const FamilyCalls* family;

    bool IsWhole() const { return of->info == family->info; }
    bool Fits(const AnyRef& entity) const { return IsWhole() || entity->isDerivedFrom(*of->info); }
    AnyRefs All() const
    {
        CheckFree(*state);
        AnyRefs all = family->all(state->model);
        if (!IsWhole())
            std::erase_if(all, [this](const AnyRef& entity) { return !Fits(entity); });
        return all;
    }
    AnyRef Find(const std::string& key) const;
};
using Collection = std::shared_ptr<Entities>;

AnyRef Entities::Find(const std::string& key) const
{
    CheckFree(*state);
    const AnyRef found = family->find(state->model, key);
    if (IsWhole() || (found && Fits(found)))
        return found;
    // Of several with the name one may be of the class.
    const std::wstring name = kar::ToWide(key);
    AnyRefs all = All();
    std::erase_if(all, [&name](const AnyRef& entity) { return entity->getEntityName() != name; });
    return all.size() == 1 ? all.front() : AnyRef();
}

Collection EntitiesOf(const State& state, const EntityClass& of)
{
    const auto found =
        std::find_if(Calls().begin(), Calls().end(), [&of](const FamilyCalls& family) {
            return of.info->isDerivedFrom(*family.info);
        });
    return std::make_shared<Entities>(Entities{{}, state, &of, &*found});
}

py::list List(const Entities& entities)
{
    const AnyRefs all = entities.All();
    py::list list(all.size());
    for (std::size_t i = 0; i < all.size(); ++i)
        list[i] = Wrap(all[i].Handle(), entities.state);
    return list;
}

py::object Item(const Collection& self, const py::object& key)
{
    if (!PyUnicode_Check(key.ptr()))
        return py::object(List(*self)[key]);
    const std::string text = Utf8Of(key);
    if (const AnyRef found = self->Find(text))
        return Wrap(found.Handle(), self->state);
    Raise(PyExc_KeyError, self->IsWhole() ? self->family->why(self->state->model, text)
                                          : "there is no " + self->of->name + " \"" + text + '"');
}

bool Contains(const Collection& self, const py::object& key)
{
    if (PyUnicode_Check(key.ptr()))
        return static_cast<bool>(self->Find(Utf8Of(key)));
    if (PyObject_TypeCheck(key.ptr(), Types().entity) == 0)
        return false;
    const auto& object = *reinterpret_cast<EntityObject*>(key.ptr());
    return object.state == self->state && !object.entity->isOrphaned() &&
           object.entity->isDerivedFrom(*self->of->info);
}

void BindCollection(py::module_& module)
{
    py::class_<Entities, Collection> entities(
        module, "Entities",
        "The entities of a class in a model, by identifier or name, or by index.");
    Seal(entities);
    entities
        .def("__len__",
             [](const Collection& self) {
                 CheckFree(*self->state);
                 return self->IsWhole()
                            ? static_cast<std::size_t>(self->family->count(self->state->model))
                            : self->All().size();
             })
        .def("__iter__", [](const Collection& self) { return py::iter(List(*self)); })
        .def("__getitem__", &Item)
        .def("__contains__", &Contains)
        .def("__repr__", [](const Collection& self) { return py::repr(List(*self)); })
        .def(
            "get",
            [](const Collection& self, const py::object& key, const py::object& other) {
                const AnyRef found = self->Find(Utf8Of(key));
                return found ? Wrap(found.Handle(), self->state) : other;
            },
            "key"_a, "default"_a = py::none(),
            "The entity of an identifier or name, the default when there is none or several.")
        .def(
            "keys",
            [](const Collection& self) {
                py::list keys;
                for (const AnyRef& entity : self->All()) {
                    std::wstring identifier;
                    entity->GetIdentifier(identifier);
                    keys.append(ToText(identifier));
                }
                return keys;
            },
            "The identifiers.");
}

} // namespace

std::vector<Entity> AllOf(const State& state, const EntityClass& of)
{
    std::vector<Entity> entities;
    for (const AnyRef& entity : EntitiesOf(state, of)->All())
        entities.push_back(entity.Handle());
    return entities;
}

void BindFamilies(py::module_& module, ModelClass& of)
{
    BindCollection(module);
    for (const FamilyCalls& family : Calls()) {
        const auto known = Types().byInfo.find(family.info);
        if (family.element.empty() || known == Types().byInfo.end())
            continue;
        const EntityClass* const type = known->second;
        const std::string doc = "The entities of the family " + type->name + '.';
        of.def_property_readonly(
            SnakeCase(family.element).c_str(),
            [type](const State& self) { return EntitiesOf(self, *type); }, doc.c_str());
    }
    of.def(
        "all",
        [](const State& self, const py::object& type) { return EntitiesOf(self, ClassOf(type)); },
        "cls"_a, "The entities of a class, those of the classes derived from it as well.");
    of.def(
        "get",
        [](const State& self, const py::object& type, const py::object& key) {
            return Item(EntitiesOf(self, ClassOf(type)), py::str(key));
        },
        "cls"_a, "key"_a, "The entity of a class by identifier or name; KeyError without one.");
    of.def(
        "find",
        [](const State& self, const py::object& key, const py::object& type) {
            const AnyRef found = EntitiesOf(self, ClassOf(type))->Find(Utf8Of(key));
            return found ? Wrap(found.Handle(), self) : py::object(py::none());
        },
        "key"_a, "cls"_a = py::handle(reinterpret_cast<PyObject*>(Types().entity)),
        "The entity of an identifier or name, None when there is none or several.");
}

} // namespace karmp::python

// The Python type of entities: one base, whose objects hold an entity and the state of its model,
// and a class for each one that the library has, with a property for each item of its table.
#include "Bindings.h"
#include "KARMPEnumerationTexts.h"
#include "KARMPGenericFactory.h"
#include "KARMPSchema.h"
#include "KARTextConversion.h"

#include <structmember.h>

#include <algorithm>
#include <cstddef>
#include <map>

namespace karmp::python {

namespace {

EntityObject& ObjectOf(PyObject* self)
{
    return *reinterpret_cast<EntityObject*>(self);
}

void Deallocate(PyObject* self)
{
    EntityObject& object = ObjectOf(self);
    PyTypeObject* const type = Py_TYPE(self);
    if (object.weakReferences != nullptr)
        PyObject_ClearWeakRefs(self);
    object.state->objects.erase(object.entity.get());
    object.entity.~Entity();
    object.state.~State();
    type->tp_free(self);
    Py_DECREF(type);
}

// The checks of every access by Python.
void CheckAlive(EntityObject& object)
{
    CheckFree(*object.state);
    if (!object.entity->isOrphaned())
        return;
    Raise(Types().deletedError, TitleOf(*object.entity) + " was deleted");
}

// What Python's own attribute errors lack.
int TellNear(PyObject* self, PyObject* name)
{
    if (PyErr_ExceptionMatches(PyExc_AttributeError) == 0 || !PyUnicode_Check(name))
        return -1;
    const EntityClass& of = ClassOf(py::handle(reinterpret_cast<PyObject*>(Py_TYPE(self))));
    const std::string text = Utf8Of(name);
    if (FindProperty(of, text) == nullptr) {
        PyErr_Clear();
        RaiseNoItem(of, text);
    }
    return -1;
}

PyObject* GetAttribute(PyObject* self, PyObject* name)
{
    PyObject* const found = PyObject_GenericGetAttr(self, name);
    if (found == nullptr)
        try {
            TellNear(self, name);
        } catch (...) {
            SetException();
        }
    return found;
}

int SetAttribute(PyObject* self, PyObject* name, PyObject* value)
{
    const int status = PyObject_GenericSetAttr(self, name, value);
    if (status != 0)
        try {
            TellNear(self, name);
        } catch (...) {
            SetException();
        }
    return status;
}

PyObject* Represent(PyObject* self)
{
    try {
        const EntityObject& object = ObjectOf(self);
        std::string text = "<karmp." + TitleOf(*object.entity);
        if (object.entity->isOrphaned())
            text += ", deleted";
        return ToText(text + '>').release().ptr();
    } catch (...) {
        SetException();
        return nullptr;
    }
}

PyObject* GetProperty(PyObject* self, void* property)
{
    try {
        EntityObject& object = ObjectOf(self);
        CheckAlive(object);
        auto& row = *static_cast<Property*>(property);
        if (row.item == nullptr)
            RaiseNoItem(ClassOf(*object.entity), row.name);
        return GetItem(object, row).release().ptr();
    } catch (...) {
        SetException();
        return nullptr;
    }
}

int SetProperty(PyObject* self, PyObject* value, void* property)
{
    try {
        const Property& row = *static_cast<Property*>(property);
        if (row.item == nullptr)
            RaiseNoItem(ClassOf(*ObjectOf(self).entity), row.name);
        if (value == nullptr)
            Raise(PyExc_TypeError, row.name + " cannot be deleted");
        SetItem(ObjectOf(self), row, value);
        return 0;
    } catch (...) {
        SetException();
        return -1;
    }
}

PyTypeObject* MakeBase(py::module_& module)
{
    static PyMemberDef members[] = {{"__weaklistoffset__", T_PYSSIZET,
                                     offsetof(EntityObject, weakReferences), READONLY, nullptr},
                                    {nullptr, 0, 0, 0, nullptr}};
    const auto function = []<class F>(F* pointer) { return reinterpret_cast<void*>(pointer); };
    PyType_Slot slots[] = {{Py_tp_dealloc, function(&Deallocate)},
                           {Py_tp_repr, function(&Represent)},
                           {Py_tp_getattro, function(&GetAttribute)},
                           {Py_tp_setattro, function(&SetAttribute)},
                           {Py_tp_members, members},
                           {Py_tp_doc, const_cast<char*>("What all entities of a model have.")},
                           {0, nullptr}};
    PyType_Spec spec{"karmp.Entity", sizeof(EntityObject), 0,
                     Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_DISALLOW_INSTANTIATION,
                     slots};
    PyObject* const type = PyType_FromSpec(&spec);
    if (type == nullptr)
        throw py::error_already_set();
    module.add_object("Entity", type);
    return reinterpret_cast<PyTypeObject*>(type);
}

std::string QuantityText(KARMPPhysicalQuantity::Enum quantity)
{
    return kar::ToUtf8(EnumTexts<KARMPPhysicalQuantity::Enum>::Rows[quantity]);
}

std::string DocOf(const ItemInfo& item)
{
    std::string doc(item.says);
    if (item.quantity != KARMPPhysicalQuantity::NoPhysicalQuantity)
        doc += " Quantity: " + QuantityText(item.quantity) + '.';
    for (std::size_t i = 0; item.kind == ItemKind::Word && i < item.words.size(); ++i)
        doc += (i == 0 ? " One of " : ", ") + kar::ToUtf8(item.words[i]) +
               (i + 1 == item.words.size() ? "." : "");
    if (!item.readOnly.empty())
        doc += " Read only: " + std::string(item.readOnly);
    return doc;
}

// The base's property of the same row, null without one.
Property* InheritedOf(const ItemInfo& item, const EntityClass* base)
{
    if (base == nullptr)
        return nullptr;
    const auto found = std::find_if(
        base->properties.begin(), base->properties.end(), [&item](const Property* property) {
            const ItemInfo& row = *property->item;
            return row.written == item.written && row.read == item.read &&
                   row.readOnly == item.readOnly && row.path == item.path;
        });
    return found != base->properties.end() ? *found : nullptr;
}

void AddDescriptor(const EntityClass& of, Property& property)
{
    property.definition = {property.name.c_str(), &GetProperty, &SetProperty, property.doc.c_str(),
                           &property};
    const auto descriptor =
        py::reinterpret_steal<py::object>(PyDescr_NewGetSet(of.type, &property.definition));
    if (!descriptor ||
        PyDict_SetItemString(of.type->tp_dict, property.name.c_str(), descriptor.ptr()) != 0)
        throw py::error_already_set();
}

void AddProperties(EntityClass& of, const EntityClass* base)
{
    std::map<std::string, int> uses;
    const auto items = ItemsOf(*of.info);
    for (const ItemInfo& item : items) {
        const Property* const inherited = InheritedOf(item, base);
        ++uses[inherited != nullptr ? inherited->name : SnakeCase(item.name)];
    }
    for (const ItemInfo& item : items) {
        Property* property = InheritedOf(item, base);
        if (property == nullptr) {
            property = new Property{&item, SnakeCase(item.name), DocOf(item)};
            if (uses[property->name] > 1)
                property->name = SnakeCase(item.path);
            AddDescriptor(of, *property);
        }
        of.properties.push_back(property);
    }
    // A planar class is no spatial one in documents: what it does not hold is hidden.
    for (const Property* const property :
         base != nullptr ? base->properties : std::vector<Property*>())
        if (FindProperty(of, property->name) == nullptr)
            AddDescriptor(of, *new Property{nullptr, property->name, "No item of the class."});
    PyType_Modified(of.type);
}

// The class of a record, made with its bases.
EntityClass& AddClass(py::module_& module, const QOBClassInfo& info)
{
    Registry& types = Types();
    if (const auto found = types.byInfo.find(&info); found != types.byInfo.end())
        return *found->second;
    EntityClass* base = nullptr;
    if (info != KARMPEntity::ClassInfo())
        base = &AddClass(module, *info.getParent());
    auto made = std::make_unique<EntityClass>();
    made->info = &info;
    made->name = ClassNameOf(info.getName());
    made->type = types.entity;
    if (base != nullptr) {
        const SchemaItem* const schema = SchemaOf(info.getName());
        py::dict attributes;
        attributes["__slots__"] = py::tuple();
        attributes["__module__"] = "karmp";
        // Documents hold all classes but one.
        attributes["__doc__"] =
            schema != nullptr ? schema->says : "What a solver tells of entities.";
        const auto type = py::handle(reinterpret_cast<PyObject*>(&PyType_Type))(
            made->name, py::make_tuple(py::handle(reinterpret_cast<PyObject*>(base->type))),
            attributes);
        module.add_object(made->name.c_str(), type);
        made->type = reinterpret_cast<PyTypeObject*>(type.ptr());
    }
    AddProperties(*made, base);
    EntityClass& kept = *types.classes.emplace_back(std::move(made));
    types.byInfo[&info] = &kept;
    types.byType[kept.type] = &kept;
    return kept;
}

} // namespace

std::string TitleOf(const KARMPEntity& entity)
{
    return ClassOf(entity).name + " \"" + kar::ToUtf8(entity.getEntityName()) + '"';
}

py::object Wrap(const Entity& entity, const State& state)
{
    if (!entity)
        return py::none();
    PyObject*& known = state->objects[entity.get()];
    if (known != nullptr)
        return py::reinterpret_borrow<py::object>(known);
    PyTypeObject* const type = ClassOf(*entity).type;
    PyObject* const made = type->tp_alloc(type, 0);
    if (made == nullptr) {
        state->objects.erase(entity.get());
        throw py::error_already_set();
    }
    new (&ObjectOf(made).entity) Entity(entity);
    new (&ObjectOf(made).state) State(state);
    known = made;
    return py::reinterpret_steal<py::object>(made);
}

EntityObject& AliveOf(py::handle object)
{
    if (!PyObject_TypeCheck(object.ptr(), Types().entity))
        Raise(PyExc_TypeError, "an entity is needed, not " + py::repr(object).cast<std::string>());
    EntityObject& found = ObjectOf(object.ptr());
    CheckAlive(found);
    return found;
}

const Entity& EntityIn(py::handle object, const State& state)
{
    const EntityObject& found = AliveOf(object);
    if (found.state != state)
        Raise(PyExc_ValueError, TitleOf(*found.entity) + " belongs to another model");
    return found.entity;
}

const EntityClass& ClassOf(py::handle type)
{
    const Registry& types = Types();
    const auto found = types.byType.find(reinterpret_cast<const PyTypeObject*>(type.ptr()));
    if (found == types.byType.end())
        Raise(PyExc_TypeError, py::repr(type).cast<std::string>() + " is no class of entities");
    return *found->second;
}

const EntityClass& ClassOf(const KARMPEntity& entity)
{
    const Registry& types = Types();
    const QOBClassInfo* info = &entity.getClassInfo();
    while (true) {
        if (const auto found = types.byInfo.find(info); found != types.byInfo.end())
            return *found->second;
        info = info->getParent();
    }
}

Property* FindProperty(const EntityClass& of, const std::string& name)
{
    const auto find = [&of](auto isMeant) -> Property* {
        const auto found = std::find_if(of.properties.begin(), of.properties.end(), isMeant);
        return found != of.properties.end() ? *found : nullptr;
    };
    return find([&name](const Property* property) { return property->name == name; });
}

void RaiseNoItem(const EntityClass& of, const std::string& name)
{
    std::vector<std::string> names;
    for (const Property* const property : of.properties)
        names.push_back(property->name);
    Raise(PyExc_AttributeError,
          "karmp." + of.name + " has no item \"" + name + '"' + NearText(name, names));
}

void BindEntities(py::module_& module)
{
    Registry& types = Types();
    types.entity = MakeBase(module);
    for (const std::string& name : KARMPFactory::GetClassNames()) {
        Entity sample;
        if (KARFailed(KARMPFactory::Create(name, sample)) || !sample)
            throw std::bad_alloc();
        AddClass(module, sample->getClassInfo());
    }
    const auto base = py::handle(reinterpret_cast<PyObject*>(types.entity));
    py::setattr(base, "model",
                py::handle(reinterpret_cast<PyObject*>(&PyProperty_Type))(
                    py::cpp_function([](const py::object& self) { return AliveOf(self).state; },
                                     "The model of the entity.")));
    py::setattr(base, "__reduce__",
                py::cpp_function(
                    [](const py::object& self) {
                        const EntityObject& object = AliveOf(self);
                        std::wstring identifier;
                        object.entity->GetIdentifier(identifier);
                        return py::make_tuple(py::module_::import("karmp").attr("_entity"),
                                              py::make_tuple(object.state, ToText(identifier)));
                    },
                    py::is_method(base)));
}

} // namespace karmp::python

// The Python type of entities: one base, whose objects hold an entity and the state of its model,
// and a class for each one that the library has, with a property for each item of its table.
#include "Calls.h"
#include "KARMPEnumerationTexts.h"
#include "KARMPGenericFactory.h"
#include "KARMPSchema.h"
#include "KARTextConversion.h"

#include <algorithm>

namespace karmp::python {

namespace {

auto& known = *new std::unordered_map<const QOBClassInfo*, EntityClass*>;
PyTypeObject* entityType = nullptr;

EntityObject& ObjectOf(py::handle object)
{
    auto* const instance = reinterpret_cast<py::detail::instance*>(object.ptr());
    return *static_cast<EntityObject*>(instance->simple_value_holder[0]);
}
py::handle TypeOf(const EntityClass& of)
{
    return reinterpret_cast<PyObject*>(of.type);
}
// Null without a property of the name.
Property* FindProperty(const EntityClass& of, std::string_view name)
{
    const auto found = std::ranges::find(of.properties, name, &Property::name);
    return found != of.properties.end() ? *found : nullptr;
}

// A function for a slot of a Python type: what it throws becomes Python's exception.
template <auto Function>
struct Slot;
template <class R, class... A, R (*Function)(A...)>
struct Slot<Function>
{
    static R Call(A... arguments) noexcept
    {
        try {
            return Function(arguments...);
        } catch (py::error_already_set& error) {
            error.restore();
        } catch (const std::bad_alloc&) {
            PyErr_NoMemory();
        } catch (const std::exception& error) {
            PyErr_SetString(PyExc_RuntimeError, error.what());
        }
        if constexpr (std::is_pointer_v<R>)
            return nullptr;
        else
            return -1;
    }
};

// Gets or sets an attribute by Python's own function, whose errors lack the near name.
template <auto Own, class... Value>
auto Attribute(PyObject* self, PyObject* name, Value... value)
{
    if (sizeof...(Value) > 0 && PyUnicode_CompareWithASCIIString(name, "__class__") == 0)
        Raise(PyExc_TypeError, "the class of an entity cannot be set");
    const auto done = Own(self, name, value...);
    if (PyErr_Occurred() == nullptr || PyErr_ExceptionMatches(PyExc_AttributeError) == 0)
        return done;
    const EntityClass& of = ClassOf(*ObjectOf(self).entity);
    const std::string text = Taken<std::string>(name);
    if (FindProperty(of, text) == nullptr) {
        PyErr_Clear();
        PropertyOf(of, text);
    }
    return done;
}

PyObject* Represent(PyObject* self)
{
    const KARMPEntity& entity = *ObjectOf(self).entity;
    const char* const end = entity.isOrphaned() ? ", deleted>" : ">";
    return ToText("<karmp." + TitleOf(entity) + end).release().ptr();
}

// What classes that Python makes do not inherit.
PyTypeObject* WithSlots(py::handle made)
{
    auto* const type = reinterpret_cast<PyTypeObject*>(made.ptr());
    type->tp_repr = &Slot<&Represent>::Call;
    type->tp_getattro = &Slot<&Attribute<&PyObject_GenericGetAttr>>::Call;
    type->tp_setattro = &Slot<&Attribute<&PyObject_GenericSetAttr, PyObject*>>::Call;
    return type;
}

std::string DocOf(const ItemInfo& item)
{
    std::string doc(item.says);
    if (const auto row = static_cast<std::size_t>(item.quantity); row != 0)
        doc += " Quantity: " + kar::ToUtf8(EnumTexts<KARMPPhysicalQuantity::Enum>::Rows[row]) + '.';
    for (std::size_t i = 0; item.kind == ItemKind::Word && i < item.words.size(); ++i)
        doc += (i == 0 ? " One of " : ", ") + kar::ToUtf8(item.words[i]) +
               (i + 1 == item.words.size() ? "." : "");
    return item.readOnly.empty() ? doc : doc + " Read only: " + std::string(item.readOnly);
}

// The base's property of the same row, null without one.
Property* InheritedOf(const ItemInfo& item, const std::vector<Property*>& ofBase)
{
    const auto found = std::ranges::find_if(ofBase, [&item](const Property* property) {
        const ItemInfo& row = *property->item;
        return row.written == item.written && row.read == item.read && row.path == item.path &&
               row.readOnly == item.readOnly;
    });
    return found != ofBase.end() ? *found : nullptr;
}

Property* AddDescriptor(const EntityClass& of, Property made)
{
    auto* const property = new Property(std::move(made));
    const char* const name = property->name.c_str();
    property->definition = {name, &Slot<&GetItem>::Call, &Slot<&SetItem>::Call,
                            property->doc.c_str(), property};
    py::reinterpret_borrow<py::dict>(of.type->tp_dict)[name] =
        Made(PyDescr_NewGetSet(of.type, &property->definition));
    return property;
}

void AddProperties(EntityClass& of, const std::vector<Property*>& ofBase)
{
    const auto items = ItemsOf(*of.info);
    for (const ItemInfo& item : items) {
        Property* property = InheritedOf(item, ofBase);
        if (property == nullptr) {
            const bool isAlone = std::ranges::count(items, item.name, &ItemInfo::name) == 1;
            const std::wstring_view name = isAlone ? item.name : item.path;
            property = AddDescriptor(of, {&item, SnakeCase(name), DocOf(item)});
        }
        of.properties.push_back(property);
    }
    // A planar class is no spatial one in documents: what it does not hold is hidden.
    for (const Property* const property : ofBase)
        if (FindProperty(of, property->name) == nullptr)
            AddDescriptor(of, {nullptr, property->name, "No item of the class."});
    PyType_Modified(of.type);
}

// The class of a record, made with its bases.
EntityClass& AddClass(py::module_& module, const QOBClassInfo& info)
{
    if (known.contains(&info))
        return *known[&info];
    auto& made = *new EntityClass{&info, entityType, ClassNameOf(info.getName()), {}};
    known[&info] = &made;
    if (info == KARMPEntity::ClassInfo()) {
        AddProperties(made, {});
        return made;
    }
    const EntityClass& base = AddClass(module, *info.getParent());
    const SchemaItem* const schema = SchemaOf(info.getName());
    // Documents hold all classes but one.
    const auto says = schema != nullptr ? schema->says : "What a solver tells of entities.";
    const py::object type = py::handle(reinterpret_cast<PyObject*>(&PyType_Type))(
        made.name, py::make_tuple(TypeOf(base)),
        py::dict("__slots__"_a = py::tuple(), "__module__"_a = "karmp", "__doc__"_a = says));
    module.attr(made.name.c_str()) = type;
    made.type = WithSlots(type);
    AddProperties(made, base.properties);
    return made;
}

} // namespace

ModelState& ModelOf(py::handle object)
{
    py::detail::make_caster<State> caster;
    if (object.is_none() || !caster.load(object, false))
        RaiseNeeded("a Model", object);
    ModelState& state = *py::detail::cast_op<State&>(caster);
    CheckFree(state);
    return state;
}

std::string TitleOf(const KARMPEntity& entity)
{
    return ClassOf(entity).name + " \"" + kar::ToUtf8(entity.getEntityName()) + '"';
}

py::object Wrap(const Entity& entity, ModelState& state)
{
    if (!entity)
        return py::none();
    if (const auto found = state.objects.find(entity.get()); found != state.objects.end())
        return py::reinterpret_borrow<py::object>(found->second);
    const auto made = Made(py::detail::make_new_instance(ClassOf(*entity).type));
    auto* const instance = reinterpret_cast<py::detail::instance*>(made.ptr());
    instance->simple_value_holder[0] = new EntityObject(entity, state);
    py::detail::get_type_info(typeid(EntityObject))->init_instance(instance, nullptr);
    state.objects[entity.get()] = made.ptr();
    return made;
}

EntityObject& AliveOf(py::handle object)
{
    if (!PyObject_TypeCheck(object.ptr(), entityType))
        RaiseNeeded("an entity", object);
    EntityObject& found = ObjectOf(object);
    CheckFree(*found.state);
    if (found.entity->isOrphaned())
        Raise(OfPackage("DeletedError"), TitleOf(*found.entity) + " was deleted");
    return found;
}

const EntityClass& ClassOf(py::handle type)
{
    for (const auto& [info, of] : known)
        if (TypeOf(*of).is(type))
            return *of;
    RaiseNeeded("a class of entities", type);
}

const EntityClass& ClassOf(const KARMPEntity& entity)
{
    const QOBClassInfo* info = &entity.getClassInfo();
    while (!known.contains(info))
        info = info->getParent();
    return *known.at(info);
}

const Property& PropertyOf(const EntityClass& of, const std::string& name)
{
    if (const Property* const property = FindProperty(of, name))
        return *property;
    std::vector<std::wstring> names;
    for (const Property* const property : of.properties)
        names.push_back(kar::ToWide(property->name));
    Raise(PyExc_AttributeError,
          "karmp." + of.name + " has no item \"" + name + '"' + NearText(kar::ToWide(name), names));
}

void BindClasses(py::module_& module)
{
    const py::handle metaclass(reinterpret_cast<PyObject*>(&PyType_Type));
    entityType = WithSlots(py::class_<EntityObject>(
        module, "Entity", "What all entities of a model have.", py::metaclass(metaclass)));
    entityType->tp_new = nullptr; // the module alone makes objects
    for (const std::string& name : KARMPFactory::GetClassNames()) {
        Entity sample;
        if (KARFailed(KARMPFactory::Create(name, sample)) || !sample)
            throw std::bad_alloc();
        AddClass(module, sample->getClassInfo());
    }
    py::dict families;
    for (const auto& [element, info] : FamilyRecords())
        if (known.contains(info))
            families[ToText(SnakeCase(element))] = TypeOf(*known.at(info));
    module.attr("_families") = families;
}

} // namespace karmp::python

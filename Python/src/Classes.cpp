// The Python type of entities: one base, whose objects hold an entity and the state of its model,
// and a class for each one that the library has, with a property for each item of its table.
#include "Calls.h"
#include "KARMPEnumerationTexts.h"
#include "KARMPGenericFactory.h"
#include "KARMPSchema.h"
#include "KARTextConversion.h"

#include <algorithm>
#include <map>

namespace karmp::python {

namespace {

// What is kept until the process ends: the Python classes by their records, and the base of all.
auto& types = *new std::unordered_map<const QOBClassInfo*, py::object>;
PyTypeObject* entityType = nullptr;

EntityObject& ObjectOf(py::handle object)
{
    auto* const instance = reinterpret_cast<py::detail::instance*>(object.ptr());
    return *static_cast<EntityObject*>(instance->simple_value_holder[0]);
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
    const py::error_already_set failure;
    OfPackage("_table").attr("check_item")(py::type::handle_of(self), py::handle(name));
    throw failure;
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

void AddProperty(PyTypeObject* type, Property& property)
{
    const char* const name = property.name.c_str();
    property.definition = {name, &Slot<&GetItem>::Call, &Slot<&SetItem>::Call, property.doc.c_str(),
                           &property};
    py::reinterpret_borrow<py::dict>(type->tp_dict)[name] =
        Made(PyDescr_NewGetSet(type, &property.definition));
}

// The names of the items of each class in Python, by what tells an item of a class from one of its
// base.
using ItemKey =
    std::tuple<const QOBClassInfo*, const Item*, const Item*, std::wstring_view, std::string_view>;
using ItemNames = std::map<ItemKey, py::object>;

// True when the names of an item and of those in its group tell them from all other items.
bool IsShortNameEnough(const ItemInfo& item, std::span<const ItemInfo> items)
{
    const auto groupOf = [](const ItemInfo& of) {
        return std::wstring_view(of.path).substr(0, of.path.rfind(L'/') + 1);
    };
    return std::ranges::none_of(items, [&](const ItemInfo& other) {
        const bool isConcerned =
            groupOf(item).empty() ? &other == &item : groupOf(other) == groupOf(item);
        return isConcerned && std::ranges::count(items, other.name, &ItemInfo::name) > 1;
    });
}

// Lets Python make the class of a record, behind its base, from the names of its items; those that
// its base has not become properties.
void MakeClass(const QOBClassInfo& info, const py::function& make, ItemNames& known)
{
    if (types.contains(&info))
        return;
    const QOBClassInfo* const base = info == KARMPEntity::ClassInfo() ? nullptr : info.getParent();
    if (base != nullptr)
        MakeClass(*base, make, known);
    const auto items = ItemsOf(info);
    py::list names;
    std::vector<Property*> properties;
    for (const ItemInfo& item : items) {
        const auto key = [&item](const QOBClassInfo* of) {
            return ItemKey(of, item.written, item.read, item.path, item.readOnly);
        };
        py::object& name = known[key(&info)];
        name = known[key(base)];
        if (!name) {
            const bool isShort = IsShortNameEnough(item, items);
            properties.push_back(
                new Property{&item, SnakeCase(isShort ? item.name : item.path), DocOf(item)});
            name = ToText(properties.back()->name);
        }
        names.append(name);
    }
    const SchemaItem* const schema = SchemaOf(info.getName());
    const py::object made = make(info.getName(), base != nullptr ? TypeOf(*base) : py::none(),
                                 schema != nullptr ? schema->says : std::string_view(), names);
    types[&info] = made;
    PyTypeObject* const type = WithSlots(made);
    for (Property* const property : properties)
        AddProperty(type, *property);
    PyType_Modified(type);
}

void MakeClasses(const py::function& make)
{
    ItemNames known;
    for (const std::string& name : KARMPFactory::GetClassNames()) {
        Entity sample;
        if (KARFailed(KARMPFactory::Create(name, sample)) || !sample)
            throw std::bad_alloc();
        MakeClass(sample->getClassInfo(), make, known);
    }
}

} // namespace

State StateOf(py::handle object)
{
    py::detail::make_caster<State> caster;
    if (object.is_none() || !caster.load(object, false))
        RaiseNeeded("a Model", object);
    return py::detail::cast_op<State&>(caster);
}

ModelState& ModelOf(py::handle object)
{
    ModelState& state = *StateOf(object);
    CheckFree(state);
    return state;
}

py::handle TypeOf(const QOBClassInfo& info)
{
    const auto found = types.find(&info);
    return found != types.end() ? found->second : TypeOf(*info.getParent());
}

std::string NameOf(const QOBClassInfo& info)
{
    return Taken<std::string>(TypeOf(info).attr("__name__"));
}

std::string TitleOf(const KARMPEntity& entity)
{
    return NameOf(entity.getClassInfo()) + " \"" + kar::ToUtf8(entity.getEntityName()) + '"';
}

py::object Wrap(const Entity& entity, ModelState& state)
{
    if (!entity)
        return py::none();
    if (const auto found = state.objects.find(entity.get()); found != state.objects.end())
        return py::reinterpret_borrow<py::object>(found->second);
    const py::handle type = TypeOf(entity->getClassInfo());
    const auto made =
        Made(py::detail::make_new_instance(reinterpret_cast<PyTypeObject*>(type.ptr())));
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

const QOBClassInfo& InfoOf(py::handle type)
{
    for (const auto& [info, known] : types)
        if (known.is(type))
            return *info;
    RaiseNeeded("a class of entities", type);
}

const ItemInfo* FindItemOf(const QOBClassInfo& info, const std::string& name)
{
    const py::object found = py::getattr(TypeOf(info), name.c_str(), py::none());
    if (Py_IS_TYPE(found.ptr(), &PyGetSetDescr_Type)) {
        const auto& of = *reinterpret_cast<PyGetSetDescrObject*>(found.ptr())->d_getset;
        if (of.set == &Slot<&SetItem>::Call)
            return static_cast<const Property*>(of.closure)->item;
    }
    return nullptr;
}

const ItemInfo& ItemOf(const QOBClassInfo& info, const std::string& name)
{
    if (const ItemInfo* const item = FindItemOf(info, name))
        return *item;
    RaiseNeeded("the name of an item", ToText(name));
}

void BindClasses(py::module_& module)
{
    const py::handle metaclass(reinterpret_cast<PyObject*>(&PyType_Type));
    entityType = WithSlots(py::class_<EntityObject>(
        module, "Entity", "What all entities of a model have.", py::metaclass(metaclass)));
    entityType->tp_new = nullptr; // the module alone makes objects
    module.def("_make_classes", &MakeClasses);
    module.attr("_families") = Give(FamilyRecords(), nullptr);
}

} // namespace karmp::python

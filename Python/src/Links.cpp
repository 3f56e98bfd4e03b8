// Items of entities: get and set, and lists of entities as sequences.
#include "Bindings.h"

#include <algorithm>

namespace karmp::python {

namespace {

/// A list of entities that an entity refers to. Each call looks at the list as it is then.
struct Links : Held
{
    py::object owner;
    Property* property;

    EntityObject& Owner() const { return AliveOf(owner); }
    std::string Name() const { return property->name; }
    std::vector<Entity> Targets() const
    {
        const Value value = property->item->Get(*Owner().entity);
        const auto* const targets = std::get_if<std::vector<Entity>>(&value);
        return targets != nullptr ? *targets : std::vector<Entity>();
    }
    py::list List() const { return py::list(ToPython(Targets(), *property, Owner().state)); }
};
using LinksHandle = std::shared_ptr<Links>;

// The call of a model by which a list is changed, so that both ends know.
void Edit(const Links& links, py::handle target, bool isAdded)
{
    const EntityObject& owner = links.Owner();
    const model::Ref<KARMPEntity> first(owner.entity);
    const model::Ref<KARMPEntity> second(EntityIn(target, owner.state));
    const std::string path = Utf8Of(ToText(links.property->item->path));
    Do(owner.state, links.property->name.c_str(), [&](model::Model& model) {
        return isAdded ? model.Link(first, second, path) : model.Unlink(first, second, path);
    });
}

std::size_t IndexOf(const Links& links, py::handle target)
{
    const Entity& entity = AliveOf(target).entity;
    const std::vector<Entity> targets = links.Targets();
    const auto found = std::find(targets.begin(), targets.end(), entity);
    if (found == targets.end())
        Raise(PyExc_ValueError, TitleOf(*entity) + " is not in " + links.Name());
    return static_cast<std::size_t>(found - targets.begin());
}

bool Contains(const Links& links, py::handle target)
{
    const std::vector<Entity> targets = links.Targets();
    return PyObject_TypeCheck(target.ptr(), Types().entity) != 0 &&
           std::find(targets.begin(), targets.end(),
                     reinterpret_cast<EntityObject*>(target.ptr())->entity) != targets.end();
}

// The fields that the class fills itself, of records that are to be added.
void LeaveToClass(Value& records, const ItemInfo& item, const KARMPEntity& entity)
{
    auto& list = std::get<std::vector<RecordValues>>(records);
    for (std::size_t i = item.GetRecords(entity).size(); i < list.size(); ++i)
        for (std::size_t field = 0; field < item.fields.size(); ++field)
            if (!item.fields[field].readOnly.empty())
                list[i][field] = Value();
}

} // namespace

py::object GetItem(EntityObject& object, Property& property)
{
    const ItemInfo& item = *property.item;
    if (item.kind == ItemKind::References && item.CanGet())
        return py::cast(std::make_shared<Links>(
            Held(), py::reinterpret_borrow<py::object>(reinterpret_cast<PyObject*>(&object)),
            &property));
    Checks& checks = Checks::OfThread();
    checks.Begin();
    py::object value = ToPython(item.Get(*object.entity), property, object.state);
    checks.End([&property] { return property.name; });
    return value;
}

void SetItem(EntityObject& object, const Property& property, py::handle value)
{
    const ItemInfo& item = *property.item;
    const auto self = py::handle(reinterpret_cast<PyObject*>(&object));
    if (!item.readOnly.empty())
        Raise(PyExc_AttributeError,
              property.name + " cannot be set: " + std::string(item.readOnly));
    // Converting may run any code.
    Value made = FromPython(value, item, AliveOf(self).state);
    AliveOf(self);
    if (item.kind == ItemKind::Records)
        LeaveToClass(made, item, *object.entity);
    const bool isLink = item.kind == ItemKind::Reference || item.kind == ItemKind::References;
    if (isLink || object.state->openBlocks > 0) {
        SetByModel(object.state, object.entity, item, made);
        return;
    }
    Checks& checks = Checks::OfThread();
    checks.Begin();
    std::string why;
    const KARStatus status = item.Set(*object.entity, made, why);
    if (KARFailed(status))
        RaiseRefused(item, made, why, status, self);
    checks.End([&property] { return property.name; });
}

void SetByModel(const State& state, const Entity& entity, const ItemInfo& item, const Value& value)
{
    if (!item.Takes(value) && !(value.IsNone() && item.kind == ItemKind::Reference)) {
        std::string why;
        const KARStatus status = item.Set(*entity, value, why);
        RaiseRefused(item, value, why, status, Wrap(entity, state));
    }
    const std::string path = Utf8Of(ToText(item.path));
    Do(state, path.c_str(), [&](model::Model& model) {
        return model.Set(model::Ref<KARMPEntity>(entity), path, value);
    });
}

void RaiseRefused(const ItemInfo& item, const Value& value, const std::string& why,
                  KARStatus status, py::handle entity)
{
    const bool isLink = item.kind == ItemKind::Reference || item.kind == ItemKind::References;
    if (!item.Takes(value))
        Raise(isLink ? PyExc_TypeError : PyExc_ValueError, why);
    RaiseError(why, status, entity);
}

void BindLinks(py::module_& module)
{
    py::class_<Links, LinksHandle> links(
        module, "Links",
        "The entities that an item lists. Iterating is over a copy; changes make both ends.");
    Seal(links);
    links.def("__len__", [](const LinksHandle& self) { return self->Targets().size(); })
        .def("__iter__", [](const LinksHandle& self) { return py::iter(self->List()); })
        .def("__getitem__",
             [](const LinksHandle& self, const py::object& key) {
                 return py::object(py::list(self->List())[key]);
             })
        .def("__contains__", [](const LinksHandle& self,
                                const py::object& target) { return Contains(*self, target); })
        .def("__eq__",
             [](const LinksHandle& self, const py::object& other) {
                 return PySequence_Check(other.ptr()) != 0 && self->List().equal(py::list(other));
             })
        .def("__repr__", [](const LinksHandle& self) { return py::repr(self->List()); })
        .def(
            "index",
            [](const LinksHandle& self, const py::object& target) {
                return IndexOf(*self, target);
            },
            "The position of an entity; ValueError when it is not listed.")
        .def(
            "append",
            [](const LinksHandle& self, const py::object& target) { Edit(*self, target, true); },
            "Links an entity, both ends.")
        .def(
            "extend",
            [](const LinksHandle& self, const py::object& targets) {
                for (const py::handle target : py::list(targets))
                    Edit(*self, target, true);
            },
            "Links several.")
        .def(
            "remove",
            [](const LinksHandle& self, const py::object& target) {
                IndexOf(*self, target);
                Edit(*self, target, false);
            },
            "Takes both ends of a link away; ValueError when it is not listed.")
        .def_property_readonly(
            "words",
            [](const LinksHandle& self) {
                py::list words;
                for (const auto word : self->property->item->EntryWords(*self->Owner().entity))
                    words.append(ToText(word));
                return words;
            },
            "The words of the entries, such as the orientation of a joint's bodies.");
    links.attr("__hash__") = py::none();
}

} // namespace karmp::python

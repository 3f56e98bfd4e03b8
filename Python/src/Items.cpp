// Items of entities: get and set, of one entity and of all entities of a class.
#include "Arguments.h"

#include <pybind11/numpy.h>

#include <limits>

namespace karmp::python {

namespace {

// A link is made and taken away at both ends.
bool IsLink(const ItemInfo& item)
{
    return item.kind == ItemKind::Reference || item.kind == ItemKind::References;
}

// Stores a value of an item, undone with the block of edits it is in, links on both sides; raises
// what the item does not take and what the class refuses.
void Store(ModelState& state, const Entity& entity, const Property& property, const Value& value)
{
    const ItemInfo& item = *property.item;
    const bool isTaken = item.Takes(value) || (value.IsNone() && item.kind == ItemKind::Reference);
    Do(state, property.name, [&](model::Model& model) {
        if (isTaken && (IsLink(item) || state.openBlocks > 0))
            return model.Set(Ref<KARMPEntity>(entity), Utf8Of(ToText(item.path)), value);
        std::string why;
        const KARStatus status = item.Set(*entity, value, why);
        if (!isTaken)
            Raise(IsLink(item) ? PyExc_TypeError : PyExc_ValueError, why);
        if (KARFailed(status))
            RaiseError(why, status, Wrap(entity, state));
        return true;
    });
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

void CheckWritable(const Property& property)
{
    if (!property.item->readOnly.empty())
        Raise(PyExc_AttributeError,
              property.name + " cannot be set: " + std::string(property.item->readOnly));
}

// A column of numbers, of arrays row by row; what is not there is `missing`.
template <class T>
py::object ColumnOf(ModelState& state, const ItemInfo& item, const std::vector<Entity>& entities,
                    T missing)
{
    std::vector<py::ssize_t> shape{static_cast<py::ssize_t>(entities.size())};
    const NumberArray sample(item.shape, std::vector<double>(item.numberCount));
    if (item.numberCount > 0)
        shape.resize(item.shape == NumberShape::Vector ? 2 : 3,
                     static_cast<py::ssize_t>(sample.Rows()));
    LoadNumpy();
    py::array_t<T> column(shape);
    T* entry = column.mutable_data();
    const std::size_t size = item.numberCount > 0 ? sample.Rows() * sample.Columns() : 1;
    const Exclusive exclusive(state);
    for (const Entity& entity : entities) {
        const Value value = item.Get(*entity);
        const auto* const numbers = std::get_if<NumberArray>(&value);
        const T* const number = std::get_if<T>(&value);
        for (std::size_t i = 0; i < size; ++i)
            *entry++ =
                numbers != nullptr
                    ? static_cast<T>(numbers->At(i / numbers->Columns(), i % numbers->Columns()))
                : number != nullptr ? *number
                                    : missing;
    }
    return column;
}

bool HasColumn(const ItemInfo& item)
{
    return item.CanGet() && !IsLink(item) && item.kind != ItemKind::Records &&
           item.kind != ItemKind::Stream && item.kind != ItemKind::Group;
}

py::object Column(ModelState& self, Kind<KARMPEntity> cls, Text name)
{
    Property& property = PropertyOf(*cls.of, name);
    const ItemInfo& item = *property.item;
    if (!HasColumn(item))
        Raise(PyExc_ValueError, property.name + " is no column");
    const std::vector<Entity> entities = AllOf(self, *cls.of);
    if (item.kind == ItemKind::Integer)
        return ColumnOf(self, item, entities, 0);
    if (item.kind == ItemKind::Flag || item.isFlag)
        return ColumnOf(self, item, entities, false);
    if (item.kind != ItemKind::Text && item.kind != ItemKind::Word && item.kind != ItemKind::Code)
        return ColumnOf(self, item, entities, std::numeric_limits<double>::quiet_NaN());
    py::list column;
    for (const Entity& entity : entities)
        column.append(ToPython(item.Get(*entity), property, self));
    return column;
}

void SetAll(ModelState& self, Kind<KARMPEntity> cls, Text name, Each<py::object> values)
{
    const Property& property = PropertyOf(*cls.of, name);
    CheckWritable(property);
    std::vector<Value> made;
    for (const py::object& value : values)
        made.push_back(FromPython(value, *property.item, self));
    CheckFree(self);
    const std::vector<Entity> entities = AllOf(self, *cls.of);
    if (made.size() != entities.size())
        Raise(PyExc_ValueError, std::to_string(entities.size()) + " values are needed, not " +
                                    std::to_string(made.size()));
    CallBlock block(self);
    for (std::size_t i = 0; i < made.size(); ++i)
        Store(self, entities[i], property, made[i]);
    block.Keep();
}

// An entity that is alive, and an item of it by its name in Python.
struct OwnedItem
{
    EntityObject& object;
    Property& property;
};
OwnedItem ItemOf(py::handle owner, const Text& name)
{
    EntityObject& object = AliveOf(owner);
    return {object, PropertyOf(ClassOf(*object.entity), name)};
}

} // namespace

py::object GetItem(EntityObject& object, Property& property)
{
    const ItemInfo& item = *property.item;
    if (item.kind == ItemKind::References && item.CanGet()) {
        if (!Types().links)
            Types().links = py::module_::import("karmp._lists").attr("Links");
        return Types().links(py::handle(&object.base), property.name);
    }
    Checks& checks = Checks::OfThread();
    checks.Begin();
    py::object value = ToPython(item.Get(*object.entity), property, *object.state);
    checks.End(property.name);
    return value;
}

void SetItem(EntityObject& object, const Property& property, py::handle value)
{
    CheckWritable(property);
    // Converting may run any code.
    AliveOf(&object.base);
    Value made = FromPython(value, *property.item, *object.state);
    AliveOf(&object.base);
    if (property.item->kind == ItemKind::Records)
        LeaveToClass(made, *property.item, *object.entity);
    Store(*object.state, object.entity, property, made);
}

void BindItems(py::module_& module, ModelClass& of)
{
    of.def("column", &Column, "cls"_a, "item"_a,
           "An item of all entities of a class: an array of numbers, a list of texts. A number "
           "that is not there is a NaN.");
    of.def("set", &SetAll, "cls"_a, "item"_a, "values"_a,
           "Stores a value of an item in each entity of a class, in all of them or in none.");
    module.def(
        "_item_names",
        [](Kind<KARMPEntity> cls, bool haveColumns) {
            std::vector<std::string> names;
            for (const Property* const property : cls.of->properties)
                if (!haveColumns || HasColumn(*property->item))
                    names.push_back(property->name);
            return names;
        },
        "cls"_a, "have_columns"_a = false,
        "The items of a class, in the order of documents, or those that have columns.");
    // What lists of links are made of.
    module.def("_targets", [](const py::object& owner, Text name) {
        const auto [object, property] = ItemOf(owner, name);
        return Typed<"list[Any]">(
            ToPython(property.item->Get(*object.entity), property, *object.state));
    });
    module.def(
        "_words",
        [](const py::object& owner, Text name) {
            const auto [object, property] = ItemOf(owner, name);
            Typed<"list[str]", py::list> words;
            for (const auto word : property.item->EntryWords(*object.entity))
                words.append(ToText(word));
            return words;
        });
    module.def("_link", [](const py::object& owner, Text name, Ref<KARMPEntity> target,
                           bool isAdded) {
        const auto [object, property] = ItemOf(owner, name);
        CheckOwn(*object.state, target);
        const Ref<KARMPEntity> first(object.entity);
        const std::string path = Utf8Of(ToText(property.item->path));
        Do(*object.state, name, [&](model::Model& model) {
            return isAdded ? model.Link(first, target, path) : model.Unlink(first, target, path);
        });
    });
}

} // namespace karmp::python

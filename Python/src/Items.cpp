// Items of entities: get and set, of one entity and of all entities of a class, and what is known
// of them.
#include "Calls.h"
#include "KARTextConversion.h"

#include <pybind11/numpy.h>

#include <algorithm>
#include <array>
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
    Do(state, property.name, [&] {
        if (isTaken && (IsLink(item) || state.openBlocks > 0))
            return state.model.Set(AnyRef(entity), kar::ToUtf8(item.path), value);
        std::string why;
        const KARStatus status = item.Set(*entity, value, why);
        if (!isTaken)
            Raise(IsLink(item) ? PyExc_TypeError : PyExc_ValueError, why);
        if (KARFailed(status))
            RaiseFailure(why, status, Wrap(entity, state));
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
    const Exclusive exclusive(state, state);
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

// What an item is in Python.
std::string_view KindOf(const ItemInfo& item)
{
    static constexpr std::array names{"group",     "number",     "integer", "flag",   "text",
                                      "word",      "word",       "vector",  "vector", "optional",
                                      "reference", "references", "records", "stream"};
    if (item.isFlag)
        return "flag";
    return item.shape != NumberShape::Vector ? "matrix"
                                             : names[static_cast<std::size_t>(item.kind)];
}

bool HasColumn(const ItemInfo& item)
{
    return item.CanGet() && !IsLink(item) && item.kind != ItemKind::Records &&
           item.kind != ItemKind::Stream && item.kind != ItemKind::Group;
}

py::object Column(ModelState& self, Kind<KARMPEntity> cls, std::string name)
{
    Property& property = PropertyOf(*Types().byInfo.at(cls.info), name);
    const ItemInfo& item = *property.item;
    if (!HasColumn(item))
        Raise(PyExc_ValueError, property.name + " is no column");
    const std::vector<Entity> entities = AllOf(self.model, cls);
    const std::string_view kind = KindOf(item);
    if (kind == "integer")
        return ColumnOf(self, item, entities, 0);
    if (kind == "flag")
        return ColumnOf(self, item, entities, false);
    if (kind != "text" && kind != "word")
        return ColumnOf(self, item, entities, std::numeric_limits<double>::quiet_NaN());
    py::list column;
    for (const Entity& entity : entities)
        column.append(ToPython(item.Get(*entity), property, self));
    return column;
}

py::object ItemNames(Kind<KARMPEntity> cls, bool haveColumns)
{
    py::list names;
    for (const Property* const property : Types().byInfo.at(cls.info)->properties)
        if (!haveColumns || HasColumn(*property->item))
            names.append(property->name);
    return names;
}

Property& PropertyOf(const EntityObject& owner, const std::string& name)
{
    return python::PropertyOf(ClassOf(*owner.entity), name);
}

bool LinkItem(EntityObject& owner, std::string name, AnyRef target, bool isAdded)
{
    const AnyRef first(owner.entity);
    const std::string path = kar::ToUtf8(PropertyOf(owner, name).item->path);
    Model& model = owner.state->model;
    return Do(*owner.state, name, [&] {
        return isAdded ? model.Link(first, target, path) : model.Unlink(first, target, path);
    });
}

// What stubs, reference pages and tests are made from.
py::dict Described(const ItemInfo& item, const std::string& name, const std::string& doc)
{
    py::list words;
    if (item.kind == ItemKind::Word || item.kind == ItemKind::Code)
        for (const std::wstring_view word : item.words)
            words.append(ToText(word));
    py::list fields;
    for (const ItemInfo& field : item.fields)
        fields.append(Described(field, SnakeCase(field.path), std::string(field.says)));
    const NumberArray sample(item.shape, std::vector<double>(item.numberCount));
    return py::dict("name"_a = name, "kind"_a = KindOf(item), "doc"_a = ToText(doc),
                    "words"_a = py::tuple(words), "fields"_a = py::tuple(fields),
                    "rows"_a = sample.Rows(),
                    "is_transformation"_a = item.kind == ItemKind::Transformation,
                    "target"_a = ClassNameOf(item.target), "read_only"_a = ToText(item.readOnly),
                    "can_get"_a = item.CanGet(), "is_in_order"_a = item.isInOrder);
}

// The items of each class, with or without those of its bases.
py::object Items(bool areOwn)
{
    py::list rows;
    for (const EntityClass* const of : Types().classes) {
        const auto base = Types().byInfo.find(of->info->getParent());
        const bool hasBase = areOwn && base != Types().byInfo.end();
        for (Property* const property : of->properties) {
            if (hasBase && std::ranges::count(base->second->properties, property) > 0)
                continue;
            py::dict row = Described(*property->item, property->name, property->doc);
            row["class"] = of->name;
            rows.append(row);
        }
    }
    return rows;
}

} // namespace

std::vector<Entity> AllOf(const Model& model, const QOBClassInfo& info)
{
    std::vector<Entity> entities;
    Families::And<KARMPEntity>::AnyOf([&]<class T>(Family<T>) {
        if (!info.isDerivedFrom(T::ClassInfo()))
            return false;
        for (const Ref<T>& entity : model.All<T>())
            if (entity->isDerivedFrom(info))
                entities.emplace_back(entity.Handle());
        return true;
    });
    return entities;
}

py::object GetItem(EntityObject& object, Property& property)
{
    const ItemInfo& item = *property.item;
    if (item.kind == ItemKind::References && item.CanGet())
        return OfPackage("Links")(py::handle(&object.base), property.name);
    FailedChecks() = 0;
    py::object value = ToPython(item.Get(*object.entity), property, *object.state);
    WarnOfChecks(property.name);
    return value;
}

void SetItem(EntityObject& object, const Property& property, py::handle value)
{
    const ItemInfo& item = *property.item;
    if (!item.readOnly.empty())
        Raise(PyExc_AttributeError,
              property.name + " cannot be set: " + std::string(item.readOnly));
    // Converting may run any code.
    AliveOf(&object.base);
    Value made = FromPython(value, item, *object.state);
    AliveOf(&object.base);
    if (item.kind == ItemKind::Records)
        LeaveToClass(made, item, *object.entity);
    Store(*object.state, object.entity, property, made);
}

void BindItems(py::module_& module)
{
    Bind(module, "column", &Column);
    Bind(module, "item_names", &ItemNames);
    Bind(module, "link_item", &LinkItem);
    Bind(module, "items", &Items);
    Bind(
        module, "targets",
        +[](EntityObject& owner, std::string name) {
            Property& property = PropertyOf(owner, name);
            return ToPython(property.item->Get(*owner.entity), property, *owner.state);
        });
    Bind(
        module, "words",
        +[](EntityObject& owner, std::string name) {
            return PropertyOf(owner, name).item->EntryWords(*owner.entity);
        });
    Bind(
        module, "all",
        +[](ModelState& self, Kind<KARMPEntity> cls) { return AllOf(self.model, cls); });
    Bind(
        module, "count",
        +[](ModelState& self, Kind<KARMPEntity> cls) { return AllOf(self.model, cls).size(); });
    Bind(
        module, "near",
        +[](std::wstring text, std::vector<std::wstring> names) { return NearText(text, names); });
}

} // namespace karmp::python

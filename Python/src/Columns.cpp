// Items of all entities of a class as columns of numpy.
#include "Bindings.h"

#include <pybind11/numpy.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace karmp::python {

namespace {

using py::literals::operator""_a;

bool HasColumn(const ItemInfo& item)
{
    switch (item.kind) {
    case ItemKind::Reference:
    case ItemKind::References:
    case ItemKind::Records:
    case ItemKind::Stream:
    case ItemKind::Group:
        return false;
    default:
        return item.CanGet();
    }
}

// Calls `fill` with each value and its index, without the interpreter's lock.
template <class Fill>
void ForEachValue(const State& self, const ItemInfo& item, const std::vector<Entity>& entities,
                  Fill fill)
{
    const Exclusive exclusive(*self);
    for (std::size_t i = 0; i < entities.size(); ++i)
        fill(i, item.Get(*entities[i]));
}

template <class T>
py::array ScalarsOf(const State& self, const ItemInfo& item, const std::vector<Entity>& entities,
                    T missing)
{
    LoadNumpy();
    py::array_t<T> column(static_cast<py::ssize_t>(entities.size()));
    T* const data = column.mutable_data();
    ForEachValue(self, item, entities, [data, missing](std::size_t index, const Value& value) {
        const T* const number = std::get_if<T>(&value);
        data[index] = number != nullptr ? *number : missing;
    });
    return column;
}

py::array ArraysOf(const State& self, const ItemInfo& item, const std::vector<Entity>& entities)
{
    const std::vector<double> none(item.numberCount);
    const NumberArray sample(item.shape, none);
    const auto rows = static_cast<py::ssize_t>(sample.Rows());
    std::vector<py::ssize_t> shape{static_cast<py::ssize_t>(entities.size()), rows};
    if (item.shape != NumberShape::Vector)
        shape.push_back(rows);
    LoadNumpy();
    py::array_t<double> column(shape);
    double* const data = column.mutable_data();
    const std::size_t size = sample.Rows() * sample.Columns();
    ForEachValue(self, item, entities, [data, size](std::size_t index, const Value& value) {
        double* entry = data + index * size;
        const auto* const numbers = std::get_if<NumberArray>(&value);
        for (std::size_t row = 0; numbers != nullptr && row < numbers->Rows(); ++row)
            for (std::size_t at = 0; at < numbers->Columns(); ++at)
                *entry++ = numbers->At(row, at);
        if (numbers == nullptr)
            std::fill_n(entry, size, std::numeric_limits<double>::quiet_NaN());
    });
    return column;
}

py::object ColumnOf(const State& self, Property& property, const std::vector<Entity>& entities)
{
    const ItemInfo& item = *property.item;
    switch (item.kind) {
    case ItemKind::Number:
    case ItemKind::OptionalNumber:
        return ScalarsOf<double>(self, item, entities, std::numeric_limits<double>::quiet_NaN());
    case ItemKind::Integer:
        return ScalarsOf<int>(self, item, entities, 0);
    case ItemKind::Flag:
        return ScalarsOf<bool>(self, item, entities, false);
    case ItemKind::Numbers:
    case ItemKind::Transformation:
        return ArraysOf(self, item, entities);
    default:
        if (item.isFlag)
            return ScalarsOf<bool>(self, item, entities, false);
        py::list column(entities.size());
        for (std::size_t i = 0; i < entities.size(); ++i)
            column[i] = ToPython(item.Get(*entities[i]), property, self);
        return column;
    }
}

Property& PropertyOf(const py::object& type, const py::handle& name)
{
    const EntityClass& of = ClassOf(type);
    Property* const property = FindProperty(of, Utf8Of(name));
    if (property == nullptr)
        RaiseNoItem(of, Utf8Of(name));
    return *property;
}

py::dict Table(const State& self, const py::object& type, const py::args& names)
{
    CheckFree(*self);
    const std::vector<Entity> entities = AllOf(self, ClassOf(type));
    py::dict table;
    if (names.empty()) {
        for (Property* const property : ClassOf(type).properties)
            if (HasColumn(*property->item))
                table[property->name.c_str()] = ColumnOf(self, *property, entities);
        return table;
    }
    for (const py::handle name : names) {
        Property& property = PropertyOf(type, name);
        if (!HasColumn(*property.item))
            Raise(PyExc_ValueError, property.name + " is no column");
        table[name] = ColumnOf(self, property, entities);
    }
    return table;
}

py::object Column(const State& self, const py::object& type, const py::object& name)
{
    return Table(self, type, py::make_tuple(name))[name];
}

// Stores a value an entity; what was stored before a failure is taken back.
void SetAll(const State& self, const py::object& type, const py::object& name,
            const py::object& values)
{
    const Property& property = PropertyOf(type, name);
    const ItemInfo& item = *property.item;
    if (!item.readOnly.empty())
        Raise(PyExc_AttributeError,
              property.name + " cannot be set: " + std::string(item.readOnly));
    CheckFree(*self);
    const std::vector<Entity> entities = AllOf(self, ClassOf(type));
    const py::list list(values);
    if (list.size() != entities.size())
        Raise(PyExc_ValueError, std::to_string(entities.size()) + " values are needed, not " +
                                    std::to_string(list.size()));
    std::vector<Value> made;
    for (const py::handle value : list)
        made.push_back(FromPython(value, item, self));
    CheckFree(*self);
    // Converting may run any code.
    for (const Entity& entity : entities)
        if (entity->isOrphaned())
            Raise(Types().deletedError, TitleOf(*entity) + " was deleted");
    const bool isLogged = self->openBlocks > 0 || !HasColumn(item);
    std::vector<Value> before;
    Checks& checks = Checks::OfThread();
    checks.Begin();
    for (std::size_t i = 0; i < entities.size(); ++i) {
        if (isLogged) {
            SetByModel(self, entities[i], item, made[i]);
            continue;
        }
        before.push_back(item.Get(*entities[i]));
        std::string why;
        const KARStatus status = item.Set(*entities[i], made[i], why);
        if (!KARFailed(status))
            continue;
        for (std::size_t done = 0; done <= i; ++done)
            static_cast<void>(item.Set(*entities[done], before[done]));
        RaiseRefused(item, made[i], why, status, Wrap(entities[i], self));
    }
    checks.End([&property] { return property.name; });
}

} // namespace

void BindColumns(ModelClass& of)
{
    of.def("table", &Table, "cls"_a,
           "The items of all entities of a class as columns, or those that are named: arrays of "
           "numbers, lists of texts. A number that is not there is a NaN.");
    of.def("column", &Column, "cls"_a, "item"_a, "One column of the table.");
    of.def("set", &SetAll, "cls"_a, "item"_a, "values"_a,
           "Stores a value of an item in each entity of a class, in all of them or in none.");
}

} // namespace karmp::python

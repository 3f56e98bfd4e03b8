// Items of entities: get and set, of one entity and of all entities of a class.
#include "Calls.h"
#include "KARMPNearestWord.h"

#include <pybind11/numpy.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace karmp::python {

namespace {

using Records = std::vector<RecordValues>;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

// An array of Python. Imports numpy before the first one: pybind11 would import it within the
// initialization of a static variable, where threads that wait for that keep the interpreter's lock
// from the one that imports.
py::array_t<double> NewArray(const std::vector<std::size_t>& shape)
{
    static PyObject* loaded = nullptr; // changes under the interpreter's lock alone
    if (loaded == nullptr)
        loaded = py::module_::import("numpy.core.multiarray").release().ptr();
    return py::array_t<double>(shape);
}

// Writes numbers row by row.
void CopyRows(const NumberArray& numbers, double* entry)
{
    for (std::size_t row = 0; row < numbers.Rows(); ++row)
        for (std::size_t column = 0; column < numbers.Columns(); ++column)
            *entry++ = numbers.At(row, column);
}

double Finite(double number, const std::string& name)
{
    if (!std::isfinite(number))
        Raise(PyExc_ValueError, name + " takes finite numbers");
    return number;
}

// True or False, also as numpy has them; nothing for what is neither.
std::optional<bool> FlagOf(py::handle value)
{
    const bool isOfNumpy =
        std::string_view(Py_TYPE(value.ptr())->tp_name).starts_with("numpy.bool");
    if (isOfNumpy || PyBool_Check(value.ptr()))
        return PyObject_IsTrue(value.ptr()) == 1;
    return {};
}

// Numbers in the shape that the item has; of another shape as a vector, which the item refuses.
NumberArray ArrayFrom(py::handle value, const ItemInfo& item, const std::string& name)
{
    const auto [numbers, isInRows] = NumbersOf(value);
    const bool isVector = item.shape == NumberShape::Vector;
    for (const double number : numbers)
        Finite(number, name);
    if (isVector == isInRows || numbers.size() > 16)
        Raise(PyExc_ValueError, "the numbers of " + name + " have another shape");
    std::optional<NumberArray> array;
    if (item.shape == NumberShape::Matrix)
        array = NumberArray::MatrixByRows(numbers);
    else if (!isVector && !(array = NumberArray::TransformationByRows(numbers)))
        Raise(PyExc_ValueError, name + " takes a homogeneous matrix, whose last row is 0 ... 0 1");
    return array.value_or(NumberArray(NumberShape::Vector, numbers));
}

// A value by the kind of its item. One of another type raises; what the item says of it does not.
Value FromPython(py::handle value, const ItemInfo& item, const std::string& name, ModelState& state)
{
    const bool isNone = value.is_none();
    switch (item.kind) {
    case ItemKind::Number:
        return Finite(Taken<double>(value), name);
    case ItemKind::OptionalNumber: {
        // Columns have NaN where there is no number.
        const double number = isNone ? NaN : Taken<double>(value);
        return std::isnan(number) ? Value() : Finite(number, name);
    }
    case ItemKind::Integer:
        return Taken<int>(value);
    case ItemKind::Flag:
    case ItemKind::Word:
    case ItemKind::Code:
        if (const auto flag = FlagOf(value); flag && item.isFlag)
            return *flag;
        if (item.kind == ItemKind::Flag || (item.isFlag && !PyUnicode_Check(value.ptr())))
            Raise(PyExc_TypeError, name + " takes True or False");
        [[fallthrough]];
    case ItemKind::Text:
        return WideOf(value);
    case ItemKind::Numbers:
    case ItemKind::Transformation:
        return ArrayFrom(value, item, name);
    case ItemKind::Reference:
        return isNone ? Value() : EntityOf(value, &state);
    case ItemKind::References:
        return Taken<std::vector<Entity>>(value, &state);
    case ItemKind::Stream:
        return BytesOf(value);
    default:
        return {};
    }
}

// Records by the fields of each; those that the class fills itself are left to it in new ones.
Records RecordsFrom(py::handle value, const Property& property, const KARMPEntity& entity,
                    ModelState& state)
{
    const ItemInfo& item = *property.item;
    const auto rows = Taken<std::vector<std::vector<py::object>>>(value);
    const std::size_t old = item.GetRecords(entity).size();
    Records records(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].size() != item.fields.size())
            Raise(PyExc_ValueError, "a record of " + property.name + " has " +
                                        std::to_string(item.fields.size()) + " fields");
        for (std::size_t at = 0; at < rows[i].size(); ++at) {
            const ItemInfo& field = item.fields[at];
            const bool isLeft = rows[i][at].is_none() || (i >= old && !field.readOnly.empty());
            records[i].push_back(
                isLeft ? Value() : FromPython(rows[i][at], field, SnakeCase(field.path), state));
        }
    }
    return records;
}

// A link is made and taken away at both ends.
bool IsLink(const ItemInfo& item)
{
    return item.kind == ItemKind::Reference || item.kind == ItemKind::References;
}

std::vector<Entity> AllOf(const Model& model, const QOBClassInfo& info)
{
    std::vector<Entity> entities;
    Families::And<KARMPEntity>::AnyOf([&]<class T>(Family<T>) {
        if (!info.isDerivedFrom(T::ClassInfo()))
            return false;
        for (const model::Ref<T>& entity : model.All<T>())
            if (entity->isDerivedFrom(info))
                entities.emplace_back(entity.Handle());
        return true;
    });
    return entities;
}

// The numbers of an item in all entities of a class, arrays row by row; NaN for what is not there.
py::object NumbersIn(ModelState& state, const QOBClassInfo& cls, std::string name,
                     std::vector<std::size_t> shape)
{
    const std::vector<Entity> entities = AllOf(state.model, cls);
    // Derived classes may have an item of their own by the name, or hide it.
    std::vector<std::pair<const QOBClassInfo*, const ItemInfo*>> items;
    const auto find = [&items](const Entity& entity) {
        return std::find_if(items.begin(), items.end(), [&entity](const auto& of) {
            return of.first == &entity->getClassInfo();
        });
    };
    for (const Entity& entity : entities)
        if (find(entity) == items.end())
            items.emplace_back(&entity->getClassInfo(), FindItemOf(entity->getClassInfo(), name));
    shape.insert(shape.begin(), entities.size());
    auto column = NewArray(shape);
    double* entry = column.mutable_data();
    std::fill_n(entry, column.size(), NaN);
    const auto width =
        static_cast<std::size_t>(column.size()) / std::max<std::size_t>(entities.size(), 1);
    Alone(state, state, [&] {
        for (const Entity& entity : entities) {
            const auto store = [entry, width]<class T>(const T& held) {
                if constexpr (std::is_arithmetic_v<T>)
                    *entry = held;
                else if constexpr (std::is_same_v<T, NumberArray>)
                    if (held.Rows() * held.Columns() == width)
                        CopyRows(held, entry);
            };
            if (const ItemInfo* const item = find(entity)->second)
                std::visit(store, item->Get(*entity));
            entry += width;
        }
    });
    return column;
}

bool LinkItem(EntityObject& owner, std::string name, AnyRef target, bool isAdded)
{
    const AnyRef first(owner.entity);
    const std::string path = kar::ToUtf8(ItemOf(owner.entity->getClassInfo(), name).path);
    Model& model = owner.state->model;
    return Do(*owner.state, name, [&] {
        return isAdded ? model.Link(first, target, path) : model.Unlink(first, target, path);
    });
}

} // namespace

py::object ArrayOf(const NumberArray& numbers)
{
    std::vector<std::size_t> shape{numbers.Rows()};
    if (numbers.Shape() != NumberShape::Vector)
        shape.push_back(numbers.Columns());
    auto array = NewArray(shape);
    CopyRows(numbers, array.mutable_data());
    // A copy that could be written would swallow what is stored in it.
    py::detail::array_proxy(array.ptr())->flags &= ~py::detail::npy_api::NPY_ARRAY_WRITEABLE_;
    return array;
}

PyObject* GetItem(PyObject* self, void* property)
{
    const EntityObject& owner = AliveOf(self);
    const auto& [item, name, doc, definition] = *static_cast<const Property*>(property);
    if (item->kind == ItemKind::References && item->CanGet())
        return OfPackage("Links")(py::handle(self), name).release().ptr();
    py::object value =
        Do(*owner.state, name, [&entity = owner.entity, &of = *owner.state, item = item] {
            return Give(item->Get(*entity), &of);
        });
    if (item->kind == ItemKind::Records && !value.is_none())
        value = OfPackage("_rows").attr("records")(Give(*item, nullptr), value);
    return value.release().ptr();
}

int SetItem(PyObject* self, PyObject* value, void* property)
{
    const auto& [entity, state] = AliveOf(self);
    const Property& row = *static_cast<const Property*>(property);
    const ItemInfo& item = *row.item;
    if (value == nullptr)
        Raise(PyExc_TypeError, row.name + " cannot be deleted");
    if (!item.readOnly.empty())
        Raise(PyExc_AttributeError, row.name + " cannot be set: " + std::string(item.readOnly));
    const Value made = item.kind == ItemKind::Records ? RecordsFrom(value, row, *entity, *state)
                                                      : FromPython(value, item, row.name, *state);
    AliveOf(self); // converting may have run any code
    const bool isTaken = item.Takes(made) || (made.IsNone() && item.kind == ItemKind::Reference);
    Do(*state, row.name, [&, &entity = entity, &state = *state] {
        // It is undone with the block of edits that it is in.
        if (isTaken && (IsLink(item) || state.openBlocks > 0))
            return state.model.Set(AnyRef(entity), kar::ToUtf8(item.path), made);
        std::string why;
        const KARStatus status = item.Set(*entity, made, why);
        if (isTaken && !KARFailed(status))
            return true;
        if (const std::string path = kar::ToUtf8(item.path); why.starts_with(path))
            why.replace(0, path.size(), row.name);
        if (!isTaken)
            Raise(IsLink(item) ? PyExc_TypeError : PyExc_ValueError, WithPythonNames(why));
        RaiseFailure(why, status, Wrap(entity, state));
    });
    return 0;
}

void BindItems(const Functions& calls)
{
    calls["numbers"] = &NumbersIn;
    calls["link_item"] = &LinkItem;
    calls["set_number"] = [](Model& m, AnyRef entity, std::string path, double number) {
        return m.Set(entity, {{path, number}});
    };
    calls["items"] = [](const QOBClassInfo& cls) { return ItemsOf(cls); };
    calls["targets"] = [](EntityObject& owner, std::string name) {
        return ItemOf(owner.entity->getClassInfo(), name).Get(*owner.entity);
    };
    calls["words"] = [](EntityObject& owner, std::string name) {
        return ItemOf(owner.entity->getClassInfo(), name).EntryWords(*owner.entity);
    };
    calls["all"] = [](ModelState& of, const QOBClassInfo& cls) { return AllOf(of.model, cls); };
    calls["count"] = [](ModelState& of, const QOBClassInfo& cls) {
        return AllOf(of.model, cls).size();
    };
    calls["nearest"] = [](std::wstring text, std::vector<std::wstring> names) {
        return std::wstring(NearestWord(text, {names.begin(), names.end()}));
    };
}

} // namespace karmp::python

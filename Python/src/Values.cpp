// Values of items between C++ and Python.
#include "Bindings.h"
#include "KARTextConversion.h"

#include <pybind11/numpy.h>

#include <algorithm>
#include <limits>

namespace karmp::python {

namespace {

using Records = std::vector<RecordValues>;
using Bytes = std::vector<unsigned char>;

// The words live as long as the library, and so do their texts.
py::object WordText(std::wstring_view word)
{
    static auto& texts = *new std::unordered_map<const wchar_t*, PyObject*>;
    PyObject*& text = texts[word.data()];
    if (text == nullptr)
        text = ToText(word).release().ptr();
    return py::reinterpret_borrow<py::object>(text);
}

py::object ArrayOf(const NumberArray& numbers)
{
    const auto rows = static_cast<py::ssize_t>(numbers.Rows());
    const bool isVector = numbers.Shape() == NumberShape::Vector;
    LoadNumpy();
    py::array_t<double> array(isVector ? std::vector{rows} : std::vector{rows, rows});
    double* entry = array.mutable_data();
    for (std::size_t row = 0; row < numbers.Rows(); ++row)
        for (std::size_t column = 0; column < numbers.Columns(); ++column)
            *entry++ = numbers.At(row, column);
    // A copy that could be written would swallow what is stored in it.
    py::detail::array_proxy(array.ptr())->flags &= ~py::detail::npy_api::NPY_ARRAY_WRITEABLE_;
    return array;
}

// A named tuple class, made by the standard library when it is needed first.
py::object RecordClass(Property& property)
{
    if (property.record == nullptr) {
        py::list names;
        for (const ItemInfo& field : property.item->fields)
            names.append(SnakeCase(field.path));
        const auto made = py::module_::import("collections")
                              .attr("namedtuple")(ToText(property.item->name), names);
        py::setattr(made, "__module__", py::str("karmp"));
        property.record = py::object(made).release().ptr();
    }
    return py::reinterpret_borrow<py::object>(property.record);
}

py::object RecordsOf(const Records& records, Property& property, const State& state)
{
    const py::object type = RecordClass(property);
    py::tuple list(records.size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        py::tuple values(records[i].size());
        for (std::size_t field = 0; field < records[i].size(); ++field) {
            Property inner{&property.item->fields[field], {}, {}, {}, nullptr};
            values[field] = ToPython(records[i][field], inner, state);
        }
        list[i] = type(*values);
    }
    return list;
}

void AppendNumbers(py::handle value, std::vector<double>& numbers, int depth)
{
    if (PyFloat_Check(value.ptr()) || PyUnicode_Check(value.ptr()) || depth == 0 ||
        PySequence_Check(value.ptr()) == 0) {
        const double number = PyFloat_AsDouble(value.ptr());
        if (number == -1.0 && PyErr_Occurred() != nullptr)
            throw py::error_already_set();
        numbers.push_back(number);
        return;
    }
    const auto items =
        py::reinterpret_steal<py::object>(PySequence_Fast(value.ptr(), "numbers are needed"));
    if (!items)
        throw py::error_already_set();
    const Py_ssize_t size = PySequence_Fast_GET_SIZE(items.ptr());
    std::size_t length = 0;
    for (Py_ssize_t i = 0; i < size; ++i) {
        const std::size_t before = numbers.size();
        AppendNumbers(PySequence_Fast_GET_ITEM(items.ptr(), i), numbers, depth - 1);
        if (i > 0 && numbers.size() - before != length)
            Raise(PyExc_ValueError, "the rows have several lengths");
        length = numbers.size() - before;
    }
}

// Numbers in the shape that the item has; of another shape as a vector, which the item refuses.
NumberArray ArrayFrom(py::handle value, const ItemInfo& item)
{
    const std::vector<double> numbers = NumbersOf(value);
    std::optional<NumberArray> array;
    if (item.shape == NumberShape::Matrix)
        array = NumberArray::MatrixByRows(numbers);
    else if (item.shape == NumberShape::Transformation)
        array = NumberArray::TransformationByRows(numbers);
    const auto isNested = [&value] {
        return PySequence_Size(value.ptr()) > 0 &&
               PySequence_Check(py::object(value[py::int_(0)]).ptr()) != 0;
    };
    if ((item.shape != NumberShape::Vector) != isNested() || numbers.size() > 16)
        Raise(PyExc_ValueError, "the numbers of " + SnakeCase(item.path) + " have another shape");
    if (item.shape == NumberShape::Transformation && !array)
        Raise(PyExc_ValueError,
              SnakeCase(item.path) + " takes a homogeneous matrix, whose last row is 0 ... 0 1");
    return array.value_or(NumberArray(NumberShape::Vector, numbers));
}

int IntegerOf(py::handle value)
{
    const auto index = py::reinterpret_steal<py::object>(PyNumber_Index(value.ptr()));
    int overflow = 0;
    const long number = index ? PyLong_AsLongAndOverflow(index.ptr(), &overflow) : -1;
    if (PyErr_Occurred() != nullptr)
        throw py::error_already_set();
    if (overflow != 0 || number < std::numeric_limits<int>::min() ||
        number > std::numeric_limits<int>::max())
        Raise(PyExc_ValueError, "a number of 32 bits is needed");
    return static_cast<int>(number);
}

std::vector<Entity> TargetsFrom(py::handle value, const State& state)
{
    std::vector<Entity> targets;
    for (const py::handle entry : py::list(py::reinterpret_borrow<py::object>(value)))
        targets.push_back(EntityIn(entry, state));
    return targets;
}

Records RecordsFrom(py::handle value, const ItemInfo& item, const State& state)
{
    Records records;
    for (const py::handle entry : py::list(py::reinterpret_borrow<py::object>(value))) {
        const py::list fields(py::reinterpret_borrow<py::object>(entry));
        if (fields.size() != item.fields.size())
            Raise(PyExc_ValueError, "a record of " + SnakeCase(item.path) + " has " +
                                        std::to_string(item.fields.size()) + " fields");
        RecordValues& record = records.emplace_back();
        for (std::size_t field = 0; field < fields.size(); ++field)
            record.push_back(fields[field].is_none()
                                 ? Value()
                                 : FromPython(fields[field], item.fields[field], state));
    }
    return records;
}

Bytes BytesFrom(py::handle value)
{
    const py::bytes bytes(py::reinterpret_steal<py::object>(PyBytes_FromObject(value.ptr())));
    if (PyErr_Occurred() != nullptr)
        throw py::error_already_set();
    const std::string_view view(bytes);
    return {view.begin(), view.end()};
}

} // namespace

void LoadNumpy()
{
    static bool isLoaded = false; // changes under the interpreter's lock alone
    if (isLoaded)
        return;
    py::module_::import("numpy.core.multiarray");
    isLoaded = true;
}

std::vector<double> NumbersOf(py::handle value)
{
    std::vector<double> numbers;
    if (PySequence_Check(value.ptr()) == 0)
        Raise(PyExc_TypeError, "numbers are needed");
    AppendNumbers(value, numbers, 2);
    return numbers;
}

std::vector<double> NumbersOf(py::handle value, std::size_t count, const char* what)
{
    std::vector<double> numbers = NumbersOf(value);
    if (numbers.size() != count)
        Raise(PyExc_ValueError, std::string(what) + " has " + std::to_string(count) + " numbers");
    return numbers;
}

py::object ToPython(const Value& value, Property& property, const State& state)
{
    struct Visitor
    {
        Property& property;
        const State& state;
        py::object operator()(std::monostate) const { return py::none(); }
        py::object operator()(bool flag) const { return py::bool_(flag); }
        py::object operator()(int number) const { return py::int_(number); }
        py::object operator()(double number) const { return py::float_(number); }
        py::object operator()(const std::wstring& text) const { return ToText(text); }
        py::object operator()(EnumWord word) const { return WordText(word.text); }
        py::object operator()(const NumberArray& numbers) const { return ArrayOf(numbers); }
        py::object operator()(const Entity& entity) const { return Wrap(entity, state); }
        py::object operator()(const std::vector<Entity>& entities) const
        {
            py::list list;
            for (const Entity& entity : entities)
                list.append(Wrap(entity, state));
            return list;
        }
        py::object operator()(const Records& records) const
        {
            return RecordsOf(records, property, state);
        }
        py::object operator()(const Bytes& bytes) const
        {
            return py::bytes(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        }
    };
    return std::visit(Visitor{property, state}, value);
}

Value FromPython(py::handle value, const ItemInfo& item, const State& state)
{
    switch (item.kind) {
    case ItemKind::OptionalNumber:
        if (value.is_none())
            return {};
        [[fallthrough]];
    case ItemKind::Number: {
        const double number = PyFloat_AsDouble(value.ptr());
        if (number == -1.0 && PyErr_Occurred() != nullptr)
            throw py::error_already_set();
        return number;
    }
    case ItemKind::Integer:
        return IntegerOf(value);
    case ItemKind::Flag:
    case ItemKind::Word:
    case ItemKind::Code:
        if (item.isFlag && PyBool_Check(value.ptr()))
            return value.ptr() == Py_True;
        if (item.kind == ItemKind::Flag)
            Raise(PyExc_TypeError, SnakeCase(item.path) + " takes True or False");
        return WideOf(value);
    case ItemKind::Text:
        return WideOf(value);
    case ItemKind::Numbers:
    case ItemKind::Transformation:
        return ArrayFrom(value, item);
    case ItemKind::Reference:
        return value.is_none() ? Value() : Value(EntityIn(value, state));
    case ItemKind::References:
        return TargetsFrom(value, state);
    case ItemKind::Records:
        return RecordsFrom(value, item, state);
    case ItemKind::Stream:
        return BytesFrom(value);
    default:
        return {};
    }
}

} // namespace karmp::python

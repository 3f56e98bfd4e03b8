// Texts, names and values of items between C++ and Python.
#include "Bindings.h"
#include "KARMPNearestWord.h"
#include "KARTextConversion.h"

#include <pybind11/numpy.h>

#include <cwctype>

namespace karmp::python {

namespace {

using Records = std::vector<RecordValues>;

// The words live as long as the library, and so do their texts.
py::object WordText(std::wstring_view word)
{
    static auto& texts = *new std::unordered_map<const wchar_t*, py::object>;
    py::object& text = texts[word.data()];
    if (!text)
        text = ToText(word);
    return text;
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

py::object RecordsOf(const Records& records, Property& property, ModelState& state)
{
    if (property.record == nullptr) {
        py::list names;
        for (const ItemInfo& field : property.item->fields)
            names.append(SnakeCase(field.path));
        const auto type =
            py::module_::import("collections")
                .attr("namedtuple")(ToText(property.item->name), names, "module"_a = "karmp");
        property.record = type.inc_ref().ptr();
    }
    py::list list;
    for (const RecordValues& record : records) {
        py::list values;
        for (std::size_t field = 0; field < record.size(); ++field) {
            Property inner{&property.item->fields[field], {}, {}};
            values.append(ToPython(record[field], inner, state));
        }
        list.append(py::handle(property.record)(*values));
    }
    return py::tuple(list);
}

template <class T>
T NumberOf(py::handle value)
{
    py::detail::make_caster<T> caster;
    if (!caster.load(value, true))
        Raise(PyExc_TypeError, "a number is needed, not " + py::repr(value).cast<std::string>());
    return py::detail::cast_op<T>(caster);
}

// Appends what is in rows up to a depth.
void AppendNumbers(py::handle value, std::vector<double>& numbers, int depth)
{
    const bool isRow = PySequence_Check(value.ptr()) != 0 && !PyUnicode_Check(value.ptr());
    if (!isRow || depth == 0) {
        numbers.push_back(NumberOf<double>(value));
        return;
    }
    std::size_t length = 0;
    bool isFirst = true;
    for (const py::handle entry : value) {
        const std::size_t before = numbers.size();
        AppendNumbers(entry, numbers, depth - 1);
        if (!isFirst && numbers.size() - before != length)
            Raise(PyExc_ValueError, "the rows have several lengths");
        length = numbers.size() - before;
        isFirst = false;
    }
}

// Numbers in the shape that the item has; of another shape as a vector, which the item refuses.
NumberArray ArrayFrom(py::handle value, const ItemInfo& item)
{
    const std::vector<double> numbers = NumbersOf(value);
    const bool isNested =
        !numbers.empty() && PySequence_Check(py::object(value[py::int_(0)]).ptr());
    if ((item.shape != NumberShape::Vector) != isNested || numbers.size() > 16)
        Raise(PyExc_ValueError, "the numbers of " + SnakeCase(item.path) + " have another shape");
    std::optional<NumberArray> array;
    if (item.shape == NumberShape::Matrix)
        array = NumberArray::MatrixByRows(numbers);
    else if (item.shape == NumberShape::Transformation)
        array = NumberArray::TransformationByRows(numbers);
    if (item.shape == NumberShape::Transformation && !array)
        Raise(PyExc_ValueError,
              SnakeCase(item.path) + " takes a homogeneous matrix, whose last row is 0 ... 0 1");
    return array.value_or(NumberArray(NumberShape::Vector, numbers));
}

Entity EntityFrom(py::handle value, const ModelState& state)
{
    const Entity& entity = AliveOf(value).entity;
    CheckOwn(state, entity);
    return entity;
}

RecordValues RecordFrom(py::handle value, const ItemInfo& item, const ModelState& state)
{
    const py::list fields(py::reinterpret_borrow<py::object>(value));
    if (fields.size() != item.fields.size())
        Raise(PyExc_ValueError, "a record of " + SnakeCase(item.path) + " has " +
                                    std::to_string(item.fields.size()) + " fields");
    RecordValues record;
    for (std::size_t i = 0; i < fields.size(); ++i)
        record.push_back(fields[i].is_none() ? Value()
                                             : FromPython(fields[i], item.fields[i], state));
    return record;
}

// What an iterable gives, each by a conversion.
template <class Convert>
auto ListFrom(py::handle value, Convert convert)
{
    std::vector<decltype(convert(value))> list;
    for (const py::handle entry : py::list(py::reinterpret_borrow<py::object>(value)))
        list.push_back(convert(entry));
    return list;
}

std::vector<unsigned char> BytesFrom(py::handle value)
{
    const auto bytes = py::reinterpret_steal<py::bytes>(PyBytes_FromObject(value.ptr()));
    RaiseIfSet();
    const std::string_view view(bytes);
    return {view.begin(), view.end()};
}

} // namespace

py::str ToText(std::wstring_view text)
{
    const auto size = static_cast<Py_ssize_t>(text.size());
    auto made = py::reinterpret_steal<py::str>(PyUnicode_FromWideChar(text.data(), size));
    RaiseIfSet();
    return made;
}

py::str ToText(std::string_view text)
{
    return ToText(std::wstring_view(kar::ToWide(text)));
}

std::wstring WideOf(py::handle text)
{
    if (!PyUnicode_Check(text.ptr()))
        Raise(PyExc_TypeError, "a str is needed, not " + std::string(Py_TYPE(text.ptr())->tp_name));
    const Py_ssize_t length = PyUnicode_GetLength(text.ptr());
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    if (PyUnicode_AsWideChar(text.ptr(), wide.data(), length) < 0)
        throw py::error_already_set();
    return wide;
}

std::string Utf8Of(py::handle text)
{
    if (PyUnicode_Check(text.ptr()) && PyUnicode_IS_COMPACT_ASCII(text.ptr()))
        return {static_cast<const char*>(PyUnicode_DATA(text.ptr())),
                static_cast<std::size_t>(PyUnicode_GET_LENGTH(text.ptr()))};
    return kar::ToUtf8(WideOf(text));
}

std::string SnakeCase(std::wstring_view path)
{
    const auto is = [path](int (*kind)(std::wint_t), std::size_t at) {
        return at < path.size() && kind(static_cast<std::wint_t>(path[at])) != 0;
    };
    std::string name;
    for (std::size_t i = 0; i < path.size(); ++i) {
        const bool isGroup = path[i] == L'/' || path[i] == L'[';
        const bool isWord =
            is(&std::iswupper, i) && (is(&std::iswlower, i - 1) || is(&std::iswlower, i + 1));
        if (isGroup || (isWord && !name.empty() && name.back() != '_'))
            name += '_';
        if (!isGroup && path[i] != L']')
            name += static_cast<char>(std::towlower(static_cast<std::wint_t>(path[i])));
    }
    // The one name of an item that is a keyword of Python's.
    return name == "class" ? "class_" : name;
}

std::string ClassNameOf(std::string_view className)
{
    constexpr std::string_view prefix = "KARMP";
    const bool isName = className.size() > prefix.size() && className[prefix.size()] > '9';
    return std::string(isName ? className.substr(prefix.size()) : className);
}

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
    if (PySequence_Check(value.ptr()) == 0)
        Raise(PyExc_TypeError, "numbers are needed");
    std::vector<double> numbers;
    AppendNumbers(value, numbers, 2);
    return numbers;
}

py::object ToPython(const Value& value, Property& property, ModelState& state)
{
    struct Visitor
    {
        Property& property;
        ModelState& state;
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
            return WrapAll(entities, state);
        }
        py::object operator()(const Records& records) const
        {
            return RecordsOf(records, property, state);
        }
        py::object operator()(const std::vector<unsigned char>& bytes) const
        {
            return py::bytes(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        }
    };
    return std::visit(Visitor{property, state}, value);
}

Value FromPython(py::handle value, const ItemInfo& item, const ModelState& state)
{
    switch (item.kind) {
    case ItemKind::Number:
        return NumberOf<double>(value);
    case ItemKind::OptionalNumber:
        return value.is_none() ? Value() : Value(NumberOf<double>(value));
    case ItemKind::Integer:
        return NumberOf<int>(value);
    case ItemKind::Flag:
    case ItemKind::Word:
    case ItemKind::Code:
        if (item.isFlag && PyBool_Check(value.ptr()))
            return value.ptr() == Py_True;
        if (item.kind == ItemKind::Flag)
            Raise(PyExc_TypeError, SnakeCase(item.path) + " takes True or False");
        [[fallthrough]];
    case ItemKind::Text:
        return WideOf(value);
    case ItemKind::Numbers:
    case ItemKind::Transformation:
        return ArrayFrom(value, item);
    case ItemKind::Reference:
        return value.is_none() ? Value() : Value(EntityFrom(value, state));
    case ItemKind::References:
        return ListFrom(value, [&](py::handle entry) { return EntityFrom(entry, state); });
    case ItemKind::Records:
        return ListFrom(value, [&](py::handle entry) { return RecordFrom(entry, item, state); });
    case ItemKind::Stream:
        return BytesFrom(value);
    default:
        return {};
    }
}

} // namespace karmp::python

// What functions of the extension module take and give.
#include "Calls.h"
#include "KARMPEnumerationTexts.h"
#include "KARMPNearestWord.h"
#include "KARTextConversion.h"

#include <pybind11/numpy.h>

#include <algorithm>

namespace karmp::python {

namespace {

using Records = std::vector<RecordValues>;
using Quantities = EnumTexts<KARMPPhysicalQuantity::Enum>;

bool IsSequence(py::handle value)
{
    return PySequence_Check(value.ptr()) != 0 && !PyUnicode_Check(value.ptr());
}

// Things by a sequence of their fields.
template <class... Field>
void TakeFields(py::handle given, ModelState* of, Field&... fields)
{
    const py::tuple values(py::reinterpret_borrow<py::object>(given));
    std::size_t at = 0;
    (Take(values[at++], of, fields), ...);
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
    for (const RecordValues& record : records)
        list.append(py::handle(property.record)(*Give(record, &state)));
    return py::tuple(list);
}

// Numbers in the shape that the item has; of another shape as a vector, which the item refuses.
NumberArray ArrayFrom(py::handle value, const ItemInfo& item)
{
    const auto [numbers, isInRows] = Taken<Numbers>(value);
    const bool isVector = item.shape == NumberShape::Vector;
    if (isVector == isInRows || numbers.size() > 16)
        Raise(PyExc_ValueError, "the numbers of " + SnakeCase(item.path) + " have another shape");
    const bool isMatrix = item.shape == NumberShape::Matrix;
    const auto array = isVector   ? std::nullopt
                       : isMatrix ? NumberArray::MatrixByRows(numbers)
                                  : NumberArray::TransformationByRows(numbers);
    if (!array && !isVector && !isMatrix)
        Raise(PyExc_ValueError,
              SnakeCase(item.path) + " takes a homogeneous matrix, whose last row is 0 ... 0 1");
    return array.value_or(NumberArray(NumberShape::Vector, numbers));
}

RecordValues RecordFrom(py::handle value, const ItemInfo& item, ModelState& state)
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

} // namespace

void LoadNumpy()
{
    static bool isLoaded = false; // changes under the interpreter's lock alone
    if (isLoaded)
        return;
    py::module_::import("numpy.core.multiarray");
    isLoaded = true;
}

const double* Numbers::Exactly(std::size_t count) const
{
    if (values.size() != count)
        Raise(PyExc_ValueError,
              std::to_string(count) + " numbers are needed, not " + std::to_string(values.size()));
    return values.data();
}

Numbers::operator KARMathPoint() const
{
    const double* const at = Exactly(3);
    return {at[0], at[1], at[2]};
}

Numbers::operator KARMathPoint2D() const
{
    const double* const at = Exactly(2);
    return {at[0], at[1]};
}

Numbers::operator KARMathAxis() const
{
    const double* const entry = Exactly(16);
    const auto column = [entry](int at) {
        return KARMathVector(entry[at], entry[4 + at], entry[8 + at]);
    };
    return {KARMathPoint() + column(3), column(0), column(1), column(2)};
}

void Take(py::handle given, ModelState*, std::string& taken)
{
    taken = Utf8Of(given);
}

void Take(py::handle given, ModelState*, std::wstring& taken)
{
    taken = WideOf(given);
}

void Take(py::handle given, ModelState*, std::filesystem::path& taken)
{
    taken = std::string(py::bytes(py::module_::import("os").attr("fsencode")(given)));
}

void Take(py::handle given, ModelState*, std::vector<unsigned char>& taken)
{
    const auto bytes = py::reinterpret_steal<py::bytes>(PyBytes_FromObject(given.ptr()));
    RaiseIfSet();
    const std::string_view view(bytes);
    taken.assign(view.begin(), view.end());
}

void Take(py::handle given, ModelState* of, Numbers& taken)
{
    if (!IsSequence(given))
        RaiseNeeded("a sequence of numbers", given);
    std::size_t length = 0;
    for (const py::handle entry : given) {
        if (!IsSequence(entry)) {
            taken.values.push_back(Taken<double>(entry));
            continue;
        }
        const auto row = Taken<std::vector<double>>(entry, of);
        if (taken.isInRows && row.size() != length)
            Raise(PyExc_ValueError, "the rows have several lengths");
        taken.isInRows = true;
        length = row.size();
        taken.values.insert(taken.values.end(), row.begin(), row.end());
    }
}

void Take(py::handle given, ModelState* of, Entity& taken)
{
    const EntityObject& object = AliveOf(given);
    if (object.state.get() != of)
        Raise(PyExc_ValueError, TitleOf(*object.entity) + " belongs to another model");
    taken = object.entity;
}

void Take(py::handle given, ModelState*, model::BodyOptions& taken)
{
    if (!py::isinstance<model::BodyOptions>(given))
        RaiseNeeded("a Solid", given);
    taken = given.cast<model::BodyOptions>();
}

void Take(py::handle given, ModelState* of, model::Term& taken)
{
    TakeFields(given, of, taken.variable, taken.coefficient);
}

void Take(py::handle given, ModelState* of, model::MotorOptions& taken)
{
    TakeFields(given, of, taken.position, taken.velocity, taken.acceleration, taken.maximum);
}

void Take(py::handle given, ModelState* of, documents::SaveOptions& taken)
{
    std::optional<std::wstring> version;
    bool isExact = true;
    TakeFields(given, of, version, isExact);
    taken.doubles = isExact ? documents::Doubles::Exact : documents::Doubles::Snapped;
    taken.version = version.value_or(taken.version);
}

void Take(py::handle given, ModelState* of, documents::ExtractionOptions& taken)
{
    TakeFields(given, of, taken.reach, taken.families);
}

void Take(py::handle given, ModelState*, KARMPPhysicalQuantity::Enum& taken)
{
    const std::wstring text = WideOf(given);
    const auto found = std::ranges::find(Quantities::Rows, text);
    if (found == Quantities::Rows.end())
        Raise(PyExc_ValueError, "there is no quantity \"" + Utf8Of(given) + "\"; near: " +
                                    kar::ToUtf8(NearestWord(
                                        text, {Quantities::Rows.begin(), Quantities::Rows.end()})));
    taken = static_cast<KARMPPhysicalQuantity::Enum>(found - Quantities::Rows.begin());
}

py::object Give(std::wstring_view text, ModelState*)
{
    return ToText(text);
}

py::object Give(std::string_view text, ModelState*)
{
    return ToText(text);
}

// The words live as long as the library, and so do their texts.
py::object Give(EnumWord word, ModelState*)
{
    static auto& texts = *new std::unordered_map<const wchar_t*, py::object>;
    py::object& text = texts[word.text.data()];
    if (!text)
        text = ToText(word.text);
    return text;
}

py::object Give(const NumberArray& numbers, ModelState*)
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

py::object Give(const std::vector<unsigned char>& bytes, ModelState*)
{
    return py::bytes(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

py::object Give(const KARMathVector& vector, ModelState*)
{
    return py::make_tuple(vector.GetX(), vector.GetY(), vector.GetZ());
}

py::object Give(const model::BodyOptions& solid, ModelState*)
{
    return py::cast(solid);
}

py::object Give(const model::Dependent& dependent, ModelState* of)
{
    return py::make_tuple(Give(dependent.entity, of), dependent.item, Give(dependent.target, of));
}

py::object Give(const model::Deletion& deletion, ModelState* of)
{
    return py::dict("gone"_a = Give(deletion.gone, of), "unlinked"_a = Give(deletion.unlinked, of),
                    "left_short"_a = Give(deletion.leftShort, of));
}

py::object Give(const documents::CutLink& cut, ModelState* of)
{
    return py::make_tuple(Give(cut.holder, of), Give(cut.item, of), Give(cut.target, of));
}

py::object Give(const documents::Diagnostics& findings, ModelState*)
{
    py::list list;
    const auto type = OfPackage("Finding");
    for (const documents::Diagnostic& finding : findings.items)
        list.append(type(py::make_tuple(documents::SeverityText(finding.severity),
                                        documents::CodeText(finding.code), ToText(finding.file),
                                        ToText(finding.path), ToText(finding.text), finding.line,
                                        finding.column, ToText(documents::Format(finding)))));
    return list;
}

py::object Give(model::Result<Model> made, ModelState*)
{
    CheckDocument(made);
    return py::cast(std::make_shared<ModelState>(*std::move(made), made.Findings()));
}

py::object Give(model::Result<model::Extraction> made, ModelState* of)
{
    if (!made)
        RaiseFailure(made.Error().text, made.Error().status);
    return py::make_tuple(std::make_shared<ModelState>(std::move(made->model)),
                          Give(made->cutLinks, of));
}

py::object ToPython(const Value& value, Property& property, ModelState& state)
{
    if (const auto* const records = std::get_if<Records>(&value))
        return RecordsOf(*records, property, state);
    return Give(value, &state);
}

Value FromPython(py::handle value, const ItemInfo& item, ModelState& state)
{
    const auto as = [&]<class T>(T taken) {
        Take(value, &state, taken);
        return Value(std::move(taken));
    };
    switch (item.kind) {
    case ItemKind::Number:
        return as(0.0);
    case ItemKind::OptionalNumber:
        return value.is_none() ? Value() : as(0.0);
    case ItemKind::Integer:
        return as(0);
    case ItemKind::Flag:
    case ItemKind::Word:
    case ItemKind::Code:
        if (item.isFlag && PyBool_Check(value.ptr()))
            return value.ptr() == Py_True;
        if (item.kind == ItemKind::Flag)
            Raise(PyExc_TypeError, SnakeCase(item.path) + " takes True or False");
        [[fallthrough]];
    case ItemKind::Text:
        return as(std::wstring());
    case ItemKind::Numbers:
    case ItemKind::Transformation:
        return ArrayFrom(value, item);
    case ItemKind::Reference:
        return value.is_none() ? Value() : as(Entity());
    case ItemKind::References:
        return as(std::vector<Entity>());
    case ItemKind::Records: {
        Records records;
        for (const py::handle entry : py::list(py::reinterpret_borrow<py::object>(value)))
            records.push_back(RecordFrom(entry, item, state));
        return records;
    }
    case ItemKind::Stream:
        return as(std::vector<unsigned char>());
    default:
        return {};
    }
}

} // namespace karmp::python

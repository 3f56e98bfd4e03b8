// Arguments of calls, and arrays.
#include "Calls.h"
#include "KARMPEnumerationTexts.h"
#include "KARMPNearestWord.h"

#include <pybind11/numpy.h>

#include <algorithm>

namespace karmp::python {

namespace {

using Quantities = EnumTexts<KARMPPhysicalQuantity::Enum>;

bool IsSequence(py::handle value)
{
    return PySequence_Check(value.ptr()) != 0 && !PyUnicode_Check(value.ptr());
}

} // namespace

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

Numbers NumbersOf(py::handle given)
{
    if (!IsSequence(given))
        RaiseNeeded("a sequence of numbers", given);
    Numbers taken;
    std::size_t length = 0;
    for (const py::handle entry : given) {
        if (!IsSequence(entry)) {
            taken.values.push_back(Taken<double>(entry));
            continue;
        }
        const auto row = Taken<std::vector<double>>(entry);
        if (taken.isInRows && row.size() != length)
            Raise(PyExc_ValueError, "the rows have several lengths");
        taken.isInRows = true;
        length = row.size();
        taken.values.insert(taken.values.end(), row.begin(), row.end());
    }
    return taken;
}

Entity EntityOf(py::handle given, const ModelState* of)
{
    const EntityObject& object = AliveOf(given);
    if (object.state.get() != of)
        Raise(PyExc_ValueError, TitleOf(*object.entity) + " belongs to another model");
    return object.entity;
}

std::vector<unsigned char> BytesOf(py::handle given)
{
    const auto bytes = py::reinterpret_steal<py::bytes>(PyBytes_FromObject(given.ptr()));
    RaiseIfSet();
    const std::string_view view(bytes);
    return {view.begin(), view.end()};
}

KARMPPhysicalQuantity::Enum QuantityOf(py::handle given)
{
    const auto& words = Quantities::Rows;
    const std::wstring text = WideOf(given);
    const auto found = std::ranges::find(words, text);
    if (found == words.end())
        Raise(PyExc_ValueError, "there is no quantity \"" + kar::ToUtf8(text) + "\"; near: " +
                                    kar::ToUtf8(NearestWord(text, {words.begin(), words.end()})));
    return static_cast<KARMPPhysicalQuantity::Enum>(found - words.begin());
}

void LoadNumpy()
{
    static bool isLoaded = false; // changes under the interpreter's lock alone
    if (isLoaded)
        return;
    py::module_::import("numpy.core.multiarray");
    isLoaded = true;
}

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

} // namespace karmp::python

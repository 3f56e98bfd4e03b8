// Texts and names between C++ and Python.
#include "Bindings.h"
#include "KARMPNearestWord.h"
#include "KARTextConversion.h"

#include <cwctype>

namespace karmp::python {

py::str ToText(std::wstring_view text)
{
    PyObject* const made =
        PyUnicode_FromWideChar(text.data(), static_cast<Py_ssize_t>(text.size()));
    if (made == nullptr)
        throw py::error_already_set();
    return py::reinterpret_steal<py::str>(made);
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
    const auto isUpper = [path](std::size_t i) {
        return i < path.size() && std::iswupper(static_cast<std::wint_t>(path[i])) != 0;
    };
    const auto isLower = [path](std::size_t i) {
        return i < path.size() && std::iswlower(static_cast<std::wint_t>(path[i])) != 0;
    };
    std::string name;
    for (std::size_t i = 0; i < path.size(); ++i) {
        if (path[i] == L']')
            continue;
        if (path[i] == L'/' || path[i] == L'[') {
            name += '_';
            continue;
        }
        const bool beginsWord = i > 0 && isUpper(i) && (isLower(i - 1) || isLower(i + 1));
        if (beginsWord && !name.empty() && name.back() != '_')
            name += '_';
        name += static_cast<char>(isUpper(i) ? path[i] - L'A' + L'a' : path[i]);
    }
    // The one name of an item that is a keyword of Python's.
    if (name == "class")
        name += '_';
    return name;
}

std::string ClassNameOf(std::string_view className)
{
    constexpr std::string_view prefix = "KARMP";
    const bool isName = className.size() > prefix.size() && className[prefix.size()] > '9';
    return std::string(isName ? className.substr(prefix.size()) : className);
}

std::string NearText(std::string_view text, const std::vector<std::string>& names)
{
    std::vector<std::wstring> wide;
    for (const std::string& name : names)
        wide.push_back(kar::ToWide(name));
    const auto nearest = NearestWord(kar::ToWide(text), {wide.begin(), wide.end()});
    return nearest.empty() ? std::string() : "; near: \"" + kar::ToUtf8(nearest) + '"';
}

} // namespace karmp::python

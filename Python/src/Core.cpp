// Texts, names and errors.
#include "Core.h"
#include "KARMPFailedCheck.h"
#include "KARMPNearestWord.h"
#include "KARTextConversion.h"

#include <cwctype>
#include <new>

namespace karmp::python {

namespace {

class Checks final : public KARMPFailedCheckListener
{
public:
    void OnFailedCheck(const char*, int) override { ++m_count; }
    int m_count = 0;
};

} // namespace

Registry& Types()
{
    static auto& registry = *new Registry;
    return registry;
}

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
        RaiseNeeded("a str", text);
    const Py_ssize_t length = PyUnicode_GetLength(text.ptr());
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    if (PyUnicode_AsWideChar(text.ptr(), wide.data(), length) < 0)
        throw py::error_already_set();
    return wide;
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

std::string NearText(const std::wstring& text, const std::vector<std::wstring>& names)
{
    const auto near = NearestWord(text, {names.begin(), names.end()});
    return near.empty() ? "" : "; near: \"" + kar::ToUtf8(near) + '"';
}

py::object OfPackage(const char* name)
{
    return py::module_::import("karmp").attr(name);
}

void RaiseFailure(const std::string& text, KARStatus status, const py::object& entity)
{
    if (status == KAROutOfMemory)
        throw std::bad_alloc();
    Raise(OfPackage("Error"), text, status, entity);
}

void RaiseNeeded(const std::string& what, py::handle given)
{
    Raise(PyExc_TypeError, what + " is needed, not " + kar::ToUtf8(WideOf(py::repr(given))));
}

void RaiseProblem(Model& model)
{
    if (model.Problems().empty())
        return;
    const model::Problem problem = model.Problems().front();
    model.ClearProblems();
    RaiseFailure(problem.text, problem.status);
}

int& FailedChecks()
{
    thread_local Checks checks;
    return checks.m_count;
}

void WarnOfChecks(std::string_view what)
{
    const int count = FailedChecks();
    if (count == 0)
        return;
    const std::string text = std::string(what) + ": the library reported " + std::to_string(count) +
                             (count == 1 ? " failed check" : " failed checks");
    if (PyErr_WarnEx(OfPackage("CheckWarning").ptr(), text.c_str(), 1) != 0)
        throw py::error_already_set();
}

} // namespace karmp::python

// Texts, names, errors, and what calls take and give.
#include "Calls.h"
#include "KARMPFailedCheck.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cwctype>
#include <new>
#include <pthread.h>
#include <thread>

namespace karmp::python {

namespace {

class Checks final : public KARMPFailedCheckListener
{
public:
    void OnFailedCheck(const char*, int) override { ++m_count; }
    int m_count = 0;
};

bool IsSequence(py::handle value)
{
    return PySequence_Check(value.ptr()) != 0 && !PyUnicode_Check(value.ptr());
}

} // namespace

std::atomic<int> Unlocked::s_running = 0;

Unlocked::Unlocked()
{
    ++s_running;
    m_thread = PyEval_SaveThread();
}

void Unlocked::WaitForAllAtExit()
{
    Py_AtExit([] {
        while (s_running > 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    });
    // A forked process has none of these threads.
    pthread_atfork(nullptr, nullptr, [] { s_running = 0; });
}

Unlocked::~Unlocked()
{
    --s_running;
    try {
        PyEval_RestoreThread(m_thread);
    } catch (...) {
        for (;;)
            std::this_thread::sleep_for(std::chrono::hours(1));
    }
}

py::str ToText(std::wstring_view text)
{
    const auto size = static_cast<Py_ssize_t>(text.size());
    return Made<py::str>(PyUnicode_FromWideChar(text.data(), size));
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
    const auto isLower = [path](std::size_t at) {
        return at < path.size() && std::iswlower(static_cast<std::wint_t>(path[at])) != 0;
    };
    if (path == L"DOFindex")
        return "dof_index"; // its words are not told by capitals
    std::string name;
    for (std::size_t i = 0; i < path.size(); ++i) {
        const auto sign = static_cast<std::wint_t>(path[i]);
        const bool isGroup = sign == L'/' || sign == L'[';
        const bool isWord = std::iswupper(sign) != 0 && (isLower(i - 1) || isLower(i + 1));
        if (isGroup || (isWord && !name.empty() && name.back() != '_'))
            name += '_';
        if (!isGroup && sign != L']')
            name += static_cast<char>(std::towlower(sign));
    }
    // The one name of an item that is a keyword of Python's.
    return name == "class" ? "class_" : name;
}

py::object OfPackage(const char* name)
{
    return py::module_::import("karmp").attr(name);
}

std::string WithPythonNames(std::string_view text)
{
    constexpr std::string_view prefix = "KARMP";
    std::string told;
    bool isQuoted = false;
    while (!text.empty()) {
        isQuoted = isQuoted != (text[0] == '"');
        const std::string_view rest = text.starts_with(prefix) ? text.substr(prefix.size()) : "";
        if (!isQuoted && !rest.empty() && rest[0] >= 'A' && rest[0] <= 'Z') {
            text = rest;
            continue;
        }
        told += text[0];
        text.remove_prefix(1);
    }
    return told;
}

void RaiseFailure(std::string_view text, KARStatus status, const py::object& entity)
{
    if (status == KAROutOfMemory)
        throw std::bad_alloc();
    Raise(OfPackage("Error"), WithPythonNames(text), status, entity);
}

void RaiseNeeded(const std::string& what, py::handle given)
{
    Raise(PyExc_TypeError, what + " is needed, not " + kar::ToUtf8(WideOf(py::repr(given))));
}

int& FailedChecks()
{
    thread_local Checks checks;
    return checks.m_count;
}

void EndEdit(Model& model, std::string_view what)
{
    if (!model.Problems().empty()) {
        const model::Problem problem = model.Problems().front();
        model.ClearProblems();
        RaiseFailure(problem.text, problem.status);
    }
    const int count = FailedChecks();
    if (count == 0)
        return;
    const std::string text = std::string(what) + ": the library reported " + std::to_string(count) +
                             (count == 1 ? " failed check" : " failed checks");
    if (PyErr_WarnEx(OfPackage("CheckWarning").ptr(), text.c_str(), 1) != 0)
        throw py::error_already_set();
}

const double* Numbers::Exactly(std::size_t count) const
{
    if (values.size() != count)
        Raise(PyExc_ValueError,
              std::to_string(count) + " numbers are needed, not " + std::to_string(values.size()));
    return values.data();
}

Numbers::operator KARMathAxis() const
{
    const double* const entry = Exactly(16);
    if (!NumberArray::TransformationByRows(values))
        Raise(PyExc_ValueError, "a homogeneous matrix is needed, whose last row is 0 0 0 1");
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
        taken.isInRows = IsSequence(entry);
        const auto row =
            taken.isInRows ? Taken<std::vector<double>>(entry) : std::vector{Taken<double>(entry)};
        if (!taken.values.empty() && row.size() != length)
            Raise(PyExc_ValueError, "the rows have several lengths");
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
    const auto bytes = Made<py::bytes>(PyBytes_FromObject(given.ptr()));
    const std::string_view view(bytes);
    return {view.begin(), view.end()};
}

} // namespace karmp::python

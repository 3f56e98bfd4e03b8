// Exceptions, and failed checks as warnings.
#include "Bindings.h"

#include <new>

namespace karmp::python {

Registry& Types()
{
    static auto& registry = *new Registry;
    return registry;
}

void Raise(py::handle type, const std::string& text)
{
    Raise(type(ToText(text)));
}

void Raise(const py::object& error)
{
    PyErr_SetObject(py::type::of(error).ptr(), error.ptr());
    throw py::error_already_set();
}

void RaiseError(const std::string& text, KARStatus status, const py::object& entity)
{
    if (status == KAROutOfMemory)
        throw std::bad_alloc();
    Raise(ErrorType("Error")(ToText(text), status, entity));
}

py::object ErrorType(const char* name)
{
    return py::module_::import("karmp._errors").attr(name);
}

void SetException()
{
    try {
        throw;
    } catch (py::error_already_set& error) {
        error.restore();
    } catch (const std::bad_alloc&) {
        PyErr_NoMemory();
    } catch (const std::exception& error) {
        PyErr_SetString(PyExc_RuntimeError, error.what());
    }
}

Checks& Checks::OfThread()
{
    thread_local Checks checks;
    return checks;
}

void Checks::Warn(std::string_view what) const
{
    const std::string text = std::string(what) + ": the library reported " +
                             std::to_string(m_count) +
                             (m_count == 1 ? " failed check" : " failed checks");
    if (PyErr_WarnEx(ErrorType("CheckWarning").ptr(), text.c_str(), 1) != 0)
        throw py::error_already_set();
}

} // namespace karmp::python

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
    PyErr_SetObject(type.ptr(), ToText(text).ptr());
    throw py::error_already_set();
}

void RaiseError(const std::string& text, KARStatus status, py::handle entity)
{
    if (status == KAROutOfMemory)
        throw std::bad_alloc();
    const auto error = Types().error(ToText(text));
    error.attr("status") = status;
    if (entity)
        error.attr("entity") = entity;
    PyErr_SetObject(Types().error.ptr(), error.ptr());
    throw py::error_already_set();
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
    if (PyErr_WarnEx(Types().checkWarning.ptr(), text.c_str(), 1) != 0)
        throw py::error_already_set();
}

} // namespace karmp::python

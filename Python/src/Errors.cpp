// Exceptions, and failed checks as warnings.
#include "Bindings.h"

#include <new>

namespace karmp::python {

Registry& Types()
{
    static auto& registry = *new Registry;
    return registry;
}

void Raise(PyObject* type, const std::string& text)
{
    PyErr_SetObject(type, ToText(text).ptr());
    throw py::error_already_set();
}

void RaiseError(const std::string& text, KARStatus status, py::handle entity)
{
    if (status == KAROutOfMemory)
        throw std::bad_alloc();
    const auto error = py::handle(Types().error)(ToText(text));
    error.attr("status") = status;
    if (entity)
        error.attr("entity") = entity;
    PyErr_SetObject(Types().error, error.ptr());
    throw py::error_already_set();
}

void RaiseDocumentError(const std::string& text, const documents::Diagnostics& findings)
{
    std::string lines = text;
    for (const documents::Diagnostic& finding : findings.items)
        if (finding.severity == documents::Severity::Error)
            lines += '\n' + documents::Format(finding);
    const auto error = py::handle(Types().documentError)(ToText(lines));
    error.attr("findings") = ToPython(findings);
    PyErr_SetObject(Types().documentError, error.ptr());
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

void Checks::Warn(const std::string& what) const
{
    const std::string text = what + ": the library reported " + std::to_string(m_count) +
                             (m_count == 1 ? " failed check" : " failed checks");
    if (PyErr_WarnEx(Types().checkWarning, text.c_str(), 1) != 0)
        throw py::error_already_set();
}

void BindErrors(py::module_& module)
{
    const auto add = [&module](const char* name, const char* doc, PyObject* base,
                               const py::dict& attributes) {
        const std::string full = std::string("karmp.") + name;
        PyObject* const type = PyErr_NewExceptionWithDoc(full.c_str(), doc, base, attributes.ptr());
        if (type == nullptr)
            throw py::error_already_set();
        module.add_object(name, type);
        return type;
    };
    Registry& types = Types();
    using py::literals::operator""_a;
    types.error =
        add("Error", "A call failed. status is the library's number, entity the entity or None.",
            PyExc_Exception, py::dict("status"_a = KARFailure, "entity"_a = py::none()));
    types.documentError = add(
        "DocumentError", "A document was not read or written. findings tells what is the matter.",
        types.error, py::dict("findings"_a = py::tuple()));
    types.deletedError =
        add("DeletedError", "The entity was deleted from its model.", types.error, py::dict());
    types.checkWarning = add("CheckWarning", "The library reported a failed check in a call.",
                             PyExc_UserWarning, py::dict());
}

} // namespace karmp::python

// Documents: findings, differences, loading, saving, checking, copies.
#include "Arguments.h"
#include "KARTextConversion.h"

#include <pybind11/stl/filesystem.h>

namespace karmp::python {

namespace {

using documents::Diagnostic;
using documents::Difference;
using documents::DifferenceKind;
using model::Model;
using Findings = Typed<"list[Finding]", py::list>;
using Path = std::filesystem::path;

/// A difference, its entities and values as Python objects.
struct DifferenceObject
{
    std::string kind;
    std::string item;
    Typed<"Entity | None"> entity;
    Typed<"Any"> before, after;
    Typed<"Entity | None"> target;
};

Findings ToPython(const documents::Diagnostics& findings)
{
    return py::cast(findings.items);
}

// Work without the interpreter's lock, with a model that no other thread uses meanwhile.
template <class Work>
auto Unlocked(Work work)
{
    const py::gil_scoped_release release;
    return work();
}
template <class Work>
auto Alone(ModelState& state, Work work)
{
    const Exclusive exclusive(state);
    return work(std::as_const(state.model));
}

// The result of a call; raises what it failed with.
template <class T>
T&& Checked(T&& result)
{
    if (result)
        return std::forward<T>(result);
    Raise(ErrorType("DocumentError")(ToText(result.Error().text), ToPython(result.Findings())));
}

State NewState(model::Result<Model> made)
{
    documents::Diagnostics findings = Checked(made).Findings();
    return std::make_shared<ModelState>(*std::move(made), std::move(findings));
}

documents::SaveOptions OptionsOf(const std::optional<Text>& version, bool isExact)
{
    documents::SaveOptions options;
    options.doubles = isExact ? documents::Doubles::Exact : documents::Doubles::Snapped;
    if (version)
        options.version = kar::ToWide(*version);
    return options;
}

DifferenceObject ToPython(const Difference& difference, ModelState& first, ModelState& second)
{
    ItemInfo item;
    Property property{&item, {}, {}};
    const auto isRecords = [](const Value& value) {
        return std::holds_alternative<std::vector<RecordValues>>(value);
    };
    const bool hasValues = !isRecords(difference.oldValue) && !isRecords(difference.newValue);
    const auto value = [&](const Value& from, ModelState& state) -> py::object {
        return hasValues ? python::ToPython(from, property, state) : py::none();
    };
    const bool isGained = difference.kind == DifferenceKind::LinkGained;
    return {documents::DifferenceText(difference.kind),
            kar::ToUtf8(difference.item),
            difference.before ? Wrap(difference.before, first) : Wrap(difference.after, second),
            value(difference.oldValue, first),
            value(difference.newValue, second),
            Wrap(difference.target, isGained ? second : first)};
}

Typed<"list[Difference]", py::list> Diff(ModelState& self, ModelState& other, double tolerance,
                                         double floor)
{
    const auto found = [&] {
        const Exclusive exclusive(self, other);
        return self.model.Diff(other.model, {.tolerance = tolerance, .floor = floor});
    }();
    py::list list;
    for (const Difference& difference : found)
        list.append(ToPython(difference, self, other));
    return list;
}

Typed<"tuple[Model, list[tuple[Entity, str, Entity]]]"> Extract(ModelState& self,
                                                                const Each<Ref<KARMPBody>>& bodies,
                                                                int reach,
                                                                const Each<Text>& families)
{
    CheckOwn(self, bodies);
    documents::ExtractionOptions options{reach, {}};
    for (const Text& family : families)
        options.families.push_back(kar::ToWide(family));
    auto made = Alone(self, [&](const Model& model) { return model.Extract(bodies, options); });
    if (!made)
        RaiseError(made.Error().text, made.Error().status);
    py::list cuts;
    for (const documents::CutLink& cut : made->cutLinks)
        cuts.append(
            py::make_tuple(Wrap(cut.holder, self), ToText(cut.item), Wrap(cut.target, self)));
    return py::make_tuple(std::make_shared<ModelState>(std::move(made->model)), cuts);
}

void BindFindings(py::module_& module)
{
    const auto text = [](std::string Diagnostic::*member) {
        return [member](const Diagnostic& self) { return ToText(self.*member); };
    };
    const auto severity = [](const Diagnostic& self) -> Typed<"Literal[\"warning\", \"error\"]">
    {
        return py::str(documents::SeverityText(self.severity));
    };
    const auto code = [](const Diagnostic& self) { return documents::CodeText(self.code); };
    py::class_<Diagnostic> finding(module, "Finding",
                                   "What is the matter with a document, and where.");
    Seal(finding);
    finding.def_property_readonly("severity", severity, "\"warning\" or \"error\".")
        .def_property_readonly("code", code, "The stable name of the finding.")
        .def_property_readonly("file", text(&Diagnostic::file), "The name of the file.")
        .def_property_readonly("path", text(&Diagnostic::path), "The element.")
        .def_property_readonly("text", text(&Diagnostic::text), "One sentence.")
        .def_readonly("line", &Diagnostic::line, "From 1; 0 for no line.")
        .def_readonly("column", &Diagnostic::column, "From 1; 0 for no column.")
        .def_property_readonly(
            "_line", [](const Diagnostic& self) { return ToText(documents::Format(self)); });

    using Object = DifferenceObject;
    py::class_<Object> difference(module, "Difference", "One difference between two models.");
    Seal(difference);
    difference.def_readonly("kind", &Object::kind, "\"changed\", \"added\" and so on.")
        .def_readonly("item", &Object::item, "The item by its path.")
        .def_readonly("entity", &Object::entity, "The entity, of the first model if it is there.")
        .def_readonly("before", &Object::before, "The value in the first model.")
        .def_readonly("after", &Object::after, "The value in the second one.")
        .def_readonly("target", &Object::target, "The target of a link.");
}

} // namespace

void BindDocuments(py::module_& module, ModelClass& of)
{
    BindFindings(module);
    module.def(
        "load",
        [](const Path& path) { return NewState(Unlocked([&] { return model::Load(path); })); },
        "path"_a, "Loads a model; DocumentError for one with errors, warnings in its findings.");
    module.def(
        "_loads",
        [](const py::bytes& text, const Text& name) {
            std::string bytes(text);
            return NewState(Unlocked([&] { return model::LoadText(std::move(bytes), name); }));
        },
        "text"_a, "name"_a);
    module.def(
        "check",
        [](const Path& path) {
            return ToPython(Unlocked([&] { return documents::CheckFile(path); }));
        },
        "path"_a, "What the check of a file finds.");
    of.def(
        "save",
        [](ModelState& self, const Path& path, const std::optional<Text>& version, bool isExact) {
            const auto options = OptionsOf(version, isExact);
            return ToPython(
                Checked(Alone(
                            self, [&](const Model& model) { return model.Save(path, options); }))
                    .Findings());
        },
        "path"_a, "version"_a = py::none(), "exact"_a = true,
        "Saves the model as a whole or not at all; returns warnings.");
    of.def(
        "text",
        [](ModelState& self, const std::optional<Text>& version, bool isExact) {
            const auto options = OptionsOf(version, isExact);
            return ToText(*Checked(Alone(
                self, [&](const Model& model) { return model.Text(options); })));
        },
        "version"_a = py::none(), "exact"_a = true, "The document as a text.");
    of.def(
        "check",
        [](ModelState& self) {
            return ToPython(Alone(
                self, [](const Model& model) { return model.Check(); }));
        },
        "What the check of its document finds in the model.");
    of.def(
        "clone",
        [](ModelState& self) {
            return NewState(Alone(self, [](const Model& model) { return model.Clone(); }));
        },
        "A model of its own with the same entities.");
    of.def("diff", &Diff, "other"_a, py::kw_only(), "tolerance"_a = 0.0, "floor"_a = 0.0,
           "The differences to another model.");
    of.def("extract", &Extract, "bodies"_a, py::kw_only(), "reach"_a = 0,
           "families"_a = py::tuple(),
           "The part around some bodies as a model, and the links that were cut.");
    of.def_property_readonly(
        "findings", [](ModelState& self) { return ToPython(self.findings); },
        "The warnings of loading the model.");
}

} // namespace karmp::python

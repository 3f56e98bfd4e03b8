// Documents: findings, differences, loading, saving, checking, copies.
#include "Bindings.h"
#include "KARTextConversion.h"

#include <pybind11/stl/filesystem.h>

#include <utility>

namespace karmp::python {

namespace {

using documents::Diagnostic;
using documents::Difference;
using Found = std::shared_ptr<Diagnostic>;
using py::literals::operator""_a;

/// A difference, its entities as Python objects.
struct DifferenceObject : Held
{
    std::string kind;
    std::string item;
    py::object entity, before, after, target;
};
using DifferenceHolder = std::shared_ptr<DifferenceObject>;

std::string TextOf(const DifferenceObject& difference)
{
    const auto text = [](const py::object& value) { return py::str(value).cast<std::string>(); };
    std::string told = difference.kind + ' ' + text(difference.entity);
    if (!difference.item.empty())
        told += ' ' + difference.item;
    if (!difference.before.is_none() || !difference.after.is_none())
        told += ": " + text(difference.before) + " -> " + text(difference.after);
    return told + (difference.target.is_none() ? "" : ' ' + text(difference.target));
}

State NewState(model::Result<model::Model> made)
{
    if (!made)
        RaiseDocumentError(made.Error().text, made.Findings());
    documents::Diagnostics findings = made.Findings();
    return std::make_shared<ModelState>(*std::move(made), std::move(findings));
}

State Load(const std::filesystem::path& path)
{
    auto loaded = [&] {
        const py::gil_scoped_release release;
        return model::Load(path);
    }();
    return NewState(std::move(loaded));
}

State LoadText(const py::object& text, const std::string& name)
{
    std::string bytes =
        py::isinstance<py::bytes>(text) ? std::string(py::bytes(text)) : Utf8Of(text);
    auto loaded = [&] {
        const py::gil_scoped_release release;
        return model::LoadText(std::move(bytes), name);
    }();
    return NewState(std::move(loaded));
}

documents::SaveOptions OptionsOf(const py::object& version, bool isExact)
{
    documents::SaveOptions options;
    options.doubles = isExact ? documents::Doubles::Exact : documents::Doubles::Snapped;
    if (!version.is_none())
        options.version = WideOf(version);
    return options;
}

template <class Work>
auto Alone(const State& state, Work work)
{
    const Exclusive exclusive(*state);
    return work(state->model);
}

py::list Save(const State& self, const std::filesystem::path& path, const py::object& version,
              bool isExact)
{
    const auto options = OptionsOf(version, isExact);
    const auto saved =
        Alone(self, [&](const model::Model& model) { return model.Save(path, options); });
    if (!saved)
        RaiseDocumentError(saved.Error().text, saved.Findings());
    return ToPython(saved.Findings());
}

py::object Text(const State& self, const py::object& version, bool isExact)
{
    const auto options = OptionsOf(version, isExact);
    const auto text = Alone(self, [&](const model::Model& model) { return model.Text(options); });
    if (!text)
        RaiseDocumentError(text.Error().text, text.Findings());
    return ToText(std::string_view(*text));
}

State Clone(const State& self)
{
    return NewState(Alone(
        self, [](const model::Model& model) { return model.Clone(); }));
}

py::list Diff(const State& self, const State& other, double tolerance, double floor)
{
    const auto found = [&] {
        CheckFree(*self);
        CheckFree(*other);
        return self->model.Diff(other->model, {.tolerance = tolerance, .floor = floor});
    }();
    py::list list;
    for (const Difference& difference : found) {
        ItemInfo item;
        Property property{&item, {}, {}, {}, nullptr};
        const bool isRecords =
            std::holds_alternative<std::vector<RecordValues>>(difference.oldValue) ||
            std::holds_alternative<std::vector<RecordValues>>(difference.newValue);
        const auto value = [&](const Value& from, const State& state) -> py::object {
            return isRecords ? py::none() : ToPython(from, property, state);
        };
        const bool isNew = !difference.before;
        list.append(std::make_shared<DifferenceObject>(DifferenceObject{
            {},
            documents::DifferenceText(difference.kind),
            kar::ToUtf8(difference.item),
            isNew ? Wrap(difference.after, other) : Wrap(difference.before, self),
            value(difference.oldValue, self),
            value(difference.newValue, other),
            Wrap(difference.target,
                 difference.kind == documents::DifferenceKind::LinkGained ? other : self)}));
    }
    return list;
}

py::list Cuts(const std::vector<documents::CutLink>& cuts, const State& state)
{
    py::list list;
    for (const documents::CutLink& cut : cuts)
        list.append(
            py::make_tuple(Wrap(cut.holder, state), ToText(cut.item), Wrap(cut.target, state)));
    return list;
}

py::tuple Extract(const State& self, const py::iterable& bodies, int reach,
                  const py::iterable& families)
{
    std::vector<model::Ref<KARMPBody>> refs;
    for (const py::handle body : py::list(bodies))
        refs.push_back(RefIn<KARMPBody>(body, self));
    documents::ExtractionOptions options{reach, {}};
    for (const py::handle family : py::list(families))
        options.families.push_back(WideOf(family));
    CheckFree(*self);
    auto made = self->model.Extract(refs, options);
    if (!made)
        RaiseError(made.Error().text, made.Error().status);
    auto extract = std::make_shared<ModelState>(std::move(made->model));
    return py::make_tuple(extract, Cuts(made->cutLinks, self));
}

} // namespace

py::list ToPython(const documents::Diagnostics& findings)
{
    py::list list;
    for (const Diagnostic& finding : findings.items)
        list.append(std::make_shared<Diagnostic>(finding));
    return list;
}

void BindDocuments(py::module_& module)
{
    py::class_<Diagnostic, Found> finding(module, "Finding",
                                          "What is the matter with a document, and where.");
    Seal(finding);
    finding
        .def_property_readonly(
            "severity", [](const Found& self) { return documents::SeverityText(self->severity); },
            "\"warning\" or \"error\".")
        .def_property_readonly(
            "code", [](const Found& self) { return documents::CodeText(self->code); },
            "The stable name of the finding.")
        .def_property_readonly(
            "file", [](const Found& self) { return ToText(self->file); }, "The name of the file.")
        .def_property_readonly(
            "path", [](const Found& self) { return ToText(self->path); }, "The element.")
        .def_property_readonly(
            "text", [](const Found& self) { return ToText(self->text); }, "One sentence.")
        .def_readonly("line", &Diagnostic::line, "From 1; 0 for no line.")
        .def_readonly("column", &Diagnostic::column, "From 1; 0 for no column.")
        .def("__repr__", [](const Found& self) { return ToText(documents::Format(*self)); });

    py::class_<DifferenceObject, DifferenceHolder> difference(module, "Difference",
                                                              "One difference between two models.");
    Seal(difference);
    difference.def_readonly("kind", &DifferenceObject::kind, "\"changed\", \"added\" and so on.")
        .def_readonly("item", &DifferenceObject::item, "The item by its path.")
        .def_readonly("entity", &DifferenceObject::entity,
                      "The entity, of the first model if it "
                      "is there.")
        .def_readonly("before", &DifferenceObject::before, "The value in the first model.")
        .def_readonly("after", &DifferenceObject::after, "The value in the second one.")
        .def_readonly("target", &DifferenceObject::target, "The target of a link.")
        .def("__repr__", [](const DifferenceHolder& self) { return TextOf(*self); });
}

void BindModelDocuments(py::module_& module, ModelClass& of)
{
    module.def("load", &Load, "path"_a,
               "Loads a model; DocumentError for one with errors, warnings in its findings.");
    module.def("loads", &LoadText, "text"_a, "name"_a = "<text>",
               "Loads a model from a str or bytes, which findings call by name.");
    module.def(
        "check",
        [](const std::filesystem::path& path) {
            const auto findings = [&] {
                const py::gil_scoped_release release;
                return documents::CheckFile(path);
            }();
            return ToPython(findings);
        },
        "path"_a, "What the check of a file finds.");
    of.def("save", &Save, "path"_a, "version"_a = py::none(), "exact"_a = true,
           "Saves the model as a whole or not at all; returns warnings.");
    of.def("text", &Text, "version"_a = py::none(), "exact"_a = true, "The document as a text.");
    of.def(
        "check",
        [](const State& self) {
            return ToPython(Alone(self, [](const model::Model& model) { return model.Check(); }));
        },
        "What the check of its document finds in the model.");
    of.def("clone", &Clone, "A model of its own with the same entities.");
    of.def("diff", &Diff, "other"_a, py::kw_only(), "tolerance"_a = 0.0, "floor"_a = 0.0,
           "The differences to another model.");
    of.def("extract", &Extract, "bodies"_a, py::kw_only(), "reach"_a = 0,
           "families"_a = py::tuple(),
           "The part around some bodies as a model, and the links that were cut.");
    of.def("__copy__", &Clone);
    of.def(
        "__deepcopy__",
        [](const State& self, const py::dict& memo) {
            const py::object copy = py::cast(Clone(self));
            memo[py::int_(reinterpret_cast<std::size_t>(py::cast(self).ptr()))] = copy;
            return copy;
        });
    of.def(
        "__reduce__",
        [](const State& self) {
            return py::make_tuple(py::module_::import("karmp").attr("_model"),
                                  py::make_tuple(Text(self, py::none(), true)));
        });
    of.def_property_readonly(
        "findings", [](const State& self) { return ToPython(self->findings); },
        "The warnings of loading the model.");
}

} // namespace karmp::python

// The extension module karmp._karmp, and documents: loading, saving, checking, copies, pictures.
#include "Calls.h"
#include "GraphText.h"
#include "KARTextConversion.h"
#include "ViewJson.h"
#include "ViewPage.h"
#include "ViewScene.h"

namespace karmp::python {

namespace {

using Path = std::filesystem::path;
using Text = std::string;

State NewModel(const py::args& given)
{
    const model::ModelOptions options{Taken<KARMathVector>(given[1]), Taken<double>(given[2]),
                                      Taken<double>(given[3])};
    const auto made = std::make_shared<ModelState>(Model(Taken<Text>(given[0]), options));
    return Do(*made, "Model", [&] { return made; });
}

py::object Differences(ModelState& first, ModelState& second, double tolerance, double floor)
{
    const auto found = [&] {
        const Exclusive exclusive(first, second);
        return first.model.Diff(second.model, {.tolerance = tolerance, .floor = floor});
    }();
    py::list list;
    const auto type = OfPackage("Difference");
    for (const documents::Difference& one : found) {
        const bool isGained = one.kind == documents::DifferenceKind::LinkGained;
        list.append(
            type(py::make_tuple(documents::DifferenceText(one.kind), ToText(one.item),
                                one.before ? Wrap(one.before, first) : Wrap(one.after, second),
                                Give(one.oldValue, &first), Give(one.newValue, &second),
                                Wrap(one.target, isGained ? second : first))));
    }
    return list;
}

} // namespace

void BindDocuments(py::module_& module)
{
    Bind(
        module, "load", +[](Path path) {
            const py::gil_scoped_release release;
            return model::Load(path);
        });
    Bind(
        module, "loads", +[](std::vector<unsigned char> text, Text name) {
            const py::gil_scoped_release release;
            return model::LoadText(Text(text.begin(), text.end()), name);
        });
    Bind(
        module, "check", +[](Path path) {
            const py::gil_scoped_release release;
            return documents::CheckFile(path);
        });
    Bind(module, "save", &Model::Save);
    Bind(module, "text", &Model::Text);
    Bind(
        module, "check_model", +[](const Model& m) { return m.Check(); });
    Bind(module, "clone", &Model::Clone);
    Bind(module, "extract", &Model::Extract);
    Bind(
        module, "findings", +[](ModelState& self) { return self.findings; });
    Bind(module, "diff", &Differences);
    // Pictures, as the tool makes them of a document.
    Bind(
        module, "graph_text",
        +[](ModelState& self, Text title) {
            tool::GraphContents contents;
            contents.title = title;
            return tool::GraphText(*self.model.World(), contents);
        });
    Bind(
        module, "view_page", +[](ModelState& self, Text title) {
            return tool::ViewPage(tool::SceneJson(tool::CollectScene(*self.model.World(), title)));
        });
}

} // namespace karmp::python

PYBIND11_MODULE(_karmp, module)
{
    using namespace karmp::python;
    module.doc() = "The extension module of the package karmp.";
    BindClasses(module);
    py::class_<ModelState, State>(module, "Model",
                                  "A mechanism: a world, and the calls that build and edit it.")
        .def(py::init(&NewModel));
    BindDocuments(module);
    BindItems(module);
    BindEdits(module);
}

// Pictures of a model, as the tool makes them of a document.
#include "Bindings.h"
#include "GraphText.h"
#include "KARMPWorld.h"
#include "ViewJson.h"
#include "ViewPage.h"
#include "ViewScene.h"

namespace karmp::python {

void BindPictures(py::module_& module)
{
    module.def("_graph_text", [](const State& model, const std::string& title) {
        CheckFree(*model);
        tool::GraphContents contents;
        contents.title = title;
        return ToText(std::string_view(tool::GraphText(*model->model.World(), contents)));
    });
    module.def("_view_page", [](const State& model, const std::string& title) {
        CheckFree(*model);
        const auto scene = tool::CollectScene(*model->model.World(), title);
        return ToText(std::string_view(tool::ViewPage(tool::SceneJson(scene))));
    });
}

} // namespace karmp::python

// The extension module karmp._karmp.
#include "Arguments.h"
#include "GraphText.h"
#include "ViewJson.h"
#include "ViewPage.h"
#include "ViewScene.h"

#include <array>

namespace karmp::python {

namespace {

// What an item is in Python.
const char* KindOf(const ItemInfo& item)
{
    static constexpr std::array names{"group",     "number",     "integer", "flag",   "text",
                                      "word",      "word",       "vector",  "vector", "optional",
                                      "reference", "references", "records", "stream"};
    if (item.isFlag)
        return "flag";
    return item.shape != NumberShape::Vector ? "matrix"
                                             : names[static_cast<std::size_t>(item.kind)];
}

// What stubs, reference pages and tests are made from.
py::dict Described(const ItemInfo& item, const std::string& name, const std::string& doc)
{
    py::list words;
    if (item.kind == ItemKind::Word || item.kind == ItemKind::Code)
        for (const std::wstring_view word : item.words)
            words.append(ToText(word));
    py::list fields;
    for (const ItemInfo& field : item.fields)
        fields.append(Described(field, SnakeCase(field.path), std::string(field.says)));
    const NumberArray sample(item.shape, std::vector<double>(item.numberCount));
    return py::dict("name"_a = name, "kind"_a = KindOf(item), "doc"_a = ToText(doc),
                    "words"_a = py::tuple(words), "fields"_a = py::tuple(fields),
                    "rows"_a = sample.Rows(),
                    "is_transformation"_a = item.kind == ItemKind::Transformation,
                    "target"_a = ClassNameOf(item.target), "read_only"_a = ToText(item.readOnly),
                    "can_get"_a = item.CanGet(), "is_in_order"_a = item.isInOrder);
}

Typed<"list[dict[str, Any]]", py::list> Items(bool isOwn)
{
    py::list rows;
    for (const auto& of : Types().classes) {
        const auto base = Types().byInfo.find(of->info->getParent());
        const bool hasBase = isOwn && base != Types().byInfo.end();
        for (Property* const property : of->properties) {
            if (hasBase && std::ranges::count(base->second->properties, property) > 0)
                continue;
            py::dict row = Described(*property->item, property->name, property->doc);
            row["class"] = of->name;
            rows.append(row);
        }
    }
    return rows;
}

// Pictures of a model, as the tool makes them of a document.
py::str GraphOf(ModelState& model, Text title)
{
    tool::GraphContents contents;
    contents.title = title;
    return ToText(tool::GraphText(*model.model.World(), contents));
}

py::str PageOf(ModelState& model, Text title)
{
    return ToText(tool::ViewPage(tool::SceneJson(tool::CollectScene(*model.model.World(), title))));
}

} // namespace

} // namespace karmp::python

PYBIND11_MODULE(_karmp, module)
{
    using namespace karmp::python;
    module.doc() = "The extension module of the package karmp.";
    BindEntities(module);
    ModelClass model(module, "Model",
                     "A mechanism: a world, and the calls that build and edit it.");
    BindDocuments(module, model);
    BindModel(module, model);
    BindFamilies(module, model);
    BindItems(module, model);
    module.def("_graph_text", &GraphOf);
    module.def("_view_page", &PageOf);
    module.def("_items", &Items, "own"_a = true,
               "The items of each class as dictionaries, with or without those of its bases.");
}

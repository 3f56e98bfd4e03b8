// The extension module karmp._karmp.
#include "Bindings.h"
#include <algorithm>

namespace karmp::python {

namespace {

const char* KindName(const ItemInfo& item)
{
    switch (item.kind) {
    case ItemKind::Number:
        return "number";
    case ItemKind::Integer:
        return "integer";
    case ItemKind::Flag:
        return "flag";
    case ItemKind::Text:
        return "text";
    case ItemKind::Word:
    case ItemKind::Code:
        return item.isFlag ? "flag" : "word";
    case ItemKind::Numbers:
    case ItemKind::Transformation:
        return item.shape == NumberShape::Vector ? "vector" : "matrix";
    case ItemKind::OptionalNumber:
        return "optional";
    case ItemKind::Reference:
        return "reference";
    case ItemKind::References:
        return "references";
    case ItemKind::Records:
        return "records";
    case ItemKind::Stream:
        return "stream";
    default:
        return "group";
    }
}

py::dict Described(const ItemInfo& item, const std::string& name, const std::string& doc)
{
    py::list words;
    if (item.kind == ItemKind::Word || item.kind == ItemKind::Code)
        for (const std::wstring_view word : item.words)
            words.append(ToText(word));
    py::list fields;
    for (const ItemInfo& field : item.fields)
        fields.append(Described(field, SnakeCase(field.path), std::string(field.says)));
    using py::literals::operator""_a;
    const std::size_t rows =
        item.shape == NumberShape::Vector
            ? item.numberCount
            : NumberArray(item.shape, std::vector<double>(item.numberCount)).Rows();
    return py::dict("name"_a = name, "item"_a = ToText(item.path), "kind"_a = KindName(item),
                    "doc"_a = ToText(doc), "words"_a = py::tuple(words),
                    "fields"_a = py::tuple(fields), "rows"_a = rows,
                    "is_transformation"_a = item.kind == ItemKind::Transformation,
                    "target"_a = ClassNameOf(item.target), "read_only"_a = ToText(item.readOnly),
                    "can_get"_a = item.CanGet(), "is_read_back"_a = item.isReadBack,
                    "is_in_order"_a = item.isInOrder);
}

// The package is where users find the classes and functions.
void MoveToPackage(py::module_& module)
{
    const py::object own = module.attr("__name__");
    for (const auto& [name, value] : py::dict(module.attr("__dict__")))
        if (py::hasattr(value, "__module__") && own.equal(value.attr("__module__")))
            py::setattr(value, "__module__", py::str("karmp"));
}

// What stubs, reference pages and tests are made from.
py::list Items(bool isOwn)
{
    py::list rows;
    for (const auto& of : Types().classes) {
        const QOBClassInfo* const parent = of->info->getParent();
        const auto base = Types().byInfo.find(parent);
        const bool hasBase = isOwn && base != Types().byInfo.end();
        for (Property* const held : of->properties) {
            const Property& property = *held;
            if (hasBase && std::ranges::count(base->second->properties, held) > 0)
                continue;
            py::dict row = Described(*property.item, property.name, property.doc);
            row["class"] = of->name;
            rows.append(row);
        }
    }
    return rows;
}

} // namespace

} // namespace karmp::python

PYBIND11_MODULE(_karmp, module)
{
    using namespace karmp::python;
    module.doc() = "The extension module of the package karmp.";
    BindErrors(module);
    BindEntities(module);
    BindLinks(module);
    BindDocuments(module);
    ModelClass model(module, "Model",
                     "A mechanism: a world, and the calls that build and edit it.");
    BindModel(model);
    BindFamilies(module, model);
    BindBuilding(module, model);
    BindModelDocuments(module, model);
    BindColumns(model);
    BindPictures(module);
    MoveToPackage(module);
    module.def(
        "_item_names",
        [](const py::object& type) {
            py::list names;
            for (const Property* const property : ClassOf(type).properties)
                names.append(property->name);
            return names;
        },
        "The items of a class, in the order of documents.");
    module.def("_items", &Items, py::arg("own") = true,
               "The items of each class as dictionaries, with or without those of its bases.");
}

// The entities of a model by class, found by identifier or name.
#include "Arguments.h"
#include "KARMPNearestWord.h"
#include "KARTextConversion.h"

namespace karmp::python {

std::string NearText(const std::wstring& text, const std::vector<std::wstring>& names)
{
    const auto near = NearestWord(text, {names.begin(), names.end()});
    return near.empty() ? "" : "; near: \"" + kar::ToUtf8(near) + '"';
}

std::vector<Entity> AllOf(ModelState& state, const EntityClass& of)
{
    std::vector<Entity> entities;
    const auto take = [&]<class T>(const T*) {
        const bool isWhole = of.info == &T::ClassInfo();
        for (const Ref<T>& entity : state.model.All<T>())
            if (isWhole || entity->isDerivedFrom(*of.info))
                entities.emplace_back(entity.Handle());
    };
    bool isOfFamily = false;
    ForEachRegistryElement([&]<class T>(const RegistryElement<T>&) {
        if (!isOfFamily && of.info->isDerivedFrom(T::ClassInfo())) {
            isOfFamily = true;
            take(static_cast<const T*>(nullptr));
        }
    });
    if (!isOfFamily)
        take(static_cast<const KARMPEntity*>(nullptr));
    return entities;
}

void BindFamilies(py::module_& module, ModelClass& of)
{
    using All = Typed<"list[_E]", py::list>;
    // What collections of entities are made of.
    of.def(
        "_all", [](ModelState& self,
                   Kind<KARMPEntity> cls) { return All(WrapAll(AllOf(self, *cls.of), self)); });
    of.def(
        "_count",
        [](ModelState& self, Kind<KARMPEntity> cls) { return AllOf(self, *cls.of).size(); });
    of.def("_find", [](ModelState& self, Text key) {
        return Typed<"Entity | None">(Wrap(self.model.Find<KARMPEntity>(key).Handle(), self));
    });
    module.def("_near", [](Text text, Each<Text> names) {
        std::vector<std::wstring> wide;
        for (const Text& name : names)
            wide.push_back(kar::ToWide(name));
        return ToText(NearText(kar::ToWide(text), wide));
    });
    py::dict families;
    ForEachRegistryElement([&]<class T>(const RegistryElement<T>& element) {
        if (const auto known = Types().byInfo.find(&T::ClassInfo()); known != Types().byInfo.end())
            families[SnakeCase(element.name).c_str()] = TypeOf(*known->second);
    });
    module.attr("_families") = families;
}

} // namespace karmp::python

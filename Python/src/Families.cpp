// The entities of a model by class, found by identifier or name.
#include "Arguments.h"
#include "KARMPNearestWord.h"
#include "KARTextConversion.h"

namespace karmp::python {

namespace {

// Those with a name.
std::vector<Entity> Named(const std::vector<Entity>& entities, const std::wstring& name)
{
    std::vector<Entity> named;
    for (const Entity& entity : entities)
        if (entity->getEntityName() == name)
            named.push_back(entity);
    return named;
}

Entity Find(ModelState& state, const EntityClass& of, const Text& key)
{
    CheckFree(state);
    const auto found = state.model.Find<KARMPEntity>(key);
    if (found && found->isDerivedFrom(*of.info))
        return found.Handle();
    // Of several with the name one may be of the class.
    const auto named = Named(AllOf(state, of), kar::ToWide(key));
    return named.size() == 1 ? named.front() : Entity();
}

// Why there is no entity of a key.
std::string WhyNone(ModelState& state, const EntityClass& of, const Text& key)
{
    const std::vector<Entity> all = AllOf(state, of);
    const std::wstring wide = kar::ToWide(key);
    if (const std::size_t count = Named(all, wide).size(); count > 1)
        return "there are " + std::to_string(count) + ' ' + of.name + " of the name \"" + key + '"';
    std::vector<std::wstring> names(all.size());
    for (std::size_t i = 0; i < all.size(); ++i)
        all[i]->GetIdentifier(names[i]);
    for (const Entity& entity : all)
        names.push_back(entity->getEntityName());
    return "there is no " + of.name + " \"" + key + '"' + NearText(wide, names);
}

} // namespace

std::string NearText(const std::wstring& text, const std::vector<std::wstring>& names)
{
    const auto near = NearestWord(text, {names.begin(), names.end()});
    return near.empty() ? "" : "; near: \"" + kar::ToUtf8(near) + '"';
}

std::vector<Entity> AllOf(ModelState& state, const EntityClass& of)
{
    CheckFree(state);
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
    using Any = Kind<KARMPEntity>;
    // What collections of entities are made of.
    of.def(
        "_all", [](ModelState & self, Any cls) -> Typed<"list[_E]", py::list> {
            return WrapAll(AllOf(self, *cls.of), self);
        });
    of.def(
        "_count", [](ModelState& self, Any cls) { return AllOf(self, *cls.of).size(); });
    of.def(
        "_find", [](ModelState & self, Any cls, Text key) -> Typed<"_E | None"> {
            return Wrap(Find(self, *cls.of, key), self);
        });
    of.def("_why_none",
           [](ModelState& self, Any cls, Text key) { return ToText(WhyNone(self, *cls.of, key)); });
    py::dict families;
    ForEachRegistryElement([&]<class T>(const RegistryElement<T>& element) {
        if (const auto known = Types().byInfo.find(&T::ClassInfo()); known != Types().byInfo.end())
            families[SnakeCase(element.name).c_str()] = TypeOf(*known->second);
    });
    module.attr("_families") = families;
}

} // namespace karmp::python

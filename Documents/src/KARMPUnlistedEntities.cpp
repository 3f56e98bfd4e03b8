#include "KARMPUnlistedEntities.h"

#include "KARMPDocumentPath.h"
#include "KARMPFamilies.h"
#include "KARMPGenericFactory.h"
#include "KARMPListedEntities.h"
#include "KARMPNodeQueries.h"
#include "KARMPSerializationServices.h"
#include "KARMPSilentListener.h"
#include "KARMPTextEscapes.h"

#include <map>

namespace karmp::documents {

namespace {

// False for an element that no class belongs to, of which no entity is made.
bool IsOfUnlistedClass(std::wstring_view element)
{
    QOBSharedHandle<KARMPEntity> sample;
    const std::string className = KARMPSerializationServices::to_type(element);
    return !KARFailed(KARMPFactory::Create(className, sample)) && !IsFiled(sample->getClassInfo());
}

UnlistedEntity Describe(const KARMPDocumentReader& node, std::string path, const std::string& file)
{
    UnlistedEntity unlisted;
    std::wstring name;
    if (node.HasAttribute(L"name"))
        node.GetAttribute(L"name", name);
    if (node.HasAttribute(L"id"))
        node.GetAttribute(L"id", unlisted.identifier);
    unlisted.message = {
        Severity::Warning,
        Code::NotReadBack,
        file,
        node.Line(),
        node.Column(),
        std::move(path),
        TitleOf(node.Id(), name, unlisted.identifier) +
            " is read, but the world does not list it, so that its document lacks it"};
    return unlisted;
}

} // namespace

std::vector<UnlistedEntity> FindUnlisted(const Document& document)
{
    std::vector<UnlistedEntity> found;
    const KARMPDeserializer* const world = First(*document.Root(), L"World");
    if (world == nullptr)
        return found;
    const SilentListener listener; // of classes that are unknown
    std::map<std::wstring, bool, std::less<>> isUnlisted;
    for (const FamilyRecord& family : FamilyRecords()) {
        const KARMPDeserializer* const registry = First(*world, family.element);
        if (registry == nullptr)
            continue;
        KARMPDeserializer::ElementVector entities;
        registry->AppendOrderedElements(entities);
        std::map<std::wstring_view, std::size_t> counts;
        for (const KARMPDeserializer* const entity : entities) {
            auto known = isUnlisted.find(entity->Id());
            if (known == isUnlisted.end())
                known = isUnlisted.emplace(entity->Id(), IsOfUnlistedClass(entity->Id())).first;
            if (!known->second)
                continue;
            std::string path = PathText({document.Root(), world, registry}) + '/';
            AppendUtf8(path, entity->Id());
            const std::size_t number = ++counts[entity->Id()];
            if (registry->ElementsNamed(entity->Id()).size() > 1)
                path += '[' + std::to_string(number) + ']';
            found.push_back(Describe(NodeOf(*entity), std::move(path), document.Name()));
        }
    }
    return found;
}

} // namespace karmp::documents

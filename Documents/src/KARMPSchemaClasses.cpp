#include "KARMPSchemaClasses.h"

#include "KARMPEntities.h"

#include <algorithm>

namespace karmp::documents {

bool EntityClass::IsA(std::string_view className) const
{
    return name == className || HasClass(bases, className);
}

bool HasClass(const std::vector<std::string>& lineage, std::string_view className)
{
    return std::find(lineage.begin(), lineage.end(), className) != lineage.end();
}

std::vector<std::string> LineageOf(const KARMPEntity& entity)
{
    std::vector<std::string> lineage;
    for (const QOBClassInfo* info = &entity.getClassInfo(); info != nullptr;
         info = info->getParent())
        lineage.push_back(info->getName());
    Families::ForEach([&](auto family) {
        using T = typename decltype(family)::Type;
        const bool isListed =
            std::find(lineage.begin(), lineage.end(), T::ClassName()) != lineage.end();
        if (!isListed && dynamic_cast<const T*>(&entity) != nullptr)
            lineage.insert(lineage.begin() + 1, T::ClassName());
    });
    return lineage;
}

ElementClass ClassOfElement(std::wstring_view element)
{
    ElementClass found;
    const std::string name = KARMPSerializationServices::to_type(element);
    const std::vector<std::string> names = KARMPFactory::GetClassNames();
    QOBSharedHandle<KARMPEntity> sample;
    if (std::find(names.begin(), names.end(), name) != names.end() &&
        !KARFailed(KARMPFactory::Create(name, sample)) && sample) {
        found.lineage = LineageOf(*sample);
        found.item = SchemaOf(name);
    }
    return found;
}

std::vector<EntityClass> EntityClasses()
{
    std::vector<EntityClass> classes;
    for (const std::string& name : KARMPFactory::GetClassNames()) {
        const SchemaItem* const item = SchemaOf(name);
        QOBSharedHandle<KARMPEntity> sample;
        if (item == nullptr || item->name.empty() || KARFailed(KARMPFactory::Create(name, sample)))
            continue;
        std::vector<std::string> bases = LineageOf(*sample);
        bases.erase(bases.begin());
        classes.push_back({name, std::move(bases), item});
    }
    return classes;
}

std::string Escaped(std::string_view text)
{
    std::string escaped;
    for (const char character : text) {
        switch (character) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += character;
        }
    }
    return escaped;
}

Order OrderOf(const std::vector<const SchemaItem*>& elements)
{
    const bool repeats = std::any_of(elements.begin(), elements.end(), [](const SchemaItem* item) {
        return item->repeats || item->anyName;
    });
    if (!repeats)
        return Order::Once;
    return elements.size() == 1 ? Order::Entries : Order::Repeating;
}

std::vector<const SchemaItem*> ItemsAt(const std::vector<SchemaItem>& items,
                                       std::wstring_view version)
{
    std::vector<const SchemaItem*> applying;
    for (const SchemaItem& item : items)
        if (item.Applies(version))
            applying.push_back(&item);
    return applying;
}

} // namespace karmp::documents

#include "KARMPDocumentSchema.h"

#include "KARMPDocumentNames.h"
#include "KARMPFamilies.h"
#include "QOBClassInfo.h"

#include <algorithm>

namespace karmp::documents {

namespace {

SchemaItem Make(std::wstring_view name, ItemKind kind, std::string_view says,
                ItemPresence presence = ItemPresence::Reported)
{
    SchemaItem item;
    item.name = name;
    item.kind = kind;
    item.says = says;
    item.presence = presence;
    return item;
}

SchemaItem Numbers(std::wstring_view name, const std::vector<std::wstring_view>& names,
                   std::string_view says, KARMPPhysicalQuantity::Enum quantity)
{
    SchemaItem group = Make(name, ItemKind::Group, says);
    for (const std::wstring_view component : names) {
        group.elements.push_back(Make(component, ItemKind::Number, says));
        group.elements.back().quantity = quantity;
    }
    return group;
}

SchemaItem Global(std::wstring_view name, std::string_view target, std::string_view says)
{
    SchemaItem item = Make(name, ItemKind::Reference, says);
    item.target = target;
    item.attributes = {
        Make(L"id", ItemKind::Text, "The identifier of the entity.", ItemPresence::Required),
        Make(L"name", ItemKind::Text, "The entity's name, for people.", ItemPresence::Optional)};
    return item;
}

// All of it is always written. The library keeps what it has where an item is missing, in silence.
SchemaItem MakeWorldItem()
{
    SchemaItem world =
        Make(L"World", ItemKind::Group, "A mechanism and its settings.", ItemPresence::Required);
    world.attributes = {
        Make(L"linear_tolerance", ItemKind::Number, "Lengths that differ by less are the same."),
        Make(L"angular_tolerance", ItemKind::Number, "Angles that differ by less are the same.")};
    world.attributes[0].quantity = KARMPPhysicalQuantity::Length;
    world.attributes[1].quantity = KARMPPhysicalQuantity::Angle;
    SchemaItem globals =
        Make(L"Globals", ItemKind::Group, "The entities that every world has of itself.");
    globals.elements = {Global(L"GlobalBody", "KARMPBody", "The body that stands still."),
                        Global(L"GlobalAxisSystem", "KARMPAxisSystem", "The axes of the world."),
                        Global(L"GlobalTime", "KARMPVariable", "The time of the simulation.")};
    world.elements = {Numbers(L"Origin", {L"Ox", L"Oy", L"Oz"}, "The middle of the world.",
                              KARMPPhysicalQuantity::Length),
                      Numbers(L"Size", {L"SizeX", L"SizeY", L"SizeZ"}, "How far the world reaches.",
                              KARMPPhysicalQuantity::Length),
                      Numbers(L"Gravity", {L"Gx", L"Gy", L"Gz"}, "The acceleration by gravity.",
                              KARMPPhysicalQuantity::Acceleration),
                      globals};
    for (const Family& family : Families())
        world.elements.push_back(Make(family.element, ItemKind::Group, "The entities of a family.",
                                      ItemPresence::Optional));
    return world;
}

} // namespace

const std::vector<Family>& Families()
{
    static const std::vector<Family> families = [] {
        std::vector<Family> made;
        for (const FamilyRecord& record : FamilyRecords())
            made.push_back({record.element, record.info->getName()});
        return made;
    }();
    return families;
}

const Family* FamilyOf(const SchemaItem& item)
{
    const auto found =
        std::find_if(Families().begin(), Families().end(),
                     [&item](const Family& family) { return family.element == item.name; });
    return item.kind == ItemKind::Group && found != Families().end() ? &*found : nullptr;
}

const SchemaItem& RootItem()
{
    static const SchemaItem root = [] {
        SchemaItem item = Make(WideRootName, ItemKind::Group, "A document.");
        item.attributes = {Make(VersionName, ItemKind::Text, "The version of the document.")};
        item.elements.push_back(MakeWorldItem());
        return item;
    }();
    return root;
}

} // namespace karmp::documents

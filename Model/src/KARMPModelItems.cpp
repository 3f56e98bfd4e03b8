// Items by their names.
#include "KARMPModel.h"
#include "KARMPModelCore.h"
#include "KARMPModelNames.h"
#include "KARTextConversion.h"

#include <string>
#include <vector>

namespace karmp::model {

namespace {

// The sentence for an item that a class does not have.
std::string NoItem(const KARMPEntity& entity, std::string_view item)
{
    std::vector<std::string> names;
    for (const ItemInfo& info : ItemsOf(entity.getClassInfo())) {
        names.push_back(kar::ToUtf8(info.path));
        names.push_back(kar::ToUtf8(info.name));
    }
    const std::string nearest = NearestName(item, names);
    return TitleOf(entity) + " has no item \"" + std::string(item) + '"' +
           (nearest.empty() || nearest == item ? std::string() : "; near: \"" + nearest + '"');
}

const ItemInfo* ItemOf(const KARMPEntity& entity, std::string_view item)
{
    return FindItem(entity.getClassInfo(), kar::ToWide(item));
}

} // namespace

std::span<const ItemInfo> Model::Items(const Ref<KARMPEntity>& entity)
{
    return entity ? ItemsOf(entity->getClassInfo()) : std::span<const ItemInfo>();
}

Result<Value> Model::Get(const Ref<KARMPEntity>& entity, std::string_view item, Where where) const
{
    if (!entity)
        return Outcome(Problem{"there is no entity", KARFailure, where});
    if (const ItemInfo* const info = ItemOf(*entity, item))
        return info->Get(*entity);
    return Outcome(Problem{NoItem(*entity, item), KARFailure, where});
}

bool Model::Set(const Ref<KARMPEntity>& entity, std::string_view item, const Value& value,
                Where where)
{
    return m_core->Perform(
        where,
        [&](Edit& edit) {
            if (!edit.IsThere(entity.Handle(), "entity to change"))
                return false;
            const ItemInfo* const info = ItemOf(*entity, item);
            return info != nullptr ? edit.Set(entity.Handle(), *info, value)
                                   : edit.Fail(NoItem(*entity, item));
        });
}

} // namespace karmp::model

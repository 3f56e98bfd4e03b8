// What tests of edits look at.
#pragma once

#include "KARMPModelLinks.h"
#include "ModelTesting.h"

#include <string>
#include <vector>

namespace karmp::model {

/// The references that are not as they should be, a line each: to entities that are deleted or not
/// listed, and links that the other end does not have.
inline std::string BrokenLinks(const Model& model)
{
    std::string text;
    const auto all = model.All<KARMPEntity>();
    const auto isListed = [&all](const QOBSharedHandle<KARMPEntity>& entity) {
        return std::any_of(
            all.begin(), all.end(),
            [&entity](const Ref<KARMPEntity>& listed) { return listed.Handle() == entity; });
    };
    const auto note = [&text](const KARMPEntity& entity, const ItemInfo& item, const char* what) {
        text += entity.getClassName() + " " + kar::ToUtf8(entity.getEntityName()) + " " +
                kar::ToUtf8(item.path) + what + '\n';
    };
    for (const Ref<KARMPEntity>& entity : all) {
        for (const ItemInfo* const item : LinkItemsOf(entity->getClassInfo())) {
            for (const auto& target : TargetsOf(*item, *entity)) {
                if (target->isOrphaned() || !isListed(target)) {
                    note(*entity, *item, " refers to a deleted entity");
                    continue;
                }
                bool mustReturn = false;
                bool isReturned = false;
                for (const LinkPair& pair :
                     PairsBetween(entity->getClassInfo(), target->getClassInfo())) {
                    if (pair.first != item || pair.second == nullptr)
                        continue;
                    mustReturn = true;
                    isReturned = isReturned || Holds(*pair.second, *target, entity.Handle());
                }
                if (mustReturn && !isReturned)
                    note(*entity, *item, " is not returned");
            }
        }
    }
    return text;
}

} // namespace karmp::model

#include "KARMPModelEdit.h"

#include "KARMPHalfLinks.h"
#include "KARMPModelCore.h"
#include "KARMPModelNames.h"
#include "KARTextConversion.h"

#include <algorithm>
#include <utility>

namespace karmp::model {

Edit::~Edit()
{
    while (!m_log.empty()) {
        Undo(m_log.back());
        m_log.pop_back();
    }
}

void Edit::Undo(EditStep& step)
{
    switch (step.kind) {
    case EditStep::Kind::Nothing:
        break;
    case EditStep::Kind::Filed:
        m_core.Unfile(Entity(step.entity), *step.family);
        break;
    case EditStep::Kind::Linked:
        step.half->unlink(*step.entity, Entity(step.target));
        break;
    case EditStep::Kind::Unlinked:
        step.half->link(*step.entity, Entity(step.target), step.word);
        break;
    case EditStep::Kind::Renamed:
        step.entity->setEntityName(*step.name);
        break;
    }
}

// Allocates before anything is done, so that what is done can be noted.
EditStep& Edit::NextStep()
{
    return m_log.emplace_back();
}

bool Edit::Fail(std::string text, KARStatus status)
{
    if (!m_reason)
        m_reason = Problem{std::move(text), status, {"", 0}};
    return false;
}

bool Edit::Check(KARStatus status, std::string_view what, const KARMPEntity& entity)
{
    return !KARFailed(status) ||
           Fail(std::string(what) + " of " + TitleOf(entity) + " failed", status);
}

bool Edit::IsThere(const QOBSharedBase& entity, std::string_view role)
{
    const QOBSharedObject* const object = entity._getReferent();
    if (object == nullptr)
        return Fail("there is no " + std::string(role));
    return !object->isOrphaned() || Fail("the " + std::string(role) + " was deleted");
}

Edit::Entity Edit::Create(const QOBClassInfo& info, std::string_view identifier)
{
    if (identifier.empty()) {
        Fail("a " + info.getName() + " needs an identifier");
        return {};
    }
    const std::size_t hash = EntityIndex::HashOf(identifier);
    if (const KARMPEntity* const other = m_core.FindByIdentifier(identifier, hash)) {
        Fail('"' + std::string(identifier) + "\" is the identifier of " + TitleOf(*other));
        return {};
    }
    const FamilyOperations* family = nullptr;
    Entity entity = m_core.Create(info, family);
    if (!entity || family == nullptr) {
        Fail(entity ? "a world lists no " + info.getName()
                    : "a " + info.getName() + " cannot be made");
        return {};
    }
    const std::wstring wide = Wide(identifier);
    entity->setEntityName(wide);
    EditStep& step = NextStep();
    if (!Check(entity->SetIdentifier(wide), "the identifier", *entity))
        return {};
    m_core.Index(entity, hash);
    step.kind = EditStep::Kind::Filed;
    step.entity = entity.get();
    step.family = family;
    return Check(m_core.File(entity, *family), "the filing", *entity) ? entity : Entity();
}

bool Edit::LinkHalf(const HalfLink& half, const Entity& owner, const Entity& target, int word)
{
    if (half.held != nullptr) {
        const Entity held = half.held(*owner);
        if (held == target)
            return true;
        if (held)
            return Fail(TitleOf(*owner) + " is linked to " + TitleOf(*held) + " already, by its " +
                        kar::ToUtf8(half.item));
    }
    EditStep& step = NextStep();
    const KARStatus status = half.link(*owner, target, word);
    if (status != KARSuccess) {
        m_log.pop_back();
        return !KARFailed(status) ||
               Fail("linking " + TitleOf(*owner) + " to " + TitleOf(*target) + " failed", status);
    }
    step.kind = EditStep::Kind::Linked;
    step.half = &half;
    step.entity = owner.get();
    step.target = target.get();
    return true;
}

bool Edit::UnlinkHalf(const HalfLink& half, const Entity& owner, const Entity& target,
                      bool& wasLinked)
{
    EditStep& step = NextStep();
    step.half = &half;
    step.entity = owner.get();
    step.target = target.get();
    if (half.wordOf != nullptr)
        step.word = half.wordOf(*owner, target);
    step.kind = EditStep::Kind::Unlinked;
    const KARStatus status = half.unlink(*owner, target);
    wasLinked = wasLinked || status == KARSuccess;
    if (status != KARSuccess)
        m_log.pop_back();
    return !KARFailed(status) ||
           Fail("unlinking " + TitleOf(*owner) + " from " + TitleOf(*target) + " failed", status);
}

bool Edit::Link(const Entity& first, const Entity& second, std::string_view item, int word)
{
    if (!IsThere(first, "first entity to link") || !IsThere(second, "second entity to link"))
        return false;
    const std::wstring wide = Wide(item);
    const LinkPair* chosen = nullptr;
    // Of several single links, as those of a connector, the first one that is free.
    for (const LinkPair& pair : PairsBetween(first->getClassInfo(), second->getClassInfo())) {
        if (!item.empty() && pair.first->item != wide && pair.second->item != wide)
            continue;
        const bool isFree =
            pair.first->IsFreeFor(*first, second) && pair.second->IsFreeFor(*second, first);
        if (isFree || chosen == nullptr)
            chosen = &pair;
        if (isFree)
            break;
    }
    if (chosen == nullptr)
        return Fail(TitleOf(*first) + " and " + TitleOf(*second) + " have no link" +
                    (item.empty() ? std::string() : " \"" + std::string(item) + '"'));
    return LinkHalf(*chosen->first, first, second, word) &&
           LinkHalf(*chosen->second, second, first, word);
}

bool Edit::Unlink(const Entity& first, const Entity& second, std::string_view item)
{
    if (!IsThere(first, "first entity to unlink") || !IsThere(second, "second entity to unlink"))
        return false;
    const std::wstring wide = Wide(item);
    bool any = false;
    for (const LinkPair& pair : PairsBetween(first->getClassInfo(), second->getClassInfo())) {
        if (!item.empty() && pair.first->item != wide && pair.second->item != wide)
            continue;
        // What may refuse comes first: what follows need not be restored then, in its order.
        if (!UnlinkHalf(pair.second->mayRefuse ? *pair.second : *pair.first,
                        pair.second->mayRefuse ? second : first,
                        pair.second->mayRefuse ? first : second, any) ||
            !UnlinkHalf(pair.second->mayRefuse ? *pair.first : *pair.second,
                        pair.second->mayRefuse ? first : second,
                        pair.second->mayRefuse ? second : first, any))
            return false;
    }
    return any || Fail(TitleOf(*first) + " and " + TitleOf(*second) + " are not linked");
}

bool Edit::Rename(const Entity& entity, std::string_view name)
{
    if (!IsThere(entity, "entity to rename"))
        return false;
    if (name.empty())
        return Fail(TitleOf(*entity) + " needs a name");
    EditStep& step = NextStep();
    step.kind = EditStep::Kind::Renamed;
    step.entity = entity.get();
    step.name = std::make_unique<std::wstring>(entity->getEntityName());
    entity->setEntityName(Wide(name));
    return true;
}

} // namespace karmp::model

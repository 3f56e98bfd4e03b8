#include "KARMPModelEdit.h"

#include "KARMPModelCore.h"
#include "KARMPModelLinks.h"
#include "KARMPModelNames.h"
#include "KARTextConversion.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <variant>
#include <vector>

namespace karmp::model {

namespace {

// What an entity is made of knows it as its parent.
bool HasOtherParent(const KARMPEntity& element, const KARMPEntity& owner)
{
    Edit::Entity parent;
    return !KARFailed(element.GetParentEntity(parent)) && parent && parent.get() != &owner;
}

void NameEntity(KARMPEntity& entity, std::string_view name, bool isAscii)
{
    if (isAscii)
        entity.setNarrowName(name);
    else
        entity.setEntityName(kar::ToWide(name));
}

} // namespace

void Edit::UndoAll()
{
    while (m_log.size() > m_begin) {
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
        m_core.Unfile(Entity(step.entity), step.family);
        break;
    case EditStep::Kind::Linked:
        step.item->RemoveTarget(*step.entity, Entity(step.target));
        break;
    case EditStep::Kind::Unlinked:
        step.item->AddTarget(*step.entity, Entity(step.target));
        break;
    case EditStep::Kind::Shortened:
        RestoreList(*step.item, *step.entity, std::get<std::vector<Entity>>(step.former->value),
                    step.former->words);
        break;
    case EditStep::Kind::Set:
        // A value that is none, and cannot be unset, stays.
        if (step.item->Takes(step.former->value))
            static_cast<void>(step.item->Set(*step.entity, step.former->value));
        break;
    case EditStep::Kind::Renamed:
        step.entity->setEntityName(step.former->name);
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

bool Edit::FailCheck(KARStatus status, std::string_view what, const KARMPEntity& entity)
{
    return Fail(std::string(what) + " of " + TitleOf(entity) + " failed", status);
}

bool Edit::IsThere(const QOBSharedBase& entity, std::string_view role)
{
    const QOBSharedObject* const object = entity._getReferent();
    if (object == nullptr)
        return Fail("there is no " + std::string(role));
    if (object->isOrphaned())
        return Fail("the " + std::string(role) + " was deleted");
    const auto& there = static_cast<const KARMPEntity&>(*object);
    return !m_core.IsForeign(there) ||
           Fail("the " + std::string(role) + ", " + TitleOf(there) + ", is of another world");
}

bool Edit::FailToCreate(const QOBClassInfo& info, const Entity& entity)
{
    return Fail(entity ? "a world has no list for a " + info.getName() +
                             ", which is kept by who makes it and by no document"
                       : "a " + info.getName() + " cannot be made");
}

bool Edit::FailAsTaken(std::string_view identifier, const KARMPEntity& entity)
{
    return Fail('"' + std::string(identifier) + "\" is the identifier of " + TitleOf(entity));
}

// The entity comes before the look into the index, whose memory is on its way meanwhile.
Edit::Entity Edit::Create(const QOBClassInfo& info, std::string_view identifier)
{
    if (identifier.empty()) {
        Fail("a " + info.getName() + " needs an identifier");
        return {};
    }
    const EntityIndex::Key key = m_core.PrepareIndex(identifier);
    std::size_t family = NoFamily;
    Entity entity = m_core.Create(info, family);
    if (!entity || family == NoFamily) {
        FailToCreate(info, entity);
        return {};
    }
    NameEntity(*entity, identifier, key.isAscii);
    IdentifyByName(*entity);
    EditStep& step = NextStep();
    if (const KARMPEntity* const taken = m_core.Index(key, identifier, entity)) {
        m_log.pop_back();
        FailAsTaken(identifier, *taken);
        return {};
    }
    step.kind = EditStep::Kind::Filed;
    step.entity = entity.get();
    step.family = family;
    if (!Check(m_core.File(entity, family), "the filing", *entity))
        entity = nullptr;
    return entity;
}

bool Edit::LinkOne(const ItemInfo& item, const Entity& owner, const Entity& target)
{
    const Entity held = HeldBy(item, *owner);
    if (held == target)
        return true;
    if (held)
        return Fail(TitleOf(*owner) + " is linked to " + TitleOf(*held) + " already, by its \"" +
                    kar::ToUtf8(item.path) + '"');
    if (item.name == Elements && HasOtherParent(*target, *owner))
        return Fail(TitleOf(*target) + " is an element of another entity already");
    EditStep& step = NextStep();
    const KARStatus status = LinkHalf(item, *owner, target);
    if (status != KARSuccess) {
        m_log.pop_back();
        // A coupling that has other constraints takes its equation and fails.
        if (KARFailed(status) && item.kind == ItemKind::Reference && HeldBy(item, *owner) == target)
            item.RemoveTarget(*owner, target);
        return !KARFailed(status) ||
               Fail("linking " + TitleOf(*owner) + " to " + TitleOf(*target) + " failed", status);
    }
    step.kind = EditStep::Kind::Linked;
    step.item = &item;
    step.entity = owner.get();
    step.target = target.get();
    return true;
}

// Once for all entries that are taken away, or a long list would be copied for each of them.
void Edit::NoteList(const ItemInfo& item, const Entity& owner)
{
    if (m_noted == nullptr)
        m_noted = std::make_unique<decltype(m_noted)::element_type>();
    if (!m_noted->emplace(owner.get(), &item).second)
        return;
    EditStep& step = NextStep();
    step.item = &item;
    step.entity = owner.get();
    step.former = std::make_unique<EditStep::Former>();
    step.former->value = TargetsOf(item, *owner);
    if (!item.entryWord.empty())
        step.former->words = item.EntryWords(*owner);
    step.kind = EditStep::Kind::Shortened;
}

bool Edit::UnlinkOne(const ItemInfo& item, const Entity& owner, const Entity& target, bool& any)
{
    if (item.kind == ItemKind::References)
        NoteList(item, owner);
    EditStep& step = NextStep();
    const KARStatus status = item.RemoveTarget(*owner, target);
    if (status == KARSuccess && item.kind == ItemKind::Reference) {
        step.kind = EditStep::Kind::Unlinked;
        step.item = &item;
        step.entity = owner.get();
        step.target = target.get();
    } else {
        m_log.pop_back();
    }
    any = any || status == KARSuccess;
    return !KARFailed(status) ||
           Fail("unlinking " + TitleOf(*owner) + " from " + TitleOf(*target) + " failed", status);
}

namespace {

bool IsChosen(const LinkPair& pair, const std::wstring& item)
{
    const auto is = [&item](const ItemInfo* half) {
        return half != nullptr && (half->name == item || half->path == item);
    };
    // Nearly every entity can be an element of every other one: that has to be told.
    if (item.empty())
        return pair.second != nullptr || pair.first->name != Elements;
    return is(pair.first) || is(pair.second);
}

// False for a single link to another entity.
bool IsFree(const ItemInfo* item, const KARMPEntity& entity, const Edit::Entity& target)
{
    const auto held = item != nullptr ? HeldBy(*item, entity) : Edit::Entity();
    return !held || held == target;
}

std::string NamesOf(const std::vector<const ItemInfo*>& items)
{
    std::string names;
    for (const ItemInfo* const item : items)
        names += (names.empty() ? "\"" : ", \"") + kar::ToUtf8(item->path) + '"';
    return names;
}

} // namespace

bool Edit::Link(const Entity& first, const Entity& second, std::string_view item)
{
    if (!IsThere(first, "first entity to link") || !IsThere(second, "second entity to link"))
        return false;
    const std::wstring wide = kar::ToWide(item);
    const LinkPair* chosen = nullptr;
    std::vector<const ItemInfo*> alone;
    // Of several single links, as those of a connector, the first one that is free.
    for (const LinkPair& pair : PairsBetween(first->getClassInfo(), second->getClassInfo())) {
        if (!IsChosen(pair, wide))
            continue;
        if (pair.second == nullptr)
            alone.push_back(pair.first);
        if (chosen != nullptr && pair.second == nullptr)
            continue;
        const bool isFree =
            IsFree(pair.first, *first, second) && IsFree(pair.second, *second, first);
        if (isFree || chosen == nullptr)
            chosen = &pair;
        if (isFree && pair.second != nullptr)
            break;
    }
    if (chosen == nullptr)
        return Fail(TitleOf(*first) + " and " + TitleOf(*second) + " have no link" +
                    (item.empty() ? std::string() : " \"" + std::string(item) + '"'));
    if (chosen->second == nullptr && alone.size() > 1)
        return Fail(TitleOf(*first) + " can refer to " + TitleOf(*second) +
                    " by several items: " + NamesOf(alone));
    return LinkOne(*chosen->first, first, second) &&
           (chosen->second == nullptr || LinkOne(*chosen->second, second, first));
}

bool Edit::Unlink(const Entity& first, const Entity& second, std::string_view item)
{
    // A link to another world, which no call makes, can be taken away.
    const bool isForeign = second && !second->isOrphaned() && m_core.IsForeign(*second);
    if (!IsThere(first, "first entity to unlink") ||
        (!isForeign && !IsThere(second, "second entity to unlink")))
        return false;
    const std::wstring wide = kar::ToWide(item);
    const auto& pairs = PairsBetween(first->getClassInfo(), second->getClassInfo());
    bool any = false;
    for (const LinkPair& pair : pairs) {
        if (!IsChosen(pair, wide))
            continue;
        // A list goes last: nothing refuses behind it, and another link of the two may need it.
        const bool isReversed = pair.second != nullptr && pair.second->kind == ItemKind::Reference;
        for (const bool isSecond : {isReversed, !isReversed}) {
            const ItemInfo* const half = isSecond ? pair.second : pair.first;
            const Entity& owner = isSecond ? second : first;
            const Entity& target = isSecond ? first : second;
            if (half == nullptr || !Holds(*half, *owner, target))
                continue;
            const bool isNeeded =
                std::any_of(pairs.begin(), pairs.end(), [&](const LinkPair& other) {
                    const ItemInfo* const shared = isSecond ? other.second : other.first;
                    const ItemInfo* const back = isSecond ? other.first : other.second;
                    return &other != &pair && shared == half && back != nullptr &&
                           Holds(*back, *target, owner);
                });
            if (!isNeeded && !UnlinkOne(*half, owner, target, any))
                return false;
        }
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
    step.entity = entity.get();
    step.former = std::make_unique<EditStep::Former>();
    step.former->name = entity->getEntityName();
    NameEntity(*entity, name, IsAscii(name));
    step.kind = EditStep::Kind::Renamed;
    return true;
}

bool Edit::Set(const Entity& entity, const ItemInfo& item, const Value& value)
{
    if (item.kind == ItemKind::Reference || item.kind == ItemKind::References)
        return SetTargets(entity, item, value);
    if (item.kind == ItemKind::Records && m_core.IsInBlock())
        return Fail("records, as \"" + kar::ToUtf8(item.path) + "\" of " + TitleOf(*entity) +
                    ", cannot be undone with the block of edits they are in");
    if (const auto* const records = std::get_if<std::vector<RecordValues>>(&value))
        for (const RecordValues& record : *records)
            for (const Value& field : record)
                if (const auto* const target = std::get_if<Entity>(&field);
                    target != nullptr && !IsThere(*target, "entity in a record"))
                    return false;
    EditStep& step = NextStep();
    step.item = &item;
    step.entity = entity.get();
    step.former = std::make_unique<EditStep::Former>();
    step.former->value = item.Get(*entity);
    // A setter that fails may have stored the value.
    if (item.kind != ItemKind::Records)
        step.kind = EditStep::Kind::Set;
    std::string why;
    const KARStatus status = item.Set(*entity, value, why);
    return !KARFailed(status) ||
           Fail('"' + kar::ToUtf8(item.path) + "\" of " + TitleOf(*entity) + " is not set: " + why,
                status);
}

bool Edit::SetTargets(const Entity& entity, const ItemInfo& item, const Value& value)
{
    std::vector<Entity> wanted;
    if (const auto* const target = std::get_if<Entity>(&value))
        wanted.push_back(*target);
    else if (const auto* const targets = std::get_if<std::vector<Entity>>(&value))
        wanted = *targets;
    else if (!value.IsNone())
        return Fail('"' + kar::ToUtf8(item.path) + "\" of " + TitleOf(*entity) +
                    " refers to entities");
    const std::string path = kar::ToUtf8(item.path);
    for (const Entity& held : TargetsOf(item, *entity))
        if (std::find(wanted.begin(), wanted.end(), held) == wanted.end() &&
            !Unlink(entity, held, path))
            return false;
    return std::all_of(wanted.begin(), wanted.end(),
                       [&](const Entity& target) { return Link(entity, target, path); });
}

} // namespace karmp::model

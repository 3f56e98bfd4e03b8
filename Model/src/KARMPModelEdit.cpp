#include "KARMPModelEdit.h"

#include "KARMPGenericFactory.h"
#include "KARMPModelCore.h"
#include "KARMPModelLinks.h"
#include "KARMPModelNames.h"
#include "KARMPModelPlacing.h"
#include "KARTextConversion.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <utility>
#include <variant>
#include <vector>

namespace karmp::model {

namespace {

constexpr std::wstring_view NameItem = L"name";

// What an entity is made of knows it as its parent.
bool HasOtherParent(const KARMPEntity& element, const KARMPEntity& owner)
{
    Edit::Entity parent;
    return !KARFailed(element.GetParentEntity(parent)) && parent && parent.get() != &owner;
}

// True for an entity itself, and for what it is made of.
bool IsWithin(Edit::Entity element, const KARMPEntity& entity)
{
    while (element && element.get() != &entity) {
        Edit::Entity parent;
        if (KARFailed(element->GetParentEntity(parent)))
            return false;
        element = std::move(parent);
    }
    return static_cast<bool>(element);
}

void NameEntity(KARMPEntity& entity, std::string_view name, bool isAscii)
{
    if (isAscii)
        entity.setNarrowName(name);
    else
        entity.setEntityName(kar::ToWide(name));
}

} // namespace

// Allocates before anything is done, so that what is done can be noted.
ModelOptions OptionsOf(const KARMPWorld& world)
{
    ModelOptions options;
    world.GetGravity(options.gravity);
    options.linearTolerance = world.GetLinearTolerance();
    options.angularTolerance = world.GetAngularTolerance();
    return options;
}

KARStatus SetOptions(KARMPWorld& world, const ModelOptions& options)
{
    for (const KARStatus status :
         {world.SetGravity(options.gravity), world.SetLinearTolerance(options.linearTolerance),
          world.SetAngularTolerance(options.angularTolerance)})
        if (KARFailed(status))
            return status;
    return KARSuccess;
}

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
    const std::string title = "a " + info.getName();
    if (entity)
        return Fail("a world has no list for " + title +
                    ", which is kept by who makes it and by no document");
    const auto names = KARMPFactory::GetClassNames();
    const bool isMade = std::find(names.begin(), names.end(), info.getName()) != names.end();
    return Fail(title + (isMade ? " cannot be made" : BaseClassText));
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
    NameEntity(*entity, identifier, key.IsAscii());
    IdentifyByName(*entity);
    EditStep& step = NextStep();
    if (const KARMPEntity* const taken = m_core.Index(key, identifier, entity)) {
        m_log.pop_back();
        FailAsTaken(identifier, *taken);
        return {};
    }
    step.kind = EditStep::Kind::Filed;
    step.entity = entity.get();
    step.index = family;
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
    if (item.name == Elements && IsWithin(owner, *target))
        return Fail(TitleOf(*target) + " cannot be an element of itself");
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

bool Edit::UnlinkOne(const ItemInfo& item, const Entity& owner, const Entity& target, bool& any)
{
    EditStep& step = NextStep();
    if (item.kind == ItemKind::References) {
        const int index = item.FindTarget(*owner, *target, m_core.NearIndex());
        item.TargetAt(*owner, index, step.word);
        step.index = static_cast<std::size_t>(index);
        // Many that go are often in a long list one behind the other.
        constexpr int few = 16;
        if (index >= 0 && item.Count(*owner) > few)
            m_core.NearIndex() = index;
    }
    const KARStatus status = item.RemoveTarget(*owner, target);
    if (status == KARSuccess) {
        step.kind =
            item.kind == ItemKind::References ? EditStep::Kind::Unlisted : EditStep::Kind::Unlinked;
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
            if (half == nullptr || !Holds(*half, *owner, target, m_core.NearIndex()))
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

bool Edit::Configure(const ModelOptions& options)
{
    KARMPWorld& world = *m_core.World();
    const ModelOptions former = OptionsOf(world);
    const auto isGood = [](double number, double before) {
        return number == before || IsPositive(number);
    };
    if (!isGood(options.linearTolerance, former.linearTolerance) ||
        !isGood(options.angularTolerance, former.angularTolerance))
        return Fail("a tolerance of the world is no finite number above 0");
    if (!IsFinite(options.gravity) && !(options.gravity == former.gravity))
        return Fail("the gravity of the world is not finite");
    EditStep& step = NextStep();
    step.former =
        std::make_unique<EditStep::Former>(EditStep::Former{kar::SharedText(), Value(), former});
    step.kind = EditStep::Kind::Configured;
    const KARStatus status = model::SetOptions(world, options);
    return !KARFailed(status) || Fail("the settings of the world failed", status);
}

bool Edit::Rename(const Entity& entity, std::string_view name)
{
    if (!IsThere(entity, "entity to rename"))
        return false;
    if (name.empty())
        return Fail(TitleOf(*entity) + " needs a name");
    EditStep& step = NextStep();
    step.entity = entity.get();
    step.former =
        std::make_unique<EditStep::Former>(EditStep::Former{entity->getStoredName(), Value()});
    NameEntity(*entity, name, IsAscii(name));
    step.kind = EditStep::Kind::Renamed;
    return true;
}

// Made since the innermost block began, with which it goes.
bool Edit::IsNew(const KARMPEntity& entity) const
{
    return std::any_of(
        m_log.begin() + static_cast<std::ptrdiff_t>(m_core.BeginOfBlock()), m_log.end(),
        [&entity](const EditStep& step) {
            return step.kind == EditStep::Kind::Filed && step.entity == &entity;
        });
}

bool Edit::AreThere(const Value& value)
{
    const auto* const records = std::get_if<std::vector<RecordValues>>(&value);
    if (records == nullptr)
        return true;
    for (const RecordValues& record : *records)
        for (const Value& field : record)
            if (const auto* const target = std::get_if<Entity>(&field);
                target != nullptr && !IsThere(*target, "entity in a record"))
                return false;
    return true;
}

bool Edit::Set(const Entity& entity, const ItemInfo& item, const Value& value)
{
    if (item.kind == ItemKind::Reference || item.kind == ItemKind::References)
        return SetTargets(entity, item, value);
    if (const auto* const name = std::get_if<std::wstring>(&value);
        name != nullptr && item.path == NameItem)
        return Rename(entity, kar::ToUtf8(*name));
    if (!AreThere(value))
        return false;
    if (!IsFinite(value))
        return Fail('"' + kar::ToUtf8(item.path) + "\" of " + TitleOf(*entity) +
                    " is to have finite numbers");
    EditStep& step = NextStep();
    step.item = &item;
    step.entity = entity.get();
    step.former =
        std::make_unique<EditStep::Former>(EditStep::Former{kar::SharedText(), item.Get(*entity)});
    // Records can be added only, and a value that is none may be one that cannot be unset.
    const bool canBeUndone = item.kind != ItemKind::Records && item.Takes(step.former->value);
    if (!canBeUndone && m_core.IsInBlock() && !IsNew(*entity))
        return Fail('"' + kar::ToUtf8(item.path) + "\" of " + TitleOf(*entity) +
                    " cannot be undone with the block of edits it is set in");
    // A setter that fails may have stored the value.
    if (canBeUndone)
        step.kind = EditStep::Kind::Set;
    std::string why;
    const KARStatus status = item.Set(*entity, value, why);
    return !KARFailed(status) ||
           Fail('"' + kar::ToUtf8(item.path) + "\" of " + TitleOf(*entity) + " is not set: " + why,
                status);
}

namespace {

using Targets = std::vector<Edit::Entity>;

bool IsIn(const Targets& targets, const Edit::Entity& target)
{
    return std::find(targets.begin(), targets.end(), target) != targets.end();
}

bool HasRepetition(const Targets& targets)
{
    std::vector<const KARMPEntity*> sorted;
    for (const Edit::Entity& target : targets)
        sorted.push_back(target.get());
    std::sort(sorted.begin(), sorted.end(), std::less<>());
    return std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end();
}

std::size_t SameAtTheBegin(const Targets& left, const Targets& right)
{
    return static_cast<std::size_t>(
        std::mismatch(left.begin(), left.end(), right.begin(), right.end()).first - left.begin());
}

} // namespace

bool Edit::SetTargets(const Entity& entity, const ItemInfo& item, const Value& value)
{
    Targets wanted;
    const std::string path = kar::ToUtf8(item.path);
    if (const auto* const target = std::get_if<Entity>(&value))
        wanted.push_back(*target);
    else if (const auto* const targets = std::get_if<Targets>(&value))
        wanted = *targets;
    else if (!value.IsNone())
        return Fail('"' + path + "\" of " + TitleOf(*entity) + " refers to entities");
    const std::string role = "entity for \"" + path + "\" of " + TitleOf(*entity);
    for (const Entity& target : wanted)
        if (!IsThere(target, role))
            return false;
    if (HasRepetition(wanted))
        return Fail('"' + path + "\" of " + TitleOf(*entity) + " has each entity once");
    const Targets held = TargetsOf(item, *entity);
    Targets left;
    for (const Entity& target : held)
        if (IsIn(wanted, target))
            left.push_back(target);
        else if (!Unlink(entity, target, path))
            return false;
    // Where the order or a word counts, all from the first difference on are made anew; the other
    // halves of those that stay are as they were.
    std::size_t kept = left.size();
    if (item.isInOrder || !item.entryWord.empty())
        kept = SameAtTheBegin(left, wanted);
    if (!item.entryWord.empty())
        kept = std::min(kept, SameAtTheBegin(held, wanted));
    bool any = false;
    for (std::size_t i = left.size(); i > kept; --i)
        if (!UnlinkOne(item, entity, left[i - 1], any))
            return false;
    return std::all_of(wanted.begin(), wanted.end(), [&](const Entity& target) {
        return IsIn(held, target) ? LinkOne(item, entity, target) : Link(entity, target, path);
    });
}

} // namespace karmp::model

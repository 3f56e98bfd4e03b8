#include "KARMPSaveCheck.h"

#include "KARMPDocumentLinks.h"
#include "KARMPDocumentNames.h"
#include "KARMPEntityElement.h"
#include "KARMPInteraction.h"
#include "KARMPMaterial.h"
#include "KARMPTextEscapes.h"
#include "KARMPWorld.h"
#include "KARMPWorldGraph.h"
#include "QOBClassInfo.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <functional>
#include <iterator>

namespace karmp::documents {

namespace {

// Longer lists are searched by a table.
constexpr int LongestSearched = 32;

std::uint64_t HashOf(std::string_view text)
{
    std::uint64_t hash = text.size();
    std::uint64_t word = 0;
    if (text.size() < sizeof word) {
        std::copy(text.begin(), text.end(), reinterpret_cast<char*>(&word));
        return Mix(hash, word);
    }
    // The last word overlaps the one before it.
    const std::size_t last = text.size() - sizeof word;
    for (std::size_t offset = 0; offset < last; offset += sizeof word) {
        std::memcpy(&word, text.data() + offset, sizeof word);
        hash += Mix(offset, word);
    }
    std::memcpy(&word, text.data() + last, sizeof word);
    return hash + Mix(last, word);
}

// The numbers of the hashes that there may be twice. A table of bits sorts out the others: it is
// small enough to be at hand.
std::vector<std::size_t> Doubtful(const std::vector<std::size_t>& hashes)
{
    constexpr std::size_t bitsForEach = 16;
    std::vector<bool> met(std::bit_ceil(bitsForEach * hashes.size() + 1));
    std::vector<bool> metAgain(met.size());
    const std::size_t mask = met.size() - 1;
    for (const std::size_t hash : hashes) {
        if (met[hash & mask])
            metAgain[hash & mask] = true;
        met[hash & mask] = true;
    }
    std::vector<std::size_t> numbers;
    for (std::size_t number = 0; number < hashes.size(); ++number)
        if (metAgain[hashes[number] & mask])
            numbers.push_back(number);
    return numbers;
}

const KARMPEntity* EntityIn(const ItemValue& value)
{
    return static_cast<const KARMPEntity*>(value.entity._getReferent());
}

// Fetches the entry of a list, or the target of a reference; false when there is none.
bool Fetch(const Item& item, const KARMPEntity& entity, int index, ItemValue& value)
{
    value.entity = {};
    const KARStatus status =
        item.count != nullptr ? item.at(&entity, index, value) : item.get(&entity, value);
    return !KARFailed(status) && value.entity;
}

int CountOf(const Item& item, const KARMPEntity& entity)
{
    return item.count != nullptr ? item.count(&entity) : 1;
}

std::string PathText(std::wstring_view path)
{
    std::string text;
    AppendUtf8(text, path);
    return text;
}

} // namespace

SaveCheck::SaveCheck(const KARMPWorld& world, std::wstring_view version, Messages& errors,
                     Messages& warnings)
    : m_world(world), m_version(version), m_errors(errors), m_warnings(warnings), m_lossy(version)
{
    m_hashes.reserve(ListedCount(world));
    for (const GlobalEntity& global : GlobalsOf(world))
        if (global.entity)
            m_globals.push_back(global.entity._getReferent());
}

void SaveCheck::Note(const KARMPEntity& entity, const WrittenLinks* links)
{
    if (m_isDoubtful)
        return;
    // What fails here fails once more where it can be told of.
    try {
        NoteEntity(entity, links);
    } catch (...) {
        m_isDoubtful = true;
    }
}

void SaveCheck::NoteEntity(const KARMPEntity& entity, const WrittenLinks* links)
{
    if (m_noted != nullptr)
        NoteIdentifier(*m_noted);
    m_noted = nullptr;
    ClassChecks& checks = ChecksOf(entity);
    if (links != nullptr)
        NoteIdentifier(entity);
    else if (checks.mayBeLeftOut && IsLeftOut(entity))
        return;
    else
        m_noted = &entity;
    // A caller's class may change what is linked while it is written.
    m_isDoubtful =
        m_isDoubtful || !checks.isGivenBack ||
        (links == nullptr && (checks.type == nullptr || *checks.type != typeid(entity))) ||
        std::any_of(checks.lossy.begin(), checks.lossy.end(),
                    [&](const LossyItem& item) { return item.IsLostOf(entity, m_value); }) ||
        std::any_of(checks.needed.begin(), checks.needed.end(),
                    [&](const NeededItem& item) { return item.IsMissingOf(entity, m_value); });
    if (links != nullptr)
        NoteLinks(entity, checks, *links);
    else
        for (LinkCheck& check : checks.links)
            ForEachLink(entity, check,
                        [&](const KARMPEntity& target) { NoteLink(entity, check, target); });
    if (!m_globals.empty())
        std::erase(m_globals, static_cast<const QOBSharedObject*>(&entity));
}

inline const SaveCheck::Back& SaveCheck::BackOf(LinkCheck& check, const KARMPEntity& target)
{
    const QOBClassInfo& info = target.getClassInfo();
    const auto end = check.back.end();
    auto known = check.back.begin();
    while (known != end && known->target != &info)
        ++known;
    return known != end ? *known : AddBack(check, info);
}

// False for a link that is no half of a pair.
inline bool SaveCheck::SumUp(const KARMPEntity& entity, LinkCheck& check, const KARMPEntity& target)
{
    const Back& back = BackOf(check, target);
    if (back.pair == 0)
        return false;
    const auto number = [&back](const KARMPEntity& first, const KARMPEntity& second) {
        constexpr std::uint64_t spread = 0x9FB21C651E98DF25U;
        return Mix(back.pair + reinterpret_cast<std::uintptr_t>(&first) * spread,
                   reinterpret_cast<std::uintptr_t>(&second));
    };
    m_sum += back.isFirst ? number(entity, target) : -number(target, entity);
    return true;
}

// Links come in the order of their items.
void SaveCheck::NoteLinks(const KARMPEntity& entity, ClassChecks& checks, const WrittenLinks& links)
{
    const Item* item = nullptr;
    LinkCheck* check = nullptr;
    for (const WrittenLink& link : links) {
        if (link.item != item) {
            item = link.item;
            const auto found = std::find_if(
                checks.links.begin(), checks.links.end(),
                [item](const LinkCheck& known) { return known.info->written == item; });
            check = found != checks.links.end() ? &*found : nullptr;
        }
        if (check != nullptr)
            NoteLink(entity, *check, *link.target);
    }
}

void SaveCheck::NoteLink(const KARMPEntity& entity, LinkCheck& check, const KARMPEntity& target)
{
    if (SumUp(entity, check, target))
        return;
    m_targets.push_back(&target);
    m_isDoubtful = m_isDoubtful || IsOneSided(entity, check, target);
}

void SaveCheck::NoteIdentifier(const KARMPEntity& entity)
{
    const kar::SharedText* identifier = nullptr;
    if (KARFailed(EntityAccess::Identifier(entity, identifier)) || !identifier->IsNarrow()) {
        m_isDoubtful = true;
        return;
    }
    m_hashes.push_back(HashOf(identifier->Narrow()));
}

// True when no two of the noted identifiers have one hash.
bool SaveCheck::AreIdentifiersDistinct() const
{
    std::vector<std::size_t> doubtful;
    for (const std::size_t number : Doubtful(m_hashes))
        doubtful.push_back(m_hashes[number]);
    std::sort(doubtful.begin(), doubtful.end());
    return std::adjacent_find(doubtful.begin(), doubtful.end()) == doubtful.end();
}

// True when the notes tell that there is nothing to tell.
bool SaveCheck::IsSound()
{
    if (m_noted != nullptr && !m_isDoubtful)
        NoteIdentifier(*m_noted);
    if (m_isDoubtful || m_sum != 0 || !m_globals.empty() || !AreIdentifiersDistinct())
        return false;
    if (m_targets.empty())
        return true;
    m_entities.emplace(m_world);
    return std::all_of(m_targets.begin(), m_targets.end(),
                       [this](const KARMPEntity* target) { return m_entities->Hold(target); });
}

void SaveCheck::Run()
{
    if (IsSound())
        return;
    if (!m_entities)
        m_entities.emplace(m_world);
    // What was being made when an allocation failed is not whole.
    m_classes.clear();
    m_lastClass = nullptr;
    m_longLists.clear();
    m_sum = 0;
    CheckGlobals();
    CheckMaterials();
    CheckIdentifiers();
    for (std::size_t number = 0; number < m_entities->Count() && !m_errors.Full(); ++number)
        CheckEntity(number);
    if (m_sum != 0)
        CheckPairs();
    if (!m_layers.empty())
        CheckLayers();
}

SaveCheck::ClassChecks& SaveCheck::ChecksOf(const KARMPEntity& entity)
{
    const QOBClassInfo& info = entity.getClassInfo();
    if (&info == m_lastClass)
        return *m_lastChecks;
    const auto [found, isNew] = m_classes.try_emplace(&info);
    ClassChecks& checks = found->second;
    if (isNew) {
        for (const ItemInfo* const item : LinkItemsOf(info))
            checks.links.push_back({item, OtherSides(item->otherSide), {}});
        const auto items = ItemsOf(info);
        checks.mayBeLeftOut = !items.empty() && !items.front().conditions.empty();
        checks.type = info.getOperations().copiedClass;
        checks.isGivenBack = IsGivenBack(info);
        if (checks.isGivenBack) {
            checks.lossy = m_lossy.Of(info);
            checks.needed = NeededItemsOf(info, m_version);
        }
    }
    m_lastClass = &info;
    m_lastChecks = &checks;
    return checks;
}

// Reading leaves a global that the document does not hold as it is, so that nothing is lost.
void SaveCheck::CheckGlobals()
{
    for (const GlobalEntity& global : GlobalsOf(m_world)) {
        if (!global.entity || m_entities->Hold(global.entity._getReferent()))
            continue;
        const std::string name = PathText(global.element);
        m_warnings.Warning(Code::UnresolvedReference, "the world does not list its " + name,
                           '/' + std::string(RootName) + "/World/Globals/" + name);
    }
}

// Materials write nothing where they leave it to their base.
void SaveCheck::CheckMaterials()
{
    int lost = 0;
    for (int index = 0; index < m_world.Count<KARMPMaterial>(); ++index) {
        QOBSharedHandle<KARMPMaterial> material;
        EntityElement root;
        if (!KARFailed(m_world.Get(index, material)) &&
            EntityElement::Write(*material, root) == nullptr)
            ++lost;
    }
    if (lost > 0)
        m_warnings.Warning(Code::LostMaterials,
                           "the document lacks " + std::to_string(lost) +
                               (lost == 1 ? " material, which writes nothing"
                                          : " materials, which write nothing"));
}

// The entities whose identifiers may be carried twice.
std::vector<std::size_t> SaveCheck::DoubtfulIdentifiers() const
{
    std::vector<std::size_t> hashes;
    hashes.reserve(m_entities->Count());
    std::wstring identifier;
    for (std::size_t number = 0; number < m_entities->Count(); ++number) {
        GetIdentifierOf(m_entities->At(number), identifier);
        hashes.push_back(std::hash<std::wstring>()(identifier));
    }
    return Doubtful(hashes);
}

void SaveCheck::CheckIdentifiers()
{
    std::unordered_map<std::wstring, std::size_t> known;
    std::wstring identifier;
    for (const std::size_t number : DoubtfulIdentifiers()) {
        const KARMPEntity& entity = m_entities->At(number);
        GetIdentifierOf(entity, identifier);
        const auto [found, isNew] = known.emplace(identifier, number);
        if (isNew)
            continue;
        const KARMPEntity& first = m_entities->At(found->second);
        m_errors.Error(Code::DuplicateIdentifier,
                       &first == &entity
                           ? TitleOf(entity) + " is listed twice"
                           : TitleOf(entity) + " has the identifier of " + TitleOf(first),
                       m_entities->PathOf(number) + "/@id");
        if (m_errors.Full())
            return;
    }
}

void SaveCheck::CheckEntity(std::size_t number)
{
    const KARMPEntity& entity = m_entities->At(number);
    ClassChecks& checks = ChecksOf(entity);
    if (!checks.isGivenBack && dynamic_cast<const KARMPInteraction*>(&entity) != nullptr)
        m_layers.push_back(number);
    else if (!checks.isGivenBack)
        m_warnings.Warning(Code::NotReadBack, TitleOf(entity) + " is written as no reader finds it",
                           m_entities->PathOf(number));
    for (LinkCheck& link : checks.links)
        ForEachLink(entity, link, [&](const KARMPEntity& target) {
            if (!SumUp(entity, link, target))
                CheckTarget(number, link, target);
        });
    CheckItems(number, checks);
}

// A collision layer that is read lives in the interactions that are about it.
void SaveCheck::CheckLayers()
{
    std::unordered_set<const KARMPEntity*> targets;
    for (std::size_t number = 0; number < m_entities->Count(); ++number) {
        const KARMPEntity& entity = m_entities->At(number);
        if (dynamic_cast<const KARMPInteraction*>(&entity) == nullptr)
            continue;
        for (LinkCheck& link : ChecksOf(entity).links)
            ForEachLink(entity, link, [&](const KARMPEntity& target) { targets.insert(&target); });
    }
    for (const std::size_t number : m_layers)
        if (targets.count(&m_entities->At(number)) == 0)
            m_warnings.Warning(Code::NotReadBack,
                               TitleOf(m_entities->At(number)) +
                                   " belongs to no relation of layers, and no world that reads it "
                                   "lists it",
                               m_entities->PathOf(number));
}

// Calls with each target.
template <class Visit>
void SaveCheck::ForEachLink(const KARMPEntity& entity, LinkCheck& check, Visit visit)
{
    const Item& item = *check.info->written;
    const int count = CountOf(item, entity);
    if (count == 0 || !check.info->IsWrittenFor(entity))
        return;
    for (int index = 0; index < count; ++index)
        if (Fetch(item, entity, index, m_value))
            visit(*EntityIn(m_value));
}

// Some link of a pair has no other side, be it that its target is not listed.
void SaveCheck::CheckPairs()
{
    for (std::size_t number = 0; number < m_entities->Count() && !m_errors.Full(); ++number) {
        const KARMPEntity& entity = m_entities->At(number);
        for (LinkCheck& link : ChecksOf(entity).links)
            ForEachLink(entity, link, [&](const KARMPEntity& target) {
                if (BackOf(link, target).pair != 0)
                    CheckTarget(number, link, target);
            });
    }
}

void SaveCheck::CheckTarget(std::size_t number, LinkCheck& check, const KARMPEntity& target)
{
    if (!m_entities->Hold(&target)) {
        TellOfTarget(number, *check.info, target);
        return;
    }
    const KARMPEntity& entity = m_entities->At(number);
    if (!m_warnings.Full() && IsOneSided(entity, check, target))
        m_warnings.Warning(Code::OneSidedLink,
                           TitleOf(target) + " does not refer back to " + TitleOf(entity),
                           m_entities->PathOf(number) + '/' + PathText(check.info->path));
}

// True when the target ought to refer back and does not.
bool SaveCheck::IsOneSided(const KARMPEntity& entity, LinkCheck& check, const KARMPEntity& target)
{
    if (check.otherSides.empty())
        return false;
    const auto& back = BackOf(check, target).items;
    return std::none_of(back.begin(), back.end(),
                        [&](const ItemInfo* item) { return RefersBack(target, *item, entity); });
}

// No program can have a world list an entity of a class without a family and get it back.
void SaveCheck::TellOfTarget(std::size_t number, const ItemInfo& item, const KARMPEntity& target)
{
    std::string text = TitleOf(m_entities->At(number)) + " refers to " + TitleOf(target) +
                       ", which the document does not hold";
    std::string path = m_entities->PathOf(number) + '/' + PathText(item.path);
    if (IsFiled(target.getClassInfo()))
        m_errors.Error(Code::UnresolvedReference, std::move(text), std::move(path));
    else
        m_warnings.Warning(Code::NotReadBack, std::move(text), std::move(path));
}

const SaveCheck::Back& SaveCheck::AddBack(LinkCheck& check, const QOBClassInfo& target)
{
    std::vector<const ItemInfo*> items;
    for (const ItemInfo* const item : LinkItemsOf(target))
        if (std::find(check.otherSides.begin(), check.otherSides.end(), item->path) !=
            check.otherSides.end())
            items.push_back(item);
    const std::uint64_t pair = PairOf(check, items);
    const bool isFirst = pair != 0 && check.info->path < items.front()->path;
    return check.back.emplace_back(Back{&target, std::move(items), pair, isFirst});
}

std::uint64_t SaveCheck::PairOf(const LinkCheck& check, std::span<const ItemInfo* const> back)
{
    const ItemInfo& item = *check.info;
    const bool isPair = check.otherSides.size() == 1 && back.size() == 1 &&
                        back.front()->otherSide == item.path && back.front()->path != item.path &&
                        item.conditions.empty() && back.front()->conditions.empty();
    if (!isPair)
        return 0;
    const std::hash<std::wstring> hash;
    return (hash(item.path) + hash(back.front()->path)) | 1U;
}

bool SaveCheck::RefersBack(const KARMPEntity& target, const ItemInfo& item,
                           const KARMPEntity& entity)
{
    const Item& back = *item.written;
    const int count = CountOf(back, target);
    if (count <= LongestSearched) {
        for (int index = 0; index < count; ++index)
            if (Fetch(back, target, index, m_backValue) && EntityIn(m_backValue) == &entity)
                return true;
        return false;
    }
    const auto [found, isNew] = m_longLists.try_emplace({&target, &item});
    if (isNew) {
        found->second.reserve(static_cast<std::size_t>(count));
        for (int index = 0; index < count; ++index)
            if (Fetch(back, target, index, m_backValue))
                found->second.insert(EntityIn(m_backValue));
    }
    return found->second.count(&entity) != 0;
}

void SaveCheck::CheckItems(std::size_t number, const ClassChecks& checks)
{
    const KARMPEntity& entity = m_entities->At(number);
    const auto tell = [&](Code code, const std::string& path, const std::string& text) {
        m_warnings.Warning(code, TitleOf(entity) + ": " + text,
                           m_entities->PathOf(number) + '/' + path);
    };
    for (const LossyItem& lossy : checks.lossy) {
        if (m_warnings.Full() || !lossy.IsLostOf(entity, m_value))
            continue;
        const std::string path = PathText(lossy.Path());
        if (lossy.reason == LossReason::Version)
            tell(Code::OtherVersion, path,
                 "documents of version " + PathText(m_version) + " do not hold \"" + path + '"');
        else
            tell(Code::NotReadBack, path,
                 '"' + path +
                     (lossy.reason == LossReason::Reading
                          ? "\" is written as no reader finds it"
                          : "\" is not written as the entity stands"));
    }
    for (const NeededItem& needed : checks.needed) {
        if (m_warnings.Full() || !needed.IsMissingOf(entity, m_value))
            continue;
        const std::string path = PathText(needed.item->path);
        tell(Code::MissingElement, path, "reading needs \"" + path + "\", which is missing");
    }
}

} // namespace karmp::documents

#include "KARMPWorldExtraction.h"

#include "KARMPAxisSystem.h"
#include "KARMPClassItems.h"
#include "KARMPContentItem.h"
#include "KARMPDocumentLinks.h"
#include "KARMPDocumentReader.h"
#include "KARMPDocumentWriter.h"
#include "KARMPEntityTable.h"
#include "KARMPExtractionSelection.h"
#include "KARMPFamilies.h"
#include "KARMPItems.h"
#include "KARMPSketch.h"
#include "KARMPVariable.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <variant>

namespace karmp::documents {

namespace {

using Entity = QOBSharedHandle<KARMPEntity>;
using Entities = std::vector<Entity>;

// True when RestoreRecords carries the item over.
bool AreRecords(const ItemInfo& item)
{
    return item.kind == ItemKind::Records && item.readOnly.empty();
}

/// Makes the world of the selected entities.
class Extractor
{
public:
    Extractor(const KARMPWorld& source, const ExtractionSelection& selection)
        : m_source(source), m_selection(selection)
    {}

    Extraction Run();

private:
    bool Duplicate();
    template <class T>
    bool DuplicateFamily(const QOBClassInfo& family, const Entities& sources);
    template <class T>
    bool PairDuplicates(const Entities& sources);
    template <class T>
    bool DuplicatePassedOver(const Entities& sources);
    void Enter(const Entity& source, const Entity& duplicate);
    const Entity* DuplicateOf(const KARMPEntity* source) const;

    void RestoreGlobals();
    void PlaceSketches();
    /// True for a sketch on the global body that does not come along; that of the extract carries
    /// it.
    bool IsOnOtherGlobal(const KARMPEntity& holder, const KARMPEntity* target) const;
    template <class T, class Family>
    void RestoreGlobal(KARStatus (KARMPWorld::*get)(QOBSharedHandle<T>&) const,
                       KARStatus (KARMPWorld::*set)(const QOBSharedHandle<T>&));

    /// True when the duplicate may lack what items do not give.
    static bool LacksOthers(const KARMPEntity& source, const KARMPEntity& duplicate);
    void Restore(const Entity& source, const Entity& duplicate);
    void RestoreLink(const ItemInfo& item, const Entity& source, const Entity& duplicate);
    void RestoreValue(const ItemInfo& item, const Entity& source, const Entity& duplicate);
    void RestoreRecords(const ItemInfo& item, const Entity& source, const Entity& duplicate);
    /// The first entity in a record that has no duplicate; null when all have one.
    const Entity* FirstMissing(const std::vector<Value>& record) const;
    void RestoreByElement(const Entity& source, const Entity& duplicate);
    /// The value with duplicates in place of the entities; those without one are left out.
    Value Translated(const Value& value) const;
    void TellCutLinks(const Entity& holder);
    void TellCutLinksOfOtherBodies();
    /// True when the target refers back and is the end that tells of the link.
    bool IsToldByTarget(const ItemInfo& item, const Entity& holder, const Entity& target);

    const KARMPWorld& m_source;
    const ExtractionSelection& m_selection;
    Extraction m_result;
    std::vector<std::pair<Entity, Entity>> m_pairs;
    std::unordered_map<const KARMPEntity*, Entity> m_duplicates;
    KARMPEntityTable m_table;
    /// What the targets of cut links are linked to, by which item.
    std::unordered_map<const KARMPEntity*,
                       std::unordered_multimap<const KARMPEntity*, const ItemInfo*>>
        m_links;
};

Extraction Extractor::Run()
{
    if (Duplicate()) {
        for (const auto& [source, duplicate] : m_pairs)
            Restore(source, duplicate);
        RestoreGlobals();
        PlaceSketches();
        for (const auto& [source, duplicate] : m_pairs)
            TellCutLinks(source);
        TellCutLinksOfOtherBodies();
        for (const Entity& entity : m_selection.Waiting())
            TellCutLinks(entity);
        for (const Entity& entity : m_selection.Attached())
            if (!m_selection.Has(entity.get()))
                TellCutLinks(entity);
    }
    return std::move(m_result);
}

bool Extractor::Duplicate()
{
    QOBSharedList<KARMPEntity> filter(m_selection.Entities().begin(), m_selection.Entities().end());
    m_result.world = m_source.CloneWithFilter(filter);
    if (!m_result.world)
        return false;
    KARMPUnit::Enum unit{};
    m_source.GetLengthUnit(unit);
    m_result.world->SetLengthUnit(unit);
    m_table.Reserve(filter.size());
    m_pairs.reserve(filter.size());
    m_duplicates.reserve(filter.size());
    std::unordered_map<std::wstring_view, Entities> families;
    for (const Entity& entity : m_selection.Entities())
        families[FamilyElementOf(*entity)].push_back(entity);
    auto record = FamilyRecords().begin();
    bool isComplete = true;
    ForEachRegistryElement([&](const auto& element) {
        using T = typename std::remove_cvref_t<decltype(element)>::Type;
        isComplete = DuplicateFamily<T>(*record++->info, families[element.name]) && isComplete;
    });
    if (!isComplete)
        m_result.world = nullptr;
    return isComplete;
}

// A filtered clone passes over connectors and values, and over what its class record tells to be of
// no family, as that of a collision layer does. False when a duplicate could not be made.
template <class T>
bool Extractor::DuplicateFamily(const QOBClassInfo& family, const Entities& sources)
{
    constexpr bool isFiltered =
        !std::is_same_v<T, KARMPConnector> && !std::is_same_v<T, KARMPValue>;
    Entities filtered;
    Entities passedOver;
    for (const Entity& entity : sources)
        (isFiltered && entity->isDerivedFrom(family) ? filtered : passedOver).push_back(entity);
    return PairDuplicates<T>(filtered) && DuplicatePassedOver<T>(passedOver);
}

// The duplicates of a family are filed in the order of the filter, behind the global of a new
// world. False when one could not be made.
template <class T>
bool Extractor::PairDuplicates(const Entities& sources)
{
    constexpr bool hasGlobal = std::is_same_v<T, KARMPBody> || std::is_same_v<T, KARMPGeometry> ||
                               std::is_same_v<T, KARMPVariable>;
    constexpr int first = hasGlobal ? 1 : 0;
    const KARMPWorld& world = *m_result.world;
    if (world.Count<T>() != first + static_cast<int>(sources.size()))
        return false;
    for (std::size_t i = 0; i < sources.size(); ++i) {
        QOBSharedHandle<T> duplicate;
        world.Get<T>(first + static_cast<int>(i), duplicate);
        Enter(sources[i], Entity::unchecked(duplicate));
    }
    return true;
}

// False when one could not be made.
template <class T>
bool Extractor::DuplicatePassedOver(const Entities& sources)
{
    for (const Entity& entity : sources) {
        QOBSharedObject* const copy = entity->duplicateObject(QOBDynamicObject::CopyShallow);
        const auto duplicate = QOBSharedHandle<T>::unchecked(QOBSharedBase(copy));
        if (copy == nullptr)
            return false;
        copy->removeReference();
        KARBaseUnknown_var key1;
        KARBaseUnknown_var key2;
        m_source.GetKeys<T>(QOBSharedHandle<T>::unchecked(entity), key1, key2);
        m_result.world->Add<T>(key1, key2, duplicate);
        Enter(entity, Entity::unchecked(duplicate));
    }
    return true;
}

void Extractor::Enter(const Entity& source, const Entity& duplicate)
{
    const QOBSharedHandle<QOBBasicEntity> above(m_result.world->getExtendible());
    if (above)
        above->addLogicalChild(duplicate);
    std::wstring identifier;
    source->GetIdentifier(identifier);
    m_table.Set(identifier, duplicate);
    m_duplicates.emplace(source.get(), duplicate);
    m_pairs.emplace_back(source, duplicate);
}

const Entity* Extractor::DuplicateOf(const KARMPEntity* source) const
{
    const auto found = m_duplicates.find(source);
    return found != m_duplicates.end() ? &found->second : nullptr;
}

void Extractor::RestoreGlobals()
{
    using World = KARMPWorld;
    RestoreGlobal<KARMPAxisSystem, KARMPGeometry>(&World::GetGlobalAxisSystem,
                                                  &World::SetGlobalAxisSystem);
    RestoreGlobal<KARMPBody, KARMPBody>(&World::GetGlobalBody, &World::SetGlobalBody);
    RestoreGlobal<KARMPVariable, KARMPVariable>(&World::GetGlobalTime, &World::SetGlobalTime);
    QOBSharedHandle<KARMPBody> ground;
    m_source.GetGroundBody(ground);
    if (const Entity* const duplicate = DuplicateOf(ground.get()))
        m_result.world->SetGroundBody(QOBSharedHandle<KARMPBody>(*duplicate));
}

// The registries of a filtered clone begin with the globals that a new world has; the clone's own
// are duplicates that no registry lists.
template <class T, class Family>
void Extractor::RestoreGlobal(KARStatus (KARMPWorld::*get)(QOBSharedHandle<T>&) const,
                              KARStatus (KARMPWorld::*set)(const QOBSharedHandle<T>&))
{
    KARMPWorld& world = *m_result.world;
    QOBSharedHandle<T> source;
    QOBSharedHandle<Family> first;
    (m_source.*get)(source);
    world.Get<Family>(0, first);
    const Entity* const duplicate = DuplicateOf(source.get());
    // The global of the extract stands for that of the source, and extracts of one world are equal.
    std::wstring identifier;
    if (duplicate == nullptr && source && first && !KARFailed(source->GetIdentifier(identifier)))
        first->SetIdentifier(identifier);
    (world.*set)(QOBSharedHandle<T>(duplicate != nullptr ? *duplicate : Entity(first)));
    if (duplicate != nullptr)
        world.Remove<Family>(first);
}

// A plane that no body carries stands nowhere.
void Extractor::PlaceSketches()
{
    QOBSharedHandle<KARMPBody> global;
    m_result.world->GetGlobalBody(global);
    for (const auto& [source, duplicate] : m_pairs) {
        if (!source->isDerivedFrom(KARMPSketch::ClassInfo()))
            continue;
        QOBSharedHandle<KARMPBody> carrier;
        QOBSharedHandle<KARMPGeometry>(source)->GetBody(carrier);
        if (!IsOnOtherGlobal(*source, carrier.get()))
            continue;
        const QOBSharedHandle<KARMPGeometry> sketch(duplicate);
        sketch->SetBody(global);
        global->AddGeometry(sketch);
    }
}

bool Extractor::IsOnOtherGlobal(const KARMPEntity& holder, const KARMPEntity* target) const
{
    QOBSharedHandle<KARMPBody> global;
    m_source.GetGlobalBody(global);
    return target != nullptr && target == global.get() && !m_selection.Has(target) &&
           holder.isDerivedFrom(KARMPSketch::ClassInfo());
}

// Reading an element adds to what the copy has kept.
bool Extractor::LacksOthers(const KARMPEntity& source, const KARMPEntity& duplicate)
{
    const auto& others = ClassItems::Of(source).Others();
    return std::any_of(others.begin(), others.end(), [&](const ItemInfo* item) {
        const int count = item->Count(source);
        return !AreRecords(*item) && (count < 0 || count != item->Count(duplicate));
    });
}

void Extractor::Restore(const Entity& source, const Entity& duplicate)
{
    std::wstring identifier;
    if (LacksOthers(*source, *duplicate))
        RestoreByElement(source, duplicate);
    else if (!KARFailed(source->GetIdentifier(identifier)))
        duplicate->SetIdentifier(identifier);
    for (const ItemInfo& item : ItemsOf(source->getClassInfo()))
        if (item.kind == ItemKind::Reference || item.kind == ItemKind::References)
            RestoreLink(item, source, duplicate);
        else if (item.kind == ItemKind::Records)
            RestoreRecords(item, source, duplicate);
        else
            RestoreValue(item, source, duplicate);
}

void Extractor::RestoreLink(const ItemInfo& item, const Entity& source, const Entity& duplicate)
{
    const Value value = Translated(item.Get(*source));
    const auto* const target = std::get_if<Entity>(&value);
    const auto* const targets = std::get_if<Entities>(&value);
    const bool isSet = (target != nullptr && *target) || (targets != nullptr && !targets->empty());
    if (isSet && item.Get(*duplicate) != value && KARFailed(item.Set(*duplicate, value)))
        m_result.lostItems.push_back({source, {}, item.path});
}

void Extractor::RestoreValue(const ItemInfo& item, const Entity& source, const Entity& duplicate)
{
    const Value value = item.Get(*source);
    if (std::holds_alternative<std::monostate>(value) || item.Get(*duplicate) == value)
        return;
    if (KARFailed(item.Set(*duplicate, value)))
        m_result.lostItems.push_back({source, {}, item.path});
}

// A copy that keeps its records keeps all of them. A record about an entity that is not in the
// extract is left out as a whole.
void Extractor::RestoreRecords(const ItemInfo& item, const Entity& source, const Entity& duplicate)
{
    if (item.Count(*duplicate) == item.Count(*source))
        return;
    for (std::vector<Value>& record : item.GetRecords(*source)) {
        const Entity* const missing = FirstMissing(record);
        if (missing != nullptr) {
            m_result.cutLinks.push_back({source, *missing, item.path});
            continue;
        }
        for (Value& field : record)
            field = Translated(field);
        if (KARFailed(item.AddRecord(*duplicate, record)))
            m_result.lostItems.push_back({source, {}, item.path});
    }
}

const Entity* Extractor::FirstMissing(const std::vector<Value>& record) const
{
    for (const Value& field : record)
        if (const auto* const entity = std::get_if<Entity>(&field))
            if (*entity && DuplicateOf(entity->get()) == nullptr)
                return entity;
    return nullptr;
}

Value Extractor::Translated(const Value& value) const
{
    if (const auto* const entity = std::get_if<Entity>(&value)) {
        const Entity* const duplicate = DuplicateOf(entity->get());
        return duplicate != nullptr ? *duplicate : Entity();
    }
    const auto* const entities = std::get_if<Entities>(&value);
    if (entities == nullptr)
        return value;
    Entities translated;
    for (const Entity& entity : *entities)
        if (const Entity* const duplicate = DuplicateOf(entity.get()))
            translated.push_back(*duplicate);
    return translated;
}

// What a class writes by code alone it reads by code alone. The element has the identifier too.
void Extractor::RestoreByElement(const Entity& source, const Entity& duplicate)
{
    KARMPDocumentWriter root(CurrentVersion, Doubles::Exact);
    std::string bytes;
    if (!KARFailed(source->Serialize(&root)) && !root.RenderXml(bytes).HasErrors()) {
        Document document = Document::ReadText(std::move(bytes), "<entity>");
        if (document.Root() != nullptr &&
            !KARFailed(duplicate->Deserialize(document.Root(), m_table)))
            return;
    }
    m_result.lostItems.push_back({source, {}, {}});
}

// Of a link that both ends know the end in the extract tells.
void Extractor::TellCutLinks(const Entity& holder)
{
    const bool has = m_selection.Has(holder.get());
    ForEachTarget(*holder, [&](const ItemInfo& item, const Entity& target) {
        if (!has && target->isDerivedFrom(KARMPSketch::ClassInfo()))
            return;
        if (m_selection.Has(target.get()) != has && !IsOnOtherGlobal(*holder, target.get()) &&
            (has || item.otherSide.empty() || !IsToldByTarget(item, holder, target)))
            m_result.cutLinks.push_back({holder, target, item.path});
    });
}

// A body does not hold the link to its father.
void Extractor::TellCutLinksOfOtherBodies()
{
    QOBSharedHandle<KARMPBody> body;
    for (int index = 0; index < m_source.Count<KARMPBody>(); ++index)
        if (!KARFailed(m_source.Get<KARMPBody>(index, body)) && body &&
            body->GetChildrenBodyCount() + body->GetImpactedChildBodyCount() > 0 &&
            !m_selection.Has(body.get()))
            TellCutLinks(Entity::unchecked(body));
}

bool Extractor::IsToldByTarget(const ItemInfo& item, const Entity& holder, const Entity& target)
{
    const auto [links, isNew] = m_links.try_emplace(target.get());
    if (isNew)
        ForEachTarget(*target, [&known = links->second](const ItemInfo& other, const Entity& back) {
            known.emplace(back.get(), &other);
        });
    const auto sides = OtherSides(item.otherSide);
    const auto [begin, end] = links->second.equal_range(holder.get());
    return std::any_of(begin, end, [&sides](const auto& back) {
        return std::find(sides.begin(), sides.end(), back.second->path) != sides.end();
    });
}

} // namespace

Extraction Extract(const KARMPWorld& world, const ExtractionSelection& selection)
{
    return Extractor(world, selection).Run();
}

Extraction ExtractWorld(const KARMPWorld& world,
                        const std::vector<QOBSharedHandle<KARMPBody>>& bodies,
                        const ExtractionOptions& options)
{
    const ExtractionSelection selection(world, bodies, options);
    Extraction extract = Extract(world, selection);
    extract.unrelated = selection.Unrelated();
    return extract;
}

} // namespace karmp::documents

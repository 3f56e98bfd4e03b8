#include "KARMPAxisSystem.h"
#include "KARMPElementReader.h"
#include "KARMPFailedCheck.h"
#include "KARMPFunctionOfFamily.h"
#include "KARMPGenericFactory.h"
#include "KARMPNodeSource.h"
#include "KARMPReadingPlace.h"
#include "KARMPSerializationServices.h"
#include "KARMPWorld.h"
#include "KARMPWorldDocument.h"
#include "KARPrefetch.h"
#include "KARProcessServices.h"
#include "QOBBasicWorld.h"

#include <optional>
#include <type_traits>
#include <vector>

namespace {

// The first of these that an entity's class is derived from decides where it is filed.
using FilingFamilies =
    karmp::FamilyList<KARMPJoint, KARMPBody, KARMPConstraint, KARMPVariable, KARMPGeometry,
                      KARMPMaterial, KARMPInteraction, KARMPActuator, KARMPConnector, KARMPSensor,
                      KARMPShape, KARMPValue, KARMPAttribute, KARMPSupport, KARMPDebugEntity,
                      KARMPInitialCondition, KARMPAnalysisCase, KARMPAnalysisStep,
                      KARMPGenericEntity>;
static_assert(karmp::HoldSameFamilies(karmp::Families(), FilingFamilies()),
              "each family that a world keeps is filed when it is read");

constexpr std::wstring_view IdName = L"id";

const KARMPDeserializer* Child(const KARMPDeserializer& node, std::wstring_view name)
{
    const KARMPDeserializer* element = nullptr;
    node.GetElement(name, element);
    return element;
}

} // namespace

namespace karmp {

// Files what was read by the families of the classes.
class WorldFiler
{
public:
    explicit WorldFiler(KARMPWorld& world) : m_world(world) {}

    void File(const QOBSharedHandle<KARMPEntity>& entity) { File(entity, false); }
    // The same for entities that are not listed twice, each of which no registry has that had
    // entities before.
    void FileNew(const std::vector<const KARMPEntityTable::Entry*>& entries);

private:
    using Add = void (*)(KARMPWorld& world, const QOBSharedHandle<KARMPEntity>& entity, bool isNew);
    template <class T>
    struct AddTo
    {
        static void Call(KARMPWorld& world, const QOBSharedHandle<KARMPEntity>& entity, bool isNew)
        {
            const QOBSharedHandle<T>& typed = HandleAs<T>(entity);
            if (!isNew) {
                world.Add(typed);
                return;
            }
            if constexpr (std::is_same_v<T, KARMPValue>)
                world.PlaceValue(typed);
            world.Registry<T>().Core().AddNew(nullptr, nullptr, QOBSharedBase(entity));
        }
    };

    void File(const QOBSharedHandle<KARMPEntity>& entity, bool isNew)
    {
        if (const Add add = m_adds.Of<AddTo>(entity.getClassInfo()))
            add(m_world, entity, isNew);
    }

    KARMPWorld& m_world;
    FunctionOfFamily<FilingFamilies, Add> m_adds;
};

// A registry that grows without a look-up gets its index when it is first asked for one. That, and
// the prefetching of entities that lie in another order than that of their identifiers, is a third
// of the time of a load of 100,000 springs.
void WorldFiler::FileNew(const std::vector<const KARMPEntityTable::Entry*>& entries)
{
    constexpr std::size_t Ahead = kar::FarPrefetchDistance;
    const bool isNew = !Families::AnyOf(
        [this](auto family) { return m_world.Count<typename decltype(family)::Type>() > 0; });
    for (std::size_t index = 0; index < entries.size(); ++index) {
        if (index + 2 * Ahead < entries.size())
            kar::Prefetch(entries[index + 2 * Ahead], sizeof(KARMPEntityTable::Entry));
        if (index + Ahead < entries.size())
            kar::Prefetch(entries[index + Ahead]->Entity().get(), sizeof(QOBSharedObject));
        File(entries[index]->Entity(), isNew);
    }
}

} // namespace karmp

namespace {

// A missing component is 0; nothing is given when the element itself is missing.
std::optional<std::array<double, 3>> ReadTriple(const KARMPDeserializer& world,
                                                std::wstring_view name,
                                                const karmp::Names<3>& names)
{
    const KARMPDeserializer* element = Child(world, name);
    if (element == nullptr)
        return {};
    std::array<double, 3> values{};
    for (std::size_t i = 0; i < names.size(); ++i) {
        const KARMPDeserializer* component = nullptr;
        element->GetElement(names[i], component, values[i]);
    }
    return values;
}

// Rebuilds the entities of a document. All of them exist, under the basic world, before any reads
// its content; they are listed in no registry while they read.
class EntitiesReader
{
public:
    EntitiesReader(KARMPWorld& target, const KARMPDeserializer& world);

    void Create();
    void ReadContents();
    void File();
    void ReadGlobals(const KARMPDeserializer& world);

private:
    using ElementVector = KARMPDeserializer::ElementVector;
    struct Registry
    {
        const KARMPDeserializer* element;
        ElementVector elements;
        /// What each element was entered as; null where that failed.
        std::vector<const KARMPEntityTable::Entry*> entries;
    };

    const KARMPEntityTable::Entry* Create(const KARMPDeserializer* element);
    const KARMPEntityTable::Entry* Enter(const KARMPDeserializer& element,
                                         const QOBSharedHandle<KARMPEntity>& entity);
    KARMPFactory::Class ClassOf(std::wstring_view elementName);
    void ReadContent(const KARMPDeserializer* element, const KARMPEntityTable::Entry* entry);
    void FileByIdentifier();
    void FileByDocument();

    KARMPWorld& m_world;
    QOBSharedHandle<QOBBasicEntity> m_parent;
    KARMPEntityTable m_entities;
    std::vector<Registry> m_registries;
    std::wstring_view m_className;
    KARMPFactory::Class m_class;
    bool m_areNew = true; // nobody but the table holds a new entity
};

EntitiesReader::EntitiesReader(KARMPWorld& target, const KARMPDeserializer& world) : m_world(target)
{
    std::size_t count = 0;
    karmp::ForEachRegistryElement([&](const auto& element) {
        if (const KARMPDeserializer* registry = Child(world, element.name)) {
            m_registries.push_back({registry, {}, {}});
            registry->AppendElements(m_registries.back().elements);
            count += m_registries.back().elements.size();
        }
    });
    const karmp::RecordedElement recorded = karmp::NodeBuilder::Recorded(world);
    if (recorded.records != nullptr)
        m_entities.UseNumbers(*recorded.records, recorded.records->identifiers);
    else
        m_entities.Reserve(count);
}

void EntitiesReader::Create()
{
    for (Registry& registry : m_registries) {
        registry.entries.reserve(registry.elements.size());
        for (const KARMPDeserializer* element : registry.elements)
            registry.entries.push_back(Create(element));
    }
}

const KARMPEntityTable::Entry* EntitiesReader::Create(const KARMPDeserializer* element)
{
    const KARMPReadingPlace location(element);
    if (!KARMPVerify(element != nullptr))
        return nullptr;
    QOBSharedHandle<KARMPEntity> entity;
    if (!KARMPVerify(!KARFailed(KARMPFactory::Create(ClassOf(element->Id()), entity)))) {
        m_className = {}; // the report may have a listener that registers the class
        return nullptr;
    }
    m_areNew = m_areNew && entity->getReferenceCount() == 1;
    const KARMPEntityTable::Entry* const entry = Enter(*element, entity);
    if (!KARMPVerify(entry != nullptr))
        return nullptr;
    if (!m_parent)
        m_parent =
            QOBSharedHandle<QOBBasicEntity>(m_world.getExtendible(), QOBSharedBase::WriteLock);
    if (KARMPVerify(static_cast<bool>(m_parent)))
        m_parent->addLogicalChild(entity);
    return entry;
}

// Null for an element without an identifier.
const KARMPEntityTable::Entry* EntitiesReader::Enter(const KARMPDeserializer& element,
                                                     const QOBSharedHandle<KARMPEntity>& entity)
{
    const karmp::RecordedElement recorded = karmp::NodeBuilder::Recorded(element);
    if (m_entities.UsesNumbersOf(recorded.records)) {
        const karmp::AttributeRecord* const identifier = karmp::IdentifierOf(recorded);
        if (identifier != nullptr && identifier->IsPlain())
            return &m_entities.Enter(identifier->identifier, recorded.bytes + identifier->value,
                                     entity);
    }
    karmp::ReadText identifier;
    const bool isThere = !KARFailed(element.GetAttribute(IdName, identifier));
    return isThere ? &m_entities.Enter(identifier, entity) : nullptr;
}

// The elements of a registry come by name.
KARMPFactory::Class EntitiesReader::ClassOf(std::wstring_view elementName)
{
    if (elementName != m_className || m_className.empty()) {
        m_className = elementName;
        m_class = KARMPFactory::Class(KARMPSerializationServices::to_type(elementName));
    }
    return m_class;
}

void EntitiesReader::ReadContents()
{
    for (const Registry& registry : m_registries)
        for (std::size_t index = 0; index < registry.elements.size(); ++index)
            ReadContent(registry.elements[index], registry.entries[index]);
}

// Of two entities with one identifier, and so with one entry, the later one reads both elements. An
// element that made none is read by the one that another made.
void EntitiesReader::ReadContent(const KARMPDeserializer* element,
                                 const KARMPEntityTable::Entry* entry)
{
    const KARMPReadingPlace location(element);
    const QOBSharedHandle<KARMPEntity>* found = entry != nullptr ? &entry->Entity() : nullptr;
    if (entry == nullptr) {
        karmp::ReadText identifier;
        if (!KARMPVerify(element != nullptr &&
                         !KARFailed(element->GetAttribute(IdName, identifier))))
            return;
        found = m_entities.Find(identifier);
    }
    KARMPVerify(found != nullptr && *found &&
                !KARFailed((*found)->Deserialize(element, m_entities)));
}

void EntitiesReader::File()
{
    if (KARGetEnv("ORDERED_DESERIALIZATION") != nullptr)
        FileByDocument();
    else
        FileByIdentifier();
}

void EntitiesReader::FileByIdentifier()
{
    karmp::WorldFiler filer(m_world);
    const std::vector<const KARMPEntityTable::Entry*> entries = m_entities.InOrder();
    if (m_areNew) {
        filer.FileNew(entries);
        return;
    }
    for (const KARMPEntityTable::Entry* entry : entries)
        filer.File(entry->Entity());
}

void EntitiesReader::FileByDocument()
{
    karmp::WorldFiler filer(m_world);
    for (const Registry& registry : m_registries) {
        ElementVector elements;
        registry.element->AppendOrderedElements(elements);
        for (const KARMPDeserializer* element : elements) {
            const KARMPReadingPlace location(element);
            karmp::ReadText identifier;
            if (!KARMPVerify(element != nullptr &&
                             !KARFailed(element->GetAttribute(IdName, identifier))))
                continue;
            if (const QOBSharedHandle<KARMPEntity>* found = m_entities.Find(identifier))
                filer.File(*found);
        }
    }
}

void EntitiesReader::ReadGlobals(const KARMPDeserializer& world)
{
    const KARMPDeserializer* element = Child(world, karmp::Globals);
    if (element == nullptr)
        return;
    const KARMPReadingPlace location(element);
    karmp::ElementReader globals(element);
    globals.Reference<KARMPBody>(
        karmp::GlobalBody, m_entities,
        [this](const auto& body) { return m_world.SetGlobalBody(body); });
    globals.Reference<KARMPAxisSystem>(
        karmp::GlobalAxisSystem, m_entities,
        [this](const auto& axisSystem) { return m_world.SetGlobalAxisSystem(axisSystem); });
    globals.Reference<KARMPVariable>(karmp::GlobalTime, m_entities, [this](const auto& time) {
        return m_world.SetGlobalTime(time);
    });
}

} // namespace

KARStatus KARMPWorld::Deserialize(const KARMPDeserializer* deserializer)
{
    if (deserializer == nullptr)
        return KARFailure;
    Remove(m_globalBody);
    Remove(QOBSharedHandle<KARMPGeometry>(m_globalAxisSystem));
    const QOBSharedHandle<KARMPVariable> time(m_globalTime, QOBSharedBase::WriteLock);
    if (KARMPVerify(static_cast<bool>(time)))
        Remove(time);

    const KARMPDeserializer* world = nullptr;
    if (KARFailed(deserializer->GetElement(karmp::WorldElement, world)) || world == nullptr)
        return KARFailure;
    world->GetAttribute(karmp::LinearTolerance, m_linearTolerance);
    world->GetAttribute(karmp::AngularTolerance, m_angularTolerance);
    if (const auto origin = ReadTriple(*world, karmp::Origin, karmp::OriginNames))
        m_origin.SetCoord((*origin)[0], (*origin)[1], (*origin)[2]);
    if (const auto size = ReadTriple(*world, karmp::Size, karmp::SizeNames))
        m_size = *size;
    if (const auto gravity = ReadTriple(*world, karmp::Gravity, karmp::GravityNames))
        m_gravity = KARMathVector((*gravity)[0], (*gravity)[1], (*gravity)[2]);

    EntitiesReader entities(*this, *world);
    entities.Create();
    entities.ReadContents();
    entities.File();
    entities.ReadGlobals(*world);
    return KARSuccess;
}

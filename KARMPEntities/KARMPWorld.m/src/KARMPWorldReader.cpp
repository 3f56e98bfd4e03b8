#include "KARMPAxisSystem.h"
#include "KARMPElementReader.h"
#include "KARMPFailedCheck.h"
#include "KARMPGenericFactory.h"
#include "KARMPReadingPlace.h"
#include "KARMPSerializationServices.h"
#include "KARMPWorld.h"
#include "KARMPWorldDocument.h"
#include "KARProcessServices.h"
#include "QOBBasicWorld.h"

#include <optional>

namespace {

// The first of these that an entity's class is derived from decides where it is filed.
using FilingFamilies =
    karmp::FamilyList<KARMPJoint, KARMPBody, KARMPConstraint, KARMPVariable, KARMPGeometry,
                      KARMPMaterial, KARMPInteraction, KARMPActuator, KARMPConnector, KARMPSensor,
                      KARMPShape, KARMPValue, KARMPAttribute, KARMPSupport, KARMPDebugEntity,
                      KARMPInitialCondition, KARMPAnalysisCase, KARMPAnalysisStep,
                      KARMPGenericEntity>;

const KARMPDeserializer* child(const KARMPDeserializer& node, std::wstring_view name)
{
    const KARMPDeserializer* element = nullptr;
    if (node.HasElement(name))
        node.GetElement(name, element);
    return element;
}

// A missing component is 0; nothing is given when the element itself is missing.
std::optional<std::array<double, 3>> readTriple(const KARMPDeserializer& world,
                                                std::wstring_view name,
                                                const karmp::Names<3>& names)
{
    const KARMPDeserializer* element = child(world, name);
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
    using ElementList = KARMPDeserializer::ElementList;
    struct Registry
    {
        const KARMPDeserializer* element;
        ElementList elements;
        /// What each element was entered as; null where that failed.
        std::vector<const KARMPEntityTable::Entry*> entries;
    };

    const KARMPEntityTable::Entry* Create(const KARMPDeserializer* element);
    void ReadContent(const KARMPDeserializer* element, const KARMPEntityTable::Entry* entry);
    void FileByIdentifier();
    void FileByDocument();
    void File(const QOBSharedHandle<KARMPEntity>& entity);

    KARMPWorld& m_world;
    KARMPEntityTable m_entities;
    std::vector<Registry> m_registries;
};

EntitiesReader::EntitiesReader(KARMPWorld& target, const KARMPDeserializer& world) : m_world(target)
{
    std::size_t count = 0;
    karmp::ForEachRegistryElement([&](const auto& element) {
        if (const KARMPDeserializer* registry = child(world, element.name)) {
            m_registries.push_back({registry, {}, {}});
            registry->GetElements(m_registries.back().elements);
            count += m_registries.back().elements.size();
        }
    });
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
    const KARMPReadingPlace place(element);
    if (!KARMPVerify(element != nullptr))
        return nullptr;
    QOBSharedHandle<KARMPEntity> entity;
    const std::string className = KARMPSerializationServices::to_type(element->Id());
    if (!KARMPVerify(!KARFailed(KARMPFactory::Create(className, entity))))
        return nullptr;
    std::wstring_view identifier;
    if (!KARMPVerify(!KARFailed(element->GetAttribute(L"id", identifier))))
        return nullptr;
    const KARMPEntityTable::Entry& entry = m_entities.Enter(identifier, entity);

    const QOBSharedHandle<QOBBasicEntity> parent(m_world.getExtendible(), QOBSharedBase::WriteLock);
    if (KARMPVerify(static_cast<bool>(parent)) && !parent->hasLogicalChild(entity))
        parent->addLogicalChild(entity);
    return &entry;
}

void EntitiesReader::ReadContents()
{
    for (const Registry& registry : m_registries) {
        for (std::size_t place = 0; place < registry.elements.size(); ++place)
            ReadContent(registry.elements[place], registry.entries[place]);
    }
}

// Of two entities with one identifier, and so with one entry, the later one reads both elements. An
// element that made none is read by the one that another made.
void EntitiesReader::ReadContent(const KARMPDeserializer* element,
                                 const KARMPEntityTable::Entry* entry)
{
    const KARMPReadingPlace place(element);
    std::wstring_view identifier;
    if (!KARMPVerify(element != nullptr && !KARFailed(element->GetAttribute(L"id", identifier))))
        return;
    const QOBSharedHandle<KARMPEntity>* found =
        entry != nullptr ? &entry->second : m_entities.Find(identifier);
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
    for (const KARMPEntityTable::Entry* entry : m_entities.InOrder())
        File(entry->second);
}

void EntitiesReader::FileByDocument()
{
    for (const Registry& registry : m_registries) {
        ElementList elements;
        registry.element->GetOrderedElementList(elements);
        for (const KARMPDeserializer* element : elements) {
            const KARMPReadingPlace place(element);
            std::wstring_view identifier;
            if (!KARMPVerify(element != nullptr &&
                             !KARFailed(element->GetAttribute(L"id", identifier))))
                continue;
            if (const QOBSharedHandle<KARMPEntity>* found = m_entities.Find(identifier))
                File(*found);
        }
    }
}

void EntitiesReader::File(const QOBSharedHandle<KARMPEntity>& entity)
{
    if (!entity)
        return;
    const QOBClassInfo& info = entity.getClassInfo();
    FilingFamilies::AnyOf([&](auto family) {
        using T = typename decltype(family)::Type;
        if (!info.isDerivedFrom(T::ClassInfo()))
            return false;
        m_world.Add(QOBSharedHandle<T>(entity));
        return true;
    });
}

void EntitiesReader::ReadGlobals(const KARMPDeserializer& world)
{
    const KARMPDeserializer* element = child(world, karmp::Globals);
    if (element == nullptr)
        return;
    const KARMPReadingPlace place(element);
    karmp::ElementReader globals(element);
    globals.Reference<KARMPBody>(karmp::GlobalBody, m_entities,
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
    if (const auto origin = readTriple(*world, karmp::Origin, karmp::OriginNames))
        m_origin.SetCoord((*origin)[0], (*origin)[1], (*origin)[2]);
    if (const auto size = readTriple(*world, karmp::Size, karmp::SizeNames))
        m_size = *size;
    if (const auto gravity = readTriple(*world, karmp::Gravity, karmp::GravityNames))
        m_gravity = KARMathVector((*gravity)[0], (*gravity)[1], (*gravity)[2]);

    EntitiesReader entities(*this, *world);
    entities.Create();
    entities.ReadContents();
    entities.File();
    entities.ReadGlobals(*world);
    return KARSuccess;
}

#include "KARMPDocuments.h"
#include "KARMPFamilies.h"
#include "KARMPInteraction.h"
#include "KARMPItems.h"
#include "KARMPListedEntities.h"
#include "KARMPSilentListener.h"
#include "KARMPWorld.h"

#include <algorithm>
#include <new>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace karmp::documents {

namespace {

/// Gives entities identifiers that depend on nothing but the world, and lists what it should list.
class WorldCompletion
{
public:
    explicit WorldCompletion(KARMPWorld& world) : m_world(world) {}

    void Run()
    {
        NoteIdentifiers();
        for (const GlobalEntity& global : GlobalsOf(m_world))
            if (NoteUnlisted(global.entity, global.family))
                Name(*global.entity, global.element);
        NoteTargets();
        NoteLayers();
        Families::ForEach([this](auto family) { Complete<typename decltype(family)::Type>(); });
    }

private:
    using Entity = QOBSharedHandle<KARMPEntity>;
    struct Unlisted
    {
        std::wstring_view family;
        Entity entity;
    };

    // An entity of a class whose element reading does not find has not got the identifier of it.
    static bool IsNamed(const KARMPEntity& entity)
    {
        const auto items = ItemsOf(entity.getClassInfo());
        return items.empty() || items.front().isReadBack;
    }

    void NoteIdentifiers()
    {
        const ListedEntities listed(m_world);
        std::wstring identifier;
        for (std::size_t number = 0; number < listed.Count(); ++number) {
            m_listed.insert(&listed.At(number));
            if (!IsNamed(listed.At(number)))
                continue;
            GetIdentifierOf(listed.At(number), identifier);
            m_identifiers.insert(identifier);
        }
    }

    // True for an entity that is noted.
    bool NoteUnlisted(const Entity& entity, std::wstring_view family)
    {
        if (!entity || !m_listed.insert(entity._getReferent()).second)
            return false;
        m_unlisted.push_back({family, entity});
        return true;
    }

    // Where the document has another global, the world's own ones may still refer to one another:
    // its body has its axis system.
    void NoteTargets()
    {
        const auto note = [this](const ItemInfo&, const Entity& target) {
            for (const FamilyRecord& family : FamilyRecords())
                if (target->isDerivedFrom(*family.info) && NoteUnlisted(target, family.element))
                    Name(*target, target->getEntityName());
        };
        for (std::size_t next = 0; next < m_unlisted.size(); ++next) {
            const Entity unlisted = m_unlisted[next].entity; // noting others moves the list
            ForEachTarget(*unlisted, note);
        }
    }

    // A collision layer is an interaction, which its record does not tell.
    void NoteLayers()
    {
        QOBSharedHandle<KARMPInteraction> interaction;
        for (int index = 0; index < m_world.Count<KARMPInteraction>(); ++index) {
            m_world.Get<KARMPInteraction>(index, interaction);
            ForEachTarget(*interaction, [this](const ItemInfo&, const Entity& target) {
                if (dynamic_cast<const KARMPInteraction*>(target.get()) != nullptr)
                    NoteUnlisted(target, RegistryElementName<KARMPInteraction>());
            });
        }
    }

    // An entity that has an identifier keeps it.
    void Name(KARMPEntity& entity, std::wstring_view wanted)
    {
        std::wstring identifier(wanted);
        for (int number = 2; m_identifiers.count(identifier) != 0; ++number)
            identifier = std::wstring(wanted) + L'_' + std::to_wstring(number);
        entity.SetIdentifier(identifier);
        GetIdentifierOf(entity, identifier);
        m_identifiers.insert(identifier);
    }

    // A world that reads lists its entities in the order of identifiers.
    template <class T>
    void Complete()
    {
        std::vector<std::pair<std::wstring, Entity>> all;
        bool isChanged = false;
        for (int index = 0; index < m_world.Count<T>(); ++index) {
            QOBSharedHandle<T> listed;
            m_world.Get<T>(index, listed);
            const Entity& entity =
                all.emplace_back(std::wstring(), Entity::unchecked(listed)).second;
            if (!IsNamed(*entity)) {
                Name(*entity, ElementNameOf(*entity));
                isChanged = true;
            }
        }
        for (const Unlisted& unlisted : m_unlisted) {
            if (unlisted.family != RegistryElementName<T>())
                continue;
            all.emplace_back(std::wstring(), unlisted.entity);
            isChanged = true;
        }
        if (!isChanged)
            return;
        for (auto& [identifier, entity] : all)
            GetIdentifierOf(*entity, identifier);
        std::sort(all.begin(), all.end(),
                  [](const auto& left, const auto& right) { return left.first < right.first; });
        m_world.EmptyRegistry<T>();
        for (const auto& [identifier, entity] : all)
            m_world.Add<T>(QOBSharedHandle<T>::unchecked(entity));
    }

    KARMPWorld& m_world;
    std::unordered_set<std::wstring> m_identifiers;
    std::unordered_set<const QOBSharedObject*> m_listed;
    std::vector<Unlisted> m_unlisted;
};

} // namespace

KARStatus CompleteWorld(KARMPWorld& world)
{
    try {
        const SilentListener listener; // of an entity that refuses a second identifier
        WorldCompletion(world).Run();
        return KARSuccess;
    } catch (const std::bad_alloc&) {
        return KAROutOfMemory;
    }
}

} // namespace karmp::documents

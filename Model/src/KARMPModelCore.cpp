#include "KARMPModelCore.h"

#include "KARMPGenericFactory.h"
#include "KARTextConversion.h"
#include "QOBBasicWorld.h"

#include <exception>
#include <new>
#include <unordered_map>
#include <utility>

namespace karmp::model {

namespace {

static_assert([]<class... T>(FamilyList<T...>) { return sizeof...(T); }(Families()) == 19,
              "the index counts each family");

KARMPFactory::Class FactoryClassOf(const QOBClassInfo& info)
{
    thread_local std::unordered_map<const QOBClassInfo*, KARMPFactory::Class> classes;
    const auto found = classes.find(&info);
    return found != classes.end()
               ? found->second
               : classes.emplace(&info, KARMPFactory::Class(info.getName())).first->second;
}

} // namespace

std::string TitleOf(const KARMPEntity& entity)
{
    std::string title = entity.getClassName() + " \"" + kar::ToUtf8(entity.getEntityName()) + '"';
    const std::wstring* const identifier = IdentifierIfGiven(entity);
    if (identifier != nullptr && *identifier != entity.getEntityName())
        title += " [" + kar::ToUtf8(*identifier) + ']';
    return title;
}

bool Core::Perform(Where where, void* work, bool (*call)(void* work, Edit& edit))
{
    std::optional<Problem> reason;
    {
        Edit edit(*this, m_log);
        try {
            if (call(work, edit)) {
                edit.Commit();
                return true;
            }
            edit.Fail("the call failed");
        } catch (const std::bad_alloc&) {
            edit.Fail("an allocation failed", KAROutOfMemory);
        } catch (const std::exception& error) {
            edit.Fail(std::string("the call failed: ") + error.what());
        }
        reason = edit.Reason();
    }
    reason->where = where;
    m_problems.push_back(std::move(*reason));
    return false;
}

Core::Entity Core::Create(const QOBClassInfo& info) const
{
    Entity entity;
    if (KARFailed(KARMPFactory::Create(FactoryClassOf(info), entity)))
        return {};
    return entity;
}

KARStatus Core::File(const Entity& entity, const FamilyOperations& family)
{
    const QOBSharedHandle<QOBBasicEntity> parent(m_world->getExtendible());
    if (!parent)
        return KARFailure;
    if (const KARStatus status = parent->addLogicalChild(entity); KARFailed(status))
        return status;
    if (const KARStatus status = family.add(*m_world, entity); status != KARSuccess)
        return KARFailed(status) ? status : KARFailure;
    m_index.Add(entity);
    ++m_known[static_cast<std::size_t>(&family - AllFamilies().data())];
    return KARSuccess;
}

void Core::Unfile(const Entity& entity, const FamilyOperations& family)
{
    const std::size_t count = family.count(*m_world);
    family.remove(*m_world, entity);
    m_index.Remove(*entity);
    // It may not have been listed, when filing it failed.
    if (family.count(*m_world) < count)
        --m_known[static_cast<std::size_t>(&family - AllFamilies().data())];
    entity->orphanObject();
}

// The registries append, so that a longer list has new entities at its end. Entities that somebody
// removed past the model make a list shorter.
void Core::RefreshIndex()
{
    const auto families = AllFamilies();
    std::array<std::size_t, FamilyCount> counts{};
    std::size_t sum = 0;
    bool isShorter = false;
    bool isLonger = false;
    for (std::size_t i = 0; i < FamilyCount; ++i) {
        counts[i] = families[i].count(*m_world);
        sum += counts[i];
        isShorter = isShorter || counts[i] < m_known[i];
        isLonger = isLonger || counts[i] > m_known[i];
    }
    if (!isShorter && !isLonger)
        return;
    if (isShorter) {
        m_index.Clear();
        m_known = {};
    }
    m_index.Reserve(sum);
    for (std::size_t i = 0; i < FamilyCount; ++i) {
        for (; m_known[i] < counts[i]; ++m_known[i])
            if (const Entity entity = families[i].at(*m_world, m_known[i]))
                m_index.Add(entity);
    }
}

KARMPEntity* Core::FindByIdentifier(std::wstring_view identifier)
{
    RefreshIndex();
    KARMPEntity* const entity = m_index.Find(identifier);
    return entity != nullptr && !entity->isOrphaned() ? entity : nullptr;
}

std::vector<Core::Entity> Core::FindByKey(std::wstring_view key, Fits fits)
{
    const auto fitting = [fits](const KARMPEntity& entity) {
        return fits == nullptr || fits(entity);
    };
    std::vector<Entity> found;
    if (KARMPEntity* const entity = FindByIdentifier(key); entity != nullptr && fitting(*entity)) {
        found.emplace_back(entity);
        return found;
    }
    ForEach(-1, [&](Entity entity) {
        if (entity->getEntityName() == key && fitting(*entity))
            found.push_back(std::move(entity));
    });
    return found;
}

} // namespace karmp::model

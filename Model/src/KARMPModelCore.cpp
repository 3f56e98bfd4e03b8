#include "KARMPModelCore.h"

#include "KARMPModelNames.h"
#include "KARTextConversion.h"
#include "QOBBasicWorld.h"

#include <algorithm>
#include <exception>
#include <new>
#include <utility>

namespace karmp::model {

std::string TitleOf(const KARMPEntity& entity)
{
    const std::string name = kar::ToUtf8(entity.getStoredName().Copy());
    std::string title = entity.getClassName() + " \"" + name + '"';
    const kar::SharedText* const identifier = IdentifierIfGiven(entity);
    if (identifier != nullptr && !IsText(*identifier, name))
        title += " [" + kar::ToUtf8(identifier->Copy()) + ']';
    return title;
}

Core::Core(QOBSharedHandle<KARMPWorld> world) : m_world(std::move(world))
{
    constexpr std::size_t firstProblems = 4;
    m_problems.reserve(firstProblems);
    if (!m_world)
        return;
    m_parent = QOBSharedHandle<QOBBasicEntity>(m_world->getExtendible());
    m_registries = RegistriesOf(*m_world);
    m_known.resize(m_registries.size());
    m_changes = &ChangesOf(*m_world);
}

bool Core::Perform(Where where, void* work, bool (*call)(void* work, Edit& edit))
{
    Edit edit(*this, m_log, m_log.size());
    try {
        if (call(work, edit)) {
            if (m_openBlocks > 0)
                KeepLog();
            edit.Commit();
            if (m_openBlocks == 0)
                m_log.clear();
            return true;
        }
        edit.Fail("the call failed");
    } catch (const std::bad_alloc&) {
        // A text that needs no allocation.
        edit.Fail("no memory left", KAROutOfMemory);
    } catch (const std::exception& error) {
        edit.Fail(std::string("the call failed: ") + error.what());
    }
    edit.UndoAll();
    edit.Reason().where = where;
    try {
        m_problems.push_back(std::move(edit.Reason()));
    } catch (const std::bad_alloc&) {
        // There are problems enough, since the first ones have their capacity from the start on.
    }
    return false;
}

// What a block unlinks may be in no registry.
void Core::KeepLog()
{
    for (; m_keptSteps < m_log.size(); ++m_keptSteps) {
        m_kept.emplace_back(m_log[m_keptSteps].entity);
        m_kept.emplace_back(m_log[m_keptSteps].target);
    }
}

std::size_t Core::OpenBlock()
{
    ++m_openBlocks;
    return m_log.size();
}

void Core::CloseBlock(std::size_t begin, bool isKept)
{
    if (!isKept)
        Edit(*this, m_log, begin);
    m_keptSteps = std::min(m_keptSteps, m_log.size());
    if (--m_openBlocks > 0)
        return;
    m_log.clear();
    m_keptSteps = 0;
    m_kept.clear();
}

Core::Made& Core::FindMade(const QOBClassInfo& info)
{
    const auto found = std::find_if(m_made.begin(), m_made.end(),
                                    [&info](const Made& made) { return made.info == &info; });
    if (found == m_made.end())
        m_made.insert(m_made.begin(), {&info, KARMPFactory::Class(info.getName()), NoFamily});
    else
        std::swap(*found, m_made.front());
    return m_made.front();
}

Core::Entity Core::Create(const QOBClassInfo& info, std::size_t& family)
{
    Made& made = MadeOf(info);
    Entity entity;
    if (KARFailed(KARMPFactory::Create(made.factory, entity)) || !entity ||
        (&entity->getClassInfo() != &info && !entity->isDerivedFrom(info)))
        return {};
    if (made.family == NoFamily)
        made.family = FamilyOf(*entity);
    family = made.family;
    return entity;
}

KARStatus Core::File(const Entity& entity, std::size_t family)
{
    if (!m_parent)
        return KARFailure;
    if (const KARStatus status = m_parent->addLogicalChild(entity); KARFailed(status))
        return status;
    if (const KARStatus status = m_registries[family]->Add(entity); status != KARSuccess)
        return KARFailed(status) ? status : KARFailure;
    ++m_known[family];
    return KARSuccess;
}

void Core::Unfile(const Entity& entity, std::size_t family)
{
    RegistryCore& registry = *m_registries[family];
    const std::size_t count = registry.Count();
    registry.Remove(entity);
    m_index.Remove(*entity);
    // It may not have been listed, when filing it failed.
    if (registry.Count() < count)
        --m_known[family];
    entity->orphanObject();
}

// The registries append, so that a longer list has new entities at its end. When that does not
// account for all changes, entities were removed, and the index starts anew.
void Core::EnterChanges()
{
    std::size_t sum = 0;
    std::size_t known = 0;
    for (std::size_t i = 0; i < m_known.size(); ++i) {
        sum += Count(i);
        known += m_known[i];
    }
    if (*m_changes - m_knownChanges != sum - known) {
        m_index.Clear();
        std::fill(m_known.begin(), m_known.end(), 0);
    }
    m_index.Reserve(sum);
    for (std::size_t i = 0; i < m_known.size(); ++i)
        for (; m_known[i] < Count(i); ++m_known[i])
            m_index.Add(Entity::unchecked(m_registries[i]->At(m_known[i])));
    m_knownChanges = *m_changes;
}

std::vector<Core::Entity> Core::FindByKey(std::string_view key, Fits fits)
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
        if (IsText(entity->getStoredName(), key) && fitting(*entity))
            found.push_back(std::move(entity));
    });
    return found;
}

} // namespace karmp::model

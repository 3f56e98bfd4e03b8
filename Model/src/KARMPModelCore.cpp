#include "KARMPModelCore.h"

#include "KARMPModelNames.h"
#include "KARTextConversion.h"
#include "QOBBasicWorld.h"

#include <algorithm>
#include <exception>
#include <new>
#include <utility>

namespace karmp::model {

namespace {

static_assert([]<class... T>(FamilyList<T...>) { return sizeof...(T); }(Families()) == 19,
              "the index counts each family");

std::size_t CountAll(const KARMPWorld& world)
{
    std::size_t sum = 0;
    Families::ForEach([&](auto family) {
        sum += static_cast<std::size_t>(world.Count<typename decltype(family)::Type>());
    });
    return sum;
}

} // namespace

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
    if (m_world)
        m_parent = QOBSharedHandle<QOBBasicEntity>(m_world->getExtendible());
}

bool Core::Perform(Where where, void* work, bool (*call)(void* work, Edit& edit))
{
    std::optional<Problem> reason;
    {
        Edit edit(*this, m_log, m_log.size());
        try {
            if (call(work, edit)) {
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
        reason = edit.Reason();
    }
    reason->where = where;
    try {
        m_problems.push_back(std::move(*reason));
    } catch (const std::bad_alloc&) {
        // There are problems enough, since the first ones have their capacity from the start on.
    }
    return false;
}

// What a block unlinks may be in no registry.
void Core::KeepLog()
{
    if (m_openBlocks == 0)
        return;
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

const std::wstring& Core::Wide(std::string_view text)
{
    AssignWide(m_wide, text);
    return m_wide;
}

// Entities of one class are often created in a row.
Core::Made& Core::MadeOf(const QOBClassInfo& info)
{
    if (m_made.empty() || m_made.front().info != &info) {
        const auto found = std::find_if(m_made.begin(), m_made.end(),
                                        [&info](const Made& made) { return made.info == &info; });
        if (found == m_made.end())
            m_made.insert(m_made.begin(), {&info, KARMPFactory::Class(info.getName()), nullptr});
        else
            std::swap(*found, m_made.front());
    }
    return m_made.front();
}

Core::Entity Core::Create(const QOBClassInfo& info, const FamilyOperations*& family)
{
    Made& made = MadeOf(info);
    Entity entity;
    if (KARFailed(KARMPFactory::Create(made.factory, entity)) || !entity ||
        (&entity->getClassInfo() != &info && !entity->isDerivedFrom(info)))
        return {};
    if (made.family == nullptr)
        made.family = FamilyOf(*entity);
    family = made.family;
    return entity;
}

void Core::Count(const FamilyOperations& family, int change)
{
    m_known[static_cast<std::size_t>(&family - AllFamilies().data())] +=
        static_cast<std::size_t>(change);
    m_knownInAll += static_cast<std::size_t>(change);
}

KARStatus Core::File(const Entity& entity, const FamilyOperations& family)
{
    if (!m_parent)
        return KARFailure;
    if (const KARStatus status = m_parent->addLogicalChild(entity); KARFailed(status))
        return status;
    if (const KARStatus status = family.add(*m_world, entity); status != KARSuccess)
        return KARFailed(status) ? status : KARFailure;
    Count(family, 1);
    return KARSuccess;
}

void Core::Unfile(const Entity& entity, const FamilyOperations& family)
{
    const std::size_t count = family.count(*m_world);
    family.remove(*m_world, entity);
    m_index.Remove(*entity);
    // It may not have been listed, when filing it failed.
    if (family.count(*m_world) < count)
        Count(family, -1);
    entity->orphanObject();
}

// The registries append, so that a longer list has new entities at its end. Entities that somebody
// removed past the model make a list shorter.
void Core::RefreshIndex()
{
    const std::size_t sum = CountAll(*m_world);
    if (sum == m_knownInAll)
        return;
    const auto families = AllFamilies();
    std::array<std::size_t, FamilyCount> counts{};
    bool isShorter = false;
    for (std::size_t i = 0; i < FamilyCount; ++i) {
        counts[i] = families[i].count(*m_world);
        isShorter = isShorter || counts[i] < m_known[i];
    }
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
    m_knownInAll = sum;
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

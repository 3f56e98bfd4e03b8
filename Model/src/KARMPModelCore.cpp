#include "KARMPModelCore.h"

#include "KARMPModelNames.h"
#include "KARTextConversion.h"
#include "QOBBasicWorld.h"

#include <algorithm>
#include <cstddef>
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

namespace {

/// True while it lives.
class Flag
{
public:
    explicit Flag(bool& flag) : m_flag(flag) { m_flag = true; }
    ~Flag() { m_flag = false; }
    Flag(const Flag&) = delete;
    Flag& operator=(const Flag&) = delete;

private:
    bool& m_flag;
};

void FailWith(Edit& edit, const std::exception& error)
{
    try {
        edit.Fail(std::string("the call failed: ") + error.what());
    } catch (const std::bad_alloc&) {
        edit.Fail("the call failed");
    }
}

} // namespace

// There are problems enough where no memory is left, since the first ones have their capacity from
// the start on.
void Core::AddProblem(Problem&& problem) noexcept
{
    try {
        m_problems.push_back(std::move(problem));
    } catch (const std::bad_alloc&) {
        return;
    }
}

void Core::AddProblem(const char* text, KARStatus status, Where where) noexcept
{
    try {
        m_problems.push_back({text, status, where});
    } catch (const std::bad_alloc&) {
        AddProblem({"the call failed", status, where});
    }
}

// The texts of what goes on without memory are short enough to need no allocation.
void Core::NoteFailedUndo() noexcept
{
    AddProblem("the undo failed", KAROutOfMemory, m_running);
}

bool Core::MayBegin(Where where)
{
    if (m_world && !m_isRunning)
        return true;
    AddProblem(m_world ? "a call inside of another call of the model is refused"
                       : "there is no world",
               KARFailure, where);
    return false;
}

bool Core::Perform(Where where, void* work, bool (*call)(void* work, Edit& edit))
{
    if (m_isRunning || !m_world)
        return MayBegin(where);
    const Flag running(m_isRunning);
    m_running = where;
    Edit edit(*this, m_log, m_log.size());
    try {
        if (call(work, edit)) {
            if (IsInBlock())
                KeepLog();
            edit.Commit();
            if (!IsInBlock())
                m_log.clear();
            return true;
        }
        edit.Fail("the call failed");
    } catch (const std::bad_alloc&) {
        edit.Fail("no memory left", KAROutOfMemory);
    } catch (const std::exception& error) {
        FailWith(edit, error);
    } catch (...) {
        edit.Fail("the call failed");
    }
    edit.Reason().where = where;
    AddProblem(std::move(edit.Reason()));
    edit.UndoAll();
    CutKept();
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

// As long as the log is again.
void Core::CutKept() noexcept
{
    m_keptSteps = std::min(m_keptSteps, m_log.size());
    m_kept.erase(m_kept.begin() + static_cast<std::ptrdiff_t>(2 * m_keptSteps), m_kept.end());
}

std::size_t Core::OpenBlock(Where where)
{
    if (!MayBegin(where))
        return 0;
    try {
        m_blocks.push_back({m_lastBlock + 1, m_log.size()});
    } catch (const std::bad_alloc&) {
        AddProblem("no memory left", KAROutOfMemory, where);
        return 0;
    }
    return ++m_lastBlock;
}

void Core::CloseBlock(std::size_t number, bool isKept, Where where)
{
    if (!MayBegin(where))
        return;
    const auto block = std::find_if(m_blocks.begin(), m_blocks.end(),
                                    [number](const Block& open) { return open.number == number; });
    if (block == m_blocks.end()) {
        AddProblem("a block of edits that is not open cannot be ended", KARFailure, where);
        return;
    }
    if (!isKept) {
        const Flag running(m_isRunning);
        m_running = where;
        Edit(*this, m_log, block->begin).UndoAll();
    }
    m_blocks.erase(block, m_blocks.end());
    if (!IsInBlock())
        m_log.clear();
    CutKept();
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
    // Without a look-up, which would be a tenth of an addition: no registry lists what is new.
    m_registries[family]->AddNew(nullptr, nullptr, QOBSharedBase(entity));
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
    // One more, since a look-up may come between Prepare and AddPrepared.
    m_index.Reserve(sum + 1);
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

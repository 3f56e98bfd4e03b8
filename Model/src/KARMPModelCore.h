#pragma once

#include "KARMPEntityIndex.h"
#include "KARMPFamilyOperations.h"
#include "KARMPGenericFactory.h"
#include "KARMPModelEdit.h"
#include "KARMPModelResult.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace karmp::model {

/// True for an entity by the class that a caller wants; null for any.
using Fits = bool (*)(const KARMPEntity& entity);

/// What a model is made of: its world, the index of its entities, and the problems of its calls.
class Core
{
public:
    using Entity = QOBSharedHandle<KARMPEntity>;

    explicit Core(QOBSharedHandle<KARMPWorld> world);

    const QOBSharedHandle<KARMPWorld>& World() const { return m_world; }
    const std::vector<Problem>& Problems() const { return m_problems; }
    std::vector<Problem>& Problems() { return m_problems; }

    /// Does an edit as a whole or not at all: `work` gets the Edit and returns whether it
    /// succeeded. After a failure, an exception included, all that was done is undone and there is
    /// one problem more. An edit inside of another one, which a loader makes, fails.
    template <class Work>
    bool Perform(Where where, Work work)
    {
        static_assert(std::is_invocable_r_v<bool, Work, Edit&>);
        return Perform(where, &work, [](void* called, Edit& edit) {
            return (*static_cast<Work*>(called))(edit);
        });
    }

    /// The same with work that makes an entity: `work` gets the Edit and a handle to fill. Gives
    /// the entity, null after a failure.
    template <class T, class Work>
    QOBSharedHandle<T> Make(Where where, Work work)
    {
        QOBSharedHandle<T> made;
        if (!Perform(where, [&](Edit& edit) { return work(edit, made); }))
            made = nullptr;
        return made;
    }

    /// Opens a block of edits and gives its number, 0 inside of an edit.
    std::size_t OpenBlock(Where where);
    /// Closes the block of a number with those that were opened in it, and undoes their edits
    /// unless they are kept. It is a problem when there is no such block.
    void CloseBlock(std::size_t number, bool isKept, Where where);
    bool IsInBlock() const { return !m_blocks.empty(); }
    /// The step with which the innermost block begins.
    std::size_t BeginOfBlock() const { return m_blocks.empty() ? 0 : m_blocks.back().begin; }
    /// Where an entry of a long list was found last.
    int& NearIndex() { return m_nearIndex; }
    /// Adds a problem, at the line of the call that runs: something could not be undone.
    void NoteFailedUndo() noexcept;

    /// True for an entity of another world.
    bool IsForeign(const KARMPEntity& entity) const
    {
        const auto world = entity.getWorld();
        return world && world._getReferent() != m_parent._getReferent();
    }
    /// A new entity that stands under no world, null when the factory makes none of the class, and
    /// its family, NoFamily for a class that no world lists.
    Entity Create(const QOBClassInfo& info, std::size_t& family);
    /// Prepares for an entity with an identifier.
    EntityIndex::Key PrepareIndex(std::string_view identifier)
    {
        RefreshIndex();
        return m_index.Prepare(identifier);
    }
    /// Enters the entity into the index, which keeps it, unless there is one of that identifier,
    /// which it gives.
    KARMPEntity* Index(const EntityIndex::Key& key, std::string_view identifier,
                       const Entity& entity)
    {
        return m_index.AddPrepared(key, identifier, entity);
    }
    /// Places a new entity, which no registry lists, under the basic world and adds it to the
    /// registry of its family.
    KARStatus File(const Entity& entity, std::size_t family);
    /// Takes it out again, out of the index too; it is orphaned.
    void Unfile(const Entity& entity, std::size_t family);
    /// How many entities the world lists of a family.
    std::size_t Count(std::size_t family) const
    {
        return family < m_registries.size() ? m_registries[family]->Count() : 0;
    }

    /// The entity of an identifier, null without one.
    KARMPEntity* FindByIdentifier(std::string_view identifier)
    {
        RefreshIndex();
        return m_index.Find(identifier);
    }
    /// Those that a key names: the one of that identifier, otherwise all of that name.
    std::vector<Entity> FindByKey(std::string_view key, Fits fits);
    /// Calls `visit` with each entity of the world, or of one family.
    template <class Visit>
    void ForEach(int family, Visit visit) const
    {
        for (std::size_t i = 0; i < m_registries.size(); ++i) {
            if (family >= 0 && static_cast<std::size_t>(family) != i)
                continue;
            const std::size_t count = m_registries[i]->Count();
            for (std::size_t index = 0; index < count; ++index)
                visit(Entity::unchecked(m_registries[i]->At(index)));
        }
    }

private:
    bool Perform(Where where, void* work, bool (*call)(void* work, Edit& edit));
    bool MayBegin(Where where);
    void AddProblem(Problem&& problem) noexcept;
    void AddProblem(const char* text, KARStatus status, Where where) noexcept;
    void KeepLog();
    void CutKept() noexcept;
    /// Enters what somebody added or removed past the model.
    void RefreshIndex()
    {
        if (m_changes != nullptr && *m_changes != m_knownChanges)
            EnterChanges();
    }
    void EnterChanges();

    /// What is known of a class that entities were created of.
    struct Made
    {
        const QOBClassInfo* info = nullptr;
        KARMPFactory::Class factory;
        std::size_t family = NoFamily;
    };

    // Entities of one class are often created in a row.
    Made& MadeOf(const QOBClassInfo& info)
    {
        return !m_made.empty() && m_made.front().info == &info ? m_made.front() : FindMade(info);
    }
    Made& FindMade(const QOBClassInfo& info);

    QOBSharedHandle<KARMPWorld> m_world;
    QOBSharedHandle<QOBBasicEntity> m_parent; // the basic world
    std::vector<Made> m_made;                 // the latest one first
    EntityIndex m_index;
    std::vector<RegistryCore*> m_registries; // none without a world
    /// How many entities of each family the index knows.
    std::vector<std::size_t> m_known;
    /// The changes to the registries that others made, and those that the index knows.
    const std::uint32_t* m_changes = nullptr;
    std::uint32_t m_knownChanges = 0;
    std::vector<Problem> m_problems;
    EditLog m_log;
    /// A block of edits.
    struct Block
    {
        std::size_t number = 0;
        std::size_t begin = 0; // in the log
    };
    std::vector<Block> m_blocks; // the innermost one last
    std::size_t m_lastBlock = 0;
    int m_nearIndex = 0;
    bool m_isRunning = false;
    Where m_running{"", 0};
    /// The entities of the steps of open blocks, and how many steps these are.
    std::vector<Entity> m_kept;
    std::size_t m_keptSteps = 0;
};

/// KARMPBody "Crank", with the identifier in brackets where it is another text.
std::string TitleOf(const KARMPEntity& entity);

} // namespace karmp::model

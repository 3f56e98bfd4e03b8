// Undoing what edits did, with as few allocations as can be.
#include "KARMPModelCore.h"
#include "KARMPModelEdit.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <utility>
#include <vector>

namespace karmp::model {

namespace {

using Entity = Edit::Entity;

// Lists append, so that what stands behind the entry is taken out and appended in its turn.
void InsertEntry(const ItemInfo& item, KARMPEntity& owner, const Entity& target, std::size_t index,
                 std::wstring_view word)
{
    if (item.AddTarget(owner, target, word) != KARSuccess)
        return;
    const auto at = static_cast<int>(index);
    for (int behind = item.Count(owner) - 1 - at; behind > 0; --behind) {
        const Entity next = item.TargetAt(owner, at, word);
        item.RemoveTarget(owner, next);
        item.AddTarget(owner, next, word);
    }
}

/// A list of an entity as it was and is to be again.
class FormerList
{
public:
    FormerList(const ItemInfo& item, KARMPEntity& owner) : m_item(item), m_owner(owner)
    {
        const int count = item.Count(owner);
        for (int index = 0; index < count; ++index) {
            Entry& entry = m_entries.emplace_back();
            entry.target = item.TargetAt(owner, index, entry.word).get();
            entry.isListed = true;
        }
        m_kept = m_entries.size();
    }

    void Insert(std::size_t index, KARMPEntity* target, std::wstring_view word)
    {
        const std::size_t at = std::min(index, m_entries.size());
        m_entries.insert(m_entries.begin() + static_cast<std::ptrdiff_t>(at),
                         {target, word, false});
        m_kept = std::min(m_kept, at);
    }
    /// Holds the entries, which Restore takes out and appends.
    void Hold()
    {
        for (const Entry& entry : m_entries)
            m_held.emplace_back(entry.target);
    }
    void Restore()
    {
        for (std::size_t i = m_kept; i < m_held.size(); ++i) {
            if (m_entries[i].isListed)
                m_item.RemoveTarget(m_owner, m_held[i]);
            m_item.AddTarget(m_owner, m_held[i], m_entries[i].word);
        }
    }

private:
    struct Entry
    {
        KARMPEntity* target = nullptr;
        std::wstring_view word;
        bool isListed = false;
    };

    const ItemInfo& m_item;
    KARMPEntity& m_owner;
    std::vector<Entry> m_entries;
    std::vector<Entity> m_held;
    std::size_t m_kept = 0;
};

} // namespace

void Edit::UndoAll() noexcept
{
    bool isTold = false;
    while (m_log.size() > m_begin) {
        try {
            if (UndoUnlinks())
                continue;
            Undo(m_log.back());
        } catch (...) {
            if (!std::exchange(isTold, true))
                m_core.NoteFailedUndo();
        }
        m_log.pop_back();
    }
}

void Edit::Undo(const EditStep& step)
{
    switch (step.kind) {
    case EditStep::Kind::Nothing:
        break;
    case EditStep::Kind::Filed:
        m_core.Unfile(Entity(step.entity), step.index);
        break;
    case EditStep::Kind::Linked:
        step.item->RemoveTarget(*step.entity, Entity(step.target));
        break;
    case EditStep::Kind::Unlinked:
        step.item->AddTarget(*step.entity, Entity(step.target));
        break;
    case EditStep::Kind::Unlisted:
        InsertEntry(*step.item, *step.entity, Entity(step.target), step.index, step.word);
        break;
    case EditStep::Kind::Set:
        static_cast<void>(step.item->Set(*step.entity, step.former->value));
        break;
    case EditStep::Kind::Renamed:
        RestoreName(*step.entity, step.former->name);
        break;
    case EditStep::Kind::Configured:
        static_cast<void>(SetOptions(*m_core.World(), step.former->options));
        break;
    }
}

// Of those at the end of the log, the first one.
std::size_t Edit::FirstOfUnlinks() const
{
    std::size_t first = m_log.size();
    while (first > m_begin && (m_log[first - 1].kind == EditStep::Kind::Unlinked ||
                               m_log[first - 1].kind == EditStep::Kind::Unlisted))
        --first;
    return first;
}

// Many unlinks in a row are undone together, or each of them would move the entries behind it.
// False, and nothing is done, when there are few, or no memory to do so.
bool Edit::UndoUnlinks()
{
    constexpr std::size_t few = 16;
    const std::size_t first = FirstOfUnlinks();
    if (m_log.size() - first <= few || m_isUndoneByOne)
        return false;
    std::map<std::pair<KARMPEntity*, const ItemInfo*>, FormerList> lists;
    try {
        for (std::size_t i = m_log.size(); i-- > first;) {
            const EditStep& step = m_log[i];
            if (step.kind == EditStep::Kind::Unlisted)
                lists.try_emplace({step.entity, step.item}, *step.item, *step.entity)
                    .first->second.Insert(step.index, step.target, step.word);
        }
        for (auto& [key, list] : lists)
            list.Hold();
    } catch (...) {
        m_isUndoneByOne = true;
        return false;
    }
    m_isUndoneByOne = true; // what an exception leaves
    for (auto& [key, list] : lists)
        list.Restore();
    for (std::size_t i = m_log.size(); i-- > first;)
        if (m_log[i].kind == EditStep::Kind::Unlinked)
            Undo(m_log[i]);
    m_log.resize(first);
    m_isUndoneByOne = false;
    return true;
}

} // namespace karmp::model

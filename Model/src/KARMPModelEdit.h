#pragma once

#include "KARMPEntity.h"
#include "KARMPItems.h"
#include "KARMPModelOptions.h"
#include "KARMPModelResult.h"
#include "KARMPModelSettings.h"
#include "KARSharedText.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace karmp::model {

class Core;

/// The settings of a world.
ModelOptions OptionsOf(const KARMPWorld& world);
KARStatus SetOptions(KARMPWorld& world, const ModelOptions& options);

/// What an edit has done, in order, for undoing it. The entities are kept by the index, or by the
/// caller.
struct EditStep
{
    /// An Unlinked single reference, an entry of a list that was Unlisted.
    enum class Kind : std::uint8_t {
        Nothing,
        Filed,
        Linked,
        Unlinked,
        Unlisted,
        Set,
        Renamed,
        Configured
    };

    /// What was there before.
    struct Former
    {
        kar::SharedText name;
        Value value;
        ModelOptions options = {};
    };

    Kind kind = Kind::Nothing;
    KARMPEntity* entity = nullptr;
    KARMPEntity* target = nullptr;
    /// The family of what was filed, the index of what was unlisted.
    std::size_t index = 0;
    const ItemInfo* item = nullptr;
    std::unique_ptr<Former> former = nullptr;
    /// The word of the entry that was unlisted.
    std::wstring_view word = {};
};
using EditLog = std::vector<EditStep>;

/// One call that changes a model. What it did, the steps of the log from `begin` on, is undone,
/// backwards, unless it is committed.
class Edit
{
public:
    using Entity = QOBSharedHandle<KARMPEntity>;

    Edit(Core& core, EditLog& log, std::size_t begin) : m_core(core), m_log(log), m_begin(begin) {}
    ~Edit()
    {
        if (!m_isCommitted)
            UndoAll();
    }
    Edit(const Edit&) = delete;
    Edit& operator=(const Edit&) = delete;

    Core& Model() { return m_core; }
    /// Keeps what was done; the steps stay in the log for an undo of a block of calls.
    void Commit() { m_isCommitted = true; }
    /// Undoes what was done. Nothing is thrown: what cannot be undone, since an allocation fails,
    /// is left, and the model tells it.
    void UndoAll() noexcept;

    /// Keeps the first reason for which the edit fails; always false.
    bool Fail(std::string text, KARStatus status = KARFailure);
    /// True for a status that is no failure; otherwise fails with what could not be done.
    bool Check(KARStatus status, std::string_view what, const KARMPEntity& entity)
    {
        return !KARFailed(status) || FailCheck(status, what, entity);
    }
    Problem& Reason() { return *m_reason; }

    /// A new entity of a class, named, identified, placed and filed; null after a failure.
    Entity Create(const QOBClassInfo& info, std::string_view identifier);
    template <class T>
    QOBSharedHandle<T> Create(std::string_view identifier)
    {
        QOBSharedHandle<T> typed;
        static_cast<QOBSharedBase&>(typed) = Create(T::ClassInfo(), identifier);
        return typed;
    }
    /// True for a handle on an entity that is not deleted, nor of another world; otherwise fails.
    /// Entities under no world may be elements of others.
    bool IsThere(const QOBSharedBase& entity, std::string_view role);

    /// Makes both halves of a link, or the one of a reference that has no counterpart; `item`, a
    /// name or path, chooses among several links of the two classes.
    bool Link(const Entity& first, const Entity& second, std::string_view item = {});
    /// Takes both halves of all links between two entities, or of those by an item; false when
    /// there is none.
    bool Unlink(const Entity& first, const Entity& second, std::string_view item = {});
    bool Rename(const Entity& entity, std::string_view name);
    /// Changes the settings of the world; those that stay may be what a document had.
    bool Configure(const ModelOptions& options);
    /// Stores a value of an item; links on both sides.
    bool Set(const Entity& entity, const ItemInfo& item, const Value& value);
    /// Stores several by their names, numbers of value references as constants.
    bool SetAll(const Entity& entity, Settings settings);

    /// Makes one half.
    bool LinkOne(const ItemInfo& item, const Entity& owner, const Entity& target);
    /// Takes one half away; `any` becomes true if there was one.
    bool UnlinkOne(const ItemInfo& item, const Entity& owner, const Entity& target, bool& any);

private:
    void Undo(const EditStep& step);
    std::size_t FirstOfUnlinks() const;
    bool UndoUnlinks();
    bool IsNew(const KARMPEntity& entity) const;
    bool AreThere(const Value& value);
    bool FailCheck(KARStatus status, std::string_view what, const KARMPEntity& entity);
    bool FailToCreate(const QOBClassInfo& info, const Entity& entity);
    bool FailAsTaken(std::string_view identifier, const KARMPEntity& entity);
    bool SetByName(const Entity& entity, const Setting& setting, bool isLast);
    bool SetNumberOf(const Entity& entity, const ItemInfo& item, double number);
    bool SetTargets(const Entity& entity, const ItemInfo& item, const Value& value);
    EditStep& NextStep();

    Core& m_core;
    EditLog& m_log;
    std::size_t m_begin;
    bool m_isCommitted = false;
    /// Unlinks are undone one by one, which allocates nothing.
    bool m_isUndoneByOne = false;
    std::optional<Problem> m_reason;
};

} // namespace karmp::model

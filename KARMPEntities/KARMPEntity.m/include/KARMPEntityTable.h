#pragma once

#include "KARMPExport.h"
#include "KARMPNodeMemory.h"
#include "KARMPNodeStorage.h"
#include "QOBSharedHandle.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

class KARMPEntity;

/// The entities of one document by their identifiers: every reference is resolved in it.
///
/// It stands for an ordered map from wide identifier to entity. Lookups go by hash; the order, that
/// of the identifiers compared character by character, is worked out when it is asked for.
/// Identifiers of ASCII characters, as nearly all are, are kept narrow and found by narrow texts as
/// well.
class KARMP_API KARMPEntityTable
{
public:
    /// An identifier and its entity.
    class Entry
    {
    public:
        /// The identifier as a wide text.
        std::wstring Identifier() const;
        /// May be a null handle.
        const QOBSharedHandle<KARMPEntity>& Entity() const { return m_entity; }

    private:
        friend class KARMPEntityTable;
        /// The characters when all are ASCII, else nothing.
        std::string_view Narrow() const { return {static_cast<const char*>(m_text), NarrowSize()}; }
        std::wstring_view Wide() const
        {
            return {static_cast<const wchar_t*>(m_text), m_size - NarrowSize()};
        }
        std::size_t NarrowSize() const { return m_isNarrow ? m_size : 0; }
        bool Is(std::string_view text) const { return m_isNarrow && Narrow() == text; }
        bool Is(std::wstring_view text) const;
        wchar_t At(std::size_t index) const;
        std::uint64_t Order(std::size_t start) const;
        bool ComesBefore(const Entry& other) const;

        const void* m_text = nullptr;
        std::size_t m_size = 0;
        bool m_isNarrow = false;
        QOBSharedHandle<KARMPEntity> m_entity;
    };

    /// A table without entities.
    KARMPEntityTable();
    /// Enters what an ordered map holds, null handles included, so that a map can be passed where a
    /// table is wanted. Who reads many entities makes the table once: it is a copy of the map.
    KARMPEntityTable(const std::map<std::wstring, QOBSharedHandle<KARMPEntity>>& entities);
    ~KARMPEntityTable();
    KARMPEntityTable(const KARMPEntityTable&) = delete;
    KARMPEntityTable& operator=(const KARMPEntityTable&) = delete;

    /// Enters an entity, replacing the one under the same identifier. Returns false when one was
    /// replaced.
    bool Set(std::wstring_view identifier, const QOBSharedHandle<KARMPEntity>& entity);
    /// Does the same and gives the entry, which stays where it is for as long as the table lives.
    const Entry& Enter(std::wstring_view identifier, const QOBSharedHandle<KARMPEntity>& entity);
    const Entry& Enter(const karmp::ReadText& identifier,
                       const QOBSharedHandle<KARMPEntity>& entity);
    /// Makes the table large enough for a number of entries.
    void Reserve(std::size_t count);
    /// The entity under an identifier, which may be a null handle; null when there is none.
    const QOBSharedHandle<KARMPEntity>* Find(std::wstring_view identifier) const;
    const QOBSharedHandle<KARMPEntity>* Find(const karmp::ReadText& identifier) const;
    /// Number of entries.
    std::size_t Size() const noexcept { return m_entries.size(); }
    /// All entries in the order of their identifiers; valid until the table changes.
    std::vector<const Entry*> InOrder() const;

private:
    /// Half of the slots are free at least, so that a lookup meets few of others.
    struct Slot
    {
        std::uint32_t hash = 0;
        Entry* entry = nullptr; // null in a free slot
    };

    template <class Text>
    std::size_t SlotOf(Text identifier, std::uint32_t hash) const;
    template <class Text>
    const Entry& EnterText(Text identifier, const QOBSharedHandle<KARMPEntity>& entity);
    template <class Text>
    const QOBSharedHandle<KARMPEntity>* FindText(Text identifier) const;

    karmp::NodeMemory m_texts;
    std::deque<Entry> m_entries;
    std::vector<Slot> m_slots;
};

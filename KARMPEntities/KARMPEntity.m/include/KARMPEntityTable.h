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

namespace karmp {

struct DocumentRecords;

} // namespace karmp

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
    void Reserve(std::size_t count) const;
    /// Lets entities be entered and found by the numbers, from 0 to `count`, that a document gives
    /// its identifiers. Document and identifiers must outlive the table.
    void UseNumbers(const karmp::DocumentRecords& document, std::size_t count);
    /// True when the numbers are those of a document.
    bool UsesNumbersOf(const karmp::DocumentRecords* document) const
    {
        return document != nullptr && m_document == document;
    }
    /// Enters an entity under an identifier of ASCII characters and its number, with the same
    /// result as without the number. The characters are not copied.
    const Entry& Enter(std::uint32_t number, std::string_view identifier,
                       const QOBSharedHandle<KARMPEntity>& entity);
    /// The entity that was entered with a number; null when there is none.
    const QOBSharedHandle<KARMPEntity>* Find(std::uint32_t number) const
    {
        const Entry* const entry = m_numbered[number];
        return entry != nullptr ? &entry->m_entity : nullptr;
    }
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
    Entry& Append(const void* text, std::size_t size, bool isNarrow);
    void Take(std::uint32_t hash, Entry& entry) const;
    template <class Text>
    Entry& EnterText(Text identifier, const QOBSharedHandle<KARMPEntity>& entity);
    template <class Text>
    const QOBSharedHandle<KARMPEntity>* FindText(Text identifier) const;

    karmp::NodeMemory m_texts;
    mutable std::deque<Entry> m_entries;
    /// Empty until an identifier is entered without a number or asked for: hashing those with
    /// numbers before would take longer than all that is done with them.
    mutable std::vector<Slot> m_slots;
    /// The entries by the numbers of their identifiers.
    std::vector<Entry*> m_numbered;
    const karmp::DocumentRecords* m_document = nullptr;
};

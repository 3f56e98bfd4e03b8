// The entities of one document by their identifiers, as every reference is resolved.
#pragma once

#include "KARMPExport.h"
#include "QOBSharedHandle.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class KARMPEntity;

/// An ordered map from wide identifier to entity. Lookups go by hash; the order, that of the
/// identifiers compared character by character, is worked out when it is asked for.
class KARMP_API KARMPEntityTable
{
public:
    using Entry = std::pair<const std::wstring, QOBSharedHandle<KARMPEntity>>;

    KARMPEntityTable();
    ~KARMPEntityTable();
    KARMPEntityTable(KARMPEntityTable&&) noexcept;
    KARMPEntityTable& operator=(KARMPEntityTable&&) noexcept;

    /// Enters an entity, in place of the one that is there under the identifier. Returns false when
    /// one was replaced.
    bool Set(std::wstring_view identifier, const QOBSharedHandle<KARMPEntity>& entity);
    /// Does the same and gives the entry, which stays where it is for as long as the table lives.
    const Entry& Enter(std::wstring_view identifier, const QOBSharedHandle<KARMPEntity>& entity);
    /// Makes room for a number of entries.
    void Reserve(std::size_t count);
    /// The entity under an identifier, which may be a null handle; null when there is none.
    const QOBSharedHandle<KARMPEntity>* Find(std::wstring_view identifier) const;
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

    // These are inline where they are used, in one source.
    static inline std::uint32_t Hash(std::wstring_view text) noexcept;
    inline std::size_t SlotOf(std::wstring_view identifier, std::uint32_t hash) const;

    std::deque<Entry> m_entries;
    std::vector<Slot> m_slots;
};

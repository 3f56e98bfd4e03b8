// The entities of one document by their identifiers, as every reference is resolved.
#pragma once

#include "KARMPExport.h"
#include "QOBSharedHandle.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
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
    /// The entity under an identifier, which may be a null handle; null when there is none.
    const QOBSharedHandle<KARMPEntity>* Find(std::wstring_view identifier) const;
    /// Number of entries.
    std::size_t Size() const noexcept { return m_entries.size(); }
    /// All entries in the order of their identifiers; valid until the table changes.
    std::vector<const Entry*> InOrder() const;

private:
    struct Hash
    {
        using is_transparent = void;
        std::size_t operator()(std::wstring_view text) const noexcept
        {
            return std::hash<std::wstring_view>()(text);
        }
    };

    std::unordered_map<std::wstring, QOBSharedHandle<KARMPEntity>, Hash, std::equal_to<>> m_entries;
};

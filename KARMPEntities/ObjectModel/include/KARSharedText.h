#pragma once

#include "KARPlatformExport.h"
#include "KARPrefetch.h"
#include "KARReferenceCount.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kar {

/// A text that its copies share until they get another one.
///
/// Copies of an entity have its name. Sharing it spares a clone of a world a fourth of its time,
/// which an allocation and the memory of every name would take. A text of ASCII characters takes a
/// byte a character, beside what counts its copies: names and identifiers were a fourth of a
/// world's memory as wide texts, and two blocks of the heap each. The wide form is made when
/// somebody asks for a reference to it, and then kept.
///
/// Copies may be used, changed and destroyed by different threads. What allocates throws
/// std::bad_alloc and changes nothing then.
class KAR_API SharedText
{
public:
    SharedText() noexcept = default;
    SharedText(const SharedText& source) noexcept : m_node(source.m_node)
    {
        if (m_node != nullptr)
            Add(m_node->count, 1, std::memory_order_relaxed);
    }
    SharedText& operator=(const SharedText&) = delete;
    ~SharedText()
    {
        if (m_node != nullptr)
            Release(m_node);
    }

    /// Stores a text; that of the copies stays.
    void Set(std::wstring_view text);
    /// The same for a text of which the caller knows that all characters are ASCII.
    void SetNarrow(std::string_view text);
    /// The text, kept as a wide one from now on; the reference is valid until the next Set.
    const std::wstring& Get() const;
    /// The text by itself; nothing is kept.
    std::wstring Copy() const;
    /// True when all characters are ASCII.
    bool IsNarrow() const noexcept { return m_node == nullptr || m_node->size != NotNarrow; }
    /// The text when it is narrow, else an empty one; valid until the next Set.
    std::string_view Narrow() const noexcept
    {
        return m_node != nullptr && IsNarrow() ? std::string_view(Characters(m_node), m_node->size)
                                               : std::string_view();
    }
    /// The text as a wide one, kept by the caller.
    class Wide;
    /// Prefetches what a copy counts.
    void PrefetchShared() const noexcept { Prefetch(m_node, 1); }

private:
    // The characters of a narrow text follow it.
    struct Node
    {
        std::atomic<std::uint32_t> count{1};
        std::uint32_t size = 0;
        std::atomic<const std::wstring*> wide{nullptr}; // always there when the text is not narrow
    };
    static constexpr std::uint32_t NotNarrow = UINT32_MAX;

    static char* Characters(Node* node) noexcept { return reinterpret_cast<char*>(node + 1); }
    static std::size_t BytesOf(const Node* node) noexcept
    {
        return sizeof(Node) + (node->size != NotNarrow ? node->size : 0);
    }
    // These two are inline where they are used, in one source.
    static inline Node* MakeNarrowNode(std::size_t size);
    inline void Replace(Node* node) noexcept;
    static Node* MakeNode(std::wstring_view text);
    static void Release(Node* node) noexcept;
    static const std::wstring& Empty() noexcept;

    Node* m_node = nullptr; // null when empty
};

/// Most texts, identifiers among them, need no allocation. It lasts no longer than its source.
class SharedText::Wide
{
public:
    /// Makes the wide form of a text.
    explicit Wide(const SharedText& source)
    {
        const std::string_view narrow = source.Narrow();
        if (!source.IsNarrow()) {
            m_view = source.Get();
        } else if (narrow.size() <= m_short.size()) {
            std::copy(narrow.begin(), narrow.end(), m_short.begin());
            m_view = {m_short.data(), narrow.size()};
        } else {
            m_long = source.Copy();
            m_view = m_long;
        }
    }
    Wide(const Wide&) = delete;
    Wide& operator=(const Wide&) = delete;
    ~Wide() = default;

    /// The characters.
    std::wstring_view View() const noexcept { return m_view; }

private:
    std::array<wchar_t, 64> m_short; // not initialised, which takes longer than most texts
    std::wstring m_long;
    std::wstring_view m_view;
};

} // namespace kar

#pragma once

#include "KARPlatformExport.h"
#include "KARReferenceCount.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <utility>

namespace kar {

/// A text that its copies share until they get another one.
///
/// Copies of an entity have its name. Sharing it spares a clone of a world a fourth of its time,
/// which an allocation and the memory of every name would take. Copies may be used, changed and
/// destroyed by different threads.
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

    /// The text; the reference is valid until the next Set.
    const std::wstring& Get() const noexcept { return m_node != nullptr ? m_node->text : Empty(); }
    /// Stores a text; that of the copies stays.
    void Set(std::wstring&& text);

private:
    struct Node
    {
        std::atomic<std::uint32_t> count{1};
        std::wstring text;
    };

    static const std::wstring& Empty() noexcept;
    static void Release(Node* node) noexcept;

    Node* m_node = nullptr; // null when empty
};

} // namespace kar

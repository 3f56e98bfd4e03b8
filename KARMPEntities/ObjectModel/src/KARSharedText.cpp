#include "KARSharedText.h"

#include "KARSmallMemory.h"

#include <array>
#include <cstddef>
#include <memory>
#include <new>
#include <string>
#include <utility>

namespace kar {

void SharedText::Set(std::wstring&& text)
{
    if (m_node != nullptr && m_node->count.load(std::memory_order_acquire) == 1) {
        m_node->text = std::move(text);
        return;
    }
    Node* const node =
        text.empty() ? nullptr : ::new (AllocateSmall(sizeof(Node))) Node{1, std::move(text)};
    if (Node* const former = std::exchange(m_node, node))
        Release(former);
}

void SharedText::Release(Node* node) noexcept
{
    if (Add(node->count, 0U - 1U, std::memory_order_acq_rel) != 1)
        return;
    std::destroy_at(node);
    FreeSmall(node, sizeof(Node));
}

// Never destroyed, since entities with static storage may ask for it at any time.
const std::wstring& SharedText::Empty() noexcept
{
    alignas(std::wstring) static std::array<std::byte, sizeof(std::wstring)> memory;
    static const std::wstring* const empty = ::new (memory.data()) std::wstring;
    return *empty;
}

} // namespace kar

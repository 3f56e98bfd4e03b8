#include "KARSharedText.h"

#include "KARSmallMemory.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

namespace kar {

namespace {

bool IsAscii(std::wstring_view text)
{
    // Without an exit from the loop, which the compiler then does for several characters at once.
    std::uint32_t all = 0;
    for (const wchar_t character : text)
        all |= static_cast<std::uint32_t>(character);
    return all < 0x80;
}

} // namespace

inline void SharedText::Replace(Node* node) noexcept
{
    if (Node* const former = std::exchange(m_node, node))
        Release(former);
}

inline SharedText::Node* SharedText::MakeNarrowNode(std::size_t size)
{
    void* const memory = AllocateSmall(sizeof(Node) + size);
    return ::new (memory) Node{1, static_cast<std::uint32_t>(size), nullptr};
}

void SharedText::Set(std::wstring_view text)
{
    // The new text first, which may be the one that goes.
    Replace(text.empty() ? nullptr : MakeNode(text));
}

void SharedText::SetNarrow(std::string_view text)
{
    if (text.empty() || text.size() >= NotNarrow) {
        Set(std::wstring(text.begin(), text.end()));
        return;
    }
    Node* const node = MakeNarrowNode(text.size());
    std::memcpy(Characters(node), text.data(), text.size());
    Replace(node);
}

SharedText::Node* SharedText::MakeNode(std::wstring_view text)
{
    if (text.size() < NotNarrow && IsAscii(text)) {
        Node* const node = MakeNarrowNode(text.size());
        std::transform(text.begin(), text.end(), Characters(node),
                       [](wchar_t character) { return static_cast<char>(character); });
        return node;
    }
    auto wide = std::make_unique<const std::wstring>(text);
    Node* const node = ::new (AllocateSmall(sizeof(Node))) Node{1, NotNarrow, wide.get()};
    static_cast<void>(wide.release());
    return node;
}

const std::wstring& SharedText::Get() const
{
    if (m_node == nullptr)
        return Empty();
    const std::wstring* wide = m_node->wide.load(std::memory_order_acquire);
    if (wide == nullptr) {
        // Another thread may make it, too: the first one that is stored stays.
        auto made = std::make_unique<const std::wstring>(Copy());
        if (m_node->wide.compare_exchange_strong(wide, made.get(), std::memory_order_acq_rel))
            wide = made.release();
    }
    return *wide;
}

std::wstring SharedText::Copy() const
{
    if (!IsNarrow())
        return *m_node->wide.load(std::memory_order_acquire);
    const std::string_view narrow = Narrow();
    return std::wstring(narrow.begin(), narrow.end());
}

void SharedText::Release(Node* node) noexcept
{
    if (Add(node->count, 0U - 1U, std::memory_order_acq_rel) != 1)
        return;
    const std::size_t bytes = BytesOf(node);
    delete node->wide.load(std::memory_order_acquire);
    std::destroy_at(node);
    FreeSmall(node, bytes);
}

// Never destroyed, since entities with static storage may ask for it at any time.
const std::wstring& SharedText::Empty() noexcept
{
    alignas(std::wstring) static std::array<std::byte, sizeof(std::wstring)> memory;
    static const std::wstring* const empty = ::new (memory.data()) std::wstring;
    return *empty;
}

} // namespace kar

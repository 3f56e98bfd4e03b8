#include "KARMPNodeStorage.h"

#include "KARMPVersions.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <cwchar>

namespace karmp {

namespace {

// The shared names of the process. The table never grows and keeps its names until the process
// ends, so that documents cannot fill memory with names; a name without a free slot is owned by its
// node.
constexpr std::size_t SlotCount = 8192;
constexpr std::size_t ProbeCount = 8;
constexpr std::size_t LongestShared = 48;

std::size_t Slot(std::wstring_view text)
{
    std::uint64_t hash = 14695981039346656037U;
    for (const wchar_t character : text)
        hash = (hash ^ static_cast<std::uint32_t>(character)) * 1099511628211U;
    return static_cast<std::size_t>((hash ^ (hash >> 32U)) % SlotCount);
}

// Up to this length copying a string is cheaper than keeping it.
constexpr std::size_t LongestCopied = 64;

} // namespace

NodeText::Block* NodeText::NewBlock(std::wstring_view text)
{
    void* memory = ::operator new(sizeof(Block) + text.size() * sizeof(wchar_t));
    auto* block = ::new (memory) Block{text.size()};
    std::memcpy(static_cast<void*>(block + 1), text.data(), text.size() * sizeof(wchar_t));
    return block;
}

NodeText::Block* NodeText::NewBlock(std::size_t length, NodeMemory& memory)
{
    return ::new (memory.Allocate(sizeof(Block) + length * sizeof(wchar_t))) Block{length};
}

// The text of the name's slot in the table; empty when there is no free slot for it.
NodeText NodeText::Shared(std::wstring_view text)
{
    static constinit std::array<std::atomic<Block*>, SlotCount> shared{};

    if (text.empty() || text.size() > LongestShared)
        return {};
    const std::size_t first = Slot(text);
    Block* made = nullptr;
    for (std::size_t probe = 0; probe < ProbeCount; ++probe) {
        std::atomic<Block*>& slot = shared[(first + probe) % SlotCount];
        Block* found = slot.load(std::memory_order_acquire);
        if (found == nullptr) {
            if (made == nullptr)
                made = NewBlock(text);
            if (slot.compare_exchange_strong(found, made, std::memory_order_acq_rel,
                                             std::memory_order_acquire))
                return NodeText(reinterpret_cast<std::uintptr_t>(made) | IsShared);
        }
        // Another thread may just have stored `found`.
        if (const NodeText name(reinterpret_cast<std::uintptr_t>(found) | IsShared);
            SameName(name.View(), text)) {
            ::operator delete(made);
            return name;
        }
    }
    ::operator delete(made);
    return {};
}

NodeText NodeText::Name(std::wstring_view text)
{
    NodeText name = Shared(text);
    return name.m_bits != 0 ? name : Copy(text);
}

NodeText NodeText::Name(std::wstring_view text, NodeMemory& memory)
{
    NodeText name = Shared(text);
    return name.m_bits != 0 ? name : Copy(text, memory);
}

NodeText NodeText::CurrentVersion()
{
    static const NodeText version = Name(karmp::CurrentVersion);
    return version;
}

NodeText NodeText::Copy(std::wstring_view text)
{
    if (text.empty())
        return {};
    return NodeText(reinterpret_cast<std::uintptr_t>(NewBlock(text)) | OwnsBlock);
}

NodeText NodeText::Copy(std::wstring_view text, NodeMemory& memory)
{
    if (text.empty())
        return {};
    Block* const block = NewBlock(text.size(), memory);
    std::copy(text.begin(), text.end(), reinterpret_cast<wchar_t*>(block + 1));
    return NodeText(reinterpret_cast<std::uintptr_t>(block));
}

NodeText NodeText::Widen(std::string_view text, NodeMemory& memory)
{
    if (text.empty())
        return {};
    Block* const block = NewBlock(text.size(), memory);
    std::copy(text.begin(), text.end(), reinterpret_cast<wchar_t*>(block + 1));
    return NodeText(reinterpret_cast<std::uintptr_t>(block));
}

NodeText NodeText::Take(std::wstring&& text)
{
    if (text.size() <= LongestCopied)
        return Copy(text);
    auto* string = new std::wstring(std::move(text));
    return NodeText(reinterpret_cast<std::uintptr_t>(string) | OwnsString);
}

void NodeText::Free() noexcept
{
    const auto address = m_bits & ~FlagBits;
    if ((m_bits & OwnsString) != 0)
        delete reinterpret_cast<std::wstring*>(address);
    else
        ::operator delete(reinterpret_cast<void*>(address));
}

} // namespace karmp

#include "KARMPAttributeList.h"

#include "KARMPAttributeIndex.h"

#include <new>
#include <utility>

namespace karmp {

namespace {

constexpr std::size_t LongestScanned = 16;

const QOBSharedBase* Scan(const KARMPHandleSequence& handles, std::string_view text)
{
    for (std::size_t position = 0; position < handles.Count(); ++position)
        if (AttributeIndex::TextOf(handles.At(position)) == text)
            return &handles.At(position);
    return nullptr;
}

} // namespace

struct AttributeSequence::Entries
{
    KARMPHandleSequence handles;
    std::unique_ptr<AttributeIndex> index; // only once a long sequence was searched
};

void AttributeSequence::End::operator()(Entries* entries) const noexcept
{
    delete entries;
}

std::size_t AttributeSequence::CountEntries() const noexcept
{
    return m_entries->handles.Count();
}

bool AttributeSequence::Contains(const QOBSharedObject* object) const
{
    return m_entries != nullptr && m_entries->handles.Contains(object);
}

const QOBSharedBase& AttributeSequence::At(std::size_t position) const
{
    return m_entries->handles.At(position);
}

void AttributeSequence::Append(const QOBSharedBase& handle)
{
    if (m_entries == nullptr)
        m_entries.reset(new Entries);
    m_entries->handles.Append(handle);
}

const QOBSharedBase* AttributeSequence::Find(std::string_view text) const
{
    if (m_entries == nullptr)
        return nullptr;
    const KARMPHandleSequence& handles = m_entries->handles;
    if (handles.Count() <= LongestScanned)
        return Scan(handles, text);
    try {
        if (m_entries->index == nullptr)
            m_entries->index = std::make_unique<AttributeIndex>();
        const std::size_t position = m_entries->index->Find(handles, text);
        return position < handles.Count() ? &handles.At(position) : nullptr;
    } catch (const std::bad_alloc&) {
        return Scan(handles, text);
    }
}

void AttributeSequence::Clear()
{
    // What a referent's destructor does may reach this sequence again, so it is empty by then.
    const std::unique_ptr<Entries, End> released = std::move(m_entries);
}

} // namespace karmp

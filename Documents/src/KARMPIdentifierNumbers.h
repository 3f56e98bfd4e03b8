#pragma once

#include "KARMPDocumentRecords.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace karmp::documents {

/// Numbers the identifiers of a document from 0 as they are scanned: equal ones have one number,
/// which stands in the records of their attributes.
///
/// A few identifiers wait for each other, so that the memory that one needs is fetched while others
/// are added: in a large document nearly each of them is far from the one that it equals.
class IdentifierNumbers
{
public:
    explicit IdentifierNumbers(DocumentRecords& records)
        : m_records(records), m_slots(FirstSlots), m_waiting()
    {}

    /// Adds the identifier of an attribute by its index; the bytes must stay where they are.
    void Add(std::string_view identifier, std::uint32_t attribute)
    {
        if (m_waitingCount == m_waiting.size())
            Finish();
        Await(identifier, attribute);
    }
    /// Numbers those that wait.
    void Finish();

private:
    struct Slot
    {
        /// Null in a free slot.
        const char* text = nullptr;
        std::uint32_t size = 0;
        std::uint32_t hash = 0;
        std::uint32_t number = 0;
    };
    struct Waiting
    {
        std::string_view text;
        std::uint32_t hash;
        std::uint32_t attribute;
    };
    static constexpr std::size_t FirstSlots = 128;
    static constexpr std::size_t MostWaiting = 32;

    void Await(std::string_view identifier, std::uint32_t attribute);
    std::uint32_t NumberOf(const Waiting& identifier);
    Slot& SlotAt(std::uint32_t hash) { return m_slots[hash & (m_slots.size() - 1)]; }
    void Grow();

    DocumentRecords& m_records;
    /// A power of two; half of them are free at least.
    std::vector<Slot> m_slots;
    std::array<Waiting, MostWaiting> m_waiting;
    std::size_t m_waitingCount = 0;
};

} // namespace karmp::documents

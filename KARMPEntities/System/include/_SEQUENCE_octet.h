#pragma once

#include "KARPlatformExport.h"

#include <cstddef>
#include <span>
#include <vector>

/// A growable sequence of bytes, counted from 0. An index outside the sequence reads 0, and what is
/// written there is lost.
class _SEQUENCE_octet
{
public:
    /// Makes an empty sequence.
    _SEQUENCE_octet() = default;
    /// Makes a sequence of a copy of the bytes.
    explicit _SEQUENCE_octet(std::span<const unsigned char> octets)
        : m_octets(octets.begin(), octets.end())
    {}

    /// Gives the number of bytes.
    int length() const { return static_cast<int>(m_octets.size()); }
    /// Sets the number of bytes; new ones are 0. A negative number counts as 0.
    void length(int count) { m_octets.resize(NotNegative(count)); }
    /// Reserves capacity for a number of bytes without changing the length.
    void max(int count) { m_octets.reserve(NotNegative(count)); }

    /// Gives a byte.
    unsigned char& operator[](int index)
    {
        thread_local unsigned char outside;
        outside = 0;
        return Holds(index) ? m_octets[static_cast<std::size_t>(index)] : outside;
    }
    /// Gives a byte.
    unsigned char operator[](int index) const
    {
        return Holds(index) ? m_octets[static_cast<std::size_t>(index)]
                            : static_cast<unsigned char>(0);
    }

    /// Gives the first byte's address; valid until the length changes.
    unsigned char* Data() { return m_octets.data(); }
    /// Gives the first byte's address; valid until the length changes.
    const unsigned char* Data() const { return m_octets.data(); }

    friend bool operator==(const _SEQUENCE_octet& left, const _SEQUENCE_octet& right) = default;

private:
    static std::size_t NotNegative(int count)
    {
        return count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    bool Holds(int index) const
    {
        return index >= 0 && static_cast<std::size_t>(index) < m_octets.size();
    }

    std::vector<unsigned char> m_octets;
};

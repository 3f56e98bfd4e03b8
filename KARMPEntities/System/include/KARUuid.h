#pragma once

#include "KARPlatformExport.h"
#include "KARStatus.h"

#include <array>
#include <compare>
#include <string_view>

/// A universally unique identifier: 128 bits, random, of version 4 after RFC 4122. Each thread
/// draws from a generator of its own, seeded once from the system and seeded anew in a forked
/// child. Not for secrets.
class KAR_API KARUuid
{
public:
    using Bytes = std::array<unsigned char, 16>;

    /// Size of the text's buffer: 36 characters and the terminator.
    static constexpr unsigned int TextSize = 37;

    /// Makes a fresh value.
    KARUuid();
    /// Takes the bytes as they are.
    explicit KARUuid(const Bytes& bytes) noexcept : m_bytes(bytes) {}

    /// Reads a text of 36 characters, hexadecimal digits in either case. KARFailure, with `uuid`
    /// left alone, when it is no such text.
    static KARStatus FromText(std::string_view text, KARUuid& uuid);

    /// Writes the 36 characters, in lower case, and the terminator into a buffer of TextSize bytes.
    /// There is one form of text, whatever `form` says. KARFailure when the buffer is null.
    KARStatus UUID_to_chaine(char* buffer, unsigned int form) const;

    /// Gives the bytes, in the order of the text.
    const Bytes& GetBytes() const { return m_bytes; }

    friend bool operator==(const KARUuid& left, const KARUuid& right) = default;
    friend auto operator<=>(const KARUuid& left, const KARUuid& right) = default;

private:
    Bytes m_bytes;
};

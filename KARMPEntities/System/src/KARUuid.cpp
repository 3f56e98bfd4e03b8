#include "KARUuid.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <random>

#if __has_include(<pthread.h>)
#    include <pthread.h>
#endif

namespace {

// Raised in each forked child, whose generators would otherwise repeat the parent's values.
constinit std::atomic<unsigned int> forks{0};

#if __has_include(<pthread.h>)
[[maybe_unused]] const int forkWatch =
    pthread_atfork(nullptr, nullptr, [] { forks.fetch_add(1, std::memory_order_relaxed); });
#endif

// Spreads a seed's bits over 64 bits.
std::uint64_t Mix(std::uint64_t& state)
{
    state += 0x9E3779B97F4A7C15U;
    std::uint64_t mixed = state;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
    return mixed ^ (mixed >> 31);
}

// A xoshiro256++ generator of one thread.
class Generator
{
public:
    std::uint64_t Next()
    {
        if (!m_seeded || m_fork != forks.load(std::memory_order_relaxed))
            Seed();
        const std::uint64_t result = std::rotl(m_state[0] + m_state[3], 23) + m_state[0];
        const std::uint64_t shifted = m_state[1] << 17;
        m_state[2] ^= m_state[0];
        m_state[3] ^= m_state[1];
        m_state[1] ^= m_state[2];
        m_state[0] ^= m_state[3];
        m_state[2] ^= shifted;
        m_state[3] = std::rotl(m_state[3], 45);
        return result;
    }

private:
    void Seed()
    {
        m_fork = forks.load(std::memory_order_relaxed);
        m_seeded = true;
        // Time, address and order separate threads and processes even where the system has no
        // entropy.
        static std::atomic<std::uint64_t> seedings{0};
        std::uint64_t own =
            static_cast<std::uint64_t>(
                std::chrono::high_resolution_clock::now().time_since_epoch().count()) ^
            reinterpret_cast<std::uintptr_t>(this);
        own = Mix(own) + seedings.fetch_add(1);
        for (std::uint64_t& word : m_state)
            word = Mix(own);
        try {
            std::random_device system;
            for (std::uint64_t& word : m_state)
                word ^= (static_cast<std::uint64_t>(system()) << 32) | system();
        } catch (const std::exception&) {
            // What is there already has to do.
        }
        // The one state that the generator never leaves.
        if (std::all_of(m_state.begin(), m_state.end(), [](std::uint64_t w) { return w == 0; }))
            m_state[0] = 1;
    }

    std::array<std::uint64_t, 4> m_state = {};
    unsigned int m_fork = 0;
    bool m_seeded = false;
};

bool HyphenStandsBefore(std::size_t byte)
{
    return byte == 4 || byte == 6 || byte == 8 || byte == 10;
}

int DigitValue(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    return -1;
}

} // namespace

KARUuid::KARUuid()
{
    thread_local Generator generator;
    for (std::size_t half = 0; half < m_bytes.size(); half += 8) {
        std::uint64_t bits = generator.Next();
        for (std::size_t i = 0; i < 8; ++i, bits >>= 8)
            m_bytes[half + i] = static_cast<unsigned char>(bits & 0xFFU);
    }
    constexpr unsigned int Version4 = 0x40;
    constexpr unsigned int Variant = 0x80;
    m_bytes[6] = static_cast<unsigned char>((m_bytes[6] & 0x0FU) | Version4);
    m_bytes[8] = static_cast<unsigned char>((m_bytes[8] & 0x3FU) | Variant);
}

KARStatus KARUuid::FromText(std::string_view text, KARUuid& uuid)
{
    if (text.size() != TextSize - 1)
        return KARFailure;
    Bytes bytes = {};
    std::size_t position = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (HyphenStandsBefore(i) && text[position++] != '-')
            return KARFailure;
        const int high = DigitValue(text[position]);
        const int low = DigitValue(text[position + 1]);
        if (high < 0 || low < 0)
            return KARFailure;
        bytes[i] = static_cast<unsigned char>(high * 16 + low);
        position += 2;
    }
    uuid = KARUuid(bytes);
    return KARSuccess;
}

KARStatus KARUuid::UUID_to_chaine(char* buffer, [[maybe_unused]] unsigned int form) const
{
    constexpr char Digits[] = "0123456789abcdef";
    if (buffer == nullptr)
        return KARFailure;
    for (std::size_t i = 0; i < m_bytes.size(); ++i) {
        if (HyphenStandsBefore(i))
            *buffer++ = '-';
        *buffer++ = Digits[m_bytes[i] >> 4];
        *buffer++ = Digits[m_bytes[i] & 0xFU];
    }
    *buffer = '\0';
    return KARSuccess;
}

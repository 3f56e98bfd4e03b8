#pragma once

#include <cstddef>

// The thread sanitizer of clang does not let a program replace operator new.
#if defined(__has_feature)
#    if !__has_feature(thread_sanitizer)
#        define KARMP_COUNTS_ALLOCATIONS 1
#    endif
#else
#    define KARMP_COUNTS_ALLOCATIONS 1
#endif

/// Counts what its thread gets from the global operator new, in all its forms without an alignment,
/// for as long as it lives, and lets chosen allocations fail. Counters may be nested; the innermost
/// one counts.
class AllocationCounter
{
public:
    /// False in a build that cannot count: a test that needs counts is skipped there.
#if defined(KARMP_COUNTS_ALLOCATIONS)
    static constexpr bool Counts = true;
#else
    static constexpr bool Counts = false;
#endif

    AllocationCounter();
    ~AllocationCounter();
    AllocationCounter(const AllocationCounter&) = delete;
    AllocationCounter& operator=(const AllocationCounter&) = delete;

    /// Allocations tried since the counter was made.
    std::size_t Count() const
    {
        return m_count;
    }
    /// Bytes asked for since the counter was made.
    std::size_t Bytes() const
    {
        return m_bytes;
    }
    /// Lets the n-th allocation from now on fail, counted from 1: operator new throws
    /// std::bad_alloc, its form with std::nothrow gives null. 0 lets none fail.
    void FailAllocation(std::size_t number)
    {
        m_untilFailure = number;
        m_goOnFailing = false;
    }
    /// Lets that one and all that follow fail.
    void FailAllocationsFrom(std::size_t number)
    {
        m_untilFailure = number;
        m_goOnFailing = true;
    }

    /// Notes an allocation of this thread; false when it must fail. Called by operator new.
    static bool Note(std::size_t bytes);

private:
    std::size_t m_count = 0;
    std::size_t m_bytes = 0;
    std::size_t m_untilFailure = 0;
    bool m_goOnFailing = false;
    AllocationCounter* m_outer;
};

#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>

/// Counts what a benchmark asks of the heap, and adds the counters "heap_bytes" and
/// "heap_allocations", per operation, to the benchmark's row when it goes out of scope.
class HeapCounter
{
public:
    explicit HeapCounter(benchmark::State& state);
    ~HeapCounter();
    HeapCounter(const HeapCounter&) = delete;
    HeapCounter& operator=(const HeapCounter&) = delete;

    /// Bytes and allocations asked for by the process so far.
    static std::size_t Bytes();
    static std::size_t Allocations();

private:
    benchmark::State& m_state;
    std::size_t m_bytes;
    std::size_t m_allocations;
};

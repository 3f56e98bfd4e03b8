// What work that takes long shows on a terminal.
#pragma once

#include "KARMPDocuments.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <thread>

namespace karmp::tool {

/// A line on standard error, when that is a terminal, on work that takes longer than half a second:
/// what is done, how much of how much, and the time left. The destructor removes the line.
/// Elsewhere nothing is shown.
class Progress
{
public:
    /// The units are what the numbers of Show count, "entities" for instance.
    explicit Progress(std::string activity, std::string units = "entities");
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// How much of how much is done.
    void Show(std::size_t done, std::size_t of);
    /// Calls Show while this object lives; empty where nothing is shown.
    documents::ProgressFunction Function();

private:
    using Clock = std::chrono::steady_clock;

    void Run();
    std::string Line(Clock::time_point now) const;

    const std::string m_activity;
    const std::string m_units;
    const Clock::time_point m_begin = Clock::now();
    std::mutex m_mutex;
    std::condition_variable m_ends;
    bool m_isOver = false;
    std::size_t m_done = 0;
    std::size_t m_of = 0;
    /// When the first number came: what goes before, as parsing, tells nothing of the time left.
    Clock::time_point m_counting;
    std::thread m_thread;
};

} // namespace karmp::tool

// Processes that the tool starts, and the pipes that it reads what they give from.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include <sys/types.h>

namespace karmp::tool {

using Clock = std::chrono::steady_clock;

/// A descriptor that is closed with the object.
class Descriptor
{
public:
    explicit Descriptor(int number) : m_number(number) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Get() const { return m_number; }
    void Close();

private:
    int m_number;
};

/// A running process, which is killed and waited for with the object.
class Child
{
public:
    explicit Child(pid_t process) : m_process(process) {}
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    /// The status of the process; empty when it still runs at `end`.
    std::optional<int> Wait(Clock::time_point end);

private:
    pid_t m_process;
};

/// How the reading of a pipe ended.
enum class Reading : std::uint8_t { Done, TooLong, TooLarge, Failed };

/// Appends all bytes of a pipe until it is closed, the time `end` has come, or there are more than
/// `limit`.
Reading ReadPipe(int pipe, Clock::time_point end, std::size_t limit, std::string& bytes);

/// How a process ended, by its status: "was ended by signal 9".
std::string EndText(int status);

} // namespace karmp::tool

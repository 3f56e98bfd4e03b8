#include "ChildProcess.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <thread>
#include <utility>

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace karmp::tool {

void Descriptor::Close()
{
    if (m_number >= 0)
        ::close(std::exchange(m_number, -1));
}

Child::~Child()
{
    if (m_process > 0) {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }
}

std::optional<int> Child::Wait(Clock::time_point end)
{
    constexpr std::chrono::milliseconds pause(5);
    for (int status = 0;; std::this_thread::sleep_for(pause)) {
        const pid_t ended = ::waitpid(m_process, &status, WNOHANG);
        if (ended == m_process) {
            m_process = -1;
            return status;
        }
        if ((ended < 0 && errno != EINTR) || Clock::now() >= end)
            return std::nullopt;
    }
}

Reading ReadPipe(int pipe, Clock::time_point end, std::size_t limit, std::string& bytes)
{
    std::array<char, 1U << 16U> buffer{};
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        if (left <= 0)
            return Reading::TooLong;
        pollfd wanted{pipe, POLLIN, 0};
        const int ready = ::poll(&wanted, 1, static_cast<int>(left));
        if (ready == 0)
            return Reading::TooLong;
        const ssize_t count = ready < 0 ? -1 : ::read(pipe, buffer.data(), buffer.size());
        if (count == 0)
            return Reading::Done;
        if (count < 0 && errno != EINTR)
            return Reading::Failed;
        if (count > 0)
            bytes.append(buffer.data(), static_cast<std::size_t>(count));
        if (bytes.size() > limit)
            return Reading::TooLarge;
    }
}

std::string EndText(int status)
{
    if (WIFSIGNALED(status))
        return "was ended by signal " + std::to_string(WTERMSIG(status));
    return "ended with exit code " + std::to_string(WEXITSTATUS(status));
}

} // namespace karmp::tool

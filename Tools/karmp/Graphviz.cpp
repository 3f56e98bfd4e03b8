#include "Graphviz.h"

#include "ToolLimits.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <string_view>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace karmp::tool {

namespace {

using Clock = std::chrono::steady_clock;

std::nullopt_t Report(const std::string& text)
{
    std::cerr << "karmp: " << text << '\n';
    return std::nullopt;
}

std::string SystemText(int error)
{
    return std::strerror(error);
}

struct FileCloser
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// A descriptor that is closed with the object.
class Descriptor
{
public:
    explicit Descriptor(int number) : m_number(number) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Get() const { return m_number; }
    void Close()
    {
        if (m_number >= 0)
            ::close(std::exchange(m_number, -1));
    }

private:
    int m_number;
};

/// A running program, which is killed and waited for with the object.
class Child
{
public:
    explicit Child(pid_t process) : m_process(process) {}
    ~Child()
    {
        if (m_process > 0) {
            ::kill(m_process, SIGKILL);
            ::waitpid(m_process, nullptr, 0);
        }
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    /// The status of the program; empty when it still runs at `end`.
    std::optional<int> Wait(Clock::time_point end)
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

private:
    pid_t m_process;
};

// A file without a name that holds the text and is positioned at its start.
File InputOf(const std::string& text)
{
    File input(std::tmpfile());
    if (input && std::fwrite(text.data(), 1, text.size(), input.get()) == text.size() &&
        std::fflush(input.get()) == 0 && ::lseek(::fileno(input.get()), 0, SEEK_SET) == 0)
        return input;
    Report("cannot write a temporary file: " + SystemText(errno));
    return nullptr;
}

// Starts dot without a shell; gives 0 or the system's error number.
int Start(pid_t& process, const std::string& format, int input, int output)
{
    std::string program = "dot";
    std::string type = "-T" + format;
    const std::array<char*, 3> arguments{program.data(), type.data(), nullptr};
    posix_spawn_file_actions_t actions;
    if (const int error = ::posix_spawn_file_actions_init(&actions); error != 0)
        return error;
    int error = ::posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    if (error == 0)
        error = ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    if (error == 0)
        error = ::posix_spawnp(&process, "dot", &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    return error;
}

enum class Reading : std::uint8_t { Done, TooLong, TooLarge, Failed };

// Appends all bytes of a pipe until it is closed or the time `end` has come.
Reading ReadPipe(int pipe, Clock::time_point end, std::string& bytes)
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
        if (bytes.size() > LargestPicture)
            return Reading::TooLarge;
    }
}

// Whether a picture is complete: it begins and ends as its format does.
bool IsWhole(std::string_view picture, std::string_view format)
{
    if (format == "png")
        return picture.starts_with("\x89PNG\r\n\x1a\n") &&
               picture.ends_with(std::string_view("\0\0\0\0IEND\xae\x42\x60\x82", 12));
    const auto last = picture.find_last_not_of(" \t\r\n");
    if (format == "pdf")
        return picture.starts_with("%PDF-") && last != std::string_view::npos &&
               picture.substr(0, last + 1).ends_with("%%EOF");
    return picture.find("<svg") != std::string_view::npos && last != std::string_view::npos &&
           picture.substr(0, last + 1).ends_with("</svg>");
}

std::string EndText(int status)
{
    if (WIFSIGNALED(status))
        return "was ended by signal " + std::to_string(WTERMSIG(status));
    return "ended with exit code " + std::to_string(WEXITSTATUS(status));
}

std::nullopt_t ReportTimeLimit(std::chrono::milliseconds limit)
{
    const auto seconds = std::chrono::ceil<std::chrono::seconds>(limit).count();
    return Report("Graphviz took longer than " + std::to_string(seconds) +
                  " s and was stopped; --time-limit gives it longer, and the graph can be "
                  "written as text (.dot)");
}

} // namespace

std::optional<std::string> DrawPicture(const std::string& text, const std::string& format,
                                       std::chrono::milliseconds limit)
{
    const File input = InputOf(text);
    if (!input)
        return std::nullopt;
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return Report("cannot make a pipe: " + SystemText(errno));
    const Descriptor output(ends[0]);
    Descriptor childOutput(ends[1]);
    pid_t process = -1;
    const int error = Start(process, format, ::fileno(input.get()), childOutput.Get());
    if (error == ENOENT)
        return Report("Graphviz is not installed; write the graph as text (.dot)");
    if (error != 0)
        return Report("cannot start Graphviz: " + SystemText(error));
    childOutput.Close();

    Child child(process);
    const Clock::time_point end = Clock::now() + limit;
    std::string picture;
    const Reading reading = ReadPipe(output.Get(), end, picture);
    if (reading == Reading::Failed)
        return Report("cannot read the output of Graphviz: " + SystemText(errno));
    if (reading == Reading::TooLarge)
        return Report("the picture is larger than 1 GiB");
    const std::optional<int> status =
        reading == Reading::Done ? child.Wait(end) : std::optional<int>();
    if (!status)
        return ReportTimeLimit(limit);
    if (*status != 0)
        return Report("Graphviz " + EndText(*status));
    if (!IsWhole(picture, format))
        return Report("the output of Graphviz is no whole picture");
    return picture;
}

} // namespace karmp::tool

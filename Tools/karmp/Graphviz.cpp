#include "Graphviz.h"

#include "ChildProcess.h"
#include "ToolLimits.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <string_view>

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

namespace karmp::tool {

namespace {

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
    const Reading reading = ReadPipe(output.Get(), end, LargestPicture, picture);
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

// Runs the tool as a user does and gives its output and exit code.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <string_view>

#include <sys/wait.h>
#include <unistd.h>

namespace karmp::tool {

namespace fs = std::filesystem;

struct Outcome
{
    int code = -1;
    std::string output; // both streams
};

inline std::string ReadFile(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

/// Replaces the first part of a text that is equal to `part`, which must be there.
inline std::string With(std::string text, std::string_view part, std::string_view other)
{
    const auto found = text.find(part);
    EXPECT_NE(found, std::string::npos) << part;
    return found == std::string::npos ? text : text.replace(found, part.size(), other);
}

inline constexpr const char* Values = R"(  <Values>
   <Constant id="c1" name="Damping" isActive="yes"><PhysicalQuantity>Length</PhysicalQuantity><Value>0.05</Value></Constant>
   <Boolean id="b1" name="Visible" isActive="no"><PhysicalQuantity>Length</PhysicalQuantity><Value>TRUE</Value></Boolean>
  </Values>
)";

/// A slider-crank with two values besides.
inline std::string CleanDocument()
{
    std::string text = ReadFile(KARMP_EXAMPLE_DOCUMENTS "/slider-crank.xml");
    const auto end = text.find(" </World>");
    return end == std::string::npos ? std::string() : text.insert(end, Values);
}

class Tool : public ::testing::Test
{
protected:
    Tool() { fs::create_directories(m_folder); }
    ~Tool() override
    {
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
    }

    std::string File(const std::string& name) const { return (m_folder / name).string(); }

    std::string Write(const std::string& name, const std::string& text) const
    {
        std::ofstream(File(name), std::ios::binary) << text;
        return File(name);
    }

    /// Runs the tool by the shell, after shell commands or settings of the environment, with a file
    /// as its standard input.
    static Outcome Run(const std::string& arguments, const std::string& before = {},
                       const std::string& input = "/dev/null")
    {
        return RunShell(before + ' ' + KARMP_TOOL + " <'" + input + "' " + arguments + " 2>&1");
    }
    /// The same without standard error.
    static Outcome RunQuietly(const std::string& arguments)
    {
        return RunShell(KARMP_TOOL + (' ' + arguments) + " </dev/null 2>/dev/null");
    }

    static Outcome RunShell(const std::string& command)
    {
        Outcome outcome;
        std::FILE* pipe = ::popen(command.c_str(), "r");
        if (pipe == nullptr)
            return outcome;
        std::array<char, 4096> buffer{};
        while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe))
            outcome.output.append(buffer.data(), count);
        const int status = ::pclose(pipe);
        outcome.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        return outcome;
    }

    /// Names of the files that were written.
    std::set<std::string> Files() const
    {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(m_folder))
            names.insert(entry.path().filename().string());
        return names;
    }

private:
    fs::path m_folder = fs::temp_directory_path() /
                        ("karmp-tool-test-" + std::to_string(static_cast<long>(::getpid())));
};

inline void ExpectContains(const std::string& text, const std::string& part)
{
    EXPECT_NE(text.find(part), std::string::npos) << part << "\nis not in\n" << text;
}

} // namespace karmp::tool

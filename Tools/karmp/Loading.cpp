#include "Loading.h"

#include "KARMPFamilies.h"
#include "KARMPWorld.h"
#include "Output.h"
#include "Progress.h"
#include "ToolLimits.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iostream>
#include <system_error>
#include <utility>

#include <unistd.h>

namespace karmp::tool {

namespace {

std::string Activity(const char* verb, const std::string& file)
{
    return std::string(verb) + ' ' + Printable(std::string_view(file));
}

// The small letter of an ASCII letter; any other character itself.
constexpr int Lower(int character)
{
    return character >= 'A' && character <= 'Z' ? character - 'A' + 'a' : character;
}

constexpr const char* StandardInputName = "<standard input>";

// Appends all of standard input, one byte more than the limit at most.
bool ReadStandardInput(std::string& text, std::size_t limit, documents::Diagnostics& messages)
{
    constexpr std::size_t block = 1U << 16U;
    for (std::size_t size = 0; size <= limit; text.resize(size)) {
        text.resize(size + block);
        const ssize_t count = ::read(STDIN_FILENO, text.data() + size, block);
        if (count == 0) {
            text.resize(size);
            return true;
        }
        if (count < 0 && errno != EINTR) {
            messages.items.push_back({documents::Severity::Error,
                                      documents::Code::CannotRead,
                                      StandardInputName,
                                      0,
                                      0,
                                      {},
                                      "cannot read: " + std::generic_category().message(errno)});
            return false;
        }
        size += count > 0 ? static_cast<std::size_t>(count) : 0U;
    }
    return true;
}

void PrintCount(const documents::Diagnostics& messages)
{
    if (const std::size_t count = messages.items.size(); count > 0)
        std::cerr << "karmp: the document has " << CountText(count, "problem", "problems")
                  << "; 'karmp check' lists them\n";
}

} // namespace

void PrintMessages(const documents::Diagnostics& messages, bool all)
{
    for (const documents::Diagnostic& message : messages.items)
        if (all || message.severity == documents::Severity::Error)
            std::cerr << Printable(std::string_view(documents::Format(message))) << '\n';
}

std::string JsonOf(const documents::Diagnostic& message)
{
    return "{\"severity\": " + JsonText(documents::SeverityText(message.severity)) +
           ", \"code\": " + JsonText(documents::CodeText(message.code)) +
           ", \"file\": " + JsonText(message.file) + ", \"line\": " + std::to_string(message.line) +
           ", \"column\": " + std::to_string(message.column) +
           ", \"path\": " + JsonText(message.path) + ", \"text\": " + JsonText(message.text) + '}';
}

documents::LoadResult Load(const std::string& file, const documents::LoadOptions& options)
{
    if (file != StandardStream)
        return documents::LoadFile(file, options);
    documents::LoadResult result;
    std::string text;
    if (ReadStandardInput(text, options.limits.bytes, result.diagnostics))
        result = documents::LoadText(std::move(text), StandardInputName, options);
    return result;
}

std::optional<documents::LoadResult> LoadWorld(const std::string& file)
{
    documents::LoadResult result;
    {
        Progress progress(Activity("loading", file));
        documents::LoadOptions options;
        options.progress = progress.Function();
        options.limits.diagnostics = MostProblems;
        result = Load(file, options);
    }
    if (!result.world) {
        PrintMessages(result.diagnostics, true);
        return std::nullopt;
    }
    PrintCount(result.diagnostics);
    return result;
}

std::string TitleOfFile(const std::string& file)
{
    return file == StandardStream ? "standard input"
                                  : std::filesystem::path(file).filename().string();
}

std::string EndingOf(const std::string& file)
{
    std::string ending = std::filesystem::path(file).extension().string();
    for (char& letter : ending)
        letter = static_cast<char>(Lower(letter));
    return ending;
}

bool IsSameFile(const std::string& first, const std::string& second)
{
    const auto pathOf = [](const std::string& file) {
        return file == StandardStream ? std::string("/dev/stdin") : file;
    };
    std::error_code missing;
    return second != StandardStream && std::filesystem::equivalent(pathOf(first), second, missing);
}

bool IsSameIgnoringCase(std::wstring_view element, std::string_view text)
{
    return std::equal(
        element.begin(), element.end(), text.begin(), text.end(),
        [](wchar_t left, char right) { return Lower(left) == Lower(right); });
}

std::optional<std::wstring> FamilyNamed(const std::string& name)
{
    for (const FamilyRecord& family : FamilyRecords())
        if (IsSameIgnoringCase(family.element, name))
            return std::wstring(family.element);
    std::cerr << "karmp: unknown family " << Printable(std::string_view(name)) << "; known are";
    const char* separator = " ";
    for (const FamilyRecord& family : FamilyRecords())
        std::cerr << std::exchange(separator, ", ") << Printable(family.element);
    std::cerr << '\n';
    return std::nullopt;
}

std::optional<documents::Document> ReadTree(const std::string& file)
{
    documents::Limits limits;
    limits.diagnostics = MostProblems;
    std::optional<documents::Document> document;
    {
        const Progress progress(Activity("reading", file));
        if (file == StandardStream) {
            std::string text;
            documents::Diagnostics messages;
            if (!ReadStandardInput(text, limits.bytes, messages)) {
                PrintMessages(messages, true);
                return std::nullopt;
            }
            document = documents::Document::ReadText(std::move(text), StandardInputName, limits);
        } else {
            document = documents::Document::ReadFile(file, limits);
        }
        document->Check(documents::CheckLevel::Form);
    }
    if (document->Root() == nullptr) {
        PrintMessages(document->Messages(), true);
        return std::nullopt;
    }
    PrintCount(document->Messages());
    return document;
}

} // namespace karmp::tool

#include "Loading.h"

#include "KARMPWorld.h"
#include "Output.h"

#include <filesystem>
#include <iostream>
#include <system_error>

namespace karmp::tool {

namespace {

// High enough that warnings do not crowd out an error.
constexpr std::size_t MostProblems = 1'000'000;

std::string Activity(const char* verb, const std::string& file)
{
    return std::string(verb) + ' ' + Printable(std::string_view(file));
}

// Prints the first errors of the input and the number of all.
void PrintErrors(const std::string& input, const documents::Diagnostics& messages)
{
    constexpr std::size_t most = 10;
    documents::Diagnostics first;
    for (const documents::Diagnostic& message : messages.items)
        if (message.severity == documents::Severity::Error && first.items.size() < most)
            first.items.push_back(message);
    PrintMessages(first, true);
    const std::size_t count = messages.Count(documents::Severity::Error);
    if (count > most)
        std::cerr << "... and " << count - most << " more\n";
    std::cerr << "karmp: " << Printable(std::string_view(input)) << " has " << count
              << (count == 1 ? " error" : " errors");
}

} // namespace

void PrintMessages(const documents::Diagnostics& messages, bool all)
{
    for (const documents::Diagnostic& message : messages.items)
        if (all || message.severity == documents::Severity::Error)
            std::cerr << Printable(std::string_view(documents::Format(message))) << '\n';
}

std::optional<documents::LoadResult> LoadWorld(const std::string& file)
{
    documents::LoadResult result;
    {
        const Progress progress(Activity("loading", file));
        documents::LoadOptions options;
        options.limits.diagnostics = MostProblems;
        result = documents::LoadFile(file, options);
    }
    if (!result.world) {
        PrintMessages(result.diagnostics, true);
        return std::nullopt;
    }
    if (const std::size_t count = result.diagnostics.items.size(); count > 0) {
        std::cerr << "karmp: the document has " << count << (count == 1 ? " problem" : " problems")
                  << "; 'karmp check' lists them\n";
    }
    return result;
}

bool IsSameFile(const std::string& first, const std::string& second)
{
    std::error_code missing;
    return std::filesystem::equivalent(first, second, missing);
}

bool MayWrite(const std::string& input, const std::string& output, bool force,
              const documents::Diagnostics& messages)
{
    if (!messages.HasErrors())
        return true;
    const bool inPlace = IsSameFile(input, output);
    if (force && !inPlace)
        return true;
    PrintErrors(input, messages);
    std::cerr << "; nothing was written. Mend the document ('karmp check' lists all findings), or "
              << (inPlace ? "name another file as output, with --force, for what could be read; a "
                            "document with errors is never overwritten\n"
                          : "write what could be read with --force\n");
    return false;
}

std::optional<documents::Document> ReadTree(const std::string& file)
{
    const Progress progress(Activity("reading", file));
    std::optional<documents::Document> document(documents::Document::ReadFile(file));
    if (document->Root() == nullptr) {
        PrintMessages(document->Messages(), true);
        document.reset();
    }
    return document;
}

} // namespace karmp::tool

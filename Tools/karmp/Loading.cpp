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

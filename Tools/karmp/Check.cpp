#include "Commands.h"
#include "KARMPWorld.h"
#include "Loading.h"
#include "Output.h"

#include <iostream>

namespace karmp::tool {

namespace {

using documents::Diagnostic;
using documents::Severity;

void PrintText(const Diagnostic& message)
{
    const std::string text = Printable(std::string_view(documents::Format(message)));
    std::cout << (message.severity == Severity::Error ? Red(text) : Yellow(text)) << '\n';
}

void PrintJson(const std::string& file, const documents::Diagnostics& messages)
{
    std::cout << "{\n  \"file\": " << JsonText(file)
              << ",\n  \"errors\": " << messages.Count(Severity::Error)
              << ",\n  \"warnings\": " << messages.Count(Severity::Warning)
              << ",\n  \"findings\": [";
    for (std::size_t i = 0; i < messages.items.size(); ++i)
        std::cout << (i == 0 ? "\n    " : ",\n    ") << JsonOf(messages.items[i]);
    std::cout << (messages.items.empty() ? "]\n}\n" : "\n  ]\n}\n");
}

void PrintText(const std::string& file, const documents::Diagnostics& messages, bool quiet)
{
    for (const Diagnostic& message : messages.items)
        PrintText(message);
    if (quiet)
        return;
    const std::size_t errors = messages.Count(Severity::Error);
    const std::size_t warnings = messages.Count(Severity::Warning);
    std::cout << Printable(std::string_view(file)) << ": ";
    if (messages.items.empty())
        std::cout << "no findings\n";
    else
        std::cout << errors << (errors == 1 ? " error, " : " errors, ") << warnings
                  << (warnings == 1 ? " warning\n" : " warnings\n");
}

} // namespace

int RunCheck(const CheckOptions& options)
{
    documents::LoadResult result;
    {
        const Progress progress("checking " + Printable(std::string_view(options.file)));
        documents::LoadOptions load;
        load.check = documents::CheckLevel::Mechanism;
        result = Load(options.file, load);
    }
    if (options.json)
        PrintJson(options.file, result.diagnostics);
    else
        PrintText(options.file, result.diagnostics, options.quiet);
    if (!result.world)
        return Unreadable;
    return result.diagnostics.items.empty() ? Clean : Findings;
}

} // namespace karmp::tool

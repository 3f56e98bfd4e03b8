#include "Commands.h"
#include "Differences.h"
#include "KARMPWorld.h"
#include "KARTextConversion.h"
#include "Loading.h"
#include "Output.h"

#include <algorithm>
#include <iostream>

namespace karmp::tool {

namespace {

using documents::SaveOptions;

constexpr std::size_t MaximumDifferences = 1000;

// Compares what is read from the text for the current version with what is read from the text for
// the other one, so that content that every version loses is not counted.
int PrintLosses(const QOBSharedHandle<KARMPWorld>& world, const SaveOptions& options)
{
    const auto reload = [&](std::wstring_view version) {
        SaveOptions save = options;
        save.version = version;
        std::string text;
        if (documents::SaveText(world, text, save).HasErrors())
            return QOBSharedHandle<KARMPWorld>();
        return documents::LoadText(std::move(text), "<converted>",
                                   {options.limits, documents::CheckLevel::None})
            .world;
    };
    const auto kept = reload(CurrentVersion);
    const auto converted = reload(options.version);
    if (!kept || !converted)
        return Unreadable;
    const auto losses = documents::FindDifferences(*kept, *converted);
    if (losses.empty())
        return Clean;
    std::cout << Bold("Version " + Printable(options.version) + " cannot hold:") << '\n';
    PrintText(losses, true, MaximumDifferences);
    if (losses.size() > MaximumDifferences)
        std::cout << "and more\n";
    return Findings;
}

bool IsKnown(std::wstring_view version)
{
    const auto& known = documents::KnownVersions();
    return std::find(known.begin(), known.end(), version) != known.end();
}

} // namespace

int RunConvert(const ConvertOptions& options)
{
    const auto loaded = LoadWorld(options.input);
    if (!loaded)
        return Unreadable;

    SaveOptions save;
    save.version =
        options.version.empty() ? loaded->version : kar::ToWide(std::string_view(options.version));
    save.doubles = options.exact ? documents::Doubles::Exact : documents::Doubles::Snapped;
    if (!IsKnown(save.version)) {
        std::cerr << "karmp: unknown version " << Printable(save.version) << "; known are";
        for (const std::wstring_view version : documents::KnownVersions())
            std::cerr << ' ' << Printable(version);
        std::cerr << '\n';
        return Unreadable;
    }

    if (!MayWrite(options.input, options.output, options.force, loaded->diagnostics))
        return Unreadable;

    documents::Diagnostics messages;
    {
        const Progress progress("writing " + Printable(std::string_view(options.output)));
        messages = documents::SaveFile(loaded->world, options.output, save);
    }
    PrintMessages(messages, true);
    if (messages.HasErrors())
        return Unreadable;
    const int losses = PrintLosses(loaded->world, save);
    if (losses != Clean)
        return losses;
    const bool complete = loaded->diagnostics.items.empty() && messages.items.empty();
    return complete ? Clean : Findings;
}

} // namespace karmp::tool

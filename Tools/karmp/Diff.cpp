#include "Commands.h"
#include "Differences.h"
#include "KARMPWorld.h"
#include "Loading.h"
#include "Output.h"
#include "Progress.h"
#include "Writing.h"

#include <iostream>
#include <string_view>

namespace karmp::tool {

namespace {

using documents::Difference;

// The grid that documents keep their doubles on.
constexpr double DefaultFloor = 1e-12;

void Print(const DiffOptions& options, const std::vector<Difference>& differences)
{
    if (options.json) {
        std::cout << "{\n  \"before\": " << JsonText(options.before) << ",\n  \"after\": "
                  << (options.after.empty() ? "null" : JsonText(options.after))
                  << ",\n  \"differences\": ";
        PrintJson(std::cout, differences);
        std::cout << "\n}\n";
    } else if (!differences.empty()) {
        PrintText(std::cout, differences, options.identifiers, differences.size());
        PrintSummary(std::cout, differences);
    }
}

// What a world is after a save for its document's version and a load.
std::optional<documents::LoadResult> Reload(const documents::LoadResult& loaded)
{
    const Progress progress("saving and loading again");
    documents::SaveOptions options;
    options.version = loaded.version;
    std::string text;
    const documents::Diagnostics messages = documents::SaveText(loaded.world, text, options);
    PrintMessages(messages, false);
    if (messages.HasErrors())
        return std::nullopt;
    auto again = documents::LoadText(std::move(text), "<saved>",
                                     {options.limits, documents::CheckLevel::None});
    if (again.world)
        return again;
    PrintMessages(again.diagnostics, true);
    return std::nullopt;
}

// Lists the collision layers, which reading does not. What stays unlisted is told.
bool ListLayers(const documents::LoadResult& loaded, const std::string& file)
{
    if (!Complete(*loaded.world))
        return false;
    if (const std::size_t count = UnlistedOf(loaded).items.size(); count > 0)
        std::cerr << "karmp: " << CountText(count, "collision layer", "collision layers") << " of "
                  << Printable(std::string_view(file))
                  << " cannot be compared: no relation of layers refers to "
                  << (count == 1 ? "it" : "them") << '\n';
    return true;
}

} // namespace

int RunDiff(const DiffOptions& options)
{
    const auto before = LoadWorld(options.before);
    if (!before)
        return Unreadable;
    const auto after = options.after.empty() ? Reload(*before) : LoadWorld(options.after);
    if (!after)
        return Unreadable;
    // Both, since a world that is completed lists its globals, too.
    const bool hasLayers = !before->unlisted.empty() || !after->unlisted.empty();
    if (hasLayers && !(ListLayers(*before, options.before) &&
                       ListLayers(*after, options.after.empty() ? "<saved>" : options.after)))
        return Unreadable;

    documents::DifferenceOptions how;
    how.tolerance = options.tolerance;
    how.floor = options.floor;
    if (how.floor < 0.0)
        how.floor = options.tolerance > 0.0 ? DefaultFloor : 0.0;
    how.byIdentifier = !options.byName;
    const auto differences = documents::FindDifferences(*before->world, *after->world, how);

    if (!options.quiet)
        Print(options, differences);
    return differences.empty() ? Clean : Findings;
}

} // namespace karmp::tool

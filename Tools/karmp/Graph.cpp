#include "Commands.h"
#include "GraphText.h"
#include "Graphviz.h"
#include "KARMPWorld.h"
#include "Loading.h"
#include "NamedBodies.h"
#include "Output.h"
#include "ToolLimits.h"
#include "Writing.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string_view>
#include <utility>

namespace karmp::tool {

namespace {

constexpr std::array<std::string_view, 4> Formats{"dot", "svg", "png", "pdf"};

// By the ending of the output; empty, with the reason on standard error, for an unknown one.
std::string FormatOf(const GraphOptions& options)
{
    if (!options.format.empty())
        return options.format;
    const std::string ending = EndingOf(options.output);
    if (options.output.empty() || options.output == StandardStream || ending == ".gv")
        return "dot";
    const std::string format = ending.substr(ending.empty() ? 0 : 1);
    if (std::find(Formats.begin(), Formats.end(), format) != Formats.end())
        return format;
    std::cerr << "karmp: the ending of " << Printable(std::string_view(options.output))
              << " is none of .dot, .gv, .svg, .png and .pdf; --format says what to write\n";
    return {};
}

// Around a body, unless it is null.
std::optional<std::string> GraphBytes(const GraphOptions& options, const std::string& format,
                                      const KARMPWorld& world, const KARMPBody* around)
{
    GraphContents contents;
    contents.sensors = options.sensors;
    contents.collisions = options.collisions;
    contents.title = TitleOfFile(options.file);
    contents.around = around;
    if (around != nullptr)
        contents.reach = static_cast<std::size_t>(options.reach);
    if (format == "dot")
        return GraphText(world, contents);
    if (!options.all) {
        contents.mostBodies = MostBodies(format);
        if (contents.around == nullptr &&
            static_cast<std::size_t>(world.GetBodyCount()) > contents.mostBodies)
            std::cerr << "karmp: only the " << contents.mostBodies
                      << " bodies nearest to the ground of " << world.GetBodyCount()
                      << " are drawn, because more take Graphviz long and cannot be read in one "
                         "picture; --all draws all, "
                         "--around BODY another part\n";
    }
    return DrawPicture(GraphText(world, contents), format, std::chrono::seconds(options.timeLimit));
}

} // namespace

int RunGraph(const GraphOptions& options)
{
    if (IsSameFile(options.file, options.output)) {
        std::cerr << "karmp: the output is the document itself; choose another file\n";
        return Unreadable;
    }
    const std::string format = FormatOf(options);
    if (format.empty())
        return WrongArguments;
    if (format != "dot" && options.output.empty()) {
        std::cerr << "karmp: a picture needs --output\n";
        return WrongArguments;
    }
    const auto loaded = LoadWorld(options.file);
    if (!loaded)
        return Unreadable;
    Bodies around;
    if (!options.around.empty()) {
        around = FindBodies(*loaded->world, {options.around});
        if (around.empty())
            return WrongArguments;
    }
    const auto bytes = GraphBytes(options, format, *loaded->world,
                                  around.empty() ? nullptr : around.front().get());
    if (!bytes || !WriteText(options.output, *bytes))
        return Unreadable;
    return loaded->diagnostics.items.empty() ? Clean : Findings;
}

} // namespace karmp::tool

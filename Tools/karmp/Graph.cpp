#include "Commands.h"
#include "GraphText.h"
#include "Graphviz.h"
#include "KARMPWholeFile.h"
#include "KARMPWorld.h"
#include "Loading.h"

#include <chrono>
#include <iostream>
#include <optional>
#include <utility>

namespace karmp::tool {

namespace {

std::string FormatOf(const GraphOptions& options)
{
    if (!options.format.empty())
        return options.format;
    const auto dot = options.output.rfind('.');
    const std::string ending = dot == std::string::npos ? "" : options.output.substr(dot + 1);
    return ending == "svg" || ending == "png" ? ending : "dot";
}

} // namespace

int RunGraph(const GraphOptions& options)
{
    const std::string format = FormatOf(options);
    if (format != "dot" && options.output.empty()) {
        std::cerr << "karmp: a picture needs --output\n";
        return Unreadable;
    }
    if (IsSameFile(options.file, options.output)) {
        std::cerr << "karmp: the output is the document itself; choose another file\n";
        return Unreadable;
    }
    const auto loaded = LoadWorld(options.file);
    if (!loaded)
        return Unreadable;
    std::string bytes = GraphText(*loaded->world, {options.sensors, options.collisions});
    if (format != "dot") {
        std::optional<std::string> picture =
            DrawPicture(bytes, format, std::chrono::seconds(options.timeLimit));
        if (!picture)
            return Unreadable;
        bytes = std::move(*picture);
    }
    if (options.output.empty()) {
        std::cout << bytes;
    } else if (const auto messages = documents::WriteWholeFile(options.output, bytes);
               messages.HasErrors()) {
        PrintMessages(messages, true);
        return Unreadable;
    }
    return loaded->diagnostics.items.empty() ? Clean : Findings;
}

} // namespace karmp::tool

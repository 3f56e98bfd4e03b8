#include "Commands.h"
#include "KARMPWholeFile.h"
#include "KARMPWorld.h"
#include "Loading.h"
#include "ViewJson.h"
#include "ViewPage.h"
#include "ViewScene.h"

#include <filesystem>
#include <iostream>

namespace karmp::tool {

int RunView(const ViewOptions& options)
{
    if (IsSameFile(options.file, options.output)) {
        std::cerr << "karmp: the output is the document itself; choose another file\n";
        return Unreadable;
    }
    const auto loaded = LoadWorld(options.file);
    if (!loaded)
        return Unreadable;
    const std::string title = std::filesystem::path(options.file).filename().string();
    const std::string page = ViewPage(SceneJson(CollectScene(*loaded->world, title)));
    if (options.output.empty()) {
        std::cout << page;
    } else if (const auto messages = documents::WriteWholeFile(options.output, page);
               messages.HasErrors()) {
        PrintMessages(messages, true);
        return Unreadable;
    }
    return loaded->diagnostics.items.empty() ? Clean : Findings;
}

} // namespace karmp::tool

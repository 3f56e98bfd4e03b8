#include "Commands.h"
#include "KARMPWorld.h"
#include "Loading.h"
#include "ViewJson.h"
#include "ViewPage.h"
#include "ViewScene.h"
#include "Writing.h"

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
    const std::string title = TitleOfFile(options.file);
    const std::string page = ViewPage(SceneJson(CollectScene(*loaded->world, title)));
    if (!WriteText(options.output, page))
        return Unreadable;
    return loaded->diagnostics.items.empty() ? Clean : Findings;
}

} // namespace karmp::tool

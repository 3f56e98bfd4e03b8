// The page that shows a scene.
#pragma once

#include <string>
#include <string_view>

namespace karmp::tool {

/// A page with the viewer and the data of a scene in it, which loads nothing else. Its policy lets
/// no other program run, whatever the data hold.
std::string ViewPage(std::string_view sceneJson);

} // namespace karmp::tool

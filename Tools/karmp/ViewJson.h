// A scene as the data of a page.
#pragma once

#include <string>

namespace karmp::tool {

struct ViewScene;

/// A scene as JSON that may stand in a page: no text of the document can end the element that holds
/// it, whatever it contains. Numbers that JSON does not have are null.
std::string SceneJson(const ViewScene& scene);

} // namespace karmp::tool

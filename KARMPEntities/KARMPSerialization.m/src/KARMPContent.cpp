// The contents of all classes by the classes' names.
#include "KARMPContentWalk.h"

#include <map>

namespace karmp {

namespace {

using Contents = std::map<std::string_view, const Content& (*)(), std::less<>>;

// Filled while the library loads, whatever the order of its sources, then only read.
Contents& AllContents()
{
    static Contents contents;
    return contents;
}

} // namespace

ContentRegistration::ContentRegistration(std::string_view className, const Content& (*content)())
{
    AllContents().insert_or_assign(className, content);
}

const Content* FindContent(std::string_view className)
{
    const auto found = AllContents().find(className);
    return found != AllContents().end() ? &found->second() : nullptr;
}

} // namespace karmp

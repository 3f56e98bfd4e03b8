#include "Commands.h"
#include "KARMPWorld.h"
#include "KARTextConversion.h"

#include <algorithm>

namespace karmp::tool {

int RunConvert(const ConvertOptions& options)
{
    Writing writing(options.input, options.writing);
    documents::SaveOptions save;
    save.version = kar::ToWide(std::string_view(options.version));
    save.doubles = options.exact ? documents::Doubles::Exact : documents::Doubles::Snapped;
    if (!options.version.empty() && !VersionNamed(save.version))
        return WrongArguments;
    const auto loaded = writing.Load();
    if (!loaded)
        return Unreadable;
    if (options.version.empty())
        save.version = loaded->version;
    if (!writing.MayWrite(loaded->diagnostics, save.version) || !Complete(*loaded->world))
        return Unreadable;
    const Losses losses = LossesOf(*loaded, save.version);
    const int written = writing.Write(loaded->world, save);
    if (written == Unreadable)
        return Unreadable;
    return std::max(written, writing.ReportLosses(*loaded, losses));
}

} // namespace karmp::tool

#include "Commands.h"
#include "KARMPFamilies.h"
#include "KARMPWorld.h"
#include "KARMPWorldLosses.h"
#include "KARTextConversion.h"
#include "Loading.h"
#include "Output.h"
#include "Progress.h"
#include "QOBBasicEntity.h"

#include <algorithm>
#include <iostream>

namespace karmp::tool {

namespace {

// All entities of a document stand under the basic world. What the world does not list is not
// written: a collision layer that no interaction is about.
void TellOfUnlisted(const KARMPWorld& world)
{
    const QOBSharedHandle<QOBBasicEntity> parent(world.getExtendible());
    if (!parent)
        return;
    std::size_t unlisted = parent->getLogicalChildCount();
    Families::ForEach([&](auto family) {
        using T = typename decltype(family)::Type;
        QOBSharedHandle<T> entity;
        for (int index = 0; index < world.Count<T>(); ++index)
            if (world.Get<T>(index, entity) == KARSuccess &&
                parent->hasLogicalChild(QOBSharedHandle<QOBBasicEntity>::unchecked(entity)))
                --unlisted;
    });
    if (unlisted > 0)
        std::cerr << "karmp: no world lists " << unlisted
                  << (unlisted == 1 ? " entity" : " entities")
                  << " of the document, which a document of it lacks\n";
}

std::vector<documents::Difference> LossesOf(const KARMPWorld& world, const std::wstring& version)
{
    const Progress progress("looking for what version " + Printable(version) + " cannot hold");
    return documents::FindLosses(world, version, true);
}

} // namespace

int RunConvert(const ConvertOptions& options)
{
    documents::SaveOptions save;
    save.version = kar::ToWide(std::string_view(options.version));
    save.doubles = options.exact ? documents::Doubles::Exact : documents::Doubles::Snapped;
    if (!options.version.empty() && !VersionNamed(save.version))
        return WrongArguments;
    const auto loaded = LoadWorld(options.input);
    if (!loaded)
        return Unreadable;
    if (options.version.empty())
        save.version = loaded->version;
    if (!VersionNamed(save.version) ||
        !MayWrite(options.input, options.writing, loaded->diagnostics) ||
        KARFailed(documents::CompleteWorld(*loaded->world)))
        return Unreadable;
    const auto losses = LossesOf(*loaded->world, save.version);
    TellOfUnlisted(*loaded->world);
    const int written = WriteDocument(loaded->world, options.writing, save);
    if (written == Unreadable)
        return Unreadable;
    return std::max(written,
                    ReportLosses(options.input, options.writing, *loaded, save.version, losses));
}

} // namespace karmp::tool

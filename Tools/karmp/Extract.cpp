#include "Commands.h"
#include "EntityText.h"
#include "KARMPFamilies.h"
#include "KARMPWorld.h"
#include "KARMPWorldExtraction.h"
#include "KARMPWorldLosses.h"
#include "KARTextConversion.h"
#include "Loading.h"
#include "NamedBodies.h"
#include "Output.h"

#include <algorithm>
#include <iostream>
#include <optional>

namespace karmp::tool {

namespace {

using Entity = QOBSharedHandle<KARMPEntity>;

// The elements of the families; empty, with the reason on standard error, for an unknown one.
std::optional<std::vector<std::wstring>> FamiliesOf(const std::vector<std::string>& names)
{
    std::vector<std::wstring> families;
    for (std::string name : names) {
        // Behind a comma a person may put a blank.
        std::erase(name, ' ');
        if (IsSameIgnoringCase(L"all", name)) {
            for (const FamilyRecord& family : FamilyRecords())
                families.emplace_back(family.element);
            continue;
        }
        const auto family = FamilyNamed(name);
        if (!family)
            return std::nullopt;
        families.push_back(*family);
    }
    return families;
}

void PrintCutLinks(std::ostream& out, const std::vector<documents::CutLink>& links)
{
    if (!links.empty())
        out << Bold("Links that were cut") << '\n';
    for (const documents::CutLink& link : links)
        out << "  " << TitleOf(*link.holder) << ", " << Printable(link.item) << ": "
            << TitleOf(*link.target) << '\n';
}

void PrintUnrelated(std::ostream& out, const std::vector<Entity>& entities)
{
    if (!entities.empty())
        out << Bold("Left behind, since they refer to no entity") << '\n';
    for (const Entity& entity : entities)
        out << "  " << TitleOf(*entity) << '\n';
}

std::string JsonOf(const documents::Extraction& extract)
{
    return ",\n  \"cut\": " +
           JsonList(
               extract.cutLinks,
               [](const documents::CutLink& link) {
                   return LinkJson(link.holder, kar::ToUtf8(link.item), link.target);
               }) +
           ",\n  \"unrelated\": " + JsonList(extract.unrelated, EntityJson);
}

} // namespace

int RunExtract(const ExtractOptions& options)
{
    const auto families = FamiliesOf(options.families);
    if (!families)
        return WrongArguments;
    if (IsSameFile(options.file, options.writing.output)) {
        std::cerr << "karmp: the output is the document itself; choose another file\n";
        return Unreadable;
    }
    Writing writing(options.file, options.writing);
    const auto loaded = writing.Load();
    if (!loaded || !writing.MayWrite(loaded->diagnostics, loaded->version))
        return Unreadable;
    // Lists the collision layers, which reading does not.
    if (!loaded->unlisted.empty() && !Complete(*loaded->world))
        return Unreadable;
    const Bodies bodies = FindBodies(*loaded->world, options.bodies);
    if (bodies.empty())
        return WrongArguments;

    const documents::Extraction extract =
        documents::ExtractWorld(*loaded->world, bodies, {options.reach, *families});
    if (!extract.world || KARFailed(documents::CompleteWorld(*extract.world))) {
        std::cerr << "karmp: the extract could not be made\n";
        return Unreadable;
    }
    documents::SaveOptions save;
    save.version = loaded->version;
    save.doubles = documents::Doubles::Exact;
    const bool takesLayers =
        std::find(families->begin(), families->end(), L"Interactions") != families->end();
    const Losses losses{save.version, documents::FindLosses(*extract.world, save.version, true),
                        takesLayers ? UnlistedOf(*loaded) : documents::Diagnostics()};
    const int written = writing.Write(extract.world, save);
    if (written == Unreadable)
        return Unreadable;
    for (const documents::CutLink& lost : extract.lostItems)
        std::cerr << "karmp: " << TitleOf(*lost.holder) << " lost " << Printable(lost.item) << '\n';
    if (!options.quiet && !options.writing.json) {
        PrintCutLinks(writing.ReportStream(), extract.cutLinks);
        PrintUnrelated(writing.ReportStream(), extract.unrelated);
    }
    const int reported = writing.ReportLosses(*loaded, losses, JsonOf(extract));
    return std::max({written, reported, int{extract.lostItems.empty() ? Clean : Findings}});
}

} // namespace karmp::tool

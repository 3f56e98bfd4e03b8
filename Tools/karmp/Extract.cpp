#include "Commands.h"
#include "EntityText.h"
#include "KARMPFamilies.h"
#include "KARMPWorld.h"
#include "KARMPWorldExtraction.h"
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

bool IsSameIgnoringCase(std::wstring_view element, std::string_view text)
{
    const auto lower = [](auto character) {
        return character >= 'A' && character <= 'Z' ? character - 'A' + 'a' : +character;
    };
    return std::equal(element.begin(), element.end(), text.begin(), text.end(),
                      [&](wchar_t left, char right) { return lower(left) == lower(right); });
}

// The elements of the families; empty, with the reason on standard error, for an unknown one.
std::optional<std::vector<std::wstring>> FamiliesOf(const std::vector<std::string>& names)
{
    std::vector<std::wstring> families;
    for (const std::string& name : names) {
        bool isKnown = name == "all";
        for (const FamilyRecord& family : FamilyRecords())
            if (name == "all" || IsSameIgnoringCase(family.element, name)) {
                families.emplace_back(family.element);
                isKnown = true;
            }
        if (isKnown)
            continue;
        std::cerr << "karmp: unknown family " << Printable(std::string_view(name))
                  << "; known are all";
        for (const FamilyRecord& family : FamilyRecords())
            std::cerr << ", " << Printable(family.element);
        std::cerr << '\n';
        return std::nullopt;
    }
    return families;
}

void PrintCutLinks(const std::vector<documents::CutLink>& links)
{
    if (!links.empty())
        std::cout << Bold("Links that were cut") << '\n';
    for (const documents::CutLink& link : links)
        std::cout << "  " << TitleOf(*link.holder) << ", " << Printable(link.item) << ": "
                  << TitleOf(*link.target) << '\n';
}

} // namespace

int RunExtract(const ExtractOptions& options)
{
    const auto families = FamiliesOf(options.families);
    if (!families)
        return Unreadable;
    if (IsSameFile(options.file, options.output)) {
        std::cerr << "karmp: the output is the document itself; choose another file\n";
        return Unreadable;
    }
    const auto loaded = LoadWorld(options.file);
    if (!loaded || !MayWrite(options.file, options.output, options.force, loaded->diagnostics))
        return Unreadable;
    const Bodies bodies = FindBodies(*loaded->world, options.bodies);
    if (bodies.empty())
        return Unreadable;

    const documents::Extraction extract =
        documents::ExtractWorld(*loaded->world, bodies, {options.reach, *families});
    if (!extract.world) {
        std::cerr << "karmp: the extract could not be made\n";
        return Unreadable;
    }
    documents::SaveOptions save;
    save.version = loaded->version;
    const documents::Diagnostics messages =
        documents::SaveFile(extract.world, options.output, save);
    PrintMessages(messages, true);
    if (messages.HasErrors())
        return Unreadable;
    for (const documents::CutLink& lost : extract.lostItems)
        std::cerr << "karmp: " << TitleOf(*lost.holder) << " lost " << Printable(lost.item) << '\n';
    if (!options.quiet)
        PrintCutLinks(extract.cutLinks);
    const bool complete =
        loaded->diagnostics.items.empty() && messages.items.empty() && extract.lostItems.empty();
    return complete ? Clean : Findings;
}

} // namespace karmp::tool

// Models to and from documents.
#include "KARMPModel.h"
#include "KARMPModelCore.h"
#include "KARMPWorld.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace karmp::model {

namespace {

using documents::Diagnostics;
using documents::Severity;

constexpr const char* NoWorld = "there is no world";

bool HasErrors(const Diagnostics& findings)
{
    return std::any_of(
        findings.items.begin(), findings.items.end(),
        [](const documents::Diagnostic& finding) { return finding.severity == Severity::Error; });
}

Outcome Failed(std::string text, Where where, Diagnostics findings)
{
    return Outcome(Problem{std::move(text), KARFailure, where}, std::move(findings));
}

// A document does not tell the unit of its lengths.
Result<Model> Loaded(documents::LoadResult loaded, const std::string& what, Where where,
                     KARMPUnit::Enum lengthUnit = KARMPUnit::Meter)
{
    if (!loaded.world || HasErrors(loaded.diagnostics))
        return Failed(what + " cannot be loaded", where, std::move(loaded.diagnostics));
    loaded.world->SetLengthUnit(lengthUnit);
    Model model(loaded.world, where);
    if (!model.Problems().empty())
        return Outcome(model.Problems().front(), std::move(loaded.diagnostics));
    return {std::move(model), std::move(loaded.diagnostics)};
}

// Lists the entities of a copy as they are listed in a model, by their identifiers; those that it
// does not have come behind. A document lists them in the order of their identifiers.
void ListAs(const Core& source, KARMPWorld& copy)
{
    int family = 0;
    std::wstring identifier;
    for (RegistryCore* const registry : RegistriesOf(copy)) {
        std::unordered_map<std::wstring, std::size_t> places;
        source.ForEach(family++, [&](const QOBSharedHandle<KARMPEntity>& entity) {
            entity->GetIdentifier(identifier);
            places.emplace(identifier, places.size());
        });
        std::vector<QOBSharedBase> entities(places.size());
        for (std::size_t i = 0; i < registry->Count(); ++i) {
            const QOBSharedBase& entity = registry->At(i);
            static_cast<const KARMPEntity*>(entity._getReferent())->GetIdentifier(identifier);
            const auto found = places.find(identifier);
            if (found != places.end() && !entities[found->second])
                entities[found->second] = entity;
            else
                entities.push_back(entity);
        }
        registry->Empty();
        for (const QOBSharedBase& entity : entities)
            registry->Add(entity); // which takes no null
    }
}

} // namespace

documents::SaveOptions Exactly()
{
    documents::SaveOptions options;
    options.doubles = documents::Doubles::Exact;
    return options;
}

Result<void> Model::Save(const std::filesystem::path& path, const documents::SaveOptions& options,
                         Where where) const
{
    if (!Problems().empty())
        return Outcome(Problems().front());
    if (!World())
        return Failed(NoWorld, where, {});
    Diagnostics findings = documents::SaveFile(World(), path, options);
    if (HasErrors(findings))
        return Failed(path.string() + " was not saved", where, std::move(findings));
    return Result<void>(std::move(findings));
}

Result<std::string> Model::Text(const documents::SaveOptions& options, Where where) const
{
    if (!Problems().empty())
        return Outcome(Problems().front());
    if (!World())
        return Failed(NoWorld, where, {});
    std::string text;
    Diagnostics findings = documents::SaveText(World(), text, options);
    if (HasErrors(findings))
        return Failed("the model has no document", where, std::move(findings));
    return {std::move(text), std::move(findings)};
}

documents::Diagnostics Model::Check(documents::CheckLevel level) const
{
    if (!World())
        return {};
    std::string text;
    Diagnostics findings = documents::SaveText(World(), text, Exactly());
    if (HasErrors(findings))
        return findings;
    Diagnostics further = documents::CheckText(std::move(text), "<model>", {}, level);
    findings.items.insert(findings.items.end(), further.items.begin(), further.items.end());
    return findings;
}

Result<Model> Model::Clone(Where where) const
{
    if (!World())
        return Failed(NoWorld, where, {});
    std::string text;
    Diagnostics findings = documents::SaveText(World(), text, Exactly());
    if (HasErrors(findings))
        return Failed("the model cannot be copied", where, std::move(findings));
    KARMPUnit::Enum lengthUnit{};
    World()->GetLengthUnit(lengthUnit);
    documents::LoadResult loaded = documents::LoadText(std::move(text));
    if (loaded.world)
        ListAs(*m_core, *loaded.world);
    // What the document could not hold comes first.
    findings.items.insert(findings.items.end(), loaded.diagnostics.items.begin(),
                          loaded.diagnostics.items.end());
    loaded.diagnostics = std::move(findings);
    return Loaded(std::move(loaded), "the copy", where, lengthUnit);
}

Result<Extraction> Model::Extract(std::span<const Ref<KARMPBody>> bodies,
                                  const documents::ExtractionOptions& options, Where where) const
{
    if (!World())
        return Failed(NoWorld, where, {});
    std::vector<QOBSharedHandle<KARMPBody>> handles;
    for (const Ref<KARMPBody>& body : bodies) {
        if (!body)
            return Failed("there is no body to extract", where, {});
        if (m_core->IsForeign(*body))
            return Failed("the body to extract, " + TitleOf(*body) + ", is of another world", where,
                          {});
        handles.push_back(body.Handle());
    }
    auto extraction = documents::ExtractWorld(*World(), handles, options);
    if (!extraction.world)
        return Failed("the extract cannot be made", where, {});
    Model model(extraction.world, where);
    if (!model.Problems().empty())
        return Outcome(model.Problems().front());
    return Extraction{std::move(model), std::move(extraction.cutLinks),
                      std::move(extraction.lostItems)};
}

std::vector<documents::Difference> Model::Diff(const Model& other,
                                               const documents::DifferenceOptions& options) const
{
    if (!World() || !other.World())
        return {};
    return documents::FindDifferences(*World(), *other.World(), options);
}

Result<Model> Load(const std::filesystem::path& path, const documents::LoadOptions& options,
                   Where where)
{
    return Loaded(documents::LoadFile(path, options), path.string(), where);
}

Result<Model> LoadText(std::string text, const std::string& name,
                       const documents::LoadOptions& options, Where where)
{
    return Loaded(documents::LoadText(std::move(text), name, options), name, where);
}

} // namespace karmp::model

#include "KARMPDocuments.h"

#include "KARMPDocumentChecker.h"
#include "KARMPDocumentNames.h"
#include "KARMPDocumentPath.h"
#include "KARMPDocumentSource.h"
#include "KARMPFailedCheck.h"
#include "KARMPFamilies.h"
#include "KARMPListedEntities.h"
#include "KARMPNodeQueries.h"
#include "KARMPProgressSteps.h"
#include "KARMPReadCurves.h"
#include "KARMPReadingPlace.h"
#include "KARMPSaveCheck.h"
#include "KARMPSerializationServices.h"
#include "KARMPSilentListener.h"
#include "KARMPStreamedTree.h"
#include "KARMPTextCapacity.h"
#include "KARMPTextEscapes.h"
#include "KARMPUnlistedEntities.h"
#include "KARMPWholeFile.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"
#include "QOBException.h"

#include <algorithm>
#include <exception>
#include <new>
#include <optional>
#include <ostream>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace karmp::documents {

namespace {

// True when what a message is about may be why the library fails on the entity.
bool Explains(Code code)
{
    return (code >= Code::Reference && code <= Code::WrongRegistry) || code == Code::EquationText ||
           code == Code::MappingRange || code == Code::UnknownNumber ||
           code == Code::DisabledValue || code == Code::RepeatedReference || code == Code::Cycle ||
           code == Code::SecondFather || code == Code::UnknownFreedom ||
           code == Code::UnreadableStream;
}

// The path of the entity, or of the part of the world, that a path leads into.
std::string_view EntityPathOf(std::string_view path)
{
    std::size_t end = 0;
    for (int depth = 0; depth < 4 && end != std::string_view::npos; ++depth)
        end = path.find('/', end + 1);
    return path.substr(0, end);
}

/// Turns the failed checks of this thread into messages, one for each entity that no message
/// explains yet.
class CheckListener final : private KARMPFailedCheckListener
{
public:
    /// For writing to a tree, which `activity` calls it; deaf while `isDeaf` is true. The entities
    /// that fail are left to be told of when all are written.
    CheckListener(Messages& messages, std::string activity, const StreamedTree& tree,
                  std::vector<const KARMPEntity*>& failed, const bool& isDeaf)
        : m_messages(messages),
          m_activity(std::move(activity)),
          m_tree(&tree),
          m_failed(&failed),
          m_isDeaf(&isDeaf)
    {}
    /// For reading the tree below `root`; `known` are the messages about it.
    CheckListener(Messages& messages, std::string activity, const KARMPDocumentReader* root,
                  const Diagnostics& known, CheckLevel level)
        : m_messages(messages),
          m_activity(std::move(activity)),
          m_root(root),
          m_isMisspelt(level == CheckLevel::Mechanism &&
                       VersionMeant(root->Version()) != root->Version())
    {
        std::size_t doubled = 0;
        for (const Diagnostic& message : known.items) {
            if (Explains(message.code))
                m_told.emplace(EntityPathOf(message.path));
            doubled += message.code == Code::DuplicateIdentifier ? 1U : 0U;
        }
        if (doubled > 0 && m_root != nullptr)
            ExplainDoubled(doubled);
    }

private:
    void OnFailedCheck(const char* /*file*/, int /*line*/) override
    {
        if (m_messages.Full() || m_isMisspelt || KARMPReadingPlace::IsComplete() ||
            (m_isDeaf != nullptr && *m_isDeaf))
            return;
        if (m_tree != nullptr && m_tree->Entity() != nullptr) {
            if (m_failed->empty() || m_failed->back() != m_tree->Entity())
                m_failed->push_back(m_tree->Entity());
            return;
        }
        const Way way = m_root != nullptr ? FindWay(*m_root, KARMPReadingPlace::Current()) : Way();
        const std::string path = way.empty() ? std::string() : PathText(way);
        // Outside of an entity, any mistake may be the cause.
        const bool isExplained = way.empty() && m_root != nullptr && !m_told.empty();
        if (isExplained || !m_told.insert(path).second)
            return;
        if (way.empty()) {
            m_messages.Warning(Code::FailedCheck,
                               "the library failed on an item while " + m_activity);
            return;
        }
        const auto& node = static_cast<const KARMPDocumentReader&>(*way.back());
        m_messages.Warning(Code::FailedCheck,
                           "the library could not read all of this " + TitleOf(node), path,
                           node.Line(), node.Column());
    }

    // Entities that others of their identifiers replace, as many as were told, fail as well.
    void ExplainDoubled(std::size_t count)
    {
        using Place = std::pair<const KARMPDeserializer*, const KARMPDeserializer*>;
        std::unordered_map<std::wstring, Place> carriers; // with their families
        const KARMPDeserializer* const world = First(*m_root, L"World");
        KARMPDeserializer::ElementVector families;
        if (world != nullptr)
            world->AppendElements(families);
        for (const KARMPDeserializer* family : families) {
            KARMPDeserializer::ElementVector entities;
            family->AppendElements(entities);
            for (const KARMPDeserializer* entity : entities) {
                std::wstring identifier;
                if (!entity->HasAttribute(L"id") ||
                    KARFailed(entity->GetAttribute(L"id", identifier)))
                    continue;
                const auto [carrier, isNew] = carriers.try_emplace(identifier, family, entity);
                if (isNew)
                    continue;
                const Place& first = carrier->second;
                m_told.insert(PathText({m_root, world, first.first, first.second}));
                if (--count == 0)
                    return;
            }
        }
    }

    static std::string TitleOf(const KARMPDocumentReader& entity)
    {
        std::string title = KARMPSerializationServices::to_type(entity.Id());
        std::wstring name;
        if (entity.HasAttribute(L"name") && !KARFailed(entity.GetAttribute(L"name", name)))
            title += ' ' + Quoted(name);
        return title;
    }

    Messages& m_messages;
    std::string m_activity;
    /// Null for writing.
    const KARMPDocumentReader* m_root = nullptr;
    /// Null for reading, as what follows is.
    const StreamedTree* m_tree = nullptr;
    std::vector<const KARMPEntity*>* m_failed = nullptr;
    const bool* m_isDeaf = nullptr;
    /// The version is a misspelt one, which explains whatever fails.
    bool m_isMisspelt = false;
    /// The entities that have a message already, by path.
    std::unordered_set<std::string> m_told;
};

std::string While(std::string_view event, std::string_view activity)
{
    return std::string(event) + " while " + std::string(activity);
}

// Runs a part of an operation and makes every exception a message. False after one.
template <class Part>
bool Guarded(Messages& messages, std::string_view activity, Part part)
{
    try {
        part();
        return true;
    } catch (const QOBEInvalidCast&) {
        messages.Error(Code::InvalidCast,
                       While("the library gave up", activity) + ": a reference has a wrong class");
    } catch (const std::bad_alloc&) {
        messages.Error(Code::OutOfMemory, While("an allocation failed", activity));
    } catch (const std::exception& exception) {
        messages.Error(Code::Failed,
                       While("the library gave up", activity) + ": " + exception.what());
    }
    return false;
}

// Entities are written in the order of the list, so that the search goes on where the last one was.
void TellOfFailed(const KARMPWorld& world, const std::vector<const KARMPEntity*>& failed,
                  Messages& messages)
{
    if (failed.empty())
        return;
    const SilentListener listener;
    const ListedEntities listed(world);
    std::size_t last = 0;
    for (const KARMPEntity* const entity : failed) {
        std::size_t number = last;
        while (number < listed.Count() && &listed.At(number) != entity)
            ++number;
        const bool isListed = number < listed.Count();
        last = isListed ? number : last;
        messages.Warning(Code::FailedCheck,
                         "the library could not write all of " + TitleOf(*entity),
                         isListed ? listed.PathOf(number) : std::string());
    }
}

// A number is told of before the entities behind its own are written: its path has no position
// where the second entity of a name comes later.
void AddPositions(const KARMPWorld& world, Diagnostics& told)
{
    if (std::none_of(told.items.begin(), told.items.end(),
                     [](const Diagnostic& item) { return item.code == Code::NotFinite; }))
        return;
    const SilentListener listener;
    const ListedEntities listed(world);
    constexpr std::string_view first = "[1]";
    std::unordered_set<std::string> repeated;
    for (std::size_t number = 0; number < listed.Count(); ++number) {
        std::string path = listed.PathOf(number);
        if (path.ends_with(first)) {
            path.resize(path.size() - first.size());
            repeated.insert(std::move(path));
        }
    }
    for (Diagnostic& item : told.items) {
        const std::string entity(EntityPathOf(item.path));
        if (repeated.count(entity) != 0)
            item.path.insert(entity.size(), first);
    }
}

/// What a save would lose or falsify.
class SaveFindings final : public EntityObserver
{
public:
    SaveFindings(const std::string& name, const SaveOptions& options)
        : m_options(options),
          m_errors(m_found, name, options.limits.diagnostics),
          m_warnings(m_warned, name, options.limits.diagnostics)
    {}

    Messages& Warnings() { return m_warnings; }
    void Begin(const KARMPWorld& world)
    {
        m_check.emplace(world, m_options.version, m_errors, m_warnings);
    }
    void Note(const KARMPEntity& entity, const WrittenLinks* links) override
    {
        m_isNoting = true;
        m_check->Note(entity, links);
        m_isNoting = false;
    }
    /// All entities were written.
    void Written(const KARMPWorld& world) { AddPositions(world, m_warned); }
    /// True while an entity is noted: what fails is told when it is written.
    const bool& IsNoting() const { return m_isNoting; }
    void End()
    {
        Guarded(m_errors, "the world was checked", [&] {
            const SilentListener listener; // what fails was told when the world was written
            m_check->Run();
        });
        if (m_options.allowLosses)
            MakeWarnings(m_found);
    }
    void AppendTo(Diagnostics& diagnostics)
    {
        // So many warnings that they end are no error.
        MakeWarnings(m_warned);
        diagnostics.Append(std::move(m_found));
        diagnostics.Append(std::move(m_warned));
    }

private:
    static void MakeWarnings(Diagnostics& messages)
    {
        for (Diagnostic& item : messages.items)
            if (item.code != Code::OutOfMemory)
                item.severity = Severity::Warning;
    }

    const SaveOptions& m_options;
    Diagnostics m_found;
    Diagnostics m_warned;
    Messages m_errors;
    Messages m_warnings;
    std::optional<SaveCheck> m_check;
    bool m_isNoting = false;
};

// Appends a world's document to `bytes`.
Diagnostics RenderWorld(const QOBSharedHandle<KARMPWorld>& world, const std::string& name,
                        std::string& bytes, const SaveOptions& options)
{
    Diagnostics diagnostics;
    Messages messages(diagnostics, name, options.limits.diagnostics);
    const auto& known = KnownVersions();
    if (std::find(known.begin(), known.end(), options.version) == known.end()) {
        messages.Error(Code::UnknownVersion, "the version to save for is not known");
        return diagnostics;
    }
    if (!world) {
        messages.Error(Code::Failed, "there is no world to save");
        return diagnostics;
    }
    SaveFindings findings(name, options);
    constexpr std::string_view activity = "the world was written";
    Guarded(messages, activity, [&] {
        constexpr std::size_t entitySize = 1U << 10U; // about
        const std::size_t entities = ListedCount(*world);
        ReserveMore(bytes, entities * entitySize);
        Diagnostics rendered;
        Messages renderMessages(rendered, name, options.limits.diagnostics);
        StreamedTree tree(options.version, options.doubles, bytes, options.limits, renderMessages,
                          options.check ? &findings.Warnings() : nullptr);
        if (options.check) {
            findings.Begin(*world);
            tree.Observe(findings);
        }
        tree.Progress().Begin(options.progress, entities, 1);
        KARStatus status = KARSuccess;
        std::vector<const KARMPEntity*> failed;
        {
            const CheckListener listener(messages, std::string(activity), tree, failed,
                                         findings.IsNoting());
            status = world->Serialize(&tree.Root());
        }
        TellOfFailed(*world, failed, messages);
        if (KARFailed(status)) {
            messages.Error(Code::Failed, "the world could not be written");
            return;
        }
        tree.Finish();
        tree.Progress().End();
        findings.Written(*world);
        diagnostics.Append(std::move(rendered));
    });
    if (options.check && !diagnostics.HasErrors())
        findings.End();
    findings.AppendTo(diagnostics);
    return diagnostics;
}

// Reads a tree into a world.
KARStatus ReadTree(const KARMPDocumentReader& root, KARMPWorld& world)
{
    const ReadCurves curves(world);
    return world.Deserialize(&root);
}

// Reads a tree into `into` or a new world. False when the reading failed on a reference.
bool ReadWorld(const Document& document, const QOBSharedHandle<KARMPWorld>& into, CheckLevel level,
               LoadResult& result, Messages& messages)
{
    const std::string activity = "the world was read";
    bool castFailed = false;
    Guarded(messages, activity, [&] {
        result.world = into ? into : KARMPWorld::create(QOBBasicWorld::create(L"World"));
        const CheckListener listener(messages, activity, document.Root(), result.diagnostics,
                                     level);
        try {
            if (KARFailed(ReadTree(*document.Root(), *result.world)))
                messages.Error(Code::Failed, "the document holds no world",
                               '/' + std::string(RootName), document.Root()->Line(),
                               document.Root()->Column());
        } catch (const QOBEInvalidCast&) {
            castFailed = true;
            throw;
        }
    });
    return !castFailed;
}

/// The entities that a world lists before a document is loaded into it.
class FormerEntities
{
public:
    void Note(const KARMPWorld& world)
    {
        const ListedEntities listed(world);
        std::wstring identifier;
        for (std::size_t number = 0; number < listed.Count(); ++number) {
            GetIdentifierOf(listed.At(number), identifier);
            m_entities.insert(&listed.At(number));
            m_identifiers.insert(identifier);
        }
    }
    /// Tells when entities that are new have identifiers of former ones.
    void Compare(const KARMPWorld& world, Messages& messages) const
    {
        const ListedEntities listed(world);
        std::size_t count = 0;
        std::string first;
        std::wstring identifier;
        for (std::size_t number = 0; number < listed.Count(); ++number) {
            const KARMPEntity& entity = listed.At(number);
            GetIdentifierOf(entity, identifier);
            if (m_entities.count(&entity) != 0 || m_identifiers.count(identifier) == 0)
                continue;
            if (count++ == 0)
                first = TitleOf(entity);
        }
        if (count > 0)
            messages.Warning(Code::AlreadyInWorld,
                             "the world already held entities with the identifiers of " +
                                 std::to_string(count) + " that were read, " + first +
                                 " for one; was the document loaded before?");
    }

private:
    std::unordered_set<const KARMPEntity*> m_entities;
    std::unordered_set<std::wstring> m_identifiers;
};

LoadResult LoadDocument(Document document, const LoadOptions& options,
                        const QOBSharedHandle<KARMPWorld>& into)
{
    LoadResult result;
    FormerEntities former;
    result.version = document.Version();
    if (document.Root() == nullptr) {
        result.diagnostics = document.Messages();
        return result;
    }
    // The check of the form, that of the meaning, and the reading pass over the entities twice
    // each.
    const auto passes = 2 + 2 * static_cast<std::size_t>(options.check.level);
    const bool isChecked = options.check != CheckLevel::None;
    ProgressSteps& steps = DocumentSource::Of(*document.Root()).Progress();
    if (options.progress)
        steps.Begin(options.progress, CountEntities(*document.Root()), passes);
    if (isChecked) {
        document.Check(options.check);
        document.DropWrongReferences();
    }
    result.diagnostics = document.Messages();
    Messages messages(result.diagnostics, document.Name(), options.limits.diagnostics);
    if (into)
        Guarded(messages, "the world was looked at", [&] { former.Note(*into); });
    // A check finds the reference that the reading failed on; a new world can be read once more.
    if (!ReadWorld(document, into, options.check, result, messages) &&
        options.check == CheckLevel::None && !into) {
        document.Check(CheckLevel::Form);
        document.DropWrongReferences();
        ReadWorld(document, into, options.check, result, messages);
    }
    Guarded(messages, "the world was looked at", [&] {
        result.unlisted = FindUnlisted(document);
        if (into)
            former.Compare(*into, messages);
    });
    steps.End();
    return result;
}

} // namespace

const std::vector<std::wstring_view>& KnownVersions()
{
    static const std::vector<std::wstring_view> versions{R2015x_0, R2016_0, R2016_1, R2017_0,
                                                         R2017_1,  R2018_0, R2018_1};
    return versions;
}

Diagnostics SaveFile(const QOBSharedHandle<KARMPWorld>& world, const std::filesystem::path& path,
                     const SaveOptions& options)
{
    std::string bytes;
    Diagnostics diagnostics = RenderWorld(world, path.string(), bytes, options);
    if (!diagnostics.HasErrors())
        diagnostics.Append(WriteWholeFile(path, bytes));
    return diagnostics;
}

Diagnostics SaveText(const QOBSharedHandle<KARMPWorld>& world, std::string& text,
                     const SaveOptions& options)
{
    std::string bytes;
    Diagnostics diagnostics = RenderWorld(world, {}, bytes, options);
    if (!diagnostics.HasErrors())
        text = std::move(bytes);
    return diagnostics;
}

Diagnostics SaveStream(const QOBSharedHandle<KARMPWorld>& world, std::ostream& stream,
                       const SaveOptions& options)
{
    std::string bytes;
    Diagnostics diagnostics = SaveText(world, bytes, options);
    if (!diagnostics.HasErrors()) {
        Messages messages(diagnostics, {}, options.limits.diagnostics);
        Guarded(messages, "the stream was written", [&] {
            stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
            if (!stream.flush())
                messages.Error(Code::CannotWrite, "cannot write to the stream");
        });
    }
    return diagnostics;
}

LoadResult LoadFile(const std::filesystem::path& path, const LoadOptions& options,
                    const QOBSharedHandle<KARMPWorld>& into)
{
    return LoadDocument(Document::ReadFile(path, options.limits), options, into);
}

LoadResult LoadText(std::string text, const std::string& name, const LoadOptions& options,
                    const QOBSharedHandle<KARMPWorld>& into)
{
    return LoadDocument(Document::ReadText(std::move(text), name, options.limits), options, into);
}

LoadResult LoadUntrusted(std::string_view bytes)
{
    LoadOptions options;
    options.limits = Limits::Tight();
    return LoadText(std::string(bytes), "<untrusted>", options);
}

Diagnostics CheckFile(const std::filesystem::path& path, const Limits& limits, CheckLevel level)
{
    Document document = Document::ReadFile(path, limits);
    document.Check(level);
    return document.Messages();
}

Diagnostics CheckText(std::string text, const std::string& name, const Limits& limits,
                      CheckLevel level)
{
    Document document = Document::ReadText(std::move(text), name, limits);
    document.Check(level);
    return document.Messages();
}

} // namespace karmp::documents

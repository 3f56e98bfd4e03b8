#include "Writing.h"

#include "Commands.h"
#include "Comments.h"
#include "Differences.h"
#include "EntityText.h"
#include "ForEach.h"
#include "KARMPInteraction.h"
#include "KARMPWholeFile.h"
#include "KARMPWorld.h"
#include "KARMPWorldLosses.h"
#include "Loading.h"
#include "Obstacles.h"
#include "Output.h"
#include "Progress.h"
#include "ToolLimits.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <set>
#include <system_error>
#include <utility>

namespace karmp::tool {

namespace {

namespace fs = std::filesystem;

using documents::Diagnostic;
using documents::Diagnostics;
using documents::Severity;

Diagnostics LossesAmong(const Diagnostics& messages)
{
    Diagnostics losses;
    std::copy_if(messages.items.begin(), messages.items.end(), std::back_inserter(losses.items),
                 documents::LosesContent);
    std::stable_sort(losses.items.begin(), losses.items.end(),
                     [](const Diagnostic& left, const Diagnostic& right) {
                         return left.severity > right.severity;
                     });
    return losses;
}

// Content of the input that was not read is lost, which takes `force`; onto the input itself a
// backup besides.
bool IsRefused(const std::string& input, const WriteOptions& options, const Diagnostics& losses)
{
    const bool isKept = !options.backup.empty() || !IsSameFile(input, options.output);
    return !losses.items.empty() && !(options.force && isKept);
}

void PrintFirst(const Diagnostics& losses)
{
    constexpr std::size_t most = 10;
    Diagnostics first = losses;
    first.items.resize(std::min(first.items.size(), most));
    PrintMessages(first, true);
    if (losses.items.size() > most)
        std::cerr << "... and " << losses.items.size() - most << " more\n";
}

void PrintRefusal(const std::string& input, const WriteOptions& options, const Diagnostics& losses)
{
    const bool hasComments = losses.Find(documents::Code::NotKept) != nullptr;
    const std::size_t errors = losses.Count(Severity::Error);
    const std::size_t others = losses.items.size() - errors - (hasComments ? 1 : 0);
    if (errors + others == 0) {
        std::cerr << "karmp: nothing was written. Name another file as output, or overwrite "
                  << Printable(std::string_view(options.output))
                  << " with --force and --backup, which keeps it\n";
        return;
    }
    std::cerr << "karmp: " << Printable(std::string_view(input)) << " has ";
    if (errors > 0)
        std::cerr << CountText(errors, "error", "errors") << (others > 0 ? " and " : "");
    if (others > 0)
        std::cerr << CountText(others, "item that is not read", "items that are not read");
    std::cerr << "; nothing was written. Mend the document ('karmp check' lists all findings), or "
              << (IsSameFile(input, options.output)
                      ? "name another file as output, with --force, for what could be read; a "
                        "document with errors is never overwritten without --backup\n"
                      : "write what could be read with --force\n");
}

// There is nothing to copy of what is no file.
bool HasBackup(const WriteOptions& options)
{
    std::error_code missing;
    return !options.backup.empty() && options.output != StandardStream &&
           fs::is_regular_file(options.output, missing);
}

// Whether the backup is no link to the file that it is to keep, which would be replaced with it;
// the reason is on standard error otherwise.
bool IsBackupApart(const WriteOptions& options)
{
    const std::string backup = options.output + options.backup;
    std::error_code missing;
    const fs::path kept = fs::canonical(backup, missing);
    if (missing || kept != fs::canonical(options.output, missing))
        return true;
    std::cerr << "karmp: " << Printable(std::string_view(backup)) << " is a link to "
              << Printable(std::string_view(options.output))
              << ", which it cannot keep; nothing was written. Choose another ending\n";
    return false;
}

// Copies the file that is going to be replaced.
bool KeepBackup(const WriteOptions& options)
{
    if (!HasBackup(options))
        return true;
    if (!IsBackupApart(options))
        return false;
    const Diagnostics messages =
        documents::CopyWholeFile(options.output, options.output + options.backup);
    PrintMessages(messages, true);
    return !messages.HasErrors();
}

// Whether the files of a dry run could be written; the reason is on standard error otherwise.
bool CanWrite(const WriteOptions& options)
{
    std::vector<std::string> files;
    if (HasBackup(options))
        files.push_back(options.output + options.backup);
    if (options.output != StandardStream)
        files.push_back(options.output);
    return (!HasBackup(options) || IsBackupApart(options)) && CanWriteFiles(files);
}

// What a save to a file tells of, without a file.
Diagnostics Rendered(const QOBSharedHandle<KARMPWorld>& world, const std::string& output,
                     const documents::SaveOptions& save)
{
    std::string text;
    Diagnostics messages = documents::SaveText(world, text, save);
    if (output != StandardStream)
        for (Diagnostic& message : messages.items)
            message.file = output;
    return messages;
}

// Losses of documents are told as differences, but for an item that reading needs and an entity
// lacks already.
bool IsTold(const Diagnostic& message)
{
    return message.severity == Severity::Error || message.code == documents::Code::NotFinite ||
           message.code == documents::Code::FailedCheck ||
           message.code == documents::Code::MissingElement;
}

std::string MessagesJson(const Diagnostics& messages)
{
    return JsonList(messages.items, JsonOf);
}

void PrintLine(std::ostream& out, const Diagnostic& message)
{
    out << Printable(std::string_view(documents::Format(message))) << '\n';
}

void PrintJsonReport(const std::string& input, const WriteOptions& options, bool isWritten,
                     const Diagnostics& unread, const Losses& losses, const std::string& more,
                     std::ostream& out)
{
    out << "{\n  \"input\": " << JsonText(input) << ",\n  \"output\": " << JsonText(options.output)
        << ",\n  \"version\": " << JsonText(Printable(losses.version))
        << ",\n  \"written\": " << (isWritten ? "true" : "false")
        << ",\n  \"unread\": " << MessagesJson(unread) << ",\n  \"losses\": ";
    PrintJson(out, losses.differences);
    out << ",\n  \"unlisted\": " << MessagesJson(losses.unlisted) << more << "\n}\n";
}

// The identifiers of the interactions that a world lists. What it is given besides what was read,
// it is given among them.
std::set<std::wstring> InteractionsIn(const KARMPWorld& world)
{
    std::set<std::wstring> identifiers;
    ForEach<KARMPInteraction>(world, [&](const KARMPInteraction& interaction) {
        identifiers.insert(IdentifierOf(interaction));
    });
    return identifiers;
}

} // namespace

Writing::Writing(std::string input, WriteOptions options)
    : m_input(std::move(input)), m_options(std::move(options))
{}

std::optional<documents::LoadResult> Writing::Load() const
{
    auto loaded = LoadWorld(m_input);
    // The output, since the input may be called standard input.
    if (loaded && IsSameFile(m_input, m_options.output))
        if (auto comments = FindComments(m_options.output))
            loaded->diagnostics.items.push_back(std::move(*comments));
    return loaded;
}

bool Writing::MayWrite(const documents::Diagnostics& messages, const std::wstring& version)
{
    if (!VersionNamed(version))
        return false;
    const Diagnostics losses = LossesAmong(messages);
    m_isRefused = IsRefused(m_input, m_options, losses);
    if (m_options.dryRun || !m_isRefused)
        return true;
    PrintFirst(losses);
    if (m_options.json)
        return true;
    PrintRefusal(m_input, m_options, losses);
    return false;
}

int Writing::Write(const QOBSharedHandle<KARMPWorld>& world, documents::SaveOptions save) const
{
    if (m_options.dryRun ? !CanWrite(m_options) : !m_isRefused && !KeepBackup(m_options))
        return Unreadable;
    save.allowLosses = m_options.force;
    const std::string& output = m_options.output;
    Diagnostics messages;
    {
        const char* const activity = WritesNothing() ? "checking " : "writing ";
        Progress progress(activity + Printable(std::string_view(output)));
        save.progress = progress.Function();
        messages = WritesNothing()            ? Rendered(world, output, save)
                   : output == StandardStream ? documents::SaveStream(world, std::cout, save)
                                              : documents::SaveFile(world, output, save);
    }
    std::erase_if(messages.items, [](const Diagnostic& message) { return !IsTold(message); });
    PrintMessages(messages, true);
    if (messages.HasErrors())
        return Unreadable;
    return messages.items.empty() ? Clean : Findings;
}

std::ostream& Writing::ReportStream() const
{
    return m_options.output == StandardStream && !m_options.dryRun ? std::cerr : std::cout;
}

int Writing::ReportLosses(const documents::LoadResult& loaded, const Losses& losses,
                          const std::string& more) const
{
    const Diagnostics unread = LossesAmong(loaded.diagnostics);
    std::ostream& out = ReportStream();
    if (m_options.json) {
        PrintJsonReport(m_input, m_options, !WritesNothing(), unread, losses, more, out);
    } else {
        for (const Diagnostic& message : unread.items)
            if (m_options.dryRun || message.code == documents::Code::NotKept)
                PrintLine(out, message);
        for (const Diagnostic& message : losses.unlisted.items)
            PrintLine(out, message);
        if (!losses.differences.empty()) {
            out << Bold("Version " + Printable(losses.version) + " cannot hold:") << '\n';
            PrintText(out, losses.differences, true, MaximumDifferences);
        }
        if (losses.differences.size() > MaximumDifferences)
            out << "and " << losses.differences.size() - MaximumDifferences << " more\n";
    }
    if (m_isRefused) {
        PrintRefusal(m_input, m_options, unread);
        return Unreadable;
    }
    const bool isWhole = losses.differences.empty() && losses.unlisted.items.empty();
    return isWhole && loaded.diagnostics.items.empty() ? Clean : Findings;
}

bool Complete(KARMPWorld& world)
{
    if (!KARFailed(documents::CompleteWorld(world)))
        return true;
    std::cerr << "karmp: an allocation failed while the world was completed\n";
    return false;
}

documents::Diagnostics UnlistedOf(const documents::LoadResult& loaded)
{
    Diagnostics unlisted;
    if (loaded.unlisted.empty())
        return unlisted;
    const auto listed = InteractionsIn(*loaded.world);
    for (const documents::UnlistedEntity& entity : loaded.unlisted)
        if (listed.count(entity.identifier) == 0)
            unlisted.items.push_back(entity.message);
    return unlisted;
}

Losses LossesOf(const documents::LoadResult& loaded, const std::wstring& version)
{
    const Progress progress("looking for what version " + Printable(version) + " cannot hold");
    return {version, documents::FindLosses(*loaded.world, version, true), UnlistedOf(loaded)};
}

bool WriteText(const std::string& output, const std::string& text)
{
    if (output.empty() || output == StandardStream) {
        std::cout << text;
        return true;
    }
    const auto messages = documents::WriteWholeFile(output, text);
    PrintMessages(messages, true);
    return !messages.HasErrors();
}

std::optional<std::wstring> VersionNamed(const std::wstring& name)
{
    const auto& known = documents::KnownVersions();
    if (std::find(known.begin(), known.end(), name) != known.end())
        return name;
    std::cerr << "karmp: unknown version " << Printable(name) << "; known are";
    for (const std::wstring_view version : known)
        std::cerr << ' ' << Printable(version);
    std::cerr << '\n';
    return std::nullopt;
}

} // namespace karmp::tool

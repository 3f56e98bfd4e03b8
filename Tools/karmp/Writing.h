// What the commands that write documents have in common.
#pragma once

#include "KARMPDocuments.h"
#include "KARMPWorldDifference.h"

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace karmp::tool {

/// How a document is written.
struct WriteOptions
{
    std::string output;  // standard output when "-"
    std::string backup;  // ending of the copy of a file that is replaced; no copy when empty
    bool force = false;  // write what could be read of a document with errors
    bool dryRun = false; // tell all that is told otherwise, and write nothing
    bool json = false;   // tell it as JSON
};

/// What a document lacks of the world that it is made of.
struct Losses
{
    std::wstring version;
    std::vector<documents::Difference> differences; // what the version does not give back
    documents::Diagnostics unlisted; // entities of the input that the world does not list
};

/// The writing of a document that is made from another one, the input: whether it may be written,
/// and what a command tells of it.
class Writing
{
public:
    Writing(std::string input, WriteOptions options);

    /// Loads the input as LoadWorld does. Comments are among the messages when they would be lost:
    /// when the output is the input itself.
    std::optional<documents::LoadResult> Load() const;
    /// Whether what was read may be written. Content of the input that was not read would be lost,
    /// which takes `force`, and with the input itself as output a backup besides. Where it may not
    /// be written, what would be lost and the reason are on standard error. True in a dry run, of
    /// which ReportLosses tells the reason, and where JSON is to tell of what is refused.
    /// An unknown version is told before all that.
    bool MayWrite(const documents::Diagnostics& messages, const std::wstring& version);
    /// Writes a world after a copy of the file that is replaced; in a dry run all but the files is
    /// as otherwise, and a file that could not be made is told. Gives an exit code; what the save
    /// tells of, and why nothing was written, is on standard error.
    int Write(const QOBSharedHandle<KARMPWorld>& world, documents::SaveOptions save) const;
    /// Where a command tells of what it does: standard output, unless that takes the document.
    std::ostream& ReportStream() const;
    /// Prints what is lost of the input, its comments always, other content in a dry run or as
    /// JSON, and what the document lacks. `more` are further members of the JSON object, each with
    /// a comma in front. Gives an exit code, that of a refusal also where MayWrite let a dry run or
    /// JSON pass.
    int ReportLosses(const documents::LoadResult& loaded, const Losses& losses,
                     const std::string& more = {}) const;

private:
    bool WritesNothing() const { return m_options.dryRun || m_isRefused; }

    const std::string m_input;
    const WriteOptions m_options;
    bool m_isRefused = false; // content of the input would be lost: told by MayWrite
};

/// Completes a world as documents::CompleteWorld does; false, with the reason on standard error,
/// when an allocation fails.
bool Complete(KARMPWorld& world);

/// The collision layers of a document that its world, which was completed, does not list, since no
/// relation of layers refers to them.
documents::Diagnostics UnlistedOf(const documents::LoadResult& loaded);

/// What a document for a version lacks of a world that was loaded and completed.
Losses LossesOf(const documents::LoadResult& loaded, const std::wstring& version);

/// Writes a text to standard output, for an empty name or "-", or into a file as a whole. False,
/// with the reason on standard error, when it is not written.
bool WriteText(const std::string& output, const std::string& text);

/// The version of a name; empty, with the known ones on standard error, when there is none.
std::optional<std::wstring> VersionNamed(const std::wstring& name);

} // namespace karmp::tool

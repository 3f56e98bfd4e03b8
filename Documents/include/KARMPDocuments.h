// Worlds to and from documents: saving, loading and checking. No function throws; errors and
// warnings are in the diagnostics.
#pragma once

#include "KARMPDocumentDiagnostics.h"
#include "KARMPDocumentLimits.h"
#include "KARMPDocumentReader.h"
#include "KARMPDocumentWriter.h"
#include "KARMPDocumentsExport.h"
#include "KARMPVersions.h"
#include "QOBSharedHandle.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

class KARMPWorld;

namespace karmp::documents {

/// The tags that a document's version may have, in ascending order.
KARMP_DOCUMENTS_API const std::vector<std::wstring_view>& KnownVersions();

/// Called with how many entities of how many are done, on the thread that works: first with 0, then
/// with no smaller numbers, some hundred times at most, and with all of them when the world is read
/// or its document rendered. It must not throw.
using ProgressFunction = std::function<void(std::size_t done, std::size_t of)>;

/// How a world is saved.
struct SaveOptions
{
    /// The version that the document is written for, one of KnownVersions.
    std::wstring version = std::wstring(CurrentVersion);
    Doubles doubles = Doubles::Snapped;
    Limits limits;
    /// What the document would lose or falsify is looked for before it is written. An identifier
    /// that two entities carry and a link to an entity that the document does not hold are errors.
    /// A link that the other end lacks, a number that is not finite, and an item that documents, or
    /// those of the version, do not give back are warnings.
    bool check = true;
    /// The document is written all the same: what the check finds is warnings then.
    bool allowLosses = false;
    /// Is told how far the save is, unless it is empty.
    ProgressFunction progress = {};
};

/// Saves a world to a file. The document is written to a new file in the same folder, which
/// replaces the existing one when all of it is on the disk: a failure leaves the existing file as
/// it was. The permissions of a file that is replaced are kept; a symbolic link stays one, and the
/// file it leads to is replaced. Failed checks of the library are warnings; after an error nothing
/// was saved. What the options' check finds names the entity and its path in the document.
[[nodiscard]] KARMP_DOCUMENTS_API Diagnostics SaveFile(const QOBSharedHandle<KARMPWorld>& world,
                                                       const std::filesystem::path& path,
                                                       const SaveOptions& options = {});
/// Replaces `text` with a world's document; after an error `text` is unchanged.
[[nodiscard]] KARMP_DOCUMENTS_API Diagnostics SaveText(const QOBSharedHandle<KARMPWorld>& world,
                                                       std::string& text,
                                                       const SaveOptions& options = {});
/// Writes a world's document to a stream.
[[nodiscard]] KARMP_DOCUMENTS_API Diagnostics SaveStream(const QOBSharedHandle<KARMPWorld>& world,
                                                         std::ostream& stream,
                                                         const SaveOptions& options = {});

/// A level of a check, or a bool: the form when true, nothing when false.
struct LoadCheck
{
    CheckLevel level = CheckLevel::Form;

    constexpr LoadCheck() = default;
    /// A check of a level.
    constexpr LoadCheck(CheckLevel value) : level(value) {}
    /// The check of the form, or none.
    constexpr LoadCheck(bool isChecked) : level(isChecked ? CheckLevel::Form : CheckLevel::None) {}
    /// The level.
    constexpr operator CheckLevel() const { return level; }
};

/// How a world is loaded.
struct LoadOptions
{
    Limits limits;
    /// What is checked before the document is read, as by Document::Check.
    LoadCheck check;
    /// Is told how far the check and the reading are, unless it is empty; a document without a tree
    /// gives no call.
    ProgressFunction progress = {};
};

/// An entity that was read and that the world lists in no registry, since its class has none, as
/// collision layers have. A document of the world lacks it unless CompleteWorld lists it.
struct UnlistedEntity
{
    std::wstring identifier;
    /// A warning with its position and its path in the document.
    Diagnostic message;
};

/// A loaded world.
struct [[nodiscard]] LoadResult
{
    /// The world, null when the document has no tree. It holds what could be read, whatever the
    /// diagnostics say.
    QOBSharedHandle<KARMPWorld> world;
    /// The document's version.
    std::wstring version;
    Diagnostics diagnostics;
    /// What the world does not list of the document, in the order of the document's registries.
    std::vector<UnlistedEntity> unlisted;
};

/// Loads a file into `into`, or into a new world under a QOBBasicWorld of its own when that is
/// null. The handle of a world keeps its QOBBasicWorld. Entities that `into` holds already stay; a
/// warning tells when entities of the document have their identifiers, as at a second load.
/// Curves that are loaded free the limits of their segments at their end.
KARMP_DOCUMENTS_API LoadResult LoadFile(const std::filesystem::path& path,
                                        const LoadOptions& options = {},
                                        const QOBSharedHandle<KARMPWorld>& into = {});
/// The same from a text in memory, which the diagnostics call by `name`.
KARMP_DOCUMENTS_API LoadResult LoadText(std::string text, const std::string& name = "<text>",
                                        const LoadOptions& options = {},
                                        const QOBSharedHandle<KARMPWorld>& into = {});
/// The same from bytes of unknown origin, at Limits::Tight.
KARMP_DOCUMENTS_API LoadResult LoadUntrusted(std::string_view bytes);

/// Completes a world that was loaded, for a document that holds all of it: lists the globals, which
/// it does not list where the document lacks them, and the collision layers that its interactions
/// are about. Globals, and what reading left without an identifier, get identifiers that are the
/// same in every run: "GlobalBody", "GlobalAxisSystem", "GlobalTime", the name of the entity's
/// element, with a number where that is taken. The lists are then in the order of a world that is
/// read, and without keys where they changed. An allocation that fails gives KAROutOfMemory.
[[nodiscard]] KARMP_DOCUMENTS_API KARStatus CompleteWorld(KARMPWorld& world);

/// Checks a file without making a world of it.
[[nodiscard]] KARMP_DOCUMENTS_API Diagnostics CheckFile(const std::filesystem::path& path,
                                                        const Limits& limits = {},
                                                        CheckLevel level = CheckLevel::Mechanism);
/// Checks a text in memory without making a world of it.
[[nodiscard]] KARMP_DOCUMENTS_API Diagnostics CheckText(std::string text,
                                                        const std::string& name = "<text>",
                                                        const Limits& limits = {},
                                                        CheckLevel level = CheckLevel::Mechanism);

} // namespace karmp::documents

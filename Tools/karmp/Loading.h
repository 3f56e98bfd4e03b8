// Loading of documents for the commands, with messages on standard error. The file "-" is standard
// input.
#pragma once

#include "KARMPDocuments.h"

#include <optional>
#include <string>
#include <string_view>

namespace karmp::tool {

/// The name of a file that is standard input or standard output.
inline constexpr std::string_view StandardStream = "-";

/// Prints messages on standard error, errors only unless `all`.
void PrintMessages(const documents::Diagnostics& messages, bool all);
/// A message as a JSON object.
std::string JsonOf(const documents::Diagnostic& message);

/// Loads a document as documents::LoadFile does.
documents::LoadResult Load(const std::string& file, const documents::LoadOptions& options);

/// Loads a world; empty, with the reason on standard error, when the file holds none. The number of
/// problems of a partial world is printed on standard error.
std::optional<documents::LoadResult> LoadWorld(const std::string& file);

/// What a picture of a document is called: the name of the file, without its folder.
std::string TitleOfFile(const std::string& file);

/// The ending of a file's name in small letters, ".svg" for instance; empty without one.
std::string EndingOf(const std::string& file);

/// True when both paths refer to one file, also through links and other spellings.
bool IsSameFile(const std::string& first, const std::string& second);

/// Parses and checks a document without making a world of it; empty, with the reason on standard
/// error, when the file holds none. The number of its problems is printed on standard error.
std::optional<documents::Document> ReadTree(const std::string& file);

/// True when two texts differ in the case of their letters at most.
bool IsSameIgnoringCase(std::wstring_view element, std::string_view text);

/// The element of a family, "Joints" for instance, by its name in any case; empty, with the known
/// ones on standard error, when there is none.
std::optional<std::wstring> FamilyNamed(const std::string& name);

} // namespace karmp::tool

// The format of documents as a schema for validators and editors, and as a reference for readers.
// All of it is made from the lists by which the entity classes write and read.
#pragma once

#include "KARMPDocumentsExport.h"
#include "KARMPVersions.h"

#include <string>
#include <string_view>

namespace karmp::documents {

/// The languages of schemas.
enum class SchemaLanguage {
    RelaxNgCompact, ///< RELAX NG in the compact syntax.
    RelaxNg,        ///< RELAX NG as XML.
    Xsd             ///< W3C XML Schema 1.0.
};

/// The schema of documents of a version, one of KnownVersions, in UTF-8. It accepts what the check
/// of a document has nothing to say about but what a grammar cannot express: references,
/// identifiers carried twice, links without their other side, and numbers too large for a double.
/// XML Schema also takes anything in an element that may have any name, and does not count the
/// elements of a group of which one may stand twice. Empty for an unknown version.
KARMP_DOCUMENTS_API std::string SchemaText(SchemaLanguage language,
                                           std::wstring_view version = CurrentVersion);

/// What a class holds, a line for each element and attribute, and the items that can be set by name
/// with the values that they take, in UTF-8. `name` is that of the
/// class or of its element, in any case; empty for a class that is unknown.
KARMP_DOCUMENTS_API std::string ClassReference(std::string_view name);

/// The reference of all classes as Markdown, in UTF-8.
KARMP_DOCUMENTS_API std::string FormatReference();

} // namespace karmp::documents

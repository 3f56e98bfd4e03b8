// Documents with a mistake each, planted by the replacement of a text.
#pragma once

#include "KARMPDocuments.h"

#include <cstddef>
#include <string>
#include <vector>

namespace karmp::documents {

/// A mistake that people make. A "^" in what is planted, or in `at`, marks where the finding stands
/// and is no part of the document.
struct Planted
{
    /// The name of an example, after an "@" the version that it is saved for.
    std::string document;
    /// What is replaced; null for all of the document.
    const char* sound;
    const char* mistaken;
    const char* code;
    /// Part of the finding.
    const char* says;
    /// A text of the planted document, where the finding does not stand in what is planted.
    const char* at = nullptr;
    /// The code of a second finding that follows from the mistake.
    const char* besides = nullptr;
};

/// A change of a document that is no mistake.
struct Harmless
{
    const char* document;
    const char* before;
    const char* after;
};

/// The text of a document.
std::string ReadDocument(const std::string& name);
/// All findings, a line each.
std::string AllOf(const Diagnostics& found);
/// What a check of the tool finds.
Diagnostics FindingsIn(std::string text);
/// Expects of each document the findings that the mistake should give, and of the first one where
/// it stands.
void ExpectFindings(const std::vector<Planted>& mistakes);

/// The mistakes of all kinds in the slider-crank and other examples.
const std::vector<Planted>& MistakesByKind();
/// The mistakes in entities of all families.
const std::vector<Planted>& MistakesInFamilies();
/// The mistakes of syntax and in documents of older versions.
const std::vector<Planted>& MistakesInVersions();

} // namespace karmp::documents

// Texts that the tests keep in files beside them, to be compared with what the library gives.
#pragma once

#include <functional>
#include <string>

/// Expects that a text is the one that is kept in golden/<name>.txt and shows the first line that
/// differs. With the environment variable "KARMP_WRITE_GOLDEN" set, the file takes the text over.
void ExpectGolden(const std::string& name, const std::string& text);

/// Expects that golden holds no file whose name, up to its first point, fulfils no `isKnown`.
void ExpectNoOtherGolden(const std::function<bool(const std::string& name)>& isKnown);

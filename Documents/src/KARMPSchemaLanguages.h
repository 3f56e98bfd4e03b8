// The three languages of schemas.
#pragma once

#include <string>
#include <string_view>

namespace karmp::documents {

std::string RelaxNgCompactText(std::wstring_view version);
std::string RelaxNgText(std::wstring_view version);
std::string XsdText(std::wstring_view version);

} // namespace karmp::documents

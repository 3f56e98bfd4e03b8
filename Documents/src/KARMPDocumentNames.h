// The names that the document itself adds around a world.
#pragma once

#include <string_view>

namespace karmp::documents {

/// The root element.
inline constexpr std::string_view RootName = "KARMPDocument";
inline constexpr std::wstring_view WideRootName = L"KARMPDocument";
/// The root's attribute.
inline constexpr std::wstring_view VersionName = L"version";

} // namespace karmp::documents

// The frame of a world's document: what writer and reader agree on around the entities.
#pragma once

#include "KARMPElementWriter.h"
#include "KARMPWorldFamilies.h"

#include <string_view>

namespace karmp {

inline constexpr std::wstring_view WorldElement = L"World";
inline constexpr std::wstring_view LinearTolerance = L"linear_tolerance";
inline constexpr std::wstring_view AngularTolerance = L"angular_tolerance";
inline constexpr std::wstring_view Origin = L"Origin";
inline constexpr std::wstring_view Size = L"Size";
inline constexpr Names<3> SizeNames{L"SizeX", L"SizeY", L"SizeZ"};
inline constexpr std::wstring_view Gravity = L"Gravity";
inline constexpr Names<3> GravityNames{L"Gx", L"Gy", L"Gz"};
inline constexpr std::wstring_view Globals = L"Globals";
inline constexpr std::wstring_view GlobalBody = L"GlobalBody";
inline constexpr std::wstring_view GlobalAxisSystem = L"GlobalAxisSystem";
inline constexpr std::wstring_view GlobalTime = L"GlobalTime";

} // namespace karmp

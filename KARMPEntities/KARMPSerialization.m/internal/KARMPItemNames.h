// Names of elements that several classes share.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

namespace karmp {

/// The names of a group of doubles, in an element of their own or side by side with other items.
template <std::size_t N>
using Names = std::array<std::wstring_view, N>;

inline constexpr Names<3> OriginNames{L"Ox", L"Oy", L"Oz"};
inline constexpr Names<3> PointNames{L"Px", L"Py", L"Pz"};
inline constexpr Names<3> VectorNames{L"Vx", L"Vy", L"Vz"};
inline constexpr Names<3> CentreNames{L"Cx", L"Cy", L"Cz"};
inline constexpr Names<3> DirectionNames{L"Dx", L"Dy", L"Dz"};
inline constexpr Names<3> NormalNames{L"Nx", L"Ny", L"Nz"};
/// A matrix by columns.
inline constexpr Names<9> MatrixNames{L"M1x", L"M1y", L"M1z", L"M2x", L"M2y",
                                      L"M2z", L"M3x", L"M3y", L"M3z"};
inline constexpr Names<2> PlanarPointNames{L"Px", L"Py"};
inline constexpr Names<2> PlanarVectorNames{L"Vx", L"Vy"};
inline constexpr Names<2> PlanarOriginNames{L"Ox", L"Oy"};
inline constexpr Names<2> PlanarCentreNames{L"Cx", L"Cy"};
inline constexpr Names<2> PlanarDirectionNames{L"Dx", L"Dy"};
inline constexpr Names<4> PlanarMatrixNames{L"M1x", L"M1y", L"M2x", L"M2y"};
/// Origin and direction of a line.
inline constexpr Names<6> LineNames{L"Ox", L"Oy", L"Oz", L"Dx", L"Dy", L"Dz"};
inline constexpr Names<4> PlanarLineNames{L"Ox", L"Oy", L"Dx", L"Dy"};

/// The parts of a transformation and the numbers in each.
struct TransformationNames
{
    std::wstring_view translation;
    std::span<const std::wstring_view> vector;
    std::wstring_view rotation;
    std::span<const std::wstring_view> matrix;
};
inline constexpr TransformationNames SpatialTransformation{L"Translation", VectorNames, L"Rotation",
                                                           MatrixNames};
inline constexpr TransformationNames PlanarTransformation{L"Translation2D", PlanarVectorNames,
                                                          L"Rotation2D", PlanarMatrixNames};
/// A position in the plane, whose parts are named as those in space.
inline constexpr TransformationNames PlanarPosition{L"Translation", PlanarVectorNames, L"Rotation",
                                                    PlanarMatrixNames};
/// The words of a flag that is no bool in the document: row 0 is false.
inline constexpr Names<2> NoYes{L"no", L"yes"};
inline constexpr Names<2> FalseTrue{L"FALSE", L"TRUE"};

} // namespace karmp

#include "KARMPItemValues.h"

namespace karmp {

namespace {

// Of a square matrix with that many entries; 0 when it has none.
constexpr std::size_t DimensionOf(std::size_t entries, std::size_t least)
{
    for (const std::size_t dimension : {least, least + 1})
        if (dimension * dimension == entries)
            return dimension;
    return 0;
}

} // namespace

std::optional<NumberArray> NumberArray::MatrixByRows(std::span<const double> entries)
{
    const std::size_t dimension = DimensionOf(entries.size(), 2);
    if (dimension == 0)
        return std::nullopt;
    NumberArray made(NumberShape::Matrix, entries);
    for (std::size_t row = 0; row < dimension; ++row)
        for (std::size_t column = 0; column < dimension; ++column)
            made[column * dimension + row] = entries[row * dimension + column];
    return made;
}

std::optional<NumberArray> NumberArray::TransformationByRows(std::span<const double> entries)
{
    const std::size_t size = DimensionOf(entries.size(), 3);
    if (size == 0)
        return std::nullopt;
    const std::size_t dimension = size - 1;
    const auto last = entries.subspan(dimension * size);
    for (std::size_t column = 0; column < size; ++column)
        if (last[column] != (column == dimension ? 1.0 : 0.0))
            return std::nullopt;
    NumberArray made(NumberShape::Transformation, entries.first(dimension * size));
    for (std::size_t row = 0; row < dimension; ++row) {
        made[row] = entries[row * size + dimension];
        for (std::size_t column = 0; column < dimension; ++column)
            made[dimension + column * dimension + row] = entries[row * size + column];
    }
    return made;
}

std::size_t NumberArray::Rows() const
{
    switch (m_shape) {
    case NumberShape::Matrix:
        return m_count == 4 ? 2 : 3;
    case NumberShape::Transformation:
        return m_count == 6 ? 3 : 4;
    default:
        return m_count;
    }
}

double NumberArray::At(std::size_t row, std::size_t column) const
{
    const std::size_t rows = Rows();
    if (m_shape == NumberShape::Vector)
        return m_numbers[row];
    if (m_shape == NumberShape::Matrix)
        return m_numbers[column * rows + row];
    const std::size_t dimension = rows - 1;
    if (row == dimension)
        return column == dimension ? 1.0 : 0.0;
    return column == dimension ? m_numbers[row] : m_numbers[dimension * (column + 1) + row];
}

} // namespace karmp

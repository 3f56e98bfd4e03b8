// The values of items: what the table of a class's items gets and sets.
#pragma once

#include "KARMPEntity.h"
#include "KARMPExport.h"
#include "KARMPItemKind.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace karmp {

/// Up to twelve doubles of one item, without memory of their own. They stand as in documents: a
/// matrix by columns, a transformation's translation before its matrix.
class NumberArray
{
public:
    /// A translation and a matrix in space.
    static constexpr std::size_t Capacity = 12;

    NumberArray() = default;
    /// A vector; what exceeds the capacity is left out.
    NumberArray(std::initializer_list<double> numbers)
        : NumberArray(NumberShape::Vector, std::span(numbers.begin(), numbers.size()))
    {}
    NumberArray(NumberShape shape, std::span<const double> numbers)
        : m_count(static_cast<std::uint8_t>(std::min(numbers.size(), Capacity))), m_shape(shape)
    {
        std::copy_n(numbers.begin(), m_count, m_numbers.begin());
    }
    /// A matrix of 2 x 2 or 3 x 3 by its entries row by row; none for another number of them.
    KARMP_API static std::optional<NumberArray> MatrixByRows(std::span<const double> entries);
    /// A transformation by the entries of its homogeneous matrix, 3 x 3 or 4 x 4, row by row; none
    /// for another number of them, or when the last row is not 0 ... 0 1.
    KARMP_API static std::optional<NumberArray> TransformationByRows(
        std::span<const double> entries);

    /// The shape, which tells how the numbers are to be read.
    NumberShape Shape() const { return m_shape; }
    /// The rows and columns of a matrix, of the homogeneous one for a transformation; a vector has
    /// one column.
    KARMP_API std::size_t Rows() const;
    std::size_t Columns() const { return m_shape == NumberShape::Vector ? 1 : Rows(); }
    /// An entry by row and column.
    KARMP_API double At(std::size_t row, std::size_t column) const;

    /// The numbers, as a container gives them; an index is not checked.
    std::size_t size() const { return m_count; }
    const double* data() const { return m_numbers.data(); }
    double* data() { return m_numbers.data(); }
    const double* begin() const { return data(); }
    const double* end() const { return data() + m_count; }
    double operator[](std::size_t index) const { return m_numbers[index]; }
    double& operator[](std::size_t index) { return m_numbers[index]; }

    /// Compares shapes and numbers.
    bool operator==(const NumberArray& other) const
    {
        return m_shape == other.m_shape && std::equal(begin(), end(), other.begin(), other.end());
    }

private:
    std::array<double, Capacity> m_numbers;
    std::uint8_t m_count = 0;
    NumberShape m_shape = NumberShape::Vector;
};

/// A word of an enumeration. The text is that of the table of words, which lives as long as the
/// library.
struct EnumWord
{
    std::wstring_view text;
    bool operator==(const EnumWord& other) const = default;
};

struct Value;
/// The values of a record's fields, in the order of ItemInfo::fields.
using RecordValues = std::vector<Value>;

/// The value of an item. None: nothing is there. Words of a bool are bools, a word or code that is
/// none of its table is its number, a stream is bytes.
struct Value : std::variant<std::monostate, bool, int, double, std::wstring, EnumWord, NumberArray,
                            QOBSharedHandle<KARMPEntity>, std::vector<QOBSharedHandle<KARMPEntity>>,
                            std::vector<RecordValues>, std::vector<unsigned char>>
{
    using variant::variant;
    using variant::operator=;

    /// True when nothing is there.
    bool IsNone() const { return index() == 0; }
};

} // namespace karmp

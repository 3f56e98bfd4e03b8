// The rules of numbers: masses and inertias, rotations, directions, limits and tolerances.
#include "KARMPMechanismRules.h"
#include "KARMPNodeQueries.h"
#include "KARMPTextEscapes.h"
#include "KARTextConversion.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <initializer_list>

namespace karmp::documents {

namespace {

using Vector = std::array<double, 3>;
using Matrix = std::array<Vector, 3>; // columns

constexpr const wchar_t* Columns[3][3] = {
    {L"M1x", L"M1y", L"M1z"}, {L"M2x", L"M2y", L"M2z"}, {L"M3x", L"M3y", L"M3z"}};
constexpr const wchar_t* Directions[3][3] = {
    {L"D1x", L"D1y", L"D1z"}, {L"D2x", L"D2y", L"D2z"}, {L"D3x", L"D3y", L"D3z"}};

// Documents are written by hand too, with fewer digits than a double has.
constexpr double Rough = 1e-6;

using Names = const wchar_t* const[3][3];

// A square matrix of some size by columns; empty when a number is missing or none.
std::optional<Matrix> MatrixOf(const KARMPDeserializer& group, Names& names, std::size_t size)
{
    Matrix matrix{};
    for (std::size_t column = 0; column < size; ++column)
        for (std::size_t line = 0; line < size; ++line) {
            const auto number = NumberIn(group, names[column][line]);
            if (!number)
                return {};
            matrix[column][line] = *number;
        }
    return matrix;
}

double Dot(const Vector& left, const Vector& right)
{
    return left[0] * right[0] + left[1] * right[1] + left[2] * right[2];
}

double Determinant(const Matrix& m)
{
    return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
           m[1][0] * (m[0][1] * m[2][2] - m[0][2] * m[2][1]) +
           m[2][0] * (m[0][1] * m[1][2] - m[0][2] * m[1][1]);
}

double Greatest(const Matrix& matrix)
{
    double greatest = 0.0;
    for (const Vector& column : matrix)
        for (const double number : column)
            greatest = std::max(greatest, std::abs(number));
    return greatest;
}

// The principal moments of a symmetric matrix in ascending order.
Vector PrincipalMoments(const Matrix& m)
{
    const double off = m[1][0] * m[1][0] + m[2][0] * m[2][0] + m[2][1] * m[2][1];
    const double mean = (m[0][0] + m[1][1] + m[2][2]) / 3.0;
    double spread = 2.0 * off;
    for (std::size_t index = 0; index < 3; ++index)
        spread += (m[index][index] - mean) * (m[index][index] - mean);
    const double scale = std::sqrt(spread / 6.0);
    if (scale == 0.0)
        return {mean, mean, mean};
    Matrix normal = m;
    for (std::size_t index = 0; index < 3; ++index) {
        normal[index][index] -= mean;
        for (double& number : normal[index])
            number /= scale;
    }
    constexpr double third = 2.0943951023931953; // a third of a full turn
    const double angle = std::acos(std::clamp(Determinant(normal) / 2.0, -1.0, 1.0)) / 3.0;
    const double high = mean + 2.0 * scale * std::cos(angle);
    const double low = mean + 2.0 * scale * std::cos(angle + third);
    return {low, 3.0 * mean - high - low, high};
}

bool HasAll(const KARMPDeserializer& group, std::initializer_list<std::wstring_view> names)
{
    return std::all_of(
        names.begin(), names.end(),
        [&group](std::wstring_view name) { return NumberIn(group, name).has_value(); });
}

bool AreNull(const KARMPDeserializer& group, std::initializer_list<std::wstring_view> names)
{
    return HasAll(group, names) &&
           std::all_of(
               names.begin(), names.end(),
               [&group](std::wstring_view name) { return NumberIn(group, name) == 0.0; });
}

} // namespace

std::optional<double> NumberIn(const KARMPDeserializer& group, std::wstring_view name)
{
    const KARMPDeserializer* const element = First(group, name);
    std::wstring text;
    if (element == nullptr || !NodeOf(*element).HasText() || KARFailed(element->GetValue(text)))
        return {};
    return NumberFrom(text);
}

std::optional<double> NumberOf(const KARMPDeserializer& node, std::wstring_view attribute)
{
    std::wstring text;
    if (!NodeOf(node).HasAttribute(attribute) || KARFailed(node.GetAttribute(attribute, text)))
        return {};
    return NumberFrom(text);
}

std::string TextOf(double number)
{
    std::array<char, 32> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                      std::chars_format::general, 6);
    return std::string(buffer.data(), result.ptr);
}

std::optional<double> NumberFrom(std::wstring_view text)
{
    double number = 0.0;
    if (!kar::IsNumber(text, kar::DecimalMark::PointOrComma) ||
        kar::ScanDouble(text, number, kar::DecimalMark::PointOrComma) != 1 ||
        !std::isfinite(number))
        return {};
    return number;
}

void MechanismRules::CheckBody(const Node& entity)
{
    const KARMPDeserializer* const weight = First(entity, L"Weight");
    if (weight == nullptr)
        return;
    const auto mass = NumberIn(*weight, L"Mass");
    if (mass && *mass < 0.0)
        m_tell(Code::NegativeMass, entity, RulePlace({weight, First(*weight, L"Mass")}).Text(),
               "the mass is " + TextOf(*mass) + "; a mass is not negative");
    if (const KARMPDeserializer* const inertia = First(*weight, L"InertiaMatrix"))
        CheckInertia(entity, *weight, *inertia);
}

void MechanismRules::CheckInertia(const Node& entity, const KARMPDeserializer& weight,
                                  const KARMPDeserializer& inertia)
{
    const bool isPlanar = First(inertia, L"M3z") == nullptr;
    const auto matrix = MatrixOf(inertia, Columns, isPlanar ? 2 : 3);
    if (!matrix)
        return;
    const Matrix& m = *matrix;
    const double slack = Rough * Greatest(m);
    const RulePlace place({&weight, &inertia});
    for (std::size_t column = 0; column < 3; ++column)
        for (std::size_t line = 0; line < column; ++line)
            if (std::abs(m[column][line] - m[line][column]) > slack) {
                m_tell(Code::AsymmetricInertia, entity, place,
                       "the inertia matrix is not symmetric: " + Quoted(Columns[column][line]) +
                           " is " + TextOf(m[column][line]) + " and " +
                           Quoted(Columns[line][column]) + " is " + TextOf(m[line][column]));
                return;
            }
    const Vector moments = PrincipalMoments(m);
    const bool isNegative = moments[0] < -slack;
    if (!isNegative && (isPlanar || moments[2] - moments[1] - moments[0] <= slack))
        return;
    const std::string text = "the principal moments of inertia are " + TextOf(moments[0]) + ", " +
                             TextOf(moments[1]) + " and " + TextOf(moments[2]);
    m_tell(isNegative ? Code::NegativeInertia : Code::ImpossibleInertia, entity, place,
           text + (isNegative ? "; none is negative in a body"
                              : "; in a body none is greater than the sum of the others"));
}

// All groups of a position or displacement with a rotation matrix.
void MechanismRules::CheckRotations(const Node& entity)
{
    for (const std::wstring_view name : {L"Position", L"Displacement", L"Displacement2D"}) {
        const KARMPDeserializer* const group = First(entity, name);
        const KARMPDeserializer* rotation = group != nullptr ? First(*group, L"Rotation") : nullptr;
        if (rotation == nullptr && group != nullptr)
            rotation = First(*group, L"Rotation2D");
        if (rotation == nullptr)
            continue;
        const std::size_t size = First(*rotation, L"M3z") != nullptr ? 3 : 2;
        if (auto matrix = MatrixOf(*rotation, Columns, size)) {
            if (size == 2)
                (*matrix)[2][2] = 1.0;
            CheckAxes(entity, *matrix, RulePlace({group, rotation}));
        }
    }
}

void MechanismRules::CheckAxes(const Node& entity, const std::array<std::array<double, 3>, 3>& axes,
                               const RulePlace& place)
{
    for (std::size_t column = 0; column < 3; ++column) {
        const double length = std::sqrt(Dot(axes[column], axes[column]));
        if (std::abs(length - 1.0) > Rough) {
            m_tell(Code::NoRotation, entity, place,
                   "axis " + std::to_string(column + 1) + " has the length " + TextOf(length) +
                       "; 1 was expected");
            return;
        }
        for (std::size_t other = 0; other < column; ++other) {
            const double cosine = Dot(axes[column], axes[other]);
            if (std::abs(cosine) > Rough) {
                m_tell(Code::NoRotation, entity, place,
                       "axes " + std::to_string(other + 1) + " and " + std::to_string(column + 1) +
                           " are not at a right angle: the cosine between them is " +
                           TextOf(cosine));
                return;
            }
        }
    }
    if (Determinant(axes) < 0.0)
        m_tell(Code::Reflection, entity, place,
               "the axes are left-handed: this is a reflection, no rotation");
}

void MechanismRules::CheckCoordinates(const Node& entity)
{
    const KARMPDeserializer* const group = First(entity, L"Coordinates");
    if (group == nullptr)
        return;
    const bool isNull = CheckDirections(entity, *group, {group});
    const auto axes = MatrixOf(*group, Directions, 3);
    if (axes && !isNull)
        CheckAxes(entity, *axes, {group});
}

bool MechanismRules::CheckDirections(const Node& entity, const KARMPDeserializer& group,
                                     const RulePlace& place)
{
    bool isNull = false;
    const auto check = [&](std::initializer_list<std::wstring_view> names) {
        if (!AreNull(group, names))
            return;
        isNull = true;
        m_tell(Code::NullAxis, entity, place,
               "the direction " + Quoted(*names.begin()) + ", " +
                   (names.size() > 2 ? Quoted(*(names.begin() + 1)) + ", " : std::string()) +
                   Quoted(*(names.end() - 1)) + " has the length 0");
    };
    check({L"Dx", L"Dy", L"Dz"});
    if (First(group, L"Dz") == nullptr)
        check({L"Dx", L"Dy"});
    check({L"Nx", L"Ny", L"Nz"});
    check({L"D1x", L"D1y", L"D1z"});
    check({L"D2x", L"D2y", L"D2z"});
    check({L"D3x", L"D3y", L"D3z"});
    check({L"Axisx", L"Axisy", L"Axisz"});
    check({L"Tx", L"Ty", L"Tz"});
    if (First(group, L"Tz") == nullptr)
        check({L"Tx", L"Ty"});
    return isNull;
}

void MechanismRules::CheckDragLine(const Node& entity)
{
    for (const auto& [line, numbers] :
         {std::pair{L"DragLine", L"Coordinates"}, std::pair{L"DragLine2D", L"Coordinates2D"}}) {
        const KARMPDeserializer* const group = First(entity, line);
        const KARMPDeserializer* const coordinates =
            group != nullptr ? First(*group, numbers) : nullptr;
        if (coordinates != nullptr)
            CheckDirections(entity, *coordinates, RulePlace({group, coordinates}));
    }
}

// The directions of a sensor's freedoms.
void MechanismRules::CheckFreedoms(const Node& entity)
{
    for (const std::wstring_view name :
         {L"Translations", L"Rotations", L"Screws", L"Translations2D"}) {
        const KARMPDeserializer* const list = First(entity, name);
        for (const KARMPDeserializer* item : ItemsOf(entity, name)) {
            const KARMPDeserializer* const axis = First(*item, L"Axis");
            if (axis != nullptr)
                CheckDirections(entity, *axis, RulePlace({list, item, axis}));
            else
                CheckDirections(entity, *item, RulePlace({list, item}));
        }
    }
}

void MechanismRules::CheckLimits(const Node& entity, const Limit& low, const Limit& high,
                                 const Limit* value)
{
    if (!low.number && !high.number)
        return;
    if (low.number && high.number && *low.number > *high.number) {
        m_tell(Code::ReversedLimits, entity, low.place,
               "the lower limit " + TextOf(*low.number) + " is above the upper one, " +
                   TextOf(*high.number));
        return;
    }
    if (value == nullptr || !value->number)
        return;
    const bool isBelow = low.number && *value->number < *low.number;
    const bool isAbove = high.number && *value->number > *high.number;
    if (isBelow || isAbove)
        m_tell(Code::OutsideLimits, entity, value->place,
               "the value " + TextOf(*value->number) + " is " +
                   (isBelow ? "below the lower limit " + TextOf(*low.number)
                            : "above the upper limit " + TextOf(*high.number)));
}

// The number of a group with the flag that it is there.
MechanismRules::Limit MechanismRules::LimitIn(const Node& entity, std::wstring_view group,
                                              std::wstring_view flag)
{
    Limit limit;
    const KARMPDeserializer* const element = First(entity, group);
    const KARMPDeserializer* const set = element != nullptr ? First(*element, flag) : nullptr;
    bool isSet = false;
    if (set == nullptr || !NodeOf(*set).HasText() || KARFailed(set->GetValue(isSet)) || !isSet)
        return limit;
    limit.number = NumberIn(*element, group);
    limit.place = RulePlace({element, First(*element, group)}).Text();
    return limit;
}

void MechanismRules::CheckVariable(const Node& entity)
{
    const auto attribute = [&entity](std::wstring_view name) {
        Limit limit;
        limit.number = NumberOf(entity, name);
        limit.place.attribute = name;
        return limit;
    };
    if (entity.HasAttribute(L"minvalue") || entity.HasAttribute(L"maxvalue")) {
        const Limit low = attribute(L"minvalue");
        const Limit high = attribute(L"maxvalue");
        const Limit value = attribute(L"value");
        // In older versions, limits of 0 and 0 are none.
        if (low.number != 0.0 || high.number != 0.0)
            CheckLimits(entity, low, high, &value);
        return;
    }
    const Limit value = LimitIn(entity, L"Value", L"HasValue");
    CheckLimits(entity, LimitIn(entity, L"MinValue", L"HasMinValue"),
                LimitIn(entity, L"MaxValue", L"HasMaxValue"), &value);
}

void MechanismRules::CheckSegments(const Node& entity)
{
    const KARMPDeserializer* const list = First(entity, L"CurveSegments");
    for (const KARMPDeserializer* item : ItemsOf(entity, L"CurveSegments")) {
        const auto limit = [list, item](std::wstring_view name) {
            Limit made;
            made.number = NumberOf(*item, name);
            made.place = RulePlace({list, item});
            made.place.attribute = name;
            return made;
        };
        CheckLimits(entity, limit(L"curveLowLimit"), limit(L"curveHighLimit"), nullptr);
    }
}

void MechanismRules::CheckTolerances(const Node& world)
{
    for (const std::wstring_view name : {L"linear_tolerance", L"angular_tolerance"}) {
        const auto number = NumberOf(world, name);
        RulePlace place;
        place.attribute = name;
        if (number && *number <= 0.0)
            m_tell(Code::NoTolerance, world, place,
                   "the tolerance is " + TextOf(*number) + "; a positive number was expected");
    }
}

} // namespace karmp::documents

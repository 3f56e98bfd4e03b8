#include "KARMPEntityContents.h"

#include "KARMPShapeStreams.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <functional>
#include <string_view>

namespace karmp::documents {

namespace {

using Doubles = std::vector<double>;

// Keeps the limits of rounding away from the numbers that people choose.
constexpr double Aside = 0.2357;

bool AreSpansEqual(std::span<const double> before, std::span<const double> after,
                   const DifferenceOptions& options)
{
    double scale = 0.0;
    for (const auto numbers : {before, after})
        for (const double number : numbers)
            if (std::isfinite(number))
                scale = std::max(scale, std::abs(number));
    return std::equal(
        before.begin(), before.end(), after.begin(), after.end(),
        [&](double left, double right) { return AreEqual(left, right, scale, options); });
}

// The same for numbers that differ by less than the options tell apart.
std::uint64_t HashOfNumber(double number, double scale, const DifferenceOptions& options)
{
    if (std::isnan(number))
        return 1;
    // The step is well above what counts as equal, so that few pairs fall into two steps.
    const double step = 16.0 * std::max(options.floor, options.tolerance * scale);
    if (std::isfinite(number) && step > 0.0)
        number = std::round(number / step + Aside);
    return std::bit_cast<std::uint64_t>(number == 0.0 ? 0.0 : number);
}

std::uint64_t HashOfNumbers(std::span<const double> numbers, const DifferenceOptions& options)
{
    double scale = 0.0;
    for (const double number : numbers)
        if (std::isfinite(number))
            scale = std::max(scale, std::abs(number));
    // The scale is a power of two, so that equal ones give equal steps.
    scale = scale > 0.0 ? std::exp2(std::ceil(std::log2(scale) + Aside)) : 0.0;
    // Steps of different lengths give one number for different doubles.
    std::uint64_t hash = options.tolerance > 0.0 ? std::bit_cast<std::uint64_t>(scale) : 0;
    for (const double number : numbers)
        hash = Mix(hash, HashOfNumber(number, scale, options));
    return hash;
}

bool AreShapesEqual(const StreamBytes& before, const StreamBytes& after,
                    const DifferenceOptions& options)
{
    if (before == after)
        return true;
    const ShapeStream left = ReadShapeStream(before);
    const ShapeStream right = ReadShapeStream(after);
    if (left.IsEmpty() || right.IsEmpty())
        return false;
    if (HoldSame(left, right))
        return true;
    // Points along two curves do not tell that the curves are one.
    if (options.tolerance == 0.0 && options.floor == 0.0)
        return false;
    const ShapeNumbers first = NumbersOf(left);
    const ShapeNumbers second = NumbersOf(right);
    return first.structure == second.structure &&
           AreSpansEqual(first.numbers, second.numbers, options);
}

struct ValueHash
{
    const DifferenceOptions& options;

    std::uint64_t operator()(std::monostate) const { return 0; }
    std::uint64_t operator()(bool value) const { return value ? 2 : 1; }
    std::uint64_t operator()(int value) const { return static_cast<std::uint64_t>(value); }
    std::uint64_t operator()(double value) const { return HashOfNumbers({&value, 1}, options); }
    std::uint64_t operator()(const std::wstring& value) const
    {
        return std::hash<std::wstring>()(value);
    }
    std::uint64_t operator()(const std::vector<unsigned char>& value) const
    {
        return std::hash<std::string_view>()(
            {reinterpret_cast<const char*>(value.data()), value.size()});
    }
    std::uint64_t operator()(EnumWord value) const
    {
        return std::hash<std::wstring_view>()(value.text);
    }
    std::uint64_t operator()(const NumberArray& value) const
    {
        return HashOfNumbers({value.data(), value.size()}, options);
    }
    // Records are compared by the element that is written.
    std::uint64_t operator()(const std::vector<RecordValues>&) const { return 0; }
    // Links are no content.
    std::uint64_t operator()(const QOBSharedHandle<KARMPEntity>&) const { return 0; }
    std::uint64_t operator()(const std::vector<QOBSharedHandle<KARMPEntity>>&) const { return 0; }
};

} // namespace

bool AreEqual(double before, double after, double scale, const DifferenceOptions& options)
{
    if (before == after || (std::isnan(before) && std::isnan(after)))
        return true;
    if (!std::isfinite(before) || !std::isfinite(after))
        return false;
    const double difference = std::abs(before - after);
    // Too large for a double, as what is allowed may be.
    if (!std::isfinite(difference))
        return std::abs(before / 2 - after / 2) <= options.tolerance * (scale / 2);
    return difference <= options.floor || difference <= options.tolerance * scale;
}

bool AreEqual(const Value& before, const Value& after, ItemKind kind,
              const DifferenceOptions& options)
{
    if (before.index() != after.index())
        return false;
    if (const auto* const number = std::get_if<double>(&before))
        return AreSpansEqual({number, 1}, {&std::get<double>(after), 1}, options);
    if (const auto* const bytes = std::get_if<StreamBytes>(&before))
        return AreShapesEqual(*bytes, std::get<StreamBytes>(after), options);
    const auto* const numbers = std::get_if<NumberArray>(&before);
    if (numbers == nullptr)
        return before == after;
    const auto& others = std::get<NumberArray>(after);
    const std::span<const double> left(numbers->data(), numbers->size());
    const std::span<const double> right(others.data(), others.size());
    if (kind != ItemKind::Transformation || left.size() != right.size())
        return AreSpansEqual(left, right, options);
    // Translation and rotation are measured each by itself.
    const std::size_t split = TranslationLength(left.size());
    return AreSpansEqual(left.first(split), right.first(split), options) &&
           AreSpansEqual(left.subspan(split), right.subspan(split), options);
}

std::uint64_t HashOfContent(const WorldGraph::Entity& entity, const DifferenceOptions& options)
{
    std::uint64_t hash = entity.items->Hash();
    for (const ItemInfo* const item : entity.items->Values())
        hash = Mix(hash, std::visit(ValueHash{options}, item->Get(*entity.handle)));
    return hash;
}

Doubles NumbersOf(const WorldGraph::Entity& entity)
{
    Doubles numbers;
    for (const ItemInfo* const item : entity.items->Values()) {
        const Value data = item->Get(*entity.handle);
        if (const auto* const number = std::get_if<double>(&data))
            numbers.push_back(*number);
        else if (const auto* const some = std::get_if<NumberArray>(&data))
            numbers.insert(numbers.end(), some->begin(), some->end());
    }
    return numbers;
}

} // namespace karmp::documents

// Items by their names.
#include "KARMPConstant.h"
#include "KARMPModel.h"
#include "KARMPModelCore.h"
#include "KARMPModelNames.h"
#include "KARMPModelPlacing.h"
#include "KARMPModelValues.h"
#include "KARTextConversion.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace karmp::model {

namespace {

// The sentence for an item that a class does not have.
std::string NoItem(const KARMPEntity& entity, std::string_view item)
{
    std::vector<std::string> names;
    for (const ItemInfo& info : ItemsOf(entity.getClassInfo())) {
        names.push_back(kar::ToUtf8(info.path));
        names.push_back(kar::ToUtf8(info.name));
    }
    const std::string nearest = NearestName(item, names);
    return TitleOf(entity) + " has no item \"" + std::string(item) + '"' +
           (nearest.empty() || nearest == item ? std::string() : "; near: \"" + nearest + '"');
}

const ItemInfo* ItemOf(const KARMPEntity& entity, std::string_view item)
{
    return FindItem(entity.getClassInfo(), kar::ToWide(item));
}

template <class... Numbers>
NumberArray ArrayOf(NumberShape shape, Numbers... numbers)
{
    return {shape, std::array<double, sizeof...(Numbers)>{numbers...}};
}

std::optional<double> NumberIn(const Value& value)
{
    if (const int* const number = std::get_if<int>(&value))
        return *number;
    const double* const number = std::get_if<double>(&value);
    return number != nullptr ? std::optional<double>(*number) : std::nullopt;
}

// "rest length" of an item "RestLength".
std::string WordsOf(std::wstring_view item)
{
    std::string words;
    for (const wchar_t character : item) {
        const bool isCapital = character >= L'A' && character <= L'Z';
        if (isCapital && !words.empty())
            words += ' ';
        words += static_cast<char>(isCapital ? character - L'A' + L'a' : character);
    }
    constexpr std::string_view coefficient = " coefficient";
    if (words.ends_with(coefficient))
        words.erase(words.size() - coefficient.size());
    return words;
}

} // namespace

ItemValue::ItemValue(std::string_view text) : m_value(kar::ToWide(text)) {}
ItemValue::ItemValue(const KARMathPoint& point) : ItemValue(point - KARMathPoint()) {}
ItemValue::ItemValue(const KARMathPoint2D& point) : ItemValue(point - KARMathPoint2D()) {}
ItemValue::ItemValue(const KARMathVector& vector)
    : m_value(ArrayOf(NumberShape::Vector, vector.GetX(), vector.GetY(), vector.GetZ()))
{}
ItemValue::ItemValue(const KARMathVector2D& vector)
    : m_value(ArrayOf(NumberShape::Vector, vector.GetX(), vector.GetY()))
{}
ItemValue::ItemValue(const KARMathTransformation& transformation)
{
    const KARMathVector& v = transformation.GetVector();
    const KARMath3x3Matrix& m = transformation.GetMatrix();
    m_value = ArrayOf(NumberShape::Transformation, v.GetX(), v.GetY(), v.GetZ(), m(0, 0), m(1, 0),
                      m(2, 0), m(0, 1), m(1, 1), m(2, 1), m(0, 2), m(1, 2), m(2, 2));
}
ItemValue::ItemValue(const KARMathTransformation2D& transformation)
{
    const KARMathVector2D& v = transformation.GetVector();
    const KARMath2x2Matrix& m = transformation.GetMatrix();
    m_value = ArrayOf(NumberShape::Transformation, v.GetX(), v.GetY(), m(0, 0), m(1, 0), m(0, 1),
                      m(1, 1));
}

bool Edit::SetAll(const Entity& entity, Settings settings)
{
    for (const Setting& setting : settings)
        if (!SetByName(entity, setting, &setting + 1 == settings.end()))
            return false;
    return true;
}

bool Edit::SetByName(const Entity& entity, const Setting& setting, bool isLast)
{
    const ItemInfo* const item = ItemOf(*entity, setting.item);
    if (item == nullptr)
        return Fail(NoItem(*entity, setting.item));
    if (item->kind == ItemKind::Records && !isLast)
        return Fail("records, as \"" + kar::ToUtf8(item->path) + "\" of " + TitleOf(*entity) +
                    ", cannot be undone with the items that are set after them");
    const Value& value = setting.value.Get();
    const auto number = NumberIn(value);
    if (number && item->kind == ItemKind::Reference)
        return SetNumberOf(entity, *item, *number);
    if (number && (item->kind == ItemKind::Number || item->kind == ItemKind::OptionalNumber))
        return Set(entity, *item, *number);
    return Set(entity, *item, value);
}

bool Edit::SetNumberOf(const Entity& entity, const ItemInfo& item, double number)
{
    if (item.target != "KARMPValue" || item.quantity == KARMPPhysicalQuantity::NoPhysicalQuantity)
        return Fail('"' + kar::ToUtf8(item.path) + "\" of " + TitleOf(*entity) +
                    " refers to entities and takes no number");
    const auto name = NameOn(*this, entity, WordsOf(item.name));
    const auto constant = name ? MakeConstant(*this, *name, item.quantity, number) : nullptr;
    return constant && Set(entity, item, Entity(constant));
}

std::span<const ItemInfo> Model::Items(const Ref<KARMPEntity>& entity)
{
    return entity ? ItemsOf(entity->getClassInfo()) : std::span<const ItemInfo>();
}

Result<Value> Model::Get(const Ref<KARMPEntity>& entity, std::string_view item, Where where) const
{
    if (!entity)
        return Outcome(Problem{"there is no entity", KARFailure, where});
    if (const ItemInfo* const info = ItemOf(*entity, item))
        return info->Get(*entity);
    return Outcome(Problem{NoItem(*entity, item), KARFailure, where});
}

bool Model::Set(const Ref<KARMPEntity>& entity, std::string_view item, const Value& value,
                Where where)
{
    return m_core->Perform(
        where,
        [&](Edit& edit) {
            if (!edit.IsThere(entity.Handle(), "entity to change"))
                return false;
            const ItemInfo* const info = ItemOf(*entity, item);
            return info != nullptr ? edit.Set(entity.Handle(), *info, value)
                                   : edit.Fail(NoItem(*entity, item));
        });
}

bool Model::Set(const Ref<KARMPEntity>& entity, Settings settings, Where where)
{
    return m_core->Perform(
        where,
        [&](Edit& edit) {
            return edit.IsThere(entity.Handle(), "entity to change") &&
                   edit.SetAll(entity.Handle(), settings);
        });
}

} // namespace karmp::model

// The sentences on values that an item does not take.
#include "KARMPItemRefusal.h"

#include "KARMPItems.h"
#include "KARMPNearestWord.h"
#include "KARTextConversion.h"
#include "QOBClassInfo.h"

#include <algorithm>

namespace karmp {

namespace {

using Target = QOBSharedHandle<KARMPEntity>;
using Targets = std::vector<Target>;

std::string Quoted(std::wstring_view text)
{
    return '"' + kar::ToUtf8(text) + '"';
}

std::string Listed(std::span<const std::wstring_view> words)
{
    std::string text;
    for (const std::wstring_view word : words)
        text += (text.empty() ? "" : ", ") + kar::ToUtf8(word);
    return text;
}

std::string Size(const char* what, std::size_t rows)
{
    return std::string(what) + std::to_string(rows) + " x " + std::to_string(rows);
}

std::string NumbersText(NumberShape shape, std::size_t count)
{
    switch (shape) {
    case NumberShape::Matrix:
        return Size("a matrix of ", count == 4 ? 2 : 3);
    case NumberShape::Transformation:
        return Size("a transformation of ", count == 6 ? 3 : 4);
    default:
        return count == 1 ? "1 number" : std::to_string(count) + " numbers";
    }
}

/// What an item takes.
std::string ExpectedOf(const ItemInfo& item)
{
    switch (item.kind) {
    case ItemKind::Number:
        return "a number";
    case ItemKind::OptionalNumber:
        return "a number or none";
    case ItemKind::Integer:
        return "a whole number";
    case ItemKind::Flag:
        return "true or false";
    case ItemKind::Text:
        return "a text";
    case ItemKind::Word:
    case ItemKind::Code:
        return (item.isFlag ? "true or false, or one of " : "one of ") + Listed(item.words);
    case ItemKind::Numbers:
        return NumbersText(item.shape, item.numberCount) +
               (item.shape == NumberShape::Vector ? " (" + Listed(item.words) + ')' : "");
    case ItemKind::Transformation:
        return NumbersText(item.shape, item.numberCount);
    case ItemKind::Reference:
        return "an entity of class " + std::string(item.target);
    case ItemKind::References:
        return "a list of entities of class " + std::string(item.target);
    case ItemKind::Records: {
        std::string text;
        for (const ItemInfo& field : item.fields)
            text += (text.empty() ? "" : ", ") + kar::ToUtf8(field.path);
        return "a list of records of (" + text + ')';
    }
    case ItemKind::Stream:
        return "bytes";
    default:
        return "nothing";
    }
}

std::string TitleOf(const Target& entity)
{
    return entity ? entity->getClassName() + ' ' + Quoted(entity->getEntityName())
                  : std::string("no entity");
}

/// What a value is.
struct ValueText
{
    std::string operator()(std::monostate) const { return "none"; }
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(int) const { return "a whole number"; }
    std::string operator()(double) const { return "a number"; }
    std::string operator()(const std::wstring& value) const { return Quoted(value); }
    std::string operator()(EnumWord value) const { return Quoted(value.text); }
    std::string operator()(const NumberArray& value) const
    {
        return NumbersText(value.Shape(), value.size());
    }
    std::string operator()(const Target& value) const { return TitleOf(value); }
    std::string operator()(const Targets&) const { return "a list of entities"; }
    std::string operator()(const std::vector<RecordValues>&) const { return "a list of records"; }
    std::string operator()(const std::vector<unsigned char>&) const { return "bytes"; }
};

std::string NearWord(const ItemInfo& item, const Value& value)
{
    const auto* const word = std::get_if<EnumWord>(&value);
    const auto* const text = std::get_if<std::wstring>(&value);
    if (item.words.empty() || (word == nullptr && text == nullptr))
        return {};
    const std::wstring_view near =
        NearestWord(word != nullptr ? word->text : *text, {item.words.begin(), item.words.end()});
    return near.empty() ? std::string() : " (did you mean " + Quoted(near) + "?)";
}

// The first entity of a list that is none of the item's class.
Value MismatchIn(const ItemInfo& item, const Value& value)
{
    if (const auto* const targets = std::get_if<Targets>(&value))
        for (const Target& target : *targets)
            if (!item.Takes(Targets{target}))
                return target;
    return value;
}

} // namespace

std::string RefusalOf(const ItemInfo& item, const Value& value)
{
    const std::string name = kar::ToUtf8(item.path);
    if (!item.readOnly.empty())
        return name + " cannot be set: " + std::string(item.readOnly);
    if (!item.Takes(value))
        return name + " takes " + ExpectedOf(item) + ", not " +
               std::visit(ValueText(), MismatchIn(item, value)) + NearWord(item, value) + '.';
    if (item.kind == ItemKind::References || item.kind == ItemKind::Records)
        return name + " keeps the entries that it holds: they must come first, and the class must "
                      "take those behind them.";
    return name + ": the class refuses the value.";
}

} // namespace karmp

#include "TextValues.h"

#include "KARMPEntity.h"
#include "KARTextConversion.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <sstream>
#include <utility>
#include <vector>

namespace karmp::tool {

namespace {

using Entity = QOBSharedHandle<KARMPEntity>;
using model::Model;
using model::Result;

model::Outcome Refused(const ItemInfo& item, const std::string& text, const std::string& says)
{
    return model::Outcome(model::Problem{kar::ToUtf8(item.path) + ": \"" + text + "\" " + says});
}

model::Outcome HasGap(const ItemInfo& item, const std::string& text)
{
    return Refused(item, text, "has an empty entry");
}

// The texts between the commas without the blanks around them; none when one is empty.
std::optional<std::vector<std::string>> PartsOf(const std::string& text)
{
    std::vector<std::string> parts;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        const std::size_t first = text.find_first_not_of(' ', begin);
        if (first >= end)
            return std::nullopt;
        parts.push_back(text.substr(first, text.find_last_not_of(' ', end - 1) + 1 - first));
        begin = end + 1;
    }
    return parts;
}

Result<Value> NumbersOf(const ItemInfo& item, const std::string& text)
{
    const auto parts = PartsOf(text);
    if (!parts)
        return HasGap(item, text);
    std::vector<double> numbers;
    for (const std::string& part : *parts) {
        std::istringstream words(part);
        for (std::string word; words >> word;) {
            double number = 0.0;
            if (!kar::IsNumber(kar::ToWide(std::string_view(word))) ||
                kar::ScanDouble(std::string_view(word), number) != 1)
                return Refused(item, word, "is not a number");
            if (!std::isfinite(number))
                return Refused(item, word, "is not a finite number");
            numbers.push_back(number);
        }
    }
    const bool isSingle = item.kind == ItemKind::Number || item.kind == ItemKind::OptionalNumber;
    const std::size_t wanted = isSingle ? 1 : item.numberCount;
    if (numbers.size() != wanted)
        return Refused(item, text,
                       isSingle ? "is not one number"
                                : "is not " + std::to_string(wanted) + " numbers");
    if (isSingle)
        return Value(numbers.front());
    return Value(NumberArray(item.shape, numbers));
}

// A name may have a comma: the whole text is one key, if there is such an entity.
Result<Value> TargetsOf(const Model& model, const ItemInfo& item, const std::string& text)
{
    const bool isList = item.kind == ItemKind::References;
    auto whole = model.Get<KARMPEntity>(text);
    const auto parts = PartsOf(text);
    if (whole || !isList) {
        if (!whole && parts && parts->size() == 1)
            whole = model.Get<KARMPEntity>(parts->front());
        if (!whole)
            return model::Outcome(whole.Error());
        return isList ? Value(std::vector<Entity>{whole->Handle()}) : Value(whole->Handle());
    }
    if (!parts)
        return HasGap(item, text);
    std::vector<Entity> targets;
    for (const std::string& key : *parts) {
        const auto found = model.Get<KARMPEntity>(key);
        if (!found)
            return model::Outcome(found.Error());
        targets.push_back(found->Handle());
    }
    return Value(std::move(targets));
}

Result<Value> FlagOf(const ItemInfo& item, const std::string& text)
{
    for (const auto& [word, value] : {std::pair("yes", true), std::pair("true", true),
                                      std::pair("no", false), std::pair("false", false)})
        if (text == word)
            return Value(value);
    return Refused(item, text, "is not yes or no");
}

// "None" may be a text or a word itself.
bool IsNone(ItemKind kind, const std::string& text)
{
    switch (kind) {
    case ItemKind::Text:
        return false;
    case ItemKind::OptionalNumber:
    case ItemKind::Reference:
    case ItemKind::References:
        return text.empty() || text == "None";
    default:
        return text.empty();
    }
}

} // namespace

Result<Value> ValueOfText(const Model& model, const ItemInfo& item, const std::string& text)
{
    if (IsNone(item.kind, text))
        return item.kind == ItemKind::References ? Value(std::vector<Entity>()) : Value();
    if (item.isFlag)
        return FlagOf(item, text);
    switch (item.kind) {
    case ItemKind::Number:
    case ItemKind::OptionalNumber:
    case ItemKind::Numbers:
    case ItemKind::Transformation:
        return NumbersOf(item, text);
    case ItemKind::Integer: {
        int number = 0;
        if (!kar::IsInteger(kar::ToWide(std::string_view(text))) ||
            kar::ScanInt(std::string_view(text), number) != 1)
            return Refused(item, text, "is not a whole number");
        return Value(number);
    }
    case ItemKind::Reference:
    case ItemKind::References:
        return TargetsOf(model, item, text);
    case ItemKind::Text:
    case ItemKind::Word:
    case ItemKind::Code:
        return Value(kar::ToWide(std::string_view(text)));
    default:
        return Refused(item, text, "is not what a command line can tell");
    }
}

} // namespace karmp::tool

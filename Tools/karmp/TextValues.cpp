#include "TextValues.h"

#include "KARMPEntity.h"
#include "KARTextConversion.h"

#include <algorithm>
#include <sstream>
#include <utility>
#include <vector>

namespace karmp::tool {

namespace {

using Entity = QOBSharedHandle<KARMPEntity>;
using model::Model;
using model::Result;

model::Outcome Refused(const ItemInfo& item, const std::string& text, const std::string& wanted)
{
    return model::Outcome(
        model::Problem{kar::ToUtf8(item.path) + ": \"" + text + "\" is not " + wanted});
}

std::vector<std::string> PartsOf(const std::string& text)
{
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, ',');)
        parts.push_back(part);
    return parts;
}

Result<Value> NumbersOf(const ItemInfo& item, const std::string& text)
{
    std::string blanks = text;
    std::replace(blanks.begin(), blanks.end(), ',', ' ');
    std::vector<double> numbers;
    std::istringstream stream(blanks);
    for (std::string part; stream >> part;) {
        double number = 0.0;
        if (!kar::IsNumber(kar::ToWide(std::string_view(part))) ||
            kar::ScanDouble(std::string_view(part), number) != 1)
            return Refused(item, part, "a number");
        numbers.push_back(number);
    }
    const bool isSingle = item.kind == ItemKind::Number || item.kind == ItemKind::OptionalNumber;
    const std::size_t wanted = isSingle ? 1 : item.numberCount;
    if (numbers.size() != wanted)
        return Refused(item, text, std::to_string(wanted) + (wanted == 1 ? " number" : " numbers"));
    if (isSingle)
        return Value(numbers.front());
    return Value(NumberArray(item.shape, numbers));
}

Result<Value> TargetsOf(const Model& model, const ItemInfo& item, const std::string& text)
{
    std::vector<Entity> targets;
    for (const std::string& key : PartsOf(text)) {
        const auto found = model.Get<KARMPEntity>(key);
        if (!found)
            return model::Outcome(found.Error());
        targets.push_back(found->Handle());
    }
    if (item.kind == ItemKind::References)
        return Value(std::move(targets));
    if (targets.size() != 1)
        return Refused(item, text, "one entity");
    return Value(targets.front());
}

Result<Value> FlagOf(const ItemInfo& item, const std::string& text)
{
    for (const auto& [word, value] : {std::pair("yes", true), std::pair("true", true),
                                      std::pair("no", false), std::pair("false", false)})
        if (text == word)
            return Value(value);
    return Refused(item, text, "yes or no");
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
            return Refused(item, text, "a whole number");
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
        return Refused(item, text, "what a command line can tell");
    }
}

} // namespace karmp::tool

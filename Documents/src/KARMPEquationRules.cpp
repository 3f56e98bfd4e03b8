// The rules of equations: linear terms, the texts of expressions, and the variables of both.
#include "KARCDSIntArray.h"
#include "KARMPMechanismRules.h"
#include "KARMPNodeQueries.h"
#include "KARMPTextEscapes.h"
#include "KARTextConversion.h"
#include "KARWBModel.h"
#include "KARWBParser.h"
#include "KARWBParserMessenger.h"

#include <unordered_map>
#include <unordered_set>

namespace karmp::documents {

namespace {

std::optional<int> IntegerOf(const KARMPDeserializer& node)
{
    std::wstring text;
    int number = 0;
    if (!NodeOf(node).HasText() || KARFailed(node.GetValue(text)) || !kar::IsInteger(text) ||
        kar::ScanInt(text, number) != 1)
        return {};
    return number;
}

std::string Counted(std::size_t count, const char* word)
{
    return std::to_string(count) + ' ' + word + (count == 1 ? "" : "s");
}

} // namespace

void MechanismRules::CheckLinearEquation(const Node& entity)
{
    const KARMPDeserializer* const list = First(entity, L"LinearTermDataContainer");
    if (list == nullptr)
        return;
    int place = 0;
    for (const KARMPDeserializer* term : ItemsOf(entity, L"LinearTermDataContainer")) {
        const KARMPDeserializer* const index = First(*term, L"LinearTermIndex");
        const auto number = index != nullptr ? IntegerOf(*index) : std::nullopt;
        if (number && *number != place)
            m_tell(Code::TermOrder, entity, RulePlace({list, term, index}).Text(),
                   "the index is " + std::to_string(*number) + " where the term is number " +
                       std::to_string(place) + ", from 0: terms are read in their order");
        ++place;
    }
    const std::size_t variables = ItemsOf(entity, L"Variables").size();
    const auto terms = static_cast<std::size_t>(place);
    if (variables != terms)
        m_tell(Code::UnlinkedVariable, entity, {list},
               "the equation has " + Counted(terms, "term") + " and " +
                   Counted(variables, "linked variable"));
}

void MechanismRules::CheckExpression(const Node& entity)
{
    const std::size_t linked = ItemsOf(entity, L"Variables").size();
    CheckMapping(entity, linked);
    const KARMPDeserializer* const value = First(entity, L"Value");
    std::wstring text;
    if (value == nullptr || !NodeOf(*value).HasText() || KARFailed(value->GetValue(text)))
        return;
    KARWBModel model;
    KARCDSIntArray ids;
    KARWBParserMessenger messenger;
    const std::string narrow = kar::ToUtf8(text);
    const RulePlace place = RulePlace({value}).Text();
    if (KARFailed(KARWBParser::Parse(std::string_view(narrow), model, ids, messenger, nullptr))) {
        std::string fault = "the text of the equation does not parse";
        if (messenger.GetNbOfErrors() > 0) {
            const KARWBParserError& error = messenger.GetError(0);
            fault = "line " + std::to_string(error.line) + ", column " +
                    std::to_string(error.column) + " of the equation: " + std::string(error.text);
        }
        m_tell(Code::EquationText, entity, place, std::move(fault));
    } else if (model.GetNbOfEquations() != 1) {
        m_tell(Code::EquationText, entity, place,
               "the text holds " +
                   Counted(static_cast<std::size_t>(model.GetNbOfEquations()), "equation") +
                   "; one was expected");
    } else {
        const std::size_t used = model.GetEquation(0).variableNames.size();
        if (used != linked)
            m_tell(Code::UnlinkedVariable, entity, place,
                   "the equation has " + Counted(used, "variable") + ", and " +
                       std::to_string(linked) + (linked == 1 ? " is linked" : " are linked"));
    }
}

// The reader asks for Var0, Var1, ... as often as there are entries.
void MechanismRules::CheckMapping(const Node& entity, std::size_t linked)
{
    const KARMPDeserializer* const mapping = First(entity, L"VariableMapping");
    std::unordered_set<std::wstring> asked;
    std::unordered_map<int, std::wstring_view> firsts;
    const KARMPDeserializer::ElementVector entries = ItemsOf(entity, L"VariableMapping");
    for (std::size_t index = 0; index < entries.size(); ++index)
        asked.insert(L"Var" + std::to_wstring(index));
    for (const KARMPDeserializer* entry : entries) {
        const auto position = IntegerOf(*entry);
        if (asked.count(std::wstring(entry->Id())) == 0)
            m_tell(Code::MappingRange, entity, {mapping, entry},
                   "the entry " + Quoted(entry->Id()) + " is not read: the names are Var0 to Var" +
                       std::to_string(entries.size() - 1) + " for " +
                       (entries.size() == 1 ? "one entry"
                                            : std::to_string(entries.size()) + " entries"));
        else if (position && (*position < 0 || static_cast<std::size_t>(*position) >= linked))
            m_tell(Code::MappingRange, entity, RulePlace({mapping, entry}).Text(),
                   "position " + std::to_string(*position) +
                       " is that of no variable: " + Counted(linked, "variable") +
                       (linked == 1 ? " is" : " are") + " linked, counted from 0");
        else if (position && !firsts.try_emplace(*position, entry->Id()).second)
            m_tell(Code::MappingRange, entity, RulePlace({mapping, entry}).Text(),
                   "position " + std::to_string(*position) + " is that of " +
                       Quoted(firsts[*position]) + " too");
    }
}

} // namespace karmp::documents

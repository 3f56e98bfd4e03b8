#include "KARWBParser.h"

#include "KARCDSIntArray.h"
#include "KARWBGrammar.h"
#include "KARWBLexer.h"
#include "KARWBModel.h"
#include "KARWBParserMessenger.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>

namespace {

using kar::Token;
using kar::TokenKind;

std::string GetWord(KARWBOperation operation)
{
    return std::string(kar::GetOperationInfo(operation).word);
}

// Operator precedence parser: an expression is an operand and the operators behind it that bind at
// least as tightly as asked for. It recurses only where the text nests, never along a chain.
class Parser
{
public:
    Parser(std::string_view text, KARWBParserMessenger& messenger)
        : m_text(text), m_lexer(text), m_messenger(messenger)
    {
        Advance();
    }

    bool ParseText(KARWBModel& model)
    {
        do {
            m_equation = KARWBModelEquation();
            m_positions.clear();
            m_depth = 0;
            if (ParseEquation())
                model.AddEquation(std::move(m_equation));
            else
                SkipEquation();
        } while (Accept(";") && m_token.kind != TokenKind::End);
        return m_errorCount == 0;
    }

private:
    // One level of nesting for as long as it lives.
    class Level
    {
    public:
        explicit Level(Parser& parser) : m_parser(parser) { ++m_parser.m_depth; }
        ~Level() { --m_parser.m_depth; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

    private:
        Parser& m_parser;
    };

    void Advance() { m_token = m_lexer.Next(); }

    bool Accept(std::string_view symbol)
    {
        if (!m_token.IsSymbol(symbol))
            return false;
        Advance();
        return true;
    }

    // Columns count characters: the further bytes of a character in UTF-8 don't count. Errors come
    // in the order of the text, so the count goes on from the last one.
    bool Fail(std::size_t offset, std::string_view error)
    {
        ++m_errorCount;
        if (m_errorCount > KARWBParserMessenger::MaxErrorsPerText)
            return false;
        for (; m_counted < offset; ++m_counted) {
            const char c = m_text[m_counted];
            if (c == '\n') {
                ++m_line;
                m_column = 1;
            } else if ((static_cast<unsigned char>(c) & 0xC0U) != 0x80U) {
                ++m_column;
            }
        }
        m_messenger.AddError(m_line, m_column, error);
        return false;
    }

    bool FailExpecting(const std::string& expected)
    {
        if (m_token.kind == TokenKind::Invalid)
            return Fail(m_token.offset, m_token.text);
        std::string found = "the end";
        if (m_token.kind == TokenKind::Number)
            found = "a number";
        else if (m_token.kind != TokenKind::End)
            found = kar::Quote(m_token.text);
        return Fail(m_token.offset, "expected " + expected + ", found " + found);
    }

    bool CheckDepth(std::size_t offset)
    {
        if (m_depth <= KARWBExpressionTree::MaxDepth)
            return true;
        return Fail(offset, "nested deeper than " + std::to_string(KARWBExpressionTree::MaxDepth) +
                                " levels");
    }

    void SkipEquation()
    {
        while (m_token.kind != TokenKind::End && !m_token.IsSymbol(";"))
            Advance();
    }

    bool ParseEquation()
    {
        if (!ParseExpression(kar::ComparisonStrength))
            return false;
        if (Accept("=")) {
            if (!ParseExpression(kar::ComparisonStrength))
                return false;
            m_equation.tree.Apply(KARWBOperation::Equate);
        }
        if (m_token.kind == TokenKind::End || m_token.IsSymbol(";"))
            return true;
        if (m_token.IsSymbol("="))
            return FailAtEquals();
        return FailExpecting("an operator or ';'");
    }

    bool FailAtEquals()
    {
        return Fail(m_token.offset,
                    "'=' may stand once and outside of parentheses only; '==' compares");
    }

    bool ParseExpression(int weakest)
    {
        if (!ParseOperand())
            return false;
        bool isCompared = false;
        for (;;) {
            const KARWBOperation operation = FindOperator();
            const int strength = kar::GetOperationInfo(operation).strength;
            if (kar::IsLeaf(operation) || strength < weakest)
                return true;
            if (kar::IsComparison(operation) && std::exchange(isCompared, true))
                return Fail(m_token.offset, "comparisons don't chain; use parentheses");
            Advance();
            if (!ParseRightSide(operation, strength))
                return false;
        }
    }

    bool ParseRightSide(KARWBOperation operation, int strength)
    {
        if (operation == KARWBOperation::Power) {
            const Level level(*this);
            return CheckDepth(m_token.offset) && ParseExpression(strength) && Apply(operation);
        }
        return ParseExpression(strength + 1) && Apply(operation);
    }

    bool Apply(KARWBOperation operation)
    {
        if (!KARFailed(m_equation.tree.Apply(operation)))
            return true;
        return Fail(m_token.offset, "an expression too large");
    }

    // The operator at the present word; a leaf when there is none.
    KARWBOperation FindOperator() const
    {
        return m_token.kind == TokenKind::Symbol ? kar::FindInfixOperator(m_token.text)
                                                 : KARWBOperation::Number;
    }

    bool ParseOperand()
    {
        switch (m_token.kind) {
        case TokenKind::Number:
            m_equation.tree.PushNumber(m_token.number);
            Advance();
            return true;
        case TokenKind::QuotedName:
            PushVariable();
            return true;
        case TokenKind::Name:
            return ParseName();
        default:
            if (m_token.IsSymbol("("))
                return ParseParentheses();
            if (m_token.IsSymbol("-") || m_token.IsSymbol("+"))
                return ParseSign();
            return FailExpecting("a number, a name or '('");
        }
    }

    bool ParseSign()
    {
        const bool isNegative = m_token.IsSymbol("-");
        const Level level(*this);
        if (!CheckDepth(m_token.offset))
            return false;
        Advance();
        return ParseExpression(kar::SignStrength) && (!isNegative || Apply(KARWBOperation::Negate));
    }

    bool ParseParentheses()
    {
        const Level level(*this);
        if (!CheckDepth(m_token.offset))
            return false;
        Advance();
        if (!ParseExpression(kar::ComparisonStrength))
            return false;
        if (m_token.IsSymbol("="))
            return FailAtEquals();
        return Accept(")") || FailExpecting("an operator or ')'");
    }

    bool ParseName()
    {
        const kar::OperationInfo* const word = kar::FindNamedOperation(m_token.text);
        if (word != nullptr && kar::IsFunction(word->operation))
            return ParseCall(*word);
        const Token name = m_token;
        if (word != nullptr) {
            m_equation.tree.PushConstant(word->operation);
            Advance();
        } else {
            PushVariable();
        }
        if (!m_token.IsSymbol("("))
            return true;
        return Fail(name.offset, "unknown function " + kar::Quote(name.text));
    }

    bool ParseCall(const kar::OperationInfo& function)
    {
        const std::size_t offset = m_token.offset;
        const Level level(*this);
        if (!CheckDepth(offset))
            return false;
        Advance();
        if (!Accept("("))
            return FailExpecting("'(' after the function " + GetWord(function.operation));
        int count = 0;
        if (!m_token.IsSymbol(")")) {
            do {
                if (!ParseExpression(kar::ComparisonStrength))
                    return false;
                ++count;
            } while (Accept(","));
            if (m_token.IsSymbol("="))
                return FailAtEquals();
        }
        if (!m_token.IsSymbol(")"))
            return FailExpecting("an operator, ',' or ')'");
        if (count < function.minArguments || count > function.maxArguments)
            return FailAtCount(offset, function, count);
        Advance();
        return !KARFailed(m_equation.tree.Apply(function.operation, count)) ||
               Fail(offset, "an expression too large");
    }

    bool FailAtCount(std::size_t offset, const kar::OperationInfo& function, int count)
    {
        const int needed = function.minArguments;
        const bool isVariadic = function.maxArguments > needed;
        std::string error = GetWord(function.operation) + " takes " + std::to_string(needed);
        error += isVariadic ? " or more" : "";
        error += needed == 1 && !isVariadic ? " argument" : " arguments";
        return Fail(offset, error + ", not " + std::to_string(count));
    }

    void PushVariable()
    {
        std::vector<KARCDSString>& names = m_equation.variableNames;
        const auto next = static_cast<std::uint32_t>(names.size());
        const auto [entry, isNew] = m_positions.try_emplace(std::move(m_token.text), next);
        if (isNew)
            names.emplace_back(entry->first);
        m_equation.tree.PushVariable(entry->second);
        Advance();
    }

    std::string_view m_text;
    kar::Lexer m_lexer;
    KARWBParserMessenger& m_messenger;
    Token m_token;
    KARWBModelEquation m_equation;
    std::unordered_map<std::string, std::uint32_t> m_positions;
    int m_depth = 0;
    int m_errorCount = 0;
    std::size_t m_counted = 0;
    int m_line = 1;
    int m_column = 1;
};

} // namespace

KARStatus KARWBParser::Parse(const char* text, KARWBModel& model, KARCDSIntArray& ids,
                             KARWBParserMessenger& messenger, const KARWBBlackBoxList* blackBoxes)
{
    if (text != nullptr)
        return Parse(std::string_view(text), model, ids, messenger, blackBoxes);
    model.Clear();
    ids.RemoveAll();
    messenger.AddError(1, 1, "no text");
    return KARFailure;
}

KARStatus KARWBParser::Parse(std::string_view text, KARWBModel& model, KARCDSIntArray& ids,
                             KARWBParserMessenger& messenger, const KARWBBlackBoxList* blackBoxes)
{
    model.Clear();
    ids.RemoveAll();
    if (text.size() > MaxTextLength || blackBoxes != nullptr) {
        messenger.AddError(1, 1,
                           blackBoxes != nullptr ? "the language has no black boxes"
                                                 : "the text is too long");
        return KARFailure;
    }
    if (!Parser(text, messenger).ParseText(model)) {
        model.Clear();
        return KARFailure;
    }
    for (int i = 0; i < model.GetNbOfEquations(); ++i)
        ids.Append(i);
    return KARSuccess;
}

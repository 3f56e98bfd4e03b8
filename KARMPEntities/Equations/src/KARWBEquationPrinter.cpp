#include "KARWBEquationPrinter.h"

#include "KARCDSString.h"
#include "KARWBEquation.h"
#include "KARWBGrammar.h"
#include "KARWBVariable.h"

#include <charconv>
#include <string>
#include <utility>
#include <vector>

namespace {

// Writes a tree from the root down with a stack of its own: chains are as deep as they are long.
class Printer
{
public:
    explicit Printer(const KARWBEquation& equation)
        : m_equation(equation), m_nodes(equation.GetTree().GetNodes())
    {}

    std::string Run()
    {
        PushNode(static_cast<std::uint32_t>(m_nodes.size() - 1));
        while (!m_stack.empty()) {
            const Item item = m_stack.back();
            m_stack.pop_back();
            if (item.text.empty())
                Open(item.node);
            else
                m_text += item.text;
        }
        return std::move(m_text);
    }

private:
    // A piece of text, or a node still to be written when the text is empty.
    struct Item
    {
        std::string_view text;
        std::uint32_t node;
    };

    void PushText(std::string_view text) { m_stack.push_back({text, 0}); }
    void PushNode(std::uint32_t node) { m_stack.push_back({{}, node}); }

    void PushArgument(KARWBOperation parent, bool isRightmost, std::uint32_t node)
    {
        const bool isEnclosed = kar::NeedsParentheses(parent, isRightmost, m_nodes[node].operation);
        if (isEnclosed)
            PushText(")");
        PushNode(node);
        if (isEnclosed)
            PushText("(");
    }

    void Open(std::uint32_t index)
    {
        const KARWBNode& node = m_nodes[index];
        const kar::OperationInfo& info = kar::GetOperationInfo(node.operation);
        if (node.operation == KARWBOperation::Number) {
            WriteNumber(node.number);
        } else if (node.operation == KARWBOperation::Variable) {
            WriteName(m_equation.GetVariable(static_cast<int>(node.variable))->GetName());
        } else if (kar::IsFunction(node.operation)) {
            m_text += info.word;
            m_text += '(';
            PushCallArguments(index);
        } else if (node.argumentCount == 0) {
            m_text += info.word;
        } else {
            OpenOperator(index, info);
        }
    }

    // What is pushed last is written first, so the arguments go on from the last to the first.
    void PushCallArguments(std::uint32_t index)
    {
        PushText(")");
        std::uint32_t argument = index - 1;
        for (std::uint32_t left = m_nodes[index].argumentCount; left > 0; --left) {
            PushNode(argument);
            if (left > 1)
                PushText(", ");
            argument -= m_nodes[argument].size;
        }
    }

    void OpenOperator(std::uint32_t index, const kar::OperationInfo& info)
    {
        const std::uint32_t right = index - 1;
        PushArgument(info.operation, true, right);
        if (info.operation == KARWBOperation::Negate) {
            m_text += info.word;
            return;
        }
        if (info.operation == KARWBOperation::Power) {
            PushText(info.word);
        } else {
            PushText(" ");
            PushText(info.word);
            PushText(" ");
        }
        PushArgument(info.operation, false, right - m_nodes[right].size);
    }

    void WriteNumber(double number)
    {
        char buffer[32];
        const auto end = std::to_chars(std::begin(buffer), std::end(buffer), number).ptr;
        m_text.append(std::begin(buffer), end);
    }

    // Bytes outside of printable ASCII are escaped, so that no encoding in between can change them.
    void WriteName(std::string_view name)
    {
        constexpr std::string_view HexDigits = "0123456789abcdef";
        if (kar::IsPlainName(name)) {
            m_text += name;
            return;
        }
        m_text += '\'';
        for (const char c : name) {
            const auto byte = static_cast<unsigned char>(c);
            if (c == '\'' || c == '\\') {
                m_text += '\\';
                m_text += c;
            } else if (byte >= 0x20 && byte < 0x7F) {
                m_text += c;
            } else {
                m_text += "\\x";
                m_text += HexDigits[byte >> 4U];
                m_text += HexDigits[byte & 0xFU];
            }
        }
        m_text += '\'';
    }

    const KARWBEquation& m_equation;
    const std::vector<KARWBNode>& m_nodes;
    std::vector<Item> m_stack;
    std::string m_text;
};

} // namespace

KARStatus KARWBEquationPrinter::Print(const KARWBEquation* equation, KARCDSString& text)
{
    text = KARCDSString();
    if (equation == nullptr || !equation->IsComplete())
        return KARFailure;
    text = KARCDSString(Printer(*equation).Run());
    return KARSuccess;
}

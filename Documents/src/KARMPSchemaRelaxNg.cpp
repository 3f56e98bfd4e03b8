// RELAX NG in both syntaxes.
#include "KARMPSchemaClasses.h"
#include "KARMPSchemaGrammar.h"
#include "KARMPSchemaLanguages.h"

#include <algorithm>
#include <array>

namespace karmp::documents {

namespace {

using Kind = Pattern::Kind;

std::string Indent(unsigned depth)
{
    return std::string(std::size_t{2} * depth, ' ');
}

/// Prints patterns in the compact syntax.
class CompactPrinter
{
public:
    std::string Print(const std::vector<Definition>& definitions)
    {
        m_text = "datatypes xsd = \"http://www.w3.org/2001/XMLSchema-datatypes\"\n";
        for (const Definition& definition : definitions) {
            m_text += '\n' + Name(definition.name, definition.name != "start") + " =\n" + Indent(1);
            Print(definition.pattern, 1);
            m_text += '\n';
        }
        return std::move(m_text);
    }

private:
    // A keyword is a name behind a backslash.
    static std::string Name(const std::string& name, bool isName = true)
    {
        static constexpr std::array<std::string_view, 19> keywords{
            "attribute", "default", "datatypes", "div",  "element", "empty",     "external",
            "grammar",   "include", "inherit",   "list", "mixed",   "namespace", "notAllowed",
            "parent",    "start",   "string",    "text", "token"};
        const bool isKeyword =
            isName && std::find(keywords.begin(), keywords.end(), name) != keywords.end();
        return isKeyword ? '\\' + name : name;
    }
    // A literal is written without escapes of its own; a character is escaped by its number.
    static std::string Literal(const std::string& text)
    {
        std::string literal = "\"";
        for (const char character : text)
            literal += character == '"' ? std::string("\\x{22}") : std::string(1, character);
        return literal + '"';
    }
    void Sequence(const Pattern& pattern, const char* separator, unsigned depth)
    {
        m_text += '(';
        for (std::size_t i = 0; i < pattern.children.size(); ++i) {
            m_text += i == 0 ? "\n" : std::string(separator) + "\n";
            m_text += Indent(depth + 1);
            Print(pattern.children[i], depth + 1);
        }
        m_text += ')';
    }
    void Braced(const char* keyword, const Pattern& pattern, unsigned depth)
    {
        if (!pattern.says.empty())
            m_text += "## " + pattern.says + '\n' + Indent(depth);
        m_text += keyword;
        m_text += pattern.name.empty() ? "*" : Name(pattern.name);
        m_text += " { ";
        Print(pattern.children.front(), depth);
        m_text += " }";
    }
    void Marked(const Pattern& pattern, const char* mark, unsigned depth)
    {
        m_text += '(';
        Print(pattern.children.front(), depth);
        m_text += ')';
        m_text += mark;
    }
    void Print(const Pattern& pattern, unsigned depth)
    {
        switch (pattern.kind) {
        case Kind::Element:
            return Braced("element ", pattern, depth);
        case Kind::Attribute:
            return Braced("attribute ", pattern, depth);
        case Kind::Group:
            return Sequence(pattern, ",", depth);
        case Kind::Interleave:
            return Sequence(pattern, " &", depth);
        case Kind::Choice:
            return Sequence(pattern, " |", depth);
        case Kind::Optional:
            return Marked(pattern, "?", depth);
        case Kind::ZeroOrMore:
            return Marked(pattern, "*", depth);
        case Kind::OneOrMore:
            return Marked(pattern, "+", depth);
        case Kind::Text:
            m_text += "text";
            return;
        case Kind::Empty:
            m_text += "empty";
            return;
        case Kind::Value:
            m_text += "string " + Literal(pattern.name);
            return;
        case Kind::Data:
            m_text += "xsd:string { pattern = " + Literal(pattern.name) + " }";
            return;
        case Kind::Reference:
            m_text += Name(pattern.name);
            return;
        }
    }

    std::string m_text;
};

/// Prints patterns as XML.
class XmlPrinter
{
public:
    std::string Print(const std::vector<Definition>& definitions)
    {
        m_text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                 "<grammar xmlns=\"http://relaxng.org/ns/structure/1.0\"\n"
                 "         xmlns:a=\"http://relaxng.org/ns/compatibility/annotations/1.0\"\n"
                 "         datatypeLibrary=\"http://www.w3.org/2001/XMLSchema-datatypes\">\n";
        for (const Definition& definition : definitions) {
            const bool isStart = definition.name == "start";
            m_text += isStart ? std::string("  <start>\n")
                              : "  <define name=\"" + definition.name + "\">\n";
            Print(definition.pattern, 2);
            m_text += isStart ? "  </start>\n" : "  </define>\n";
        }
        m_text += "</grammar>\n";
        return std::move(m_text);
    }

private:
    void Line(const std::string& text, unsigned depth) { m_text += Indent(depth) + text + '\n'; }
    void Around(const std::string& tag, const Pattern& pattern, unsigned depth)
    {
        Line('<' + tag + '>', depth);
        for (const Pattern& child : pattern.children)
            Print(child, depth + 1);
        Line("</" + tag + '>', depth);
    }
    void Holder(const std::string& tag, const Pattern& pattern, unsigned depth)
    {
        Line(pattern.name.empty() ? '<' + tag + '>'
                                  : '<' + tag + " name=\"" + Escaped(pattern.name) + "\">",
             depth);
        if (!pattern.says.empty())
            Line("<a:documentation>" + Escaped(pattern.says) + "</a:documentation>", depth + 1);
        if (pattern.name.empty())
            Line("<anyName/>", depth + 1);
        for (const Pattern& child : pattern.children)
            Print(child, depth + 1);
        Line("</" + tag + '>', depth);
    }
    void Print(const Pattern& pattern, unsigned depth)
    {
        switch (pattern.kind) {
        case Kind::Element:
            return Holder("element", pattern, depth);
        case Kind::Attribute:
            return Holder("attribute", pattern, depth);
        case Kind::Group:
            return Around("group", pattern, depth);
        case Kind::Interleave:
            return Around("interleave", pattern, depth);
        case Kind::Choice:
            return Around("choice", pattern, depth);
        case Kind::Optional:
            return Around("optional", pattern, depth);
        case Kind::ZeroOrMore:
            return Around("zeroOrMore", pattern, depth);
        case Kind::OneOrMore:
            return Around("oneOrMore", pattern, depth);
        case Kind::Text:
            return Line("<text/>", depth);
        case Kind::Empty:
            return Line("<empty/>", depth);
        case Kind::Value:
            return Line("<value type=\"string\">" + Escaped(pattern.name) + "</value>", depth);
        case Kind::Data:
            return Line("<data type=\"string\"><param name=\"pattern\">" + Escaped(pattern.name) +
                            "</param></data>",
                        depth);
        case Kind::Reference:
            return Line("<ref name=\"" + pattern.name + "\"/>", depth);
        }
    }

    std::string m_text;
};

} // namespace

std::string RelaxNgCompactText(std::wstring_view version)
{
    return CompactPrinter().Print(MakeGrammar(version));
}

std::string RelaxNgText(std::wstring_view version)
{
    return XmlPrinter().Print(MakeGrammar(version));
}

} // namespace karmp::documents

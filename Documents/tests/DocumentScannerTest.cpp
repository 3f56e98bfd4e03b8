// The scanner of documents against the XML parser: both read the same documents, and read the same
// out of them.
#include "KARMPDocumentReader.h"
#include "KARMPTextEscapes.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <vector>

using namespace karmp::documents;

namespace {

constexpr unsigned Flags = pugi::parse_minimal | pugi::parse_cdata | pugi::parse_doctype |
                           pugi::parse_declaration | pugi::parse_embed_pcdata |
                           pugi::parse_ws_pcdata_single | pugi::parse_fragment;

std::wstring Decoded(std::string_view raw, TextContext context)
{
    std::wstring text;
    AppendDecoded(text, raw, context);
    return text;
}

// The names, attributes, texts and children of a tree, one node after the other.
std::wstring Outline(const KARMPDocumentReader& node)
{
    std::wstring outline = L'<' + std::wstring(node.Id());
    for (std::size_t index = 0; index < node.GetAttributeCount(); ++index) {
        std::wstring value;
        EXPECT_EQ(node.GetAttribute(node.GetAttributeId(index), value), KARSuccess);
        outline += L' ' + std::wstring(node.GetAttributeId(index)) + L'=' + value;
    }
    std::wstring text;
    if (node.HasText())
        EXPECT_EQ(node.GetValue(text), KARSuccess);
    outline += L'|' + text + L'|';
    KARMPDeserializer::ElementVector children;
    node.AppendOrderedElements(children);
    for (const KARMPDeserializer* child : children)
        outline += Outline(static_cast<const KARMPDocumentReader&>(*child));
    return outline + L'>';
}

// Beside elements, the blanks around a text are indentation.
std::wstring TextOf(const pugi::xml_node& node)
{
    const bool hasElements = !node.find_child([](const pugi::xml_node& child) {
                                      return child.type() == pugi::node_element;
                                  })
                                  .empty();
    std::wstring text;
    const auto append = [&](std::string_view raw) {
        if (hasElements) {
            raw.remove_prefix(std::min(raw.find_first_not_of(Blanks), raw.size()));
            raw = raw.substr(0, raw.find_last_not_of(Blanks) + 1);
        }
        AppendDecoded(text, raw, TextContext::Element);
    };
    append(node.value());
    for (const pugi::xml_node& child : node)
        if (child.type() == pugi::node_cdata)
            AppendDecodedCData(text, child.value());
        else if (child.type() == pugi::node_pcdata)
            append(child.value());
    return text;
}

// The same of the XML parser's tree. The last attribute of a name counts, in place of the first.
std::wstring Outline(const pugi::xml_node& node)
{
    std::wstring outline = L'<' + Decoded(node.name(), TextContext::Element);
    std::vector<std::string> order;
    std::map<std::string, std::string> values;
    for (const pugi::xml_attribute& attribute : node.attributes()) {
        if (values.count(attribute.name()) == 0)
            order.emplace_back(attribute.name());
        values[attribute.name()] = attribute.value();
    }
    for (const std::string& name : order)
        outline += L' ' + Decoded(name, TextContext::Element) + L'=' +
                   Decoded(values[name], TextContext::Attribute);
    outline += L'|' + TextOf(node) + L'|';
    for (const pugi::xml_node& child : node)
        if (child.type() == pugi::node_element)
            outline += Outline(child);
    return outline + L'>';
}

// Expects that both read the same. Returns true when a document is read.
bool ExpectSame(const std::string& text)
{
    const Document document = Document::ReadText(text);
    pugi::xml_document parsed;
    const bool isParsed =
        parsed.load_buffer(text.data(), text.size(), Flags, pugi::encoding_utf8).status ==
        pugi::status_ok;
    if (document.Root() == nullptr) {
        EXPECT_TRUE(document.Messages().HasErrors());
        for (const Diagnostic& message : document.Messages().items)
            EXPECT_NE(message.text, "the document is no well-formed XML") << text;
        return false;
    }
    EXPECT_TRUE(isParsed) << text;
    EXPECT_EQ(Outline(*document.Root()), Outline(parsed.document_element())) << text;
    return true;
}

std::string InRoot(const std::string& content)
{
    return "<KARMPDocument version='R2018.1'>" + content + "</KARMPDocument>";
}

TEST(DocumentScanner, ReadsWhatTheXmlParserReads)
{
    const char* const contents[] = {"",
                                    " ",
                                    "text",
                                    "<A/>",
                                    "<A></A>",
                                    "<A> </A>",
                                    "<A >x</A >",
                                    "<A\n\ta = '1'\r\nb=\"'2'\" />",
                                    "<A a='&lt;&#65;&amp;'>&gt;\\x{41}&#x42;</A>",
                                    "<A a='two\n lines\tand a tab'>two\n\tlines\r\nand\rmore</A>",
                                    "<A>one<!-- <B> -->two</A>",
                                    "<A>one<B/>two<C> </C> <D/> </A>",
                                    "<A> <B/> </A>",
                                    "<A><!-- - --> </A>",
                                    "<A>x<!-- --> </A>",
                                    "<A> <!-- --> </A>",
                                    "<A><?target instruction > ?>x</A>",
                                    "<A><![CDATA[<x>&amp;]]></A>",
                                    "<A><![CDATA[]]></A>",
                                    "<A>x<![CDATA[ y ]]] ]]>z</A>",
                                    "<A>x<B/><![CDATA[ y ]]><C/></A>",
                                    "<A>caf\xC3\xA9</A><\xC3\xA9t\xC3\xA9 \xC3\xA0='\xC3\xA7'/>",
                                    "<A>]]></A><A a='>'/>",
                                    "<_a.b-c:d1/><A><A><A>deep</A></A></A>",
                                    "<A a='1' b='2' a='3'/>",
                                    "<A a='&nothing;'>&nothing;</A>"};
    for (const char* const content : contents)
        EXPECT_TRUE(ExpectSame(InRoot(content))) << content;
}

TEST(DocumentScanner, ReadsWhatStandsAroundTheRoot)
{
    const std::string root = InRoot("<A>1</A>");
    for (const std::string& begin :
         {std::string("\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"utf-8\"?>"),
          std::string("<?xml version='1.0'?>\n<!-- c --> <?p i?>\n"), std::string("\n "),
          std::string("\n<?XML version = '1.0' ?>")})
        EXPECT_TRUE(ExpectSame(begin + root + "\n<!-- c -->\n<?p?>\n")) << begin;
}

// Each document is changed at a few random bytes; the seed is fixed, so that it is the same ones.
TEST(DocumentScanner, ReadsChangedDocumentsAsTheXmlParserDoes)
{
    const std::string whole =
        "<?xml version=\"1.0\"?>\n<KARMPDocument version=\"R2018.1\">\n <World a=\"1\" b='x'>one\n"
        "  <A>12.5</A><B c=\"&lt;\"/> <!-- - --><C> </C>two<![CDATA[ <x> ]]></World>\n"
        " <D ee = \"long value\"><F>text &amp; more</F></D>\n</KARMPDocument>\n";
    constexpr std::string_view bytes = "<>/='\"&; ax!-[]?\n\\1";
    std::mt19937 random(7);
    const auto below = [&random](std::size_t count) { return random() % count; };
    int read = 0;
    constexpr int times = 20000;
    for (int time = 0; time < times; ++time) {
        std::string text = whole;
        for (std::size_t changes = 1 + below(3); changes > 0; --changes) {
            const std::size_t at = below(text.size() - 1);
            switch (below(3)) {
            case 0:
                text[at] = bytes[below(bytes.size())];
                break;
            case 1:
                text.insert(at, 1, bytes[below(bytes.size())]);
                break;
            default:
                text.erase(at, 1 + below(4));
            }
        }
        read += ExpectSame(text) ? 1 : 0;
        ASSERT_FALSE(HasFailure()) << text;
    }
    EXPECT_GT(read, times / 10);
    EXPECT_LT(read, times - times / 10);
}

} // namespace

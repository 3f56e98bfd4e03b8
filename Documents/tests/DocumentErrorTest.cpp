// What is no document: each fault gives a message with its position, quickly.
#include "KARMPDocumentReader.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

using namespace karmp::documents;

namespace {

const std::string Start = "<KARMPDocument version=\"R2018.1\">";
const std::string End = "</KARMPDocument>";

struct Position
{
    std::size_t line;
    std::size_t column;
};

// Parsing gives no tree and one message.
void ExpectError(const std::string& text, Code code, Position position, const Limits& limits = {})
{
    const Document document = Document::ReadText(text, "x.xml", limits);
    const std::string shown = text.substr(0, 100);
    EXPECT_EQ(document.Root(), nullptr) << shown;
    ASSERT_EQ(document.Messages().items.size(), 1U) << shown;
    const Diagnostic& item = document.Messages().items[0];
    EXPECT_EQ(item.severity, Severity::Error) << shown;
    EXPECT_EQ(CodeText(item.code), CodeText(code)) << shown;
    EXPECT_EQ(item.file, "x.xml");
    EXPECT_EQ(item.line, position.line) << shown;
    EXPECT_EQ(item.column, position.column) << shown;
    EXPECT_FALSE(item.text.empty());
}

std::string Repeated(const std::string& text, std::size_t count)
{
    std::string all;
    all.reserve(text.size() * count);
    for (std::size_t index = 0; index < count; ++index)
        all += text;
    return all;
}

} // namespace

TEST(DocumentErrors, WhatIsNoXmlIsASyntaxErrorWithItsPosition)
{
    ExpectError("hello", Code::Syntax, {1, 1});
    ExpectError(Start + "<A></B>" + End, Code::Syntax, {1, 39});
    ExpectError(Start + "\n<A b=1/>" + End, Code::Syntax, {2, 6});
    ExpectError(Start + "\n<A b=\"1/>" + End, Code::Syntax, {2, 7});
    ExpectError(Start + "\n\n <A><![CDATA[" + End, Code::Syntax, {3, 29});
    ExpectError("<!-- a -->", Code::Syntax, {1, 10});
    ExpectError(Start + End + "<B/>", Code::Syntax, {1, Start.size() + End.size() + 2});
    ExpectError(Start + End + "\nrest", Code::Syntax, {2, 1});
    ExpectError(Start + "\n<?xml version=\"1.0\"?>" + End, Code::Syntax, {2, 6});
}

TEST(DocumentErrors, ATruncatedDocumentIsAnErrorWhereverItEnds)
{
    const std::string text =
        "<?xml version=\"1.0\"?>\n" + Start + "<A b=\"1\">x&amp;y<!-- c --><C/></A>" + End;
    for (std::size_t size = 0; size < text.size(); ++size) {
        const Document document = Document::ReadText(text.substr(0, size));
        EXPECT_EQ(document.Root(), nullptr) << size;
        EXPECT_TRUE(document.Messages().HasErrors()) << size;
    }
    EXPECT_NE(Document::ReadText(text).Root(), nullptr);
}

TEST(DocumentErrors, AnEmptyTextIsReportedAsSuch)
{
    ExpectError("", Code::Empty, {0, 0});
    ExpectError(" \r\n\t", Code::Empty, {0, 0});
}

TEST(DocumentErrors, BytesThatAreNoUtf8AreReportedWithTheirPosition)
{
    ExpectError(Start + "\n<A>\xFF</A>" + End, Code::Encoding, {2, 4});
    ExpectError(Start + "<A>\xC0\x80</A>" + End, Code::Encoding, {1, 37});
    ExpectError(Start + "<A>\xED\xA0\x80</A>" + End, Code::Encoding, {1, 37});
    ExpectError(Start + "<A>\xF4\x90\x80\x80</A>" + End, Code::Encoding, {1, 37});
    ExpectError(Start + "<A>\xE2\x82</A>" + End, Code::Encoding, {1, 37});
    ExpectError(Start + "<A>\x01</A>" + End, Code::Encoding, {1, 37});
    ExpectError(std::string(1000, '\0'), Code::Encoding, {1, 1});
    ExpectError("\xFF\xFE<\0", Code::Encoding, {1, 1});
    ExpectError("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + Start + End, Code::Encoding,
                {1, 21});
}

// Other readers refuse such documents.
TEST(DocumentErrors, WhatIsReadAndYetNoXmlIsAWarningWithItsPosition)
{
    const std::string whole = Start + "<A b=\"1\">x</A>" + End;
    const std::string encoded = " encoding=\"UTF-8\"";
    const struct
    {
        std::string text;
        Code code;
        Position position;
        std::string told;
    } lapses[] = {
        {whole + "<!-- a -- b -->", Code::Syntax, {1, whole.size() + 8}, "\"--\" stands within"},
        {Start + "\n<!-- a --->" + End, Code::Syntax, {2, 8}, "\"--\" stands within"},
        {"\n<?xml version=\"1.0\"?>" + whole, Code::Syntax, {2, 1}, "not stand at its begin"},
        {"<!-- a --><?xml version='1.0'?>" + whole, Code::Syntax, {1, 11}, "not stand at its"},
        {"<?xml version='1.0'?><?xml version='1.0'?>" + whole, Code::Syntax, {1, 22}, "begin"},
        {whole + "<?xml version='1.0'?>", Code::Syntax, {1, whole.size() + 1}, "begin"},
        {"<?xml" + encoded + " version=\"1.0\"?>" + whole, Code::Syntax, {1, 1}, "this order"},
        {"<?xml" + encoded + "?>" + whole, Code::Syntax, {1, 1}, "no version of XML"},
        {"<?xml version='1.0' standalone='maybe'?>" + whole, Code::Syntax, {1, 1}, "standalone in"},
        {"<?xml version='1.0' author='me'?>" + whole, Code::Syntax, {1, 1}, "and no more"},
        {Start + "\n<A>a\xEF\xBF\xBE</A>" + End, Code::Encoding, {2, 5}, "U+FFFE"},
        {Start + "<A b=\"\xEF\xBF\xBF\"/>" + End, Code::Encoding, {1, 40}, "U+FFFF"}};
    for (const auto& [text, code, position, told] : lapses) {
        const Document document = Document::ReadText(text);
        EXPECT_NE(document.Root(), nullptr) << text;
        ASSERT_EQ(document.Messages().items.size(), 1U) << text;
        const Diagnostic& item = document.Messages().items[0];
        EXPECT_EQ(item.severity, Severity::Warning) << text;
        EXPECT_EQ(CodeText(item.code), CodeText(code)) << text;
        EXPECT_EQ(item.line, position.line) << text;
        EXPECT_EQ(item.column, position.column) << text;
        EXPECT_NE(item.text.find(told), std::string::npos) << item.text;
    }
    // Two comments are two warnings, beside what else is told.
    const Document both = Document::ReadText(Start + "<!-- -- --><A>&x;</A><!-- -- -- -->" + End);
    ASSERT_EQ(both.Messages().items.size(), 3U);
    EXPECT_EQ(both.Messages().items[0].code, Code::Reference);
    EXPECT_EQ(both.Messages().items[2].code, Code::Syntax);
}

TEST(DocumentErrors, WhatLooksLikeALapseAndIsNone)
{
    const std::string whole = Start + "<A/>" + End;
    for (const std::string& text :
         {"<?xml version='1.0' encoding='utf-8' standalone='yes'?>" + whole,
          "\xEF\xBB\xBF<?xml version='1.0' standalone=\"no\"?>" + whole,
          "<!----><!-- - - --><!-- > -> -->" + whole, Start + "<A>-- &#45;-></A>" + End,
          Start + "<![CDATA[<!-- -- -->]]><?p -- ?>" + End,
          Start + "<A>\xEF\xBF\xBD \xEF\xBE\xBE \xF0\x9F\xBF\xBE</A>" + End}) {
        const Document document = Document::ReadText(text);
        for (const Diagnostic& item : document.Messages().items)
            ADD_FAILURE() << text << ": " << item.text;
    }
}

TEST(DocumentErrors, AWrongRootIsNamed)
{
    ExpectError("\n<World/>", Code::WrongRoot, {2, 2});
    const Document document = Document::ReadText("<World/>");
    EXPECT_EQ(document.Messages().items[0].text,
              "the root element is \"World\" instead of \"KARMPDocument\"");
}

TEST(DocumentErrors, ADocumentTypeDeclarationIsRefused)
{
    ExpectError("<!DOCTYPE KARMPDocument [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;\">]>\n" + Start +
                    "&b;" + End,
                Code::Doctype, {1, 11});
    ExpectError("<!DOCTYPE a SYSTEM \"file:///etc/passwd\">" + Start + End, Code::Doctype, {1, 11});
    ExpectError("<!DOCTYPE a [", Code::Doctype, {1, 13});
}

TEST(DocumentErrors, UnknownReferencesAreKeptAsTextAndReported)
{
    for (const std::string reference : {"&lol;", "&", "&#0;", "&#xD800;", "&#99999999999;", "&#x;",
                                        "&#1114112;", "&amp", "&#65", "&#65,", "&#"}) {
        std::string text = Start;
        text += "\n<A><B/><B>" + reference + "</B></A>" + End;
        const Document document = Document::ReadText(text);
        ASSERT_NE(document.Root(), nullptr);
        ASSERT_EQ(document.Messages().items.size(), 1U) << reference;
        const Diagnostic& item = document.Messages().items[0];
        EXPECT_EQ(item.code, Code::Reference);
        EXPECT_EQ(item.line, 2U);
        EXPECT_EQ(item.column, 11U);
        EXPECT_EQ(item.path, "/KARMPDocument/A/B[2]");
    }
    const Document first = Document::ReadText(Start + "<A>&x;</A><A/>" + End);
    ASSERT_EQ(first.Messages().items.size(), 1U);
    EXPECT_EQ(first.Messages().items[0].path, "/KARMPDocument/A[1]");
    const Document document = Document::ReadText(Start + "<A b=\"&x;\">&y;</A>" + End);
    ASSERT_EQ(document.Messages().items.size(), 2U);
    EXPECT_EQ(document.Messages().items[0].path, "/KARMPDocument/A/@b");
    const KARMPDeserializer* node = nullptr;
    std::wstring text;
    EXPECT_EQ(document.Root()->GetElement(L"A", node, text), KARSuccess);
    EXPECT_EQ(text, L"&y;");
}

TEST(DocumentErrors, OfTwoAttributesOfOneNameTheLastIsTakenWithAReport)
{
    const Document document =
        Document::ReadText(Start + "\n<A b=\"1\" c=\"2\" b=\"3\" b=\"3\"/>" + End);
    ASSERT_EQ(document.Messages().items.size(), 2U);
    for (const Diagnostic& item : document.Messages().items) {
        EXPECT_EQ(item.code, Code::DuplicateAttribute);
        EXPECT_EQ(item.path, "/KARMPDocument/A");
        EXPECT_EQ(item.line, 2U);
    }
    EXPECT_EQ(document.Messages().items[0].column, 16U);
    EXPECT_EQ(document.Messages().items[1].column, 22U);
    const KARMPDeserializer* node = nullptr;
    document.Root()->GetElement(L"A", node);
    int value = 0;
    EXPECT_EQ(node->GetAttribute(L"b", value), KARSuccess);
    EXPECT_EQ(value, 3);
}

TEST(DocumentErrors, AMissingOrUnknownVersionIsAWarning)
{
    const Document missing = Document::ReadText("<KARMPDocument/>");
    ASSERT_NE(missing.Root(), nullptr);
    EXPECT_EQ(missing.Version(), L"R2018.1");
    ASSERT_EQ(missing.Messages().items.size(), 1U);
    EXPECT_EQ(missing.Messages().items[0].code, Code::MissingVersion);
    EXPECT_EQ(missing.Messages().items[0].severity, Severity::Warning);

    const Document unknown = Document::ReadText("<KARMPDocument version=\"R2030.0\"/>");
    ASSERT_NE(unknown.Root(), nullptr);
    EXPECT_EQ(unknown.Root()->Version(), L"R2030.0");
    ASSERT_EQ(unknown.Messages().items.size(), 1U);
    EXPECT_EQ(unknown.Messages().items[0].code, Code::UnknownVersion);
    EXPECT_EQ(unknown.Messages().items[0].path, "/KARMPDocument/@version");
}

TEST(DocumentErrors, EveryLimitHoldsExactly)
{
    const std::string text = Start + "<Aa b=\"1\"><C/></Aa>" + End;
    Limits limits;
    limits.bytes = text.size();
    limits.depth = 3;
    limits.nodes = 5;
    limits.nameLength = std::string("KARMPDocument").size();
    EXPECT_NE(Document::ReadText(text, "x.xml", limits).Root(), nullptr);
    Limits smaller = limits;
    --smaller.bytes;
    ExpectError(text, Code::TooLarge, {0, 0}, smaller);
    smaller = limits;
    --smaller.depth;
    ExpectError(text, Code::TooDeep, {1, 45}, smaller);
    smaller = limits;
    --smaller.nodes;
    ExpectError(text, Code::TooManyNodes, {1, 45}, smaller);
    smaller = limits;
    --smaller.nameLength;
    ExpectError(text, Code::NameTooLong, {1, 2}, smaller);
    limits.bytes = 1000;
    const std::string longer(limits.nameLength + 1, 'a');
    ExpectError(Start + "<" + longer + "/>" + End, Code::NameTooLong, {1, 35}, limits);
    ExpectError(Start + "<A " + longer + "=\"1\"/>" + End, Code::NameTooLong, {1, 35}, limits);
    limits.nodes = 3;
    ExpectError(Start + "<A b=\"1\"/>" + End, Code::TooManyNodes, {1, 35}, limits);
}

TEST(DocumentErrors, HostileTextsEndQuickly)
{
    const auto begin = std::chrono::steady_clock::now();
    ExpectError(Start + Repeated("<a>", 200'000), Code::Syntax, {1, 600'033});
    ExpectError(Start + Repeated("<a>", 200'000) + Repeated("</a>", 200'000) + End, Code::TooDeep,
                {1, 30'032});
    ExpectError("<" + std::string(100'000'000, 'a') + "/>", Code::WrongRoot, {1, 2});
    ExpectError(Start + "<" + std::string(100'000'000, 'a') + "/>" + End, Code::NameTooLong,
                {1, 35});
    ExpectError(Start + "<a " + std::string(10'000'000, 'a') + "=\"\"/>" + End, Code::NameTooLong,
                {1, 35});
    std::string attributes = Start + "<a";
    for (int index = 0; index < 100'000; ++index)
        attributes += " a" + std::to_string(index % 50'000) + "=\"\"";
    const Document document = Document::ReadText(attributes + "/>" + End);
    EXPECT_EQ(document.Messages().items.size(), Limits().diagnostics + 1);
    EXPECT_EQ(document.Messages().items.back().code, Code::TooManyDiagnostics);
    const auto elapsed = std::chrono::steady_clock::now() - begin;
    EXPECT_LT(std::chrono::duration_cast<std::chrono::seconds>(elapsed).count(), 60);
}

TEST(DocumentErrors, NoSingleChangedByteBreaksTheReader)
{
    const std::string text =
        "<?xml version=\"1.0\"?>" + Start +
        "<A b=\"x&lt;\"><![CDATA[t]]>&#10;<!-- c --><?p i?><C>\xC3\xA4</C></A>" + End;
    for (std::size_t offset = 0; offset < text.size(); ++offset) {
        for (const char byte : {'<', '>', '&', '"', '\'', '/',    '!',    '?',  '-',  '[', ']',
                                ' ', '=', ';', 'x', '\n', '\x80', '\xFF', '\0', '\\', '{'}) {
            std::string changed = text;
            changed[offset] = byte;
            const Document document = Document::ReadText(changed, "x.xml", Limits::Tight());
            EXPECT_TRUE(document.Root() != nullptr || document.Messages().HasErrors());
        }
    }
}

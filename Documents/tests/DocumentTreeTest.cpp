// The tree in its text form: layout, what comes back, what is refused.
#include "KARMPDocumentReader.h"
#include "KARMPDocumentWriter.h"
#include "TreeBuilding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <cmath>
#include <limits>
#include <locale>
#include <string>
#include <vector>

using namespace karmp::documents;

namespace {

// The text of a tree, which must render without messages.
std::string TextOf(const KARMPDocumentWriter& root)
{
    std::string text;
    const Diagnostics diagnostics = root.RenderXml(text);
    for (const Diagnostic& item : diagnostics.items)
        ADD_FAILURE() << Format(item);
    return text;
}

// The document of a text, which must parse without messages.
Document Parsed(const std::string& text)
{
    Document document = Document::ReadText(text);
    for (const Diagnostic& item : document.Messages().items)
        ADD_FAILURE() << Format(item);
    return document;
}

// What becomes of a text as an attribute and as an element's value.
void ExpectTextComesBack(const std::wstring& text)
{
    KARMPDocumentWriter root;
    Add(root, L"Leaf", text)->AddAttribute(L"text", text);
    KARMPSerializer* const parent = Add(root, L"Parent", text);
    Add(*parent, L"Child", 1);
    const std::string bytes = TextOf(root);

    const Document document = Parsed(bytes);
    ASSERT_NE(document.Root(), nullptr) << bytes;
    const KARMPDeserializer* node = nullptr;
    std::wstring read;
    EXPECT_EQ(document.Root()->GetElement(L"Leaf", node, read), KARSuccess) << bytes;
    EXPECT_EQ(read, text) << bytes;
    EXPECT_EQ(node->GetAttribute(L"text", read), KARSuccess);
    EXPECT_EQ(read, text) << bytes;
    if (!text.empty()) {
        EXPECT_EQ(document.Root()->GetElement(L"Parent", node, read), KARSuccess) << bytes;
        EXPECT_EQ(read, text) << bytes;
    }
}

} // namespace

TEST(DocumentTree, IsIndentedByOneBlankALevelWithNumbersOfAGroupOnOneLine)
{
    KARMPDocumentWriter root(L"R2017.0");
    KARMPSerializer* const world = Add(root, L"World");
    world->AddAttribute(L"linear_tolerance", 0.001);
    world->AddAttribute(L"angular_tolerance", 1e-09);
    KARMPSerializer* const origin = Add(*world, L"Origin");
    Add(*origin, L"Ox", 0.0);
    Add(*origin, L"Oy", -2.5);
    Add(*origin, L"Oz", 3);
    KARMPSerializer* const body = Add(*Add(*world, L"Bodies"), L"Body");
    body->AddAttribute(L"floating", false);
    Add(*body, L"OutOfWorld", true);
    Add(*body, L"Empty");
    Add(*body, L"Empty");
    EXPECT_EQ(TextOf(root), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                            "<KARMPDocument version=\"R2017.0\">\n"
                            " <World linear_tolerance=\"0.001\" angular_tolerance=\"1e-09\">\n"
                            "  <Origin><Ox>0</Ox><Oy>-2.5</Oy><Oz>3</Oz></Origin>\n"
                            "  <Bodies>\n"
                            "   <Body floating=\"false\">\n"
                            "    <OutOfWorld>true</OutOfWorld>\n"
                            "    <Empty/>\n"
                            "    <Empty/>\n"
                            "   </Body>\n"
                            "  </Bodies>\n"
                            " </World>\n"
                            "</KARMPDocument>\n");
}

TEST(DocumentTree, OnlyBareNumbersStandOnOneLine)
{
    KARMPDocumentWriter root;
    Add(*Add(root, L"Bare"), L"N", 1);
    Add(*Add(root, L"WithText", L"text"), L"N", 1);
    KARMPSerializer* const withAttribute = Add(*Add(root, L"WithAttribute"), L"N", 1);
    withAttribute->AddAttribute(L"a", 2);
    Add(*Add(*Add(root, L"WithChild"), L"N", 1), L"M", 2);
    EXPECT_EQ(TextOf(root), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                            "<KARMPDocument version=\"R2018.1\">\n"
                            " <Bare><N>1</N></Bare>\n"
                            " <WithText>text\n"
                            "  <N>1</N>\n"
                            " </WithText>\n"
                            " <WithAttribute>\n"
                            "  <N a=\"2\">1</N>\n"
                            " </WithAttribute>\n"
                            " <WithChild>\n"
                            "  <N>1\n"
                            "   <M>2</M>\n"
                            "  </N>\n"
                            " </WithChild>\n"
                            "</KARMPDocument>\n");
}

TEST(DocumentTree, LevelsBelowTheHundredthAreIndentedAsThatIs)
{
    KARMPDocumentWriter root;
    KARMPSerializer* node = &root;
    for (int level = 1; level <= 102; ++level)
        node = Add(*node, L"L" + std::to_wstring(level));
    const std::string text = TextOf(root);
    for (const int level : {99, 100, 101, 102}) {
        const auto blanks = static_cast<std::size_t>(std::min(level, 100));
        const std::string line = '\n' + std::string(blanks, ' ') + "<L" + std::to_string(level);
        EXPECT_NE(text.find(line), std::string::npos) << level;
    }
}

TEST(DocumentTree, EveryTextComesBackAsItWas)
{
    const std::vector<std::wstring> texts{
        L"",
        L" ",
        L"   ",
        L"\t",
        L"\n",
        L"\r",
        L"\r\n",
        L" a ",
        L"\ta\n",
        L"a\tb\nc\rd",
        L"a  b",
        L"<&>\"'",
        L"]]>",
        L"&amp;",
        L"&#32;",
        L"<!-- no comment -->",
        L"C:\\dir\\x\\{}",
        L"\\",
        L"\\\\",
        L"\\x",
        L"\\x{",
        L"\\x{41}",
        L"\\x{zz}",
        L"\\\\x{41}",
        L"\\x{5C}x{41}",
        L"\xE4\xF6\xFC \x20AC \x1F600",
        std::wstring(L"a\0b", 3),
        L"\x01\x08\x0B\x0C\x0E\x1F\x7F\x85",
        L"\x2028\xFEFF\xFFFD",
        L"\xFFFE\xFFFF",
    };
    for (const std::wstring& text : texts)
        ExpectTextComesBack(text);
}

TEST(DocumentTree, OnlyWhatXmlNeedsIsEscaped)
{
    KARMPDocumentWriter root(L" \"1\" ");
    for (const wchar_t* text : {L"a b~", L"a ", L" a", L"a>b", L"a<b", L"a&b", L"a\"b", L"a\\b"})
        Add(root, L"T", text)->AddAttribute(L"t", text);
    EXPECT_EQ(TextOf(root), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                            "<KARMPDocument version=\" &quot;1&quot; \">\n"
                            " <T t=\"a b~\">a b~</T>\n"
                            " <T t=\"a \">a&#32;</T>\n"
                            " <T t=\" a\">&#32;a</T>\n"
                            " <T t=\"a&gt;b\">a&gt;b</T>\n"
                            " <T t=\"a&lt;b\">a&lt;b</T>\n"
                            " <T t=\"a&amp;b\">a&amp;b</T>\n"
                            " <T t=\"a&quot;b\">a&quot;b</T>\n"
                            " <T t=\"a\\b\">a\\b</T>\n"
                            "</KARMPDocument>\n");
}

TEST(DocumentTree, ValuesThatAreNoCharacterComeBackAsTheyWere)
{
    std::wstring text = L"a";
    text += static_cast<wchar_t>(0xD800);
    text += static_cast<wchar_t>(0xDFFF);
    text += L"b";
    if constexpr (sizeof(wchar_t) == 4) {
        text += static_cast<wchar_t>(0x110000);
        text += static_cast<wchar_t>(0xFFFFFFFFU);
        text += static_cast<wchar_t>(0x80000000U);
    }
    ExpectTextComesBack(text);
}

TEST(DocumentTree, EveryDoubleComesBackWithAllItsBits)
{
    const std::vector<double> values{0.0,
                                     -0.0,
                                     1.0 / 3.0,
                                     1e-13,
                                     -1e-300,
                                     5e-324,
                                     1.7976931348623157e308,
                                     0.1 + 0.2,
                                     std::numeric_limits<double>::infinity()};
    for (const double value : values) {
        KARMPDocumentWriter root(karmp::CurrentVersion, Doubles::Exact);
        Add(root, L"Value", value)->AddAttribute(L"value", value);
        const Document document = Parsed(TextOf(root));
        const KARMPDeserializer* node = nullptr;
        double read = -1;
        EXPECT_EQ(document.Root()->GetElement(L"Value", node, read), KARSuccess);
        EXPECT_EQ(read, value);
        EXPECT_EQ(std::signbit(read), std::signbit(value));
        read = -1;
        EXPECT_EQ(node->GetAttribute(L"value", read), KARSuccess);
        EXPECT_EQ(read, value);
    }
}

TEST(DocumentTree, KeepsDoublesExactOnlyWhenToldTo)
{
    KARMPDocumentWriter snapped;
    Add(*Add(snapped, L"Group"), L"Value", 1e-13);
    EXPECT_NE(TextOf(snapped).find("<Value>0</Value>"), std::string::npos);
    KARMPDocumentWriter exact(karmp::CurrentVersion, Doubles::Exact);
    Add(*Add(exact, L"Group"), L"Value", 1e-13);
    EXPECT_NE(TextOf(exact).find("<Value>1e-13</Value>"), std::string::npos);
}

TEST(DocumentTree, EveryNodeHasTheVersionOfTheRoot)
{
    KARMPDocumentWriter root(L"R2016.1");
    Add(*Add(*Add(root, L"World"), L"Bodies"), L"Body");
    const Document document = Parsed(TextOf(root));
    EXPECT_EQ(document.Version(), L"R2016.1");
    KARMPDeserializer::ElementVector nodes{document.Root()};
    for (std::size_t index = 0; index < nodes.size(); ++index) {
        EXPECT_EQ(nodes[index]->Version(), L"R2016.1");
        const auto* const node = nodes[index];
        node->AppendOrderedElements(nodes);
    }
    EXPECT_EQ(nodes.size(), 4U);
}

TEST(DocumentTree, NodesKnowTheirPositionInTheSource)
{
    const Document document = Parsed("<KARMPDocument version=\"R2018.1\">\n <A\n  b='1'>\n"
                                     "\n  <B/><C>x</C></A>\n</KARMPDocument>");
    const KARMPDeserializer* a = nullptr;
    const KARMPDeserializer* c = nullptr;
    document.Root()->GetElement(L"A", a);
    a->GetElement(L"C", c);
    EXPECT_EQ(document.Root()->Location(), L"1:2");
    EXPECT_EQ(a->Location(), L"2:3");
    EXPECT_EQ(c->Location(), L"5:8");
}

TEST(DocumentTree, TextBesideElementsLosesItsIndentation)
{
    const Document document = Parsed("<KARMPDocument version=\"R2018.1\">\n one\n <A> b </A>\n "
                                     "two\n<![CDATA[ & ]]></KARMPDocument>");
    std::wstring text;
    EXPECT_EQ(document.Root()->GetValue(text), KARSuccess);
    EXPECT_EQ(text, L"onetwo & ");
    const KARMPDeserializer* a = nullptr;
    EXPECT_EQ(document.Root()->GetElement(L"A", a, text), KARSuccess);
    EXPECT_EQ(text, L" b ");
}

TEST(DocumentTree, LineEndsOfOtherSystemsAreReadAsXmlWants)
{
    const Document document =
        Parsed("<KARMPDocument version=\"R2018.1\">\r\n<A t=\"a\r\nb\tc\">a\r\nb\rc</A>\r\n"
               "</KARMPDocument>\r\n");
    const KARMPDeserializer* a = nullptr;
    std::wstring text;
    document.Root()->GetElement(L"A", a, text);
    EXPECT_EQ(text, L"a\nb\nc");
    a->GetAttribute(L"t", text);
    EXPECT_EQ(text, L"a b c");
    EXPECT_EQ(a->Location(), L"2:2");
}

TEST(DocumentTree, AByteOrderMarkAndCommentsAreSkipped)
{
    const Document document =
        Parsed("\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"utf-8\"?><!-- a -->"
               "<KARMPDocument version=\"R2018.1\"><A>x<!-- y -->z<?p i?></A></KARMPDocument>\n");
    const KARMPDeserializer* a = nullptr;
    std::wstring text;
    document.Root()->GetElement(L"A", a, text);
    EXPECT_EQ(text, L"xz");
}

TEST(DocumentTree, IsTheSameUnderAStandardLibraryLocaleWithADecimalComma)
{
    class Comma : public std::numpunct<char>
    {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    KARMPDocumentWriter root;
    Add(root, L"Value", 1234567.5)->AddAttribute(L"count", 1234567);
    const std::string before = TextOf(root);
    const std::locale locale = std::locale::global(std::locale(std::locale(), new Comma));
    EXPECT_EQ(TextOf(root), before);
    const Document document = Parsed(before);
    std::locale::global(locale);
    const KARMPDeserializer* node = nullptr;
    double value = 0;
    EXPECT_EQ(document.Root()->GetElement(L"Value", node, value), KARSuccess);
    EXPECT_EQ(value, 1234567.5);
    EXPECT_NE(before.find("<Value count=\"1234567\">1234567.5</Value>"), std::string::npos);
}

TEST(DocumentTree, IsTheSameInEveryLocale)
{
    KARMPDocumentWriter root;
    Add(root, L"Value", 1234.5)->AddAttribute(L"half", 0.5);
    Add(root, L"Text", std::wstring(L"\xE4\x20AC"));
    const std::string before = TextOf(root);
    std::string locale = std::setlocale(LC_ALL, nullptr);
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "C.UTF-8"}) {
        if (std::setlocale(LC_ALL, name) != nullptr) {
            EXPECT_EQ(TextOf(root), before);
            const Document document = Parsed(before);
            const KARMPDeserializer* node = nullptr;
            double value = 0;
            EXPECT_EQ(document.Root()->GetElement(L"Value", node, value), KARSuccess);
            EXPECT_EQ(value, 1234.5);
        }
    }
    std::setlocale(LC_ALL, locale.c_str());
    EXPECT_NE(before.find("<Value half=\"0.5\">1234.5</Value>"), std::string::npos);
}

TEST(DocumentTree, ManyLevelsTakeNoStack)
{
    constexpr int depth = 9'000;
    KARMPDocumentWriter root;
    KARMPSerializer* node = &root;
    for (int level = 0; level < depth; ++level)
        node = Add(*node, L"A");
    const std::string text = TextOf(root);
    EXPECT_LT(text.size(), 2'200'000U);
    const Document document = Parsed(text);
    const KARMPDeserializer* walk = document.Root();
    int found = -1;
    while (walk != nullptr) {
        const KARMPDeserializer* const parent = walk;
        parent->GetElement(L"A", walk);
        ++found;
    }
    EXPECT_EQ(found, depth);
}

TEST(DocumentTree, EveryLevelIsClosedByItsOwnName)
{
    // More names than a renderer remembers.
    constexpr int depth = 2'000;
    const auto nameOf = [](int level) {
        return L"Level" + std::to_wstring(level) +
               std::wstring(static_cast<std::size_t>(level % 300), L'x');
    };
    KARMPDocumentWriter root;
    KARMPSerializer* node = &root;
    for (int level = 0; level < depth; ++level)
        node = Add(*node, nameOf(level));
    const Document document = Parsed(TextOf(root));
    const KARMPDeserializer* walk = document.Root();
    for (int level = 0; level < depth; ++level) {
        const KARMPDeserializer* child = nullptr;
        walk->GetElement(nameOf(level), child);
        ASSERT_NE(child, nullptr) << level;
        walk = child;
    }
}

TEST(DocumentTree, TextsOfEveryLengthComeBack)
{
    KARMPDocumentWriter root;
    for (std::size_t length = 0; length < 600; ++length) {
        Add(root, L"Text", std::wstring(length, L'x'))
            ->AddAttribute(L"last", std::wstring(length, L'x') + L"\xE9");
    }
    const Document document = Parsed(TextOf(root));
    KARMPDeserializer::ElementVector elements;
    document.Root()->AppendElements(elements);
    ASSERT_EQ(elements.size(), 600U);
    for (std::size_t length = 0; length < 600; ++length) {
        std::wstring text;
        elements[length]->GetValue(text);
        EXPECT_EQ(text, std::wstring(length, L'x'));
        elements[length]->GetAttribute(L"last", text);
        EXPECT_EQ(text, std::wstring(length, L'x') + L"\xE9");
    }
}

TEST(DocumentTree, ANameThatIsNoXmlNameIsNotWritten)
{
    for (const std::wstring name : {L"a b", L"1a", L"-", L"a\n", L"<", L"a&b", L"\xD7"}) {
        KARMPDocumentWriter root;
        Add(*Add(root, L"World"), name);
        std::string text = "before";
        const Diagnostics diagnostics = root.RenderXml(text);
        const Diagnostic* const item = diagnostics.Find(Code::InvalidName);
        ASSERT_NE(item, nullptr);
        EXPECT_EQ(item->severity, Severity::Error);
        EXPECT_TRUE(item->path.starts_with("/KARMPDocument/World/")) << item->path;
        EXPECT_EQ(text, "before");
    }
    KARMPDocumentWriter root;
    Add(*Add(root, L"A"), L"B");
    Add(root, L"A")->AddAttribute(L"b c", 1);
    std::string text;
    const Diagnostics diagnostics = root.RenderXml(text);
    ASSERT_EQ(diagnostics.items.size(), 1U);
    EXPECT_EQ(diagnostics.items[0].text, "the attribute name \"b c\" is no XML name");
    EXPECT_EQ(diagnostics.items[0].path, "/KARMPDocument/A[2]");
}

TEST(DocumentTree, WhatHasNoNameIsNotWritten)
{
    const auto expectError = [](const KARMPDocumentWriter& root, const std::string& message) {
        std::string text;
        const Diagnostics diagnostics = root.RenderXml(text);
        ASSERT_EQ(diagnostics.items.size(), 1U);
        EXPECT_EQ(Format(diagnostics.items[0]), "error: " + message);
        EXPECT_EQ(text, "");
    };
    KARMPDocumentWriter empty;
    Add(*Add(empty, L"World"), L"");
    expectError(empty, "an element has no name [invalid-name] at /KARMPDocument/World/");
    KARMPDocumentWriter withValue;
    Add(*Add(withValue, L"World"), L"", 1);
    expectError(withValue, "an element has no name [invalid-name] at /KARMPDocument/World/");
    KARMPDocumentWriter withAttribute;
    Add(withAttribute, L"World")->AddAttribute(L"", 1);
    expectError(withAttribute,
                "the attribute name \"\" is no XML name [invalid-name] at /KARMPDocument/World");
}

TEST(DocumentTree, ThePathOfAMessageEndsAfter64Names)
{
    const auto pathAt = [](std::size_t depth) {
        KARMPDocumentWriter root;
        KARMPSerializer* node = &root;
        for (std::size_t level = 1; level < depth; ++level)
            node = Add(*node, L"A");
        node->AddAttribute(L"no name", 1);
        std::string text;
        return root.RenderXml(text).items.at(0).path;
    };
    std::string path = "/KARMPDocument";
    for (int level = 1; level < 64; ++level)
        path += "/A";
    EXPECT_EQ(pathAt(64), path);
    EXPECT_EQ(pathAt(65), path + "/...");
    EXPECT_EQ(pathAt(66), path + "/...");
}

TEST(DocumentTree, NamesOfAllAlphabetsComeBack)
{
    const std::wstring name = L"K\xF6rper.1-\x4E2D_:x";
    KARMPDocumentWriter root;
    Add(root, name)->AddAttribute(name, 1);
    const Document document = Parsed(TextOf(root));
    ASSERT_TRUE(document.Root()->HasElement(name));
    const KARMPDeserializer* node = nullptr;
    document.Root()->GetElement(name, node);
    EXPECT_EQ(node->Id(), name);
    EXPECT_TRUE(node->HasAttribute(name));
}

TEST(DocumentTree, AnAttributeThatOccursTwiceIsNotWritten)
{
    for (const int others : {0, 5, 20}) {
        KARMPDocumentWriter root;
        KARMPSerializer* const node = Add(root, L"A");
        node->AddAttribute(L"twice", 1);
        for (int other = 0; other < others; ++other)
            node->AddAttribute(L"a" + std::to_wstring(other), other);
        std::string text;
        EXPECT_FALSE(root.RenderXml(text).HasErrors());
        node->AddAttribute(L"twice", 2);
        text.clear();
        const Diagnostics diagnostics = root.RenderXml(text);
        ASSERT_EQ(diagnostics.items.size(), 1U);
        EXPECT_EQ(diagnostics.items[0].code, Code::DuplicateAttribute);
        EXPECT_EQ(diagnostics.items[0].path, "/KARMPDocument/A");
        EXPECT_EQ(text, "");
    }
    KARMPDocumentWriter root;
    root.AddAttribute(L"version", L"R2016.0");
    std::string text;
    EXPECT_NE(root.RenderXml(text).Find(Code::DuplicateAttribute), nullptr);
}

TEST(DocumentTree, WhatExceedsTheReadersLimitsIsNotWritten)
{
    KARMPDocumentWriter root;
    Add(*Add(root, L"A"), L"B\xE4");
    std::string text;
    Limits limits;
    const auto expectMessage = [&](Code code, const std::string& message) {
        const Diagnostics diagnostics = root.RenderXml(text, limits);
        ASSERT_EQ(diagnostics.items.size(), 1U);
        EXPECT_EQ(diagnostics.items[0].code, code);
        EXPECT_EQ(diagnostics.items[0].text, message);
        EXPECT_EQ(text, "");
    };
    limits.depth = 2;
    expectMessage(Code::TooDeep, "an element stands deeper than the limit of 2");
    limits = {};
    limits.nameLength = 2;
    expectMessage(Code::NameTooLong,
                  "the element name \"B\xC3\xA4\" is longer than the limit of 2 bytes");
    limits = {};
    limits.bytes = 50;
    expectMessage(Code::TooLarge, "the document is larger than the limit of 50 bytes");
    // A name that was met before does not hide the depth.
    KARMPDocumentWriter other;
    Add(*Add(other, L"A"), L"A", 1);
    limits = {};
    limits.depth = 2;
    const Diagnostics diagnostics = other.RenderXml(text, limits);
    ASSERT_NE(diagnostics.Find(Code::TooDeep), nullptr);
    EXPECT_EQ(diagnostics.items[0].path, "/KARMPDocument/A/A");
}

TEST(DocumentTree, ASubtreeRendersAsItsElement)
{
    KARMPDocumentWriter root;
    KARMPSerializer* const node = Add(root, L"A", std::wstring(L"\x20AC"));
    std::wstring text = L"-";
    EXPECT_EQ(node->Render(text), KARSuccess);
    EXPECT_EQ(text, L"-<A>\x20AC</A>\n");
    Add(*node, L"no name");
    EXPECT_EQ(node->Render(text), KARFailure);
    EXPECT_EQ(text, L"-<A>\x20AC</A>\n");
}

// The nodes of a document: created when they are asked for, freed when an entity was read.
#include "AllocationCounter.h"
#include "KARMPBody.h"
#include "KARMPDocumentReader.h"
#include "KARMPDocuments.h"
#include "KARMPReadingPlace.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"
#include "QOBSharedHandle.h"

#include <gtest/gtest.h>

#include <string>

using namespace karmp::documents;

namespace {

using Node = const KARMPDeserializer*;

Node Child(Node parent, std::wstring_view name)
{
    Node child = nullptr;
    parent->GetElement(name, child);
    EXPECT_NE(child, nullptr);
    return child;
}

std::wstring Attribute(Node node, std::wstring_view name)
{
    std::wstring text;
    EXPECT_EQ(node->GetAttribute(name, text), KARSuccess);
    return text;
}

std::wstring Value(Node node)
{
    std::wstring text;
    EXPECT_EQ(node->GetValue(text), KARSuccess);
    return text;
}

// Two bodies; the second one's name and one of its texts need decoding.
std::string TwoBodies()
{
    return "<KARMPDocument version=\"R2018.1\"><World><Bodies>"
           "<Body id=\"b1\" name=\"one\"><A>1</A><B><C x=\"2\">two</C></B></Body>"
           "<Body id=\"b2\" name=\"&lt;two&gt;\"><A>a &amp; b</A></Body>"
           "</Bodies></World></KARMPDocument>";
}

class DocumentNodes : public testing::Test
{
protected:
    DocumentNodes()
    {
        const KARMPDeserializer::ElementSpan bodies =
            Child(Child(m_document.Root(), L"World"), L"Bodies")->ElementsNamed(L"Body");
        m_first = bodies[0];
        m_second = bodies[1];
    }

    Document m_document = Document::ReadText(TwoBodies());
    Node m_first = nullptr;
    Node m_second = nullptr;
};

TEST_F(DocumentNodes, AnEntityIsReadAgainAfterItsNodesWereFreed)
{
    for (int time = 0; time < 3; ++time) {
        for (const Node body : {m_first, m_second}) {
            const KARMPReadingPlace reading(body);
            EXPECT_EQ(body->GetAttributeCount(), 2U);
            EXPECT_EQ(Attribute(body, L"id"), body == m_first ? L"b1" : L"b2");
            EXPECT_EQ(Attribute(body, L"name"), body == m_first ? L"one" : L"<two>");
            EXPECT_EQ(Value(Child(body, L"A")), body == m_first ? L"1" : L"a & b");
            EXPECT_EQ(body->HasElement(L"B"), body == m_first);
        }
        EXPECT_EQ(Attribute(m_second, L"name"), L"<two>");
    }
    EXPECT_EQ(Attribute(Child(Child(m_first, L"B"), L"C"), L"x"), L"2");
}

TEST_F(DocumentNodes, WhatWasMadeBeforeTheReadingStays)
{
    const Node a = Child(m_first, L"A");
    const Node b = Child(m_first, L"B");
    {
        const KARMPReadingPlace reading(m_first);
        EXPECT_EQ(Child(m_first, L"A"), a);
        EXPECT_EQ(Value(Child(b, L"C")), L"two");
    }
    {
        const KARMPReadingPlace reading(m_second);
        EXPECT_EQ(Value(Child(m_second, L"A")), L"a & b");
    }
    EXPECT_EQ(Value(a), L"1");
    EXPECT_EQ(Child(m_first, L"B"), b);
    m_document.Check();
    EXPECT_EQ(Value(a), L"1");
    EXPECT_EQ(Value(Child(b, L"C")), L"two");
}

TEST_F(DocumentNodes, AnEntityIsFreedWithTheOuterOfTwoReadings)
{
    const KARMPReadingPlace outer(m_first);
    const Node a = Child(m_first, L"A");
    {
        const KARMPReadingPlace inner(m_first);
        EXPECT_EQ(Child(m_first, L"A"), a);
    }
    Child(m_second, L"A");
    EXPECT_EQ(Child(m_first, L"A"), a);
    EXPECT_EQ(Value(a), L"1");
}

TEST_F(DocumentNodes, OnlyTheEntityThatIsReadFirstIsFreed)
{
    Node inner = nullptr;
    {
        const KARMPReadingPlace outer(m_first);
        const KARMPReadingPlace nested(m_second);
        inner = Child(m_second, L"A");
        Child(m_first, L"A");
    }
    EXPECT_EQ(Value(inner), L"a & b");
    EXPECT_EQ(Child(m_second, L"A"), inner);
    EXPECT_EQ(Value(Child(m_first, L"A")), L"1");
}

TEST_F(DocumentNodes, OfAnAttributeThatOccursTwiceTheLastCountsHoweverItIsAskedFor)
{
    const Document document = Document::ReadText(
        "<KARMPDocument version=\"R2018.1\"><A x=\"1\" y=\"2\" x=\"3\"/></KARMPDocument>");
    const Node a = Child(document.Root(), L"A");
    EXPECT_EQ(Attribute(a, L"x"), L"3");
    std::wstring_view view;
    EXPECT_EQ(a->GetAttribute(L"x", view), KARSuccess);
    EXPECT_EQ(view, L"3");
    EXPECT_EQ(a->GetAttributeCount(), 2U);
    EXPECT_EQ(Attribute(a, L"x"), L"3");
}

TEST_F(DocumentNodes, NamesAndTextsBeyondAsciiAreFoundBeforeAndAfterTheyAreMade)
{
    const Document document =
        Document::ReadText("<KARMPDocument version=\"R2018.1\"><K\xC3\xB6rper gr\xC3\xB6\xC3\x9F"
                           "e=\"\xE2\x89\xA4 1\" leer=\"\"/></KARMPDocument>");
    const Node body = Child(document.Root(), L"K\xF6rper");
    for (int time = 0; time < 2; ++time) {
        EXPECT_TRUE(body->HasAttribute(L"gr\xF6\xDF"
                                       L"e"));
        EXPECT_FALSE(body->HasAttribute(L"gr"));
        EXPECT_EQ(Attribute(body, L"leer"), L"");
        EXPECT_EQ(Attribute(body, L"gr\xF6\xDF"
                                  L"e"),
                  L"\x2264 1");
        EXPECT_EQ(body->GetAttributeCount(), 2U);
    }
}

TEST_F(DocumentNodes, PiecesOfATextAreJoinedInTheirOrder)
{
    const Document document = Document::ReadText(
        "<KARMPDocument version=\"R2018.1\"><A> one <B>b1<![CDATA[b2]]>b3</B> two <C/>"
        "<![CDATA[ three ]]><D><![CDATA[]]></D> four </A></KARMPDocument>");
    ASSERT_TRUE(document.Messages().items.empty());
    const Node a = Child(document.Root(), L"A");
    EXPECT_EQ(Value(a), L"onetwo three four");
    EXPECT_EQ(Value(Child(a, L"B")), L"b1b2b3");
    EXPECT_EQ(Value(Child(a, L"C")), L"");
    EXPECT_EQ(Value(Child(a, L"D")), L"");
    EXPECT_FALSE(document.Root()->HasText());
    EXPECT_TRUE(static_cast<const KARMPDocumentReader*>(Child(a, L"C"))->HasText());
}

// A body that refers to itself as one of its geometries, as its only fault.
TEST_F(DocumentNodes, AReferenceOfAWrongClassIsDroppedInNodesMadeBeforeAndAfter)
{
    std::string text;
    const auto basicWorld = QOBBasicWorld::create(L"World");
    const auto world = KARMPWorld::create(basicWorld);
    EXPECT_FALSE(SaveText(world, text).HasErrors());
    const std::string start = "<Geometry id=\"";
    const std::size_t offset = text.find(start) + start.size();
    const std::size_t body = text.find("<Body id=\"") + 10;
    const std::string identifier = text.substr(body, text.find('"', body) - body);
    text.replace(offset, text.find('"', offset) - offset, identifier);

    for (const bool before : {false, true}) {
        Document document = Document::ReadText(text);
        const Node list = Child(Child(document.Root(), L"World"), L"Bodies");
        const Node entity = Child(list, L"Body");
        const std::wstring wide(identifier.begin(), identifier.end());
        if (before) {
            const Node reference = Child(Child(entity, L"Geometries"), L"Geometry");
            EXPECT_EQ(reference->GetAttributeCount(), 2U);
        }
        document.Check();
        EXPECT_EQ(document.Messages().Count(Severity::Error), 1U);
        EXPECT_EQ(Attribute(Child(Child(entity, L"Geometries"), L"Geometry"), L"id"), wide);
        document.DropWrongReferences();
        const Node dropped = Child(Child(entity, L"Geometries"), L"Geometry");
        EXPECT_EQ(Attribute(dropped, L"id"), L"none");
        const auto read = KARMPWorld::create(QOBBasicWorld::create(L"World"));
        Document again = Document::ReadText(text);
        again.Check();
        again.DropWrongReferences();
        EXPECT_EQ(read->Deserialize(again.Root()), KARSuccess);
    }
}

TEST_F(DocumentNodes, IdentifiersBeyondAsciiAreFoundByTheCheckAndTheWorld)
{
    std::string text;
    EXPECT_FALSE(SaveText(KARMPWorld::create(QOBBasicWorld::create(L"World")), text).HasErrors());
    const std::size_t start = text.find("<Body id=\"") + 10;
    const std::string identifier = text.substr(start, text.find('"', start) - start);
    const auto replaced = [&](const std::string& by, std::size_t from) {
        std::string result = text;
        for (std::size_t offset = result.find(identifier, from); offset != std::string::npos;
             offset = result.find(identifier, offset + by.size()))
            result.replace(offset, identifier.size(), by);
        return result;
    };
    const std::string other = "k\xC3\xB6rper &amp; 1";
    const LoadResult all = LoadText(replaced(other, 0));
    EXPECT_TRUE(all.diagnostics.items.empty()) << Format(all.diagnostics.items.front());
    ASSERT_TRUE(all.world);
    QOBSharedHandle<KARMPBody> body;
    all.world->GetGlobalBody(body);
    EXPECT_TRUE(body);
    // Here the references in front of the body still name it by its old identifier.
    const LoadResult some = LoadText(replaced(other, start));
    EXPECT_NE(some.diagnostics.Find(Code::UnresolvedReference), nullptr);
    EXPECT_EQ(some.diagnostics.Count(Severity::Error), 1U);
}

TEST_F(DocumentNodes, ManyEntitiesAreReadInTheMemoryOfOne)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    constexpr std::size_t count = 2000;
    std::string text = "<KARMPDocument version=\"R2018.1\"><World><Bodies>";
    for (std::size_t number = 0; number < count; ++number)
        text += "<Body id=\"b\"><A><B>1</B><C>2</C><D>3</D></A><E>4</E></Body>";
    const Document document = Document::ReadText(text + "</Bodies></World></KARMPDocument>");
    KARMPDeserializer::ElementVector bodies;
    Child(Child(document.Root(), L"World"), L"Bodies")->AppendOrderedElements(bodies);
    ASSERT_EQ(bodies.size(), count);
    {
        // Two that are read at once leave nothing behind.
        const KARMPReadingPlace outer(bodies[0]);
        const KARMPReadingPlace inner(bodies[1]);
    }
    AllocationCounter allocations;
    double sum = 0.0;
    for (const Node body : bodies) {
        const KARMPReadingPlace reading(body);
        Node child = nullptr;
        double value = 0.0;
        body->GetElement(L"E", child, value);
        sum += value;
        body->GetElement(L"A", child);
        child->GetElement(L"D", child, value);
        sum += value;
    }
    EXPECT_EQ(sum, 7.0 * count);
    EXPECT_LT(allocations.Bytes(), 50000U);
}

TEST_F(DocumentNodes, ADocumentMayBeCheckedAndReadMoreThanOnce)
{
    std::string text;
    EXPECT_FALSE(SaveText(KARMPWorld::create(QOBBasicWorld::create(L"World")), text).HasErrors());
    Document document = Document::ReadText(text);
    for (int time = 0; time < 2; ++time) {
        document.Check();
        const auto world = KARMPWorld::create(QOBBasicWorld::create(L"World"));
        EXPECT_EQ(world->Deserialize(document.Root()), KARSuccess);
        EXPECT_EQ(world->Count<KARMPBody>(), 1);
    }
    EXPECT_TRUE(document.Messages().items.empty());
}

} // namespace

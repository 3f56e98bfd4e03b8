#include "AskedNames.h"
#include "KARMPTestFixture.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

class TestTrees : public KARMPTestFixture
{
protected:
    static void Write(KARMPSerializer& root)
    {
        KARMPSerializer* body = nullptr;
        if (KARFailed(root.AddElement(L"Body", body)))
            return;
        body->AddAttribute(L"id", L"B1");
        KARMPSerializer* point = nullptr;
        if (!KARFailed(body->AddElement(L"Point", point))) {
            for (const wchar_t* const name : {L"Px", L"Py"}) {
                KARMPSerializer* component = nullptr;
                point->AddElement(name, component, 0.5);
            }
        }
        KARMPSerializer* flag = nullptr;
        body->AddElement(L"Flag", flag, true);
    }
};

TEST_F(TestTrees, PathsLeadToElementsAndAttributes)
{
    TestSerializer root;
    Write(root);
    Write(root);
    EXPECT_EQ(root.Number(L"Body/Point/Py"), 0.5);
    EXPECT_EQ(root.Text(L"Body[1]@id"), L"B1");
    EXPECT_TRUE(root.Flag(L"Body/Flag"));
    EXPECT_EQ(root.Count(L"Body"), 2U);
    EXPECT_EQ(root.Count(L"Body/@id"), 1U);
    EXPECT_FALSE(root.Has(L"Body[2]"));
    EXPECT_FALSE(root.Has(L"Body/Point@id"));
    EXPECT_EQ(root.Find(L"Body/Point/Pz"), nullptr);
    EXPECT_EQ(root.Find(L""), &root);
}

TEST_F(TestTrees, AWrongPathOrKindFailsTheTest)
{
    static TestSerializer root;
    Write(root);
    EXPECT_NONFATAL_FAILURE(root.Variable(L"Body/Nothing"), "Nothing at Body/Nothing");
    EXPECT_NONFATAL_FAILURE(root.Integer(L"Body/Flag"), "Not a int at Body/Flag: bool true");
}

TEST_F(TestTrees, ADumpTellsNamesKindsAndValues)
{
    TestSerializer root;
    Write(root);
    const std::string dump = "\n"
                             " Body @id=string B1\n"
                             "  Point\n"
                             "   Px = double 0.5\n"
                             "   Py = double 0.5\n"
                             "  Flag = bool true\n";
    EXPECT_EQ(root.Dump(), dump);
    std::wstring rendered;
    EXPECT_EQ(root.Render(rendered), KARSuccess);
    EXPECT_EQ(rendered, std::wstring(dump.begin(), dump.end()));
}

TEST_F(TestTrees, AReaderHasTheContentOfTheWriter)
{
    TestSerializer root(L"R2017.0");
    Write(root);
    for (const bool asText : {false, true}) {
        TestTreeForm form;
        form.asText = asText;
        const std::unique_ptr<TestDeserializer> reader = TestDeserializer::From(root, form);
        EXPECT_EQ(reader->Version(), L"R2017.0");
        const KARMPDeserializer* body = nullptr;
        const KARMPDeserializer* point = nullptr;
        const KARMPDeserializer* component = nullptr;
        reader->GetElement(L"Body", body);
        ASSERT_NE(body, nullptr);
        std::wstring id;
        EXPECT_EQ(body->GetAttribute(L"id", id), KARSuccess);
        EXPECT_EQ(id, L"B1");
        body->GetElement(L"Point", point);
        ASSERT_NE(point, nullptr);
        double number = 0.0;
        EXPECT_EQ(point->GetElement(L"Py", component, number), KARSuccess);
        EXPECT_EQ(number, 0.5);
        EXPECT_EQ(component->Location(), L"/Body/Point/Py");
        KARMPDeserializer::ElementVector elements;
        body->AppendOrderedElements(elements);
        ASSERT_EQ(elements.size(), 2U);
        EXPECT_EQ(elements[1]->Id(), L"Flag");
        EXPECT_EQ(elements[1]->Version(), L"R2018.1");
    }
}

TEST_F(TestTrees, AReaderMayHaveAVersionOfItsOwnOnEveryNode)
{
    TestSerializer root;
    Write(root);
    TestTreeForm form;
    form.version = L"R2016.1";
    form.versionOnEveryNode = true;
    const std::unique_ptr<TestDeserializer> reader = TestDeserializer::From(root, form);
    EXPECT_EQ(reader->Version(), L"R2016.1");
    KARMPDeserializer::ElementVector elements;
    reader->AppendOrderedElements(elements);
    elements[0]->AppendOrderedElements(elements);
    for (const KARMPDeserializer* element : elements)
        EXPECT_EQ(element->Version(), L"R2016.1");
}

TEST_F(TestTrees, EachCreationFailsOnce)
{
    std::vector<std::size_t> elements;
    const std::size_t creations =
        ForEachFailedCreation(L"R2018.1", [&elements](TestSerializer& root, std::size_t) {
            Write(root);
            elements.push_back(root.Count(L"Body") + root.Count(L"Body/Point") +
                               root.Count(L"Body/Point/Px") + root.Count(L"Body/Point/Py") +
                               root.Count(L"Body/Flag"));
        });
    EXPECT_EQ(creations, 5U);
    EXPECT_EQ(elements, (std::vector<std::size_t>{5, 0, 2, 4, 4, 4}));
    // One report for each creation without a value, two for one with a value.
    ExpectReports(1 + 1 + 2 + 2 + 2);
}

TEST_F(TestTrees, EachItemIsMissingOnce)
{
    TestSerializer root;
    Write(root);
    std::vector<std::wstring> missing;
    const std::size_t count = ForEachMissingItem(
        root, {}, [&missing](TestDeserializer& reader, const std::wstring& item) {
            missing.push_back(item);
            const KARMPDeserializer* body = nullptr;
            reader.GetElement(L"Body", body);
            EXPECT_EQ(body == nullptr, item == L"/Body");
            if (body != nullptr) {
                EXPECT_EQ(body->HasAttribute(L"id"), item != L"/Body/@id");
                EXPECT_EQ(body->HasElement(L"Flag"), item != L"/Body/Flag");
            }
        });
    EXPECT_EQ(count, missing.size());
    EXPECT_EQ(missing,
              (std::vector<std::wstring>{L"/Body", L"/Body/@id", L"/Body/Point", L"/Body/Flag",
                                         L"/Body/Point/Px", L"/Body/Point/Py"}));
}

TEST_F(TestTrees, EachValueIsSpoiltOnce)
{
    TestSerializer root;
    Write(root);
    std::vector<std::wstring> spoilt;
    ForEachSpoiltValue(root, {}, [&spoilt](TestDeserializer& reader, const std::wstring& item) {
        spoilt.push_back(item);
        const KARMPDeserializer* body = nullptr;
        reader.GetElement(L"Body", body);
        std::wstring id;
        EXPECT_EQ(KARFailed(body->GetAttribute(L"id", id)), item == L"/Body/@id");
        bool flag = false;
        const KARMPDeserializer* child = nullptr;
        EXPECT_EQ(KARFailed(body->GetElement(L"Flag", child, flag)), item == L"/Body/Flag");
    });
    EXPECT_EQ(spoilt, (std::vector<std::wstring>{L"/Body/@id", L"/Body/Point/Px", L"/Body/Point/Py",
                                                 L"/Body/Flag"}));
    // The identifier that is a number, the flag that is no bool.
    ExpectReports(2);
}

TEST_F(TestTrees, AnUnexpectedNumberOfReportsFailsTheTest)
{
    EXPECT_FALSE(KARMPVerify(false));
    static TestTrees* self = nullptr;
    self = this;
    EXPECT_NONFATAL_FAILURE(self->ExpectReports(2), "Expected 2 reports of failed checks, got 1");
    EXPECT_TRUE(UnclaimedReports().empty());
}

TEST_F(TestTrees, AnUnclaimedReportFailsTheTest)
{
    class Forgetful : public KARMPTestFixture
    {
        void TestBody() override {}
    };
    EXPECT_NONFATAL_FAILURE(
        {
            const Forgetful test;
            EXPECT_FALSE(KARMPVerify(false));
        },
        "Unclaimed report of a failed check at ");
}

TEST(AskedNames, AreHeardOfAllNodesWhetherTheyHaveThemOrNot)
{
    AskedNames names;
    TestDeserializer body(L"Body");
    body.Attribute(L"id", L"B1").Add(L"Weight").Leaf(L"Mass", 1.0);
    names.Hear(body);
    EXPECT_TRUE(names.Paths().empty());
    const KARMPDeserializer* weight = nullptr;
    double mass = 0.0;
    std::wstring id;
    body.GetElement(L"Weight", weight);
    EXPECT_EQ(weight->GetElement(L"Mass", weight, mass), KARSuccess);
    EXPECT_EQ(mass, 1.0);
    EXPECT_EQ(body.GetAttribute(L"id", id), KARSuccess);
    EXPECT_EQ(id, L"B1");
    EXPECT_FALSE(body.HasAttribute(L"name"));
    EXPECT_FALSE(body.HasElement(L"Joints"));
    EXPECT_TRUE(body.ElementsNamed(L"Shapes").empty());
    KARMPDeserializer::ElementIterator begin;
    KARMPDeserializer::ElementIterator end;
    body.GetElements(L"Geometries", begin, end);
    // A value and a count have no name.
    EXPECT_FALSE(body.HasValue());
    EXPECT_EQ(body.GetAttributeCount(), 1U);
    const std::wstring node = body.Location();
    EXPECT_EQ(names.Paths(),
              (std::set<std::wstring>{node + L"/Weight", node + L"/Weight/Mass", node + L"/@id",
                                      node + L"/@name", node + L"/Joints", node + L"/Shapes",
                                      node + L"/Geometries"}));
}

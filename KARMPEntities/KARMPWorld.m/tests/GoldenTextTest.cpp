// What every class writes and reads back at every version, as texts that are kept in golden.
//
// Attributes are written with outputs and bytes ("MOT_DUMP_OUTPUTS", "DUMP_OCTET_AS_UTF8"). What
// else the environment decides is left aside, since it is read once per process: the outputs that
// an entity lists, names ("NO_MP_NAME_FOR_SERIALIZATION"), the curves of a sketch function
// ("DONT_SERIALIZE_CURVE"), the grid of numbers ("SERIALIZATION_PRECISION"). Process tests of the
// modules cover them.
#include "ConcreteEntity.h"
#include "EnvironmentVariable.h"
#include "FilledEntities.h"
#include "GoldenFile.h"
#include "KARMP3DRep.h"
#include "KARMPTestFixture.h"
#include "KARTextConversion.h"
#include "TestDeserializer.h"
#include "TestSerializer.h"

#include <algorithm>

namespace {

/// The dump of a tree without the line of its root. A value that is empty at the end of a line is
/// marked, since editors cut blanks there.
std::string Print(const TestSerializer& root)
{
    std::string text = root.Dump();
    text.erase(0, text.find('\n') + 1);
    for (std::size_t end = 0; (end = text.find(" \n", end)) != std::string::npos;)
        text.insert(end + 1, "(empty)");
    return text;
}

class GoldenText : public KARMPTestFixture
{
protected:
    /// What an entity of the class writes with a filling, and what one writes that reads that.
    void Add(const std::string& className, Filling filling, const std::string& title);

    std::string text;
    EnvironmentVariable dumpOutputs{"MOT_DUMP_OUTPUTS", "1"};
    EnvironmentVariable dumpOctets{"DUMP_OCTET_AS_UTF8", "1"};
    EnvironmentVariable leaveOutCurves{"DONT_SERIALIZE_CURVE", nullptr};

private:
    std::string ReadBack(const std::string& className, const TestSerializer& tree, bool asText);
};

/// Texts at versions in ascending order; versions of the same text share one section.
class Sections
{
public:
    void Add(std::wstring_view version, std::string text)
    {
        const auto same = std::find_if(m_sections.begin(), m_sections.end(),
                                       [&](const auto& section) { return section.text == text; });
        if (same == m_sections.end())
            m_sections.push_back({kar::ToUtf8(version), std::move(text)});
        else
            same->versions += " " + kar::ToUtf8(version);
    }
    std::string Print(const std::string& title) const
    {
        std::string print;
        for (const Section& section : m_sections)
            print += "== " + title + ": " + section.versions + "\n" + section.text;
        return print;
    }

private:
    struct Section
    {
        std::string versions;
        std::string text;
    };

    std::vector<Section> m_sections;
};

std::string GoldenText::ReadBack(const std::string& className, const TestSerializer& tree,
                                 bool asText)
{
    FilledEntities entities;
    const auto read = entities.New(className);
    const auto node = TestDeserializer::From(tree, {.asText = asText, .versionOnEveryNode = true});
    read->Deserialize(node.get(), entities.Table());
    // One that did not read its identifier would make another one in each run.
    read->SetIdentifier(L"not read");
    TestSerializer root(tree.Version());
    read->Serialize(&root);
    // What is reported is told by the fingerprints of faults.
    TakeReports();
    return Print(root);
}

void GoldenText::Add(const std::string& className, Filling filling, const std::string& title)
{
    Sections written;
    Sections readBack;
    Sections readBackFromText;
    for (const std::wstring_view version : AllVersions) {
        FilledEntities entities;
        TestSerializer root(version);
        entities.Make(className, filling)->Serialize(&root);
        TakeReports();
        const std::string first = Print(root);
        const std::string second = ReadBack(className, root, false);
        const std::string third = ReadBack(className, root, true);
        written.Add(version, first);
        readBack.Add(version, second == first ? "the same\n" : second);
        readBackFromText.Add(version, third == second ? "the same\n" : third);
    }
    text += written.Print(title);
    text += readBack.Print(title + ", read back");
    text += readBackFromText.Print(title + ", read back from texts");
}

TEST_F(GoldenText, IsWhatEachClassWritesAndReadsBackAtEachVersion)
{
    for (const std::string& name : MadeClasses()) {
        SCOPED_TRACE(name);
        text.clear();
        Add(name, Filling::Nothing, "default");
        Add(name, Filling::Full, "filled");
        Add(name, Filling::Other, "filled otherwise");
        ExpectGolden(name, text);
    }
}

// A filled body stands in cycles of handles with bodies that hold the shapes.
TEST_F(GoldenText, LeavesNoEntityBehind)
{
    const int before = ConcreteEntity<KARMP3DRep>::Alive();
    {
        FilledEntities entities;
        entities.Make("KARMPBody", Filling::Full);
        EXPECT_EQ(ConcreteEntity<KARMP3DRep>::Alive(), before + 2);
    }
    EXPECT_EQ(ConcreteEntity<KARMP3DRep>::Alive(), 0);
}

TEST_F(GoldenText, IsKeptOfNoOtherClass)
{
    const std::vector<std::string> names = MadeClasses();
    ExpectNoOtherGolden([&names](const std::string& name) {
        return std::find(names.begin(), names.end(), name) != names.end();
    });
}

} // namespace

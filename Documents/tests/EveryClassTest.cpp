// A world with an entity of every class of the factory, each with all that it can hold, and the
// document of it that is kept. With the environment variable "KARMP_WRITE_GOLDEN" set, the kept
// document is written anew.
#include "DifferenceTesting.h"
#include "EnvironmentVariable.h"
#include "ExtractionTesting.h"
#include "FilledWorld.h"
#include "KARMPDocuments.h"
#include "KARMPExtractionSelection.h"
#include "KARMPTestFixture.h"
#include "KARMPWorldLosses.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>

namespace karmp::documents {

namespace {

/// Numbers on the grid of documents and directions of length 1 are no differences.
constexpr DifferenceOptions Rounded{.floor = 1e-11};

/// What a check finds in a mechanism that was filled without a meaning, and why.
struct Findings
{
    const char* reason;
    std::vector<Code> codes;
};
const Findings Expected[] = {
    {"a cone and a cylinder are read by other names than they are written", {Code::MissingElement}},
    {"two entities of a family are what those of all classes are linked to",
     {Code::OneSidedLink, Code::AmbiguousPath, Code::WrongQuantity, Code::SecondFather}},
    {"these two have values, but no links",
     {Code::MotorWithoutVariable, Code::ConnectorWithoutBody, Code::SensorWithoutTarget,
      Code::RuleWithoutBody, Code::BodyWithoutSketch, Code::SketchWithoutBody,
      Code::ShapeWithoutBody, Code::TooFewBodies, Code::TooFewGeometries}},
    {"numbers are to differ from one another and from all defaults",
     {Code::NegativeMass, Code::AsymmetricInertia, Code::NoRotation, Code::ReversedLimits,
      Code::OutsideLimits, Code::NegativeNumber}},
    {"a list has two entries, so that its order shows", {Code::SeveralValues}},
};

// Outputs are part of it.
class EveryClass : public KARMPTestFixture
{
    EnvironmentVariable m_dumpOutputs{"MOT_DUMP_OUTPUTS", "1"};

protected:
    static World Completed(const World& world)
    {
        EXPECT_EQ(CompleteWorld(*world), KARSuccess);
        return world;
    }

    static std::string Saved(const World& world, std::wstring_view version)
    {
        SaveOptions options;
        options.version = version;
        std::string text;
        EXPECT_FALSE(SaveText(world, text, options).HasErrors());
        return text;
    }

    /// The lines of what is lost of a world, entities that it lacks left aside.
    static std::set<std::string> LossesOf(std::vector<Difference> differences)
    {
        std::erase_if(differences, [](const Difference& difference) {
            // Reading a cone makes an empty one. Floating means nothing to a body without a father.
            return !difference.before || difference.item == L"floating";
        });
        std::istringstream lines(TextOf(differences));
        std::set<std::string> losses;
        for (std::string line; std::getline(lines, line);)
            losses.insert(line);
        return losses;
    }
    static void ExpectEqual(const std::set<std::string>& lost, const std::set<std::string>& told)
    {
        for (const std::string& line : lost)
            EXPECT_EQ(told.count(line), 1U) << line;
        for (const std::string& line : told)
            EXPECT_EQ(lost.count(line), 1U) << line;
    }

    /// The world as the tests make it.
    const FilledWorld m_filled{MadeClasses()};
    const World m_world = m_filled.world;
};

TEST_F(EveryClass, IsInTheKeptDocumentAsItWasFilled)
{
    const std::string text = Saved(m_world, CurrentVersion);
    if (std::getenv("KARMP_WRITE_GOLDEN") != nullptr)
        std::ofstream(KARMP_EVERY_CLASS, std::ios::binary) << text;
    std::ostringstream kept;
    kept << std::ifstream(KARMP_EVERY_CLASS, std::ios::binary).rdbuf();
    EXPECT_TRUE(kept.str() == text) << KARMP_EVERY_CLASS " is not what the tests fill";
}

TEST_F(EveryClass, IsInTheDocument)
{
    const std::vector<std::string> classes = MadeClasses();
    EXPECT_EQ(classes.size(), 108U);
    const std::string text = Saved(m_world, CurrentVersion);
    for (const std::string& name : classes) {
        const bool isWritten = text.find(" id=\"" + name + "\" name=") != std::string::npos;
        // Diagnostics write nothing.
        EXPECT_EQ(isWritten, name != "KARMPDiagnostic") << name;
    }
}

TEST_F(EveryClass, LosesWhatIsForetoldOfEachVersion)
{
    for (const std::wstring_view version : KnownVersions()) {
        SCOPED_TRACE(kar::ToUtf8(version));
        const World reloaded = Completed(LoadText(Saved(m_world, version)).world);
        const auto lost = LossesOf(FindDifferences(*m_world, *reloaded, Rounded));
        ExpectEqual(lost, LossesOf(FindLosses(*m_world, version, true)));
        EXPECT_FALSE(lost.empty());
    }
}

TEST_F(EveryClass, IsTheSameTextWhenItIsSavedLoadedAndSavedAgain)
{
    for (const std::wstring_view version : KnownVersions()) {
        SCOPED_TRACE(kar::ToUtf8(version));
        const std::string first =
            Saved(Completed(LoadText(Saved(m_world, version)).world), version);
        const std::string second = Saved(Completed(LoadText(first).world), version);
        EXPECT_TRUE(first == second);
    }
}

TEST_F(EveryClass, HasTheFindingsOfAMechanismWithoutAMeaning)
{
    std::set<std::string_view> expected;
    for (const Findings& findings : Expected)
        for (const Code code : findings.codes)
            expected.insert(CodeText(code));
    for (const std::wstring_view version : KnownVersions()) {
        SCOPED_TRACE(kar::ToUtf8(version));
        std::set<std::string_view> found;
        for (const Diagnostic& message : CheckText(Saved(m_world, version)).items)
            found.insert(CodeText(message.code));
        EXPECT_EQ(found, expected);
    }
}

// It is a seed of the fuzzer of documents.
TEST_F(EveryClass, IsWithinTheLimitsOfUntrustedDocuments)
{
    const LoadResult loaded = LoadUntrusted(Saved(m_world, CurrentVersion));
    ASSERT_TRUE(loaded.world);
    EXPECT_EQ(loaded.world->GetBodyCount(), m_world->GetBodyCount());
}

TEST_F(EveryClass, IsExtractedWhole)
{
    for (const World& world : {m_world, Completed(LoadFile(KARMP_EVERY_CLASS).world)}) {
        const Extraction extract = Extract(*world, ExtractionSelection(*world));
        ASSERT_TRUE(extract.world);
        EXPECT_TRUE(extract.cutLinks.empty());
        EXPECT_TRUE(extract.lostItems.empty());
        EXPECT_EQ(TextOf(FindDifferences(*world, *extract.world, Rounded)), "");
        EXPECT_EQ(TextOf(FindDifferences(*extract.world, *world, Rounded)), "");
    }
}

} // namespace

} // namespace karmp::documents

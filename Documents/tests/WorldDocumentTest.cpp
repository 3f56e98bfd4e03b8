// Worlds through documents, and what a check finds in them.
#include "KARMPDocuments.h"

#include "AllocationCounter.h"
#include "EnvironmentVariable.h"
#include "KARMPBody.h"
#include "KARMPConstant.h"
#include "KARMPFailedCheck.h"
#include "KARMPLinearSpring.h"
#include "KARMPMaterial.h"
#include "KARMPParameter.h"
#include "KARMPPoint.h"
#include "KARMPTestFixture.h"
#include "KARMPValue.h"
#include "KARMPWorld.h"
#include "QOBBasicWorld.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <sstream>
#include <string>

using namespace karmp::documents;

namespace {

class WorldDocument : public KARMPTestFixture
{
protected:
    WorldDocument() : m_world(KARMPWorld::create(QOBBasicWorld::create(L"World"))) {}

    static void ExpectNothing(const Diagnostics& diagnostics)
    {
        for (const Diagnostic& item : diagnostics.items)
            ADD_FAILURE() << Format(item);
    }
    std::string Saved(const SaveOptions& options = {})
    {
        std::string text;
        ExpectNothing(SaveText(m_world, text, options));
        return text;
    }
    // What follows `start` up to the quote.
    static std::string IdentifierIn(const std::string& text, const std::string& start)
    {
        const std::size_t offset = text.find(start) + start.size();
        return text.substr(offset, text.find('"', offset) - offset);
    }
    // The document with `from` replaced at its first occurrence.
    std::string Changed(const std::string& from, const std::string& to)
    {
        std::string text = Saved();
        const std::size_t offset = text.find(from);
        EXPECT_NE(offset, std::string::npos) << from;
        return offset == std::string::npos ? text : text.replace(offset, from.size(), to);
    }
    // A check finds this, and nothing else of its severity.
    static void ExpectMessage(const Diagnostics& diagnostics, Code code, Severity severity,
                              const std::string& path)
    {
        for (const Diagnostic& item : diagnostics.items) {
            if (item.code == code && item.path == path) {
                EXPECT_EQ(item.severity, severity) << Format(item);
                EXPECT_NE(item.line, 0U);
                EXPECT_NE(item.column, 0U);
                // An error may be followed by warnings about the same fault.
                EXPECT_EQ(diagnostics.Count(Severity::Error),
                          severity == Severity::Error ? 1U : 0U);
                EXPECT_TRUE(severity == Severity::Error || diagnostics.items.size() == 1U);
                return;
            }
        }
        ADD_FAILURE() << "no " << CodeText(code) << " at " << path;
        for (const Diagnostic& item : diagnostics.items)
            ADD_FAILURE() << Format(item);
    }
    void ExpectFound(const std::string& from, const std::string& to, Code code, Severity severity,
                     const std::string& path)
    {
        ExpectMessage(CheckText(Changed(from, to)), code, severity, path);
    }

    QOBSharedHandle<KARMPWorld> m_world;
};

/// A body whose element has a name of a test.
class NamedBody final : public KARMPBody
{
public:
    static QOBSharedHandle<KARMPBody> create(const std::wstring& element)
    {
        auto* const body = new NamedBody;
        body->m_element = element;
        return QOBSharedHandle<KARMPBody>(body);
    }
    KARStatus Serialize(KARMPSerializer* serializer) const override
    {
        KARMPSerializer* element = nullptr;
        serializer->AddElement(m_element, element);
        return KARMPEntity::Serialize(element);
    }

private:
    std::wstring m_element;
};

const std::string WorldPath = "/KARMPDocument/World";
const std::string BodyPath = WorldPath + "/Bodies/Body";

} // namespace

TEST_F(WorldDocument, ComesBackTheSameInEveryVersion)
{
    m_world->SetLinearTolerance(0.25);
    m_world->Add(KARMPBody::create(L"Arm \x20AC & \"<\n"));
    for (const std::wstring_view version : KnownVersions()) {
        SaveOptions options;
        options.version = version;
        const std::string text = Saved(options);
        const LoadResult result = LoadText(text);
        ExpectNothing(result.diagnostics);
        ASSERT_TRUE(result.world);
        EXPECT_EQ(result.version, version);
        EXPECT_EQ(result.world->GetLinearTolerance(), 0.25);
        EXPECT_EQ(result.world->Count<KARMPBody>(), 2);
        std::string again;
        ExpectNothing(SaveText(result.world, again, options));
        const LoadResult second = LoadText(again);
        std::string third;
        ExpectNothing(SaveText(second.world, third, options));
        EXPECT_EQ(again, third);
    }
}

TEST_F(WorldDocument, ALoadFillsTheWorldOfTheCaller)
{
    const std::string text = Saved();
    const auto basic = QOBBasicWorld::create(L"Other");
    const auto world = KARMPWorld::create(basic);
    const LoadResult result = LoadText(text, "x.xml", {}, world);
    ExpectNothing(result.diagnostics);
    EXPECT_TRUE(result.world == world);
    EXPECT_EQ(world->Count<KARMPBody>(), 1);
}

TEST_F(WorldDocument, ExactDoublesSurviveTheRoundTrip)
{
    m_world->SetAngularTolerance(1e-15);
    EXPECT_EQ(LoadText(Saved()).world->GetAngularTolerance(), 0.0);
    SaveOptions options;
    options.doubles = Doubles::Exact;
    EXPECT_EQ(LoadText(Saved(options)).world->GetAngularTolerance(), 1e-15);
}

TEST_F(WorldDocument, AnUnknownVersionOrANullWorldIsNotSaved)
{
    std::string text = "before";
    SaveOptions options;
    options.version = L"R1999.0";
    EXPECT_NE(SaveText(m_world, text, options).Find(Code::UnknownVersion), nullptr);
    EXPECT_TRUE(SaveText({}, text).HasErrors());
    EXPECT_EQ(text, "before");
}

TEST_F(WorldDocument, ASaveTakesLittleMoreMemoryThanTheText)
{
    for (int number = 0; number < 2'000; ++number)
        m_world->Add(KARMPBody::create(L"Body" + std::to_wstring(number)));
    KARMPDocumentWriter root;
    ASSERT_EQ(m_world->Serialize(&root), KARSuccess);
    std::string whole;
    ExpectNothing(root.RenderXml(whole));
    EXPECT_EQ(Saved(), whole);
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    const AllocationCounter allocations;
    std::string text;
    EXPECT_TRUE(SaveText(m_world, text).items.empty());
    EXPECT_LT(allocations.Bytes(), 2 * text.size());
}

TEST_F(WorldDocument, AnElementThatCannotBeWrittenIsReportedWithItsPathAndNothingIsSaved)
{
    m_world->Add(KARMPBody::create(L"a"));
    m_world->Add(NamedBody::create(L"Body"));
    m_world->Add(NamedBody::create(L"no name"));
    m_world->Add(KARMPBody::create(L"b"));
    std::string text = "before";
    const Diagnostics diagnostics = SaveText(m_world, text);
    ASSERT_EQ(diagnostics.items.size(), 1U);
    EXPECT_EQ(diagnostics.items[0].code, Code::InvalidName);
    EXPECT_EQ(diagnostics.items[0].path, WorldPath + "/Bodies/no name");
    EXPECT_EQ(text, "before");
    const auto path = std::filesystem::temp_directory_path() / "karmp-unsaved.xml";
    const Diagnostics ofFile = SaveFile(m_world, path);
    ASSERT_EQ(ofFile.items.size(), 1U);
    EXPECT_EQ(ofFile.items[0].file, path.string());
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(WorldDocument, ASaveWhoseAllocationFailsGivesAMessage)
{
    if (!AllocationCounter::Counts)
        GTEST_SKIP() << "Allocations are not counted in this build";
    m_world->Add(KARMPBody::create(std::wstring(100, L'a')));
    const std::string expected = Saved();
    const SaveOptions options;
    std::size_t failures = 0;
    for (std::size_t number = 1; number < 1000; ++number) {
        std::string text = "before";
        AllocationCounter allocations;
        allocations.FailAllocation(number);
        const Diagnostics diagnostics = SaveText(m_world, text, options);
        if (diagnostics.items.empty()) {
            EXPECT_EQ(text, expected);
            if (allocations.Count() < number)
                break;
            continue;
        }
        ++failures;
        EXPECT_NE(diagnostics.Find(Code::OutOfMemory), nullptr);
        EXPECT_EQ(text, "before");
    }
    EXPECT_GT(failures, 3U);
}

TEST_F(WorldDocument, AStreamTakesTheDocumentOrTheFailureIsReported)
{
    std::ostringstream stream;
    ExpectNothing(SaveStream(m_world, stream));
    EXPECT_EQ(stream.str(), Saved());
    stream.setstate(std::ios::badbit);
    EXPECT_NE(SaveStream(m_world, stream).Find(Code::CannotWrite), nullptr);
}

TEST_F(WorldDocument, ACheckFindsWhatNothingReads)
{
    ExpectFound("<Mass>", "<Extra a=\"1\"><b/></Extra><Mass>", Code::UnknownElement,
                Severity::Warning, BodyPath + "/Weight/Extra");
    ExpectFound("is_fixed=", "colour=\"red\" is_fixed=", Code::UnknownAttribute, Severity::Warning,
                BodyPath + "/@colour");
    ExpectFound("<Weight>", "<Weight>heavy", Code::UnexpectedText, Severity::Warning,
                BodyPath + "/Weight");
    ExpectFound("<OutOfWorld>", "<OutOfWorld>true</OutOfWorld><OutOfWorld>", Code::DuplicateElement,
                Severity::Warning, BodyPath + "/OutOfWorld[2]");
    ExpectFound("<Variable ", "<Variable minvalue=\"1\" ", Code::OtherVersion, Severity::Warning,
                WorldPath + "/Variables/Variable/@minvalue");
    ExpectFound("<KARMPDocument version=\"R2018.1\">", "<KARMPDocument version=\"R2018.1\"><A/>",
                Code::UnknownElement, Severity::Warning, "/KARMPDocument/A");
}

TEST_F(WorldDocument, ACheckFindsWhatIsMissingOrOfAWrongKind)
{
    ExpectFound("<Mass>0</Mass>", "", Code::MissingElement, Severity::Warning,
                BodyPath + "/Weight");
    ExpectFound(" is_fixed=\"yes\"", "", Code::MissingAttribute, Severity::Warning, BodyPath);
    ExpectFound("<Mass>0<", "<Mass>much<", Code::InvalidValue, Severity::Error,
                BodyPath + "/Weight/Mass");
    ExpectFound("<Mass>0<", "<Mass>0 kg<", Code::InvalidValue, Severity::Error,
                BodyPath + "/Weight/Mass");
    ExpectFound("<OutOfWorld>false", "<OutOfWorld>False", Code::InvalidValue, Severity::Error,
                BodyPath + "/OutOfWorld");
    ExpectFound("is_fixed=\"yes\"", "is_fixed=\"true\"", Code::InvalidValue, Severity::Warning,
                BodyPath + "/@is_fixed");
    ExpectFound(">Time<", ">Tyme<", Code::InvalidValue, Severity::Warning,
                WorldPath + "/Variables/Variable/PhysicalQuantity");
    ExpectMessage(CheckText("<KARMPDocument version=\"R2018.1\"/>"), Code::MissingElement,
                  Severity::Error, "/KARMPDocument");
}

TEST_F(WorldDocument, EveryFormOfANumberThatReadsIsANumberToTheCheck)
{
    for (const std::string number :
         {"1", "+1.5", "+2", "1.5", ".5", "5.", "1e3", "1E-3", " 1", "1e-300"}) {
        std::string element = "<Mass>";
        element += number;
        ExpectNothing(CheckText(Changed("<Mass>0", element)));
    }
}

TEST_F(WorldDocument, ANumberThatReadsAsPeopleHardlyMeanIsAWarning)
{
    const std::string path = BodyPath + "/Weight/Mass";
    ExpectFound("<Mass>0", "<Mass>-1.5", Code::NegativeMass, Severity::Warning, path);
    ExpectFound("<Mass>0", "<Mass>1,5", Code::DecimalComma, Severity::Warning, path);
    ExpectFound("<Mass>0", "<Mass>inf", Code::NotFinite, Severity::Warning, path);
    ExpectFound("<Mass>0", "<Mass>-nan", Code::NotFinite, Severity::Warning, path);
    ExpectFound("<Mass>0", "<Mass>1e-999", Code::TooSmall, Severity::Warning, path);
}

TEST_F(WorldDocument, ATextThatIsNoWholeNumberIsAnError)
{
    for (const std::string number :
         {"1.5.2", "0x10", "0x1p3", "1e", "0.5 0.6", "1e999", "-1e999", "1,5,3", "", "infi"}) {
        ExpectFound("<Mass>0", "<Mass>" + number, Code::InvalidValue, Severity::Error,
                    BodyPath + "/Weight/Mass");
    }
}

TEST_F(WorldDocument, ACheckFindsIdentifiersThatDoNotFit)
{
    std::string text = Saved();
    const std::string body = IdentifierIn(text, "<Body id=\"");
    const std::string reference = "<GlobalBody id=\"" + body;
    ExpectFound(reference, "<GlobalBody id=\"nobody", Code::UnresolvedReference, Severity::Error,
                WorldPath + "/Globals/GlobalBody/@id");
    const std::string geometry = "<Geometry id=\"";
    ExpectFound(geometry + IdentifierIn(text, geometry), geometry + body, Code::WrongClass,
                Severity::Error, BodyPath + "/Geometries/Geometry/@id");
}

TEST_F(WorldDocument, AnIdentifierCarriedTwiceIsReportedWithBothPositions)
{
    const Diagnostics diagnostics =
        CheckText("<KARMPDocument version=\"R2018.1\"><World>\n<Bodies>\n<Body id=\"a\"/>\n"
                  "<Body id=\"a\"/></Bodies></World></KARMPDocument>");
    const Diagnostic* const item = diagnostics.Find(Code::DuplicateIdentifier);
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->line, 4U);
    EXPECT_EQ(item->path, BodyPath + "[2]/@id");
    EXPECT_EQ(item->text, "the identifier \"a\" was carried before, in line 3");
}

TEST_F(WorldDocument, ALoadTellsOfAnIdentifierThatIsCarriedTwice)
{
    const std::string entity = R"(<DebugEntity id="a" name="a" isActive="yes"/>)";
    const auto load = [this](const std::string& entities) {
        const std::string list = "<DebugEntities>" + entities + "</DebugEntities>";
        return LoadText(Changed("</World>", list + "</World>")).diagnostics;
    };
    ExpectNothing(load(entity));
    ExpectMessage(load(entity + entity), Code::DuplicateIdentifier, Severity::Error,
                  WorldPath + "/DebugEntities/DebugEntity[2]/@id");
}

TEST_F(WorldDocument, ALoadTellsOfOneOfManyLinksThatIsNotReturned)
{
    QOBSharedHandle<KARMPBody> body;
    m_world->GetGlobalBody(body);
    for (int number = 0; number < 20; ++number) {
        const QOBSharedHandle<KARMPGeometry> point = KARMPPoint::create(L"Point");
        point->SetIdentifier(L"P" + std::to_wstring(number));
        m_world->Add<KARMPGeometry>(point);
        point->SetBody(body);
        body->AddGeometry(point);
    }
    ExpectNothing(LoadText(Saved()).diagnostics);
    for (const std::string identifier : {"P0", "P7", "P19"}) {
        const std::string link = "<Geometry id=\"" + identifier + "\" name=\"Point\"/>";
        EXPECT_NE(LoadText(Changed(link, "")).diagnostics.Find(Code::OneSidedLink), nullptr)
            << identifier;
    }
    body->orphanObject(); // it and its points hold each other
}

TEST_F(WorldDocument, AMisspeltItemIsAnErrorWhereTheItemIsNeededAndMissing)
{
    const auto expect = [this](const std::string& list, Code code, Severity severity,
                               const std::string& path) {
        SCOPED_TRACE(list);
        const LoadResult result = LoadText(Changed("</World>", list + "</World>"));
        ExpectMessage(result.diagnostics, code, severity, WorldPath + path);
    };
    const auto constraint = [](const std::string& content) {
        return R"(<Constraints><Parallelism id="a" name="a" isActive="yes">)" + content +
               "</Parallelism></Constraints>";
    };
    const std::string known = "<Alignment>Align</Alignment>";
    const std::string misspelt = "<Alignement>Align</Alignement>";
    const std::string place = "/Constraints/Parallelism/Alignement";
    expect(constraint(misspelt), Code::UnknownElement, Severity::Error, place);
    expect(constraint(misspelt + known), Code::UnknownElement, Severity::Warning, place);
    expect(constraint(known + misspelt), Code::UnknownElement, Severity::Warning, place);
    const auto entity = [](const std::string& attributes) {
        return "<DebugEntities><DebugEntity " + attributes +
               R"( name="a" isActive="yes"/></DebugEntities>)";
    };
    const std::string attribute = "/DebugEntities/DebugEntity/@iD";
    expect(entity(R"(iD="a")"), Code::UnknownAttribute, Severity::Error, attribute);
    expect(entity(R"(iD="a" id="a")"), Code::UnknownAttribute, Severity::Warning, attribute);
}

TEST_F(WorldDocument, ACheckFindsClassesThatDoNotExistOrStandInAWrongList)
{
    ExpectFound("<Bodies>", "<Bodies><Wheel id=\"w\"/>", Code::UnknownClass, Severity::Error,
                WorldPath + "/Bodies/Wheel");
    std::string text = Saved();
    const std::size_t begin = text.find("<Variable ");
    const std::string end = "</Variable>";
    const std::string variable = text.substr(begin, text.find(end) + end.size() - begin);
    text.erase(begin, variable.size());
    text.insert(text.find("<Bodies>") + 8, variable);
    ExpectMessage(CheckText(text), Code::WrongRegistry, Severity::Warning,
                  WorldPath + "/Bodies/Variable");
}

TEST_F(WorldDocument, FailedChecksOfTheLibraryAreReported)
{
    LoadOptions options;
    options.check = CheckLevel::None;
    const LoadResult result = LoadText(Changed("<Mass>0</Mass>", ""), "x.xml", options);
    ASSERT_TRUE(result.world);
    const Diagnostic* const item = result.diagnostics.Find(Code::FailedCheck);
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->file, "x.xml");
    EXPECT_NE(item->text.find("KARMPBody"), std::string::npos) << item->text;
    EXPECT_EQ(item->text.find('/'), std::string::npos) << item->text;
    EXPECT_EQ(item->path, BodyPath);
    EXPECT_GT(item->line, 1U);
    EXPECT_GT(item->column, 1U);
    EXPECT_EQ(result.world->Count<KARMPBody>(), 1);
}

// Entities are written by the lists of their contents or, where names are short, as nodes.
TEST_F(WorldDocument, EntitiesThatAreNotWrittenInWholeAreNamed)
{
    for (const std::wstring name : {L"front", L"rear"}) {
        const auto spring = KARMPLinearSpring::create(name);
        spring->setEntityName(name + L" spring");
        spring->SetIdentifier(name);
        m_world->Add<KARMPConnector>(spring);
        m_world->Add<KARMPBody>(KARMPBody::create(name));
    }
    SaveOptions options;
    options.allowLosses = true;
    for (const std::size_t longest : {options.limits.nameLength, std::size_t{30}}) {
        options.limits.nameLength = longest;
        std::string text;
        Diagnostics told = SaveText(m_world, text, options);
        std::erase_if(told.items,
                      [](const Diagnostic& item) { return item.code != Code::FailedCheck; });
        ASSERT_EQ(told.items.size(), 2U);
        EXPECT_EQ(Format(told.items[0]),
                  "warning: the library could not write all of LinearSpring \"front spring\" "
                  "[front] [failed-check] at " +
                      WorldPath + "/Connectors/LinearSpring[1]");
        EXPECT_EQ(Format(told.items[1]),
                  "warning: the library could not write all of LinearSpring \"rear spring\" "
                  "[rear] [failed-check] at " +
                      WorldPath + "/Connectors/LinearSpring[2]");
    }
}

TEST_F(WorldDocument, ALoadTakesYesOrNoForItsCheck)
{
    const std::string text = Changed("<Mass>0</Mass>", "");
    LoadOptions options;
    options.check = false;
    EXPECT_EQ(LoadText(text, "x.xml", options).diagnostics.Find(Code::MissingElement), nullptr);
    options.check = true;
    EXPECT_NE(LoadText(text, "x.xml", options).diagnostics.Find(Code::MissingElement), nullptr);
}

TEST_F(WorldDocument, AReferenceOfAWrongClassGivesAMessage)
{
    std::string text = Saved();
    const std::string body = IdentifierIn(text, "<Body id=\"");
    LoadOptions options;
    options.check = CheckLevel::None;
    const std::string geometry = "<Geometry id=\"";
    const LoadResult result = LoadText(
        Changed(geometry + IdentifierIn(text, geometry), geometry + body), "x.xml", options);
    EXPECT_NE(result.diagnostics.Find(Code::InvalidCast), nullptr);
    ASSERT_TRUE(result.world);
    EXPECT_EQ(result.world->Count<KARMPBody>(), 1);
    const LoadResult checked =
        LoadText(Changed(geometry + IdentifierIn(text, geometry), geometry + body), "x.xml");
    ExpectMessage(checked.diagnostics, Code::WrongClass, Severity::Error,
                  BodyPath + "/Geometries/Geometry/@id");
    EXPECT_EQ(checked.world->Count<KARMPBody>(), 1);
}

TEST_F(WorldDocument, BytesOfAnAttributeThatAreNoTextAreEscapedAndNotReadBack)
{
    const EnvironmentVariable dumpOctets("DUMP_OCTET_AS_UTF8", "1");
    constexpr std::array<unsigned char, 4> bytes{0xFF, 0, 0xC3, 'b'};
    const auto parameter = KARMPParameter::create(L"Bytes");
    parameter->SetOctetSequence(_SEQUENCE_octet(bytes));
    m_world->Add<KARMPAttribute>(parameter);
    std::string text;
    const Diagnostics saved = SaveText(m_world, text);
    ASSERT_EQ(saved.items.size(), 1U);
    EXPECT_EQ(saved.items.front().code, Code::NotReadBack);
    const std::string written = R"(<OctetSequence UTF8String="\x{DCFF}\x{0}\x{DCC3}b"/>)";
    EXPECT_NE(text.find(written), std::string::npos) << text;
    ExpectNothing(CheckText(text));
    const LoadResult loaded = LoadText(text);
    ExpectNothing(loaded.diagnostics);
    QOBSharedHandle<KARMPAttribute> read;
    ASSERT_EQ(loaded.world->Get<KARMPAttribute>(0, read), KARSuccess);
    EXPECT_EQ(read->GetOctetSequence().length(), 0);
}

// A material as an application derives it.
class Steel : public KARMPMaterial
{
public:
    explicit Steel(bool writes) : m_writes(writes) {}
    ~Steel() override = default;
    KARStatus Serialize(KARMPSerializer* serializer) const override
    {
        KARMPSerializer* element = nullptr;
        return m_writes ? serializer->AddElement(L"Steel", element)
                        : KARMPMaterial::Serialize(serializer);
    }

private:
    bool m_writes;
};

TEST_F(WorldDocument, MaterialsThatWriteNothingAreToldOf)
{
    std::string text;
    const auto add = [this](bool writes) {
        m_world->Add<KARMPMaterial>(QOBSharedHandle<KARMPMaterial>(new Steel(writes)));
    };
    add(true);
    ExpectNothing(SaveText(m_world, text));
    add(false);
    add(false);
    const Diagnostics messages = SaveText(m_world, text);
    ASSERT_EQ(messages.items.size(), 1U);
    EXPECT_EQ(Format(messages.items.front()),
              "warning: the document lacks 2 materials, which write nothing [lost-materials]");
    EXPECT_NE(text.find("<Steel/>"), std::string::npos) << text;
}

TEST_F(WorldDocument, ADocumentWithoutAWorldIsAnError)
{
    const LoadResult result = LoadText("<KARMPDocument version=\"R2018.1\"/>");
    EXPECT_TRUE(result.diagnostics.HasErrors());
    const LoadResult nothing = LoadText("nothing");
    EXPECT_FALSE(nothing.world);
    EXPECT_EQ(nothing.diagnostics.items.size(), 1U);
}

TEST_F(WorldDocument, UntrustedBytesAreReadAtTightLimits)
{
    ExpectNothing(LoadUntrusted(Saved()).diagnostics);
    const LoadResult large = LoadUntrusted(std::string(Limits::Tight().bytes + 1, ' '));
    EXPECT_NE(large.diagnostics.Find(Code::TooLarge), nullptr);
}

TEST_F(WorldDocument, MessagesReadLikeThoseOfACompiler)
{
    Diagnostic item;
    item.severity = Severity::Warning;
    item.code = Code::UnknownElement;
    item.file = "a.xml";
    item.line = 3;
    item.column = 5;
    item.path = "/A/B[2]";
    item.text = "text";
    EXPECT_EQ(Format(item), "a.xml:3:5: warning: text [unknown-element] at /A/B[2]");
    item.line = 0;
    item.path.clear();
    EXPECT_EQ(Format(item), "a.xml: warning: text [unknown-element]");
    item.file.clear();
    EXPECT_EQ(Format(item), "warning: text [unknown-element]");
}

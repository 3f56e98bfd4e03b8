// What a save tells of before it writes.
#include "FilledWorld.h"
#include "KARMPAxialSpring.h"
#include "KARMPBody.h"
#include "KARMPCollisionInterLayer.h"
#include "KARMPCollisionLayer.h"
#include "KARMPConstant.h"
#include "KARMPCylinder.h"
#include "KARMPDocuments.h"
#include "KARMPGenericFactory.h"
#include "KARMPJointKinds.h"
#include "KARMPString.h"
#include "KARMPSurface.h"
#include "KARMPTestFixture.h"
#include "KARMPVariable.h"
#include "KARMPWorld.h"
#include "ModelObject.h"
#include "QOBBasicWorld.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>

using namespace karmp::documents;

namespace {

constexpr double Infinity = std::numeric_limits<double>::infinity();

class SavedWorld : public KARMPTestFixture
{
protected:
    QOBSharedHandle<KARMPBody> AddBody(const wchar_t* name, const wchar_t* identifier)
    {
        const auto body = KARMPBody::create(name);
        body->SetIdentifier(identifier);
        m_world->Add<KARMPBody>(body);
        return body;
    }
    QOBSharedHandle<KARMPJoint> AddJoint()
    {
        const auto joint = KARMPRevolute::create(L"Pin");
        joint->SetIdentifier(L"J1");
        m_basicWorld->addLogicalChild(joint); // ends the cycles of its links
        m_world->Add<KARMPJoint>(joint);
        return joint;
    }
    Diagnostics Save() { return SaveText(m_world, m_text, m_options); }

    /// The save gives this one message, and an error leaves the text as it was.
    void ExpectOne(Code code, Severity severity, const std::string& path, const std::string& text)
    {
        m_text = "before";
        const Diagnostics messages = Save();
        ASSERT_EQ(messages.items.size(), 1U);
        const Diagnostic& message = messages.items.front();
        EXPECT_EQ(CodeText(message.code), CodeText(code));
        EXPECT_EQ(message.severity, severity);
        EXPECT_EQ(message.path, "/KARMPDocument/World" + path);
        EXPECT_EQ(message.text, text);
        EXPECT_EQ(m_text == "before", severity == Severity::Error);
    }

    QOBSharedHandle<QOBBasicWorld> m_basicWorld = QOBBasicWorld::create(L"World");
    QOBSharedHandle<KARMPWorld> m_world = KARMPWorld::create(m_basicWorld);
    SaveOptions m_options;
    std::string m_text;
};

TEST_F(SavedWorld, HasNoMessagesWhenAllIsWell)
{
    const auto body = AddBody(L"Crank", L"K1");
    const auto joint = AddJoint();
    joint->LinkToBody(body, KARMPBodyOrientation::Out);
    body->LinkToJoint(joint);
    EXPECT_TRUE(Save().items.empty());
}

TEST_F(SavedWorld, MustNotCarryAnIdentifierTwice)
{
    AddBody(L"Crank", L"K1");
    AddBody(L"Rod", L"K1");
    ExpectOne(Code::DuplicateIdentifier, Severity::Error, "/Bodies/Body[3]/@id",
              "Body \"Rod\" [K1] has the identifier of Body \"Crank\" [K1]");
}

TEST_F(SavedWorld, MustNotListAnEntityTwice)
{
    const auto body = AddBody(L"Crank", L"K1");
    static ModelObject key; // outlives the world
    m_world->Add<KARMPBody>(KARBaseUnknown_var(&key), KARBaseUnknown_var(), body);
    ExpectOne(Code::DuplicateIdentifier, Severity::Error, "/Bodies/Body[3]/@id",
              "Body \"Crank\" [K1] is listed twice");
}

TEST_F(SavedWorld, MustNotReferToWhatTheDocumentDoesNotHold)
{
    const auto body = AddBody(L"Crank", L"K1");
    const auto joint = AddJoint();
    joint->LinkToBody(body, KARMPBodyOrientation::Out);
    body->LinkToJoint(joint);
    m_world->Remove<KARMPBody>(body);
    ExpectOne(Code::UnresolvedReference, Severity::Error, "/Joints/Revolute/Bodies",
              "Revolute \"Pin\" [J1] refers to Body \"Crank\" [K1], which the document does not "
              "hold");
}

TEST_F(SavedWorld, ToldToAllowLossesIsSavedAllTheSame)
{
    AddBody(L"Crank", L"K1");
    AddBody(L"Rod", L"K1");
    m_options.allowLosses = true;
    ExpectOne(Code::DuplicateIdentifier, Severity::Warning, "/Bodies/Body[3]/@id",
              "Body \"Rod\" [K1] has the identifier of Body \"Crank\" [K1]");
    EXPECT_NE(m_text.find("name=\"Rod\""), std::string::npos);
}

TEST_F(SavedWorld, IsSavedInSpiteOfMoreWarningsThanAreKept)
{
    m_options.limits.diagnostics = 10;
    for (int number = 0; number < 30; ++number) {
        const auto body = KARMPBody::create(L"Body");
        body->SetMass(Infinity);
        m_world->Add<KARMPBody>(body);
    }
    const Diagnostics many = Save();
    EXPECT_EQ(many.items.size(), 11U);
    EXPECT_FALSE(many.HasErrors());
    AddBody(L"Crank", L"K1");
    AddBody(L"Rod", L"K1");
    EXPECT_NE(Save().Find(Code::DuplicateIdentifier), nullptr);
}

TEST_F(SavedWorld, IsNotCheckedWhenToldSo)
{
    AddBody(L"Crank", L"K1");
    AddBody(L"Rod", L"K1")->SetMass(std::nan(""));
    m_options.check = false;
    EXPECT_TRUE(Save().items.empty());
}

TEST_F(SavedWorld, TellsOfALinkThatOneSideHas)
{
    const auto body = AddBody(L"Crank", L"K1");
    AddJoint()->LinkToBody(body, KARMPBodyOrientation::Out);
    ExpectOne(Code::OneSidedLink, Severity::Warning, "/Joints/Revolute/Bodies",
              "Body \"Crank\" [K1] does not refer back to Revolute \"Pin\" [J1]");
}

// A body has one list for both ends of connectors.
TEST_F(SavedWorld, TellsOfAConnectorThatABodyDoesNotReferBackTo)
{
    const auto spring = KARMPAxialSpring::create(L"Spring");
    spring->SetIdentifier(L"S1");
    m_world->Add<KARMPConnector>(spring);
    m_basicWorld->addLogicalChild(spring); // ends the cycles of its links
    const auto first = AddBody(L"Crank", L"K1");
    const auto second = AddBody(L"Rod", L"K2");
    spring->SetFirstBody(first);
    spring->SetSecondBody(second);
    first->LinkToConnector(spring);
    ExpectOne(Code::OneSidedLink, Severity::Warning, "/Connectors/AxialSpring/SecondBody",
              "Body \"Rod\" [K2] does not refer back to AxialSpring \"Spring\" [S1]");
    second->LinkToConnector(spring);
    EXPECT_TRUE(Save().items.empty());
}

TEST_F(SavedWorld, TellsOfAValueThatTheDocumentDoesNotHold)
{
    const auto spring = KARMPAxialSpring::create(L"Spring");
    spring->SetIdentifier(L"S1");
    m_world->Add<KARMPConnector>(spring);
    const auto stiffness = KARMPConstant::create(L"Stiffness");
    stiffness->SetIdentifier(L"V1");
    spring->SetStiffness(stiffness);
    ExpectOne(Code::UnresolvedReference, Severity::Error, "/Connectors/AxialSpring/Stiffness",
              "AxialSpring \"Spring\" [S1] refers to Constant \"Stiffness\" [V1], which the "
              "document does not hold");
    m_world->Add<KARMPValue>(stiffness);
    EXPECT_TRUE(Save().items.empty());
}

TEST_F(SavedWorld, FindsLinksBackInLongLists)
{
    const auto body = AddBody(L"Crank", L"K1");
    for (int number = 0; number < 100; ++number) {
        const auto joint = KARMPRevolute::create(L"Pin");
        m_basicWorld->addLogicalChild(joint); // which ends the cycle of links with the body
        m_world->Add<KARMPJoint>(joint);
        joint->LinkToBody(body, KARMPBodyOrientation::Out);
        body->LinkToJoint(joint);
    }
    EXPECT_TRUE(Save().items.empty());
    AddJoint()->LinkToBody(body, KARMPBodyOrientation::Out);
    ExpectOne(Code::OneSidedLink, Severity::Warning, "/Joints/Revolute[101]/Bodies",
              "Body \"Crank\" [K1] does not refer back to Revolute \"Pin\" [J1]");
}

TEST_F(SavedWorld, TellsOfNumbersThatAreNotFinite)
{
    const auto body = AddBody(L"Crank", L"K1");
    body->SetMass(std::nan(""));
    ExpectOne(Code::NotFinite, Severity::Warning, "/Bodies/Body[2]/Weight/Mass",
              "Body \"Crank\" [K1]: \"Mass\" is no number");
    body->SetMass(1.0);
    m_world->SetLinearTolerance(Infinity);
    ExpectOne(Code::NotFinite, Severity::Warning, "/@linear_tolerance",
              "World: \"linear_tolerance\" is infinite");
    m_world->SetLinearTolerance(1.0);
    m_world->SetGravity(KARMathVector(0.0, -Infinity, 0.0));
    ExpectOne(Code::NotFinite, Severity::Warning, "/Gravity/Gy", "World: \"Gy\" is infinite");
}

TEST_F(SavedWorld, TellsOfANumberOfTheFirstEntityWithItsPositionIfThereAreMore)
{
    QOBSharedHandle<KARMPBody> global;
    m_world->GetGlobalBody(global);
    global->SetIdentifier(L"K0");
    global->SetMass(Infinity);
    const std::string text = "Body \"GlobalBody\" [K0]: \"Mass\" is infinite";
    ExpectOne(Code::NotFinite, Severity::Warning, "/Bodies/Body/Weight/Mass", text);
    AddBody(L"Crank", L"K1");
    ExpectOne(Code::NotFinite, Severity::Warning, "/Bodies/Body[1]/Weight/Mass", text);
}

TEST_F(SavedWorld, TellsOfItemsThatNoReaderFinds)
{
    const auto cylinder = KARMPCylinder::create(L"Pin");
    cylinder->SetIdentifier(L"C1");
    m_world->Add<KARMPGeometry>(cylinder);
    EXPECT_TRUE(Save().items.empty());
    cylinder->SetOrigin(KARMathPoint(1.0, 0.0, 0.0));
    ExpectOne(Code::NotReadBack, Severity::Warning, "/Geometries/Cylinder/Coordinates/Origin",
              "Cylinder \"Pin\" [C1]: \"Coordinates/Origin\" is written as no reader finds it");
}

TEST_F(SavedWorld, TellsOfALayerThatNoWorldFinds)
{
    const auto layer = KARMPCollisionLayer::create(L"Parts");
    layer->SetIdentifier(L"L1");
    m_world->Add<KARMPInteraction>(QOBSharedHandle<KARMPInteraction>(layer));
    ExpectOne(Code::NotReadBack, Severity::Warning, "/Interactions/CollisionLayer",
              "CollisionLayer \"Parts\" [L1] belongs to no relation of layers, and no world that "
              "reads it lists it");
    const auto relation = KARMPCollisionInterLayer::create(L"Relation");
    m_world->Add<KARMPInteraction>(QOBSharedHandle<KARMPInteraction>(relation));
    relation->AddCollidable(QOBSharedHandle<KARMPEntity>(layer));
    EXPECT_TRUE(Save().items.empty());
}

TEST_F(SavedWorld, TellsOfItemsThatTheVersionDoesNotHold)
{
    m_options.version = L"R2016.0";
    const auto body = AddBody(L"Crank", L"K1");
    EXPECT_TRUE(Save().items.empty());
    body->SetOutOfWorld(true);
    ExpectOne(Code::OtherVersion, Severity::Warning, "/Bodies/Body[2]/OutOfWorld",
              "Body \"Crank\" [K1]: documents of version R2016.0 do not hold \"OutOfWorld\"");
    m_options.version = L"R2016.1";
    EXPECT_TRUE(Save().items.empty());
}

TEST_F(SavedWorld, TellsOfGlobalsThatItDoesNotList)
{
    QOBSharedHandle<KARMPVariable> time;
    m_world->GetGlobalTime(time);
    m_world->Remove<KARMPVariable>(time);
    ExpectOne(Code::UnresolvedReference, Severity::Warning, "/Globals/GlobalTime",
              "the world does not list its GlobalTime");
}

TEST_F(SavedWorld, LeavesTheOldFileAsItWasWhenSomethingWouldBeLost)
{
    const auto path = std::filesystem::temp_directory_path() / "karmp-save-check.xml";
    std::ofstream(path) << "before";
    AddBody(L"Crank", L"K1");
    AddBody(L"Rod", L"K1");
    const Diagnostics messages = SaveFile(m_world, path);
    ASSERT_TRUE(messages.HasErrors());
    EXPECT_EQ(messages.items.front().file, path.string());
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    EXPECT_EQ(text.str(), "before");
    m_options.allowLosses = true;
    EXPECT_FALSE(SaveFile(m_world, path, m_options).HasErrors());
    EXPECT_GT(std::filesystem::file_size(path), 100U);
    std::filesystem::remove(path);
}

TEST_F(SavedWorld, LoadedTwiceIntoOneWorldIsToldAtTheSecondLoad)
{
    AddBody(L"Crank", L"K1");
    AddBody(L"Rod", L"K2");
    ASSERT_TRUE(Save().items.empty());
    const auto into = KARMPWorld::create(QOBBasicWorld::create(L"Into"));
    EXPECT_TRUE(LoadText(m_text, "a.xml", {}, into).diagnostics.items.empty());
    const LoadResult second = LoadText(m_text, "a.xml", {}, into);
    const Diagnostic* const message = second.diagnostics.Find(Code::AlreadyInWorld);
    ASSERT_NE(message, nullptr);
    EXPECT_EQ(message->severity, Severity::Warning);
    EXPECT_NE(message->text.find(" of 5 that were read"), std::string::npos) << message->text;
    EXPECT_EQ(into->Count<KARMPBody>(), 5);
}

TEST_F(SavedWorld, TellsOfWhatReadingNeedsAndAnEntityLacks)
{
    const auto surface = KARMPSurface::create(L"Skin");
    surface->SetIdentifier(L"G1");
    m_world->Add<KARMPGeometry>(surface);
    ExpectOne(Code::MissingElement, Severity::Warning, "/Geometries/Surface/SurfaceStream",
              "Surface \"Skin\" [G1]: reading needs \"SurfaceStream\", which is missing");
}

TEST_F(SavedWorld, TellsOfAQuantityThatOlderVersionsNeed)
{
    const auto text = KARMPString::create(L"Note");
    text->SetIdentifier(L"V1");
    m_world->Add<KARMPValue>(text);
    EXPECT_TRUE(Save().items.empty());
    m_options.version = L"R2017.1";
    ExpectOne(Code::MissingElement, Severity::Warning, "/Values/String/PhysicalQuantity",
              "String \"Note\" [V1]: reading needs \"PhysicalQuantity\", which is missing");
}

TEST_F(SavedWorld, IsReadWithoutAnErrorWhereItWasSavedWithoutAWord)
{
    for (const std::string& name : MadeClasses())
        for (const std::wstring_view version : KnownVersions()) {
            const auto world = KARMPWorld::create(QOBBasicWorld::create(L"World"));
            QOBSharedHandle<KARMPEntity> entity;
            ASSERT_EQ(KARMPFactory::Create(name, entity), KARSuccess);
            karmp::Families::AnyOf([&](auto family) {
                using T = typename decltype(family)::Type;
                return dynamic_cast<const T*>(entity.get()) != nullptr &&
                       world->Add<T>(QOBSharedHandle<T>(entity)) == KARSuccess;
            });
            m_options.version = version;
            const Diagnostics saved = SaveText(world, m_text, m_options);
            const bool isNeeded = !saved.items.empty() &&
                                  saved.items.front().text.find(": reading needs") != m_text.npos;
            const Diagnostics loaded = LoadText(std::move(m_text)).diagnostics;
            EXPECT_TRUE(isNeeded ? loaded.HasErrors() : !saved.items.empty() || !loaded.HasErrors())
                << name << ' ' << kar::ToUtf8(version);
        }
}

} // namespace

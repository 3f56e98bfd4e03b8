// Links that both ends must have.
#include "KARMPDocuments.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using karmp::documents::CheckText;
using karmp::documents::Code;
using karmp::documents::Diagnostic;
using karmp::documents::Diagnostics;

/// A joint of a body, with a constraint on a geometry and a variable; every link has both sides.
constexpr const char* Linked = R"(<?xml version="1.0" encoding="UTF-8"?>
<KARMPDocument version="R2018.1">
 <World>
  <Bodies><Body id="B" name="B"><Geometries><Geometry id="G"/></Geometries><Joints><Joint id="J"/></Joints></Body></Bodies>
  <Joints><Rigid id="J" name="J"><Bodies><Body id="B" name="B" bodyOrientation="In"/></Bodies><Constraints><Constraint id="C"/></Constraints></Rigid></Joints>
  <Constraints><Concentricity id="C" name="C"><Geometries><Geometry id="G"/></Geometries><Joint id="J"/><Variables><Variable id="V"/></Variables></Concentricity></Constraints>
  <Geometries><Point id="G" name="G"><Body id="B"/><Constraints><Constraint id="C"/></Constraints></Point></Geometries>
  <Variables><Variable id="V" name="V"><Constraints><Constraint id="C"/></Constraints></Variable></Variables>
 </World>
</KARMPDocument>
)";

std::string Without(const std::string& part, std::string text = Linked)
{
    const auto offset = text.find(part);
    EXPECT_NE(offset, std::string::npos) << part;
    return text.erase(offset, part.size());
}

std::size_t CountOneSided(const Diagnostics& messages)
{
    std::size_t count = 0;
    for (const Diagnostic& message : messages.items)
        count += message.code == Code::OneSidedLink ? 1 : 0;
    return count;
}

TEST(DocumentLinks, WithBothSidesAreNoFinding)
{
    EXPECT_EQ(CountOneSided(CheckText(Linked)), 0U);
}

TEST(DocumentLinks, OfAnEntityWithoutAnIdentifierHaveNoOtherSide)
{
    std::string text = Linked;
    const std::string entity = "<Variable id=\"V\" name";
    text.replace(text.find(entity), entity.size(), "<Variable name");
    const Diagnostics messages = CheckText(text);
    EXPECT_NE(messages.Find(Code::MissingAttribute), nullptr);
    EXPECT_NE(messages.Find(Code::UnresolvedReference), nullptr);
    EXPECT_EQ(CountOneSided(messages), 1U);
    const Diagnostic* found = messages.Find(Code::OneSidedLink);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->path, "/KARMPDocument/World/Variables/Variable/Constraints/Constraint/@id");
}

TEST(DocumentLinks, ThatOneSideLacksAreFoundAtTheOther)
{
    const struct
    {
        const char* missing;
        const char* foundAt;
    } cases[] = {
        {"<Joints><Joint id=\"J\"/></Joints>", "/KARMPDocument/World/Joints/Rigid/Bodies/Body/@id"},
        {"<Bodies><Body id=\"B\" name=\"B\" bodyOrientation=\"In\"/></Bodies>",
         "/KARMPDocument/World/Bodies/Body/Joints/Joint/@id"},
        {"<Variables><Variable id=\"V\"/></Variables>",
         "/KARMPDocument/World/Variables/Variable/Constraints/Constraint/@id"},
        {"<Body id=\"B\"/>", "/KARMPDocument/World/Bodies/Body/Geometries/Geometry/@id"},
    };
    for (const auto& item : cases) {
        SCOPED_TRACE(item.missing);
        const Diagnostics messages = CheckText(Without(item.missing));
        EXPECT_EQ(CountOneSided(messages), 1U);
        const Diagnostic* found = messages.Find(Code::OneSidedLink);
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(found->path, item.foundAt);
        EXPECT_GT(found->line, 0U);
    }
}

TEST(DocumentLinks, OfAConstraintAreFoundForItsJointAndItsGeometry)
{
    std::string text = Without("<Joint id=\"J\"/><Variables>");
    text.insert(text.find("<Variable id=\"V\"/>"), "<Variables>");
    Diagnostics messages = CheckText(text);
    ASSERT_EQ(CountOneSided(messages), 1U);
    EXPECT_EQ(messages.Find(Code::OneSidedLink)->path,
              "/KARMPDocument/World/Joints/Rigid/Constraints/Constraint/@id");

    text = Linked;
    const std::string list = "<Constraints><Constraint id=\"C\"/></Constraints>";
    text.erase(text.find(list + "</Point>"), list.size());
    messages = CheckText(text);
    EXPECT_EQ(CountOneSided(messages), 1U);
    EXPECT_EQ(messages.Find(Code::OneSidedLink)->path,
              "/KARMPDocument/World/Constraints/Concentricity/Geometries/Geometry/@id");
}

/// Two bodies and the bushing between them; a body's list meets one of two items of the bushing.
constexpr const char* Connected = R"(<?xml version="1.0" encoding="UTF-8"?>
<KARMPDocument version="R2018.1">
 <World>
  <Bodies>
   <Body id="A" name="A"><Connectors><Connector id="K"/></Connectors></Body>
   <Body id="B" name="B"><Connectors><Connector id="K"/></Connectors></Body>
  </Bodies>
  <Connectors><Bushing id="K" name="K"><FirstBody id="A"/><SecondBody id="B"/></Bushing></Connectors>
 </World>
</KARMPDocument>
)";

TEST(DocumentLinks, OfAConnectorAreThoseOfItsFirstAndItsSecondBody)
{
    EXPECT_EQ(CountOneSided(CheckText(Connected)), 0U);
    const struct
    {
        const char* missing;
        const char* foundAt;
    } cases[] = {
        {"<FirstBody id=\"A\"/>", "/KARMPDocument/World/Bodies/Body[1]/Connectors/Connector/@id"},
        {"<SecondBody id=\"B\"/>", "/KARMPDocument/World/Bodies/Body[2]/Connectors/Connector/@id"},
        {"<Connectors><Connector id=\"K\"/></Connectors>",
         "/KARMPDocument/World/Connectors/Bushing/FirstBody/@id"},
    };
    for (const auto& item : cases) {
        SCOPED_TRACE(item.missing);
        const Diagnostics messages = CheckText(Without(item.missing, Connected));
        ASSERT_EQ(CountOneSided(messages), 1U);
        EXPECT_EQ(messages.Find(Code::OneSidedLink)->path, item.foundAt);
    }
}

/// A sensor asks its constraint to refer back; a constraint asks no sensor, as some have it in a
/// result that documents do not hold.
TEST(DocumentLinks, MayBeDemandedByOneSideOnly)
{
    const std::string watched = R"(<?xml version="1.0" encoding="UTF-8"?>
<KARMPDocument version="R2018.1">
 <World>
  <Constraints><Concentricity id="C" name="C"><Sensors><Sensor id="S"/></Sensors></Concentricity></Constraints>
  <Sensors><ConstraintSensor id="S" name="S"><Constraint id="C"/></ConstraintSensor></Sensors>
 </World>
</KARMPDocument>
)";
    EXPECT_EQ(CountOneSided(CheckText(watched)), 0U);
    EXPECT_EQ(CountOneSided(CheckText(Without("<Constraint id=\"C\"/>", watched))), 0U);
    const Diagnostics messages =
        CheckText(Without("<Sensors><Sensor id=\"S\"/></Sensors>", watched));
    ASSERT_EQ(CountOneSided(messages), 1U);
    EXPECT_EQ(messages.Find(Code::OneSidedLink)->path,
              "/KARMPDocument/World/Sensors/ConstraintSensor/Constraint/@id");
}

TEST(DocumentLinks, ToNoEntityAreReportedOnceAsThat)
{
    std::string text = Linked;
    text.replace(text.find("<Joint id=\"J\"/>"), 15, "<Joint id=\"X\"/>");
    const Diagnostics messages = CheckText(text);
    EXPECT_NE(messages.Find(Code::UnresolvedReference), nullptr);
    // The joint's reference to the body has no other side because of that mistake.
    EXPECT_EQ(CountOneSided(messages), 0U);
}

TEST(DocumentLinks, HaveAStableCode)
{
    EXPECT_EQ(karmp::documents::CodeText(Code::OneSidedLink), "one-sided-link");
}

} // namespace

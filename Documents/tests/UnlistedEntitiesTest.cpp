// What was read and is listed in no registry.
#include "KARMPDocuments.h"
#include "KARMPWorld.h"

#include <gtest/gtest.h>

namespace karmp::documents {

namespace {

std::vector<UnlistedEntity> UnlistedOf(const std::string& world)
{
    return LoadText("<KARMPDocument version=\"R2018.1\">\n<World>\n" + world +
                        "\n</World></KARMPDocument>",
                    "in.xml")
        .unlisted;
}

TEST(UnlistedEntities, AreCollisionLayersByTheirPaths)
{
    const auto unlisted =
        UnlistedOf("<Bodies><Body id=\"B\" name=\"B\"/></Bodies>\n<Interactions>\n"
                   "<CollisionLayer id=\"L1\" name=\"Parts\"/><CollisionInterLayer id=\"I\"/>\n"
                   "<CollisionLayer id=\"L2\"/></Interactions>");
    ASSERT_EQ(unlisted.size(), 2U);
    EXPECT_EQ(unlisted[0].identifier, L"L1");
    EXPECT_EQ(Format(unlisted[0].message),
              "in.xml:5:2: warning: CollisionLayer \"Parts\" [L1] is read, but the world does not "
              "list it, so that its document lacks it [not-read-back] at "
              "/KARMPDocument/World/Interactions/CollisionLayer[1]");
    EXPECT_EQ(unlisted[1].message.line, 6U);
    EXPECT_EQ(unlisted[1].message.path, "/KARMPDocument/World/Interactions/CollisionLayer[2]");
}

TEST(UnlistedEntities, AreNoneOfUnknownClasses)
{
    EXPECT_TRUE(UnlistedOf("<Interactions><Frobnicator id=\"F\"/></Interactions>").empty());
    EXPECT_TRUE(UnlistedOf("").empty());
    EXPECT_TRUE(LoadText("<KARMPDocument version=\"R2018.1\"/>").unlisted.empty());
}

TEST(UnlistedEntities, StandInEachRegistry)
{
    const auto unlisted = UnlistedOf("<Bodies><CollisionLayer id=\"L\"/></Bodies>");
    ASSERT_EQ(unlisted.size(), 1U);
    EXPECT_EQ(unlisted[0].message.path, "/KARMPDocument/World/Bodies/CollisionLayer");
}

// The world's own body is listed beside the one that the document names, and with it its axis
// system.
TEST(UnlistedEntities, OfACompletedWorldHaveWhatTheyReferTo)
{
    const auto complete = [] {
        const auto world =
            LoadText("<KARMPDocument version=\"R2018.1\"><World><Globals>"
                     "<GlobalBody id=\"Pin\"/><GlobalAxisSystem id=\"Axes\"/>"
                     "</Globals><Bodies><Body id=\"GlobalBody\" name=\"Base\"/>"
                     "</Bodies><Geometries><AxisSystem id=\"Axes\"/></Geometries>"
                     "<Joints><Revolute id=\"Pin\"/></Joints></World></KARMPDocument>")
                .world;
        EXPECT_EQ(CompleteWorld(*world), KARSuccess);
        std::string text;
        EXPECT_TRUE(SaveText(world, text).items.empty());
        return text;
    };
    const std::string text = complete();
    EXPECT_NE(text.find("<Geometry id=\"GlobalAxisSystem\" name=\"GlobalAxisSystem\"/>"),
              text.npos);
    EXPECT_NE(text.find("<AxisSystem id=\"GlobalAxisSystem\" name=\"GlobalAxisSystem\""),
              text.npos);
    EXPECT_EQ(text, complete()) << "identifiers depend on the document alone";
}

} // namespace

} // namespace karmp::documents

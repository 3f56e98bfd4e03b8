// karmp view: the data, the page, and what happens when it cannot be written.
#include "ViewPage.h"
#include "ToolFixture.h"
#include "ViewFixture.h"
#include "ViewJson.h"

#include <chrono>
#include <cmath>
#include <string>

namespace karmp::tool {

namespace {

constexpr const char* Hostile = "</script><script>alert(1)</script>&amp;\"'\\ \u2028\u2029\n<!--";

ViewScene Named(const std::string& name)
{
    ViewScene scene;
    scene.title = name;
    scene.kinds = {"Body"};
    scene.families = {{"Bodies", 1}};
    scene.entities.push_back({0, name, name, {}, {}});
    return scene;
}

TEST(ViewJson, LetsNoNameEndTheElementThatHoldsIt)
{
    const std::string json = SceneJson(Named(Hostile));
    for (const char* bad : {"<", ">", "&", "\u2028", "\u2029", "\n"})
        EXPECT_EQ(json.find(bad), std::string::npos) << bad;
    ExpectContains(json, "\"\\u003c/script\\u003e\\u003cscript\\u003ealert(1)");
    ExpectContains(json, "\\u0026amp;\\\"'\\\\ \\u2028\\u2029\\u000a\\u003c!--\"");
}

TEST(ViewJson, WritesNumbersThatJsonDoesNotHaveAsNull)
{
    ViewScene scene = Named("a");
    scene.gravity = {std::nan(""), -1e300 * 1e300, 1.5};
    ExpectContains(SceneJson(scene), "\"gravity\":[null,null,1.5]");
}

TEST(ViewJson, WritesWhatIsDrawn)
{
    ViewScene scene = Named("a");
    ViewBody body;
    body.entity = 0;
    body.isGround = true;
    body.position = KARMathTransformation(KARMathVector(1, 2, 3));
    body.center = KARMathPoint(4, 5, 6);
    body.anchors = {{7, 8, 9}};
    body.rods = {{KARMathPoint(1, 0, 0), KARMathPoint(0, 1, 0)}};
    body.drawings = {{ViewKind::Sphere, 0, {1, 2, 3, 4}, {}},
                     {ViewKind::Mesh, 0, {1, 2, 3}, {0, 0, 0}}};
    scene.bodies = {body};
    scene.joints = {{0, "revolute", {{KARMathAxis(), true}}}};
    scene.connectors = {{0, "spring", {KARMathAxis(), false}, {KARMathAxis(), false}}};
    scene.couplings = {{0, {{1, 2, 3}, {4, 5, 6}}}};
    scene.entities[0].links = {{0, {0, 0}}};
    scene.entities[0].note = "why";
    const std::string json = SceneJson(scene);
    ExpectContains(json, R"("entities":[[0,"a","a",[0,[0,0]],"why"]])");
    ExpectContains(json, R"({"entity":0,"position":[1,0,0,0,1,0,0,0,1,1,2,3],"ground":true,)"
                         R"("center":[4,5,6],"anchors":[[7,8,9]],"rods":[[1,0,0,0,1,0]],)"
                         R"("drawings":[["sphere",0,[1,2,3,4]],["mesh",0,[1,2,3],[0,0,0]]]})");
    ExpectContains(json, R"("joints":[{"entity":0,"symbol":"revolute",)"
                         R"("frames":[[1,0,0,0,1,0,0,0,1,0,0,0,true]]}])");
    ExpectContains(json, R"("symbol":"spring","from":[1,0,0,0,1,0,0,0,1,0,0,0],"to":[1,)");
    ExpectContains(json, R"("couplings":[{"entity":0,"points":[[1,2,3],[4,5,6]]}])");
}

TEST(ViewPage, HoldsTheDataAndNothingFromElsewhere)
{
    const std::string page = ViewPage(SceneJson(SceneOf("seven-body")));
    ExpectContains(page, "\"title\":\"seven-body\"");
    ExpectContains(page, "default-src 'none'");
    for (const char* other : {"http:", "https:", "src=\"", "@import", "url("})
        EXPECT_EQ(page.find(other), std::string::npos) << other;
    for (const char* mark : {"@policy@", "@style@", "@scene@", "@program@"})
        EXPECT_EQ(page.find(mark), std::string::npos) << mark;
}

TEST(ViewPage, DoesNotTakeDataForItsOwnMarks)
{
    ExpectContains(ViewPage(SceneJson(Named("@program@"))), "\"title\":\"@program@\"");
}

class View : public Tool
{
protected:
    View() : m_document(Write("clean.xml", CleanDocument())) {}

    std::string m_document;
};

TEST_F(View, WritesThePageToAFileOrToStandardOutput)
{
    const Outcome outcome = Run("view " + m_document + " -o " + File("a.html"));
    EXPECT_EQ(outcome.code, 0) << outcome.output;
    EXPECT_EQ(outcome.output, "");
    const std::string page = ReadFile(File("a.html"));
    EXPECT_EQ(page.find("<!DOCTYPE html>"), 0U);
    ExpectContains(page, "\"title\":\"clean.xml\"");
    ExpectContains(page, "Crank pin");
    EXPECT_EQ(Run("view " + m_document).output, page);
}

TEST_F(View, EndsAsTheOtherCommandsDo)
{
    EXPECT_EQ(Run("view " + File("none.xml") + " -o " + File("a.html")).code, 2);
    EXPECT_EQ(Run("view " + Write("bad.xml", "<a>") + " -o " + File("a.html")).code, 2);
    EXPECT_FALSE(fs::exists(File("a.html")));
    const std::string odd = Write("odd.xml", With(CleanDocument(), " </World>", "<Odd/></World>"));
    EXPECT_EQ(Run("view " + odd + " -o " + File("a.html")).code, 1);
    EXPECT_TRUE(fs::exists(File("a.html")));
    ExpectContains(Run("view --help").output, "karmp view crank.xml --output crank.html");
}

TEST_F(View, IsNeverWrittenOntoTheDocument)
{
    EXPECT_EQ(Run("view " + m_document + " -o " + m_document).code, 2);
    EXPECT_EQ(ReadFile(m_document), CleanDocument());
}

TEST_F(View, LeavesAnOldPageWhenItCannotWrite)
{
    const std::string old = Write("old.html", "what was there before");
    const auto before = Files();
    const Outcome full = Run("view " + m_document + " -o " + old, "trap '' XFSZ; ulimit -f 8;");
    EXPECT_EQ(full.code, 2);
    ExpectContains(full.output, "cannot-write");
    EXPECT_EQ(ReadFile(old), "what was there before");
    EXPECT_EQ(Files(), before);
    EXPECT_EQ(Run("view " + m_document + " -o /nonexistent/a.html").code, 2);
}

} // namespace

} // namespace karmp::tool

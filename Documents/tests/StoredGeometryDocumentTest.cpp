// Worlds with curves and surfaces of the stored geometry through documents.
#include "KARCrvLimits.h"
#include "KARLineCurve.h"
#include "KARMPCurve.h"
#include "KARMPDocuments.h"
#include "KARMPSurface.h"
#include "KARMPTestFixture.h"
#include "KARMPWorld.h"
#include "KARPlaneSurface.h"
#include "QOBBasicWorld.h"

#include <gtest/gtest.h>

#include <string>

using namespace karmp::documents;

namespace {

class StoredGeometryDocument : public KARMPTestFixture
{
protected:
    StoredGeometryDocument() : m_world(KARMPWorld::create(QOBBasicWorld::create(L"World"))) {}
    ~StoredGeometryDocument() override
    {
        m_plane->Release();
        m_line->Release();
    }

    QOBSharedHandle<KARMPSurface> AddSurface()
    {
        const auto surface = KARMPSurface::create(L"plane");
        surface->SetSurface(m_plane);
        m_world->Add<KARMPGeometry>(surface);
        return surface;
    }
    QOBSharedHandle<KARMPCurve> AddCurve()
    {
        const auto curve = KARMPCurve::create(L"line");
        curve->AddCurve(m_line, KARMPCurveOrientation::Negative, &m_limits);
        m_world->Add<KARMPGeometry>(curve);
        return curve;
    }
    std::string Saved()
    {
        std::string text;
        for (const Diagnostic& item : SaveText(m_world, text).items)
            ADD_FAILURE() << Format(item);
        return text;
    }
    /// The document without the first characters of its first stream.
    std::string Damaged(std::string_view stream)
    {
        std::string text = Saved();
        const std::size_t element = text.find(stream);
        EXPECT_NE(element, std::string::npos);
        return text.erase(text.find('>', element) + 1, 8);
    }
    /// The first geometry of a class in a world.
    template <class T>
    static QOBSharedHandle<T> First(const KARMPWorld& world)
    {
        for (int index = 0; index < world.Count<KARMPGeometry>(); ++index) {
            QOBSharedHandle<KARMPGeometry> geometry;
            world.Get(index, geometry);
            if (geometry.isDerivedFrom(T::ClassInfo()))
                return QOBSharedHandle<T>(geometry);
        }
        return {};
    }

    KARPlaneSurface* m_plane =
        KARPlaneSurface::Create({0, 0, 1}, {1, 0, 0}, {0, 1, 0}, {-1, 1, -2, 2});
    KARLineCurve* m_line = KARLineCurve::Create(KARMathLine({1, 2, 0}, {0, 2, 0}), -1.0, 4.0);
    KARCrvLimits m_limits{KARCrvParam(-0.5), KARCrvParam(2.5)};
    QOBSharedHandle<KARMPWorld> m_world;
};

TEST_F(StoredGeometryDocument, TellsNothingOfASurfaceThatWasRead)
{
    AddSurface();
    const LoadResult result = LoadText(Saved());
    for (const Diagnostic& item : result.diagnostics.items)
        ADD_FAILURE() << Format(item);
    const auto surface = First<KARMPSurface>(*result.world);
    ASSERT_TRUE(surface);
    KARBaseUnknown* stored = nullptr;
    surface->GetSurface(stored);
    EXPECT_NE(KARSysDynamicCast<KARPlaneSurface>(stored), nullptr);
}

TEST_F(StoredGeometryDocument, TellsOfAStreamThatCannotBeRead)
{
    AddSurface();
    const LoadResult result = LoadText(Damaged("<SurfaceStream"));
    ASSERT_EQ(result.diagnostics.items.size(), 1U);
    const Diagnostic& item = result.diagnostics.items[0];
    EXPECT_EQ(item.code, Code::FailedCheck);
    EXPECT_NE(item.line, 0U);
    EXPECT_EQ(item.path, "/KARMPDocument/World/Geometries/Surface");
    EXPECT_EQ(item.text.find(".cpp"), std::string::npos) << item.text;
    EXPECT_NE(item.text.find("KARMPSurface"), std::string::npos) << item.text;
}

TEST_F(StoredGeometryDocument, TellsOfFaultsBesideASurfaceThatWasRead)
{
    AddSurface();
    AddCurve();
    const LoadResult result = LoadText(Damaged("<CurveStream"));
    ASSERT_EQ(result.diagnostics.items.size(), 1U);
    EXPECT_EQ(result.diagnostics.items[0].path, "/KARMPDocument/World/Geometries/Curve");
}

TEST_F(StoredGeometryDocument, TellsOfASurfaceThatIsNullWhenItIsSavedAndWhenItIsRead)
{
    AddSurface()->SetSurface(nullptr);
    std::string text;
    const Diagnostics saved = SaveText(m_world, text);
    ASSERT_EQ(saved.items.size(), 1U);
    EXPECT_EQ(saved.items[0].path, "/KARMPDocument/World/Geometries/Surface/SurfaceStream");
    EXPECT_NE(LoadText(text).diagnostics.Find(Code::MissingElement), nullptr);
}

// Limits that are not freed are for the sanitizers to find.
TEST_F(StoredGeometryDocument, LetsTheCurvesThatItReadFreeTheirLimitsAndNoOthers)
{
    AddCurve();
    const std::string text = Saved();
    {
        const LoadResult result = LoadText(text);
        EXPECT_TRUE(result.diagnostics.items.empty());
        const auto curve = First<KARMPCurve>(*result.world);
        ASSERT_TRUE(curve);
        EXPECT_EQ(curve->GetCurveCount(), 1);
    }
    // The limits of the curve that is there are no memory that can be freed.
    static_cast<void>(LoadText(text, "<text>", {}, m_world));
    m_world.detach();
    EXPECT_EQ(m_line->GetRefCount(), 1U);
}

// A reference to an entity of another class ends the reading before the world lists what was read;
// without the reference another world is read.
TEST_F(StoredGeometryDocument, LetsTheCurvesFreeTheirLimitsWhenReadingEndsEarly)
{
    AddCurve()->SetIdentifier(L"line");
    std::string text = Saved();
    const std::size_t end = text.find("</Curve>");
    ASSERT_NE(end, std::string::npos);
    text.insert(end + 8, R"(<Point id="tip" name="tip"><Body id="line" name="line"/></Point>)");
    LoadOptions options;
    options.check = CheckLevel::None;
    const LoadResult result = LoadText(text, "<text>", options);
    EXPECT_TRUE(result.diagnostics.HasErrors());
    ASSERT_TRUE(result.world);
    EXPECT_TRUE(First<KARMPCurve>(*result.world));
}

TEST_F(StoredGeometryDocument, CheckTellsOfStreamsThatHoldNothingAndOfTheirLengths)
{
    AddSurface();
    AddCurve();
    const auto found = [](const std::string& text) {
        std::vector<std::string> lines;
        for (const Diagnostic& item : CheckText(text).items)
            if (item.code == Code::UnreadableStream || item.code == Code::WrongLength)
                lines.push_back(std::string(CodeText(item.code)) + " " +
                                item.path.substr(item.path.rfind('/') + 1));
        return lines;
    };
    using Lines = std::vector<std::string>;
    const std::string text = Saved();
    EXPECT_EQ(found(text), Lines{});
    EXPECT_EQ(found(Damaged("<SurfaceStream")),
              (Lines{"wrong-length SurfaceStream", "unreadable-stream SurfaceStream"}));
    EXPECT_EQ(found(Damaged("<CurveStream")),
              (Lines{"wrong-length CurveStream", "unreadable-stream CurveStream"}));
    std::string otherLength = text;
    const std::size_t length = otherLength.find("length=\"", otherLength.find("<CurveStream")) + 8;
    otherLength.insert(length, "1");
    EXPECT_EQ(found(otherLength), Lines{"wrong-length CurveStream"});
}

} // namespace

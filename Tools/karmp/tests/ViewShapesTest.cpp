// Bodies with representations in a page.
#include "ViewShapes.h"
#include "KARMPModel.h"
#include "ViewFixture.h"
#include "ViewJson.h"

#include <string>
#include <vector>

namespace karmp::tool {

namespace {

using karmp::model::Model;

using Numbers = std::vector<double>;

KAR3DMeshRep* Triangle(const std::vector<KARMathVector>& normals = {})
{
    return KAR3DMeshRep::CreateRep({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {KARTriangle{0, 1, 2}},
                                   normals);
}

TEST(ViewShapes, PlacesEachPieceOfASceneGraphInTheAxesOfTheBody)
{
    const KAR3DRepOwner<KAR3DBagRep> bag(KAR3DBagRep::CreateRep());
    bag->SetTransformation(KARMathTransformation(KARMathVector(10, 0, 0)));
    bag->SetColour(KARColour{0.25, 0.5, 0.75, 0.5});
    KAR3DMeshRep* const mesh = Triangle();
    mesh->SetTransformation(KARMathTransformation(KARMathVector(0, 5, 0)));
    KAR3DPolylineRep* const chain = KAR3DPolylineRep::CreateRep({{0, 0, 1}, {0, 0, 2}});
    chain->SetColour(KARColour{1, 0, 0, 1});
    bag->AddChild(mesh);
    bag->AddChild(chain);
    const auto pieces = DrawRepresentation(*bag);
    ASSERT_EQ(pieces.size(), 2U);
    EXPECT_EQ(pieces[0].points, (Numbers{10, 5, 0, 11, 5, 0, 10, 6, 0}));
    EXPECT_EQ(pieces[0].triangles, (std::vector<std::uint32_t>{0, 1, 2}));
    EXPECT_EQ(pieces[0].colour, (std::array{0.25, 0.5, 0.75, 0.5})) << "that of its bag";
    EXPECT_TRUE(pieces[0].normals.empty());
    EXPECT_EQ(pieces[1].points, (Numbers{10, 0, 1, 10, 0, 2}));
    EXPECT_TRUE(pieces[1].triangles.empty());
    EXPECT_EQ(pieces[1].colour, (std::array{1.0, 0.0, 0.0, 1.0}));
    EXPECT_EQ(BoxAround(pieces).Low(), KARMathPoint(10, 0, 0));
    EXPECT_EQ(BoxAround(pieces).High(), KARMathPoint(11, 6, 2));
    EXPECT_TRUE(BoxAround({}).IsEmpty());
    EXPECT_EQ(BoxAround({}).Diagonal(), 0.0);
}

TEST(ViewShapes, KeepsNormalsAcrossAScaledMesh)
{
    const KARMathVector slanted(0.6, 0.0, 0.8);
    const KAR3DRepOwner<KAR3DMeshRep> mesh(Triangle({slanted, slanted, slanted}));
    mesh->SetTransformation({KARMath3x3Matrix({2, 0, 0}, {0, 1, 0}, {0, 0, 1}), {}});
    const auto pieces = DrawRepresentation(*mesh);
    ASSERT_EQ(pieces.size(), 1U);
    const KARMathVector normal(pieces[0].normals[0], pieces[0].normals[1], pieces[0].normals[2]);
    EXPECT_NEAR(normal.Norm(), 1.0, 1e-12);
    EXPECT_NEAR(normal.Dot({2 * 0.8, 0.0, -0.6}), 0.0, 1e-12) << "a direction of the surface";
}

TEST(ViewShapes, LeavesOutPiecesThatCannotBeDrawn)
{
    const KAR3DRepOwner<KAR3DBagRep> bag(KAR3DBagRep::CreateRep());
    KAR3DMeshRep* const far = Triangle();
    far->SetTransformation(KARMathTransformation(KARMathVector(1e300, 0, 0)));
    bag->AddChild(far);
    bag->AddChild(KAR3DMeshRep::CreateRep({}, {}));
    EXPECT_TRUE(DrawRepresentation(*bag).empty());
}

TEST(ViewShapes, OfPlanarBodiesAreTheFacesOfTheirTopologicalBody)
{
    KARGeometricFactory* const factory = KARGeometricFactory::Create();
    KARBody* const solid = factory->Make<KARBody>();
    auto* const plane =
        factory->Make<KARPlaneSurface>(KARMathPoint(1, 2, 3), KARMathVector(1, 0, 0),
                                       KARMathVector(0, 1, 0), KARSurLimits{0, 2, 0, 4});
    solid->AddFace({plane, false, {}});
    const auto shape = KARMPShapeBody::create(L"s");
    EXPECT_TRUE(DrawShape(*shape).empty()) << "without a body";
    shape->SetBody(solid);
    factory->Release();
    const auto pieces = DrawShape(*shape);
    ASSERT_EQ(pieces.size(), 1U);
    EXPECT_EQ(pieces[0].points, (Numbers{1, 2, 3, 1, 6, 3, 3, 2, 3, 3, 6, 3}));
    EXPECT_EQ(pieces[0].triangles.size(), 6U);
    EXPECT_FALSE(pieces[0].colour);
}

TEST(ViewShapes, AreSharedByTheBodiesThatHaveThem)
{
    Model model("w");
    const auto shape = model.Add<KARMP3DRep>("cube");
    const auto empty = model.Add<KARMP3DRep>("none");
    shape->Set3DRep(Triangle());
    for (const auto* name : {"a", "b"}) {
        const auto body = model.Body(name, {.at = KARMathPoint(100, 0, 0)});
        shape->LinkToBody(body);
        body->LinkToShape(shape);
    }
    const ViewScene scene = CollectScene(*model.World(), "w");
    ASSERT_EQ(scene.shapes.size(), 1U);
    EXPECT_EQ(Drawn(scene, scene.bodies, "a")->shapes, std::vector<int>{0});
    EXPECT_EQ(Drawn(scene, scene.bodies, "b")->shapes, std::vector<int>{0});
    for (const ViewEntity& entity : scene.entities)
        EXPECT_EQ(entity.note.empty(), entity.name != "none") << entity.name;
    EXPECT_NEAR(scene.symbolSize, 0.035 * std::hypot(101, 1), 1e-9)
        << "from the ground's origin to the corners";
    const std::string json = SceneJson(scene);
    EXPECT_NE(json.find(R"("pieces":[{"points":[0,0,0,1,0,0,0,1,0],"triangles":[0,1,2]}]})"),
              std::string::npos);
    EXPECT_NE(json.find(R"("shapes":[0])"), std::string::npos);
}

TEST(ViewShapes, WriteCoordinatesInSinglePrecision)
{
    ViewScene scene;
    scene.shapes.push_back({0, {{{0.1, 1.0 / 3.0, -2}, {0, 0, 1}, {}, {{0.5, 0.25, 1, 1}}}}});
    EXPECT_NE(SceneJson(scene).find(
                  R"("points":[0.1,0.33333334,-2],"normals":[0,0,1],"colour":[0.5,0.25,1,1])"),
              std::string::npos);
}

} // namespace

} // namespace karmp::tool

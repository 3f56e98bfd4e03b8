#include "KAR3DBagRep.h"
#include "KAR3DMeshRep.h"
#include "ModelTesting.h"

#include <array>
#include <cmath>
#include <limits>
#include <numbers>

using namespace karmp::model;

namespace {

using SolidsTest = KARMPTestFixture;

const KAR3DMeshRep& MeshAt(const KARMP3DRep& shape, std::size_t index)
{
    const auto& bag = dynamic_cast<const KAR3DBagRep&>(*shape.Get3DRep());
    return dynamic_cast<const KAR3DMeshRep&>(*bag.GetChildren().at(index));
}

// Each triangle with the origin makes a pyramid, whose sign tells the side that it shows.
double VolumeOf(const KAR3DMeshRep& mesh)
{
    double volume = 0.0;
    for (const KARTriangle& triangle : mesh.GetTriangles()) {
        std::array<KARMathVector, 3> corners;
        for (std::size_t i = 0; i < corners.size(); ++i)
            corners[i] = mesh.GetVertices()[triangle[i]] - KARMathPoint();
        volume += corners[0].Dot(corners[1].Cross(corners[2])) / 6.0;
    }
    return volume;
}

TEST_F(SolidsTest, WeighWhatTheirVolumesDo)
{
    const std::array solids{Solid{{1.0, 0.0, 0.0}, {1.0, 2.0, 3.0}},
                            Drum({-1.0, 0.0, 0.0}, 0, 0.5, 2.0)};
    const double box = 6.0 * 100.0;
    const double drum = std::numbers::pi * 0.25 * 2.0 * 100.0;
    const BodyOptions mass = MassOf(solids, 100.0);
    EXPECT_DOUBLE_EQ(mass.mass, box + drum);
    EXPECT_DOUBLE_EQ(mass.centerOfGravity->GetX(), (box - drum) / (box + drum));
    const BodyOptions alone = MassOf(std::span(solids).last(1), 100.0);
    EXPECT_DOUBLE_EQ((*alone.inertia)(0, 0), drum * 0.25 / 2.0); // about its own axis
    EXPECT_DOUBLE_EQ((*alone.inertia)(1, 1), drum * (3.0 * 0.25 + 4.0) / 12.0);
    EXPECT_DOUBLE_EQ((*alone.inertia)(2, 2), (*alone.inertia)(1, 1));
    EXPECT_EQ(MassOf({}, 100.0).mass, 0.0);
}

TEST_F(SolidsTest, ShapeIsAClosedMeshOfEach)
{
    Model model("M");
    const KARColour red{1.0, 0.0, 0.0, 1.0};
    const std::array solids{Solid{{1.0, 2.0, 3.0}, {1.0, 2.0, 3.0}, -1, red},
                            Drum({0.0, 0.0, 0.0}, 1, 0.5, 2.0), Drum({0.0, 0.0, 0.0}, 2, 0.5, 2.0)};
    const auto body = model.Body("A");
    const auto shape = model.Shape("Shape", body, solids);
    EXPECT_EQ(model.Find<KARMP3DRep>("A.Shape"), shape);
    EXPECT_EQ(MeshAt(*shape, 0).GetColour(), red);
    EXPECT_NEAR(VolumeOf(MeshAt(*shape, 0)), 6.0, 1e-9);
    const double polygon = 36.0 / 2.0 * std::sin(2.0 * std::numbers::pi / 36.0) * 0.25 * 2.0;
    EXPECT_NEAR(VolumeOf(MeshAt(*shape, 1)), polygon, 1e-5);
    EXPECT_NEAR(VolumeOf(MeshAt(*shape, 2)), polygon, 1e-5);
    EXPECT_TRUE(model.Unlink(shape, body));
    EXPECT_TRUE(model.Problems().empty());
}

TEST_F(SolidsTest, SolidThatNoMeshCanShowIsAProblem)
{
    Model model("M");
    const auto body = model.Body("A");
    const std::string before = TextOf(model);
    const double none = std::numeric_limits<double>::quiet_NaN();
    const std::array nowhere{Solid{{none, 0.0, 0.0}, {1.0, 1.0, 1.0}}};
    const std::array coloured{Solid{{0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}, -1, {2.0, 0.0, 0.0, 1.0}}};
    EXPECT_FALSE(model.Shape("Shape", body, nowhere));
    EXPECT_FALSE(model.Shape("Shape", body, coloured));
    for (const int axis : {3, 7}) {
        const std::array turned{Drum({}, axis, 0.1, 1.0)};
        EXPECT_FALSE(model.Shape("Shape", body, turned));
        EXPECT_FALSE(model.Body("New", MassOf(turned, 1000.0)));
    }
    EXPECT_FALSE(model.Shape("Shape", {}, coloured));
    EXPECT_EQ(model.Problems().size(), 7U);
    model.ClearProblems();
    EXPECT_TRUE(TextOf(model) == before);
}

} // namespace

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
    const BodyOptions first = MassOf(std::span(solids).first(1), 100.0);
    EXPECT_DOUBLE_EQ((*first.inertia)(0, 0), box * (4.0 + 9.0) / 12.0);
    EXPECT_DOUBLE_EQ((*first.inertia)(1, 1), box * (9.0 + 1.0) / 12.0);
    EXPECT_DOUBLE_EQ((*first.inertia)(2, 2), box * (1.0 + 4.0) / 12.0);
    const BodyOptions alone = MassOf(std::span(solids).last(1), 100.0);
    EXPECT_DOUBLE_EQ((*alone.inertia)(0, 0), drum * 0.25 / 2.0); // about its own axis
    EXPECT_DOUBLE_EQ((*alone.inertia)(1, 1), drum * (3.0 * 0.25 + 4.0) / 12.0);
    EXPECT_DOUBLE_EQ((*alone.inertia)(2, 2), (*alone.inertia)(1, 1));
    EXPECT_EQ(MassOf({}, 100.0).mass, 0.0);
}

TEST_F(SolidsTest, CylinderOfAnEllipseHasTheMomentsOfBothHalfAxes)
{
    const std::array solids{Solid{{0.0, 0.0, 0.0}, {2.0, 4.0, 1.0}, 2}};
    const BodyOptions mass = MassOf(solids, 1.0);
    EXPECT_DOUBLE_EQ(mass.mass, 2.0 * std::numbers::pi);
    EXPECT_DOUBLE_EQ((*mass.inertia)(0, 0), mass.mass * (4.0 / 4.0 + 1.0 / 12.0));
    EXPECT_DOUBLE_EQ((*mass.inertia)(1, 1), mass.mass * (1.0 / 4.0 + 1.0 / 12.0));
    EXPECT_DOUBLE_EQ((*mass.inertia)(2, 2), mass.mass * (1.0 + 4.0) / 4.0);
}

TEST_F(SolidsTest, ShapeIsAClosedMeshOfEach)
{
    Model model("M");
    const KARColour red{1.0, 0.0, 0.0, 1.0};
    const std::array solids{Solid{{1.0, 2.0, 3.0}, {1.0, 2.0, 3.0}, -1, red},
                            Drum({0.0, 0.0, 0.0}, 1, 0.5, 2.0, red),
                            Drum({0.0, 0.0, 0.0}, 2, 0.5, 2.0)};
    const auto body = model.Body("A");
    const auto shape = model.Shape("Shape", body, solids);
    EXPECT_EQ(model.Find<KARMP3DRep>("A.Shape"), shape);
    for (const std::size_t index : {0U, 1U})
        EXPECT_EQ(MeshAt(*shape, index).GetColour(), red);
    EXPECT_NEAR(VolumeOf(MeshAt(*shape, 0)), 6.0, 1e-9);
    const double polygon = 36.0 / 2.0 * std::sin(2.0 * std::numbers::pi / 36.0) * 0.25 * 2.0;
    EXPECT_NEAR(VolumeOf(MeshAt(*shape, 1)), polygon, 1e-5);
    EXPECT_NEAR(VolumeOf(MeshAt(*shape, 2)), polygon, 1e-5);
    EXPECT_TRUE(model.Unlink(shape, body));
    EXPECT_TRUE(model.Problems().empty());
}

TEST_F(SolidsTest, NormalsOfADrumPointOutOfItsSidesAndCaps)
{
    Model model("M");
    for (const int axis : {0, 1, 2}) {
        const std::array solids{Drum({0.1, 0.2, 0.3}, axis, 0.5, 2.0)};
        const auto shape = model.Shape("S" + std::to_string(axis), model.Ground(), solids);
        const KAR3DMeshRep& mesh = MeshAt(*shape, 0);
        ASSERT_EQ(mesh.GetNormals().size(), mesh.GetVertices().size());
        for (const KARTriangle& triangle : mesh.GetTriangles()) {
            const KARMathPoint& corner = mesh.GetVertices()[triangle[0]];
            KARMathVector outwards = (mesh.GetVertices()[triangle[1]] - corner)
                                         .Cross(mesh.GetVertices()[triangle[2]] - corner);
            outwards.Normalize();
            for (const std::uint32_t index : triangle)
                EXPECT_GT(mesh.GetNormals()[index].Dot(outwards), 0.99);
        }
    }
}

TEST_F(SolidsTest, NumbersOfMeshesAreMillionths)
{
    Model model("M");
    const double third = 1.0 / 3.0;
    const std::array solids{Solid{{third, third, third}, {1.0, 1.0, 1.0}},
                            Drum({third, 0.0, 0.0}, 0, third, 1.0)};
    const auto shape = model.Shape("Shape", model.Ground(), solids);
    const auto expectMillionths = [](const auto& triples) {
        for (const auto& triple : triples)
            for (const double number : {triple.GetX(), triple.GetY(), triple.GetZ()})
                EXPECT_EQ(number, std::round(1e6 * number) / 1e6);
    };
    for (const std::size_t index : {0U, 1U}) {
        expectMillionths(MeshAt(*shape, index).GetVertices());
        expectMillionths(MeshAt(*shape, index).GetNormals());
    }
}

TEST_F(SolidsTest, TrianglesOfAllMeshesAreCounted)
{
    Model model("M");
    EXPECT_EQ(TriangleCountOf(model), 0U);
    model.Add<KARMP3DRep>("Empty");
    const std::array solids{Solid{{0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}}, Drum({}, 0, 1.0, 1.0)};
    model.Shape("Shape", model.Ground(), solids);
    model.Shape("Box", model.Body("A"), std::span(solids).first(1));
    EXPECT_EQ(TriangleCountOf(model), 12U + (2U * 36U + 2U * 34U) + 12U);
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
    EXPECT_FALSE(model.Shape("Shape", {}, std::array{Drum({}, 0, 0.1, 1.0)}));
    EXPECT_FALSE(model.Shape("Shape", body, std::array{Drum({}, 0, -0.1, 1.0)}));
    EXPECT_FALSE(model.Shape("Shape", body, {}));
    ASSERT_EQ(model.Problems().size(), 9U);
    EXPECT_EQ(model.Problems()[0].text,
              "a solid has a place, an edge or a colour that no mesh can have");
    EXPECT_EQ(model.Problems()[1].text, model.Problems()[0].text);
    EXPECT_EQ(model.Problems()[2].text, "a solid has an axis that is none of 0, 1 and 2");
    EXPECT_EQ(model.Problems()[7].text, "a solid has an edge below 0");
    EXPECT_EQ(model.Problems()[8].text, "the shape \"Shape\" has no solid");
    model.ClearProblems();
    EXPECT_TRUE(TextOf(model) == before);
}

} // namespace

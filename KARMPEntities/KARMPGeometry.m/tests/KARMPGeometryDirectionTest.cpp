#include "GeometryKindTraits.h"
#include "KARMPEntityTable.h"
#include "KARMPTestFixture.h"
#include "TestDeserializer.h"

#include <cmath>
#include <random>

namespace {

/// What a reader makes of three components of a direction.
class DirectionOnRead : public KARMPTestFixture
{
protected:
    KARMathDirection Of(double x, double y, double z)
    {
        TestDeserializer root(L"Torus");
        root.Attribute(L"id", L"t").Attribute(L"name", L"t").Attribute(L"isActive", L"yes");
        root.Add(L"Coordinates")
            .Leaf(L"Cx", 0.0)
            .Leaf(L"Cy", 0.0)
            .Leaf(L"Cz", 0.0)
            .Leaf(L"Nx", x)
            .Leaf(L"Ny", y)
            .Leaf(L"Nz", z)
            .Leaf(L"major_radius", 0.0)
            .Leaf(L"minor_radius", 0.0);
        const auto torus = KARMPTorus::create(L"");
        EXPECT_EQ(torus->Deserialize(&root, KARMPEntityTable()), KARSuccess);
        return Get(*torus, &KARMPTorus::GetNormal);
    }
};

TEST_F(DirectionOnRead, IsTheFirstAxisForNone)
{
    EXPECT_EQ(Of(0.0, 0.0, 0.0), KARMathDirection(1.0, 0.0, 0.0));
}

TEST_F(DirectionOnRead, IsScaledToOne)
{
    EXPECT_EQ(Of(0.0, 0.0, 2.0), KARMathDirection(0.0, 0.0, 1.0));
    EXPECT_EQ(Of(0.0, -0.5, 0.0), KARMathDirection(0.0, -1.0, 0.0));
    const KARMathDirection diagonal = Of(1.0, 1.0, 1.0);
    const double factor = 1.0 / std::sqrt(3.0);
    EXPECT_EQ(diagonal, KARMathDirection(factor, factor, factor));
}

TEST_F(DirectionOnRead, IsNotTouchedWhenTheSquaresSumToOne)
{
    const double y = 0.6;
    const double z = 0.8;
    ASSERT_EQ(y * y + z * z, 1.0);
    EXPECT_EQ(Of(0.0, y, z), KARMathDirection(0.0, y, z));
}

TEST_F(DirectionOnRead, IsScaledWhereItsSquaresOverflowOrUnderflow)
{
    for (const double size : {1e200, 1.7e308, 1e154, 1e-154, 1e-162, 1e-200, 5e-324}) {
        EXPECT_EQ(Of(0.0, 0.0, size), KARMathDirection(0.0, 0.0, 1.0)) << size;
        const KARMathDirection diagonal = Of(size, -size, size);
        EXPECT_NEAR(diagonal.GetX(), 1.0 / std::sqrt(3.0), 1e-15) << size;
        EXPECT_NEAR(diagonal.GetY(), -1.0 / std::sqrt(3.0), 1e-15) << size;
        EXPECT_NEAR(diagonal.GetZ(), 1.0 / std::sqrt(3.0), 1e-15) << size;
    }
    const KARMathDirection uneven = Of(3e-200, 0.0, 4e-200);
    EXPECT_NEAR(uneven.GetX(), 0.6, 1e-15);
    EXPECT_NEAR(uneven.GetZ(), 0.8, 1e-15);
}

TEST_F(DirectionOnRead, FollowsTheRuleBitForBitForOrdinaryComponents)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<double> exponent(-150.0, 150.0);
    std::uniform_real_distribution<double> factor(-1.0, 1.0);
    for (int i = 0; i < 200; ++i) {
        const double size = std::pow(10.0, exponent(random));
        const double x = size * factor(random);
        const double y = size * factor(random);
        const double z = size * factor(random);
        const double scale = 1.0 / std::sqrt(x * x + y * y + z * z);
        EXPECT_EQ(Of(x, y, z), KARMathDirection(x * scale, y * scale, z * scale));
    }
}

TEST(GeometryDirections, AreStoredAsGiven)
{
    const auto cylinder = KARMPCylinder::create(L"");
    cylinder->SetAxis({0.0, 0.0, 2.0});
    EXPECT_EQ(Get(*cylinder, &KARMPCylinder::GetAxis), KARMathDirection(0.0, 0.0, 2.0));
}

TEST_F(DirectionOnRead, HoldsForTheAxisOfACircleToo)
{
    TestDeserializer root(L"Circle");
    root.Attribute(L"id", L"c").Attribute(L"name", L"c").Attribute(L"isActive", L"yes");
    root.Add(L"Coordinates")
        .Leaf(L"Cx", 0.0)
        .Leaf(L"Cy", 0.0)
        .Leaf(L"Cz", 0.0)
        .Leaf(L"Dx", 0.0)
        .Leaf(L"Dy", 3.0)
        .Leaf(L"Dz", 0.0)
        .Leaf(L"radius", 2.0);
    const auto circle = KARMPCircle::create(L"");
    EXPECT_EQ(circle->Deserialize(&root, KARMPEntityTable()), KARSuccess);
    const KARMathCircle value = Get(*circle, &KARMPCircle::GetCircle);
    EXPECT_EQ(value.GetNormal(), KARMathVector(0.0, 1.0, 0.0));
    EXPECT_EQ(value.GetRadius(), 2.0);
    EXPECT_EQ(value.GetScale(), 1.0);
    EXPECT_EQ(value.GetShift(), 0.0);
}

TEST_F(DirectionOnRead, HoldsForTheNormalOfAPlaneToo)
{
    const auto normalOf = [](double x, double y, double z) {
        TestDeserializer root(L"Plane");
        root.Attribute(L"id", L"p").Attribute(L"name", L"p").Attribute(L"isActive", L"yes");
        root.Add(L"Coordinates")
            .Leaf(L"Ox", 0.0)
            .Leaf(L"Oy", 0.0)
            .Leaf(L"Oz", 0.0)
            .Leaf(L"Nx", x)
            .Leaf(L"Ny", y)
            .Leaf(L"Nz", z);
        const auto plane = KARMPPlane::create(L"");
        EXPECT_EQ(plane->Deserialize(&root, KARMPEntityTable()), KARSuccess);
        return Get(*plane, &KARMPPlane::GetPlane).GetNormal();
    };
    EXPECT_EQ(normalOf(0.0, 0.0, 0.0), KARMathDirection(1.0, 0.0, 0.0));
    EXPECT_EQ(normalOf(0.0, 3.0, 0.0), KARMathDirection(0.0, 1.0, 0.0));
}

TEST_F(DirectionOnRead, OfALineGoesOnWithoutAComponent)
{
    TestDeserializer root(L"Line");
    root.Attribute(L"id", L"l").Attribute(L"name", L"l").Attribute(L"isActive", L"yes");
    root.Add(L"Coordinates")
        .Leaf(L"Ox", 1.0)
        .Leaf(L"Oy", 2.0)
        .Leaf(L"Oz", 3.0)
        .Leaf(L"Dy", 0.0)
        .Leaf(L"Dz", 5.0);
    const auto line = KARMPLine::create(L"");
    EXPECT_EQ(line->Deserialize(&root, KARMPEntityTable()), KARSuccess);
    ExpectReports(1);
    EXPECT_EQ(Get(*line, &KARMPLine::GetLine), KARMathLine({1.0, 2.0, 3.0}, {0.0, 0.0, 1.0}));
}

} // namespace

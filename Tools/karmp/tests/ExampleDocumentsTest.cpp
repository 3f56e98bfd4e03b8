// Holds the documents of the examples in space to docs/conventions.md, as they are after loading.
#include "ExampleWorld.h"
#include "KARCurve.h"
#include "KARMPDocuments.h"
#include "KARMPEntities.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

namespace karmp::tool {

namespace {

constexpr double LengthTolerance = 1e-11; // m: documents keep twelve decimals
constexpr double AngleTolerance = 1e-11;  // of directions, which are numbers near 1

class ExampleDocument : public ::testing::TestWithParam<std::string>
{
protected:
    void SetUp() override
    {
        const auto loaded = documents::LoadFile(KARMP_EXAMPLE_DOCUMENTS "/" + GetParam() + ".xml");
        ASSERT_TRUE(loaded.diagnostics.items.empty());
        ASSERT_TRUE(loaded.world);
        m_world = loaded.world;
    }

    /// Calls with every entity of a family that is a T.
    template <class Family, class T = Family, class Visit>
    int ForEach(Visit visit) const
    {
        int count = 0;
        tool::ForEach<Family>(*m_world, [&](const QOBSharedHandle<Family>& entity) {
            if (const auto* object = dynamic_cast<const T*>(entity.operator->())) {
                SCOPED_TRACE(kar::ToUtf8(entity->getEntityName()));
                visit(*object);
                ++count;
            }
        });
        return count;
    }

    QOBSharedHandle<KARMPWorld> m_world;
};

void ExpectRotation(const KARMathVector& first, const KARMathVector& second,
                    const KARMathVector& third)
{
    EXPECT_NEAR(first.Norm(), 1.0, AngleTolerance);
    EXPECT_NEAR(second.Norm(), 1.0, AngleTolerance);
    EXPECT_NEAR((first.Cross(second) - third).Norm(), 0.0, AngleTolerance);
}

/// Half of a joint: the body, and the axis system of the joint's constraint in the world.
struct Side
{
    QOBSharedHandle<KARMPBody> body;
    KARMathAxis axis;
};

Side SideOf(const KARMPConstraint& constraint, int index)
{
    Side side;
    QOBSharedHandle<KARMPGeometry> geometry;
    constraint.GetLinkedGeometry(index, geometry);
    const auto* axisSystem = dynamic_cast<const KARMPAxisSystem*>(geometry.operator->());
    if (axisSystem == nullptr || KARFailed(axisSystem->GetBody(side.body))) {
        ADD_FAILURE() << "no axis system of a body at " << index;
        return side;
    }
    axisSystem->GetAxisSystem(side.axis);
    side.axis = PositionOf(*side.body) * side.axis;
    return side;
}

/// How far the child's axis system stands from the parent's, but for the freedoms of the joint.
void ExpectClosed(const KARMPJoint& joint, const KARMathAxis& parent, const KARMathAxis& child)
{
    const KARMathVector& along = parent.GetThirdDirection();
    const KARMathVector gap = child.GetOrigin() - parent.GetOrigin();
    const double turn = along.Cross(child.GetThirdDirection()).Norm();
    if (dynamic_cast<const KARMPRevolute*>(&joint) != nullptr) {
        EXPECT_NEAR(gap.Norm(), 0.0, LengthTolerance);
        EXPECT_NEAR(turn, 0.0, AngleTolerance);
        EXPECT_GT(along.Dot(child.GetThirdDirection()), 0.0);
    } else if (dynamic_cast<const KARMPPrismatic*>(&joint) != nullptr) {
        EXPECT_NEAR(gap.Cross(along).Norm(), 0.0, LengthTolerance);
        EXPECT_NEAR(turn, 0.0, AngleTolerance);
        EXPECT_NEAR(parent.GetFirstDirection().Dot(child.GetFirstDirection()), 1.0, AngleTolerance);
    } else if (dynamic_cast<const KARMPUniversal*>(&joint) != nullptr) {
        EXPECT_NEAR(gap.Norm(), 0.0, LengthTolerance);
        EXPECT_NEAR(along.Dot(child.GetFirstDirection()), 0.0, AngleTolerance);
    } else {
        ASSERT_NE(dynamic_cast<const KARMPSpherical*>(&joint), nullptr);
        EXPECT_NEAR(gap.Norm(), 0.0, LengthTolerance);
    }
}

/// How far a point is from the nearest one of a piece of a curve: by ever closer samples.
double DistanceFrom(const KARCurve& piece, const KARMathPoint& point)
{
    constexpr int steps = 64;
    double low = 0.0;
    double high = 0.0;
    piece.GetLimits(low, high);
    const auto distanceAt = [&](double parameter) {
        return (piece.EvalPoint(parameter) - point).Norm();
    };
    double best = low;
    for (double step = (high - low) / steps; step > 1e-15; step *= 4.0 / steps) {
        for (int index = 0; index <= steps; ++index)
            if (const double parameter = std::min(low + index * step, high);
                distanceAt(parameter) < distanceAt(best))
                best = parameter;
        low = std::max(low, best - 2.0 * step);
    }
    return distanceAt(best);
}

/// The point of the second geometry lies on the curve of the first.
void ExpectPointOnCurve(const KARMPConstraint& constraint)
{
    std::array<QOBSharedHandle<KARMPGeometry>, 2> geometries;
    std::array<QOBSharedHandle<KARMPBody>, 2> bodies;
    for (int index = 0; index < 2; ++index) {
        const auto side = static_cast<std::size_t>(index);
        constraint.GetLinkedGeometry(index, geometries[side]);
        ASSERT_EQ(geometries[side]->GetBody(bodies[side]), KARSuccess);
    }
    const auto* const curve = dynamic_cast<const KARMPCurve*>(geometries[0].get());
    const auto* const given = dynamic_cast<const KARMPPoint*>(geometries[1].get());
    ASSERT_TRUE(curve != nullptr && given != nullptr);
    KARMathPoint point;
    given->GetPoint(point);
    KARMathTransformation intoCurve;
    ASSERT_TRUE(PositionOf(*bodies[0]).ComputeInverse(intoCurve));
    point = intoCurve * (PositionOf(*bodies[1]) * point);
    double nearest = 1.0;
    for (int index = 0; index < curve->GetCurveCount(); ++index) {
        KARBaseUnknown* piece = nullptr;
        KARMPCurveOrientation::Enum orientation{};
        void* limits = nullptr;
        ASSERT_EQ(curve->GetCurve(index, piece, orientation, limits), KARSuccess);
        nearest = std::min(nearest, DistanceFrom(*KARSysDynamicCast<KARCurve>(piece), point));
    }
    EXPECT_NEAR(nearest, 0.0, LengthTolerance);
}

TEST_P(ExampleDocument, ClosesItsLoopsFromParentToChild)
{
    const int joints = ForEach<KARMPJoint>([](const KARMPJoint& joint) {
        std::array<QOBSharedHandle<KARMPBody>, 2> bodies;
        std::array<KARMPBodyOrientation::Enum, 2> orientations{};
        ASSERT_EQ(joint.GetLinkedBodyCount(), 2);
        joint.GetLinkedBody(0, bodies[0], orientations[0]);
        joint.GetLinkedBody(1, bodies[1], orientations[1]);
        EXPECT_EQ(orientations[0], KARMPBodyOrientation::Out);
        EXPECT_EQ(orientations[1], KARMPBodyOrientation::In);
        if (dynamic_cast<const KARMPCoupling*>(&joint) != nullptr)
            return;
        QOBSharedHandle<KARMPConstraint> constraint;
        ASSERT_EQ(joint.GetConstraint(0, constraint), KARSuccess);
        if (dynamic_cast<const KARMPPointCurve*>(&joint) != nullptr)
            return ExpectPointOnCurve(*constraint);
        const Side parent = SideOf(*constraint, 0);
        const Side child = SideOf(*constraint, 1);
        EXPECT_EQ(parent.body, bodies[0]);
        EXPECT_EQ(child.body, bodies[1]);
        ExpectClosed(joint, parent.axis, child.axis);
    });
    EXPECT_GT(joints, 0);
}

/// What the variable of a joint with one freedom measures: an angle or a distance along the axis.
double FreedomOf(const KARMPJoint& joint, const KARMathAxis& parent, const KARMathAxis& child)
{
    const KARMathVector& direction = child.GetFirstDirection();
    if (dynamic_cast<const KARMPPrismatic*>(&joint) != nullptr)
        return parent.GetThirdDirection().Dot(child.GetOrigin() - parent.GetOrigin());
    return std::atan2(parent.GetSecondDirection().Dot(direction),
                      parent.GetFirstDirection().Dot(direction));
}

TEST_P(ExampleDocument, KnowsItsVariablesAsTheBodiesStand)
{
    const int joints = ForEach<KARMPJoint>([](const KARMPJoint& joint) {
        QOBSharedHandle<KARMPConstraint> constraint;
        QOBSharedHandle<KARMPVariable> variable;
        ASSERT_EQ(joint.GetConstraint(0, constraint), KARSuccess);
        if (dynamic_cast<const KARMPCoupling*>(&joint) != nullptr ||
            constraint->GetLinkedVariableCount() == 0)
            return;
        ASSERT_EQ(constraint->GetLinkedVariable(0, variable), KARSuccess);
        double value = 0.0;
        variable->GetValue(value);
        EXPECT_NEAR(FreedomOf(joint, SideOf(*constraint, 0).axis, SideOf(*constraint, 1).axis),
                    value, LengthTolerance);
    });
    EXPECT_GT(joints, 0);
}

TEST_P(ExampleDocument, TurnsBodiesAndAxisSystemsWithoutDistortion)
{
    ForEach<KARMPBody>([](const KARMPBody& body) {
        const KARMath3x3Matrix matrix = PositionOf(body).GetMatrix();
        ExpectRotation(matrix.GetFirstColumn(), matrix.GetSecondColumn(), matrix.GetThirdColumn());
    });
    ForEach<KARMPGeometry, KARMPAxisSystem>([](const KARMPAxisSystem& axisSystem) {
        KARMathAxis axis;
        axisSystem.GetAxisSystem(axis);
        ExpectRotation(axis.GetFirstDirection(), axis.GetSecondDirection(),
                       axis.GetThirdDirection());
    });
}

TEST_P(ExampleDocument, GivesEachMovingBodyAMassAndAnInertiaThatABodyCanHave)
{
    const int bodies = ForEach<KARMPBody>([](const KARMPBody& body) {
        double mass = 0.0;
        KARMath3x3Matrix inertia;
        body.GetMass(mass);
        body.GetInertiaMatrix(inertia);
        if (body.IsFixed())
            return;
        EXPECT_GT(mass, 0.0);
        EXPECT_EQ(inertia, inertia.Transpose());
        const double x = inertia(0, 0);
        const double y = inertia(1, 1);
        const double z = inertia(2, 2);
        const double rounding = 1e-12 * (x + y + z);
        EXPECT_GT(std::min({x, y, z}), 0.0);
        EXPECT_GT(inertia.Determinant(), 0.0);
        EXPECT_GE(x + y - z, -rounding);
        EXPECT_GE(y + z - x, -rounding);
        EXPECT_GE(z + x - y, -rounding);
    });
    EXPECT_GT(bodies, 1);
}

TEST_P(ExampleDocument, LinksConnectorsToAGeometryOfEachBody)
{
    ForEach<KARMPConnector>([](const KARMPConnector& connector) {
        std::array<QOBSharedHandle<KARMPBody>, 2> bodies;
        ASSERT_EQ(connector.GetFirstBody(bodies[0]), KARSuccess);
        ASSERT_EQ(connector.GetSecondBody(bodies[1]), KARSuccess);
        ASSERT_EQ(connector.GetLinkedGeometryCount(), 2);
        for (int index = 0; index < 2; ++index) {
            QOBSharedHandle<KARMPGeometry> geometry;
            QOBSharedHandle<KARMPBody> body;
            connector.GetLinkedGeometry(index, geometry);
            ASSERT_EQ(geometry->GetBody(body), KARSuccess);
            EXPECT_EQ(body, bodies[static_cast<std::size_t>(index)]);
        }
        EXPECT_NE(bodies[0], bodies[1]);
    });
}

TEST_P(ExampleDocument, SetsMotorsOffWhereTheBodiesStand)
{
    ForEach<KARMPActuator, KARMPMotor>([](const KARMPMotor& motor) {
        QOBSharedHandle<KARMPVariable> variable;
        double value = 0.0;
        double target = 0.0;
        double maximum = 0.0;
        ASSERT_EQ(motor.GetVariable(variable), KARSuccess);
        EXPECT_EQ(motor.GetMaxForce(maximum), KARSuccess);
        EXPECT_GT(maximum, 0.0);
        variable->GetValue(value);
        if (motor.HasConstantPosition()) {
            EXPECT_EQ(motor.GetPosition(target), KARSuccess);
            EXPECT_NEAR(target, value, LengthTolerance);
        }
    });
}

TEST_P(ExampleDocument, SatisfiesItsEquations)
{
    ForEach<KARMPConstraint, KARMPLinearEquation>([](const KARMPLinearEquation& equation) {
        double residual = 0.0;
        equation.GetConstantTerm(residual);
        for (int index = 0; index < equation.GetLinkedVariableCount(); ++index) {
            QOBSharedHandle<KARMPVariable> variable;
            double coefficient = 0.0;
            double value = 0.0;
            ASSERT_EQ(equation.GetLinearTerm(index, coefficient), KARSuccess);
            ASSERT_EQ(equation.GetLinkedVariable(index, variable), KARSuccess);
            variable->GetValue(value);
            residual += coefficient * value;
        }
        EXPECT_NEAR(residual, 0.0, LengthTolerance);
    });
}

TEST_P(ExampleDocument, IsUnderTheEarthsGravityOrNone)
{
    KARMathVector gravity;
    m_world->GetGravity(gravity);
    EXPECT_EQ(gravity.Norm(), GetParam() == "seven-body" ? 0.0 : 9.81);
}

INSTANTIATE_TEST_SUITE_P(Examples, ExampleDocument, ::testing::ValuesIn(ExampleDocuments(false)),
                         [](const auto& example) { return TestNameOf(example.param); });

} // namespace

} // namespace karmp::tool

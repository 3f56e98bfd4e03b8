// Computes the first instant of the seven-body mechanism from its document, with nothing but what
// the document says, and compares it with the published one.
#include "ExampleWorld.h"
#include "KARMPDocuments.h"
#include "KARMPEntities.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace karmp::tool {

namespace {

/// A square system of linear equations, solved by elimination with pivots.
class LinearSystem
{
public:
    explicit LinearSystem(std::size_t size) : m_rows(size, std::vector<double>(size + 1)) {}

    double& Coefficient(std::size_t row, std::size_t column) { return m_rows[row][column]; }
    double& RightSide(std::size_t row) { return m_rows[row].back(); }

    std::vector<double> Solve()
    {
        const std::size_t size = m_rows.size();
        for (std::size_t column = 0; column < size; ++column) {
            Pivot(column);
            for (std::size_t row = 0; row < size; ++row)
                Eliminate(row, column);
        }
        std::vector<double> solution(size);
        for (std::size_t row = 0; row < size; ++row)
            solution[row] = m_rows[row].back() / m_rows[row][row];
        return solution;
    }

private:
    void Pivot(std::size_t column)
    {
        const auto first = m_rows.begin() + static_cast<std::ptrdiff_t>(column);
        const auto larger = [column](const auto& a, const auto& b) {
            return std::abs(a[column]) < std::abs(b[column]);
        };
        std::iter_swap(first, std::max_element(first, m_rows.end(), larger));
    }

    void Eliminate(std::size_t row, std::size_t column)
    {
        if (row == column)
            return;
        const double factor = m_rows[row][column] / m_rows[column][column];
        for (std::size_t i = column; i <= m_rows.size(); ++i)
            m_rows[row][i] -= factor * m_rows[column][i];
    }

    std::vector<std::vector<double>> m_rows; // each with its right side behind the coefficients
};

/// The equations of motion of a planar mechanism of revolute joints at rest: the accelerations of
/// the centres and the rotations of the moving bodies, then the forces in the joints.
class PlanarMotion
{
public:
    explicit PlanarMotion(const KARMPWorld& world)
        : m_world(world),
          m_bodies(MovingBodies(world)),
          m_size(3 * m_bodies.size()),
          m_system(m_size + 2 * static_cast<std::size_t>(world.Count<KARMPJoint>()))
    {
        AddBodies();
        AddJoints();
        AddSprings();
        AddJointForces();
        m_solution = m_system.Solve();
    }

    double RotationOf(const std::wstring& name) const
    {
        for (const auto& [body, column] : m_bodies)
            if (body->getEntityName() == name)
                return m_solution[column + 2];
        return std::nan("");
    }

    /// The force with which a joint pushes its parent; its opposite pushes the child.
    std::array<double, 2> ForceIn(const std::wstring& joint) const
    {
        const auto row = m_joints.at(joint);
        return {m_solution[row], m_solution[row + 1]};
    }

private:
    using Bodies = std::map<const KARMPBody*, std::size_t>; // with the first of three columns

    static Bodies MovingBodies(const KARMPWorld& world)
    {
        Bodies bodies;
        ForEach<KARMPBody>(world, [&](const QOBSharedHandle<KARMPBody>& body) {
            if (!body->IsFixed())
                bodies.emplace(body.operator->(), 3 * bodies.size());
        });
        return bodies;
    }

    static KARMathPoint CenterOf(const KARMPBody& body)
    {
        KARMathPoint center;
        body.GetCenterOfGravity(center);
        return PositionOf(body) * center;
    }

    void AddBodies()
    {
        for (const auto& [body, column] : m_bodies) {
            KARMath3x3Matrix inertia;
            double mass = 0.0;
            body->GetMass(mass);
            body->GetInertiaMatrix(inertia);
            m_system.Coefficient(column, column) = mass;
            m_system.Coefficient(column + 1, column + 1) = mass;
            m_system.Coefficient(column + 2, column + 2) = inertia(2, 2);
        }
    }

    /// Adds to the force and the torque on a body.
    void Push(const KARMPBody& body, const KARMathPoint& point, const KARMathVector& force,
              double torque = 0.0)
    {
        const auto found = m_bodies.find(&body);
        if (found == m_bodies.end())
            return;
        m_system.RightSide(found->second) += force.GetX();
        m_system.RightSide(found->second + 1) += force.GetY();
        m_system.RightSide(found->second + 2) +=
            torque + (point - CenterOf(body)).Cross(force).GetZ();
    }

    /// Where a geometry stands, and on which body.
    template <class Linked>
    static std::pair<QOBSharedHandle<KARMPBody>, KARMathPoint> PointOf(const Linked& linked,
                                                                       int index)
    {
        QOBSharedHandle<KARMPGeometry> geometry;
        QOBSharedHandle<KARMPBody> body;
        linked.GetLinkedGeometry(index, geometry);
        geometry->GetBody(body);
        KARMathPoint point;
        if (const auto* given = dynamic_cast<const KARMPPoint*>(geometry.operator->())) {
            given->GetPoint(point);
        } else {
            KARMathAxis axis;
            QOBSharedHandle<KARMPAxisSystem>(geometry)->GetAxisSystem(axis);
            point = axis.GetOrigin();
        }
        return {body, PositionOf(*body) * point};
    }

    /// The two points of a joint have one acceleration; its force acts on both.
    void AddJoints()
    {
        std::size_t row = m_size;
        ForEach<KARMPJoint>(m_world, [&](const QOBSharedHandle<KARMPJoint>& joint) {
            QOBSharedHandle<KARMPConstraint> constraint;
            joint->GetConstraint(0, constraint);
            for (int side = 0; side < 2; ++side) {
                const auto [body, point] = PointOf(*constraint, side);
                const double sign = side == 0 ? 1.0 : -1.0;
                const auto found = m_bodies.find(body.operator->());
                if (found == m_bodies.end())
                    continue;
                const KARMathVector arm = point - CenterOf(*body);
                Couple(row, found->second, sign);
                Couple(row, found->second + 2, -sign * arm.GetY());
                Couple(row + 1, found->second + 1, sign);
                Couple(row + 1, found->second + 2, sign * arm.GetX());
            }
            m_joints[joint->getEntityName()] = row;
            row += 2;
        });
    }

    void Couple(std::size_t row, std::size_t column, double coefficient)
    {
        m_system.Coefficient(row, column) = coefficient;
        m_system.Coefficient(column, row) = -coefficient;
    }

    void AddSprings()
    {
        ForEach<KARMPConnector>(
            m_world,
            [&](const QOBSharedHandle<KARMPConnector>& connector) {
                const auto& spring = dynamic_cast<const KARMPLinearSpring&>(*connector);
                const auto [first, from] = PointOf(*connector, 0);
                const auto [second, to] = PointOf(*connector, 1);
                double stiffness = 0.0;
                double restLength = 0.0;
                spring.GetStiffness(stiffness);
                spring.GetRestLength(restLength);
                const double length = (to - from).Norm();
                const KARMathVector pull =
                    (to - from) * (stiffness * (length - restLength) / length);
                Push(*first, from, pull);
                Push(*second, to, -pull);
            });
    }

    void AddJointForces()
    {
        ForEach<KARMPActuator>(
            m_world,
            [&](const QOBSharedHandle<KARMPActuator>& actuator) {
                const auto& drive = dynamic_cast<const KARMPJointForceActuator&>(*actuator);
                QOBSharedHandle<KARMPJoint> joint;
                QOBSharedHandle<KARMPValue> torque;
                QOBSharedHandle<KARMPBody> parent;
                QOBSharedHandle<KARMPBody> child;
                int index = 0;
                double number = 0.0;
                drive.GetJoint(joint);
                drive.GetForce(torque);
                drive.GetIndexDOF(index);
                EXPECT_EQ(index, 5) << "a torque about z";
                QOBSharedHandle<KARMPConstant>(torque)->GetValue(number);
                joint->GetLinkedBody(0, parent);
                joint->GetLinkedBody(1, child);
                Push(*parent, CenterOf(*parent), {}, -number);
                Push(*child, CenterOf(*child), {}, number);
            });
    }

    const KARMPWorld& m_world;
    Bodies m_bodies;
    std::size_t m_size;
    LinearSystem m_system;
    std::map<std::wstring, std::size_t> m_joints; // with the first of two rows
    std::vector<double> m_solution;
};

// Hairer and Wanner, Solving Ordinary Differential Equations II, section VII.7: the second
// derivatives of the angles at t = 0 and the first two multipliers, the force at E in the first
// loop.
TEST(SevenBody, StartsWithThePublishedAccelerationsAndForces)
{
    const auto loaded = documents::LoadFile(KARMP_EXAMPLE_DOCUMENTS "/seven-body.xml");
    ASSERT_TRUE(loaded.world);
    const PlanarMotion motion(*loaded.world);
    const double beta = motion.RotationOf(L"K1");
    EXPECT_NEAR(beta, 14222.4439199541138706, 1e-4);
    EXPECT_NEAR(motion.RotationOf(L"K2") - beta, -10666.8329399655854029, 1e-4);
    for (const wchar_t* still : {L"K3", L"K4", L"K5", L"K6", L"K7"})
        EXPECT_NEAR(motion.RotationOf(still), 0.0, 1e-4);
    const auto force = motion.ForceIn(L"Revolute.E2");
    EXPECT_NEAR(force[0], 98.5668703962410896, 1e-6);
    EXPECT_NEAR(force[1], -6.1226883442556627, 1e-6);
}

} // namespace

} // namespace karmp::tool

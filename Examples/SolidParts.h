#pragma once

#include "KAR3DBagRep.h"
#include "KAR3DMeshRep.h"
#include "KARMP3DRep.h"
#include "MechanismBuilder.h"

#include <array>
#include <cmath>
#include <numbers>
#include <optional>
#include <vector>

/// A solid piece of a body, a box or a cylinder along an axis of the body, with lengths in m: what
/// it weighs, and its mesh.
class SolidPart
{
public:
    /// A box with its centre and its three edges.
    static SolidPart Block(const KARMathPoint& center, const KARMathVector& edges,
                           const KARColour& colour)
    {
        return {center, edges, std::nullopt, colour};
    }
    /// A cylinder along the body's axis of an index: 0 is x.
    static SolidPart Drum(const KARMathPoint& center, int axis, double radius, double length,
                          const KARColour& colour)
    {
        std::array<double, 3> edges{2.0 * radius, 2.0 * radius, 2.0 * radius};
        edges[static_cast<std::size_t>(axis)] = length;
        return {center, {edges[0], edges[1], edges[2]}, axis, colour};
    }

    /// Its mass properties at a density in kg/m3. A drum weighs what a round one does.
    MassProperties Mass(double density) const
    {
        const double box = density * m_edges.GetX() * m_edges.GetY() * m_edges.GetZ();
        if (!m_axis)
            return Box(box, m_center, m_edges);
        const double mass = box * std::numbers::pi / 4.0;
        const double length = Edge(*m_axis);
        const double radius = Edge((*m_axis + 1) % 3) / 2.0;
        MassProperties drum = Cylinder(mass, m_center, radius, length);
        const double across = drum.inertia(0, 0);
        const double along = drum.inertia(2, 2);
        drum.inertia = Diagonal(*m_axis == 0 ? along : across, *m_axis == 1 ? along : across,
                                *m_axis == 2 ? along : across);
        return drum;
    }

    /// Its mesh, which is the caller's.
    KAR3DRep* Mesh() const
    {
        KAR3DRep* const mesh = m_axis ? DrumMesh() : BlockMesh();
        mesh->SetColour(m_colour);
        return mesh;
    }

private:
    static constexpr int Sides = 36; // of a drum in the mesh

    SolidPart(const KARMathPoint& center, const KARMathVector& edges, std::optional<int> axis,
              const KARColour& colour)
        : m_center(center), m_edges(edges), m_axis(axis), m_colour(colour)
    {}

    double Edge(int axis) const
    {
        return axis == 0 ? m_edges.GetX() : axis == 1 ? m_edges.GetY() : m_edges.GetZ();
    }

    // Meshes keep all digits: rounded to a millionth they are the same on every machine.
    static double Rounded(double number) { return std::round(1e6 * number) / 1e6; }

    // A corner at shares of the half edges.
    KARMathPoint Corner(double x, double y, double z) const
    {
        return {Rounded(m_center.GetX() + x * m_edges.GetX() / 2.0),
                Rounded(m_center.GetY() + y * m_edges.GetY() / 2.0),
                Rounded(m_center.GetZ() + z * m_edges.GetZ() / 2.0)};
    }

    KAR3DRep* BlockMesh() const
    {
        std::vector<KARMathPoint> corners;
        for (const double z : {-1.0, 1.0})
            for (const double y : {-1.0, 1.0})
                for (const double x : {-1.0, 1.0})
                    corners.push_back(Corner(x, y, z));
        return KAR3DMeshRep::CreateRep(corners, {{0, 2, 3},
                                                 {0, 3, 1},
                                                 {4, 5, 7},
                                                 {4, 7, 6},
                                                 {0, 1, 5},
                                                 {0, 5, 4},
                                                 {2, 6, 7},
                                                 {2, 7, 3},
                                                 {0, 4, 6},
                                                 {0, 6, 2},
                                                 {1, 3, 7},
                                                 {1, 7, 5}});
    }

    // A vector from its share along the drum's axis and the shares across.
    std::array<double, 3> Turned(double along, double first, double second) const
    {
        std::array<double, 3> shares{};
        const auto axis = static_cast<std::size_t>(*m_axis);
        shares[axis] = along;
        shares[(axis + 1) % 3] = Rounded(first);
        shares[(axis + 2) % 3] = Rounded(second);
        return shares;
    }

    // A ring of corners with normals that point away from the axis, or along it at the ends.
    void AddRing(double end, bool isCap, std::vector<KARMathPoint>& corners,
                 std::vector<KARMathVector>& normals) const
    {
        for (int side = 0; side < Sides; ++side) {
            const double angle = 2.0 * std::numbers::pi * side / Sides;
            const double c = std::cos(angle);
            const double s = std::sin(angle);
            const auto corner = Turned(end, c, s);
            const auto normal = isCap ? Turned(end, 0.0, 0.0) : Turned(0.0, c, s);
            corners.push_back(Corner(corner[0], corner[1], corner[2]));
            normals.emplace_back(normal[0], normal[1], normal[2]);
        }
    }

    KAR3DRep* DrumMesh() const
    {
        std::vector<KARMathPoint> corners;
        std::vector<KARMathVector> normals;
        std::vector<KARTriangle> triangles;
        for (const bool isCap : {false, true})
            for (const double end : {-1.0, 1.0})
                AddRing(end, isCap, corners, normals);
        constexpr std::uint32_t sides = Sides;
        for (std::uint32_t side = 0; side < sides; ++side) {
            const std::uint32_t next = (side + 1) % sides;
            triangles.push_back({side, next, sides + next});
            triangles.push_back({side, sides + next, sides + side});
            if (side < 2)
                continue;
            triangles.push_back({2 * sides, 2 * sides + side, 2 * sides + side - 1});
            triangles.push_back({3 * sides, 3 * sides + side - 1, 3 * sides + side});
        }
        return KAR3DMeshRep::CreateRep(corners, triangles, normals);
    }

    KARMathPoint m_center;
    KARMathVector m_edges; // of the box around it
    std::optional<int> m_axis;
    KARColour m_colour;
};

/// Gives a body a representation of the parts.
inline void AddMeshes(MechanismBuilder& mechanism, const QOBSharedHandle<KARMPBody>& body,
                      const std::vector<SolidPart>& parts)
{
    const std::wstring name = body->getEntityName() + L".Shape";
    const auto shape = KARMP3DRep::create(name);
    mechanism.File<KARMPShape>(shape, name);
    KAR3DBagRep* const bag = KAR3DBagRep::CreateRep();
    shape->Set3DRep(bag);
    for (const SolidPart& part : parts)
        bag->AddChild(part.Mesh());
    shape->LinkToBody(body);
    body->LinkToShape(shape);
}

/// Gives a body the mass of the parts at a density in kg/m3.
inline void SetMass(KARMPBody& body, const std::vector<SolidPart>& parts, double density)
{
    MassProperties whole;
    for (const SolidPart& part : parts)
        whole = &part == parts.data() ? part.Mass(density) : Together(whole, part.Mass(density));
    SetMass(body, whole);
}

#pragma once

#include "KAR3DBagRep.h"
#include "KAR3DMeshRep.h"
#include "KARMP3DRep.h"
#include "KARMPEntities.h"
#include "KARMPModel.h"

#include <array>
#include <cmath>
#include <numbers>
#include <vector>

/// A solid piece of a body, a box or a cylinder along an axis of the body, with lengths in m.
struct SolidPart
{
    using Triple = std::array<double, 3>;

    Triple center;
    Triple edges; // of the box around it
    int axis;     // of a cylinder, 0 is x; -1 for a box
    KARColour colour;
};

inline SolidPart Drum(const SolidPart::Triple& center, int axis, double radius, double length,
                      const KARColour& colour)
{
    SolidPart drum{center, {2.0 * radius, 2.0 * radius, 2.0 * radius}, axis, colour};
    drum.edges[static_cast<std::size_t>(axis)] = length;
    return drum;
}

/// What a part weighs at a density in kg/m3. A drum weighs what a round one does.
inline karmp::model::BodyOptions MassOf(const SolidPart& part, double density)
{
    const auto [x, y, z] = part.edges;
    const KARMathPoint center(part.center[0], part.center[1], part.center[2]);
    const double box = density * x * y * z;
    if (part.axis < 0)
        return karmp::model::Box(box, {x, y, z}, center);
    const auto axis = static_cast<std::size_t>(part.axis);
    auto drum = karmp::model::Cylinder(box * std::numbers::pi / 4.0,
                                       part.edges[(axis + 1) % 3] / 2.0, part.edges[axis], center);
    const double across = (*drum.inertia)(0, 0);
    SolidPart::Triple moments{across, across, across};
    moments[axis] = (*drum.inertia)(2, 2);
    drum.inertia =
        KARMath3x3Matrix({moments[0], 0.0, 0.0}, {0.0, moments[1], 0.0}, {0.0, 0.0, moments[2]});
    return drum;
}

// Meshes keep all digits: rounded to a millionth they are the same on every machine.
inline double Rounded(double number)
{
    return std::round(1e6 * number) / 1e6;
}

// The corner of a part at shares of its half edges.
inline KARMathPoint CornerOf(const SolidPart& part, const SolidPart::Triple& shares)
{
    SolidPart::Triple corner{};
    for (std::size_t i = 0; i < 3; ++i)
        corner[i] = Rounded(part.center[i] + shares[i] * part.edges[i] / 2.0);
    return {corner[0], corner[1], corner[2]};
}

inline KAR3DRep* BlockMesh(const SolidPart& part)
{
    std::vector<KARMathPoint> corners;
    for (const double z : {-1.0, 1.0})
        for (const double y : {-1.0, 1.0})
            for (const double x : {-1.0, 1.0})
                corners.push_back(CornerOf(part, {x, y, z}));
    constexpr const char* Faces = "023031457476015054267273046062137175";
    std::vector<KARTriangle> triangles;
    for (const char* face = Faces; *face != '\0'; face += 3)
        triangles.push_back({std::uint32_t(face[0] - '0'), std::uint32_t(face[1] - '0'),
                             std::uint32_t(face[2] - '0')});
    return KAR3DMeshRep::CreateRep(corners, triangles);
}

// Two rings of corners with normals across the axis, and two with normals along it.
inline KAR3DRep* DrumMesh(const SolidPart& part)
{
    constexpr std::uint32_t Sides = 36;
    std::vector<KARMathPoint> corners;
    std::vector<KARMathVector> normals;
    std::vector<KARTriangle> triangles;
    const auto turned = [&part](double along, double first, double second) {
        const auto axis = static_cast<std::size_t>(part.axis);
        SolidPart::Triple shares{};
        shares[axis] = along;
        shares[(axis + 1) % 3] = Rounded(first);
        shares[(axis + 2) % 3] = Rounded(second);
        return shares;
    };
    for (const bool isCap : {false, true})
        for (const double end : {-1.0, 1.0})
            for (std::uint32_t side = 0; side < Sides; ++side) {
                const double angle = 2.0 * std::numbers::pi * side / Sides;
                const double c = std::cos(angle), s = std::sin(angle);
                const auto [x, y, z] = isCap ? turned(end, 0.0, 0.0) : turned(0.0, c, s);
                corners.push_back(CornerOf(part, turned(end, c, s)));
                normals.emplace_back(x, y, z);
            }
    for (std::uint32_t side = 0; side < Sides; ++side) {
        const std::uint32_t next = (side + 1) % Sides;
        triangles.push_back({side, next, Sides + next});
        triangles.push_back({side, Sides + next, Sides + side});
        if (side < 2)
            continue;
        triangles.push_back({2 * Sides, 2 * Sides + side, 2 * Sides + side - 1});
        triangles.push_back({3 * Sides, 3 * Sides + side - 1, 3 * Sides + side});
    }
    return KAR3DMeshRep::CreateRep(corners, triangles, normals);
}

/// Gives a body a representation of the parts.
inline void AddMeshes(karmp::model::Model& model, const karmp::model::Ref<KARMPBody>& body,
                      const std::vector<SolidPart>& parts)
{
    const auto shape = model.Add<KARMP3DRep>(kar::ToUtf8(body->getEntityName()) + ".Shape");
    KAR3DBagRep* const bag = KAR3DBagRep::CreateRep();
    shape->Set3DRep(bag);
    for (const SolidPart& part : parts) {
        KAR3DRep* const mesh = part.axis < 0 ? BlockMesh(part) : DrumMesh(part);
        mesh->SetColour(part.colour);
        bag->AddChild(mesh);
    }
    model.Link(shape, body);
}

// What solids weigh, and their meshes.
#include "KARMPModelSolids.h"

#include "KAR3DBagRep.h"
#include "KAR3DMeshRep.h"
#include "KAR3DRepWalk.h"
#include "KARMP3DRep.h"
#include "KARMPBody.h"
#include "KARMPModel.h"
#include "KARMPModelCore.h"
#include "KARMPModelPlacing.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace karmp::model {

namespace {

using Triple = std::array<double, 3>;

// A negative axis is that of a box, a larger one is refused by who takes the solid.
bool HasAxis(const Solid& solid)
{
    return solid.axis >= 0 && solid.axis <= 2;
}

BodyOptions MassOf(const Solid& solid, double density)
{
    const auto [x, y, z] = solid.edges;
    const KARMathPoint center(solid.center[0], solid.center[1], solid.center[2]);
    const double box = density * x * y * z;
    if (solid.axis < 0)
        return Box(box, {x, y, z}, center);
    if (!HasAxis(solid))
        return {.mass = std::numeric_limits<double>::quiet_NaN()};
    // Its section may be an ellipse: each half axis counts about the other one and the axis.
    const auto axis = static_cast<std::size_t>(solid.axis);
    const std::size_t first = (axis + 1) % 3;
    const std::size_t second = (axis + 2) % 3;
    const auto circular = [&](std::size_t across) {
        return Cylinder(box * std::numbers::pi / 4.0, solid.edges[across] / 2.0, solid.edges[axis],
                        center);
    };
    BodyOptions drum = circular(first);
    const BodyOptions other = circular(second);
    Triple moments{};
    moments[axis] = ((*drum.inertia)(2, 2) + (*other.inertia)(2, 2)) / 2.0;
    moments[first] = (*other.inertia)(0, 0);
    moments[second] = (*drum.inertia)(0, 0);
    drum.inertia =
        KARMath3x3Matrix({moments[0], 0.0, 0.0}, {0.0, moments[1], 0.0}, {0.0, 0.0, moments[2]});
    return drum;
}

// Meshes keep all digits: rounded to a millionth they are the same on every machine.
double Rounded(double number)
{
    return std::round(1e6 * number) / 1e6;
}

// The corner of a solid at shares of its half edges.
KARMathPoint CornerOf(const Solid& solid, const Triple& shares)
{
    Triple corner{};
    for (std::size_t i = 0; i < corner.size(); ++i)
        corner[i] = Rounded(solid.center[i] + shares[i] * solid.edges[i] / 2.0);
    return {corner[0], corner[1], corner[2]};
}

KAR3DRep* BoxMesh(const Solid& solid)
{
    std::vector<KARMathPoint> corners;
    for (const double z : {-1.0, 1.0})
        for (const double y : {-1.0, 1.0})
            for (const double x : {-1.0, 1.0})
                corners.push_back(CornerOf(solid, {x, y, z}));
    // Three corners of each triangle.
    constexpr const char* Faces = "023031457476015054267273046062137175";
    std::vector<KARTriangle> triangles;
    for (const char* face = Faces; *face != '\0'; face += 3)
        triangles.push_back({std::uint32_t(face[0] - '0'), std::uint32_t(face[1] - '0'),
                             std::uint32_t(face[2] - '0')});
    return KAR3DMeshRep::CreateRep(corners, triangles);
}

constexpr std::uint32_t Sides = 36;

// Two rings of vertices whose normals are across the axis, and two along it for the caps.
std::vector<KARTriangle> DrumTriangles()
{
    std::vector<KARTriangle> triangles;
    for (std::uint32_t side = 0; side < Sides; ++side) {
        const std::uint32_t next = (side + 1) % Sides;
        triangles.push_back({side, next, Sides + next});
        triangles.push_back({side, Sides + next, Sides + side});
        if (side < 2)
            continue;
        triangles.push_back({2 * Sides, 2 * Sides + side, 2 * Sides + side - 1});
        triangles.push_back({3 * Sides, 3 * Sides + side - 1, 3 * Sides + side});
    }
    return triangles;
}

KAR3DRep* DrumMesh(const Solid& solid)
{
    const auto axis = static_cast<std::size_t>(solid.axis);
    const auto turned = [axis](double along, double first, double second) {
        Triple shares{};
        shares[axis] = along;
        shares[(axis + 1) % 3] = Rounded(first);
        shares[(axis + 2) % 3] = Rounded(second);
        return shares;
    };
    std::vector<KARMathPoint> corners;
    std::vector<KARMathVector> normals;
    for (const bool isCap : {false, true})
        for (const double end : {-1.0, 1.0})
            for (std::uint32_t side = 0; side < Sides; ++side) {
                const double angle = 2.0 * std::numbers::pi * side / Sides;
                const double c = std::cos(angle);
                const double s = std::sin(angle);
                const auto [x, y, z] = isCap ? turned(end, 0.0, 0.0) : turned(0.0, c, s);
                corners.push_back(CornerOf(solid, turned(end, c, s)));
                normals.emplace_back(x, y, z);
            }
    return KAR3DMeshRep::CreateRep(corners, DrumTriangles(), normals);
}

bool AddMesh(Edit& edit, KAR3DBagRep& bag, const Solid& solid)
{
    if (!HasAxis(solid) && solid.axis >= 0)
        return edit.Fail("a solid has an axis that is none of 0, 1 and 2");
    if (*std::min_element(solid.edges.begin(), solid.edges.end()) < 0.0)
        return edit.Fail("a solid has an edge below 0");
    KAR3DRepOwner<KAR3DRep> mesh(solid.axis < 0 ? BoxMesh(solid) : DrumMesh(solid));
    if (mesh == nullptr || KARFailed(mesh->SetColour(solid.colour)) ||
        KARFailed(bag.AddChild(mesh.get())))
        return edit.Fail("a solid has a place, an edge or a colour that no mesh can have");
    static_cast<void>(mesh.release());
    return true;
}

} // namespace

Solid Drum(const Triple& center, int axis, double radius, double length, const KARColour& colour)
{
    Solid drum{center, {2.0 * radius, 2.0 * radius, 2.0 * radius}, axis, colour};
    if (HasAxis(drum))
        drum.edges[static_cast<std::size_t>(axis)] = length;
    return drum;
}

BodyOptions MassOf(std::span<const Solid> solids, double density)
{
    BodyOptions all;
    for (const Solid& solid : solids)
        all = &solid == solids.data() ? MassOf(solid, density)
                                      : Together(all, MassOf(solid, density));
    return all;
}

Ref<KARMP3DRep> Model::Shape(std::string_view identifier, const Ref<KARMPBody>& body,
                             std::span<const Solid> solids, Where where)
{
    return Ref(m_core->Make<KARMP3DRep>(
        where,
        [&](Edit& edit, auto& shape) {
            const auto name = NameOn(edit, body.Handle(), identifier);
            if (name && solids.empty())
                return edit.Fail("the shape \"" + std::string(identifier) + "\" has no solid");
            shape = name ? edit.Create<KARMP3DRep>(*name) : nullptr;
            if (!shape)
                return false;
            KAR3DRepOwner<KAR3DBagRep> bag(KAR3DBagRep::CreateRep());
            for (const Solid& solid : solids)
                if (!AddMesh(edit, *bag, solid))
                    return false;
            const KARStatus status = shape->Set3DRep(bag.get());
            if (shape->Get3DRep() == bag.get())
                static_cast<void>(bag.release()); // it is the shape's
            return edit.Check(status, "the meshes", *shape) && edit.Link(shape, body.Handle());
        }));
}

std::size_t TriangleCountOf(const Model& model)
{
    std::size_t count = 0;
    for (const auto& shape : model.All<KARMP3DRep>())
        if (const auto* const rep = shape->Get3DRep())
            KARForEach3DRep(*rep, [&count](const KAR3DRepPlace& place) {
                if (const auto* const mesh = dynamic_cast<const KAR3DMeshRep*>(place.rep))
                    count += mesh->GetTriangles().size();
            });
    return count;
}

} // namespace karmp::model

#include "ViewBodies.h"

#include "ForEach.h"
#include "KARMP3DRep.h"
#include "KARMPBody2D.h"
#include "KARMPGeometry.h"
#include "KARMPShape2D.h"
#include "MechanismParts.h"
#include "ViewGeometry.h"
#include "ViewRods.h"
#include "ViewShapes.h"

#include <algorithm>

namespace karmp::tool {

namespace {

// What holds the joints of a body: its axis systems and points, or with none of them what else has
// a middle. Planes lie anywhere.
void AddAnchors(ViewBody& drawn)
{
    const auto add = [&drawn](auto isAnchor) {
        for (const ViewDrawing& drawing : drawn.drawings)
            if (isAnchor(drawing.kind))
                drawn.anchors.push_back(FrameOf(drawing).GetOrigin());
    };
    add([](ViewKind kind) {
        return kind == ViewKind::Axes || kind == ViewKind::Point || kind == ViewKind::Sphere;
    });
    if (drawn.isGround)
        return;
    if (drawn.anchors.empty())
        add([](ViewKind kind) {
            return kind == ViewKind::Line || kind == ViewKind::Ellipse ||
                   kind == ViewKind::Cylinder || kind == ViewKind::Cone || kind == ViewKind::Torus;
        });
    if (drawn.anchors.empty())
        drawn.anchors.push_back(drawn.center.value_or(KARMathPoint()));
}

double SymbolSize(double extent, std::vector<double>& lengths)
{
    double size = 0.035 * extent;
    if (!lengths.empty()) {
        const auto middle = lengths.begin() + static_cast<std::ptrdiff_t>(lengths.size() / 2);
        std::nth_element(lengths.begin(), middle, lengths.end());
        size = std::min(size, 0.3 * *middle);
    }
    return size > 0.0 ? size : 0.1;
}

} // namespace

BodyDrawer::BodyDrawer(const KARMPWorld& world, EntityIndex& entities, ViewScene& scene)
    : m_entities(entities), m_scene(scene)
{
    QOBSharedHandle<KARMPBody> global;
    world.GetGlobalBody(global);
    ForEach<KARMPBody>(
        world, [&](const KARMPBody& body) { Add(body, &body == global.get()); });
    ForEach<KARMPGeometry>(
        world, [this](const KARMPGeometry& geometry) { Add(geometry); });
    ForEach<KARMPShape>(world, [this](const KARMPShape& shape) { Add(shape); });
    for (ViewBody& body : m_scene.bodies)
        AddAnchors(body);
    AddRods();
}

const ViewBody* BodyDrawer::Find(const KARMPBody* body) const
{
    const auto found = m_bodies.find(body);
    return found == m_bodies.end() ? nullptr : &m_scene.bodies[found->second];
}

const ViewDrawing* BodyDrawer::Find(const KARMPGeometry& geometry) const
{
    const auto found = m_drawings.find(&geometry);
    if (found == m_drawings.end())
        return nullptr;
    return &m_scene.bodies[found->second.first].drawings[found->second.second];
}

void BodyDrawer::Add(const KARMPBody& body, bool isGlobal)
{
    ViewBody drawn;
    drawn.position = PositionOf(body);
    if (!IsDrawable(drawn.position)) {
        m_entities.Note(body, "Not drawn: its position is not finite, or too far away.");
        return;
    }
    const bool isPlanar = dynamic_cast<const KARMPBody2D*>(&body) != nullptr;
    drawn.entity = m_entities.NumberOf(body);
    drawn.isFixed = IsFixed(body);
    drawn.isGround = isGlobal || (isPlanar && drawn.isFixed);
    if (MassOf(body) > 0.0 && IsDrawable(CenterInBody(body)))
        drawn.center = CenterInBody(body);
    m_bodies.emplace(&body, m_scene.bodies.size());
    m_scene.bodies.push_back(std::move(drawn));
}

// A geometry goes with its body.
void BodyDrawer::Add(const KARMPGeometry& geometry)
{
    const auto carrier = m_bodies.find(CarrierOf(geometry).get());
    if (carrier == m_bodies.end())
        return;
    auto drawing = DrawGeometry(geometry);
    if (!drawing) {
        m_entities.Note(geometry,
                        "Not drawn: it is degenerate or not finite, or has no known form.");
        return;
    }
    drawing->entity = m_entities.NumberOf(geometry);
    std::vector<ViewDrawing>& drawings = m_scene.bodies[carrier->second].drawings;
    m_drawings.emplace(&geometry, std::pair(carrier->second, drawings.size()));
    drawings.push_back(std::move(*drawing));
}

// Bodies may share a shape.
void BodyDrawer::Add(const KARMPShape& shape)
{
    ViewShape drawn{m_entities.NumberOf(shape), DrawShape(shape)};
    if (drawn.pieces.empty()) {
        m_entities.Note(shape, "Not drawn: it has nothing that can be.");
        return;
    }
    const int number = static_cast<int>(m_scene.shapes.size());
    for (const auto& body : BodiesOf(shape))
        if (const auto found = m_bodies.find(body.get()); found != m_bodies.end())
            m_scene.bodies[found->second].shapes.push_back(number);
    m_boxes.push_back(BoxAround(drawn.pieces));
    m_scene.shapes.push_back(std::move(drawn));
}

// The length across all that is drawn at a place.
double BodyDrawer::Extent() const
{
    ViewBox whole;
    for (const ViewBody& body : m_scene.bodies) {
        for (const KARMathPoint& anchor : body.anchors)
            whole.Add(body.position * anchor);
        for (const int shape : body.shapes) {
            const ViewBox& box = m_boxes[static_cast<std::size_t>(shape)];
            whole.Add(body.position * box.Low());
            whole.Add(body.position * box.High());
        }
    }
    return whole.Diagonal();
}

// A body of one anchor has its centre of gravity as another one. The symbols of joints suit the
// rods and the whole.
void BodyDrawer::AddRods()
{
    const double extent = Extent();
    const double tolerance = 1e-6 * extent;
    std::vector<double> lengths;
    for (ViewBody& body : m_scene.bodies) {
        body.anchors = WithoutDoubles(body.anchors, tolerance);
        if (body.isGround)
            continue;
        if (body.anchors.size() == 1 && body.center) {
            body.anchors.push_back(*body.center);
            body.anchors = WithoutDoubles(body.anchors, tolerance);
        }
        body.rods = RodsBetween(body.anchors);
        for (const ViewRod& rod : body.rods)
            lengths.push_back((rod.second - rod.first).Norm());
    }
    m_scene.symbolSize = SymbolSize(extent, lengths);
}

} // namespace karmp::tool

#include "ViewScene.h"

#include "EntityText.h"
#include "KARMP3DRep.h"
#include "KARMPBody.h"
#include "KARMPConnector.h"
#include "KARMPCoupling.h"
#include "KARMPFamilies.h"
#include "KARMPGeometry.h"
#include "KARMPItems.h"
#include "KARMPJoint.h"
#include "KARMPWorld.h"
#include "KARTextConversion.h"
#include "ViewGeometry.h"
#include "ViewJoints.h"
#include "ViewRods.h"
#include "ViewShapes.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace karmp::tool {

namespace {

/// Numbers texts in the order in which they come.
class Numbering
{
public:
    explicit Numbering(std::vector<std::string>& texts) : m_texts(texts) {}

    int NumberOf(const std::string& text)
    {
        const auto [found, isNew] = m_numbers.try_emplace(text, static_cast<int>(m_texts.size()));
        if (isNew)
            m_texts.push_back(text);
        return found->second;
    }

private:
    std::vector<std::string>& m_texts;
    std::unordered_map<std::string, int> m_numbers;
};

// Where a body stands in space.
// A planar body would stand in the plane of its sketch: that plane's axis system after its planar
// position.
KARMathTransformation PlacementOf(const KARMPBody& body)
{
    KARMathTransformation position;
    body.GetPosition(position);
    return position;
}

class SceneCollector
{
public:
    explicit SceneCollector(const KARMPWorld& world)
        : m_world(world), m_kinds(m_scene.kinds), m_labels(m_scene.labels)
    {}

    ViewScene Collect(std::string title)
    {
        m_scene.title = std::move(title);
        m_world.GetGravity(m_scene.gravity);
        CollectEntities();
        CollectLinks();
        DrawBodies();
        DrawLinks();
        return std::move(m_scene);
    }

private:
    template <class T, class Visit>
    void ForEach(Visit visit) const
    {
        for (int index = 0; index < m_world.Count<T>(); ++index) {
            QOBSharedHandle<T> entity;
            if (m_world.Get<T>(index, entity) == KARSuccess && entity)
                visit(*entity);
        }
    }

    int IndexOf(const KARMPEntity& entity) const
    {
        const auto found = m_indices.find(&entity);
        return found == m_indices.end() ? -1 : found->second;
    }

    ViewEntity& EntityOf(const KARMPEntity& entity)
    {
        return m_scene.entities[static_cast<std::size_t>(IndexOf(entity))];
    }

    // All lists of the world that are not empty, in the order of the document.
    void CollectEntities()
    {
        ForEachRegistryElement([this](const auto& element) {
            using T = typename std::decay_t<decltype(element)>::Type;
            const int first = static_cast<int>(m_scene.entities.size());
            for (int index = 0; index < m_world.Count<T>(); ++index) {
                QOBSharedHandle<T> entity;
                if (m_world.Get<T>(index, entity) == KARSuccess && entity)
                    AddEntity(*QOBSharedHandle<KARMPEntity>(entity));
            }
            const int count = static_cast<int>(m_scene.entities.size()) - first;
            if (count > 0)
                m_scene.families.push_back({kar::ToUtf8(element.name), count});
        });
    }

    void AddEntity(const KARMPEntity& entity)
    {
        m_indices.emplace(&entity, static_cast<int>(m_scene.entities.size()));
        m_handles.push_back(&entity);
        ViewEntity& added = m_scene.entities.emplace_back();
        added.kind = m_kinds.NumberOf(ClassOf(entity));
        added.name = kar::ToUtf8(entity.getEntityName());
        added.identifier = kar::ToUtf8(IdentifierOf(entity));
    }

    void CollectLinks()
    {
        for (std::size_t index = 0; index < m_handles.size(); ++index) {
            std::vector<ViewLinks>& links = m_scene.entities[index].links;
            ForEachTarget(*m_handles[index],
                          [&](const ItemInfo& item, const QOBSharedHandle<KARMPEntity>& target) {
                              const int to = IndexOf(*target);
                              if (to < 0)
                                  return;
                              const int label = m_labels.NumberOf(kar::ToUtf8(item.path));
                              if (links.empty() || links.back().label != label)
                                  links.push_back({label, {}});
                              links.back().targets.push_back(to);
                          });
        }
    }

    void DrawBodies()
    {
        QOBSharedHandle<KARMPBody> ground;
        m_world.GetGlobalBody(ground);
        ForEach<KARMPBody>([&](const KARMPBody& body) {
            const KARMathTransformation position = PlacementOf(body);
            if (!IsDrawable(position)) {
                EntityOf(body).note = "Not drawn: its position is not finite, or too far away.";
                return;
            }
            ViewBody drawn;
            drawn.entity = IndexOf(body);
            drawn.isFixed = body.IsFixed();
            drawn.isGround = &body == ground.get();
            drawn.position = position;
            drawn.center = CenterOf(body);
            m_bodyIndices.emplace(&body, m_scene.bodies.size());
            m_scene.bodies.push_back(std::move(drawn));
        });
        ForEach<KARMPGeometry>([this](const KARMPGeometry& geometry) { DrawGeometryOf(geometry); });
        ForEach<KARMPShape>([this](const KARMPShape& shape) { DrawShape(shape); });
        for (ViewBody& body : m_scene.bodies)
            AddAnchors(body);
        AddRods();
    }

    static std::optional<KARMathPoint> CenterOf(const KARMPBody& body)
    {
        double mass = 0.0;
        KARMathPoint center;
        body.GetMass(mass);
        body.GetCenterOfGravity(center);
        return mass > 0.0 && IsDrawable(center) ? std::optional(center) : std::nullopt;
    }

    // A geometry goes with its body. The pointers to drawings are kept until the bodies change.
    void DrawGeometryOf(const KARMPGeometry& geometry)
    {
        QOBSharedHandle<KARMPBody> body;
        geometry.GetBody(body);
        const auto carrier = m_bodyIndices.find(body.get());
        if (carrier == m_bodyIndices.end())
            return;
        auto drawing = DrawGeometry(geometry);
        if (!drawing) {
            EntityOf(geometry).note =
                "Not drawn: it is degenerate or not finite, or has no known form.";
            return;
        }
        drawing->entity = IndexOf(geometry);
        std::vector<ViewDrawing>& drawings = m_scene.bodies[carrier->second].drawings;
        m_drawings.emplace(&geometry, std::pair(carrier->second, drawings.size()));
        drawings.push_back(std::move(*drawing));
    }

    // Bodies may share a shape.
    void DrawShape(const KARMPShape& shape)
    {
        const auto* const representation = dynamic_cast<const KARMP3DRep*>(&shape);
        const KAR3DRep* const rep =
            representation != nullptr ? representation->Get3DRep() : nullptr;
        ViewShape drawn{IndexOf(shape), {}};
        if (rep != nullptr)
            drawn.pieces = DrawRepresentation(*rep);
        if (drawn.pieces.empty()) {
            EntityOf(shape).note = "Not drawn: it has nothing that can be.";
            return;
        }
        const int number = static_cast<int>(m_scene.shapes.size());
        for (int index = 0; index < shape.GetLinkedBodyCount(); ++index) {
            QOBSharedHandle<KARMPBody> body;
            shape.GetLinkedBody(index, body);
            if (const auto found = m_bodyIndices.find(body.get()); found != m_bodyIndices.end())
                m_scene.bodies[found->second].shapes.push_back(number);
        }
        m_boxes.push_back(BoxAround(drawn.pieces));
        m_scene.shapes.push_back(std::move(drawn));
    }

    static void AddAnchors(ViewBody& drawn)
    {
        for (const ViewDrawing& drawing : drawn.drawings)
            if (drawing.kind == ViewKind::Axes || drawing.kind == ViewKind::Point ||
                drawing.kind == ViewKind::Sphere)
                drawn.anchors.push_back(FrameOf(drawing).GetOrigin());
        if (drawn.anchors.empty() && !drawn.isGround)
            drawn.anchors.push_back(drawn.center.value_or(KARMathPoint()));
    }

    // The length across all that is drawn at a place.
    double Extent() const
    {
        KARMathVector low(HUGE_VAL, HUGE_VAL, HUGE_VAL);
        KARMathVector high = -low;
        const auto add = [&](const KARMathPoint& point) {
            low = {std::min(low.GetX(), point.GetX()), std::min(low.GetY(), point.GetY()),
                   std::min(low.GetZ(), point.GetZ())};
            high = {std::max(high.GetX(), point.GetX()), std::max(high.GetY(), point.GetY()),
                    std::max(high.GetZ(), point.GetZ())};
        };
        for (const ViewBody& body : m_scene.bodies) {
            for (const KARMathPoint& anchor : body.anchors)
                add(body.position * anchor);
            for (const int shape : body.shapes) {
                if (const auto& box = m_boxes[static_cast<std::size_t>(shape)]) {
                    add(body.position * box->first);
                    add(body.position * box->second);
                }
            }
        }
        return low.GetX() <= high.GetX() ? (high - low).Norm() : 0.0;
    }

    // A body of one anchor has its centre of gravity as another one. The symbols of joints suit the
    // rods and the whole.
    void AddRods()
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

    static double SymbolSize(double extent, std::vector<double>& lengths)
    {
        double size = 0.035 * extent;
        if (!lengths.empty()) {
            const auto middle = lengths.begin() + static_cast<std::ptrdiff_t>(lengths.size() / 2);
            std::nth_element(lengths.begin(), middle, lengths.end());
            size = std::min(size, 0.3 * *middle);
        }
        return size > 0.0 ? size : 0.1;
    }

    void DrawLinks()
    {
        const LinkDrawer drawer(
            [this](const KARMPBody& body) -> const ViewBody* {
                const auto found = m_bodyIndices.find(&body);
                return found == m_bodyIndices.end() ? nullptr : &m_scene.bodies[found->second];
            },
            [this](const KARMPGeometry& geometry) -> const ViewDrawing* {
                const auto found = m_drawings.find(&geometry);
                if (found == m_drawings.end())
                    return nullptr;
                return &m_scene.bodies[found->second.first].drawings[found->second.second];
            });
        ForEach<KARMPJoint>([&](const KARMPJoint& joint) {
            if (const auto* const coupling = dynamic_cast<const KARMPCoupling*>(&joint);
                coupling != nullptr && joint.getClassInfo().getName() != "KARMPScrew")
                Keep(drawer.Draw(*coupling), joint, m_scene.couplings);
            else
                Keep(drawer.Draw(joint), joint, m_scene.joints);
        });
        ForEach<KARMPConnector>([&](const KARMPConnector& connector) {
            Keep(drawer.Draw(connector), connector, m_scene.connectors);
        });
    }

    template <class Drawn>
    void Keep(std::optional<Drawn> drawn, const KARMPEntity& entity, std::vector<Drawn>& list)
    {
        if (drawn) {
            drawn->entity = IndexOf(entity);
            list.push_back(std::move(*drawn));
        } else {
            EntityOf(entity).note = "Not drawn: nothing tells where it is.";
        }
    }

    const KARMPWorld& m_world;
    ViewScene m_scene;
    Numbering m_kinds;
    Numbering m_labels;
    std::vector<std::optional<std::pair<KARMathPoint, KARMathPoint>>> m_boxes; // of the shapes
    std::vector<const KARMPEntity*> m_handles; // of all entities, in their order
    std::unordered_map<const KARMPEntity*, int> m_indices;
    std::unordered_map<const KARMPBody*, std::size_t> m_bodyIndices;
    std::unordered_map<const KARMPGeometry*, std::pair<std::size_t, std::size_t>> m_drawings;
};

} // namespace

ViewScene CollectScene(const KARMPWorld& world, std::string title)
{
    return SceneCollector(world).Collect(std::move(title));
}

} // namespace karmp::tool

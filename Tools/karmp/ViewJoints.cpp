#include "ViewJoints.h"

#include "KARMPBody.h"
#include "KARMPBushing.h"
#include "KARMPConstraint.h"
#include "KARMPCoupling.h"
#include "KARMPGeometry.h"
#include "KARMPJoint2D.h"
#include "KARMPLinearSpring.h"
#include "KARMPTorsionSpring.h"
#include "KARMPVariable.h"
#include "MechanismParts.h"
#include "ViewBodies.h"
#include "ViewGeometry.h"

#include <algorithm>
#include <array>
#include <functional>
#include <utility>

namespace karmp::tool {

namespace {

using Symbol = std::pair<std::string_view, std::string_view>; // class and symbol

constexpr std::array JointSymbols{
    Symbol{"KARMPRevolute", "revolute"},
    Symbol{"KARMPPrismatic", "prismatic"},
    Symbol{"KARMPCylindrical", "cylindrical"},
    Symbol{"KARMPSpherical", "spherical"},
    Symbol{"KARMPUniversal", "universal"},
    Symbol{"KARMPPlanar", "planar"},
    Symbol{"KARMPScrew", "screw"},
    Symbol{"KARMPRigid", "rigid"},
};

// All other kinds look alike.
std::string_view SymbolOf(const KARMPJoint& joint)
{
    for (const auto& [className, symbol] : JointSymbols)
        if (joint.getClassInfo().getName() == className)
            return symbol;
    return "joint";
}

// What a joint in the plane does follows from what it makes coincide: points or lines.
std::string_view PlanarSymbolOf(const std::vector<ViewKind>& kinds)
{
    const auto areAll = [&kinds](ViewKind kind) {
        return std::count(kinds.begin(), kinds.end(), kind) ==
               static_cast<std::ptrdiff_t>(kinds.size());
    };
    if (areAll(ViewKind::Point))
        return "revolute";
    return areAll(ViewKind::Line) ? "prismatic" : "joint";
}

std::string_view SymbolOf(const KARMPConnector& connector)
{
    if (dynamic_cast<const KARMPTorsionSpring*>(&connector) != nullptr)
        return "torsion";
    return dynamic_cast<const KARMPBushing*>(&connector) != nullptr ? "bushing" : "spring";
}

// Calls `visit` with each linked entity of a list that has a count and is asked by index.
template <class Linked, class Visit>
void ForEachLinked(int count, const std::function<void(int, QOBSharedHandle<Linked>&)>& get,
                   Visit visit)
{
    for (int index = 0; index < count; ++index) {
        QOBSharedHandle<Linked> linked;
        get(index, linked);
        if (linked)
            visit(*linked);
    }
}

// Calls `visit` with each geometry that a joint's constraints use.
template <class Visit>
void ForEachGeometry(const KARMPJoint& joint, Visit visit)
{
    for (const auto& constraint : ConstraintsOf(joint))
        ForEachLinked<KARMPGeometry>(
            constraint->GetLinkedGeometryCount(),
            [&](int index, auto& geometry) { constraint->GetLinkedGeometry(index, geometry); },
            visit);
}

// Calls `visit` with each joint, no coupling, of which a variable is a freedom.
template <class Visit>
void ForEachJointOf(const KARMPVariable& variable, Visit visit)
{
    ForEachLinked<KARMPConstraint>(
        variable.GetLinkedConstraintCount(),
        [&](int index, auto& constraint) { variable.GetLinkedConstraint(index, constraint); },
        [&](const KARMPConstraint& constraint) {
            QOBSharedHandle<KARMPJoint> joint;
            constraint.GetJoint(joint);
            if (joint && dynamic_cast<const KARMPCoupling*>(joint.get()) == nullptr)
                visit(*joint);
        });
}

ViewFrame FrameOn(const ViewBody& body, const KARMathAxis& axis)
{
    return {body.position * axis, body.isGround};
}

KARMathPoint Middle(const std::vector<KARMathPoint>& points)
{
    KARMathVector sum;
    for (const KARMathPoint& point : points)
        sum += point - KARMathPoint();
    return KARMathPoint() + sum * (1.0 / static_cast<double>(points.size()));
}

// The attachment of a linear spring; documents do not hold it.
bool HasAttachment(const KARMPConnector& connector, int side, KARMathPoint& point)
{
    const auto* const spring = dynamic_cast<const KARMPLinearSpring*>(&connector);
    if (spring == nullptr)
        return false;
    side == 0 ? spring->GetFirstAttachment(point) : spring->GetSecondAttachment(point);
    return IsDrawable(point);
}

} // namespace

// An axis system before what has a direction, and that before a point.
std::optional<LinkDrawer::Side> LinkDrawer::SideOn(const KARMPJoint& joint,
                                                   const KARMPBody& body) const
{
    const ViewDrawing* best = nullptr;
    const auto rank = [](const ViewDrawing& drawing) {
        return drawing.kind == ViewKind::Axes ? 2 : (HasDirection(drawing) ? 1 : 0);
    };
    ForEachGeometry(joint, [&](const KARMPGeometry& geometry) {
        const ViewDrawing* const drawing = m_bodies.Find(geometry);
        if (drawing != nullptr && CarrierOf(geometry).get() == &body &&
            (best == nullptr || rank(*drawing) > rank(*best)))
            best = drawing;
    });
    const ViewBody* const drawn = m_bodies.Find(&body);
    if (best == nullptr || drawn == nullptr)
        return std::nullopt;
    return Side{FrameOn(*drawn, FrameOf(*best)), best->kind};
}

// Joints whose constraints use no geometry stand halfway between their bodies.
std::optional<ViewFrame> LinkDrawer::FrameBetween(const KARMPJoint& joint) const
{
    std::vector<KARMathPoint> origins;
    for (const LinkedBody& linked : LinkedBodiesOf(joint))
        if (const ViewBody* const drawn = m_bodies.Find(linked.body))
            origins.push_back(drawn->position * KARMathPoint());
    if (origins.empty())
        return std::nullopt;
    ViewFrame frame;
    frame.axis.SetOrigin(Middle(origins));
    return frame;
}

std::optional<ViewJoint> LinkDrawer::Draw(const KARMPJoint& joint) const
{
    ViewJoint drawn;
    std::vector<ViewKind> kinds;
    std::vector<LinkedBody> bodies = LinkedBodiesOf(joint);
    std::stable_partition(bodies.begin(), bodies.end(), [](const LinkedBody& linked) {
        return linked.orientation == KARMPBodyOrientation::Out;
    });
    for (const LinkedBody& linked : bodies) {
        if (const auto side = SideOn(joint, *linked.body)) {
            drawn.frames.push_back(side->frame);
            kinds.push_back(side->kind);
        }
    }
    if (drawn.frames.empty()) {
        const auto frame = FrameBetween(joint);
        if (!frame)
            return std::nullopt;
        drawn.frames.push_back(*frame);
    }
    const bool isPlanar = dynamic_cast<const KARMPJoint2D*>(&joint) != nullptr;
    drawn.symbol = isPlanar ? PlanarSymbolOf(kinds) : SymbolOf(joint);
    if (kinds.empty())
        drawn.symbol = "joint";
    return drawn;
}

std::optional<ViewFrame> LinkDrawer::FrameAt(const KARMPConnector& connector, int side) const
{
    QOBSharedHandle<KARMPBody> body;
    QOBSharedHandle<KARMPGeometry> geometry;
    side == 0 ? connector.GetFirstBody(body) : connector.GetSecondBody(body);
    connector.GetLinkedGeometry(side, geometry);
    const ViewDrawing* const drawing = geometry ? m_bodies.Find(*geometry) : nullptr;
    if (drawing != nullptr)
        body = CarrierOf(*geometry);
    const ViewBody* const drawn = m_bodies.Find(body.get());
    if (drawn == nullptr)
        return std::nullopt;
    KARMathAxis axis;
    KARMathPoint attachment;
    if (drawing != nullptr)
        axis = FrameOf(*drawing);
    else if (HasAttachment(connector, side, attachment))
        axis.SetOrigin(attachment);
    return FrameOn(*drawn, axis);
}

std::optional<ViewConnector> LinkDrawer::Draw(const KARMPConnector& connector) const
{
    const auto from = FrameAt(connector, 0);
    const auto to = FrameAt(connector, 1);
    if (!from && !to)
        return std::nullopt;
    return ViewConnector{-1, SymbolOf(connector), from ? *from : *to, to ? *to : *from};
}

std::optional<ViewCoupling> LinkDrawer::Draw(const KARMPCoupling& coupling) const
{
    ViewCoupling drawn;
    const auto addJoint = [&](const KARMPJoint& joint) {
        if (const auto symbol = Draw(joint))
            drawn.points.push_back(symbol->frames.front().axis.GetOrigin());
    };
    for (const auto& equation : ConstraintsOf(coupling))
        ForEachLinked<KARMPVariable>(
            equation->GetLinkedVariableCount(),
            [&](int index, auto& variable) { equation->GetLinkedVariable(index, variable); },
            [&](const KARMPVariable& variable) { ForEachJointOf(variable, addJoint); });
    if (drawn.points.size() < 2)
        return std::nullopt;
    return drawn;
}

} // namespace karmp::tool

// Joints and couplings with all that belongs to them, and their variables.
#include "KARMPAxisSystem.h"
#include "KARMPBody2D.h"
#include "KARMPJoint2D.h"
#include "KARMPJointTable.h"
#include "KARMPLine.h"
#include "KARMPLinearEquation.h"
#include "KARMPModel.h"
#include "KARMPModelCore.h"
#include "KARMPModelNames.h"
#include "KARMPModelPlacing.h"
#include "KARMPPlane.h"
#include "KARMPPoint.h"
#include "KARMPPoint2D.h"
#include "KARMPVariable.h"
#include "KARMathDirection.h"
#include "KARMathLine.h"
#include "KARMathPlane.h"

#include <algorithm>
#include <array>

namespace karmp::model {

namespace {

using Entity = Edit::Entity;
using Constraint = QOBSharedHandle<KARMPConstraint>;

/// The geometry on which a body of a joint is held, at a frame of the world; null after a failure.
Entity MountSpatial(Edit& edit, Mount mount, const std::string& identifier,
                    const Ref<KARMPBody>& body, const KARMathAxis& frame)
{
    const auto make = [&](const QOBClassInfo& info, auto set) {
        Entity geometry = MountOn(edit, info, identifier, body.Handle());
        const auto inverse = geometry ? IntoBody(edit, *body) : std::nullopt;
        const bool isSet =
            inverse && edit.Check(set(*geometry, *inverse * frame), "the geometry", *geometry);
        return isSet ? geometry : Entity();
    };
    switch (mount) {
    case Mount::Frame:
        return make(KARMPAxisSystem::ClassInfo(), [](KARMPEntity& entity, const KARMathAxis& at) {
            return static_cast<KARMPAxisSystem&>(entity).SetAxisSystem(at);
        });
    case Mount::Point:
        return make(KARMPPoint::ClassInfo(), [](KARMPEntity& entity, const KARMathAxis& at) {
            return static_cast<KARMPPoint&>(entity).SetPoint(at.GetOrigin());
        });
    case Mount::Line:
        return make(KARMPLine::ClassInfo(), [](KARMPEntity& entity, const KARMathAxis& at) {
            return static_cast<KARMPLine&>(entity).SetLine(
                {at.GetOrigin(), at.GetThirdDirection()});
        });
    case Mount::Plane:
        return make(KARMPPlane::ClassInfo(), [](KARMPEntity& entity, const KARMathAxis& at) {
            return static_cast<KARMPPlane&>(entity).SetPlane(
                {at.GetOrigin(), at.GetThirdDirection()});
        });
    case Mount::Point2D:
    case Mount::Given:
        break;
    }
    edit.Fail("this kind of joint is made from a geometry of each body");
    return {};
}

bool LinkAll(Edit& edit, std::initializer_list<std::array<Entity, 2>> pairs)
{
    return std::all_of(
        pairs.begin(), pairs.end(),
        [&edit](const std::array<Entity, 2>& pair) { return edit.Link(pair[0], pair[1]); });
}

// The body of a geometry, in the plane or in space.
Entity BodyOf(Edit& edit, const Entity& geometry)
{
    QOBSharedHandle<KARMPBody> body;
    QOBSharedHandle<KARMPBody2D> planar;
    if (const auto* const flat = dynamic_cast<const KARMPGeometry2D*>(geometry.get()))
        flat->GetBody(planar);
    else
        static_cast<const KARMPGeometry&>(*geometry).GetBody(body);
    Entity found = planar ? Entity(planar) : Entity(body);
    if (!found)
        edit.Fail(TitleOf(*geometry) + " belongs to no body");
    return found;
}

// The joint with its constraint on two geometries. The links are made in the order in which the
// parent comes first everywhere.
Entity MakeJoint(Edit& edit, const JointKind& kind, const std::string& identifier,
                 const Entity& onParent, const Entity& onChild)
{
    const Entity parent = BodyOf(edit, onParent);
    const Entity child = parent ? BodyOf(edit, onChild) : Entity();
    if (!parent || !child)
        return {};
    if (parent == child) {
        edit.Fail("a joint needs two bodies; " + TitleOf(*parent) + " is both");
        return {};
    }
    Entity joint = edit.Create(kind.joint(), identifier);
    const Entity constraint =
        joint ? edit.Create(kind.constraint(), identifier + ".constraint") : Entity();
    const bool isLinked = constraint && LinkAll(edit, {{joint, constraint},
                                                       {constraint, onParent},
                                                       {constraint, onChild},
                                                       {joint, parent},
                                                       {joint, child}});
    return isLinked ? joint : Entity();
}

const JointKind* KindOf(Edit& edit, const QOBClassInfo& info)
{
    const JointKind* const kind = FindJointKind(info);
    if (kind == nullptr)
        edit.Fail("no constraint realises a " + info.getName());
    return kind;
}

// The joint of a variable's first constraint that belongs to one.
QOBSharedHandle<KARMPJoint> JointOf(const KARMPVariable& variable)
{
    QOBSharedHandle<KARMPJoint> joint;
    for (int index = 0; index < variable.GetLinkedConstraintCount() && !joint; ++index) {
        Constraint constraint;
        if (!KARFailed(variable.GetLinkedConstraint(index, constraint)))
            constraint->GetJoint(joint);
    }
    return joint;
}

void AddOnce(std::vector<Entity>& bodies, const QOBSharedHandle<KARMPBody>& body)
{
    if (body && std::find(bodies.begin(), bodies.end(), Entity(body)) == bodies.end())
        bodies.emplace_back(body);
}

// The bodies that the joints of the variables move. A coupling within one joint has its parent too.
std::vector<Entity> CoupledBodies(std::span<const Term> terms)
{
    std::vector<Entity> bodies;
    for (const int side : {1, 0}) {
        for (const Term& term : terms) {
            QOBSharedHandle<KARMPBody> body;
            if (const auto joint = JointOf(*term.variable); joint && bodies.size() < 2U)
                joint->GetLinkedBody(side, body);
            AddOnce(bodies, body);
        }
    }
    return bodies;
}

bool SetQuantity(Edit& edit, KARMPVariable& variable, KARMPPhysicalQuantity::Enum quantity,
                 double value)
{
    return edit.Check(variable.SetPhysicalQuantity(quantity), "the quantity", variable) &&
           edit.Check(variable.SetValue(value), "the value", variable);
}

} // namespace

Model::Entity Model::AddJoint(const QOBClassInfo& info, std::string_view identifier,
                              const Ref<KARMPBody>& parent, const Ref<KARMPBody>& child,
                              const KARMathAxis& frame, Where where)
{
    Entity joint;
    const bool isMade = m_core->Perform(where, [&](Edit& edit) {
        const JointKind* const kind = KindOf(edit, info);
        if (kind == nullptr || !edit.IsThere(parent.Handle(), "parent body") ||
            !edit.IsThere(child.Handle(), "child body"))
            return false;
        if (parent == child)
            return edit.Fail("a joint needs two bodies; " + TitleOf(*parent) + " is both");
        const std::string name(identifier);
        const Entity onParent = MountSpatial(edit, kind->parent, name, parent, frame);
        const Entity onChild =
            onParent ? MountSpatial(edit, kind->child, name, child, frame) : Entity();
        if (onChild)
            joint = MakeJoint(edit, *kind, name, onParent, onChild);
        return static_cast<bool>(joint);
    });
    return isMade ? joint : Entity();
}

Model::Entity Model::AddJoint(const QOBClassInfo& info, std::string_view identifier,
                              const Ref<KARMPBody>& parent, const Ref<KARMPBody>& child,
                              const KARMathPoint& at, const KARMathVector& axis, Where where)
{
    if (const auto frame = FrameAlong(at, axis))
        return AddJoint(info, identifier, parent, child, *frame, where);
    m_core->Perform(where, [&](Edit& edit) {
        return edit.Fail("the axis of \"" + std::string(identifier) + "\" has no direction");
    });
    return {};
}

Model::Entity Model::AddJoint(const QOBClassInfo& info, std::string_view identifier,
                              const Ref<KARMPBody2D>& parent, const Ref<KARMPBody2D>& child,
                              const KARMathPoint2D& at, Where where)
{
    Entity joint;
    const bool isMade = m_core->Perform(where, [&](Edit& edit) {
        const JointKind* const kind = KindOf(edit, info);
        if (kind == nullptr || !edit.IsThere(parent.Handle(), "parent body") ||
            !edit.IsThere(child.Handle(), "child body"))
            return false;
        const std::string name(identifier);
        std::array<Entity, 2> points;
        for (std::size_t side = 0; side < points.size(); ++side) {
            const Ref<KARMPBody2D>& body = side == 0 ? parent : child;
            const auto inverse = IntoBody(edit, *body);
            if (!inverse)
                return false;
            points[side] = MountOn(edit, KARMPPoint2D::ClassInfo(), name, body.Handle());
            if (!points[side])
                return false;
            auto& point = static_cast<KARMPPoint2D&>(*points[side]);
            if (!edit.Check(point.SetPoint(*inverse * at), "the position", point))
                return false;
        }
        joint = MakeJoint(edit, *kind, name, points[0], points[1]);
        return static_cast<bool>(joint);
    });
    return isMade ? joint : Entity();
}

Model::Entity Model::AddJoint(const QOBClassInfo& info, std::string_view identifier,
                              const Ref<KARMPGeometry>& onParent, const Ref<KARMPGeometry>& onChild,
                              Where where)
{
    Entity joint;
    const bool isMade = m_core->Perform(where, [&](Edit& edit) {
        const JointKind* const kind = KindOf(edit, info);
        if (kind != nullptr && edit.IsThere(onParent.Handle(), "geometry of the parent") &&
            edit.IsThere(onChild.Handle(), "geometry of the child"))
            joint = MakeJoint(edit, *kind, std::string(identifier), onParent.Handle(),
                              onChild.Handle());
        return static_cast<bool>(joint);
    });
    return isMade ? joint : Entity();
}

Model::Entity Model::AddCoupling(const QOBClassInfo& info, std::string_view identifier,
                                 std::span<const Term> terms, double constant, Where where)
{
    Entity coupling;
    const bool isMade = m_core->Perform(where, [&](Edit& edit) {
        if (terms.size() < 2)
            return edit.Fail("a coupling needs two variables");
        for (const Term& term : terms)
            if (!edit.IsThere(term.variable.Handle(), "variable to couple"))
                return false;
        const auto bodies = CoupledBodies(terms);
        if (bodies.size() < 2)
            return edit.Fail("the variables of \"" + std::string(identifier) +
                             "\" belong to joints of fewer than two bodies");
        const std::string name(identifier);
        coupling = edit.Create(info, name);
        const auto equation = coupling ? edit.Create<KARMPLinearEquation>(name + ".equation")
                                       : QOBSharedHandle<KARMPLinearEquation>();
        if (!equation || !edit.Link(coupling, equation) ||
            !edit.Check(equation->SetConstantTerm(constant), "the constant", *equation))
            return false;
        for (const Term& term : terms)
            if (!edit.Check(equation->AddLinearTerm(term.coefficient), "a term", *equation) ||
                !edit.Link(equation, term.variable.Handle()))
                return false;
        return std::all_of(bodies.begin(), bodies.end(),
                           [&](const Entity& body) { return edit.Link(coupling, body); });
    });
    return isMade ? coupling : Entity();
}

Ref<KARMPVariable> Model::Variable(std::string_view identifier,
                                   KARMPPhysicalQuantity::Enum quantity, double value, Where where)
{
    QOBSharedHandle<KARMPVariable> variable;
    const bool isMade = m_core->Perform(where, [&](Edit& edit) {
        variable = edit.Create<KARMPVariable>(identifier);
        return variable && SetQuantity(edit, *variable, quantity, value);
    });
    return isMade ? Ref<KARMPVariable>(std::move(variable)) : Ref<KARMPVariable>();
}

Ref<KARMPVariable> Model::Variable(std::string_view identifier, const Ref<KARMPJoint>& joint,
                                   double value, Where where)
{
    QOBSharedHandle<KARMPVariable> variable;
    const bool isMade = m_core->Perform(where, [&](Edit& edit) {
        if (!edit.IsThere(joint.Handle(), "joint of the variable"))
            return false;
        const JointKind* const kind = KindOf(edit, joint->getClassInfo());
        Constraint constraint;
        if (const auto* const planar = dynamic_cast<const KARMPJoint2D*>(joint.Handle().get()))
            planar->GetConstraint(0, constraint);
        else
            joint->GetConstraint(0, constraint);
        if (kind == nullptr || !constraint)
            return edit.Fail(TitleOf(*joint) + " has no constraint");
        const auto next = static_cast<std::size_t>(constraint->GetLinkedVariableCount());
        if (next >= kind->freedoms.size())
            return edit.Fail(TitleOf(*joint) + " has no freedom without a variable");
        const auto quantity = kind->freedoms[next] == 'L' ? KARMPPhysicalQuantity::Length
                                                          : KARMPPhysicalQuantity::Angle;
        variable = edit.Create<KARMPVariable>(identifier);
        return variable && SetQuantity(edit, *variable, quantity, value) &&
               edit.Link(constraint, variable);
    });
    return isMade ? Ref<KARMPVariable>(std::move(variable)) : Ref<KARMPVariable>();
}

} // namespace karmp::model

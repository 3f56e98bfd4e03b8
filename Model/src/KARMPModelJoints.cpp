// Joints and couplings with all that belongs to them, and their variables.
#include "KARMPAxisSystem.h"
#include "KARMPBody2D.h"
#include "KARMPJoint2D.h"
#include "KARMPJointTable.h"
#include "KARMPLine.h"
#include "KARMPLinearEquation.h"
#include "KARMPModel.h"
#include "KARMPModelCore.h"
#include "KARMPModelLinks.h"
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
#include <cmath>

namespace karmp::model {

namespace {

using Entity = Edit::Entity;
using Constraint = QOBSharedHandle<KARMPConstraint>;

/// The geometry on which a body of a joint is held, at a frame of the world; null after a failure.
Entity MountSpatial(Edit& edit, Mount mount, const std::string& identifier,
                    const Ref<KARMPBody>& body, const KARMathAxis& frame)
{
    switch (mount) {
    case Mount::Frame:
        return MountAt<KARMPAxisSystem>(edit, identifier, body, frame,
                                        &KARMPAxisSystem::SetAxisSystem);
    case Mount::Point:
        return MountAt<KARMPPoint>(edit, identifier, body, frame.GetOrigin(),
                                   &KARMPPoint::SetPoint);
    case Mount::Line:
        return MountAt<KARMPLine>(edit, identifier, body, frame,
                                  [](KARMPLine& line, const KARMathAxis& at) {
                                      return line.SetLine({at.GetOrigin(), at.GetThirdDirection()});
                                  });
    case Mount::Plane:
        return MountAt<KARMPPlane>(
            edit, identifier, body, frame, [](KARMPPlane& plane, const KARMathAxis& at) {
                return plane.SetPlane({at.GetOrigin(), at.GetThirdDirection()});
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

bool AreTwo(Edit& edit, const Entity& parent, const Entity& child)
{
    return parent != child ||
           edit.Fail("a joint needs two bodies; " + TitleOf(*parent) + " is both");
}

// The joint with its constraint on two geometries. The links are made in the order in which the
// parent comes first everywhere.
Entity MakeJoint(Edit& edit, const QOBClassInfo& info, const QOBClassInfo& constraintInfo,
                 const std::string& identifier, const Entity& onParent, const Entity& onChild)
{
    const Entity parent = BodyOf(edit, onParent);
    const Entity child = parent ? BodyOf(edit, onChild) : Entity();
    if (!parent || !child || !AreTwo(edit, parent, child))
        return {};
    Entity joint = edit.Create(info, identifier);
    const Entity constraint =
        joint ? edit.Create(constraintInfo, identifier + ".constraint") : Entity();
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

// The kind of a joint between two bodies that are there; null after a failure.
const JointKind* KindBetween(Edit& edit, const QOBClassInfo& info, const Entity& parent,
                             const Entity& child)
{
    const bool areThere = edit.IsThere(parent, "parent body") &&
                          edit.IsThere(child, "child body") && AreTwo(edit, parent, child);
    return areThere ? KindOf(edit, info) : nullptr;
}

// The joint on what `mount` makes on the parent, by true, and on the child; null after a failure.
template <class MountOnBody>
Entity MakeJointBetween(Edit& edit, const QOBClassInfo& info, const std::string& identifier,
                        const Entity& parent, const Entity& child, MountOnBody mount)
{
    const JointKind* const kind = KindBetween(edit, info, parent, child);
    const Entity onParent = kind != nullptr ? mount(kind->parent, true) : Entity();
    const Entity onChild = onParent ? mount(kind->child, false) : Entity();
    return onChild ? MakeJoint(edit, info, kind->constraint(), identifier, onParent, onChild)
                   : Entity();
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

// Tells why variables move no two bodies.
bool FailToCouple(Edit& edit, std::string_view identifier, std::span<const Term> terms)
{
    for (const Term& term : terms)
        if (const auto joint = JointOf(*term.variable);
            joint && IsA(joint->getClassInfo(), "KARMPJoint2D"))
            return edit.Fail("a coupling links bodies in space; " + TitleOf(*joint) + " is planar");
    return edit.Fail("the variables of \"" + std::string(identifier) +
                     "\" belong to joints of fewer than two bodies");
}

bool SetQuantity(Edit& edit, KARMPVariable& variable, KARMPPhysicalQuantity::Enum quantity,
                 double value)
{
    if (!std::isfinite(value))
        return edit.Fail("the value of " + TitleOf(variable) + " is not finite");
    return edit.Check(variable.SetPhysicalQuantity(quantity), "the quantity", variable) &&
           edit.Check(variable.SetValue(value), "the value", variable);
}

} // namespace

Entity MakeJointAt(Edit& edit, const QOBClassInfo& info, std::string_view identifier,
                   const Ref<KARMPBody>& parent, const KARMathAxis& onParent,
                   const Ref<KARMPBody>& child, const KARMathAxis& onChild)
{
    const std::string name(identifier);
    return MakeJointBetween(edit, info, name, parent.Handle(), child.Handle(),
                            [&](Mount mount, bool isParent) {
                                return MountSpatial(edit, mount, name, isParent ? parent : child,
                                                    isParent ? onParent : onChild);
                            });
}

Model::Entity Model::AddJoint(const QOBClassInfo& info, std::string_view identifier,
                              const Ref<KARMPBody>& parent, const Ref<KARMPBody>& child,
                              const KARMathAxis& onParent, const KARMathAxis& onChild, Where where)
{
    return m_core->Make<KARMPEntity>(
        where,
        [&](Edit& edit, Entity& joint) {
            joint = MakeJointAt(edit, info, identifier, parent, onParent, child, onChild);
            return static_cast<bool>(joint);
        });
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
    return m_core->Make<KARMPEntity>(
        where,
        [&](Edit& edit, Entity& joint) {
            const std::string name(identifier);
            joint = MakeJointBetween(
                edit, info, name, parent.Handle(), child.Handle(),
                [&](Mount, bool isParent) {
                    return Entity(MountAt<KARMPPoint2D>(edit, name, isParent ? parent : child, at,
                                                        &KARMPPoint2D::SetPoint));
                });
            return static_cast<bool>(joint);
        });
}

Model::Entity Model::AddJoint(const QOBClassInfo& info, const QOBClassInfo* constraint,
                              std::string_view identifier, const Ref<KARMPGeometry>& onParent,
                              const Ref<KARMPGeometry>& onChild, Where where)
{
    return m_core->Make<KARMPEntity>(
        where,
        [&](Edit& edit, Entity& joint) {
            const JointKind* const kind = KindOf(edit, info);
            if (kind != nullptr && edit.IsThere(onParent.Handle(), "geometry of the parent") &&
                edit.IsThere(onChild.Handle(), "geometry of the child"))
                joint =
                    MakeJoint(edit, info, constraint != nullptr ? *constraint : kind->constraint(),
                              std::string(identifier), onParent.Handle(), onChild.Handle());
            return static_cast<bool>(joint);
        });
}

Model::Entity Model::AddCoupling(const QOBClassInfo& info, std::string_view identifier,
                                 std::span<const Term> terms, double constant, Where where)
{
    return m_core->Make<KARMPEntity>(
        where,
        [&](Edit& edit, Entity& coupling) {
            // A screw couples its own two variables.
            if (!IsA(info, "KARMPCoupling") && !IsA(info, "KARMPScrew"))
                return edit.Fail("a " + info.getName() + " is no coupling");
            if (terms.size() < 2)
                return edit.Fail("a coupling needs two variables");
            for (const Term& term : terms)
                if (std::count_if(
                        terms.begin(), terms.end(),
                        [&term](const Term& other) { return other.variable == term.variable; }) > 1)
                    return edit.Fail("a coupling has each variable in one term");
            if (!std::isfinite(constant) ||
                !std::all_of(
                    terms.begin(), terms.end(),
                    [](const Term& term) { return std::isfinite(term.coefficient); }))
                return edit.Fail("the numbers of \"" + std::string(identifier) +
                                 "\" are not finite");
            for (const Term& term : terms)
                if (!edit.IsThere(term.variable.Handle(), "variable to couple"))
                    return false;
            const auto bodies = CoupledBodies(terms);
            if (bodies.size() < 2)
                return FailToCouple(edit, identifier, terms);
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
            return std::all_of(
                bodies.begin(), bodies.end(),
                [&](const Entity& body) { return edit.Link(coupling, body); });
        });
}

Ref<KARMPVariable> Model::Variable(std::string_view identifier,
                                   KARMPPhysicalQuantity::Enum quantity, double value, Where where)
{
    return Ref(m_core->Make<KARMPVariable>(
        where,
        [&](Edit& edit, auto& variable) {
            variable = edit.Create<KARMPVariable>(identifier);
            return variable && SetQuantity(edit, *variable, quantity, value);
        }));
}

Ref<KARMPVariable> Model::Variable(std::string_view identifier, const Ref<KARMPJoint>& joint,
                                   double value, Where where)
{
    return Ref(m_core->Make<KARMPVariable>(
        where,
        [&](Edit& edit, auto& variable) {
            if (!edit.IsThere(joint.Handle(), "joint of the variable"))
                return false;
            const JointKind* const kind = KindOf(edit, joint->getClassInfo());
            const Constraint constraint = FirstConstraintOf(*joint);
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
        }));
}

} // namespace karmp::model

// The halves of all two-sided links. What is linked to what stands in the content lists; a test
// compares.
#include "KARMPHalfLinks.h"

#include "KARMPBody2D.h"
#include "KARMPConnector.h"
#include "KARMPConstraint.h"
#include "KARMPConstraintSensor.h"
#include "KARMPDisplacementSensor.h"
#include "KARMPDisplacementSensor2D.h"
#include "KARMPGeometry2D.h"
#include "KARMPItems.h"
#include "KARMPJoint2D.h"
#include "KARMPShape2D.h"
#include "KARMPVariable.h"

#include <array>

namespace karmp::model {

namespace {

using Entity = QOBSharedHandle<KARMPEntity>;

/// Class and target of an operation on a handle.
template <class Operation>
struct OperationTraits;
template <class C, class T>
struct OperationTraits<KARStatus (C::*)(const QOBSharedHandle<T>&)>
{
    using Class = C;
    using Target = T;
    using Getter = KARStatus (C::*)(QOBSharedHandle<T>&) const;
};
template <auto Operation>
using TraitsOf = OperationTraits<std::remove_const_t<decltype(Operation)>>;

template <auto Operation>
KARStatus Call(KARMPEntity& owner, const Entity& target)
{
    using Traits = TraitsOf<Operation>;
    auto& object = static_cast<typename Traits::Class&>(owner);
    return (object.*Operation)(QOBSharedHandle<typename Traits::Target>::unchecked(target));
}
template <auto Operation>
KARStatus CallWithWord(KARMPEntity& owner, const Entity& target, int)
{
    return Call<Operation>(owner, target);
}

/// The half of a list.
template <auto Link, auto Unlink>
constexpr HalfLink List(std::string_view owner, std::wstring_view item)
{
    return {owner, item, &CallWithWord<Link>, &Call<Unlink>};
}

/// The half of a single link. `Get` fails without one and does not report that.
template <auto Link, auto Unlink, typename TraitsOf<Link>::Getter Get>
constexpr HalfLink Single(std::string_view owner, std::wstring_view item)
{
    return {owner, item, &CallWithWord<Link>, &Call<Unlink>,
            [](const KARMPEntity& entity) {
                QOBSharedHandle<typename TraitsOf<Link>::Target> target;
                (static_cast<const typename TraitsOf<Link>::Class&>(entity).*Get)(target);
                return Entity::unchecked(target);
            }};
}

template <class Joint, class Body>
int OrientationIn(const KARMPEntity& entity, const Entity& target)
{
    const auto& joint = static_cast<const Joint&>(entity);
    for (int index = 0; index < joint.GetLinkedBodyCount(); ++index) {
        QOBSharedHandle<Body> body;
        KARMPBodyOrientation::Enum orientation{};
        if (!KARFailed(joint.GetLinkedBody(index, body, orientation)) && body == target)
            return orientation;
    }
    return -1;
}
/// The bodies of a joint: the first is the parent, the others are children.
template <class Joint, class Body>
constexpr HalfLink JointBodies(std::string_view owner, std::wstring_view item)
{
    return {
        owner,
        item,
        [](KARMPEntity& entity, const Entity& target, int word) {
            auto& joint = static_cast<Joint&>(entity);
            const auto next = joint.GetLinkedBodyCount() == 0 ? KARMPBodyOrientation::Out
                                                              : KARMPBodyOrientation::In;
            return joint.LinkToBody(QOBSharedHandle<Body>::unchecked(target),
                                    word < 0 ? next
                                             : static_cast<KARMPBodyOrientation::Enum>(word));
        },
        &Call<static_cast<KARStatus (Joint::*)(const QOBSharedHandle<Body>&)>(&Joint::RemoveBody)>,
        nullptr,
        &OrientationIn<Joint, Body>};
}

// Planar geometries have a list of constraints of their own.
KARStatus RemoveFromGeometry(KARMPEntity& entity, const Entity& target)
{
    const auto constraint = QOBSharedHandle<KARMPConstraint>::unchecked(target);
    if (auto* const planar = dynamic_cast<KARMPGeometry2D*>(&entity))
        return planar->RemoveConstraint(constraint);
    return static_cast<KARMPGeometry&>(entity).RemoveConstraint(constraint);
}

template <class C, class T>
using Operation = KARStatus (C::*)(const QOBSharedHandle<T>&);

// A sensor's own getter reports when there is no target; its item does not.
template <auto Link, auto Unlink>
constexpr HalfLink Measured(std::string_view owner, std::wstring_view item)
{
    HalfLink half = List<Link, Unlink>(owner, item);
    half.held = [](const KARMPEntity& entity) {
        for (const ItemInfo* const link : LinkItemsOf(entity.getClassInfo()))
            if (!link->otherSide.empty())
                if (const Value data = link->Get(entity); std::holds_alternative<Entity>(data))
                    return std::get<Entity>(data);
        return Entity();
    };
    return half;
}
constexpr HalfLink Refusing(HalfLink half)
{
    half.mayRefuse = true;
    return half;
}

using B = KARMPBody;
using B2 = KARMPBody2D;
using C = KARMPConstraint;
using G = KARMPGeometry;
using G2 = KARMPGeometry2D;
using J = KARMPJoint;
using J2 = KARMPJoint2D;
using K = KARMPConnector;
using S = KARMPShape;
using S2 = KARMPShape2D;
using V = KARMPVariable;
using D = KARMPDisplacementSensor;
using D2 = KARMPDisplacementSensor2D;

// Operations that have overloads for the plane are chosen by their targets.
constexpr Operation<G2, B2> SetPlanarBody = &G2::SetBody;
constexpr Operation<S2, B2> LinkPlanarBody = &S2::LinkToBody;
constexpr Operation<S2, B2> UnlinkPlanarBody = &S2::RemoveBody;
constexpr Operation<G, B> SetBodyOf = &G::SetBody;

constexpr std::array Halves{
    List<&B::AddGeometry, &B::RemoveGeometry>("KARMPBody", L"Geometries"),
    List<&B::LinkToJoint, &B::RemoveJoint>("KARMPBody", L"Joints"),
    List<&B::LinkToShape, &B::RemoveShape>("KARMPBody", L"Shapes"),
    List<&B::LinkToConnector, &B::RemoveConnector>("KARMPBody", L"Connectors"),
    Single<&B::SetDisplacementSensor, &B::RemoveDisplacementSensor, &B::GetDisplacementSensor>(
        "KARMPBody", L"DisplacementSensor"),
    List<&B2::AddGeometry, &B2::RemoveGeometry>("KARMPBody2D", L"Geometries"),
    List<&B2::LinkToJoint, &B2::RemoveJoint>("KARMPBody2D", L"Joints"),
    List<&B2::LinkToShape, &B2::RemoveShape>("KARMPBody2D", L"Shapes"),
    Single<&B2::SetDisplacementSensor, &B2::RemoveDisplacementSensor, &B2::GetDisplacementSensor>(
        "KARMPBody2D", L"DisplacementSensor"),
    Single<SetBodyOf, &G::RemoveBody, &G::GetBody>("KARMPGeometry", L"Body"),
    HalfLink{"KARMPGeometry", L"Constraints", &CallWithWord<&G::LinkToConstraint>,
             &RemoveFromGeometry},
    Single<SetPlanarBody, &G2::RemoveBody, &G2::GetBody>("KARMPGeometry2D", L"Body2D"),
    List<&C::LinkToGeometry, &C::RemoveGeometry>("KARMPConstraint", L"Geometries"),
    Single<&C::SetJoint, &C::RemoveJoint, &C::GetJoint>("KARMPConstraint", L"Joint"),
    List<&C::LinkToVariable, &C::RemoveVariable>("KARMPConstraint", L"Variables"),
    List<&C::LinkToSensor, &C::RemoveSensor>("KARMPConstraint", L"Sensors"),
    List<&V::LinkToConstraint, &V::RemoveConstraint>("KARMPVariable", L"Constraints"),
    JointBodies<J, B>("KARMPJoint", L"Bodies"),
    List<&J::AddConstraint, &J::RemoveConstraint>("KARMPJoint", L"Constraints"),
    JointBodies<J2, B2>("KARMPJoint2D", L"Bodies2D"),
    List<&J2::AddConstraint, &J2::RemoveConstraint>("KARMPJoint2D", L"Constraints"),
    Single<&K::SetFirstBody, &K::RemoveBody, &K::GetFirstBody>("KARMPConnector", L"FirstBody"),
    Single<&K::SetSecondBody, &K::RemoveBody, &K::GetSecondBody>("KARMPConnector", L"SecondBody"),
    List<&S::LinkToBody, &S::RemoveBody>("KARMPShape", L"Bodies"),
    List<LinkPlanarBody, UnlinkPlanarBody>("KARMPShape2D", L"Bodies"),
    Measured<&D::SetBody, &D::RemoveBody>("KARMPDisplacementSensor", L"Body"),
    Measured<&D2::SetBody, &D2::RemoveBody>("KARMPDisplacementSensor2D", L"Body2D"),
    Refusing(
        Measured<&KARMPConstraintSensor::SetConstraint, &KARMPConstraintSensor::RemoveConstraint>(
            "KARMPConstraintSensor", L"Constraint")),
};

} // namespace

std::span<const HalfLink> HalfLinks()
{
    return Halves;
}

} // namespace karmp::model

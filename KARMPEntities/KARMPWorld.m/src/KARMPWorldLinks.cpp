#include "KARMPBody2D.h"
#include "KARMPDisplacementSensor.h"
#include "KARMPDisplacementSensor2D.h"
#include "KARMPDuplicates.h"
#include "KARMPFailedCheck.h"
#include "KARMPFunctionOfFamily.h"
#include "KARMPGeometry2D.h"
#include "KARMPJoint2D.h"
#include "KARMPPlainKinds.h"
#include "KARMPShape2D.h"
#include "KARMPSketch.h"
#include "KARPrefetch.h"

#include <unordered_set>
#include <utility>

namespace {

using karmp::Duplicates;
// Planar classes have links of their own and stand before those that they are derived from.
using LinkingFamilies =
    karmp::FamilyList<KARMPJoint2D, KARMPJoint, KARMPBody2D, KARMPBody, KARMPConstraint,
                      KARMPVariable, KARMPGeometry2D, KARMPGeometry, KARMPShape2D, KARMPShape>;

// A link of a source that is restored at its duplicate.
struct Link
{
    // Makes the link; with `checked` the related entity's class is not known to fit.
    using Make = void (*)(const Link& link, bool checked);

    QOBSharedObject* duplicate;
    QOBSharedObject* related; // the source's at first, then that one's duplicate
    Make make;
    KARMPBodyOrientation::Enum orientation;
};
using Links = std::vector<Link>;

// The related entity as a handle that counts nothing, since it lives on beyond the call.
template <class T>
class Related
{
public:
    Related(const Link& link, bool checked)
    {
        if (checked)
            static_cast<void>(QOBSharedHandle<T>(link.related));
        m_handle = QOBSharedHandle<T>::unchecked(QOBSharedBase::adopt(link.related));
    }
    Related(const Related&) = delete;
    Related& operator=(const Related&) = delete;
    ~Related() { m_handle.release(); }

    const QOBSharedHandle<T>& Handle() const { return m_handle; }

private:
    QOBSharedHandle<T> m_handle;
};

template <auto Operation>
struct MakeBy;
template <class C, class T, KARStatus (C::*Operation)(const QOBSharedHandle<T>&)>
struct MakeBy<Operation>
{
    static void Call(const Link& link, bool checked)
    {
        const Related<T> related(link, checked);
        KARMPVerify(!KARFailed((static_cast<C*>(link.duplicate)->*Operation)(related.Handle())));
    }
};

template <class Joint, class Body>
void MakeOriented(const Link& link, bool checked)
{
    const Related<Body> body(link, checked);
    auto* const joint = static_cast<Joint*>(link.duplicate);
    KARMPVerify(!KARFailed(joint->LinkToBody(body.Handle(), link.orientation)));
}

// Collects the links of a source that are restored.
template <class C>
class Collector
{
public:
    Collector(const C& source, QOBSharedObject* duplicate, Links& links)
        : m_source(source), m_duplicate(duplicate), m_links(links)
    {}

    // For what the source has as one of its base.
    template <class Base>
    Collector<Base> As() const
    {
        return {m_source, m_duplicate, m_links};
    }
    template <auto Operation, class T>
    void List(int (C::*count)() const, KARStatus (C::*get)(int, QOBSharedHandle<T>&) const) const
    {
        for (int index = 0; index < (m_source.*count)(); ++index) {
            QOBSharedHandle<T> related;
            if (KARMPVerify(!KARFailed((m_source.*get)(index, related))))
                Add(related, &MakeBy<Operation>::Call);
        }
    }
    // A getter fails when there is no link.
    template <auto Operation, class T>
    void Single(KARStatus (C::*get)(QOBSharedHandle<T>&) const) const
    {
        QOBSharedHandle<T> related;
        if (!KARFailed((m_source.*get)(related)))
            Add(related, &MakeBy<Operation>::Call);
    }
    // The bodies of a joint.
    template <class Body>
    void OrientedBodies() const
    {
        for (int index = 0; index < m_source.GetLinkedBodyCount(); ++index) {
            QOBSharedHandle<Body> body;
            KARMPBodyOrientation::Enum orientation{};
            if (KARMPVerify(!KARFailed(m_source.GetLinkedBody(index, body, orientation))))
                Add(body, &MakeOriented<C, Body>, orientation);
        }
    }

private:
    void Add(const QOBSharedBase& related, Link::Make make,
             KARMPBodyOrientation::Enum orientation = {}) const
    {
        m_links.push_back({m_duplicate, related._getReferent(), make, orientation});
    }

    const C& m_source;
    QOBSharedObject* m_duplicate;
    Links& m_links;
};

void Collect(const Collector<KARMPJoint>& joint)
{
    using C = KARMPJoint;
    joint.OrientedBodies<KARMPBody>();
    joint.List<&C::AddConstraint>(&C::GetConstraintCount, &C::GetConstraint);
}

void Collect(const Collector<KARMPJoint2D>& joint)
{
    using C = KARMPJoint2D;
    joint.OrientedBodies<KARMPBody2D>();
    joint.List<&C::AddConstraint>(&C::GetConstraintCount, &C::GetConstraint);
}

void Collect(const Collector<KARMPBody>& body)
{
    using C = KARMPBody;
    body.List<&C::AddGeometry>(&C::GetGeometryCount, &C::GetGeometry);
    body.List<&C::LinkToJoint>(&C::GetLinkedJointCount, &C::GetLinkedJoint);
    body.Single<&C::SetDisplacementSensor>(&C::GetDisplacementSensor);
    body.List<&C::LinkToShape>(&C::GetLinkedShapeCount, &C::GetLinkedShape);
}

// What lists it as a body in space is linked as well.
void Collect(const Collector<KARMPBody2D>& body)
{
    using C = KARMPBody2D;
    Collect(body.As<KARMPBody>());
    body.List<&C::AddGeometry>(&C::GetGeometryCount, &C::GetGeometry);
    body.Single<&C::SetSketch>(&C::GetSketch);
    body.List<&C::LinkToJoint>(&C::GetLinkedJointCount, &C::GetLinkedJoint);
    body.Single<&C::SetDisplacementSensor>(&C::GetDisplacementSensor);
    body.List<&C::LinkToShape>(&C::GetLinkedShapeCount, &C::GetLinkedShape);
}

void Collect(const Collector<KARMPConstraint>& constraint)
{
    using C = KARMPConstraint;
    constraint.List<&C::LinkToGeometry>(&C::GetLinkedGeometryCount, &C::GetLinkedGeometry);
    constraint.Single<&C::SetJoint>(&C::GetJoint);
    constraint.List<&C::LinkToVariable>(&C::GetLinkedVariableCount, &C::GetLinkedVariable);
    constraint.List<&C::LinkToSensor>(&C::GetLinkedSensorCount, &C::GetLinkedSensor);
}

void Collect(const Collector<KARMPVariable>& variable)
{
    using C = KARMPVariable;
    variable.List<&C::LinkToConstraint>(&C::GetLinkedConstraintCount, &C::GetLinkedConstraint);
}

void Collect(const Collector<KARMPGeometry>& geometry)
{
    using C = KARMPGeometry;
    geometry.Single<&C::SetBody>(&C::GetBody);
    geometry.List<&C::LinkToConstraint>(&C::GetLinkedConstraintCount, &C::GetLinkedConstraint);
}

void Collect(const Collector<KARMPGeometry2D>& geometry)
{
    using C = KARMPGeometry2D;
    using Body = QOBSharedHandle<KARMPBody2D>;
    Collect(geometry.As<KARMPGeometry>());
    geometry.Single<static_cast<KARStatus (C::*)(const Body&)>(&C::SetBody)>(
        static_cast<KARStatus (C::*)(Body&) const>(&C::GetBody));
    geometry.Single<&C::SetSketch>(&C::GetSketch);
}

void Collect(const Collector<KARMPShape>& shape)
{
    using C = KARMPShape;
    shape.List<&C::LinkToBody>(&C::GetLinkedBodyCount, &C::GetLinkedBody);
}

// Its number of bodies is that of the planar ones: spatial bodies cannot be had from it.
void Collect(const Collector<KARMPShape2D>& shape)
{
    using C = KARMPShape2D;
    using Body = QOBSharedHandle<KARMPBody2D>;
    shape.List<static_cast<KARStatus (C::*)(const Body&)>(&C::LinkToBody)>(
        &C::GetLinkedBodyCount, static_cast<KARStatus (C::*)(int, Body&) const>(&C::GetLinkedBody));
}

template <class T>
struct CollectAs
{
    static void Call(const QOBSharedObject* source, QOBSharedObject* duplicate, Links& links)
    {
        Collect(Collector<T>(*static_cast<const T*>(source), duplicate, links));
    }
};

// Makes the links that lead to an entity with a duplicate. What they touch lies anywhere in memory,
// so that each step prefetches for the next one.
void Make(Links& links, const Duplicates& duplicates)
{
    for (Link& link : links) {
        link.related = duplicates.Find(link.related);
        kar::Prefetch(link.related, sizeof(QOBSharedObject));
    }
    for (const Link& link : links)
        if (link.related != nullptr)
            link.make(link, duplicates.HaveOtherClasses());
    links.clear();
}

} // namespace

// Reaches the links of entities at their own members. What VisitLinks names are the links that
// Collect names of the same class.
struct karmp::LinkAccess
{
    template <class T>
    struct As
    {
        static void Place(const QOBSharedObject& source, QOBSharedObject& duplicate,
                          LinkPlacer& placer)
        {
            VisitLinks(
                static_cast<const T&>(source), static_cast<T&>(duplicate),
                [&placer](const auto& links, auto& made) { made.PlaceLinks(links, placer); });
        }
    };
    // Takes back what was placed.
    template <class T>
    struct Clear
    {
        static void Call(const QOBSharedObject&, QOBSharedObject& duplicate, LinkPlacer&)
        {
            ClearLinks(static_cast<T&>(duplicate));
        }
    };
    // Takes out what waited and was dropped.
    template <class T>
    struct Tidy
    {
        static void Call(const QOBSharedObject& source, QOBSharedObject& duplicate,
                         LinkPlacer& placer)
        {
            VisitLinks(
                static_cast<const T&>(source), static_cast<T&>(duplicate),
                [&placer](const auto& links, auto& made) {
                    if (HaveDropped(made))
                        made.PlaceLinks(links, placer);
                });
        }
    };

private:
    template <class Duplicate, class Visit>
    static void VisitLinks(const KARMPJoint& source, Duplicate& duplicate, Visit visit)
    {
        visit(source.m_bodies, duplicate.m_bodies);
        visit(source.m_constraints, duplicate.m_constraints);
    }
    template <class Duplicate, class Visit>
    static void VisitLinks(const KARMPBody& source, Duplicate& duplicate, Visit visit)
    {
        visit(source.m_geometries, duplicate.m_geometries);
        visit(source.m_joints, duplicate.m_joints);
        visit(source.m_displacementSensor, duplicate.m_displacementSensor);
        visit(source.m_shapes, duplicate.m_shapes);
    }
    template <class Duplicate, class Visit>
    static void VisitLinks(const KARMPConstraint& source, Duplicate& duplicate, Visit visit)
    {
        visit(source.m_geometries, duplicate.m_geometries);
        visit(source.m_joint, duplicate.m_joint);
        visit(source.m_variables, duplicate.m_variables);
        visit(source.m_sensors, duplicate.m_sensors);
    }
    template <class Duplicate, class Visit>
    static void VisitLinks(const KARMPVariable& source, Duplicate& duplicate, Visit visit)
    {
        visit(source.m_constraints, duplicate.m_constraints);
    }
    template <class Duplicate, class Visit>
    static void VisitLinks(const KARMPGeometry& source, Duplicate& duplicate, Visit visit)
    {
        visit(source.m_body, duplicate.m_body);
        visit(source.m_linkedConstraints, duplicate.m_linkedConstraints);
    }
    template <class Duplicate, class Visit>
    static void VisitLinks(const KARMPShape& source, Duplicate& duplicate, Visit visit)
    {
        visit(source.m_bodies, duplicate.m_bodies);
    }

    // Of planar classes, what they have as one of their base is cleared as well.
    static void ClearLinks(KARMPJoint2D& joint) { ClearAll(joint.m_bodies, joint.m_constraints); }
    static void ClearLinks(KARMPBody2D& body)
    {
        ClearAll(body.m_sketch, body.m_geometries, body.m_joints, body.m_displacementSensor,
                 body.m_shapes);
        ClearLinks<KARMPBody>(body);
    }
    static void ClearLinks(KARMPGeometry2D& geometry)
    {
        ClearAll(geometry.m_body, geometry.m_sketch, geometry.m_linkedConstraints);
        ClearLinks<KARMPGeometry>(geometry);
    }
    static void ClearLinks(KARMPShape2D& shape)
    {
        ClearAll(shape.m_bodies);
        ClearLinks<KARMPShape>(shape);
    }
    template <class T>
    static void ClearLinks(T& entity)
    {
        VisitLinks(
            static_cast<const T&>(entity), entity, [](const auto&, auto& links) { links.Clear(); });
    }
    template <class... Links>
    static void ClearAll(Links&... links)
    {
        (links.Clear(), ...);
    }

    template <class Links>
    static bool HaveDropped(const Links& links)
    {
        return links.HasDroppedLinks();
    }
    template <class T>
    static bool HaveDropped(const KARMPLink<T>&)
    {
        return false; // without a link is what it has to be then
    }
};

namespace {

using SpatialFamilies = karmp::FamilyList<KARMPJoint, KARMPBody, KARMPConstraint, KARMPVariable,
                                          KARMPGeometry, KARMPShape>;

// Does something with the links of each duplicate, by its class, which may be another one than its
// source's. It allocates nothing.
template <class Families, template <class> class For>
void ForEachLinked(const QOBSharedList<KARMPEntity>& sources, karmp::LinkPlacer& placer,
                   const std::unordered_set<const QOBSharedObject*>& except)
{
    using Function = void (*)(const QOBSharedObject&, QOBSharedObject&, karmp::LinkPlacer&);
    const QOBClassInfo* info = nullptr;
    Function function = nullptr;
    for (const QOBSharedHandle<KARMPEntity>& source : sources) {
        QOBSharedObject* const duplicate = placer.Find(source.get());
        if (duplicate == nullptr || except.contains(duplicate))
            continue;
        if (info != &duplicate->getClassInfo()) {
            info = &duplicate->getClassInfo();
            function = karmp::FunctionOfFamily<Families, Function>::template ChooseFor<For>(*info);
        }
        if (function != nullptr)
            function(*source, *duplicate, placer);
    }
}

} // namespace

karmp::PlaceLinks karmp::PlaceLinksOf(const QOBClassInfo& info)
{
    PlaceLinks place = nullptr;
    SpatialFamilies::AnyOf([&](auto family) {
        using T = typename decltype(family)::Type;
        if (!info.isDerivedFrom(T::ClassInfo()))
            return false;
        place = &LinkAccess::As<T>::Place;
        return true;
    });
    return place;
}

void karmp::Duplicates::NoteOther()
{
    if (!std::exchange(m_arePlain, false))
        return;
    m_placer.DropWaiting();
    ForEachLinked<LinkingFamilies, LinkAccess::Clear>(m_sources, m_placer, m_shared);
}

void karmp::Duplicates::EnterOther(const QOBSharedObject* source, QOBSharedObject* duplicate)
{
    NoteOther();
    if (!m_placer.Enter(source, duplicate))
        m_placer.Replace(source, duplicate);
}

void karmp::Duplicates::FinishEntering()
{
    if (!m_placer.HasWaiting())
        return;
    m_placer.DropWaiting();
    ForEachLinked<SpatialFamilies, LinkAccess::Tidy>(m_sources, m_placer, m_shared);
}

void karmp::Duplicates::Discard() noexcept
{
    if (std::exchange(m_areDiscarded, true))
        return;
    m_placer.DropWaiting();
    ForEachLinked<LinkingFamilies, LinkAccess::Clear>(m_sources, m_placer, m_shared);
}

void karmp::Duplicates::RestoreLinks()
{
    using CollectLinks =
        void (*)(const QOBSharedObject* source, QOBSharedObject* duplicate, Links& links);
    constexpr std::size_t LinksAtOnce = 64;
    if (m_arePlain)
        return;
    FunctionOfFamily<LinkingFamilies, CollectLinks> functions;
    LookAhead<kar::PrefetchDistance> ahead(m_sources);
    Links links;
    for (const QOBSharedHandle<KARMPEntity>& source : m_sources) {
        if (const auto* const next = ahead.Next())
            kar::Prefetch(next->get(), CopiedBytes);
        QOBSharedObject* const duplicate = Find(source.get());
        if (duplicate == nullptr)
            continue;
        if (const CollectLinks collect = functions.Of<CollectAs>(source.getClassInfo()))
            collect(source.get(), duplicate, links);
        if (links.size() >= LinksAtOnce)
            Make(links, *this);
    }
    Make(links, *this);
}

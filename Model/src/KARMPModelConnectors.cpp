// Geometries on bodies, and connectors between them.
#include "KARMPAxisSystem.h"
#include "KARMPBody2D.h"
#include "KARMPConnector.h"
#include "KARMPGeometry.h"
#include "KARMPLinearSpring.h"
#include "KARMPModel.h"
#include "KARMPModelCore.h"
#include "KARMPModelPlacing.h"
#include "KARMPPoint.h"
#include "KARMPPoint2D.h"
#include "KARMPTorsionSpring.h"
#include "KARMathAxis.h"
#include "KARMathDirection.h"
#include "KARMathLine.h"

namespace karmp::model {

namespace {

// Where a geometry holds a connector: at a point, or at an axis system along its third direction.
KARMathLine HoldOf(const KARMPGeometry& geometry)
{
    KARMathAxis axis;
    KARMathPoint point;
    if (const auto* const frame = dynamic_cast<const KARMPAxisSystem*>(&geometry))
        frame->GetAxisSystem(axis);
    else if (const auto* const at = dynamic_cast<const KARMPPoint*>(&geometry);
             at != nullptr && !KARFailed(at->GetPoint(point)))
        axis.SetOrigin(point);
    return {axis.GetOrigin(), axis.GetThirdDirection()};
}

// The attachments of a spring repeat in memory where its geometries are.
bool SetAttachments(Edit& edit, KARMPEntity& connector, const KARMathLine& first,
                    const KARMathLine& second)
{
    constexpr std::string_view what = "an attachment";
    if (auto* const linear = dynamic_cast<KARMPLinearSpring*>(&connector))
        return edit.Check(linear->SetFirstAttachment(first.GetOrigin()), what, connector) &&
               edit.Check(linear->SetSecondAttachment(second.GetOrigin()), what, connector);
    if (auto* const torsion = dynamic_cast<KARMPTorsionSpring*>(&connector))
        return edit.Check(torsion->SetFirstAttachment(first), what, connector) &&
               edit.Check(torsion->SetSecondAttachment(second), what, connector);
    return true;
}

// A connector between geometries of two bodies; null after a failure.
Edit::Entity MakeConnector(Edit& edit, const QOBClassInfo& info, std::string_view identifier,
                           const Ref<KARMPGeometry>& onFirst, const Ref<KARMPGeometry>& onSecond,
                           Settings settings)
{
    if (!edit.IsThere(onFirst.Handle(), "geometry of the first body") ||
        !edit.IsThere(onSecond.Handle(), "geometry of the second body"))
        return {};
    QOBSharedHandle<KARMPBody> first;
    QOBSharedHandle<KARMPBody> second;
    onFirst->GetBody(first);
    onSecond->GetBody(second);
    if (!first || !second || first == second) {
        edit.Fail("a connector needs geometries of two bodies");
        return {};
    }
    Edit::Entity connector = edit.Create(info, identifier);
    const bool isMade = connector && edit.Link(connector, first, "FirstBody") &&
                        edit.Link(connector, second, "SecondBody") &&
                        edit.Link(connector, onFirst.Handle()) &&
                        edit.Link(connector, onSecond.Handle()) &&
                        SetAttachments(edit, *connector, HoldOf(*onFirst), HoldOf(*onSecond)) &&
                        edit.SetAll(connector, settings);
    return isMade ? connector : Edit::Entity();
}

// The same between new geometries of the bodies.
template <class G, class Coordinates, class Set>
Edit::Entity MakeConnectorAt(Edit& edit, const QOBClassInfo& info, std::string_view identifier,
                             const Ref<KARMPBody>& first, const Coordinates& from,
                             const Ref<KARMPBody>& second, const Coordinates& to, Set set,
                             Settings settings)
{
    if (first && first == second) {
        edit.Fail("a connector needs two bodies, not " + TitleOf(*first) + " alone");
        return {};
    }
    const Ref<G> onFirst(MountAt<G>(edit, identifier, first, from, set));
    const Ref<G> onSecond(onFirst ? MountAt<G>(edit, identifier, second, to, set) : nullptr);
    return onSecond ? MakeConnector(edit, info, identifier, onFirst, onSecond, settings)
                    : Edit::Entity();
}

} // namespace

KARMathPoint PlaceOf(const Ref<KARMPGeometry>& geometry)
{
    QOBSharedHandle<KARMPBody> body;
    geometry->GetBody(body);
    const KARMathPoint onBody = HoldOf(*geometry).GetOrigin();
    return body ? PositionOf(Ref(body)) * onBody : onBody;
}

KARMathPoint2D PlaceOf(const Ref<KARMPPoint2D>& point)
{
    QOBSharedHandle<KARMPBody2D> body;
    KARMathPoint2D onBody;
    point->GetBody(body);
    point->GetPoint(onBody);
    return body ? PositionOf(Ref(body)) * onBody : onBody;
}

Model::Entity Model::AddConnector(const QOBClassInfo& info, std::string_view identifier,
                                  const Ref<KARMPGeometry>& onFirst,
                                  const Ref<KARMPGeometry>& onSecond, Settings settings,
                                  Where where)
{
    return m_core->Make<KARMPEntity>(
        where,
        [&](Edit& edit, Entity& connector) {
            connector = MakeConnector(edit, info, identifier, onFirst, onSecond, settings);
            return static_cast<bool>(connector);
        });
}

Model::Entity Model::AddConnector(const QOBClassInfo& info, std::string_view identifier,
                                  const Ref<KARMPBody>& first, const KARMathPoint& from,
                                  const Ref<KARMPBody>& second, const KARMathPoint& to,
                                  Settings settings, Where where)
{
    return m_core->Make<KARMPEntity>(
        where,
        [&](Edit& edit, Entity& connector) {
            connector = MakeConnectorAt<KARMPPoint>(edit, info, identifier, first, from, second, to,
                                                    &KARMPPoint::SetPoint, settings);
            return static_cast<bool>(connector);
        });
}

Ref<KARMPLinearSpring> Model::Spring(std::string_view identifier, const Ref<KARMPBody>& first,
                                     const KARMathPoint& from, const Ref<KARMPBody>& second,
                                     const KARMathPoint& to, const SpringOptions& options,
                                     Where where)
{
    return Ref(m_core->Make<KARMPLinearSpring>(
        where,
        [&](Edit& edit, auto& spring) {
            const double length =
                options.restLength.value_or((to - from).Norm()) + options.load / options.stiffness;
            if (!IsPositive(options.stiffness) || !IsPositive(length))
                return edit.Fail("the stiffness and the length at rest of \"" +
                                 std::string(identifier) + "\" are finite numbers above 0");
            spring = QOBSharedHandle<KARMPLinearSpring>::unchecked(
                MakeConnectorAt<KARMPPoint>(edit, KARMPLinearSpring::ClassInfo(), identifier, first,
                                            from, second, to, &KARMPPoint::SetPoint,
                                            {{"Stiffness", options.stiffness},
                                             {"RestLength", length},
                                             {"DampingCoefficient", options.damping}}));
            return static_cast<bool>(spring);
        }));
}

Model::Entity Model::AddConnector(const QOBClassInfo& info, std::string_view identifier,
                                  const Ref<KARMPBody>& first, const Ref<KARMPBody>& second,
                                  const KARMathAxis& frame, Settings settings, Where where)
{
    return m_core->Make<KARMPEntity>(
        where,
        [&](Edit& edit, Entity& connector) {
            connector =
                MakeConnectorAt<KARMPAxisSystem>(edit, info, identifier, first, frame, second,
                                                 frame, &KARMPAxisSystem::SetAxisSystem, settings);
            return static_cast<bool>(connector);
        });
}

Model::Entity Model::AttachGeometry(const QOBClassInfo& info, std::string_view identifier,
                                    const Ref<KARMPEntity>& body, Settings settings, Where where)
{
    return m_core->Make<KARMPEntity>(
        where,
        [&](Edit& edit, Entity& geometry) {
            geometry = MountOn(edit, info, identifier, body.Handle());
            return geometry && edit.SetAll(geometry, settings);
        });
}

} // namespace karmp::model

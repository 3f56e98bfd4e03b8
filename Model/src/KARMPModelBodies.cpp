// Bodies and what they carry.
#include "KARMPAxisSystem.h"
#include "KARMPBody2D.h"
#include "KARMPConstraint.h"
#include "KARMPJoint2D.h"
#include "KARMPJointTable.h"
#include "KARMPModel.h"
#include "KARMPModelCore.h"
#include "KARMPModelNames.h"
#include "KARMPModelPlacing.h"
#include "KARMPPoint.h"
#include "KARMPPoint2D.h"
#include "KARMPSketch.h"
#include "KARMPVariable.h"

#include <type_traits>

namespace karmp::model {

namespace {

// The first direction looks at the point, the third is as near to the world's as it can be.
std::optional<KARMathTransformation> Looking(const KARMathPoint& at, const KARMathPoint& towards)
{
    KARMathVector first = towards - at;
    if (!first.Normalize())
        return {};
    KARMathVector third(0.0, 0.0, 1.0);
    third = third - first * third.Dot(first);
    constexpr double nearlyUpright = 1e-6;
    if (third.Norm() < nearlyUpright)
        third = KARMathVector(0.0, 1.0, 0.0) - first * first.GetY();
    third.Normalize();
    return KARMathTransformation(KARMathAxis(at, first, third.Cross(first), third));
}

std::optional<KARMathTransformation2D> Looking(const KARMathPoint2D& at,
                                               const KARMathPoint2D& towards)
{
    const KARMathVector2D way = towards - at;
    const double length = way.Norm();
    if (!(length > 0.0))
        return {};
    const double c = way.GetX() / length;
    const double s = way.GetY() / length;
    return KARMathTransformation2D({{c, s}, {-s, c}}, at - KARMathPoint2D());
}

KARMathTransformation Moved(const KARMathPoint& at)
{
    return KARMathTransformation(at - KARMathPoint());
}
KARMathTransformation2D Moved(const KARMathPoint2D& at)
{
    KARMathTransformation2D position;
    position.SetVector(at - KARMathPoint2D());
    return position;
}

KARStatus Place(KARMPBody& body, const KARMathTransformation& position)
{
    return body.SetPosition(position, 0);
}
KARStatus Place(KARMPBody2D& body, const KARMathTransformation2D& position)
{
    return body.SetPosition(position);
}
KARStatus FixBody(KARMPBody& body)
{
    return body.Fix();
}
KARStatus FixBody(KARMPBody2D& body)
{
    return body.Fix2D();
}

template <class Body, class Options>
bool ApplyPosition(Edit& edit, Body& body, const Options& options)
{
    using Point = std::remove_cvref_t<decltype(*options.at)>;
    auto position = options.position;
    if (!position && options.towards) {
        position = Looking(options.at.value_or(Point()), *options.towards);
        if (!position)
            return edit.Fail(TitleOf(body) + " looks at its own origin");
    } else if (!position) {
        position = Moved(*options.at);
    }
    if (const char* const fault = FaultOf(*position))
        return edit.Fail("the position of " + TitleOf(body) + " is " + fault);
    return edit.Check(Place(body, *position), "the position", body);
}

bool AreFinite(const KARMath3x3Matrix& matrix)
{
    return IsFinite(matrix.GetFirstColumn()) && IsFinite(matrix.GetSecondColumn()) &&
           IsFinite(matrix.GetThirdColumn());
}
bool AreFinite(const KARMath2x2Matrix& matrix)
{
    return IsFinite(KARMathPoint2D() + matrix.GetFirstColumn()) &&
           IsFinite(KARMathPoint2D() + matrix.GetSecondColumn());
}

// Does to a new body what its options say.
template <class Body, class Options>
bool Apply(Edit& edit, Body& body, const Options& options)
{
    if (options.mass != 0.0 && !IsPositive(options.mass))
        return edit.Fail("the mass of " + TitleOf(body) + " is no finite number from 0 on");
    if (options.centerOfGravity && !IsFinite(*options.centerOfGravity))
        return edit.Fail("the centre of " + TitleOf(body) + " is not finite");
    if (options.inertia && !AreFinite(*options.inertia))
        return edit.Fail("the inertia of " + TitleOf(body) + " is not finite");
    const bool isPlaced = options.position || options.towards || options.at;
    return (!isPlaced || ApplyPosition(edit, body, options)) &&
           (options.mass == 0.0 || edit.Check(body.SetMass(options.mass), "the mass", body)) &&
           (!options.centerOfGravity ||
            edit.Check(body.SetCenterOfGravity(*options.centerOfGravity), "the centre", body)) &&
           (!options.inertia ||
            edit.Check(body.SetInertiaMatrix(*options.inertia), "the inertia", body)) &&
           (!options.isFixed || edit.Check(FixBody(body), "fixing", body));
}

} // namespace

bool MakeBody(Edit& edit, std::string_view identifier, const BodyOptions& options,
              QOBSharedHandle<KARMPBody>& body)
{
    body = edit.Create<KARMPBody>(identifier);
    return body && Apply(edit, *body, options);
}

Ref<KARMPBody> Model::Body(std::string_view identifier, const BodyOptions& options, Where where)
{
    return Ref(m_core->Make<KARMPBody>(
        where, [&](Edit& edit, auto& body) { return MakeBody(edit, identifier, options, body); }));
}

Ref<KARMPBody2D> Model::PlanarBody(std::string_view identifier, const PlanarBodyOptions& options,
                                   Where where)
{
    return Ref(m_core->Make<KARMPBody2D>(
        where,
        [&](Edit& edit, auto& body) {
            const auto ground = PlanarGroundOf(edit);
            if (!ground)
                return false;
            body = edit.Create<KARMPBody2D>(identifier);
            QOBSharedHandle<KARMPSketch> sketch;
            return body && edit.Check(ground->GetSketch(sketch), "the sketch", *ground) &&
                   edit.Check(body->SetSketch(sketch), "the sketch", *body) &&
                   Apply(edit, *body, options);
        }));
}

Ref<KARMPBody2D> Model::PlanarGround(Where where)
{
    return Ref(m_core->Make<KARMPBody2D>(
        where,
        [](Edit& edit, auto& ground) {
            ground = PlanarGroundOf(edit);
            return static_cast<bool>(ground);
        }));
}

namespace {

template <class Geometry, class Body, class Coordinates>
Ref<Geometry> MakeOn(Core& core, std::string_view identifier, const Ref<Body>& body,
                     const Coordinates& at, KARStatus (Geometry::*set)(const Coordinates&),
                     Where where)
{
    return Ref(core.Make<Geometry>(
        where,
        [&](Edit& edit, auto& geometry) {
            geometry = MountAt<Geometry>(edit, identifier, body, at, set);
            return static_cast<bool>(geometry);
        }));
}

} // namespace

Ref<KARMPAxisSystem> Model::Frame(std::string_view identifier, const Ref<KARMPBody>& body,
                                  const KARMathAxis& axis, Where where)
{
    return MakeOn(*m_core, identifier, body, axis, &KARMPAxisSystem::SetAxisSystem, where);
}

Ref<KARMPPoint> Model::Point(std::string_view identifier, const Ref<KARMPBody>& body,
                             const KARMathPoint& position, Where where)
{
    return MakeOn(*m_core, identifier, body, position, &KARMPPoint::SetPoint, where);
}

Ref<KARMPPoint2D> Model::Point(std::string_view identifier, const Ref<KARMPBody2D>& body,
                               const KARMathPoint2D& position, Where where)
{
    return MakeOn(*m_core, identifier, body, position, &KARMPPoint2D::SetPoint, where);
}

} // namespace karmp::model

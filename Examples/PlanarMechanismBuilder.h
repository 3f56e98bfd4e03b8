#pragma once

#include "MechanismBuilder.h"

#include <string>

/// The position of a planar body.
inline KARMathTransformation2D PositionOf(const KARMPBody2D& body)
{
    KARMathTransformation2D position;
    body.GetPosition(position);
    return position;
}

/// Builds planar mechanisms in one sketch for the examples by docs/conventions.md: a sketch on the
/// global body, whose plane is z = 0, and a planar body that is fixed in it.
class PlanarMechanismBuilder : public MechanismBuilder
{
public:
    /// An empty mechanism in metres, under a gravity in m/s2 in space.
    PlanarMechanismBuilder(const std::wstring& name, const KARMathVector& gravity)
        : MechanismBuilder(name, gravity),
          m_sketch(Attach(KARMPSketch::create(L"Sketch"), Ground(), L"Sketch")),
          m_frame(AddPlanarBody(L"Frame", {}, 0.0))
    {
        m_frame->Fix2D();
    }

    /// The planar body that everything else stands on.
    const QOBSharedHandle<KARMPBody2D>& Frame() const { return m_frame; }

    /// A body with its origin at a point of the plane, turned by an angle.
    QOBSharedHandle<KARMPBody2D> AddPlanarBody(const std::wstring& name,
                                               const KARMathPoint2D& origin, double angle)
    {
        const auto body = File<KARMPBody>(KARMPBody2D::create(name), name);
        const KARMathTransformation2D turn = KARMathTransformation2D::Rotation({}, angle);
        body->SetPosition({turn.GetMatrix(), origin - KARMathPoint2D()});
        body->SetSketch(m_sketch);
        return body;
    }

    /// A point, a line or a circle of a body, in the axes of the body.
    QOBSharedHandle<KARMPPoint2D> AddPoint(const QOBSharedHandle<KARMPBody2D>& body,
                                           const std::wstring& name, const KARMathPoint2D& position)
    {
        const auto point = AttachToSketch(KARMPPoint2D::create(name), body, name);
        point->SetPoint(position);
        return point;
    }
    QOBSharedHandle<KARMPLine2D> AddLine(const QOBSharedHandle<KARMPBody2D>& body,
                                         const std::wstring& name, const KARMathLine2D& position)
    {
        const auto line = AttachToSketch(KARMPLine2D::create(name), body, name);
        line->SetLine(position);
        return line;
    }
    QOBSharedHandle<KARMPCircle2D> AddCircle(const QOBSharedHandle<KARMPBody2D>& body,
                                             const std::wstring& name, const KARMathPoint2D& center,
                                             double radius)
    {
        const auto circle = AttachToSketch(KARMPCircle2D::create(name), body, name);
        circle->SetPoint(center);
        circle->SetRadius(radius);
        return circle;
    }

    /// A planar joint of two bodies that a constraint between a geometry of each realises; the body
    /// of the first is the parent.
    template <class Constraint, class First, class Second>
    QOBSharedHandle<KARMPUserDefined2D> AddPlanarJoint(const std::wstring& name,
                                                       const QOBSharedHandle<First>& first,
                                                       const QOBSharedHandle<Second>& second)
    {
        return AddJoint<KARMPUserDefined2D, Constraint>(name, first, second);
    }

    /// A pin: two points, given in the axes of their bodies, lie in one another.
    QOBSharedHandle<KARMPUserDefined2D> AddPin(const std::wstring& name,
                                               const QOBSharedHandle<KARMPBody2D>& parent,
                                               const KARMathPoint2D& onParent,
                                               const QOBSharedHandle<KARMPBody2D>& child,
                                               const KARMathPoint2D& onChild)
    {
        return AddPlanarJoint<KARMPCoincidence>(name, AddPoint(parent, name, onParent),
                                                AddPoint(child, name, onChild));
    }

    /// A force or torque at a point of a body, in the axes of the body. Its values are the
    /// caller's: along the axes of the plane, and about its normal.
    QOBSharedHandle<KARMPSpatialForceActuator2D> AddPlanarForce(
        const std::wstring& name, const QOBSharedHandle<KARMPBody2D>& body,
        const KARMathPoint2D& point)
    {
        const auto actuator = File<KARMPActuator>(KARMPSpatialForceActuator2D::create(name), name);
        actuator->SetApplicationPoint(point);
        actuator->SetBody(body);
        return actuator;
    }

private:
    template <class T>
    QOBSharedHandle<T> AttachToSketch(const QOBSharedHandle<T>& geometry,
                                      const QOBSharedHandle<KARMPBody2D>& body,
                                      const std::wstring& name)
    {
        Attach(geometry, body, name);
        geometry->SetSketch(m_sketch);
        return geometry;
    }

    QOBSharedHandle<KARMPSketch> m_sketch;
    QOBSharedHandle<KARMPBody2D> m_frame;
};

/// A planar body's mass, centre in body axes, and inertia about the centre, with the moments about
/// the two axes in the plane: their sum is the inertia about the normal.
inline void SetMass(KARMPBody2D& body, double mass, const KARMathPoint2D& center, double aboutX,
                    double aboutY)
{
    body.SetMass(mass);
    body.SetCenterOfGravity(center);
    body.SetInertiaMatrix({{aboutX, 0.0}, {0.0, aboutY}});
}

/// A slender rod from the body's origin along its x axis.
inline void SetRodMass(KARMPBody2D& body, double mass, double length)
{
    SetMass(body, mass, {length / 2.0, 0.0}, 0.0, mass * length * length / 12.0);
}

#pragma once

#include "KARMPBody.h"

/// What a body weighs, as docs/conventions.md has it: the mass in kg, its centre in body axes in m,
/// and the inertia about the centre in body axes in kg m2.
struct MassProperties
{
    double mass = 0.0;
    KARMathPoint center;
    KARMath3x3Matrix inertia;
};

inline KARMath3x3Matrix Diagonal(double xx, double yy, double zz)
{
    return {{xx, 0.0, 0.0}, {0.0, yy, 0.0}, {0.0, 0.0, zz}};
}

/// A solid box along the body's axes, with its three edges.
inline MassProperties Box(double mass, const KARMathPoint& center, const KARMathVector& edges)
{
    const double xx = edges.GetX() * edges.GetX();
    const double yy = edges.GetY() * edges.GetY();
    const double zz = edges.GetZ() * edges.GetZ();
    return {mass, center, mass / 12.0 * Diagonal(yy + zz, zz + xx, xx + yy)};
}

/// A solid cylinder along the body's third axis.
inline MassProperties Cylinder(double mass, const KARMathPoint& center, double radius,
                               double length)
{
    const double across = mass * (3.0 * radius * radius + length * length) / 12.0;
    return {mass, center, Diagonal(across, across, mass * radius * radius / 2.0)};
}

inline void SetMass(KARMPBody& body, const MassProperties& properties)
{
    body.SetMass(properties.mass);
    body.SetCenterOfGravity(properties.center);
    body.SetInertiaMatrix(properties.inertia);
}

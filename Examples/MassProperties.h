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

inline MassProperties SolidSphere(double mass, const KARMathPoint& center, double radius)
{
    const double inertia = 0.4 * mass * radius * radius;
    return {mass, center, Diagonal(inertia, inertia, inertia)};
}

/// Two parts of one body, each in the axes of the body.
inline MassProperties Together(const MassProperties& first, const MassProperties& second)
{
    MassProperties whole;
    whole.mass = first.mass + second.mass;
    whole.center = first.center + second.mass / whole.mass * (second.center - first.center);
    for (const MassProperties& part : {first, second}) {
        const KARMathVector arm = part.center - whole.center;
        const KARMathVector x = arm.GetX() * arm;
        const KARMathVector y = arm.GetY() * arm;
        const KARMathVector z = arm.GetZ() * arm;
        const double square = arm.SquareNorm();
        whole.inertia = whole.inertia + part.inertia +
                        part.mass * (Diagonal(square, square, square) - KARMath3x3Matrix(x, y, z));
    }
    return whole;
}

inline void SetMass(KARMPBody& body, const MassProperties& properties)
{
    body.SetMass(properties.mass);
    body.SetCenterOfGravity(properties.center);
    body.SetInertiaMatrix(properties.inertia);
}

// Enumerations of the entity model. Each is a class with a nested Enum of 32 bits; those that reach
// the element tree have the tree's words as enumerators, in the order of KARMPEnumerationTexts.h.
#pragma once

#include "KARPlatformExport.h"

#include <cstdint>

/// The sense of the directions of two linked geometries relative to one another.
struct KARMPAlignment
{
    enum Enum : std::int32_t { NotSpecified, Specified, Align, AntiAlign };
};

/// Whether a joint leads out of a linked body or into it.
struct KARMPBodyOrientation
{
    enum Enum : std::int32_t { Out, In };
};

/// How a circle lies to a torus that it coincides with.
struct KARMPCircleTorusOrientation
{
    enum Enum : std::int32_t { NotSpecified, Parallel, Perpendicular };
};

/// What becomes of two bodies that touch.
struct KARMPCollisionRuleType
{
    enum Enum : std::int32_t {
        DefaultCollision,
        CollisionReaction,
        CollisionNoReaction,
        NoCollisionNoReaction
    };
};

/// Whether a curve is passed along its parameter or against it.
struct KARMPCurveOrientation
{
    enum Enum : std::int32_t { Positive, Negative };
};

/// The side of a plane on which a distance is measured.
struct KARMPHalfSpace
{
    enum Enum : std::int32_t { NotSpecified, Positive, Negative };
};

/// The side of a surface on which another one is tangent.
struct KARMPSurfaceOrientation
{
    enum Enum : std::int32_t { NotSpecified, Positive, Negative };
};

/// How the hinge of an angle lies to the directions it is measured between.
struct KARMPHingeMode
{
    enum Enum : std::int32_t { NotSpecified, Parallel, Coincident };
};

/// What a motor drives its variable to.
struct KARMPMotorTargetType
{
    enum Enum : std::int32_t { NotSpecified, PositionTarget, VelocityTarget, AccelerationTarget };
};

/// The axis of an axis system that a constraint uses, with its sense.
struct KARMPSelectedAxis
{
    enum Enum : std::int32_t { X, Y, Z, XNeg, YNeg, ZNeg };
};

/// The plane of an axis system that a constraint uses.
struct KARMPSelectedPlane
{
    enum Enum : std::int32_t { XY, YZ, ZX };
};

/// The senses in which a spring acts: freely or rigidly in one of them.
struct KARMPSpringBehavior
{
    enum Enum : std::int32_t {
        Bidirectional,
        ExtensionFree,
        CompressionFree,
        ExtensionLock,
        CompressionLock
    };
};

/// Who decides on the value of a variable.
struct KARMPVariableType
{
    enum Enum : std::int32_t { Free, Constant, Controlled };
};

/// What a number measures.
struct KARMPPhysicalQuantity
{
    enum Enum : std::int32_t {
        NoPhysicalQuantity,
        Length,
        Mass,
        Time,
        ElectricCharge,
        LuminousIntensity,
        Temperature,
        Angle,
        Area,
        Volume,
        Velocity,
        AngularVelocity,
        Acceleration,
        AngularAcceleration,
        Force,
        Energy,
        Torque,
        Power,
        Density,
        Pressure,
        Momentum,
        Inertia,
        LuminousFlux,
        Illumination,
        Entropy,
        VolumeRateOfFlow,
        KinematicViscosity,
        DynamicViscosity,
        SpecificWeight,
        LinearStiffness,
        AngularStiffness,
        LinearDamping,
        AngularDamping
    };
};

/// How an entity came into its model. Stored and returned; agreed with the solver side.
struct KARMPBuildingMode
{
    enum Enum : std::int32_t { Explicit, Derived };
};

/// Unit of the lengths of a world. Stored and returned; a new world has millimetres.
struct KARMPUnit
{
    enum Enum : std::int32_t { Meter, Millimeter, Centimeter, Kilometer, Inch, Foot };
};

/// Outcome of a displacement, as the solver side answers it.
struct KARMPMoveStatus
{
    enum Enum : std::int32_t { NotMoved, Reached, PartlyReached, Blocked };
};

/// What a solver's diagnostic is about. Stored and returned; agreed with the solver side.
struct KARMPDiagnosticID
{
    enum Enum : std::int32_t {
        Unspecified,
        Redundant,
        Inconsistent,
        UnderConstrained,
        SingularConfiguration,
        NotConverged
    };
};

/// The kind of joint that a solver treats a joint as. The kind decides where the joint's frames
/// lie: on an axis system of each body, in a point of it, or in the body's own position.
struct KARMPSolverEquivalentJointType
{
    enum Enum : std::int32_t {
        Revolute = 0,      ///< Frames on an axis system.
        Cylindrical = 8,   ///< Frames on an axis system.
        Spherical = 17,    ///< Frames in a point.
        Rigid = 19,        ///< Frames in the body's position.
        SixDoF = 21,       ///< Frames in the body's position.
        PointOnCurve = 23, ///< Frames in a point.
        Screw = 32         ///< Frames on an axis system.
    };
};

/// The axes in which a spatial force is told. Passed on to the solver side.
struct KARMPAxisMode
{
    enum Enum : std::int32_t { World, FirstBody, SecondBody };
};

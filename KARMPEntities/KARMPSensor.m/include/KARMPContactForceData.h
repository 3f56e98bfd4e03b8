#pragma once

#include "KARMPContactGeometryData.h"

/// Where two bodies touch, and the forces and torques that each of them gets, in the axes of the
/// world.
struct KARMPContactForceData : KARMPContactGeometryData
{
    KARMathVector firstContactForce;
    KARMathVector secondContactForce;
    KARMathVector firstContactTorque;
    KARMathVector secondContactTorque;
    /// The parts of the forces along the normals.
    KARMathVector firstNormalForce;
    KARMathVector secondNormalForce;
    /// The parts of the forces across the normals.
    KARMathVector firstFrictionForce;
    KARMathVector secondFrictionForce;
};

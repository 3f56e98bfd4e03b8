#pragma once

#include "KARMathPoint.h"
#include "KARMathVector.h"
#include "QOBSharedHandle.h"

class KARMPBody;

/// Where two bodies touch, in the axes of the world and in its unit of length.
struct KARMPContactGeometryData
{
    QOBSharedHandle<KARMPBody> firstBody;
    QOBSharedHandle<KARMPBody> secondBody;
    /// The points of the two bodies that touch.
    KARMathPoint firstContactPoint;
    KARMathPoint secondContactPoint;
    double penetrationDepth = 0.0;
    /// The normals of the two surfaces.
    KARMathVector firstNormalVector;
    KARMathVector secondNormalVector;
};

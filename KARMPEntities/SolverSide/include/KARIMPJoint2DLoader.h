#pragma once

#include "KARIMPJointLoader.h"

class KARMathAxis2D;

/// What a solver attaches to a planar joint: it knows the joint's frames in the plane and what the
/// joint is to the solver.
class KAR_API KARIMPJoint2DLoader : public KARIMPJointLoader
{
public:
    using KARIMPJointLoader::ReadFrames;

    /// Reads the joint's frames in the axes of the plane. They are valid when the status is 0.
    virtual KARStatus ReadFrames(std::vector<KARMathAxis2D>& frames) = 0;

    /// A planar joint has no frames in space: KARNotImplemented.
    KARStatus ReadFrames(std::vector<KARMathAxis>&) override { return KARNotImplemented; }
};

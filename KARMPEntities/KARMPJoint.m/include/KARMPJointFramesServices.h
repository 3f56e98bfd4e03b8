#pragma once

#include "KARMPExport.h"
#include "KARStatus.h"

#include <vector>

class KARMPJoint;
class KARMathAxis;

/// Works out the frames of a joint from its bodies and the geometry that its constraints hold.
class KARMP_API KARMPJointFramesServices
{
public:
    KARMPJointFramesServices() = delete;

    /// Appends one frame for each linked body, in world coordinates or, with `local`, in those of
    /// each body; the frame of the world's global body is the world's axis system either way.
    ///
    /// The kind of joint that the solver takes the joint for decides where the frames lie: on an
    /// axis system that a constraint uses on the body, in a point that it uses there, or in the
    /// body's position. For other kinds the loader gives them. The result is 0 when `frames` is not
    /// empty; otherwise the loader's status, that of fetching it, or 1. A null joint is a failed
    /// check and gives 1.
    static KARStatus ComputeFrames(const KARMPJoint* joint, std::vector<KARMathAxis>& frames,
                                   unsigned char local);
};

#pragma once

#include "KARMPJoint2D.h"

/// Leaves whatever motion in the plane its constraints leave.
///
/// It writes and reads an element of its own around a planar joint's content and passes the joint's
/// status on. A null argument, and an element that cannot be added or is not there, are failed
/// checks and failures.
class KARMP_API KARMPUserDefined2D : public KARMPJoint2D
{
    KARMP_KIND(KARMPUserDefined2D, KARMPJoint2D)
};

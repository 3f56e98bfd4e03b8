// The couplings that differ by name only: gear, rack and cable.
//
// Each writes and reads an element of its own around a coupling's content and passes the coupling's
// status on. A null argument, and an element that cannot be added or is not there, are failed
// checks and failures. None has frames of its own, whatever its loader gives: none are counted, and
// the forms of GetFrames and GetFrame without `local` give KARNotImplemented and touch nothing.
#pragma once

#include "KARMPCoupling.h"

/// Couples two rotations, so that one of them is left.
class KARMP_API KARMPGear : public KARMPCoupling
{
    KARMP_KIND(KARMPGear, KARMPCoupling)

public:
    using Super::GetFrame;
    using Super::GetFrames;
    int GetFrameCount() const override { return 0; }
    /// Frames are given by the forms with `local` only; these give KARNotImplemented.
    virtual KARStatus GetFrames(std::vector<KARMathAxis>&) const { return KARNotImplemented; }
    virtual KARStatus GetFrame(int, KARMathAxis&) const { return KARNotImplemented; }
};

/// Couples a rotation and a translation, so that one of them is left.
class KARMP_API KARMPRack : public KARMPCoupling
{
    KARMP_KIND(KARMPRack, KARMPCoupling)

public:
    using Super::GetFrame;
    using Super::GetFrames;
    int GetFrameCount() const override { return 0; }
    /// Frames are given by the forms with `local` only; these give KARNotImplemented.
    virtual KARStatus GetFrames(std::vector<KARMathAxis>&) const { return KARNotImplemented; }
    virtual KARStatus GetFrame(int, KARMathAxis&) const { return KARNotImplemented; }
};

/// Couples two translations, so that one of them is left.
class KARMP_API KARMPCable : public KARMPCoupling
{
    KARMP_KIND(KARMPCable, KARMPCoupling)

public:
    using Super::GetFrame;
    using Super::GetFrames;
    int GetFrameCount() const override { return 0; }
    /// Frames are given by the forms with `local` only; these give KARNotImplemented.
    virtual KARStatus GetFrames(std::vector<KARMathAxis>&) const { return KARNotImplemented; }
    virtual KARStatus GetFrame(int, KARMathAxis&) const { return KARNotImplemented; }
};

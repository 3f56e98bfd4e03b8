// What the sensors of the force and the torque in a joint or connector have in common.
#pragma once

#include "KARMPContent.h"
#include "KARMPEnumerations.h"
#include "KARMPFailedCheck.h"
#include "KARMathAxis.h"

namespace karmp {

/// The items by which such a sensor stands in a document, behind the reference to what it measures.
/// The index is read as it stands in the document.
template <auto Index, auto Force, auto Torque>
constexpr auto SpatialForceItems(Where where = Where::current())
{
    return List(
        Integer<Index>(L"Index", "The index of the body on which force and torque act.", where),
        NumbersElement<Force>(L"Force", VectorNames, "The measured force.",
                              KARMPPhysicalQuantity::Force, where),
        NumbersElement<Torque>(L"Torque", VectorNames, "The measured torque.",
                               KARMPPhysicalQuantity::Torque, where));
}

/// False, with a failed check, for a negative index of a body.
inline bool VerifyBodyIndex(int index, KARMPSourceLocation where = KARMPSourceLocation::current())
{
    return KARMPVerify(index >= 0, where);
}

/// Fills six doubles: force, then torque. A null array is a failed check and a failure.
inline KARStatus CopySpatialForce(const KARMathVector& force, const KARMathVector& torque,
                                  double* numbers,
                                  KARMPSourceLocation where = KARMPSourceLocation::current())
{
    if (!KARMPVerify(numbers != nullptr, where))
        return KARFailure;
    force.GetCoord(numbers[0], numbers[1], numbers[2]);
    torque.GetCoord(numbers[3], numbers[4], numbers[5]);
    return KARSuccess;
}

/// The components of a vector along the directions of a frame.
inline KARMathVector Along(const KARMathAxis& frame, const KARMathVector& vector)
{
    return {vector.Dot(frame.GetFirstDirection()), vector.Dot(frame.GetSecondDirection()),
            vector.Dot(frame.GetThirdDirection())};
}

/// Turns force and torque from the axes of the world into the frame of a mode, for which the
/// sensor's loader is asked once. Without a frame both become zero, and that is a failed check and
/// a failure.
template <class Loader, class Sensor>
KARStatus ExpressSpatialForce(const Sensor& sensor, KARMPAxisMode::Enum mode, KARMathVector& force,
                              KARMathVector& torque,
                              KARMPSourceLocation where = KARMPSourceLocation::current())
{
    if (mode == KARMPAxisMode::World)
        return KARSuccess;
    Loader* loader = nullptr;
    KARMathAxis frame;
    const bool hasFrame = !KARFailed(sensor.GetLoader(loader)) && loader != nullptr &&
                          loader->ReadFrame(mode, frame) == KARSuccess;
    force = hasFrame ? Along(frame, force) : KARMathVector();
    torque = hasFrame ? Along(frame, torque) : KARMathVector();
    return KARMPVerify(hasFrame, where) ? KARSuccess : KARFailure;
}

} // namespace karmp

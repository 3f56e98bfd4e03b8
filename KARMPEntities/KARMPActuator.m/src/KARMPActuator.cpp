#include "KARMPActuator.h"

#include "KARMPContentWalk.h"
#include "KARMPFrames.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPActuator, "5EAD4BEB-8E3D-4a7a-96BF-112D5E0DDD97");

template <>
struct karmp::ContentOf<KARMPActuator>
{
    static constexpr auto List =
        Base("Anything that imposes a motion or a force on a mechanism.", PassingFrame);
};
KARMP_DEFINE_CONTENT(KARMPActuator);

KARMPActuator::KARMPActuator() = default;
KARMPActuator::KARMPActuator(const KARMPActuator& source, CopyMode mode) : Super(source, mode) {}
KARMPActuator::~KARMPActuator() = default;

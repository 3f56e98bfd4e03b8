#include "KARMPActuator.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPActuator, "5EAD4BEB-8E3D-4a7a-96BF-112D5E0DDD97");

KARMPActuator::KARMPActuator() = default;
KARMPActuator::KARMPActuator(const KARMPActuator& source, CopyMode mode) : Super(source, mode) {}
KARMPActuator::~KARMPActuator() = default;

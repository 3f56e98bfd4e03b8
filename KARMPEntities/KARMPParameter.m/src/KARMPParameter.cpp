#include "KARMPParameter.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPParameter, "6B2E7454-EDC6-465E-B398-A75F9A3B7D4C");

KARMPParameter::KARMPParameter() = default;
KARMPParameter::KARMPParameter(const KARMPParameter& source, CopyMode mode) : Super(source, mode) {}
KARMPParameter::~KARMPParameter() = default;

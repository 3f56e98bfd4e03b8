#include "KARMPOutput.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPOutput, "7ABAF76A-4679-4EC9-9275-BB20B26905B1");

KARMPOutput::KARMPOutput() = default;
KARMPOutput::KARMPOutput(const KARMPOutput& source, CopyMode mode) : Super(source, mode) {}
KARMPOutput::~KARMPOutput() = default;

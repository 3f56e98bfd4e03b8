#include "KARMPSupport.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPSupport, "A2D38552-80B9-4C6C-BB90-59EAC7D208B6");

KARMPSupport::KARMPSupport() = default;
KARMPSupport::KARMPSupport(const KARMPSupport& source, CopyMode mode) : Super(source, mode) {}
KARMPSupport::~KARMPSupport() = default;

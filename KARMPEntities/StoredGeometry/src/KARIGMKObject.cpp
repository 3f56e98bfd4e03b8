#include "KARIGMKObject.h"

KARIGMKObject::KARIGMKObject() = default;
KARIGMKObject::~KARIGMKObject() = default;

void KARIGMKObject::GetReferences(std::vector<const KARIGMKObject*>& /*references*/) const {}

bool KARIGMKObject::Store(kar::GMKWriter& /*writer*/) const
{
    return false;
}

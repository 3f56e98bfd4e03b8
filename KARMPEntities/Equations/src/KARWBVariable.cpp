#include "KARWBVariable.h"

#include "KARWBFactory.h"

KARStatus KARWBVariable::SetName(const KARCDSString& name)
{
    return m_factory.Rename(*this, name);
}

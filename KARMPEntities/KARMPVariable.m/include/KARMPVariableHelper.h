// Ties the variables of a mechanism to those of the equation library.
#pragma once

#include "KARMPExport.h"
#include "KARStatus.h"
#include "QOBSharedHandle.h"

class KARMPVariable;
class KARWBFactory;
class KARWBVariable;

/// Makes the variables of the equation library for those of a mechanism.
class KARMP_API KARMPVariableHelper
{
public:
    /// Gives the factory's variable whose name is the variable's identifier, in the characters
    /// of the C library's current locale; makes it when there is none. A null argument, and an
    /// identifier that cannot be had or has no form in that locale, are a failed check and a
    /// failure with null.
    static KARStatus CreateWBVariable(const QOBSharedHandle<KARMPVariable>& variable,
                                      KARWBFactory* factory, KARWBVariable*& wbVariable);
};

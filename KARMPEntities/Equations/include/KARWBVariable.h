#pragma once

#include "KARCDSString.h"
#include "KARPlatformExport.h"
#include "KARStatus.h"

class KARWBFactory;

/// Variable that the equations of one factory share: a name and a value.
class KAR_API KARWBVariable
{
public:
    KARWBVariable(const KARWBVariable&) = delete;
    KARWBVariable& operator=(const KARWBVariable&) = delete;

    /// Gives the variable a name, any bytes or none, under which its factory finds it from now on.
    /// Returns 0, 1 if that is its name already, a failure if another variable has it.
    KARStatus SetName(const KARCDSString& name);

    /// The name; empty as long as none was given.
    const KARCDSString& GetName() const { return m_name; }

    /// Sets the value that equations see; any number, infinities and not-a-number included.
    void SetValue(double value) { m_value = value; }

    /// The value, 0 as long as none was set.
    double GetValue() const { return m_value; }

    /// The factory that owns the variable.
    KARWBFactory& GetFactory() const { return m_factory; }

private:
    friend class KARWBFactory;
    explicit KARWBVariable(KARWBFactory& factory) : m_factory(factory) {}

    KARWBFactory& m_factory;
    KARCDSString m_name;
    bool m_isNamed = false;
    double m_value = 0.0;
};

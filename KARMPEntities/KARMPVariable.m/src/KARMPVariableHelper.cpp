#include "KARMPVariableHelper.h"

#include "KARCDSString.h"
#include "KARMPNarrowText.h"
#include "KARMPVariable.h"
#include "KARWBFactory.h"
#include "KARWBVariable.h"

KARStatus KARMPVariableHelper::CreateWBVariable(const QOBSharedHandle<KARMPVariable>& variable,
                                                KARWBFactory* factory, KARWBVariable*& wbVariable)
{
    wbVariable = nullptr;
    if (!KARMPVerify(variable && factory != nullptr))
        return KARFailure;
    const QOBSharedHandle<KARMPVariable> locked(variable, QOBSharedBase::WriteLock);
    std::wstring identifier;
    if (!KARMPVerify(locked && !KARFailed(locked->GetIdentifier(identifier))))
        return KARFailure;
    std::string name;
    if (!KARMPVerify(karmp::NarrowText(identifier, name)))
        return KARFailure;

    wbVariable = factory->GetVariable(name);
    if (wbVariable != nullptr)
        return KARSuccess;
    wbVariable = factory->CreateVariable();
    if (!KARMPVerify(wbVariable != nullptr))
        return KARFailure;
    wbVariable->SetName(KARCDSString(std::move(name)));
    return KARSuccess;
}

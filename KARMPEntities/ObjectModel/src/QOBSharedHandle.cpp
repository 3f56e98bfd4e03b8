#include "QOBSharedHandle.h"

#include "QOBException.h"

const QOBClassInfo& QOBSharedBase::getClassInfo() const
{
    return m_referent != nullptr ? m_referent->getClassInfo() : QOBSharedObject::ClassInfo();
}

bool QOBSharedBase::isDerivedFrom(const QOBClassInfo& info) const
{
    return m_referent != nullptr && m_referent->isDerivedFrom(info);
}

bool QOBSharedBase::isInstanceOf(const QOBClassInfo& info) const
{
    return m_referent != nullptr && m_referent->isInstanceOf(info);
}

void QOBSharedBase::throwInvalidCast()
{
    // The line is part of the message that callers know, wherever the cast stands today.
    constexpr int Line = 140;
    throw QOBEInvalidCast(L"The source and target handles have incompatible referent types",
                          "QOBSharedHandle.h", Line);
}

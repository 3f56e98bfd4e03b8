#include "KARMPCollidableList.h"

#include "KARMPEntity.h"

namespace {

class Placeholder : public QOBSharedObject
{};

// What is listed for a null entry: to the sequence of handles a null handle is no entry. It is
// never destroyed, since lists may live as long as the process.
const QOBSharedHandle<KARMPEntity>& NullEntry()
{
    static const auto* const entry = new QOBSharedHandle<KARMPEntity>(
        QOBSharedHandle<KARMPEntity>::unchecked(QOBSharedBase(new Placeholder)));
    return *entry;
}

} // namespace

KARStatus KARMPCollidableList::Get(int index, Handle& entry) const
{
    const KARStatus status = m_entries.Get(index, entry);
    if (entry == NullEntry())
        entry = nullptr;
    return status;
}

KARStatus KARMPCollidableList::Set(int index, const Handle& entry)
{
    if (index < 0 || index >= Count())
        return KARFailure;
    m_entries.Replace(index, entry ? entry : NullEntry());
    return KARSuccess;
}

int KARMPCollidableList::Find(const Handle& entry) const
{
    return m_entries.Find(entry ? entry : NullEntry());
}

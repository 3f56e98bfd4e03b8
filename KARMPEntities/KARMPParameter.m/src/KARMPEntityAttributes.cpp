// Attributes of entities: look-up by path and bulk updates.
#include "KARMPAttributeAccess.h"
#include "KARMPAttributePath.h"
#include "KARMPBoolean.h"
#include "KARMPConstant.h"
#include "KARMPString.h"
#include "KAROmxAny.h"
#include "KAROmxOMap.h"

#include <utility>

namespace {

using Path = KAROmxArray<KARString>;

/// The attribute at a path below a list; null without one.
template <class T, class Elements>
QOBSharedHandle<T> FindByPath(const KARMPAttributeList<T>& list, Elements path)
{
    QOBSharedHandle<T> found;
    const KARMPAttributeList<T>* level = &list;
    for (std::string_view element; path.Next(element);) {
        found = level->Find(element);
        if (!found)
            break;
        level = &karmp::AttributeAccess::ChildrenOf(*found);
    }
    return found;
}

template <class T>
KARStatus FindByArray(const KARMPAttributeList<T>& list, const Path& path,
                      QOBSharedHandle<T>& attribute)
{
    attribute = FindByPath(list, karmp::ArrayPath(path));
    return attribute ? KARSuccess : KARFailure;
}

template <class Attribute, class T>
KARStatus ValueByPath(const KARMPAttributeList<Attribute>& list, const Path& path, int index,
                      T& value, KARMPSourceLocation where = KARMPSourceLocation::current())
{
    const QOBSharedHandle<Attribute> attribute(FindByPath(list, karmp::ArrayPath(path)),
                                               QOBSharedBase::WriteLock);
    if (!KARMPVerify(static_cast<bool>(attribute), where))
        return KARFailure;
    return attribute->GetValue(index, value);
}

bool StoreOctets(KARMPAttribute& attribute, const KAROmxAny& entry)
{
    if (entry.Kind() != KAROmxAnyKind::Octets)
        return false;
    _SEQUENCE_octet octets;
    octets.length(entry.Size());
    entry.CopyToCArray(KAROmxAnyKind::Octets, octets.Data(), octets.length());
    return !KARFailed(attribute.SetOctetSequence(octets));
}

/// Stores what an entry holds as a T in a value of class Holder, whose setter takes `word` as well
/// where it has one.
template <class Holder, class T, class... Word>
bool Store(const QOBSharedHandle<KARMPValue>& value, const KAROmxAny& entry,
           bool (KAROmxAny::*fetch)(T&) const, const Word&... word)
{
    const QOBSharedHandle<Holder> holder(value, QOBSharedBase::WriteLock);
    T fetched{};
    return (entry.*fetch)(fetched) && !KARFailed(holder->SetValue(std::move(fetched), word...));
}

/// Stores an entry in the only value of an attribute, as its type word tells.
bool StoreValue(const KARMPAttribute& attribute, const KARString& type, const KAROmxAny& entry)
{
    QOBSharedHandle<KARMPValue> value;
    if (attribute.GetValueCount() != 1 || KARFailed(attribute.GetValue(0, value)))
        return false;
    if (type == "double")
        return Store<KARMPConstant>(value, entry, &KAROmxAny::TryGetDouble, type);
    if (type == "int")
        return Store<KARMPConstant>(value, entry, &KAROmxAny::TryGetInt, type);
    if (type == "string" || type == "enum")
        return Store<KARMPString, KARUnicodeString>(value, entry, &KAROmxAny::TryGetString);
    if (type == "bool")
        return Store<KARMPBoolean>(value, entry, &KAROmxAny::TryGetBoolean);
    return false;
}

/// Updates the attributes below a list; those of outputs may be bytes.
template <class T>
KARStatus Update(const KARMPEntity& entity, const KARMPAttributeList<T>& list,
                 const KAROmxOMap<KARString, KAROmxAny>& entries)
{
    for (const auto& [path, entry] : entries) {
        const QOBSharedHandle<T> attribute = FindByPath(list, karmp::TextPath(path.Text()));
        if (!KARMPVerify(static_cast<bool>(attribute)))
            continue;
        const KARString type = attribute->GetType();
        const bool isBytes = std::is_same_v<T, KARMPOutput> && type == "octet";
        if (KARMPVerify(isBytes ? StoreOctets(*attribute, entry)
                                : StoreValue(*attribute, type, entry)))
            entity.NotifyUpdate();
    }
    return KARSuccess;
}

} // namespace

KARStatus KARMPEntity::GetParameter(const Path& path,
                                    QOBSharedHandle<KARMPParameter>& parameter) const
{
    return FindByArray(Rare().parameters, path, parameter);
}

KARStatus KARMPEntity::GetState(const Path& path, QOBSharedHandle<KARMPState>& state) const
{
    return FindByArray(Rare().states, path, state);
}

KARStatus KARMPEntity::GetOutput(const Path& path, QOBSharedHandle<KARMPOutput>& output) const
{
    return FindByArray(Rare().outputs, path, output);
}

KARStatus KARMPEntity::GetAllParameters(QOBSharedVector<KARMPParameter>& parameters) const
{
    return karmp::AppendAll(Rare().parameters, parameters);
}

KARStatus KARMPEntity::GetAllStates(QOBSharedVector<KARMPState>& states) const
{
    return karmp::AppendAll(Rare().states, states);
}

KARStatus KARMPEntity::GetAllOutputs(QOBSharedVector<KARMPOutput>& outputs) const
{
    return karmp::AppendAll(Rare().outputs, outputs);
}

template <class T>
KARStatus KARMPEntity::GetParameterValue(const Path& path, int index, T& value) const
{
    return ValueByPath(Rare().parameters, path, index, value);
}

template <class T>
KARStatus KARMPEntity::GetStateValue(const Path& path, int index, T& value) const
{
    return ValueByPath(Rare().states, path, index, value);
}

template <class T>
KARStatus KARMPEntity::GetOutputValue(const Path& path, int index, T& value) const
{
    return ValueByPath(Rare().outputs, path, index, value);
}

#define KARMP_VALUE_GETTERS(T)                                                                     \
    template KARMP_API KARStatus KARMPEntity::GetParameterValue(const Path&, int, T&) const;       \
    template KARMP_API KARStatus KARMPEntity::GetStateValue(const Path&, int, T&) const;           \
    template KARMP_API KARStatus KARMPEntity::GetOutputValue(const Path&, int, T&) const

KARMP_VALUE_GETTERS(unsigned char);
KARMP_VALUE_GETTERS(double);
KARMP_VALUE_GETTERS(KARUnicodeString);

KARStatus KARMPEntity::UpdateOutputs(const KAROmxOMap<KARString, KAROmxAny>& entries)
{
    return Update(*this, Rare().outputs, entries);
}

KARStatus KARMPEntity::UpdateStates(const KAROmxOMap<KARString, KAROmxAny>& entries)
{
    return Update(*this, Rare().states, entries);
}

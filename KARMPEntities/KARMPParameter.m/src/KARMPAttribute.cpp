#include "KARMPAttribute.h"

#include "KARMPAttributeAccess.h"
#include "KARMPAttributePath.h"
#include "KARMPBoolean.h"
#include "KARMPConstant.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPOutputGate.h"
#include "KARMPString.h"
#include "KARMPSupport.h"
#include "KARProcessServices.h"

#include <utility>

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPAttribute, "138E0D53-6E69-42B5-B25C-3E2CB0A93689");

template <>
struct karmp::ContentOf<KARMPAttribute>
{
    using C = KARMPAttribute;
    static bool HasType(const C& attribute) { return !attribute.m_type.IsEmpty(); }
    static bool HasPath(const C& attribute) { return !attribute.GetPathAsStr().IsEmpty(); }
    static KARStatus TakePath(C& attribute, const KARString& text)
    {
        return attribute.SetPath(SplitPath(text.Text()));
    }
    static KARUnicodeString OctetsAsText(const C& attribute)
    {
        const _SEQUENCE_octet& octets = attribute.m_octets;
        return KARUnicodeString(reinterpret_cast<const char*>(octets.Data()),
                                static_cast<std::size_t>(octets.length()));
    }
    static bool AreOctetsWritten(const C& attribute)
    {
        return attribute.m_octets.length() > 0 && KARGetEnv("DUMP_OCTET_AS_UTF8") != nullptr;
    }
    static constexpr auto List =
        Base("Named data of an entity that a solver reads or writes.", LenientFrame,
             Attribute(
                 Text<&C::m_type>(L"type", "The type of the value that a bulk update stores in it.")
                     .Optional()
                     .When<&HasType>()),
             Attribute(Text<&C::GetPathAsStr>(
                           L"path", "The path of names by which results are sorted to it.")
                           .Optional()
                           .When<&HasPath>()
                           .Through<&TakePath>()),
             Group(L"OctetSequence", "Its bytes, for people to read.",
                   Attribute(Text<&OctetsAsText>(L"UTF8String", "The bytes as text.")
                                 .WrittenOnly()
                                 .FixedBecause("The text shows bytes, which it does not hold.")))
                 .WrittenOnly()
                 .When<&AreOctetsWritten>(),
             References<&C::m_values, &C::AddValue>(L"Values", L"Value",
                                                    "The values that it holds, in order.")
                 .InOrder())
            .LeftOutWhen<&C::IsLeftOut>();
};
KARMP_DEFINE_CONTENT(KARMPAttribute);

KARMPAttribute::KARMPAttribute() = default;
KARMPAttribute::KARMPAttribute(const KARMPAttribute& source, CopyMode mode)
    : Super(source, mode), m_type(source.m_type), m_path(source.m_path), m_octets(source.m_octets)
{}
KARMPAttribute::~KARMPAttribute() = default;

void KARMPAttribute::ClearContainers()
{
    m_childParameters.Clear();
    m_childStates.Clear();
    m_childOutputs.Clear();
    m_values.Clear();
    m_supports.Clear();
}

bool KARMPAttribute::IsLeftOut() const
{
    return dynamic_cast<const KARMPOutput*>(this) != nullptr && karmp::AreOutputsLeftOut();
}

KARStatus KARMPAttribute::AddChild(const QOBSharedHandle<KARMPAttribute>& child)
{
    if (!KARMPVerify(static_cast<bool>(child)))
        return KARFailure;
    return karmp::AttributeAccess::WithChildren(
        *this, KARFailure, [&]<class T>(const KARMPAttributeList<T>& children) {
            if (dynamic_cast<T*>(child.get()) == nullptr)
                return KARFailure;
            return const_cast<KARMPAttributeList<T>&>(children).Add(QOBSharedHandle<T>(child));
        });
}

int KARMPAttribute::GetChildrenCount() const
{
    return karmp::AttributeAccess::WithChildren(
        *this, 0, [](const auto& children) { return children.Count(); });
}

KARStatus KARMPAttribute::GetChild(int index, QOBSharedHandle<KARMPAttribute>& child) const
{
    child = karmp::AttributeAccess::WithChildren(
        *this, QOBSharedHandle<KARMPAttribute>(),
        [index]<class T>(const KARMPAttributeList<T>& children) {
            QOBSharedHandle<T> found;
            children.Get(index, found);
            return QOBSharedHandle<KARMPAttribute>(found);
        });
    return child ? KARSuccess : KARFailure;
}

KARStatus KARMPAttribute::GetChild(const KARString& name,
                                   QOBSharedHandle<KARMPAttribute>& child) const
{
    child = karmp::AttributeAccess::WithChildren(
        *this, QOBSharedHandle<KARMPAttribute>(), [&name](const auto& children) {
            return QOBSharedHandle<KARMPAttribute>(children.Find(name.Text()));
        });
    return child ? KARSuccess : KARFailure;
}

KARStatus KARMPAttribute::GetAllChildren(QOBSharedVector<KARMPAttribute>& children) const
{
    return karmp::AttributeAccess::WithChildren(
        *this, KARUnchanged,
        [&children](const auto& own) { return karmp::AppendAll(own, children); });
}

KARStatus KARMPAttribute::GetSupportTarget(int index, QOBSharedHandle<KARMPEntity>& target) const
{
    QOBSharedHandle<KARMPSupport> support;
    QOBSharedHandle<KARMPEntity> found;
    if (!KARFailed(GetSupport(index, support)))
        support->GetTarget(found);
    target = std::move(found);
    return target ? KARSuccess : KARFailure;
}

KARStatus KARMPAttribute::SetType(const KARString& type)
{
    m_type = type;
    return KARSuccess;
}

KARStatus KARMPAttribute::SetPath(const KAROmxArray<KARString>& path)
{
    m_path = path;
    return KARSuccess;
}

KARString KARMPAttribute::GetPathAsStr() const
{
    KARString text;
    for (int position = 1; position <= m_path.Size(); ++position) {
        if (position > 1)
            text += ".";
        text += m_path.GetR(position);
    }
    return text;
}

KARStatus KARMPAttribute::SetOctetSequence(const _SEQUENCE_octet& octets)
{
    m_octets = octets;
    return KARSuccess;
}

namespace {

/// The class of the values that hold a T.
template <class T>
struct HolderOf;
template <>
struct HolderOf<unsigned char>
{
    using Type = KARMPBoolean;
};
template <>
struct HolderOf<double>
{
    using Type = KARMPConstant;
};
template <>
struct HolderOf<KARUnicodeString>
{
    using Type = KARMPString;
};

} // namespace

template <karmp::AttributeDatum T>
KARStatus KARMPAttribute::GetValue(int index, T& value) const
{
    QOBSharedHandle<KARMPValue> held;
    GetValue(index, held);
    if (!KARMPVerify(static_cast<bool>(held)))
        return KARFailure;
    const QOBSharedHandle<typename HolderOf<T>::Type> holder(held, QOBSharedBase::WriteLock);
    return KARMPVerify(!KARFailed(holder->GetValue(value))) ? KARSuccess : KARFailure;
}

template KARMP_API KARStatus KARMPAttribute::GetValue(int, unsigned char&) const;
template KARMP_API KARStatus KARMPAttribute::GetValue(int, double&) const;
template KARMP_API KARStatus KARMPAttribute::GetValue(int, KARUnicodeString&) const;

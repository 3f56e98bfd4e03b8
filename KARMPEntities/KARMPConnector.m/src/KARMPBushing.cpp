#include "KARMPBushing.h"

#include "KARIMPBushingLoader.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPFreedomIndex.h"
#include "KARMPLoaderAccess.h"
#include "KARMPValue.h"

#include <utility>

KARMP_DEFINE_ENTITY(KARMPBushing, "ACAEA8E1-013A-4ba6-938A-6F682974C510");

namespace {

using Value = KARMPBushing::Value;
using Values = std::array<Value, karmp::Freedoms>;
using Setter = KARStatus (KARMPBushing::*)(int, const Value&);

template <Setter Set, int Index>
KARStatus SetAt(KARMPBushing& bushing, const Value& value)
{
    return (bushing.*Set)(Index, value);
}

// The values of an array, each in an element of its own; one that is null writes nothing.
template <auto Array, Setter Set, std::size_t... Index>
constexpr auto ValuesOf(const std::array<std::wstring_view, sizeof...(Index)>& names,
                        std::string_view says, std::index_sequence<Index...>,
                        KARMPSourceLocation where = KARMPSourceLocation::current())
{
    return karmp::List(
        karmp::ValueReference<karmp::At<Array, Index>, &SetAt<Set, static_cast<int>(Index)>>(
            names[Index], says, where)
            .Optional()...);
}

KARStatus Store(Values& values, int index, const Value& value,
                KARMPSourceLocation where = KARMPSourceLocation::current())
{
    if (!KARMPVerify(karmp::IsFreedom(index) && value, where))
        return KARFailure;
    values[static_cast<std::size_t>(index)] = value;
    return KARSuccess;
}

KARStatus Fetch(const Values& values, int index, Value& value,
                KARMPSourceLocation where = KARMPSourceLocation::current())
{
    value = nullptr;
    if (!KARMPVerify(karmp::IsFreedom(index), where))
        return KARFailure;
    value = values[static_cast<std::size_t>(index)];
    return KARSuccess;
}

} // namespace

template <>
struct karmp::ContentOf<KARMPBushing>
{
    using C = KARMPBushing;
    static constexpr std::make_index_sequence<karmp::Freedoms> All{};
    static constexpr auto List = Element(
        L"Bushing", "An elastic bearing, which acts in each of six freedoms.", LenientFrame,
        ValuesOf<&C::m_stiffness, &C::SetStiffness>(
            {L"StiffnessTx", L"StiffnessTy", L"StiffnessTz", L"StiffnessRx", L"StiffnessRy",
             L"StiffnessRz"},
            "Force per length along an axis, or torque per angle about it.", All),
        ValuesOf<&C::m_damping, &C::SetDamping>(
            {L"DampingTx", L"DampingTy", L"DampingTz", L"DampingRx", L"DampingRy", L"DampingRz"},
            "Force per velocity along an axis, or torque per angular velocity about it.", All),
        ValuesOf<&C::m_preLoadForce, &C::SetPreLoadForce>(
            {L"PreForceTx", L"PreForceTy", L"PreForceTz", L"PreForceRx", L"PreForceRy",
             L"PreForceRz"},
            "Force along an axis, or torque about it, at rest.", All));
};
KARMP_DEFINE_CONTENT(KARMPBushing);

KARMPBushing::KARMPBushing() = default;
KARMPBushing::KARMPBushing(const KARMPBushing& source, CopyMode mode) : Super(source, mode) {}
KARMPBushing::~KARMPBushing() = default;

KARStatus KARMPBushing::GetLoader(KARIMPBushingLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPBushing::SetStiffness(int index, const Value& value)
{
    return Store(m_stiffness, index, value);
}

KARStatus KARMPBushing::GetStiffness(int index, Value& value) const
{
    return Fetch(m_stiffness, index, value);
}

KARStatus KARMPBushing::SetDamping(int index, const Value& value)
{
    return Store(m_damping, index, value);
}

KARStatus KARMPBushing::GetDamping(int index, Value& value) const
{
    return Fetch(m_damping, index, value);
}

KARStatus KARMPBushing::SetPreLoadForce(int index, const Value& value)
{
    return Store(m_preLoadForce, index, value);
}

KARStatus KARMPBushing::GetPreLoadForce(int index, Value& value) const
{
    return Fetch(m_preLoadForce, index, value);
}

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

/// What the values of an array are along the axes, or about them.
struct Meaning
{
    std::string_view says;
    karmp::Quantity quantity;
};

// The values of an array, each in an element of its own: three along the axes, then three about
// them. One that is null writes nothing.
template <auto Array, Setter Set, std::size_t... Index>
constexpr auto ValuesOf(const std::array<std::wstring_view, sizeof...(Index)>& names,
                        const Meaning& along, const Meaning& about, std::index_sequence<Index...>,
                        KARMPSourceLocation where = KARMPSourceLocation::current())
{
    constexpr std::size_t axes = 3;
    return karmp::List(
        karmp::ValueReference<karmp::At<Array, Index>, &SetAt<Set, static_cast<int>(Index)>>(
            names[Index], Index < axes ? along.says : about.says, where)
            .Optional()
            .In(Index < axes ? along.quantity : about.quantity)...);
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
            {"The stiffness along an axis, force per length.",
             KARMPPhysicalQuantity::LinearStiffness},
            {"The stiffness about an axis, torque per angle.",
             KARMPPhysicalQuantity::AngularStiffness},
            All),
        ValuesOf<&C::m_damping, &C::SetDamping>(
            {L"DampingTx", L"DampingTy", L"DampingTz", L"DampingRx", L"DampingRy", L"DampingRz"},
            {"The damping along an axis, force per velocity.",
             KARMPPhysicalQuantity::LinearDamping},
            {"The damping about an axis, torque per angular velocity.",
             KARMPPhysicalQuantity::AngularDamping},
            All),
        ValuesOf<&C::m_preLoadForce, &C::SetPreLoadForce>(
            {L"PreForceTx", L"PreForceTy", L"PreForceTz", L"PreForceRx", L"PreForceRy",
             L"PreForceRz"},
            {"The force along an axis at rest.", KARMPPhysicalQuantity::Force},
            {"The torque about an axis at rest.", KARMPPhysicalQuantity::Torque}, All));
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

#include "KARMPCoupling.h"

#include "KARMPContentWalk.h"
#include "KARMPEquation.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPCoupling, "41A36EF6-3CDF-49c2-AE78-F962AE3F4561");

template <>
struct karmp::ContentOf<KARMPCoupling>
{
    using C = KARMPCoupling;
    static KARStatus RemoveEquation(C& coupling, const QOBSharedHandle<KARMPEquation>& equation)
    {
        return coupling.RemoveConstraint(equation);
    }
    // The joint's content comes behind the coupling's, and its status is that of the whole.
    static constexpr ContentFrame Frame{{.baseLast = true, .passesBase = true},
                                        {.baseLast = true, .passesBase = true}};
    static constexpr auto List = Base(
        "A joint that ties the motion of other joints together by an equation.", Frame,
        Reference<&C::GetEquation, &C::SetEquation>(
            L"Equation", "The equation, which is the first of the joint's constraints as well.")
            .Removing<&RemoveEquation>());
};
KARMP_DEFINE_CONTENT(KARMPCoupling);

KARMPCoupling::KARMPCoupling() = default;
KARMPCoupling::KARMPCoupling(const KARMPCoupling& source, CopyMode mode) : Super(source, mode) {}
KARMPCoupling::~KARMPCoupling() = default;

KARStatus KARMPCoupling::GetEquation(QOBSharedHandle<KARMPEquation>& equation) const
{
    equation = nullptr;
    if (GetConstraintCount() == 0)
        return KARFailure;
    QOBSharedHandle<KARMPConstraint> first;
    if (!KARMPVerify(!KARFailed(GetConstraint(0, first))))
        return KARFailure;
    if (!first.isDerivedFrom(KARMPEquation::ClassInfo()))
        return KARFailure;
    equation = QOBSharedHandle<KARMPEquation>(first);
    return KARSuccess;
}

KARStatus KARMPCoupling::SetEquation(const QOBSharedHandle<KARMPEquation>& equation)
{
    if (GetConstraintCount() == 0)
        return AddConstraint(equation);
    QOBSharedHandle<KARMPConstraint> first;
    if (!KARMPVerify(!KARFailed(GetConstraint(0, first)) && first))
        return KARFailure;
    if (first.isDerivedFrom(KARMPEquation::ClassInfo()))
        return KARSuccess;
    // The equation is set, and the caller learns that other constraints came first.
    InsertConstraint(0, equation);
    return KARFailure;
}

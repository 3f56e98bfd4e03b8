#include "KARMPCoupling.h"

#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPEquation.h"

KARMP_DEFINE_ABSTRACT_ENTITY(KARMPCoupling, "41A36EF6-3CDF-49c2-AE78-F962AE3F4561");

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

KARStatus KARMPCoupling::Serialize(KARMPSerializer* serializer) const
{
    karmp::ElementWriter element(serializer);
    if (!element)
        return KARFailure;
    QOBSharedHandle<KARMPEquation> equation;
    if (!KARFailed(GetEquation(equation)))
        element.Reference(L"Equation", equation);
    return Super::Serialize(element.Node());
}

KARStatus KARMPCoupling::Deserialize(const KARMPDeserializer* deserializer,
                                     const KARMPEntityTable& entities)
{
    karmp::ElementReader element(deserializer);
    if (!element)
        return KARFailure;
    element.Reference<KARMPEquation>(L"Equation", entities,
                                     [this](const auto& found) { return SetEquation(found); });
    return Super::Deserialize(element.Node(), entities);
}

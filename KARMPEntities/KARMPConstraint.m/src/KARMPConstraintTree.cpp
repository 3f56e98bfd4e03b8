// What a constraint holds in a document.
#include "KARMPConstraint.h"
#include "KARMPContentTakeBack.h"
#include "KARMPContentWalk.h"
#include "KARMPFrames.h"
#include "KARMPGeometry.h"
#include "KARMPJoint.h"
#include "KARMPSensor.h"
#include "KARMPVariable.h"

#include <algorithm>
#include <memory>

template <>
struct karmp::ContentOf<KARMPConstraint>
{
    using C = KARMPConstraint;

    // One initialized parameter lets all be written, the others included.
    static bool HasInitializedParameter(const C& constraint)
    {
        const auto& parameters = constraint.m_parameters;
        return std::any_of(parameters.begin(), parameters.end(), [](const auto* parameter) {
            return parameter != nullptr && parameter->IsInitialized();
        });
    }

    static KARStatus TakeParameter(C& constraint, const KARMPConstraintParameter& parameter)
    {
        auto kept = std::make_unique<KARMPConstraintParameter>(parameter);
        kept->SetInitialized(true);
        const KARStatus status = constraint.AddConstraintParameter(kept.get());
        static_cast<void>(kept.release());
        return status;
    }

    static constexpr auto List =
        Base("A condition on geometry.", LenientFrame,
             References<&C::GetLinkedGeometryCount, &C::GetLinkedGeometry, &C::LinkToGeometry>(
                 L"Geometries", L"Geometry", "The geometries that it is put on.")
                 .Removing<&C::RemoveGeometry>()
                 .InOrder()
                 .OtherSide(L"Constraints"),
             Reference<&C::GetJoint, &C::SetJoint>(L"Joint", "The joint that it belongs to.")
                 .Removing<&C::RemoveJoint>()
                 .OtherSide(L"Constraints"),
             References<&C::GetLinkedVariableCount, &C::GetLinkedVariable, &C::LinkToVariable>(
                 L"Variables", L"Variable", "The variables that it drives or relates.")
                 .Removing<&C::RemoveVariable>()
                 .InOrder()
                 .OtherSide(L"Constraints"),
             References<&C::GetLinkedSensorCount, &C::GetLinkedSensor, &C::LinkToSensor>(
                 L"Sensors", L"Sensor", "The sensors that watch it.")
                 .Removing<&C::RemoveSensor>(),
             // Each record writes and reads itself, so that a subclass of it can do so in its own
             // way.
             TakenBackFrom<&C::m_parameters>(
                 AddedBy<&TakeParameter>(DescribedRecords<&C::m_parameters>(
                     L"ConstraintParameters", L"ConstraintParameter",
                     &KARMPConstraintParameter::RecordContent,
                     "Numbers that a solver keeps with the constraint.")))
                 .When<&HasInitializedParameter>()
                 .Owned())
            .WrittenByList();
};
KARMP_DESCRIBE_CONTENT(KARMPConstraint);

KARStatus KARMPConstraint::Serialize(KARMPSerializer* serializer) const
{
    const KARStatus status = karmp::WriteContent<Super>(*this, serializer);
    if (!KARFailed(status) && karmp::ContentOf<KARMPConstraint>::HasInitializedParameter(*this))
        WriteParameters(serializer);
    return status;
}

void KARMPConstraint::WriteParameters(KARMPSerializer* element) const
{
    const karmp::ElementWriter container(element, L"ConstraintParameters");
    if (!container)
        return;
    for (const KARMPConstraintParameter* parameter : m_parameters)
        if (KARMPVerify(parameter != nullptr))
            KARMPVerify(!KARFailed(parameter->Serialize(container.Node())));
}

KARStatus KARMPConstraint::Deserialize(const KARMPDeserializer* deserializer,
                                       const KARMPEntityTable& entities)
{
    const KARStatus status = karmp::ReadContent<Super>(*this, deserializer, entities);
    if (!KARFailed(status))
        ReadParameters(deserializer);
    return status;
}

void KARMPConstraint::ReadParameters(const KARMPDeserializer* element)
{
    karmp::ElementReader(element)
        .Child(L"ConstraintParameters", karmp::Absent::Keep)
        .Each(
            L"ConstraintParameter",
            [this](const karmp::ElementReader& child) {
                auto parameter = std::make_unique<KARMPConstraintParameter>();
                KARMPVerify(!KARFailed(parameter->Deserialize(child.Node())));
                AddConstraintParameter(parameter.release());
            });
}

#include "KARMPConstraint.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPGeometry.h"
#include "KARMPJoint.h"
#include "KARMPSensor.h"
#include "KARMPVariable.h"

#include <algorithm>
#include <memory>

KARStatus KARMPConstraint::Serialize(KARMPSerializer* serializer) const
{
    karmp::ElementWriter element(serializer);
    if (!element || !element.Base(Super::Serialize(element.Node())))
        return KARFailure;
    element.References<KARMPGeometry>(
        L"Geometries", L"Geometry", GetLinkedGeometryCount(),
        [this](int index, auto& geometry) { return GetLinkedGeometry(index, geometry); });
    QOBSharedHandle<KARMPJoint> joint;
    if (!KARFailed(GetJoint(joint)))
        element.Reference(L"Joint", joint);
    element.References<KARMPVariable>(
        L"Variables", L"Variable", GetLinkedVariableCount(),
        [this](int index, auto& variable) { return GetLinkedVariable(index, variable); });
    element.References<KARMPSensor>(
        L"Sensors", L"Sensor", GetLinkedSensorCount(),
        [this](int index, auto& sensor) { return GetLinkedSensor(index, sensor); });
    WriteParameters(element.Node());
    // A link or parameter that could not be written was reported and is no failure of the whole.
    return KARSuccess;
}

void KARMPConstraint::WriteParameters(KARMPSerializer* element) const
{
    // One initialized parameter lets all be written, the others included.
    const bool wanted =
        std::any_of(m_parameters.begin(), m_parameters.end(), [](const auto* parameter) {
            return parameter != nullptr && parameter->IsInitialized();
        });
    if (!wanted)
        return;
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
    karmp::ElementReader element(deserializer);
    if (!element || !element.Base(Super::Deserialize(element.Node(), entities)))
        return KARFailure;
    element.References<KARMPGeometry>(
        L"Geometries", L"Geometry", entities,
        [this](const auto& geometry) { return LinkToGeometry(geometry); });
    element.Reference<KARMPJoint>(
        L"Joint", entities, [this](const auto& joint) { return SetJoint(joint); });
    element.References<KARMPVariable>(
        L"Variables", L"Variable", entities,
        [this](const auto& variable) { return LinkToVariable(variable); });
    element.References<KARMPSensor>(L"Sensors", L"Sensor", entities,
                                    [this](const auto& sensor) { return LinkToSensor(sensor); });
    element.Child(L"ConstraintParameters", karmp::Absent::Keep)
        .Each(L"ConstraintParameter", [this](const karmp::ElementReader& child) {
            auto parameter = std::make_unique<KARMPConstraintParameter>();
            KARMPVerify(!KARFailed(parameter->Deserialize(child.Node())));
            AddConstraintParameter(parameter.release());
        });
    return KARSuccess;
}

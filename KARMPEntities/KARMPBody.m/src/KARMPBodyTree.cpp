#include "KARMPBody.h"
#include "KARMPConnector.h"
#include "KARMPDisplacementSensor.h"
#include "KARMPElementReader.h"
#include "KARMPElementWriter.h"
#include "KARMPGeometry.h"
#include "KARMPJoint.h"
#include "KARMPShape.h"
#include "KARMPTransformationElement.h"

using namespace std::literals;
using karmp::Absent;
using karmp::ElementReader;
using karmp::ElementWriter;

namespace {

void WritePair(ElementWriter& element, std::wstring_view name, std::wstring_view linearName,
               const KARMathVector& linear, std::wstring_view angularName,
               const KARMathVector& angular)
{
    ElementWriter pair = element.Child(name);
    if (!pair)
        return;
    if (ElementWriter vector = pair.Child(linearName))
        vector.Values(karmp::VectorNames, linear);
    if (ElementWriter vector = pair.Child(angularName))
        vector.Values(karmp::VectorNames, angular);
}

bool ReadVector(ElementReader& element, karmp::ItemName name, KARMathVector& vector)
{
    ElementReader child = element.Child(name, Absent::ReportAndKeep);
    if (child)
        child.Values(karmp::VectorNames, vector, Absent::ReportAndKeep);
    return static_cast<bool>(child);
}

} // namespace

KARStatus KARMPBody::Serialize(KARMPSerializer* serializer) const
{
    ElementWriter element(serializer, L"Body");
    // Unlike a missing writer, an element that cannot be added gives 0.
    if (!element)
        return serializer == nullptr ? KARFailure : KARSuccess;
    if (element.Base(Super::Serialize(element.Node())))
        WriteState(element);
    WriteLinks(element);
    return KARSuccess;
}

void KARMPBody::WriteState(ElementWriter& element) const
{
    if (ElementWriter child = element.Child(L"Position")) {
        KARMathTransformation position;
        GetPosition(position);
        karmp::WriteTransformation(child, position);
    }
    WritePair(element, L"Velocity", L"LinearVelocity", m_linearVelocity, L"AngularVelocity",
              m_angularVelocity);
    WritePair(element, L"Acceleration", L"LinearAcceleration", m_linearAcceleration,
              L"AngularAcceleration", m_angularAcceleration);
    if (ElementWriter weight = element.Child(L"Weight")) {
        weight.Value(L"Mass", m_mass);
        if (ElementWriter center = weight.Child(L"COG"))
            center.Values(karmp::PointNames, m_centerOfGravity);
        if (ElementWriter inertia = weight.Child(L"InertiaMatrix"))
            inertia.Values(m_inertiaMatrix);
    }
    element.Attribute(L"is_fixed", std::wstring_view(m_fixed ? L"yes" : L"no"));
    if (karmp::AtLeast(element.Version(), karmp::R2016_1))
        element.Value(L"OutOfWorld", m_outOfWorld);
}

void KARMPBody::WriteLinks(ElementWriter& element) const
{
    element.References(L"Geometries", L"Geometry", m_geometries);
    element.References(L"Joints", L"Joint", m_joints);
    element.References(L"Shapes", L"Shape", m_shapes);
    element.References(L"Connectors", L"Connector", m_connectors);
    if (m_displacementSensor)
        element.Reference(L"DisplacementSensor", m_displacementSensor);
    element.References(L"ImpactedChildrenBodies", L"ImpactedChildBody", m_impactedChildren);
    element.References(L"ChildrenBodies", L"ChildBody", m_children);
    if (!m_floating && !m_fixed && m_father)
        element.Attribute(L"floating", false);
}

KARStatus KARMPBody::Deserialize(const KARMPDeserializer* deserializer,
                                 const KARMPEntityTable& entities)
{
    ElementReader element(deserializer, L"Body");
    if (!element)
        return KARFailure;
    if (element.Base(Super::Deserialize(element.Node(), entities)))
        ReadState(element);
    ReadLinks(element, entities);
    bool floating = false;
    if (element.Attribute(L"floating", floating, Absent::Keep))
        SetFloating(floating);
    return KARSuccess;
}

void KARMPBody::ReadState(ElementReader& element)
{
    if (ElementReader child = element.Child(L"Position", Absent::ReportAndKeep)) {
        KARMathTransformation position;
        karmp::ReadTransformation(child, position);
        SetPosition(position, 1);
    }
    ReadMotion(element);
    ReadWeight(element);
    karmp::ReadText fixed;
    if (element.Attribute(L"is_fixed", fixed, Absent::ReportAndKeep))
        SetFix(fixed.View() == L"yes"sv);
    if (karmp::AtLeast(element.Version(), karmp::R2016_1))
        element.Value(L"OutOfWorld", m_outOfWorld, Absent::ReportAndKeep);
}

void KARMPBody::ReadMotion(ElementReader& element)
{
    // Meant: velocities count as known only when a component is above 0, so a body that moves along
    // negative axes alone reads back without known velocities.
    const auto readVelocity = [this](ElementReader& parent, karmp::ItemName name,
                                     KARMathVector& velocity) {
        KARMathVector read;
        if (!ReadVector(parent, name, read))
            return;
        velocity = read;
        if (read.GetX() > 0.0 || read.GetY() > 0.0 || read.GetZ() > 0.0)
            m_velocitySet = true;
    };
    if (ElementReader velocity = element.Child(L"Velocity", Absent::ReportAndKeep)) {
        readVelocity(velocity, L"LinearVelocity", m_linearVelocity);
        readVelocity(velocity, L"AngularVelocity", m_angularVelocity);
    }
    if (ElementReader acceleration = element.Child(L"Acceleration", Absent::ReportAndKeep)) {
        ReadVector(acceleration, L"LinearAcceleration", m_linearAcceleration);
        ReadVector(acceleration, L"AngularAcceleration", m_angularAcceleration);
    }
}

void KARMPBody::ReadWeight(ElementReader& element)
{
    ElementReader weight = element.Child(L"Weight", Absent::ReportAndKeep);
    if (!weight)
        return;
    weight.Value(L"Mass", m_mass, Absent::ReportAndKeep);
    if (ElementReader center = weight.Child(L"COG", Absent::ReportAndKeep))
        center.Values(karmp::PointNames, m_centerOfGravity, Absent::ReportAndKeep);
    if (ElementReader inertia = weight.Child(L"InertiaMatrix", Absent::ReportAndKeep))
        inertia.Values(m_inertiaMatrix, Absent::ReportAndKeep);
}

void KARMPBody::ReadLinks(ElementReader& element, const KARMPEntityTable& entities)
{
    element.References<KARMPGeometry>(
        L"Geometries", L"Geometry", entities,
        [this](const auto& entity) { return AddGeometry(entity); });
    element.References<KARMPJoint>(
        L"Joints", L"Joint", entities, [this](const auto& entity) { return LinkToJoint(entity); });
    element.References<KARMPShape>(
        L"Shapes", L"Shape", entities, [this](const auto& entity) { return LinkToShape(entity); });
    element.References<KARMPConnector>(
        L"Connectors", L"Connector", entities,
        [this](const auto& entity) { return LinkToConnector(entity); });
    element.Reference<KARMPDisplacementSensor>(
        L"DisplacementSensor", entities,
        [this](const auto& entity) { return SetDisplacementSensor(entity); });
    element.References<KARMPBody>(
        L"ImpactedChildrenBodies", L"ImpactedChildBody", entities,
        [this](const auto& entity) { return AddImpactedChildBody(entity); });
    element.References<KARMPBody>(L"ChildrenBodies", L"ChildBody", entities,
                                  [this](const auto& entity) { return AddBody(entity); });
}

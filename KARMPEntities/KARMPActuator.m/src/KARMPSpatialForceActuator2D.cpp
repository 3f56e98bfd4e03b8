#include "KARMPSpatialForceActuator2D.h"

#include "KARIMPSpatialForceActuator2DLoader.h"
#include "KARMPBody2D.h"
#include "KARMPContentWalk.h"
#include "KARMPForceComponents.h"
#include "KARMPFrames.h"
#include "KARMPLoaderAccess.h"

KARMP_DEFINE_ENTITY(KARMPSpatialForceActuator2D, "BA895470-3CD3-4A64-A828-9045A559692C");

namespace {

using Loader = KARIMPSpatialForceActuator2DLoader;

constexpr karmp::Names<1> TorqueNames{L"Vx"};

} // namespace

// Described only: the two values of a force are set together, which no item does.
template <>
struct karmp::ContentOf<KARMPSpatialForceActuator2D>
{
    using C = KARMPSpatialForceActuator2D;
    static constexpr auto List = Element(
        L"SpatialForceActuator2D", "A force and a torque on a body in a plane.", LenientFrame,
        DescribeValues<&C::m_force>(L"Force2D", PlanarVectorNames, "The force.",
                                    "The force along an axis.", KARMPPhysicalQuantity::Force),
        DescribeValues<&C::m_torque>(L"Torque2D", TorqueNames, "The torque.",
                                     "The torque about the normal.", KARMPPhysicalQuantity::Torque),
        Flag<&C::m_isInLocalFrame>(L"IsInLocalFrame",
                                   "Whether the components are along the body's axes."),
        NumbersElement<&C::m_applicationPoint>(L"ApplicationPoint2D", PlanarPointNames,
                                               "The point where the force acts.",
                                               KARMPPhysicalQuantity::Length)
            .Through<&C::SetApplicationPoint>(),
        Reference<&C::m_body, &C::SetBody>(L"Body2D", "The body on which it acts."));
};
KARMP_DESCRIBE_CONTENT(KARMPSpatialForceActuator2D);

KARMPSpatialForceActuator2D::KARMPSpatialForceActuator2D() = default;
KARMPSpatialForceActuator2D::KARMPSpatialForceActuator2D(const KARMPSpatialForceActuator2D& source,
                                                         CopyMode mode)
    : Super(source, mode),
      m_applicationPoint(source.m_applicationPoint),
      m_isInLocalFrame(source.m_isInLocalFrame)
{}
KARMPSpatialForceActuator2D::~KARMPSpatialForceActuator2D() = default;

KARStatus KARMPSpatialForceActuator2D::GetLoader(KARIMPSpatialForceActuator2DLoader*& loader) const
{
    return karmp::FetchLoader(*this, loader);
}

KARStatus KARMPSpatialForceActuator2D::TellForce() const
{
    return karmp::PassToLoader<Loader>(
        *this, [this](auto& loader) { return loader.SetForce(m_force); });
}

KARStatus KARMPSpatialForceActuator2D::TellTorque() const
{
    return karmp::PassToLoader<Loader>(
        *this, [this](auto& loader) { return loader.SetTorque(m_torque); });
}

KARStatus KARMPSpatialForceActuator2D::SetForce(const KARMathVector2D& force)
{
    return SetForce(
        karmp::MakeConstants<2>(*this, {force.GetX(), force.GetY()}, KARMPPhysicalQuantity::Force));
}

KARStatus KARMPSpatialForceActuator2D::SetForce(const ForceComponents& force)
{
    karmp::StoreValues(force, m_force);
    return TellForce();
}

KARStatus KARMPSpatialForceActuator2D::GetForce(KARMathVector2D& force) const
{
    std::array<double, 2> numbers{};
    const KARStatus status = karmp::ReadConstants(m_force, numbers);
    force = {numbers[0], numbers[1]};
    return status;
}

KARStatus KARMPSpatialForceActuator2D::GetForce(ForceComponents& force) const
{
    force = m_force;
    return KARSuccess;
}

KARStatus KARMPSpatialForceActuator2D::SetTorque(const double& torque)
{
    if (karmp::IsConstant(m_torque[0]))
        karmp::ChangeConstant(m_torque[0], torque);
    else
        m_torque = karmp::MakeConstants<1>(*this, {torque}, KARMPPhysicalQuantity::Torque);
    return TellTorque();
}

KARStatus KARMPSpatialForceActuator2D::SetTorque(const TorqueComponents& torque)
{
    karmp::StoreValues(torque, m_torque);
    return TellTorque();
}

KARStatus KARMPSpatialForceActuator2D::GetTorque(double& torque) const
{
    std::array<double, 1> numbers{};
    const KARStatus status = karmp::ReadConstants(m_torque, numbers);
    torque = numbers[0];
    return status;
}

KARStatus KARMPSpatialForceActuator2D::GetTorque(TorqueComponents& torque) const
{
    torque = m_torque;
    return KARSuccess;
}

KARStatus KARMPSpatialForceActuator2D::SetApplicationPoint(const KARMathPoint2D& point)
{
    m_applicationPoint = point;
    return karmp::PassToLoader<Loader>(
        *this, [this](auto& loader) { return loader.SetApplicationPoint(m_applicationPoint); });
}

KARStatus KARMPSpatialForceActuator2D::GetApplicationPoint(KARMathPoint2D& point) const
{
    point = m_applicationPoint;
    return KARSuccess;
}

KARStatus KARMPSpatialForceActuator2D::SetBody(const QOBSharedHandle<KARMPBody2D>& body)
{
    if (const KARStatus status = m_body.SetOther(body); status != KARSuccess)
        return status;
    return karmp::PassToLoader<Loader>(
        *this, [this](auto& loader) { return loader.SetBody(m_body.Handle()); });
}

KARStatus KARMPSpatialForceActuator2D::GetBody(QOBSharedHandle<KARMPBody2D>& body) const
{
    body = m_body.Handle();
    return KARSuccess;
}

KARStatus KARMPSpatialForceActuator2D::SetIsInLocalFrame(bool isInLocalFrame)
{
    m_isInLocalFrame = isInLocalFrame;
    return KARSuccess;
}

KARStatus KARMPSpatialForceActuator2D::IsInLocalFrame(bool& isInLocalFrame) const
{
    isInLocalFrame = m_isInLocalFrame;
    return KARSuccess;
}

KARStatus KARMPSpatialForceActuator2D::Serialize(KARMPSerializer* serializer) const
{
    karmp::ElementWriter element(serializer, L"SpatialForceActuator2D");
    if (!element || !element.Base(Super::Serialize(element.Node())))
        return KARFailure;
    karmp::WriteValues(element, L"Force2D", karmp::PlanarVectorNames, m_force);
    karmp::WriteValues(element, L"Torque2D", TorqueNames, m_torque);
    element.Value(L"IsInLocalFrame", m_isInLocalFrame);
    if (karmp::ElementWriter point = element.Child(L"ApplicationPoint2D"))
        point.Values(karmp::PlanarPointNames,
                     {m_applicationPoint.GetX(), m_applicationPoint.GetY()});
    if (m_body)
        element.Reference(L"Body2D", m_body.Handle());
    return KARSuccess;
}

KARStatus KARMPSpatialForceActuator2D::Deserialize(const KARMPDeserializer* deserializer,
                                                   const KARMPEntityTable& entities)
{
    using karmp::Absent;
    karmp::ElementReader element(deserializer, L"SpatialForceActuator2D");
    if (!element || !element.Base(Super::Deserialize(element.Node(), entities)))
        return KARFailure;
    karmp::ReadValues(
        element, L"Force2D", karmp::PlanarVectorNames, entities,
        [this](const auto& values) { return SetForce(values); });
    karmp::ReadValues(element, L"Torque2D", TorqueNames, entities,
                      [this](const auto& values) { return SetTorque(values); });
    element.Value(L"IsInLocalFrame", m_isInLocalFrame, Absent::ReportAndKeep);
    if (karmp::ElementReader child = element.Child(L"ApplicationPoint2D", Absent::ReportAndKeep)) {
        std::array<double, 2> point{m_applicationPoint.GetX(), m_applicationPoint.GetY()};
        child.Values(karmp::PlanarPointNames, point, Absent::ReportAndKeep);
        karmp::ElementReader::Set(SetApplicationPoint({point[0], point[1]}));
    }
    element.Reference<KARMPBody2D>(L"Body2D", entities,
                                   [this](const auto& body) { return SetBody(body); });
    return KARSuccess;
}
